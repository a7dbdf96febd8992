// Statistics and chart files on stored data: a real encrypted database in a throw-away
// installation, filled from generated recorders and from hand-made rows.
#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include "charts/charts.h"
#include "device/data_convert.h"
#include "device/recorder_image.h"
#include "frame/frame.h"
#include "store/store.h"
#include "testsupport/sample_user.h"
#include "testsupport/test_installation.h"

using namespace charts;

namespace {

QDate D(int y, int m, int d) { return QDate(y, m, d); }

const QString kUser = QStringLiteral("U000000001");

struct Row {
  QString receiveId = QStringLiteral("R000000001");
  QString seq = QStringLiteral("1");
  QDate day;
  int steps = 5000;
  QString unit = QStringLiteral("0");
  QString weightKg = QStringLiteral("60.0");
  QString weightLb = QStringLiteral("132");
  QString exercise = QStringLiteral("1.0");
  int level4 = 100;
  int level8 = 10;
};

class ChartDb : public ::testing::Test {
 protected:
  explicit ChartDb(const QString& lang = QStringLiteral("ja")) : inst_(lang) {}

  void SetUp() override {
    ASSERT_TRUE(inst_.isValid());
    ASSERT_EQ(OpenDatabaseWithSampleUser(inst_, db_, kUser), QString());
  }

  void add(const Row& r) {
    Statement st(db_,
                 QStringLiteral(
                     "INSERT INTO DAY_MEASUREMENT (RECEIVE_ID, SEQ_NUM, MEASUREMENT_DAY, "
                     "RAW_MEASUREMENT_DAY, WEEK_DAY, USER_ID, GENDAR, AGE, HEIGHT_CM, HEIGHT_FEET, "
                     "HEIGHT_INCH, WEIGHT_KG, WEIGHT_PAUND, TARGET_CAL, ENERGY_EXPENDITURE, ACTIVITY, "
                     "STEP_COUNT, ACTIVITY_LEVEL_0, ACTIVITY_LEVEL_1, ACTIVITY_LEVEL_2, "
                     "ACTIVITY_LEVEL_3, ACTIVITY_LEVEL_4, ACTIVITY_LEVEL_5, ACTIVITY_LEVEL_6, "
                     "ACTIVITY_LEVEL_7, ACTIVITY_LEVEL_8, ACTIVITY_LEVEL_9, LOWER_BOUND, UPPER_BOUND, "
                     "TARGET_TIME, PACE_CM, TARGET_STEP, MEASUREMENT_MODE, ACCUMULATION_TIME, "
                     "DISTANCE_KM, DISTANCE_MILE, SELECT_TARGET, SELECT_UNIT, PEDOMERA, EXERCISE) "
                     "VALUES (?, ?, ?, ?, ?, ?, '1', '41', '160', '5', '3', ?, ?, '300', '1900', '210', "
                     "?, '0', '500', '400', '300', ?, '50', '40', '30', ?, '0', '4', '9', '60', '70', "
                     "'8000', '0', '45', '3.5', '2.2', '0', ?, '2', ?)"));
    const QString ymd = DateToYmd(r.day);
    st.bind(1, r.receiveId).bind(2, r.seq).bind(3, ymd).bind(4, ymd);
    st.bind(5, QString::number(r.day.dayOfWeek())).bind(6, kUser).bind(7, r.weightKg).bind(8, r.weightLb);
    st.bind(9, QString::number(r.steps)).bind(10, QString::number(r.level4));
    st.bind(11, QString::number(r.level8)).bind(12, r.unit).bind(13, r.exercise);
    st.run();
  }

  // A day of the first reception with its own sequence number.
  void add(const QDate& day, int seq, int steps = 5000, const char* unit = "0") {
    add(Row{.seq = QString::number(seq), .day = day, .steps = steps, .unit = QLatin1String(unit)});
  }

  void addDays(const QDate& from, const QDate& to, int steps = 5000) {
    int seq = 1;
    for (QDate d = from; d <= to; d = d.addDays(1)) add(d, seq++, steps);
  }

  int calc(const QDate& from, const QDate& to, bool useExclusion, bool block = false) {
    days_.clear();
    return CalcStepActMin(db_, kUser, DateToYmd(from), DateToYmd(to), days_, useExclusion, block,
                          false);
  }

  QString flags() const {
    QString s;
    for (const ChartDayRecord& d : days_) s += d.ExcludeFlag;
    return s;
  }

  // "count|flags": the days found and the exclusion flag of every day of the period.
  QString counted(const QDate& from, const QDate& to, bool useExclusion) {
    const int n = calc(from, to, useExclusion);
    return QString::number(n) + u'|' + flags();
  }

  // The chart files of a chart, read back as lines (CR LF checked).
  bool make(int type, const QDate& from, const QDate& to) {
    iface_.clear();
    header_.clear();
    sim_.clear();
    return MakeChartData(db_, type, DateToSlash(from), DateToSlash(to), ifaceFile_, headerFile_,
                         QString(), QString(), &simFile_) &&
           readLines(ifaceFile_, iface_) && readLines(headerFile_, header_) &&
           (simFile_.isEmpty() || readLines(simFile_, sim_));
  }

  static bool readLines(const QString& path, QStringList& lines) {
    const QByteArray bytes = ReadBytes(path);
    if (!bytes.endsWith("\r\n")) return false;
    const QString text = QString::fromUtf8(bytes);
    if (QString(text).remove(QStringLiteral("\r\n")).contains(QLatin1Char('\n'))) return false;
    lines = text.split(QStringLiteral("\r\n"));
    lines.removeLast();
    return true;
  }

  bool shown(const QString& code) {
    const auto rec = FindMessage(code);
    if (!rec) return false;
    const QString text = BuildMessageText(*rec, QString(), false);
    for (const auto& s : inst_.dialog().shown)
      if (s.text == text) return true;
    return false;
  }

  TestInstallation inst_;
  VtDatabase db_;
  std::vector<ChartDayRecord> days_;
  QString ifaceFile_, headerFile_, simFile_;
  QStringList iface_, header_, sim_;
};

QString Field(const QString& line, int number) {
  return line.section(QLatin1Char(','), number - 1, number - 1);
}

// The state, first and last day of a data line.
QString Head(const QString& line) { return line.section(QLatin1Char(','), 0, 2); }

}  // namespace

TEST_F(ChartDb, PeriodWithoutRows) {
  ASSERT_EQ(counted(D(2024, 1, 1), D(2024, 1, 7), true), "0|1111111");
  for (const auto& d : days_) EXPECT_FALSE(d.NewestOfDay);
  EXPECT_EQ(days_[6].MEASUREMENT_DAY + u'|' + days_[6].WEEK_DAY, "20240107|7");

  // A start after the end leaves the list alone.
  EXPECT_EQ(CalcStepActMin(db_, kUser, QStringLiteral("20240110"), QStringLiteral("20240101"), days_, true, false, false), 0);
  EXPECT_EQ(days_.size(), 7u);

  // Without any measured day the empty lines carry "4"; with data elsewhere "3".
  ASSERT_TRUE(make(100, D(2024, 1, 1), D(2024, 1, 3)));
  ASSERT_EQ(iface_.size(), 6);
  EXPECT_EQ(iface_.mid(2, 2), QStringList({"0,0,0,0,0,0", "4,20240101,20240101" + QString(24, u',')}));
  addDays(D(2024, 2, 1), D(2024, 2, 3));
  ASSERT_TRUE(make(100, D(2024, 1, 1), D(2024, 1, 3)));
  EXPECT_TRUE(iface_[3].startsWith(QStringLiteral("3,20240101,")));
  ASSERT_TRUE(make(100, D(2024, 1, 31), D(2024, 2, 2)));
  EXPECT_TRUE(iface_[3].startsWith(QStringLiteral("2,20240131,")));
  EXPECT_TRUE(iface_[4].startsWith(QStringLiteral("0,20240201,20240201,9000,0,5000,")));
}

TEST_F(ChartDb, DayReceivedTwiceTakesTheNewestReceptionAndSequence) {
  for (const auto& [id, seq, steps] :
       {std::tuple{"R000000001", "1", 1111}, {"R000000002", "9", 2222}, {"R000000002", "10", 3333}})
    add(Row{.receiveId = id, .seq = seq, .day = D(2024, 3, 1), .steps = steps});
  EXPECT_EQ(calc(D(2024, 3, 1), D(2024, 3, 2), false), 1);
  EXPECT_EQ(days_[0].STEP_COUNT + u'|' + days_[0].SEQ_NUM, "3333|10");
  EXPECT_TRUE(days_[0].NewestOfDay);
  // Moderate and vigorous come from the level counts: 4..7 and 8..9.
  EXPECT_EQ(days_[0].MODERATE, QStringLiteral("220"));
  EXPECT_FLOAT_EQ(days_[0].ModerateMinutes, 14.7f);
  EXPECT_FLOAT_EQ(days_[0].VigorousMinutes, 0.7f);
}

TEST_F(ChartDb, FirstAndLastMeasuredDayAreExcludedOnlyWhereTheyLie) {
  addDays(D(2024, 1, 1), D(2024, 1, 20));
  EXPECT_EQ(counted(D(2024, 1, 1), D(2024, 1, 7), true), "7|1000000");
  EXPECT_EQ(counted(D(2024, 1, 8), D(2024, 1, 14), true), "7|0000000");
  EXPECT_EQ(counted(D(2024, 1, 14), D(2024, 1, 21), true), "7|00000011");
  EXPECT_EQ(counted(D(2024, 1, 1), D(2024, 1, 2), false), "2|00");

  inst_.setConfig(QStringLiteral("REPORT"), QStringLiteral("EDFA_STARTING_DAY"), QStringLiteral("0"));
  EXPECT_EQ(counted(D(2024, 1, 1), D(2024, 1, 2), true), "2|00");
  // lowStepOnly never applies the first and last day rule.
  std::vector<ChartDayRecord> days;
  CalcStepActMin(db_, kUser, QStringLiteral("20240120"), QStringLiteral("20240120"), days, true,
                 false, true);
  EXPECT_EQ(days[0].ExcludeFlag, QStringLiteral("0"));

  // Header line 4 counts the days that count; line 6 tells the rules.
  ASSERT_TRUE(make(101, D(2024, 1, 14), D(2024, 1, 20)));
  ASSERT_EQ(header_.size(), 7);
  EXPECT_EQ(header_[3] + u'|' + header_[5], QStringLiteral("20240114,20240120,6, 2|\"Last Date, 50 Step and under/day\""));
}

TEST_F(ChartDb, LowStepRuleAndItsThresholds) {
  add(D(2024, 5, 1), 1);  // first day, excluded by its own rule
  for (const auto& [day, steps] : {std::pair{2, 49}, {3, 50}, {4, 0}}) add(D(2024, 5, day), day, steps);
  add(D(2024, 5, 9), 5);
  EXPECT_EQ(counted(D(2024, 5, 2), D(2024, 5, 4), true), "3|101");
  inst_.setConfig(QStringLiteral("REPORT"), QStringLiteral("EDFA_LOW_STEP_COUNT"), QString());
  EXPECT_EQ(counted(D(2024, 5, 2), D(2024, 5, 4), true), "3|000") << "no threshold: no low-step rule";
  inst_.setConfig(QStringLiteral("REPORT"), QStringLiteral("EDFA_LOW_STEP_COUNT"), QStringLiteral("50"));

  // A week whose days are all excluded still gives its exercise figure; the last day
  // 05-09 is a Thursday, so weeks run Friday to Thursday.
  ASSERT_TRUE(make(101, D(2024, 5, 2), D(2024, 5, 9)));
  ASSERT_EQ(iface_.size(), 5);
  EXPECT_EQ(Head(iface_[3]) + u'|' + Field(iface_[3], 786), "1,20240502,20240502|1.0");
  // 05-03 counts; 05-04 (0 steps) and the last day do not, but all three add exercise.
  EXPECT_EQ(Head(iface_[4]) + u'|' + Field(iface_[4], 6) + u'|' + Field(iface_[4], 786),
            "0,20240503,20240509|50|3.0");
}

TEST_F(ChartDb, ModerateOverflowFailsTheChart) {
  add(Row{.day = D(2024, 4, 2), .level8 = 9000});  // vigorous count above 8191
  EXPECT_EQ(calc(D(2024, 4, 1), D(2024, 4, 3), false), -1);
  EXPECT_FALSE(make(100, D(2024, 4, 1), D(2024, 4, 3)));
  EXPECT_TRUE(shown(QStringLiteral("CALC-C-0002")));
  EXPECT_TRUE(ifaceFile_.isEmpty());
  EXPECT_TRUE(inst_.logged(QStringLiteral("2"), QStringLiteral("CalcStepActMin"), QStringLiteral("Overflow")));
}

TEST_F(ChartDb, UnknownTypeAndUnknownUser) {
  addDays(D(2024, 1, 1), D(2024, 1, 3));
  QString iface, header;
  EXPECT_FALSE(MakeChartData(db_, 700, QStringLiteral("2024/01/01"), QStringLiteral("2024/01/03"),
                             iface, header));
  EXPECT_TRUE(iface.isEmpty());
  EXPECT_TRUE(shown(QStringLiteral("CALC-C-0002")));
  EXPECT_TRUE(inst_.traceText().contains(QStringLiteral("MakeDataMain ChartType Err")));

  EXPECT_FALSE(MakeChartData(db_, 100, QStringLiteral("2024/01/01"), QStringLiteral("2024/01/03"),
                             iface, header, QStringLiteral("U000000077")));
  EXPECT_TRUE(shown(QStringLiteral("CALC-C-0001")));
  EXPECT_TRUE(header.isEmpty());
}

TEST_F(ChartDb, FilesAreNamedInTheTemporaryFolder) {
  addDays(D(2024, 1, 1), D(2024, 1, 9));
  ASSERT_TRUE(make(301, D(2024, 1, 1), D(2024, 1, 9)));
  const QFileInfo fi(ifaceFile_);
  EXPECT_EQ(QDir(fi.absolutePath()).canonicalPath(), QDir(inst_.tempPath()).canonicalPath());
  EXPECT_TRUE(fi.fileName().startsWith(QStringLiteral("301")));
  EXPECT_TRUE(QFileInfo(headerFile_).fileName().startsWith(QStringLiteral("HED")));
  EXPECT_TRUE(simFile_.isEmpty());
  EXPECT_EQ(iface_[0], QStringLiteral("301"));
  EXPECT_EQ(Field(iface_[1], 32), Ini_GetTargetExercise());  // the user has no own target
  EXPECT_EQ(header_[0], QStringLiteral("Hana,,Sato,hana,") + GetGroupName(db_, kDefaultGroupId));
  EXPECT_EQ(header_[2].section(QLatin1Char(','), 0, 0), QStringLiteral("41"));
  EXPECT_TRUE(header_[2].endsWith(QStringLiteral("160 cm,60.0 kg")));
  EXPECT_EQ(header_[4], QStringLiteral("9000,,,4,7"));
  // Weeks end on the last measured day's weekday (Tuesday 01-09).
  ASSERT_EQ(iface_.size(), 5);
  EXPECT_EQ(iface_[3].section(QLatin1Char(','), 1, 2) + u'|' + iface_[4].section(QLatin1Char(','), 1, 2),
            "20240101,20240102|20240103,20240109");
}

TEST_F(ChartDb, PlanWeightsAndTheSimFile) {
  addDays(D(2024, 3, 1), D(2024, 3, 28));
  ASSERT_TRUE(SetWeightPlan(db_, {.UserId = kUser, .StartDate = "20240305", .EndDate = "20240315",
                                  .TargetWeight = "58.0", .StartWeight = "60.0", .PoundFlag = "0"}));

  ASSERT_TRUE(make(800, D(2024, 3, 1), D(2024, 3, 28)));
  // Before the plan, on 03-10 half way, and after it.
  EXPECT_EQ(Field(iface_[3], 27) + u'|' + Field(iface_[3 + 9], 27) + u'|' + Field(iface_[3 + 20], 27),
            "60.0|59.0|58.0");
  EXPECT_EQ(simFile_, ifaceFile_ + QStringLiteral(".sim"));
  // Weeks end on Thursdays (03-28): 03-07, 03-14, 03-21, and the element before the last.
  ASSERT_EQ(sim_.size(), 6);
  EXPECT_EQ(sim_.mid(0, 3), QStringList({"900", "20240305,60.0,20240315,58.0", "20240307,60.0,59.6"}));
  EXPECT_EQ(sim_[5], QStringLiteral("20240327,60.0,58.0"));
}

TEST_F(ChartDb, GeneratedRecorderDays) {
  // Across the year end.
  RecorderImageOptions o{.kind = RecorderKind::BrioNormal, .days = 21, .seed = 7, .lastDay = D(2024, 1, 3)};
  ASSERT_EQ(StoreRecorderDays(db_, kUser, o), QString());
  QString first, last;
  ASSERT_TRUE(VTDB_GetDayMeasurementRange(db_, kUser, first, last, false));
  EXPECT_EQ(last, QStringLiteral("20240103"));

  EXPECT_EQ(calc(D(2023, 12, 1), D(2024, 1, 3), true, true), 21);
  EXPECT_TRUE(CheckDataChronology(days_));
  int withBlock = 0;
  for (const auto& d : days_)
    if (d.NewestOfDay && d.ACT_LEVEL_BLOCK.count(QLatin1Char(',')) == 719) ++withBlock;
  EXPECT_EQ(withBlock, 21);

  // The four-week span that holds the year end is one counted line.
  ASSERT_TRUE(make(102, D(2023, 11, 1), D(2024, 1, 3)));
  ASSERT_EQ(iface_.size(), 6);
  EXPECT_EQ(Head(iface_[5]), QStringLiteral("0,20231207,20240103"));

  // A second reception of the same recorder later on gives the same days again.
  o.lastDay = D(2024, 1, 10);
  o.days = 28;
  ASSERT_EQ(StoreRecorderDays(db_, kUser, o), QString());
  EXPECT_EQ(calc(D(2023, 12, 14), D(2024, 1, 10), false), 28);
  EXPECT_TRUE(CheckDataChronology(days_));
  for (const auto& d : days_) EXPECT_EQ(d.RECEIVE_ID, days_.back().RECEIVE_ID);
}

class EnglishChartDb : public ChartDb {
 protected:
  EnglishChartDb() : ChartDb(QStringLiteral("en")) {}
};

TEST_F(EnglishChartDb, MixedUnitsShowTheUnitOfTheLastDay) {
  ASSERT_TRUE(IsEnglishEdition());
  add(D(2024, 6, 1), 1);       // kilograms
  add(D(2024, 6, 2), 2, 5000, "1");  // pounds from here on
  EXPECT_EQ(GetUnitFlag(db_, kUser), 1);
  ASSERT_TRUE(make(100, D(2024, 6, 1), D(2024, 6, 2)));
  EXPECT_EQ(Field(iface_[3], 14) + u'|' + Field(iface_[3], 15) + u'|' + Field(iface_[4], 15), "2.2|132|132");
  EXPECT_TRUE(header_[2].endsWith(QStringLiteral("5' 3\",132 lbs.")));

  // Back to kilograms on the last day: every day shows kilograms.
  add(D(2024, 6, 3), 3);
  ASSERT_TRUE(make(100, D(2024, 6, 1), D(2024, 6, 3)));
  EXPECT_EQ(Field(iface_[4], 14) + u'|' + Field(iface_[4], 15), "3.5|60.0");

  // A group's weight takes the form of the unit it is shown in, not of its row: the
  // chart library reads kilograms from one decimal and pounds from whole numbers.
  ASSERT_TRUE(make(101, D(2024, 6, 1), D(2024, 6, 3)));
  ASSERT_EQ(iface_.size(), 4);
  EXPECT_EQ(Field(iface_[3], 15), QStringLiteral("60.0"));  // last counted day: the pound row
  add(D(2024, 6, 4), 4, 5000, "1");
  ASSERT_TRUE(make(101, D(2024, 6, 1), D(2024, 6, 4)));
  EXPECT_EQ(Field(iface_[3], 15), QStringLiteral("132"));  // last counted day: a kilogram row
}

TEST_F(ChartDb, JapaneseInstallationKeepsEachRowsUnit) {
  add(D(2024, 6, 1), 1);
  add(D(2024, 6, 2), 2, 5000, "1");
  ASSERT_TRUE(make(100, D(2024, 6, 1), D(2024, 6, 2)));
  EXPECT_EQ(Field(iface_[3], 15) + u'|' + Field(iface_[4], 15), "60.0|132");
}
