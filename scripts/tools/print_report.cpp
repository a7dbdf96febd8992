// Prints a chart's report on the configured printer, the way a redraw for printing
// does: PRINTER of config.cnf (the system default when it is missing), PAPER_SIZE, the
// real printer path of the desktop. Run from an installation's bin/ folder:
//   ui_print_report HEADER_FILE INTERFACE_FILE
// Prints the library's result and exits 0 when the report was handed to the printer.
#include <QApplication>
#include <QTextStream>

#include "chartmaker/chartmaker.h"
#include "frame/catalogue.h"
#include "frame/config.h"
#include "frame/dialog.h"
#include "frame/shared_values.h"
#include "ui/printing.h"

int main(int argc, char** argv) {
  if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
  QApplication app(argc, argv);
  QTextStream out(stdout);
  if (argc != 3) {
    out << "usage: ui_print_report HEADER_FILE INTERFACE_FILE (from an installation's bin/)\n";
    return 2;
  }
  StderrDialog dialogs;
  SetDialogInterface(&dialogs);
  if (!Ini_LoadConfig() || !LoadResource()) {
    out << "ui_print_report: run it from an installation's bin/ folder\n";
    return 2;
  }
  SetLangCode(QString::number(Ini_GetLang()));
  SetLogLevel(QStringLiteral("0"));

  ChartMaker maker;
  ChartPreparePersonal(maker, Ini_GetChartIniPath());
  QtPrinterCatalog printers;
  const auto code = PrintOnConfiguredPrinter(maker, printers, QString::fromLocal8Bit(argv[1]),
                                             QString::fromLocal8Bit(argv[2]));
  if (!code) {
    out << "no printer installed\n";
    return 1;
  }
  ReportChartResult(*code);
  out << "printer " << Ini_GetPrinterName() << " paper " << Ini_GetPrintPaper() << " result " << *code << "\n";
  // The papers the printer screen would offer for it, with their numbers.
  out << "papers:";
  for (const PaperEntry& p : printers.papers(Ini_GetPrinterName())) out << " " << p.name << "=" << p.number;
  out << "\n";
  SetDialogInterface(nullptr);
  return *code == 0 ? 0 : 1;
}
