// The main window driven as a person would, offscreen, through the emulated reader:
// first start, automatic receives, cancel, a recorder placed while a screen is open,
// navigation of the job screen, the list's order and the name line.
#include <QDateEdit>
#include <QLabel>
#include <QListWidget>
#include <QProgressBar>
#include <QPushButton>
#include <QSignalSpy>
#include <QStackedWidget>
#include <QToolButton>
#include <QLineEdit>

#include "device/fake_reader.h"
#include "testsupport/sample_user.h"
#include "testsupport/terminal_fixture.h"

namespace {

const QDate kLastDay(2024, 6, 30);

QWidget* TopLevel(const char* name) {
  for (QWidget* w : QApplication::topLevelWidgets()) {
    if (w->objectName() == QLatin1String(name) && w->isVisible()) return w;
  }
  return nullptr;
}

// "1" or "0" for each control or menu entry: whether it can be used.
template <typename... C>
QString Enabled(C*... c) {
  return (QString() + ... + QChar(c->isEnabled() ? u'1' : u'0'));
}

TEST_F(TerminalTest, AFirstStartShowsTheEmptyUserListWithOnlyRegistrationOffered) {
  frmTerminal& w = open();
  EXPECT_EQ(GetScreenState(), kStateUserSelect);
  EXPECT_EQ(w.lvUserList->count(), 0);
  EXPECT_TRUE(w.lblNoUser->isVisible());
  // Only registration: an empty group offers no sort, no recorder is on the reader, and
  // entries whose screens come from elsewhere wait for their action.
  EXPECT_EQ(Enabled(w.btnUserNew, w.btnUserEdit, w.mnuNameAscend, w.btnReceive, w.mnuCsvImport), "10000");
  EXPECT_TRUE(w.timerPolling->isActive());
  int imports = 0;
  frmTerminal::Actions actions;
  actions.csvImport = [&imports] { ++imports; };
  w.setActions(actions);
  EXPECT_EQ(Enabled(w.mnuCsvImport, w.mnuCsvExport), "10") << "nobody to export";
  w.mnuCsvImport->trigger();
  EXPECT_EQ(imports, 1);

  // Quit: a stop asked for by the user, the working connection closed, polling ended.
  QSignalSpy quit(&w, &frmTerminal::quitRequested);
  QSignalSpy closing(&w, &frmTerminal::queryClose);
  SetReceiveRunning(true);
  w.close();
  EXPECT_TRUE(w.isVisible() && closing.count() == 0) << "no closing in the middle of a receive";
  SetReceiveRunning(false);
  w.mnuQuit->trigger();
  ASSERT_EQ(std::tuple(w.isVisible(), quit.count(), closing.count()), std::tuple(false, 1, 1));
  EXPECT_EQ(closing.first().at(0).toInt(), 0);
  EXPECT_FALSE(w.timerPolling->isActive());
}

TEST_F(TerminalTest, ADroppedRecorderIsReceivedForANewUserThenAgainForTheSameUserWithoutQuestions) {
  frmTerminal& w = open();
  QSignalSpy drawn(&w, &frmTerminal::chartDrawn);
  screens.newCpu = {ReceiveQuestions::NewCpuAnswer::CreateUser};
  placeRecorder(10, kLastDay);
  ASSERT_TRUE(WaitUntil([] { return GetScreenState() == kStateJob; }));
  EXPECT_EQ(screens.asked, QStringList({QStringLiteral("NewCPU"), QStringLiteral("UserRegist")}));
  const QString userId = screens.lastRegisteredId;
  ASSERT_FALSE(userId.isEmpty());
  EXPECT_EQ(std::pair(GetCurrentUserId(), daysOf(userId)), std::pair(userId, 10));
  // The job screen shows the user's week at once.
  ASSERT_GE(drawn.count(), 1);
  EXPECT_EQ(drawn.last().at(0).toInt(), 100);
  EXPECT_FALSE(w.pictureContents->image().isNull());
  EXPECT_EQ(std::pair(w.rangeState().dtDateStart, w.rangeState().dtDateEnd), std::pair(kLastDay.addDays(-6), kLastDay));
  EXPECT_EQ(w.lblUserNickName->text(), QStringLiteral("山田 花子"));
  EXPECT_TRUE(w.lblSama->isVisible());
  EXPECT_TRUE(w.btnReceive->isEnabled()) << "the recorder is still on the reader";
  EXPECT_EQ(std::tuple(GetRecorderHandled(), GetReceiveRunning(), GetModalFormOpen()), std::tuple(true, false, false));

  // Taken off: the next tick clears the mark; put back three days later: received again
  // for the same user, no question asked.
  takeRecorder();
  ASSERT_TRUE(WaitUntil([] { return !GetRecorderHandled(); }));
  EXPECT_FALSE(w.btnReceive->isEnabled());
  screens.asked.clear();
  placeRecorder(13, kLastDay.addDays(3));
  ASSERT_TRUE(WaitUntil([&] { return daysOf(userId) == 13; }));
  ASSERT_TRUE(WaitUntil([] { return !GetReceiveRunning(); }));
  EXPECT_TRUE(screens.asked.isEmpty()) << screens.asked.join(u',').toStdString();
  EXPECT_EQ(GetScreenState(), kStateJob);
  EXPECT_EQ(w.rangeState().dtDateEnd, kLastDay.addDays(3)) << inst.traceText().right(3000).toStdString();
  EXPECT_TRUE(inst.dialog().shown.empty());
}

TEST_F(TerminalTest, TheNewRecorderQuestionAnsweredOnTheRealScreensRegistersAndDrawsTheWeek) {
  frmTerminal& w = open(true);
  // A person answering: create a user, cancel the registration (back to the question),
  // create again, type the name, register. The receive's own two screens are left to work.
  QStringList answered;
  QTimer person;
  QObject::connect(&person, &QTimer::timeout, [&] {
    QWidget* modal = QApplication::activeModalWidget();
    if (!modal || !modal->isVisible()) return;
    const QString name = modal->objectName();
    if (name == QLatin1String("frmRecvMsgNewCPU")) {
      answered << name;
      modal->findChild<QPushButton*>(QStringLiteral("btnCreateUser"))->click();
    } else if (name == QLatin1String("frmUserRegist")) {
      answered << name;
      if (answered.size() == 2) {
        modal->findChild<QPushButton*>(QStringLiteral("btnUserRegistCancel"))->click();
        return;
      }
      modal->findChild<QLineEdit*>(QStringLiteral("txtFN"))->insert(QStringLiteral("森 さくら"));
      modal->findChild<QPushButton*>(QStringLiteral("btnUserRegist"))->click();
    }
  });
  person.start(20);
  placeRecorder(8, kLastDay);
  ASSERT_TRUE(WaitUntil([] { return GetScreenState() == kStateJob && !GetReceiveRunning(); }))
      << answered.join(u',').toStdString();
  person.stop();
  EXPECT_EQ(answered, QStringList({QStringLiteral("frmRecvMsgNewCPU"), QStringLiteral("frmUserRegist"),
                                   QStringLiteral("frmRecvMsgNewCPU"), QStringLiteral("frmUserRegist")}));
  EXPECT_EQ(w.lblUserNickName->text(), QStringLiteral("森 さくら"));
  EXPECT_EQ(daysOf(GetCurrentUserId()), 8);
  EXPECT_FALSE(w.pictureContents->image().isNull());
  EXPECT_EQ(std::pair(w.rangeState().chartKind, w.rangeState().dtDateEnd), std::pair(100, kLastDay));
  EXPECT_FALSE(GetModalFormOpen());
}

TEST_F(TerminalTest, CancelDuringThePagesStoresNothingAndTheWindowStaysOnItsFace) {
  frmTerminal& w = open();
  // Presses cancel on the data screen once three pages are in.
  QTimer presser;
  int pagesWhenPressed = -1;
  QObject::connect(&presser, &QTimer::timeout, [&] {
    auto* data = qobject_cast<ReceiveScreen*>(TopLevel("frmRecvData"));
    if (data && pagesWhenPressed < 0 && data->progressTransfer->value() >= 3) {
      pagesWhenPressed = data->progressTransfer->value();
      data->btnDataReceiveCancel->click();
    }
  });
  presser.start(0);
  screens.newCpu = {ReceiveQuestions::NewCpuAnswer::CreateUser};
  placeRecorder(40, kLastDay);
  ASSERT_TRUE(WaitUntil([&] { return !screens.lastRegisteredId.isEmpty() && !GetReceiveRunning(); }));
  presser.stop();
  EXPECT_GE(pagesWhenPressed, 3);
  EXPECT_EQ(daysOf(screens.lastRegisteredId), 0) << "the cancel removes every page of the receive";
  EXPECT_EQ(GetScreenState(), kStateUserSelect);
  EXPECT_EQ(qobject_cast<QStackedWidget*>(w.lvUserList->parentWidget()->parentWidget())->currentIndex(), 0);
  EXPECT_EQ(w.lvUserList->count(), 1) << "the user registered on the way stays";
  EXPECT_TRUE(!TopLevel("frmRecvData") && !TopLevel("frmRecvManagement")) << "the receive's screens are closed";
  // The recorder stays marked: it does not start again by itself.
  QTest::qWait(120);
  EXPECT_EQ(std::tuple(daysOf(screens.lastRegisteredId), GetRecorderHandled(), w.btnReceive->isEnabled()),
            std::tuple(0, true, true));
}

TEST_F(TerminalTest, ARecorderPlacedWhileRegistrationIsOpenIsNotReceivedWhenItCloses) {
  frmTerminal& w = open();
  screens.registName = QStringLiteral("佐藤 一郎");
  screens.duringRegist = [this] {
    placeRecorder(5, kLastDay);
    QTest::qWait(150);  // several ticks with the screen open
  };
  w.btnUserNew->click();
  ASSERT_FALSE(screens.lastRegisteredId.isEmpty());
  EXPECT_TRUE(GetRecorderHandled()) << "seen while the screen was open";
  QTest::qWait(150);
  EXPECT_EQ(std::pair(daysOf(screens.lastRegisteredId), w.lvUserList->count()), std::pair(0, 1));
  EXPECT_EQ(screens.asked, QStringList({QStringLiteral("UserRegist")}));
  EXPECT_EQ(Enabled(w.btnReceive, w.mnuReceive), "11");

  // Taken off and placed again: now it is received.
  takeRecorder();
  ASSERT_TRUE(WaitUntil([] { return !GetRecorderHandled(); }));
  screens.newCpu = {ReceiveQuestions::NewCpuAnswer::SelectUser};
  screens.selected = {screens.lastRegisteredId};
  screens.yesNo = {true};
  placeRecorder(5, kLastDay);
  ASSERT_TRUE(WaitUntil([&] { return daysOf(screens.lastRegisteredId) == 5; }));
}

class NavigationTest : public TerminalTest {
 protected:
  void SetUp() override {
    TerminalTest::SetUp();
    VtDatabase seed;
    seed.open(inst.dbFile(), kDefaultDbPassword);
    ASSERT_TRUE(VTDB_SetUserInfo(seed, SampleUser(kUser)));
    ASSERT_EQ(StoreRecorderDays(seed, kUser, SampleRecorder(60, kLastDay)), QString());
    VTDB_Close(seed);
    inst.setConfig(QStringLiteral("OTHER"), QStringLiteral("SAVE_LAST_USER"), QStringLiteral("1"));
    inst.setConfig(QStringLiteral("OTHER"), QStringLiteral("LAST_USER_ID"), kUser);
  }
  QDate start() const { return window->rangeState().dtDateStart; }
  QDate end() const { return window->rangeState().dtDateEnd; }
  int kind() const { return window->rangeState().chartKind; }
  const QString kUser = QStringLiteral("U000000001");
};

TEST_F(NavigationTest, TheRememberedUserOpensOnTheWeekAndEveryButtonMovesTheWindow) {
  frmTerminal& w = open();
  QSignalSpy drawn(&w, &frmTerminal::chartDrawn);
  ASSERT_EQ(GetScreenState(), kStateJob);
  EXPECT_EQ(GetCurrentUserId(), kUser);
  const QDate first = w.rangeState().rangeFirst;
  const QDate last = w.rangeState().rangeLast;
  EXPECT_EQ(std::pair(first, last), std::pair(kLastDay.addDays(-59), kLastDay));
  EXPECT_EQ(std::pair(kind(), start()), std::pair(100, last.addDays(-6)));
  EXPECT_TRUE(w.btnDateLatest->isChecked() && w.btnWeek->isChecked());

  w.btnDateBack->click();
  EXPECT_EQ(std::pair(end(), w.btnDateLatest->isChecked()), std::pair(last.addDays(-1), false));
  w.btnDateNext->click();
  w.btnDateNext->click();
  EXPECT_EQ(end(), last) << "next stops at the last measured day";

  w.btnMonth->click();
  EXPECT_EQ(kind(), 101);
  w.btnDateBack->click();
  EXPECT_EQ(end(), last.addDays(-7)) << "a month moves by one week";
  w.btnDateLatest->click();
  EXPECT_EQ(end(), last);

  w.btnGraph[1]->click();
  EXPECT_EQ(kind(), 201);
  w.btnSixMonths->click();
  EXPECT_EQ(std::pair(kind(), start()), std::pair(202, first)) << "sixty days do not fill six spans";

  w.btnDay->click();
  EXPECT_EQ(std::pair(kind(), start()), std::pair(5, end()));
  EXPECT_TRUE(!w.dtDateStart->isEnabled() && w.lblDispChartOneday->isVisible());
  w.btnDateBack->click();
  EXPECT_EQ(end(), last.addDays(-1));
  w.btnGraph[4]->click();
  EXPECT_TRUE(kind() == 400 && w.btnWeek->isChecked()) << "a graph from the day view goes to a week";

  // A chosen end date in the picker takes effect with btnDateUpdate.
  w.dtDateEnd->setDate(first.addDays(20));
  EXPECT_EQ(start(), first.addDays(14));
  w.btnDateUpdate->click();
  EXPECT_EQ(end(), first.addDays(20));
  EXPECT_TRUE(w.lblDispChartRange->text().contains(first.addDays(14).toString(QStringLiteral("yyyy/MM/dd"))));

  for (const QList<QVariant>& d : drawn) EXPECT_EQ(d.at(1).toInt(), 0) << "every chart drew";
  EXPECT_GE(drawn.count(), 12);
  EXPECT_TRUE(inst.dialog().shown.empty());

  // Back to the list with the user still selected; double click opens it again.
  w.btnBack->click();
  EXPECT_EQ(GetScreenState(), kStateUserSelect);
  ASSERT_EQ(w.lvUserList->count(), 1);
  EXPECT_TRUE(w.lvUserList->item(0)->isSelected() && w.btnUserEdit->isEnabled() && w.mnuDeleteUser->isEnabled());
  Q_EMIT w.lvUserList->itemDoubleClicked(w.lvUserList->item(0));
  EXPECT_EQ(std::pair(GetScreenState(), Ini_GetLastUserId()), std::pair(kStateJob, kUser));
}

TEST_F(NavigationTest, AnUnchangedChartReusesItsFilesAndAChangedUserRebuildsThem) {
  frmTerminal& w = open();
  const QString header = w.headerFile();
  ASSERT_FALSE(header.isEmpty());
  w.btnDateUpdate->click();
  EXPECT_EQ(w.headerFile(), header) << "same kind and range: the files are used again";
  // A bigger window paints the chart again at its new size, without new files.
  w.resize(w.width() + 200, w.height() + 100);
  ASSERT_TRUE(WaitUntil([&w] {
    return w.pictureContents->image().size() ==
           (QSizeF(w.pictureContents->size()) * w.pictureContents->devicePixelRatioF()).toSize();
  }, 3000));
  EXPECT_EQ(w.headerFile(), header);
  w.btnUserEdit->click();
  EXPECT_EQ(screens.asked.last(), QStringLiteral("UserModify ") + kUser);
  EXPECT_FALSE(QFileInfo::exists(header)) << "the old files go when the chart is made anew";
  EXPECT_TRUE(QFileInfo::exists(w.headerFile()));
  w.close();
  EXPECT_FALSE(QFileInfo::exists(w.headerFile())) << "closing removes the chart on show";
}

TEST_F(TerminalTest, SortOrdersAreStoredAtOnceAndALongNameIsCutBeforeTheHonorific) {
  VtDatabase seed;
  seed.open(inst.dbFile(), kDefaultDbPassword);
  QString a, b, c;
  ASSERT_EQ(RegisterUserByName(seed, QStringLiteral("かとう"), a), 0);
  ASSERT_EQ(RegisterUserByName(seed, QStringLiteral("あべ"), b), 0);
  ASSERT_EQ(RegisterUserByName(seed, QString(20, QChar(u'長')), c), 0);
  VTDB_Close(seed);
  frmTerminal& w = open();
  auto names = [&w] {
    QStringList n;
    for (int i = 0; i < w.lvUserList->count(); ++i) n << w.lvUserList->item(i)->data(Qt::UserRole).toString();
    return n;
  };
  EXPECT_EQ(names(), QStringList({a, b, c}));
  w.mnuRegistDescend->trigger();
  EXPECT_EQ(std::pair(names(), Ini_GetSortOrder()), std::pair(QStringList({c, b, a}), 1));
  w.mnuNameAscend->trigger();
  EXPECT_EQ(std::pair(names().first(), Ini_GetSortOrder()), std::pair(b, 2));
  EXPECT_TRUE(w.mnuNameAscend->isChecked() && !w.mnuRegistDescend->isChecked());

  // The user with the long name: cut character by character, honorific kept.
  w.lvUserList->setCurrentRow(names().indexOf(c));
  Q_EMIT w.lvUserList->itemDoubleClicked(w.lvUserList->currentItem());
  const QString shown = w.lblUserNickName->text();
  EXPECT_FALSE(shown.isEmpty());
  EXPECT_LE(shown.size(), 20);
  EXPECT_TRUE(QString(20, QChar(u'長')).startsWith(shown));
  EXPECT_TRUE(w.lblSama->isVisible());
  EXPECT_LE(w.lblSama->geometry().right(), w.width());
  EXPECT_FALSE(w.btnPrint->isEnabled() || w.picGraphBtn->isEnabled() || w.mnuReport->isEnabled())
      << "a user without data has nothing to print";
}

// ---- the decisions without a window ----

TEST(TerminalLogicTest, PollingMarksSeenWhileAScreenIsOpenAndForgetsARemovedRecorder) {
  ResetSharedValues();
  FakeReader reader;
  NoWaitClock clock;
  DeviceState state;
  struct Tick {
    int reader;  // what opening the reader answers
    bool minimized, screenOpen;
    TickAction action;
    bool handled;  // the recorder marked as seen afterwards
  };
  // Minimized: not marked as seen; a screen open: marked, not started.
  const Tick ticks[] = {{0, false, false, TickAction::Nothing, false},       {5, true, false, TickAction::Minimized, false},
                        {5, false, true, TickAction::MarkedSeen, true},      {5, false, true, TickAction::StillConnected, true},
                        {5, false, false, TickAction::StillConnected, true}, {0, false, false, TickAction::RecorderGone, false}};
  for (const Tick& t : ticks) {
    reader.openResult = t.reader;
    SetModalFormOpen(t.screenOpen);
    EXPECT_EQ(PollingTick(reader, clock, state, t.minimized), t.action) << static_cast<int>(&t - ticks);
    EXPECT_EQ(GetRecorderHandled(), t.handled) << static_cast<int>(&t - ticks);
  }
  EXPECT_EQ(reader.count(QStringLiteral("Tavo_Close")), 1);
  reader.openResult = 6;
  EXPECT_EQ(PollingTick(reader, clock, state, false), TickAction::StartReceive);
  EXPECT_EQ(clock.totalWaitedMs(), 7 * 100) << "each tick pauses 100 ms before asking";
  ResetSharedValues();
}

TEST(TerminalLogicTest, NoDataTurnsTheReportOffAndTheNameCutKeepsWholeCharacters) {
  EXPECT_TRUE(MenuStateFor(kStateJob, kFocusUserSelect, true, false, QString()).report);
  EXPECT_FALSE(MenuStateFor(kStateJob, kFocusUserSelect, true, false, kDataStateNoData).report);

  auto width = [](const QString& t) { return static_cast<int>(t.size()) * 10; };
  EXPECT_EQ(CutToWidth(QStringLiteral("abcdef"), 35, width), QStringLiteral("abc"));
  EXPECT_EQ(CutToWidth(QStringLiteral("abc"), 100, width), QStringLiteral("abc"));
  EXPECT_EQ(CutToWidth(QStringLiteral("abc"), 0, width), QString());
  // A character outside the basic plane is never split in two.
  const QString smile = QStringLiteral("ab") + QString::fromUcs4(U"\U0001F600");
  EXPECT_EQ(CutToWidth(smile, 30, width), QStringLiteral("ab"));

  UserInfo u{.FIRST_NAME = "Anne", .LAST_NAME = "Lee"};
  EXPECT_EQ(NameLineText(u, true), QStringLiteral("Anne Lee"));
  u.MIDDLE_NAME = QStringLiteral("M");
  EXPECT_EQ(NameLineText(u, true) + u'|' + NameLineText(u, false), QStringLiteral("Anne M Lee|Anne"));
}

}  // namespace
