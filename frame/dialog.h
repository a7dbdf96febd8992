// The one way the system speaks to a person: a message with OK, or a question with
// Yes and No. The desktop shows Qt message boxes, the command-line tool writes to
// stderr and answers from its flags, and tests script the answers.
#pragma once

#include <QString>
#include <QStringList>
#include <deque>
#include <memory>
#include <vector>

enum class DialogIcon { None, Information, Exclamation, Critical };

inline constexpr int kAnswerYes = 6;
inline constexpr int kAnswerNo = 7;

class DialogInterface {
 public:
  virtual ~DialogInterface() = default;
  virtual void showMessage(const QString& title, const QString& text, DialogIcon icon) = 0;
  // Returns kAnswerYes or kAnswerNo.
  virtual int askQuestion(const QString& title, const QString& text, DialogIcon icon) = 0;
};

// The process's dialog implementation. Without one set, messages go to stderr and
// questions are answered No.
void SetDialogInterface(DialogInterface* dialogs);
DialogInterface* GetDialogInterface();

// Writes messages to stderr; questions take the fixed answer given.
class StderrDialog : public DialogInterface {
 public:
  explicit StderrDialog(int answer = kAnswerNo) : answer_(answer) {}
  void showMessage(const QString& title, const QString& text, DialogIcon icon) override;
  int askQuestion(const QString& title, const QString& text, DialogIcon icon) override;

 private:
  int answer_;
};

// Records everything shown; questions take queued answers (No when the queue is empty).
class RecordingDialog : public DialogInterface {
 public:
  struct Shown {
    bool question = false;
    QString title;
    QString text;
    DialogIcon icon = DialogIcon::None;
  };
  void showMessage(const QString& title, const QString& text, DialogIcon icon) override;
  int askQuestion(const QString& title, const QString& text, DialogIcon icon) override;
  void queueAnswer(int answer) { answers.push_back(answer); }

  std::deque<int> answers;
  std::vector<Shown> shown;
};

// Sets a dialog implementation for the lifetime of the guard, then puts the old one back.
class ScopedDialogInterface {
 public:
  explicit ScopedDialogInterface(DialogInterface* d) : old_(GetDialogInterface()) {
    SetDialogInterface(d);
  }
  ~ScopedDialogInterface() { SetDialogInterface(old_); }
  ScopedDialogInterface(const ScopedDialogInterface&) = delete;
  ScopedDialogInterface& operator=(const ScopedDialogInterface&) = delete;

 private:
  DialogInterface* old_;
};

// Progress and cancel of long work (receive, compaction, CSV). A screen implements it;
// tests and the CLI use their own. Long work calls yield() at its cancel points so an
// interface can process events between two reads.
class ProgressInterface {
 public:
  virtual ~ProgressInterface() = default;
  virtual void setMaximum(int maximum) = 0;
  virtual void setValue(int value) = 0;
  virtual void setStatus(const QString& caption) = 0;
  virtual bool cancelRequested() = 0;
  virtual void yield() {}
};

// Does nothing and never cancels.
class NullProgress : public ProgressInterface {
 public:
  void setMaximum(int) override {}
  void setValue(int) override {}
  void setStatus(const QString&) override {}
  bool cancelRequested() override { return false; }
};
