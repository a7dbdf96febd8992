#include "chartmaker/report_printer.h"

#include <QPainter>
#include <QPrinter>
#include <QPrinterInfo>

int QtReportPrinter::printPage(const QString& printerName, const QString& documentName, const QPageLayout& layout,
                               const PagePainter& paint) {
  const QPrinterInfo info = QPrinterInfo::printerInfo(printerName);
  if (info.isNull()) return chartcode::kPrintUnknownPrinter;
  QPrinter printer(info, QPrinter::HighResolution);
  printer.setDocName(documentName);
  // A page size the printer does not offer falls back to the printer's own default.
  if (!printer.setPageLayout(layout)) printer.setPageOrientation(QPageLayout::Portrait);
  QPainter p;
  if (!p.begin(&printer)) return chartcode::kPrintFailed;
  paint(p, QRectF(QPointF(0, 0), printer.pageLayout().paintRectPixels(printer.resolution()).size()));
  return p.end() ? chartcode::kOk : chartcode::kPrintFailed;
}
