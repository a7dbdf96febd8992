// frmUserSelectDialog: the household's users with their icons, newest first; a double
// click on a user takes it. Closing puts the main screen's current group and user back.
#pragma once

#include <QListWidget>
#include <memory>

#include "ui/modal_screen.h"
#include "ui/user_logic.h"

class QLabel;
class QPushButton;
class QFrame;

class frmUserSelectDialog : public ModalScreen {
  Q_OBJECT

 public:
  frmUserSelectDialog(VtDatabase& db, const QString& callerForm, QWidget* parent = nullptr);
  ~frmUserSelectDialog() override;

  // The user taken by a double click; "" after a cancel.
  QString selectedUserId() const { return logic_.selectedUserId(); }
  QString callerForm() const { return logic_.callerForm(); }

  void done(int result) override;

  QListWidget* lvGroupList = nullptr;
  QListWidget* lvUserList = nullptr;
  QFrame* picGroupInfo = nullptr;
  QLabel* lblMessage = nullptr;
  QLabel* lblUserNickName = nullptr;
  QLabel* lblNameLength = nullptr;
  QLabel* lblSama = nullptr;
  QPushButton* btnCancel = nullptr;

 private:
  void fillList();

  UserSelectLogic logic_;
};
