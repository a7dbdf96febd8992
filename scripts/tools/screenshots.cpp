// Grabs the screens of the desktop program to PNG files, on an installation: run with
// the installation's bin/ as the working directory and an output folder as argument,
// a recorder image lying on the installation's reader. Shows the empty user list, the
// two receive screens while they work, the job screen in every period, the list with
// its user, and a long name. The questions of the receive are answered by registering
// one user.
#include <QApplication>
#include <QDir>
#include <QMenu>
#include <QProgressBar>
#include <QToolButton>
#include <QTimer>
#include <cstdio>

#include "chartmaker/chartmaker.h"
#include "device/readers.h"
#include "frame/catalogue.h"
#include "frame/config.h"
#include "frame/shared_values.h"
#include "frame/trace.h"
#include "store/store.h"
#include "testsupport/unattended_screens.h"
#include "ui/frmTerminal.h"
#include "ui/receive_screens.h"

namespace {

QString g_out;

void Save(QWidget* w, const QString& name) {
  const QString path = g_out + QLatin1Char('/') + name + QStringLiteral(".png");
  if (!w->grab().save(path)) std::fprintf(stderr, "screenshots: could not write %s\n", qPrintable(path));
}

}  // namespace

int main(int argc, char** argv) {
  QApplication app(argc, argv);
  if (argc < 2) {
    std::fprintf(stderr, "usage: ui_screenshots OUTPUT_FOLDER (run in an installation's bin/)\n");
    return 2;
  }
  g_out = QDir(QString::fromLocal8Bit(argv[1])).absolutePath();
  QDir().mkpath(g_out);
  if (!LoadResource() || !Ini_LoadConfig()) return 1;
  LoadMenuResource();
  SetLangCode(QString::number(Ini_GetLang()));
  LoadCommonFormat();
  SetLogLevel(QString::number(Ini_GetLogLevel()));
  if (!GetCommonFontName().isEmpty()) {
    QFont f = QApplication::font();
    f.setFamily(GetCommonFontName());
    QApplication::setFont(f);
  }

  VtDatabase db;
  ChartMaker chart;
  ChartPreparePersonal(chart, Ini_GetChartIniPath());
  std::unique_ptr<TavoReader> reader = CreateConfiguredReader();
  EventLoopDeviceClock clock(0.02);
  UnattendedScreens answers(IsEnglishEdition() ? QStringLiteral("Hana Sato") : QStringLiteral("佐藤 花子"));
  frmTerminal w(TerminalServices{db, chart, *reader, clock, answers});
  if (!w.Form_Load()) return 1;
  w.resize(1024, 768);
  w.show();
  QApplication::processEvents();
  Save(&w, QStringLiteral("01-user-list-empty"));

  // The receive screens, grabbed while they work.
  bool management = false;
  bool data = false;
  QTimer watcher;
  QObject::connect(&watcher, &QTimer::timeout, [&] {
    for (QWidget* top : QApplication::topLevelWidgets()) {
      if (!top->isVisible()) continue;
      auto* screen = qobject_cast<ReceiveScreen*>(top);
      if (!screen) continue;
      if (!management && top->objectName() == QLatin1String("frmRecvManagement") &&
          screen->progressTransfer->value() >= 1) {
        management = true;
        Save(top, QStringLiteral("02-frmRecvManagement"));
      }
      if (!data && top->objectName() == QLatin1String("frmRecvData") && screen->progressTransfer->value() >= 40) {
        data = true;
        Save(top, QStringLiteral("03-frmRecvData"));
      }
    }
  });
  watcher.start(0);
  QTimer::singleShot(30000, &app, &QApplication::quit);
  QObject::connect(&w, &frmTerminal::chartDrawn, &app, [&app] { QTimer::singleShot(0, &app, &QApplication::quit); });
  app.exec();
  watcher.stop();
  if (GetScreenState() != QLatin1String("S_JOB")) {
    std::fprintf(stderr, "screenshots: no receive happened (is a recorder on the reader?)\n");
    return 1;
  }
  w.timerPolling->stop();
  QApplication::processEvents();
  Save(&w, QStringLiteral("04-job-week"));
  w.btnMonth->click();
  Save(&w, QStringLiteral("05-job-month"));
  w.btnGraph[1]->click();
  w.btnSixMonths->click();
  Save(&w, QStringLiteral("06-job-sixmonths-steps"));
  w.btnDay->click();
  Save(&w, QStringLiteral("07-job-day"));
  w.resize(800, 600);
  QApplication::processEvents();
  Save(&w, QStringLiteral("08-job-day-800x600"));
  w.resize(1280, 1000);
  w.btnGraph[0]->click();
  QApplication::processEvents();
  Save(&w, QStringLiteral("09-job-week-1280"));
  w.resize(1024, 768);
  QApplication::processEvents();
  w.WaitPicture->adjustSize();
  w.WaitPicture->move(w.picGraph->rect().center() - w.WaitPicture->rect().center());
  w.WaitPicture->show();
  Save(&w, QStringLiteral("09b-wait-notice"));
  w.WaitPicture->hide();
  w.btnBack->click();
  QApplication::processEvents();
  Save(&w, QStringLiteral("10-user-list"));
  w.mnuMenuEdit->popup(w.mapToGlobal(QPoint(0, 0)));
  QApplication::processEvents();
  Save(w.mnuMenuEdit, QStringLiteral("11-menu-edit"));
  w.mnuMenuEdit->hide();
  w.close();
  return 0;
}
