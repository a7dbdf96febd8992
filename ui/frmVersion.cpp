#include "ui/frmVersion.h"

#include <QDesktopServices>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QIcon>
#include <QUrl>
#include <QVBoxLayout>

#include "frame/catalogue.h"
#include "frame/config.h"
#include "frame/helpers.h"
#include "frame/shared_values.h"
#include "frame/trace.h"
#include "ui/ini_picture.h"

namespace {

QString Caption(const char* key) { return GetIniCaption(QStringLiteral("VERSION"), QLatin1String(key)); }

bool OpenWithDesktop(const QUrl& url, const UrlOpener& open) {
  if (url.isEmpty()) return false;
  return open ? open(url) : QDesktopServices::openUrl(url);
}

}  // namespace

QString ProgramVersion() { return QStringLiteral(VANTORA_VERSION); }

frmVersion::frmVersion(QWidget* parent) : QDialog(parent) {
  setObjectName(QStringLiteral("frmVersion"));
  WriteTrace(QStringLiteral("0"), objectName(), QStringLiteral("Form_Load Start"));
  SetModalFormOpen(true);
  setModal(true);
  setWindowTitle(Caption("CAPTION_TITLE"));
  const QString icon = GetIniPicturePath(QStringLiteral("VB_COMMON"), QStringLiteral("FORM_ICON"));
  if (!icon.isEmpty()) setWindowIcon(QIcon(icon));

  picVersion = new QLabel(this);
  picVersion->setObjectName(QStringLiteral("picVersion"));
  picVersion->setAlignment(Qt::AlignCenter);
  SetIniPicture(*picVersion, QStringLiteral("VERSION"), QStringLiteral("IMAGE_BACK"));
  lblVersion = new QLabel(Caption("CAPTION_LBLVERSION") + QLatin1Char(' ') + ProgramVersion(), this);
  lblVersion->setObjectName(QStringLiteral("lblVersion"));
  lblVersion->setTextInteractionFlags(Qt::TextSelectableByMouse);
  lblCopyright = new QLabel(Caption("CAPTION_LBLCOPYRIGHT"), this);
  lblCopyright->setObjectName(QStringLiteral("lblCopyright"));
  btnOK = new QPushButton(Caption("CAPTION_BTNOK"), this);
  btnOK->setObjectName(QStringLiteral("btnOK"));
  btnOK->setDefault(true);
  connect(btnOK, &QPushButton::clicked, this, [this] {
    WriteTrace(QStringLiteral("0"), objectName(), QStringLiteral("btnOK_Click Start"));
    accept();
  });

  auto* layout = new QVBoxLayout(this);
  layout->addWidget(picVersion);
  layout->addWidget(lblVersion);
  layout->addWidget(lblCopyright);
  auto* buttons = new QHBoxLayout;
  buttons->addStretch(1);
  buttons->addWidget(btnOK);
  layout->addLayout(buttons);
  layout->setSizeConstraint(QLayout::SetFixedSize);
}

frmVersion::~frmVersion() {
  if (!unloaded_) SetModalFormOpen(false);
}

void frmVersion::done(int result) {
  if (!unloaded_) {
    unloaded_ = true;
    WriteTrace(QStringLiteral("0"), objectName(), QStringLiteral("Form_Unload Start"));
    SetModalFormOpen(false);
  }
  QDialog::done(result);
}

QUrl AddressToUrl(const QString& address) {
  const QString a = address.trimmed();
  if (a.isEmpty()) return {};
  const QUrl url(a);
  // "C:" style drive letters and plain paths are files; "https:", "file:" and the like
  // are addresses.
  if (url.isValid() && url.scheme().size() > 1) return url;
  return QUrl::fromLocalFile(QFileInfo(a).absoluteFilePath());
}

void ShowVersion(QWidget* parent) {
  WriteTrace(QStringLiteral("0"), QStringLiteral("frmTerminal"), QStringLiteral("mnuVersion_Click Start"));
  frmVersion version(parent);
  version.exec();
}

bool OpenHelp(QWidget* parent, const UrlOpener& open) {
  (void)parent;
  WriteTrace(QStringLiteral("0"), QStringLiteral("frmTerminal"), QStringLiteral("mnuHelp_Click Start"));
  const QUrl url = AddressToUrl(Ini_GetPdfHelpName());
  // A missing file is a failure too: the desktop would only say so in its own words.
  const bool opened = (!url.isLocalFile() || QFileInfo::exists(url.toLocalFile())) && OpenWithDesktop(url, open);
  if (!opened) MessageDialog(QStringLiteral("USEL-I-0004"));
  return opened;
}

bool OpenHealthyDiary(const UrlOpener& open) {
  WriteTrace(QStringLiteral("0"), QStringLiteral("frmTerminal"), QStringLiteral("mnuHealthyDiary_Click Start"));
  return OpenWithDesktop(AddressToUrl(Ini_GetHealthyDiaryAddress()), open);
}
