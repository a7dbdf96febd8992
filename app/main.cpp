// vantora: the desktop program. Started by the installation's bin/vantora launcher,
// which makes bin/ the working directory, so that ACTA.res, menu.res and the
// relative paths of config.cnf are found.
#include <QApplication>
#include <QFont>
#include <QMessageBox>
#include <QPixmap>
#include <QSplashScreen>

#include "catalogue.h"
#include "config.h"
#include "frmTerminal.h"
#include "helpers.h"
#include "qt_dialog.h"
#include "shared_values.h"

namespace {

// The one-time part of the start: catalogue, configuration, locale and look, log level.
// False when the process has to stop; the reason has been shown.
bool StartFrame() {
  SetLogLevel(QStringLiteral("1"));
  if (!LoadResource()) return false;
  if (!Ini_LoadConfig()) {
    MessageDialog(QStringLiteral("PTOP-C-0001"));
    return false;
  }
  if (Ini_GetLocaleCheck() == 1) SetLocaleDateFormats();
  SetLangCode(QString::number(Ini_GetLang()));
  LoadCommonFormat();
  SetLogLevel(QString::number(Ini_GetLogLevel()));
  return true;
}

void ShowSplash() {
  const QString path = GetIniPicturePath(QStringLiteral("SPLASH"), QStringLiteral("IMAGE_BACK"));
  if (path.isEmpty()) return;
  QSplashScreen splash{QPixmap(path)};
  splash.show();
  QApplication::processEvents();
  splash.close();
}

}  // namespace

int main(int argc, char** argv) {
  QApplication app(argc, argv);
  QApplication::setApplicationName(QStringLiteral("vantora"));
  QApplication::setApplicationVersion(QStringLiteral(VANTORA_VERSION));

  QtDialog dialogs;
  SetDialogInterface(&dialogs);
  try {
    if (!StartFrame()) return 1;
    const QString family = GetCommonFontName();
    if (!family.isEmpty()) {
      QFont f = QApplication::font();
      f.setFamily(family);
      QApplication::setFont(f);
    }
    // Without menu.res the menus show the marks of missing captions; that is no reason to stop.
    LoadMenuResource();
    ShowSplash();

    frmTerminal w;
    dialogs.setParent(&w);
    w.show();
    const int rc = app.exec();
    SetDialogInterface(nullptr);
    return rc;
  } catch (const ConfigError& e) {
    QMessageBox::critical(nullptr, QApplication::applicationName(), e.text());
    SetDialogInterface(nullptr);
    return 1;
  }
}
