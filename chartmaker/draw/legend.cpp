#include <algorithm>

#include "chartmaker/draw/common.h"

namespace chartdraw {

namespace {

// The small sample in front of a legend caption.
void DrawSwatch(Ctx& x, const QRectF& sr, const LegendItem& it) {
  const double my = sr.center().y();
  switch (it.style) {
    case LegendItem::Box:
      x.p.setPen(Qt::NoPen);
      x.p.setBrush(it.colour);
      x.p.drawRoundedRect(sr, 2, 2);
      break;
    case LegendItem::Hatch: {
      QColor light = it.colour;
      light.setAlpha(60);
      x.p.setPen(QPen(it.colour, 1, Qt::DashLine));
      x.p.setBrush(light);
      x.p.drawRect(sr);
      x.p.setBrush(HatchBrush(it.colour));
      x.p.drawRect(sr);
      break;
    }
    case LegendItem::Gap:
      x.p.setPen(Qt::NoPen);
      x.p.setBrush(it.colour);
      x.p.drawRect(sr);
      x.p.setBrush(HatchBrush(x.c("NO_DATA")));
      x.p.drawRect(sr);
      break;
    case LegendItem::Dashed:
    case LegendItem::Dotted:
    case LegendItem::Line: {
      QPen pen(it.colour, std::max(1.5, x.b * 0.16));
      pen.setStyle(it.style == LegendItem::Dashed   ? Qt::DashLine
                   : it.style == LegendItem::Dotted ? Qt::DotLine
                                                    : Qt::SolidLine);
      pen.setCapStyle(Qt::FlatCap);
      x.p.setPen(pen);
      x.p.drawLine(QPointF(sr.left(), my), QPointF(sr.right(), my));
      break;
    }
    case LegendItem::Diamond:
      DrawDiamond(x.p, sr.center(), x.b * 0.42, it.colour, x.c("BACKGROUND"));
      break;
    case LegendItem::Circle:
      x.p.setPen(QPen(x.c("BACKGROUND"), 1));
      x.p.setBrush(it.colour);
      x.p.drawEllipse(sr.center(), x.b * 0.38, x.b * 0.38);
      break;
  }
}

}  // namespace

double DrawLegend(Ctx& x, const QRectF& area, const std::vector<LegendItem>& items) {
  if (items.empty()) return 0;
  const QFont f = x.font(0.9);
  const double sw = x.b * 1.4, gap = x.b * 0.5, rowH = x.b * 1.5;
  double cx = area.left(), cy = area.top();
  for (const auto& it : items) {
    const double w = sw + gap * 0.6 + TextWidth(f, it.text) + gap * 1.6;
    if (cx + w > area.right() && cx > area.left()) {
      cx = area.left();
      cy += rowH;
    }
    DrawSwatch(x, QRectF(cx, cy + rowH * 0.5 - x.b * 0.45, sw, x.b * 0.9), it);
    DrawText(x.p, QRectF(cx + sw + gap * 0.6, cy, w, rowH), Qt::AlignLeft | Qt::AlignVCenter, it.text, f,
             x.c("TEXT"));
    cx += w;
  }
  return cy + rowH - area.top();
}

}  // namespace chartdraw
