// Printing the chart on show: the printer and paper choice behind frmPrinterSetup, the
// print command of the main window (PrintCurrentChart), the print path of a redraw,
// and how the chart library's result codes reach the log and the person. Everything
// here runs headless; the list of printers comes through PrinterCatalog so tests give
// their own.
#pragma once

#include <QString>
#include <QStringList>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

class ChartMaker;
class QWidget;

// One paper of a printer: its name as the printer gives it and its Windows paper number
// (ChartMaker::PaperNumberOf).
struct PaperEntry {
  QString name;
  int number = 0;
};

// The installed printers.
class PrinterCatalog {
 public:
  virtual ~PrinterCatalog() = default;
  virtual QStringList printerNames() = 0;
  // Empty when the system has no default printer.
  virtual QString defaultPrinterName() = 0;
  virtual std::vector<PaperEntry> papers(const QString& printerName) = 0;
};

// The machine's printers (QPrinterInfo, that is CUPS).
class QtPrinterCatalog : public PrinterCatalog {
 public:
  QStringList printerNames() override;
  QString defaultPrinterName() override;
  std::vector<PaperEntry> papers(const QString& printerName) override;
};

// A fixed list (tests).
class FixedPrinterCatalog : public PrinterCatalog {
 public:
  struct Printer {
    QString name;
    std::vector<PaperEntry> papers;
  };
  std::vector<Printer> printers;
  QString defaultName;

  QStringList printerNames() override;
  QString defaultPrinterName() override { return defaultName; }
  std::vector<PaperEntry> papers(const QString& printerName) override;
};

// The printer name that makes the chart library write a PDF file.
inline QString PdfPrinterName(const QString& path) { return QStringLiteral("pdf:") + path; }
bool IsPdfPrinterName(const QString& name);
// The papers offered for a PDF file: the common sizes with their Windows numbers.
std::vector<PaperEntry> PdfPapers();

// The paper number a list should select: PAPER_SIZE when it is set, else 9 (A4) with
// LANG "0" and 1 (Letter) otherwise.
int DefaultPaperNumber();
// Index of the first paper with that number; 0 (the first entry) when none has it,
// -1 for an empty list.
int PaperIndexFor(const std::vector<PaperEntry>& papers, int number);

// The logic of frmPrinterSetup. The printer list holds the installed printers and, when
// offered, a last entry "Save as PDF…"; choosing that entry and OK gives the printer
// name "pdf:PATH" with the path that askPdfPath returned.
class PrinterSetupLogic {
 public:
  PrinterSetupLogic(PrinterCatalog& catalog, bool offerPdf);

  // Opening: fills the printer list, selects the last choice of the process or the
  // system default, and fills the paper list. Returns false when nothing can be chosen
  // (no printer and no PDF entry): the screen then shows PRNT-I-0001 and closes.
  bool load();

  const QStringList& printerEntries() const { return entries_; }
  int printerIndex() const { return printerIndex_; }
  bool isPdfEntry(int index) const { return offerPdf_ && index == entries_.size() - 1; }
  // A change of printer: the paper list is filled again and the default paper selected.
  void selectPrinter(int index);

  const std::vector<PaperEntry>& papers() const { return papers_; }
  int paperIndex() const { return paperIndex_; }
  void selectPaper(int index) { paperIndex_ = index; }

  // OK. For the PDF entry pdfPath is the chosen file (empty: the choice is not made and
  // false is returned, the screen stays open). Sets the chosen and the remembered printer
  // and paper; nothing is written to the configuration.
  bool accept(const QString& pdfPath = QString());
  // Cancel: the chosen printer becomes empty and the paper 0; the remembered choice of an
  // earlier opening stays.
  static void cancel();

  // The entry text of the PDF entry (the edition's words).
  static QString pdfEntryText();

 private:
  void fillPapers();

  PrinterCatalog& catalog_;
  bool offerPdf_;
  bool noPrinter_ = false;
  QStringList entries_;
  int printerIndex_ = -1;
  std::vector<PaperEntry> papers_;
  int paperIndex_ = -1;
};

// What the library's result means to the person, after its trace line is written under
// "ChartMaker" at the table's level.
struct ChartResultReport {
  QString traceText;      // empty: no line (210, 220, 1130)
  QString level;          // "1" or "2"
  QString messageCode;    // empty: nothing shown
  QString messageExtra;   // behind the message text
};
ChartResultReport DescribeChartResult(int code);
// Writes the trace line and shows the message of a result (nothing for 0 but its line).
void ReportChartResult(int code);

// The library's print, with the working directory put back afterwards: the library may
// move it, and every relative path of the program counts from it. A chart library
// without a way to installed printers gets the desktop's (QtReportPrinter).
int PrintChartKeepingDirectory(ChartMaker& maker, const QString& header, const QString& iface, const QString& printer,
                               int paper);

// Prints a chart's files on the configured printer (the print path of a redraw):
// without an installed printer nothing is done (nullopt); a configured PRINTER that is
// missing or empty is replaced by the system default in the configuration; the four
// lines under "DrawChart" are written, the library prints, the working directory is put
// back, and "lChartProcessRet = " and "PrintChart After" follow. Returns the library's
// result for ReportChartResult.
std::optional<int> PrintOnConfiguredPrinter(ChartMaker& maker, PrinterCatalog& catalog, const QString& headerFile,
                                            const QString& interfaceFile);

// What PrintCurrentChart needs of the main window.
struct PrintChartRequest {
  ChartMaker* maker = nullptr;
  QWidget* parent = nullptr;
  PrinterCatalog* catalog = nullptr;  // null: the machine's printers
  // For the PDF file's default name "<name>_<period>.pdf".
  QString userName;
  QString period;
  // In S_JOB: hides the period pane and reads the chart's dates back from the pickers.
  std::function<void()> readBackDates;
  // Redraws the chart on show so that its files exist and returns the header and
  // interface files (empty when there are none).
  std::function<std::pair<QString, QString>()> redraw;
  // Button and menu states after the print.
  std::function<void()> updateStates;
  // Shows frmPrinterSetup modally; null: the real screen. Tests script it.
  std::function<void()> showPrinterSetup;
};

// The action of mnuReport and btnPrint. Returns the library's result, or nullopt when
// nothing was printed (cancelled choice, no files).
std::optional<int> PrintCurrentChart(const PrintChartRequest& request);

// Default name of a PDF report: "<name>_<period>.pdf" in the Documents folder, with the
// characters that file names cannot hold replaced.
QString DefaultPdfPath(const QString& userName, const QString& period, const QString& documentsFolder);
