#include "chartmaker/draw/common.h"

#include <QFontMetricsF>
#include <QLocale>
#include <algorithm>
#include <cmath>

#include "chartmaker/draw/layout.h"

namespace chartdraw {

QFont Ctx::font(double scale, bool bold) const {
  QFont f(s.fontFamily);
  f.setFamilies({s.fontFamily, QStringLiteral("Noto Sans CJK JP"), QStringLiteral("DejaVu Sans")});
  f.setPixelSize(std::max(1, static_cast<int>(std::lround(b * scale))));
  f.setBold(bold);
  // No OpenType shaping where the script needs none: the CJK font swaps Latin-run digits
  // for glyphs outside its character map, and those lose their text in a PDF.
  f.setStyleStrategy(QFont::StyleStrategy(QFont::PreferAntialias | QFont::PreferNoShaping));
  return f;
}

double BaseSize(const QRectF& r) {
  return std::clamp(std::min(r.width() / 64.0, r.height() / 34.0), 8.0, 22.0);
}

QString Num(double v, int decimals) {
  static const QLocale loc(QLocale::English, QLocale::UnitedStates);
  if (!std::isfinite(v)) return QString();
  return loc.toString(v, 'f', decimals);
}

double TextWidth(const QFont& f, const QString& s) { return QFontMetricsF(f).horizontalAdvance(s); }

void DrawText(QPainter& p, const QRectF& r, int flags, const QString& text, const QFont& f, const QColor& c) {
  p.setFont(f);
  p.setPen(c);
  p.drawText(r, flags, text);
}

void DrawPlate(Ctx& x, QPointF anchor, Qt::Alignment align, const QString& text, const QFont& f,
               const QColor& fg) {
  const QFontMetricsF fm(f);
  const QRectF r = PlateRect(anchor, align, fm.horizontalAdvance(text), fm.height(), x.b);
  const double h = r.height();
  x.p.setPen(Qt::NoPen);
  QColor bg = x.c("BACKGROUND");
  bg.setAlpha(225);
  x.p.setBrush(bg);
  x.p.drawRoundedRect(r, h * 0.25, h * 0.25);
  DrawText(x.p, r, Qt::AlignCenter, text, f, fg);
}

QBrush HatchBrush(const QColor& c) { return QBrush(c, Qt::BDiagPattern); }

void DrawDiamond(QPainter& p, QPointF c, double r, const QColor& fill, const QColor& edge) {
  QPolygonF poly({QPointF(c.x(), c.y() - r), QPointF(c.x() + r, c.y()), QPointF(c.x(), c.y() + r),
                  QPointF(c.x() - r, c.y())});
  p.setPen(QPen(edge, r * 0.35));
  p.setBrush(fill);
  p.drawPolygon(poly);
}

QString DateRangeText(const ChartSettings& s, const QDate& from, const QDate& to) {
  return s.ymd(from) + (QLatin1Char(' ') + s.text(QStringLiteral("FROM_TO")).trimmed() + QLatin1Char(' ')) + s.ymd(to);
}

QString PeriodText(const ChartSettings& s, const InterfaceFile& d) {
  const QString range = DateRangeText(s, d.start, d.end);
  if (d.type == 5 || ChartKindOf(d.type) == 800) return range;
  return s.text(QStringLiteral("PERIOD_%1").arg(ChartFamily(d.type))) + QStringLiteral("   ") + range;
}

double DrawTitle(Ctx& x, const QRectF& area, const QString& title, const QString& subtitle) {
  const QFont tf = x.font(1.45, true);
  const double h = QFontMetricsF(tf).height() * 1.15;
  DrawText(x.p, QRectF(area.left(), area.top(), area.width(), h), Qt::AlignLeft | Qt::AlignVCenter, title, tf,
           x.c("TEXT"));
  DrawText(x.p, QRectF(area.left(), area.top(), area.width(), h), Qt::AlignRight | Qt::AlignVCenter, subtitle,
           x.font(1.0), x.c("SUBTEXT"));
  return h + x.b * 0.3;
}

void DrawFigureRows(Ctx& x, const QRectF& card, const QString& heading,
                    const std::vector<std::pair<QString, QString>>& rows) {
  x.p.setPen(Qt::NoPen);
  x.p.setBrush(x.c("PANEL"));
  x.p.drawRoundedRect(card, x.b * 0.5, x.b * 0.5);
  const QRectF in = card.adjusted(x.b * 0.8, x.b * 0.6, -x.b * 0.8, -x.b * 0.6);
  const QFont hf = x.font(1.05, true);
  const double hh = QFontMetricsF(hf).height() * 1.3;
  DrawText(x.p, QRectF(in.left(), in.top(), in.width(), hh), Qt::AlignLeft | Qt::AlignVCenter, heading, hf,
           x.c("TEXT"));
  double y = in.top() + hh + x.b * 0.2;
  const double avail = in.bottom() - y;
  const double rowH = std::min(x.b * 2.6, rows.empty() ? 0.0 : avail / static_cast<double>(rows.size()));
  const double scale = std::clamp(rowH / (x.b * 2.6), 0.55, 1.0);
  const QFont lf = x.font(0.8 * scale), vf = x.font(1.15 * scale, true);
  for (const auto& [label, value] : rows) {
    DrawText(x.p, QRectF(in.left(), y, in.width(), rowH * 0.45), Qt::AlignLeft | Qt::AlignBottom, label, lf,
             x.c("SUBTEXT"));
    DrawText(x.p, QRectF(in.left(), y + rowH * 0.42, in.width(), rowH * 0.55), Qt::AlignLeft | Qt::AlignVCenter,
             value, vf, x.c("TEXT"));
    y += rowH;
  }
}

double ConfiguredMax(const QString& text, double fallback) {
  bool ok = false;
  const double v = text.trimmed().toDouble(&ok);
  return ok && v > 0 ? v : fallback;
}

std::optional<double> MeanIf(const InterfaceFile& d, double v) {
  if (d.validDays <= 0) return std::nullopt;
  return v;
}

QString DistanceUnit(const ChartSettings& s, bool imperial) {
  return s.text(imperial ? QStringLiteral("UNIT_MILE") : QStringLiteral("UNIT_KM"));
}

}  // namespace chartdraw
