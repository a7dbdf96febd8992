#include "ui/frmProgressBar.h"

#include <QCloseEvent>
#include <QCoreApplication>
#include <QHBoxLayout>
#include <QShowEvent>
#include <QTimer>
#include <QVBoxLayout>

#include "frame/shared_values.h"
#include "frame/trace.h"
#include "ui/form_look.h"

frmProgressBar::frmProgressBar(VtDatabase* db, QWidget* parent) : QDialog(parent), driver_(db) {
  setObjectName(QStringLiteral("frmProgressBar"));
  WriteTrace(QStringLiteral("0"), objectName(), QStringLiteral("Form_Load Start"));
  setModal(true);
  setWindowFlags(Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint);
  ApplyCommonFormLook(*this);

  lblStatus = new QLabel(this);
  lblStatus->setObjectName(QStringLiteral("lblStatus"));
  lblStatus->setWordWrap(true);
  lblStatus->setMinimumWidth(380);
  progressExec = new QProgressBar(this);
  progressExec->setObjectName(QStringLiteral("progressExec"));
  progressExec->setTextVisible(false);
  cmdCancel = new QPushButton(this);
  cmdCancel->setObjectName(QStringLiteral("cmdCancel"));
  cmdCancel->setMinimumWidth(100);
  connect(cmdCancel, &QPushButton::clicked, this, [this] { driver_.cancelClicked(); });

  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(20, 18, 20, 16);
  layout->setSpacing(12);
  layout->addWidget(lblStatus);
  layout->addWidget(progressExec);
  auto* buttons = new QHBoxLayout;
  buttons->addStretch(1);
  buttons->addWidget(cmdCancel);
  layout->addLayout(buttons);

  driver_.setView(this);
  stateChanged();
  modalBefore_ = GetModalFormOpen();
  SetModalFormOpen(true);
}

frmProgressBar::~frmProgressBar() {
  driver_.setView(nullptr);
  WriteTrace(QStringLiteral("0"), objectName(), QStringLiteral("Form_Unload Start"));
  SetModalFormOpen(modalBefore_);
}

void frmProgressBar::stateChanged() {
  setWindowTitle(driver_.title());
  lblStatus->setText(driver_.status());
  cmdCancel->setText(driver_.buttonText());
  cmdCancel->setEnabled(driver_.buttonEnabled() && !driver_.ProcGetCancelParam());
  progressExec->setMaximum(std::max(1, driver_.maximum()));
  progressExec->setValue(driver_.value());
}

void frmProgressBar::processEvents() {
  if (driver_.ProcGetCancelParam()) cmdCancel->setEnabled(false);
  QCoreApplication::processEvents(QEventLoop::AllEvents, 50);
}

void frmProgressBar::showEvent(QShowEvent* event) {
  QDialog::showEvent(event);
  if (started_) return;
  started_ = true;
  // After the window is painted, not inside the show.
  if (driver_.operation() != ProgressDriver::kNone) QTimer::singleShot(0, this, &frmProgressBar::runOperation);
}

void frmProgressBar::runOperation() {
  driver_.run();
  accept();
}

void frmProgressBar::reject() {
  // Escape or the window's close: while work runs it is a request to cancel.
  if (driver_.running()) {
    if (driver_.buttonEnabled()) driver_.cancelClicked();
    return;
  }
  QDialog::reject();
}

void frmProgressBar::closeEvent(QCloseEvent* event) {
  if (driver_.running()) {
    if (driver_.buttonEnabled()) driver_.cancelClicked();
    event->ignore();
    return;
  }
  QDialog::closeEvent(event);
}
