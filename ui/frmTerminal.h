// The main window, with its two faces: the user list and the job screen of one user
// (period, position in time, one of seven graphs, the chart). It polls the reader on a
// timer and runs a receive when a new recorder is found. The decisions live in
// terminal_logic.h and charts/ranges.h; this class applies them to the widgets.
#pragma once

#include <QImage>
#include <QMainWindow>
#include <QTimer>
#include <array>
#include <functional>

#include "chartmaker/chartmaker.h"
#include "charts/ranges.h"
#include "receive/receive.h"
#include "ui/terminal_logic.h"

class QAbstractButton;
class QActionGroup;
class QDateEdit;
class QLabel;
class QListWidget;
class QListWidgetItem;
class QMenu;
class QStackedWidget;
class QToolButton;

// The screens that other parts of the program supply: the user screens and the
// questions of a receive. The desktop shows the real dialogs; tests script them.
class TerminalScreens {
 public:
  virtual ~TerminalScreens() = default;
  // frmUserRegist: the new user's USER_ID, "" when cancelled.
  virtual QString registerUser(QWidget* parent) = 0;
  // frmUserModify of the user: true when saved.
  virtual bool modifyUser(QWidget* parent, const QString& userId) = 0;
  // frmUserDelete: true when at least one user was deleted.
  virtual bool deleteUsers(QWidget* parent) = 0;
  // The questions between the two stages of a receive, shown over parent.
  virtual ReceiveQuestions& receiveQuestions(QWidget* parent) = 0;
};

// The picture area of the chart: the chart library draws into it, and paints the last
// chart again at the new size when the area is resized or the screen's pixel ratio
// changes. Drawn at the device pixel ratio, so the chart is sharp on HiDPI screens.
class ChartView : public QWidget, public ChartSurface {
  Q_OBJECT
 public:
  ChartView(ChartMaker& maker, QWidget* parent);
  ~ChartView() override;
  QSize chartSize() const override { return size(); }
  qreal chartDevicePixelRatio() const override { return devicePixelRatioF(); }
  void showChart(const QImage& image) override;
  void clearChart();
  const QImage& image() const { return image_; }

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  ChartMaker& maker_;
  QImage image_;
  bool painting_ = false;
};

// What the window works with. clock carries the reader protocol's waits (an
// EventLoopDeviceClock keeps the window alive during them).
struct TerminalServices {
  VtDatabase& db;
  ChartMaker& chart;
  TavoReader& reader;
  DeviceClock& clock;
  TerminalScreens& screens;
};

class frmTerminal : public QMainWindow {
  Q_OBJECT

 public:
  explicit frmTerminal(const TerminalServices& services, QWidget* parent = nullptr);
  ~frmTerminal() override;

  // The preparation of the screen at start: opens the working connection, reads the
  // remembered user, the group and the sort order, empties the temporary folder, sizes
  // the window, and opens the remembered user's charts or the user list, then starts
  // polling. False when the working connection cannot be opened (the process ends).
  bool Form_Load();

  // Shows the user's name in the name line; with resetDates both pickers go to today.
  void ChangeMenu(const QString& userId, bool resetDates);
  // Makes (or reuses) the chart files of the chart on show and draws them.
  void ReDrawChart(int kind, bool printFlag = false);
  void Form_Resize();
  void EnterJobScreen(bool fromDoubleClick = false);
  void LeaveJobScreen();
  void FillUserList(const QString& groupId, bool keepSelection);
  void UpdateMenuState(const QString& dataState);
  void UpdateButtonState();
  void ReceiveFromMenu();
  // The user's stop (mnuQuit): closes the other open screens, then this window.
  void RequestQuit();

  // The actions other parts of the program bring. An entry without its action stays
  // disabled; setting one enables the entry where the screen's state allows it.
  struct Actions {
    std::function<void(bool fromButton)> print;  // mnuReport, btnPrint (chart files are on show)
    // The print path of a redraw: the chart's files on the configured printer.
    std::function<void(const QString& headerFile, const QString& interfaceFile)> printFiles;
    std::function<void()> backup;                // mnuBackup
    std::function<bool()> restore;               // mnuRestore; true when the data were replaced
    std::function<void()> help;                  // mnuHelp
    std::function<void()> version;               // mnuVersion
    std::function<void()> healthyDiary;          // mnuHealthyDiary
    std::function<void()> simulation;            // btnSimulation
    std::function<void()> csvExport;             // mnuCsvExport (the current user, if any)
    std::function<void()> csvImport;             // mnuCsvImport; the list is filled again after it
  };
  void setActions(Actions actions);

  // The files of the chart on show ("" when none).
  QString headerFile() const { return headerFile_; }
  QString interfaceFile() const { return interfaceFile_; }
  const charts::RangeState& rangeState() const { return range_; }

  // Menu entries, named as the screen's controls.
  QMenu* mnuMenuEdit = nullptr;
  QAction* mnuNewUser = nullptr;
  QAction* mnuEditUser = nullptr;
  QAction* mnuDeleteUser = nullptr;
  QAction* mnuBackup = nullptr;
  QAction* mnuRestore = nullptr;
  QMenu* mnuDisplay = nullptr;
  QAction* mnuNameAscend = nullptr;
  QAction* mnuNameDescend = nullptr;
  QAction* mnuRegistAscend = nullptr;
  QAction* mnuRegistDescend = nullptr;
  QMenu* mnuMenuJob = nullptr;
  QAction* mnuReceive = nullptr;
  QAction* mnuReport = nullptr;
  QAction* mnuCsvExport = nullptr;
  QAction* mnuCsvImport = nullptr;
  QMenu* mnuMenuMove = nullptr;
  QAction* mnuUserList = nullptr;
  QAction* mnuBack = nullptr;
  QMenu* mnuMenuHelp = nullptr;
  QAction* mnuHelp = nullptr;
  QAction* mnuVersion = nullptr;
  QAction* mnuHealthyDiary = nullptr;
  QAction* mnuQuit = nullptr;

  // Button bar.
  QToolButton* btnBack = nullptr;
  QToolButton* btnUserNew = nullptr;
  QToolButton* btnUserEdit = nullptr;
  QToolButton* btnReceive = nullptr;
  QToolButton* btnPrint = nullptr;
  // Name line.
  QLabel* lblUserNickName = nullptr;
  QLabel* lblSama = nullptr;
  QLabel* lblWelcome = nullptr;
  // User list.
  QListWidget* lvUserList = nullptr;
  QLabel* lblNoUser = nullptr;
  // Period and date pane.
  QWidget* picPeriodArea = nullptr;
  QWidget* picDateBtnArea = nullptr;
  QToolButton* btnDay = nullptr;
  QToolButton* btnWeek = nullptr;
  QToolButton* btnMonth = nullptr;
  QToolButton* btnSixMonths = nullptr;
  QToolButton* btnDateBack = nullptr;
  QToolButton* btnDateNext = nullptr;
  QToolButton* btnDateLatest = nullptr;
  QDateEdit* dtDateStart = nullptr;
  QDateEdit* dtDateEnd = nullptr;
  QToolButton* btnDateUpdate = nullptr;
  QLabel* lblDispChartRange = nullptr;
  QLabel* lblDispChartOneday = nullptr;
  // Graph pane.
  QWidget* picGraphBtn = nullptr;
  std::array<QToolButton*, 7> btnGraph{};
  QToolButton* btnSimulation = nullptr;
  // Chart and wait notice.
  QWidget* picGraph = nullptr;
  QWidget* pictureContena = nullptr;
  ChartView* pictureContents = nullptr;
  QWidget* WaitPicture = nullptr;
  QLabel* lblWait = nullptr;

  QTimer* timerPolling = nullptr;

 Q_SIGNALS:
  // The user asked to stop (Quit menu or the window's close button): the closing
  // stages compact the database and finish the chart library.
  void quitRequested();
  // The window is closing (mode 0: closed by the user, 1: by the session ending): the
  // closing stages close the working connection. Not sent while a receive runs, since
  // the window does not close then.
  void queryClose(int mode);
  // The screen has drawn a chart (tests and benchmarks wait on it).
  void chartDrawn(int kind, int result);

 protected:
  void closeEvent(QCloseEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void buildMenus();
  void buildPanes();
  QWidget* buildButtonBar();
  QWidget* buildNameLine();
  QWidget* buildJobScreen();
  void applyCommonLook();
  void loadPictures();
  void sizeWindow();

  void timerPolling_Timer();
  void automaticReceive();
  bool runReceive();
  void refreshJobScreen();
  void showJobScreen();

  void mnuNewUser_Click();
  void mnuEditUser_Click();
  void mnuDeleteUser_Click();
  void mnuSort_Click(int order);
  void mnuReport_Click(bool fromButton);
  void mnuBack_Click();
  void lvUserList_Click(QListWidgetItem* item);
  void lvUserList_DblClick(QListWidgetItem* item);

  void InitChartState();
  void periodButton_Click(int period);
  void graphButton_Click(int graphIndex);
  void dateButton_Click(int mode);
  void btnDateUpdate_Click();
  void dtDateEnd_Change();
  void dtDateStart_Change();
  void syncPickers();
  void showButtonStates();
  void checkData();
  void switchPanes();
  void setJobPanesEnabled(bool enabled);
  void deleteChartFiles();
  void fitNameLine();
  void centreWaitNotice();

  TerminalServices s_;
  Actions actions_;
  QStackedWidget* faces_ = nullptr;
  QWidget* nameLine_ = nullptr;
  QActionGroup* sortGroup_ = nullptr;
  DeviceState device_;
  charts::RangeState range_;
  QString fullName_;
  QString headerFile_;
  QString interfaceFile_;
  int lastKind_ = 0;
  QDate lastFrom_;
  QDate lastTo_;
  bool forceRebuild_ = false;
  bool groupHasUsers_ = false;
  bool hasData_ = false;
  int fillCounter_ = 0;
  int busyCounter_ = 0;
  bool inTick_ = false;
  bool inResize_ = false;
  QString lastDataState_;
};
