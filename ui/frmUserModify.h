// frmUserModify: changes a user's name, icon and targets. The twin of frmUserRegist:
// the same fields, checks and layout, other message codes.
#pragma once

#include "ui/user_form_dialog.h"

class frmUserModify : public UserFormDialog {
  Q_OBJECT

 public:
  // exec() returns Accepted when the change was saved.
  frmUserModify(VtDatabase& db, const QString& userId, QWidget* parent = nullptr);

  QPushButton* btnUserModify = nullptr;
  QPushButton* btnUserModifyCancel = nullptr;
};
