#include "store/db_safety.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLockFile>
#include <QRandomGenerator>
#include <algorithm>

#include <sqlcipher/sqlite3.h>

#include "frame/catalogue.h"
#include "frame/config.h"
#include "frame/dialog.h"
#include "frame/shared_values.h"
#include "frame/trace.h"
#include "store/engine.h"
#include "store/store.h"

namespace {

const QString kName = QStringLiteral("DatabaseSafety");
constexpr int kKeyBytes = 32;

void Trace(const QString& level, const QString& text) {
  try {
    WriteTrace(level, kName, text);
  } catch (const std::exception&) {
    // The log is best effort.
  }
}

bool IsHexKey(const QByteArray& text) {
  if (text.size() != 2 * kKeyBytes) return false;
  return std::all_of(text.begin(), text.end(), [](char c) {
    return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
  });
}

QString ReasonOf(const StoreError& e) { return QStringLiteral("%1 (%2)").arg(e.text()).arg(e.code()); }

// Opens a copy candidate with the key, or with the built-in password of older
// installations; which one worked goes to usedKey.
bool GoodCopy(const QString& path, const QString& key, QString& usedKey) {
  if (InspectDatabaseFile(path, key) == DbFileState::Good) {
    usedKey = key;
    return true;
  }
  if (key != kDefaultDbPassword && InspectDatabaseFile(path, kDefaultDbPassword) == DbFileState::Good) {
    usedKey = kDefaultDbPassword;
    return true;
  }
  return false;
}

// Rekeys a database that still has the built-in password: a copy is kept aside first.
bool Rekey(const QString& dbPath, const QString& key, QString& detail) {
  try {
    VtDatabase db;
    db.open(dbPath, kDefaultDbPassword);
    // The log is folded into the file and switched off, so that the copy is whole and
    // the whole file gets the new key.
    db.exec(QStringLiteral("PRAGMA wal_checkpoint(TRUNCATE); PRAGMA journal_mode=DELETE"));
    const QString aside = dbPath + QStringLiteral(".prekey");
    if (!QFileInfo::exists(aside) && !CopyFileAtomically(dbPath, aside, &detail)) return false;
    const QByteArray newKey = key.toUtf8();
    const int rc = sqlite3_rekey(db.handle(), newKey.constData(), static_cast<int>(newKey.size()));
    if (rc != SQLITE_OK) throw StoreError(rc, QString::fromUtf8(sqlite3_errmsg(db.handle())));
    db.close();
    VtDatabase check;
    check.open(dbPath, key, VtDatabase::OpenMode::ReadOnly);
    return true;
  } catch (const StoreError& e) {
    detail = ReasonOf(e);
    return false;
  }
}

}  // namespace

// ---- the key ----

QString InstallationKeyPath() {
  const QString config = GetConfigPath();
  if (!config.isEmpty()) return QFileInfo(config).dir().filePath(QStringLiteral("db.key"));
  return QStringLiteral("../conf/db.key");
}

bool CreateInstallationKey(const QString& path, QString* error) {
  auto fail = [&](const QString& text) {
    if (error) *error = text;
    return false;
  };
  if (QFileInfo::exists(path)) return fail(QStringLiteral("%1 already exists").arg(path));
  quint32 words[kKeyBytes / 4];
  QRandomGenerator::system()->fillRange(words);
  const QByteArray hex =
      QByteArray(reinterpret_cast<const char*>(words), kKeyBytes).toHex() + QByteArrayLiteral("\n");
  const QString temp = path + QStringLiteral(".new");
  const QByteArray name = QFile::encodeName(temp);
  const int fd = ::open(name.constData(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
  if (fd < 0) return fail(QStringLiteral("%1 cannot be created").arg(temp));
  const bool written = ::write(fd, hex.constData(), static_cast<size_t>(hex.size())) == hex.size() &&
                       ::fsync(fd) == 0;
  ::close(fd);
  // link() refuses an existing target: two starts at once keep the first key.
  if (!written || ::link(name.constData(), QFile::encodeName(path).constData()) != 0) {
    QFile::remove(temp);
    return fail(QStringLiteral("%1 cannot be written").arg(path));
  }
  QFile::remove(temp);
  SyncFolder(QFileInfo(path).absolutePath());
  return true;
}

QString ReadInstallationKey(const QString& path) {
  QFile f(path);
  if (!f.open(QIODevice::ReadOnly)) return QString();
  const QByteArray text = f.read(4 * kKeyBytes).trimmed();
  if (!IsHexKey(text)) return QString();
  return QStringLiteral("x'") + QString::fromLatin1(text.toLower()) + QStringLiteral("'");
}

QString InstallationDatabaseKey() {
  QString configured;
  try {
    configured = GetConfigPath().isEmpty() ? Ini_PeekDbPassword() : Ini_GetDbPassword();
  } catch (const std::exception&) {
    configured.clear();
  }
  if (!configured.isEmpty() && configured != kDefaultDbPassword) return configured;
  return ReadInstallationKey(InstallationKeyPath());
}

QString ResolveDatabaseKey(const QString& given) {
  if (!given.isEmpty() && given != kDefaultDbPassword) return given;
  const QString own = InstallationDatabaseKey();
  return own.isEmpty() ? kDefaultDbPassword : own;
}

// ---- the state of a database file ----

DbFileState InspectDatabaseFile(const QString& path, const QString& key, QString* detail, bool full) {
  const QFileInfo info(path);
  if (!info.exists()) return DbFileState::Missing;
  if (info.isFile() && info.size() == 0) return DbFileState::Empty;
  VtDatabase db;
  try {
    db.open(path, key, VtDatabase::OpenMode::ReadOnly);
  } catch (const StoreError& e) {
    if (detail) *detail = ReasonOf(e);
    if (e.code() == SQLITE_NOTADB) return DbFileState::WrongKey;
    if ((e.code() & 0xff) != SQLITE_READONLY && (e.code() & 0xff) != SQLITE_CANTOPEN) return DbFileState::Damaged;
  }
  try {
    // A log left by a process that died must be rolled into the file before it can be
    // read; that is the engine's own recovery and changes no data.
    if (!db.isOpen()) db.open(path, key, VtDatabase::OpenMode::AsIs);
  } catch (const StoreError& e) {
    if (detail) *detail = ReasonOf(e);
    return e.code() == SQLITE_NOTADB ? DbFileState::WrongKey : DbFileState::Damaged;
  }
  try {
    Statement check(db, full ? QStringLiteral("PRAGMA integrity_check") : QStringLiteral("PRAGMA quick_check"));
    QStringList problems;
    while (check.step()) {
      const QString line = check.text(0);
      if (line != QLatin1String("ok")) problems << line;
    }
    if (!problems.isEmpty()) {
      if (detail) *detail = problems.mid(0, 5).join(QStringLiteral("; "));
      return DbFileState::Damaged;
    }
    Statement users(db, QStringLiteral("SELECT COUNT(*) FROM [USER]"));
    users.step();
  } catch (const StoreError& e) {
    if (detail) *detail = ReasonOf(e);
    return DbFileState::Damaged;
  }
  return DbFileState::Good;
}

QString DbFileStateName(DbFileState state) {
  switch (state) {
    case DbFileState::Good: return QStringLiteral("good");
    case DbFileState::Missing: return QStringLiteral("missing");
    case DbFileState::Empty: return QStringLiteral("empty");
    case DbFileState::WrongKey: return QStringLiteral("not readable with this key");
    case DbFileState::Damaged: return QStringLiteral("damaged");
  }
  return QString();
}

// ---- engine failures ----

QString StoreErrorCode(int engineCode) {
  switch (engineCode & 0xff) {
    case SQLITE_FULL: return QStringLiteral("COMN-C-0004");
    case SQLITE_BUSY:
    case SQLITE_LOCKED: return QStringLiteral("COMN-C-0005");
    case SQLITE_READONLY:
    case SQLITE_PERM:
    case SQLITE_CANTOPEN: return QStringLiteral("COMN-C-0006");
    case SQLITE_NOTADB: return QStringLiteral("DBSF-C-0003");
    case SQLITE_CORRUPT: return QStringLiteral("DBSF-C-0004");
    default: return QStringLiteral("COMN-C-0003");
  }
}

QString StoreErrorMessage(int engineCode) { return CatalogueLine(StoreErrorCode(engineCode)); }

// ---- start ----

QStringList DatabaseCopyCandidates(const QString& dbPath, const QStringList& extra) {
  QStringList found;
  const QStringList own = {dbPath + QStringLiteral(".compact"), dbPath + QStringLiteral(".org"),
                           dbPath + QStringLiteral(".bak")};
  for (const QString& c : own + extra)
    if (QFileInfo(c).isFile() && !found.contains(c)) found << c;
  return found;
}

DatabaseStartResult PrepareDatabaseAtStart(const QString& dbPath, const QStringList& extraCandidates,
                                           QString key) {
  DatabaseStartResult r;
  if (key.isEmpty()) key = InstallationDatabaseKey();
  const bool ownKey = !key.isEmpty();
  // Without a key of its own the installation is still on the built-in password; the
  // key file is made once the database is known to be good.
  const QString keyPath = InstallationKeyPath();
  if (!ownKey) key = kDefaultDbPassword;

  QString detail;
  DbFileState state = InspectDatabaseFile(dbPath, key, &detail);
  if (state == DbFileState::Good) {
    r.key = key;
    r.outcome = DatabaseStartResult::Outcome::Ready;
    if (ownKey) return r;
    // An older installation: make its key and rekey the database with it.
    QString error;
    if (!CreateInstallationKey(keyPath, &error)) {
      Trace(QStringLiteral("2"), QStringLiteral("key file: ") + error);
      return r;  // keeps working with the built-in password
    }
    const QString newKey = ReadInstallationKey(keyPath);
    if (Rekey(dbPath, newKey, r.detail)) {
      r.key = newKey;
      r.outcome = DatabaseStartResult::Outcome::Rekeyed;
      Trace(QStringLiteral("1"), QStringLiteral("rekeyed with the installation's key; copy kept as .prekey"));
    } else {
      Trace(QStringLiteral("2"), QStringLiteral("rekey failed: ") + r.detail);
    }
    return r;
  }
  if (state == DbFileState::WrongKey && ownKey &&
      InspectDatabaseFile(dbPath, kDefaultDbPassword) == DbFileState::Good) {
    // The key file exists but the database still has the built-in password (a start
    // that stopped between the two steps): finish the rekey.
    r.key = key;
    r.outcome = Rekey(dbPath, key, r.detail) ? DatabaseStartResult::Outcome::Rekeyed
                                             : DatabaseStartResult::Outcome::Ready;
    if (r.outcome == DatabaseStartResult::Outcome::Ready) r.key = kDefaultDbPassword;
    return r;
  }
  r.detail = DbFileStateName(state) + (detail.isEmpty() ? QString() : QStringLiteral(": ") + detail);
  Trace(QStringLiteral("2"), dbPath + QStringLiteral(" is ") + r.detail);

  // The newest good copy takes the database's place.
  QString best;
  QString bestKey;
  QDateTime bestTime;
  for (const QString& candidate : DatabaseCopyCandidates(dbPath, extraCandidates)) {
    QString used;
    if (!GoodCopy(candidate, key, used)) {
      Trace(QStringLiteral("1"), candidate + QStringLiteral(" is no usable copy"));
      continue;
    }
    const QDateTime modified = QFileInfo(candidate).lastModified();
    if (best.isEmpty() || modified > bestTime) {
      best = candidate;
      bestKey = used;
      bestTime = modified;
    }
  }
  if (best.isEmpty()) {
    r.outcome = DatabaseStartResult::Outcome::Stop;
    r.messageArg = QDir::toNativeSeparators(dbPath);
    switch (state) {
      case DbFileState::Missing: r.messageCode = QStringLiteral("DBSF-C-0001"); break;
      case DbFileState::Empty: r.messageCode = QStringLiteral("DBSF-C-0002"); break;
      case DbFileState::WrongKey: r.messageCode = QStringLiteral("DBSF-C-0003"); break;
      default: r.messageCode = QStringLiteral("DBSF-C-0004"); break;
    }
    return r;
  }

  // The file that failed is kept aside, never removed: it may still be worth something.
  if (QFileInfo::exists(dbPath)) {
    const QString aside = dbPath + QStringLiteral(".damaged");
    QFile::remove(aside);
    if (!QFile::rename(dbPath, aside)) {
      r.outcome = DatabaseStartResult::Outcome::Stop;
      r.messageCode = QStringLiteral("DBSF-C-0004");
      r.messageArg = QDir::toNativeSeparators(dbPath);
      return r;
    }
  }
  QFile::remove(dbPath + QStringLiteral("-wal"));
  QFile::remove(dbPath + QStringLiteral("-shm"));
  QString error;
  if (!CopyFileAtomically(best, dbPath, &error)) {
    Trace(QStringLiteral("2"), error);
    r.outcome = DatabaseStartResult::Outcome::Stop;
    r.messageCode = QStringLiteral("DBSF-C-0004");
    r.messageArg = QDir::toNativeSeparators(dbPath);
    return r;
  }
  r.key = bestKey;
  if (bestKey != key && ownKey && Rekey(dbPath, key, r.detail)) r.key = key;
  r.outcome = DatabaseStartResult::Outcome::Recovered;
  r.messageCode = QStringLiteral("DBSF-W-0001");
  r.messageArg = QDir::toNativeSeparators(best) + QStringLiteral(" (") +
                 bestTime.toString(QStringLiteral("yyyy/MM/dd HH:mm")) + QStringLiteral(")");
  Trace(QStringLiteral("1"), dbPath + QStringLiteral(" restored from ") + r.messageArg);
  return r;
}

// ---- files ----

namespace {
bool SyncPath(const QString& path, int flags) {
  const int fd = ::open(QFile::encodeName(path).constData(), flags | O_CLOEXEC);
  if (fd < 0) return false;
  const bool ok = ::fsync(fd) == 0;
  ::close(fd);
  return ok;
}
}  // namespace

bool SyncFile(const QString& path) { return SyncPath(path, O_RDONLY); }

bool SyncFolder(const QString& folder) { return SyncPath(folder, O_RDONLY | O_DIRECTORY); }

bool CopyFileAtomically(const QString& source, const QString& target, QString* error) {
  auto fail = [&](const QString& text) {
    if (error) *error = text;
    return false;
  };
  const QString temp = target + QStringLiteral(".copying");
  QFile::remove(temp);
  if (!QFile::copy(source, temp)) return fail(QStringLiteral("copy of %1 to %2 failed").arg(source, temp));
  QFile::setPermissions(temp, QFileDevice::ReadOwner | QFileDevice::WriteOwner);
  if (!SyncFile(temp)) {
    QFile::remove(temp);
    return fail(QStringLiteral("%1 cannot be synced").arg(temp));
  }
  if (::rename(QFile::encodeName(temp).constData(), QFile::encodeName(target).constData()) != 0) {
    QFile::remove(temp);
    return fail(QStringLiteral("%1 cannot be renamed to %2").arg(temp, target));
  }
  SyncFolder(QFileInfo(target).absolutePath());
  return true;
}

bool MakePrivateFolder(const QString& folder) {
  if (!QDir().mkpath(folder)) return false;
  return ::chmod(QFile::encodeName(folder).constData(), 0700) == 0;
}

bool MakePrivateFile(const QString& path) {
  const int fd = ::open(QFile::encodeName(path).constData(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600);
  if (fd < 0) return false;
  const bool ok = ::fchmod(fd, 0600) == 0;
  ::close(fd);
  return ok;
}

// ---- the lock ----

struct InstallationLock::Impl {
  explicit Impl(const QString& p) : path(p), file(p) { file.setStaleLockTime(0); }
  QString path;
  QLockFile file;
};

InstallationLock::InstallationLock(const QString& dbPath)
    : impl_(std::make_unique<Impl>(QFileInfo(dbPath).absoluteDir().filePath(QStringLiteral("vantora.lock")))) {}

InstallationLock::~InstallationLock() { release(); }

bool InstallationLock::acquire(int waitMs) {
  if (held()) return true;
  if (impl_->file.tryLock(waitMs < 0 ? GetWriterLockWaitMs() : waitMs)) return true;
  // A lock left by a process that died is taken over by its process id. One killed
  // between creating the file and writing its id leaves a file without one: that is
  // stale once it is older than any writer needs to fill it in.
  qint64 pid = 0;
  QString host;
  QString app;
  const QFileInfo info(impl_->path);
  if (!impl_->file.getLockInfo(&pid, &host, &app) && info.exists() &&
      info.lastModified().msecsTo(QDateTime::currentDateTime()) > 2000) {
    impl_->file.removeStaleLockFile();
    return impl_->file.tryLock(0);
  }
  return false;
}

void InstallationLock::release() {
  if (held()) impl_->file.unlock();
}

bool InstallationLock::held() const { return impl_->file.isLocked(); }

QString InstallationLock::path() const { return impl_->path; }

bool AcquireForWriting(InstallationLock& lock) {
  if (lock.acquire()) return true;
  WriteTrace(QStringLiteral("1"), QStringLiteral("InstallationLock"), QStringLiteral("busy: ") + lock.path());
  MessageDialog(QStringLiteral("COMN-W-0001"));
  return false;
}
