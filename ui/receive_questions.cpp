#include "ui/receive_questions.h"

#include "ui/frmUserRegist.h"
#include "ui/frmUserSelectDialog.h"
#include "ui/recv_dialogs.h"

QtReceiveQuestions::QtReceiveQuestions(QWidget* parent) : parent_(parent) {}

ReceiveQuestions::NewCpuAnswer QtReceiveQuestions::newRecorder(const RecvMsgNewCPU& dialog) {
  frmRecvMsgNewCPU screen(dialog, parent_);
  screen.exec();
  return screen.answer();
}

bool QtReceiveQuestions::receiveForCurrentUser(const RecvMsgNewCPUSelectUser& dialog) {
  frmRecvMsgNewCPUSelectUser screen(dialog, parent_);
  return screen.exec() == QDialog::Accepted;
}

bool QtReceiveQuestions::takeOverRecorder(const RecvMsgAlertUser& dialog) {
  frmRecvMsgAlertUser screen(dialog, parent_);
  return screen.exec() == QDialog::Accepted;
}

bool QtReceiveQuestions::receiveResetRecorder(const RecvMsgAlertReset& dialog) {
  frmRecvMsgAlertReset screen(dialog, parent_);
  return screen.exec() == QDialog::Accepted;
}

QString QtReceiveQuestions::registerUser(VtDatabase& db) {
  frmUserRegist screen(db, kCallerFormNewCpu, parent_);
  return screen.exec() == QDialog::Accepted ? screen.newUserId() : QString();
}

QString QtReceiveQuestions::selectUser(VtDatabase& db) {
  frmUserSelectDialog screen(db, kCallerFormNewCpu, parent_);
  return screen.exec() == QDialog::Accepted ? screen.selectedUserId() : QString();
}
