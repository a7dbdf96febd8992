#include "chartmaker/chartdraw.h"

#include <algorithm>

#include "chartmaker/chartmaker.h"
#include "chartmaker/draw/bar_chart.h"
#include "chartmaker/draw/charts.h"

using namespace chartdraw;

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
  switch (ChartKindOf(d.type)) {
    case 100: DrawEvaluation(x, in, d, doc.imperial); break;
    case 200: {
      BarChart c = SingleSeries(s, d, "CHART_200", "UNIT_STEPS", 6, s.colour(QStringLiteral("STEPS")), 4,
                                MeanIf(d, d.meanSteps), ConfiguredMax(s.axisMaxima.steps, d.fixedMax[0]), 0,
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
