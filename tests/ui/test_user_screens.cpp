// The user screens and the receive dialogs as widgets, driven offscreen with QTest: the
// filters and focus of the form, both editions' fields, and whole receives through the
// emulated reader in which each dialog's buttons lead where the receive logic says.
#include <QGroupBox>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QtTest/QTest>
#include <algorithm>

#include "testsupport/screen_script.h"
#include "testsupport/user_fixture.h"
#include "ui/frmUserDelete.h"
#include "ui/frmUserModify.h"
#include "ui/frmUserRegist.h"
#include "ui/frmUserSelectDialog.h"
#include "ui/receive_questions.h"

namespace {

template <typename T = QWidget>
T* child(QWidget* screen, const char* name) {
  T* w = screen->findChild<T*>(QLatin1String(name));
  EXPECT_NE(w, nullptr) << name;
  return w;
}

void click(QWidget* screen, const char* button) {
  if (auto* b = child<QPushButton>(screen, button)) QTest::mouseClick(b, Qt::LeftButton);
}

void typeInto(QWidget* screen, const char* field, const QString& text) {
  if (auto* edit = child<QLineEdit>(screen, field)) {
    edit->clear();
    // Keys for plain letters; other scripts arrive committed, as an input method gives them.
    if (std::all_of(text.begin(), text.end(), [](QChar c) { return c.unicode() < 0x80; })) QTest::keyClicks(edit, text);
    else edit->insert(text);
  }
}

// A person's double click: the press and release of the first click, then the second.
void doubleClickAt(QListWidget* list, QPoint at) {
  QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, at);
  QTest::mouseDClick(list->viewport(), Qt::LeftButton, {}, at);
}

void doubleClickUser(QWidget* screen, const QString& name) {
  auto* list = child<QListWidget>(screen, "lvUserList");
  const auto items = list->findItems(name, Qt::MatchExactly);
  ASSERT_EQ(items.size(), 1) << name.toStdString();
  doubleClickAt(list, list->visualItemRect(items[0]).center());
}

}  // namespace

class UserScreens : public UserScreenFixture {
 protected:
  // Shows a screen as exec() would and waits until it can take input.
  void open(QDialog& screen) {
    screen.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&screen));
    screen.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&screen));
  }

  ReceiveReport receive(ScreenScript& script) {
    EmulatedReader reader(inst->readerPath());
    NullProgress progress;
    ReceiveServices s{*db, reader, clock, progress};
    QtReceiveQuestions questions(nullptr);
    ReceiveWorkflow w(s, questions);
    const ReceiveReport r = w.Run();
    script.stop();
    EXPECT_TRUE(script.errors.isEmpty()) << script.errors.join(u',').toStdString();
    EXPECT_TRUE(script.finished()) << script.seen.join(u',').toStdString();
    return r;
  }

  int days(const QString& userId) {
    return count(QStringLiteral("SELECT COUNT(*) FROM DAY_MEASUREMENT WHERE USER_ID = ?"), userId);
  }
};

TEST_F(UserScreens, TheRegistrationFormFiltersItsFiguresAndFocusesTheFieldThatFails) {
  frmUserRegist screen(*db, QString());
  EXPECT_FALSE(GetModalFormOpen());
  open(screen);
  EXPECT_TRUE(GetModalFormOpen());
  EXPECT_TRUE(screen.frameTarget->isVisibleTo(&screen));
  EXPECT_FALSE(screen.txtMN->isVisibleTo(&screen));
  EXPECT_FALSE(screen.txtLN->isVisibleTo(&screen));

  typeInto(&screen, "txtStepData", QStringLiteral("0a1-9x99"));
  EXPECT_EQ(screen.txtStepData->text(), QStringLiteral("1999"));
  screen.txtExerciseDate->setFocus();
  typeInto(&screen, "txtExerciseDate", QStringLiteral("3.5.1"));
  EXPECT_EQ(screen.txtExerciseDate->text(), QStringLiteral("3.51"));
  screen.txtFN->setFocus();  // leaving the exercise field gives it its form
  EXPECT_EQ(screen.txtExerciseDate->text(), QStringLiteral("3.5"));

  typeInto(&screen, "txtFN", QStringLiteral("あいうえおかきくけこさしすせそたちつてとな"));
  EXPECT_EQ(screen.txtFN->text(), QStringLiteral("あいうえおかきくけこさしすせそたちつてと"));  // 20 characters
  typeInto(&screen, "txtFN", QStringLiteral("田中 三郎"));
  QTest::mouseClick(screen.imgUserIcon[3], Qt::LeftButton);  // the picture selects its option
  EXPECT_TRUE(screen.optUserIcon[3]->isChecked());
  click(&screen, "btnUserRegist");
  EXPECT_TRUE(screen.isVisible());
  EXPECT_EQ(QApplication::focusWidget(), screen.txtStepData);
  EXPECT_EQ(screen.txtStepData->selectedText(), QStringLiteral("1999"));
  EXPECT_TRUE(wasShown(QStringLiteral("UREG-I-0001")));

  typeInto(&screen, "txtStepData", QStringLiteral("2000"));
  click(&screen, "btnUserRegist");
  EXPECT_EQ(std::tuple(screen.isVisible(), screen.result(), GetModalFormOpen()),
            std::tuple(false, int(QDialog::Accepted), false));
  UserInfo u;
  ASSERT_TRUE(GetUserInfo(*db, u, screen.newUserId()));
  EXPECT_EQ(QStringList({u.FIRST_NAME, QString::number(u.ICONINDEX), u.TARGET_STEP, u.EXTRA1, u.EXTRA3}).join(u'|'),
            QStringLiteral("田中 三郎|4|2000|3.5|0"));
  EXPECT_EQ(GetCurrentUserId(), screen.newUserId());
  const QString trace = inst->traceText();
  EXPECT_TRUE(trace.contains(QStringLiteral("frmUserRegist")) && trace.contains(QStringLiteral("Form_Load Start")) &&
              trace.contains(QStringLiteral("Form_Unload Start")));
}

TEST_F(UserScreens, DeletionAsksOnlyForAUserWithDaysAndClosesAfterThePress) {
  const QString empty = addUser(QStringLiteral("記録 無し"));
  SetCurrentUserId(empty);
  {
    frmUserDelete screen(*db);
    open(screen);
    click(&screen, "btnUserDelete");
    EXPECT_EQ(std::pair(screen.result(), screen.deletedUserIds()),
              std::pair(int(QDialog::Accepted), QStringList{empty}));
    EXPECT_TRUE(inst->dialog().shown.empty());  // no question
  }
  const QString keep = addUser(QStringLiteral("記録 有り"));
  ASSERT_TRUE(StoreRecorderDays(*db, keep, recorder(4)).isEmpty());
  SetCurrentUserId(keep);
  inst->dialog().queueAnswer(kAnswerNo);
  {
    frmUserDelete screen(*db);
    open(screen);
    EXPECT_EQ(screen.lblFNData->text(), QStringLiteral("記録 有り 様"));
    EXPECT_FALSE(screen.lblMNData->isVisibleTo(&screen));
    click(&screen, "btnUserDelete");
    EXPECT_EQ(std::tuple(screen.isVisible(), screen.result(), screen.deletedUserIds()),
              std::tuple(false, int(QDialog::Rejected), QStringList()));
  }
  EXPECT_TRUE(wasShown(QStringLiteral("UDEL-W-0001")));
  EXPECT_EQ(days(keep), 4);

  inst->dialog().queueAnswer(kAnswerYes);
  frmUserDelete screen(*db);
  open(screen);
  click(&screen, "btnUserDelete");
  EXPECT_EQ(std::pair(screen.result(), screen.deletedUserIds()),
            std::pair(int(QDialog::Accepted), QStringList{keep}));
  EXPECT_EQ(days(keep), 0);
}

TEST_F(UserScreens, CancellingTheNewRecorderQuestionStoresNothing) {
  const QString before = addUser(QStringLiteral("前 から"));
  addUser(QStringLiteral("誰 か"));
  SetCurrentUserId(before);
  place(recorder(3));
  ScreenScript script;
  script.thenClick(QStringLiteral("frmRecvMsgNewCPU"), "btnSelectUser");
  script.then(QStringLiteral("frmUserSelectDialog"), [&](QDialog* s) {
    auto* list = child<QListWidget>(s, "lvUserList");
    QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, list->visualItemRect(list->item(0)).center());
    EXPECT_NE(GetCurrentUserId(), before);
    click(s, "btnCancel");
  });
  script.thenClick(QStringLiteral("frmRecvMsgNewCPU"), "btnNewCPUCancel");
  EXPECT_EQ(receive(script).ending, ReceiveEnding::Cancelled);
  for (const char* table : {"DAY_MEASUREMENT", "RECEIVE_HISTORY", "CPU_TABLE"})
    EXPECT_EQ(count(QStringLiteral("SELECT COUNT(*) FROM ") + QLatin1String(table)), 0) << table;
  EXPECT_EQ(GetCurrentUserId(), before);  // a click in the selection does not outlast its cancel
}

TEST_F(UserScreens, ADoubleClickOnAUserInTheSelectionTakesThatUser) {
  const QString first = addUser(QStringLiteral("古い 人"), 3);
  const QString second = addUser(QStringLiteral("新しい 人"), 5);
  SetCurrentUserId(first);
  place(recorder(5));
  ScreenScript script;
  script.thenClick(QStringLiteral("frmRecvMsgNewCPU"), "btnSelectUser");
  script.then(QStringLiteral("frmUserSelectDialog"), [&](QDialog* s) {
    auto* list = child<QListWidget>(s, "lvUserList");
    ASSERT_EQ(list->count(), 2);
    EXPECT_EQ(list->item(0)->text(), QStringLiteral("新しい 人"));  // newest first
    EXPECT_FALSE(list->item(0)->icon().isNull());
    // A click shows the name; a double click beside the users does nothing.
    QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, list->visualItemRect(list->item(1)).center());
    EXPECT_EQ(child<QLabel>(s, "lblUserNickName")->text(), QStringLiteral("古い 人 様"));
    doubleClickAt(list, QPoint(list->viewport()->width() - 5, list->viewport()->height() - 5));
    EXPECT_TRUE(s->isVisible());
    doubleClickUser(s, QStringLiteral("新しい 人"));
  });
  const ReceiveReport r = receive(script);
  EXPECT_EQ(std::tuple(r.ending, r.userId, days(second)), std::tuple(ReceiveEnding::Received, second, 5));
}

TEST_F(UserScreens, ARecorderOfAnotherUserIsTakenOverOnlyWhenAsked) {
  const QString owner = addUser(QStringLiteral("持ち 主"));
  const QString current = addUser(QStringLiteral("今の 人"));
  ASSERT_TRUE(VTDB_SetUserIdOnCPUNo(*db, QStringLiteral("A00042"), owner));
  SetScreenState(kStateJob);
  SetCurrentUserId(current);
  place(recorder(4));

  ScreenScript no;
  no.then(QStringLiteral("frmRecvMsgAlertUser"), [](QDialog* s) {
    EXPECT_EQ(child<QLabel>(s, "lblFNData")->text(), QStringLiteral("持ち 主 様"));
    EXPECT_EQ(child<QLabel>(s, "lblCFNData")->text(), QStringLiteral("今の 人 様"));
    click(s, "btnUsingAlertCancel");
  });
  EXPECT_EQ(receive(no).ending, ReceiveEnding::Cancelled);
  EXPECT_EQ(VTDB_GetUserIDFromCPUNo(*db, QStringLiteral("A00042")).trimmed(), owner);

  ScreenScript yes;
  const ReceiveReport r = receive(yes.thenClick(QStringLiteral("frmRecvMsgAlertUser"), "btnReceive"));
  EXPECT_EQ(std::pair(r.ending, r.userId), std::pair(ReceiveEnding::Received, current));
  EXPECT_EQ(VTDB_GetUserIDFromCPUNo(*db, QStringLiteral("A00042")).trimmed(), current);
  EXPECT_EQ(days(owner), 0);
}

TEST_F(UserScreens, ANewRecorderWhileAUserIsOpenGoesToThatUserOnReceive) {
  const QString current = addUser(QStringLiteral("開いて いる"));
  SetScreenState(kStateJob);
  SetCurrentUserId(current);
  place(recorder(3));
  ScreenScript cancel;
  EXPECT_EQ(receive(cancel.thenClick(QStringLiteral("frmRecvMsgNewCPUSelectUser"), "btnCancel")).ending,
            ReceiveEnding::Cancelled);
  EXPECT_EQ(days(current), 0);

  ScreenScript take;
  take.then(QStringLiteral("frmRecvMsgNewCPUSelectUser"), [](QDialog* s) {
    EXPECT_EQ(child<QLabel>(s, "lblFNData")->text(), QStringLiteral("開いて いる 様"));
    click(s, "btnReceive");
  });
  const ReceiveReport r = receive(take);
  EXPECT_EQ(std::tuple(r.ending, r.userId, days(current)), std::tuple(ReceiveEnding::Received, current, 3));
}

TEST_F(UserScreens, ARecorderThatLooksResetIsReceivedForItsOwnerOnlyWhenAsked) {
  const QString owner = addUser(QStringLiteral("リセット 主"));
  place(recorder(10));
  ScreenScript first;
  first.thenClick(QStringLiteral("frmRecvMsgNewCPU"), "btnSelectUser");
  first.then(QStringLiteral("frmUserSelectDialog"),
             [](QDialog* s) { doubleClickUser(s, QStringLiteral("リセット 主")); });
  ASSERT_EQ(receive(first).ending, ReceiveEnding::Received);

  SetScreenState(kStateUserSelect);
  place(recorder(3, QDate(2024, 8, 3)));
  ScreenScript no;
  EXPECT_EQ(receive(no.thenClick(QStringLiteral("frmRecvMsgAlertReset"), "btnUsingAlertCancel")).ending,
            ReceiveEnding::Cancelled);
  EXPECT_EQ(days(owner), 10);

  ScreenScript yes;
  const ReceiveReport r = receive(yes.thenClick(QStringLiteral("frmRecvMsgAlertReset"), "btnReceive"));
  EXPECT_EQ(std::tuple(r.ending, r.userId, days(owner)), std::tuple(ReceiveEnding::Received, owner, 13));
}
