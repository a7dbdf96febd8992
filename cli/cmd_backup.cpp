// backup and restore: copies of the installation's database.
#include <QDateTime>
#include <QDir>
#include <QFileInfo>
#include <QLockFile>
#include <QTextStream>

#include "cli/commands.h"
#include "frame/catalogue.h"
#include "frame/config.h"
#include "frame/instance_lock.h"
#include "frame/shared_values.h"
#include "store/backup.h"
#include "store/store.h"

namespace {

// The installation's configuration and catalogue; false with a message when missing.
bool LoadInstallation(const char* command) {
  if (!Ini_LoadConfig()) {
    QTextStream(stderr) << command
                        << ": the configuration (config.cnf) was not found; run from an installation's bin/\n";
    return false;
  }
  SetLangCode(QString::number(Ini_GetLang()));
  SetLogLevel(QString::number(Ini_GetLogLevel()));
  return LoadResource();
}

}  // namespace

int cmd_backup(const QStringList& args) {
  if (args.size() > 1 || (!args.isEmpty() && args.first().startsWith(QLatin1String("--")))) {
    QTextStream(stderr) << "usage: vantora-cli backup [FILE]\n";
    return 2;
  }
  if (!LoadInstallation("backup")) return 1;
  QString dbPath;
  QString password;
  InstallationDatabase(dbPath, password);
  const QString folder = BackupFolderFor(dbPath);
  const bool ownFile = !args.isEmpty();
  const QString target = ownFile ? args.first() : NewBackupPath(folder, dbPath, QDateTime::currentDateTime());
  if (ownFile && QFileInfo::exists(target)) {
    MessageDialog(QStringLiteral("BKUP-C-0001"), QStringLiteral("%1 exists already.").arg(target));
    return 1;
  }
  try {
    BackUpDatabase(dbPath, password, target);
  } catch (const StoreError& e) {
    MessageDialog(QStringLiteral("BKUP-C-0001"), e.text());
    return 1;
  }
  if (!ownFile) RotateBackups(folder, dbPath, Ini_GetBackupKeep());
  QTextStream(stdout) << QFileInfo(target).absoluteFilePath() << "\n";
  return 0;
}

int cmd_restore(const QStringList& args) {
  if (args.size() != 1 || args.first().startsWith(QLatin1String("--"))) {
    QTextStream(stderr) << "usage: vantora-cli restore FILE\n";
    return 2;
  }
  if (!LoadInstallation("restore")) return 1;
  // Held until the restore is done, so the desktop program cannot start in between.
  const auto lock = ClaimInstallation(QDir::currentPath());
  if (!lock) {
    MessageDialog(QStringLiteral("BKUP-C-0003"));
    return 1;
  }
  QString dbPath;
  QString password;
  InstallationDatabase(dbPath, password);
  try {
    RestoreDatabase(dbPath, password, args.first());
  } catch (const StoreError& e) {
    MessageDialog(QStringLiteral("BKUP-C-0002"), e.text());
    return 1;
  }
  QTextStream(stdout) << "restored " << QFileInfo(dbPath).absoluteFilePath() << " from "
                      << QFileInfo(args.first()).absoluteFilePath() << "; the previous data are in "
                      << QFileInfo(dbPath + QStringLiteral(".before-restore")).absoluteFilePath() << "\n";
  return 0;
}
