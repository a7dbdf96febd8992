#include <QFontMetricsF>
#include <algorithm>
#include <cmath>
#include <tuple>

#include "chartmaker/draw/charts.h"
#include "chartmaker/draw/layout.h"

namespace chartdraw {

void DrawWeightPlan(Ctx& x, const QRectF& area, const ChartDocument& doc) {
  const ChartSettings& s = x.s;
  const InterfaceFile& d = doc.data;
  double top = area.top() + DrawTitle(x, area, s.text(QStringLiteral("CHART_800")), PeriodText(s, d));
  struct Pt {
    QDate day;
    double w;
  };
  std::vector<Pt> real, plan;
  // The .sim file holds one weight a week; a daily chart shows the weight of every day
  // from its lines instead.
  if (doc.hasSim && ChartFamily(d.type) != 0) {
    for (const auto& p : doc.sim.points) {
      if (p.weight && *p.weight > 0) real.push_back({p.day, *p.weight});
      if (p.plan && *p.plan > 0) plan.push_back({p.day, *p.plan});
    }
  }
  if (real.empty()) {
    // Without a .sim file the weights of the lines serve.
    for (const auto& l : d.lines) {
      // A group line without counted days is one comma longer than an empty day line:
      // its single plan weight stands in field 28.
      if (ChartFamily(d.type) != 0 && !l.hasFigures()) {
        const auto pw = l.number(28);
        if (!doc.hasSim && pw && *pw > 0) plan.push_back({l.last, *pw});
        continue;
      }
      if (ChartFamily(d.type) == 2) {
        for (int w = 0; w < 5; ++w) {
          const auto v = l.number(32 + w);
          const auto pw = l.number(27 + w);
          const QDate day = std::min(l.first.addDays(7 * w + 6), l.last);
          if (v && *v > 0) real.push_back({day, *v});
          if (!doc.hasSim && pw && *pw > 0) plan.push_back({day, *pw});
        }
      } else {
        if (l.hasFigures() && l.value(15) > 0) real.push_back({l.last, l.value(15)});
        const auto pw = l.number(27);
        if (!doc.hasSim && pw && *pw > 0) plan.push_back({l.last, *pw});
      }
    }
  }
  // The plan as a line: start weight before the plan, the straight descent, the target after.
  std::vector<Pt> planLine;
  const bool planKnown = doc.hasSim && doc.sim.planStart.isValid() && doc.sim.planEnd.isValid() &&
                         doc.sim.startWeight && doc.sim.targetWeight;
  if (planKnown) {
    const QDate a = std::max(d.start, std::min(d.end, doc.sim.planStart));
    const QDate b = std::max(d.start, std::min(d.end, doc.sim.planEnd));
    auto planAt = [&](const QDate& day) {
      if (day <= doc.sim.planStart) return *doc.sim.startWeight;
      if (day >= doc.sim.planEnd) return *doc.sim.targetWeight;
      const double t = static_cast<double>(doc.sim.planStart.daysTo(day)) / doc.sim.planStart.daysTo(doc.sim.planEnd);
      return *doc.sim.startWeight + (*doc.sim.targetWeight - *doc.sim.startWeight) * t;
    };
    for (const QDate& day : {d.start, a, b, d.end}) planLine.push_back({day, planAt(day)});
  } else {
    planLine = plan;
  }

  std::vector<LegendItem> legend = {{s.colour(QStringLiteral("WEIGHT")), s.text(QStringLiteral("WEIGHT")), LegendItem::Circle},
                                    {s.colour(QStringLiteral("PLAN")), s.text(QStringLiteral("PLAN")), LegendItem::Dashed}};
  top += DrawLegend(x, QRectF(area.left(), top, area.width(), area.height()), legend) + x.b * 0.3;

  double lo = 1e9, hi = -1e9;
  for (const auto& v : {real, planLine})
    for (const auto& p : v) {
      lo = std::min(lo, p.w);
      hi = std::max(hi, p.w);
    }
  if (lo > hi) {
    lo = 50;
    hi = 70;
  }
  const double pad = std::max(1.0, (hi - lo) * 0.15);
  const double step = NiceStep(hi - lo + 2 * pad, 5);
  lo = std::floor((lo - pad) / step) * step;
  hi = std::ceil((hi + pad) / step) * step;
  const QFont axisFont = x.font(0.85);
  const QFontMetricsF afm(axisFont);
  const double yLabelW = TextWidth(axisFont, Num(hi, step < 1 ? 1 : 0)) + x.b * 0.2;
  const double unitH = afm.height() * 1.1;
  const QRectF plot(area.left() + yLabelW + x.b * 0.6, top + unitH + x.b * 0.6, area.width() - yLabelW - x.b * 1.2,
                    area.bottom() - top - unitH - x.b * 0.6 - afm.height() * 1.8);
  if (plot.width() < 20 || plot.height() < 20) return;
  const double days = std::max<qint64>(1, d.start.daysTo(d.end));
  auto xOf = [&](const QDate& day) { return plot.left() + plot.width() * d.start.daysTo(day) / days; };
  auto yOf = [&](double w) { return plot.bottom() - (w - lo) / (hi - lo) * plot.height(); };
  DrawText(x.p, QRectF(area.left(), plot.top() - unitH - x.b * 0.6, plot.width(), unitH), Qt::AlignLeft | Qt::AlignBottom,
           QStringLiteral("(") + s.text(doc.imperial ? QStringLiteral("UNIT_LBS") : QStringLiteral("UNIT_KG")) + QStringLiteral(")"),
           axisFont, x.c("SUBTEXT"));
  for (double v = lo; v <= hi + step * 0.01; v += step) {
    x.p.setPen(QPen(x.c("GRID"), 1));
    x.p.drawLine(QPointF(plot.left(), yOf(v)), QPointF(plot.right(), yOf(v)));
    DrawText(x.p, QRectF(area.left(), yOf(v) - afm.height() / 2, yLabelW, afm.height()), Qt::AlignRight | Qt::AlignVCenter,
             Num(v, step < 1 ? 1 : 0), axisFont, x.c("SUBTEXT"));
  }
  x.p.setPen(QPen(x.c("AXIS"), 1.2));
  x.p.drawLine(plot.bottomLeft(), plot.bottomRight());
  // Date ticks: the line ends (weeks or spans).
  const double labelW = TextWidth(axisFont, s.mda(d.end)) + x.b;
  double lastX = -1e9;
  std::vector<QDate> ticks;
  for (const auto& l : d.lines) ticks.push_back(l.last);
  if (ticks.empty()) ticks = {d.start, d.end};
  for (const QDate& t : ticks) {
    const double xx = xOf(t);
    x.p.setPen(QPen(x.c("GRID"), 1));
    x.p.drawLine(QPointF(xx, plot.top()), QPointF(xx, plot.bottom()));
    if (xx - lastX < labelW) continue;
    lastX = xx;
    const double lx = std::clamp(xx - labelW / 2, area.left(), area.right() - labelW);
    DrawText(x.p, QRectF(lx, plot.bottom() + x.b * 0.3, labelW, afm.height()), Qt::AlignHCenter | Qt::AlignTop,
             s.mda(t), axisFont, x.c("SUBTEXT"));
  }
  x.p.save();
  x.p.setClipRect(plot.adjusted(-x.b, -x.b, x.b, x.b));
  if (planLine.size() >= 2) {
    QPen pen(x.c("PLAN"), std::max(2.0, x.b * 0.2), Qt::DashLine);
    x.p.setPen(pen);
    QPolygonF poly;
    for (const auto& p : planLine) poly << QPointF(xOf(p.day), yOf(p.w));
    x.p.drawPolyline(poly);
  }
  if (planKnown) {
    for (const auto& [day, w, key] : {std::tuple{doc.sim.planStart, *doc.sim.startWeight, "PLAN_START"},
                                      std::tuple{doc.sim.planEnd, *doc.sim.targetWeight, "PLAN_END"}}) {
      if (day < d.start || day > d.end) continue;
      DrawDiamond(x.p, QPointF(xOf(day), yOf(w)), x.b * 0.45, x.c("PLAN"), x.c("BACKGROUND"));
      DrawPlate(x, QPointF(xOf(day), yOf(w) - x.b * 0.7), Qt::AlignHCenter,
                s.text(QLatin1String(key)) + QLatin1Char(' ') + Num(w, doc.imperial ? 0 : 1), x.font(0.75, true), x.c("PLAN").darker(140));
    }
  }
  if (!real.empty()) {
    x.p.setPen(QPen(x.c("WEIGHT"), std::max(2.0, x.b * 0.18)));
    QPolygonF poly;
    for (const auto& p : real) poly << QPointF(xOf(p.day), yOf(p.w));
    x.p.drawPolyline(poly);
    for (const auto& p : real) {
      x.p.setPen(QPen(x.c("BACKGROUND"), std::max(1.0, x.b * 0.12)));
      x.p.setBrush(x.c("WEIGHT"));
      x.p.drawEllipse(QPointF(xOf(p.day), yOf(p.w)), x.b * 0.4, x.b * 0.4);
    }
    const auto& lastPt = real.back();
    DrawPlate(x, QPointF(xOf(lastPt.day), yOf(lastPt.w) + x.b * 1.7), Qt::AlignHCenter,
              Num(lastPt.w, doc.imperial ? 0 : 1),
              x.font(0.8, true), x.c("WEIGHT").darker(130));
  } else {
    DrawText(x.p, plot, Qt::AlignCenter, s.text(QStringLiteral("NO_DATA_PERIOD")), x.font(1.2, true), x.c("SUBTEXT"));
  }
  x.p.restore();
}

}  // namespace chartdraw
