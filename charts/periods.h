// Weekdays, weeks and four-week spans of the charts. A week or a span is never a
// calendar unit: both are anchored on a given day (the user's last measured day for
// the statistics, the base date of the display range for navigation), so that a chart
// always closes with a full group on that day.
#pragma once

#include <QDate>

namespace charts {

// The first and last weekday of every week when weeks end on the weekday of lastDay.
struct WeekEndWeekdays {
  int first = 0;  // weekday of lastDay - 6
  int last = 0;   // weekday of lastDay
};
WeekEndWeekdays GetWeekEndWeekdays(const QDate& lastDay);

// One four-week span: anchor - 27 .. anchor moved by whole multiples of 28 days.
struct FourWeekSpan {
  QDate start;
  QDate end;
  // How many spans away from the anchor's own span: negative before it, 0 for it.
  int steps = 0;
};
// The span that holds date.
FourWeekSpan FindFourWeekSpan(const QDate& anchor, const QDate& date);
// The span n spans after (n < 0: before) the one that holds date.
FourWeekSpan ShiftFourWeekSpan(const QDate& anchor, const QDate& date, int n);

}  // namespace charts
