// GROUP, USER, CPU_TABLE and GENERAL_DATA: the VTDB_ operations.
#include <utility>

#include "frame/config.h"
#include "frame/helpers.h"
#include "frame/vbformat.h"
#include "store/store.h"
#include "store/store_internal.h"

using namespace store_detail;

namespace {

GroupRecord readGroup(const Statement& st) {
  GroupRecord g;
  g.GROUP_ID = st.fixed("GROUP_ID", 10);
  g.GROUP_NAME = st.fixed("GROUP_NAME", 50);
  g.COMMENT = st.fixed("COMMENT", 50);
  g.ICONINDEX = st.fixed("ICONINDEX", 1);
  return g;
}

UserRecord readUser(const Statement& st) {
  UserRecord u;
  u.USER_ID = st.fixed("USER_ID", 10);
  u.GROUP_ID = st.fixed("GROUP_ID", 10);
  u.LOGIN_ID = st.fixed("LOGIN_ID", 10);
  u.PASSWORD = st.fixed("PASSWORD", 10);
  u.FIRST_NAME = st.fixed("FIRST_NAME", 20);
  u.MIDDLE_NAME = st.fixed("MIDDLE_NAME", 20);
  u.LAST_NAME = st.fixed("LAST_NAME", 20);
  u.NICK_NAME = st.fixed("NICK_NAME", 20);
  u.COMMENT = st.fixed("COMMENT", 50);
  u.ICONINDEX = st.fixed("ICONINDEX", 1);
  u.GENDAR = st.fixed("GENDAR", 1);
  u.AGE = st.fixed("AGE", 3);
  u.HEIGHT_CM = st.fixed("HEIGHT_CM", 3);
  u.HEIGHT_FEET = st.fixed("HEIGHT_FEET", 1);
  u.HEIGHT_INCH = st.fixed("HEIGHT_INCH", 2);
  u.WEIGHT_KG = st.fixed("WEIGHT_KG", 5);
  u.WEIGHT_PAUND = st.fixed("WEIGHT_PAUND", 3);
  u.TARGET_CAL = st.fixed("TARGET_CAL", 4);
  u.LAST_RECEIVE_ID = st.fixed("LAST_RECEIVE_ID", 10);
  u.LAST_PAGE = st.fixed("LAST_PAGE", 3);
  u.TARGET_STEP = st.fixed("TARGET_STEP", 5);
  u.TARGET_ACTMIN = st.fixed("TARGET_ACTMIN", 4);
  u.TARGET_INTAKE = st.fixed("TARGET_INTAKE", 4);
  u.MODERATE_LOW = st.fixed("MODERATE_LOW", 1);
  u.MODERATE_HIGH = st.fixed("MODERATE_HIGH", 1);
  u.GRAPH_TARGET = st.fixed("GRAPH_TARGET", 1);
  // The last six may be null in rows of older files: blanks of their width.
  u.PREF_ID = st.fixed("PREF_ID", 8);
  u.CPU_NO = st.fixed("CPU_NO", 6);
  u.CPU_STARTDATE = st.fixed("CPU_STARTDATE", 8);
  u.EXTRA1 = st.fixed("EXTRA1", 4);
  u.EXTRA2 = st.fixed("EXTRA2", 1);
  u.EXTRA3 = st.fixed("EXTRA3", 1);
  return u;
}

QStringList userValues(const UserRecord& u) {
  return {u.USER_ID,       u.GROUP_ID,      u.LOGIN_ID,     u.PASSWORD,        u.FIRST_NAME,
          u.MIDDLE_NAME,   u.LAST_NAME,     u.NICK_NAME,    u.COMMENT,         u.ICONINDEX,
          u.GENDAR,        u.AGE,           u.HEIGHT_CM,    u.HEIGHT_FEET,     u.HEIGHT_INCH,
          u.WEIGHT_KG,     u.WEIGHT_PAUND,  u.TARGET_CAL,   u.LAST_RECEIVE_ID, u.LAST_PAGE,
          u.TARGET_STEP,   u.TARGET_ACTMIN, u.TARGET_INTAKE, u.MODERATE_LOW,   u.MODERATE_HIGH,
          u.GRAPH_TARGET,  u.PREF_ID,       u.CPU_NO,       u.CPU_STARTDATE,   u.EXTRA1,
          u.EXTRA2,        u.EXTRA3};
}

// Writes the given columns of the first USER row of a user id, each cleaned and padded
// to its width. False when the user has no row.
bool updateUserColumns(VtDatabase& db, const QString& userId,
                       const QList<std::pair<const char*, QString>>& columns) {
  Statement sel(db, QStringLiteral("SELECT rowid FROM [USER] WHERE USER_ID = ? ORDER BY rowid LIMIT 1"));
  sel.bind(1, userId);
  if (!sel.step()) return false;
  const qint64 rowid = sel.text(0).toLongLong();
  QStringList sets;
  for (const auto& c : columns) sets << QStringLiteral("[%1] = ?").arg(QLatin1String(c.first));
  Statement upd(db, QStringLiteral("UPDATE [USER] SET %1 WHERE rowid = ?").arg(sets.join(QStringLiteral(", "))));
  int i = 1;
  for (const auto& c : columns)
    upd.bind(i++, FixWidth(RemoveLineBreaks(c.second, 0), ColumnWidth(QStringLiteral("USER"), QLatin1String(c.first))));
  upd.bind(i, rowid);
  upd.run();
  return true;
}

// Deletes the first row that the query (selecting rowid) finds; false when none.
bool deleteFirst(VtDatabase& db, const QString& table, const QString& where, const QStringList& values) {
  Statement sel(db, QStringLiteral("SELECT rowid FROM [%1] WHERE %2 ORDER BY rowid LIMIT 1").arg(table, where));
  for (int i = 0; i < values.size(); ++i) sel.bind(i + 1, values.at(i));
  if (!sel.step()) return false;
  Statement del(db, QStringLiteral("DELETE FROM [%1] WHERE rowid = ?").arg(table));
  del.bind(1, sel.text(0).toLongLong());
  del.run();
  return true;
}

QString firstUserId(Statement& st) { return st.step() ? st.text("USER_ID").trimmed() : QString(); }

}  // namespace

// ---- groups ----

bool VTDB_GetGroupInfo(VtDatabase& db, std::vector<GroupRecord>& groups) {
  return Guarded(db, "VTDB_GetGroupInfo", false, [&] {
    Statement st(db, QStringLiteral("SELECT * FROM [GROUP] "));
    std::vector<GroupRecord> rows;
    while (st.step()) rows.push_back(readGroup(st));
    if (!rows.empty()) groups = std::move(rows);
    return true;
  });
}

bool VTDB_GetGroupInfoFromId(VtDatabase& db, const QString& groupId, GroupRecord& group) {
  return Guarded(db, "VTDB_GetGroupInfoFromId", false, [&] {
    Statement st(db, QStringLiteral("SELECT * FROM [GROUP] WHERE GROUP_ID = ?"));
    st.bind(1, groupId);
    if (st.step()) group = readGroup(st);
    return true;
  });
}

QString VTDB_SearchGroupName(VtDatabase& db, const QString& groupId) {
  return Guarded(db, "VTDB_SearchGroupName", QString(), [&] {
    Statement st(db, QStringLiteral("SELECT GROUP_NAME FROM [GROUP] WHERE GROUP_ID = ?"));
    st.bind(1, groupId);
    return st.step() ? st.text(0).trimmed() : QString();
  });
}

bool VTDB_DeleteGroupInfo(VtDatabase& db, const QString& groupId) {
  return Guarded(db, "VTDB_DeleteGroupInfo", false, [&] {
    deleteFirst(db, QStringLiteral("GROUP"), QStringLiteral("GROUP_ID = ?"), {groupId});
    return true;
  });
}

// ---- users ----

bool VTDB_GetUserInfoFromUserId(VtDatabase& db, const QString& userId, UserRecord& user) {
  return Guarded(db, "VTDB_GetUserInfoFromUserId", false, [&] {
    Statement st(db, QStringLiteral("SELECT * FROM [USER] WHERE USER_ID = ?"));
    st.bind(1, userId);
    if (!st.step()) return false;
    user = readUser(st);
    return true;
  });
}

bool VTDB_GetUserInfoFromGroupId(VtDatabase& db, const QString& groupId, std::vector<UserRecord>& users) {
  return Guarded(db, "VTDB_GetUserInfoFromGroupId", false, [&] {
    Statement st(db, QStringLiteral("SELECT * FROM [USER] WHERE GROUP_ID = ?"));
    st.bind(1, groupId);
    std::vector<UserRecord> rows;
    while (st.step()) rows.push_back(readUser(st));
    if (!rows.empty()) users = std::move(rows);
    return true;
  });
}

bool VTDB_ExistUser(VtDatabase& db) {
  return Guarded(db, "VTDB_ExistUser", false, [&] {
    Statement st(db, QStringLiteral("SELECT * FROM [USER] "));
    return st.step();
  });
}

bool VTDB_isUsedName(VtDatabase& db, const QString& first, const QString& middle, const QString& last,
                     const QString& excludeGroupId) {
  return Guarded(db, "VTDB_isUsedName", false, [&] {
    QString sql = QStringLiteral(
        "SELECT * FROM [USER] WHERE FIRST_NAME = ? AND MIDDLE_NAME = ? AND LAST_NAME = ?");
    if (!excludeGroupId.isEmpty()) sql += QStringLiteral(" AND NOT GROUP_ID = ?");
    Statement st(db, sql);
    st.bind(1, first).bind(2, middle).bind(3, last);
    if (!excludeGroupId.isEmpty()) st.bind(4, excludeGroupId);
    return st.step();
  });
}

bool VTDB_isUsedName_Japanese(VtDatabase& db, const QString& first, const QString& nick,
                              const QString& excludeGroupId) {
  return Guarded(db, "VTDB_isUsedName_Japanese", false, [&] {
    QString sql = QStringLiteral("SELECT * FROM [USER] WHERE FIRST_NAME = ? AND NICK_NAME = ?");
    if (!excludeGroupId.isEmpty()) sql += QStringLiteral(" AND NOT GROUP_ID = ?");
    Statement st(db, sql);
    st.bind(1, first).bind(2, nick);
    if (!excludeGroupId.isEmpty()) st.bind(3, excludeGroupId);
    return st.step();
  });
}

bool VTDB_isUsedNickName(VtDatabase& db, const QString& nick) {
  return Guarded(db, "VTDB_isUsedNickName", false, [&] {
    Statement st(db, QStringLiteral("SELECT * FROM [USER] WHERE NICK_NAME = ?"));
    st.bind(1, nick);
    return st.step();
  });
}

QString VTDB_SearchUserIdFromNickName(VtDatabase& db, const QString& nick) {
  return Guarded(db, "VTDB_SearchUserIdFromNickName", QString(), [&] {
    Statement st(db, QStringLiteral("SELECT * FROM [USER] WHERE NICK_NAME = ?"));
    st.bind(1, nick);
    return firstUserId(st);
  });
}

QString VTDB_SearchUserIdFromNickName_JPN(VtDatabase& db, const QString& nick) {
  return Guarded(db, "VTDB_SearchUserIdFromNickName_JPN", QString(), [&] {
    Statement st(db, QStringLiteral("SELECT * FROM [USER] WHERE (((StrComp(NICK_NAME,?,0))=0))"));
    st.bind(1, FixWidth(nick, 20));
    return firstUserId(st);
  });
}

QString VTDB_SearchUserIdFromName(VtDatabase& db, const QString& first, const QString& middle,
                                  const QString& last, const QString& excludeGroupId) {
  return Guarded(db, "VTDB_SearchUserIdFromName", QString(), [&] {
    QString sql = QStringLiteral(
        "SELECT USER_ID FROM [USER] WHERE FIRST_NAME=? and MIDDLE_NAME=? and LAST_NAME=?");
    if (!excludeGroupId.isEmpty()) sql += QStringLiteral(" AND NOT GROUP_ID = ?");
    Statement st(db, sql);
    st.bind(1, first).bind(2, middle).bind(3, last);
    if (!excludeGroupId.isEmpty()) st.bind(4, excludeGroupId);
    return firstUserId(st);
  });
}

QString VTDB_SearchUserIdFromName_Japanese(VtDatabase& db, const QString& first, const QString& nick,
                                           const QString& excludeGroupId) {
  return Guarded(db, "VTDB_SearchUserIdFromName_Japanese", QString(), [&] {
    QString sql = QStringLiteral("SELECT * FROM [USER] WHERE FIRST_NAME=? and NICK_NAME=?");
    if (!excludeGroupId.isEmpty()) sql += QStringLiteral(" AND NOT GROUP_ID = ?");
    Statement st(db, sql);
    st.bind(1, first).bind(2, nick);
    if (!excludeGroupId.isEmpty()) st.bind(3, excludeGroupId);
    return firstUserId(st);
  });
}

QString VTDB_SearchUserIdFromLoginID(VtDatabase& db, const QString& loginId) {
  return Guarded(db, "VTDB_SearchUserIdFromLoginID", QString(), [&] {
    Statement st(db, QStringLiteral("SELECT * FROM [USER] WHERE (((StrComp(LOGIN_ID,?,0))=0))"));
    st.bind(1, FixWidth(loginId, 10));
    return firstUserId(st);
  });
}

bool VTDB_SetUserInfo(VtDatabase& db, const UserRecord& user) {
  return Guarded(db, "VTDB_SetUserInfo", false, [&] {
    InsertRow(db, "USER", userValues(user));
    return true;
  });
}

bool VTDB_ChangeUserInfo(VtDatabase& db, const UserRecord& user) {
  return Guarded(db, "VTDB_ChangeUserInfo", false, [&] {
    const QStringList values = userValues(user);
    const TableSpec* layout = FindTable(QStringLiteral("USER"));
    QList<std::pair<const char*, QString>> columns;
    for (size_t i = 1; i < layout->columns.size(); ++i)
      columns.append({layout->columns[i].name, values.at(static_cast<int>(i))});
    if (!updateUserColumns(db, user.USER_ID, columns)) Fail(QLatin1String(kNoCurrentRecord));
    return true;
  });
}

bool VTDB_UpdateUserData(VtDatabase& db, const QString& userId, const UserReceiveUpdate& update) {
  return Guarded(db, "VTDB_UpdateUserData", false, [&] {
    QList<std::pair<const char*, QString>> c = {
        {"GENDAR", update.GENDAR},           {"AGE", update.AGE},
        {"HEIGHT_CM", update.HEIGHT_CM},     {"HEIGHT_FEET", update.HEIGHT_FEET},
        {"HEIGHT_INCH", update.HEIGHT_INCH}, {"WEIGHT_KG", update.WEIGHT_KG},
        {"WEIGHT_PAUND", update.WEIGHT_PAUND}, {"LAST_RECEIVE_ID", update.LAST_RECEIVE_ID},
        {"LAST_PAGE", update.LAST_PAGE},
    };
    if (update.TARGET_CAL) c.append({"TARGET_CAL", *update.TARGET_CAL});
    if (update.TARGET_STEP) c.append({"TARGET_STEP", *update.TARGET_STEP});
    if (update.TARGET_ACTMIN) c.append({"TARGET_ACTMIN", *update.TARGET_ACTMIN});
    updateUserColumns(db, userId, c);  // a missing user is no failure
    return true;
  });
}

bool VTDB_UpdateUserDataForCSV(VtDatabase& db, const QString& userId, const CsvRow& day) {
  return Guarded(db, "VTDB_UpdateUserDataForCSV", false, [&] {
    QList<std::pair<const char*, QString>> c;
    QString heightCm = day.HEIGHT_CM;
    if (heightCm.isEmpty())
      heightCm = QString::number(FeetInchToCm(static_cast<std::int32_t>(Val(day.HEIGHT_FEET)),
                                              static_cast<std::int32_t>(Val(day.HEIGHT_INCH))));
    QString weightKg = day.WEIGHT_KG.isEmpty()
                           ? Format(static_cast<double>(PoundToKg(static_cast<std::int32_t>(Val(day.WEIGHT_PAUND)))),
                                    QStringLiteral("##0.0"))
                           : Format(day.WEIGHT_KG, QStringLiteral("##0.0"));
    c.append({"GENDAR", day.GENDAR});
    c.append({"AGE", day.AGE});
    c.append({"HEIGHT_CM", heightCm});
    c.append({"HEIGHT_FEET", day.HEIGHT_FEET});
    c.append({"HEIGHT_INCH", day.HEIGHT_INCH});
    c.append({"WEIGHT_KG", weightKg});
    c.append({"WEIGHT_PAUND", day.WEIGHT_PAUND});
    if (!day.TARGET_CAL.isEmpty()) c.append({"TARGET_CAL", day.TARGET_CAL});
    const QString model = day.PEDOMERA;
    if ((model == QLatin1String("1") || model == QLatin1String("2") || model == QLatin1String("3")) &&
        !day.TARGET_STEP.isEmpty())
      c.append({"TARGET_STEP", day.TARGET_STEP});
    if (model == QLatin1String("1") && !day.TARGET_TIME.isEmpty()) c.append({"TARGET_ACTMIN", day.TARGET_TIME});
    updateUserColumns(db, userId, c);
    return true;
  });
}

bool VTDB_DeleteUserInfo(VtDatabase& db, const QString& userId) {
  return Guarded(db, "VTDB_DeleteUserInfo", false, [&] {
    deleteFirst(db, QStringLiteral("USER"), QStringLiteral("USER_ID = ?"), {userId});
    return true;
  });
}

// ---- CPU_TABLE ----

QString VTDB_GetUserIDFromCPUNo(VtDatabase& db, const QString& cpuNo) {
  return Guarded(db, "VTDB_GetUserIDFromCPUNo", QString(), [&] {
    Statement st(db, QStringLiteral("SELECT USER_ID FROM [CPU_TABLE] WHERE CPU_NO = ? ORDER BY rowid"));
    st.bind(1, cpuNo);
    return st.step() ? st.text(0).trimmed() : QString();
  });
}

bool VTDB_ChangeUserIdOnCPUNo(VtDatabase& db, const QString& cpuNo, const QString& userId, bool* found) {
  return Guarded(db, "VTDB_ChangeUserIdOnCPUNo", false, [&] {
    Statement sel(db, QStringLiteral("SELECT rowid FROM [CPU_TABLE] WHERE CPU_NO = ? ORDER BY rowid LIMIT 1"));
    sel.bind(1, cpuNo);
    const bool hit = sel.step();
    if (found) *found = hit;
    if (hit) {
      Statement upd(db, QStringLiteral("UPDATE [CPU_TABLE] SET USER_ID = ? WHERE rowid = ?"));
      upd.bind(1, userId).bind(2, sel.text(0).toLongLong());
      upd.run();
    }
    return true;
  });
}

bool VTDB_SetUserIdOnCPUNo(VtDatabase& db, const QString& cpuNo, const QString& userId) {
  return Guarded(db, "VTDB_SetUserIdOnCPUNo", false, [&] {
    InsertRow(db, "CPU_TABLE", {cpuNo, userId});
    return true;
  });
}

bool VTDB_DeleteCPUNoOnUserId(VtDatabase& db, const QString& userId) {
  return Guarded(db, "VTDB_DeleteCPUNoOnUserId", false, [&] {
    deleteFirst(db, QStringLiteral("CPU_TABLE"), QStringLiteral("USER_ID = ?"), {userId});
    return true;
  });
}

// ---- GENERAL_DATA ----

namespace {

// Year, month and day narrow the general data one after the other: a month counts only with a
// year, a day only with a month. True when all three were given.
bool AppendGeneralDateFilter(QString& sql, QStringList& values, const QString& year, const QString& month,
                             const QString& day) {
  const std::pair<const char*, const QString*> parts[] = {{" AND YEAR=?", &year}, {" AND MONTH=?", &month},
                                                          {" AND DAY=?", &day}};
  for (const auto& [clause, value] : parts) {
    if (value->isEmpty()) return false;
    sql += QLatin1String(clause);
    values << *value;
  }
  return true;
}

}  // namespace

bool VTDB_GetGeneralDataInfo(VtDatabase& db, std::vector<GeneralRecord>& items, const QString& item,
                             const QString& userId, const QString& year, const QString& month,
                             const QString& day, const QString& subItem) {
  return Guarded(db, "VTDB_GetGeneralDataInfo", false, [&] {
    QString sql = QStringLiteral("SELECT * FROM [GENERAL_DATA]  WHERE ITEM=? AND USER_ID=?");
    QStringList values = {item, userId};
    // The sub-item is tested, but the item stands in its place: it narrows nothing.
    if (AppendGeneralDateFilter(sql, values, year, month, day) && !subItem.isEmpty()) {
      sql += QStringLiteral(" AND ITEM=?");
      values << item;
    }
    sql += QStringLiteral(" ORDER BY YEAR, MONTH, DAY, ITEM, SUB_ITEM");
    Statement st(db, sql);
    for (int i = 0; i < values.size(); ++i) st.bind(i + 1, values.at(i));
    while (st.step()) {
      GeneralRecord g;
      g.USER_ID = st.fixed("USER_ID", 50);
      g.YEAR = st.fixed("YEAR", 50);
      g.MONTH = st.fixed("MONTH", 50);
      g.DAY = st.fixed("DAY", 50);
      g.ITEM = st.fixed("ITEM", 50);
      g.SUB_ITEM = st.fixed("SUB_ITEM", 50);
      g.VALUE = st.fixed("VALUE", 50);
      items.push_back(g);
    }
    return true;
  });
}

bool VTDB_SetGeneralData(VtDatabase& db, const GeneralRecord& item) {
  return Guarded(db, "VTDB_SetGeneralData", false, [&] {
    InsertRow(db, "GENERAL_DATA",
              {item.USER_ID, item.YEAR, item.MONTH, item.DAY, item.ITEM, item.SUB_ITEM, item.VALUE});
    return true;
  });
}

bool VTDB_DeleteGeneralData(VtDatabase& db, const QString& userId, const QString& item,
                            const QString& year, const QString& month, const QString& day,
                            const QString& subItem) {
  return Guarded(db, "VTDB_DeleteGeneralData", false, [&] {
    QString sql = QStringLiteral("DELETE FROM [GENERAL_DATA] WHERE USER_ID = ? AND ITEM= ?");
    QStringList values = {userId, item};
    if (AppendGeneralDateFilter(sql, values, year, month, day) && !subItem.isEmpty()) {
      sql += QStringLiteral(" AND SUB_ITEM=?");
      values << subItem;
    }
    Statement st(db, sql);
    for (int i = 0; i < values.size(); ++i) st.bind(i + 1, values.at(i));
    st.run();
    return true;
  });
}
