#include <QFontMetricsF>
#include <algorithm>

#include "chartmaker/draw/charts.h"

namespace chartdraw {

void DrawBmi(Ctx& x, const QRectF& area, std::optional<double> bmi) {
  const ChartSettings& s = x.s;
  // A small picture: scale text to its height too.
  const double lo = 14, hi = 36;
  const QFont lf = x.font(0.8), vf = x.font(1.4, true);
  const QFontMetricsF lfm(lf), vfm(vf);
  const double valueH = vfm.height() * 1.1;
  const QRectF bar(area.left() + x.b, area.top() + valueH + x.b * 0.6, area.width() - 2 * x.b,
                   std::max(x.b * 1.2, area.height() - valueH - lfm.height() * 2.6 - x.b * 1.2));
  auto xOf = [&](double v) { return bar.left() + (std::clamp(v, lo, hi) - lo) / (hi - lo) * bar.width(); };
  struct Band {
    double from, to;
    const char* colour;
    const char* caption;
  };
  const Band bands[] = {{lo, 18.5, "BMI_UNDER", "UNDERWEIGHT"},
                        {18.5, 25, "BMI_NORMAL", "NORMAL_WEIGHT"},
                        {25, 30, "BMI_OVER", "OVERWEIGHT"},
                        {30, hi, "BMI_OBESE", "OBESE"}};
  for (const auto& b : bands) {
    const QRectF r(QPointF(xOf(b.from), bar.top()), QPointF(xOf(b.to), bar.bottom()));
    QColor c = x.c(b.colour);
    const bool healthy = QLatin1String(b.caption) == QLatin1String("NORMAL_WEIGHT");
    c.setAlpha(healthy ? 255 : 150);
    x.p.setPen(Qt::NoPen);
    x.p.setBrush(c);
    x.p.drawRect(r);
    const QColor fg = healthy ? x.c("BACKGROUND") : x.c("TEXT");
    DrawText(x.p, r, Qt::AlignCenter, s.text(QLatin1String(b.caption)), TextWidth(lf, s.text(QLatin1String(b.caption))) < r.width() - 4 ? lf : x.font(0.6),
             fg);
  }
  // Healthy range bracket under the bar.
  const double y0 = bar.bottom() + x.b * 0.3;
  x.p.setPen(QPen(x.c("BMI_NORMAL").darker(130), std::max(1.5, x.b * 0.12)));
  x.p.drawLine(QPointF(xOf(18.5), y0), QPointF(xOf(25), y0));
  x.p.drawLine(QPointF(xOf(18.5), y0 - x.b * 0.3), QPointF(xOf(18.5), y0 + x.b * 0.1));
  x.p.drawLine(QPointF(xOf(25), y0 - x.b * 0.3), QPointF(xOf(25), y0 + x.b * 0.1));
  DrawText(x.p, QRectF(xOf(18.5), y0 + x.b * 0.15, xOf(25) - xOf(18.5), lfm.height()), Qt::AlignCenter,
           s.text(QStringLiteral("HEALTHY_RANGE")) + QStringLiteral(" 18.5-25"), lf, x.c("BMI_NORMAL").darker(150));
  for (double t : {18.5, 25.0, 30.0}) {
    DrawText(x.p, QRectF(xOf(t) - x.b * 2, y0 + x.b * 0.15 + lfm.height(), x.b * 4, lfm.height()), Qt::AlignCenter,
             Num(t, t == 18.5 ? 1 : 0), lf, x.c("SUBTEXT"));
  }
  if (bmi) {
    const double xx = xOf(*bmi);
    const double r = x.b * 0.55;
    QPolygonF tri({QPointF(xx - r, bar.top() - r * 1.5), QPointF(xx + r, bar.top() - r * 1.5), QPointF(xx, bar.top() + r * 0.2)});
    x.p.setPen(QPen(x.c("BACKGROUND"), 1.5));
    x.p.setBrush(x.c("TEXT"));
    x.p.drawPolygon(tri);
    x.p.setPen(QPen(x.c("TEXT"), std::max(1.5, x.b * 0.15)));
    x.p.drawLine(QPointF(xx, bar.top()), QPointF(xx, bar.bottom()));
    const QString label = s.text(QStringLiteral("YOUR_BMI")) + QLatin1Char(' ') + Num(*bmi, 1);
    const double w = TextWidth(vf, label) + x.b;
    const double left = std::clamp(xx - w / 2, area.left(), area.right() - w);
    DrawText(x.p, QRectF(left, area.top(), w, valueH), Qt::AlignCenter, label, vf, x.c("TEXT"));
  } else {
    DrawText(x.p, QRectF(area.left(), area.top(), area.width(), valueH), Qt::AlignCenter,
             s.text(QStringLiteral("NO_BMI")), x.font(1.1, true), x.c("SUBTEXT"));
  }
}

}  // namespace chartdraw
