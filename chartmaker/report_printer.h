// Installed printers for the chart library's reports, through Qt PrintSupport. Only the
// desktop links this; the library itself and the command-line tool stay on Qt Gui.
#pragma once

#include "chartmaker/chartmaker.h"

class QtReportPrinter : public ReportPrinter {
 public:
  int printPage(const QString& printerName, const QString& documentName, const QPageLayout& layout,
                const PagePainter& paint) override;
};
