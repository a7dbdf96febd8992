// The database key, the start-up check with its recovery and rekey, the compaction's
// threshold, and the file modes of what the program writes.
#include <sys/stat.h>

#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>

#include "frame/catalogue.h"
#include "frame/config.h"
#include "frame/shared_values.h"
#include "frame/trace.h"
#include "store/db_safety.h"
#include "testsupport/store_fixture.h"

namespace {

int ModeOf(const QString& path) {
  struct stat st {};
  if (::stat(QFile::encodeName(path).constData(), &st) != 0) return -1;
  return static_cast<int>(st.st_mode & 0777);
}

class SafetyTest : public StoreTest {
 protected:
  using StoreTest::hasUser;
  bool hasUser(const QString& path, const QString& key, const QString& id) {
    VtDatabase db;
    db.open(path, key, VtDatabase::OpenMode::ReadOnly);
    UserRecord r;
    return VTDB_GetUserInfoFromUserId(db, id, r);
  }
  void write(const QString& path, const QByteArray& bytes) { ASSERT_TRUE(WriteBytes(path, bytes)); }
};

TEST_F(SafetyTest, EachInstallationGetsARandomOwnerOnlyKeyThatOpensWithoutStretching) {
  const QString keyPath = InstallationKeyPath();
  EXPECT_EQ(QFileInfo(keyPath).absolutePath(), QFileInfo(inst_.configFile()).absolutePath());
  ASSERT_TRUE(CreateInstallationKey(keyPath));
  EXPECT_EQ(ModeOf(keyPath), 0600);
  const QString key = ReadInstallationKey(keyPath);
  EXPECT_TRUE(QRegularExpression(QStringLiteral("^x'[0-9a-f]{64}'$")).match(key).hasMatch()) << key.toStdString();
  // Never over an existing key, and another installation's key differs.
  EXPECT_FALSE(CreateInstallationKey(keyPath) || ReadInstallationKey(keyPath) != key);
  const QString otherPath = inst_.path(QStringLiteral("conf/other.key"));
  ASSERT_TRUE(CreateInstallationKey(otherPath));
  EXPECT_NE(ReadInstallationKey(otherPath), key);
  // DB_PASSWORD still overrides; the built-in password does not count as one.
  EXPECT_EQ(InstallationDatabaseKey(), key);
  inst_.setConfig(QStringLiteral("SYSTEM"), QStringLiteral("DB_PASSWORD"), kDefaultDbPassword);
  EXPECT_EQ(ResolveDatabaseKey(QString()), key);
  inst_.setConfig(QStringLiteral("SYSTEM"), QStringLiteral("DB_PASSWORD"), QStringLiteral("mine"));
  EXPECT_EQ(InstallationDatabaseKey(), QStringLiteral("mine"));
}

TEST_F(SafetyTest, AnOlderDatabaseIsCopiedAsideAndRekeyedOnce) {
  const QString id = QStringLiteral("U000000001");
  addUser(id);
  db_.close();
  const DatabaseStartResult r = PrepareDatabaseAtStart(inst_.dbFile());
  ASSERT_EQ(r.outcome, DatabaseStartResult::Outcome::Rekeyed) << r.detail.toStdString();
  const QString key = ReadInstallationKey(InstallationKeyPath());
  EXPECT_TRUE(r.key == key && hasUser(inst_.dbFile(), key, id));
  EXPECT_EQ(InspectDatabaseFile(inst_.dbFile(), kDefaultDbPassword), DbFileState::WrongKey);
  // The copy taken before still opens with the built-in password.
  EXPECT_TRUE(hasUser(inst_.dbFile() + QStringLiteral(".prekey"), kDefaultDbPassword, id));
  // The working connection finds the key by itself; the next start has nothing to do.
  QString path = inst_.dbFile(), password;
  ASSERT_EQ(VTDB_Open(db_, path, password), 0);
  db_.close();
  EXPECT_EQ(PrepareDatabaseAtStart(inst_.dbFile()).outcome, DatabaseStartResult::Outcome::Ready);
}

TEST_F(SafetyTest, AMissingEmptyOrDamagedDatabaseComesBackFromTheNewestGoodCopyOrStops) {
  const QString id = QStringLiteral("U000000001");
  addUser(id);
  db_.close();
  const QString dbFile = inst_.dbFile();
  const QString bak = dbFile + QStringLiteral(".bak");
  ASSERT_TRUE(CopyFileAtomically(dbFile, bak));
  write(dbFile + QStringLiteral(".org"), QByteArray(8192, 'z'));  // no usable copy

  const struct {
    const char* name;
    QByteArray content;
    bool remove;  // the file is removed rather than written
  } cases[] = {{"missing", {}, true}, {"empty", {}, false}, {"garbage", QByteArray(8192, 'x'), false}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    if (c.remove) QFile::remove(dbFile);
    else write(dbFile, c.content);
    const DatabaseStartResult r = PrepareDatabaseAtStart(dbFile);
    ASSERT_EQ(r.outcome, DatabaseStartResult::Outcome::Recovered) << r.detail.toStdString();
    EXPECT_TRUE(r.messageCode == "DBSF-W-0001" && r.messageArg.contains(QStringLiteral("ACTA.db.bak")))
        << r.messageCode.toStdString() << " " << r.messageArg.toStdString();
    EXPECT_TRUE(hasUser(dbFile, r.key, id));
    if (!c.remove) {
      EXPECT_EQ(QFileInfo(dbFile + QStringLiteral(".damaged")).size(), c.content.size());
    }
  }

  // Without a good copy nothing is written and the reason is named.
  QFile::remove(bak);
  const QStringList codes = {QStringLiteral("DBSF-C-0001"), QStringLiteral("DBSF-C-0002"),
                             QStringLiteral("DBSF-C-0004")};
  for (int i = 0; i < 3; ++i) {
    SCOPED_TRACE(i);
    QFile::remove(dbFile);
    if (i == 1) write(dbFile, QByteArray());
    if (i == 2) {
      // A real database file with a page overwritten in the middle.
      VtDatabase fresh;
      QFile::remove(dbFile);
      fresh.open(dbFile, kDefaultDbPassword, VtDatabase::OpenMode::Create);
      fresh.exec(QStringLiteral("PRAGMA journal_mode=DELETE; CREATE TABLE [USER] (A); CREATE TABLE T (X);"
                                "INSERT INTO T SELECT randomblob(900) FROM (WITH RECURSIVE c(n) AS "
                                "(SELECT 1 UNION ALL SELECT n + 1 FROM c WHERE n < 60) SELECT n FROM c);"));
      fresh.close();
      QFile f(dbFile);
      ASSERT_TRUE(f.open(QIODevice::ReadWrite));
      f.seek(4096 * 3 + 100);
      f.write(QByteArray(3000, '\x5a'));
    }
    const QByteArray content = ReadBytes(dbFile);
    const DatabaseStartResult r = PrepareDatabaseAtStart(dbFile, {}, kDefaultDbPassword);
    EXPECT_EQ(std::tuple(r.outcome, r.messageCode), std::tuple(DatabaseStartResult::Outcome::Stop, codes[i]))
        << r.detail.toStdString();
    EXPECT_EQ(ReadBytes(dbFile), content);
  }
}

TEST_F(SafetyTest, CompactionRunsOnlyWhenATenthIsFreeAndReplacesTheFileWhole) {
  const QString id = QStringLiteral("U000000001");
  addUser(id);
  QString path = inst_.dbFile();
  db_.close();
  CountingProgress progress;
  int result = -1;
  const qint64 size = QFileInfo(path).size();
  CompactDB(path, result, progress);
  EXPECT_EQ(std::tuple(result, QFileInfo(path).size()), std::tuple(0, size));
  EXPECT_FALSE(QFile::exists(path + QStringLiteral(".bak")));
  EXPECT_TRUE(traced(QStringLiteral("1"), QStringLiteral("CompactDB"), QStringLiteral("skipped")));

  {
    VtDatabase db;
    db.open(path, kDefaultDbPassword);
    db.exec(QStringLiteral("CREATE TABLE F (X); INSERT INTO F SELECT randomblob(2000) FROM (WITH RECURSIVE "
                           "c(n) AS (SELECT 1 UNION ALL SELECT n + 1 FROM c WHERE n < 500) SELECT n FROM c);"
                           "DROP TABLE F;"));
  }
  // A copy left by an earlier run is no obstacle.
  write(path + QStringLiteral(".org"), "stale");
  progress.values.clear();
  CompactDB(path, result, progress);
  EXPECT_EQ(std::tuple(result, progress.values), std::tuple(0, std::vector<int>{20, 40, 60, kCompactProgressMaximum}));
  EXPECT_LT(QFileInfo(path).size(), QFileInfo(path + QStringLiteral(".bak")).size());
  EXPECT_TRUE(!QFile::exists(CompactTempPath(path)) && hasUser(path, kDefaultDbPassword, id) &&
              hasUser(path + QStringLiteral(".bak"), kDefaultDbPassword, id));
  EXPECT_EQ(messages(), 0u);
}

TEST_F(SafetyTest, WhatTheProgramWritesIsItsOwnersAlone) {
  inst_.setConfig(QStringLiteral("SYSTEM"), QStringLiteral("LOG_PATH"), QStringLiteral("../privatelog"));
  SetLogLevel(QStringLiteral("0"));
  WriteTrace(QStringLiteral("2"), QStringLiteral("Test"), QStringLiteral("a line"));
  const QString raw = inst_.path(QStringLiteral("rawdumps"));
  ASSERT_TRUE(MakePrivateFolder(raw));
  ASSERT_TRUE(MakePrivateFile(raw + QStringLiteral("/R000000001.bin")));
  EXPECT_EQ(std::tuple(ModeOf(inst_.path("privatelog")), ModeOf(inst_.path("privatelog/trace.log")), ModeOf(raw),
                       ModeOf(raw + QStringLiteral("/R000000001.bin"))),
            std::tuple(0700, 0600, 0700, 0600));
}

TEST_F(SafetyTest, AConfigurationThatCannotBeUsedIsNamedForWhatIsWrongWithIt) {
  const QString conf = inst_.configFile();
  const QByteArray good = ReadBytes(conf);
  for (auto [content, code] : {std::pair{QByteArray(), "PTOP-C-0003"},
                               std::pair{QByteArray("\x00\x01garbage", 9), "PTOP-C-0005"},
                               std::pair{QByteArray("[OTHER]\nA=1\n"), "PTOP-C-0005"}}) {
    write(conf, content);
    EXPECT_EQ(Ini_ConfigProblemCode(), code) << content.toStdString();
  }
  QFile::remove(conf);
  EXPECT_EQ(Ini_ConfigProblemCode(), QStringLiteral("PTOP-C-0001"));
  write(conf, good);
  for (const char* code : {"PTOP-C-0003", "PTOP-C-0004", "PTOP-C-0005", "DBSF-C-0003", "COMN-W-0001"})
    EXPECT_TRUE(FindMessage(QLatin1String(code))) << code;
}

}  // namespace
