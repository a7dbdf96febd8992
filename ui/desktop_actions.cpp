#include "ui/desktop_actions.h"

#include "frame/shared_values.h"
#include "store/store.h"
#include "ui/backup_actions.h"
#include "ui/csv_dialogs.h"
#include "ui/frmPrinterSetup.h"
#include "ui/frmSimulationWeight.h"
#include "ui/frmVersion.h"
#include "ui/printing.h"

namespace {

// "20240601-20240630": the period part of a report's default file name.
QString PeriodText(const charts::RangeState& range) {
  const QString from = range.dateChartFrom.toString(QStringLiteral("yyyyMMdd"));
  const QString to = range.dateChartTo.toString(QStringLiteral("yyyyMMdd"));
  return from == to ? from : from + QLatin1Char('-') + to;
}

QString CurrentUserName(VtDatabase& db) {
  UserInfo user;
  if (!GetUserInfo(db, user, GetCurrentUserId())) return QString();
  return GetDisplayName(user);
}

}  // namespace

frmTerminal::Actions DesktopActions(VtDatabase& db, ChartMaker& chart, frmTerminal& w) {
  frmTerminal::Actions a;
  a.print = [&db, &chart, &w](bool /*fromButton*/) {
    PrintChartRequest request;
    request.maker = &chart;
    request.parent = &w;
    request.userName = CurrentUserName(db);
    request.period = PeriodText(w.rangeState());
    request.redraw = [&w] {
      w.ReDrawChart(w.rangeState().chartKind);
      return std::make_pair(w.headerFile(), w.interfaceFile());
    };
    request.updateStates = [&w] { w.UpdateButtonState(); };
    if (const auto code = PrintCurrentChart(request)) ReportChartResult(*code);
  };
  a.printFiles = [&chart](const QString& header, const QString& iface) {
    QtPrinterCatalog printers;
    if (const auto code = PrintOnConfiguredPrinter(chart, printers, header, iface)) ReportChartResult(*code);
  };
  a.help = [&w] { OpenHelp(&w); };
  a.version = [&w] { ShowVersion(&w); };
  a.healthyDiary = [] { OpenHealthyDiary(); };
  a.simulation = [&db, &w] {
    frmSimulationWeight plan(db, GetCurrentUserId(), &w);
    plan.exec();
  };
  a.csvExport = [&db, &w] { ShowCsvExport(db, GetCurrentUserId(), &w); };
  a.csvImport = [&db, &w] { ShowCsvImport(db, &w); };
  a.backup = [&db, &w] { BackUpFromWindow(db, &w); };
  a.restore = [&db, &w] { return RestoreFromWindow(db, &w); };
  return a;
}
