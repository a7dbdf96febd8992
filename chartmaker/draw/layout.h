// The layout rules of the charts as plain arithmetic: where labels, captions and plates
// go, so the rules can be checked without drawing.
#pragma once

#include <QRectF>
#include <optional>
#include <utility>
#include <vector>

#include "chartmaker/chartfiles.h"

namespace chartdraw {

// A step of 1, 2, 2.5 or 5 times a power of ten giving about `ticks` intervals.
double NiceStep(double range, int ticks);

// A value axis: from 0 to max in steps, labelled with `decimals` decimals.
struct AxisScale {
  double max = 1;
  double step = 1;
  int decimals = 0;
};
// The configured maximum, grown to hold the largest value with a tenth to spare, rounded
// up to a whole step.
AxisScale ScaleAxis(double configuredMax, double dataMax, int ticks);

// Horizontal extent of a label.
struct Span {
  double left = 0, right = 0;
};
// Left edge of a label of width w centred on `centre` but kept inside [areaLeft, areaRight].
double ClampedLabelLeft(double centre, double w, double areaLeft, double areaRight);
// Every how many slots a date label fits.
int LabelEvery(double widestLabel, double padding, double slotWidth);
// The slots that carry a date label: every `every` from the first, and the last. No two
// are closer than minGap: a label that would be gives way, except the first; the last
// gives way only to the first.
std::vector<int> DatedSlots(const std::vector<Span>& labels, int every, double minGap);

// Box of a plate whose text measures textW x textH: anchored at the bottom, aligned left,
// right or centred on anchor.x, with a margin around the text.
QRectF PlateRect(QPointF anchor, Qt::Alignment align, double textW, double textH, double b);

// Value labels sit above their bar (or above the diamond of a marker drawn over it), and
// only where the figure fits its slot.
bool ValueLabelFits(double textW, double slotW, bool compact);
double ValueLabelBase(double barTop, std::optional<double> markerY, double barW, double b);

// Where the target line's caption goes: the right end of the line above it, below it, then
// the left end above and below, keeping inside the plot. First choice is a place that
// covers neither a bar nor a taken rectangle (value labels, no-data notes); else the
// first that covers no taken rectangle; else the right end above.
struct CaptionPlace {
  QPointF anchor;  // bottom edge of the plate
  Qt::Alignment align = Qt::AlignRight;
};
CaptionPlace PlaceTargetCaption(const QRectF& plot, double lineY, double plateW, double plateH, double b,
                                const std::vector<QRectF>& taken, const std::vector<QRectF>& bars);

// Runs of neighbouring slots without data (or whose days were all left out), each run of
// one state: first and last slot.
std::vector<std::pair<int, int>> GapRuns(const std::vector<LineState>& states);
// How the no-data word of a run is shown: on every column when it fits one bar, once over
// the whole run when it fits that, else not at all.
enum class GapWord { PerColumn, OverRun, None };
GapWord PlaceGapWord(double wordW, double barW, double runW);

// Rows of the report's value table in a given height: rows shrink down to half their
// height before rows are left off.
struct TableFit {
  double rowH = 0;
  double scale = 1;
  int shown = 0;
};
TableFit FitTable(double height, int rows, double b);
// A cell's type size: smaller, down to three quarters, when its text does not fit.
int FittedPixelSize(int pixelSize, double need, double room);
// The chart's height on the report page: the value table below takes what its rows need,
// at most about two fifths of the space.
double ReportChartHeight(double rest, int lines, double b, bool withTable);

}  // namespace chartdraw
