// Backups of the database: consistent encrypted copies taken while the program may be
// writing, kept in a folder beside the data with only the newest few retained, and the
// restore of one of them in place of the database.
//
// Files are never half-written: a copy goes to a temporary file in the folder of its
// destination, is synced to disk and then renamed into place.
#pragma once

#include <QDateTime>
#include <QString>
#include <QStringList>

inline constexpr int kDefaultBackupKeep = 10;

// The backup folder of a database: "backup" beside the database's folder
// (../data/mdb/ACTA.db keeps its backups in ../data/backup).
QString BackupFolderFor(const QString& dbPath);

// A free name for a new backup of dbPath in folder: "ACTA-YYYYMMDD-HHMMSS.db" after the
// database's own name, with "-2", "-3", ... added when that second is taken already.
QString NewBackupPath(const QString& folder, const QString& dbPath, const QDateTime& when);

// The backups of dbPath in folder (files named as NewBackupPath names them), oldest first.
QStringList ListBackups(const QString& folder, const QString& dbPath);

// Deletes the oldest backups of dbPath in folder until keep remain (at least one is
// always kept). Returns the deleted files.
QStringList RotateBackups(const QString& folder, const QString& dbPath, int keep);

// Writes a copy of the database at dbPath to target, encrypted with the same password.
// The copy is read inside one read transaction, so it holds exactly what was committed
// when it began, whatever other connections or processes write meanwhile. An existing
// target is replaced only once the copy is complete. Throws StoreError.
void BackUpDatabase(const QString& dbPath, const QString& password, const QString& target);

// Puts the backup in place of the database at dbPath. The backup is checked first: it
// must open with the password, pass the quick integrity check and hold every table of
// the schema, and the file itself is only read. The current database, when there is one,
// is kept as dbPath + ".before-restore" (a consistent copy, or the raw files when the
// database cannot be read); then the checked copy replaces the database in one rename.
// No connection may be open on dbPath meanwhile. Throws StoreError; when it does, the
// database is as it was.
void RestoreDatabase(const QString& dbPath, const QString& password, const QString& backup);

// ---- the installation's database (config.cnf: DB_NAME, DB_PASSWORD, BACKUP_KEEP) ----

// The database file and password of the installation, as the working connection gets
// them (DB_NAME, DB_PASSWORD; the defaults where they are empty).
void InstallationDatabase(QString& path, QString& password);

struct BackupOutcome {
  bool ok = false;
  QString file;     // the backup written
  QString message;  // what went wrong, when not ok
};

// A new backup of the installation's database in its backup folder, then the rotation
// to BACKUP_KEEP. Never throws; a failure is written to the trace log under reason
// ("compaction", "CSV import", ...) and returned, and the caller decides whether to go
// on. Made before each compaction and before each CSV import.
BackupOutcome MakeAutomaticBackup(const QString& reason);
