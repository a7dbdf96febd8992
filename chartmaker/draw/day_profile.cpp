#include <QFontMetricsF>
#include <algorithm>
#include <cmath>

#include "chartmaker/draw/charts.h"

namespace chartdraw {

void DrawDayProfile(Ctx& x, const QRectF& area, const InterfaceFile& d, bool imperial) {
  const ChartSettings& s = x.s;
  const ChartLine* line = nullptr;
  for (const auto& l : d.lines)
    if (l.hasFigures()) {
      line = &l;
      break;
    }
  if (!line && !d.lines.empty()) line = &d.lines.front();
  const QDate day = line ? line->first : d.start;
  double top = area.top() + DrawTitle(x, area, s.text(QStringLiteral("CHART_5")), s.formatDate(day, s.dateYmd + QStringLiteral(" (%a)")));

  const DayProfile prof = line && line->hasFigures() ? ReadDayProfile(*line) : DayProfile{};
  const bool mets = prof.metsMode;
  const double cardW = std::clamp(area.width() * 0.24, x.b * 11, x.b * 15);
  const QRectF left(area.left(), top, area.width() - cardW - x.b, area.bottom() - top);
  const QRectF card(left.right() + x.b, top, cardW, area.bottom() - top);

  std::vector<LegendItem> legend;
  if (mets) {
    legend = {{s.colour(QStringLiteral("LIGHT")), s.text(QStringLiteral("LIGHT")) + QStringLiteral(" (< 3 ") + s.text(QStringLiteral("METS")) + QStringLiteral(")"), LegendItem::Box},
              {s.colour(QStringLiteral("MODERATE")), s.text(QStringLiteral("MODERATE")) + QStringLiteral(" (3-6)"), LegendItem::Box},
              {s.colour(QStringLiteral("VIGOROUS")), s.text(QStringLiteral("VIGOROUS")) + QStringLiteral(" (6+)"), LegendItem::Box}};
  } else {
    const QString lv = s.text(QStringLiteral("LEVEL"));
    legend = {{s.colour(QStringLiteral("LIGHT")), s.text(QStringLiteral("LIGHT")) + QStringLiteral(" (%1 0.5-%2)").arg(lv).arg(d.moderateFrom - 1), LegendItem::Box},
              {s.colour(QStringLiteral("MODERATE")), s.text(QStringLiteral("MODERATE")) + QStringLiteral(" (%1 %2-%3)").arg(lv).arg(d.moderateFrom).arg(d.moderateTo), LegendItem::Box}};
    if (d.moderateTo < 9)
      legend.push_back({s.colour(QStringLiteral("VIGOROUS")), s.text(QStringLiteral("VIGOROUS")) + QStringLiteral(" (%1 %2-9)").arg(lv).arg(d.moderateTo + 1), LegendItem::Box});
  }
  legend.push_back({s.colour(QStringLiteral("GAP")), s.text(QStringLiteral("NO_DATA")), LegendItem::Gap});
  legend.push_back({s.colour(QStringLiteral("EVENT")), s.text(QStringLiteral("EVENT")), LegendItem::Diamond});
  top += DrawLegend(x, left, legend) + x.b * 0.3;

  const QFont axisFont = x.font(0.85);
  const QFontMetricsF afm(axisFont);
  const double yLabelW = TextWidth(axisFont, QStringLiteral("10")) + x.b * 0.2;
  const double unitH = afm.height() * 1.1;
  const QRectF plot(left.left() + yLabelW + x.b * 0.6, top + unitH + x.b * 1.2, left.width() - yLabelW - x.b * 1.0,
                    left.bottom() - top - unitH - x.b * 1.2 - afm.height() * 2.2);
  if (plot.width() < 20 || plot.height() < 20) return;
  double yMax = 9;
  if (mets)
    for (double v : prof.slot)
      if (std::isfinite(v)) yMax = std::max(yMax, std::ceil(v));
  auto yOf = [&](double v) { return plot.bottom() - std::clamp(v / yMax, 0.0, 1.0) * plot.height(); };
  DrawText(x.p, QRectF(left.left(), plot.top() - unitH - x.b * 1.2, plot.width(), unitH), Qt::AlignLeft | Qt::AlignBottom,
           QStringLiteral("(") + (mets ? s.text(QStringLiteral("METS")) : s.text(QStringLiteral("LEVEL"))) + QStringLiteral(")"),
           axisFont, x.c("SUBTEXT"));
  for (int v = 0; v <= static_cast<int>(yMax); v += (yMax > 12 ? 2 : 1)) {
    const double y = yOf(v);
    x.p.setPen(QPen(v == 0 ? x.c("AXIS") : x.c("GRID"), v == 0 ? 1.2 : 1));
    x.p.drawLine(QPointF(plot.left(), y), QPointF(plot.right(), y));
    DrawText(x.p, QRectF(left.left(), y - afm.height() / 2, yLabelW, afm.height()), Qt::AlignRight | Qt::AlignVCenter,
             QString::number(v), axisFont, x.c("SUBTEXT"));
  }
  // Moderate band boundaries as a light background.
  if (!mets) {
    QColor band = x.c("MODERATE");
    band.setAlpha(22);
    x.p.setPen(Qt::NoPen);
    x.p.setBrush(band);
    x.p.drawRect(QRectF(QPointF(plot.left(), yOf(d.moderateTo)), QPointF(plot.right(), yOf(d.moderateFrom))));
  }
  for (int h = 0; h <= 24; h += 3) {
    const double xx = plot.left() + plot.width() * h / 24.0;
    x.p.setPen(QPen(x.c("GRID"), 1));
    x.p.drawLine(QPointF(xx, plot.top()), QPointF(xx, plot.bottom()));
    DrawText(x.p, QRectF(xx - x.b * 2, plot.bottom() + x.b * 0.3, x.b * 4, afm.height()), Qt::AlignHCenter | Qt::AlignTop,
             QStringLiteral("%1:00").arg(h), axisFont, x.c("SUBTEXT"));
  }
  DrawText(x.p, QRectF(plot.left(), plot.bottom() + x.b * 0.3 + afm.height(), plot.width(), afm.height()),
           Qt::AlignHCenter | Qt::AlignTop, s.text(QStringLiteral("TIME_OF_DAY")), axisFont, x.c("SUBTEXT"));

  if (!line || !line->hasFigures()) {
    DrawText(x.p, plot, Qt::AlignCenter, s.text(QStringLiteral("NO_DATA")), x.font(1.4, true), x.c("SUBTEXT"));
  } else {
    const double sw = plot.width() / 720.0;
    auto colourOf = [&](double v) {
      if (mets) return v >= 6 ? x.c("VIGOROUS") : v >= 3 ? x.c("MODERATE") : x.c("LIGHT");
      return v > d.moderateTo ? x.c("VIGOROUS") : v >= d.moderateFrom ? x.c("MODERATE") : x.c("LIGHT");
    };
    x.p.setPen(Qt::NoPen);
    int s0 = 0;
    while (s0 < 720) {
      const double v = prof.slot[static_cast<size_t>(s0)];
      int s1 = s0 + 1;
      if (!std::isfinite(v)) {
        // A run of slots without measurement: a hatched gap over the full height.
        while (s1 < 720 && !std::isfinite(prof.slot[static_cast<size_t>(s1)])) ++s1;
        const QRectF r(plot.left() + sw * s0, plot.top(), sw * (s1 - s0), plot.height());
        x.p.setBrush(x.c("GAP"));
        x.p.drawRect(r);
        QColor h = x.c("NO_DATA");
        h.setAlpha(110);
        x.p.setBrush(HatchBrush(h));
        x.p.drawRect(r);
      } else if (v > 0) {
        // Same value in a row: one rectangle (fast, and no seams between slots).
        while (s1 < 720 && prof.slot[static_cast<size_t>(s1)] == v) ++s1;
        x.p.setBrush(colourOf(v));
        x.p.drawRect(QRectF(QPointF(plot.left() + sw * s0, yOf(v)), QPointF(plot.left() + sw * s1, plot.bottom())));
      }
      s0 = s1;
    }
    for (int m : prof.eventMinutes) {
      const double xx = plot.left() + plot.width() * m / 1440.0;
      x.p.setPen(QPen(x.c("EVENT"), std::max(1.0, x.b * 0.1), Qt::DashLine));
      x.p.drawLine(QPointF(xx, plot.top()), QPointF(xx, plot.bottom()));
      DrawDiamond(x.p, QPointF(xx, plot.top() - x.b * 0.55), x.b * 0.45, x.c("EVENT"), x.c("BACKGROUND"));
    }
  }

  // The day's figures.
  std::vector<std::pair<QString, QString>> rows;
  if (line && line->hasFigures()) {
    const auto& l = *line;
    double moderate = 0, vigorous = 0;
    for (int level = d.moderateFrom; level <= 9; ++level)
      (level > d.moderateTo ? vigorous : moderate) += MinutesOfCount(l.value(15 + level));
    rows = {{s.text(QStringLiteral("STEPS")), Num(l.value(6)) + QLatin1Char(' ') + s.text(QStringLiteral("UNIT_STEPS"))},
            {s.text(QStringLiteral("ACTIVITY_CAL")), Num(l.value(12)) + QLatin1Char(' ') + s.text(QStringLiteral("UNIT_KCAL"))},
            {s.text(QStringLiteral("TOTAL_CAL")), Num(l.value(13)) + QLatin1Char(' ') + s.text(QStringLiteral("UNIT_KCAL"))},
            {s.text(QStringLiteral("ACTIVITY_TIME")), Num(l.value(9), 0) + QLatin1Char(' ') + s.text(QStringLiteral("UNIT_MIN"))},
            {s.text(QStringLiteral("MODERATE")) + QStringLiteral(" / ") + s.text(QStringLiteral("VIGOROUS")),
             Num(moderate, 0) + QStringLiteral(" / ") + Num(vigorous, 0) + QLatin1Char(' ') + s.text(QStringLiteral("UNIT_MIN"))},
            {s.text(QStringLiteral("DISTANCE")), Num(l.value(14), 1) + QLatin1Char(' ') + DistanceUnit(s, imperial)},
            {s.text(QStringLiteral("EXERCISE")), Num(l.exercise.value_or(0), 1) + QLatin1Char(' ') + s.text(QStringLiteral("UNIT_EX"))}};
    if (prof.averaged) rows.push_back({s.text(QStringLiteral("MODE")), s.text(QStringLiteral("MODE_AVERAGED"))});
    if (l.state == LineState::Excluded) rows.push_back({s.text(QStringLiteral("STATE")), s.text(QStringLiteral("EXCLUDED"))});
  } else {
    rows = {{s.text(QStringLiteral("STATE")), s.text(QStringLiteral("NO_DATA"))}};
  }
  DrawFigureRows(x, card, s.text(QStringLiteral("DAY_FIGURES")), rows);
}

}  // namespace chartdraw
