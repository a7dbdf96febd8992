#include <algorithm>
#include <cmath>

#include "chartmaker/draw/bar_chart.h"

namespace chartdraw {

QStringList SlotLabel(const ChartSettings& s, const InterfaceFile& d, const ChartLine& l) {
  if (ChartFamily(d.type) == 0) return {s.mda(l.first)};
  return {s.mda(l.first), QStringLiteral("- ") + s.mda(l.last)};
}

BarChart NewBarChart(const ChartSettings& s, const InterfaceFile& d, const QString& titleKey, const QString& unit) {
  BarChart c;
  c.title = s.text(titleKey);
  c.subtitle = PeriodText(s, d);
  c.unit = QStringLiteral("(") + unit + QStringLiteral(")");
  return c;
}

Slot NewSlot(const ChartSettings& s, const InterfaceFile& d, const ChartLine& l) {
  Slot slot;
  slot.label = SlotLabel(s, d, l);
  slot.state = l.state;
  return slot;
}

void FinishLegend(BarChart& c, const ChartSettings& s, std::optional<double> mean, int decimals) {
  if (mean && *mean > 0) {
    c.mean = mean;
    c.meanText = s.text(QStringLiteral("MEAN")) + QLatin1Char(' ') + Num(*mean, decimals);
    c.legend.push_back({s.colour(QStringLiteral("MEAN")), c.meanText, LegendItem::Dotted});
  }
  if (std::any_of(c.slots.begin(), c.slots.end(), [](const Slot& sl) { return sl.state == LineState::Excluded; }))
    c.legend.push_back({s.colour(QStringLiteral("EXCLUDED")), s.text(QStringLiteral("EXCLUDED")), LegendItem::Hatch});
}

BarChart SingleSeries(const ChartSettings& s, const InterfaceFile& d, const char* titleKey, const char* unitKey,
                      int field, const QColor& colour, int targetField, std::optional<double> mean, double axisMax,
                      int decimals, const QString& seriesCaption) {
  BarChart c = NewBarChart(s, d, QLatin1String(titleKey), s.text(QLatin1String(unitKey)));
  c.axisMax = axisMax;
  c.axisDecimals = decimals;
  std::optional<double> lastTarget;
  for (const auto& l : d.lines) {
    Slot slot = NewSlot(s, d, l);
    if (l.hasFigures()) {
      const double v = l.value(field);
      slot.segs.push_back({v, colour});
      slot.valueText = Num(v, decimals);
      if (targetField > 0) {
        slot.target = l.number(targetField);
        if (slot.target && *slot.target <= 0) slot.target.reset();
        if (slot.target) lastTarget = slot.target;
      }
    }
    c.slots.push_back(slot);
  }
  // Days without figures keep the target line going.
  if (targetField > 0) {
    std::optional<double> carry = lastTarget;
    for (auto& sl : c.slots)
      if (!sl.target && carry) sl.target = carry;
  }
  c.legend.push_back({colour, seriesCaption, LegendItem::Box});
  if (lastTarget) {
    c.legend.push_back({s.colour(QStringLiteral("TARGET")), s.text(QStringLiteral("TARGET")), LegendItem::Dashed});
    // A whole target reads as set ("60 min", not "60.0"), with its unit like the other charts.
    const bool whole = std::abs(*lastTarget - std::round(*lastTarget)) < 1e-9;
    c.targetText = s.text(QStringLiteral("TARGET")) + QLatin1Char(' ') + Num(*lastTarget, whole ? 0 : decimals) +
                   QLatin1Char(' ') + s.text(QLatin1String(unitKey));
  }
  FinishLegend(c, s, mean, decimals);
  return c;
}

BarChart TotalCalChart(const ChartSettings& s, const InterfaceFile& d) {
  BarChart c = NewBarChart(s, d, QStringLiteral("CHART_500"), s.text(QStringLiteral("UNIT_KCAL")));
  c.axisMax = ConfiguredMax(s.axisMaxima.totalCal, d.fixedMax[3]);
  const QColor act = s.colour(QStringLiteral("ACTIVITY_CAL")), rest = s.colour(QStringLiteral("TOTAL_CAL"));
  for (const auto& l : d.lines) {
    Slot slot = NewSlot(s, d, l);
    if (l.hasFigures()) {
      const double total = l.value(13), a = std::min(l.value(12), total);
      slot.segs.push_back({a, act});
      slot.segs.push_back({total - a, rest});
      slot.valueText = Num(total, 0);
    }
    c.slots.push_back(slot);
  }
  c.legend.push_back({act, s.text(QStringLiteral("ACTIVITY_CAL")), LegendItem::Box});
  c.legend.push_back({rest, s.text(QStringLiteral("OTHER_CAL")), LegendItem::Box});
  FinishLegend(c, s, MeanIf(d, d.meanTotalCal), 0);
  return c;
}

BarChart ExerciseChart(const ChartSettings& s, const InterfaceFile& d) {
  const int family = ChartFamily(d.type);
  BarChart c = NewBarChart(s, d, QStringLiteral("CHART_900"), s.text(QStringLiteral("UNIT_EX")));
  c.subtitle = (family == 0   ? s.text(QStringLiteral("PERIOD_0"))
                : family == 1 ? s.text(QStringLiteral("WEEK_TOTAL"))
                              : s.text(QStringLiteral("MEAN_WEEK_TOTAL"))) +
               QStringLiteral("   ") + DateRangeText(s, d.start, d.end);
  std::optional<double> target = d.exerciseTarget;
  // The target is a weekly one; a daily chart shows its share of one day.
  if (target && family == 0) target = *target / 7.0;
  c.axisMax = target ? *target * 1.25 : 5;
  const QColor col = s.colour(QStringLiteral("EXERCISE"));
  double sum = 0;
  int count = 0;
  for (const auto& l : d.lines) {
    Slot slot = NewSlot(s, d, l);
    // Exercise counts on excluded days too; a group without figures may still carry it.
    if (l.exercise) {
      if (slot.state == LineState::AllExcluded) slot.state = LineState::Excluded;
      slot.segs.push_back({*l.exercise, col});
      slot.valueText = Num(*l.exercise, 1);
      sum += *l.exercise;
      ++count;
    } else if (slot.state != LineState::NoData && slot.state != LineState::AllExcluded) {
      slot.valueText = Num(0, 1);
    }
    slot.target = target;
    c.slots.push_back(slot);
  }
  c.legend.push_back({col, s.text(QStringLiteral("EXERCISE")), LegendItem::Box});
  if (target) {
    c.legend.push_back({s.colour(QStringLiteral("TARGET")),
                        family == 0 ? s.text(QStringLiteral("DAILY_SHARE")) : s.text(QStringLiteral("TARGET")),
                        LegendItem::Dashed});
    c.targetText = (family == 0 ? s.text(QStringLiteral("DAILY_SHARE")) : s.text(QStringLiteral("TARGET"))) +
                   QLatin1Char(' ') + Num(*target, 1);
  }
  FinishLegend(c, s, count > 0 ? std::optional<double>(sum / count) : std::nullopt, 1);
  return c;
}

}  // namespace chartdraw
