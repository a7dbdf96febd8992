// Weekdays, weeks and four-week spans of the charts. A week or a span is never a
// calendar unit: both are anchored on a given day (the user's last measured day for
// the statistics, the base date of the display range for navigation), so that a chart
// always closes with a full group on that day.
#pragma once

#include <QDate>
#include <QString>
#include <utility>
#include <vector>

namespace charts {

// Platform weekday, 1 = Sunday ... 7 = Saturday, to Monday = 1 ... Sunday = 7.
int ToIsoWeekday(int platformWeekday);
// Monday = 1 ... Sunday = 7 of a date text ("yyyymmdd" or "yyyy/mm/dd"); 0 when the
// text is no date.
int IsoWeekdayOfDate(const QString& dateText);

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
// Spans as "yyyyMMdd" pairs, from the one holding firstDate up to and including the
// first span whose end reaches lastDate. Empty when lastDate is before firstDate.
std::vector<std::pair<QString, QString>> ListFourWeekSpans(const QDate& anchor,
                                                           const QDate& firstDate,
                                                           const QDate& lastDate);

}  // namespace charts
