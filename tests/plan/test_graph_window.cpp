// The plan graph's window of dates at its bounds. The user's last day is Sunday 30 June
// 2024, so weeks run Monday to Sunday and the four-week spans are
//   k=-2 8 Apr-5 May, k=-1 6 May-2 Jun, k=0 3-30 Jun, k=1 1-28 Jul, k=2 29 Jul-25 Aug,
//   k=3 26 Aug-22 Sep, k=4 23 Sep-20 Oct, k=5 21 Oct-17 Nov, k=6 18 Nov-15 Dec.
#include <gtest/gtest.h>

#include "plan/graph_window.h"
#include "testsupport/test_installation.h"

using plan::GraphWindow;

namespace {

QDate D(int y, int m, int d) { return QDate(y, m, d); }
const QDate kLastDay = D(2024, 6, 30);
std::pair<QDate, QDate> Window(const GraphWindow& w) { return {w.windowStart(), w.windowEnd()}; }

}  // namespace

TEST(GraphWindowTest, OneMonthViewStopsExactlyAtItsBounds) {
  TestInstallation inst;  // the trace log of the failures goes somewhere
  // Plan Monday 1 July to Monday 30 September, now Wednesday 10 July.
  GraphWindow w(D(2024, 7, 1), D(2024, 9, 30), kLastDay, D(2024, 7, 10));
  ASSERT_TRUE(w.AdjustData());
  // High: the Sunday on or after 30 Sep is 6 Oct, + 2 weeks = 20 Oct. Low: the Monday on
  // or before 1 Jul is 1 Jul itself, - 2 weeks = 17 Jun.
  EXPECT_EQ(std::pair(w.weekLow(), w.weekHigh()), std::pair(D(2024, 6, 17), D(2024, 10, 20)));
  // Around 10 Jul: Sunday 14 Jul + 2 weeks = 28 Jul; Monday 8 Jul - 2 weeks = 24 Jun.
  ASSERT_TRUE(w.GetDisplayRange(0));
  EXPECT_EQ(Window(w), std::pair(D(2024, 6, 24), D(2024, 7, 28)));
  EXPECT_EQ(std::tuple(w.chartType(), w.previousEnabled(), w.nextEnabled()), std::tuple(801, true, true));

  // Back a week: end 21 Jul, start 15 Jul - 4 weeks = 17 Jun, the low bound.
  ASSERT_TRUE(w.GetDisplayRange(-1));
  EXPECT_EQ(Window(w), std::pair(D(2024, 6, 17), D(2024, 7, 21)));
  EXPECT_FALSE(w.previousEnabled());
  // Back again: the start would pass the bound, so the window stays five weeks from it.
  ASSERT_TRUE(w.GetDisplayRange(-1));
  EXPECT_EQ(Window(w), std::pair(D(2024, 6, 17), D(2024, 7, 21)));

  // Forward week by week: next goes off exactly when the end reaches 20 Oct.
  int steps = 0;
  while (w.nextEnabled() && steps < 30) {
    ASSERT_TRUE(w.GetDisplayRange(1));
    ++steps;
    EXPECT_EQ(w.windowStart().daysTo(w.windowEnd()), 34);
    EXPECT_EQ(w.windowEnd().dayOfWeek(), Qt::Sunday);
  }
  EXPECT_EQ(steps, 13);  // 21 Jul to 20 Oct
  EXPECT_EQ(Window(w), std::pair(D(2024, 9, 16), D(2024, 10, 20)));
  EXPECT_TRUE(w.previousEnabled());
  // One more does not leave the bound.
  ASSERT_TRUE(w.GetDisplayRange(1));
  EXPECT_EQ(std::pair(w.windowEnd(), w.nextEnabled()), std::pair(D(2024, 10, 20), false));
}

TEST(GraphWindowTest, SixMonthViewMovesBySpans) {
  TestInstallation inst;
  GraphWindow w(D(2024, 7, 1), D(2024, 9, 30), kLastDay, D(2024, 7, 10));
  w.setView(GraphWindow::SixMonths);
  ASSERT_TRUE(w.AdjustData());
  // 30 Sep is in k=4, + 2 -> k=6 ends 15 Dec; 1 Jul is in k=1, - 3 -> k=-2 starts 8 Apr.
  EXPECT_EQ(std::pair(w.spanLow(), w.spanHigh()), std::pair(D(2024, 4, 8), D(2024, 12, 15)));
  // 10 Jul is in k=1: end of k=3 (22 Sep), start of k=-2 (8 Apr): six spans.
  ASSERT_TRUE(w.GetDisplayRange(0));
  EXPECT_EQ(w.chartType(), 802);
  EXPECT_EQ(Window(w), std::pair(D(2024, 4, 8), D(2024, 9, 22)));
  EXPECT_FALSE(w.previousEnabled());
  // Next: end 20 Oct (k=4), start five spans before k=4: 6 May (k=-1).
  ASSERT_TRUE(w.GetDisplayRange(1));
  EXPECT_EQ(Window(w), std::pair(D(2024, 5, 6), D(2024, 10, 20)));
  EXPECT_TRUE(w.previousEnabled());
  ASSERT_TRUE(w.GetDisplayRange(1));
  ASSERT_TRUE(w.GetDisplayRange(1));
  EXPECT_EQ(std::pair(w.windowEnd(), w.nextEnabled()), std::pair(D(2024, 12, 15), false));
  // Back past the low bound: the start stops at 8 Apr and the window is six spans long.
  for (int i = 0; i < 4; ++i) ASSERT_TRUE(w.GetDisplayRange(-1));
  EXPECT_EQ(Window(w), std::pair(D(2024, 4, 8), D(2024, 9, 22)));
}

TEST(GraphWindowTest, PlanEndedBeforeTheLastDayShowsTheLaterDate) {
  TestInstallation inst;
  // Plan in May, last weight on Sunday 30 June: the bounds reach that day, and the window
  // is around it: Sunday 30 Jun + 2 weeks = 14 Jul; Monday 24 Jun - 2 weeks = 10 Jun.
  GraphWindow w(D(2024, 5, 1), D(2024, 5, 31), kLastDay, kLastDay);
  ASSERT_TRUE(w.AdjustData());
  ASSERT_TRUE(w.GetDisplayRange(0));
  EXPECT_EQ(Window(w), std::pair(D(2024, 6, 10), D(2024, 7, 14)));
  EXPECT_FALSE(w.nextEnabled());
  // Low bound: Monday 29 Apr - 2 weeks.
  EXPECT_EQ(std::pair(w.weekLow(), w.previousEnabled()), std::pair(D(2024, 4, 15), true));
}

TEST(GraphWindowTest, OneMeasuredDayAnchorsTheWeeksAndNoPlanIsNoWindow) {
  TestInstallation inst;
  // The only day is Wednesday 12 June: weeks run Thursday to Wednesday.
  GraphWindow w(D(2024, 6, 13), D(2024, 7, 12), D(2024, 6, 12), D(2024, 6, 12));
  ASSERT_TRUE(w.AdjustData());
  ASSERT_TRUE(w.GetDisplayRange(0));
  // Around 13 Jun (plan start, later than now): Wed 19 Jun + 2 weeks, Thu 13 Jun - 2.
  EXPECT_EQ(Window(w), std::pair(D(2024, 5, 30), D(2024, 7, 3)));

  GraphWindow none(QDate(), QDate(), QDate(), D(2024, 6, 12));
  EXPECT_FALSE(none.AdjustData());
  EXPECT_FALSE(none.GetDisplayRange(0));
  EXPECT_TRUE(inst.traceText().contains("ERROR END"));
}
