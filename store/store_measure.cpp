// RECEIVE_HISTORY, RECEIVE_HISTORY_DATE, DAY_MEASUREMENT, TIME_MEASUREMENT_BLOCK and
// TIME_MEASUREMENT.
#include <QFile>
#include <array>

#include "frame/config.h"
#include "frame/helpers.h"
#include "frame/vbformat.h"
#include "store/store.h"
#include "store/store_internal.h"

using namespace store_detail;

namespace {

QString num(qint64 v) { return QString::number(v); }

QString computedExercise(const std::array<QString, 10>& levels) {
  std::array<std::int32_t, 6> counts{};
  for (int i = 0; i < 6; ++i) counts[static_cast<size_t>(i)] = static_cast<std::int32_t>(Val(levels[static_cast<size_t>(4 + i)]));
  return NumberText(ExerciseFromLevels(counts));
}

void deleteWhere(VtDatabase& db, const char* table, const QString& receiveId, const QString& seqNum) {
  QString sql = QStringLiteral("DELETE FROM [%1] WHERE RECEIVE_ID = ?").arg(QLatin1String(table));
  if (!seqNum.isEmpty()) sql += QStringLiteral(" AND SEQ_NUM = ?");
  Statement st(db, sql);
  st.bind(1, receiveId);
  if (!seqNum.isEmpty()) st.bind(2, seqNum);
  st.run();
}

void deleteFirstByReceiveId(VtDatabase& db, const char* table, const QString& receiveId) {
  Statement sel(db, QStringLiteral("SELECT rowid FROM [%1] WHERE RECEIVE_ID = ? ORDER BY rowid LIMIT 1")
                        .arg(QLatin1String(table)));
  sel.bind(1, receiveId);
  if (!sel.step()) return;
  Statement del(db, QStringLiteral("DELETE FROM [%1] WHERE rowid = ?").arg(QLatin1String(table)));
  del.bind(1, sel.text(0).toLongLong());
  del.run();
}

qint64 seqBound(const QString& text) {
  bool ok = false;
  const qint64 v = text.trimmed().toLongLong(&ok);
  if (!ok) Fail(QStringLiteral("Syntax error in query expression 'CINT(SEQ_NUM) %1'.").arg(text));
  return v;
}

}  // namespace

QString FixPedomeraKind(const QString& pedomera, const QString& strideCm) {
  if (pedomera == QLatin1String("0") && strideCm != QLatin1String("0")) return QStringLiteral("2");
  return pedomera;
}

// ---- reception history ----

bool VTDB_SetReceiveHistory(VtDatabase& db, const ReceiveHistoryRecord& h) {
  return Guarded(db, "VTDB_SetReceiveHistory", false, [&] {
    InsertRow(db, "RECEIVE_HISTORY",
              {h.RECEIVE_ID, h.VERSION_NO, h.ID_NO, h.CPU_NO, h.RECEIVE_DATE, h.RAWFILENAME, h.START_PAGE,
               h.END_PAGE, h.CURRENT_PAGE});
    return true;
  });
}

bool VTDB_GetReceiveHistory(VtDatabase& db, const QString& receiveId, ReceiveHistoryRecord& history) {
  return Guarded(db, "VTDB_GetReceiveHistory", false, [&] {
    Statement st(db, QStringLiteral("SELECT * FROM [RECEIVE_HISTORY] WHERE RECEIVE_ID = ?"));
    st.bind(1, receiveId);
    if (st.step()) {
      history.RECEIVE_ID = st.fixed("RECEIVE_ID", 10);
      history.VERSION_NO = st.fixed("VERSION_NO", 3);
      history.ID_NO = st.fixed("ID_NO", 5);
      history.CPU_NO = st.fixed("CPU_NO", 6);
      history.RECEIVE_DATE = st.fixed("RECEIVE_DATE", 20);
      history.RAWFILENAME = st.fixed("RAWFILENAME", 128);
      history.START_PAGE = st.fixed("START_PAGE", 3);
      history.END_PAGE = st.fixed("END_PAGE", 3);
      history.CURRENT_PAGE = st.fixed("CURRENT_PAGE", 3);
    }
    return true;
  });
}

bool VTDB_DeleteReceiveHistory(VtDatabase& db, const QString& receiveId) {
  return Guarded(db, "VTDB_DeleteReceiveHistory", false, [&] {
    deleteFirstByReceiveId(db, "RECEIVE_HISTORY", receiveId);
    return true;
  });
}

bool VTDB_SetReceiveHistoryDate(VtDatabase& db, const QString& receiveId, const QString& cpuDate,
                                const QString& userId, const QString& systemDate, const QString& importFlag) {
  return Guarded(db, "VTDB_SetReceiveHistoryDate", false, [&] {
    InsertRow(db, "RECEIVE_HISTORY_DATE", {receiveId, cpuDate, userId, systemDate, importFlag});
    return true;
  });
}

bool VTDB_DeleteReceiveHistoryDate(VtDatabase& db, const QString& receiveId) {
  return Guarded(db, "VTDB_DeleteReceiveHistoryDate", false, [&] {
    deleteFirstByReceiveId(db, "RECEIVE_HISTORY_DATE", receiveId);
    return true;
  });
}

// ---- days ----

bool VTDB_SetDayMeasurement(VtDatabase& db, const DayRecord& d) {
  return Guarded(db, "VTDB_SetDayMeasurement", false, [&] {
    QStringList v;
    v << d.RECEIVE_ID << d.SEQ_NUM << d.START_PAGE << d.PAGE << d.MEASUREMENT_DAY << d.RAW_MEASUREMENT_DAY
      << d.WEEK_DAY << d.USER_ID << d.GENDAR << d.AGE << d.HEIGHT_CM << d.HEIGHT_FEET << d.HEIGHT_INCH
      << d.WEIGHT_KG << d.WEIGHT_PAUND << QString() << QString() << d.TARGET_CAL << d.ENERGY_EXPENDITURE
      << d.ACTIVITY << d.STEP_COUNT;
    for (const QString& level : d.ACTIVITY_LEVEL) v << level;
    v << d.ACTIVITY_LEVEL_SMALL;
    for (const QString& event : d.EVENT) v << event;
    v << d.LOWER_BOUND << d.UPPER_BOUND << d.TARGET_TIME << d.PACE_CM << d.PACE_FEET << d.PACE_INCH
      << d.TARGET_STEP << d.DISPLAY_MODE << d.MEASUREMENT_MODE << d.ACCUMULATION_TIME << d.DISTANCE_KM
      << d.DISTANCE_MILE << d.SELECT_TARGET << d.SELECT_UNIT << d.PEDOMERA << d.MEMORY_LOCK << QString()
      << d.EXERCISE;
    InsertRow(db, "DAY_MEASUREMENT", v);
    return true;
  });
}

bool VTDB_SetDayMeasurementForCSV(VtDatabase& db, const QString& receiveId, int seqNum, const UserInfo& user,
                                  const CsvRow& row) {
  return Guarded(db, "VTDB_SetDayMeasurementForCSV", false, [&] {
    auto orDefault = [](const QString& s, const QString& d) { return s.isEmpty() ? d : s; };
    const QString zero = QStringLiteral("0");
    QString heightCm = row.HEIGHT_CM;
    if (heightCm.isEmpty())
      heightCm = num(FeetInchToCm(static_cast<std::int32_t>(Val(row.HEIGHT_FEET)),
                                  static_cast<std::int32_t>(Val(row.HEIGHT_INCH))));
    const QString weightKg =
        row.WEIGHT_KG.isEmpty()
            ? Format(static_cast<double>(PoundToKg(static_cast<std::int32_t>(Val(row.WEIGHT_PAUND)))),
                     QStringLiteral("##0.0"))
            : Format(row.WEIGHT_KG, QStringLiteral("##0.0"));
    QString feet = row.HEIGHT_FEET;
    QString inch = row.HEIGHT_INCH;
    if (feet.isEmpty()) CmToFeetInch(heightCm, feet, inch);
    const QString pound = row.WEIGHT_PAUND.isEmpty()
                              ? Format(static_cast<double>(KgDoubleToPound(Val(weightKg))), QStringLiteral("##0"))
                              : row.WEIGHT_PAUND;
    QString paceFeet = zero;
    QString paceInch = zero;
    if (!row.PACE_CM.isEmpty()) CmToFeetInch(row.PACE_CM, paceFeet, paceInch);
    QString mile = zero;
    if (!row.DISTANCE_KM.isEmpty()) KmToMile(row.DISTANCE_KM, mile);

    QStringList v;
    v << receiveId << num(seqNum) << QStringLiteral("CSV") << QStringLiteral("CSV") << row.MEASUREMENT_DAY
      << row.RAW_MEASUREMENT_DAY << row.WEEK_DAY << user.USER_ID << row.GENDAR << row.AGE << heightCm << feet
      << inch << weightKg << pound << QString() << QString() << orDefault(row.TARGET_CAL, user.TARGET_CAL)
      << row.ENERGY_EXPENDITURE << row.ACTIVITY << row.STEP_COUNT;
    for (int i = 0; i <= 9; ++i) v << row.ACTIVITY_LEVEL[static_cast<size_t>(i)];
    v << orDefault(row.ACTIVITY_LEVEL_SMALL, zero);
    for (int i = 0; i < 10; ++i) v << orDefault(row.EVENT[static_cast<size_t>(i)], QStringLiteral("9999"));
    v << orDefault(row.LOWER_BOUND, QStringLiteral("4")) << orDefault(row.UPPER_BOUND, QStringLiteral("9"))
      << orDefault(row.TARGET_TIME, user.TARGET_ACTMIN) << orDefault(row.PACE_CM, zero) << paceFeet << paceInch
      << orDefault(row.TARGET_STEP, user.TARGET_STEP) << QString() << orDefault(row.MEASUREMENT_MODE, zero)
      << orDefault(row.ACCUMULATION_TIME, zero) << orDefault(row.DISTANCE_KM, zero) << mile << zero
      << (row.WEIGHT_PAUND.isEmpty() ? zero : QStringLiteral("1")) << orDefault(row.PEDOMERA, zero)
      << orDefault(row.MEMORY_LOCK, zero) << QString()
      << (row.EXERCISE.isEmpty() ? computedExercise(row.ACTIVITY_LEVEL) : row.EXERCISE);
    InsertRow(db, "DAY_MEASUREMENT", v);
    return true;
  });
}

bool VTDB_GetDayMeasurement(VtDatabase& db, const QString& receiveId, const QString& seqNum, DayRecord& d) {
  return Guarded(db, "VTDB_GetDayMeasurement", false, [&] {
    Statement st(db, QStringLiteral("SELECT * FROM [DAY_MEASUREMENT] WHERE RECEIVE_ID = ? AND SEQ_NUM = ?"));
    st.bind(1, receiveId).bind(2, seqNum);
    if (!st.step()) return false;
    d.RECEIVE_ID = st.fixed("RECEIVE_ID", 10);
    d.SEQ_NUM = st.fixed("SEQ_NUM", 3);
    d.START_PAGE = st.fixed("START_PAGE", 3);
    d.PAGE = st.fixed("PAGE", 3);
    d.MEASUREMENT_DAY = st.fixed("MEASUREMENT_DAY", 8);
    d.RAW_MEASUREMENT_DAY = st.fixed("RAW_MEASUREMENT_DAY", 8);
    d.WEEK_DAY = st.fixed("WEEK_DAY", 1);
    d.USER_ID = st.fixed("USER_ID", 10);
    d.GENDAR = st.fixed("GENDAR", 1);
    d.AGE = st.fixed("AGE", 3);
    d.HEIGHT_CM = st.fixed("HEIGHT_CM", 3);
    d.HEIGHT_FEET = st.fixed("HEIGHT_FEET", 1);
    d.HEIGHT_INCH = st.fixed("HEIGHT_INCH", 2);
    d.WEIGHT_KG = st.fixed("WEIGHT_KG", 5);
    d.WEIGHT_PAUND = st.fixed("WEIGHT_PAUND", 3);
    d.TARGET_CAL = st.fixed("TARGET_CAL", 4);
    d.ENERGY_EXPENDITURE = st.fixed("ENERGY_EXPENDITURE", 5);
    d.ACTIVITY = st.fixed("ACTIVITY", 5);
    d.STEP_COUNT = st.fixed("STEP_COUNT", 5);
    for (int i = 0; i <= 9; ++i)
      d.ACTIVITY_LEVEL[static_cast<size_t>(i)] = st.fixed(QByteArray("ACTIVITY_LEVEL_" + QByteArray::number(i)).constData(), 5);
    d.ACTIVITY_LEVEL_SMALL = st.fixed("ACTIVITY_LEVEL_SMALL", 5);
    for (int i = 0; i < 10; ++i)
      d.EVENT[static_cast<size_t>(i)] = st.fixed(QByteArray("EVENT_" + QByteArray::number(i + 1)).constData(), 4);
    d.LOWER_BOUND = st.fixed("LOWER_BOUND", 1);
    d.UPPER_BOUND = st.fixed("UPPER_BOUND", 1);
    d.TARGET_TIME = st.fixed("TARGET_TIME", 5);
    d.PACE_CM = st.fixed("PACE_CM", 5);
    d.PACE_FEET = st.fixed("PACE_FEET", 5);
    d.PACE_INCH = st.fixed("PACE_INCH", 5);
    d.TARGET_STEP = st.fixed("TARGET_STEP", 5);
    d.DISPLAY_MODE = st.fixed("DISPLAY_MODE", 1);
    d.MEASUREMENT_MODE = st.fixed("MEASUREMENT_MODE", 1);
    d.ACCUMULATION_TIME = st.fixed("ACCUMULATION_TIME", 5);
    d.DISTANCE_KM = st.fixed("DISTANCE_KM", 5);
    d.DISTANCE_MILE = st.fixed("DISTANCE_MILE", 5);
    d.SELECT_TARGET = st.fixed("SELECT_TARGET", 1);
    d.SELECT_UNIT = st.fixed("SELECT_UNIT", 1);
    d.PEDOMERA = FixWidth(FixPedomeraKind(st.text("PEDOMERA").trimmed(), st.text("PACE_CM").trimmed()), 1);
    d.MEMORY_LOCK = st.fixed("MEMORY_LOCK", 1);
    d.EXERCISE = st.fixed("EXERCISE", 10);
    return true;
  });
}

namespace store_detail {

// A stored day as a CSV row: texts trimmed and cut at a NUL, imperial members empty for
// metric days, PEDOMERA repaired, a missing EXERCISE computed.
CsvRow ReadCsvRow(const Statement& st) {
  auto t = [&st](const char* name) { return CutAtNul(st.text(name).trimmed()); };
  CsvRow r;
  r.RECEIVE_ID = t("RECEIVE_ID");
  r.SEQ_NUM = t("SEQ_NUM");
  r.MEASUREMENT_DAY = t("MEASUREMENT_DAY");
  r.RAW_MEASUREMENT_DAY = t("RAW_MEASUREMENT_DAY");
  r.WEEK_DAY = t("WEEK_DAY");
  r.USER_ID = t("USER_ID");
  r.GENDAR = t("GENDAR");
  r.AGE = t("AGE");
  r.HEIGHT_CM = t("HEIGHT_CM");
  r.HEIGHT_FEET = t("HEIGHT_FEET");
  r.HEIGHT_INCH = t("HEIGHT_INCH");
  r.WEIGHT_KG = t("WEIGHT_KG");
  r.WEIGHT_PAUND = t("WEIGHT_PAUND");
  r.TARGET_CAL = t("TARGET_CAL");
  r.STEP_COUNT = t("STEP_COUNT");
  r.ENERGY_EXPENDITURE = t("ENERGY_EXPENDITURE");
  r.ACTIVITY = t("ACTIVITY");
  r.TARGET_STEP = t("TARGET_STEP");
  r.PACE_CM = t("PACE_CM");
  r.DISTANCE_KM = t("DISTANCE_KM");
  r.TARGET_TIME = t("TARGET_TIME");
  r.ACCUMULATION_TIME = t("ACCUMULATION_TIME");
  r.LOWER_BOUND = t("LOWER_BOUND");
  r.UPPER_BOUND = t("UPPER_BOUND");
  r.PEDOMERA = FixPedomeraKind(t("PEDOMERA"), r.PACE_CM);
  r.MEMORY_LOCK = t("MEMORY_LOCK");
  r.MEASUREMENT_MODE = t("MEASUREMENT_MODE");
  for (int i = 0; i <= 9; ++i)
    r.ACTIVITY_LEVEL[static_cast<size_t>(i)] = t(QByteArray("ACTIVITY_LEVEL_" + QByteArray::number(i)).constData());
  r.ACTIVITY_LEVEL_SMALL = t("ACTIVITY_LEVEL_SMALL");
  for (int i = 0; i < 10; ++i)
    r.EVENT[static_cast<size_t>(i)] = t(QByteArray("EVENT_" + QByteArray::number(i + 1)).constData());
  if (t("SELECT_UNIT") == QLatin1String("0")) {
    r.HEIGHT_FEET.clear();
    r.HEIGHT_INCH.clear();
    r.WEIGHT_PAUND.clear();
  }
  const QString exercise = t("EXERCISE");
  r.EXERCISE = exercise.isEmpty() ? computedExercise(r.ACTIVITY_LEVEL) : exercise;
  return r;
}

QString ComputedExercise(const std::array<QString, 10>& levels) { return computedExercise(levels); }

}  // namespace store_detail

bool VTDB_GetDayMeasurementDataFromIdAndSeqNum(VtDatabase& db, const QString& receiveId, const QString& fromSeq,
                                               const QString& toSeq, std::vector<CsvRow>& rows) {
  return Guarded(db, "VTDB_GetDayMeasurementDataFromIdAndSeqNum", false, [&] {
    QString sql = QStringLiteral("SELECT * FROM [DAY_MEASUREMENT] WHERE NOT MEASUREMENT_DAY = '' AND RECEIVE_ID = ?");
    if (!fromSeq.isEmpty()) sql += QStringLiteral(" AND CINT(SEQ_NUM) >= ?");
    if (!toSeq.isEmpty()) sql += QStringLiteral(" AND CINT(SEQ_NUM) <= ?");
    sql += QStringLiteral(" ORDER BY CINT(SEQ_NUM)");
    Statement st(db, sql);
    int i = 1;
    st.bind(i++, receiveId);
    if (!fromSeq.isEmpty()) st.bind(i++, seqBound(fromSeq));
    if (!toSeq.isEmpty()) st.bind(i++, seqBound(toSeq));
    while (st.step()) rows.push_back(ReadCsvRow(st));
    return true;
  });
}

bool VTDB_GetDayMeasurementRange(VtDatabase& db, const QString& userId, QString& first, QString& last,
                                 bool latestOnly) {
  return Guarded(db, "VTDB_GetDayMeasurementRange", false, [&] {
    QString sql = QStringLiteral(
        "SELECT MIN(MEASUREMENT_DAY) AS DATA_START, MAX(MEASUREMENT_DAY) AS DATA_END FROM [DAY_MEASUREMENT] "
        "WHERE NOT LEN(MEASUREMENT_DAY) = 0 AND USER_ID = ?");
    if (latestOnly)
      sql += QStringLiteral(" AND RECEIVE_ID = (SELECT MAX(RECEIVE_ID) FROM [DAY_MEASUREMENT] WHERE USER_ID = ?)");
    Statement st(db, sql);
    st.bind(1, userId);
    if (latestOnly) st.bind(2, userId);
    first.clear();
    last.clear();
    if (st.step()) {
      first = CutAtNul(st.text(0));
      last = CutAtNul(st.text(1));
    }
    return true;
  });
}

bool VTDB_GetDayMeasurementReceiveId(VtDatabase& db, const QString& userId, const QString& date,
                                     QString& receiveId, QString& seqNum, bool atOrBefore) {
  return Guarded(db, "VTDB_GetDayMeasurementReceiveId", false, [&] {
    // Days stored without a date never count as lying before a date.
    const QString sql =
        atOrBefore ? QStringLiteral("SELECT RECEIVE_ID, SEQ_NUM FROM [DAY_MEASUREMENT] WHERE USER_ID = ? AND "
                                    "MEASUREMENT_DAY <= ? AND NOT MEASUREMENT_DAY = '' "
                                    "ORDER BY RECEIVE_ID DESC , CINT(SEQ_NUM) DESC LIMIT 1")
                   : QStringLiteral("SELECT RECEIVE_ID, SEQ_NUM FROM [DAY_MEASUREMENT] WHERE USER_ID = ? AND "
                                    "MEASUREMENT_DAY >= ? ORDER BY RECEIVE_ID , CINT(SEQ_NUM) LIMIT 1");
    Statement st(db, sql);
    st.bind(1, userId).bind(2, date);
    if (st.step()) {
      receiveId = st.text(0);
      seqNum = st.text(1);
    }
    return true;
  });
}

bool VTDB_GetDayMeasurementReceiveIdFromUserID(VtDatabase& db, const QString& userId, QStringList& receiveIds) {
  return Guarded(db, "VTDB_GetDayMeasurementReceiveIdFromUserID", false, [&] {
    Statement st(db, QStringLiteral("SELECT DISTINCT RECEIVE_ID FROM [DAY_MEASUREMENT] WHERE USER_ID = ?"));
    st.bind(1, userId);
    QStringList ids;
    while (st.step()) ids << st.text(0);
    if (!ids.isEmpty()) receiveIds = ids;
    return true;
  });
}

QString VTDB_GetMeasurementDayFromPage(VtDatabase& db, const QString& page, const QString& userId) {
  return Guarded(db, "VTDB_GetMeasurementDayFromPage", QString(), [&] {
    // The newest reception of a page number tells what the ring held there last time. Once the ring
    // has gone round, the oldest row of that page is a day of an earlier round, and comparing with it
    // would make every receive of a long-worn recorder look like a reset.
    Statement st(db, QStringLiteral("SELECT RAW_MEASUREMENT_DAY FROM [DAY_MEASUREMENT] WHERE PAGE = ? AND "
                                    "USER_ID = ? ORDER BY RECEIVE_ID DESC LIMIT 1"));
    st.bind(1, page).bind(2, userId);
    return st.step() ? st.text(0) : QString();
  });
}

bool VTDB_DeleteDayMeasurement(VtDatabase& db, const QString& receiveId, const QString& seqNum) {
  return Guarded(db, "VTDB_DeleteDayMeasurement", false, [&] {
    deleteWhere(db, "DAY_MEASUREMENT", receiveId, seqNum);
    return true;
  });
}

bool VTDB_DeleteDayMeasurementFromPage(VtDatabase& db, const QString& receiveId, const QString& page,
                                       QString& seqNum) {
  return Guarded(db, "VTDB_DeleteDayMeasurementFromPage", false, [&] {
    Statement sel(db, QStringLiteral("SELECT SEQ_NUM FROM [DAY_MEASUREMENT] WHERE RECEIVE_ID = ? AND PAGE = ? "
                                     "ORDER BY rowid"));
    sel.bind(1, receiveId).bind(2, page);
    bool any = false;
    QString last;
    while (sel.step()) {
      any = true;
      last = sel.text(0);
    }
    if (!any) return true;
    Statement del(db, QStringLiteral("DELETE FROM [DAY_MEASUREMENT] WHERE RECEIVE_ID = ? AND PAGE = ?"));
    del.bind(1, receiveId).bind(2, page);
    del.run();
    seqNum = last;
    return true;
  });
}

// ---- profiles ----

bool VTDB_SetTimeMeasurementBlock(VtDatabase& db, const TimeBlockRecord& b) {
  return Guarded(db, "VTDB_SetTimeMeasurementBlock", false, [&] {
    InsertRow(db, "TIME_MEASUREMENT_BLOCK", {b.RECEIVE_ID, b.SEQ_NUM, b.ACT_LEVEL_BLOCK, b.MEASUREMENT_MODE});
    return true;
  });
}

bool VTDB_SetTimeMeasurementBlockForCSV(VtDatabase& db, const QString& receiveId, int seqNum, const UserInfo&,
                                        const CsvRow& row) {
  return Guarded(db, "VTDB_SetTimeMeasurementBlockForCSV", false, [&] {
    InsertRow(db, "TIME_MEASUREMENT_BLOCK",
              {receiveId, num(seqNum), row.ACT_LEVEL_BLOCK,
               row.MEASUREMENT_MODE.isEmpty() ? QStringLiteral("0") : row.MEASUREMENT_MODE});
    return true;
  });
}

bool VTDB_GetTimeMeasurementDayBlock(VtDatabase& db, const QString& receiveId, const QString& seqNum,
                                     TimeBlockRecord& block) {
  return Guarded(db, "VTDB_GetTimeMeasurementDayBlock", false, [&] {
    Statement st(db, QStringLiteral("SELECT * FROM [TIME_MEASUREMENT_BLOCK] WHERE RECEIVE_ID = ? AND SEQ_NUM = ?"));
    st.bind(1, receiveId).bind(2, seqNum);
    if (st.step()) {
      block.RECEIVE_ID = st.fixed("RECEIVE_ID", 10);
      block.SEQ_NUM = st.fixed("SEQ_NUM", 3);
      block.ACT_LEVEL_BLOCK = st.fixed("ACT_LEVEL_BLOCK", 2880);
      block.MEASUREMENT_MODE = st.fixed("MEASUREMENT_MODE", 1);
    }
    return true;
  });
}

bool VTDB_DeleteTimeMeasurement(VtDatabase& db, const QString& receiveId, const QString& seqNum) {
  return Guarded(db, "VTDB_DeleteTimeMeasurement", false, [&] {
    deleteWhere(db, "TIME_MEASUREMENT", receiveId, seqNum);
    return true;
  });
}

bool VTDB_DeleteTimeMeasurementBlock(VtDatabase& db, const QString& receiveId, const QString& seqNum) {
  return Guarded(db, "VTDB_DeleteTimeMeasurementBlock", false, [&] {
    deleteWhere(db, "TIME_MEASUREMENT_BLOCK", receiveId, seqNum);
    return true;
  });
}
