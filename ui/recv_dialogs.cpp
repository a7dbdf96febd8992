#include "ui/recv_dialogs.h"

#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include "frame/catalogue.h"

namespace {

QVBoxLayout* Frame(QWidget* screen) {
  auto* outer = new QVBoxLayout(screen);
  outer->setContentsMargins(24, 20, 24, 20);
  outer->setSpacing(14);
  return outer;
}

QLabel* Wrapped(QLabel* label) {
  label->setWordWrap(true);
  label->setMinimumWidth(460);
  return label;
}

}  // namespace

// ---------------------------------------------------------------- frmRecvMsgNewCPU

frmRecvMsgNewCPU::frmRecvMsgNewCPU(const RecvMsgNewCPU& logic, QWidget* parent)
    : ModalScreen(QStringLiteral("frmRecvMsgNewCPU"), parent) {
  const QString& sec = kSectionNewCpu;
  setWindowTitle(GetIniCaption(sec, QStringLiteral("CAPTION_TITLE")));
  QVBoxLayout* outer = Frame(this);
  lblNewCPU = Wrapped(captionLabel("lblNewCPU", sec, QStringLiteral("CAPTION_LBLNEWCPU")));
  outer->addWidget(lblNewCPU);
  btnCreateUser = captionButton("btnCreateUser", sec, QStringLiteral("CAPTION_BTNCREATEUSER"));
  btnSelectUser = captionButton("btnSelectUser", sec, QStringLiteral("CAPTION_BTNSELECTUSER"));
  btnNewCPUCancel = captionButton("btnNewCPUCancel", sec, QStringLiteral("CAPTION_BTNNEWCPUCANCEL"));
  // The two ways to name the owner are the big choices of this screen.
  for (QPushButton* b : {btnCreateUser, btnSelectUser}) {
    b->setMinimumHeight(56);
    outer->addWidget(b);
  }
  btnSelectUser->setEnabled(logic.btnSelectUserEnabled());
  btnCreateUser->setDefault(true);
  outer->addStretch(1);
  outer->addWidget(buttonRow({btnNewCPUCancel}));

  using Answer = ReceiveQuestions::NewCpuAnswer;
  connect(btnCreateUser, &QPushButton::clicked, this, [this] {
    answer_ = Answer::CreateUser;
    accept();
  });
  connect(btnSelectUser, &QPushButton::clicked, this, [this] {
    answer_ = Answer::SelectUser;
    accept();
  });
  connect(btnNewCPUCancel, &QPushButton::clicked, this, [this] {
    answer_ = Answer::Cancel;
    reject();
  });
}

// ---------------------------------------------------------------- frmRecvMsgNewCPUSelectUser

frmRecvMsgNewCPUSelectUser::frmRecvMsgNewCPUSelectUser(const RecvMsgNewCPUSelectUser& logic, QWidget* parent)
    : UserNameScreen(QStringLiteral("frmRecvMsgNewCPUSelectUser"), parent) {
  const QString& sec = kSectionNewCpuSelectUser;
  setWindowTitle(GetIniCaption(sec, QStringLiteral("CAPTION_TITLE")));
  QVBoxLayout* outer = Frame(this);
  lblRegist = Wrapped(captionLabel("lblRegist", sec, QStringLiteral("CAPTION_LBLREGIST")));
  outer->addWidget(lblRegist);
  QHBoxLayout* who = nameRowsOf(sec, logic.currentUser().ICONINDEX, logic.names());
  outer->addLayout(who);
  outer->addStretch(1);
  btnReceive = captionButton("btnReceive", sec, QStringLiteral("CAPTION_BTNRECEIVE"));
  btnCancel = captionButton("btnCancel", sec, QStringLiteral("CAPTION_BTNCANCEL"));
  btnReceive->setDefault(true);
  outer->addWidget(buttonRow({btnReceive, btnCancel}));
  connect(btnReceive, &QPushButton::clicked, this, &QDialog::accept);
  connect(btnCancel, &QPushButton::clicked, this, &QDialog::reject);
}

// ---------------------------------------------------------------- frmRecvMsgAlertUser

frmRecvMsgAlertUser::frmRecvMsgAlertUser(const RecvMsgAlertUser& logic, QWidget* parent)
    : UserNameScreen(QStringLiteral("frmRecvMsgAlertUser"), parent) {
  const QString& sec = kSectionAlertUser;
  setWindowTitle(GetIniCaption(sec, QStringLiteral("CAPTION_TITLE")));
  QVBoxLayout* outer = Frame(this);
  frameReceiving = new QGroupBox(GetIniCaption(sec, QStringLiteral("CAPTION_FRAMERECEIVING")), this);
  frameReceiving->setObjectName(QStringLiteral("frameReceiving"));
  auto* owner = new QVBoxLayout(frameReceiving);
  lblRegist = Wrapped(captionLabel("lblRegist", sec, QStringLiteral("CAPTION_LBLREGIST")));
  owner->addWidget(lblRegist);
  owner->addLayout(nameRowsOf(sec, logic.owner().ICONINDEX, logic.ownerNames()));
  outer->addWidget(frameReceiving);

  frameChange = new QGroupBox(GetIniCaption(sec, QStringLiteral("CAPTION_FRAMECHANGE")), this);
  frameChange->setObjectName(QStringLiteral("frameChange"));
  auto* current = new QVBoxLayout(frameChange);
  lblChange = Wrapped(captionLabel("lblChange", sec, QStringLiteral("CAPTION_LBLCHANGE")));
  current->addWidget(lblChange);
  static const NameRowNames kCurrent{"imgCurrentIcon",
                                     {"lblChangeFN", "lblChangeMN", "lblChangeLN"},
                                     {"CAPTION_LBLCHGFN", "CAPTION_LBLCHGMN", "CAPTION_LBLCHGLN"},
                                     {"lblCFNData", "lblCMNData", "lblCLNData"}};
  current->addLayout(userNameRows(sec, kCurrent, logic.currentUser().ICONINDEX, logic.currentNames(),
                                  {&lblChangeFN, &lblChangeMN, &lblChangeLN}, {&lblCFNData, &lblCMNData, &lblCLNData}));
  outer->addWidget(frameChange);
  outer->addStretch(1);
  btnReceive = captionButton("btnReceive", sec, QStringLiteral("CAPTION_BTNRECEIVE"));
  btnUsingAlertCancel = captionButton("btnUsingAlertCancel", sec, QStringLiteral("CAPTION_BTNUSINGALERTCANCEL"));
  // Taking a recorder over is the unusual answer; cancel is the safe default.
  btnUsingAlertCancel->setDefault(true);
  outer->addWidget(buttonRow({btnReceive, btnUsingAlertCancel}));
  connect(btnReceive, &QPushButton::clicked, this, &QDialog::accept);
  connect(btnUsingAlertCancel, &QPushButton::clicked, this, &QDialog::reject);
}

// ---------------------------------------------------------------- frmRecvMsgAlertReset

frmRecvMsgAlertReset::frmRecvMsgAlertReset(const RecvMsgAlertReset& logic, QWidget* parent)
    : UserNameScreen(QStringLiteral("frmRecvMsgAlertReset"), parent) {
  const QString& sec = kSectionAlertReset;
  setWindowTitle(GetIniCaption(sec, QStringLiteral("CAPTION_TITLE")));
  QVBoxLayout* outer = Frame(this);
  lblRegist = Wrapped(captionLabel("lblRegist", sec, QStringLiteral("CAPTION_LBLREGIST")));
  outer->addWidget(lblRegist);
  outer->addLayout(nameRowsOf(sec, logic.owner().ICONINDEX, logic.ownerNames()));
  lblChange = Wrapped(captionLabel("lblChange", sec, QStringLiteral("CAPTION_LBLCHANGE")));
  outer->addWidget(lblChange);
  outer->addStretch(1);
  btnReceive = captionButton("btnReceive", sec, QStringLiteral("CAPTION_BTNRECEIVE"));
  btnUsingAlertCancel = captionButton("btnUsingAlertCancel", sec, QStringLiteral("CAPTION_BTNUSINGALERTCANCEL"));
  btnReceive->setDefault(true);
  outer->addWidget(buttonRow({btnReceive, btnUsingAlertCancel}));
  connect(btnReceive, &QPushButton::clicked, this, &QDialog::accept);
  connect(btnUsingAlertCancel, &QPushButton::clicked, this, &QDialog::reject);
}
