// The main window's construction: menus, the button bar, the name line, the two faces
// and their pictures, and the first size.
#include "ui/frmTerminal.h"

#include <QGuiApplication>
#include <QAction>
#include <QActionGroup>
#include <QDateEdit>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QIcon>
#include <QLabel>
#include <QListWidget>
#include <QMenuBar>
#include <QScreen>
#include <QStackedWidget>
#include <QToolButton>
#include <QVBoxLayout>

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

namespace {

using terminal::Caption;
using terminal::Trace0;

QColor FromVbColor(std::uint32_t c) {
  return QColor(static_cast<int>(c & 0xff), static_cast<int>((c >> 8) & 0xff),
                static_cast<int>((c >> 16) & 0xff));
}

void Fill(QWidget* w, const QString& colourKey) {
  const std::uint32_t c = GetIniBackColor(terminal::Section(), colourKey);
  if (c == 0) return;
  QPalette pal = w->palette();
  pal.setColor(QPalette::Window, FromVbColor(c));
  w->setPalette(pal);
  w->setAutoFillBackground(true);
}

// The window size class of a work area: "2" from 1280x1024, "1" from 1024x768, else "0".
QString ScreenClassOf(const QSize& area) {
  if (area.width() >= 1280 && area.height() >= 1024) return QStringLiteral("2");
  if (area.width() >= 1024 && area.height() >= 768) return QStringLiteral("1");
  return QStringLiteral("0");
}

QString ScreenClassSuffix() {
  const QString c = GetScreenClass();
  if (c == QLatin1String("2")) return QStringLiteral("SXGA");
  if (c == QLatin1String("1")) return QStringLiteral("XGA");
  return QStringLiteral("SVGA");
}

// A date as the screen shows it. The configured form escapes literal characters with a

// A button with an up and a down picture: the down picture shows while it is checked.
QToolButton* PictureButton(QWidget* parent, const char* name, const QString& caption,
                           const QString& tooltip, int iconSize) {
  auto* b = new QToolButton(parent);
  b->setObjectName(QString::fromLatin1(name));
  b->setText(caption);
  if (!tooltip.isEmpty()) b->setToolTip(tooltip);
  b->setToolButtonStyle(caption.isEmpty() ? Qt::ToolButtonIconOnly : Qt::ToolButtonTextUnderIcon);
  b->setIconSize(QSize(iconSize, iconSize));
  b->setAutoRaise(true);
  b->setFocusPolicy(Qt::StrongFocus);
  return b;
}

void SetPictures(QToolButton* b, const QString& upKey, const QString& downKey) {
  QPixmap up;
  QPixmap down;
  const bool hasUp = LoadIniPicture(terminal::Section(), upKey, up);
  const bool hasDown = LoadIniPicture(terminal::Section(), downKey, down);
  if (!hasUp && !hasDown) return;
  QIcon icon;
  if (hasUp) icon.addPixmap(up, QIcon::Normal, QIcon::Off);
  icon.addPixmap(hasDown ? down : up, QIcon::Normal, QIcon::On);
  b->setIcon(icon);
}

}  // namespace

frmTerminal::frmTerminal(const TerminalServices& services, QWidget* parent)
    : QMainWindow(parent), s_(services) {
  setObjectName(terminal::FormName());
  const QString icon = GetIniPicturePath(QStringLiteral("VB_COMMON"), QStringLiteral("FORM_ICON"));
  if (!icon.isEmpty()) setWindowIcon(QIcon(icon));
  setWindowTitle(Caption("CAPTION_TITLE"));
  buildMenus();
  buildPanes();
  applyCommonLook();
  timerPolling = new QTimer(this);
  timerPolling->setObjectName(QStringLiteral("timerPolling"));
  connect(timerPolling, &QTimer::timeout, this, [this] { timerPolling_Timer(); });
}

frmTerminal::~frmTerminal() { deleteChartFiles(); }

void frmTerminal::buildMenus() {
  auto menu = [this](QMenu*& m, const char* name, const char* key) {
    m = menuBar()->addMenu(GetMenuCaption(QString::fromLatin1(key)));
    m->setObjectName(QString::fromLatin1(name));
  };
  auto entry = [](QMenu* m, QAction*& a, const char* name, const char* key) {
    a = m->addAction(GetMenuCaption(QString::fromLatin1(key)));
    a->setObjectName(QString::fromLatin1(name));
  };
  menu(mnuMenuEdit, "mnuMenuEdit", "MENU_EDIT");
  entry(mnuMenuEdit, mnuNewUser, "mnuNewUser", "MENU_EDIT_NEW_USER");
  entry(mnuMenuEdit, mnuEditUser, "mnuEditUser", "MENU_EDIT_EDIT_USER");
  entry(mnuMenuEdit, mnuDeleteUser, "mnuDeleteUser", "MENU_EDIT_DELETE_USER");
  mnuMenuEdit->addSeparator();
  entry(mnuMenuEdit, mnuBackup, "mnuBackup", "MENU_EDIT_BACKUP");
  entry(mnuMenuEdit, mnuRestore, "mnuRestore", "MENU_EDIT_RESTORE");
  mnuMenuEdit->addSeparator();
  entry(mnuMenuEdit, mnuQuit, "mnuQuit", "MENU_QUIT");

  menu(mnuDisplay, "mnuDisplay", "MENU_DISPLAY");
  entry(mnuDisplay, mnuNameAscend, "mnuNameAscend", "MENU_DISPLAY_ALPHABET_ASC");
  entry(mnuDisplay, mnuNameDescend, "mnuNameDescend", "MENU_DISPLAY_ALPHABET_DESC");
  entry(mnuDisplay, mnuRegistAscend, "mnuRegistAscend", "MENU_DISPLAY_REG_ASC");
  entry(mnuDisplay, mnuRegistDescend, "mnuRegistDescend", "MENU_DISPLAY_REG_DESC");
  sortGroup_ = new QActionGroup(this);
  const std::array<std::pair<QAction*, int>, 4> sorts{{{mnuRegistAscend, kSortRegistAscend},
                                                       {mnuRegistDescend, kSortRegistDescend},
                                                       {mnuNameAscend, kSortNameAscend},
                                                       {mnuNameDescend, kSortNameDescend}}};
  for (const auto& [action, order] : sorts) {
    action->setCheckable(true);
    action->setData(order);
    sortGroup_->addAction(action);
    connect(action, &QAction::triggered, this, [this, order = order] { mnuSort_Click(order); });
  }

  menu(mnuMenuJob, "mnuMenuJob", "MENU_JOB");
  entry(mnuMenuJob, mnuReceive, "mnuReceive", "MENU_JOB_DOWNLOAD");
  entry(mnuMenuJob, mnuReport, "mnuReport", "MENU_JOB_REPORT");
  mnuMenuJob->addSeparator();
  entry(mnuMenuJob, mnuCsvExport, "mnuCsvExport", "MENU_JOB_CSV_EXPORT");
  entry(mnuMenuJob, mnuCsvImport, "mnuCsvImport", "MENU_JOB_CSV_IMPORT");

  menu(mnuMenuMove, "mnuMenuMove", "MENU_MOVE");
  entry(mnuMenuMove, mnuUserList, "mnuUserList", "MENU_MOVE_USERLIST");
  // mnuBack has no caption of its own: the back button's, reached by the Back key.
  mnuBack = new QAction(Caption("CAPTION_BTNBACK"), this);
  mnuBack->setObjectName(QStringLiteral("mnuBack"));
  mnuBack->setShortcut(QKeySequence::Back);
  addAction(mnuBack);

  menu(mnuMenuHelp, "mnuMenuHelp", "MENU_HELP");
  entry(mnuMenuHelp, mnuHelp, "mnuHelp", "MENU_HELP_HELP");
  entry(mnuMenuHelp, mnuHealthyDiary, "mnuHealthyDiary", "MENU_HEALTHYDIARY");
  entry(mnuMenuHelp, mnuVersion, "mnuVersion", "MENU_HELP_VERSION");

  connect(mnuNewUser, &QAction::triggered, this, [this] { mnuNewUser_Click(); });
  connect(mnuEditUser, &QAction::triggered, this, [this] { mnuEditUser_Click(); });
  connect(mnuDeleteUser, &QAction::triggered, this, [this] { mnuDeleteUser_Click(); });
  connect(mnuReceive, &QAction::triggered, this, [this] {
    Trace0(QStringLiteral("mnuReceive_Click Start"));
    ReceiveFromMenu();
  });
  connect(mnuReport, &QAction::triggered, this, [this] { mnuReport_Click(false); });
  connect(mnuCsvExport, &QAction::triggered, this, [this] {
    Trace0(QStringLiteral("mnuCsvExport_Click Start"));
    if (actions_.csvExport) actions_.csvExport();
  });
  connect(mnuCsvImport, &QAction::triggered, this, [this] {
    Trace0(QStringLiteral("mnuCsvImport_Click Start"));
    if (!actions_.csvImport) return;
    actions_.csvImport();
    if (GetScreenState() == kStateUserSelect) FillUserList(GetCurrentGroupId(), true);
  });
  connect(mnuUserList, &QAction::triggered, this, [this] {
    Trace0(QStringLiteral("mnuUserList_Click Start"));
    LeaveJobScreen();
  });
  connect(mnuBack, &QAction::triggered, this, [this] { mnuBack_Click(); });
  connect(mnuHelp, &QAction::triggered, this, [this] {
    if (actions_.help) actions_.help();
  });
  connect(mnuVersion, &QAction::triggered, this, [this] {
    if (actions_.version) actions_.version();
  });
  connect(mnuHealthyDiary, &QAction::triggered, this, [this] {
    if (actions_.healthyDiary) actions_.healthyDiary();
  });
  connect(mnuBackup, &QAction::triggered, this, [this] {
    Trace0(QStringLiteral("mnuBackup_Click Start"));
    if (actions_.backup) actions_.backup();
  });
  connect(mnuRestore, &QAction::triggered, this, [this] {
    Trace0(QStringLiteral("mnuRestore_Click Start"));
    if (!actions_.restore || !actions_.restore()) return;
    // Other data: the user on show may be gone, so the list is shown afresh.
    deleteChartFiles();
    lastKind_ = 0;
    if (GetScreenState() == kStateJob) LeaveJobScreen();
    FillUserList(GetCurrentGroupId(), false);
  });
  connect(mnuQuit, &QAction::triggered, this, [this] { RequestQuit(); });
}

QWidget* frmTerminal::buildButtonBar() {
  auto* bar = new QWidget(this);
  bar->setObjectName(QStringLiteral("picButtonBar"));
  auto* row = new QHBoxLayout(bar);
  row->setContentsMargins(10, 6, 10, 6);
  row->setSpacing(6);
  btnBack = PictureButton(bar, "btnBack", Caption("CAPTION_BTNBACK"), Caption("CAPTION_TOOLTIP_BACK"), 40);
  btnUserNew = PictureButton(bar, "btnUserNew", Caption("CAPTION_BTNUSERNEW"), Caption("CAPTION_TOOLTIP_USERNEW"), 40);
  btnUserEdit = PictureButton(bar, "btnUserEdit", Caption("CAPTION_BTNUSEREDIT"), Caption("CAPTION_TOOLTIP_USEREDIT"), 40);
  btnReceive = PictureButton(bar, "btnReceive", Caption("CAPTION_BTNRECEIVE"), Caption("CAPTION_TOOLTIP_RECEIVE"), 40);
  btnPrint = PictureButton(bar, "btnPrint", Caption("CAPTION_BTNPRINT"), Caption("CAPTION_TOOLTIP_PRINT"), 40);
  for (QToolButton* b : {btnBack, btnUserNew, btnUserEdit, btnReceive, btnPrint}) {
    b->setMinimumWidth(84);
    row->addWidget(b);
  }
  row->addStretch(1);
  connect(btnBack, &QToolButton::clicked, this, [this] { mnuBack_Click(); });
  connect(btnUserNew, &QToolButton::clicked, this, [this] { mnuNewUser_Click(); });
  connect(btnUserEdit, &QToolButton::clicked, this, [this] { mnuEditUser_Click(); });
  connect(btnReceive, &QToolButton::clicked, this, [this] {
    Trace0(QStringLiteral("btnReceive_Click Start"));
    ReceiveFromMenu();
  });
  connect(btnPrint, &QToolButton::clicked, this, [this] { mnuReport_Click(true); });
  return bar;
}

QWidget* frmTerminal::buildNameLine() {
  nameLine_ = new QWidget(this);
  nameLine_->setObjectName(QStringLiteral("picNameLine"));
  Fill(nameLine_, QStringLiteral("BKCOLOUR_NAMELINE"));
  auto* row = new QHBoxLayout(nameLine_);
  row->setContentsMargins(16, 6, 16, 6);
  row->setSpacing(6);
  lblUserNickName = new QLabel(nameLine_);
  lblUserNickName->setObjectName(QStringLiteral("lblUserNickName"));
  QFont big = lblUserNickName->font();
  big.setPointSizeF(big.pointSizeF() * 1.6);
  big.setBold(true);
  lblUserNickName->setFont(big);
  // The line cuts the name to the width it has; the label never asks for more.
  lblUserNickName->setMinimumWidth(1);
  lblSama = new QLabel(Caption("CAPTION_LBLSAMA"), nameLine_);
  lblSama->setObjectName(QStringLiteral("lblSama"));
  QFont sama = lblSama->font();
  sama.setPointSizeF(sama.pointSizeF() * 1.3);
  lblSama->setFont(sama);
  lblWelcome = new QLabel(Caption("CAPTION_LBLWELCOME"), nameLine_);
  lblWelcome->setObjectName(QStringLiteral("lblWelcome"));
  lblWelcome->setMinimumWidth(1);
  QFont welcome = lblWelcome->font();
  welcome.setPointSizeF(welcome.pointSizeF() * 1.15);
  lblWelcome->setFont(welcome);
  row->addWidget(lblUserNickName, 0);
  row->addWidget(lblSama, 0, Qt::AlignBottom);
  // The welcome line takes the whole width while it shows; otherwise the spacer keeps the
  // name and its honorific together on the left.
  row->addWidget(lblWelcome, 1);
  row->addStretch(0);
  lblSama->hide();
  return nameLine_;
}

QWidget* frmTerminal::buildJobScreen() {
  auto* job = new QWidget(this);
  job->setObjectName(QStringLiteral("picJob"));
  auto* outer = new QHBoxLayout(job);
  outer->setContentsMargins(0, 0, 0, 0);
  outer->setSpacing(0);

  // Graph pane on the left.
  picGraphBtn = new QWidget(job);
  picGraphBtn->setObjectName(QStringLiteral("picGraphBtn"));
  Fill(picGraphBtn, QStringLiteral("BKCOLOUR_GRAPHBTN"));
  auto* graphs = new QVBoxLayout(picGraphBtn);
  graphs->setContentsMargins(8, 10, 8, 10);
  graphs->setSpacing(4);
  const char* graphNames[7] = {"btnGraph1", "btnGraph2", "btnGraph3", "btnGraph4",
                               "btnGraph5", "btnGraph6", "btnGraph7"};
  const int graphIndexes[7] = {0, 1, 2, 3, 4, 5, 7};
  for (int i = 0; i < 7; ++i) {
    const QString caption = Caption(QStringLiteral("CAPTION_BTNGRAPH%1").arg(i + 1).toLatin1().constData());
    btnGraph[i] = PictureButton(picGraphBtn, graphNames[i], caption, QString(), 32);
    btnGraph[i]->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    btnGraph[i]->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    btnGraph[i]->setCheckable(true);
    graphs->addWidget(btnGraph[i]);
    connect(btnGraph[i], &QToolButton::clicked, this,
            [this, index = graphIndexes[i]] { graphButton_Click(index); });
  }
  graphs->addStretch(1);
  btnSimulation = PictureButton(picGraphBtn, "btnSimulation", Caption("CAPTION_BTNSIMULATION"), QString(), 32);
  btnSimulation->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
  btnSimulation->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
  graphs->addWidget(btnSimulation);
  connect(btnSimulation, &QToolButton::clicked, this, [this] {
    Trace0(QStringLiteral("btnSimulation_Click Start"));
    if (actions_.simulation) actions_.simulation();
  });
  outer->addWidget(picGraphBtn);

  auto* right = new QVBoxLayout;
  right->setContentsMargins(0, 0, 0, 0);
  right->setSpacing(0);
  outer->addLayout(right, 1);

  // Period and date pane on top.
  picPeriodArea = new QWidget(job);
  picPeriodArea->setObjectName(QStringLiteral("picPeriodArea"));
  Fill(picPeriodArea, QStringLiteral("BKCOLOUR_PERIODAREA"));
  auto* period = new QHBoxLayout(picPeriodArea);
  period->setContentsMargins(10, 4, 10, 4);
  period->setSpacing(4);
  btnDay = PictureButton(picPeriodArea, "btnDay", Caption("CAPTION_BTNDAY"), QString(), 28);
  btnWeek = PictureButton(picPeriodArea, "btnWeek", Caption("CAPTION_BTNWEEK"), QString(), 28);
  btnMonth = PictureButton(picPeriodArea, "btnMonth", Caption("CAPTION_BTNMONTH"), QString(), 28);
  btnSixMonths = PictureButton(picPeriodArea, "btnSixMonths", Caption("CAPTION_BTNSIXMONTHS"), QString(), 28);
  const std::array<std::pair<QToolButton*, int>, 4> periods{{{btnDay, charts::kPeriodDay},
                                                             {btnWeek, charts::kPeriodWeek},
                                                             {btnMonth, charts::kPeriodMonth},
                                                             {btnSixMonths, charts::kPeriodSixMonths}}};
  for (const auto& [b, p] : periods) {
    b->setCheckable(true);
    b->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    period->addWidget(b);
    connect(b, &QToolButton::clicked, this, [this, p = p] { periodButton_Click(p); });
  }
  period->addStretch(1);

  picDateBtnArea = new QWidget(picPeriodArea);
  picDateBtnArea->setObjectName(QStringLiteral("picDateBtnArea"));
  auto* dates = new QHBoxLayout(picDateBtnArea);
  dates->setContentsMargins(0, 0, 0, 0);
  dates->setSpacing(4);
  btnDateBack = PictureButton(picDateBtnArea, "btnDateBack", QString(), Caption("CAPTION_TOOLTIP_DATEBACK"), 28);
  btnDateNext = PictureButton(picDateBtnArea, "btnDateNext", QString(), Caption("CAPTION_TOOLTIP_DATENEXT"), 28);
  btnDateLatest = PictureButton(picDateBtnArea, "btnDateLatest", QString(), Caption("CAPTION_TOOLTIP_DATELATEST"), 28);
  for (QWidget* w : std::initializer_list<QWidget*>{btnDateBack, btnDateNext, btnDateLatest}) dates->addWidget(w);
  period->addWidget(picDateBtnArea);
  right->addWidget(picPeriodArea);

  // The range line above the chart: what is shown, and the two pickers to choose it.
  auto* rangeLine = new QHBoxLayout;
  rangeLine->setContentsMargins(14, 6, 14, 2);
  rangeLine->setSpacing(6);
  lblDispChartRange = new QLabel(job);
  lblDispChartRange->setObjectName(QStringLiteral("lblDispChartRange"));
  lblDispChartOneday = new QLabel(job);
  lblDispChartOneday->setObjectName(QStringLiteral("lblDispChartOneday"));
  rangeLine->addWidget(lblDispChartRange);
  rangeLine->addWidget(lblDispChartOneday);
  rangeLine->addStretch(1);
  const QString format = GetCommonDateFormat().isEmpty() ? QStringLiteral("yyyy/MM/dd") : GetCommonDateFormat();
  dtDateStart = new QDateEdit(job);
  dtDateStart->setObjectName(QStringLiteral("dtDateStart"));
  dtDateEnd = new QDateEdit(job);
  dtDateEnd->setObjectName(QStringLiteral("dtDateEnd"));
  for (QDateEdit* d : {dtDateStart, dtDateEnd}) {
    d->setDisplayFormat(format);
    d->setCalendarPopup(true);
    d->setKeyboardTracking(false);
  }
  auto* to = new QLabel(Caption("CAPTION_LBLCHARTTO"), job);
  btnDateUpdate = PictureButton(job, "btnDateUpdate", QString(), Caption("CAPTION_TOOLTIP_DATEUPDATE"), 24);
  rangeLine->addWidget(dtDateStart);
  rangeLine->addWidget(to);
  rangeLine->addWidget(dtDateEnd);
  rangeLine->addWidget(btnDateUpdate);
  right->addLayout(rangeLine);

  connect(btnDateBack, &QToolButton::clicked, this, [this] { dateButton_Click(charts::kAdjustBack); });
  connect(btnDateNext, &QToolButton::clicked, this, [this] { dateButton_Click(charts::kAdjustNext); });
  connect(btnDateLatest, &QToolButton::clicked, this, [this] { dateButton_Click(charts::kAdjustLatest); });
  connect(btnDateUpdate, &QToolButton::clicked, this, [this] { btnDateUpdate_Click(); });
  connect(dtDateEnd, &QDateEdit::dateChanged, this, [this] { dtDateEnd_Change(); });
  connect(dtDateStart, &QDateEdit::dateChanged, this, [this] { dtDateStart_Change(); });

  // The chart.
  picGraph = new QWidget(job);
  picGraph->setObjectName(QStringLiteral("picGraph"));
  auto* graphBox = new QVBoxLayout(picGraph);
  graphBox->setContentsMargins(10, 4, 10, 10);
  pictureContena = new QWidget(picGraph);
  pictureContena->setObjectName(QStringLiteral("pictureContena"));
  auto* contena = new QVBoxLayout(pictureContena);
  contena->setContentsMargins(0, 0, 0, 0);
  pictureContents = new ChartView(s_.chart, pictureContena);
  contena->addWidget(pictureContents);
  graphBox->addWidget(pictureContena);
  right->addWidget(picGraph, 1);

  // The wait notice floats over the chart while one is being made.
  WaitPicture = new QWidget(picGraph);
  WaitPicture->setObjectName(QStringLiteral("WaitPicture"));
  WaitPicture->setAttribute(Qt::WA_StyledBackground);
  WaitPicture->setStyleSheet(QStringLiteral("#WaitPicture { background: white; border: 1px solid #b9c6d3; border-radius: 6px; }"));
  auto* wait = new QHBoxLayout(WaitPicture);
  wait->setContentsMargins(16, 12, 16, 12);
  auto* waitIcon = new QLabel(WaitPicture);
  waitIcon->setObjectName(QStringLiteral("imgWait"));
  SetIniPicture(*waitIcon, terminal::Section(), QStringLiteral("IMAGE_WAIT"));
  lblWait = new QLabel(Caption("CAPTION_LBLWAIT"), WaitPicture);
  lblWait->setObjectName(QStringLiteral("lblWait"));
  wait->addWidget(waitIcon);
  wait->addWidget(lblWait);
  WaitPicture->hide();
  return job;
}

void frmTerminal::buildPanes() {
  auto* central = new QWidget(this);
  central->setObjectName(QStringLiteral("picBack"));
  auto* column = new QVBoxLayout(central);
  column->setContentsMargins(0, 0, 0, 0);
  column->setSpacing(0);
  column->addWidget(buildButtonBar());
  column->addWidget(buildNameLine());

  faces_ = new QStackedWidget(central);
  auto* listFace = new QWidget(faces_);
  auto* listBox = new QVBoxLayout(listFace);
  listBox->setContentsMargins(16, 12, 16, 12);
  lvUserList = new QListWidget(listFace);
  lvUserList->setObjectName(QStringLiteral("lvUserList"));
  lvUserList->setViewMode(QListView::IconMode);
  lvUserList->setIconSize(QSize(96, 96));
  lvUserList->setGridSize(QSize(190, 170));
  lvUserList->setResizeMode(QListView::Adjust);
  lvUserList->setMovement(QListView::Static);
  lvUserList->setWordWrap(true);
  lvUserList->setSpacing(8);
  lvUserList->setUniformItemSizes(true);
  QFont listFont = lvUserList->font();
  listFont.setPointSizeF(listFont.pointSizeF() * 1.5);
  lvUserList->setFont(listFont);
  lvUserList->viewport()->installEventFilter(this);
  lvUserList->installEventFilter(this);
  lblNoUser = new QLabel(Caption("CAPTION_LBLNOUSER"), listFace);
  lblNoUser->setObjectName(QStringLiteral("lblNoUser"));
  lblNoUser->setAlignment(Qt::AlignCenter);
  lblNoUser->setWordWrap(true);
  QFont hint = lblNoUser->font();
  hint.setPointSizeF(hint.pointSizeF() * 1.3);
  lblNoUser->setFont(hint);
  listBox->addWidget(lblNoUser);
  listBox->addWidget(lvUserList, 1);
  connect(lvUserList, &QListWidget::itemClicked, this, [this](QListWidgetItem* i) { lvUserList_Click(i); });
  connect(lvUserList, &QListWidget::itemDoubleClicked, this, [this](QListWidgetItem* i) { lvUserList_DblClick(i); });
  connect(lvUserList, &QListWidget::currentItemChanged, this,
          [this](QListWidgetItem* i, QListWidgetItem*) { lvUserList_Click(i); });
  faces_->addWidget(listFace);
  faces_->addWidget(buildJobScreen());
  column->addWidget(faces_, 1);
  setCentralWidget(central);
}

void frmTerminal::applyCommonLook() {
  ApplyCommonFormLook(*this);
  // The pickers show their whole date at any window width.
  for (QDateEdit* d : {dtDateStart, dtDateEnd}) {
    d->ensurePolished();
    d->setMinimumWidth(d->sizeHint().width() + 6);
  }
}

void frmTerminal::loadPictures() {
  const QString sfx = ScreenClassSuffix();
  SetPictures(btnBack, QStringLiteral("IMAGE_BACK_UP"), QStringLiteral("IMAGE_BACK_DOWN"));
  SetPictures(btnUserNew, QStringLiteral("IMAGE_USERNEW_UP"), QStringLiteral("IMAGE_USERNEW_DOWN"));
  SetPictures(btnUserEdit, QStringLiteral("IMAGE_USEREDIT_UP"), QStringLiteral("IMAGE_USEREDIT_DOWN"));
  SetPictures(btnReceive, QStringLiteral("IMAGE_RECEIVE_UP"), QStringLiteral("IMAGE_RECEIVE_DOWN"));
  SetPictures(btnPrint, QStringLiteral("IMAGE_PRINT_UP"), QStringLiteral("IMAGE_PRINT_DOWN"));
  SetPictures(btnDay, QStringLiteral("IMAGE_DAY_UP"), QStringLiteral("IMAGE_DAY_DOWN"));
  SetPictures(btnWeek, QStringLiteral("IMAGE_WEEK_UP"), QStringLiteral("IMAGE_WEEK_DOWN"));
  SetPictures(btnMonth, QStringLiteral("IMAGE_MONTH_UP"), QStringLiteral("IMAGE_MONTH_DOWN"));
  SetPictures(btnSixMonths, QStringLiteral("IMAGE_SIXMONTHS_UP"), QStringLiteral("IMAGE_SIXMONTHS_DOWN"));
  SetPictures(btnDateBack, QStringLiteral("IMAGE_DATEBACK_UP"), QStringLiteral("IMAGE_DATEBACK_DOWN"));
  SetPictures(btnDateNext, QStringLiteral("IMAGE_DATENEXT_UP"), QStringLiteral("IMAGE_DATENEXT_DOWN"));
  SetPictures(btnDateLatest, QStringLiteral("IMAGE_DATELATEST_UP"), QStringLiteral("IMAGE_DATELATEST_DOWN"));
  SetPictures(btnDateUpdate, QStringLiteral("IMAGE_DATEUPDATE_UP"), QStringLiteral("IMAGE_DATEUPDATE_DOWN"));
  for (int i = 0; i < 7; ++i) {
    SetPictures(btnGraph[i], QStringLiteral("IMAGE_GRAPHBTN%1_UP_%2").arg(i + 1).arg(sfx),
                QStringLiteral("IMAGE_GRAPHBTN%1_DOWN_%2").arg(i + 1).arg(sfx));
  }
  SetPictures(btnSimulation, QStringLiteral("IMAGE_SIMULATION_UP_") + sfx,
              QStringLiteral("IMAGE_SIMULATION_DOWN_") + sfx);
}

void frmTerminal::sizeWindow() {
  setMinimumSize(800, 600);
  setMaximumSize(1600, 1200);
  QScreen* screen = this->screen() ? this->screen() : QGuiApplication::primaryScreen();
  const QRect area = screen ? screen->availableGeometry() : QRect(0, 0, 1024, 768);
  SetScreenClass(ScreenClassOf(area.size()));
  const QString c = GetScreenClass();
  const QSize size = c == QLatin1String("2") ? QSize(1280, 1024)
                     : c == QLatin1String("1") ? QSize(1024, 768)
                                               : QSize(800, 600);
  resize(size.boundedTo(area.size()).expandedTo(minimumSize()));
  move(area.topLeft());
}

