// The period, the position in time and the chart kind of the job screen, as plain
// values. The screen binds its pickers (dtDateStart, dtDateEnd) to a RangeState and
// calls these functions from its buttons; nothing here touches a widget.
//
// Where dates are compared, they are compared as "yyyy/mm/dd" texts: the clamps take
// and return such texts. Everything else holds QDate.
#pragma once

#include <QDate>
#include <QString>

class VtDatabase;

namespace charts {

enum PeriodKind { kPeriodDay = 1, kPeriodWeek = 2, kPeriodMonth = 3, kPeriodSixMonths = 4 };

// What DateAdjustment's mode means.
enum AdjustMode { kAdjustKeep = 0, kAdjustBack = -1, kAdjustNext = 1, kAdjustLatest = 2 };

// GraphIndex of the day button; it always gives chart kind 5.
inline constexpr int kGraphIndexDay = 6;

struct RangeState {
  // The two pickers the user sees.
  QDate dtDateStart;
  QDate dtDateEnd;
  // The pair the drawing reads, copied from the pickers.
  QDate dateChartFrom;
  QDate dateChartTo;
  // The user's first and last measured day; invalid when the user has no data.
  QDate rangeFirst;
  QDate rangeLast;
  int periodKind = kPeriodWeek;
  int graphIndex = 0;
  int chartKind = 100;
  bool graphVisible = false;  // picGraph
  bool noData = false;        // the panes are disabled, the menu state is "NODATA"
};

// Chart kind of a graph button and a period: 100/101/102 for the first graph and so on,
// 5 for the day period or the day button; 0 for a combination that names no chart.
int ChartKindFor(int graphIndex, int periodKind);
// The trace name of a graph button ("Steps_Click Start", ...), empty for an unknown index.
QString GraphButtonTraceLine(int graphIndex);

// Clamp of an end picker: an empty value or one after last gives last; a value before
// floor gives floor (an empty floor never applies); any other value stands.
QString ClampEndDate(const QString& last, const QString& value, const QString& floor);
// Clamp of a start picker. With a value: before first gives first, after end gives end.
// With an empty value and an interval ("d", "ww" or "m"): the date number intervals from
// end, or first when that lies before first. With neither: first.
QString ClampStartDate(const QString& first, const QString& end, const QString& value,
                       const QString& interval, int number);

// The other end of a window of the period: direction 1 forward, anything else backward.
// Day 0 days, week 6, month 34, six months 167.
QDate GetStarEndRange(int periodKind, const QDate& date, int direction);

// A day beyond the user's last measured day becomes that day.
QDate CheckOneDayRange(const RangeState& state, const QDate& date);
// True when the end picker holds the user's last measured day.
bool IsLatestDate(const RangeState& state);

// Sets the window of a period: mode 0 keeps the end picker, -1 steps back, 1 steps
// forward, 2 goes to the latest date. On failure (a window that cannot be formed, such
// as a step without any measured range) it logs "ERROR END" under "DateAdjustment",
// leaves state as it was and returns false. today is what the pickers show when the
// user has no data.
bool DateAdjustment(RangeState& state, int period, int mode,
                    const QDate& today = QDate::currentDate());

// After the user changed the end picker: the start follows, keeping the window's
// length as far as the data allows. UpdateRangeEndDate is its mirror.
void UpdateRangeStartDate(RangeState& state);
void UpdateRangeEndDate(RangeState& state);

// Entering the job screen with the user's measured range (invalid dates: no data):
// the first graph over a week, ending on the last measured day.
void InitChartState(RangeState& state, const QDate& rangeFirst, const QDate& rangeLast,
                    const QDate& today = QDate::currentDate());

// A graph button: from the day view it moves to a week first, since graphs have no
// day view; then the graph and the kind are set.
void SelectGraph(RangeState& state, int graphIndex, const QDate& today = QDate::currentDate());
// A period button: sets the period (the day button also the day graph) and adjusts the
// window keeping the end picker. Returns IsLatestDate as it was before the adjustment,
// which tells whether btnDateUpdate shows down.
bool SelectPeriod(RangeState& state, int period, const QDate& today = QDate::currentDate());

// The user's measured range read from the database (all receptions); false when the
// read failed. Both dates stay invalid when the user has no data.
bool ReadUserRange(VtDatabase& db, const QString& userId, QDate& first, QDate& last);

}  // namespace charts
