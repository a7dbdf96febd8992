#include "ui/printing.h"

#include <QDir>
#include <QPageSize>
#include <QPrinterInfo>
#include <QSet>

#include "chartmaker/chartmaker.h"
#include "chartmaker/report_printer.h"
#include "frame/catalogue.h"
#include "frame/config.h"
#include "frame/helpers.h"
#include "frame/shared_values.h"
#include "frame/trace.h"

// ---------------------------------------------------------------- printer lists

QStringList QtPrinterCatalog::printerNames() { return QPrinterInfo::availablePrinterNames(); }

QString QtPrinterCatalog::defaultPrinterName() { return QPrinterInfo::defaultPrinterName(); }

std::vector<PaperEntry> QtPrinterCatalog::papers(const QString& printerName) {
  std::vector<PaperEntry> out;
  const QPrinterInfo info = QPrinterInfo::printerInfo(printerName);
  if (info.isNull()) return out;
  QSet<int> seen;
  for (const QPageSize& size : info.supportedPageSizes()) {
    const int number = ChartMaker::PaperNumberOf(static_cast<int>(size.id()));
    // A custom size cannot be handed on as a number; a size offered under two names
    // ("US Letter" and "ANSI A") is listed once, under its common name.
    if (number == 0 || seen.contains(number)) continue;
    seen.insert(number);
    out.push_back({number < ChartMaker::kPrinterOwnPaper ? QPageSize::name(size.id()) : size.name(), number});
  }
  return out;
}

QStringList FixedPrinterCatalog::printerNames() {
  QStringList names;
  for (const auto& p : printers) names << p.name;
  return names;
}

std::vector<PaperEntry> FixedPrinterCatalog::papers(const QString& printerName) {
  for (const auto& p : printers)
    if (p.name == printerName) return p.papers;
  return {};
}

bool IsPdfPrinterName(const QString& name) { return name.startsWith(QLatin1String("pdf:"), Qt::CaseInsensitive); }

std::vector<PaperEntry> PdfPapers() {
  std::vector<PaperEntry> out;
  for (const auto id : {QPageSize::A4, QPageSize::Letter, QPageSize::Legal, QPageSize::A3, QPageSize::A5,
                        QPageSize::JisB5, QPageSize::A6}) {
    out.push_back({QPageSize::name(id), ChartMaker::PaperNumberOf(static_cast<int>(id))});
  }
  return out;
}

// ---------------------------------------------------------------- paper rules

int DefaultPaperNumber() {
  int number = Ini_GetLang() == 0 ? 9 : 1;
  const QString configured = Ini_GetPrintPaper().trimmed();
  if (!configured.isEmpty()) {
    bool ok = false;
    const int value = configured.toInt(&ok);
    // A value that is not a number selects nothing, so the first paper stays.
    number = ok ? value : -1;
  }
  return number;
}

int PaperIndexFor(const std::vector<PaperEntry>& papers, int number) {
  if (papers.empty()) return -1;
  for (size_t i = 0; i < papers.size(); ++i)
    if (papers[i].number == number) return static_cast<int>(i);
  return 0;
}

// ---------------------------------------------------------------- frmPrinterSetup logic

PrinterSetupLogic::PrinterSetupLogic(PrinterCatalog& catalog, bool offerPdf) : catalog_(catalog), offerPdf_(offerPdf) {}

QString PrinterSetupLogic::pdfEntryText() { return GetIniCaption(QStringLiteral("PRINTER"), QStringLiteral("CAPTION_SAVEPDF")); }

bool PrinterSetupLogic::load() {
  entries_ = catalog_.printerNames();
  noPrinter_ = entries_.isEmpty();
  if (offerPdf_) entries_ << pdfEntryText();
  papers_.clear();
  paperIndex_ = -1;
  printerIndex_ = -1;
  if (entries_.isEmpty()) return false;

  const QString last = GetPrinterName();
  if (!last.isEmpty()) {
    printerIndex_ = IsPdfPrinterName(last) && offerPdf_ ? static_cast<int>(entries_.size()) - 1
                                                        : static_cast<int>(catalog_.printerNames().indexOf(last));
  }
  if (printerIndex_ < 0 && !noPrinter_) printerIndex_ = static_cast<int>(entries_.indexOf(catalog_.defaultPrinterName()));
  // No default printer (or it is not in the list): the first printer, else the PDF entry.
  if (printerIndex_ < 0) printerIndex_ = 0;
  fillPapers();
  return true;
}

void PrinterSetupLogic::selectPrinter(int index) {
  if (index < 0 || index >= entries_.size()) return;
  printerIndex_ = index;
  fillPapers();
}

void PrinterSetupLogic::fillPapers() {
  papers_ = isPdfEntry(printerIndex_) ? PdfPapers() : catalog_.papers(entries_.value(printerIndex_));
  paperIndex_ = PaperIndexFor(papers_, DefaultPaperNumber());
}

bool PrinterSetupLogic::accept(const QString& pdfPath) {
  if (printerIndex_ < 0) return false;
  QString printer = entries_.value(printerIndex_);
  if (isPdfEntry(printerIndex_)) {
    if (pdfPath.trimmed().isEmpty()) return false;
    printer = PdfPrinterName(pdfPath);
  }
  const int paper = paperIndex_ >= 0 && paperIndex_ < static_cast<int>(papers_.size())
                        ? papers_[static_cast<size_t>(paperIndex_)].number
                        : 0;
  SetChosenPrinter(printer);
  SetChosenPaper(paper);
  SetPrinterName(printer);
  return true;
}

void PrinterSetupLogic::cancel() {
  SetChosenPrinter(QString());
  SetChosenPaper(0);
}

// ---------------------------------------------------------------- result codes

ChartResultReport DescribeChartResult(int code) {
  const QString one = QStringLiteral("1"), two = QStringLiteral("2");
  const QString dllError = QStringLiteral("(DLL)ChartMaker ERROR");
  const QString userError = QStringLiteral("USEL-C-0004");
  switch (code) {
    case 110: return {QStringLiteral("ERR_PRINT_NO_PRINTER_VALUE"), one, QStringLiteral("USEL-I-0001"), {}};
    case 1110: return {QStringLiteral("ERR_REPORT_NO_PRINTER_VALUE"), one, QStringLiteral("USEL-I-0001"), {}};
    case 120: return {QStringLiteral("ERR_PRINT_CANCEL_PRINTER_VALUE"), one, {}, {}};
    case 1120: return {QStringLiteral("ERR_REPORT_CANCEL_PRINTER_VALUE"), one, {}, {}};
    case 130: return {QStringLiteral("ERR_PRINT_NO_PRINTER_VALUE"), two, userError, dllError};
    case 210:
    case 220:
    case 1130: return {{}, {}, userError, dllError};
    case 1200: return {QStringLiteral("ERR_EXCEPTION"), two, userError, QStringLiteral("(DLL)ChartMaker ERR_EXCEPTION")};
    default: break;
  }
  // The data faults: logged only, the library has drawn what it could.
  static const std::pair<int, const char*> kDataFaults[] = {
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
  for (const auto& [value, name] : kDataFaults)
    if (value == code) return {QLatin1String(name), one, {}, {}};
  // Any other result, success included, is logged as its number.
  return {QString::number(code), one, {}, {}};
}

void ReportChartResult(int code) {
  const ChartResultReport r = DescribeChartResult(code);
  if (!r.traceText.isEmpty()) WriteTrace(r.level, QStringLiteral("ChartMaker"), r.traceText);
  if (!r.messageCode.isEmpty()) MessageDialog(r.messageCode, r.messageExtra);
}

// ---------------------------------------------------------------- printing

int PrintChartKeepingDirectory(ChartMaker& maker, const QString& header, const QString& iface, const QString& printer,
                               int paper) {
  // The desktop's chart library reaches the installed printers through Qt PrintSupport.
  if (!maker.hasReportPrinter()) maker.setReportPrinter(std::make_shared<QtReportPrinter>());
  const QString workingDirectory = QDir::currentPath();
  const int code = PrintChartPersonal(maker, header, iface, printer, paper);
  ChangeCurrentDirectory(workingDirectory);
  return code;
}

std::optional<int> PrintOnConfiguredPrinter(ChartMaker& maker, PrinterCatalog& catalog, const QString& headerFile,
                                            const QString& interfaceFile) {
  const QStringList installed = catalog.printerNames();
  if (installed.isEmpty()) return std::nullopt;
  const QString configured = Ini_GetPrinterName();
  if (configured.isEmpty() || !installed.contains(configured)) Ini_SetPrinterName(catalog.defaultPrinterName());

  const QString name = QStringLiteral("DrawChart");
  const QString zero = QStringLiteral("0");
  const QString header = GetAbsolutePath(headerFile), iface = GetAbsolutePath(interfaceFile);
  const QString printer = Ini_GetPrinterName();
  const QString paper = Ini_GetPrintPaper();
  WriteTrace(zero, name, QStringLiteral("GetAbsolutePath(g_sHeaderFileName) = ") + header);
  WriteTrace(zero, name, QStringLiteral("GetAbsolutePath(g_sInterfaceFileName) = ") + iface);
  WriteTrace(zero, name, QStringLiteral("Ini_GetPrinterName = ") + printer);
  WriteTrace(zero, name, QStringLiteral("Ini_GetPrintPaper = ") + paper);
  // With no printer at all (no default either) the library answers 110 itself.
  const int code = PrintChartKeepingDirectory(maker, header, iface, printer, paper.trimmed().toInt());
  WriteTrace(zero, name, QStringLiteral("lChartProcessRet = ") + QString::number(code));
  WriteTrace(zero, name, QStringLiteral("PrintChart After"));
  return code;
}

QString DefaultPdfPath(const QString& userName, const QString& period, const QString& documentsFolder) {
  QString base = userName.trimmed() + QLatin1Char('_') + period.trimmed();
  static const QString kBad = QStringLiteral("/\\:*?\"<>|");
  for (QChar& c : base)
    if (kBad.contains(c) || c.unicode() < 0x20) c = QLatin1Char('-');
  base.replace(QLatin1Char(' '), QLatin1Char('_'));
  return JoinPath(documentsFolder, base + QStringLiteral(".pdf"));
}
