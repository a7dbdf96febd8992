#include "frame/dialog.h"

#include <QTextStream>

namespace {

const char* iconWord(DialogIcon icon) {
  switch (icon) {
    case DialogIcon::Information:
      return "information";
    case DialogIcon::Exclamation:
      return "warning";
    case DialogIcon::Critical:
      return "error";
    case DialogIcon::None:
      break;
  }
  return "message";
}

void writeToStderr(const QString& title, const QString& text, DialogIcon icon) {
  QTextStream err(stderr);
  QString body = text;
  body.replace(QLatin1String("\r\n"), QLatin1String("\n"));
  err << "[" << iconWord(icon) << "] ";
  if (!title.isEmpty()) err << title << ": ";
  err << body << "\n";
}

// Used when nothing else was set: the process still tells someone.
StderrDialog& fallbackDialog() {
  static StderrDialog dialog;
  return dialog;
}

DialogInterface*& currentDialog() {
  static DialogInterface* current = nullptr;
  return current;
}

}  // namespace

void SetDialogInterface(DialogInterface* dialogs) { currentDialog() = dialogs; }

DialogInterface* GetDialogInterface() {
  DialogInterface* d = currentDialog();
  return d ? d : &fallbackDialog();
}

void StderrDialog::showMessage(const QString& title, const QString& text, DialogIcon icon) {
  writeToStderr(title, text, icon);
}

int StderrDialog::askQuestion(const QString& title, const QString& text, DialogIcon icon) {
  writeToStderr(title, text, icon);
  QTextStream(stderr) << "  -> answered " << (answer_ == kAnswerYes ? "Yes" : "No") << "\n";
  return answer_;
}

void RecordingDialog::showMessage(const QString& title, const QString& text, DialogIcon icon) {
  shown.push_back({false, title, text, icon});
}

int RecordingDialog::askQuestion(const QString& title, const QString& text, DialogIcon icon) {
  shown.push_back({true, title, text, icon});
  if (answers.empty()) return kAnswerNo;
  const int answer = answers.front();
  answers.pop_front();
  return answer;
}
