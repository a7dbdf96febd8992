#include "plan/graph_window.h"

#include <algorithm>

#include "charts/periods.h"
#include "frame/frame.h"

namespace plan {

namespace {

void TraceErrorEnd(const char* name) {
  WriteTrace(QStringLiteral("2"), QLatin1String(name), QStringLiteral("ERROR END"));
}

}  // namespace

GraphWindow::GraphWindow(const QDate& planStart, const QDate& planEnd, const QDate& lastDay,
                         const QDate& now)
    : planStart_(planStart), planEnd_(planEnd), anchor_(lastDay.isValid() ? lastDay : now), now_(now) {
  const charts::WeekEndWeekdays w = charts::GetWeekEndWeekdays(anchor_);
  firstWeekday_ = w.first;
  lastWeekday_ = w.last;
}

QDate GraphWindow::clamp(const QDate& value, const QDate& low, const QDate& high) const {
  if (!high.isValid()) return value;
  if (low.isValid() && value < low) return low;
  if (value > high) return high;
  return value;
}

QDate GraphWindow::nextLastWeekday(const QDate& d) const {
  return d.addDays((lastWeekday_ - d.dayOfWeek() + 7) % 7);
}

QDate GraphWindow::previousFirstWeekday(const QDate& d) const {
  return d.addDays(-((d.dayOfWeek() - firstWeekday_ + 7) % 7));
}

bool GraphWindow::AdjustData() {
  if (!planStart_.isValid() || !planEnd_.isValid() || !anchor_.isValid()) {
    TraceErrorEnd("AdjustData");
    return false;
  }
  // A plan that is over still lets the window reach now, where it opens.
  const QDate last = std::max(planEnd_, now_);
  weekHigh_ = nextLastWeekday(last).addDays(14);
  weekLow_ = previousFirstWeekday(planStart_).addDays(-14);
  spanHigh_ = charts::ShiftFourWeekSpan(anchor_, last, 2).end;
  spanLow_ = charts::ShiftFourWeekSpan(anchor_, planStart_, -3).start;
  return true;
}

bool GraphWindow::GetDisplayRange(int direction) {
  const bool ok = view_ == OneMonth ? monthRange(direction) : sixMonthRange(direction);
  if (!ok) TraceErrorEnd("GetDisplayRange");
  return ok;
}

bool GraphWindow::monthRange(int direction) {
  if (!weekLow_.isValid() || !weekHigh_.isValid()) return false;
  if (direction == 0) {
    const QDate base = std::max(now_, planStart_);
    end_ = clamp(nextLastWeekday(base).addDays(14), weekLow_, weekHigh_);
    start_ = clamp(previousFirstWeekday(base).addDays(-14), weekLow_, weekHigh_);
    return true;
  }
  if (!end_.isValid()) return false;
  QDate end = end_;
  for (int i = 0; i < 8; ++i) {
    end = end.addDays(direction < 0 ? -1 : 1);
    if (end.dayOfWeek() == lastWeekday_) break;
  }
  end = clamp(end, weekLow_, weekHigh_);
  QDate start = end;
  for (int i = 0; i < 7 && start.dayOfWeek() != firstWeekday_; ++i) start = start.addDays(-1);
  bool stopped = start < weekLow_;
  for (int i = 0; i < 4 && !stopped; ++i) {
    if (start.addDays(-7) < weekLow_) stopped = true;
    else start = start.addDays(-7);
  }
  if (stopped) {
    start = weekLow_;
    end = clamp(start.addDays(4 * 7 + 6), weekLow_, weekHigh_);
  }
  start_ = start;
  end_ = end;
  return true;
}

bool GraphWindow::sixMonthRange(int direction) {
  if (!spanLow_.isValid() || !spanHigh_.isValid()) return false;
  if (direction == 0) {
    const QDate base = std::max(now_, planStart_);
    end_ = clamp(charts::ShiftFourWeekSpan(anchor_, base, 2).end, spanLow_, spanHigh_);
    start_ = clamp(charts::ShiftFourWeekSpan(anchor_, base, -3).start, spanLow_, spanHigh_);
    return true;
  }
  if (!end_.isValid()) return false;
  const QDate end = clamp(end_.addDays(direction < 0 ? -28 : 28), spanLow_, spanHigh_);
  QDate start = charts::FindFourWeekSpan(anchor_, end).start;
  bool stopped = start < spanLow_;
  for (int i = 0; i < 5 && !stopped; ++i) {
    if (start.addDays(-28) < spanLow_) stopped = true;
    else start = start.addDays(-28);
  }
  if (stopped) {
    start_ = spanLow_;
    end_ = clamp(charts::ShiftFourWeekSpan(anchor_, spanLow_, 5).end, spanLow_, spanHigh_);
  } else {
    start_ = start;
    end_ = end;
  }
  return true;
}

}  // namespace plan
