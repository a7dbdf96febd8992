// The choice of printer and paper before a print. The installed printers and, at the
// end of the list, "Save as PDF…"; the choice holds for the rest of the process.
#pragma once

#include <QComboBox>
#include <QDialog>
#include <QLabel>
#include <QPushButton>
#include <functional>

#include "ui/printing.h"

class frmPrinterSetup : public QDialog {
  Q_OBJECT

 public:
  // pdfDefaultPath: the file name the PDF question starts with.
  frmPrinterSetup(PrinterCatalog& catalog, const QString& pdfDefaultPath, QWidget* parent = nullptr,
                  bool offerPdf = true);
  ~frmPrinterSetup() override;

  // Asks for the PDF file (the default path given); empty when the person cancels.
  // Defaults to a QFileDialog; tests put their own answer here.
  std::function<QString(QWidget* parent, const QString& defaultPath)> askPdfPath;

  // Runs once the screen is shown: without anything to choose, PRNT-I-0001 and the
  // screen closes with nothing chosen.
  void activate();

  QLabel* lblPrinter = nullptr;
  QComboBox* cmbPrinter = nullptr;
  QLabel* lblPaperSize = nullptr;
  QComboBox* cmbPaper = nullptr;
  QPushButton* btnOK = nullptr;
  QPushButton* btnCancel = nullptr;

  const PrinterSetupLogic& logic() const { return logic_; }

 public Q_SLOTS:
  void done(int result) override;

 protected:
  void showEvent(QShowEvent* event) override;

 private:
  void fillPapers();
  void onPrinterChanged(int index);
  void onOK();
  void onCancel();

  PrinterSetupLogic logic_;
  QString pdfDefaultPath_;
  bool loaded_ = false;
  bool activated_ = false;
  bool unloaded_ = false;
};

// The action of mnuReport and btnPrint (see printing.h for the request).
std::optional<int> PrintCurrentChart(const PrintChartRequest& request);
