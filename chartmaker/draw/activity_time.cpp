#include "chartmaker/draw/bar_chart.h"

namespace chartdraw {

double ActivityTimeAxisMax(const ChartSettings& s, const InterfaceFile& d) {
  return ConfiguredMax(ChartFamily(d.type) == 0 ? s.axisMaxima.dayActivityMinutes : s.axisMaxima.meanActivityMinutes,
                       d.fixedMax[2]);
}

BarChart ActivityTimeChart(const ChartSettings& s, const InterfaceFile& d) {
  BarChart c = NewBarChart(s, d, QStringLiteral("CHART_400"), s.text(QStringLiteral("UNIT_MIN")));
  c.axisMax = ActivityTimeAxisMax(s, d);
  c.axisDecimals = 0;
  const QColor mod = s.colour(QStringLiteral("MODERATE")), vig = s.colour(QStringLiteral("VIGOROUS"));
  std::optional<double> lastTarget;
  for (const auto& l : d.lines) {
    Slot slot = NewSlot(s, d, l);
    if (l.hasFigures()) {
      double total = 0;
      for (int level = d.moderateFrom; level <= 9; ++level) {
        const double minutes = MinutesOfCount(l.value(15 + level));
        const bool vigorous = level > d.moderateTo;
        // Alternate shades so each level stays visible inside its band.
        QColor shade = vigorous ? vig : mod;
        const int pos = vigorous ? level - d.moderateTo - 1 : level - d.moderateFrom;
        if (pos % 2) shade = QColor::fromRgbF(shade.redF() * 0.62f + 0.38f, shade.greenF() * 0.62f + 0.38f,
                                              shade.blueF() * 0.62f + 0.38f);
        slot.segs.push_back({minutes, shade});
        total += minutes;
      }
      slot.valueText = Num(total, 0);
      slot.marker = l.number(9);
      slot.target = l.number(7);
      if (slot.target && *slot.target <= 0) slot.target.reset();
      if (slot.target) lastTarget = slot.target;
    }
    c.slots.push_back(slot);
  }
  for (auto& sl : c.slots)
    if (!sl.target && lastTarget) sl.target = lastTarget;
  const QString levels = QStringLiteral(" (%1 %2-%3)").arg(s.text(QStringLiteral("LEVEL")));
  c.legend.push_back({mod, s.text(QStringLiteral("MODERATE")) + levels.arg(d.moderateFrom).arg(d.moderateTo), LegendItem::Box});
  if (d.moderateTo < 9) {
    const QString vl = d.moderateTo + 1 == 9 ? QStringLiteral(" (%1 9)").arg(s.text(QStringLiteral("LEVEL")))
                                             : levels.arg(d.moderateTo + 1).arg(9);
    c.legend.push_back({vig, s.text(QStringLiteral("VIGOROUS")) + vl, LegendItem::Box});
  }
  c.legend.push_back({s.colour(QStringLiteral("ACTIVITY_TIME")), s.text(QStringLiteral("ACTIVITY_TIME")), LegendItem::Diamond});
  if (lastTarget) {
    c.legend.push_back({s.colour(QStringLiteral("TARGET")), s.text(QStringLiteral("TARGET")), LegendItem::Dashed});
    c.targetText = s.text(QStringLiteral("TARGET")) + QLatin1Char(' ') + Num(*lastTarget, 0) + QLatin1Char(' ') +
                   s.text(QStringLiteral("UNIT_MIN"));
  }
  FinishLegend(c, s, MeanIf(d, d.meanActivityTime), 1);
  return c;
}

}  // namespace chartdraw
