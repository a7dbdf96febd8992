// The window of dates the plan graph shows, and how previous and next move it. Two views:
// one month (chart 801, five weeks, moved by a week) and six months (chart 802, six
// four-week spans, moved by a span). Weeks end on the weekday of the user's last
// measured day and spans are anchored on that day, as in every other chart.
#pragma once

#include <QDate>
#include <QString>

namespace plan {

class GraphWindow {
 public:
  enum View { OneMonth = 0, SixMonths = 1 };

  // lastDay: the user's last measured day, invalid when the user has none. now: the date
  // of the "now" figures (the last measured day, or today without one); it also anchors
  // the weeks when there is no last day.
  GraphWindow(const QDate& planStart, const QDate& planEnd, const QDate& lastDay, const QDate& now);

  // The bounds of both views: two weeks (three spans) before the plan's start, two weeks
  // (two spans) after its end, or after now when the plan is over.
  bool AdjustData();
  // direction 0: a window around the later of now and the plan start; -1 / +1: one
  // week or one span back or forward, never beyond the bounds. False (window unchanged)
  // when no window can be formed.
  bool GetDisplayRange(int direction);

  void setView(View v) { view_ = v; }
  int chartType() const { return view_ == OneMonth ? 801 : 802; }
  QDate windowStart() const { return start_; }
  QDate windowEnd() const { return end_; }
  QDate lowBound() const { return view_ == OneMonth ? weekLow_ : spanLow_; }
  QDate highBound() const { return view_ == OneMonth ? weekHigh_ : spanHigh_; }
  bool previousEnabled() const { return start_.isValid() && start_ > lowBound(); }
  bool nextEnabled() const { return end_.isValid() && end_ < highBound(); }

  QDate weekLow() const { return weekLow_; }
  QDate weekHigh() const { return weekHigh_; }
  QDate spanLow() const { return spanLow_; }
  QDate spanHigh() const { return spanHigh_; }

 private:
  QDate clamp(const QDate& value, const QDate& low, const QDate& high) const;
  QDate nextLastWeekday(const QDate& d) const;
  QDate previousFirstWeekday(const QDate& d) const;
  bool monthRange(int direction);
  bool sixMonthRange(int direction);

  QDate planStart_;
  QDate planEnd_;
  QDate anchor_;
  QDate now_;
  int firstWeekday_ = 0;
  int lastWeekday_ = 0;
  View view_ = OneMonth;
  QDate weekLow_, weekHigh_, spanLow_, spanHigh_;
  QDate start_, end_;
};

}  // namespace plan
