#include "store/backup.h"
#include "store/db_safety.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>

#include <sqlcipher/sqlite3.h>

#include "frame/config.h"
#include "frame/trace.h"
#include "store/engine.h"
#include "store/schema.h"
#include "store/store.h"

namespace {

[[noreturn]] void fail(const QString& text) { throw StoreError(0, text); }

qint64 processId() { return static_cast<qint64>(::getpid()); }

QString systemError() { return QString::fromLocal8Bit(std::strerror(errno)); }

void syncPath(const QString& path, bool folder) {
  const int fd = ::open(QFile::encodeName(path).constData(), folder ? (O_RDONLY | O_DIRECTORY) : O_RDWR);
  if (fd < 0) fail(QStringLiteral("%1 cannot be opened: %2").arg(path, systemError()));
  const int rc = ::fsync(fd);
  const QString why = rc != 0 ? systemError() : QString();
  ::close(fd);
  if (rc != 0) fail(QStringLiteral("%1 cannot be written to disk: %2").arg(path, why));
}

// Renames from over to (replacing it) and makes the new name durable.
void renameSynced(const QString& from, const QString& to) {
  if (std::rename(QFile::encodeName(from).constData(), QFile::encodeName(to).constData()) != 0)
    fail(QStringLiteral("%1 cannot be renamed to %2: %3").arg(from, to, systemError()));
  syncPath(QFileInfo(to).absolutePath(), true);
}

// The log and shared-memory files beside a database.
void removeSidecars(const QString& path) {
  for (const char* suffix : {"-wal", "-shm", "-journal"}) QFile::remove(path + QLatin1String(suffix));
}

void removeWithSidecars(const QString& path) {
  QFile::remove(path);
  removeSidecars(path);
}

// A temporary name in the folder of path, so that the final rename stays on one volume.
QString stagingPath(const QString& path, const char* what) {
  const QFileInfo info(path);
  return info.absoluteDir().filePath(QStringLiteral(".%1.%2-%3")
                                         .arg(info.fileName(), QLatin1String(what))
                                         .arg(processId()));
}

// Copies the bytes of a file to a new file and syncs it.
void copySynced(const QString& from, const QString& to) {
  QFile::remove(to);
  if (!QFile::copy(from, to)) fail(QStringLiteral("%1 cannot be copied to %2").arg(from, to));
  QFile::setPermissions(to, QFileDevice::ReadOwner | QFileDevice::WriteOwner);
  syncPath(to, false);
}

QRegularExpression backupPattern(const QString& dbPath) {
  return QRegularExpression(QStringLiteral("^%1-(\\d{8}-\\d{6})(?:-(\\d+))?\\.db$")
                                .arg(QRegularExpression::escape(QFileInfo(dbPath).completeBaseName())));
}

// Leaves the file without log or shared-memory files beside it: all in the main file.
void foldLog(VtDatabase& db) {
  db.exec(QStringLiteral("PRAGMA wal_checkpoint(TRUNCATE)"));
  db.exec(QStringLiteral("PRAGMA journal_mode=DELETE"));
}

void checkOpenDatabase(VtDatabase& db) {
  {
    Statement check(db, QStringLiteral("PRAGMA quick_check"));
    QStringList problems;
    while (check.step() && problems.size() < 3) {
      const QString line = check.text(0);
      if (line != QLatin1String("ok")) problems << line;
    }
    if (!problems.isEmpty()) fail(QStringLiteral("the file is damaged (%1)").arg(problems.join(QStringLiteral("; "))));
  }
  QStringList missing;
  Statement tables(db, QStringLiteral("SELECT 1 FROM sqlite_master WHERE type = 'table' AND name = ?"));
  for (const TableSpec& t : SchemaTables()) {
    tables.reset();
    tables.bind(1, QString::fromLatin1(t.name));
    if (!tables.step()) missing << QString::fromLatin1(t.name);
  }
  if (!missing.isEmpty()) fail(QStringLiteral("the file holds no table %1").arg(missing.join(QStringLiteral(", "))));
}

// Copies a candidate backup to copy and checks it there (opening may change a file, so
// the candidate itself is only read). The copy is left as one file, ready to be renamed
// into place. Nothing is left behind when the check fails.
void checkedCopy(const QString& file, const QString& copy, const QString& password) {
  removeWithSidecars(copy);
  try {
    copySynced(file, copy);
    VtDatabase db;
    db.open(copy, password);
    checkOpenDatabase(db);
    foldLog(db);
    db.close();
    removeSidecars(copy);
    syncPath(copy, false);
  } catch (...) {
    removeWithSidecars(copy);
    throw;
  }
}

}  // namespace

QString BackupFolderFor(const QString& dbPath) {
  QDir dataFolder = QFileInfo(dbPath).dir();
  // "../data/mdb" -> "../data/backup"; a database at the top of a folder keeps them beside it.
  const QString parent = QDir::cleanPath(dataFolder.path() + QStringLiteral("/.."));
  return QDir::cleanPath(parent + QStringLiteral("/backup"));
}

QString NewBackupPath(const QString& folder, const QString& dbPath, const QDateTime& when) {
  const QString stem = QFileInfo(dbPath).completeBaseName() + QLatin1Char('-') +
                       when.toString(QStringLiteral("yyyyMMdd-HHmmss"));
  const QDir dir(folder);
  QString name = stem + QStringLiteral(".db");
  for (int n = 2; dir.exists(name); ++n) name = QStringLiteral("%1-%2.db").arg(stem).arg(n);
  return dir.filePath(name);
}

QStringList ListBackups(const QString& folder, const QString& dbPath) {
  const QRegularExpression pattern = backupPattern(dbPath);
  struct Entry {
    QString stamp;
    int number;
    QString path;
  };
  std::vector<Entry> found;
  const QDir dir(folder);
  for (const QString& name : dir.entryList(QDir::Files)) {
    const QRegularExpressionMatch m = pattern.match(name);
    if (!m.hasMatch()) continue;
    found.push_back({m.captured(1), m.captured(2).isEmpty() ? 1 : m.captured(2).toInt(), dir.filePath(name)});
  }
  std::sort(found.begin(), found.end(), [](const Entry& a, const Entry& b) {
    return a.stamp != b.stamp ? a.stamp < b.stamp : a.number < b.number;
  });
  QStringList paths;
  for (const Entry& e : found) paths << e.path;
  return paths;
}

QStringList RotateBackups(const QString& folder, const QString& dbPath, int keep) {
  QStringList all = ListBackups(folder, dbPath);
  QStringList deleted;
  keep = std::max(1, keep);
  while (all.size() > keep) {
    const QString oldest = all.takeFirst();
    if (QFile::remove(oldest)) deleted << oldest;
  }
  return deleted;
}

void BackUpDatabase(const QString& dbPath, const QString& password, const QString& target) {
  if (!QFileInfo(dbPath).isFile()) fail(QStringLiteral("the database %1 does not exist").arg(dbPath));
  const QString targetFolder = QFileInfo(target).absolutePath();
  if (!QDir().mkpath(targetFolder)) fail(QStringLiteral("the folder %1 cannot be made").arg(targetFolder));
  const QString staged = stagingPath(target, "part");
  removeWithSidecars(staged);
  try {
    {
      // The connection opens files without creating them; an empty file is an empty
      // database to attach and fill.
      QFile empty(staged);
      if (!empty.open(QIODevice::WriteOnly)) fail(QStringLiteral("%1 cannot be created").arg(staged));
      empty.setPermissions(QFileDevice::ReadOwner | QFileDevice::WriteOwner);
    }
    VtDatabase source;
    source.open(dbPath, password);
    Statement attach(source, QStringLiteral("ATTACH DATABASE ? AS backup KEY ?"));
    attach.bind(1, staged).bind(2, password);
    attach.run();
    // One read transaction over the whole copy: it sees the database as it was when the
    // first read began, however many commits other writers make meanwhile.
    source.exec(QStringLiteral("BEGIN"));
    try {
      {
        Statement first(source, QStringLiteral("SELECT count(*) FROM main.sqlite_master"));
        first.step();
      }
      source.exec(QStringLiteral("SELECT sqlcipher_export('backup')"));
      source.exec(QStringLiteral("COMMIT"));
    } catch (...) {
      try {
        source.exec(QStringLiteral("ROLLBACK"));
      } catch (const StoreError&) {
      }
      throw;
    }
    source.exec(QStringLiteral("DETACH DATABASE backup"));
    source.close();
    syncPath(staged, false);
    renameSynced(staged, target);
  } catch (...) {
    removeWithSidecars(staged);
    throw;
  }
}

void RestoreDatabase(const QString& dbPath, const QString& password, const QString& backup) {
  if (!QFileInfo(backup).isFile()) fail(QStringLiteral("%1 does not exist").arg(backup));
  if (QFileInfo(backup).canonicalFilePath() == QFileInfo(dbPath).canonicalFilePath())
    fail(QStringLiteral("%1 is the database itself").arg(backup));
  if (!QDir().mkpath(QFileInfo(dbPath).absolutePath()))
    fail(QStringLiteral("the folder of %1 cannot be made").arg(dbPath));

  // 1. The backup, copied beside the database and checked there: what is checked is what
  //    will be renamed into place.
  const QString staged = stagingPath(dbPath, "restore");
  checkedCopy(backup, staged, password);

  try {
    // 2. The current database is kept. A readable one is copied consistently (with what
    //    its log holds); one that cannot be read is kept as its raw files.
    const QString kept = dbPath + QStringLiteral(".before-restore");
    if (QFileInfo(dbPath).isFile()) {
      removeWithSidecars(kept);
      bool readable = true;
      try {
        BackUpDatabase(dbPath, password, kept);
      } catch (const StoreError&) {
        readable = false;
      }
      if (!readable) {
        const QString keptStage = stagingPath(kept, "part");
        copySynced(dbPath, keptStage);
        renameSynced(keptStage, kept);
        if (QFileInfo(dbPath + QStringLiteral("-wal")).size() > 0)
          copySynced(dbPath + QStringLiteral("-wal"), kept + QStringLiteral("-wal"));
      } else {
        // Its log is now folded into the file, so removing it below loses nothing.
        VtDatabase current;
        current.open(dbPath, password);
        foldLog(current);
      }
    }
    // 3. A log left beside the database would be replayed onto the restored file.
    removeSidecars(dbPath);
    renameSynced(staged, dbPath);
  } catch (...) {
    removeWithSidecars(staged);
    throw;
  }
}

void InstallationDatabase(QString& path, QString& password) {
  path = Ini_GetDbName();
  if (path.isEmpty()) path = kDefaultDbPath;
  // DB_PASSWORD when set, else the installation's own key file.
  password = ResolveDatabaseKey(Ini_GetDbPassword());
}

BackupOutcome MakeAutomaticBackup(const QString& reason) {
  BackupOutcome outcome;
  try {
    QString dbPath;
    QString password;
    InstallationDatabase(dbPath, password);
    const QString folder = BackupFolderFor(dbPath);
    outcome.file = NewBackupPath(folder, dbPath, QDateTime::currentDateTime());
    BackUpDatabase(dbPath, password, outcome.file);
    RotateBackups(folder, dbPath, Ini_GetBackupKeep());
    outcome.ok = true;
    WriteTrace(QStringLiteral("1"), QStringLiteral("MakeAutomaticBackup"),
               QStringLiteral("%1: %2").arg(reason, outcome.file));
  } catch (const StoreError& e) {
    outcome.message = e.text();
  } catch (const std::exception& e) {
    outcome.message = QString::fromLocal8Bit(e.what());
  }
  if (!outcome.ok) {
    try {
      WriteTrace(QStringLiteral("2"), QStringLiteral("MakeAutomaticBackup"),
                 QStringLiteral("%1: %2").arg(reason, outcome.message));
    } catch (const std::exception&) {
      // The log is best effort; the outcome still reaches the caller.
    }
  }
  return outcome;
}
