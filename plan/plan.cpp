#include "plan/plan.h"

#include <cmath>

#include "charts/day_stats.h"
#include "frame/frame.h"
#include "store/db_safety.h"
#include "store/store.h"

namespace plan {

namespace {

const QString kSection = QStringLiteral("SIMULATION");
const QString kWhole = QStringLiteral("###0");

QString Caption(const QString& key) { return GetIniCaption(kSection, key); }

// Kilocalories are whole numbers on the screen; later figures are made from those texts.
QString Kcal(double value) { return Format(value, kWhole); }

}  // namespace

// ---- body figures ----

double GetBasalRatePerKg(int gender, int age) {
  struct Row {
    int upToAge;
    double male;
    double female;
  };
  // Each row covers the ages above the previous row up to its own.
  static constexpr Row kRows[] = {
      {1, 61.7, 61.9},  {2, 60.2, 60.1},  {3, 57.8, 56.9},  {4, 54.3, 52.4},  {5, 50.5, 47.7},
      {6, 47.0, 44.2},  {7, 43.9, 41.3},  {8, 40.9, 38.7},  {9, 38.0, 36.2},  {10, 35.7, 34.2},
      {11, 0.0, 0.0},   {12, 33.6, 30.1}, {13, 29.8, 28.4}, {14, 28.2, 26.9}, {15, 26.9, 25.3},
      {16, 26.1, 24.3}, {17, 25.5, 23.8}, {18, 25.0, 23.6}, {19, 24.5, 23.5}, {29, 23.3, 23.1},
      {39, 22.3, 21.6}, {49, 21.7, 20.7}, {59, 21.4, 20.4}, {64, 22.0, 20.6}, {69, 22.0, 20.7},
      {74, 20.8, 20.8}, {79, 20.7, 20.9},
  };
  if (age < 0) return 0.0;
  for (const Row& r : kRows)
    if (age <= r.upToAge) return gender == 0 ? r.male : r.female;
  return gender == 0 ? 20.2 : 20.7;
}

double CalcBMI(double weightKg, double heightCm) {
  if (heightCm == 0) return 0.0;
  return RoundOff(weightKg * 10000.0 / (heightCm * heightCm), 1);
}

QString BmiText(double weightKg, double heightCm) {
  if (heightCm == 0) return QString();
  return Format(CalcBMI(weightKg, heightCm), QStringLiteral("##0.0"));
}

double PlanWeightKg(const QString& weightText, bool pounds) {
  if (!pounds) return Val(weightText);
  return PoundToKgExact(static_cast<std::int32_t>(std::trunc(Val(weightText))));
}

double BmiWeightKg(const QString& weightText, bool pounds) {
  if (!pounds) return Val(weightText);
  return PoundToKg(static_cast<std::int32_t>(std::trunc(Val(weightText))));
}

double BmiHeightCm(const QString& cmText, const QString& feetText, const QString& inchText,
                   bool pounds) {
  if (!pounds) return Val(cmText);
  return FeetInchToCm(static_cast<std::int32_t>(Val(feetText)), static_cast<std::int32_t>(Val(inchText)));
}

HealthyRange CalcHealthyRange(double weight, double heightCm, bool pounds, const QString& unitText) {
  const QString fmt = pounds ? QStringLiteral("##0") : QStringLiteral("##0.0");
  const double h2 = heightCm * heightCm;
  auto line = [&](double bmi) {
    const double kg = h2 * bmi / 10000.0;
    return pounds ? double(KgDoubleToPound(kg)) : RoundOff(kg, 1);
  };
  HealthyRange r;
  r.normalTop = line(24.9);
  r.overLine = line(25.0);
  r.lowLine = line(18.5);
  r.standard = line(22.0);
  // The test uses 24.9, the excess is told from 25: the verdict never shows "by 0".
  if (weight > r.normalTop) {
    r.verdict = Caption(QStringLiteral("YOU_OVERWEIGHT")) + u' ' + Format(weight - r.overLine, fmt) +
                u' ' + unitText;
  } else if (weight > r.lowLine) {
    r.verdict = Caption(QStringLiteral("YOU_STWEIGHT"));
  } else {
    r.verdict = Caption(QStringLiteral("YOU_UNDERWEIGHT"));
  }
  r.standardWeight = Format(r.standard, fmt);
  r.standardDifference = Format(weight - r.standard, fmt);
  if (Val(r.standardDifference) > 0) r.standardDifference.prepend(u'+');
  return r;
}

// ---- dates ----

QDate AddMonthsMinusDay(const QDate& start, int months) {
  return AddMonthsToPeriodEnd(start, static_cast<std::int16_t>(months));
}

int PlanDays(const QDate& start, const QDate& end) {
  if (!start.isValid() || !end.isValid()) return 0;
  return static_cast<int>(start.daysTo(end)) + 1;
}

// ---- tables ----

PlanTables LoadPlanTables() {
  PlanTables t;
  auto key = [](const char* name, int i) { return QLatin1String(name) + QString::number(i); };
  for (int i = 0; i <= 25; ++i) {
    const QString text = Caption(key("PERIOD", i));
    if (!text.isEmpty()) t.periods.push_back({text, Caption(key("PERIOD_MONTHVAL", i))});
  }
  const int def = static_cast<int>(Val(Caption(QStringLiteral("PERIOD_DEFALT"))));
  t.periodDefault = def >= 0 && def < static_cast<int>(t.periods.size()) ? def : 0;
  for (int i = 0; i <= 9; ++i) {
    const QString name = Caption(key("FOOD_NAME", i));
    if (!name.isEmpty()) t.foods.push_back({name, Caption(key("FOOD_CAL", i)), Caption(key("FOOD_UNIT", i))});
    const QString amount = Caption(key("FOOD_AMOUNT", i));
    if (!amount.isEmpty()) t.portions.push_back({amount, Caption(key("FOOD_AMOUNT_VAL", i))});
  }
  for (int i = 0; i <= 24; ++i) {
    const QString cal = Caption(key("DIET_CAL", i));
    if (!cal.isEmpty()) t.reductions.push_back({cal, cal});
  }
  for (int i = 0;; ++i) {
    const QString name = Caption(key("ACTIVITY", i));
    if (name.isEmpty()) break;
    t.activities.push_back({name, Caption(key("ACTIVITY_VAL", i))});
  }
  return t;
}

// ---- the plan ----

QString AverageActivityText(const std::vector<ChartDayRecord>& days) {
  std::int64_t sum = 0;
  int taken = 0;
  for (auto it = days.rbegin(); it != days.rend() && taken < 10; ++it) {
    if (!charts::Counts(*it)) continue;
    sum += static_cast<std::int64_t>(Val(it->ACTIVITY));
    ++taken;
  }
  return Kcal(static_cast<double>(sum) / (taken == 0 ? 1 : taken));
}

QString ReadAverageActivity(VtDatabase& db, const QString& userId, const QDate& planStart) {
  QString first;
  QString last;
  if (!VTDB_GetDayMeasurementRange(db, userId, first, last, false)) return QString();
  const QString end = DateToYmd(planStart);
  if (first.isEmpty() || end.isEmpty() || first > end) return QStringLiteral("0");
  std::vector<ChartDayRecord> days;
  if (charts::CalcStepActMin(db, userId, first, end, days, true, false, false) < 0) return QString();
  return AverageActivityText(days);
}

QString DailyGapText(double lossKg, int days) {
  if (days <= 0) return QStringLiteral("0");
  return Kcal(lossKg * 7000.0 / days);
}

QString FoodKcalText(const QString& kcalOfUnit, const QString& portionTenths) {
  return Format(Val(kcalOfUnit) * Val(portionTenths) / 10.0, QStringLiteral("##0"));
}

QString MetsMinutes(double kcal, int metsTenths, double weightKg) {
  const double above = metsTenths / 10.0 - 1.0;
  // 1 MET is rest itself; the tables never hold it, and it would divide by zero.
  if (weightKg == 0 || above <= 0) return QStringLiteral("0");
  return Format(kcal * 60.0 / (above * weightKg), QStringLiteral("##0"));
}

QString WalkMinutes(double kcal, double weightKg) {
  if (weightKg == 0) return QStringLiteral("0");
  return Format(kcal * 60.0 / (weightKg * 2.8), kWhole);
}

QString RateMinutes(double kcal, double weightKg, double basalRate, double factor) {
  if (weightKg == 0 || basalRate == 0) return QStringLiteral("0");
  return Format(kcal * 60.0 * 24.0 / (weightKg * factor * basalRate), kWhole);
}

namespace {

// The target shown is the sum of the two shown figures, so the row adds up on screen.
MinuteRow SumRow(const QString& average, const QString& more) {
  MinuteRow row{average, more, {}, {}};
  const double target = Val(average) + Val(more);
  row.target = Kcal(target);
  row.weeklyTarget = Kcal(target * 7);
  return row;
}

}  // namespace

PlanResult ComputePlan(const PlanRequest& q) {
  PlanResult r;
  r.days = PlanDays(q.start, q.end);
  r.averageActivity = q.averageActivity.isEmpty() ? QStringLiteral("0") : q.averageActivity;
  r.dailyGap = DailyGapText(q.lossKg, r.days);
  r.foodReduction = q.foodReduction.isEmpty() ? QStringLiteral("0") : q.foodReduction;
  r.targetActivity = Kcal(Val(r.averageActivity) + Val(r.dailyGap));
  if (!q.skipFoodTest && Val(r.dailyGap) <= Val(r.foodReduction)) {
    r.message = QStringLiteral("DSIM-I-0001");
    r.stopped = true;
    return r;
  }
  r.moreActivity = Kcal(Val(r.dailyGap) - Val(r.foodReduction));
  r.targetActivity = Kcal(Val(r.averageActivity) + Val(r.moreActivity));

  const double average = Val(r.averageActivity);
  const double more = Val(r.moreActivity);
  const double w = q.weightKg;
  if (q.method == ActivityMethod::Mets) {
    r.walk = SumRow(WalkMinutes(average, w), WalkMinutes(more, w));
    r.activity = SumRow(MetsMinutes(average, q.metsAverage, w), MetsMinutes(more, q.metsMore, w));
    // A target row set to another activity than the two above it is its own figure.
    if (q.metsTarget != q.metsAverage || q.metsTarget != q.metsMore) {
      r.activity.target = MetsMinutes(Val(r.targetActivity), q.metsTarget, w);
      r.activity.weeklyTarget = Kcal(Val(r.activity.target) * 7);
    }
  } else {
    const double b = GetBasalRatePerKg(q.gender, q.age);
    r.walk = SumRow(RateMinutes(average, w, b, 3.5), RateMinutes(more, w, b, 3.5));
    r.fastWalk = SumRow(RateMinutes(average, w, b, 6.0), RateMinutes(more, w, b, 6.0));
    r.activity = r.fastWalk;
  }
  return r;
}

// ---- checks ----

bool StartWeightInBounds(double weight, bool pounds) {
  return weight >= 10 && weight <= (pounds ? 700 : 350);
}

CheckResult CheckPlanFigures(const QString& startWeight, const QString& targetWeight,
                             const QString& loss, bool pounds) {
  const QString notNumber = QStringLiteral("DSIM-I-0002");
  const QString order = QStringLiteral("DSIM-I-0003");
  const QString bounds = QStringLiteral("DSIM-I-0004");
  if (!IsNumericVb(startWeight)) return {notNumber, PlanField::StartWeight};
  if (!IsNumericVb(targetWeight)) return {notNumber, PlanField::TargetWeight};
  if (!IsNumericVb(loss)) return {notNumber, PlanField::Loss};
  const double s = CDblVb(startWeight);
  const double t = CDblVb(targetWeight);
  const double l = CDblVb(loss);
  if (t >= s) return {order, PlanField::TargetWeight};
  if (l <= 0) return {order, PlanField::Loss};
  if (t <= 0) return {order, PlanField::TargetWeight};
  if (s >= 0.1 && !StartWeightInBounds(s, pounds)) return {bounds, PlanField::StartWeight};
  if (l > kMaxLoss) return {bounds, PlanField::Loss};
  return {};
}

// ---- the saved plan ----

bool SaveWeightPlan(VtDatabase& db, const WeightPlanRecord& record) {
  InstallationLock lock(db.path());
  if (!AcquireForWriting(lock)) return false;
  bool ok = VTDB_BeginTrans(db);
  if (ok) {
    ok = SetWeightPlan(db, record) && VTDB_CommitTrans(db);
    if (!ok) VTDB_RollbackTrans(db);
  }
  lock.release();
  if (!ok) {
    WriteTrace(QStringLiteral("2"), QStringLiteral("SaveWeightPlan"), QStringLiteral("SetWeightPlan Error"));
    MessageDialog(QStringLiteral("DSIM-C-0001"));
  }
  return ok;
}

bool LoadWeightPlan(VtDatabase& db, const QString& userId, WeightPlanRecord& record) {
  record = WeightPlanRecord{};
  if (!GetWeightPlan(db, record, userId)) return false;
  return !record.StartDate.isEmpty();
}

}  // namespace plan
