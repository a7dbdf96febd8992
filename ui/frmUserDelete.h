// frmUserDelete: removes the main screen's current user; asks first when the user has
// stored days. The screen closes after the press in every case.
#pragma once

#include <QStringList>

#include "ui/modal_screen.h"
#include "ui/user_logic.h"

class QLabel;
class QPushButton;

class frmUserDelete : public UserNameScreen {
  Q_OBJECT

 public:
  // exec() returns Accepted when the user was deleted.
  explicit frmUserDelete(VtDatabase& db, QWidget* parent = nullptr);

  QStringList deletedUserIds() const { return deleted_; }

  QLabel* lblMessage = nullptr;
  QPushButton* btnUserDelete = nullptr;
  QPushButton* btnUserDeleteCancel = nullptr;

 private:
  UserDeleteLogic logic_;
  QStringList deleted_;
};
