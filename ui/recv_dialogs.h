// The four dialogs that settle whose recorder it is. Each shows what its logic class
// (receive.h) holds and tells which button was pressed; the receive workflow then calls
// that button's handler on the logic.
#pragma once

#include "receive/receive.h"
#include "ui/modal_screen.h"

class QFrame;
class QGroupBox;
class QLabel;
class QPushButton;

// frmRecvMsgNewCPU: a new recorder and no user open.
class frmRecvMsgNewCPU : public ModalScreen {
  Q_OBJECT

 public:
  explicit frmRecvMsgNewCPU(const RecvMsgNewCPU& logic, QWidget* parent = nullptr);
  ReceiveQuestions::NewCpuAnswer answer() const { return answer_; }

  QLabel* lblNewCPU = nullptr;
  QPushButton* btnSelectUser = nullptr;
  QPushButton* btnCreateUser = nullptr;
  QPushButton* btnNewCPUCancel = nullptr;

 private:
  ReceiveQuestions::NewCpuAnswer answer_ = ReceiveQuestions::NewCpuAnswer::Cancel;
};

// frmRecvMsgNewCPUSelectUser: a new recorder while a user is open.
class frmRecvMsgNewCPUSelectUser : public UserNameScreen {
  Q_OBJECT

 public:
  explicit frmRecvMsgNewCPUSelectUser(const RecvMsgNewCPUSelectUser& logic, QWidget* parent = nullptr);

  QLabel* lblRegist = nullptr;
  QPushButton* btnReceive = nullptr;
  QPushButton* btnCancel = nullptr;
};

// frmRecvMsgAlertUser: the recorder belongs to another user than the one open.
class frmRecvMsgAlertUser : public UserNameScreen {
  Q_OBJECT

 public:
  explicit frmRecvMsgAlertUser(const RecvMsgAlertUser& logic, QWidget* parent = nullptr);

  QGroupBox* frameReceiving = nullptr;
  QGroupBox* frameChange = nullptr;
  QLabel* lblRegist = nullptr;
  QLabel* lblChange = nullptr;
  QLabel* lblChangeFN = nullptr;
  QLabel* lblChangeMN = nullptr;
  QLabel* lblChangeLN = nullptr;
  QLabel* lblCFNData = nullptr;
  QLabel* lblCMNData = nullptr;
  QLabel* lblCLNData = nullptr;
  QPushButton* btnReceive = nullptr;
  QPushButton* btnUsingAlertCancel = nullptr;
};

// frmRecvMsgAlertReset: the recorder may have been reset since its owner's last receive.
class frmRecvMsgAlertReset : public UserNameScreen {
  Q_OBJECT

 public:
  explicit frmRecvMsgAlertReset(const RecvMsgAlertReset& logic, QWidget* parent = nullptr);

  QLabel* lblRegist = nullptr;
  QLabel* lblChange = nullptr;
  QPushButton* btnReceive = nullptr;
  QPushButton* btnUsingAlertCancel = nullptr;
};
