#include "chartmaker/chartmaker.h"

#include <QFileInfo>
#include <QPageLayout>
#include <QPageSize>
#include <QPainter>
#include <QPdfWriter>
#include <QBuffer>
#include <QSaveFile>
#include <exception>

#include "chartmaker/chartdraw.h"
#include "chartmaker/chartfiles.h"
#include "chartmaker/chartsettings.h"
#include "chartmaker/pdf_text.h"
#include "frame/config.h"

namespace {

int StatusCode(ChartReadStatus st) {
  switch (st) {
    case ChartReadStatus::Ok: return chartcode::kOk;
    case ChartReadStatus::Missing: return chartcode::kFileMissing;
    case ChartReadStatus::Malformed: return chartcode::kFileMalformed;
  }
  return chartcode::kFileMalformed;
}

// Runs an operation and turns anything thrown into the exception code, so that no
// failure inside the library reaches the screen as a crash.
template <typename F>
int Guarded(F&& f) {
  try {
    return f();
  } catch (...) {
    return chartcode::kException;
  }
}

QImage Render(const ChartSurface& surface, const ChartDocument& doc, const ChartSettings& s) {
  const QSize logical = surface.chartSize().expandedTo(QSize(1, 1));
  const qreal ratio = surface.chartDevicePixelRatio() > 0 ? surface.chartDevicePixelRatio() : 1.0;
  QImage img(logical * ratio, QImage::Format_ARGB32_Premultiplied);
  img.setDevicePixelRatio(ratio);
  img.fill(s.colour(QStringLiteral("BACKGROUND")));
  QPainter p(&img);
  DrawChartDocument(p, QRectF(QPointF(0, 0), QSizeF(logical)), doc, s);
  p.end();
  return img;
}

bool SaveBitmap(const QImage& img, const QString& file) {
  if (file.isEmpty()) return true;
  const QString suffix = QFileInfo(file).suffix().toLower();
  const char* format = suffix.isEmpty() ? "BMP" : nullptr;
  // BMP carries no alpha; flatten onto the background first.
  return img.convertToFormat(QImage::Format_RGB32).save(file, format);
}

// The unit of a chart: the interface lines tell it by the form of their weight (one
// decimal for kilograms, whole pounds); without a line that tells, the header's weight
// (" kg" or " lbs."), and without a header the edition's own unit.
bool ChartUnitImperial(ChartDocument& doc, const HeaderFile* header) {
  bool imperial = false;
  if (const auto unit = doc.data.imperialUnit())
    imperial = *unit;
  else if (header && !header->weight.isEmpty())
    imperial = header->imperial;
  else
    imperial = Ini_GetLang() == 1;
  ConvertToUnit(doc.data, doc.hasSim ? &doc.sim : nullptr, imperial);
  return imperial;
}

}  // namespace

ChartMaker::ChartMaker() : settings_(std::make_unique<ChartSettings>()) {}
ChartMaker::~ChartMaker() = default;

int ChartMaker::prepare(const QString& settingsPath) {
  return Guarded([&] {
    ChartSettings fresh;
    const bool found = fresh.load(settingsPath);
    const std::array<QString, 5> max = Ini_GetMaxValues();
    fresh.axisMaxima = {max[0], max[1], max[2], max[3]};
    *settings_ = fresh;
    last_.clear();
    return found ? chartcode::kOk : chartcode::kFileMissing;
  });
}

void ChartMaker::finish() { last_.clear(); }

void ChartMaker::forgetSurface(const ChartSurface* surface) { last_.erase(surface); }

bool ChartMaker::hasChart(const ChartSurface* surface) const { return last_.count(surface) != 0; }

int ChartMaker::drawDocument(ChartSurface& surface, const ChartDocument& doc) {
  surface.showChart(Render(surface, doc, *settings_));
  return DocumentResultCode(doc);
}

int ChartMaker::make(ChartSurface& surface, const QString& interfaceFile) {
  return Guarded([&] {
    auto doc = std::make_shared<ChartDocument>();
    const int st = StatusCode(ReadInterfaceFile(interfaceFile, doc->data));
    if (st != chartcode::kOk) return st;
    if (ChartKindOf(doc->data.type) == 800) {
      doc->hasSim = ReadSimFile(interfaceFile + QStringLiteral(".sim"), doc->sim) == ChartReadStatus::Ok;
    }
    doc->imperial = ChartUnitImperial(*doc, nullptr);
    last_[&surface] = doc;
    return drawDocument(surface, *doc);
  });
}

int ChartMaker::remake(ChartSurface& surface) {
  return Guarded([&] {
    const auto it = last_.find(&surface);
    if (it == last_.end()) return chartcode::kFileMissing;
    const auto doc = it->second;
    return drawDocument(surface, *doc);
  });
}

int ChartMaker::createGraphBitmap(ChartSurface& surface, const QString& interfaceFile, const QString& bitmapFile) {
  return Guarded([&] {
    auto doc = std::make_shared<ChartDocument>();
    const int st = StatusCode(ReadInterfaceFile(interfaceFile, doc->data));
    if (st != chartcode::kOk) return st;
    doc->kind = ChartDocument::Kind::WeightPlan;
    doc->hasSim = ReadSimFile(interfaceFile + QStringLiteral(".sim"), doc->sim) == ChartReadStatus::Ok;
    doc->imperial = ChartUnitImperial(*doc, nullptr);
    const QImage img = Render(surface, *doc, *settings_);
    surface.showChart(img);
    last_[&surface] = doc;
    if (!SaveBitmap(img, bitmapFile)) return chartcode::kFileMissing;
    return DocumentResultCode(*doc);
  });
}

int ChartMaker::createBmiGraph(ChartSurface& surface, const QString& dataFile, const QString& bitmapFile) {
  return Guarded([&] {
    auto doc = std::make_shared<ChartDocument>();
    doc->kind = ChartDocument::Kind::Bmi;
    const int st = StatusCode(ReadBmiFile(dataFile, doc->bmi));
    if (st != chartcode::kOk) return st;
    const QImage img = Render(surface, *doc, *settings_);
    surface.showChart(img);
    last_[&surface] = doc;
    if (!SaveBitmap(img, bitmapFile)) return chartcode::kFileMissing;
    return chartcode::kOk;
  });
}

namespace {

struct Paper {
  int number;
  QPageSize::PageSizeId id;
};

// The platform's paper numbers that printers offer in practice. Where several numbers
// name one size, the first of them is the size's own number.
constexpr Paper kPapers[] = {
    {1, QPageSize::Letter},      {2, QPageSize::Letter},      {3, QPageSize::Tabloid},
    {4, QPageSize::Ledger},      {5, QPageSize::Legal},       {6, QPageSize::Statement},
    {7, QPageSize::ExecutiveStandard},   {8, QPageSize::A3},          {9, QPageSize::A4},
    {10, QPageSize::A4},         {11, QPageSize::A5},         {12, QPageSize::JisB4},
    {13, QPageSize::JisB5},      {14, QPageSize::Folio},      {15, QPageSize::Quarto},
    {17, QPageSize::Tabloid},    {19, QPageSize::Envelope9},  {20, QPageSize::Envelope10},
    {21, QPageSize::Envelope11}, {22, QPageSize::Envelope12}, {23, QPageSize::Envelope14},
    {27, QPageSize::EnvelopeDL}, {28, QPageSize::EnvelopeC5}, {29, QPageSize::EnvelopeC3},
    {30, QPageSize::EnvelopeC4}, {31, QPageSize::EnvelopeC6}, {33, QPageSize::EnvelopeB4},
    {34, QPageSize::EnvelopeB5}, {35, QPageSize::EnvelopeB6}, {37, QPageSize::EnvelopeMonarch},
    {42, QPageSize::B4},         {43, QPageSize::Postcard},   {66, QPageSize::A2},
    {70, QPageSize::A6},         {88, QPageSize::B6},         {69, QPageSize::DoublePostcard},
    {91, QPageSize::EnvelopeYou4}, {73, QPageSize::EnvelopeChou3}, {74, QPageSize::EnvelopeChou4},
};

// Draws the report in a page of 1000 units across, whatever the device's resolution.
// The painter's origin is the corner of the printable area.
void PaintReport(QPainter& p, const QSizeF& device, const ChartDocument& doc, const HeaderFile& header,
                 const ChartSettings& s) {
  const double scale = device.width() / 1000.0;
  p.scale(scale, scale);
  DrawReportPage(p, QRectF(0, 0, 1000, device.height() / scale), doc, header, s);
}

}  // namespace

bool ChartMaker::PaperFromNumber(int paperNumber, int& pageSizeId) {
  for (const auto& p : kPapers) {
    if (p.number == paperNumber) {
      pageSizeId = static_cast<int>(p.id);
      return true;
    }
  }
  const int own = paperNumber - kPrinterOwnPaper;
  if (own >= 0 && own <= static_cast<int>(QPageSize::LastPageSize) && own != static_cast<int>(QPageSize::Custom)) {
    pageSizeId = own;
    return true;
  }
  return false;
}

int ChartMaker::PaperNumberOf(int pageSizeId) {
  for (const auto& p : kPapers)
    if (static_cast<int>(p.id) == pageSizeId) return p.number;
  if (pageSizeId < 0 || pageSizeId > static_cast<int>(QPageSize::LastPageSize) ||
      pageSizeId == static_cast<int>(QPageSize::Custom))
    return 0;
  return kPrinterOwnPaper + pageSizeId;
}

int ChartMaker::print(const QString& headerFile, const QString& interfaceFile, const QString& printerName,
                      int paperNumber) {
  return Guarded([&] {
    const QString name = printerName.trimmed();
    if (name.isEmpty()) return chartcode::kPrintNoPrinter;

    ChartDocument doc;
    int st = StatusCode(ReadInterfaceFile(interfaceFile, doc.data));
    if (st != chartcode::kOk) return st;
    HeaderFile header;
    st = StatusCode(ReadHeaderFile(headerFile, header));
    if (st != chartcode::kOk) return st;
    if (ChartKindOf(doc.data.type) == 800) {
      doc.kind = ChartDocument::Kind::WeightPlan;
      doc.hasSim = ReadSimFile(interfaceFile + QStringLiteral(".sim"), doc.sim) == ChartReadStatus::Ok;
    }
    doc.imperial = ChartUnitImperial(doc, &header);

    int pageId = static_cast<int>(QPageSize::A4);
    if (!PaperFromNumber(paperNumber, pageId))
      pageId = static_cast<int>(Ini_GetLang() == 1 ? QPageSize::Letter : QPageSize::A4);
    const QPageLayout layout(QPageSize(static_cast<QPageSize::PageSizeId>(pageId)), QPageLayout::Portrait,
                             QMarginsF(12, 12, 12, 12), QPageLayout::Millimeter);
    const QString title = settings_->text(QStringLiteral("REPORT"));
    const auto paint = [&](QPainter& p, const QRectF& device) { PaintReport(p, device.size(), doc, header, *settings_); };

    if (!name.startsWith(QLatin1String("pdf:"), Qt::CaseInsensitive)) {
      if (!printer_) return chartcode::kPrintUnknownPrinter;
      st = printer_->printPage(name, title, layout, paint);
      return st != chartcode::kOk ? st : DocumentResultCode(doc);
    }

    // A PDF file: made in memory, then written beside the target and put in its place
    // only when finished.
    const QString path = name.mid(4);
    if (path.isEmpty()) return chartcode::kPrintUnknownPrinter;
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly)) return chartcode::kPrintFailed;
    QByteArray bytes;
    {
      QBuffer buffer(&bytes);
      buffer.open(QIODevice::WriteOnly);
      QPdfWriter writer(&buffer);
      writer.setPdfVersion(QPagedPaintDevice::PdfVersion_1_6);
      writer.setResolution(600);
      writer.setTitle(title);
      writer.setCreator(QStringLiteral("Vantora"));
      if (!writer.setPageLayout(layout)) return chartcode::kPrintFailed;
      QPainter p;
      if (!p.begin(&writer)) return chartcode::kPrintFailed;
      paint(p, QRectF(QPointF(0, 0), writer.pageLayout().paintRectPixels(writer.resolution()).size()));
      if (!p.end()) return chartcode::kPrintFailed;
    }
    RestoreTextInPdf(bytes, SharedGlyphCodes({settings_->fontFamily, QStringLiteral("Noto Sans CJK JP")}));
    if (file.write(bytes) != bytes.size() || !file.commit()) return chartcode::kPrintFailed;
    return DocumentResultCode(doc);
  });
}

int ChartPreparePersonal(ChartMaker& maker, const QString& settingsPath) { return maker.prepare(settingsPath); }
int ChartFinishPersonal(ChartMaker& maker) {
  maker.finish();
  return chartcode::kOk;
}
int ChartMakerPersonal(ChartMaker& maker, ChartSurface& surface, const QString& interfaceFile) {
  return maker.make(surface, interfaceFile);
}
int ChartReMakePersonal(ChartMaker& maker, ChartSurface& surface) { return maker.remake(surface); }
int PrintChartPersonal(ChartMaker& maker, const QString& headerFile, const QString& interfaceFile,
                       const QString& printerName, int paperNumber) {
  return maker.print(headerFile, interfaceFile, printerName, paperNumber);
}
int CreateGraphBMPPersonal(ChartMaker& maker, ChartSurface& surface, const QString& interfaceFile,
                           const QString& bitmapFile) {
  return maker.createGraphBitmap(surface, interfaceFile, bitmapFile);
}
int CreateBMIGraphPersonal(ChartMaker& maker, ChartSurface& surface, const QString& dataFile,
                           const QString& bitmapFile) {
  return maker.createBmiGraph(surface, dataFile, bitmapFile);
}
