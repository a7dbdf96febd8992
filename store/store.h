// The data store: one encrypted SQLite file (SQLCipher) holding the household's users,
// receptions and days, and every operation on it.
//
// Conventions of the operations:
// - The connection is always the first argument. The program owns one working
//   connection (opened by VTDB_Open, closed by VTDB_Close) and passes it in.
// - No exception leaves an operation. A failing VTDB_ operation stores the error in the
//   connection (lastErrorNumber/lastErrorText), shows the text through the dialog
//   interface, writes a level-"2" trace line under its own name, and returns its failure
//   value: false, -1, or "" for one that returns text.
// - Searches that find nothing are no failures: they return "" or false.
// - Dates are "YYYYMMDD" text; both ends of a range are inclusive. A day stored with an
//   empty date never falls in a range.
// - Each write stands alone (no transaction) unless the caller opens one
//   (VTDB_BeginTrans...; the CSV import does).
#pragma once

#include <QString>
#include <QStringList>
#include <optional>
#include <vector>

#include "store/engine.h"
#include "store/records.h"
#include "store/schema.h"

class ProgressInterface;

// ---- connection, identifiers, maintenance ----

inline const QString kDefaultDbPath = QStringLiteral("../data/mdb/ACTA.db");
inline const QString kDefaultDbPassword = QStringLiteral("qoxtlamv");
inline const QString kDefaultGroupId = QStringLiteral("G000000001");
inline const QString kInstructorGroupId = QStringLiteral("G999999999");
inline const QString kInstructorUserId = QStringLiteral("U999999999");

// Empty path is replaced in the caller's variable by the default; an empty password, or
// the built-in one, by the installation's key (InstallationDatabaseKey), or by the
// built-in password where the installation has no key. Then ConnectDB. 0 success, 1 failure.
int VTDB_Open(VtDatabase& db, QString& path, QString& password);
// Closes the connection. Always 0.
int VTDB_Close(VtDatabase& db);
// Opens and keys the file. On failure the engine's reason goes to the trace log, a
// catalogue message (missing, empty, wrong key, engine failure) through the dialog
// interface, and the result is 1; 0 on success.
int ConnectDB(VtDatabase& db, const QString& path, const QString& password);

// Next number of the counter key ("02" users, "03" receptions) as nine digits; the first
// call for a key gives "000000001". After "999999999" comes "100000000". "" on failure.
QString GetId(VtDatabase& db, const QString& key);
QString CreateUserId(VtDatabase& db);     // "U" + GetId("02")
QString CreateReceiveId(VtDatabase& db);  // "R" + GetId("03")

// Transactions (the CSV import only). False on failure, reported as any operation.
bool VTDB_BeginTrans(VtDatabase& db);
bool VTDB_CommitTrans(VtDatabase& db);
bool VTDB_RollbackTrans(VtDatabase& db);

// Compacts the (closed) database file when at least minimumFreeShare of its pages are
// free, else leaves it alone with a trace line (result 0). The compaction never touches
// the database before its replacement is complete: the file is copied to path + ".bak"
// (the kept backup), exported into CompactTempPath(path), which is synced and checked
// (opens with the key, integrity_check, the same row count in every table), then renamed
// over the database and the folder synced. The installation's lock is held throughout.
// The bar moves to 20, 40, 60 and ends at kCompactProgressMaximum. An empty path means
// the default, an empty password the installation's key (or the built-in password of an
// installation without one). result: 0 done or skipped; -1 when the file does not exist
// (trace line only) or a step failed (message shown; the database is as it was).
inline constexpr int kCompactProgressMaximum = 100;
inline constexpr double kCompactMinimumFreeShare = 0.10;
void CompactDB(QString& path, int& result, ProgressInterface& progress,
               const QString& password = QString(),
               double minimumFreeShare = kCompactMinimumFreeShare);
QString CompactTempPath(const QString& path);

// ---- groups ----

bool VTDB_GetGroupInfo(VtDatabase& db, std::vector<GroupRecord>& groups);
// True also when the group does not exist; the record is then left empty.
bool VTDB_GetGroupInfoFromId(VtDatabase& db, const QString& groupId, GroupRecord& group);
// Trimmed name, or "".
QString VTDB_SearchGroupName(VtDatabase& db, const QString& groupId);
bool VTDB_DeleteGroupInfo(VtDatabase& db, const QString& groupId);

// ---- users ----

// True when found.
bool VTDB_GetUserInfoFromUserId(VtDatabase& db, const QString& userId, UserRecord& user);
// A group with no user leaves users as it was and gives true.
bool VTDB_GetUserInfoFromGroupId(VtDatabase& db, const QString& groupId,
                                 std::vector<UserRecord>& users);
bool VTDB_ExistUser(VtDatabase& db);
// The "=" searches ignore trailing blanks, letter case and character width;
// a non-empty excludeGroupId leaves that group out.
bool VTDB_isUsedName(VtDatabase& db, const QString& first, const QString& middle,
                     const QString& last, const QString& excludeGroupId);
bool VTDB_isUsedName_Japanese(VtDatabase& db, const QString& first, const QString& nick,
                              const QString& excludeGroupId);
bool VTDB_isUsedNickName(VtDatabase& db, const QString& nick);
// The searches give the trimmed USER_ID of the first row found, or "".
QString VTDB_SearchUserIdFromNickName(VtDatabase& db, const QString& nick);
// Exact comparison (StrComp) of the nick padded to 20.
QString VTDB_SearchUserIdFromNickName_JPN(VtDatabase& db, const QString& nick);
QString VTDB_SearchUserIdFromName(VtDatabase& db, const QString& first, const QString& middle,
                                  const QString& last, const QString& excludeGroupId);
QString VTDB_SearchUserIdFromName_Japanese(VtDatabase& db, const QString& first,
                                           const QString& nick, const QString& excludeGroupId);
// Exact comparison (StrComp) of the login id padded to 10.
QString VTDB_SearchUserIdFromLoginID(VtDatabase& db, const QString& loginId);
// Adds the row: fields cleaned of line breaks and padded to their widths.
bool VTDB_SetUserInfo(VtDatabase& db, const UserRecord& user);
// Rewrites the 31 columns after USER_ID of the row with that USER_ID.
bool VTDB_ChangeUserInfo(VtDatabase& db, const UserRecord& user);
// After a reception: the body data, LAST_RECEIVE_ID, LAST_PAGE and the targets that the
// update holds. A missing user row is no failure.
bool VTDB_UpdateUserData(VtDatabase& db, const QString& userId, const UserReceiveUpdate& update);
// After an import: body data and targets of the latest imported day.
bool VTDB_UpdateUserDataForCSV(VtDatabase& db, const QString& userId, const CsvRow& day);
bool VTDB_DeleteUserInfo(VtDatabase& db, const QString& userId);

// ---- CPU_TABLE ----

// USER_ID of the first row of that CPU number, or "".
QString VTDB_GetUserIDFromCPUNo(VtDatabase& db, const QString& cpuNo);
// Sets USER_ID on the first row of that CPU number, if any; found tells whether one was.
bool VTDB_ChangeUserIdOnCPUNo(VtDatabase& db, const QString& cpuNo, const QString& userId,
                              bool* found = nullptr);
bool VTDB_SetUserIdOnCPUNo(VtDatabase& db, const QString& cpuNo, const QString& userId);
// Deletes the first row of the user only (a second recorder stays assigned).
bool VTDB_DeleteCPUNoOnUserId(VtDatabase& db, const QString& userId);

// ---- GENERAL_DATA ----

// Rows of an item of a user, narrowed by year, month, day as given (each only when the
// one before is given); ordered by YEAR, MONTH, DAY, ITEM, SUB_ITEM. The sub-item
// narrows nothing. Rows are appended to items.
bool VTDB_GetGeneralDataInfo(VtDatabase& db, std::vector<GeneralRecord>& items,
                             const QString& item, const QString& userId, const QString& year,
                             const QString& month, const QString& day, const QString& subItem);
bool VTDB_SetGeneralData(VtDatabase& db, const GeneralRecord& item);
bool VTDB_DeleteGeneralData(VtDatabase& db, const QString& userId, const QString& item,
                            const QString& year, const QString& month, const QString& day,
                            const QString& subItem);

// ---- RECEIVE_HISTORY, RECEIVE_HISTORY_DATE ----

// Adds the row with the nine columns of history as they stand.
bool VTDB_SetReceiveHistory(VtDatabase& db, const ReceiveHistoryRecord& history);
// True also with no row (record then left as it was).
bool VTDB_GetReceiveHistory(VtDatabase& db, const QString& receiveId,
                            ReceiveHistoryRecord& history);
bool VTDB_DeleteReceiveHistory(VtDatabase& db, const QString& receiveId);
bool VTDB_SetReceiveHistoryDate(VtDatabase& db, const QString& receiveId,
                                const QString& cpuDate, const QString& userId,
                                const QString& systemDate, const QString& importFlag);
bool VTDB_DeleteReceiveHistoryDate(VtDatabase& db, const QString& receiveId);

// ---- DAY_MEASUREMENT, TIME_MEASUREMENT_BLOCK, TIME_MEASUREMENT ----

// Adds the row of a received day with the columns of day as they stand; WEIGHT_KG_ORG,
// WEIGHT_PAUND_ORG and REMARK stay empty.
bool VTDB_SetDayMeasurement(VtDatabase& db, const DayRecord& day);
bool VTDB_SetDayMeasurementForCSV(VtDatabase& db, const QString& receiveId, int seqNum,
                                  const UserInfo& user, const CsvRow& row);
// True when found.
bool VTDB_GetDayMeasurement(VtDatabase& db, const QString& receiveId, const QString& seqNum,
                            DayRecord& day);
// The dated rows of a reception, optionally bounded by CINT(SEQ_NUM) (empty = no bound),
// appended to rows in sequence order (imperial members empty for SELECT_UNIT "0").
bool VTDB_GetDayMeasurementDataFromIdAndSeqNum(VtDatabase& db, const QString& receiveId,
                                               const QString& fromSeq, const QString& toSeq,
                                               std::vector<CsvRow>& rows);
// First and last measured day of the user ("" each when none); latestOnly restricts to
// the user's newest reception.
bool VTDB_GetDayMeasurementRange(VtDatabase& db, const QString& userId, QString& first,
                                 QString& last, bool latestOnly);
// The reception nearest a date: at or before it (newest first) or at or after it.
// Outputs stay as they were when nothing is found (still true).
bool VTDB_GetDayMeasurementReceiveId(VtDatabase& db, const QString& userId,
                                     const QString& date, QString& receiveId, QString& seqNum,
                                     bool atOrBefore);
bool VTDB_GetDayMeasurementReceiveIdFromUserID(VtDatabase& db, const QString& userId,
                                               QStringList& receiveIds);
// RAW_MEASUREMENT_DAY of the user's row with that page, of the oldest reception; or "".
QString VTDB_GetMeasurementDayFromPage(VtDatabase& db, const QString& page,
                                       const QString& userId);
// Deletes the rows of a reception, or only the one with seqNum when it is not empty.
bool VTDB_DeleteDayMeasurement(VtDatabase& db, const QString& receiveId, const QString& seqNum);
// Deletes the rows of a reception with that page; seqNum gets the SEQ_NUM of the last.
bool VTDB_DeleteDayMeasurementFromPage(VtDatabase& db, const QString& receiveId,
                                       const QString& page, QString& seqNum);
// Adds the profile row with the four columns of block as they stand.
bool VTDB_SetTimeMeasurementBlock(VtDatabase& db, const TimeBlockRecord& block);
bool VTDB_SetTimeMeasurementBlockForCSV(VtDatabase& db, const QString& receiveId, int seqNum,
                                        const UserInfo& user, const CsvRow& row);
// True also with no row (record then left as it was).
bool VTDB_GetTimeMeasurementDayBlock(VtDatabase& db, const QString& receiveId,
                                     const QString& seqNum, TimeBlockRecord& block);
bool VTDB_DeleteTimeMeasurement(VtDatabase& db, const QString& receiveId, const QString& seqNum);
bool VTDB_DeleteTimeMeasurementBlock(VtDatabase& db, const QString& receiveId,
                                     const QString& seqNum);

// The stored text of PEDOMERA, repaired: "0" with a stride other than "0" is "2".
QString FixPedomeraKind(const QString& pedomera, const QString& strideCm);

// ---- chart queries ----

// The rows of the user in the range, ordered by day, newest reception first, highest
// SEQ_NUM first, each flagged NewestOfDay; ExcludeFlag "1" when STEP_COUNT is below the
// threshold. Replaces rows. Number of rows, -1 on failure.
int VTDB_GetChartData(VtDatabase& db, const QString& userId, const QString& from,
                      const QString& to, const QString& stepThreshold,
                      std::vector<ChartDayRecord>& rows);
int VTDB_GetChartDataForCSV(VtDatabase& db, const QString& userId, const QString& from,
                            const QString& to, std::vector<CsvRow>& rows);
// Fills MODERATE and VIGOROUS of day from the level counts of levels lowLevel..highLevel
// and highLevel+1..9. highLevel must stay below 9. Rows found, -1 on failure.
int VTDB_GetModerate(VtDatabase& db, const QString& receiveId, const QString& seqNum,
                     const QString& lowLevel, const QString& highLevel, ChartDayRecord& day);
bool VTDB_ExistData(VtDatabase& db, const QString& userId, const QString& from,
                    const QString& to);

// ---- wrappers (VTCommon) ----

QString GetDisplayName(const UserInfo& user);  // by the configured language
int GetGroupList(VtDatabase& db, std::vector<GroupInfo>& groups);  // count, -1 failure
bool GetGroupInfo(VtDatabase& db, GroupInfo& group, const QString& groupId);
QString GetGroupName(VtDatabase& db, const QString& groupId);
// Users of the group with display names; count, -1 on failure.
int GetUserList(VtDatabase& db, const QString& groupId, std::vector<UserInfo>& users);
bool GetUserInfo(VtDatabase& db, UserInfo& user, const QString& userId);
// True also when the CPU number is unassigned (user then left empty).
bool GetUserInfoFromCPUNo(VtDatabase& db, UserInfo& user, const QString& cpuNo);
int GetGeneralData(VtDatabase& db, std::vector<GeneralInfo>& items, const QString& item,
                   const QString& userId, const QString& year, const QString& month,
                   const QString& day, const QString& subItem);
// New user: 0, or 6, 7, 8, 9, 10, 13, 18, kUserNameTooLong. USER_ID is written back into user.
int SetUser(VtDatabase& db, UserInfo& user);
// Changed user: 0, or 7, 8, 9, 10, 12, 13, 18, kUserNameTooLong.
int EditUser(VtDatabase& db, const UserInfo& user);
// A name longer than its column is refused, never cut: the names hold this many
// characters (characters, not UTF-16 units).
inline constexpr int kUserNameTooLong = 19;
inline constexpr int kNameMaxCharacters = 20;
struct NameTooLong {
  QString field;  // "FIRST_NAME", "MIDDLE_NAME", "LAST_NAME" or "NICK_NAME"
  int limit = 0;
  int given = 0;
};
// The first name of the record (trimmed) that does not fit its column.
std::optional<NameTooLong> FindTooLongName(const UserInfo& user);
// The catalogue message of a refusal code of SetUser or EditUser and its argument (the
// prohibited character and where it is, the name too long with its limit); messageCode
// is "" for 0 and unknown codes.
void UserRefusalMessage(int code, const UserInfo& user, QString& messageCode, QString& argument);
// 0, or 22 on failure.
int UpdateUserData(VtDatabase& db, const QString& userId, const UserReceiveUpdate& update);
// 0, or 24 on failure.
int SetGeneralData(VtDatabase& db, const QString& userId, const QString& year,
                   const QString& month, const QString& day, const QString& item,
                   const QString& subItem, const QString& value);
// 0 done; 2 the user has data and withData is false; 4 a step failed (earlier steps stay).
int DeleteUser(VtDatabase& db, const QString& userId, bool withData);
bool GetWeightPlan(VtDatabase& db, WeightPlanRecord& plan, const QString& userId);
// Replaces the user's plan, dated today. Not a transaction.
bool SetWeightPlan(VtDatabase& db, const WeightPlanRecord& plan);
// Removes what a failed reception wrote: the raw file (if named and present), then the
// RECEIVE_HISTORY, RECEIVE_HISTORY_DATE, DAY_MEASUREMENT and TIME_MEASUREMENT_BLOCK rows.
bool DeleteAllReceiveData(VtDatabase& db, const QString& rawFileName, const QString& receiveId);
