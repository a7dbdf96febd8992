// From recorder pages and management blocks to the column texts of the database.
#include "receive/day_rows.h"

#include <array>

#include "frame/config.h"
#include "frame/helpers.h"
#include "frame/vbformat.h"

namespace {

QString num(qint64 v) { return QString::number(v); }
QString flag(bool on) { return on ? QStringLiteral("1") : QStringLiteral("0"); }

QString eventText(const QTime& t) {
  return IsNoEventTime(t) ? QStringLiteral("9999") : t.toString(QStringLiteral("HHmm"));
}

QString computedExercise(const FlashData& d) {
  const std::array<std::int32_t, 6> counts = {d.Level4, d.Level5, d.Level6, d.Level7, d.Level8, d.Level9};
  return NumberText(ExerciseFromLevels(counts));
}

// Slot texts by raw value, built once: nibble kinds and METS.
const std::array<QString, 256>& nibbleTexts() {
  static const std::array<QString, 256> t = [] {
    std::array<QString, 256> a;
    for (int b = 0; b < 256; ++b) {
      if (b == 0) a[0] = QStringLiteral("0");
      else if (b == 1) a[1] = QStringLiteral("0.5");
      else if (b <= 10) a[static_cast<size_t>(b)] = QString::number(b - 1);
      else a[static_cast<size_t>(b)] = QStringLiteral("-1");
    }
    return a;
  }();
  return t;
}

const std::array<QString, 256>& metsTexts() {
  static const std::array<QString, 256> t = [] {
    std::array<QString, 256> a;
    for (int b = 0; b < 256; ++b) {
      if (b == 0) a[0] = QStringLiteral("0");
      else if (b <= 90) a[static_cast<size_t>(b)] = Format(b / 10.0, QStringLiteral("#0.0"));
      else a[static_cast<size_t>(b)] = QStringLiteral("-1");
    }
    return a;
  }();
  return t;
}

}  // namespace

DayRecord DayMeasurementRow(const QString& receiveId, int seqNum, const QString& userId, int page,
                            int startPage, FlashData& day, const FlashManage& manage, RecorderKind kind) {
  const QString version = manage.FixedData.trimmed();
  const bool familyA = version == Ini_GetPmAlNumber();
  const bool zrKt = !familyA && (kind == RecorderKind::BrioKt || kind == RecorderKind::BrioZr);
  const QString zero = QStringLiteral("0");

  DayRecord r;
  r.RECEIVE_ID = receiveId;
  r.SEQ_NUM = num(seqNum);
  r.START_PAGE = num(startPage);
  r.PAGE = num(page);
  r.MEASUREMENT_DAY = r.RAW_MEASUREMENT_DAY = IsNoDate(day.bcDate) ? QString() : DateToYmd(day.bcDate);
  r.WEEK_DAY = day.bcDate.isValid() ? num(day.bcDate.dayOfWeek()) : QString();
  r.USER_ID = userId;
  r.GENDAR = num(day.Gender);
  r.AGE = num(day.Age);
  r.HEIGHT_CM = num(day.HeightCm);
  CmToFeetInch(r.HEIGHT_CM, r.HEIGHT_FEET, r.HEIGHT_INCH);
  r.WEIGHT_KG = familyA ? Format(static_cast<double>(day.WeightKg), QStringLiteral("##0.0"))
                        : Format(QStringLiteral("%1.%2").arg(day.WeightKg).arg(day.WeightFraction),
                                 QStringLiteral("##0.0"));
  const bool poundFromKg = version == Ini_GetPmBrioJpnNumber() || version == Ini_GetPmBrioKt200Number() ||
                           version == Ini_GetPmBrioKt014Number() || day.WeightPound > 999;
  r.WEIGHT_PAUND = poundFromKg ? num(KgToPound(day.WeightKg)) : num(day.WeightPound);
  r.TARGET_CAL = num(day.TargetActivity);
  r.ENERGY_EXPENDITURE = num(day.TotalEnergy);
  r.ACTIVITY = num(day.Activity);
  r.STEP_COUNT = num(day.StepCount);
  for (int i = 0; i <= 9; ++i) r.ACTIVITY_LEVEL[static_cast<size_t>(i)] = num(day.level(i));
  r.ACTIVITY_LEVEL_SMALL = num(day.LevelSmall);
  for (int i = 1; i <= 10; ++i) r.EVENT[static_cast<size_t>(i - 1)] = eventText(day.event(i));

  const qint64 levelSum = qint64(day.Level4) + day.Level5 + day.Level6 + day.Level7 + day.Level8 + day.Level9;
  if (familyA) {
    r.LOWER_BOUND = QStringLiteral("4");
    r.UPPER_BOUND = QStringLiteral("9");
    r.TARGET_TIME = r.PACE_CM = r.PACE_FEET = r.PACE_INCH = r.TARGET_STEP = zero;
    r.MEASUREMENT_MODE = zero;
    r.ACCUMULATION_TIME = num(levelSum);
    r.DISTANCE_KM = r.DISTANCE_MILE = r.SELECT_TARGET = zero;
    r.PEDOMERA = zero;
  } else {
    // A distance this high with a plausible step count is a carry between the two
    // counters: it belongs to the range minutes.
    if (day.Distance >= 665 && day.StepCount <= 70000) {
      day.Distance -= 665;
      day.RangeMinutes = day.RangeMinutes >= 65535 ? 0 : day.RangeMinutes + 1;
    }
    r.LOWER_BOUND = zrKt ? QStringLiteral("4") : num(day.RangeLower);
    r.UPPER_BOUND = zrKt ? QStringLiteral("9") : num(day.RangeUpper);
    r.TARGET_TIME = zrKt ? zero : num(day.TargetTime);
    r.PACE_CM = num(day.Stride);
    CmToFeetInch(r.PACE_CM, r.PACE_FEET, r.PACE_INCH);
    r.TARGET_STEP = num(day.TargetSteps);
    r.MEASUREMENT_MODE = zrKt ? zero : flag(day.LogicSelect == 1);
    r.ACCUMULATION_TIME = zrKt ? num(levelSum) : num(day.RangeMinutes);
    r.DISTANCE_KM = NumberText(day.Distance / 10.0);
    KmToMile(r.DISTANCE_KM, r.DISTANCE_MILE);
    r.SELECT_TARGET = zrKt ? zero : flag(day.TargetSelect == 1);
    r.PEDOMERA = kind == RecorderKind::BrioZr   ? QStringLiteral("2")
                 : kind == RecorderKind::BrioKt ? QStringLiteral("3")
                                                : QStringLiteral("1");
  }
  r.SELECT_UNIT = flag(day.UnitFlag == 1);
  r.MEMORY_LOCK = num(manage.MemorySetting);
  r.EXERCISE = zrKt ? NumberText(day.Exercise / 10.0) : computedExercise(day);
  return r;
}

QString MakeActLevelBlockText(const FlashData& day, RecorderKind kind) {
  const std::array<QString, 256>* texts = nullptr;
  if (kind == RecorderKind::BrioMets) texts = &metsTexts();
  else if (IsNibbleKind(kind)) texts = &nibbleTexts();
  if (!texts) return QString();
  const LevelProfileArray& profile = KindProfile(day, kind);
  QString out;
  out.reserve(kProfileSlots * 4);
  for (int i = 0; i < kProfileSlots; ++i) {
    if (i) out += QLatin1Char(',');
    out += (*texts)[profile[static_cast<size_t>(i)]];
  }
  return out;
}

TimeBlockRecord TimeMeasurementBlockRow(const QString& receiveId, int seqNum, const FlashData& day,
                                        RecorderKind kind) {
  return {receiveId, num(seqNum), MakeActLevelBlockText(day, kind), flag(kind == RecorderKind::BrioMets)};
}

ReceiveHistoryRecord ReceiveHistoryRow(const QString& receiveId, const QString& receiveDate,
                                       const QString& rawFileName, const FlashManage& manage) {
  return {receiveId,
          num(manage.VersionNo),
          num(manage.RecorderId),
          manage.CpuNo,
          receiveDate,
          rawFileName,
          num(manage.RecordStartPage),
          num(manage.RecordEndPage),
          num(manage.RecordingPage)};
}

UserReceiveUpdate UserUpdateFromReceive(const QString& receiveId, const FlashManage& manage,
                                        const FlashData& page, bool keepTargets, RecorderKind kind,
                                        RecorderLang lang) {
  UserReceiveUpdate u;
  u.GENDAR = num(page.Gender);
  u.AGE = num(page.Age);
  u.HEIGHT_CM = num(page.HeightCm);
  if (page.UnitFlag == 1) CmToFeetInch(u.HEIGHT_CM, u.HEIGHT_FEET, u.HEIGHT_INCH);
  u.WEIGHT_KG = Format(QStringLiteral("%1.%2").arg(page.WeightKg).arg(page.WeightFraction), QStringLiteral("##0.0"));
  u.WEIGHT_PAUND = page.UnitFlag == 1 ? num(page.WeightPound) : QString();
  u.LAST_RECEIVE_ID = receiveId;
  qint32 lastPage = manage.RecordingPage;
  if (manage.MemorySetting == 1 &&
      WrapPageCount(static_cast<qint16>(manage.RecordingPage - manage.RecordStartPage + 1), kind, lang) >
          manage.MemoryDays)
    lastPage = manage.RecordEndPage;
  u.LAST_PAGE = num(lastPage);
  if (!keepTargets) {
    const QString version = manage.FixedData.trimmed();
    u.TARGET_CAL = num(page.TargetActivity);
    if (version != Ini_GetPmAlNumber()) u.TARGET_STEP = num(page.TargetSteps);
    if (version == Ini_GetPmBrioJpnNumber() || version == Ini_GetPmBrioEngNumber())
      u.TARGET_ACTMIN = num(page.TargetTime);
  }
  return u;
}
