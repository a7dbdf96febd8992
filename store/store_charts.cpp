// The read side of the measurements: the chart and CSV queries and the rule of the row
// that counts for a day.
#include "frame/helpers.h"
#include "frame/vbformat.h"
#include "store/store.h"
#include "store/store_internal.h"

using namespace store_detail;

namespace {

const QString kChartQuery = QStringLiteral(
    "SELECT * FROM [DAY_MEASUREMENT] WHERE USER_ID = ? AND MEASUREMENT_DAY >= ? AND MEASUREMENT_DAY <= ?"
    " ORDER BY MEASUREMENT_DAY, RECEIVE_ID DESC , CINT(SEQ_NUM) DESC");

qint64 integerValue(const QString& text) { return static_cast<qint64>(Val(text)); }

const char* const kLevelNames[10] = {"ACTIVITY_LEVEL_0", "ACTIVITY_LEVEL_1", "ACTIVITY_LEVEL_2",
                                     "ACTIVITY_LEVEL_3", "ACTIVITY_LEVEL_4", "ACTIVITY_LEVEL_5",
                                     "ACTIVITY_LEVEL_6", "ACTIVITY_LEVEL_7", "ACTIVITY_LEVEL_8",
                                     "ACTIVITY_LEVEL_9"};
const char* const kEventNames[10] = {"EVENT_1", "EVENT_2", "EVENT_3", "EVENT_4", "EVENT_5",
                                     "EVENT_6", "EVENT_7", "EVENT_8", "EVENT_9", "EVENT_10"};

}  // namespace

int VTDB_GetChartData(VtDatabase& db, const QString& userId, const QString& from, const QString& to,
                      const QString& stepThreshold, std::vector<ChartDayRecord>& rows) {
  return Guarded(db, "VTDB_GetChartData", -1, [&] {
    Statement st(db, kChartQuery);
    st.bind(1, userId).bind(2, from).bind(3, to);
    std::vector<ChartDayRecord> out;
    const qint64 threshold = integerValue(stepThreshold);
    QString previousDay;
    while (st.step()) {
      auto t = [&st](const char* name) { return st.text(name).trimmed(); };
      ChartDayRecord r;
      r.RECEIVE_ID = t("RECEIVE_ID");
      r.SEQ_NUM = t("SEQ_NUM");
      r.MEASUREMENT_DAY = t("MEASUREMENT_DAY");
      r.NewestOfDay = r.MEASUREMENT_DAY != previousDay;
      previousDay = r.MEASUREMENT_DAY;
      r.WEEK_DAY = t("WEEK_DAY");
      r.STEP_COUNT = t("STEP_COUNT");
      r.TARGET_STEP = t("TARGET_STEP");
      r.ACTIVITY = t("ACTIVITY");
      r.TARGET_CAL = t("TARGET_CAL");
      r.ACCUMULATION_TIME = t("ACCUMULATION_TIME");
      r.TARGET_TIME = t("TARGET_TIME");
      r.ENERGY_EXPENDITURE = t("ENERGY_EXPENDITURE");
      r.SELECT_UNIT = t("SELECT_UNIT");
      r.WEIGHT_KG = t("WEIGHT_KG");
      r.WEIGHT_PAUND = t("WEIGHT_PAUND");
      r.HEIGHT_CM = t("HEIGHT_CM");
      r.HEIGHT_FEET = t("HEIGHT_FEET");
      r.HEIGHT_INCH = t("HEIGHT_INCH");
      r.MEASUREMENT_MODE = t("MEASUREMENT_MODE");
      r.PEDOMERA = FixPedomeraKind(t("PEDOMERA"), t("PACE_CM"));
      r.GENDAR = t("GENDAR");
      r.AGE = t("AGE");
      r.DISTANCE_KM = t("DISTANCE_KM");
      r.DISTANCE_MILE = t("DISTANCE_MILE");
      r.LOWER_BOUND = t("LOWER_BOUND");
      r.UPPER_BOUND = t("UPPER_BOUND");
      if (t("SELECT_TARGET") == QLatin1String("1")) {
        r.StepTargetSelected = QStringLiteral("1");
        r.TimeTargetSelected = QStringLiteral("0");
        r.CalTargetSelected = QStringLiteral("0");
      } else {
        r.StepTargetSelected = QStringLiteral("0");
        r.TimeTargetSelected = QStringLiteral("1");
        r.CalTargetSelected = QStringLiteral("1");
      }
      if (r.SELECT_UNIT == QLatin1String("0")) {
        r.HeightShown = r.HEIGHT_CM;
        r.WeightShown = r.WEIGHT_KG;
        r.DistanceShown = r.DISTANCE_KM;
      } else {
        r.HeightShown = r.HEIGHT_FEET + QStringLiteral(" \" ") + r.HEIGHT_INCH + QStringLiteral("'");
        r.WeightShown = r.WEIGHT_PAUND;
        r.DistanceShown = r.DISTANCE_MILE;
      }
      for (size_t i = 0; i < 10; ++i) {
        r.ACTIVITY_LEVEL[i] = t(kLevelNames[i]);
        const QString e = t(kEventNames[i]);
        r.EVENT[i] = e == QLatin1String("9999") ? QString() : e;
      }
      r.ExcludeFlag = integerValue(r.STEP_COUNT) < threshold ? QStringLiteral("1") : QStringLiteral("0");
      const QString exercise = t("EXERCISE");
      r.EXERCISE = exercise.isEmpty() ? ComputedExercise(r.ACTIVITY_LEVEL) : exercise;
      out.push_back(std::move(r));
    }
    const int count = static_cast<int>(out.size());
    if (count > 0) rows = std::move(out);
    return count;
  });
}

int VTDB_GetChartDataForCSV(VtDatabase& db, const QString& userId, const QString& from, const QString& to,
                            std::vector<CsvRow>& rows) {
  return Guarded(db, "VTDB_GetChartDataForCSV", -1, [&] {
    Statement st(db, kChartQuery);
    st.bind(1, userId).bind(2, from).bind(3, to);
    std::vector<CsvRow> out;
    QString previousDay;
    while (st.step()) {
      CsvRow r = ReadCsvRow(st);
      r.NewestOfDay = r.MEASUREMENT_DAY != previousDay;
      previousDay = r.MEASUREMENT_DAY;
      r.NoDataMark = QStringLiteral("0");
      out.push_back(std::move(r));
    }
    const int count = static_cast<int>(out.size());
    if (count > 0) rows = std::move(out);
    return count;
  });
}

int VTDB_GetModerate(VtDatabase& db, const QString& receiveId, const QString& seqNum, const QString& lowLevel,
                     const QString& highLevel, ChartDayRecord& day) {
  return Guarded(db, "VTDB_GetModerate", -1, [&] {
    // The level numbers become column names; only whole numbers 0 to 9 are taken.
    bool okA = false;
    bool okB = false;
    const int a = lowLevel.trimmed().toInt(&okA);
    const int b = highLevel.trimmed().toInt(&okB);
    if (!okA || !okB || a < 0 || a > 9 || b < 0 || b > 9)
      Fail(QStringLiteral("Invalid moderate range %1 to %2").arg(lowLevel, highLevel));
    auto sumTerm = [](int first, int last) {
      QStringList terms;
      for (int i = first; i <= last; ++i) terms << QStringLiteral("CINT(ACTIVITY_LEVEL_%1)").arg(i);
      return terms.join(QStringLiteral(" + "));
    };
    // With b = 9 the vigorous term is empty and the statement fails, as the range's end
    // must stay below 9.
    const QString sql = QStringLiteral("SELECT ") + sumTerm(a, b) + QStringLiteral(" AS MODERATE, ") +
                        sumTerm(b + 1, 9) + QStringLiteral(" AS VIGOROUS") +
                        QStringLiteral(" FROM [DAY_MEASUREMENT] WHERE RECEIVE_ID = ? AND SEQ_NUM = ?");
    Statement st(db, sql);
    st.bind(1, receiveId).bind(2, seqNum);
    int found = 0;
    while (st.step()) {
      if (found == 0) {
        day.MODERATE = st.text(0).trimmed();
        day.VIGOROUS = st.text(1).trimmed();
      }
      ++found;
    }
    return found;
  });
}

bool VTDB_ExistData(VtDatabase& db, const QString& userId, const QString& from, const QString& to) {
  return Guarded(db, "VTDB_ExistData", false, [&] {
    Statement st(db, QStringLiteral("SELECT * FROM [DAY_MEASUREMENT] WHERE USER_ID = ? AND MEASUREMENT_DAY >= ? "
                                    "AND MEASUREMENT_DAY <= ?"));
    st.bind(1, userId).bind(2, from).bind(3, to);
    return st.step();
  });
}

