#include "charts/ranges.h"

#include "charts/periods.h"

#include "frame/helpers.h"
#include "frame/trace.h"
#include "store/store.h"

namespace charts {

namespace {

QString S(const QDate& d) { return d.isValid() ? DateToSlash(d) : QString(); }
QDate D(const QString& s) { return s.isEmpty() ? QDate() : SlashToDate(s); }

QDate AddInterval(const QDate& d, const QString& interval, int number) {
  if (interval == QLatin1String("ww")) return d.addDays(qint64(number) * 7);
  if (interval == QLatin1String("m")) return d.addMonths(number);
  return d.addDays(number);
}

// A window could not be formed; the caller keeps the old state.
struct AdjustFailure {};

QDate Need(const QString& text) {
  QDate d = D(text);
  if (!d.isValid()) throw AdjustFailure{};
  return d;
}

}  // namespace

int ChartKindFor(int graphIndex, int periodKind) {
  if (periodKind == kPeriodDay || graphIndex == kGraphIndexDay) return 5;
  int hundred = 0;
  switch (graphIndex) {
    case 0: hundred = 100; break;
    case 1: hundred = 200; break;
    case 2: hundred = 300; break;
    case 3: hundred = 500; break;
    case 4: hundred = 400; break;
    case 5: hundred = 600; break;
    case 7: hundred = 900; break;
    default: return 0;
  }
  switch (periodKind) {
    case kPeriodWeek: return hundred;
    case kPeriodMonth: return hundred + 1;
    case kPeriodSixMonths: return hundred + 2;
    default: return 0;
  }
}

QString GraphButtonTraceLine(int graphIndex) {
  switch (graphIndex) {
    case 0: return QStringLiteral("Evaluation_Click Start");
    case 1: return QStringLiteral("Steps_Click Start");
    case 2: return QStringLiteral("ActivityCal_Click Start");
    case 3: return QStringLiteral("TotalCal_Click Start");
    case 4: return QStringLiteral("ActivityTime_Click Start");
    case 5: return QStringLiteral("Distance_Click Start");
    case 6: return QStringLiteral("btnDay_Click Start");
    case 7: return QStringLiteral("EXERCISE_Click Start");
    default: return QString();
  }
}

QString ClampEndDate(const QString& last, const QString& value, const QString& floor) {
  if (value.isEmpty() || value > last) return last;
  if (!floor.isEmpty() && value < floor) return floor;
  return value;
}

QString ClampStartDate(const QString& first, const QString& end, const QString& value,
                       const QString& interval, int number) {
  if (!value.isEmpty()) {
    if (value < first) return first;
    if (value > end) return end;
    return value;
  }
  if (!interval.isEmpty()) {
    const QString d = S(AddInterval(D(end), interval, number));
    if (d.isEmpty() || d < first) return first;
    return d;
  }
  return first;
}

QDate GetStarEndRange(int periodKind, const QDate& date, int direction) {
  int days = 0;
  switch (periodKind) {
    case kPeriodWeek: days = 6; break;
    case kPeriodMonth: days = 34; break;
    case kPeriodSixMonths: days = 167; break;
    default: days = 0; break;
  }
  return date.addDays(direction == 1 ? days : -days);
}

QDate CheckOneDayRange(const RangeState& state, const QDate& date) {
  if (state.rangeLast.isValid() && S(date) > S(state.rangeLast)) return state.rangeLast;
  return date;
}

bool IsLatestDate(const RangeState& state) {
  return state.dtDateEnd.isValid() && S(state.dtDateEnd) == S(state.rangeLast);
}

bool DateAdjustment(RangeState& state, int period, int mode, const QDate& today) {
  RangeState s = state;
  try {
    const QString first = S(s.rangeFirst);
    const QString last = S(s.rangeLast);
    const QDate base = mode == kAdjustLatest ? s.rangeLast : s.dtDateEnd;

    if (mode == kAdjustKeep) {
      if (first.isEmpty() || last.isEmpty()) {
        s.dtDateStart = today;
        s.dtDateEnd = today;
        s.dateChartFrom = s.dtDateStart;
        s.dateChartTo = s.dtDateEnd;
        state = s;
        return true;
      }
      s.graphVisible = true;
    }
    if (first.isEmpty() || last.isEmpty() || (mode != kAdjustLatest && !base.isValid()))
      throw AdjustFailure{};

    QString end;
    QString start;
    if (period == kPeriodDay || period == kPeriodWeek) {
      if (mode == kAdjustLatest) {
        end = ClampEndDate(last, QString(), QString());
      } else if (mode == kAdjustBack || mode == kAdjustNext) {
        end = ClampEndDate(last, S(s.dtDateEnd.addDays(mode)), first);
      } else if (mode == kAdjustKeep) {
        const QString limit = S(CheckOneDayRange(s, s.dtDateEnd));
        end = ClampEndDate(limit, S(s.dtDateEnd), first);
      } else {
        throw AdjustFailure{};
      }
      start = ClampStartDate(first, end, QString(), QStringLiteral("d"),
                             period == kPeriodDay ? 0 : -6);
      // At the left edge a week keeps its seven days.
      if (period == kPeriodWeek && (mode == kAdjustBack || mode == kAdjustNext) && start == first)
        end = ClampEndDate(last, S(Need(start).addDays(6)), first);
    } else if (period == kPeriodMonth) {
      WeekEndWeekdays wd = GetWeekEndWeekdays(base);
      if (mode == kAdjustLatest) {
        end = last;
      } else if (mode == kAdjustBack || mode == kAdjustNext) {
        QDate d = s.dtDateEnd;
        for (int n = 0; n < 8; ++n) {
          d = d.addDays(mode);
          if (d.dayOfWeek() == wd.last) break;
        }
        end = ClampEndDate(last, S(d), first);
      } else if (mode == kAdjustKeep) {
        end = ClampEndDate(last, S(s.dtDateEnd), first);
        wd = GetWeekEndWeekdays(Need(end));
      } else {
        throw AdjustFailure{};
      }
      // The first day of the end's week; the end itself may already be one.
      QDate cand = Need(end);
      for (int n = 0; n < 8 && cand.dayOfWeek() != wd.first; ++n) cand = cand.addDays(-1);
      for (int pass = 0; pass < 5; ++pass) {
        const QString c = S(cand);
        if (c.isEmpty() || c <= first) {
          start = first;
          // The window keeps its five weeks at the left edge.
          if (mode != kAdjustKeep) end = ClampEndDate(last, S(cand.addDays(34)), first);
          break;
        }
        if (c > end) {
          start = end;
          break;
        }
        start = c;
        cand = cand.addDays(-7);
      }
    } else if (period == kPeriodSixMonths) {
      if (mode == kAdjustLatest) {
        end = last;
      } else if (mode == kAdjustBack || mode == kAdjustNext) {
        end = ClampEndDate(last, S(ShiftFourWeekSpan(base, s.dtDateEnd, mode).end), first);
      } else if (mode == kAdjustKeep) {
        end = ClampEndDate(last, S(s.dtDateEnd), first);
      } else {
        throw AdjustFailure{};
      }
      QDate cand = FindFourWeekSpan(base, Need(end)).start;
      for (int pass = 0; pass < 6; ++pass) {
        const QString c = S(cand);
        if (c.isEmpty() || c <= first) {
          start = first;
          // Six spans from the first one at the left edge.
          if (mode != kAdjustKeep)
            end = ClampEndDate(last, S(ShiftFourWeekSpan(base, Need(first), 5).end), first);
          break;
        }
        if (c > end) {
          start = end;
          break;
        }
        start = c;
        cand = cand.addDays(-28);
      }
    } else {
      throw AdjustFailure{};
    }

    s.dtDateStart = Need(start);
    s.dtDateEnd = Need(end);
    s.dateChartFrom = s.dtDateStart;
    s.dateChartTo = s.dtDateEnd;
    state = s;
    return true;
  } catch (const AdjustFailure&) {
    WriteTrace(QStringLiteral("2"), QStringLiteral("DateAdjustment"), QStringLiteral("ERROR END"));
    return false;
  }
}

void UpdateRangeStartDate(RangeState& state) {
  const QString first = S(state.rangeFirst);
  const QString last = S(state.rangeLast);
  if (first.isEmpty() || last.isEmpty() || !state.dtDateEnd.isValid()) return;
  if (S(state.dtDateEnd) > last) state.dtDateEnd = state.rangeLast;
  state.dtDateStart = GetStarEndRange(state.periodKind, state.dtDateEnd, -1);
  if (S(state.dtDateStart) < first) {
    state.dtDateStart = state.rangeFirst;
    QDate end = GetStarEndRange(state.periodKind, state.dtDateStart, 1);
    if (S(end) > last) end = state.rangeLast;
    state.dtDateEnd = end;
  }
}

void UpdateRangeEndDate(RangeState& state) {
  const QString first = S(state.rangeFirst);
  const QString last = S(state.rangeLast);
  if (first.isEmpty() || last.isEmpty() || !state.dtDateStart.isValid()) return;
  if (S(state.dtDateStart) < first) state.dtDateStart = state.rangeFirst;
  state.dtDateEnd = GetStarEndRange(state.periodKind, state.dtDateStart, 1);
  if (S(state.dtDateEnd) > last) {
    state.dtDateEnd = state.rangeLast;
    QDate start = GetStarEndRange(state.periodKind, state.dtDateEnd, -1);
    if (S(start) < first) start = state.rangeFirst;
    state.dtDateStart = start;
  }
}

void InitChartState(RangeState& state, const QDate& rangeFirst, const QDate& rangeLast,
                    const QDate& today) {
  state.graphIndex = 0;
  state.periodKind = kPeriodWeek;
  state.chartKind = 100;
  state.rangeFirst = rangeFirst;
  state.rangeLast = rangeLast;
  state.noData = !rangeFirst.isValid() || !rangeLast.isValid();
  if (!state.dtDateEnd.isValid()) state.dtDateEnd = today;
  if (state.noData) {
    state.graphVisible = false;
    return;
  }
  DateAdjustment(state, state.periodKind, kAdjustKeep, today);
}

void SelectGraph(RangeState& state, int graphIndex, const QDate& today) {
  if (state.periodKind == kPeriodDay) {
    state.periodKind = kPeriodWeek;
    DateAdjustment(state, kPeriodWeek, kAdjustKeep, today);
  }
  state.graphIndex = graphIndex;
  state.chartKind = ChartKindFor(state.graphIndex, state.periodKind);
}

bool SelectPeriod(RangeState& state, int period, const QDate& today) {
  const bool latest = IsLatestDate(state);
  state.periodKind = period;
  if (period == kPeriodDay) {
    state.graphIndex = kGraphIndexDay;
  } else if (state.graphIndex == kGraphIndexDay) {
    // Leaving the day view by a period button shows the first graph of that period.
    state.graphIndex = 0;
  }
  state.chartKind = ChartKindFor(state.graphIndex, state.periodKind);
  DateAdjustment(state, period, kAdjustKeep, today);
  return latest;
}

bool ReadUserRange(VtDatabase& db, const QString& userId, QDate& first, QDate& last) {
  QString f;
  QString l;
  first = QDate();
  last = QDate();
  if (!VTDB_GetDayMeasurementRange(db, userId, f, l, false)) return false;
  if (!f.isEmpty() && !l.isEmpty()) {
    first = YmdToDate(f);
    last = YmdToDate(l);
  }
  return true;
}

}  // namespace charts
