#include "store/schema.h"

#include <QFile>
#include <QFileInfo>
#include <QStringList>

#include "store/engine.h"

namespace {

std::vector<ColumnSpec> dayColumns() {
  std::vector<ColumnSpec> c = {
      {"RECEIVE_ID", 10}, {"SEQ_NUM", 3},       {"START_PAGE", 3},   {"PAGE", 3},
      {"MEASUREMENT_DAY", 8}, {"RAW_MEASUREMENT_DAY", 8}, {"WEEK_DAY", 1}, {"USER_ID", 10},
      {"GENDAR", 1},      {"AGE", 3},           {"HEIGHT_CM", 3},    {"HEIGHT_FEET", 1},
      {"HEIGHT_INCH", 2}, {"WEIGHT_KG", 5},     {"WEIGHT_PAUND", 3}, {"WEIGHT_KG_ORG", 0},
      {"WEIGHT_PAUND_ORG", 0}, {"TARGET_CAL", 4}, {"ENERGY_EXPENDITURE", 5}, {"ACTIVITY", 5},
      {"STEP_COUNT", 5},
  };
  static const char* levels[] = {"ACTIVITY_LEVEL_0", "ACTIVITY_LEVEL_1", "ACTIVITY_LEVEL_2",
                                 "ACTIVITY_LEVEL_3", "ACTIVITY_LEVEL_4", "ACTIVITY_LEVEL_5",
                                 "ACTIVITY_LEVEL_6", "ACTIVITY_LEVEL_7", "ACTIVITY_LEVEL_8",
                                 "ACTIVITY_LEVEL_9"};
  for (const char* l : levels) c.push_back({l, 5});
  c.push_back({"ACTIVITY_LEVEL_SMALL", 5});
  static const char* events[] = {"EVENT_1", "EVENT_2", "EVENT_3", "EVENT_4", "EVENT_5",
                                 "EVENT_6", "EVENT_7", "EVENT_8", "EVENT_9", "EVENT_10"};
  for (const char* e : events) c.push_back({e, 4});
  const std::vector<ColumnSpec> tail = {
      {"LOWER_BOUND", 1},   {"UPPER_BOUND", 1},      {"TARGET_TIME", 5},   {"PACE_CM", 5},
      {"PACE_FEET", 5},     {"PACE_INCH", 5},        {"TARGET_STEP", 5},   {"DISPLAY_MODE", 1},
      {"MEASUREMENT_MODE", 1}, {"ACCUMULATION_TIME", 5}, {"DISTANCE_KM", 5}, {"DISTANCE_MILE", 5},
      {"SELECT_TARGET", 1}, {"SELECT_UNIT", 1},      {"PEDOMERA", 1},      {"MEMORY_LOCK", 1},
      {"REMARK", 0},        {"EXERCISE", 10},
  };
  c.insert(c.end(), tail.begin(), tail.end());
  return c;
}

std::vector<TableSpec> makeTables() {
  std::vector<TableSpec> t;
  t.push_back({"GROUP", {{"GROUP_ID", 10}, {"GROUP_NAME", 50}, {"COMMENT", 50}, {"ICONINDEX", 1}},
               false, true});
  t.push_back({"USER",
               {{"USER_ID", 10},      {"GROUP_ID", 10},      {"LOGIN_ID", 10},     {"PASSWORD", 10},
                {"FIRST_NAME", 20},   {"MIDDLE_NAME", 20},   {"LAST_NAME", 20},    {"NICK_NAME", 20},
                {"COMMENT", 50},      {"ICONINDEX", 1},      {"GENDAR", 1},        {"AGE", 3},
                {"HEIGHT_CM", 3},     {"HEIGHT_FEET", 1},    {"HEIGHT_INCH", 2},   {"WEIGHT_KG", 5},
                {"WEIGHT_PAUND", 3},  {"TARGET_CAL", 4},     {"LAST_RECEIVE_ID", 10}, {"LAST_PAGE", 3},
                {"TARGET_STEP", 5},   {"TARGET_ACTMIN", 4},  {"TARGET_INTAKE", 4}, {"MODERATE_LOW", 1},
                {"MODERATE_HIGH", 1}, {"GRAPH_TARGET", 1},   {"PREF_ID", 8},       {"CPU_NO", 6},
                {"CPU_STARTDATE", 8}, {"EXTRA1", 4},         {"EXTRA2", 1},        {"EXTRA3", 1}},
               true, true});
  t.push_back({"CPU_TABLE", {{"CPU_NO", 6}, {"USER_ID", 10}}, false, true});
  t.push_back({"ID_TABLE", {{"KEY", 2}, {"CRNTNO", 9}}, false, false});
  t.push_back({"GENERAL_DATA",
               {{"USER_ID", 50}, {"YEAR", 50}, {"MONTH", 50}, {"DAY", 50}, {"ITEM", 50},
                {"SUB_ITEM", 50}, {"VALUE", 50}},
               true, true});
  t.push_back({"RECEIVE_HISTORY",
               {{"RECEIVE_ID", 10}, {"VERSION_NO", 3}, {"ID_NO", 5}, {"CPU_NO", 6},
                {"RECEIVE_DATE", 20}, {"RAWFILENAME", 128}, {"START_PAGE", 3}, {"END_PAGE", 3},
                {"CURRENT_PAGE", 3}},
               false, false});
  t.push_back({"RECEIVE_HISTORY_DATE",
               {{"RECEIVE_ID", 10}, {"RECEIVE_CPU_DATE", 8}, {"USER_ID", 10},
                {"RECEIVE_SYSTEM_DATE", 14}, {"CSV_IMPORT", 1}},
               false, false});
  t.push_back({"DAY_MEASUREMENT", dayColumns(), false, false});
  t.push_back({"TIME_MEASUREMENT_BLOCK",
               {{"RECEIVE_ID", 10}, {"SEQ_NUM", 3}, {"ACT_LEVEL_BLOCK", 2880}, {"MEASUREMENT_MODE", 1}},
               false, false});
  t.push_back({"TIME_MEASUREMENT", {{"RECEIVE_ID", 10}, {"SEQ_NUM", 3}, {"ACT_LEVEL", 0}}, false, false});
  // Kept tables: part of the file, touched by nothing.
  t.push_back({"ACTIVITY_MASTER", {{"ID", 0}, {"NAME", 0}, {"ALG", 0}, {"DISP", 0}, {"VALUE", 0}}, false, false});
  t.push_back({"OTHER_ACTIVITY",
               {{"USER_ID", 0}, {"YEAR", 0}, {"MONTH", 0}, {"DAY", 0}, {"ITEMNUM", 0},
                {"ACTIVITY_ID", 0}, {"MODE", 0}, {"STARTTIME", 0}, {"TIME", 0}, {"CAL", 0}},
               false, false});
  t.push_back({"COMMENT", {{"ID", 0}, {"ALG", 0}, {"DISP", 0}, {"COMMENT", 0}}, false, false});
  t.push_back({"PREFECTURE", {{"PREF_ID", 0}}, false, false});
  for (const char* name : {"RISK_BASE_COMMENT_CLASS", "CHANGE_BASE_COMMENT_CLASS"})
    t.push_back({name, {{"CLASS_ID", 0}, {"CLASS_TYPE", 0}, {"LOWER_ACT_TIME", 0}, {"LOWER_STEP", 0}},
                 false, false});
  t.push_back({"RISK_SEASON_COMMENT_CLASS",
               {{"CLASS_ID", 0}, {"CLASS_TYPE", 0}, {"LOWER_ACT_TIME_CHANGE", 0},
                {"LOWER_STEP_CHANGE", 0}, {"PREF_ID", 0}},
               false, false});
  for (const char* name :
       {"RISK_BASE_COMMENT_DETAIL", "RISK_SEASON_COMMENT_DETAIL", "CHANGE_BASE_COMMENT_DETAIL"})
    t.push_back({name, {{"CLASS_ID", 0}, {"CLASS_COMMENT", 0}}, false, false});
  t.push_back({"RISK_ACT_TIME_STEP_CHANGE",
               {{"MONTH", 0}, {"ACT_TIME_CHANGE", 0}, {"STEP_CHANGE", 0}, {"PREF_ID", 0}}, false, false});
  t.push_back({"RISK_STEP_TARGET", {{"MONTH", 0}, {"STEP_COUNT", 0}, {"PREF_ID", 0}}, false, false});
  return t;
}

}  // namespace

const std::vector<TableSpec>& SchemaTables() {
  static const std::vector<TableSpec> tables = makeTables();
  return tables;
}

const TableSpec* FindTable(const QString& name) {
  for (const TableSpec& t : SchemaTables())
    if (name == QLatin1String(t.name)) return &t;
  return nullptr;
}

int ColumnWidth(const QString& table, const QString& column) {
  const TableSpec* t = FindTable(table);
  if (!t) return 0;
  for (const ColumnSpec& c : t->columns)
    if (column == QLatin1String(c.name)) return c.width;
  return 0;
}

void CreateSchema(VtDatabase& db) {
  Transaction tx(db);
  for (const TableSpec& t : SchemaTables()) {
    QStringList cols;
    for (const ColumnSpec& c : t.columns) {
      QString def = QStringLiteral("[%1] TEXT").arg(QLatin1String(c.name));
      if (t.jetCompare) def += QStringLiteral(" COLLATE JETTEXT");
      cols << def;
    }
    db.exec(QStringLiteral("CREATE TABLE [%1] (%2)").arg(QLatin1String(t.name), cols.join(QStringLiteral(", "))));
  }
  db.exec(QStringLiteral(
      "CREATE INDEX IX_DAY_USER_DAY ON [DAY_MEASUREMENT] (USER_ID, MEASUREMENT_DAY);"
      "CREATE INDEX IX_DAY_RECEIVE_SEQ ON [DAY_MEASUREMENT] (RECEIVE_ID, SEQ_NUM);"
      "CREATE INDEX IX_BLOCK_RECEIVE_SEQ ON [TIME_MEASUREMENT_BLOCK] (RECEIVE_ID, SEQ_NUM);"
      "CREATE INDEX IX_TIME_RECEIVE_SEQ ON [TIME_MEASUREMENT] (RECEIVE_ID, SEQ_NUM);"
      "CREATE INDEX IX_CPU_CPUNO ON [CPU_TABLE] (CPU_NO);"
      "CREATE INDEX IX_USER_USERID ON [USER] (USER_ID);"
      "CREATE INDEX IX_USER_GROUP ON [USER] (GROUP_ID);"
      "CREATE INDEX IX_GENERAL_USER_ITEM ON [GENERAL_DATA] (USER_ID, ITEM);"
      "CREATE INDEX IX_HISTORY_RECEIVE ON [RECEIVE_HISTORY] (RECEIVE_ID);"
      "CREATE INDEX IX_HISTORY_DATE_RECEIVE ON [RECEIVE_HISTORY_DATE] (RECEIVE_ID);"));

  // The fixed groups and the instructor user, padded as every USER and GROUP row is.
  Statement group(db, QStringLiteral("INSERT INTO [GROUP] (GROUP_ID, GROUP_NAME, COMMENT, ICONINDEX) "
                                     "VALUES (?, ?, ?, ?)"));
  const std::pair<const char*, const char*> groups[] = {{"G000000001", "Personal"},
                                                        {"G999999999", "Instructor"}};
  for (const auto& g : groups) {
    group.reset();
    group.bind(1, FixWidth(QLatin1String(g.first), 10))
        .bind(2, FixWidth(QLatin1String(g.second), 50))
        .bind(3, FixWidth(QString(), 50))
        .bind(4, QStringLiteral("0"));
    group.run();
  }
  const TableSpec* user = FindTable(QStringLiteral("USER"));
  const QStringList values = {
      QStringLiteral("U999999999"), QStringLiteral("G999999999"), QStringLiteral("INSTRUCTOR"),
      QString(), QStringLiteral("Instructor"), QString(), QStringLiteral("Vantora"), QString(),
      QString(), QStringLiteral("0"), QStringLiteral("0"), QStringLiteral("30"),
      QStringLiteral("170"), QString(), QString(), QStringLiteral("60.0"), QString(),
      QStringLiteral("200"), QString(), QString(), QStringLiteral("8000"), QStringLiteral("30"),
      QStringLiteral("2000"), QStringLiteral("4"), QStringLiteral("7"), QStringLiteral("0")};
  QStringList names;
  QStringList marks;
  for (const ColumnSpec& c : user->columns) {
    names << QLatin1String(c.name);
    marks << QStringLiteral("?");
  }
  Statement ins(db, QStringLiteral("INSERT INTO [USER] (%1) VALUES (%2)")
                        .arg(names.join(QStringLiteral(", ")), marks.join(QStringLiteral(", "))));
  for (int i = 0; i < static_cast<int>(user->columns.size()); ++i) {
    if (i < values.size())
      ins.bind(i + 1, FixWidth(values.at(i), user->columns[static_cast<size_t>(i)].width));
    else
      ins.bindNull(i + 1);  // PREF_ID .. EXTRA3 start out null
  }
  ins.run();
  tx.commit();
}

bool CreateDatabaseFile(const QString& path, const QString& password, QString* error) {
  if (QFileInfo::exists(path)) {
    if (error) *error = QStringLiteral("%1 already exists; it is not overwritten").arg(path);
    return false;
  }
  try {
    VtDatabase db;
    db.open(path, password, VtDatabase::OpenMode::Create);
    CreateSchema(db);
    db.close();
    return true;
  } catch (const StoreError& e) {
    if (error) *error = e.text();
    // A half-made file would be refused by the next attempt; it holds nothing yet.
    QFile::remove(path);
    QFile::remove(path + QStringLiteral("-wal"));
    QFile::remove(path + QStringLiteral("-shm"));
    return false;
  }
}
