// The chart library: draws every chart from the chart files (interface file, header
// file, .sim file, bmi.txt) onto a surface, into a bitmap file, or onto a printed
// report page. All state (settings, the last chart of each surface) lives in a
// ChartMaker object owned by the caller; the operations with the classic names are
// thin wrappers that take that object as their first argument.
//
// Uses QtGui only: the screen's picture area implements ChartSurface, the CLI and the
// tests use ImageSurface. PDF reports are written with QPdfWriter; installed printers
// are reached through a ReportPrinter that the desktop hands in (report_printer.h, Qt
// PrintSupport), so the command-line tool never loads Qt Widgets. A QGuiApplication
// must exist (fonts); QT_QPA_PLATFORM=offscreen is enough for headless use.
#pragma once

#include <QColor>
#include <QImage>
#include <QSize>
#include <QString>
#include <functional>
#include <map>
#include <memory>

class QPageLayout;
class QPainter;
class QRectF;

// Result codes. 0 is success; the screen interprets the others (log line, message).
namespace chartcode {
inline constexpr int kOk = 0;
inline constexpr int kPrintNoPrinter = 110;        // no printer name given
inline constexpr int kPrintCancel = 120;           // the user cancelled the print dialog
inline constexpr int kPrintUnknownPrinter = 130;   // the named printer is not installed
inline constexpr int kFileMissing = 210;           // a file is missing or unreadable
inline constexpr int kFileMalformed = 220;         // a file is empty or not in the chart format
// "No data in file" per chart family: no line of the file has data.
inline constexpr int kStepActivityNoData = 310;    // evaluation, distance, weight plan
inline constexpr int kExpenditureNoData = 410;     // total calories
inline constexpr int kLevelAveNoData = 510;        // activity time
inline constexpr int kLevelAveNoEffectiveData = 540;
inline constexpr int kLevelMaxNoData = 610;        // exercise
inline constexpr int kAveStepNoData = 710;         // steps
inline constexpr int kAveStepNoEffectiveData = 740;
inline constexpr int kAveActNoData = 810;          // activity calories
inline constexpr int kAveActNoEffectiveData = 840;
inline constexpr int kDayVarNoData = 910;          // day profile
inline constexpr int kPrintFailed = 1130;          // the printer or PDF could not be opened
inline constexpr int kException = 1200;            // anything thrown inside the library
}  // namespace chartcode

// A place a chart is drawn for: its size in logical pixels, its device pixel ratio,
// and where the finished picture goes. The screen's picture area implements it.
class ChartSurface {
 public:
  virtual ~ChartSurface() = default;
  virtual QSize chartSize() const = 0;
  virtual qreal chartDevicePixelRatio() const { return 1.0; }
  // Receives the finished picture (physical size = chartSize() x ratio, with the ratio set).
  virtual void showChart(const QImage& image) = 0;
};

// A surface that just keeps the picture (CLI, tests, bitmap files).
class ImageSurface final : public ChartSurface {
 public:
  explicit ImageSurface(QSize size, qreal devicePixelRatio = 1.0)
      : size_(size), ratio_(devicePixelRatio) {}
  QSize chartSize() const override { return size_; }
  qreal chartDevicePixelRatio() const override { return ratio_; }
  void showChart(const QImage& image) override {
    image_ = image;
    ++shown_;
  }
  const QImage& image() const { return image_; }
  int timesShown() const { return shown_; }
  void setSize(QSize size) { size_ = size; }

 private:
  QSize size_;
  qreal ratio_;
  QImage image_;
  int shown_ = 0;
};

// Prints one report page on an installed printer.
class ReportPrinter {
 public:
  virtual ~ReportPrinter() = default;
  // Paints the page; pageRect is the printable area in the device's pixels, its origin
  // at the area's top-left corner (where the painter starts).
  using PagePainter = std::function<void(QPainter& painter, const QRectF& pageRect)>;
  // Returns 0, 130 when no printer has that name, 120 when the person cancelled a print
  // dialog, 1130 when the printer cannot be opened.
  virtual int printPage(const QString& printerName, const QString& documentName, const QPageLayout& layout,
                        const PagePainter& paint) = 0;
};

struct ChartSettings;
struct ChartDocument;

class ChartMaker {
 public:
  ChartMaker();
  ~ChartMaker();
  ChartMaker(const ChartMaker&) = delete;
  ChartMaker& operator=(const ChartMaker&) = delete;

  // Reads the chart settings file (colours, fonts, captions, titles). A missing or
  // partial file leaves built-in defaults in place; the result is 0 or 210.
  int prepare(const QString& settingsPath);
  // Forgets every remembered chart.
  void finish();

  // Draws the chart of an interface file onto the surface and remembers it for remake.
  int make(ChartSurface& surface, const QString& interfaceFile);
  // Paints the last chart of this surface again, at the surface's current size, without
  // reading any file. 0, or 210 when nothing was drawn on it yet.
  int remake(ChartSurface& surface);
  // Lays out and prints the report page. printerName "pdf:PATH" writes a PDF file (whole
  // or not at all: an existing file is replaced only by a finished report); any other
  // name goes to the report printer, and without one counts as not installed (130).
  int print(const QString& headerFile, const QString& interfaceFile, const QString& printerName,
            int paperNumber);
  // The weight plan graph (types 800-802 with their .sim file), drawn onto the surface
  // and written to the bitmap file (format from its suffix; .bmp when none).
  int createGraphBitmap(ChartSurface& surface, const QString& interfaceFile,
                        const QString& bitmapFile);
  // The BMI picture of bmi.txt ("700", then the BMI or an empty line).
  int createBmiGraph(ChartSurface& surface, const QString& dataFile, const QString& bitmapFile);

  // The way to installed printers (the desktop's QtReportPrinter).
  void setReportPrinter(std::shared_ptr<ReportPrinter> printer) { printer_ = std::move(printer); }
  bool hasReportPrinter() const { return printer_ != nullptr; }
  // A surface that goes away is forgotten.
  void forgetSurface(const ChartSurface* surface);
  bool hasChart(const ChartSurface* surface) const;

  // Windows paper number (9 A4, 1 Letter, 11 A5, 8 A3, 13 B5 (JIS), 5 Legal, 70 A6, ...)
  // to a Qt page size id; false for a number that is not known. Numbers from
  // kPrinterOwnPaper up carry a page size that has no Windows number of its own.
  static bool PaperFromNumber(int paperNumber, int& pageSizeId);
  // The other way: a page size's Windows number, or kPrinterOwnPaper + the page size id
  // for a size without one; 0 for a custom size.
  static int PaperNumberOf(int pageSizeId);
  static constexpr int kPrinterOwnPaper = 256;

 private:
  int drawDocument(ChartSurface& surface, const ChartDocument& doc);

  std::unique_ptr<ChartSettings> settings_;
  std::map<const ChartSurface*, std::shared_ptr<const ChartDocument>> last_;
  std::shared_ptr<ReportPrinter> printer_;
};

// The operations under their classic names.
int ChartPreparePersonal(ChartMaker& maker, const QString& settingsPath);
int ChartFinishPersonal(ChartMaker& maker);
int ChartMakerPersonal(ChartMaker& maker, ChartSurface& surface, const QString& interfaceFile);
int ChartReMakePersonal(ChartMaker& maker, ChartSurface& surface);
int PrintChartPersonal(ChartMaker& maker, const QString& headerFile, const QString& interfaceFile,
                       const QString& printerName, int paperNumber);
int CreateGraphBMPPersonal(ChartMaker& maker, ChartSurface& surface, const QString& interfaceFile,
                           const QString& bitmapFile);
int CreateBMIGraphPersonal(ChartMaker& maker, ChartSurface& surface, const QString& dataFile,
                           const QString& bitmapFile);
