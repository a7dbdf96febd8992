#include "plan/weight_form.h"

#include <QDir>
#include <QSaveFile>
#include <cmath>

#include "charts/day_stats.h"
#include "frame/frame.h"
#include "store/store.h"

namespace plan {

namespace {

const QString kSection = QStringLiteral("SIMULATION");
QString Caption(const QString& key) { return GetIniCaption(kSection, key); }

enum class ButtonEvent { InputChanged, ReCalcPassed, Saved, Stopped };

PlanButtons ButtonsAfter(ButtonEvent e) {
  switch (e) {
    case ButtonEvent::ReCalcPassed: return {false, true, false, true, true};
    case ButtonEvent::Saved: return {true, false, false, false, true};
    case ButtonEvent::InputChanged:
    case ButtonEvent::Stopped: break;
  }
  return {false, false, true, true, false};
}

}  // namespace

SimulationWeightLogic::SimulationWeightLogic(VtDatabase& db, const QString& userId, const QDate& today)
    : db_(db), userId_(userId), today_(today) {}

QString SimulationWeightLogic::weightFormat() const {
  return poundMode ? QStringLiteral("##0") : QStringLiteral("##0.0");
}
QString SimulationWeightLogic::targetFormat() const {
  return poundMode ? QStringLiteral("0") : QStringLiteral("0.0");
}

int SimulationWeightLogic::monthsOf(int position) const {
  if (position < 0 || position >= static_cast<int>(tables_.periods.size())) return 0;
  return static_cast<int>(Val(tables_.periods[static_cast<size_t>(position)].value));
}

bool SimulationWeightLogic::open() {
  loaded = false;
  restored = false;
  planShown = false;
  failedField = PlanField::None;
  englishMode = IsEnglishEdition();
  tables_ = LoadPlanTables();
  user_ = UserRecord{};
  if (!VTDB_GetUserInfoFromUserId(db_, userId_, user_)) return false;

  const QString fn = user_.FIRST_NAME.trimmed();
  if (englishMode) {
    QStringList parts;
    for (const QString& p : {fn, user_.MIDDLE_NAME.trimmed(), user_.LAST_NAME.trimmed()})
      if (!p.isEmpty()) parts << p;
    userName = Caption(QStringLiteral("CAPTION_USER_NAME")) + u' ' + parts.join(u' ');
  } else {
    userName = fn + u' ' + Caption(QStringLiteral("CAPTION_SAMA"));
  }
  fillFromDays();

  startDate = today_.addDays(1);
  period = tables_.periodDefault;
  endDate = AddMonthsMinusDay(startDate, monthsOf(period));
  startWeight = Format(Val(userWeight), weightFormat());
  targetWeight = Format(Val(userWeight) - 1, targetFormat());
  loss = Format(1.0, weightFormat());
  startHeight = poundMode ? heightFeet : heightCm;
  startHeightInch = poundMode ? heightInch : QString();
  diet = false;
  byFood = true;
  food = portion = reduction = -1;
  method = ActivityMethod::Mets;
  activityRow[0] = activityRow[1] = activityRow[2] = 0;
  restorePlan();

  loaded = true;
  foodKcal = food >= 0 && portion >= 0
                 ? FoodKcalText(tables_.foods[static_cast<size_t>(food)].kcal,
                                tables_.portions[static_cast<size_t>(portion)].value)
                 : QString();
  computeBodyFigures();
  // The English opening shows the activity a plan takes even when eating less would do.
  const bool ran = runPlan(englishMode);
  buttons = ButtonsAfter(!ran ? ButtonEvent::Stopped : restored ? ButtonEvent::Saved : ButtonEvent::ReCalcPassed);
  return true;
}

void SimulationWeightLogic::fillFromDays() {
  QString first;
  QString last;
  VTDB_GetDayMeasurementRange(db_, userId_, first, last, false);
  const QDate shown = last.isEmpty() ? today_ : YmdToDate(last);
  displayDate = shown;
  const QDate lookBack = last.isEmpty() ? today_ : shown.addMonths(-1);
  std::vector<ChartDayRecord> days;
  charts::CalcStepActMin(db_, userId_, DateToYmd(lookBack), DateToYmd(shown), days, false, false, false);
  const ChartDayRecord* newest = nullptr;
  for (auto it = days.rbegin(); it != days.rend() && !newest; ++it)
    if (it->NewestOfDay) newest = &*it;
  hasDays = newest != nullptr;

  const QString genderText = newest ? newest->GENDAR : user_.GENDAR.trimmed();
  gender = static_cast<int>(Val(genderText));
  age = static_cast<int>(Val(newest ? newest->AGE : user_.AGE.trimmed()));
  sexText = Caption(gender == 0 ? QStringLiteral("CAPTION_MALE") : QStringLiteral("CAPTION_FEMALE"));
  ageText = QString::number(age);
  poundMode = newest && newest->SELECT_UNIT == QLatin1String("1");
  weightUnit = Caption(poundMode ? QStringLiteral("CAPTION_LB") : QStringLiteral("CAPTION_KG"));
  if (!newest) {
    heightCm = heightFeet = heightInch = QStringLiteral("0");
    userWeight = QStringLiteral("0.0");
    return;
  }
  heightCm = newest->HEIGHT_CM;
  heightFeet = newest->HEIGHT_FEET;
  heightInch = newest->HEIGHT_INCH;
  userWeight = poundMode ? Format(newest->WEIGHT_PAUND, QStringLiteral("0"))
                         : Format(newest->WEIGHT_KG, QStringLiteral("0.0"));
}

void SimulationWeightLogic::restorePlan() {
  WeightPlanRecord saved;
  if (!LoadWeightPlan(db_, userId_, saved)) return;
  restored = true;
  const int p = static_cast<int>(Val(saved.PeriodIndex));
  if (!saved.PeriodIndex.isEmpty() && p >= 0 && p < static_cast<int>(tables_.periods.size())) period = p;
  if (const QDate s = YmdToDate(saved.StartDate); s.isValid()) startDate = s;
  if (const QDate e = YmdToDate(saved.EndDate); e.isValid()) endDate = e;
  startWeight = saved.StartWeight;
  targetWeight = saved.TargetWeight;
  loss = saved.Loss;
  diet = saved.DietOption == QLatin1String("True");
  auto position = [](const QString& text, size_t size) {
    const int i = text.isEmpty() ? -1 : static_cast<int>(Val(text));
    return i >= 0 && i < static_cast<int>(size) ? i : -1;
  };
  food = position(saved.FoodIndex, tables_.foods.size());
  portion = position(saved.PortionIndex, tables_.portions.size());
  reduction = position(saved.ReductionIndex, tables_.reductions.size());
  byFood = reduction < 0;
  if (!englishMode) return;
  // The English screen follows the unit of the user's newest day; a plan saved in the
  // other unit is shown converted.
  const bool savedPounds = saved.PoundFlag == QLatin1String("1");
  if (savedPounds != poundMode) {
    auto convert = [&](const QString& text, const QString& fmt) {
      if (poundMode) return Format(KgDoubleToPound(Val(text)), fmt);
      return Format(PoundToKgExact(static_cast<std::int32_t>(Val(text))), fmt);
    };
    startWeight = convert(startWeight, weightFormat());
    targetWeight = convert(targetWeight, targetFormat());
    loss = Format(Val(startWeight) - Val(targetWeight), weightFormat());
  } else {
    startHeight = saved.StartHeight;
    startHeightInch = saved.StartHeightInch;
  }
}

void SimulationWeightLogic::computeBodyFigures() {
  const double h = BmiHeightCm(startHeight, startHeight, startHeightInch, poundMode);
  bmi = BmiText(BmiWeightKg(startWeight, poundMode), h);
  targetBmi = BmiText(BmiWeightKg(targetWeight, poundMode), h);
  range = CalcHealthyRange(Val(startWeight), h, poundMode, weightUnit);
}

PlanRequest SimulationWeightLogic::request(bool skipFoodTest) const {
  PlanRequest q;
  q.start = startDate;
  q.end = endDate;
  q.lossKg = PlanWeightKg(loss, poundMode);
  q.weightKg = PlanWeightKg(startWeight, poundMode);
  q.gender = gender;
  q.age = age;
  q.averageActivity = averageActivity_;
  if (diet && byFood) {
    q.foodReduction = foodKcal.isEmpty() ? QStringLiteral("0") : foodKcal;
  } else if (diet && reduction >= 0) {
    q.foodReduction = tables_.reductions[static_cast<size_t>(reduction)].value;
  }
  q.method = method;
  auto mets = [&](int row) {
    const int i = activityRow[row];
    if (i < 0 || i >= static_cast<int>(tables_.activities.size())) return 0;
    return static_cast<int>(Val(tables_.activities[static_cast<size_t>(i)].value));
  };
  q.metsAverage = mets(0);
  q.metsMore = mets(1);
  q.metsTarget = mets(2);
  q.skipFoodTest = skipFoodTest;
  return q;
}

bool SimulationWeightLogic::runPlan(bool skipFoodTest) {
  averageActivity_ = ReadAverageActivity(db_, userId_, startDate);
  result = ComputePlan(request(skipFoodTest));
  planShown = true;
  if (result.stopped) {
    lastMessage = result.message;
    MessageDialog(result.message);
    return false;
  }
  return true;
}

void SimulationWeightLogic::refreshActivityRows() {
  if (!loaded || !planShown || result.stopped) return;
  result = ComputePlan(request(true));
}

void SimulationWeightLogic::inputChanged() {
  if (!loaded) return;
  buttons = ButtonsAfter(ButtonEvent::InputChanged);
}

bool SimulationWeightLogic::refuse(const QString& code, PlanField field) {
  failedField = field;
  lastMessage = code;
  MessageDialog(code);
  return false;
}

// ---- inputs ----

void SimulationWeightLogic::startDateChanged(const QDate& date) {
  if (!loaded || !date.isValid() || date == startDate) return;
  // A plan whose end was set by hand (no period chosen) keeps its length.
  const qint64 length = startDate.daysTo(endDate);
  startDate = date;
  endDate = monthsOf(period) > 0 ? AddMonthsMinusDay(startDate, monthsOf(period)) : startDate.addDays(length);
  inputChanged();
}

void SimulationWeightLogic::periodChanged(int position) {
  if (!loaded || position == period) return;
  period = position;
  endDate = AddMonthsMinusDay(startDate, monthsOf(period));
  inputChanged();
}

void SimulationWeightLogic::endDateChanged(const QDate& date) {
  if (!loaded || !date.isValid() || date == endDate) return;
  endDate = date;
  inputChanged();
}

bool SimulationWeightLogic::startWeightLeft(const QString& text) {
  failedField = PlanField::None;
  lastMessage.clear();
  if (!IsNumericVb(text)) return refuse(QStringLiteral("DSIM-I-0002"), PlanField::StartWeight);
  const QString before = startWeight;
  startWeight = Format(CDblVb(text), weightFormat());
  const double s = Val(startWeight);
  if (s >= 0.1 && !StartWeightInBounds(s, poundMode))
    return refuse(QStringLiteral("DSIM-I-0004"), PlanField::StartWeight);
  const double t = Val(targetWeight);
  if (IsNumericVb(targetWeight) && t > 0 && t < s) loss = Format(s - t, weightFormat());
  computeBodyFigures();
  if (startWeight != before) inputChanged();
  return true;
}

bool SimulationWeightLogic::targetWeightLeft(const QString& text) {
  failedField = PlanField::None;
  lastMessage.clear();
  if (!IsNumericVb(text)) return refuse(QStringLiteral("DSIM-I-0002"), PlanField::TargetWeight);
  const QString formatted = Format(CDblVb(text), targetFormat());
  if (Val(formatted) >= Val(startWeight)) return refuse(QStringLiteral("DSIM-I-0003"), PlanField::TargetWeight);
  const QString before = targetWeight;
  targetWeight = formatted;
  loss = Format(Val(startWeight) - Val(targetWeight), weightFormat());
  computeBodyFigures();
  if (targetWeight != before) inputChanged();
  return true;
}

bool SimulationWeightLogic::lossLeft(const QString& text) {
  failedField = PlanField::None;
  lastMessage.clear();
  if (!IsNumericVb(text)) return refuse(QStringLiteral("DSIM-I-0002"), PlanField::Loss);
  const QString formatted = Format(CDblVb(text), weightFormat());
  const double l = Val(formatted);
  if (l <= 0) return refuse(QStringLiteral("DSIM-I-0002"), PlanField::Loss);
  if (l > kMaxLoss) return refuse(QStringLiteral("DSIM-I-0004"), PlanField::Loss);
  if (l >= Val(startWeight)) return refuse(QStringLiteral("DSIM-I-0003"), PlanField::Loss);
  const QString before = loss;
  loss = formatted;
  targetWeight = Format(Val(startWeight) - l, targetFormat());
  computeBodyFigures();
  if (loss != before) inputChanged();
  return true;
}

void SimulationWeightLogic::startHeightLeft(const QString& text) {
  if (poundMode || text == startHeight) return;
  startHeight = text.trimmed();
  computeBodyFigures();
  inputChanged();
}

void SimulationWeightLogic::dietOptionChanged(bool on) {
  if (!loaded || on == diet) return;
  diet = on;
  byFood = true;
  food = portion = reduction = -1;
  foodKcal.clear();
  inputChanged();
}

void SimulationWeightLogic::foodMethodChosen(bool chooseFood) {
  if (!loaded || !diet || chooseFood == byFood) return;
  byFood = chooseFood;
  if (byFood) reduction = -1;
  else {
    food = portion = -1;
    foodKcal.clear();
  }
  inputChanged();
}

void SimulationWeightLogic::foodChanged(int foodPosition, int portionPosition) {
  if (!loaded) return;
  food = foodPosition;
  portion = portionPosition;
  const bool both = food >= 0 && food < static_cast<int>(tables_.foods.size()) && portion >= 0 &&
                    portion < static_cast<int>(tables_.portions.size());
  foodKcal = both ? FoodKcalText(tables_.foods[static_cast<size_t>(food)].kcal,
                                 tables_.portions[static_cast<size_t>(portion)].value)
                  : QString();
  inputChanged();
}

void SimulationWeightLogic::reductionChanged(int position) {
  if (!loaded || position == reduction) return;
  reduction = position;
  inputChanged();
}

void SimulationWeightLogic::activityChanged(int row, int position) {
  if (row < 0 || row > 2) return;
  activityRow[row] = position;
  refreshActivityRows();
}

void SimulationWeightLogic::activityKindChanged(ActivityMethod m) {
  if (!loaded || m == method) return;
  method = m;
  if (method == ActivityMethod::Mets) activityRow[0] = activityRow[1] = activityRow[2] = 0;
  refreshActivityRows();
}

// ---- buttons ----

bool SimulationWeightLogic::reCalc() {
  const CheckResult check = CheckPlanFigures(startWeight, targetWeight, loss, poundMode);
  lastMessage.clear();
  if (!check.ok()) return refuse(check.code, check.field);
  failedField = PlanField::None;
  if (diet && ((byFood && foodKcal.isEmpty()) || (!byFood && reduction < 0))) {
    lastMessage = QStringLiteral("FOODERROR");
    if (DialogInterface* d = GetDialogInterface())
      d->showMessage(Caption(QStringLiteral("CAPTION_TITLE")), Caption(QStringLiteral("FOODERROR")),
                     DialogIcon::Information);
    return false;
  }
  computeBodyFigures();
  const bool ran = runPlan(false);
  buttons = ButtonsAfter(ran ? ButtonEvent::ReCalcPassed : ButtonEvent::Stopped);
  return ran;
}

WeightPlanRecord SimulationWeightLogic::record() const {
  WeightPlanRecord r;
  r.UserId = userId_;
  r.PeriodIndex = period >= 0 ? QString::number(period) : QString();
  r.StartDate = DateToYmd(startDate);
  r.EndDate = DateToYmd(endDate);
  r.TargetWeight = targetWeight;
  r.Loss = loss;
  r.DietOption = diet ? QStringLiteral("True") : QStringLiteral("False");
  if (diet && byFood) {
    r.FoodIndex = food >= 0 ? QString::number(food) : QString();
    r.PortionIndex = portion >= 0 ? QString::number(portion) : QString();
  }
  if (diet && !byFood && reduction >= 0) r.ReductionIndex = QString::number(reduction);
  r.StartWeight = startWeight;
  r.StartHeight = startHeight;
  r.StartHeightInch = poundMode ? startHeightInch : QString();
  r.PoundFlag = poundMode ? QStringLiteral("1") : QStringLiteral("0");
  return r;
}

bool SimulationWeightLogic::save() {
  if (!SaveWeightPlan(db_, record())) return false;
  buttons = ButtonsAfter(ButtonEvent::Saved);
  return true;
}

PlanFigures SimulationWeightLogic::figures() const {
  PlanFigures f;
  f.planStart = startDate;
  f.planEnd = endDate;
  f.now = displayDate;
  f.startWeight = startWeight;
  f.targetWeight = targetWeight;
  f.nowWeight = userWeight;
  const double h = BmiHeightCm(startHeight, startHeight, startHeightInch, poundMode);
  f.startBmi = bmi;
  f.targetBmi = targetBmi;
  f.nowBmi = hasDays ? BmiText(BmiWeightKg(userWeight, poundMode), h) : QString();
  f.weightUnit = weightUnit;
  f.pounds = poundMode;
  f.heightText = poundMode ? startHeight + u' ' + Caption(QStringLiteral("CAPTION_FEET")) + u' ' + startHeightInch +
                                 u' ' + Caption(QStringLiteral("CAPTION_INCH"))
                           : startHeight + u' ' + Caption(QStringLiteral("CAPTION_CM"));
  return f;
}

// ---- files ----

bool ReplaceTextFile(const QString& path, const QStringList& lines) {
  QSaveFile f(path);
  if (!f.open(QIODevice::WriteOnly)) return false;
  QByteArray bytes;
  for (const QString& l : lines) bytes += l.toUtf8() + "\r\n";
  if (f.write(bytes) != bytes.size()) {
    f.cancelWriting();
    return false;
  }
  return f.commit();
}

QString WriteBmiFile(const QString& folder, const QString& bmiText) {
  const QString path = JoinPath(folder, QStringLiteral("bmi.txt"));
  return ReplaceTextFile(path, {QStringLiteral("700"), bmiText}) ? path : QString();
}

QString WriteSimSummary(const QString& folder, const WeightPlanRecord& plan) {
  const QString path = JoinPath(folder, QStringLiteral("sim.txt"));
  return ReplaceTextFile(path, {plan.StartDate + u',' + plan.StartWeight, plan.EndDate + u',' + plan.TargetWeight})
             ? path
             : QString();
}

}  // namespace plan
