#include "frmTerminal.h"

#include <QAction>
#include <QCloseEvent>
#include <QIcon>
#include <QMenuBar>
#include <QPalette>
#include <QPixmap>
#include <QVBoxLayout>

#include "catalogue.h"
#include "shared_values.h"
#include "trace.h"

namespace {

QString title() {
  const auto rec = FindMessage(QStringLiteral("TITL-I-0001"));
  return rec ? rec->text1 : QString();
}

QColor fromVbColor(std::uint32_t c) {
  return QColor(static_cast<int>(c & 0xff), static_cast<int>((c >> 8) & 0xff),
                static_cast<int>((c >> 16) & 0xff));
}

}  // namespace

frmTerminal::frmTerminal(QWidget* parent) : QMainWindow(parent) {
  setObjectName(QStringLiteral("frmTerminal"));
  WriteTrace(QStringLiteral("0"), objectName(), QStringLiteral("Form_Load Start"));
  setWindowTitle(title());
  const QString icon = GetIniPicturePath(QStringLiteral("VB_COMMON"), QStringLiteral("FORM_ICON"));
  if (!icon.isEmpty()) setWindowIcon(QIcon(icon));
  setMinimumSize(800, 600);
  setMaximumSize(1600, 1200);
  resize(1024, 768);
  buildMenus();
  buildWelcome();
  applyCommonLook();
}

void frmTerminal::closeEvent(QCloseEvent* event) {
  WriteTrace(QStringLiteral("0"), objectName(), QStringLiteral("Form_Unload Start"));
  QMainWindow::closeEvent(event);
}

void frmTerminal::buildMenus() {
  auto menu = [this](QMenu*& m, const char* name, const char* key) {
    m = menuBar()->addMenu(GetMenuCaption(QString::fromLatin1(key)));
    m->setObjectName(QString::fromLatin1(name));
  };
  auto entry = [](QMenu* m, QAction*& a, const char* name, const char* key) {
    a = m->addAction(GetMenuCaption(QString::fromLatin1(key)));
    a->setObjectName(QString::fromLatin1(name));
  };
  menu(mnuMenuEdit, "mnuMenuEdit", "MENU_EDIT");
  entry(mnuMenuEdit, mnuNewUser, "mnuNewUser", "MENU_EDIT_NEW_USER");
  entry(mnuMenuEdit, mnuEditUser, "mnuEditUser", "MENU_EDIT_EDIT_USER");
  entry(mnuMenuEdit, mnuDeleteUser, "mnuDeleteUser", "MENU_EDIT_DELETE_USER");
  mnuMenuEdit->addSeparator();
  entry(mnuMenuEdit, mnuQuit, "mnuQuit", "MENU_QUIT");

  menu(mnuDisplay, "mnuDisplay", "MENU_DISPLAY");
  entry(mnuDisplay, mnuNameAscend, "mnuNameAscend", "MENU_DISPLAY_ALPHABET_ASC");
  entry(mnuDisplay, mnuNameDescend, "mnuNameDescend", "MENU_DISPLAY_ALPHABET_DESC");
  entry(mnuDisplay, mnuRegistAscend, "mnuRegistAscend", "MENU_DISPLAY_REG_ASC");
  entry(mnuDisplay, mnuRegistDescend, "mnuRegistDescend", "MENU_DISPLAY_REG_DESC");
  for (QAction* a : {mnuNameAscend, mnuNameDescend, mnuRegistAscend, mnuRegistDescend}) {
    a->setCheckable(true);
  }

  menu(mnuMenuJob, "mnuMenuJob", "MENU_JOB");
  entry(mnuMenuJob, mnuReceive, "mnuReceive", "MENU_JOB_DOWNLOAD");
  entry(mnuMenuJob, mnuReport, "mnuReport", "MENU_JOB_REPORT");

  menu(mnuMenuMove, "mnuMenuMove", "MENU_MOVE");
  entry(mnuMenuMove, mnuUserList, "mnuUserList", "MENU_MOVE_USERLIST");

  menu(mnuMenuHelp, "mnuMenuHelp", "MENU_HELP");
  entry(mnuMenuHelp, mnuHelp, "mnuHelp", "MENU_HELP_HELP");
  entry(mnuMenuHelp, mnuHealthyDiary, "mnuHealthyDiary", "MENU_HEALTHYDIARY");
  entry(mnuMenuHelp, mnuVersion, "mnuVersion", "MENU_HELP_VERSION");

  // Nothing behind these entries yet except leaving.
  for (QAction* a : {mnuNewUser, mnuEditUser, mnuDeleteUser, mnuReceive, mnuReport, mnuUserList}) {
    a->setEnabled(false);
  }
  connect(mnuQuit, &QAction::triggered, this, [this] {
    WriteTrace(QStringLiteral("0"), objectName(), QStringLiteral("mnuQuit_Click Start"));
    close();
  });
}

void frmTerminal::buildWelcome() {
  auto* central = new QWidget(this);
  central->setObjectName(QStringLiteral("picGraph"));
  auto* layout = new QVBoxLayout(central);
  layout->addStretch(1);

  auto* logo = new QLabel(central);
  logo->setObjectName(QStringLiteral("imgLogo"));
  logo->setAlignment(Qt::AlignCenter);
  const QString splash = GetIniPicturePath(QStringLiteral("SPLASH"), QStringLiteral("IMAGE_BACK"));
  if (!splash.isEmpty()) logo->setPixmap(QPixmap(splash));
  layout->addWidget(logo);

  lblWelcome = new QLabel(central);
  lblWelcome->setObjectName(QStringLiteral("lblWelcome"));
  lblWelcome->setAlignment(Qt::AlignCenter);
  lblWelcome->setWordWrap(true);
  lblWelcome->setText(GetIniCaption(QStringLiteral("USERSELECTION"), QStringLiteral("CAPTION_LBLWELCOME")));
  QFont f = lblWelcome->font();
  f.setPointSizeF(f.pointSizeF() * 1.3);
  lblWelcome->setFont(f);
  layout->addWidget(lblWelcome);
  layout->addStretch(2);
  setCentralWidget(central);
}

void frmTerminal::applyCommonLook() {
  QPalette pal = palette();
  pal.setColor(QPalette::Window, fromVbColor(GetCommonFormBackColor()));
  setPalette(pal);
  setAutoFillBackground(true);
  const QString font = GetCommonFontName();
  if (!font.isEmpty()) {
    QFont f = this->font();
    f.setFamily(font);
    setFont(f);
  }
}
