// "Back up…" and "Restore…" of the main window's Edit menu. WindowBackup holds what the
// two do with the working connection (plain class, driven by tests without a display);
// the two functions at the end add the file dialogs and the wait cursor.
#pragma once

#include <QString>

class QWidget;
class VtDatabase;

class WindowBackup {
 public:
  explicit WindowBackup(VtDatabase& db) : db_(db) {}

  // The folder offered for backups and the name of a new one in it.
  QString backupFolder() const;
  QString suggestedBackupPath() const;

  // Writes a backup of the working database to target. Tells the person the outcome
  // (BKUP-I-0001, or BKUP-C-0001 with the reason). True when written.
  bool backUp(const QString& target);

  // Asks BKUP-W-0001; on Yes closes the working connection, puts the backup in place of
  // the database and opens the connection again. True when the data were replaced (the
  // window then shows them anew). A file that is no backup is refused with BKUP-C-0002,
  // and the connection is open again on the unchanged data.
  bool restore(const QString& backupFile);

 private:
  VtDatabase& db_;
};

// Edit > "Back up…": a save dialog in the backup folder with a new name filled in.
void BackUpFromWindow(VtDatabase& db, QWidget* parent);
// Edit > "Restore…": an open dialog in the backup folder, then WindowBackup::restore.
// True when the data were replaced: the caller reloads its users and charts.
bool RestoreFromWindow(VtDatabase& db, QWidget* parent);
