#include "ui/frmUserRegist.h"

#include "frame/trace.h"

frmUserRegist::frmUserRegist(VtDatabase& db, const QString& callerForm, QWidget* parent)
    : UserFormDialog(db, UserFormLogic::Mode::Regist, QString(), parent), callerForm_(callerForm) {
  logic().setWriterLockHeld(callerForm == kCallerFormNewCpu);
  buildButtons(btnUserRegist, "btnUserRegist", btnUserRegistCancel, "btnUserRegistCancel");
  connect(btnUserRegist, &QPushButton::clicked, this, [this] {
    if (!pressOk()) return;
    newUserId_ = logic().userId();
    accept();
  });
  connect(btnUserRegistCancel, &QPushButton::clicked, this, [this] {
    WriteTrace(QStringLiteral("0"), objectName(), QStringLiteral("btnUserRegistCancel_Click Start"));
    reject();
  });
}
