#include "ui/frmPrinterSetup.h"

#include <QApplication>
#include <QFileDialog>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QStandardPaths>
#include <QTimer>

#include "chartmaker/chartmaker.h"
#include "frame/catalogue.h"
#include "frame/helpers.h"
#include "frame/shared_values.h"
#include "frame/trace.h"

namespace {

QString Caption(const char* key) { return GetIniCaption(QStringLiteral("PRINTER"), QLatin1String(key)); }

// The wait cursor while lists fill or the chart library works.
class WaitCursor {
 public:
  WaitCursor() { QApplication::setOverrideCursor(Qt::WaitCursor); }
  ~WaitCursor() { QApplication::restoreOverrideCursor(); }
  WaitCursor(const WaitCursor&) = delete;
  WaitCursor& operator=(const WaitCursor&) = delete;
};

QString AskPdfPathWithDialog(QWidget* parent, const QString& defaultPath) {
  QString path = QFileDialog::getSaveFileName(parent, Caption("CAPTION_SAVEPDF_TITLE"), defaultPath,
                                              Caption("CAPTION_SAVEPDF_FILTER"));
  if (!path.isEmpty() && !path.endsWith(QLatin1String(".pdf"), Qt::CaseInsensitive)) path += QStringLiteral(".pdf");
  return path;
}

}  // namespace

frmPrinterSetup::frmPrinterSetup(PrinterCatalog& catalog, const QString& pdfDefaultPath, QWidget* parent,
                                 bool offerPdf)
    : QDialog(parent), askPdfPath(AskPdfPathWithDialog), logic_(catalog, offerPdf), pdfDefaultPath_(pdfDefaultPath) {
  setObjectName(QStringLiteral("frmPrinterSetup"));
  WriteTrace(QStringLiteral("0"), objectName(), QStringLiteral("Form_Load Start"));
  SetModalFormOpen(true);
  setModal(true);
  setWindowTitle(Caption("CAPTION_TITLE"));

  QPalette pal = palette();
  const std::uint32_t back = GetCommonFormBackColor();
  if (back != 0) {
    pal.setColor(QPalette::Window, QColor(back & 0xff, (back >> 8) & 0xff, (back >> 16) & 0xff));
    setPalette(pal);
    setAutoFillBackground(true);
  }
  if (!GetCommonFontName().isEmpty()) {
    QFont f = font();
    f.setFamily(GetCommonFontName());
    setFont(f);
  }

  auto make = [this](auto*& member, const char* name) {
    using T = std::remove_pointer_t<std::remove_reference_t<decltype(member)>>;
    member = new T(this);
    member->setObjectName(QLatin1String(name));
  };
  make(lblPrinter, "lblPrinter");
  make(cmbPrinter, "cmbPrinter");
  make(lblPaperSize, "lblPaperSize");
  make(cmbPaper, "cmbPaper");
  make(btnOK, "btnOK");
  make(btnCancel, "btnCancel");
  lblPrinter->setText(Caption("CAPTION_LBLPRINTER"));
  lblPaperSize->setText(Caption("CAPTION_LBLPAPERSIZE"));
  btnOK->setText(Caption("CAPTION_BTNOK"));
  btnCancel->setText(Caption("CAPTION_BTNCANCEL"));
  btnOK->setDefault(true);
  cmbPrinter->setMinimumWidth(320);
  cmbPrinter->setSizeAdjustPolicy(QComboBox::AdjustToContents);

  auto* grid = new QGridLayout;
  grid->addWidget(lblPrinter, 0, 0);
  grid->addWidget(cmbPrinter, 0, 1);
  grid->addWidget(lblPaperSize, 1, 0);
  grid->addWidget(cmbPaper, 1, 1);
  grid->setColumnStretch(1, 1);
  auto* buttons = new QHBoxLayout;
  buttons->addStretch(1);
  buttons->addWidget(btnOK);
  buttons->addWidget(btnCancel);
  auto* outer = new QVBoxLayout(this);
  outer->addLayout(grid);
  outer->addSpacing(8);
  outer->addLayout(buttons);
  outer->setSizeConstraint(QLayout::SetFixedSize);

  {
    WaitCursor wait;
    loaded_ = logic_.load();
    cmbPrinter->addItems(logic_.printerEntries());
    cmbPrinter->setCurrentIndex(logic_.printerIndex());
    fillPapers();
  }
  connect(cmbPrinter, &QComboBox::currentIndexChanged, this, &frmPrinterSetup::onPrinterChanged);
  connect(cmbPaper, &QComboBox::currentIndexChanged, this, [this](int index) { logic_.selectPaper(index); });
  connect(btnOK, &QPushButton::clicked, this, &frmPrinterSetup::onOK);
  connect(btnCancel, &QPushButton::clicked, this, &frmPrinterSetup::onCancel);
}

frmPrinterSetup::~frmPrinterSetup() {
  if (!unloaded_) SetModalFormOpen(false);
}

void frmPrinterSetup::fillPapers() {
  const QSignalBlocker block(cmbPaper);
  cmbPaper->clear();
  for (const PaperEntry& p : logic_.papers()) cmbPaper->addItem(p.name, p.number);
  cmbPaper->setCurrentIndex(logic_.paperIndex());
}

void frmPrinterSetup::onPrinterChanged(int index) {
  WaitCursor wait;
  logic_.selectPrinter(index);
  fillPapers();
}

void frmPrinterSetup::showEvent(QShowEvent* event) {
  QDialog::showEvent(event);
  if (!activated_) QTimer::singleShot(0, this, &frmPrinterSetup::activate);
}

void frmPrinterSetup::activate() {
  if (activated_) return;
  activated_ = true;
  if (loaded_) return;
  MessageDialog(QStringLiteral("PRNT-I-0001"));
  PrinterSetupLogic::cancel();
  reject();
}

void frmPrinterSetup::onOK() {
  WriteTrace(QStringLiteral("0"), objectName(), QStringLiteral("btnOK_Click Start"));
  QString pdfPath;
  if (logic_.isPdfEntry(logic_.printerIndex())) {
    pdfPath = askPdfPath ? askPdfPath(this, pdfDefaultPath_) : QString();
    if (pdfPath.isEmpty()) return;  // no file chosen: the screen stays for another choice
  }
  if (!logic_.accept(pdfPath)) return;
  accept();
}

void frmPrinterSetup::onCancel() {
  WriteTrace(QStringLiteral("0"), objectName(), QStringLiteral("btnCancel_Click Start"));
  PrinterSetupLogic::cancel();
  reject();
}

void frmPrinterSetup::done(int result) {
  // Closing the window any other way than OK is a Cancel.
  if (result != QDialog::Accepted) PrinterSetupLogic::cancel();
  if (!unloaded_) {
    unloaded_ = true;
    WriteTrace(QStringLiteral("0"), objectName(), QStringLiteral("Form_Unload Start"));
    SetModalFormOpen(false);
  }
  QDialog::done(result);
}

// ---------------------------------------------------------------- the print command

std::optional<int> PrintCurrentChart(const PrintChartRequest& request) {
  if (!request.maker) return std::nullopt;
  if (GetScreenState() == QLatin1String("S_JOB") && request.readBackDates) request.readBackDates();

  QtPrinterCatalog machine;
  PrinterCatalog& catalog = request.catalog ? *request.catalog : machine;
  if (request.showPrinterSetup) {
    request.showPrinterSetup();
  } else {
    // The screen shows the wait cursor itself while its lists fill.
    const QString documents = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
    frmPrinterSetup setup(catalog, DefaultPdfPath(request.userName, request.period, documents), request.parent);
    setup.exec();
  }
  const QString printer = GetChosenPrinter();
  if (printer.isEmpty()) return std::nullopt;

  std::optional<int> result;
  try {
    WaitCursor wait;
    const auto [header, iface] = request.redraw ? request.redraw() : std::pair<QString, QString>();
    if (!header.isEmpty() && !iface.isEmpty())
      result = PrintChartKeepingDirectory(*request.maker, GetAbsolutePath(header), GetAbsolutePath(iface), printer,
                                          GetChosenPaper());
  } catch (...) {
    // A failure of the print job abandons it; the program goes on.
    result.reset();
  }
  if (result) ReportChartResult(*result);
  if (request.updateStates) request.updateStates();
  return result;
}
