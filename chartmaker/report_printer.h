// Installed printers for the chart library's reports, through Qt PrintSupport. Only the
// desktop links this; the library itself and the command-line tool stay on Qt Gui.
#pragma once

#include <functional>

#include "chartmaker/chartmaker.h"

class QPrinter;

class QtReportPrinter : public ReportPrinter {
 public:
  // Asked with the set-up printer before the page is printed (a print dialog); false
  // cancels the print (120).
  void setConfirm(std::function<bool(QPrinter&)> confirm) { confirm_ = std::move(confirm); }

  int printPage(const QString& printerName, const QString& documentName, const QPageLayout& layout,
                const PagePainter& paint) override;

 private:
  std::function<bool(QPrinter&)> confirm_;
};
