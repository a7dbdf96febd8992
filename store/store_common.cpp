// The wrappers the screens call: trimmed records, the rules on names, result codes.
#include <QDate>
#include <QFile>

#include "frame/catalogue.h"
#include "frame/config.h"
#include "frame/helpers.h"
#include "frame/trace.h"
#include "frame/vbformat.h"
#include "store/store.h"
#include "store/store_internal.h"

namespace {

void traceError(const QString& name, const QString& operation) {
  try {
    WriteTrace(QStringLiteral("2"), name, operation + QStringLiteral(" Error"));
  } catch (const std::exception&) {
  }
}

bool japanese() { return Ini_GetLang() == 0; }

std::int16_t iconIndex(const QString& text) { return static_cast<std::int16_t>(Val(text)); }

UserInfo toUserInfo(const UserRecord& r) {
  UserInfo u;
  u.GROUP_ID = r.GROUP_ID.trimmed();
  u.LOGIN_ID = r.LOGIN_ID.trimmed();
  u.PASSWORD = r.PASSWORD.trimmed();
  u.USER_ID = r.USER_ID.trimmed();
  u.FIRST_NAME = r.FIRST_NAME.trimmed();
  u.MIDDLE_NAME = r.MIDDLE_NAME.trimmed();
  u.LAST_NAME = r.LAST_NAME.trimmed();
  u.NICK_NAME = r.NICK_NAME.trimmed();
  u.COMMENT = r.COMMENT.trimmed();
  u.ICONINDEX = iconIndex(r.ICONINDEX);
  u.TARGET_CAL = r.TARGET_CAL.trimmed();
  u.TARGET_STEP = r.TARGET_STEP.trimmed();
  u.TARGET_ACTMIN = r.TARGET_ACTMIN.trimmed();
  u.TARGET_INTAKE = r.TARGET_INTAKE.trimmed();
  u.MODERATE_LOW = r.MODERATE_LOW.trimmed();
  u.MODERATE_HIGH = r.MODERATE_HIGH.trimmed();
  u.GRAPH_TARGET = r.GRAPH_TARGET.trimmed();
  u.PREF_ID = r.PREF_ID.trimmed();
  u.CPU_NO = r.CPU_NO.trimmed();
  u.CPU_STARTDATE = r.CPU_STARTDATE.trimmed();
  u.EXTRA1 = r.EXTRA1.trimmed();
  u.EXTRA2 = r.EXTRA2.trimmed();
  u.EXTRA3 = r.EXTRA3.trimmed();
  u.GENDAR = r.GENDAR.trimmed();
  u.AGE = r.AGE.trimmed();
  u.HEIGHT_CM = r.HEIGHT_CM.trimmed();
  u.WEIGHT_KG = r.WEIGHT_KG.trimmed();
  return u;
}

// The fields of the screens' record into a fixed record; the others stay as they are.
void overlayAll(UserRecord& r, const UserInfo& u) {
  r.USER_ID = FixWidth(u.USER_ID, 10);
  r.GROUP_ID = FixWidth(u.GROUP_ID, 10);
  r.LOGIN_ID = FixWidth(u.LOGIN_ID, 10);
  r.PASSWORD = FixWidth(u.PASSWORD, 10);
  r.FIRST_NAME = FixWidth(u.FIRST_NAME, 20);
  r.MIDDLE_NAME = FixWidth(u.MIDDLE_NAME, 20);
  r.LAST_NAME = FixWidth(u.LAST_NAME, 20);
  r.NICK_NAME = FixWidth(u.NICK_NAME, 20);
  r.COMMENT = FixWidth(u.COMMENT, 50);
  r.ICONINDEX = FixWidth(QString::number(u.ICONINDEX), 1);
  r.GENDAR = FixWidth(u.GENDAR, 1);
  r.AGE = FixWidth(u.AGE, 3);
  r.HEIGHT_CM = FixWidth(u.HEIGHT_CM, 3);
  r.WEIGHT_KG = FixWidth(u.WEIGHT_KG, 5);
  r.TARGET_CAL = FixWidth(u.TARGET_CAL, 4);
  r.TARGET_STEP = FixWidth(u.TARGET_STEP, 5);
  r.TARGET_ACTMIN = FixWidth(u.TARGET_ACTMIN, 4);
  r.TARGET_INTAKE = FixWidth(u.TARGET_INTAKE, 4);
  r.MODERATE_LOW = FixWidth(u.MODERATE_LOW, 1);
  r.MODERATE_HIGH = FixWidth(u.MODERATE_HIGH, 1);
  r.GRAPH_TARGET = FixWidth(u.GRAPH_TARGET, 1);
  r.PREF_ID = FixWidth(u.PREF_ID, 8);
  r.CPU_NO = FixWidth(u.CPU_NO, 6);
  r.CPU_STARTDATE = FixWidth(u.CPU_STARTDATE, 8);
  r.EXTRA1 = FixWidth(u.EXTRA1, 4);
  r.EXTRA2 = FixWidth(u.EXTRA2, 1);
  r.EXTRA3 = FixWidth(u.EXTRA3, 1);
}

UserRecord blankUserRecord() {
  UserRecord r;
  const TableSpec* layout = FindTable(QStringLiteral("USER"));
  QString* fields[] = {&r.USER_ID,       &r.GROUP_ID,      &r.LOGIN_ID,      &r.PASSWORD,
                       &r.FIRST_NAME,    &r.MIDDLE_NAME,   &r.LAST_NAME,     &r.NICK_NAME,
                       &r.COMMENT,       &r.ICONINDEX,     &r.GENDAR,        &r.AGE,
                       &r.HEIGHT_CM,     &r.HEIGHT_FEET,   &r.HEIGHT_INCH,   &r.WEIGHT_KG,
                       &r.WEIGHT_PAUND,  &r.TARGET_CAL,    &r.LAST_RECEIVE_ID, &r.LAST_PAGE,
                       &r.TARGET_STEP,   &r.TARGET_ACTMIN, &r.TARGET_INTAKE, &r.MODERATE_LOW,
                       &r.MODERATE_HIGH, &r.GRAPH_TARGET,  &r.PREF_ID,       &r.CPU_NO,
                       &r.CPU_STARTDATE, &r.EXTRA1,        &r.EXTRA2,        &r.EXTRA3};
  for (size_t i = 0; i < layout->columns.size(); ++i) *fields[i] = FixWidth(QString(), layout->columns[i].width);
  return r;
}

// A found id that is the user himself is no conflict.
bool conflicts(const QString& foundId, const QString& ownId) {
  return !foundId.isEmpty() && foundId.trimmed() != ownId.trimmed();
}

// The tests of SetUser and EditUser, in their order. ownId empty for a new user (every
// hit is a conflict). Returns 0 when every test passes.
int checkUserNames(VtDatabase& db, const UserInfo& u, const QString& ownId, bool editing) {
  // A name is stored as typed or not at all: one longer than its column is refused.
  if (FindTooLongName(u)) return kUserNameTooLong;
  const QString first = u.FIRST_NAME.trimmed();
  const QString middle = u.MIDDLE_NAME.trimmed();
  const QString last = u.LAST_NAME.trimmed();
  const QString nick = u.NICK_NAME.trimmed();
  const bool instructorGroup = u.GROUP_ID.trimmed() == kInstructorGroupId;
  if (japanese()) {
    if (first.isEmpty()) return 13;
    if (!u.NICK_NAME.isEmpty()) {
      if (nick.isEmpty() || !CheckProhibitChar(nick)) return 8;
      if (conflicts(VTDB_SearchUserIdFromNickName_JPN(db, nick), ownId)) return 7;
    }
    if (!CheckProhibitChar(first)) return 18;
    if (VTDB_SearchUserIdFromName_Japanese(db, first, QString(), QString()) == kInstructorUserId) return 10;
    if (!instructorGroup) {
      if (editing) {
        if (conflicts(VTDB_SearchUserIdFromName_Japanese(db, first, nick, kInstructorGroupId), ownId)) return 9;
      } else if (VTDB_isUsedName_Japanese(db, first, nick, kInstructorGroupId)) {
        return 9;
      }
    }
    return 0;
  }
  if (first.isEmpty() || last.isEmpty()) return 13;
  if (VTDB_SearchUserIdFromName(db, first, middle, last, QString()) == kInstructorUserId) return 10;
  if (!CheckProhibitChar(first) || !CheckProhibitChar(last) || !CheckProhibitChar(middle)) return 18;
  if (!instructorGroup) {
    if (!u.NICK_NAME.isEmpty()) {
      if (nick.isEmpty() || !CheckProhibitChar(nick)) return 8;
      if (editing ? conflicts(VTDB_SearchUserIdFromNickName(db, nick), ownId) : VTDB_isUsedNickName(db, nick))
        return 7;
    }
    if (editing ? conflicts(VTDB_SearchUserIdFromName(db, first, middle, last, kInstructorGroupId), ownId)
                : VTDB_isUsedName(db, first, middle, last, kInstructorGroupId))
      return 9;
  }
  return 0;
}

}  // namespace

std::optional<NameTooLong> FindTooLongName(const UserInfo& u) {
  const std::pair<const char*, const QString*> names[] = {
      {"FIRST_NAME", &u.FIRST_NAME}, {"MIDDLE_NAME", &u.MIDDLE_NAME}, {"LAST_NAME", &u.LAST_NAME},
      {"NICK_NAME", &u.NICK_NAME}};
  for (const auto& [field, value] : names) {
    const int given = CharacterCount(value->trimmed());
    if (given > kNameMaxCharacters) return NameTooLong{QLatin1String(field), kNameMaxCharacters, given};
  }
  return std::nullopt;
}

namespace {
// The caption the registration screen gives a name field; the field's name without one.
QString NameCaption(const QString& field) {
  const QString key = field == QLatin1String("FIRST_NAME")    ? QStringLiteral("CAPTION_LBLFN")
                      : field == QLatin1String("MIDDLE_NAME") ? QStringLiteral("CAPTION_LBLMN")
                      : field == QLatin1String("LAST_NAME")   ? QStringLiteral("CAPTION_LBLLN")
                                                              : QString();
  const QString caption = key.isEmpty() ? QString() : GetIniCaption(QStringLiteral("USERREGIST"), key);
  return caption.isEmpty() || caption.startsWith(QLatin1String("***")) ? field : caption;
}
}  // namespace

void UserRefusalMessage(int code, const UserInfo& u, QString& messageCode, QString& argument) {
  argument.clear();
  switch (code) {
    case 6: messageCode = QStringLiteral("UREG-C-0003"); break;
    case 7: messageCode = QStringLiteral("UREG-W-0011"); break;
    case 8: messageCode = QStringLiteral("UREG-W-0012"); break;
    case 9: messageCode = QStringLiteral("UREG-W-0003"); break;
    case 10: messageCode = QStringLiteral("UREG-W-0010"); break;
    case 12: messageCode = QStringLiteral("UEDT-C-0003"); break;
    case 13: messageCode = QStringLiteral("UREG-W-0006"); break;
    case 18: {
      messageCode = QStringLiteral("UREG-W-0013");
      const std::pair<const char*, const QString*> names[] = {
          {"FIRST_NAME", &u.FIRST_NAME}, {"MIDDLE_NAME", &u.MIDDLE_NAME}, {"LAST_NAME", &u.LAST_NAME}};
      for (const auto& [field, value] : names) {
        const QString c = FirstProhibitedChar(value->trimmed());
        if (!c.isEmpty()) {
          argument = CatalogueLine(QStringLiteral("UREG-I-0012"), {c, NameCaption(QLatin1String(field))});
          break;
        }
      }
      break;
    }
    case kUserNameTooLong: {
      messageCode = QStringLiteral("UREG-W-0014");
      if (const auto tooLong = FindTooLongName(u))
        argument = CatalogueLine(QStringLiteral("UREG-I-0011"), {NameCaption(tooLong->field),
                                                                 QString::number(tooLong->limit),
                                                                 QString::number(tooLong->given)});
      break;
    }
    default: messageCode.clear(); break;
  }
}

QString GetDisplayName(const UserInfo& u) {
  if (!u.NICK_NAME.isEmpty()) {
    if (japanese()) return u.FIRST_NAME + QLatin1Char(' ') + u.NICK_NAME;
    return u.NICK_NAME;
  }
  if (!u.MIDDLE_NAME.isEmpty())
    return u.FIRST_NAME + QLatin1Char(' ') + u.MIDDLE_NAME + QLatin1Char(' ') + u.LAST_NAME;
  return u.FIRST_NAME + QLatin1Char(' ') + u.LAST_NAME;
}

int GetGroupList(VtDatabase& db, std::vector<GroupInfo>& groups) {
  std::vector<GroupRecord> rows;
  if (!VTDB_GetGroupInfo(db, rows)) {
    traceError(QStringLiteral("GetGroupList"), QStringLiteral("VTDB_GetGroupInfo"));
    return -1;
  }
  groups.clear();
  for (const GroupRecord& r : rows)
    groups.push_back({r.GROUP_ID.trimmed(), r.GROUP_NAME.trimmed(), r.COMMENT.trimmed(), iconIndex(r.ICONINDEX)});
  return static_cast<int>(groups.size());
}

bool GetGroupInfo(VtDatabase& db, GroupInfo& group, const QString& groupId) {
  GroupRecord r;
  if (!VTDB_GetGroupInfoFromId(db, groupId, r)) {
    traceError(QStringLiteral("GetGroupInfo"), QStringLiteral("VTDB_GetGroupInfoFromId"));
    return false;
  }
  group = {r.GROUP_ID.trimmed(), r.GROUP_NAME.trimmed(), r.COMMENT.trimmed(), iconIndex(r.ICONINDEX)};
  return true;
}

QString GetGroupName(VtDatabase& db, const QString& groupId) { return VTDB_SearchGroupName(db, groupId); }

int GetUserList(VtDatabase& db, const QString& groupId, std::vector<UserInfo>& users) {
  std::vector<UserRecord> rows;
  if (!VTDB_GetUserInfoFromGroupId(db, groupId, rows)) {
    traceError(QStringLiteral("GetUserList"), QStringLiteral("VTDB_GetUserInfoFromGroupId"));
    return -1;
  }
  users.clear();
  for (const UserRecord& r : rows) {
    UserInfo u = toUserInfo(r);
    u.DisplayName = GetDisplayName(u);
    users.push_back(std::move(u));
  }
  return static_cast<int>(users.size());
}

bool GetUserInfo(VtDatabase& db, UserInfo& user, const QString& userId) {
  UserRecord r;
  if (!VTDB_GetUserInfoFromUserId(db, userId, r)) {
    traceError(QStringLiteral("GetUserInfo"), QStringLiteral("VTDB_GetUserInfoFromUserId"));
    return false;
  }
  user = toUserInfo(r);
  return true;
}

bool GetUserInfoFromCPUNo(VtDatabase& db, UserInfo& user, const QString& cpuNo) {
  const QString userId = VTDB_GetUserIDFromCPUNo(db, cpuNo);
  if (userId.isEmpty()) return true;
  return GetUserInfo(db, user, userId);
}

int GetGeneralData(VtDatabase& db, std::vector<GeneralInfo>& items, const QString& item, const QString& userId,
                   const QString& year, const QString& month, const QString& day, const QString& subItem) {
  std::vector<GeneralRecord> rows;
  if (!VTDB_GetGeneralDataInfo(db, rows, item, userId, year, month, day, subItem)) {
    traceError(QStringLiteral("GetGeneralData"), QStringLiteral("VTDB_GetGeneralDataInfo"));
    return -1;
  }
  items.clear();
  for (const GeneralRecord& r : rows)
    items.push_back({r.USER_ID.trimmed(), r.YEAR.trimmed(), r.MONTH.trimmed(), r.DAY.trimmed(),
                     r.ITEM.trimmed(), r.SUB_ITEM.trimmed(), r.VALUE.trimmed()});
  return static_cast<int>(items.size());
}

int SetUser(VtDatabase& db, UserInfo& user) {
  const int code = checkUserNames(db, user, QString(), false);
  if (code != 0) return code;
  user.USER_ID = CreateUserId(db);
  UserRecord r = blankUserRecord();
  overlayAll(r, user);
  if (!VTDB_SetUserInfo(db, r)) {
    traceError(QStringLiteral("SetUser"), QStringLiteral("VTDB_SetUserInfo"));
    return 6;
  }
  return 0;
}

int EditUser(VtDatabase& db, const UserInfo& user) {
  const int code = checkUserNames(db, user, user.USER_ID, true);
  if (code != 0) return code;
  UserRecord r = blankUserRecord();
  VTDB_GetUserInfoFromUserId(db, user.USER_ID, r);
  // Always replaced.
  r.USER_ID = FixWidth(user.USER_ID.trimmed(), 10);
  r.GROUP_ID = FixWidth(user.GROUP_ID.trimmed(), 10);
  r.LOGIN_ID = FixWidth(user.LOGIN_ID.trimmed(), 10);
  r.PASSWORD = FixWidth(user.PASSWORD.trimmed(), 10);
  r.FIRST_NAME = FixWidth(user.FIRST_NAME.trimmed(), 20);
  r.MIDDLE_NAME = FixWidth(user.MIDDLE_NAME.trimmed(), 20);
  r.LAST_NAME = FixWidth(user.LAST_NAME.trimmed(), 20);
  r.NICK_NAME = FixWidth(user.NICK_NAME.trimmed(), 20);
  r.COMMENT = FixWidth(user.COMMENT.trimmed(), 50);
  r.ICONINDEX = FixWidth(QString::number(user.ICONINDEX), 1);
  r.PREF_ID = FixWidth(user.PREF_ID.trimmed(), 8);
  r.CPU_NO = FixWidth(user.CPU_NO.trimmed(), 6);
  r.CPU_STARTDATE = FixWidth(user.CPU_STARTDATE.trimmed(), 8);
  r.TARGET_CAL = FixWidth(user.TARGET_CAL.trimmed(), 4);
  r.TARGET_STEP = FixWidth(user.TARGET_STEP.trimmed(), 5);
  // Replaced only when given.
  auto keepOr = [](QString& field, const QString& value, int width) {
    if (!value.trimmed().isEmpty()) field = FixWidth(value.trimmed(), width);
  };
  keepOr(r.TARGET_ACTMIN, user.TARGET_ACTMIN, 4);
  keepOr(r.TARGET_INTAKE, user.TARGET_INTAKE, 4);
  keepOr(r.MODERATE_LOW, user.MODERATE_LOW, 1);
  keepOr(r.MODERATE_HIGH, user.MODERATE_HIGH, 1);
  keepOr(r.GRAPH_TARGET, user.GRAPH_TARGET, 1);
  keepOr(r.EXTRA1, user.EXTRA1, 4);
  keepOr(r.EXTRA2, user.EXTRA2, 1);
  keepOr(r.EXTRA3, user.EXTRA3, 1);
  keepOr(r.GENDAR, user.GENDAR, 1);
  keepOr(r.AGE, user.AGE, 3);
  keepOr(r.HEIGHT_CM, user.HEIGHT_CM, 3);
  keepOr(r.WEIGHT_KG, user.WEIGHT_KG, 5);
  if (!VTDB_ChangeUserInfo(db, r)) {
    traceError(QStringLiteral("EditUser"), QStringLiteral("VTDB_ChangeUserInfo"));
    return 12;
  }
  return 0;
}

int UpdateUserData(VtDatabase& db, const QString& userId, const UserReceiveUpdate& update) {
  if (!VTDB_UpdateUserData(db, userId, update)) {
    traceError(QStringLiteral("UpdateUserData"), QStringLiteral("VTDB_UpdateUserData"));
    return 22;
  }
  return 0;
}

int SetGeneralData(VtDatabase& db, const QString& userId, const QString& year, const QString& month,
                   const QString& day, const QString& item, const QString& subItem, const QString& value) {
  if (!VTDB_SetGeneralData(db, {userId, year, month, day, item, subItem, value})) {
    traceError(QStringLiteral("SetGeneralData"), QStringLiteral("VTDB_SetGeneralData"));
    return 24;
  }
  return 0;
}

int DeleteUser(VtDatabase& db, const QString& userId, bool withData) {
  const QString name = QStringLiteral("DeleteUser");
  QString first;
  QString last;
  VTDB_GetDayMeasurementRange(db, userId, first, last, false);
  if (!first.isEmpty() && !last.isEmpty() && !withData) return 2;
  QStringList ids;
  if (!VTDB_GetDayMeasurementReceiveIdFromUserID(db, userId, ids)) {
    traceError(name, QStringLiteral("VTDB_GetDayMeasurementReceiveIdFromUserID"));
    return 4;
  }
  for (const QString& id : ids) {
    if (!VTDB_DeleteDayMeasurement(db, id, QString())) {
      traceError(name, QStringLiteral("VTDB_DeleteDayMeasurement"));
      return 4;
    }
    if (!VTDB_DeleteTimeMeasurementBlock(db, id, QString())) {
      traceError(name, QStringLiteral("VTDB_DeleteTimeMeasurement"));
      return 4;
    }
    if (!VTDB_DeleteReceiveHistoryDate(db, id)) {
      traceError(name, QStringLiteral("VTDB_DeleteReceiveHistoryDate"));
      return 4;
    }
  }
  if (!VTDB_DeleteCPUNoOnUserId(db, userId)) {
    traceError(name, QStringLiteral("VTDB_DeleteCPUNoOnUserId"));
    return 4;
  }
  if (!VTDB_DeleteUserInfo(db, userId)) {
    traceError(name, QStringLiteral("VTDB_DeleteUserInfo"));
    return 4;
  }
  return 0;
}

namespace {

struct PlanItem {
  const char* code;
  QString WeightPlanRecord::*member;
};

// In the order of writing; IT007004 and IT007010 both carry the target weight.
const PlanItem kPlanItems[] = {
    {"IT007001", &WeightPlanRecord::PeriodIndex},    {"IT007002", &WeightPlanRecord::StartDate},
    {"IT007003", &WeightPlanRecord::EndDate},        {"IT007004", &WeightPlanRecord::TargetWeight},
    {"IT007005", &WeightPlanRecord::DietOption},     {"IT007006", &WeightPlanRecord::FoodIndex},
    {"IT007007", &WeightPlanRecord::PortionIndex},   {"IT007008", &WeightPlanRecord::ReductionIndex},
    {"IT007009", &WeightPlanRecord::StartWeight},    {"IT007010", &WeightPlanRecord::TargetWeight},
    {"IT007011", &WeightPlanRecord::StartHeight},    {"IT007012", &WeightPlanRecord::StartHeightInch},
    {"IT007013", &WeightPlanRecord::Loss},           {"IT007014", &WeightPlanRecord::PoundFlag},
};

const QString kPlanItem = QStringLiteral("IT007");

}  // namespace

bool GetWeightPlan(VtDatabase& db, WeightPlanRecord& plan, const QString& userId) {
  std::vector<GeneralInfo> rows;
  if (GetGeneralData(db, rows, kPlanItem, userId, QString(), QString(), QString(), QString()) < 0) return false;
  plan.UserId = userId;
  for (const GeneralInfo& row : rows)
    for (const PlanItem& p : kPlanItems)
      if (row.SUB_ITEM == QLatin1String(p.code)) plan.*(p.member) = row.VALUE;
  return true;
}

bool SetWeightPlan(VtDatabase& db, const WeightPlanRecord& plan) {
  if (!VTDB_DeleteGeneralData(db, plan.UserId, kPlanItem, QString(), QString(), QString(), QString()))
    return false;
  const QDate today = QDate::currentDate();
  const QString year = today.toString(QStringLiteral("yyyy"));
  const QString month = today.toString(QStringLiteral("MM"));
  const QString day = today.toString(QStringLiteral("dd"));
  for (const PlanItem& p : kPlanItems)
    if (SetGeneralData(db, plan.UserId, year, month, day, kPlanItem, QLatin1String(p.code), plan.*(p.member)) != 0)
      return false;
  return true;
}

bool DeleteAllReceiveData(VtDatabase& db, const QString& rawFileName, const QString& receiveId) {
  const QString name = QStringLiteral("DeleteAllReceiveData");
  if (!rawFileName.isEmpty() && QFile::exists(rawFileName)) QFile::remove(rawFileName);
  if (!VTDB_DeleteReceiveHistory(db, receiveId)) {
    traceError(name, QStringLiteral("VTDB_DeleteReceiveHistory"));
    return false;
  }
  if (!VTDB_DeleteReceiveHistoryDate(db, receiveId)) {
    traceError(name, QStringLiteral("VTDB_DeleteReceiveHistoryDate"));
    return false;
  }
  if (!VTDB_DeleteDayMeasurement(db, receiveId, QString())) {
    traceError(name, QStringLiteral("VTDB_DeleteDayMeasurement"));
    return false;
  }
  if (!VTDB_DeleteTimeMeasurementBlock(db, receiveId, QString())) {
    traceError(name, QStringLiteral("VTDB_DeleteTimeMeasurementBlock"));
    return false;
  }
  return true;
}
