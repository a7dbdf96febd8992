// The user screens' logic without widgets: filters, the checks at their bounds and in
// their order, the store's answers turned into messages, selection and deletion.
#include "frame/config.h"
#include "frame/shared_values.h"
#include "store/db_safety.h"
#include "testsupport/user_fixture.h"
#include "ui/user_logic.h"

namespace {

using Outcome = UserFormLogic::Outcome;
using Mode = UserFormLogic::Mode;

}  // namespace

TEST(UserInputFilters, KeepWhatTheFieldsMayHold) {
  // Full-width digits are not digits here.
  for (const auto& [typed, kept] : {std::pair{"0123", "123"}, {"0", "0"}, {"000", "0"}, {"1a2-3.4", "1234"}, {"１２", ""}})
    EXPECT_EQ(FilterWholeNumber(QString::fromUtf8(typed)), QLatin1String(kept)) << typed;
  EXPECT_EQ(FilterDecimalNumber(QStringLiteral("1.2.3")), QStringLiteral("1.23"));
  EXPECT_EQ(FilterDecimalNumber(QStringLiteral("-a0.5x")), QStringLiteral("0.5"));

  for (const char* good : {"0", "0.5", "12", "12.5", "50"}) EXPECT_TRUE(IsExerciseNumber(QLatin1String(good))) << good;
  for (const char* bad : {"", ".5", "12.", "05", "1.2.3", "-1", "+1", "1e2", "00"})
    EXPECT_FALSE(IsExerciseNumber(QLatin1String(bad))) << bad;
  EXPECT_EQ(FormatExerciseText(QStringLiteral("12")), QStringLiteral("12.0"));
  EXPECT_EQ(FormatExerciseText(QStringLiteral("0.25")), QStringLiteral("0.3"));  // halves away from zero
  EXPECT_EQ(FormatExerciseText(QStringLiteral("12.")), QStringLiteral("12."));   // invalid text stays

  // Names keep to their width in characters: a character of two UTF-16 units counts once
  // and is never split.
  const QString rare = QString::fromUcs4(U"\U00020BB7");  // outside the basic plane
  EXPECT_EQ(LimitCharacters(rare.repeated(3) + QStringLiteral("ab"), 4), rare.repeated(3) + QStringLiteral("a"));
  EXPECT_EQ(LimitCharacters(QStringLiteral("a") + rare, 1), QStringLiteral("a"));
  EXPECT_EQ(LimitCharacters(QStringLiteral("abc"), 20), QStringLiteral("abc"));
  EXPECT_EQ(NameWidth("FIRST_NAME"), 20);
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
    EXPECT_EQ(std::tuple(o.code, o.focus, o.close),
              std::tuple(QString::fromLatin1(c.code), c.focus, *c.code == 0))
        << what;
    if (*c.code) {
      EXPECT_TRUE(wasShown(QLatin1String(c.code))) << what;
    }
  }
  // Only the accepted ones were stored.
  EXPECT_EQ(count(QStringLiteral("SELECT COUNT(*) FROM [USER] WHERE USER_ID <> 'U999999999'")), 3);
}

TEST_F(UserForm, NameProblemsKeepTheScreenWithTheFocusOnTheName) {
  addUser(QStringLiteral("山田 花子"));
  for (const auto& [name, code] : {std::pair{"山田 花子", "UREG-W-0003"}, {"   ", "UREG-W-0006"}}) {
    UserFormLogic form(*db, Mode::Regist);
    form.load();
    form.firstName = QString::fromUtf8(name);
    const Outcome o = form.submit();
    const auto expected = std::tuple(false, QString::fromLatin1(code), UserField::FirstName);
    EXPECT_EQ(std::tuple(o.close, o.code, o.focus), expected) << name;
    if (o.code == QLatin1String("UREG-W-0003")) {
      EXPECT_TRUE(lastShownText().endsWith(QStringLiteral("氏名:山田 花子"))) << lastShownText().toStdString();
    }
  }
  EXPECT_EQ(count(QStringLiteral("SELECT COUNT(*) FROM [USER] WHERE USER_ID <> 'U999999999'")), 1);

  // The English edition names the three parts in the message and leaves the targets alone.
  setUpEdition(QStringLiteral("en"));
  addUser(QStringLiteral("Anna Lee"));
  UserFormLogic en(*db, Mode::Regist);
  ASSERT_TRUE(en.load());
  EXPECT_FALSE(en.targetsShown());
  en.firstName = QStringLiteral("Anna");
  en.lastName = QStringLiteral("Lee");
  en.step = QStringLiteral("1");
  EXPECT_EQ(en.submit().code, QStringLiteral("UREG-W-0003"));
  EXPECT_TRUE(lastShownText().endsWith(QStringLiteral("First Name:Anna\nMiddle:\nLast Name:Lee")))
      << lastShownText().toStdString();
  en.lastName = QStringLiteral("Park");
  EXPECT_TRUE(en.submit().close);
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
  EXPECT_EQ(std::pair(form.firstName, form.targetUsing), std::pair(QStringLiteral("佐藤 一郎"), 1));
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
  EXPECT_EQ(std::pair(GetCurrentUserId(), GetCurrentUserName()), std::pair(id, QString()));

  UserRecord r;
  ASSERT_TRUE(VTDB_GetUserInfoFromUserId(*db, id, r));
  EXPECT_EQ(QStringList({r.TARGET_STEP.trimmed(), r.ICONINDEX.trimmed(), r.HEIGHT_CM.trimmed()}).join(u'|'), "20000|3|171");
  EXPECT_EQ(VTDB_GetUserIDFromCPUNo(*db, QStringLiteral("A00042")).trimmed(), id);

  UserFormLogic gone(*db, Mode::Modify, QStringLiteral("U000000099"));
  EXPECT_FALSE(gone.load());
  EXPECT_TRUE(wasShown(QStringLiteral("UEDT-C-0004")));
}

TEST_F(UserForm, ScreenChangesWaitForTheOtherWriterAndThenSayVantoraIsBusy) {
  const int wait = GetWriterLockWaitMs();
  SetWriterLockWaitMs(50);
  const QString kept = addUser(QStringLiteral("残る人"));
  const QString users = QStringLiteral("SELECT COUNT(*) FROM [USER] WHERE USER_ID <> 'U999999999'");
  {
    InstallationLock other(db->path());
    ASSERT_TRUE(other.acquire(0));
    UserFormLogic form(*db, Mode::Regist);
    ASSERT_TRUE(form.load());
    form.firstName = QStringLiteral("新しい人");
    EXPECT_EQ(form.submit().code, QStringLiteral("COMN-W-0001"));
    EXPECT_EQ(count(users), 1);

    SetCurrentUserId(kept);
    UserDeleteLogic deletion(*db);
    ASSERT_TRUE(deletion.load());
    EXPECT_FALSE(deletion.deleteUser());
    EXPECT_EQ(count(users), 1);

    // A receive that asks for a new user holds the lock itself; its registration
    // must not wait for it.
    form.setWriterLockHeld(true);
    EXPECT_TRUE(form.submit().close);
    EXPECT_EQ(count(users), 2);
  }
  SetWriterLockWaitMs(wait);
}
