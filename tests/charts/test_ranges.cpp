// Weeks, four-week spans and the display window of each period, without a database.
#include <gtest/gtest.h>

#include "charts/charts.h"
#include "testsupport/test_installation.h"

using namespace charts;

namespace {

QDate D(int y, int m, int d) { return QDate(y, m, d); }

RangeState StateFor(const QDate& first, const QDate& last, int period) {
  return {.dtDateEnd = last, .rangeFirst = first, .rangeLast = last, .periodKind = period};
}

// The window shown: first and last day.
std::pair<QDate, QDate> Win(const RangeState& s) { return {s.dtDateStart, s.dtDateEnd}; }

}  // namespace

TEST(Weekdays, AnchoredWeekEnds) {
  // A last day on a Wednesday: weeks run Thursday to Wednesday.
  for (const auto& [day, first, last] : {std::tuple{6, 4, 3}, {10, 1, 7}}) {
    const WeekEndWeekdays w = GetWeekEndWeekdays(D(2024, 3, day));
    EXPECT_EQ(std::pair(w.first, w.last), std::pair(first, last)) << day;
  }
}

TEST(FourWeekSpans, FindAndShiftAcrossYearEnds) {
  const QDate anchor = D(2024, 1, 10);
  FourWeekSpan s = FindFourWeekSpan(anchor, anchor);
  EXPECT_EQ(std::tuple(s.start, s.end, s.steps), std::tuple(D(2023, 12, 14), anchor, 0));

  // The span before the anchor's, across the turn of the year.
  s = FindFourWeekSpan(anchor, D(2023, 12, 13));
  EXPECT_EQ(std::tuple(s.start, s.end, s.steps), std::tuple(D(2023, 11, 16), D(2023, 12, 13), -1));

  // Forward over the anchor: the first day after it opens the next span.
  s = FindFourWeekSpan(anchor, D(2024, 1, 11));
  EXPECT_EQ(std::tuple(s.start, s.end, s.steps), std::tuple(D(2024, 1, 11), D(2024, 2, 7), 1));

  // A date a year and more before the anchor, across two year ends.
  s = FindFourWeekSpan(anchor, D(2022, 12, 31));
  EXPECT_TRUE(s.start <= D(2022, 12, 31) && s.end >= D(2022, 12, 31));
  EXPECT_EQ(s.start.daysTo(s.end), 27);
  EXPECT_EQ(s.end.daysTo(anchor) % 28, 0);

  const FourWeekSpan shifted = ShiftFourWeekSpan(anchor, D(2023, 12, 20), -2);
  EXPECT_EQ(std::pair(shifted.end, shifted.steps), std::pair(D(2023, 11, 15), -2));
}

TEST(ChartKind, FromGraphAndPeriod) {
  EXPECT_EQ(ChartKindFor(3, kPeriodMonth), 501);  // total calories is the 500 chart
  EXPECT_EQ(ChartKindFor(kGraphIndexDay, kPeriodMonth), 5);
  EXPECT_EQ(ChartKindFor(8, kPeriodWeek), 0);
}

TEST(Clamps, OnSlashTexts) {
  const QString first = QStringLiteral("2024/01/10");
  const QString last = QStringLiteral("2024/03/07");
  EXPECT_EQ(ClampEndDate(last, QString(), QString()), last);
  EXPECT_EQ(ClampEndDate(last, QStringLiteral("2024/03/08"), first), last);
  EXPECT_EQ(ClampEndDate(last, QStringLiteral("2024/01/09"), first), first);
  EXPECT_EQ(ClampEndDate(last, QStringLiteral("2024/01/09"), QString()), QStringLiteral("2024/01/09"));
  EXPECT_EQ(ClampEndDate(last, QStringLiteral("2024/02/01"), first), QStringLiteral("2024/02/01"));

  EXPECT_EQ(ClampStartDate(first, last, QStringLiteral("2023/12/31"), QString(), 0), first);
  EXPECT_EQ(ClampStartDate(first, last, QStringLiteral("2024/04/01"), QString(), 0), last);
  EXPECT_EQ(ClampStartDate(first, last, QString(), QStringLiteral("d"), -6), QStringLiteral("2024/03/01"));
  EXPECT_EQ(ClampStartDate(first, QStringLiteral("2024/01/12"), QString(), QStringLiteral("d"), -6), first);
  EXPECT_EQ(ClampStartDate(first, last, QString(), QString(), 0), first);

  EXPECT_EQ(GetStarEndRange(kPeriodWeek, D(2024, 3, 7), 1), D(2024, 3, 13));
  EXPECT_EQ(GetStarEndRange(kPeriodMonth, D(2024, 3, 7), 0), D(2024, 2, 2));
  EXPECT_EQ(GetStarEndRange(kPeriodSixMonths, D(2024, 3, 7), -1), D(2023, 9, 22));
}

// Walks back from the latest window to the first, then forward again, checking the
// step of each period and the window at the left edge.
class Navigation : public ::testing::Test {
 protected:
  TestInstallation inst_;  // DateAdjustment may log
  const QDate first_ = D(2022, 10, 12);  // a Wednesday
  const QDate last_ = D(2024, 3, 7);     // a Thursday
};

TEST_F(Navigation, EachPeriodStepsByItsUnitAndKeepsItsLengthAtTheLeftEdge) {
  struct Case {
    int period;
    int length;  // days of the window less one
    int step;
    QDate edgeEnd;
  };
  // At the left edge a month runs to the end of the fifth week counted from the week that
  // holds the first day, six months to the end of the sixth span counted from its span.
  const QDate weekStart = first_.addDays(-((first_.dayOfWeek() - last_.addDays(-6).dayOfWeek() + 7) % 7));
  const Case cases[] = {
      {kPeriodWeek, 6, 1, first_.addDays(6)},
      {kPeriodMonth, 34, 7, weekStart.addDays(34)},
      {kPeriodSixMonths, 167, 28, FindFourWeekSpan(last_, first_).start.addDays(167)},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.period);
    RangeState s = StateFor(first_, last_, c.period);
    ASSERT_TRUE(DateAdjustment(s, c.period, kAdjustLatest));
    EXPECT_EQ(Win(s), std::pair(last_.addDays(-c.length), last_));
    EXPECT_TRUE(IsLatestDate(s));
    int steps = 0;
    while (s.dtDateStart > first_) {
      const QDate before = s.dtDateEnd;
      ASSERT_TRUE(DateAdjustment(s, c.period, kAdjustBack));
      if (s.dtDateStart > first_) {
        ASSERT_EQ(s.dtDateEnd, before.addDays(-c.step));
        ASSERT_EQ(s.dtDateStart, s.dtDateEnd.addDays(-c.length));
      }
      ASSERT_LT(++steps, 1000);
    }
    for (int again = 0; again < 2; ++again) {  // a further step back stays at the edge
      EXPECT_EQ(Win(s), std::pair(first_, c.edgeEnd));
      EXPECT_EQ(std::pair(s.dateChartFrom, s.dateChartTo), Win(s));
      ASSERT_TRUE(DateAdjustment(s, c.period, kAdjustBack));
    }
    while (!IsLatestDate(s)) {
      const QDate before = s.dtDateEnd;
      ASSERT_TRUE(DateAdjustment(s, c.period, kAdjustNext));
      ASSERT_EQ(s.dtDateEnd, before.addDays(c.step));
      ASSERT_LT(++steps, 2000);
    }
    EXPECT_EQ(s.dtDateStart, last_.addDays(-c.length));
    ASSERT_TRUE(DateAdjustment(s, c.period, kAdjustNext));
    EXPECT_EQ(s.dtDateEnd, last_);
  }
}

TEST_F(Navigation, DayStepsAndKeepModeClampsThePicker) {
  RangeState s = StateFor(first_, last_, kPeriodDay);
  s.dtDateEnd = D(2030, 1, 1);  // beyond the data
  ASSERT_TRUE(DateAdjustment(s, kPeriodDay, kAdjustKeep));
  EXPECT_EQ(std::tuple(s.dtDateStart, s.dtDateEnd, s.graphVisible), std::tuple(last_, last_, true));
  ASSERT_TRUE(DateAdjustment(s, kPeriodDay, kAdjustBack));
  EXPECT_EQ(Win(s), std::pair(s.dtDateEnd, last_.addDays(-1)));
  EXPECT_FALSE(IsLatestDate(s));
  s.dtDateEnd = first_;
  ASSERT_TRUE(DateAdjustment(s, kPeriodDay, kAdjustBack));
  EXPECT_EQ(s.dtDateEnd, first_);

  // A month window kept on a Saturday ends on Saturdays.
  RangeState m = StateFor(first_, last_, kPeriodMonth);
  m.dtDateEnd = D(2023, 6, 17);
  ASSERT_TRUE(DateAdjustment(m, kPeriodMonth, kAdjustKeep));
  EXPECT_EQ(Win(m), std::pair(D(2023, 5, 14), D(2023, 6, 17)));
}

TEST_F(Navigation, NoDataAndOneDay) {
  RangeState none{.dtDateEnd = D(2024, 1, 1)};
  const QDate today = D(2024, 5, 5);
  ASSERT_TRUE(DateAdjustment(none, kPeriodWeek, kAdjustKeep, today));
  EXPECT_EQ(Win(none), std::pair(today, today));
  RangeState before = none;
  EXPECT_FALSE(DateAdjustment(none, kPeriodWeek, kAdjustBack, today));
  EXPECT_EQ(none.dtDateEnd, before.dtDateEnd);
  EXPECT_TRUE(inst_.logged(QStringLiteral("2"), QStringLiteral("DateAdjustment"), QStringLiteral("ERROR END")));

  RangeState init;
  InitChartState(init, QDate(), QDate(), today);
  EXPECT_EQ(std::pair(init.noData, init.chartKind), std::pair(true, 100));

  // One measured day: every period shows that day and it is the latest at once.
  const QDate only = D(2024, 2, 29);
  for (int period : {kPeriodDay, kPeriodWeek, kPeriodMonth, kPeriodSixMonths}) {
    RangeState s = StateFor(only, only, period);
    for (int mode : {kAdjustKeep, kAdjustBack, kAdjustNext, kAdjustLatest}) {
      ASSERT_TRUE(DateAdjustment(s, period, mode)) << period << " " << mode;
      EXPECT_EQ(Win(s), std::pair(only, only)) << period << " " << mode;
      EXPECT_TRUE(IsLatestDate(s));
    }
  }
}

TEST_F(Navigation, ThePickersKeepTheWindowInsideTheData) {
  // The user moves the end picker near the first day: the start follows and the
  // window keeps its length as far as the data allows.
  RangeState w = StateFor(first_, last_, kPeriodWeek);
  w.dtDateEnd = first_.addDays(2);
  UpdateRangeStartDate(w);
  EXPECT_EQ(Win(w), std::pair(first_, first_.addDays(6)));
  w.dtDateEnd = D(2031, 1, 1);
  UpdateRangeStartDate(w);
  EXPECT_EQ(Win(w), std::pair(last_.addDays(-6), last_));
  w.dtDateStart = last_.addDays(-2);
  UpdateRangeEndDate(w);
  EXPECT_EQ(Win(w), std::pair(last_.addDays(-6), last_));
  w.dtDateStart = D(2000, 1, 1);
  UpdateRangeEndDate(w);
  EXPECT_EQ(Win(w), std::pair(first_, first_.addDays(6)));
  EXPECT_EQ(CheckOneDayRange(w, D(2031, 1, 1)), last_);
  EXPECT_EQ(CheckOneDayRange(w, first_), first_);
}
