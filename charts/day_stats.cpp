#include "charts/day_stats.h"

#include <array>
#include <cmath>
#include <exception>

#include "frame/config.h"
#include "frame/helpers.h"
#include "frame/trace.h"
#include "frame/vbformat.h"
#include "store/store.h"

namespace charts {

namespace {

const QString kCalcName = QStringLiteral("CalcStepActMin");

void TraceError(const QString& name, const QString& message) {
  WriteTrace(QStringLiteral("2"), name, message);
}

bool IsChartHundred(int h) { return h >= 1 && h <= 9 && h != 7; }

// Minutes of a 4-second count through the 16-bit product; false on overflow.
bool MinutesOfCount(const QString& countText, float& minutes) {
  const QString t = countText.trimmed();
  if (t.isEmpty()) return true;
  std::int32_t product = 0;
  try {
    product = std::int32_t(CIntVb(t)) * 4;
  } catch (const std::exception&) {
    return false;
  }
  if (product > 32767 || product < -32768) return false;
  const double rounded = Val(Format(product / 60.0, QStringLiteral("#0.0")));
  if (rounded > 0) minutes = float(rounded);
  return true;
}

}  // namespace

ChartFamily FamilyOf(int chartType) {
  if (chartType == 5) return ChartFamily::Daily;
  if (chartType < 100 || chartType > 999) return ChartFamily::Unknown;
  if (!IsChartHundred(chartType / 100)) return ChartFamily::Unknown;
  switch (chartType % 100) {
    case 0: return ChartFamily::Daily;
    case 1: return ChartFamily::Weekly;
    case 2: return ChartFamily::FourWeek;
    default: return ChartFamily::Unknown;
  }
}

bool IsKnownChartType(int chartType) { return FamilyOf(chartType) != ChartFamily::Unknown; }

bool UsesExclusion(int chartType) {
  if (chartType >= 2 && chartType <= 5) return true;
  const ChartFamily f = FamilyOf(chartType);
  return f == ChartFamily::Weekly || f == ChartFamily::FourWeek;
}

ExclusionSettings ReadExclusionSettings() {
  ExclusionSettings s;
  Ini_GetExcludeSettings(s.startingDay, s.endingDay, s.lowStepCount);
  return s;
}

DayListRules MakeDayListRules(const ExclusionSettings& settings, bool useExclusion,
                              bool lowStepOnly, const QString& firstMeasured,
                              const QString& lastMeasured) {
  DayListRules r;
  if (!useExclusion) return r;
  const QString threshold = settings.lowStepCount.trimmed();
  r.threshold = threshold.isEmpty() ? QStringLiteral("-1") : threshold;
  if (!lowStepOnly) {
    if (settings.startingDay) r.firstMeasuredDay = firstMeasured;
    if (settings.endingDay) r.lastMeasuredDay = lastMeasured;
  }
  return r;
}

void ApplyModerateDefaults(QString& moderateFrom, QString& moderateTo) {
  if (moderateFrom.isEmpty()) moderateFrom = QStringLiteral("4");
  if (moderateTo.isEmpty()) moderateTo = QStringLiteral("7");
}

bool ComputeModerateMinutes(ChartDayRecord& day) {
  float moderate = 0.0f;
  float vigorous = 0.0f;
  if (!MinutesOfCount(day.MODERATE, moderate) || !MinutesOfCount(day.VIGOROUS, vigorous))
    return false;
  if (moderate > 0) day.ModerateMinutes = moderate;
  if (vigorous > 0) day.VigorousMinutes = vigorous;
  return true;
}

QString ExerciseOf(const ChartDayRecord& day) {
  const QString stored = day.EXERCISE.trimmed();
  if (!stored.isEmpty()) return stored;
  std::array<std::int32_t, 6> counts{};
  for (int i = 0; i < 6; ++i) counts[std::size_t(i)] = std::int32_t(Val(day.ACTIVITY_LEVEL[std::size_t(i + 4)]));
  return QString::number(ExerciseFromLevels(counts), 'g', 15);
}

QString CalorieTargetFromWeight(const QString& weightShown) {
  return QString::number(qint64(std::trunc(Val(weightShown) * 5.0 + 0.5)));
}

std::vector<ChartDayRecord> MakeEmptyDays(const QDate& start, const QDate& end) {
  std::vector<ChartDayRecord> days;
  if (!start.isValid() || !end.isValid() || end < start) return days;
  days.resize(std::size_t(start.daysTo(end) + 1));
  QDate d = start;
  for (ChartDayRecord& day : days) {
    day.MEASUREMENT_DAY = DateToYmd(d);
    day.WEEK_DAY = QString::number(d.dayOfWeek());
    day.ExcludeFlag = QStringLiteral("1");
    d = d.addDays(1);
  }
  return days;
}

int FillDayList(std::vector<ChartDayRecord>& days, const std::vector<ChartDayRecord>& rows,
                const DayListRules& rules) {
  if (days.empty()) return 0;
  const QDate first = YmdToDate(days.front().MEASUREMENT_DAY);
  const double threshold = Val(rules.threshold);
  std::vector<bool> filled(days.size(), false);
  int found = 0;
  for (const ChartDayRecord& row : rows) {
    if (!row.NewestOfDay) continue;
    const QDate d = YmdToDate(row.MEASUREMENT_DAY);
    if (!d.isValid()) continue;
    const qint64 index = first.daysTo(d);
    if (index < 0 || index >= qint64(days.size()) || filled[std::size_t(index)]) continue;
    ChartDayRecord& day = days[std::size_t(index)];
    // The element keeps its own day texts; the row's are the same day.
    day = row;
    filled[std::size_t(index)] = true;
    ++found;
    if (!rules.firstMeasuredDay.isEmpty() && day.MEASUREMENT_DAY == rules.firstMeasuredDay)
      day.ExcludeFlag = QStringLiteral("1");
    if (!rules.lastMeasuredDay.isEmpty() && day.MEASUREMENT_DAY == rules.lastMeasuredDay)
      day.ExcludeFlag = QStringLiteral("1");
    if (threshold > Val(day.STEP_COUNT)) day.ExcludeFlag = QStringLiteral("1");
  }
  return found;
}

int CalcStepActMin(VtDatabase& db, const QString& userId, const QString& startDate,
                   const QString& endDate, std::vector<ChartDayRecord>& days, bool useExclusion,
                   bool withTimeBlock, bool lowStepOnly) {
  if (startDate > endDate) return 0;

  QString firstMeasured;
  QString lastMeasured;
  if (!VTDB_GetDayMeasurementRange(db, userId, firstMeasured, lastMeasured, false)) {
    TraceError(kCalcName, QStringLiteral("VTDB_GetDayMeasurementRange Error"));
    return -1;
  }
  const DayListRules rules = MakeDayListRules(ReadExclusionSettings(), useExclusion, lowStepOnly,
                                              firstMeasured, lastMeasured);

  days = MakeEmptyDays(YmdToDate(startDate), YmdToDate(endDate));

  std::vector<ChartDayRecord> rows;
  if (VTDB_GetChartData(db, userId, startDate, endDate, rules.threshold, rows) < 0) {
    TraceError(kCalcName, QStringLiteral("VTDB_GetChartData Error"));
    return -1;
  }

  QString moderateFrom;
  QString moderateTo;
  bool moderateRead = false;
  for (ChartDayRecord& row : rows) {
    if (!row.NewestOfDay) continue;
    if (!moderateRead) {
      Ini_GetModerate(moderateFrom, moderateTo);
      ApplyModerateDefaults(moderateFrom, moderateTo);
      moderateRead = true;
    }
    if (VTDB_GetModerate(db, row.RECEIVE_ID, row.SEQ_NUM, moderateFrom, moderateTo, row) < 0) {
      TraceError(kCalcName, QStringLiteral("VTDB_GetModerate Error"));
      return -1;
    }
    if (!ComputeModerateMinutes(row)) {
      TraceError(kCalcName, QStringLiteral("Overflow: MODERATE=%1 VIGOROUS=%2 (%3)")
                                .arg(row.MODERATE, row.VIGOROUS, row.MEASUREMENT_DAY));
      return -1;
    }
    if (withTimeBlock) {
      TimeBlockRecord block;
      if (!VTDB_GetTimeMeasurementDayBlock(db, row.RECEIVE_ID, row.SEQ_NUM, block)) {
        TraceError(kCalcName, QStringLiteral("VTDB_GetTimeMeasurementDayBlock Error"));
        return -1;
      }
      row.ACT_LEVEL_BLOCK = block.ACT_LEVEL_BLOCK.trimmed();
    }
    row.EXERCISE = ExerciseOf(row);
  }
  return FillDayList(days, rows, rules);
}

bool CheckDataChronology(const std::vector<ChartDayRecord>& days) {
  const ChartDayRecord* prev = nullptr;
  for (const ChartDayRecord& d : days) {
    if (!d.NewestOfDay) continue;
    if (prev) {
      if (d.RECEIVE_ID < prev->RECEIVE_ID) return false;
      if (d.RECEIVE_ID == prev->RECEIVE_ID && Val(d.SEQ_NUM) < Val(prev->SEQ_NUM)) return false;
    }
    prev = &d;
  }
  return true;
}

int GetUnitFlag(VtDatabase& db, const QString& userId) {
  const QString name = QStringLiteral("GetUnitFlag");
  QString first;
  QString last;
  if (!VTDB_GetDayMeasurementRange(db, userId, first, last, false) || last.isEmpty()) {
    TraceError(name, QStringLiteral("GetDataRange Error"));
    return -1;
  }
  QString receiveId;
  QString seqNum;
  if (!VTDB_GetDayMeasurementReceiveId(db, userId, last, receiveId, seqNum, true)) {
    TraceError(name, QStringLiteral("VTDB_GetDayMeasurementReceiveId Error"));
    return -1;
  }
  DayRecord day;
  if (receiveId.isEmpty() || !VTDB_GetDayMeasurement(db, receiveId, seqNum, day)) {
    TraceError(name, QStringLiteral("VTDB_GetDayMeasurement Error"));
    return -1;
  }
  return int(Val(day.SELECT_UNIT.trimmed()));
}

void ApplyDisplayUnit(std::vector<ChartDayRecord>& days, int unitFlag) {
  for (ChartDayRecord& d : days) {
    if (!d.NewestOfDay) continue;
    if (unitFlag != 0) {
      d.HeightShown = d.HEIGHT_FEET + QStringLiteral(" \" ") + d.HEIGHT_INCH + QStringLiteral("'");
      d.WeightShown = d.WEIGHT_PAUND;
      d.DistanceShown = d.DISTANCE_MILE;
    } else {
      d.HeightShown = d.HEIGHT_CM;
      d.WeightShown = d.WEIGHT_KG;
      d.DistanceShown = d.DISTANCE_KM;
    }
  }
}

bool SetGraphDataUnit(VtDatabase& db, const QString& userId, std::vector<ChartDayRecord>& days) {
  const int flag = GetUnitFlag(db, userId);
  if (flag < 0) {
    TraceError(QStringLiteral("SetGraphDataUnit"), QStringLiteral("CheckGraphUnitFlag Error"));
    return false;
  }
  ApplyDisplayUnit(days, flag);
  return true;
}

}  // namespace charts
