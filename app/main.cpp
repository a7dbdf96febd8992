// vantora: the desktop program. Started by the installation's bin/vantora launcher,
// which makes bin/ the working directory, so that ACTA.res, menu.res and the
// relative paths of config.cnf are found.
#include <QApplication>
#include <QFont>
#include <QMessageBox>
#include <QPixmap>
#include <QSplashScreen>

#include <sys/stat.h>

#include <algorithm>

#include "chartmaker/chartmaker.h"
#include "frame/catalogue.h"
#include "frame/config.h"
#include "frame/helpers.h"
#include "frame/shared_values.h"
#include "store/backup.h"
#include "store/store.h"
#include "ui/desktop_actions.h"
#include "ui/desktop_screens.h"
#include "ui/frmTerminal.h"
#include "ui/qt_dialog.h"
#include "ui/receive_screens.h"
#include "ui/startup.h"

namespace {

void ShowSplash() {
  const QString path = GetIniPicturePath(QStringLiteral("SPLASH"), QStringLiteral("IMAGE_BACK"));
  if (path.isEmpty()) return;
  QSplashScreen splash{QPixmap(path)};
  splash.show();
  QApplication::processEvents();
  splash.close();
}

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
  // A missing or damaged database is replaced by the newest good backup, if there is one.
  {
    QStringList copies = ListBackups(BackupFolderFor(kDefaultDbPath), kDefaultDbPath);
    std::reverse(copies.begin(), copies.end());
    startup.setDatabaseCopies(copies);
  }
  if (startup.run() == StartupSequence::Outcome::Stop) return 1;
  ApplyCommonFont();

  VtDatabase db;
  ClosingStages closing(db, chart);
  std::unique_ptr<TavoReader> reader = CreateConfiguredReader();
  EventLoopDeviceClock clock;
  QtUserScreens screens(db);
  frmTerminal w(TerminalServices{db, chart, *reader, clock, screens});
  dialogs.setParent(&w);
  if (!w.Form_Load()) return 1;
  w.setActions(DesktopActions(db, chart, w));
  QObject::connect(&w, &frmTerminal::quitRequested, [&closing] { closing.requestQuit(); });
  QObject::connect(&w, &frmTerminal::queryClose, [&closing](int mode) { closing.queryClose(mode); });

  w.show();
  const int rc = app.exec();
  dialogs.setParent(nullptr);
  if (!closing.queryCloseDone()) closing.queryClose(1);

  const StartupSequence::Outcome closed =
      closing.closeMainScreen([] { return CompactInProgressBar(nullptr); });
  // The chart files hold people's figures: none stays behind the program.
  RemoveFilesIn(Ini_GetTempDataPath());
  if (closed == StartupSequence::Outcome::Stop) return 1;
  return rc;
}

}  // namespace

int main(int argc, char** argv) {
  // Fractional screen scales as they are: the chart is drawn at the device pixel ratio.
  QGuiApplication::setHighDpiScaleFactorRoundingPolicy(Qt::HighDpiScaleFactorRoundingPolicy::PassThrough);
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
