// frmUserRegist: a new user (name, icon and targets). Reached from the main screen and
// from the new-recorder question; with the caller form "FORM_NEWCPU" a cancel leads back
// to that question (the receive workflow takes care of it).
#pragma once

#include "ui/user_form_dialog.h"

class frmUserRegist : public UserFormDialog {
  Q_OBJECT

 public:
  frmUserRegist(VtDatabase& db, const QString& callerForm, QWidget* parent = nullptr);

  // The stored user's USER_ID after exec() returned Accepted ("" when the store took
  // the path of success without writing).
  QString newUserId() const { return newUserId_; }
  QString callerForm() const { return callerForm_; }

  QPushButton* btnUserRegist = nullptr;
  QPushButton* btnUserRegistCancel = nullptr;

 private:
  QString callerForm_;
  QString newUserId_;
};
