// Keeping the household's data whole: the installation's database key, the check and
// recovery of the database file at start, file replacement that is never half done,
// and the lock that lets one writer at a time work on an installation.
#pragma once

#include <QString>
#include <QStringList>
#include <memory>

// ---- the key ----

// The installation's key file: db.key beside the configuration file when one is
// located, else "../conf/db.key" (start-up checks run before the configuration is read).
QString InstallationKeyPath();
// Writes a new key file: 32 bytes from the system's random source as 64 hex digits,
// readable by its owner only. Never over an existing file. False with error set.
bool CreateInstallationKey(const QString& path, QString* error = nullptr);
// The key as SQLCipher's raw-key text x'<64 hex digits>' ("" when the file holds none).
QString ReadInstallationKey(const QString& path);
// The key to open this installation's database with: DB_PASSWORD when the configuration
// sets one other than the built-in password of older installations, else the key file's
// raw key, else "" (the caller then falls back to the built-in password).
QString InstallationDatabaseKey();
// The key for a password as a caller holds it: empty or the built-in password mean the
// installation's key where it has one, else the built-in password; any other is kept.
QString ResolveDatabaseKey(const QString& given);

// ---- the state of a database file ----

enum class DbFileState {
  Good,        // opens with the key and passes the integrity check
  Missing,     // no such file
  Empty,       // a file of 0 bytes
  WrongKey,    // a file that this key does not open (or no database at all)
  Damaged,     // opens, but the integrity check or a table read fails
};
// Opens read-only and checks (quick_check, or the whole integrity_check with full);
// detail receives the engine's words (for the trace log).
DbFileState InspectDatabaseFile(const QString& path, const QString& key, QString* detail = nullptr,
                                bool full = false);
QString DbFileStateName(DbFileState state);

// ---- engine failures in the edition's words ----

// The catalogue code for an engine result code (SQLITE_...): full disk, busy, read-only,
// not readable with the key, damaged, or the general database error.
QString StoreErrorCode(int engineCode);
// Text 1 of that code (the engine's own words belong in the trace log only).
QString StoreErrorMessage(int engineCode);

// ---- start ----

struct DatabaseStartResult {
  enum class Outcome {
    Ready,      // the database is good as it stands
    Recovered,  // it was missing, empty or damaged and a good copy took its place
    Rekeyed,    // made before the installation had its own key: now keyed with it
    Stop,       // no usable database: nothing was written; show messageCode and stop
  };
  Outcome outcome = Outcome::Stop;
  QString messageCode;   // catalogue code to show (Recovered and Stop)
  QString messageArg;    // its argument (the copy used, the file)
  QString detail;        // for the trace log
  QString key;           // the key the database now opens with
};

// Copies that may stand in for the database: the compaction's temporary file and the
// ".org" and ".bak" copies of the compaction, and any further candidates given (the
// newest backups, for example). Existing files only, in that order.
QStringList DatabaseCopyCandidates(const QString& dbPath, const QStringList& extra = {});
// The start-up check, before anything writes: a good database is kept as it is; one keyed
// with the built-in password of older installations is copied aside (".prekey") and
// rekeyed with the installation's key (a key file is made when missing); a missing,
// empty or damaged one is replaced by the newest good copy among the candidates (the
// damaged file is kept aside as ".damaged"). With no good copy the result is Stop and
// nothing has been written. An empty key means the installation's key.
DatabaseStartResult PrepareDatabaseAtStart(const QString& dbPath, const QStringList& extraCandidates = {},
                                           QString key = QString());

// ---- files ----

// fsync of a file or of a folder (so that a rename in it is durable). False on failure.
bool SyncFile(const QString& path);
bool SyncFolder(const QString& folder);
// Copies source to target through a temporary file in target's folder, synced, renamed
// over target and the folder synced: target is either the old file or the whole copy.
bool CopyFileAtomically(const QString& source, const QString& target, QString* error = nullptr);
// Creates a file or folder readable by its owner only (0600 / 0700); an existing one
// has its mode narrowed. False on failure.
bool MakePrivateFolder(const QString& folder);
bool MakePrivateFile(const QString& path);

// ---- one writer at a time ----

// The lock of an installation: a lock file beside the database. Every writer (the
// window's receives, user changes, weight plans, imports, group deletion and closing;
// each command of the tool that writes) holds it while it writes; a lock left by a
// process that died is taken over.
class InstallationLock {
 public:
  explicit InstallationLock(const QString& dbPath);
  ~InstallationLock();
  InstallationLock(const InstallationLock&) = delete;
  InstallationLock& operator=(const InstallationLock&) = delete;
  // Waits up to waitMs (default: the shared writer wait) for the lock. False when
  // another writer still holds it.
  bool acquire(int waitMs = -1);
  void release();
  bool held() const;
  QString path() const;

 private:
  struct Impl;
  std::unique_ptr<Impl> impl_;
};

// Takes lock for a change made from a screen or a command. When another writer keeps it
// past the wait, tells the person that Vantora is busy ("COMN-W-0001") and returns false.
bool AcquireForWriting(InstallationLock& lock);
