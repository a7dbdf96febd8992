// The user screens' logic without widgets: filters, the checks at their bounds and in
// their order, the store's answers turned into messages, selection and deletion.
#include "config.h"
#include "user_fixture.h"
#include "user_logic.h"

namespace {

using Outcome = UserFormLogic::Outcome;
using Mode = UserFormLogic::Mode;

}  // namespace

TEST(UserInputFilters, KeepWhatTheFieldsMayHold) {
  EXPECT_EQ(FilterWholeNumber(QStringLiteral("0123")), QStringLiteral("123"));
  EXPECT_EQ(FilterWholeNumber(QStringLiteral("0")), QStringLiteral("0"));
  EXPECT_EQ(FilterWholeNumber(QStringLiteral("000")), QStringLiteral("0"));
  EXPECT_EQ(FilterWholeNumber(QStringLiteral("1a2-3.4")), QStringLiteral("1234"));
  EXPECT_EQ(FilterWholeNumber(QStringLiteral("１２")), QString());  // full-width digits are not digits here
  EXPECT_EQ(FilterDecimalNumber(QStringLiteral("1.2.3")), QStringLiteral("1.23"));
  EXPECT_EQ(FilterDecimalNumber(QStringLiteral("-a0.5x")), QStringLiteral("0.5"));

  for (const char* good : {"0", "0.5", "12", "12.5", "50"}) EXPECT_TRUE(IsExerciseNumber(QLatin1String(good))) << good;
  for (const char* bad : {"", ".5", "12.", "05", "1.2.3", "-1", "+1", "1e2", "00"})
    EXPECT_FALSE(IsExerciseNumber(QLatin1String(bad))) << bad;
  EXPECT_EQ(FormatExerciseText(QStringLiteral("12")), QStringLiteral("12.0"));
  EXPECT_EQ(FormatExerciseText(QStringLiteral("0.25")), QStringLiteral("0.3"));  // halves away from zero
  EXPECT_EQ(FormatExerciseText(QStringLiteral("12.")), QStringLiteral("12."));   // invalid text stays
}

class UserForm : public UserScreenFixture {
 protected:
  // A registration with the given targets under a fresh name.
  Outcome regist(const char* actCal, const char* step, const char* exercise) {
    UserFormLogic form(*db, Mode::Regist);
    EXPECT_TRUE(form.load());
    form.firstName = QStringLiteral("利用者%1").arg(++serial_);
    form.actCal = QLatin1String(actCal);
    form.step = QLatin1String(step);
    form.exercise = QLatin1String(exercise);
    return form.submit();
  }
  int serial_ = 0;
};

TEST_F(UserForm, EachTargetIsRefusedJustOutsideItsBoundsAndAcceptedOnThem) {
  struct Case {
    const char* actCal;
    const char* step;
    const char* exercise;
    const char* code;  // "" accepted
    UserField focus;
  };
  const Case cases[] = {
      {"1000", "20000", "50", "", UserField::None},
      {"0", "2000", "0", "", UserField::None},
      {"1001", "9000", "10", "UREG-I-0004", UserField::ActCal},
      {"", "9000", "10", "UREG-I-0004", UserField::ActCal},
      {"10000", "9000", "10", "UREG-I-0004", UserField::ActCal},  // five characters
      {"200", "1999", "10", "UREG-I-0001", UserField::Step},
      {"200", "20001", "10", "UREG-I-0001", UserField::Step},
      {"200", "", "10", "UREG-I-0001", UserField::Step},
      {"200", "100000", "10", "UREG-I-0001", UserField::Step},  // six characters
      {"200", "9000", "50.1", "UREG-I-0006", UserField::Exercise},
      {"200", "9000", "12.", "UREG-I-0006", UserField::Exercise},
      {"200", "9000", "", "UREG-I-0006", UserField::Exercise},
      {"200", "9000", "50.04", "", UserField::None},  // "##0.0" makes it 50.0
      {"200", "9000", "50.05", "UREG-I-0006", UserField::Exercise},  // and this 50.1
      // The first failing field in the order calories, steps, exercise wins.
      {"1001", "1", "99", "UREG-I-0004", UserField::ActCal},
      {"1000", "1", "99", "UREG-I-0001", UserField::Step},
  };
  for (const Case& c : cases) {
    const Outcome o = regist(c.actCal, c.step, c.exercise);
    const std::string what = std::string(c.actCal) + "/" + c.step + "/" + c.exercise;
    EXPECT_EQ(o.code, QLatin1String(c.code)) << what;
    EXPECT_EQ(o.focus, c.focus) << what;
    EXPECT_EQ(o.close, *c.code == 0) << what;
    if (*c.code) {
      EXPECT_TRUE(wasShown(QLatin1String(c.code))) << what;
    }
  }
  // Only the accepted ones were stored.
  EXPECT_EQ(count(QStringLiteral("SELECT COUNT(*) FROM [USER] WHERE USER_ID <> 'U999999999'")), 3);
}

TEST_F(UserForm, ARegisteredUserIsStoredWithItsChoicesAndBecomesTheCurrentUser) {
  UserFormLogic form(*db, Mode::Regist);
  ASSERT_TRUE(form.load());
  EXPECT_TRUE(form.targetsShown());
  EXPECT_EQ(form.targetUsing, 0);
  EXPECT_FALSE(form.step.isEmpty());  // the defaults of USER_DEFAULT
  form.firstName = QStringLiteral("山田 花子");
  form.iconIndex = 4;
  form.actCal = QStringLiteral("300");
  form.step = QStringLiteral("8000");
  form.exercise = QStringLiteral("4");
  form.targetUsing = 2;
  SetCurrentUserName(QStringLiteral("old"));
  const Outcome o = form.submit();
  ASSERT_TRUE(o.close);
  const QString id = form.userId();
  ASSERT_FALSE(id.isEmpty());
  EXPECT_EQ(GetCurrentUserId(), id);
  EXPECT_EQ(GetCurrentUserName(), QString());
  EXPECT_TRUE(inst->traceText().contains(QStringLiteral("Regist UserID = ") + id));
  UserInfo u;
  ASSERT_TRUE(GetUserInfo(*db, u, id));
  EXPECT_EQ(u.GROUP_ID, kDefaultGroupId);
  EXPECT_EQ(u.FIRST_NAME, QStringLiteral("山田 花子"));
  EXPECT_EQ(u.ICONINDEX, 5);
  EXPECT_EQ(u.TARGET_CAL, QStringLiteral("300"));
  EXPECT_EQ(u.TARGET_STEP, QStringLiteral("8000"));
  EXPECT_EQ(u.EXTRA1, QStringLiteral("4.0"));
  EXPECT_EQ(u.EXTRA3, QStringLiteral("2"));
}

TEST_F(UserForm, NameProblemsKeepTheScreenWithTheFocusOnTheName) {
  addUser(QStringLiteral("山田 花子"));
  UserFormLogic dup(*db, Mode::Regist);
  dup.load();
  dup.firstName = QStringLiteral("山田 花子");
  Outcome o = dup.submit();
  EXPECT_FALSE(o.close);
  EXPECT_EQ(o.code, QStringLiteral("UREG-W-0003"));
  EXPECT_EQ(o.focus, UserField::FirstName);
  EXPECT_TRUE(lastShownText().endsWith(QStringLiteral("氏名:山田 花子"))) << lastShownText().toStdString();

  UserFormLogic empty(*db, Mode::Regist);
  empty.load();
  empty.firstName = QStringLiteral("   ");
  o = empty.submit();
  EXPECT_EQ(o.code, QStringLiteral("UREG-W-0006"));
  EXPECT_EQ(o.focus, UserField::FirstName);
  EXPECT_EQ(count(QStringLiteral("SELECT COUNT(*) FROM [USER] WHERE USER_ID <> 'U999999999'")), 1);
}

TEST_F(UserForm, TheEnglishEditionChecksThreeNamesAndLeavesTheTargetsAlone) {
  setUpEdition(QStringLiteral("en"));
  addUser(QStringLiteral("Anna Lee"));
  UserFormLogic form(*db, Mode::Regist);
  ASSERT_TRUE(form.load());
  EXPECT_FALSE(form.targetsShown());
  EXPECT_TRUE(form.englishNames());
  form.firstName = QStringLiteral("Anna");
  form.lastName = QStringLiteral("Lee");
  form.step = QStringLiteral("1");  // out of range, but the targets are not on this screen
  Outcome o = form.submit();
  EXPECT_EQ(o.code, QStringLiteral("UREG-W-0003"));
  EXPECT_TRUE(lastShownText().contains(QStringLiteral("First Name:Anna\nMiddle:\nLast Name:Lee")))
      << lastShownText().toStdString();

  form.lastName.clear();
  EXPECT_EQ(form.submit().code, QStringLiteral("UREG-W-0006"));
  form.lastName = QStringLiteral("Park");
  o = form.submit();
  EXPECT_TRUE(o.close);
  UserInfo u;
  ASSERT_TRUE(GetUserInfo(*db, u, form.userId()));
  EXPECT_EQ(u.LAST_NAME, QStringLiteral("Park"));
}

TEST_F(UserForm, AChangeKeepsWhatTheFormDoesNotHoldAndUsesItsOwnCodes) {
  const QString id = addUser(QStringLiteral("佐藤 一郎"));
  addUser(QStringLiteral("鈴木 次郎"));
  ASSERT_TRUE(VTDB_SetUserIdOnCPUNo(*db, QStringLiteral("A00042"), id));
  {
    UserInfo u;
    GetUserInfo(*db, u, id);
    u.TARGET_STEP.clear();
    u.EXTRA3 = QStringLiteral("1");
    u.HEIGHT_CM = QStringLiteral("171");
    ASSERT_EQ(EditUser(*db, u), 0);
  }

  UserFormLogic form(*db, Mode::Modify, id);
  ASSERT_TRUE(form.load());
  EXPECT_EQ(form.firstName, QStringLiteral("佐藤 一郎"));
  EXPECT_EQ(form.targetUsing, 1);
  QString step, actMin, intake, actCal;
  Ini_GetUserTargets(step, actMin, intake, actCal);
  EXPECT_EQ(form.step, step);  // an empty target shows the default

  form.step = QStringLiteral("20001");
  EXPECT_EQ(form.submit().code, QStringLiteral("UEDT-I-0001"));
  form.step = QStringLiteral("20000");
  form.firstName = QStringLiteral("鈴木 次郎");
  EXPECT_EQ(form.submit().code, QStringLiteral("UREG-W-0003"));
  form.firstName.clear();
  EXPECT_EQ(form.submit().code, QStringLiteral("UEDT-W-0005"));
  form.firstName = QStringLiteral("佐藤 一郎");  // the user's own name is no conflict
  form.iconIndex = 2;
  SetCurrentUserName(QStringLiteral("old"));
  ASSERT_TRUE(form.submit().close);
  EXPECT_EQ(GetCurrentUserId(), id);
  EXPECT_EQ(GetCurrentUserName(), QString());

  UserRecord r;
  ASSERT_TRUE(VTDB_GetUserInfoFromUserId(*db, id, r));
  EXPECT_EQ(r.TARGET_STEP.trimmed(), QStringLiteral("20000"));
  EXPECT_EQ(r.ICONINDEX.trimmed(), QStringLiteral("3"));
  EXPECT_EQ(r.HEIGHT_CM.trimmed(), QStringLiteral("171"));
  EXPECT_EQ(VTDB_GetUserIDFromCPUNo(*db, QStringLiteral("A00042")).trimmed(), id);

  UserFormLogic gone(*db, Mode::Modify, QStringLiteral("U000000099"));
  EXPECT_FALSE(gone.load());
  EXPECT_TRUE(wasShown(QStringLiteral("UEDT-C-0004")));
}

using UserSelection = UserScreenFixture;

TEST_F(UserSelection, ListsNewestFirstAndPutsTheCurrentUserBackOnClosing) {
  const QString a = addUser(QStringLiteral("一番 目"));
  const QString b = addUser(QStringLiteral("二番 目"));
  const QString c = addUser(QStringLiteral("三番 目"));
  SetCurrentGroupId(QStringLiteral("G999999999"));
  SetCurrentUserId(a);
  SetCurrentUserName(QStringLiteral("一番 目"));

  UserSelectLogic select(*db, kCallerFormNewCpu);
  select.load();
  ASSERT_EQ(select.users().size(), 3u);
  EXPECT_EQ(select.users()[0].USER_ID, c);
  EXPECT_EQ(select.users()[2].USER_ID, a);
  EXPECT_EQ(GetCurrentGroupId(), kDefaultGroupId);
  EXPECT_EQ(select.click(1), QStringLiteral("二番 目 様"));
  EXPECT_EQ(GetCurrentUserId(), b);
  EXPECT_FALSE(select.take(3));  // beside a row
  EXPECT_TRUE(select.selectedUserId().isEmpty());
  EXPECT_TRUE(select.take(1));
  EXPECT_EQ(select.selectedUserId(), b);
  select.unload();
  EXPECT_EQ(GetCurrentGroupId(), QStringLiteral("G999999999"));
  EXPECT_EQ(GetCurrentUserId(), a);
  EXPECT_EQ(GetCurrentUserName(), QStringLiteral("一番 目"));
}

class UserDeletion : public UserScreenFixture {
 protected:
  QString userWithDays() {
    const QString id = addUser(QStringLiteral("記録 有り"));
    const QString error = StoreRecorderDays(*db, id, recorder(5));
    EXPECT_TRUE(error.isEmpty()) << error.toStdString();
    SetCurrentUserId(id);
    return id;
  }
  int daysOf(const QString& id) {
    return count(QStringLiteral("SELECT COUNT(*) FROM DAY_MEASUREMENT WHERE USER_ID = ?"), id);
  }
};

TEST_F(UserDeletion, AUserWithoutDaysGoesAtTheFirstPressWithoutAQuestion) {
  const QString id = addUser(QStringLiteral("記録 無し"));
  SetCurrentUserId(id);
  UserDeleteLogic del(*db);
  ASSERT_TRUE(del.load());
  EXPECT_EQ(del.names().first, QStringLiteral("記録 無し 様"));
  EXPECT_TRUE(del.deleteUser());
  EXPECT_TRUE(inst->dialog().shown.empty());
  UserInfo u;
  EXPECT_FALSE(GetUserInfo(*db, u, id) && !u.USER_ID.isEmpty());
  EXPECT_TRUE(inst->traceText().contains(QStringLiteral("Delete UserID = ") + id));
}

TEST_F(UserDeletion, AUserWithDaysIsDeletedOnlyAfterAYes) {
  const QString id = userWithDays();
  ASSERT_EQ(daysOf(id), 5);

  inst->dialog().queueAnswer(kAnswerNo);
  UserDeleteLogic no(*db);
  ASSERT_TRUE(no.load());
  EXPECT_FALSE(no.deleteUser());
  EXPECT_TRUE(wasShown(QStringLiteral("UDEL-W-0001")));
  EXPECT_EQ(daysOf(id), 5);
  UserInfo u;
  EXPECT_TRUE(GetUserInfo(*db, u, id));

  inst->dialog().queueAnswer(kAnswerYes);
  UserDeleteLogic yes(*db);
  ASSERT_TRUE(yes.load());
  EXPECT_TRUE(yes.deleteUser());
  EXPECT_EQ(daysOf(id), 0);
  EXPECT_EQ(count(QStringLiteral("SELECT COUNT(*) FROM [USER] WHERE USER_ID = ?"), id), 0);

  SetCurrentUserId(id);
  UserDeleteLogic gone(*db);
  EXPECT_FALSE(gone.load());
  EXPECT_TRUE(wasShown(QStringLiteral("UDEL-C-0002")));
  EXPECT_FALSE(gone.deleteUser());
}
