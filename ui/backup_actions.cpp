#include "ui/backup_actions.h"

#include <QApplication>
#include <QDateTime>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>

#include "frame/catalogue.h"
#include "frame/dialog.h"
#include "store/backup.h"
#include "store/store.h"
#include "ui/startup.h"

namespace {

// The wait cursor while a copy runs.
class BusyCursor {
 public:
  BusyCursor() {
    if (qobject_cast<QApplication*>(QCoreApplication::instance())) {
      QApplication::setOverrideCursor(Qt::WaitCursor);
      active_ = true;
    }
  }
  ~BusyCursor() {
    if (active_) QApplication::restoreOverrideCursor();
  }
  BusyCursor(const BusyCursor&) = delete;
  BusyCursor& operator=(const BusyCursor&) = delete;

 private:
  bool active_ = false;
};

QString fileFilter() {
  return QStringLiteral("Vantora (*.db);;* (*)");
}

}  // namespace

QString WindowBackup::backupFolder() const {
  QString path;
  QString password;
  InstallationDatabase(path, password);
  return QFileInfo(BackupFolderFor(path)).absoluteFilePath();
}

QString WindowBackup::suggestedBackupPath() const {
  QString path;
  QString password;
  InstallationDatabase(path, password);
  QDir().mkpath(backupFolder());
  return QFileInfo(NewBackupPath(backupFolder(), path, QDateTime::currentDateTime())).absoluteFilePath();
}

bool WindowBackup::backUp(const QString& target) {
  QString path;
  QString password;
  InstallationDatabase(path, password);
  try {
    BusyCursor busy;
    BackUpDatabase(path, password, target);
  } catch (const StoreError& e) {
    MessageDialog(QStringLiteral("BKUP-C-0001"), e.text());
    return false;
  }
  MessageDialog(QStringLiteral("BKUP-I-0001"), QDir::toNativeSeparators(target));
  return true;
}

bool WindowBackup::restore(const QString& backupFile) {
  if (QuestionDialog(QStringLiteral("BKUP-W-0001"), QDir::toNativeSeparators(backupFile)) != kAnswerYes)
    return false;
  QString path;
  QString password;
  InstallationDatabase(path, password);
  // The working connection is closed for the swap: an open one would keep reading the
  // replaced file.
  VTDB_Close(db_);
  bool restored = true;
  try {
    BusyCursor busy;
    RestoreDatabase(path, password, backupFile);
  } catch (const StoreError& e) {
    restored = false;
    MessageDialog(QStringLiteral("BKUP-C-0002"), e.text());
  }
  if (!OpenWorkingDatabase(db_)) return restored;
  if (restored) MessageDialog(QStringLiteral("BKUP-I-0002"));
  return restored;
}

void BackUpFromWindow(VtDatabase& db, QWidget* parent) {
  WindowBackup backup(db);
  const QString target = QFileDialog::getSaveFileName(parent, QString(), backup.suggestedBackupPath(), fileFilter());
  if (target.isEmpty()) return;
  backup.backUp(target);
}

bool RestoreFromWindow(VtDatabase& db, QWidget* parent) {
  WindowBackup backup(db);
  const QString file = QFileDialog::getOpenFileName(parent, QString(), backup.backupFolder(), fileFilter());
  if (file.isEmpty()) return false;
  return backup.restore(file);
}
