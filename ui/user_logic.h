// The logic of the user screens, without widgets: input filters, the checks of the
// registration and modification form in their order, the selection list and the
// deletion with its question. The screens show what these classes decide; tests drive
// them headless.
#pragma once

#include <QString>
#include <QStringList>
#include <array>
#include <vector>

#include "receive/receive.h"
#include "store/store.h"

// ---- input filters and number forms of the target fields ----

// Digits only; a leading 0 goes when more digits follow ("0123" -> "123", "0" stays).
QString FilterWholeNumber(const QString& text);
// Digits and the first decimal point.
QString FilterDecimalNumber(const QString& text);
// A valid exercise figure: not empty, digits and at most one point, no sign, not
// starting or ending with a point, a leading 0 only alone or before the point.
bool IsExerciseNumber(const QString& text);
// The exercise text as shown after leaving the field ("#0.0"); invalid text stays.
QString FormatExerciseText(const QString& text);

// The first maxCharacters characters of text; a character outside the basic plane counts
// once, as a person sees it. The name fields keep to their columns' widths this way.
QString LimitCharacters(const QString& text, int maxCharacters);
// Width in characters of a name column of USER ("FIRST_NAME", "MIDDLE_NAME", "LAST_NAME").
int NameWidth(const char* column);

// The fields a check can send the focus to.
enum class UserField { None, FirstName, ActCal, Step, Exercise };

// frmUserRegist and frmUserModify share this: the same fields, the same checks.
class UserFormLogic {
 public:
  enum class Mode { Regist, Modify };
  static constexpr int kIconCount = 6;

  // Modify works on userId; Regist ignores it.
  UserFormLogic(VtDatabase& db, Mode mode, QString userId = QString());

  // Fills the fields: defaults from USER_DEFAULT for a new user, the stored record for
  // a change (missing targets take the defaults). False (and "UEDT-C-0004" shown) when
  // the user can't be read.
  bool load();

  // The resource section of the screen's captions.
  QString section() const;
  QString formName() const;
  // The Japanese edition shows the targets (and one name field); the English edition
  // three name fields and no targets.
  bool targetsShown() const;
  bool englishNames() const;

  // The fields, as the screen holds them.
  QString firstName;
  QString middleName;
  QString lastName;
  int iconIndex = 0;  // 0 .. kIconCount - 1
  QString actCal;
  QString step;
  QString exercise;
  int targetUsing = 0;  // 0 weight, 1 activity calories, 2 steps

  struct Outcome {
    bool close = false;         // the screen unloads (stored, or the store's success path)
    UserField focus = UserField::None;
    QString code;               // the message shown, "" when none
  };
  // The OK button: checks in order, the store, the message. On success the stored user
  // becomes the current user (second text empty).
  Outcome submit();

  // The user stored by submit() (Regist), or the user changed (Modify).
  QString userId() const { return userId_; }

  // submit() takes the installation's writer lock unless the caller holds it already:
  // a receive that asks for a new user keeps the lock from its start to its commit.
  void setWriterLockHeld(bool held) { writerLockHeld_ = held; }

 private:
  Outcome checkTargets();
  UserInfo record() const;

  VtDatabase& db_;
  Mode mode_;
  QString userId_;
  UserInfo loaded_;
  bool writerLockHeld_ = false;
};

// frmUserSelectDialog's logic.
class UserSelectLogic {
 public:
  UserSelectLogic(VtDatabase& db, QString callerForm);

  // Keeps the current group and user, makes the default group current and reads its
  // users, newest first.
  void load();
  const std::vector<UserInfo>& users() const { return users_; }
  // A click: the user becomes the current one; the text for lblUserNickName.
  QString click(int row);
  // A double click on a row takes the user; false beside a row.
  bool take(int row);
  // Puts the kept group and user back.
  void unload();

  QString selectedUserId() const { return selected_; }
  QString callerForm() const { return callerForm_; }

 private:
  VtDatabase& db_;
  QString callerForm_;
  std::vector<UserInfo> users_;
  QString selected_;
  QString keptGroupId_, keptGroupName_, keptUserId_, keptUserName_;
  bool loaded_ = false;
};

// frmUserDelete's logic.
class UserDeleteLogic {
 public:
  explicit UserDeleteLogic(VtDatabase& db);
  // Reads the current user; "UDEL-C-0002" when it can't.
  bool load();
  const UserInfo& user() const { return user_; }
  NameRows names() const;
  // The delete button: asks "UDEL-W-0001" when the user has days. True when deleted.
  bool deleteUser();

 private:
  VtDatabase& db_;
  UserInfo user_;
};
