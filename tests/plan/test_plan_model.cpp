// The plan's arithmetic against figures worked out by hand. Each case writes its working
// in the comment, so a failing figure can be checked without the code.
#include <gtest/gtest.h>

#include "frame/frame.h"
#include "plan/plan.h"
#include "testsupport/test_installation.h"

using namespace plan;

namespace {

ChartDayRecord Day(const QString& activity, bool counts = true, bool newest = true) {
  ChartDayRecord d;
  d.ACTIVITY = activity;
  d.NewestOfDay = newest;
  d.ExcludeFlag = counts ? QStringLiteral("0") : QStringLiteral("1");
  return d;
}

}  // namespace

TEST(PlanBody, BasalRateAtEveryRowBoundary) {
  struct Case {
    int age;
    double male;
    double female;
  };
  // The rows either side of the missing age 11, the male 60-64 row that repeats 65-69,
  // and the open ends.
  const Case cases[] = {
      {-1, 0, 0},       {0, 61.7, 61.9},  {10, 35.7, 34.2}, {11, 0, 0},       {12, 33.6, 30.1},
      {59, 21.4, 20.4}, {60, 22.0, 20.6}, {64, 22.0, 20.6}, {65, 22.0, 20.7}, {80, 20.2, 20.7},
  };
  for (const Case& c : cases) {
    EXPECT_DOUBLE_EQ(GetBasalRatePerKg(0, c.age), c.male) << "male " << c.age;
    EXPECT_DOUBLE_EQ(GetBasalRatePerKg(1, c.age), c.female) << "female " << c.age;
  }
}

TEST(PlanBody, BmiRoundsHalvesAwayFromZero) {
  // 89.0 kg at 200 cm: 890000 / 40000 = 22.25 exactly; half-even would give 22.2.
  EXPECT_DOUBLE_EQ(CalcBMI(89.0, 200), 22.3);
  // 60 kg at 160 cm: 600000 / 25600 = 23.4375 -> 23.4.
  EXPECT_DOUBLE_EQ(CalcBMI(60.0, 160), 23.4);
  EXPECT_EQ(BmiText(60.0, 160), "23.4");
  // 45 kg at 150 cm: 450000 / 22500 = 20 -> "20.0" keeps its decimal.
  EXPECT_EQ(BmiText(45.0, 150), "20.0");
  // No height: 0, and the field is left empty.
  EXPECT_DOUBLE_EQ(CalcBMI(60.0, 0), 0.0);
  EXPECT_EQ(BmiText(60.0, 0), "");
}

TEST(PlanBody, PoundConversionsForPlanAndBmiDiffer) {
  // Plan: 150 x 453.5920104980469 / 1000 = 68.0388015747...
  EXPECT_NEAR(PlanWeightKg("150", true), 68.0388015747, 1e-9);
  EXPECT_DOUBLE_EQ(PlanWeightKg("0", true), 0.0);
  // BMI: round(150 x 453.59 = 68038.5) is 68038 (half to even), / 1000 -> 68.
  EXPECT_DOUBLE_EQ(BmiWeightKg("150", true), 68.0);
  // 5 ft 3 in: 63 x 2.54 = 160.02 -> 160 cm.
  EXPECT_DOUBLE_EQ(BmiHeightCm("", "5", "3", true), 160.0);
  // kg and cm stand as written.
  EXPECT_DOUBLE_EQ(PlanWeightKg("74.6", false), 74.6);
  EXPECT_DOUBLE_EQ(BmiHeightCm("172", "5", "8", false), 172.0);
}

TEST(PlanBody, HealthyRangeTestsAt24Point9AndTellsTheExcessFrom25) {
  TestInstallation inst(QStringLiteral("en"));
  ASSERT_TRUE(inst.isValid());
  const QString over = GetIniCaption("SIMULATION", "YOU_OVERWEIGHT");
  const QString within = GetIniCaption("SIMULATION", "YOU_STWEIGHT");
  const QString under = GetIniCaption("SIMULATION", "YOU_UNDERWEIGHT");
  // 160 cm: h^2 = 25600. 24.9 -> 63.744 -> 63.7; 25 -> 64.0; 18.5 -> 47.36 -> 47.4;
  // 22 -> 56.32 -> 56.3.
  HealthyRange r = CalcHealthyRange(63.7, 160, false, "kg");
  EXPECT_DOUBLE_EQ(r.normalTop, 63.7);
  EXPECT_EQ(r.verdict, within);
  // 63.8 is over the 24.9 line but below 25: the excess shown is 63.8 - 64.0.
  EXPECT_EQ(CalcHealthyRange(63.8, 160, false, "kg").verdict, over + " -0.2 kg");
  EXPECT_EQ(CalcHealthyRange(70.0, 160, false, "kg").verdict, over + " 6.0 kg");
  EXPECT_EQ(CalcHealthyRange(47.5, 160, false, "kg").verdict, within);
  EXPECT_EQ(CalcHealthyRange(47.4, 160, false, "kg").verdict, under);
  // Difference from 56.3: a plus only above 0.
  EXPECT_EQ(CalcHealthyRange(60.0, 160, false, "kg").standardDifference, "+3.7");
  EXPECT_EQ(CalcHealthyRange(56.3, 160, false, "kg").standardDifference, "0.0");
  EXPECT_EQ(CalcHealthyRange(50.0, 160, false, "kg").standardDifference, "-6.3");
  // Pounds: 63.744 -> 63 kg -> 138.9 -> 139 is odd and q below it -> 138; 64 kg -> 140
  // (table); 56.32 -> 56 kg -> 123.46 -> 123 odd, q above -> 124.
  r = CalcHealthyRange(139, 160, true, "lb");
  EXPECT_DOUBLE_EQ(r.normalTop, 138);
  EXPECT_DOUBLE_EQ(r.overLine, 140);
  EXPECT_EQ(r.verdict, over + " -1 lb");
  EXPECT_EQ(r.standardDifference, "+15");
  EXPECT_EQ(CalcHealthyRange(138, 160, true, "lb").verdict, within);
}

TEST(PlanDates, PlanLengthFromThePeriod) {
  // 29 January 2024 + 1 month: 29 February exists in a leap year -> 28 February, 31 days
  // counted; from the 30th there is no such day -> the 29th itself, 31 days as well.
  EXPECT_EQ(AddMonthsMinusDay(QDate(2024, 1, 29), 1), QDate(2024, 2, 28));
  EXPECT_EQ(PlanDays(QDate(2024, 1, 29), QDate(2024, 2, 28)), 31);
  EXPECT_EQ(AddMonthsMinusDay(QDate(2024, 1, 30), 1), QDate(2024, 2, 29));
  EXPECT_EQ(PlanDays(QDate(2024, 1, 30), QDate(2024, 2, 29)), 31);
  // Two years across a leap day: 1 Nov 2023 + 24 -> 31 Oct 2025, 731 days.
  EXPECT_EQ(PlanDays(QDate(2023, 11, 1), AddMonthsMinusDay(QDate(2023, 11, 1), 24)), 731);
  EXPECT_EQ(PlanDays(QDate(2024, 5, 5), QDate(2024, 5, 5)), 1);
}

TEST(PlanFiguresTest, AverageActivityTakesTheNewestTenCountingDays) {
  // No day at all, and only excluded or superseded days: the divisor is 1, the sum 0.
  EXPECT_EQ(AverageActivityText({}), "0");
  EXPECT_EQ(AverageActivityText({Day("300", false), Day("400", true, false)}), "0");
  // Twelve counting days 100..111, oldest first: the newest ten are 102..111, sum 1065,
  // mean 106.5 -> 107 (half away from zero). An excluded day among them is stepped over
  // and pulls 101 in: 101 + 102..110 = 1055 -> 105.5 -> 106.
  std::vector<ChartDayRecord> days;
  for (int a = 100; a < 112; ++a) days.push_back(Day(QString::number(a)));
  EXPECT_EQ(AverageActivityText(days), "107");
  days.back().ExcludeFlag = "1";
  EXPECT_EQ(AverageActivityText(days), "106");
}

TEST(PlanFiguresTest, OneDayPlanWithoutValidDays) {
  // One day, 1 kg: gap 7000. No activity recorded: average 0, so more = target = 7000.
  // Walking at 70 kg: 7000 x 60 / (70 x 2.8) = 420000 / 196 = 2142.86 -> 2143; the target
  // is 0 + 2143 and the week 15001.
  const PlanResult r =
      ComputePlan({.start = QDate(2024, 7, 1), .end = QDate(2024, 7, 1), .lossKg = 1, .weightKg = 70, .averageActivity = "0"});
  EXPECT_EQ(r.days, 1);
  EXPECT_EQ(QStringList({r.dailyGap, r.moreActivity, r.targetActivity}).join(u' '), "7000 7000 7000");
  EXPECT_EQ(QStringList({r.walk.average, r.walk.more, r.walk.target, r.walk.weeklyTarget, r.fastWalk.average}).join(u' '),
            "0 2143 2143 15001 ");
}

TEST(PlanFiguresTest, ShownTargetIsTheSumOfTheShownParts) {
  // 35 days, 0.6 kg: 4200 / 35 = 120. Average 110, weight 100; target 110 + 120 = 230.
  // Walking at 2.8: 110 x 60 / 280 = 23.57 -> 24 and 120 x 60 / 280 = 25.71 -> 26: the
  // target shown is 24 + 26 = 50, not 230 x 60 / 280 = 49.29 -> 49; the week 350.
  // 5.0 METs: 110 x 60 / 400 = 16.5 -> 17 (half away from zero); 120 x 60 / 400 = 18;
  // target 35.
  PlanRequest q{.start = QDate(2024, 7, 1), .end = QDate(2024, 8, 4), .lossKg = 0.6, .weightKg = 100,
                .averageActivity = "110", .metsAverage = 50, .metsMore = 50, .metsTarget = 50};
  PlanResult r = ComputePlan(q);
  EXPECT_EQ(r.days, 35);
  EXPECT_EQ(r.dailyGap, "120");
  EXPECT_EQ(r.targetActivity, "230");
  EXPECT_EQ(QStringList({r.walk.average, r.walk.more, r.walk.target, r.walk.weeklyTarget}).join(u' '), "24 26 50 350");
  EXPECT_EQ(QStringList({r.activity.average, r.activity.more, r.activity.target}).join(u' '), "17 18 35");
  // A target row set to another activity (8.3 METs) is its own figure: 230 x 60 /
  // (7.3 x 100) = 18.90 -> 19, week 133.
  q.metsTarget = 83;
  r = ComputePlan(q);
  EXPECT_EQ(r.activity.target + u' ' + r.activity.weeklyTarget, "19 133");
}

TEST(PlanFiguresTest, FoodAndReductionOptions) {
  // A food: 234 kcal x 15 tenths / 10 = 351; 75 x 5 / 10 = 37.5 -> 38.
  EXPECT_EQ(FoodKcalText("234", "15"), "351");
  EXPECT_EQ(FoodKcalText("75", "5"), "38");
  // 92 days, gap 304. Reduction 150: more = 304 - 150 = 154, target 518 + 154 = 672.
  PlanRequest q{.start = QDate(2024, 7, 1), .end = QDate(2024, 9, 30), .lossKg = 4, .weightKg = 74.6,
                .averageActivity = "518", .foodReduction = "150"};
  PlanResult r = ComputePlan(q);
  EXPECT_FALSE(r.stopped);
  EXPECT_EQ(r.moreActivity + u' ' + r.targetActivity, "154 672");
  // A gap not above the reduction needs no activity: the plan stops with its message,
  // equal included.
  for (const char* food : {"304", "351"}) {
    q.foodReduction = food;
    r = ComputePlan(q);
    EXPECT_TRUE(r.stopped) << food;
    EXPECT_EQ(r.message + u'|' + r.moreActivity + u'|' + r.walk.target, "DSIM-I-0001||") << food;
  }
  // Skipping the test (English opening) computes on: 304 - 351 = -47.
  q.skipFoodTest = true;
  r = ComputePlan(q);
  EXPECT_FALSE(r.stopped);
  EXPECT_EQ(r.moreActivity, "-47");
}

TEST(PlanFiguresTest, RestingRateMethodAndItsZeros) {
  // Female, 41: B = 20.7. Walking 304 kcal at 74.6 kg: 304 x 1440 = 437760 /
  // (74.6 x 3.5 x 20.7 = 5404.77) = 80.995 -> 81. Brisk: / (74.6 x 6 x 20.7 = 9265.32)
  // = 47.25 -> 47.
  EXPECT_EQ(RateMinutes(304, 74.6, 20.7, 3.5), "81");
  EXPECT_EQ(RateMinutes(304, 74.6, 20.7, 6.0), "47");
  PlanRequest q{.start = QDate(2024, 7, 1), .end = QDate(2024, 9, 30), .lossKg = 4, .weightKg = 74.6, .gender = 1,
                .age = 41, .averageActivity = "0", .method = ActivityMethod::Rmr};
  PlanResult r = ComputePlan(q);
  // The activity rows show the brisk walk.
  EXPECT_EQ(QStringList({r.walk.more, r.fastWalk.more, r.activity.more}).join(u' '), "81 47 47");
  // An eleven-year-old has no rate: every walking figure is 0.
  q.age = 11;
  r = ComputePlan(q);
  EXPECT_EQ(r.walk.more + u' ' + r.fastWalk.target, "0 0");
  // Weight 0 gives 0 minutes by every method; 1.0 METs would divide by zero and gives 0.
  EXPECT_EQ(WalkMinutes(500, 0), "0");
  EXPECT_EQ(MetsMinutes(500, 50, 0), "0");
  EXPECT_EQ(MetsMinutes(500, 10, 70), "0");
}

TEST(PlanChecks, BoundsAndOrder) {
  struct Case {
    const char* start;
    const char* target;
    const char* loss;
    bool pounds;
    const char* code;
    PlanField field;
  };
  const Case cases[] = {
      {"10", "9", "1", false, "", PlanField::None},
      {"9.9", "8.9", "1", false, "DSIM-I-0004", PlanField::StartWeight},
      {"350", "349", "1", false, "", PlanField::None},
      {"350.1", "349", "1.1", false, "DSIM-I-0004", PlanField::StartWeight},
      {"700", "690", "10", true, "", PlanField::None},
      {"701", "691", "10", true, "DSIM-I-0004", PlanField::StartWeight},
      {"351", "341", "10", true, "", PlanField::None},  // above 350 is fine in pounds
      {"300", "100", "200", false, "", PlanField::None},
      {"300", "99.9", "200.1", false, "DSIM-I-0004", PlanField::Loss},
      {"70", "70", "0", false, "DSIM-I-0003", PlanField::TargetWeight},
      {"70", "69", "0", false, "DSIM-I-0003", PlanField::Loss},
      {"70", "-1", "71", false, "DSIM-I-0003", PlanField::TargetWeight},
      {"abc", "69", "1", false, "DSIM-I-0002", PlanField::StartWeight},
      {"70", "", "1", false, "DSIM-I-0002", PlanField::TargetWeight},
  };
  for (const Case& c : cases) {
    const CheckResult r = CheckPlanFigures(c.start, c.target, c.loss, c.pounds);
    EXPECT_EQ(std::pair(r.code, r.field), std::pair(QString::fromLatin1(c.code), c.field))
        << c.start << " " << c.target << " " << c.loss;
  }
}

TEST(PlanTablesTest, InstalledListsAreUsableInBothEditions) {
  for (const char* lang : {"ja", "en"}) {
    TestInstallation inst(QString::fromLatin1(lang));
    ASSERT_TRUE(inst.isValid());
    const PlanTables t = LoadPlanTables();
    EXPECT_GE(t.periods.size(), 12u) << lang;
    EXPECT_LT(t.periodDefault, static_cast<int>(t.periods.size()));
    EXPECT_EQ(t.foods.size(), 10u) << lang;
    EXPECT_TRUE(t.portions.size() >= 4 && t.reductions.size() >= 5 && t.activities.size() >= 10) << lang;
    // Every activity must be above rest, or its minutes divide by zero.
    for (const ListItem& a : t.activities) EXPECT_GT(Val(a.value), 10) << lang << " " << a.text.toStdString();
    for (const FoodItem& f : t.foods) EXPECT_GT(Val(f.kcal), 0) << f.name.toStdString();
    for (const ListItem& p : t.periods) EXPECT_GT(Val(p.value), 0) << p.text.toStdString();
  }
  // A gap in a fixed list skips its index; the activity list ends at its first gap.
  TestInstallation inst(QStringLiteral("en"));
  inst.setResource("SIMULATION", "FOOD_NAME3", "");
  inst.setResource("SIMULATION", "ACTIVITY5", "");
  const PlanTables t = LoadPlanTables();
  EXPECT_EQ(std::pair(t.foods.size(), t.activities.size()), std::pair(size_t{9}, size_t{5}));
  EXPECT_EQ(t.foods[3].name, GetIniCaption("SIMULATION", "FOOD_NAME4"));
}
