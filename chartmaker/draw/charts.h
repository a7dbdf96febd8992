// The chart families drawn by their own pictures, and the report's value table.
#pragma once

#include <optional>

#include "chartmaker/chartdraw.h"
#include "chartmaker/draw/common.h"

namespace chartdraw {

// Type 100: three compact bar charts (steps, activity calories, activity time) beside a
// card of the period's figures.
void DrawEvaluation(Ctx& x, const QRectF& area, const InterfaceFile& d, bool imperial);
// Type 5: one day's intensity, slot by slot, beside a card of the day's figures.
void DrawDayProfile(Ctx& x, const QRectF& area, const InterfaceFile& d, bool imperial);
// Types 800-802: measured weights against the plan's line.
void DrawWeightPlan(Ctx& x, const QRectF& area, const ChartDocument& doc);
// The BMI strip: the bands, the healthy range and where the person stands.
void DrawBmi(Ctx& x, const QRectF& area, std::optional<double> bmi);
// The report's table of the chart's values, one row a line.
void DrawValueTable(Ctx& x, const QRectF& area, const ChartDocument& doc);

}  // namespace chartdraw
