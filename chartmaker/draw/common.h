// Pieces every chart is drawn with: the painting context, number and text helpers,
// plates, legends, titles and the card of figures beside a chart.
#pragma once

#include <QBrush>
#include <QColor>
#include <QFont>
#include <QPainter>
#include <QRectF>
#include <QString>
#include <QStringList>
#include <optional>
#include <utility>
#include <vector>

#include "chartmaker/chartfiles.h"
#include "chartmaker/chartsettings.h"

namespace chartdraw {

struct Ctx {
  QPainter& p;
  const ChartSettings& s;
  double b;  // base text height in the drawing's units

  QFont font(double scale = 1.0, bool bold = false) const;
  QColor c(const char* key) const { return s.colour(QLatin1String(key)); }
  QString t(const char* key) const { return s.text(QLatin1String(key)); }
};

// Base text height for a chart drawn into r.
double BaseSize(const QRectF& r);
// A figure with thousands separators, the same in both editions; empty for NaN.
QString Num(double v, int decimals = 0);
double TextWidth(const QFont& f, const QString& s);
void DrawText(QPainter& p, const QRectF& r, int flags, const QString& text, const QFont& f, const QColor& c);
// A text on a small white plate, so it stays readable over bars and lines.
void DrawPlate(Ctx& x, QPointF anchor, Qt::Alignment align, const QString& text, const QFont& f,
               const QColor& fg);
QBrush HatchBrush(const QColor& c);
void DrawDiamond(QPainter& p, QPointF c, double r, const QColor& fill, const QColor& edge);

struct LegendItem {
  enum Style { Box, Dashed, Dotted, Hatch, Diamond, Line, Circle, Gap };
  QColor colour;
  QString text;
  Style style = Box;
};
// Draws the legend in one or more rows from the top left; returns the height used.
double DrawLegend(Ctx& x, const QRectF& area, const std::vector<LegendItem>& items);

// "Week   2024/06/01 - 2024/06/07": the chart's period in the words of the settings.
QString PeriodText(const ChartSettings& s, const InterfaceFile& d);
// "2024/06/01 - 2024/06/07".
QString DateRangeText(const ChartSettings& s, const QDate& from, const QDate& to);
// Title on the left, subtitle on the right; returns the height used.
double DrawTitle(Ctx& x, const QRectF& area, const QString& title, const QString& subtitle);
// A card of captioned figures beside a chart.
void DrawFigureRows(Ctx& x, const QRectF& card, const QString& heading,
                    const std::vector<std::pair<QString, QString>>& rows);

// Minutes of a count of four-second intervals.
inline double MinutesOfCount(double count) { return count * 4.0 / 60.0; }
// The configured axis maximum when it is a positive number, else the fallback.
double ConfiguredMax(const QString& text, double fallback);
// The mean when the period has valid days.
std::optional<double> MeanIf(const InterfaceFile& d, double v);
// "km" or "mile", as the chart's unit says.
QString DistanceUnit(const ChartSettings& s, bool imperial);

}  // namespace chartdraw
