// Connection, the new file, identifier counters and compaction.
#include <QFile>
#include <QFileInfo>
#include <algorithm>
#include <cstring>

#include <sqlcipher/sqlite3.h>

#include "frame/catalogue.h"
#include "testsupport/store_fixture.h"

namespace {

TEST_F(StoreTest, OpenFillsEmptyArgumentsWithTheDefaults) {
  VtDatabase other;
  QString path, password;
  // The working directory is the installation's bin/, so the default path is its file.
  EXPECT_EQ(VTDB_Open(other, path, password), 0);
  EXPECT_EQ(path + " " + password, QStringLiteral("../data/mdb/ACTA.db qoxtlamv"));
  // Committed writes are synced: they survive a power cut, not only a crash.
  for (auto [pragma, value] : {std::pair{"journal_mode", "wal"}, std::pair{"synchronous", "2"}}) {
    Statement st(other, QStringLiteral("PRAGMA ") + QLatin1String(pragma));
    ASSERT_TRUE(st.step());
    EXPECT_EQ(st.text(0), value) << pragma;
  }
  EXPECT_TRUE(VTDB_Close(other) == 0 && !other.isOpen());
}

TEST_F(StoreTest, WrongPasswordOrForeignFileGivesTheConnectMessage) {
  VtDatabase other;
  QString path = inst_.dbFile(), password = QStringLiteral("wrongpw");
  EXPECT_EQ(VTDB_Open(other, path, password), 1);
  ASSERT_EQ(messages(), 1u);
  // The edition's words name the key; the engine's words go to the log only.
  const QString shown = inst_.dialog().shown.back().text;
  EXPECT_TRUE(shown.startsWith(CatalogueLine(QStringLiteral("DBSF-C-0003"))) && !shown.contains("not a database"))
      << shown.toStdString();
  EXPECT_TRUE(traced(QStringLiteral("2"), QStringLiteral("ConnectDB")));

  const QString junk = inst_.path(QStringLiteral("data/mdb/junk.db"));
  ASSERT_TRUE(WriteBytes(junk, "not a database at all, just some text that is long enough to be looked at"));
  EXPECT_EQ(ConnectDB(other, junk, kDefaultDbPassword), 1);
  EXPECT_EQ(messages(), 2u);
  // A closed connection fails every operation the ordinary way.
  EXPECT_FALSE(VTDB_ExistUser(other));
  EXPECT_TRUE(messages() == 3u && !other.lastErrorText().isEmpty());
  EXPECT_TRUE(traced(QStringLiteral("2"), QStringLiteral("VTDB_ExistUser")));
}

TEST_F(StoreTest, NewFileHoldsTheFixedRowsAndIsNotOverwritten) {
  EXPECT_FALSE(GetGroupName(db_, QStringLiteral("G000000001")).isEmpty() ||
               GetGroupName(db_, QStringLiteral("G999999999")).isEmpty());
  UserInfo instructor;
  ASSERT_TRUE(GetUserInfo(db_, instructor, QStringLiteral("U999999999")));
  EXPECT_EQ(instructor.GROUP_ID, QStringLiteral("G999999999"));
  // The nullable columns start out null and read as blanks of their width.
  UserRecord raw;
  ASSERT_TRUE(VTDB_GetUserInfoFromUserId(db_, QStringLiteral("U999999999"), raw));
  EXPECT_EQ(std::tuple(raw.PREF_ID, raw.EXTRA1, raw.FIRST_NAME),
            std::tuple(QString(8, u' '), QString(4, u' '), QStringLiteral("Instructor").leftJustified(20)));

  QString error;
  const qint64 size = QFileInfo(inst_.dbFile()).size();
  EXPECT_FALSE(CreateDatabaseFile(inst_.dbFile(), kDefaultDbPassword, &error) || error.isEmpty());
  EXPECT_EQ(QFileInfo(inst_.dbFile()).size(), size);
  Statement users(db_, QStringLiteral("SELECT COUNT(*) FROM [USER]"));
  EXPECT_TRUE(users.step());
}

TEST_F(StoreTest, CountersStartAtOneAndCutAtTheTop) {
  // A braced list is evaluated in order.
  EXPECT_EQ(QStringList({GetId(db_, "02"), GetId(db_, "02"), CreateReceiveId(db_), CreateUserId(db_)}),
            QStringList({"000000001", "000000002", "R000000001", "U000000003"}));

  db_.exec(QStringLiteral("UPDATE [ID_TABLE] SET CRNTNO = '999999998' WHERE KEY = '03'"));
  EXPECT_EQ(CreateReceiveId(db_), QStringLiteral("R999999999"));
  // Ten digits cut to the nine of the field.
  EXPECT_EQ(CreateReceiveId(db_), QStringLiteral("R100000000"));

  // Inside a caller's transaction the counter moves with it.
  ASSERT_TRUE(VTDB_BeginTrans(db_));
  EXPECT_EQ(CreateReceiveId(db_), QStringLiteral("R100000001"));
  ASSERT_TRUE(VTDB_RollbackTrans(db_));
  EXPECT_EQ(CreateReceiveId(db_), QStringLiteral("R100000001"));
}

TEST_F(StoreTest, FailedCounterGivesThePrefixAlone) {
  db_.exec(QStringLiteral("DROP TABLE [ID_TABLE]"));
  EXPECT_EQ(CreateUserId(db_), QStringLiteral("U"));
  EXPECT_EQ(messages(), 1u);
  EXPECT_TRUE(traced(QStringLiteral("2"), QStringLiteral("GetId")));
  EXPECT_FALSE(db_.lastErrorNumber().isEmpty());
}

int compareBytes(void*, int n1, const void* a, int n2, const void* b) {
  const int c = std::memcmp(a, b, static_cast<size_t>(std::min(n1, n2)));
  return c != 0 ? c : n1 - n2;
}

TEST_F(StoreTest, AFailedCompactionPutsTheDatabaseBackUnderItsName) {
  addUser(QStringLiteral("U000000001"));
  // A table whose collation only this connection knows: the export into the fresh file
  // fails after the database has been renamed to ".org".
  ASSERT_EQ(sqlite3_create_collation(db_.handle(), "ONLYHERE", SQLITE_UTF8, nullptr, compareBytes), SQLITE_OK);
  db_.exec(QStringLiteral("CREATE TABLE [EXTRA] (A TEXT COLLATE ONLYHERE)"));
  VTDB_Close(db_);

  CountingProgress progress;
  QString path = inst_.dbFile();
  int result = 0;
  CompactDB(path, result, progress, QString(), 0.0);
  EXPECT_EQ(std::tuple(result, messages(), progress.values), std::tuple(-1, 1u, std::vector<int>{20}));
  EXPECT_FALSE(QFile::exists(CompactTempPath(inst_.dbFile())) ||
               QFile::exists(inst_.dbFile() + QStringLiteral(".org")));
  EXPECT_TRUE(QFile::exists(inst_.dbFile() + QStringLiteral(".bak")));
  // The next start opens the household's data, not an empty file.
  QString password;
  ASSERT_EQ(VTDB_Open(db_, path, password), 0);
  EXPECT_TRUE(hasUser(QStringLiteral("U000000001")));
}

TEST_F(StoreTest, CompactionOfAMissingFileOnlyLogs) {
  CountingProgress progress;
  QString path = inst_.path(QStringLiteral("data/mdb/none.db"));
  int result = 0;
  CompactDB(path, result, progress);
  EXPECT_EQ(std::tuple(result, messages(), progress.values), std::tuple(-1, 0u, std::vector<int>{}));
  EXPECT_TRUE(traced(QStringLiteral("2"), QStringLiteral("CompactDB"), QStringLiteral("DBFile No Exist")));
}

}  // namespace
