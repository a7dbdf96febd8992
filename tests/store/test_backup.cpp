// Backups and restore of the database: consistency under a writer in another process,
// refusal of files that are no backup, what is kept, and the rotation.
#include <QCryptographicHash>
#include <QDateTime>
#include <QDir>
#include <QFile>

#include <csignal>
#include <sys/wait.h>
#include <unistd.h>

#include "frame/config.h"
#include "store/backup.h"
#include "testsupport/store_fixture.h"

namespace {

constexpr int kRowsPerBatch = 5;

// Empty for a missing file, so that a file made where there was none shows.
QByteArray fileHash(const QString& path) {
  return QFileInfo::exists(path) ? QCryptographicHash::hash(ReadBytes(path), QCryptographicHash::Sha256) : QByteArray();
}

// One "receive": a transaction of several rows under one receive id.
bool writeBatch(VtDatabase& db, int batch) {
  const QString id = QStringLiteral("R%1").arg(batch, 9, 10, QLatin1Char('0'));
  if (!VTDB_BeginTrans(db)) return false;
  for (int i = 0; i < kRowsPerBatch; ++i) {
    if (!VTDB_SetReceiveHistoryDate(db, id, QStringLiteral("2024050%1").arg(i + 1), QStringLiteral("U000000001"),
                                    QStringLiteral("20240601120000"), QStringLiteral("0"))) {
      VTDB_RollbackTrans(db);
      return false;
    }
  }
  return VTDB_CommitTrans(db);
}

// Receive ids and their row counts.
std::map<int, int> batchesIn(const QString& path) {
  std::map<int, int> out;
  VtDatabase db;
  db.open(path, kDefaultDbPassword);
  Statement st(db, QStringLiteral("SELECT RECEIVE_ID, count(*) FROM [RECEIVE_HISTORY_DATE] GROUP BY RECEIVE_ID"));
  while (st.step()) out[st.text(0).mid(1).toInt()] = st.text(1).toInt();
  return out;
}

QStringList userIds(const QString& path) {
  VtDatabase db;
  db.open(path, kDefaultDbPassword);
  Statement st(db, QStringLiteral("SELECT USER_ID FROM [USER] ORDER BY USER_ID"));
  QStringList ids;
  while (st.step()) ids << st.text(0).trimmed();
  return ids;
}

class Backup : public StoreTest {
 protected:
  QString db() const { return inst_.dbFile(); }
  QString folder() const { return BackupFolderFor(inst_.dbFile()); }
  // Files in the database's folder other than the database and its log files.
  QStringList strayFiles() const {
    QStringList out;
    for (const QString& n : QDir(QFileInfo(db()).absolutePath()).entryList(QDir::Files | QDir::Hidden))
      if (!n.startsWith(QLatin1String("ACTA.db"))) out << n;
    return out;
  }
};

}  // namespace

TEST_F(Backup, CopyTakenWhileAnotherProcessWritesHoldsWholeCommitsUpToItsStart) {
  int pipeFds[2];
  ASSERT_EQ(::pipe(pipeFds), 0);
  const pid_t child = ::fork();
  ASSERT_GE(child, 0);
  if (child == 0) {
    ::close(pipeFds[0]);
    VtDatabase writer;
    writer.open(db(), kDefaultDbPassword);
    for (int batch = 1; batch < 100000; ++batch) {
      if (!writeBatch(writer, batch)) ::_exit(3);
      if (::write(pipeFds[1], &batch, sizeof batch) != sizeof batch) ::_exit(4);
    }
    ::_exit(0);
  }
  ::close(pipeFds[1]);
  int committed = 0;
  while (committed < 20) ASSERT_EQ(::read(pipeFds[0], &committed, sizeof committed), ssize_t(sizeof committed));

  const QString copy = inst_.path(QStringLiteral("copy.db"));
  ASSERT_NO_THROW(BackUpDatabase(db(), kDefaultDbPassword, copy));
  const std::map<int, int> saved = batchesIn(copy);
  ASSERT_FALSE(saved.empty());
  // The writer goes on past what the copy holds.
  int afterwards = committed;
  while (afterwards <= saved.rbegin()->first)
    ASSERT_EQ(::read(pipeFds[0], &afterwards, sizeof afterwards), ssize_t(sizeof afterwards));
  ::kill(child, SIGKILL);
  ::waitpid(child, nullptr, 0);
  ::close(pipeFds[0]);

  // A prefix of the commits, each whole: batches 1..k with every row, k at least what was
  // committed before the copy began.
  EXPECT_EQ(std::tuple(saved.begin()->first, saved.rbegin()->first), std::tuple(1, static_cast<int>(saved.size())));
  EXPECT_GE(static_cast<int>(saved.size()), committed);
  for (const auto& [batch, rows] : saved) EXPECT_EQ(rows, kRowsPerBatch) << "receive " << batch;
  EXPECT_FALSE(QFileInfo(copy).permissions().testFlag(QFileDevice::ReadOther));

  // Restored, the database holds exactly what the copy holds, though the writer went on.
  db_.close();
  ASSERT_NO_THROW(RestoreDatabase(db(), kDefaultDbPassword, copy));
  EXPECT_EQ(batchesIn(db()), saved);
  EXPECT_GT(batchesIn(db() + QStringLiteral(".before-restore")).size(), saved.size());
  EXPECT_TRUE(strayFiles().isEmpty()) << strayFiles().join(u' ').toStdString();
}

TEST_F(Backup, RestoreRefusesFilesThatAreNoBackupAndLeavesTheDatabaseAlone) {
  addUser(QStringLiteral("U000000007"));
  const QString good = inst_.path(QStringLiteral("good.db"));
  ASSERT_NO_THROW(BackUpDatabase(db(), kDefaultDbPassword, good));
  const QByteArray goodBytes = ReadBytes(good);
  auto write = [&](const char* name, const QByteArray& bytes) {
    const QString p = inst_.path(QLatin1String(name));
    EXPECT_TRUE(WriteBytes(p, bytes));
    return p;
  };
  QString otherKey = inst_.path(QStringLiteral("other-key.db"));
  QString error;
  ASSERT_TRUE(CreateDatabaseFile(otherKey, QStringLiteral("another password"), &error));
  QString noSchema = inst_.path(QStringLiteral("no-schema.db"));
  {
    VtDatabase empty;
    empty.open(noSchema, kDefaultDbPassword, VtDatabase::OpenMode::Create);
    empty.exec(QStringLiteral("CREATE TABLE notes (text)"));
  }
  QByteArray damaged = goodBytes;
  for (int i = 0; i < 512; ++i) damaged[damaged.size() / 2 + i] = char(0x5a);
  const QStringList refused = {
      write("truncated.db", goodBytes.left(goodBytes.size() / 2)),
      write("damaged.db", damaged),
      write("text.db", QByteArray("date,steps\n20240501,8000\n")),
      write("empty.db", QByteArray()),
      otherKey,
      noSchema,
      inst_.path(QStringLiteral("missing.db")),
  };

  db_.close();
  const QByteArray before = fileHash(db());
  for (const QString& bad : refused) {
    const QByteArray badBefore = fileHash(bad);
    EXPECT_THROW(RestoreDatabase(db(), kDefaultDbPassword, bad), StoreError) << bad.toStdString();
    EXPECT_EQ(fileHash(db()), before) << bad.toStdString();
    EXPECT_EQ(fileHash(bad), badBefore) << "the refused file itself was changed: " << bad.toStdString();
  }
  EXPECT_FALSE(QFileInfo::exists(db() + QStringLiteral(".before-restore")));
  EXPECT_TRUE(strayFiles().isEmpty()) << strayFiles().join(u' ').toStdString();
  EXPECT_EQ(userIds(db()).count(QStringLiteral("U000000007")), 1);
}

TEST_F(Backup, RestoreKeepsTheCurrentDataEvenWhenTheyAreDamaged) {
  addUser(QStringLiteral("U000000001"));
  const QString copy = inst_.path(QStringLiteral("copy.db"));
  ASSERT_NO_THROW(BackUpDatabase(db(), kDefaultDbPassword, copy));
  // Written after the copy and, with the connection still open, still in the log file.
  addUser(QStringLiteral("U000000002"));
  ASSERT_GT(QFileInfo(db() + QStringLiteral("-wal")).size(), 0);
  db_.close();
  ASSERT_NO_THROW(RestoreDatabase(db(), kDefaultDbPassword, copy));
  EXPECT_EQ(userIds(db()), QStringList({"U000000001", "U999999999"}));
  EXPECT_TRUE(userIds(db() + QStringLiteral(".before-restore")).contains(QStringLiteral("U000000002")));
  EXPECT_FALSE(QFileInfo::exists(db() + QStringLiteral("-wal")) &&
               QFileInfo(db() + QStringLiteral("-wal")).size() > 0);

  // A database damaged in the middle cannot be read; its raw bytes are kept instead.
  {
    QFile f(db());
    ASSERT_TRUE(f.open(QIODevice::ReadWrite));
    f.seek(f.size() / 2);
    f.write(QByteArray(4096, char(0x33)));
  }
  const QByteArray damaged = fileHash(db());
  ASSERT_NO_THROW(RestoreDatabase(db(), kDefaultDbPassword, copy));
  EXPECT_EQ(fileHash(db() + QStringLiteral(".before-restore")), damaged);
  EXPECT_TRUE(userIds(db()).contains(QStringLiteral("U000000001")));
}

TEST_F(Backup, NamesOrderAndRotationKeepTheNewest) {
  const QDateTime t0(QDate(2026, 1, 31), QTime(23, 59, 58));
  QStringList made;
  for (int i = 0; i < 12; ++i) {
    // Two backups within one second, and one across midnight.
    const QString p = NewBackupPath(folder(), db(), t0.addSecs(i / 2));
    QDir().mkpath(folder());
    ASSERT_TRUE(WriteBytes(p, QByteArray()));
    made << p;
  }
  EXPECT_TRUE(made[1].endsWith(QLatin1String("ACTA-20260131-235958-2.db"))) << made[1].toStdString();
  EXPECT_TRUE(made[4].endsWith(QLatin1String("ACTA-20260201-000000.db"))) << made[4].toStdString();
  EXPECT_EQ(ListBackups(folder(), db()), made);

  // Other files in the folder are neither counted nor deleted.
  for (const char* other : {"notes.txt", "OTHER-20200101-000000.db", "ACTA-2020.db"})
    ASSERT_TRUE(WriteBytes(QDir(folder()).filePath(QLatin1String(other)), QByteArray()));
  EXPECT_EQ(RotateBackups(folder(), db(), 10), made.mid(0, 2));
  EXPECT_EQ(ListBackups(folder(), db()), made.mid(2));
  EXPECT_EQ(QDir(folder()).entryList(QDir::Files).size(), 13);
  EXPECT_EQ(RotateBackups(folder(), db(), 0).size(), 9);
  EXPECT_EQ(ListBackups(folder(), db()), QStringList{made.last()});
  EXPECT_EQ(BackupFolderFor(QStringLiteral("../data/mdb/ACTA.db")), QStringLiteral("../data/backup"));
}

TEST_F(Backup, AutomaticBackupsFollowTheConfiguration) {
  inst_.setConfig(QStringLiteral("BACKUP"), QStringLiteral("BACKUP_KEEP"), QStringLiteral("3"));
  addUser(QStringLiteral("U000000001"));
  for (int i = 0; i < 5; ++i) {
    const BackupOutcome made = MakeAutomaticBackup(QStringLiteral("CSV import"));
    ASSERT_TRUE(made.ok) << made.message.toStdString();
  }
  const QStringList kept = ListBackups(folder(), db());
  ASSERT_EQ(kept.size(), 3);
  for (const QString& k : kept) EXPECT_TRUE(userIds(k).contains(QStringLiteral("U000000001")));

  // Without the key the default stands; a missing database is a failure, not a throw.
  inst_.setConfig(QStringLiteral("BACKUP"), QStringLiteral("BACKUP_KEEP"), QString());
  EXPECT_EQ(Ini_GetBackupKeep(), kDefaultBackupKeep);
  inst_.setConfig(QStringLiteral("SYSTEM"), QStringLiteral("DB_NAME"), QStringLiteral("../data/mdb/none.db"));
  const BackupOutcome failed = MakeAutomaticBackup(QStringLiteral("compaction"));
  EXPECT_FALSE(failed.ok || failed.message.isEmpty());
  EXPECT_TRUE(traced(QStringLiteral("2"), QStringLiteral("MakeAutomaticBackup")));
}
