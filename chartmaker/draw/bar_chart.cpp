#include "chartmaker/draw/bar_chart.h"

#include <QFontMetricsF>
#include <algorithm>
#include <cmath>

#include "chartmaker/draw/layout.h"

namespace chartdraw {

namespace {

double SlotTotal(const Slot& s) {
  double t = 0;
  for (const auto& g : s.segs) t += std::max(0.0, g.value);
  return t;
}

bool IsGap(LineState st) { return st == LineState::NoData || st == LineState::AllExcluded; }

// One drawing of a bar chart: the geometry worked out once, then the layers in order
// (grid, no-data columns, bars, date labels, target, mean, plates, markers).
class BarPlot {
 public:
  BarPlot(Ctx& x, const QRectF& area, const BarChart& c)
      : x_(x), p_(x.p), c_(c), area_(area), axisFont_(x.font(0.85)), afm_(axisFont_),
        smallFont_(x.font(0.75)), valueFont_(x.font(0.8, true)) {}

  void draw() {
    double top = area_.top();
    if (c_.showTitle) top += DrawTitle(x_, area_, c_.title, c_.subtitle);
    if (!c_.legend.empty())
      top += DrawLegend(x_, QRectF(area_.left(), top, area_.width(), area_.height()), c_.legend) + x_.b * 0.2;
    if (!layOut(top)) return;
    drawGrid();
    n_ = static_cast<int>(c_.slots.size());
    if (n_ == 0) return;
    sw_ = plot_.width() / n_;
    bw_ = std::min(sw_ * 0.62, x_.b * 6.0);
    drawGapColumns();
    drawBars();
    drawDateLabels();
    drawTarget();
    drawMean();
    for (const ValueLabel& v : valueLabels_)
      DrawPlate(x_, v.anchor, Qt::AlignHCenter, v.text, valueFont_, v.excluded ? x_.c("SUBTEXT") : x_.c("TEXT"));
    for (const GapNote& g : gapNotes_) {
      p_.setPen(Qt::NoPen);
      p_.setBrush(x_.c("PANEL"));
      p_.drawRoundedRect(g.band, g.band.height() * 0.2, g.band.height() * 0.2);
      DrawText(p_, g.band, Qt::AlignCenter, g.word, smallFont_, x_.c("SUBTEXT"));
    }
    drawMarkers();
  }

 private:
  struct GapNote {
    QRectF band;
    QString word;
  };
  struct ValueLabel {
    QPointF anchor;  // bottom centre
    QString text;
    bool excluded;
  };

  double yOf(double v) const { return plot_.bottom() - std::clamp(v / axis_.max, 0.0, 1.0) * plot_.height(); }
  double centreOf(int i) const { return plot_.left() + sw_ * (i + 0.5); }
  const Slot& slot(int i) const { return c_.slots[static_cast<size_t>(i)]; }

  // Axis range and the plot rectangle; false when there is no room to draw.
  bool layOut(double top) {
    // The configured maximum, grown to hold every value drawn.
    double dataMax = 0;
    for (const auto& s : c_.slots) {
      dataMax = std::max(dataMax, SlotTotal(s));
      if (s.target) dataMax = std::max(dataMax, *s.target);
      if (s.marker) dataMax = std::max(dataMax, *s.marker);
    }
    if (c_.mean) dataMax = std::max(dataMax, *c_.mean);
    axis_ = ScaleAxis(c_.axisMax, dataMax, c_.compact ? 3 : 5);
    yLabelW_ = TextWidth(axisFont_, Num(axis_.max, axis_.decimals));
    yLabelW_ = std::max({yLabelW_, TextWidth(axisFont_, c_.unit) * 0.6, c_.minYLabelWidth});
    bool anyExcluded = false;
    for (const auto& s : c_.slots) {
      labelLines_ = std::max(labelLines_, static_cast<int>(s.label.size()));
      anyExcluded = anyExcluded || s.state == LineState::Excluded || s.state == LineState::AllExcluded;
    }
    unitH_ = c_.unit.isEmpty() ? 0 : afm_.height() * 1.1;
    const double bottomH = afm_.height() * (labelLines_ + (anyExcluded ? 1 : 0)) + x_.b * 0.5;
    plot_ = QRectF(area_.left() + yLabelW_ + x_.b * 0.6, top + unitH_ + x_.b * 0.6, area_.width() - yLabelW_ - x_.b * 1.0,
                   area_.bottom() - bottomH - top - unitH_ - x_.b * 0.6);
    return plot_.width() >= 10 && plot_.height() >= 10;
  }

  void drawGrid() {
    if (!c_.unit.isEmpty())
      DrawText(p_, QRectF(area_.left(), plot_.top() - unitH_ - x_.b * 0.55, plot_.width(), unitH_),
               Qt::AlignLeft | Qt::AlignBottom, c_.unit, axisFont_, x_.c("SUBTEXT"));
    for (double v = 0; v <= axis_.max + axis_.step * 0.01; v += axis_.step) {
      const double y = yOf(v);
      p_.setPen(QPen(v == 0 ? x_.c("AXIS") : x_.c("GRID"), v == 0 ? 1.2 : 1));
      p_.drawLine(QPointF(plot_.left(), y), QPointF(plot_.right(), y));
      DrawText(p_, QRectF(area_.left(), y - afm_.height() / 2, yLabelW_, afm_.height()),
               Qt::AlignRight | Qt::AlignVCenter, Num(v, axis_.decimals), axisFont_, x_.c("SUBTEXT"));
    }
  }

  // Days without data (or groups whose days were all left out): a quiet hatched column
  // each, wordless; a run of them gets one label on a band along its foot when the label
  // fits the run, never one word per narrow column.
  void drawGapColumns() {
    std::vector<LineState> states;
    for (const auto& s : c_.slots) states.push_back(s.state);
    QColor hatch = x_.c("NO_DATA");
    hatch.setAlpha(70);
    const QFontMetricsF sfm(smallFont_);
    for (const auto& [i, j] : GapRuns(states)) {
      for (int k = i; k <= j; ++k) {
        const QRectF column(centreOf(k) - bw_ / 2, plot_.top(), bw_, plot_.height());
        p_.setPen(Qt::NoPen);
        p_.setBrush(x_.c("PANEL"));
        p_.drawRect(column);
        p_.setBrush(HatchBrush(hatch));
        p_.drawRect(column);
      }
      const QString word = slot(i).state == LineState::NoData ? x_.t("NO_DATA") : x_.t("EXCLUDED");
      const double runLeft = centreOf(i) - bw_ / 2;
      const double runW = sw_ * (j - i) + bw_;
      switch (PlaceGapWord(TextWidth(smallFont_, word) + x_.b * 0.5, bw_, runW)) {
        case GapWord::PerColumn:
          // Wide columns (weeks, spans) each carry their own word.
          for (int k = i; k <= j; ++k) {
            const QRectF band(centreOf(k) - bw_ / 2, plot_.bottom() - sfm.height() - x_.b * 0.55, bw_,
                              sfm.height() + x_.b * 0.4);
            gapNotes_.push_back({band, word});
            taken_.push_back(band);
          }
          break;
        case GapWord::OverRun: {
          const double bandH = sfm.height() + x_.b * 0.4;
          const QRectF band(runLeft, plot_.bottom() - bandH - x_.b * 0.15, runW, bandH);
          gapNotes_.push_back({band, word});
          taken_.push_back(band);
          break;
        }
        case GapWord::None: break;
      }
    }
  }

  void drawBars() {
    for (int i = 0; i < n_; ++i) {
      const Slot& s = slot(i);
      const double cx = centreOf(i);
      if (!IsGap(s.state)) drawStack(s, cx);
      if (s.state == LineState::Excluded && TextWidth(smallFont_, x_.t("EXCLUDED")) < sw_ * 1.1) {
        DrawText(p_, QRectF(cx - sw_ / 2, plot_.bottom() + x_.b * 0.35 + afm_.height() * labelLines_, sw_, afm_.height()),
                 Qt::AlignHCenter | Qt::AlignTop, x_.t("EXCLUDED"), smallFont_, x_.c("SUBTEXT"));
      }
    }
  }

  // The segments of one slot; an excluded day's bar is pale and hatched inside a dashed edge.
  void drawStack(const Slot& s, double cx) {
    double base = 0;
    const bool excluded = s.state == LineState::Excluded;
    for (const auto& g : s.segs) {
      if (g.value <= 0) continue;
      const QRectF r(cx - bw_ / 2, yOf(base + g.value), bw_, yOf(base) - yOf(base + g.value));
      base += g.value;
      if (excluded) {
        QColor light = g.colour;
        light.setAlpha(55);
        p_.setPen(Qt::NoPen);
        p_.setBrush(light);
        p_.drawRect(r);
        p_.setBrush(HatchBrush(g.colour));
        p_.drawRect(r);
      } else {
        p_.setPen(QPen(x_.c("BACKGROUND"), std::max(0.5, x_.b * 0.06)));
        p_.setBrush(g.colour);
        p_.drawRect(r);
      }
    }
    if (excluded && base > 0) {
      p_.setPen(QPen(x_.c("EXCLUDED"), 1, Qt::DashLine));
      p_.setBrush(Qt::NoBrush);
      p_.drawRect(QRectF(cx - bw_ / 2, yOf(base), bw_, yOf(0) - yOf(base)));
    }
    if (base > 0) bars_.push_back(QRectF(cx - bw_ / 2, yOf(base), bw_, yOf(0) - yOf(base)));
    const double labelY =
        ValueLabelBase(yOf(base), s.marker ? std::optional<double>(yOf(*s.marker)) : std::nullopt, bw_, x_.b);
    if (s.valueText.isEmpty()) return;
    const double tw = TextWidth(valueFont_, s.valueText);
    if (!ValueLabelFits(tw, sw_, c_.compact)) return;
    taken_.push_back(QRectF(cx - tw / 2, labelY - x_.b * 1.3, tw, x_.b * 1.2));
    valueLabels_.push_back({QPointF(cx, labelY - x_.b * 0.1), s.valueText, excluded});
  }

  // Date labels: every few slots from the first, and always the last, inside the chart's area.
  void drawDateLabels() {
    const double labelTop = plot_.bottom() + x_.b * 0.35;
    double widest = 0;
    std::vector<Span> spans;
    std::vector<double> widths;
    for (int i = 0; i < n_; ++i) {
      double w = 0;
      for (const auto& l : slot(i).label) w = std::max(w, TextWidth(axisFont_, l));
      widest = std::max(widest, w);
      widths.push_back(w);
      const double left = ClampedLabelLeft(centreOf(i), w, area_.left(), area_.right());
      spans.push_back({left, left + w});
    }
    const int every = LabelEvery(widest, x_.b * 0.4, sw_);
    for (int i : DatedSlots(spans, every, x_.b * 0.4)) {
      const Slot& s = slot(i);
      const QColor labelColour = s.state == LineState::Counted ? x_.c("TEXT") : x_.c("SUBTEXT");
      QRectF r(spans[static_cast<size_t>(i)].left, labelTop, widths[static_cast<size_t>(i)], afm_.height() * labelLines_);
      for (const auto& l : s.label) {
        DrawText(p_, QRectF(r.left(), r.top(), r.width(), afm_.height()), Qt::AlignHCenter | Qt::AlignTop, l,
                 axisFont_, labelColour);
        r.translate(0, afm_.height());
      }
    }
  }

  // A step line over the slots that have a target, captioned where it covers no value.
  void drawTarget() {
    QPen targetPen(x_.c("TARGET"), std::max(1.5, x_.b * (c_.targetEmphasis ? 0.17 : 0.09)), Qt::DashLine);
    targetPen.setCapStyle(Qt::FlatCap);
    p_.setPen(targetPen);
    p_.setBrush(Qt::NoBrush);
    bool hadTarget = false;
    double previous = 0;
    std::optional<double> lastTarget;
    for (int i = 0; i < n_; ++i) {
      const auto& t = slot(i).target;
      const double l = plot_.left() + sw_ * i, r = l + sw_;
      if (t) {
        if (hadTarget && previous != *t) p_.drawLine(QPointF(l, yOf(previous)), QPointF(l, yOf(*t)));
        p_.drawLine(QPointF(l, yOf(*t)), QPointF(r, yOf(*t)));
        previous = *t;
        lastTarget = t;
      }
      hadTarget = t.has_value();
    }
    if (!lastTarget) return;
    const QString text = c_.targetText.isEmpty() ? x_.t("TARGET") : c_.targetText;
    const QFont f = x_.font(0.8, true);
    const QFontMetricsF fm(f);
    const QRectF plate = PlateRect(QPointF(), Qt::AlignLeft, fm.horizontalAdvance(text), fm.height(), x_.b);
    const CaptionPlace at =
        PlaceTargetCaption(plot_, yOf(*lastTarget), plate.width(), plate.height(), x_.b, taken_, bars_);
    DrawPlate(x_, at.anchor, at.align, text, f, x_.c("TARGET"));
  }

  void drawMean() {
    if (!c_.mean || *c_.mean <= 0) return;
    QPen meanPen(x_.c("MEAN"), std::max(1.5, x_.b * 0.15), Qt::DotLine);
    p_.setPen(meanPen);
    p_.drawLine(QPointF(plot_.left(), yOf(*c_.mean)), QPointF(plot_.right(), yOf(*c_.mean)));
  }

  // Markers on top of everything.
  void drawMarkers() {
    for (int i = 0; i < n_; ++i) {
      const auto& s = slot(i);
      if (!s.marker || s.state == LineState::NoData) continue;
      DrawDiamond(p_, QPointF(centreOf(i), yOf(*s.marker)), std::min(bw_ * 0.3, x_.b * 0.55), x_.c("ACTIVITY_TIME"),
                  x_.c("BACKGROUND"));
    }
  }

  Ctx& x_;
  QPainter& p_;
  const BarChart& c_;
  const QRectF area_;
  const QFont axisFont_;
  const QFontMetricsF afm_;
  const QFont smallFont_, valueFont_;
  AxisScale axis_;
  QRectF plot_;
  double yLabelW_ = 0, unitH_ = 0, sw_ = 0, bw_ = 0;
  int labelLines_ = 1, n_ = 0;
  std::vector<QRectF> bars_;
  std::vector<QRectF> taken_;           // value labels and no-data notes, which the target's caption avoids
  std::vector<GapNote> gapNotes_;       // drawn over the target and mean lines
  std::vector<ValueLabel> valueLabels_; // likewise, so no line runs through a figure
};

}  // namespace

void DrawBarChart(Ctx& x, const QRectF& area, const BarChart& c) { BarPlot(x, area, c).draw(); }

}  // namespace chartdraw
