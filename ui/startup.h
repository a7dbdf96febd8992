// The path from process start to the point where the main screen prepares itself, and
// the parts of closing the main screen that do not depend on the screen. Plain classes:
// everything that asks the operating system goes through StartupPlatform, so tests run
// the whole sequence headless with a scripted platform.
#pragma once

#include <QString>
#include <QStringList>
#include <functional>
#include <memory>

#include "store/db_safety.h"

class ChartMaker;
class ProgressInterface;
class VtDatabase;

// The start of the program in order. The first three run at every start; the rest once
// per process.
enum class StartupStep {
  None,
  SystemCheck,
  FreeDiskSpace,
  DatabaseCheck,
  FirstTraceLevel,
  Messages,
  Configuration,
  LocaleDates,
  Language,
  ScreenFormats,
  TraceLevel,
  SingleInstance,
  Splash,
  ChartLibrary,
  DatabaseMove,
};
// The step as the trace log and the tests name it ("free disk space").
QString StartupStepName(StartupStep step);

// The questions the start-up asks the operating system.
class StartupPlatform {
 public:
  virtual ~StartupPlatform() = default;
  // Bytes available to this user on the volume holding path (the file itself need not
  // exist); drive receives the volume's mount point with a trailing "/". False when the
  // volume cannot be read.
  virtual bool freeBytes(const QString& path, double& bytes, QString& drive) = 0;
  virtual bool fileExists(const QString& path) = 0;
  // Opens a document with the desktop's default program. True when it was handed over.
  virtual bool openDocument(const QString& absolutePath) = 0;
  // Starts the command line in a normal window and waits for it without a time limit.
  // False when it could not be started.
  virtual bool runAndWait(const QString& commandLine) = 0;
  // True when another instance of this installation is running. The first call claims
  // the installation for this process.
  virtual bool otherInstanceRunning() = 0;
  // Called as each step of the sequence begins.
  virtual void stepReached(StartupStep step) { (void)step; }
};

// The desktop's answers: QStorageInfo, QFile, QDesktopServices, QProcess and a lock file
// per installation.
class QtStartupPlatform : public StartupPlatform {
 public:
  QtStartupPlatform();
  ~QtStartupPlatform() override;
  bool freeBytes(const QString& path, double& bytes, QString& drive) override;
  bool fileExists(const QString& path) override;
  bool openDocument(const QString& absolutePath) override;
  bool runAndWait(const QString& commandLine) override;
  bool otherInstanceRunning() override;

  // The lock file that marks an installation as running: in the system's temp folder
  // (the installation's own temp folder is emptied by the main screen), named after the
  // installation's working folder so that two installations can run side by side.
  static QString lockFilePath(const QString& workingFolder);

 private:
  struct Lock;
  std::unique_ptr<Lock> lock_;
};

// A platform that answers from its fields and records what was asked of it (tests).
class ScriptedStartupPlatform : public StartupPlatform {
 public:
  bool freeBytes(const QString& path, double& bytes, QString& drive) override;
  bool fileExists(const QString& path) override;
  bool openDocument(const QString& absolutePath) override;
  bool runAndWait(const QString& commandLine) override;
  bool otherInstanceRunning() override;
  void stepReached(StartupStep step) override;

  double freeByteCount = 100.0 * 1024 * 1024 * 1024;
  bool freeBytesReadable = true;
  QString driveName = QStringLiteral("/");
  QStringList existingFiles;           // fileExists answers true for these
  int openSucceedsAt = 1;              // the n-th open attempt succeeds; 0 = never
  bool startSucceeds = true;
  bool anotherInstance = false;

  QStringList log;                     // "step free disk space", "freeBytes path", "open path", ...
  QStringList freeBytesPaths;
  QStringList openedDocuments;
  QStringList startedCommands;
  QStringList existsAsked;
};

// The fixed texts of the free-space and database checks. They are shown before the
// catalogue is read, so they cannot come from it.
QString FreeDiskMessage(const QString& drive, int minimumGigabytes);
QString DatabaseBrokenMessage();

inline constexpr int kMinimumFreeGigabytes = 8;
inline const QString kDatabaseManualPath = QStringLiteral("../help/ERROR_DB.pdf");
inline constexpr int kManualOpenAttempts = 10;
// Where the earlier version kept its database (its Windows path, without the drive).
inline const QString kEarlierVersionDbPath =
    QStringLiteral("/Program Files/bentora/Vantora03/Personal/data/mdb/ACTA.mdb");

class StartupSequence {
 public:
  enum class Outcome { Continue, Stop };

  StartupSequence(StartupPlatform& platform, ChartMaker& chart);

  // Shows the splash screen at its step (nothing when unset).
  void setSplash(std::function<void()> splash) { splash_ = std::move(splash); }
  // Further copies the database check may restore from when the database is missing,
  // empty or damaged (the newest backups, for example), beside its own.
  void setDatabaseCopies(QStringList copies) { databaseCopies_ = std::move(copies); }

  // Every step in order. Stop means the process ends now; the reason has been shown.
  Outcome run();
  // The step that stopped the run; None when it went through.
  StartupStep stoppedAt() const { return stoppedAt_; }

  // The single checks, usable on their own.
  // 0 when the system is supported; 2 with message set when it is not.
  int osCheck(QString& message);
  // True when the volume of path has at least minimumGigabytes whole GiB free.
  bool checkFreeDiskSpace(const QString& path, int minimumGigabytes, QString& drive);
  // Checks the default database with the installation's key before anything writes:
  // recovers it from a good copy when it is missing, empty or damaged, rekeys one made
  // before the installation had its own key. False when no usable database is left.
  bool dbCheck(QString& message);
  // The one-time move of the earlier version's data. False when the helper could not
  // be started.
  bool shiftDatabase();

 private:
  Outcome stop(StartupStep step);
  void showPlain(const QString& text);

  StartupPlatform& platform_;
  ChartMaker& chart_;
  std::function<void()> splash_;
  QStringList databaseCopies_;
  DatabaseStartResult databaseStart_;
  StartupStep stoppedAt_ = StartupStep::None;
};

// The main window's working connection, opened as it loads, with DB_NAME and DB_PASSWORD. On
// failure a level-"2" line "VTDB_Open Error" under "UserSelection: Form_Load" and
// COMN-C-0002; false means the process stops.
bool OpenWorkingDatabase(VtDatabase& db);

// The closing of the main screen, apart from what belongs to the screen itself
// (its temporary chart files, its timer, the reader).
class ClosingStages {
 public:
  ClosingStages(VtDatabase& db, ChartMaker& chart);

  // The user's stop from the Quit menu.
  void requestQuit() { quitRequested_ = true; }
  // Runs in every closing path: closes the working connection; mode 0 (the user closed
  // the window) counts as a stop asked for by the user.
  void queryClose(int mode);
  // Stores the sort order; after a stop asked for by the user compacts the database
  // when COMPACT_DB is "1" and finishes the chart library. Stop when the compaction
  // failed (PTOP-C-0002 has been shown, the chart library is left alone).
  // compact() compacts the file of DB_NAME (the desktop shows it in frmProgressBar) and
  // gives 0 on success.
  StartupSequence::Outcome closeMainScreen(const std::function<int()>& compact);

  bool quitRequested() const { return quitRequested_; }
  bool queryCloseDone() const { return queryCloseDone_; }

 private:
  VtDatabase& db_;
  ChartMaker& chart_;
  bool quitRequested_ = false;
  bool queryCloseDone_ = false;
};
