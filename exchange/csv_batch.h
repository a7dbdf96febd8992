// The CSV batches: export of several users into one folder, and import of files or
// folders, each file as one reception stored in one transaction.
#pragma once

#include <QString>
#include <QStringList>
#include <vector>

#include "exchange/csv_export.h"

class ProgressInterface;
class VtDatabase;

// Export of one user: the period is narrowed to the user's measured days. False with the
// reason in error when the user has no data in the period or the file was not written.
bool ExportUserCSV(VtDatabase& db, const QString& from, const QString& to, const UserInfo& user,
                   const QString& path, int maxRows, int formatKind, const CsvExportOptions& options,
                   QString& error);

// The file name of a user's export: [login id "_"] name "_" yyyymmdd ".csv", the name
// being the display name of the edition (cleaned of characters a file name cannot hold).
QString CsvExportFileName(const UserInfo& user, bool withLogin, bool english, const QDate& today);

// Exports every user of userIds into folder; one log line (CR LF) per user that failed.
// Stops after the current user when progress is cancelled. Returns the files written.
int CSVBatchExport(VtDatabase& db, const QString& from, const QString& to, int formatKind,
                   const QString& folder, const QStringList& userIds, ProgressInterface& progress,
                   QString& log, const CsvExportOptions& options = {});

// What happened to one file of an import.
struct CsvImportFileResult {
  QString path;
  bool imported = false;
  int formatCode = -1;   // -1 when line 1 was not understood
  QString userId;        // the user found or registered
  QString loginId;
  bool userCreated = false;
  int days = 0;          // days stored
  int errorLine = 0;     // the line at fault, 0 when the fault is not in a line
  QString reason;        // why the file was refused, in the edition's words
  QString logLine;       // the log line of the file
};

struct CsvImportSummary {
  int filesRead = 0;
  int filesImported = 0;
  bool cancelled = false;
  QString log;  // lines end in CR LF
  std::vector<CsvImportFileResult> files;
};

// Imports the CSV files named in paths, or found in folders named there. New users go
// into groupId (empty: the current group). Each file is stored in one transaction, its
// new user included, so a refused file leaves nothing behind. The batch goes on after a
// refused file and stops between two files when progress is cancelled.
CsvImportSummary CSVBatchImport(VtDatabase& db, const QStringList& paths, const QString& groupId,
                                ProgressInterface& progress);

// Called once before an import stores anything (exchange/import_backup.cpp): the place
// for a backup of the database. False, with a message for the log, stops the import
// before the first file.
bool BackupBeforeCsvImport(VtDatabase& db, QString& message);
