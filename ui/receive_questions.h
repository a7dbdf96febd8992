// The receive's questions on the desktop: the four dialogs that settle whose recorder
// it is, and the user screens reached from the new-recorder question.
#pragma once

#include <QPointer>
#include <QWidget>

#include "receive/receive.h"

class QtReceiveQuestions : public ReceiveQuestions {
 public:
  explicit QtReceiveQuestions(QWidget* parent);

  NewCpuAnswer newRecorder(const RecvMsgNewCPU& dialog) override;
  bool receiveForCurrentUser(const RecvMsgNewCPUSelectUser& dialog) override;
  bool takeOverRecorder(const RecvMsgAlertUser& dialog) override;
  bool receiveResetRecorder(const RecvMsgAlertReset& dialog) override;
  QString registerUser(VtDatabase& db) override;
  QString selectUser(VtDatabase& db) override;

 private:
  QPointer<QWidget> parent_;
};
