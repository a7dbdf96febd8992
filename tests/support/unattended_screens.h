// The window's screens and a receive's questions answered without a person: a new
// recorder gets a new user of the given name, every other question is answered yes, and
// the user screens do nothing. The screen grabber and the desktop benchmark use it.
#pragma once

#include <QString>
#include <utility>

#include "receive/receive.h"
#include "store/store.h"
#include "ui/frmTerminal.h"
#include "ui/receive_screens.h"

class UnattendedScreens : public TerminalScreens, public ReceiveQuestions {
 public:
  explicit UnattendedScreens(QString newUserName) : name_(std::move(newUserName)) {}
  QString registerUser(QWidget*) override { return QString(); }
  bool modifyUser(QWidget*, const QString&) override { return false; }
  bool deleteUsers(QWidget*) override { return false; }
  ReceiveQuestions& receiveQuestions(QWidget*) override { return *this; }
  NewCpuAnswer newRecorder(const RecvMsgNewCPU&) override { return NewCpuAnswer::CreateUser; }
  bool receiveForCurrentUser(const RecvMsgNewCPUSelectUser&) override { return true; }
  bool takeOverRecorder(const RecvMsgAlertUser&) override { return true; }
  bool receiveResetRecorder(const RecvMsgAlertReset&) override { return true; }
  QString registerUser(VtDatabase& db) override {
    QString id;
    RegisterUserByName(db, name_, id);
    return id;
  }
  QString selectUser(VtDatabase&) override { return QString(); }

 private:
  QString name_;
};
