// The main window. For now it carries the frame of the window: the title of the
// edition, the menu bar with the captions of menu.res, and a welcome area; the user
// list, the job screen and the polling of the reader join it as they are built.
#pragma once

#include <QLabel>
#include <QMainWindow>
#include <QMenu>

class frmTerminal : public QMainWindow {
  Q_OBJECT

 public:
  explicit frmTerminal(QWidget* parent = nullptr);

  // Menu entries, named as the screen's controls.
  QMenu* mnuMenuEdit = nullptr;
  QAction* mnuNewUser = nullptr;
  QAction* mnuEditUser = nullptr;
  QAction* mnuDeleteUser = nullptr;
  QMenu* mnuDisplay = nullptr;
  QAction* mnuNameAscend = nullptr;
  QAction* mnuNameDescend = nullptr;
  QAction* mnuRegistAscend = nullptr;
  QAction* mnuRegistDescend = nullptr;
  QMenu* mnuMenuJob = nullptr;
  QAction* mnuReceive = nullptr;
  QAction* mnuReport = nullptr;
  QMenu* mnuMenuMove = nullptr;
  QAction* mnuUserList = nullptr;
  QMenu* mnuMenuHelp = nullptr;
  QAction* mnuHelp = nullptr;
  QAction* mnuVersion = nullptr;
  QAction* mnuHealthyDiary = nullptr;
  QAction* mnuQuit = nullptr;

  QLabel* lblWelcome = nullptr;

 protected:
  void closeEvent(QCloseEvent* event) override;

 private:
  void buildMenus();
  void buildWelcome();
  void applyCommonLook();
};
