#include "chart_result.h"

#include <QHash>
#include <QString>

#include "catalogue.h"
#include "trace.h"

namespace {

// The faults of the data in the chart files: logged at level 1, no dialog (the library
// has drawn what it could).
const QHash<int, const char*>& DataFaults() {
  static const QHash<int, const char*> faults = {
      {120, "ERR_PRINT_CANCEL_PRINTER_VALUE"},
      {1120, "ERR_REPORT_CANCEL_PRINTER_VALUE"},
      {310, "ERR_STEP_ACTIVITY_NO_DATA_IN_FILE_VALUE"},
      {320, "ERR_STEP_INFEASIBLE_GRAPH_MAX_VALUE"},
      {330, "ERR_STEP_INFEASIBLE_TARGET_VALUE"},
      {340, "ERR_ACTIVITY_INFEASIBLE_GRAPH_MAX_VALUE"},
      {350, "ERR_ACTIVITY_INFEASIBLE_TARGET_VALUE"},
      {360, "ERR_ACTIVITY_INFEASIBLE_MODERATE_VALUE"},
      {410, "ERR_EXPENDITURE_NO_DATA_IN_FILE_VALUE"},
      {420, "ERR_EXPENDITURE_INFEASIBLE_GRAPH_MAX_VALUE"},
      {430, "ERR_EXPENDITURE_INFEASIBLE_TARGET_VALUE"},
      {440, "ERR_EXPENDITURE_INFEASIBLE_INTAKE_TARGET_VALUE"},
      {500, "ERR_ACTIVITY_LEVEL_INFEASIBLE_MODERATE_VALUE"},
      {510, "ERR_ACTIVITY_LEVEL_AVE_NO_DATA_IN_FILE_VALUE"},
      {520, "ERR_ACTIVITY_LEVEL_AVE_INFEASIBLE_GRAPH_MAX_VALUE"},
      {530, "ERR_ACTIVITY_LEVEL_AVE_INFEASIBLE_MODERATE_VALUE"},
      {540, "ERR_ACTIVITY_LEVEL_AVE_NO_EFFECTIVE_DATA_IN_FILE_VALUE"},
      {610, "ERR_ACTIVITY_LEVEL_MAX_NO_DATA_IN_FILE_VALUE"},
      {620, "ERR_ACTIVITY_LEVEL_MAX_INFEASIBLE_GRAPH_MAX_VALUE"},
      {630, "ERR_ACTIVITY_LEVEL_MAX_INFEASIBLE_MODERATE_VALUE"},
      {640, "ERR_ACTIVITY_LEVEL_MAX_NO_EFFECTIVE_DATA_IN_FILE_VALUE"},
      {710, "ERR_AVE_STEP_NO_DATA_IN_FILE_VALUE"},
      {720, "ERR_AVE_STEP_INFEASIBLE_GRAPH_MAX_VALUE"},
      {730, "ERR_AVE_STEP_INFEASIBLE_TARGET_VALUE"},
      {740, "ERR_AVE_STEP_NO_EFFECTIVE_DATA_IN_FILE_VALUE"},
      {810, "ERR_AVE_ACT_NO_DATA_IN_FILE_VALUE"},
      {820, "ERR_AVE_ACT_INFEASIBLE_GRAPH_MAX_VALUE"},
      {830, "ERR_AVE_ACT_INFEASIBLE_TARGET_VALUE"},
      {840, "ERR_AVE_ACT_NO_EFFECTIVE_DATA_IN_FILE_VALUE"},
      {910, "ERR_DAY_VAR_NO_DATA_IN_FILE_VALUE"},
  };
  return faults;
}

void Log(const char* level, const QString& text) {
  WriteTrace(QString::fromLatin1(level), QStringLiteral("ChartMaker"), text);
}

}  // namespace

void InterpretChartResult(int result) {
  const QString dllError = QStringLiteral("(DLL)ChartMaker ERROR");
  switch (result) {
    case 110:
      Log("1", QStringLiteral("ERR_PRINT_NO_PRINTER_VALUE"));
      MessageDialog(QStringLiteral("USEL-I-0001"));
      return;
    case 1110:
      Log("1", QStringLiteral("ERR_REPORT_NO_PRINTER_VALUE"));
      MessageDialog(QStringLiteral("USEL-I-0001"));
      return;
    case 130:
      Log("2", QStringLiteral("ERR_PRINT_NO_PRINTER_VALUE"));
      MessageDialog(QStringLiteral("USEL-C-0004"), dllError);
      return;
    case 210:
    case 220:
    case 1130:
      MessageDialog(QStringLiteral("USEL-C-0004"), dllError);
      return;
    case 1200:
      Log("2", QStringLiteral("ERR_EXCEPTION"));
      MessageDialog(QStringLiteral("USEL-C-0004"), QStringLiteral("(DLL)ChartMaker ERR_EXCEPTION"));
      return;
    default:
      break;
  }
  const auto fault = DataFaults().constFind(result);
  if (fault != DataFaults().constEnd()) {
    Log("1", QString::fromLatin1(fault.value()));
  } else {
    Log("1", QString::number(result));
  }
}
