#include "ui/user_logic.h"

#include "frame/catalogue.h"
#include "frame/config.h"
#include "frame/helpers.h"
#include "frame/shared_values.h"
#include "frame/trace.h"
#include "frame/vbformat.h"
#include "store/db_safety.h"
#include "store/schema.h"

namespace {

bool Japanese() { return !IsEnglishEdition(); }

const QString kSectionRegist = QStringLiteral("USERREGIST");
const QString kSectionModify = QStringLiteral("USERMODIFY");
const QString kSectionDelete = QStringLiteral("USERDELETE");
const QString kSectionList = QStringLiteral("USERLIST");

struct TargetDefaults {
  QString step, actMin, intake, actCal, exercise;
};

TargetDefaults ReadTargetDefaults() {
  TargetDefaults d;
  Ini_GetUserTargets(d.step, d.actMin, d.intake, d.actCal);
  d.exercise = FormatExerciseText(Ini_GetTargetExercise());
  return d;
}

}  // namespace

// ---------------------------------------------------------------- filters

QString FilterWholeNumber(const QString& text) {
  QString digits;
  for (QChar c : text)
    if (c >= u'0' && c <= u'9') digits += c;
  int zeros = 0;
  while (zeros < digits.size() - 1 && digits[zeros] == u'0') ++zeros;
  return digits.mid(zeros);
}

QString FilterDecimalNumber(const QString& text) {
  QString out;
  bool point = false;
  for (QChar c : text) {
    if (c >= u'0' && c <= u'9') {
      out += c;
    } else if (c == u'.' && !point) {
      out += c;
      point = true;
    }
  }
  return out;
}

bool IsExerciseNumber(const QString& text) {
  if (text.isEmpty() || text.startsWith(u'.') || text.endsWith(u'.')) return false;
  int points = 0;
  for (QChar c : text) {
    if (c == u'.') {
      ++points;
    } else if (c < u'0' || c > u'9') {
      return false;
    }
  }
  if (points > 1) return false;
  // "0" and "0.5" are fine; "05" is not.
  return !(text.size() > 1 && text[0] == u'0' && text[1] != u'.');
}

QString FormatExerciseText(const QString& text) {
  if (!IsExerciseNumber(text)) return text;
  return Format(Val(text), QStringLiteral("#0.0"));
}

QString LimitCharacters(const QString& text, int maxCharacters) {
  qsizetype end = 0;
  for (int chars = 0; end < text.size() && chars < maxCharacters; ++chars) {
    const bool pair = text[end].isHighSurrogate() && end + 1 < text.size() && text[end + 1].isLowSurrogate();
    end += pair ? 2 : 1;
  }
  return text.left(end);
}

int NameWidth(const char* column) {
  return ColumnWidth(QStringLiteral("USER"), QLatin1String(column));
}

// ---------------------------------------------------------------- registration / change

UserFormLogic::UserFormLogic(VtDatabase& db, Mode mode, QString userId)
    : db_(db), mode_(mode), userId_(mode == Mode::Modify ? std::move(userId) : QString()) {}

QString UserFormLogic::section() const { return mode_ == Mode::Regist ? kSectionRegist : kSectionModify; }

QString UserFormLogic::formName() const {
  return mode_ == Mode::Regist ? QStringLiteral("frmUserRegist") : QStringLiteral("frmUserModify");
}

bool UserFormLogic::targetsShown() const { return Japanese(); }
bool UserFormLogic::englishNames() const { return !Japanese(); }

bool UserFormLogic::load() {
  const TargetDefaults d = ReadTargetDefaults();
  actCal = d.actCal;
  step = d.step;
  exercise = d.exercise;
  targetUsing = 0;
  iconIndex = 0;
  if (mode_ == Mode::Regist) return true;

  if (!GetUserInfo(db_, loaded_, userId_.trimmed())) {
    MessageDialog(QStringLiteral("UEDT-C-0004"));
    return false;
  }
  firstName = loaded_.FIRST_NAME;
  middleName = loaded_.MIDDLE_NAME;
  lastName = loaded_.LAST_NAME;
  iconIndex = qBound(0, loaded_.ICONINDEX - 1, kIconCount - 1);
  if (!loaded_.TARGET_CAL.isEmpty()) actCal = loaded_.TARGET_CAL;
  if (!loaded_.TARGET_STEP.isEmpty()) step = loaded_.TARGET_STEP;
  if (!loaded_.EXTRA1.isEmpty()) exercise = FormatExerciseText(loaded_.EXTRA1);
  if (loaded_.EXTRA3 == QLatin1String("1")) targetUsing = 1;
  if (loaded_.EXTRA3 == QLatin1String("2")) targetUsing = 2;
  return true;
}

UserFormLogic::Outcome UserFormLogic::checkTargets() {
  const bool regist = mode_ == Mode::Regist;
  const QString area = regist ? QStringLiteral("UREG") : QStringLiteral("UEDT");
  auto refuse = [&](UserField field, const char* number) {
    const QString code = area + QStringLiteral("-I-") + QLatin1String(number);
    MessageDialog(code);
    return Outcome{false, field, code};
  };
  if (CheckLength(actCal, 4, 1) != 0 || CheckRange(actCal, 1000, 0) != 0)
    return refuse(UserField::ActCal, "0004");
  if (CheckLength(step, 5, 1) != 0 || CheckRange(step, 20000, 2000) != 0)
    return refuse(UserField::Step, "0001");
  if (!IsExerciseNumber(exercise)) return refuse(UserField::Exercise, "0006");
  exercise = Format(Val(exercise), QStringLiteral("##0.0"));
  if (CheckRange(exercise, 50, 0) != 0) return refuse(UserField::Exercise, "0006");
  return Outcome{};
}

UserInfo UserFormLogic::record() const {
  UserInfo u = mode_ == Mode::Modify ? loaded_ : UserInfo{};
  if (mode_ == Mode::Regist) {
    u.GROUP_ID = kDefaultGroupId;
    const TargetDefaults d = ReadTargetDefaults();
    u.TARGET_ACTMIN = d.actMin;
    u.TARGET_INTAKE = d.intake;
  }
  u.USER_ID = userId_;
  u.FIRST_NAME = firstName;
  u.MIDDLE_NAME = englishNames() ? middleName : QString();
  u.LAST_NAME = englishNames() ? lastName : QString();
  u.ICONINDEX = static_cast<std::int16_t>(iconIndex + 1);
  u.TARGET_CAL = actCal;
  u.TARGET_STEP = step;
  u.EXTRA1 = exercise;
  u.EXTRA3 = QString::number(targetUsing == 1 || targetUsing == 2 ? targetUsing : 0);
  return u;
}

UserFormLogic::Outcome UserFormLogic::submit() {
  const bool regist = mode_ == Mode::Regist;
  WriteTrace(QStringLiteral("0"), formName(),
             regist ? QStringLiteral("btnUserRegist_Click Start") : QStringLiteral("btnUserModify_Click Start"));
  if (targetsShown()) {
    const Outcome refused = checkTargets();
    if (!refused.code.isEmpty()) return refused;
  }

  UserInfo u = record();
  int rc = 0;
  {
    // Held for the write only: the messages below must not keep other writers waiting.
    InstallationLock lock(db_.path());
    if (!writerLockHeld_ && !AcquireForWriting(lock))
      return Outcome{false, UserField::None, QStringLiteral("COMN-W-0001")};
    rc = regist ? SetUser(db_, u) : EditUser(db_, u);
  }
  auto warn = [&](const QString& code, const QString& extra = QString()) {
    MessageDialog(code, extra);
    return Outcome{false, UserField::FirstName, code};
  };
  switch (rc) {
    case 0:
      break;
    case 6:
      if (regist) {
        MessageDialog(QStringLiteral("UREG-C-0003"));
        return Outcome{false, UserField::None, QStringLiteral("UREG-C-0003")};
      }
      break;
    case 12:
      if (!regist) {
        MessageDialog(QStringLiteral("UEDT-C-0003"));
        return Outcome{false, UserField::None, QStringLiteral("UEDT-C-0003")};
      }
      break;
    case 9: {
      QString who = GetIniCaption(section(), QStringLiteral("CAPTION_NAME")) + u.FIRST_NAME.trimmed();
      if (englishNames()) {
        who += QLatin1Char('\n') + GetIniCaption(section(), QStringLiteral("CAPTION_NAME_MIDDLE")) +
               u.MIDDLE_NAME.trimmed() + QLatin1Char('\n') +
               GetIniCaption(section(), QStringLiteral("CAPTION_NAME_LAST")) + u.LAST_NAME.trimmed();
      }
      return warn(QStringLiteral("UREG-W-0003"), who);
    }
    case 10:
      return warn(regist ? QStringLiteral("UREG-W-0010") : QStringLiteral("UEDT-W-0009"));
    case 13:
      return warn(regist ? QStringLiteral("UREG-W-0006") : QStringLiteral("UEDT-W-0005"));
    default:
      // 7, 8 and 18 are not told apart: the screen closes as after a success. Any code
      // the store adds later has shown its own message; the screen stays for a fix.
      if (rc != 7 && rc != 8 && rc != 18) return Outcome{false, UserField::FirstName, QString()};
      break;
  }
  if (regist) {
    if (rc == 0) {
      userId_ = u.USER_ID.trimmed();
      WriteTrace(QStringLiteral("0"), formName(), QStringLiteral("Regist UserID = ") + userId_);
    }
  }
  if (rc == 0) {
    SetCurrentUserId(userId_);
    SetCurrentUserName(QString());
  }
  return Outcome{true, UserField::None, QString()};
}

// ---------------------------------------------------------------- selection

UserSelectLogic::UserSelectLogic(VtDatabase& db, QString callerForm)
    : db_(db), callerForm_(std::move(callerForm)) {}

void UserSelectLogic::load() {
  keptGroupId_ = GetCurrentGroupId();
  keptGroupName_ = GetCurrentGroupName();
  keptUserId_ = GetCurrentUserId();
  keptUserName_ = GetCurrentUserName();
  loaded_ = true;
  SetCurrentGroupId(kDefaultGroupId);
  SetCurrentGroupName(GetGroupName(db_, kDefaultGroupId));
  users_.clear();
  std::vector<UserInfo> rows;
  if (GetUserList(db_, kDefaultGroupId, rows) > 0) users_.assign(rows.rbegin(), rows.rend());
}

QString UserSelectLogic::click(int row) {
  if (row < 0 || row >= static_cast<int>(users_.size())) return QString();
  const UserInfo& u = users_[static_cast<size_t>(row)];
  SetCurrentUserId(u.USER_ID);
  // A name of one part has no last name behind its blank.
  const QString name = u.DisplayName.trimmed();
  SetCurrentUserName(name);
  QString text = name;
  if (Japanese()) text += QLatin1Char(' ') + GetIniCaption(kSectionList, QStringLiteral("CAPTION_LBLSAMA"));
  return text;
}

bool UserSelectLogic::take(int row) {
  if (row < 0 || row >= static_cast<int>(users_.size())) return false;
  selected_ = users_[static_cast<size_t>(row)].USER_ID;
  return true;
}

void UserSelectLogic::unload() {
  if (!loaded_) return;
  loaded_ = false;
  SetCurrentGroupId(keptGroupId_);
  SetCurrentGroupName(keptGroupName_);
  SetCurrentUserId(keptUserId_);
  SetCurrentUserName(keptUserName_);
}

// ---------------------------------------------------------------- deletion

UserDeleteLogic::UserDeleteLogic(VtDatabase& db) : db_(db) {}

bool UserDeleteLogic::load() {
  if (!GetUserInfo(db_, user_, GetCurrentUserId().trimmed())) {
    user_ = UserInfo{};
    MessageDialog(QStringLiteral("UDEL-C-0002"));
    return false;
  }
  return true;
}

NameRows UserDeleteLogic::names() const {
  return LayOutNames(user_, GetIniCaption(kSectionDelete, QStringLiteral("CAPTION_LBLSAMA")));
}

bool UserDeleteLogic::deleteUser() {
  const QString form = QStringLiteral("frmUserDelete");
  WriteTrace(QStringLiteral("0"), form, QStringLiteral("btnUserDelete_Click Start"));
  const QString id = user_.USER_ID.trimmed();
  if (id.isEmpty()) return false;
  InstallationLock lock(db_.path());
  if (!AcquireForWriting(lock)) return false;
  int rc = DeleteUser(db_, id, false);
  if (rc == 2) {
    // The question waits for a person; other writers need not wait with it.
    lock.release();
    if (QuestionDialog(QStringLiteral("UDEL-W-0001")) != kAnswerYes) return false;
    if (!AcquireForWriting(lock)) return false;
    rc = DeleteUser(db_, id, true);
  }
  lock.release();
  if (rc != 0) {
    MessageDialog(QStringLiteral("UDEL-C-0001"));
    return false;
  }
  WriteTrace(QStringLiteral("0"), form, QStringLiteral("Delete UserID = ") + id);
  return true;
}
