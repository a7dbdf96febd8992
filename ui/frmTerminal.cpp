#include "ui/frmTerminal.h"

#include <QAction>
#include <QActionGroup>
#include <QApplication>
#include <QCloseEvent>
#include <QDateEdit>
#include <QDir>
#include <QIcon>
#include <QKeyEvent>
#include <QLabel>
#include <QLayout>
#include <QListWidget>
#include <QStackedWidget>
#include <QToolButton>

#include "charts/make_chart.h"
#include "frame/catalogue.h"
#include "frame/config.h"
#include "frame/helpers.h"
#include "frame/shared_values.h"
#include "frame/trace.h"
#include "ui/form_look.h"
#include "ui/frmTerminal_parts.h"
#include "ui/ini_picture.h"
#include "ui/printing.h"
#include "ui/receive_screens.h"
#include "ui/startup.h"

using terminal::Caption;
using terminal::Trace0;

// ---------------------------------------------------------------- start

bool frmTerminal::Form_Load() {
  Trace0(QStringLiteral("Form_Load Start"));
  SetScreenState(kStateTop);
  btnReceive->setEnabled(GetRecorderHandled());
  if (!OpenWorkingDatabase(s_.db)) return false;
  if (!GetStartupDone()) {
    SetStartupDone(true);
    SetLoginUserId(Ini_GetLastUserId());
  } else {
    SetLoginUserId(QString());
  }
  SetCurrentGroupId(kDefaultGroupId);
  SetCurrentGroupName(GetGroupName(s_.db, kDefaultGroupId));
  SetUserSortOrder(static_cast<std::int16_t>(Ini_GetSortOrder()));

  // Files left in the temporary folder by an earlier run.
  QDir temp(Ini_GetTempDataPath());
  for (const QString& name : temp.entryList(QDir::Files | QDir::Hidden)) temp.remove(name);

  sizeWindow();
  loadPictures();
  btnReceive->setEnabled(GetRecorderHandled());
  for (QAction* a : sortGroup_->actions()) a->setChecked(a->data().toInt() == GetUserSortOrder());

  UserInfo remembered;
  const QString login = GetLoginUserId();
  if (!login.isEmpty() && GetUserInfo(s_.db, remembered, login) && !remembered.USER_ID.isEmpty()) {
    SetFocusState(kFocusUserSelect);
    SetCurrentUserId(login);
    ChangeMenu(login, true);
    EnterJobScreen();
  } else {
    SetScreenState(kStateUserSelect);
    SetFocusState(kFocusGroupSelect);
    SetCurrentUserId(QString());
    ChangeMenu(QString(), false);
    switchPanes();
    FillUserList(GetCurrentGroupId(), false);
    UpdateButtonState();
    UpdateMenuState(QString());
  }

  timerPolling->setInterval(std::max(1, Ini_GetPollingInterval()));
  timerPolling->start();
  return true;
}

void frmTerminal::setActions(Actions actions) {
  actions_ = std::move(actions);
  UpdateButtonState();
  UpdateMenuState(lastDataState_);
}

// ---------------------------------------------------------------- states

void frmTerminal::UpdateMenuState(const QString& dataState) {
  lastDataState_ = dataState;
  const MenuState m = MenuStateFor(GetScreenState(), GetFocusState(), groupHasUsers_,
                                   GetRecorderHandled(), dataState);
  mnuNewUser->setEnabled(m.newUser);
  mnuEditUser->setEnabled(m.editUser);
  mnuDeleteUser->setEnabled(m.deleteUser);
  for (QAction* a : sortGroup_->actions()) a->setEnabled(m.sort);
  mnuReceive->setEnabled(m.receive);
  mnuReport->setEnabled(m.report && static_cast<bool>(actions_.print));
  mnuUserList->setEnabled(m.userList);
  mnuBack->setEnabled(m.back);
  // Export needs a user to write; import registers users, so it belongs to the list.
  const bool userList = GetScreenState() == kStateUserSelect;
  mnuCsvExport->setEnabled(static_cast<bool>(actions_.csvExport) &&
                           ((userList && groupHasUsers_) || GetScreenState() == kStateJob));
  mnuCsvImport->setEnabled(static_cast<bool>(actions_.csvImport) && userList);
  // A backup reads the database as it is; a restore replaces it, so not while a receive
  // or another screen is at work.
  mnuBackup->setEnabled(static_cast<bool>(actions_.backup));
  mnuRestore->setEnabled(static_cast<bool>(actions_.restore) && !GetRecorderHandled());
  mnuHelp->setEnabled(static_cast<bool>(actions_.help));
  mnuVersion->setEnabled(static_cast<bool>(actions_.version));
  mnuHealthyDiary->setEnabled(static_cast<bool>(actions_.healthyDiary));
}

void frmTerminal::UpdateButtonState() {
  const ButtonState b = ButtonStateFor(GetScreenState(), GetFocusState(), GetRecorderHandled(), hasData_);
  btnBack->setEnabled(b.back);
  btnUserNew->setEnabled(b.userNew);
  btnUserEdit->setEnabled(b.userEdit);
  btnReceive->setEnabled(b.receive);
  btnPrint->setEnabled(b.print && static_cast<bool>(actions_.print));
  btnSimulation->setEnabled(hasData_ && static_cast<bool>(actions_.simulation));
}

void frmTerminal::checkData() {
  if (GetScreenState() != kStateJob) return;
  UpdateButtonState();
  UpdateMenuState(hasData_ ? QString() : kDataStateNoData);
}

void frmTerminal::switchPanes() {
  const bool job = GetScreenState() == kStateJob;
  faces_->setCurrentIndex(job ? 1 : 0);
  if (job) {
    setWindowTitle(Caption("CAPTION_USER_GRAPH_TITLE"));
  } else {
    setWindowTitle(Caption("CAPTION_USER_SELECT_TITLE"));
  }
}

// ---------------------------------------------------------------- user list

void frmTerminal::FillUserList(const QString& groupId, bool keepSelection) {
  ++fillCounter_;
  std::vector<UserInfo> users;
  const int count = GetUserList(s_.db, groupId, users);
  ApplySortOrder(users, GetUserSortOrder());
  const QString keep = keepSelection ? GetCurrentUserId() : QString();
  lvUserList->clear();
  QListWidgetItem* selected = nullptr;
  for (const UserInfo& u : users) {
    const int icon = std::clamp<int>(u.ICONINDEX, 0, 5) + 1;
    QPixmap picture;
    LoadIniPicture(QStringLiteral("VB_COMMON"), QStringLiteral("IMAGE_USERICON_%1").arg(icon), picture);
    auto* item = new QListWidgetItem(QIcon(picture), u.DisplayName, lvUserList);
    item->setData(Qt::UserRole, u.USER_ID);
    item->setToolTip(u.COMMENT.isEmpty() ? u.DisplayName : u.DisplayName + QLatin1Char('\n') + u.COMMENT);
    item->setTextAlignment(Qt::AlignHCenter | Qt::AlignTop);
    if (!keep.isEmpty() && u.USER_ID == keep) selected = item;
  }
  groupHasUsers_ = count > 0;
  lblNoUser->setVisible(!groupHasUsers_);
  if (selected) {
    lvUserList->setCurrentItem(selected);
    selected->setSelected(true);
    SetCurrentUserId(keep);
    SetFocusState(kFocusUserSelect);
  } else {
    lvUserList->setCurrentItem(nullptr);
    lvUserList->clearSelection();
    SetCurrentUserId(QString());
    SetFocusState(kFocusGroupSelect);
  }
  --fillCounter_;
  UpdateButtonState();
  UpdateMenuState(QString());
}

void frmTerminal::lvUserList_Click(QListWidgetItem* item) {
  if (fillCounter_ > 0 || GetScreenState() != kStateUserSelect) return;
  if (item) {
    SetCurrentUserId(item->data(Qt::UserRole).toString());
    SetFocusState(kFocusUserSelect);
  } else {
    SetCurrentUserId(QString());
    SetFocusState(kFocusGroupSelect);
  }
  UpdateButtonState();
  UpdateMenuState(QString());
}

void frmTerminal::lvUserList_DblClick(QListWidgetItem* item) {
  if (fillCounter_ > 0 || !item || GetScreenState() != kStateUserSelect) return;
  SetCurrentUserId(item->data(Qt::UserRole).toString());
  SetFocusState(kFocusUserSelect);
  ChangeMenu(GetCurrentUserId(), true);
  EnterJobScreen(true);
}

bool frmTerminal::eventFilter(QObject* watched, QEvent* event) {
  if (watched == lvUserList->viewport() && event->type() == QEvent::MouseButtonPress) {
    // A click on empty space clears the selected user.
    const auto* me = static_cast<QMouseEvent*>(event);
    if (!lvUserList->itemAt(me->position().toPoint())) {
      lvUserList->clearSelection();
      lvUserList->setCurrentItem(nullptr);
      lvUserList_Click(nullptr);
    }
  } else if (watched == lvUserList && event->type() == QEvent::KeyPress) {
    const auto* ke = static_cast<QKeyEvent*>(event);
    if ((ke->key() == Qt::Key_Return || ke->key() == Qt::Key_Enter) && lvUserList->currentItem()) {
      lvUserList_DblClick(lvUserList->currentItem());
      return true;
    }
  }
  return QMainWindow::eventFilter(watched, event);
}

void frmTerminal::mnuSort_Click(int order) {
  static const char* names[4] = {"mnuRegistAscend_Click Start", "mnuRegistDescend_Click Start",
                                 "mnuNameAscend_Click Start", "mnuNameDescend_Click Start"};
  Trace0(QString::fromLatin1(names[std::clamp(order, 0, 3)]));
  SetUserSortOrder(static_cast<std::int16_t>(order));
  Ini_SetSortOrder(order);
  for (QAction* a : sortGroup_->actions()) a->setChecked(a->data().toInt() == order);
  FillUserList(GetCurrentGroupId(), true);
}

// ---------------------------------------------------------------- name line

void frmTerminal::ChangeMenu(const QString& userId, bool resetDates) {
  UserInfo user;
  fullName_.clear();
  if (!userId.isEmpty() && GetUserInfo(s_.db, user, userId)) {
    fullName_ = NameLineText(user, IsEnglishEdition());
    SetCurrentUserName(fullName_);
  }
  lblSama->setVisible(!fullName_.isEmpty() && !IsEnglishEdition());
  lblUserNickName->setVisible(!fullName_.isEmpty());
  // With no user open the line greets and tells how a receive starts.
  lblWelcome->setVisible(fullName_.isEmpty());
  fitNameLine();
  if (resetDates) {
    const QSignalBlocker b1(dtDateStart);
    const QSignalBlocker b2(dtDateEnd);
    dtDateStart->setDate(QDate::currentDate());
    dtDateEnd->setDate(QDate::currentDate());
    range_.dtDateStart = QDate::currentDate();
    range_.dtDateEnd = QDate::currentDate();
    picPeriodArea->hide();
  }
}

void frmTerminal::fitNameLine() {
  const QMargins m = nameLine_->layout()->contentsMargins();
  int width = nameLine_->width() - m.left() - m.right();
  if (lblSama->isVisibleTo(nameLine_)) width -= lblSama->sizeHint().width() + nameLine_->layout()->spacing();
  const QFontMetrics fm(lblUserNickName->font());
  const QString text = CutToWidth(fullName_, std::max(0, width),
                                  [&fm](const QString& t) { return fm.horizontalAdvance(t); });
  lblUserNickName->setText(text);
}

// ---------------------------------------------------------------- the two faces

void frmTerminal::EnterJobScreen(bool fromDoubleClick) {
  if (fromDoubleClick) Trace0(QStringLiteral("Select UserID = ") + GetCurrentUserId());
  Ini_SetLastUserId(GetCurrentUserId());
  Ini_SetLastGroupId(GetCurrentGroupId());
  showJobScreen();
}

void frmTerminal::showJobScreen() {
  SetScreenState(kStateJob);
  switchPanes();
  Form_Resize();
  InitChartState();
  UpdateButtonState();
  UpdateMenuState(QString());
  checkData();
}

void frmTerminal::LeaveJobScreen() {
  SetScreenState(kStateUserSelect);
  switchPanes();
  const QString previous = GetCurrentUserId();
  ChangeMenu(QString(), false);
  FillUserList(GetCurrentGroupId(), false);
  for (int i = 0; i < lvUserList->count(); ++i) {
    QListWidgetItem* item = lvUserList->item(i);
    if (item->data(Qt::UserRole).toString() == previous) {
      lvUserList->setCurrentItem(item);
      item->setSelected(true);
      SetCurrentUserId(previous);
      SetFocusState(kFocusUserSelect);
      break;
    }
  }
  UpdateButtonState();
  UpdateMenuState(QString());
  lvUserList->setFocus();
}

void frmTerminal::mnuBack_Click() {
  Trace0(QStringLiteral("mnuBack_Click Start"));
  if (GetScreenState() != kStateUserSelect) LeaveJobScreen();
}

void frmTerminal::refreshJobScreen() {
  // The newest days were just stored: the view ends on them.
  ChangeMenu(GetCurrentUserId(), true);
  showJobScreen();
}

// ---------------------------------------------------------------- user screens

void frmTerminal::mnuNewUser_Click() {
  Trace0(QStringLiteral("mnuNewUser_Click Start"));
  SetCurrentUserId(QString());
  SetFocusState(kFocusGroupSelect);
  lvUserList->clearSelection();
  (void)s_.screens.registerUser(this);
  FillUserList(GetCurrentGroupId(), false);
}

void frmTerminal::mnuEditUser_Click() {
  Trace0(QStringLiteral("mnuEditUser_Click Start"));
  const QString userId = GetCurrentUserId();
  if (userId.isEmpty()) return;
  const bool saved = s_.screens.modifyUser(this, userId);
  if (GetScreenState() == kStateUserSelect) {
    FillUserList(GetCurrentGroupId(), true);
  } else if (saved) {
    ChangeMenu(userId, false);
    forceRebuild_ = true;
    if (hasData_) ReDrawChart(range_.chartKind);
  }
}

void frmTerminal::mnuDeleteUser_Click() {
  Trace0(QStringLiteral("mnuDeleteUser_Click Start"));
  (void)s_.screens.deleteUsers(this);
  FillUserList(GetCurrentGroupId(), true);
}

void frmTerminal::mnuReport_Click(bool fromButton) {
  Trace0(fromButton ? QStringLiteral("btnPrint_Click Start") : QStringLiteral("mnuReport_Click Start"));
  if (actions_.print) actions_.print(fromButton);
}

// ---------------------------------------------------------------- polling and receive

void frmTerminal::timerPolling_Timer() {
  if (inTick_) return;
  inTick_ = true;
  try {
    switch (PollingTick(s_.reader, s_.clock, device_, isMinimized())) {
      case TickAction::Nothing:
      case TickAction::Minimized:
        break;
      case TickAction::RecorderGone:
        btnReceive->setEnabled(false);
        UpdateButtonState();
        UpdateMenuState(lastDataState_);
        break;
      case TickAction::MarkedSeen:
      case TickAction::StillConnected:
        btnReceive->setEnabled(true);
        UpdateMenuState(lastDataState_);
        break;
      case TickAction::StartReceive:
        btnReceive->setEnabled(true);
        automaticReceive();
        break;
    }
  } catch (const std::exception& e) {
    MessageDialog(QStringLiteral("COMN-C-0001"), QStringLiteral("Polling Error: ") + QString::fromUtf8(e.what()), false);
  }
  inTick_ = false;
}

void frmTerminal::automaticReceive() {
  timerPolling->stop();
  SetReceiveRunning(true);
  if (GetScreenState() == kStateUserSelect) ChangeMenu(QString(), false);
  const bool received = runReceive();
  SetReceiveRunning(false);
  UsbClose(s_.reader, device_);
  if (GetScreenState() == kStateUserSelect) {
    FillUserList(GetCurrentGroupId(), false);
  } else if (received) {
    refreshJobScreen();
  }
  UpdateMenuState(lastDataState_);
  timerPolling->start();
}

void frmTerminal::ReceiveFromMenu() {
  const bool userList = GetScreenState() == kStateUserSelect;
  if (userList) ChangeMenu(QString(), false);
  else SetScreenState(kStateJob);
  timerPolling->stop();
  SetReceiveRunning(true);
  const bool received = runReceive();
  SetReceiveRunning(false);
  timerPolling->start();
  if (received) {
    refreshJobScreen();
  } else if (GetScreenState() == kStateUserSelect) {
    FillUserList(GetCurrentGroupId(), false);
  }
  UpdateMenuState(lastDataState_);
}

bool frmTerminal::runReceive() {
  ReceiveOnScreen screen(s_.db, s_.reader, s_.clock, s_.screens.receiveQuestions(this), this);
  const ReceiveReport report = screen.run();
  btnReceive->setEnabled(GetRecorderHandled());
  return report.ending == ReceiveEnding::Received;
}
// ---------------------------------------------------------------- window

void frmTerminal::Form_Resize() {
  fitNameLine();
  centreWaitNotice();
}

void frmTerminal::resizeEvent(QResizeEvent* event) {
  QMainWindow::resizeEvent(event);
  if (inResize_) return;
  inResize_ = true;
  Form_Resize();
  inResize_ = false;
}

void frmTerminal::RequestQuit() {
  Trace0(QStringLiteral("mnuQuit_Click Start"));
  const QWidgetList windows = QApplication::topLevelWidgets();
  for (auto it = windows.rbegin(); it != windows.rend(); ++it) {
    if (*it != this && (*it)->isVisible()) (*it)->close();
  }
  Q_EMIT quitRequested();
  close();
}

void frmTerminal::closeEvent(QCloseEvent* event) {
  // A receive under way ends through its cancel button, not by closing the window.
  if (GetReceiveRunning()) {
    event->ignore();
    return;
  }
  Q_EMIT queryClose(qApp->isSavingSession() ? 1 : 0);
  Trace0(QStringLiteral("Form_Unload Start"));
  deleteChartFiles();
  timerPolling->stop();
  // Release the reader: a handle that can still be opened is closed.
  const qint32 handle = s_.reader.Tavo_Open();
  if (handle != 0) s_.reader.Tavo_Close(handle);
  QMainWindow::closeEvent(event);
}
