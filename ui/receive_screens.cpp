#include "ui/receive_screens.h"

#include <QApplication>
#include <QCloseEvent>
#include <QEventLoop>
#include <QHBoxLayout>
#include <QIcon>
#include <QImageReader>
#include <QLabel>
#include <QMovie>
#include <QProgressBar>
#include <QPushButton>
#include <QTimer>
#include <QVBoxLayout>
#include <cmath>

#include "frame/catalogue.h"
#include "frame/trace.h"
#include "ui/form_look.h"

// ---------------------------------------------------------------- clock

void EventLoopDeviceClock::sleepMs(int ms) {
  const int wait = static_cast<int>(std::lround(ms * scale_));
  if (wait <= 0) {
    QCoreApplication::processEvents(QEventLoop::AllEvents);
    return;
  }
  QEventLoop loop;
  QTimer::singleShot(wait, Qt::PreciseTimer, &loop, &QEventLoop::quit);
  loop.exec();
}

QDateTime EventLoopDeviceClock::now() const { return QDateTime::currentDateTime(); }

// ---------------------------------------------------------------- screens

ReceiveScreen::ReceiveScreen(const QString& name, const QString& section, QWidget* parent)
    : QDialog(parent) {
  setObjectName(name);
  // A title but no close button: only the cancel button ends a receive early.
  setWindowFlags(Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint);
  setWindowModality(Qt::ApplicationModal);
  setWindowTitle(GetIniCaption(section, QStringLiteral("CAPTION_TITLE")));
  const QString icon = GetIniPicturePath(QStringLiteral("VB_COMMON"), QStringLiteral("FORM_ICON"));
  if (!icon.isEmpty()) setWindowIcon(QIcon(icon));
  ApplyCommonFormLook(*this);

  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(24, 20, 24, 18);
  layout->setSpacing(14);

  lblTransferStatus = new QLabel(this);
  lblTransferStatus->setObjectName(QStringLiteral("lblTransferStatus"));
  lblTransferStatus->setWordWrap(true);
  lblTransferStatus->setMinimumHeight(lblTransferStatus->fontMetrics().height() * 2 + 4);
  layout->addWidget(lblTransferStatus);

  progressTransfer = new QProgressBar(this);
  progressTransfer->setObjectName(QStringLiteral("progressTransfer"));
  progressTransfer->setTextVisible(false);
  progressTransfer->setRange(0, 3);
  progressTransfer->setValue(0);
  layout->addWidget(progressTransfer);

  auto* buttons = new QHBoxLayout;
  buttons->addStretch(1);
  btnDataReceiveCancel = new QPushButton(GetIniCaption(section, QStringLiteral("CAPTION_BTNCANCEL")), this);
  btnDataReceiveCancel->setObjectName(QStringLiteral("btnDataReceiveCancel"));
  btnDataReceiveCancel->setMinimumWidth(110);
  btnDataReceiveCancel->setAutoDefault(false);
  buttons->addWidget(btnDataReceiveCancel);
  layout->addLayout(buttons);

  connect(btnDataReceiveCancel, &QPushButton::clicked, this, [this] { btnDataReceiveCancel_Click(); });
  setMinimumWidth(440);
}

void ReceiveScreen::addAnimation(QWidget* animation) {
  auto* box = qobject_cast<QVBoxLayout*>(layout());
  box->insertWidget(0, animation, 0, Qt::AlignHCenter);
}

void ReceiveScreen::btnDataReceiveCancel_Click() {
  WriteTrace(QStringLiteral("0"), objectName(), QStringLiteral("btnDataReceiveCancel_Click Start"));
  cancelled_ = true;
  btnDataReceiveCancel->setEnabled(false);
}

void ReceiveScreen::reject() {
  // Escape asks for the cancel; the screen closes when the receive has ended.
  if (btnDataReceiveCancel->isEnabled()) btnDataReceiveCancel->click();
}

void ReceiveScreen::closeEvent(QCloseEvent* event) {
  if (!isVisible() || !btnDataReceiveCancel->isEnabled()) {
    event->accept();
    return;
  }
  btnDataReceiveCancel->click();
  event->ignore();
}

frmRecvManagement::frmRecvManagement(QWidget* parent)
    : ReceiveScreen(QStringLiteral("frmRecvManagement"), kSectionRecvManagement, parent) {}

frmRecvData::frmRecvData(QWidget* parent)
    : ReceiveScreen(QStringLiteral("frmRecvData"), kSectionRecvData, parent) {
  lblAnimation = new QLabel(this);
  lblAnimation->setObjectName(QStringLiteral("lblAnimation"));
  lblAnimation->setAlignment(Qt::AlignCenter);
  const QString gif = GetIniPicturePath(kSectionRecvData, QStringLiteral("GIF_RECEIVING"));
  if (!gif.isEmpty()) {
    movie = new QMovie(gif, QByteArray(), this);
    if (movie->isValid()) {
      lblAnimation->setMinimumSize(QImageReader(gif).read().size());
      lblAnimation->setMovie(movie);
      movie->start();
    } else {
      WriteTrace(QStringLiteral("1"), objectName(), QStringLiteral("animation not readable: ") + gif);
      delete movie;
      movie = nullptr;
    }
  }
  addAnimation(lblAnimation);
}

// ---------------------------------------------------------------- the run

// The questions come after the management screen has gone; none of the two screens
// stands behind a question.
class ReceiveOnScreen::HidingQuestions : public ReceiveQuestions {
 public:
  HidingQuestions(ReceiveOnScreen& owner, ReceiveQuestions& inner) : owner_(owner), inner_(inner) {}
  NewCpuAnswer newRecorder(const RecvMsgNewCPU& d) override {
    owner_.hideScreens();
    return inner_.newRecorder(d);
  }
  bool receiveForCurrentUser(const RecvMsgNewCPUSelectUser& d) override {
    owner_.hideScreens();
    return inner_.receiveForCurrentUser(d);
  }
  bool takeOverRecorder(const RecvMsgAlertUser& d) override {
    owner_.hideScreens();
    return inner_.takeOverRecorder(d);
  }
  bool receiveResetRecorder(const RecvMsgAlertReset& d) override {
    owner_.hideScreens();
    return inner_.receiveResetRecorder(d);
  }
  QString registerUser(VtDatabase& db) override {
    owner_.hideScreens();
    return inner_.registerUser(db);
  }
  QString selectUser(VtDatabase& db) override {
    owner_.hideScreens();
    return inner_.selectUser(db);
  }

 private:
  ReceiveOnScreen& owner_;
  ReceiveQuestions& inner_;
};

ReceiveOnScreen::ReceiveOnScreen(VtDatabase& db, TavoReader& reader, DeviceClock& clock,
                                 ReceiveQuestions& questions, QWidget* parent)
    : db_(db), reader_(reader), clock_(clock), questions_(questions), parent_(parent) {}

ReceiveOnScreen::~ReceiveOnScreen() {
  delete management_.data();
  delete data_.data();
}

ReceiveReport ReceiveOnScreen::run() {
  management_ = new frmRecvManagement(parent_);
  showScreen(management_);
  HidingQuestions questions(*this, questions_);
  ReceiveServices services{db_, reader_, clock_, *this};
  ReceiveWorkflow workflow(services, questions);
  const ReceiveReport report = workflow.Run();
  hideScreens();
  return report;
}

void ReceiveOnScreen::showScreen(ReceiveScreen* screen) {
  if (current_ == screen) return;
  hideScreens();
  current_ = screen;
  screen->adjustSize();
  if (parent_) {
    const QRect outer = parent_->window()->frameGeometry();
    screen->move(outer.center() - screen->rect().center());
  }
  screen->show();
  screen->raise();
  screen->activateWindow();
  // The work starts once the screen has been drawn.
  QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
}

void ReceiveOnScreen::hideScreens() {
  if (management_) management_->hide();
  if (data_) data_->hide();
  current_ = nullptr;
}

void ReceiveOnScreen::setMaximum(int maximum) {
  if (current_) current_->progressTransfer->setMaximum(std::max(1, maximum));
}

void ReceiveOnScreen::setValue(int value) {
  if (current_) current_->progressTransfer->setValue(value);
}

void ReceiveOnScreen::setStatus(const QString& caption) {
  if (caption == GetIniCaption(kSectionRecvData, QStringLiteral("DATA_RECEIVING"))) {
    if (!data_) data_ = new frmRecvData(parent_);
    showScreen(data_);
  } else if (!current_ && management_ && !data_) {
    showScreen(management_);
  }
  if (current_) current_->lblTransferStatus->setText(caption);
}

bool ReceiveOnScreen::cancelRequested() {
  return current_ && current_->cancelRequested();
}

void ReceiveOnScreen::yield() { QCoreApplication::processEvents(QEventLoop::AllEvents); }
