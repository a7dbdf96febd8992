// The version screen, the manual and the healthy diary of the help menu.
#pragma once

#include <QDialog>
#include <QLabel>
#include <QPushButton>
#include <functional>

class QUrl;

class frmVersion : public QDialog {
  Q_OBJECT

 public:
  explicit frmVersion(QWidget* parent = nullptr);
  ~frmVersion() override;

  QLabel* picVersion = nullptr;
  QLabel* lblVersion = nullptr;
  QLabel* lblCopyright = nullptr;
  QPushButton* btnOK = nullptr;

 public Q_SLOTS:
  void done(int result) override;

 private:
  bool unloaded_ = false;
};

// The program's version, as `vantora-cli version` prints it.
QString ProgramVersion();

// Hands an address to the desktop (QDesktopServices); true when it was taken. Tests
// pass their own.
using UrlOpener = std::function<bool(const QUrl&)>;
// A configured address as a URL: an address with a scheme as it stands, anything else
// a file path counted from the working directory.
QUrl AddressToUrl(const QString& address);

// mnuVersion: frmVersion, modally.
void ShowVersion(QWidget* parent);
// mnuHelp: opens the manual (PDFHELP_NAME); USEL-I-0004 when it cannot be opened.
// Returns whether it was opened.
bool OpenHelp(QWidget* parent, const UrlOpener& open = {});
// mnuHealthyDiary: opens HEALTY_DIARY_ADDRESS; a failure shows nothing.
bool OpenHealthyDiary(const UrlOpener& open = {});
