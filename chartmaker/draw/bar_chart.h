// The bar chart every period chart but the weight and the day profile is drawn as: one
// slot per day or group, stacked segments, value labels, a target step line, the mean.
#pragma once

#include <optional>
#include <vector>

#include "chartmaker/draw/common.h"

namespace chartdraw {

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

void DrawBarChart(Ctx& x, const QRectF& area, const BarChart& c);

// The builders of the bar charts from the chart file's lines. axisMax is the configured
// maximum of the value axis (0: none).
QStringList SlotLabel(const ChartSettings& s, const InterfaceFile& d, const ChartLine& l);
// A chart titled by the settings' text under titleKey, with the period and "(unit)".
BarChart NewBarChart(const ChartSettings& s, const InterfaceFile& d, const QString& titleKey, const QString& unit);
// The slot of a line: its date label and state, no figures yet.
Slot NewSlot(const ChartSettings& s, const InterfaceFile& d, const ChartLine& l);
BarChart SingleSeries(const ChartSettings& s, const InterfaceFile& d, const char* titleKey, const char* unitKey,
                      int field, const QColor& colour, int targetField, std::optional<double> mean, double axisMax,
                      int decimals, const QString& seriesCaption);
// The activity-time axis: the configured daily or mean maximum, else the file's own.
double ActivityTimeAxisMax(const ChartSettings& s, const InterfaceFile& d);
BarChart ActivityTimeChart(const ChartSettings& s, const InterfaceFile& d);
BarChart TotalCalChart(const ChartSettings& s, const InterfaceFile& d);
BarChart ExerciseChart(const ChartSettings& s, const InterfaceFile& d);
// Every bar chart's legend ends alike: the mean line when there is a mean, then the hatch
// of excluded days when any slot shows one.
void FinishLegend(BarChart& c, const ChartSettings& s, std::optional<double> mean, int decimals);

}  // namespace chartdraw
