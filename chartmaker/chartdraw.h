// Drawing of every chart with QPainter into a rectangle. Sizes follow the rectangle,
// so one drawing serves the screen, bitmap files and the printed page.
#pragma once

#include <QRectF>
#include <optional>

#include "chartmaker/chartfiles.h"
#include "chartmaker/chartsettings.h"

class QPainter;

// Everything a chart is drawn from, read once; remakes draw from it again.
struct ChartDocument {
  enum class Kind { Interface, WeightPlan, Bmi };
  Kind kind = Kind::Interface;
  InterfaceFile data;
  bool hasSim = false;
  SimFile sim;
  std::optional<double> bmi;
  bool imperial = false;  // distance in miles, weight in pounds
};

void DrawChartDocument(QPainter& p, const QRectF& area, const ChartDocument& doc,
                       const ChartSettings& s);

// The report page: header block, the chart, a table of the values.
void DrawReportPage(QPainter& p, const QRectF& page, const ChartDocument& doc,
                    const HeaderFile& header, const ChartSettings& s);

// The header's exclusion line in the words of the settings ("first day, last day, days
// under 50 steps"); the line as written when it does not parse.
QString ExclusionCaption(const ChartSettings& s, const QString& exclusionText);

// Result of drawing a document: 0, or the chart family's code for a file without data.
int DocumentResultCode(const ChartDocument& doc);
