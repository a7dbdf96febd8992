// vantora: the desktop program. Started by the installation's bin/vantora launcher,
// which makes bin/ the working directory, so that ACTA.res, menu.res and the
// relative paths of config.cnf are found.
#include <QApplication>
#include <QEvent>
#include <QFont>
#include <QMessageBox>
#include <QPixmap>
#include <QProgressDialog>
#include <QSplashScreen>

#include <sys/stat.h>

#include "catalogue.h"
#include "chartmaker.h"
#include "config.h"
#include "frmTerminal.h"
#include "helpers.h"
#include "qt_dialog.h"
#include "shared_values.h"
#include "startup.h"
#include "store.h"

namespace {

void ShowSplash() {
  const QString path = GetIniPicturePath(QStringLiteral("SPLASH"), QStringLiteral("IMAGE_BACK"));
  if (path.isEmpty()) return;
  QSplashScreen splash{QPixmap(path)};
  splash.show();
  QApplication::processEvents();
  splash.close();
}

// Tells the closing stages how the main window was closed: by the user (mode 0) or by
// the session ending.
class CloseWatcher : public QObject {
 public:
  explicit CloseWatcher(ClosingStages& closing) : closing_(closing) {}

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override {
    if (event->type() == QEvent::Close && !closing_.queryCloseDone()) {
      closing_.queryClose(qApp->isSavingSession() ? 1 : 0);
    }
    return QObject::eventFilter(watched, event);
  }

 private:
  ClosingStages& closing_;
};

// The modal bar of the compaction at the end of the run.
class CompactionProgress : public ProgressInterface {
 public:
  CompactionProgress() {
    bar_.setWindowModality(Qt::ApplicationModal);
    bar_.setCancelButton(nullptr);
    bar_.setMinimumDuration(0);
    bar_.setWindowTitle(QApplication::applicationName());
  }
  void setMaximum(int maximum) override { bar_.setMaximum(maximum); }
  void setValue(int value) override {
    bar_.setValue(value);
    QApplication::processEvents();
  }
  void setStatus(const QString& caption) override { bar_.setLabelText(caption); }
  bool cancelRequested() override { return false; }
  void yield() override { QApplication::processEvents(); }

 private:
  QProgressDialog bar_;
};

void ApplyCommonFont() {
  const QString family = GetCommonFontName();
  if (family.isEmpty()) return;
  QFont f = QApplication::font();
  f.setFamily(family);
  QApplication::setFont(f);
}

int Run(QApplication& app, QtDialog& dialogs) {
  QtStartupPlatform platform;  // holds the installation's single-instance lock
  ChartMaker chart;
  StartupSequence startup(platform, chart);
  startup.setSplash([] {
    ApplyCommonFont();
    // Without menu.res the menus show the marks of missing captions; no reason to stop.
    LoadMenuResource();
    ShowSplash();
  });
  if (startup.run() == StartupSequence::Outcome::Stop) return 1;
  ApplyCommonFont();

  VtDatabase db;
  ClosingStages closing(db, chart);
  frmTerminal w;
  dialogs.setParent(&w);
  if (!OpenWorkingDatabase(db)) return 1;
  // The closing stages write the sort order back, so it has to hold the stored one.
  SetUserSortOrder(static_cast<std::int16_t>(Ini_GetSortOrder()));

  CloseWatcher watcher(closing);
  w.installEventFilter(&watcher);
  w.show();
  const int rc = app.exec();
  w.removeEventFilter(&watcher);
  dialogs.setParent(nullptr);
  if (!closing.queryCloseDone()) closing.queryClose(1);

  CompactionProgress progress;
  const StartupSequence::Outcome closed = closing.closeMainScreen(progress);
  // The chart files hold people's figures: none stays behind the program.
  RemoveFilesIn(Ini_GetTempDataPath());
  if (closed == StartupSequence::Outcome::Stop) return 1;
  return rc;
}

}  // namespace

int main(int argc, char** argv) {
  // Everything this program writes (log, raw dumps, chart files, the key, copies of the
  // database) is its owner's alone.
  ::umask(077);
  QApplication app(argc, argv);
  QApplication::setApplicationName(QStringLiteral("vantora"));
  QApplication::setApplicationVersion(QStringLiteral(VANTORA_VERSION));

  QtDialog dialogs;
  SetDialogInterface(&dialogs);
  int rc = 1;
  try {
    rc = Run(app, dialogs);
  } catch (const ConfigError& e) {
    QMessageBox::critical(nullptr, QApplication::applicationName(), e.text());
    rc = 1;
  }
  SetDialogInterface(nullptr);
  return rc;
}
