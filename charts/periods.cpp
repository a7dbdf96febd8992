#include "charts/periods.h"

namespace charts {

namespace {

// Division that rounds towards minus infinity, for day offsets on either side of the anchor.
qint64 FloorDiv(qint64 a, qint64 b) {
  qint64 q = a / b;
  if ((a % b != 0) && ((a < 0) != (b < 0))) --q;
  return q;
}

FourWeekSpan SpanAt(const QDate& anchor, int steps) {
  FourWeekSpan s;
  s.end = anchor.addDays(qint64(steps) * 28);
  s.start = s.end.addDays(-27);
  s.steps = steps;
  return s;
}

int StepsOf(const QDate& anchor, const QDate& date) {
  // Span k covers anchor - 27 + 28k .. anchor + 28k, so k = ceil((date - anchor) / 28).
  const qint64 diff = anchor.daysTo(date);
  return int(-FloorDiv(-diff, 28));
}

}  // namespace

WeekEndWeekdays GetWeekEndWeekdays(const QDate& lastDay) {
  WeekEndWeekdays w;
  if (!lastDay.isValid()) return w;
  w.last = lastDay.dayOfWeek();
  w.first = lastDay.addDays(-6).dayOfWeek();
  return w;
}

FourWeekSpan FindFourWeekSpan(const QDate& anchor, const QDate& date) {
  if (!anchor.isValid() || !date.isValid()) return {};
  return SpanAt(anchor, StepsOf(anchor, date));
}

FourWeekSpan ShiftFourWeekSpan(const QDate& anchor, const QDate& date, int n) {
  if (!anchor.isValid() || !date.isValid()) return {};
  return SpanAt(anchor, StepsOf(anchor, date) + n);
}

}  // namespace charts
