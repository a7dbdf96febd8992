#include <QFontMetricsF>
#include <algorithm>

#include "chartmaker/draw/bar_chart.h"
#include "chartmaker/draw/charts.h"

namespace chartdraw {

void DrawEvaluation(Ctx& x, const QRectF& area, const InterfaceFile& d, bool imperial) {
  const ChartSettings& s = x.s;
  double top = area.top() + DrawTitle(x, area, s.text(QStringLiteral("CHART_100")), PeriodText(s, d));
  const double cardW = std::clamp(area.width() * 0.25, x.b * 11, x.b * 16);
  const QRectF left(area.left(), top, area.width() - cardW - x.b, area.bottom() - top);
  const QRectF card(left.right() + x.b, top, cardW, area.bottom() - top);

  struct Row {
    const char* caption;
    const char* unit;
    int value, target, flag;
    QColor colour;
    double axisMax;
    int decimals;
    double mean;
  };
  const Row rows[] = {
      {"STEPS", "UNIT_STEPS", 6, 4, 5, s.colour(QStringLiteral("STEPS")), ConfiguredMax(s.axisMaxima.steps, d.fixedMax[0]), 0,
       d.meanSteps},
      {"ACTIVITY_CAL", "UNIT_KCAL", 12, 10, 11, s.colour(QStringLiteral("ACTIVITY_CAL")), d.fixedMax[1], 0,
       d.meanActivityCal},
      {"ACTIVITY_TIME", "UNIT_MIN", 9, 7, 8, s.colour(QStringLiteral("MODERATE")),
       ActivityTimeAxisMax(s, d), 1, d.meanActivityTime},
  };
  // Which target is in force: the flags of the newest line with figures.
  const ChartLine* newest = nullptr;
  for (const auto& l : d.lines)
    if (l.hasFigures()) newest = &l;

  // Shared legend for the three bands.
  std::vector<LegendItem> legend = {
      {s.colour(QStringLiteral("TARGET")), s.text(QStringLiteral("TARGET")), LegendItem::Dashed},
      {s.colour(QStringLiteral("MEAN")), s.text(QStringLiteral("MEAN")), LegendItem::Dotted},
  };
  for (const auto& l : d.lines)
    if (l.state == LineState::Excluded) {
      legend.push_back({s.colour(QStringLiteral("EXCLUDED")), s.text(QStringLiteral("EXCLUDED")), LegendItem::Hatch});
      break;
    }
  const double lh = DrawLegend(x, left, legend) + x.b * 0.3;
  const double bandH = (left.height() - lh) / 3.0;
  std::vector<std::pair<QString, QString>> figures;
  figures.push_back({s.text(QStringLiteral("VALID_DAYS")), QString::number(d.validDays)});
  for (int i = 0; i < 3; ++i) {
    const Row& r = rows[i];
    const QRectF band(left.left(), left.top() + lh + bandH * i, left.width(), bandH - x.b * 0.4);
    const bool inForce = newest && newest->field(r.flag).trimmed() == QLatin1String("1");
    BarChart c = SingleSeries(s, d, "", r.unit, r.value, r.colour, r.target, MeanIf(d, r.mean), r.axisMax,
                              r.decimals, QString());
    c.showTitle = false;
    c.compact = true;
    c.minYLabelWidth = TextWidth(x.font(0.85), QStringLiteral("00,000"));
    c.legend.clear();
    c.targetEmphasis = inForce;
    // Band heading: caption and, for the target in force, a badge.
    const QFont hf = x.font(1.0, true);
    const double hh = QFontMetricsF(hf).height() * 1.2;
    const QString heading = s.text(QLatin1String(r.caption));
    DrawText(x.p, QRectF(band.left(), band.top(), band.width(), hh), Qt::AlignLeft | Qt::AlignVCenter, heading, hf,
             r.colour.darker(115));
    if (inForce) {
      const QFont bf = x.font(0.75, true);
      const QString badge = s.text(QStringLiteral("TARGET_IN_USE"));
      const double bx = band.left() + TextWidth(hf, heading) + x.b * 0.6;
      const QRectF br(bx, band.top() + hh * 0.15, TextWidth(bf, badge) + x.b * 0.9, hh * 0.7);
      x.p.setPen(Qt::NoPen);
      x.p.setBrush(s.colour(QStringLiteral("TARGET")));
      x.p.drawRoundedRect(br, br.height() / 2, br.height() / 2);
      DrawText(x.p, br, Qt::AlignCenter, badge, bf, s.colour(QStringLiteral("BACKGROUND")));
    }
    c.unit = QString();
    DrawBarChart(x, QRectF(band.left(), band.top() + hh, band.width(), band.height() - hh), c);

    int atTarget = 0, withFigures = 0;
    for (const auto& l : d.lines) {
      if (l.state != LineState::Counted) continue;
      ++withFigures;
      const auto t = l.number(r.target);
      if (t && *t > 0 && l.value(r.value) >= *t) ++atTarget;
    }
    const QString unit = s.text(QLatin1String(r.unit));
    figures.push_back({s.text(QStringLiteral("MEAN")) + QStringLiteral(" · ") + heading,
                       Num(r.mean, r.decimals) + QLatin1Char(' ') + unit});
    if (withFigures > 0)
      figures.push_back({s.text(QStringLiteral("DAYS_AT_TARGET")) + QStringLiteral(" · ") + heading,
                         QStringLiteral("%1 / %2").arg(atTarget).arg(withFigures)});
  }
  figures.push_back({s.text(QStringLiteral("MEAN")) + QStringLiteral(" · ") + s.text(QStringLiteral("TOTAL_CAL")),
                     Num(d.meanTotalCal, 0) + QLatin1Char(' ') + s.text(QStringLiteral("UNIT_KCAL"))});
  figures.push_back({s.text(QStringLiteral("MEAN")) + QStringLiteral(" · ") + s.text(QStringLiteral("DISTANCE")),
                     Num(d.meanDistance, 1) + QLatin1Char(' ') +
                         DistanceUnit(s, imperial)});
  DrawFigureRows(x, card, s.text(QStringLiteral("SUMMARY")), figures);
}

}  // namespace chartdraw
