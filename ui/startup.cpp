#include "ui/startup.h"

#include <QCoreApplication>
#include <QDesktopServices>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLockFile>
#include <QProcess>
#include <QStorageInfo>
#include <QUrl>
#include <cmath>

#include "chartmaker/chartmaker.h"
#include "frame/catalogue.h"
#include "frame/config.h"
#include "frame/dialog.h"
#include "frame/helpers.h"
#include "frame/instance_lock.h"
#include "frame/shared_values.h"
#include "frame/trace.h"
#include "store/store.h"

// ---- platforms ----

struct QtStartupPlatform::Lock {
  explicit Lock(const QString& path) : file(path) { file.setStaleLockTime(0); }
  QLockFile file;
};

QtStartupPlatform::QtStartupPlatform() = default;
QtStartupPlatform::~QtStartupPlatform() = default;

bool QtStartupPlatform::freeBytes(const QString& path, double& bytes, QString& drive) {
  // The database file may not exist yet: the volume is that of its nearest existing folder.
  QFileInfo probe(GetAbsolutePathName(path));
  while (!probe.exists() && !probe.isRoot()) probe.setFile(probe.absolutePath());
  const QStorageInfo volume(probe.absoluteFilePath());
  drive = volume.rootPath();
  if (!drive.endsWith(u'/')) drive += u'/';
  if (!volume.isValid() || !volume.isReady()) return false;
  bytes = static_cast<double>(volume.bytesAvailable());
  return true;
}

bool QtStartupPlatform::fileExists(const QString& path) { return QFile::exists(path); }

bool QtStartupPlatform::openDocument(const QString& absolutePath) {
  return QDesktopServices::openUrl(QUrl::fromLocalFile(absolutePath));
}

bool QtStartupPlatform::runAndWait(const QString& commandLine) {
  QStringList args = QProcess::splitCommand(commandLine);
  if (args.isEmpty()) return false;
  const QString program = args.takeFirst();
  QProcess process;
  process.setProcessChannelMode(QProcess::ForwardedChannels);
  process.start(program, args);
  if (!process.waitForStarted(-1)) return false;
  process.waitForFinished(-1);
  return true;
}

QString QtStartupPlatform::lockFilePath(const QString& workingFolder) {
  return InstanceLockPath(workingFolder);
}

bool QtStartupPlatform::otherInstanceRunning() {
  if (lock_) return false;  // this process holds the installation already
  auto lock = std::make_unique<Lock>(lockFilePath(QDir::currentPath()));
  // A lock left by a process that died is recognised by its process id and taken over.
  if (!lock->file.tryLock(0)) return lock->file.error() == QLockFile::LockFailedError;
  lock_ = std::move(lock);
  return false;
}

bool ScriptedStartupPlatform::freeBytes(const QString& path, double& bytes, QString& drive) {
  log << QStringLiteral("freeBytes ") + path;
  freeBytesPaths << path;
  drive = driveName;
  bytes = freeByteCount;
  return freeBytesReadable;
}

bool ScriptedStartupPlatform::fileExists(const QString& path) {
  log << QStringLiteral("exists ") + path;
  existsAsked << path;
  return existingFiles.contains(path);
}

bool ScriptedStartupPlatform::openDocument(const QString& absolutePath) {
  log << QStringLiteral("open ") + absolutePath;
  openedDocuments << absolutePath;
  return openSucceedsAt > 0 && openedDocuments.size() >= openSucceedsAt;
}

bool ScriptedStartupPlatform::runAndWait(const QString& commandLine) {
  log << QStringLiteral("run ") + commandLine;
  startedCommands << commandLine;
  return startSucceeds;
}

bool ScriptedStartupPlatform::otherInstanceRunning() {
  log << QStringLiteral("instance");
  return anotherInstance;
}

void ScriptedStartupPlatform::stepReached(StartupStep step) { log << QStringLiteral("step ") + StartupStepName(step); }

// ---- fixed texts ----

namespace {
const QString kProductName = QStringLiteral("ヴァントーラ05パーソナル");
}

QString FreeDiskMessage(const QString& drive, int minimumGigabytes) {
  const QString size = QString::number(minimumGigabytes) + QStringLiteral("GB");
  return kProductName + QStringLiteral("がインストールされているドライブ (") + drive +
         QStringLiteral(") ") + QStringLiteral("の容量が") + size +
         QStringLiteral("を下回っているので、起動を中止しました。") + QStringLiteral("\r\n") +
         QStringLiteral("不要なファイルを削除する等して、ドライブ (") + drive +
         QStringLiteral(") の空き容量を確保した上で") + kProductName +
         QStringLiteral("の起動をお願いいたします。");
}

QString DatabaseBrokenMessage() {
  return QStringLiteral("データベースが破損している可能性がありますので、起動を終了します。");
}

// ---- start-up ----

StartupSequence::StartupSequence(StartupPlatform& platform, ChartMaker& chart)
    : platform_(platform), chart_(chart) {}

QString StartupStepName(StartupStep step) {
  switch (step) {
    case StartupStep::None: return QString();
    case StartupStep::SystemCheck: return QStringLiteral("system check");
    case StartupStep::FreeDiskSpace: return QStringLiteral("free disk space");
    case StartupStep::DatabaseCheck: return QStringLiteral("database check");
    case StartupStep::FirstTraceLevel: return QStringLiteral("first trace level");
    case StartupStep::Messages: return QStringLiteral("messages");
    case StartupStep::Configuration: return QStringLiteral("configuration");
    case StartupStep::LocaleDates: return QStringLiteral("locale dates");
    case StartupStep::Language: return QStringLiteral("language");
    case StartupStep::ScreenFormats: return QStringLiteral("screen formats");
    case StartupStep::TraceLevel: return QStringLiteral("trace level");
    case StartupStep::SingleInstance: return QStringLiteral("single instance");
    case StartupStep::Splash: return QStringLiteral("splash");
    case StartupStep::ChartLibrary: return QStringLiteral("chart library");
    case StartupStep::DatabaseMove: return QStringLiteral("database move");
  }
  return QString();
}

StartupSequence::Outcome StartupSequence::stop(StartupStep step) {
  stoppedAt_ = step;
  return Outcome::Stop;
}

void StartupSequence::showPlain(const QString& text) {
  // Shown before the catalogue (and its title) is read: the plain box of the platform.
  GetDialogInterface()->showMessage(QCoreApplication::applicationName(), text, DialogIcon::None);
}

int StartupSequence::osCheck(QString& message) {
  // Qt runs only where it was built for; every platform it starts on is supported.
  message.clear();
  return 0;
}

bool StartupSequence::checkFreeDiskSpace(const QString& path, int minimumGigabytes, QString& drive) {
  double bytes = 0;
  if (!platform_.freeBytes(path, bytes, drive)) return false;
  const double gigabytes = std::trunc(bytes / 1024.0 / 1024.0 / 1024.0);
  return gigabytes >= minimumGigabytes;
}

bool StartupSequence::dbCheck(QString& message) {
  message.clear();
  // The configuration is not located yet at this point, so the default path is what is
  // checked, whatever DB_NAME says; the key is the installation's.
  try {
    // A command of the tool may be writing: the check, a restore or a rekey waits for it.
    InstallationLock lock(kDefaultDbPath);
    lock.acquire();
    databaseStart_ = PrepareDatabaseAtStart(kDefaultDbPath, databaseCopies_);
  } catch (const std::exception& e) {
    databaseStart_ = DatabaseStartResult{};
    databaseStart_.detail = QString::fromUtf8(e.what());
  }
  const bool ok = databaseStart_.outcome != DatabaseStartResult::Outcome::Stop;
  if (!ok) message = DatabaseBrokenMessage();
  return ok;
}

bool StartupSequence::shiftDatabase() {
  if (Ini_GetShiftDb() == QStringLiteral("1")) return true;
  if (platform_.fileExists(kEarlierVersionDbPath)) {
    const QString helper = Ini_GetShiftDbAppName();
    if (!platform_.runAndWait(helper)) {
      WriteTrace(QStringLiteral("2"), QStringLiteral("ShiftDatabase"),
                 QStringLiteral("cannot start ") + helper);
      return false;
    }
  }
  // Also when no earlier version was found: the move is looked for once only.
  Ini_SetShiftDb(QStringLiteral("1"));
  return true;
}

StartupSequence::Outcome StartupSequence::run() {
  stoppedAt_ = StartupStep::None;

  platform_.stepReached(StartupStep::SystemCheck);
  QString message;
  if (osCheck(message) != 0) {
    showPlain(message);
    return stop(StartupStep::SystemCheck);
  }

  platform_.stepReached(StartupStep::FreeDiskSpace);
  QString drive;
  if (!checkFreeDiskSpace(kDefaultDbPath, kMinimumFreeGigabytes, drive)) {
    showPlain(FreeDiskMessage(drive, kMinimumFreeGigabytes));
    return stop(StartupStep::FreeDiskSpace);
  }

  platform_.stepReached(StartupStep::DatabaseCheck);
  if (!dbCheck(message)) {
    if (!message.isEmpty()) {
      // The catalogue is read early for this one message, so that it says what is wrong
      // in the edition's words; without it the fixed text stands.
      const QString code = databaseStart_.messageCode;
      if (!code.isEmpty() && QFile::exists(QStringLiteral("ACTA.res")) && LoadResource() && FindMessage(code))
        MessageDialog(code, databaseStart_.messageArg);
      else
        showPlain(message);
      const QString manual = GetAbsolutePath(kDatabaseManualPath);
      for (int i = 0; i < kManualOpenAttempts; ++i) {
        if (platform_.openDocument(manual)) break;
      }
    }
    return stop(StartupStep::DatabaseCheck);
  }

  if (GetStartupDone()) return Outcome::Continue;

  platform_.stepReached(StartupStep::FirstTraceLevel);
  SetLogLevel(QStringLiteral("1"));

  platform_.stepReached(StartupStep::Messages);
  if (!LoadResource()) return stop(StartupStep::Messages);

  platform_.stepReached(StartupStep::Configuration);
  if (!Ini_LoadConfig()) {
    MessageDialog(Ini_ConfigProblemCode());
    return stop(StartupStep::Configuration);
  }
  // A database restored from a copy is said once, now that the messages can be read.
  if (databaseStart_.outcome == DatabaseStartResult::Outcome::Recovered)
    MessageDialog(databaseStart_.messageCode, databaseStart_.messageArg);

  platform_.stepReached(StartupStep::LocaleDates);
  if (Ini_GetLocaleCheck() == 1) SetLocaleDateFormats();

  platform_.stepReached(StartupStep::Language);
  SetLangCode(QString::number(Ini_GetLang()));

  platform_.stepReached(StartupStep::ScreenFormats);
  LoadCommonFormat();

  platform_.stepReached(StartupStep::TraceLevel);
  SetLogLevel(QString::number(Ini_GetLogLevel()));

  platform_.stepReached(StartupStep::SingleInstance);
  if (platform_.otherInstanceRunning()) {
    MessageDialog(QStringLiteral("PTOP-I-0001"));
    return stop(StartupStep::SingleInstance);
  }

  platform_.stepReached(StartupStep::Splash);
  if (splash_) splash_();

  platform_.stepReached(StartupStep::ChartLibrary);
  // A chart library that cannot read its settings keeps its defaults; nothing to stop for.
  (void)ChartPreparePersonal(chart_, Ini_GetChartIniPath());

  platform_.stepReached(StartupStep::DatabaseMove);
  if (!shiftDatabase()) return stop(StartupStep::DatabaseMove);

  return Outcome::Continue;
}

bool OpenWorkingDatabase(VtDatabase& db) {
  QString path = Ini_GetDbName();
  QString password = Ini_GetDbPassword();
  if (VTDB_Open(db, path, password) != 0) {
    WriteTrace(QStringLiteral("2"), QStringLiteral("UserSelection: Form_Load"),
               QStringLiteral("VTDB_Open Error"));
    MessageDialog(QStringLiteral("COMN-C-0002"));
    return false;
  }
  return true;
}

// ---- closing ----

ClosingStages::ClosingStages(VtDatabase& db, ChartMaker& chart) : db_(db), chart_(chart) {}

void ClosingStages::queryClose(int mode) {
  VTDB_Close(db_);
  if (mode == 0) quitRequested_ = true;
  queryCloseDone_ = true;
}

StartupSequence::Outcome ClosingStages::closeMainScreen(const std::function<int()>& compact) {
  Ini_SetSortOrder(GetUserSortOrder());
  if (!quitRequested_) return StartupSequence::Outcome::Continue;
  if (Ini_GetCompactDb() && compact() != 0) {
    MessageDialog(QStringLiteral("PTOP-C-0002"));
    return StartupSequence::Outcome::Stop;
  }
  ChartFinishPersonal(chart_);
  return StartupSequence::Outcome::Continue;
}
