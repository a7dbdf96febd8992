#include "chartdraw.h"

#include <QFontMetricsF>
#include <QLocale>
#include <QPainter>
#include <QPainterPath>
#include <algorithm>
#include <array>
#include <cmath>

#include "chartmaker.h"
#include "frame/config.h"

namespace {

// ---------------------------------------------------------------- basics

struct Ctx {
  QPainter& p;
  const ChartSettings& s;
  double b;  // base text height in the drawing's units

  QFont font(double scale = 1.0, bool bold = false) const {
    QFont f(s.fontFamily);
    f.setFamilies({s.fontFamily, QStringLiteral("Noto Sans CJK JP"), QStringLiteral("DejaVu Sans")});
    f.setPixelSize(std::max(1, static_cast<int>(std::lround(b * scale))));
    f.setBold(bold);
    // No OpenType shaping where the script needs none: the CJK font swaps Latin-run digits
    // for glyphs outside its character map, and those lose their text in a PDF.
    f.setStyleStrategy(QFont::StyleStrategy(QFont::PreferAntialias | QFont::PreferNoShaping));
    return f;
  }
  QColor c(const char* key) const { return s.colour(QLatin1String(key)); }
  QString t(const char* key) const { return s.text(QLatin1String(key)); }
};

double BaseSize(const QRectF& r) {
  return std::clamp(std::min(r.width() / 64.0, r.height() / 34.0), 8.0, 22.0);
}

QString Num(double v, int decimals = 0) {
  static const QLocale loc(QLocale::English, QLocale::UnitedStates);
  if (!std::isfinite(v)) return QString();
  return loc.toString(v, 'f', decimals);
}

// A step of 1, 2, 2.5 or 5 times a power of ten giving about `ticks` intervals.
double NiceStep(double range, int ticks) {
  if (range <= 0) return 1;
  const double raw = range / ticks;
  const double mag = std::pow(10.0, std::floor(std::log10(raw)));
  for (double m : {1.0, 2.0, 2.5, 5.0, 10.0}) {
    if (m * mag >= raw) return m * mag;
  }
  return 10 * mag;
}

double TextWidth(const QFont& f, const QString& s) { return QFontMetricsF(f).horizontalAdvance(s); }

void DrawText(QPainter& p, const QRectF& r, int flags, const QString& text, const QFont& f,
              const QColor& c) {
  p.setFont(f);
  p.setPen(c);
  p.drawText(r, flags, text);
}

// A text on a small white plate, so it stays readable over bars and lines.
void DrawPlate(Ctx& x, QPointF anchor, Qt::Alignment align, const QString& text, const QFont& f,
               const QColor& fg) {
  const QFontMetricsF fm(f);
  const double w = fm.horizontalAdvance(text) + x.b * 0.6;
  const double h = fm.height() + x.b * 0.15;
  double left = anchor.x();
  if (align & Qt::AlignRight) left -= w;
  if (align & Qt::AlignHCenter) left -= w / 2;
  QRectF r(left, anchor.y() - h, w, h);
  x.p.setPen(Qt::NoPen);
  QColor bg = x.c("BACKGROUND");
  bg.setAlpha(225);
  x.p.setBrush(bg);
  x.p.drawRoundedRect(r, h * 0.25, h * 0.25);
  DrawText(x.p, r, Qt::AlignCenter, text, f, fg);
}

QBrush HatchBrush(const QColor& c) {
  QBrush br(c, Qt::BDiagPattern);
  return br;
}

// ---------------------------------------------------------------- legend

struct LegendItem {
  enum Style { Box, Dashed, Dotted, Hatch, Diamond, Line, Circle, Gap };
  QColor colour;
  QString text;
  Style style = Box;
};

void DrawDiamond(QPainter& p, QPointF c, double r, const QColor& fill, const QColor& edge) {
  QPolygonF poly({QPointF(c.x(), c.y() - r), QPointF(c.x() + r, c.y()), QPointF(c.x(), c.y() + r),
                  QPointF(c.x() - r, c.y())});
  p.setPen(QPen(edge, r * 0.35));
  p.setBrush(fill);
  p.drawPolygon(poly);
}

// Draws the legend in one or more rows from the top left; returns the height used.
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
    const QRectF sr(cx, cy + rowH * 0.5 - x.b * 0.45, sw, x.b * 0.9);
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
    DrawText(x.p, QRectF(cx + sw + gap * 0.6, cy, w, rowH), Qt::AlignLeft | Qt::AlignVCenter, it.text, f,
             x.c("TEXT"));
    cx += w;
  }
  return cy + rowH - area.top();
}

// ---------------------------------------------------------------- titles

QString PeriodText(const ChartSettings& s, const InterfaceFile& d) {
  const QString range = s.ymd(d.start) + (QLatin1Char(' ') + s.text(QStringLiteral("FROM_TO")).trimmed() + QLatin1Char(' ')) + s.ymd(d.end);
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

// ---------------------------------------------------------------- bar chart

struct Segment {
  double value = 0;
  QColor colour;
};

struct Slot {
  QStringList label;
  LineState state = LineState::NoData;
  std::vector<Segment> segs;
  QString valueText;
  std::optional<double> target;
  std::optional<double> marker;
};

struct BarChart {
  QString title, subtitle, unit;
  std::vector<Slot> slots;
  double axisMax = 0;
  int axisDecimals = 0;
  std::optional<double> mean;
  QString meanText;
  QString targetText;
  bool targetEmphasis = true;
  std::vector<LegendItem> legend;
  bool showTitle = true;
  bool compact = false;
  double minYLabelWidth = 0;  // stacked charts share it, so their bars line up
};

double SlotTotal(const Slot& s) {
  double t = 0;
  for (const auto& g : s.segs) t += std::max(0.0, g.value);
  return t;
}

void DrawBarChart(Ctx& x, const QRectF& area, const BarChart& c) {
  QPainter& p = x.p;
  double top = area.top();
  if (c.showTitle) top += DrawTitle(x, area, c.title, c.subtitle);
  if (!c.legend.empty()) top += DrawLegend(x, QRectF(area.left(), top, area.width(), area.height()), c.legend) + x.b * 0.2;

  // Axis range: the configured maximum, grown to hold every value drawn.
  double dataMax = 0;
  for (const auto& s : c.slots) {
    dataMax = std::max(dataMax, SlotTotal(s));
    if (s.target) dataMax = std::max(dataMax, *s.target);
    if (s.marker) dataMax = std::max(dataMax, *s.marker);
  }
  if (c.mean) dataMax = std::max(dataMax, *c.mean);
  double axisMax = std::max(c.axisMax, dataMax * 1.1);
  if (axisMax <= 0) axisMax = 1;
  const double step = NiceStep(axisMax, c.compact ? 3 : 5);
  axisMax = std::ceil(axisMax / step - 1e-9) * step;

  const QFont axisFont = x.font(0.85);
  const QFontMetricsF afm(axisFont);
  const int decimals = step < 1 ? (step < 0.1 ? 2 : 1) : 0;
  double yLabelW = TextWidth(axisFont, Num(axisMax, decimals));
  yLabelW = std::max({yLabelW, TextWidth(axisFont, c.unit) * 0.6, c.minYLabelWidth});

  int labelLines = 1;
  bool anyExcluded = false;
  for (const auto& s : c.slots) {
    labelLines = std::max(labelLines, static_cast<int>(s.label.size()));
    anyExcluded = anyExcluded || s.state == LineState::Excluded || s.state == LineState::AllExcluded;
  }
  const double unitH = c.unit.isEmpty() ? 0 : afm.height() * 1.1;
  const double bottomH = afm.height() * (labelLines + (anyExcluded ? 1 : 0)) + x.b * 0.5;
  const QRectF plot(area.left() + yLabelW + x.b * 0.6, top + unitH + x.b * 0.6,
                    area.width() - yLabelW - x.b * 1.0, area.bottom() - bottomH - top - unitH - x.b * 0.6);
  if (plot.width() < 10 || plot.height() < 10) return;
  auto yOf = [&](double v) { return plot.bottom() - std::clamp(v / axisMax, 0.0, 1.0) * plot.height(); };

  // Grid and axis labels.
  if (!c.unit.isEmpty())
    DrawText(p, QRectF(area.left(), plot.top() - unitH - x.b * 0.55, plot.width(), unitH),
             Qt::AlignLeft | Qt::AlignBottom, c.unit, axisFont, x.c("SUBTEXT"));
  for (double v = 0; v <= axisMax + step * 0.01; v += step) {
    const double y = yOf(v);
    p.setPen(QPen(v == 0 ? x.c("AXIS") : x.c("GRID"), v == 0 ? 1.2 : 1));
    p.drawLine(QPointF(plot.left(), y), QPointF(plot.right(), y));
    DrawText(p, QRectF(area.left(), y - afm.height() / 2, yLabelW, afm.height()), Qt::AlignRight | Qt::AlignVCenter,
             Num(v, decimals), axisFont, x.c("SUBTEXT"));
  }

  const int n = static_cast<int>(c.slots.size());
  if (n == 0) return;
  const double sw = plot.width() / n;
  const double bw = std::min(sw * 0.62, x.b * 6.0);
  // Thin out the date labels when they do not fit their slots.
  double widest = 0;
  for (const auto& s : c.slots)
    for (const auto& l : s.label) widest = std::max(widest, TextWidth(axisFont, l));
  const int every = std::max(1, static_cast<int>(std::ceil((widest + x.b * 0.4) / sw)));
  const QFont smallFont = x.font(0.75);
  const QFont valueFont = x.font(0.8, true);
  std::vector<QRectF> bars;

  // Value labels and the no-data notes, which the target's caption should not cover.
  std::vector<QRectF> taken;
  struct GapNote {
    QRectF band;
    QString word;
  };
  std::vector<GapNote> gapNotes;  // drawn over the target and mean lines
  struct ValueLabel {
    QPointF anchor;  // bottom centre
    QString text;
    bool excluded;
  };
  std::vector<ValueLabel> valueLabels;  // likewise, so no line runs through a figure
  auto isGap = [&](int i) {
    const LineState st = c.slots[static_cast<size_t>(i)].state;
    return st == LineState::NoData || st == LineState::AllExcluded;
  };
  // Days without data (or groups whose days were all left out): a quiet hatched column
  // each, wordless; a run of them gets one label on a band along its foot when the label
  // fits the run, never one word per narrow column.
  for (int i = 0; i < n;) {
    if (!isGap(i)) {
      ++i;
      continue;
    }
    const LineState st = c.slots[static_cast<size_t>(i)].state;
    int j = i;
    while (j + 1 < n && c.slots[static_cast<size_t>(j + 1)].state == st) ++j;
    QColor hatch = x.c("NO_DATA");
    hatch.setAlpha(70);
    for (int k = i; k <= j; ++k) {
      const QRectF column(plot.left() + sw * (k + 0.5) - bw / 2, plot.top(), bw, plot.height());
      p.setPen(Qt::NoPen);
      p.setBrush(x.c("PANEL"));
      p.drawRect(column);
      p.setBrush(HatchBrush(hatch));
      p.drawRect(column);
    }
    const QString word = st == LineState::NoData ? x.t("NO_DATA") : x.t("EXCLUDED");
    const double runLeft = plot.left() + sw * (i + 0.5) - bw / 2;
    const double runW = sw * (j - i) + bw;
    const QFontMetricsF sfm(smallFont);
    const double wordW = TextWidth(smallFont, word) + x.b * 0.5;
    if (wordW <= bw) {
      // Wide columns (weeks, spans) each carry their own word.
      for (int k = i; k <= j; ++k) {
        const QRectF band(plot.left() + sw * (k + 0.5) - bw / 2, plot.bottom() - sfm.height() - x.b * 0.55, bw,
                          sfm.height() + x.b * 0.4);
        gapNotes.push_back({band, word});
        taken.push_back(band);
      }
    } else if (wordW <= runW) {
      const double bandH = sfm.height() + x.b * 0.4;
      const QRectF band(runLeft, plot.bottom() - bandH - x.b * 0.15, runW, bandH);
      gapNotes.push_back({band, word});
      taken.push_back(band);
    }
    i = j + 1;
  }

  for (int i = 0; i < n; ++i) {
    const Slot& s = c.slots[static_cast<size_t>(i)];
    const double cx = plot.left() + sw * (i + 0.5);
    if (!isGap(i)) {
      double base = 0;
      const bool excluded = s.state == LineState::Excluded;
      for (const auto& g : s.segs) {
        if (g.value <= 0) continue;
        const QRectF r(cx - bw / 2, yOf(base + g.value), bw, yOf(base) - yOf(base + g.value));
        base += g.value;
        if (excluded) {
          QColor light = g.colour;
          light.setAlpha(55);
          p.setPen(Qt::NoPen);
          p.setBrush(light);
          p.drawRect(r);
          p.setBrush(HatchBrush(g.colour));
          p.drawRect(r);
        } else {
          p.setPen(QPen(x.c("BACKGROUND"), std::max(0.5, x.b * 0.06)));
          p.setBrush(g.colour);
          p.drawRect(r);
        }
      }
      if (excluded && base > 0) {
        p.setPen(QPen(x.c("EXCLUDED"), 1, Qt::DashLine));
        p.setBrush(Qt::NoBrush);
        p.drawRect(QRectF(cx - bw / 2, yOf(base), bw, yOf(0) - yOf(base)));
      }
      if (base > 0) bars.push_back(QRectF(cx - bw / 2, yOf(base), bw, yOf(0) - yOf(base)));
      double labelY = yOf(base);
      if (s.marker) labelY = std::min(labelY, yOf(*s.marker) - std::min(bw * 0.3, x.b * 0.55));
      if (!s.valueText.isEmpty() && TextWidth(valueFont, s.valueText) < sw * 0.98 && !c.compact) {
        const double tw = TextWidth(valueFont, s.valueText);
        taken.push_back(QRectF(cx - tw / 2, labelY - x.b * 1.3, tw, x.b * 1.2));
        valueLabels.push_back({QPointF(cx, labelY - x.b * 0.1), s.valueText, excluded});
      }
    }
    if (s.state == LineState::Excluded && TextWidth(smallFont, x.t("EXCLUDED")) < sw * 1.1) {
      DrawText(p, QRectF(cx - sw / 2, plot.bottom() + x.b * 0.35 + afm.height() * labelLines, sw, afm.height()),
               Qt::AlignHCenter | Qt::AlignTop, x.t("EXCLUDED"), smallFont, x.c("SUBTEXT"));
    }
  }

  // Date labels: every `every` slot from the first, and always the last; the one before
  // the last gives way when the two would touch. Labels stay inside the chart's area.
  const double labelTop = plot.bottom() + x.b * 0.35;
  auto labelRect = [&](int i) {
    double w = 0;
    for (const auto& l : c.slots[static_cast<size_t>(i)].label) w = std::max(w, TextWidth(axisFont, l));
    const double cx = plot.left() + sw * (i + 0.5);
    const double left = std::clamp(cx - w / 2, area.left(), std::max(area.left(), area.right() - w));
    return QRectF(left, labelTop, w, afm.height() * labelLines);
  };
  std::vector<int> dated;
  for (int i = 0; i < n; i += every) dated.push_back(i);
  if (dated.back() != n - 1) dated.push_back(n - 1);
  while (dated.size() >= 2 &&
         labelRect(dated[dated.size() - 2]).right() + x.b * 0.4 > labelRect(dated.back()).left()) {
    if (dated.size() > 2)
      dated.erase(dated.end() - 2);
    else
      dated.pop_back();
  }
  for (int i : dated) {
    const Slot& s = c.slots[static_cast<size_t>(i)];
    const QColor labelColour = s.state == LineState::Counted ? x.c("TEXT") : x.c("SUBTEXT");
    QRectF r = labelRect(i);
    for (const auto& l : s.label) {
      DrawText(p, QRectF(r.left(), r.top(), r.width(), afm.height()), Qt::AlignHCenter | Qt::AlignTop, l, axisFont,
               labelColour);
      r.translate(0, afm.height());
    }
  }

  // Target: a step line over the slots that have one.
  QPen targetPen(x.c("TARGET"), std::max(1.5, x.b * (c.targetEmphasis ? 0.17 : 0.09)), Qt::DashLine);
  targetPen.setCapStyle(Qt::FlatCap);
  p.setPen(targetPen);
  p.setBrush(Qt::NoBrush);
  bool hadTarget = false;
  double previous = 0;
  for (int i = 0; i < n; ++i) {
    const auto& t = c.slots[static_cast<size_t>(i)].target;
    const double l = plot.left() + sw * i, r = l + sw;
    if (t) {
      if (hadTarget && previous != *t) p.drawLine(QPointF(l, yOf(previous)), QPointF(l, yOf(*t)));
      p.drawLine(QPointF(l, yOf(*t)), QPointF(r, yOf(*t)));
      previous = *t;
    }
    hadTarget = t.has_value();
  }
  for (int i = n - 1; i >= 0; --i) {
    const auto& t = c.slots[static_cast<size_t>(i)].target;
    if (!t) continue;
    // The caption sits at the right end of the line, above or below it, else at the left
    // end: wherever it covers no value label.
    const QString text = c.targetText.isEmpty() ? x.t("TARGET") : c.targetText;
    const QFont f = x.font(0.8, true);
    const QFontMetricsF fm(f);
    const double w = fm.horizontalAdvance(text) + x.b * 0.6, h = fm.height() + x.b * 0.15;
    const double above = yOf(*t) - x.b * 0.15, below = yOf(*t) + h + x.b * 0.15;
    struct Place {
      double x, y;
      Qt::Alignment align;
    };
    const Place places[] = {{plot.right(), above, Qt::AlignRight}, {plot.right(), below, Qt::AlignRight},
                            {plot.left(), above, Qt::AlignLeft}, {plot.left(), below, Qt::AlignLeft}};
    // First choice: a place over no bar either; else one that covers no label.
    Place chosen = places[0];
    bool found = false;
    for (const Place& pl : places) {
      const double left = pl.align & Qt::AlignRight ? pl.x - w : pl.x;
      const QRectF r(left, pl.y - h, w, h);
      if (r.bottom() > plot.bottom() || r.top() < plot.top() - x.b) continue;
      bool free = true;
      for (const QRectF& tr : taken) free = free && !r.intersects(tr);
      if (free && !found) {
        chosen = pl;
        found = true;
      }
      bool clear = free;
      for (const QRectF& br : bars) clear = clear && !r.intersects(br);
      if (clear) {
        chosen = pl;
        break;
      }
    }
    DrawPlate(x, QPointF(chosen.x, chosen.y), chosen.align, text, f, x.c("TARGET"));
    break;
  }

  // Period mean.
  if (c.mean && *c.mean > 0) {
    QPen meanPen(x.c("MEAN"), std::max(1.5, x.b * 0.15), Qt::DotLine);
    p.setPen(meanPen);
    p.drawLine(QPointF(plot.left(), yOf(*c.mean)), QPointF(plot.right(), yOf(*c.mean)));
  }

  for (const ValueLabel& v : valueLabels)
    DrawPlate(x, v.anchor, Qt::AlignHCenter, v.text, valueFont, v.excluded ? x.c("SUBTEXT") : x.c("TEXT"));
  for (const GapNote& g : gapNotes) {
    p.setPen(Qt::NoPen);
    p.setBrush(x.c("PANEL"));
    p.drawRoundedRect(g.band, g.band.height() * 0.2, g.band.height() * 0.2);
    DrawText(p, g.band, Qt::AlignCenter, g.word, smallFont, x.c("SUBTEXT"));
  }

  // Markers on top of everything.
  for (int i = 0; i < n; ++i) {
    const auto& s = c.slots[static_cast<size_t>(i)];
    if (!s.marker || s.state == LineState::NoData) continue;
    DrawDiamond(p, QPointF(plot.left() + sw * (i + 0.5), yOf(*s.marker)), std::min(bw * 0.3, x.b * 0.55),
                x.c("ACTIVITY_TIME"), x.c("BACKGROUND"));
  }
}

// ---------------------------------------------------------------- chart builders

QStringList SlotLabel(const ChartSettings& s, const InterfaceFile& d, const ChartLine& l) {
  if (ChartFamily(d.type) == 0) return {s.mda(l.first)};
  return {s.mda(l.first), QStringLiteral("- ") + s.mda(l.last)};
}

double ConfiguredMax(const QString& text, double fallback) {
  bool ok = false;
  const double v = text.trimmed().toDouble(&ok);
  return ok && v > 0 ? v : fallback;
}

double MinutesOfCount(double count) { return count * 4.0 / 60.0; }

struct Config {
  std::array<QString, 5> max = Ini_GetMaxValues();
};

QString Unit(const ChartSettings& s, const char* key) { return s.text(QLatin1String(key)); }

std::optional<double> MeanIf(const InterfaceFile& d, double v) {
  if (d.validDays <= 0) return std::nullopt;
  return v;
}

// Every bar chart's legend ends alike: the mean line when there is a mean, then the hatch of
// excluded days when any slot shows one.
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
  BarChart c;
  c.title = s.text(QLatin1String(titleKey));
  c.subtitle = PeriodText(s, d);
  c.unit = QStringLiteral("(") + Unit(s, unitKey) + QStringLiteral(")");
  c.axisMax = axisMax;
  c.axisDecimals = decimals;
  std::optional<double> lastTarget;
  for (const auto& l : d.lines) {
    Slot slot;
    slot.label = SlotLabel(s, d, l);
    slot.state = l.state;
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
                   QLatin1Char(' ') + Unit(s, unitKey);
  }
  FinishLegend(c, s, mean, decimals);
  return c;
}

BarChart ActivityTimeChart(const ChartSettings& s, const InterfaceFile& d) {
  const Config cfg;
  BarChart c;
  c.title = s.text(QStringLiteral("CHART_400"));
  c.subtitle = PeriodText(s, d);
  c.unit = QStringLiteral("(") + s.text(QStringLiteral("UNIT_MIN")) + QStringLiteral(")");
  c.axisMax = ConfiguredMax(ChartFamily(d.type) == 0 ? cfg.max[1] : cfg.max[3], d.fixedMax[2]);
  c.axisDecimals = 0;
  const QColor mod = s.colour(QStringLiteral("MODERATE")), vig = s.colour(QStringLiteral("VIGOROUS"));
  std::optional<double> lastTarget;
  for (const auto& l : d.lines) {
    Slot slot;
    slot.label = SlotLabel(s, d, l);
    slot.state = l.state;
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

BarChart TotalCalChart(const ChartSettings& s, const InterfaceFile& d) {
  const Config cfg;
  BarChart c;
  c.title = s.text(QStringLiteral("CHART_500"));
  c.subtitle = PeriodText(s, d);
  c.unit = QStringLiteral("(") + s.text(QStringLiteral("UNIT_KCAL")) + QStringLiteral(")");
  c.axisMax = ConfiguredMax(cfg.max[2], d.fixedMax[3]);
  const QColor act = s.colour(QStringLiteral("ACTIVITY_CAL")), rest = s.colour(QStringLiteral("TOTAL_CAL"));
  for (const auto& l : d.lines) {
    Slot slot;
    slot.label = SlotLabel(s, d, l);
    slot.state = l.state;
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
  BarChart c;
  c.title = s.text(QStringLiteral("CHART_900"));
  c.subtitle = (family == 0   ? s.text(QStringLiteral("PERIOD_0"))
                : family == 1 ? s.text(QStringLiteral("WEEK_TOTAL"))
                              : s.text(QStringLiteral("MEAN_WEEK_TOTAL"))) +
               QStringLiteral("   ") + s.ymd(d.start) + (QLatin1Char(' ') + s.text(QStringLiteral("FROM_TO")).trimmed() + QLatin1Char(' ')) + s.ymd(d.end);
  c.unit = QStringLiteral("(") + s.text(QStringLiteral("UNIT_EX")) + QStringLiteral(")");
  std::optional<double> target = d.exerciseTarget;
  // The target is a weekly one; a daily chart shows its share of one day.
  if (target && family == 0) target = *target / 7.0;
  c.axisMax = target ? *target * 1.25 : 5;
  const QColor col = s.colour(QStringLiteral("EXERCISE"));
  double sum = 0;
  int count = 0;
  for (const auto& l : d.lines) {
    Slot slot;
    slot.label = SlotLabel(s, d, l);
    slot.state = l.state;
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

// ---------------------------------------------------------------- evaluation (100)

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

void DrawEvaluation(Ctx& x, const QRectF& area, const InterfaceFile& d, bool imperial) {
  const ChartSettings& s = x.s;
  double top = area.top() + DrawTitle(x, area, s.text(QStringLiteral("CHART_100")), PeriodText(s, d));
  const double cardW = std::clamp(area.width() * 0.25, x.b * 11, x.b * 16);
  const QRectF left(area.left(), top, area.width() - cardW - x.b, area.bottom() - top);
  const QRectF card(left.right() + x.b, top, cardW, area.bottom() - top);

  const Config cfg;
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
      {"STEPS", "UNIT_STEPS", 6, 4, 5, s.colour(QStringLiteral("STEPS")), ConfiguredMax(cfg.max[0], d.fixedMax[0]), 0,
       d.meanSteps},
      {"ACTIVITY_CAL", "UNIT_KCAL", 12, 10, 11, s.colour(QStringLiteral("ACTIVITY_CAL")), d.fixedMax[1], 0,
       d.meanActivityCal},
      {"ACTIVITY_TIME", "UNIT_MIN", 9, 7, 8, s.colour(QStringLiteral("MODERATE")),
       ConfiguredMax(ChartFamily(d.type) == 0 ? cfg.max[1] : cfg.max[3], d.fixedMax[2]), 1, d.meanActivityTime},
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
                         s.text(imperial ? QStringLiteral("UNIT_MILE") : QStringLiteral("UNIT_KM"))});
  DrawFigureRows(x, card, s.text(QStringLiteral("SUMMARY")), figures);
}

// ---------------------------------------------------------------- day profile (5)

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
            {s.text(QStringLiteral("DISTANCE")), Num(l.value(14), 1) + QLatin1Char(' ') + s.text(imperial ? QStringLiteral("UNIT_MILE") : QStringLiteral("UNIT_KM"))},
            {s.text(QStringLiteral("EXERCISE")), Num(l.exercise.value_or(0), 1) + QLatin1Char(' ') + s.text(QStringLiteral("UNIT_EX"))}};
    if (prof.averaged) rows.push_back({s.text(QStringLiteral("MODE")), s.text(QStringLiteral("MODE_AVERAGED"))});
    if (l.state == LineState::Excluded) rows.push_back({s.text(QStringLiteral("STATE")), s.text(QStringLiteral("EXCLUDED"))});
  } else {
    rows = {{s.text(QStringLiteral("STATE")), s.text(QStringLiteral("NO_DATA"))}};
  }
  DrawFigureRows(x, card, s.text(QStringLiteral("DAY_FIGURES")), rows);
}

// ---------------------------------------------------------------- weight plan (800-802)

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

// ---------------------------------------------------------------- BMI (700)

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

// ---------------------------------------------------------------- report table

QString StateText(const ChartSettings& s, const ChartLine& l) {
  switch (l.state) {
    case LineState::Counted: return QString();
    case LineState::Excluded:
    case LineState::AllExcluded: return s.text(QStringLiteral("EXCLUDED"));
    case LineState::NoData: return s.text(QStringLiteral("NO_DATA"));
  }
  return QString();
}

void DrawValueTable(Ctx& x, const QRectF& area, const ChartDocument& doc) {
  const ChartSettings& s = x.s;
  const InterfaceFile& d = doc.data;
  const bool dist = true;
  QStringList head = {s.text(QStringLiteral("DATE")),
                      s.text(QStringLiteral("STEPS")),
                      s.text(QStringLiteral("ACTIVITY_CAL")) + QStringLiteral(" (") + s.text(QStringLiteral("UNIT_KCAL")) + QLatin1Char(')'),
                      s.text(QStringLiteral("TOTAL_CAL")) + QStringLiteral(" (") + s.text(QStringLiteral("UNIT_KCAL")) + QLatin1Char(')'),
                      s.text(QStringLiteral("ACTIVITY_TIME")) + QStringLiteral(" (") + s.text(QStringLiteral("UNIT_MIN")) + QLatin1Char(')'),
                      s.text(QStringLiteral("DISTANCE")) + QStringLiteral(" (") + s.text(doc.imperial ? QStringLiteral("UNIT_MILE") : QStringLiteral("UNIT_KM")) + QLatin1Char(')'),
                      // the exercise is its own unit in some editions: no "Exercise (Exercise)"
                      s.text(QStringLiteral("EXERCISE")) == s.text(QStringLiteral("UNIT_EX"))
                          ? s.text(QStringLiteral("EXERCISE"))
                          : s.text(QStringLiteral("EXERCISE")) + QStringLiteral(" (") + s.text(QStringLiteral("UNIT_EX")) + QLatin1Char(')'),
                      s.text(QStringLiteral("STATE"))};
  (void)dist;
  std::vector<QStringList> rows;
  for (const auto& l : d.lines) {
    QString date = ChartFamily(d.type) == 0 ? s.mda(l.first) : s.mda(l.first) + QStringLiteral(" - ") + s.mda(l.last);
    if (l.hasFigures())
      rows.push_back({date, Num(l.value(6)), Num(l.value(12)), Num(l.value(13)), Num(l.value(9), 1), Num(l.value(14), 1),
                      l.exercise ? Num(*l.exercise, 1) : QString(), StateText(s, l)});
    else
      rows.push_back({date, QString(), QString(), QString(), QString(), QString(),
                      l.exercise ? Num(*l.exercise, 1) : QString(), StateText(s, l)});
  }
  if (rows.empty()) return;
  const int cols = static_cast<int>(head.size());
  const double maxRowH = x.b * 1.7;
  const int maxRows = std::max(1, static_cast<int>(area.height() / maxRowH) - 1);
  const double scale = rows.size() + 1 > static_cast<size_t>(maxRows + 1)
                           ? std::max(0.5, (area.height() / (rows.size() + 1.0)) / maxRowH)
                           : 1.0;
  const double rowH = maxRowH * scale;
  const int shown = std::min<int>(static_cast<int>(rows.size()), static_cast<int>(area.height() / rowH) - 1);
  const QFont hf = x.font(0.72 * std::max(scale, 0.75), true), cf = x.font(0.8 * std::max(scale, 0.7));
  const std::array<double, 8> widths = {1.8, 1, 1, 1, 1, 1, 1, 1.1};
  double total = 0;
  for (double w : widths) total += w;
  double y = area.top();
  auto drawRow = [&](const QStringList& cells, const QFont& f, const QColor& fg, const QColor& bg) {
    x.p.setPen(Qt::NoPen);
    x.p.setBrush(bg);
    x.p.drawRect(QRectF(area.left(), y, area.width(), rowH));
    double cx = area.left();
    for (int c = 0; c < cols; ++c) {
      const double w = area.width() * widths[static_cast<size_t>(c)] / total;
      const int align = (c == 0 || c == cols - 1 ? Qt::AlignLeft : Qt::AlignRight) | Qt::AlignVCenter;
      // One line per cell: a caption too long for its column gets a smaller type, then an ellipsis.
      const double room = w - x.b * 0.8;
      QFont cf2 = f;
      const QString cell = cells.value(c);
      const double need = TextWidth(f, cell);
      if (need > room && need > 0)
        cf2.setPixelSize(std::max(1, static_cast<int>(f.pixelSize() * std::max(0.75, room / need))));
      const QString shownText = QFontMetricsF(cf2).elidedText(cell, Qt::ElideRight, room);
      DrawText(x.p, QRectF(cx + x.b * 0.4, y, room, rowH), align, shownText, cf2, fg);
      cx += w;
    }
    y += rowH;
  };
  drawRow(head, hf, x.c("TEXT"), x.c("PANEL").darker(104));
  for (int i = 0; i < shown; ++i) {
    const auto& r = rows[static_cast<size_t>(i)];
    const bool counted = d.lines[static_cast<size_t>(i)].state == LineState::Counted;
    drawRow(r, cf, counted ? x.c("TEXT") : x.c("SUBTEXT"), i % 2 ? x.c("PANEL") : x.c("BACKGROUND"));
  }
  x.p.setPen(QPen(x.c("GRID"), 1));
  x.p.drawLine(QPointF(area.left(), y), QPointF(area.right(), y));
}

}  // namespace

// ---------------------------------------------------------------- entry points

void DrawChartDocument(QPainter& p, const QRectF& area, const ChartDocument& doc, const ChartSettings& s) {
  Ctx x{p, s, BaseSize(area)};
  p.save();
  p.setRenderHint(QPainter::Antialiasing, true);
  p.setRenderHint(QPainter::TextAntialiasing, true);
  p.fillRect(area, s.colour(QStringLiteral("BACKGROUND")));
  const QRectF in = area.adjusted(x.b, x.b * 0.8, -x.b, -x.b * 0.6);
  if (doc.kind == ChartDocument::Kind::Bmi) {
    // A strip of a picture: its text follows the height more than the width.
    Ctx strip{p, s, std::clamp(std::min(area.width() / 32.0, area.height() / 8.5), 8.0, 24.0)};
    DrawBmi(strip, area.adjusted(strip.b * 0.5, strip.b * 0.4, -strip.b * 0.5, -strip.b * 0.3), doc.bmi);
    p.restore();
    return;
  }
  const InterfaceFile& d = doc.data;
  const Config cfg;
  switch (ChartKindOf(d.type)) {
    case 100: DrawEvaluation(x, in, d, doc.imperial); break;
    case 200: {
      BarChart c = SingleSeries(s, d, "CHART_200", "UNIT_STEPS", 6, s.colour(QStringLiteral("STEPS")), 4,
                                MeanIf(d, d.meanSteps), ConfiguredMax(cfg.max[0], d.fixedMax[0]), 0,
                                s.text(QStringLiteral("STEPS")));
      DrawBarChart(x, in, c);
      break;
    }
    case 300: {
      BarChart c = SingleSeries(s, d, "CHART_300", "UNIT_KCAL", 12, s.colour(QStringLiteral("ACTIVITY_CAL")), 10,
                                MeanIf(d, d.meanActivityCal), d.fixedMax[1], 0, s.text(QStringLiteral("ACTIVITY_CAL")));
      DrawBarChart(x, in, c);
      break;
    }
    case 400: DrawBarChart(x, in, ActivityTimeChart(s, d)); break;
    case 500: DrawBarChart(x, in, TotalCalChart(s, d)); break;
    case 600: {
      BarChart c = SingleSeries(s, d, "CHART_600", doc.imperial ? "UNIT_MILE" : "UNIT_KM", 14,
                                s.colour(QStringLiteral("DISTANCE")), 0, MeanIf(d, d.meanDistance), 5, 1,
                                s.text(QStringLiteral("DISTANCE")));
      DrawBarChart(x, in, c);
      break;
    }
    case 800: DrawWeightPlan(x, in, doc); break;
    case 900: DrawBarChart(x, in, ExerciseChart(s, d)); break;
    case 5: DrawDayProfile(x, in, d, doc.imperial); break;
    default: break;
  }
  p.restore();
}

namespace {

// The header names the recorder by its model number ("0" AL, "1" BRIO, "2" BRIO_ZR,
// "3" BRIO_KT); the settings file gives each its printed name.
QString RecorderName(const ChartSettings& s, const QString& kind) {
  const QString name = kind.isEmpty() ? QString() : s.text(QStringLiteral("RECORDER_") + kind);
  return name.isEmpty() ? kind : name;
}

}  // namespace

QString ExclusionCaption(const ChartSettings& s, const QString& exclusionText) {
  const std::optional<ExclusionRule> rule = ParseExclusionText(exclusionText);
  if (!rule) return exclusionText;
  QStringList parts;
  if (rule->firstDay) parts << s.text(QStringLiteral("EXCLUDE_FIRST_DAY"));
  if (rule->lastDay) parts << s.text(QStringLiteral("EXCLUDE_LAST_DAY"));
  // A day is left out when its steps are below the threshold, so 0 or less leaves none.
  if (!rule->threshold.isEmpty() && rule->threshold.toLong() > 0)
    parts << s.text(QStringLiteral("EXCLUDE_LOW_STEPS")).arg(Num(rule->threshold.toDouble()));
  QString out = parts.isEmpty() ? s.text(QStringLiteral("EXCLUDE_NONE"))
                                : parts.join(s.text(QStringLiteral("EXCLUDE_SEPARATOR")));
  if (!out.isEmpty()) out[0] = out[0].toUpper();
  return out;
}

void DrawReportPage(QPainter& p, const QRectF& page, const ChartDocument& doc, const HeaderFile& h,
                    const ChartSettings& s) {
  Ctx x{p, s, page.width() / 70.0};
  p.save();
  p.setRenderHint(QPainter::Antialiasing, true);
  p.fillRect(page, s.colour(QStringLiteral("BACKGROUND")));
  double y = page.top();
  // Title bar.
  const QFont tf = x.font(1.7, true);
  const double th = QFontMetricsF(tf).height() * 1.2;
  QString chartTitle = s.text(QStringLiteral("CHART_%1").arg(ChartKindOf(doc.data.type)));
  DrawText(p, QRectF(page.left(), y, page.width(), th), Qt::AlignLeft | Qt::AlignVCenter,
           s.text(QStringLiteral("REPORT")) + QStringLiteral("  ·  ") + chartTitle, tf, x.c("TEXT"));
  DrawText(p, QRectF(page.left(), y, page.width(), th), Qt::AlignRight | Qt::AlignVCenter, h.institution, x.font(1.0),
           x.c("SUBTEXT"));
  y += th;
  p.setPen(QPen(x.c("ACCENT"), x.b * 0.18));
  p.drawLine(QPointF(page.left(), y), QPointF(page.right(), y));
  y += x.b * 0.8;

  // The person and the period.
  QStringList nameParts;
  for (const auto& n : {h.firstName, h.middleName, h.lastName})
    if (!n.isEmpty()) nameParts.append(n);
  QString name = nameParts.join(QLatin1Char(' '));
  if (!name.isEmpty() && !s.text(QStringLiteral("HONORIFIC")).isEmpty())
    name += QLatin1Char(' ') + s.text(QStringLiteral("HONORIFIC"));
  const QFont nf = x.font(1.5, true);
  const double nh = QFontMetricsF(nf).height() * 1.2;
  DrawText(p, QRectF(page.left(), y, page.width() * 0.6, nh), Qt::AlignLeft | Qt::AlignVCenter, name, nf, x.c("TEXT"));
  QStringList sub;
  if (!h.nickName.isEmpty()) sub << s.text(QStringLiteral("NICKNAME")) + QStringLiteral(": ") + h.nickName;
  if (!h.group.isEmpty()) sub << s.text(QStringLiteral("GROUP")) + QStringLiteral(": ") + h.group;
  DrawText(p, QRectF(page.left() + page.width() * 0.4, y, page.width() * 0.6, nh), Qt::AlignRight | Qt::AlignVCenter,
           sub.join(QStringLiteral("   ")), x.font(0.95), x.c("SUBTEXT"));
  y += nh + x.b * 0.3;

  const QDate from = h.start.isValid() ? h.start : doc.data.start;
  const QDate to = h.end.isValid() ? h.end : doc.data.end;
  std::vector<std::pair<QString, QString>> facts = {
      {s.text(QStringLiteral("PERIOD")), s.ymd(from) + (QLatin1Char(' ') + s.text(QStringLiteral("FROM_TO")).trimmed() + QLatin1Char(' ')) + s.ymd(to)},
      {s.text(QStringLiteral("VALID_DAYS")), h.validDays.isEmpty() ? QString::number(doc.data.validDays) : h.validDays},
      {s.text(QStringLiteral("AGE")) + QStringLiteral(" / ") + s.text(QStringLiteral("GENDER")), h.age + QStringLiteral(" / ") + h.gender},
      {s.text(QStringLiteral("HEIGHT")) + QStringLiteral(" / ") + s.text(QStringLiteral("WEIGHT")), h.height + QStringLiteral(" / ") + h.weight},
      {s.text(QStringLiteral("TARGETS")),
       s.text(QStringLiteral("TARGET_STEP")) + QLatin1Char(' ') + h.targetStep + QStringLiteral("   ") +
           s.text(QStringLiteral("TARGET_INTAKE")) + QLatin1Char(' ') + h.targetIntake + QStringLiteral("   ") +
           s.text(QStringLiteral("TARGET_ACTMIN")) + QLatin1Char(' ') + h.targetActMin},
      {s.text(QStringLiteral("MODERATE_RANGE")),
       s.text(QStringLiteral("LEVEL")) + QLatin1Char(' ') + h.moderateFrom + QStringLiteral(" - ") + h.moderateTo},
      {s.text(QStringLiteral("EXCLUSION")), ExclusionCaption(s, h.exclusionText)},
      {s.text(QStringLiteral("RECORDER")), RecorderName(s, h.recorderKind)},
  };
  if (!h.comment.isEmpty()) facts.push_back({s.text(QStringLiteral("COMMENT")), h.comment});
  const QFont kf = x.font(0.78), vf = x.font(0.95);
  const double rowH = x.b * 1.45;
  const double colW = page.width() / 2;
  const int perCol = static_cast<int>((facts.size() + 1) / 2);
  const double blockH = rowH * perCol + x.b * 0.8;
  p.setPen(Qt::NoPen);
  p.setBrush(x.c("PANEL"));
  p.drawRoundedRect(QRectF(page.left(), y, page.width(), blockH), x.b * 0.4, x.b * 0.4);
  for (int i = 0; i < static_cast<int>(facts.size()); ++i) {
    const double cx = page.left() + (i < perCol ? 0 : colW) + x.b * 0.7;
    const double cy = y + x.b * 0.4 + rowH * (i < perCol ? i : i - perCol);
    const double keyW = colW * 0.32;
    DrawText(p, QRectF(cx, cy, keyW, rowH), Qt::AlignLeft | Qt::AlignVCenter, facts[static_cast<size_t>(i)].first, kf,
             x.c("SUBTEXT"));
    // A long value (a comment, an exclusion line shown as written) ends in an ellipsis
    // instead of running into the next column or off the page.
    const double valueW = colW - keyW - x.b * 1.2;
    DrawText(p, QRectF(cx + keyW, cy, valueW, rowH), Qt::AlignLeft | Qt::AlignVCenter,
             QFontMetricsF(vf).elidedText(facts[static_cast<size_t>(i)].second, Qt::ElideRight, valueW), vf,
             x.c("TEXT"));
  }
  y += blockH + x.b * 0.8;

  // The chart, then the table of its values.
  const double footH = x.b * 1.6;
  const double rest = page.bottom() - y - footH;
  const bool table = doc.kind == ChartDocument::Kind::Interface && ChartKindOf(doc.data.type) != 800;
  // The table takes what its rows need, at most about two fifths of the space.
  const double tableNeed = x.b * 1.7 * (static_cast<double>(doc.data.lines.size()) + 1.5);
  const double chartH = table ? rest - std::min(tableNeed, rest * 0.42) - x.b * 0.8 : rest;
  p.setPen(QPen(x.c("GRID"), 1));
  p.setBrush(Qt::NoBrush);
  const QRectF chartRect(page.left(), y, page.width(), chartH);
  p.drawRoundedRect(chartRect, x.b * 0.4, x.b * 0.4);
  DrawChartDocument(p, chartRect.adjusted(1, 1, -1, -1), doc, s);
  y += chartH + x.b * 0.8;
  if (table) DrawValueTable(x, QRectF(page.left(), y, page.width(), page.bottom() - footH - y), doc);
  DrawText(p, QRectF(page.left(), page.bottom() - footH, page.width(), footH), Qt::AlignRight | Qt::AlignBottom,
           s.text(QStringLiteral("PRINTED")) + QStringLiteral(" ") + s.ymd(QDate::currentDate()), x.font(0.7),
           x.c("SUBTEXT"));
  p.restore();
}

int DocumentResultCode(const ChartDocument& doc) {
  if (doc.kind == ChartDocument::Kind::Bmi) return chartcode::kOk;
  const InterfaceFile& d = doc.data;
  const int kind = ChartKindOf(d.type);
  if (kind == 800) {
    bool any = d.linesWithFigures() > 0;
    for (const auto& p : doc.sim.points) any = any || p.weight.has_value();
    return any ? chartcode::kOk : chartcode::kStepActivityNoData;
  }
  // A group whose days were all left out had data: that is "no effective data", as for
  // a daily file whose days are all excluded, not "no data".
  bool any = d.linesWithFigures() > 0;
  for (const auto& l : d.lines)
    any = any || l.state == LineState::AllExcluded || (kind == 900 && l.exercise.has_value());
  if (!any) {
    switch (kind) {
      case 200: return chartcode::kAveStepNoData;
      case 300: return chartcode::kAveActNoData;
      case 400: return chartcode::kLevelAveNoData;
      case 500: return chartcode::kExpenditureNoData;
      case 900: return chartcode::kLevelMaxNoData;
      case 5: return chartcode::kDayVarNoData;
      default: return chartcode::kStepActivityNoData;
    }
  }
  if (d.countedLines() == 0) {
    switch (kind) {
      case 200: return chartcode::kAveStepNoEffectiveData;
      case 300: return chartcode::kAveActNoEffectiveData;
      case 400: return chartcode::kLevelAveNoEffectiveData;
      default: break;
    }
  }
  return chartcode::kOk;
}
