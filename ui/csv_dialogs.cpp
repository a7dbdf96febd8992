#include "ui/csv_dialogs.h"

#include <QApplication>
#include <QClipboard>
#include <QFileDialog>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QStandardPaths>
#include <QVBoxLayout>

#include "frame/catalogue.h"
#include "frame/config.h"
#include "frame/dialog.h"
#include "frame/helpers.h"
#include "frame/shared_values.h"
#include "frame/trace.h"
#include "ui/form_look.h"
#include "ui/frmProgressBar.h"

namespace {

QString exportText(const char* key) { return GetIniCaption(QStringLiteral("CSVEXPORT"), QLatin1String(key)); }
QString importText(const char* key) { return GetIniCaption(QStringLiteral("CSVIMPORT"), QLatin1String(key)); }

void tell(const QString& title, const QString& text) {
  if (DialogInterface* d = GetDialogInterface()) d->showMessage(title, text, DialogIcon::Exclamation);
}

QPushButton* button(QWidget* parent, const char* name, const char* captionKey) {
  auto* b = new QPushButton(CsvDialogText(captionKey), parent);
  b->setObjectName(QLatin1String(name));
  b->setMinimumWidth(96);
  return b;
}

// Keeps ModalFormOpen set while a CSV screen is open, so a recorder put on the reader
// meanwhile is not received.
void formOpened(QDialog& d) {
  WriteTrace(QStringLiteral("0"), d.objectName(), QStringLiteral("Form_Load Start"));
  SetModalFormOpen(true);
  ApplyCommonFormLook(d);
}
void formClosed(QDialog& d) {
  WriteTrace(QStringLiteral("0"), d.objectName(), QStringLiteral("Form_Unload Start"));
  SetModalFormOpen(false);
}

QString picker() {
  const QString f = GetCommonDateFormat();
  return f.isEmpty() ? QStringLiteral("yyyy/MM/dd") : f;
}

}  // namespace

// ---- export ----

frmCsvExport::frmCsvExport(VtDatabase& db, const QString& currentUserId, QWidget* parent)
    : QDialog(parent), db_(db), logic_(db, currentUserId) {
  setObjectName(QStringLiteral("frmCsvExport"));
  formOpened(*this);
  setWindowTitle(CsvDialogText("CAPTION_EXPORT_TITLE"));

  optCurrentUser = new QRadioButton(CsvDialogText("CAPTION_OPTCURRENTUSER"), this);
  optCurrentUser->setObjectName(QStringLiteral("optCurrentUser"));
  optAllUsers = new QRadioButton(CsvDialogText("CAPTION_OPTALLUSERS"), this);
  optAllUsers->setObjectName(QStringLiteral("optAllUsers"));
  auto* group = new QButtonGroup(this);
  group->addButton(optCurrentUser);
  group->addButton(optAllUsers);
  optCurrentUser->setEnabled(logic_.hasCurrentUser());
  (logic_.hasCurrentUser() ? optCurrentUser : optAllUsers)->setChecked(true);

  auto dateEdit = [this](const char* name, const QDate& d) {
    auto* e = new QDateEdit(d, this);
    e->setObjectName(QLatin1String(name));
    e->setCalendarPopup(true);
    e->setDisplayFormat(picker());
    return e;
  };
  dtDateFrom = dateEdit("dtDateFrom", logic_.defaultFrom());
  dtDateTo = dateEdit("dtDateTo", logic_.defaultTo());

  cmbFormat = new QComboBox(this);
  cmbFormat->setObjectName(QStringLiteral("cmbFormat"));
  cmbFormat->addItems({CsvDialogText("CAPTION_FORMAT_0"), CsvDialogText("CAPTION_FORMAT_1"),
                       CsvDialogText("CAPTION_FORMAT_2")});

  txtFolder = new QLineEdit(QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation), this);
  txtFolder->setObjectName(QStringLiteral("txtFolder"));
  txtFolder->setMinimumWidth(300);
  btnBrowse = button(this, "btnBrowse", "CAPTION_BTNBROWSE");
  btnOK = button(this, "btnOK", "CAPTION_BTNOK");
  btnCancel = button(this, "btnCancel", "CAPTION_BTNCANCEL");
  btnOK->setDefault(true);

  auto* users = new QHBoxLayout;
  users->addWidget(optCurrentUser);
  users->addWidget(optAllUsers);
  users->addStretch(1);
  auto* folder = new QHBoxLayout;
  folder->addWidget(txtFolder, 1);
  folder->addWidget(btnBrowse);
  auto* form = new QFormLayout;
  form->setLabelAlignment(Qt::AlignRight | Qt::AlignVCenter);
  form->addRow(users);
  form->addRow(CsvDialogText("CAPTION_LBLFROM"), dtDateFrom);
  form->addRow(CsvDialogText("CAPTION_LBLTO"), dtDateTo);
  form->addRow(CsvDialogText("CAPTION_LBLFORMAT"), cmbFormat);
  form->addRow(CsvDialogText("CAPTION_LBLFOLDER"), folder);
  auto* buttons = new QHBoxLayout;
  buttons->addStretch(1);
  buttons->addWidget(btnOK);
  buttons->addWidget(btnCancel);
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(18, 16, 18, 14);
  layout->addLayout(form);
  layout->addSpacing(8);
  layout->addLayout(buttons);

  connect(optAllUsers, &QRadioButton::toggled, this, [this](bool all) {
    QDate f;
    QDate t;
    logic_.rangeFor(all, f, t);
    if (f.isValid() && t.isValid()) {
      dtDateFrom->setDate(f);
      dtDateTo->setDate(t);
    }
  });
  connect(btnBrowse, &QPushButton::clicked, this, [this] {
    const QString dir = QFileDialog::getExistingDirectory(this, CsvDialogText("CAPTION_LBLFOLDER"), txtFolder->text());
    if (!dir.isEmpty()) txtFolder->setText(dir);
  });
  connect(btnOK, &QPushButton::clicked, this, &frmCsvExport::btnOK_Click);
  connect(btnCancel, &QPushButton::clicked, this, &QDialog::reject);
}

frmCsvExport::~frmCsvExport() { formClosed(*this); }

CsvExportChoice frmCsvExport::choice() const {
  CsvExportChoice c;
  c.allUsers = optAllUsers->isChecked();
  c.from = dtDateFrom->date();
  c.to = dtDateTo->date();
  c.formatKind = cmbFormat->currentIndex();
  c.folder = txtFolder->text().trimmed();
  return c;
}

void frmCsvExport::btnOK_Click() {
  WriteTrace(QStringLiteral("0"), objectName(), QStringLiteral("btnOK_Click Start"));
  const CsvExportChoice c = choice();
  const QString refusal = logic_.check(c);
  if (!refusal.isEmpty()) {
    tell(windowTitle(), refusal);
    return;
  }
  const QStringList ids = logic_.userIds(c.allUsers);
  frmProgressBar progress(&db_, this);
  progress.ProcSetExecParam(ProgressDriver::kCsvExport, exportText("CAPTION_TITLE"), exportText("CAPTION_LBLSTATUS"),
                            exportText("CAPTION_CMDCANCEL"), static_cast<int>(ids.size()), 0, true);
  progress.ProcSetCSVExportParam(DateToYmd(c.from), DateToYmd(c.to), c.formatKind, c.folder, ids);
  progress.exec();
  int written = 0;
  QString log;
  int result = 0;
  progress.ProcGetCSVExportParam(written, log, result);
  QString summary = CsvDialogText("CAPTION_EXPORT_DONE").arg(written);
  if (progress.ProcGetCancelParam()) summary += u' ' + CsvDialogText("CAPTION_CANCELLED");
  frmCsvLog(summary, log, this).exec();
  accept();
}

// ---- import ----

frmCsvImport::frmCsvImport(VtDatabase& db, QWidget* parent) : QDialog(parent), db_(db) {
  setObjectName(QStringLiteral("frmCsvImport"));
  formOpened(*this);
  setWindowTitle(CsvDialogText("CAPTION_IMPORT_TITLE"));
  lstSources = new QListWidget(this);
  lstSources->setObjectName(QStringLiteral("lstSources"));
  lstSources->setMinimumSize(420, 160);
  btnAddFolder = button(this, "btnAddFolder", "CAPTION_BTNFOLDER");
  btnAddFiles = button(this, "btnAddFiles", "CAPTION_BTNFILES");
  btnImport = button(this, "btnImport", "CAPTION_BTNIMPORT");
  btnCancel = button(this, "btnCancel", "CAPTION_BTNCANCEL");
  btnImport->setDefault(true);

  auto* adders = new QHBoxLayout;
  adders->addWidget(btnAddFolder);
  adders->addWidget(btnAddFiles);
  adders->addStretch(1);
  auto* buttons = new QHBoxLayout;
  buttons->addStretch(1);
  buttons->addWidget(btnImport);
  buttons->addWidget(btnCancel);
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(18, 16, 18, 14);
  layout->addWidget(new QLabel(CsvDialogText("CAPTION_IMPORT_LBLSOURCE"), this));
  layout->addWidget(lstSources, 1);
  layout->addLayout(adders);
  layout->addSpacing(8);
  layout->addLayout(buttons);

  connect(btnAddFolder, &QPushButton::clicked, this, [this] {
    const QString dir = QFileDialog::getExistingDirectory(this, CsvDialogText("CAPTION_BTNFOLDER"));
    if (!dir.isEmpty()) addSources({dir});
  });
  connect(btnAddFiles, &QPushButton::clicked, this, [this] {
    addSources(QFileDialog::getOpenFileNames(this, CsvDialogText("CAPTION_BTNFILES"), QString(),
                                             QStringLiteral("CSV (*.csv *.CSV)")));
  });
  connect(btnImport, &QPushButton::clicked, this, &frmCsvImport::btnImport_Click);
  connect(btnCancel, &QPushButton::clicked, this, &QDialog::reject);
}

frmCsvImport::~frmCsvImport() { formClosed(*this); }

void frmCsvImport::addSources(const QStringList& paths) {
  logic_.add(paths);
  lstSources->clear();
  lstSources->addItems(logic_.sources());
}

void frmCsvImport::btnImport_Click() {
  WriteTrace(QStringLiteral("0"), objectName(), QStringLiteral("btnImport_Click Start"));
  const QString refusal = logic_.check();
  if (!refusal.isEmpty()) {
    tell(windowTitle(), refusal);
    return;
  }
  frmProgressBar progress(&db_, this);
  progress.ProcSetExecParam(ProgressDriver::kCsvImport, importText("CAPTION_TITLE"), importText("CAPTION_LBLSTATUS"),
                            importText("CAPTION_CMDCANCEL"), 1, 0, true);
  progress.ProcSetCSVImportParam(logic_.sources());
  progress.exec();
  int read = 0;
  int imported = 0;
  QString log;
  int result = 0;
  progress.ProcGetCSVImportParam(read, imported, log, result);
  QString summary = CsvDialogText("CAPTION_IMPORT_DONE").arg(read).arg(imported);
  if (progress.ProcGetCancelParam()) summary += u' ' + CsvDialogText("CAPTION_CANCELLED");
  frmCsvLog(summary, log, this).exec();
  accept();
}

// ---- log ----

frmCsvLog::frmCsvLog(const QString& summary, const QString& log, QWidget* parent) : QDialog(parent) {
  setObjectName(QStringLiteral("frmCsvLog"));
  setWindowTitle(CsvDialogText("CAPTION_LOG_TITLE"));
  ApplyCommonFormLook(*this);
  auto* lblSummary = new QLabel(summary, this);
  lblSummary->setObjectName(QStringLiteral("lblSummary"));
  lblSummary->setWordWrap(true);
  txtLog = new QPlainTextEdit(this);
  txtLog->setObjectName(QStringLiteral("txtLog"));
  txtLog->setReadOnly(true);
  txtLog->setLineWrapMode(QPlainTextEdit::NoWrap);
  txtLog->setPlainText(QString(log).replace(QStringLiteral("\r\n"), QStringLiteral("\n")));
  txtLog->setMinimumSize(560, 220);
  btnCopy = button(this, "btnCopy", "CAPTION_BTNCOPY");
  btnClose = button(this, "btnClose", "CAPTION_BTNCLOSE");
  btnClose->setDefault(true);
  auto* buttons = new QHBoxLayout;
  buttons->addStretch(1);
  buttons->addWidget(btnCopy);
  buttons->addWidget(btnClose);
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(18, 16, 18, 14);
  layout->addWidget(lblSummary);
  layout->addWidget(txtLog, 1);
  layout->addLayout(buttons);
  connect(btnCopy, &QPushButton::clicked, this, [this] { QApplication::clipboard()->setText(txtLog->toPlainText()); });
  connect(btnClose, &QPushButton::clicked, this, &QDialog::accept);
}

void ShowCsvExport(VtDatabase& db, const QString& currentUserId, QWidget* parent) {
  frmCsvExport form(db, currentUserId, parent);
  form.exec();
}

void ShowCsvImport(VtDatabase& db, QWidget* parent) {
  frmCsvImport form(db, parent);
  form.exec();
}
