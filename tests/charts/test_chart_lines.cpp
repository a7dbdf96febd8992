// Day list rules, aggregates and the lines of the chart files, from records in memory.
#include <gtest/gtest.h>

#include "charts/charts.h"
#include "frame/helpers.h"
#include "testsupport/sample_user.h"

using namespace charts;

namespace {

QDate D(int y, int m, int d) { return QDate(y, m, d); }

ChartDayRecord Day(const QDate& date, int steps, const QString& exercise = QStringLiteral("1.0")) {
  ChartDayRecord r{.RECEIVE_ID = "R000000001", .SEQ_NUM = "1", .MEASUREMENT_DAY = DateToYmd(date),
                   .WEEK_DAY = QString::number(date.dayOfWeek()), .STEP_COUNT = QString::number(steps),
                   .TARGET_STEP = "8000", .ACTIVITY = "200", .ACCUMULATION_TIME = "30", .TARGET_TIME = "60",
                   .TimeTargetSelected = "1", .ENERGY_EXPENDITURE = "1800", .SELECT_UNIT = "0",
                   .WeightShown = "60.4", .MEASUREMENT_MODE = "0", .DistanceShown = "3.2", .LOWER_BOUND = "4",
                   .UPPER_BOUND = "9", .NewestOfDay = true, .ExcludeFlag = "0", .EXERCISE = exercise};
  for (std::size_t i = 0; i < 10; ++i) r.ACTIVITY_LEVEL[i] = QString::number(i * 10);
  return r;
}

// Days start..end, each with a row unless listed in gaps.
std::vector<ChartDayRecord> Days(const QDate& start, const QDate& end, int steps = 5000) {
  std::vector<ChartDayRecord> days = MakeEmptyDays(start, end);
  std::vector<ChartDayRecord> rows;
  for (QDate d = start; d <= end; d = d.addDays(1)) rows.push_back(Day(d, steps));
  FillDayList(days, rows, DayListRules{});
  return days;
}

QStringList Fields(const QString& line) { return line.split(QLatin1Char(',')); }

InterfaceContext Ctx(int type, const QDate& anchor) {
  return {.chartType = type, .startDate = "20240101", .endDate = "20240131", .moderateFrom = "4",
          .moderateTo = "7", .exerciseTarget = "23.0", .useExclusion = UsesExclusion(type), .targetStep = "8000",
          .targetCal = "300", .anchor = anchor};
}

}  // namespace

TEST(DayList, LowStepThresholds) {
  // 49 steps fall under the default threshold, 50 do not; 0 and "-1" exclude nothing. A day
  // without a row is excluded and keeps its weekday.
  const std::vector<ChartDayRecord> rows{Day(D(2024, 1, 1), 49), Day(D(2024, 1, 2), 50), Day(D(2024, 1, 3), 0)};
  for (const char* threshold : {"50", "0", "-1"}) {
    std::vector<ChartDayRecord> days = MakeEmptyDays(D(2024, 1, 1), D(2024, 1, 4));
    EXPECT_EQ(FillDayList(days, rows, {.threshold = QLatin1String(threshold)}), 3);
    QString got;
    for (const auto& d : days) got += d.ExcludeFlag;
    EXPECT_EQ(got, QLatin1String(threshold) == QLatin1String("50") ? "1011" : "0001") << threshold;
    EXPECT_FALSE(days[3].NewestOfDay);
    EXPECT_EQ(days[3].WEEK_DAY, QStringLiteral("4"));
  }
}

TEST(DayFigures, ModerateMinutesExerciseAndCalorieTarget) {
  ChartDayRecord r;
  r.MODERATE = QStringLiteral("14");
  r.VIGOROUS = QStringLiteral("0");
  ASSERT_TRUE(ComputeModerateMinutes(r));
  EXPECT_FLOAT_EQ(r.ModerateMinutes, 0.9f);
  EXPECT_FLOAT_EQ(r.VigorousMinutes, 0.0f);
  r.MODERATE = QStringLiteral("8191");
  ASSERT_TRUE(ComputeModerateMinutes(r));
  EXPECT_FLOAT_EQ(r.ModerateMinutes, 546.1f);
  r.VIGOROUS = QStringLiteral("8192");  // x 4 leaves the 16-bit range
  EXPECT_FALSE(ComputeModerateMinutes(r));

  ChartDayRecord e;
  e.EXERCISE = QStringLiteral("0");
  EXPECT_EQ(ExerciseOf(e), QStringLiteral("0"));  // a stored zero is not recomputed
  e.EXERCISE.clear();
  e.ACTIVITY_LEVEL[4] = QStringLiteral("14");  // 0.9 min = 0.015 h x 3.6 -> 0.1
  EXPECT_EQ(ExerciseOf(e), QStringLiteral("0.1"));

  EXPECT_EQ(CalorieTargetFromWeight(QStringLiteral("60.4")), QStringLiteral("302"));
  EXPECT_EQ(CalorieTargetFromWeight(QStringLiteral("150")), QStringLiteral("750"));
}

TEST(DayList, ChronologyOfReceptions) {
  std::vector<ChartDayRecord> days = Days(D(2024, 1, 1), D(2024, 1, 3));
  EXPECT_TRUE(CheckDataChronology(days));
  days[1].SEQ_NUM = QStringLiteral("10");
  days[2].SEQ_NUM = QStringLiteral("9");
  EXPECT_FALSE(CheckDataChronology(days));
  days[2].RECEIVE_ID = QStringLiteral("R000000002");
  EXPECT_TRUE(CheckDataChronology(days));
  days[0].RECEIVE_ID = QStringLiteral("R000000003");
  EXPECT_FALSE(CheckDataChronology(days));
}

TEST(Lines, HeadLinesAndDailyLines) {
  InterfaceContext c = Ctx(100, D(2024, 1, 31));
  std::vector<ChartDayRecord> empty = MakeEmptyDays(D(2024, 1, 1), D(2024, 1, 2));
  QStringList head = InterfaceHeadLines(c, empty);
  EXPECT_EQ(head, QStringList({"100", "20240101,20240131,4,7,15000,500,100,2000,10000" + QString(23, u',') + "23.0",
                               "0,0,0,0,0,0"}));

  std::vector<ChartDayRecord> days = Days(D(2024, 1, 1), D(2024, 1, 2));
  days[0].STEP_COUNT = QStringLiteral("5001");
  days[1].ACCUMULATION_TIME = QStringLiteral("31");
  days[1].ExcludeFlag = QStringLiteral("1");
  head = InterfaceHeadLines(c, days);
  EXPECT_EQ(head[2], QStringLiteral("2,5001,200,1800,30.5,3.2"));  // no exclusions on type 100
  c.useExclusion = true;
  EXPECT_EQ(InterfaceHeadLines(c, days)[2], QStringLiteral("1,5001,200,1800,30.0,3.2"));

  const QString line = DailyLine(c, days[0]);
  const QStringList f = Fields(line);
  ASSERT_EQ(f.size(), 786);
  EXPECT_EQ(f.mid(0, 16).join(QLatin1Char(',')),
            QStringLiteral("0,20240101,20240101,8000,0,5001,60,1,30,300,1,200,1800,3.2,60.4,10"));
  // Level 9, no plan, the exercise.
  EXPECT_EQ(f[23] + u'|' + f[26] + u'|' + f[785], "90||1.0");

  // EXTRA3 "2": the calorie target follows the weight; "1" swaps the flags.
  c.extra3 = QStringLiteral("2");
  EXPECT_EQ(Fields(DailyLine(c, days[0]))[9], QStringLiteral("302"));
  c.extra3 = QStringLiteral("1");
  EXPECT_EQ(Fields(DailyLine(c, days[0]))[4] + u'|' + Fields(DailyLine(c, days[0]))[10], "1|0");
}

TEST(Lines, DayProfileWithAndWithoutBlock) {
  InterfaceContext c = Ctx(5, D(2024, 1, 1));
  ChartDayRecord d = Day(D(2024, 1, 1), 6000, QStringLiteral("2.25"));
  d.EVENT[0] = QStringLiteral("0730");
  d.MEASUREMENT_MODE = QStringLiteral("1");
  QStringList slots;
  for (int i = 0; i < 720; ++i) slots << QString::number(i % 10);
  d.ACT_LEVEL_BLOCK = slots.join(QLatin1Char(','));
  QStringList f = Fields(DailyLine(c, d));
  ASSERT_EQ(f.size(), 786);
  EXPECT_EQ(f[27] + f[53] + u'|' + f[54], QStringLiteral("|0730"));
  // First and last slot, the mode, the exercise "#0.0" rounded half away from zero.
  EXPECT_EQ(QStringList({f[64], f[783], f[784], f[785]}).join(u'|'), "0|9|1|2.3");

  // Without a block 721 empty fields keep the place, the mode lands in field 786 and
  // the exercise is appended to it.
  d.ACT_LEVEL_BLOCK.clear();
  f = Fields(DailyLine(c, d));
  ASSERT_EQ(f.size(), 786);
  for (int i = 64; i < 785; ++i) ASSERT_EQ(f[i], QString()) << i;
  EXPECT_EQ(f[785], QStringLiteral("12.3"));
}

TEST(Lines, WeeksAnchoredOnAWednesdayAndAllExcludedWeek) {
  // Anchor Wednesday 2024-01-31: weeks run Thursday to Wednesday. The list starts on a
  // Monday, so the first group is Monday to Wednesday.
  InterfaceContext c = Ctx(101, D(2024, 1, 31));
  std::vector<ChartDayRecord> days = Days(D(2024, 1, 1), D(2024, 1, 17));
  for (std::size_t i = 3; i < 10; ++i) days[i].ExcludeFlag = QStringLiteral("1");  // Thu 4 .. Wed 10
  days[1].STEP_COUNT = QStringLiteral("6000");
  days[2].WeightShown = QStringLiteral("61.25");
  int exist = 0;
  c.existData = [&exist](const QString& from, const QString& to) {
    ++exist;
    return from == QStringLiteral("20240104") && to == QStringLiteral("20240110");
  };
  const QStringList lines = InterfaceDataLines(c, days);
  ASSERT_EQ(lines.size(), 3);
  QStringList f = Fields(lines[0]);
  ASSERT_EQ(f.size(), 786);
  EXPECT_EQ(f.mid(1, 2), QStringList({"20240101", "20240103"}));
  // Steps (5000 + 6000 + 5000) / 3, time, the last counted day's weight, level 0, the week's exercise.
  EXPECT_EQ(QStringList({f[5], f[8], f[14], f[15], f[785]}).join(u'|'), "5333|30.0|61.3|10.00|3.0");

  // All days excluded: the empty group line, its plan weight in field 28, and still the
  // week's exercise.
  f = Fields(lines[1]);
  EXPECT_EQ(lines[1].section(QLatin1Char(','), 0, 27),
            QStringLiteral("1,20240104,20240110") + QString(25, QLatin1Char(',')));
  EXPECT_EQ(f[785], QStringLiteral("7.0"));
  EXPECT_EQ(exist, 1);

  // The list ends on a Wednesday 17th: the last group ends with the list.
  EXPECT_EQ(Fields(lines[2])[2], QStringLiteral("20240117"));
}

TEST(Lines, FourWeekGroupsTakeTheMeanWeeklyExercise) {
  // Anchor Sunday 2024-03-31; spans end 03-03, 03-31. List 2024-02-05 .. 2024-03-31.
  InterfaceContext c = Ctx(902, D(2024, 3, 31));
  std::vector<ChartDayRecord> days = MakeEmptyDays(D(2024, 2, 5), D(2024, 3, 31));
  // Span 1 (02-05 .. 03-03, four weeks): rows in weeks 1 and 3 only. Span 2: one excluded
  // row; it still gives exercise.
  const std::vector<ChartDayRecord> rows{Day(D(2024, 2, 6), 4000, "2.0"), Day(D(2024, 2, 7), 4000, "3.0"),
                                         Day(D(2024, 2, 20), 4000, "4.0"), Day(D(2024, 3, 10), 10, "1.5")};
  FillDayList(days, rows, {.threshold = "50"});
  c.plan = WeightPlan{D(2024, 2, 1), D(2024, 2, 29), QStringLiteral("70.0"), QStringLiteral("68.0")};

  const QStringList lines = InterfaceDataLines(c, days);
  ASSERT_EQ(lines.size(), 2);
  QStringList f = Fields(lines[0]);
  ASSERT_EQ(f.size(), 786);
  EXPECT_EQ(f.mid(1, 2), QStringList({"20240205", "20240303"}));
  EXPECT_EQ(f[5], QStringLiteral("4000"));
  // Five plan weights: weeks ending 02-11, 02-18, 02-25 inside the plan; 03-03 after it.
  EXPECT_EQ(f[26], QStringLiteral("69.3"));  // 68 x 10/28 + 70 x 18/28
  // Then no fifth week; the weights of weeks 1 to 3, week 2 without a counted day.
  EXPECT_EQ(f.mid(29, 5), QStringList({"68.0", "", "60.4", "", "60.4"}));
  // The closing comma, and (5.0 + 4.0) / 2 weeks that contributed.
  EXPECT_EQ(f[36] + u'|' + f[785], "|4.5");

  f = Fields(lines[1]);
  EXPECT_EQ(f[0] + u'|' + f[27] + u'|' + f[785], "3|68.0|1.5");
}

TEST(Lines, PlanWeightsBeforeInsideAndAfterThePlan) {
  const std::optional<WeightPlan> plan =
      WeightPlan{D(2024, 1, 10), D(2024, 1, 20), QStringLiteral("80"), QStringLiteral("75")};
  for (const auto& [day, weight] : {std::pair{9, "80.0"}, {10, "80.0"}, {13, "78.5"}, {20, "75.0"}, {21, "75.0"}})
    EXPECT_EQ(PlanWeightAt(plan, D(2024, 1, day)), QLatin1String(weight)) << day;
  // A group that starts inside and ends after the plan takes the target weight.
  EXPECT_EQ(PlanWeightOfGroup(plan, D(2024, 1, 15), D(2024, 1, 21)), QStringLiteral("75.0"));
  // A group ending before the start takes the start weight although it is the last day.
  EXPECT_EQ(PlanWeightOfGroup(plan, D(2024, 1, 3), D(2024, 1, 9)), QStringLiteral("80.0"));
  EXPECT_EQ(PlanWeightAt(std::nullopt, D(2024, 1, 13)), QString());

  EXPECT_FALSE(PlanFromRecord({.StartDate = "20240110"}).has_value());
  EXPECT_TRUE(PlanFromRecord({.StartDate = "20240110", .EndDate = "20240120", .StartWeight = "80"}).has_value());
}

TEST(Lines, HeaderLinesKeepTheirWording) {
  HeaderContext h{.user = SampleUser(QStringLiteral("U000000001")), .groupName = "Family",
                  .startDate = "20240101", .endDate = "20240107", .countedDays = 5, .targetStep = "8000",
                  .targetIntake = "2000", .targetActMin = "60", .moderateFrom = "4", .moderateTo = "7",
                  .threshold = "50", .institution = "Clinic"};
  h.user.FIRST_NAME = QStringLiteral("Hana  ");
  h.user.COMMENT = QStringLiteral("walks");
  // The gender carries its comma and the separator follows: an empty field before the height.
  EXPECT_EQ(HeaderLines(h), QStringList({"Hana,,Sato,hana,Family", "walks", "41,Female,,160 cm,60.0 kg", "20240101,20240107,5, ",
                                         "8000,2000,60,4,7", "\"First Date, Last Date, 50 Step and under/day\"", "Clinic"}));

  h.excludeLast = false;
  EXPECT_EQ(HeaderLines(h)[5], QStringLiteral("\"First Date50 Step and under/day\""));
  h.excludeFirst = false;
  h.excludeLast = true;
  EXPECT_EQ(HeaderLines(h)[5], QStringLiteral("\"Last Date, 50 Step and under/day\""));

  h.newestRow = DayRecord{.GENDAR = "0", .AGE = "42 ", .HEIGHT_FEET = "5", .HEIGHT_INCH = "3 ",
                          .WEIGHT_PAUND = "121", .SELECT_UNIT = "1", .PEDOMERA = "2"};
  h.captionMale = QStringLiteral("M");
  EXPECT_EQ(HeaderLines(h).mid(2, 2), QStringList({"42,M,,5' 3\",121 lbs.", "20240101,20240107,5, 2"}));
  h.reservedUser = true;
  EXPECT_EQ(HeaderLines(h).mid(0, 2), QStringList({",,,,", ""}));
}
