#include "ui/frmUserModify.h"

#include <QTimer>

#include "frame/trace.h"

frmUserModify::frmUserModify(VtDatabase& db, const QString& userId, QWidget* parent)
    : UserFormDialog(db, UserFormLogic::Mode::Modify, userId, parent) {
  buildButtons(btnUserModify, "btnUserModify", btnUserModifyCancel, "btnUserModifyCancel");
  connect(btnUserModify, &QPushButton::clicked, this, [this] {
    if (pressOk()) accept();
  });
  connect(btnUserModifyCancel, &QPushButton::clicked, this, [this] {
    WriteTrace(QStringLiteral("0"), objectName(), QStringLiteral("btnUserModifyCancel_Click Start"));
    reject();
  });
  // A user that can't be read has been reported; there is nothing to change.
  if (!loaded()) QTimer::singleShot(0, this, &QDialog::reject);
}
