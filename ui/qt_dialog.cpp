#include "ui/qt_dialog.h"

#include <QMessageBox>

namespace {

QMessageBox::Icon boxIcon(DialogIcon icon) {
  switch (icon) {
    case DialogIcon::Information:
      return QMessageBox::Information;
    case DialogIcon::Exclamation:
      return QMessageBox::Warning;
    case DialogIcon::Critical:
      return QMessageBox::Critical;
    case DialogIcon::None:
      break;
  }
  return QMessageBox::NoIcon;
}

// The catalogue writes line breaks as CR LF; a label wants plain LF.
QString boxText(const QString& text) {
  QString t = text;
  t.replace(QLatin1String("\r\n"), QLatin1String("\n"));
  return t;
}

}  // namespace

void QtDialog::showMessage(const QString& title, const QString& text, DialogIcon icon) {
  QMessageBox box(boxIcon(icon), title, boxText(text), QMessageBox::Ok, parent_.data());
  box.setTextFormat(Qt::PlainText);
  box.exec();
}

int QtDialog::askQuestion(const QString& title, const QString& text, DialogIcon icon) {
  QMessageBox box(boxIcon(icon), title, boxText(text), QMessageBox::Yes | QMessageBox::No,
                  parent_.data());
  box.setTextFormat(Qt::PlainText);
  box.setDefaultButton(QMessageBox::Yes);
  return box.exec() == QMessageBox::Yes ? kAnswerYes : kAnswerNo;
}
