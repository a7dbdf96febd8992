#include "chartmaker/draw/layout.h"

#include <algorithm>
#include <cmath>

namespace chartdraw {

double NiceStep(double range, int ticks) {
  if (range <= 0) return 1;
  const double raw = range / ticks;
  const double mag = std::pow(10.0, std::floor(std::log10(raw)));
  for (double m : {1.0, 2.0, 2.5, 5.0, 10.0}) {
    if (m * mag >= raw) return m * mag;
  }
  return 10 * mag;
}

AxisScale ScaleAxis(double configuredMax, double dataMax, int ticks) {
  AxisScale a;
  a.max = std::max(configuredMax, dataMax * 1.1);
  if (a.max <= 0) a.max = 1;
  a.step = NiceStep(a.max, ticks);
  a.max = std::ceil(a.max / a.step - 1e-9) * a.step;
  a.decimals = a.step < 1 ? (a.step < 0.1 ? 2 : 1) : 0;
  return a;
}

double ClampedLabelLeft(double centre, double w, double areaLeft, double areaRight) {
  return std::clamp(centre - w / 2, areaLeft, std::max(areaLeft, areaRight - w));
}

int LabelEvery(double widestLabel, double padding, double slotWidth) {
  return std::max(1, static_cast<int>(std::ceil((widestLabel + padding) / slotWidth)));
}

std::vector<int> DatedSlots(const std::vector<Span>& labels, int every, double minGap) {
  const int n = static_cast<int>(labels.size());
  std::vector<int> dated;
  if (n == 0) return dated;
  auto clearOf = [&](int a, int b) {
    return labels[static_cast<size_t>(a)].right + minGap <= labels[static_cast<size_t>(b)].left;
  };
  // A label pushed inwards at the area's edge may reach its neighbour: it then gives way.
  for (int i = 0; i < n - 1; i += std::max(1, every))
    if (dated.empty() || clearOf(dated.back(), i)) dated.push_back(i);
  if (dated.empty()) return {n - 1};
  // The last day always has its label; the ones before it give way, all but the first.
  while (!clearOf(dated.back(), n - 1) && dated.size() > 1) dated.pop_back();
  if (clearOf(dated.back(), n - 1)) dated.push_back(n - 1);
  return dated;
}

QRectF PlateRect(QPointF anchor, Qt::Alignment align, double textW, double textH, double b) {
  const double w = textW + b * 0.6;
  const double h = textH + b * 0.15;
  double left = anchor.x();
  if (align & Qt::AlignRight) left -= w;
  if (align & Qt::AlignHCenter) left -= w / 2;
  return QRectF(left, anchor.y() - h, w, h);
}

bool ValueLabelFits(double textW, double slotW, bool compact) { return textW < slotW * 0.98 && !compact; }

double ValueLabelBase(double barTop, std::optional<double> markerY, double barW, double b) {
  if (!markerY) return barTop;
  return std::min(barTop, *markerY - std::min(barW * 0.3, b * 0.55));
}

CaptionPlace PlaceTargetCaption(const QRectF& plot, double lineY, double plateW, double plateH, double b,
                                const std::vector<QRectF>& taken, const std::vector<QRectF>& bars) {
  const double w = plateW, h = plateH;
  const double above = lineY - b * 0.15, below = lineY + h + b * 0.15;
  const CaptionPlace places[] = {{QPointF(plot.right(), above), Qt::AlignRight},
                                 {QPointF(plot.right(), below), Qt::AlignRight},
                                 {QPointF(plot.left(), above), Qt::AlignLeft},
                                 {QPointF(plot.left(), below), Qt::AlignLeft}};
  CaptionPlace chosen = places[0];
  bool found = false;
  for (const CaptionPlace& pl : places) {
    const double left = pl.align & Qt::AlignRight ? pl.anchor.x() - w : pl.anchor.x();
    const QRectF r(left, pl.anchor.y() - h, w, h);
    if (r.bottom() > plot.bottom() || r.top() < plot.top() - b) continue;
    bool free = true;
    for (const QRectF& tr : taken) free = free && !r.intersects(tr);
    if (free && !found) {
      chosen = pl;
      found = true;
    }
    bool clear = free;
    for (const QRectF& br : bars) clear = clear && !r.intersects(br);
    if (clear) return pl;
  }
  return chosen;
}

std::vector<std::pair<int, int>> GapRuns(const std::vector<LineState>& states) {
  std::vector<std::pair<int, int>> runs;
  const int n = static_cast<int>(states.size());
  auto isGap = [&](int i) {
    const LineState st = states[static_cast<size_t>(i)];
    return st == LineState::NoData || st == LineState::AllExcluded;
  };
  for (int i = 0; i < n;) {
    if (!isGap(i)) {
      ++i;
      continue;
    }
    int j = i;
    while (j + 1 < n && states[static_cast<size_t>(j + 1)] == states[static_cast<size_t>(i)]) ++j;
    runs.emplace_back(i, j);
    i = j + 1;
  }
  return runs;
}

GapWord PlaceGapWord(double wordW, double barW, double runW) {
  if (wordW <= barW) return GapWord::PerColumn;
  if (wordW <= runW) return GapWord::OverRun;
  return GapWord::None;
}

TableFit FitTable(double height, int rows, double b) {
  const double maxRowH = b * 1.7;
  const int maxRows = std::max(1, static_cast<int>(height / maxRowH) - 1);
  TableFit t;
  t.scale = static_cast<size_t>(rows) + 1 > static_cast<size_t>(maxRows + 1)
                ? std::max(0.5, (height / (rows + 1.0)) / maxRowH)
                : 1.0;
  t.rowH = maxRowH * t.scale;
  t.shown = std::min<int>(rows, static_cast<int>(height / t.rowH) - 1);
  return t;
}

int FittedPixelSize(int pixelSize, double need, double room) {
  if (need > room && need > 0) return std::max(1, static_cast<int>(pixelSize * std::max(0.75, room / need)));
  return pixelSize;
}

double ReportChartHeight(double rest, int lines, double b, bool withTable) {
  if (!withTable) return rest;
  const double tableNeed = b * 1.7 * (static_cast<double>(lines) + 1.5);
  return rest - std::min(tableNeed, rest * 0.42) - b * 0.8;
}

}  // namespace chartdraw
