// The desktop's user screens and receive questions for the main window: the real modal
// dialogs (frmUserRegist, frmUserModify, frmUserDelete and the four receive dialogs).
#pragma once

#include <memory>

#include "ui/frmTerminal.h"

class QtReceiveQuestions;

class QtUserScreens : public TerminalScreens {
 public:
  explicit QtUserScreens(VtDatabase& db);
  ~QtUserScreens() override;
  QString registerUser(QWidget* parent) override;
  bool modifyUser(QWidget* parent, const QString& userId) override;
  bool deleteUsers(QWidget* parent) override;
  ReceiveQuestions& receiveQuestions(QWidget* parent) override;

 private:
  VtDatabase& db_;
  std::unique_ptr<QtReceiveQuestions> questions_;
};

// The compaction of the closing, shown in frmProgressBar with its bar. The result of the
// compaction, 0 on success.
int CompactInProgressBar(QWidget* parent);
