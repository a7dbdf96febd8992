// The one form body of frmUserRegist and frmUserModify: names, the six icons, the
// targets, and the two buttons the twins name each their own way.
#pragma once

#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <array>

#include "ui/modal_screen.h"
#include "ui/user_logic.h"

class QGroupBox;
class QLabel;

class UserFormDialog : public ModalScreen {
  Q_OBJECT

 public:
  QLabel* lblFN = nullptr;
  QLabel* lblMN = nullptr;
  QLabel* lblLN = nullptr;
  QLineEdit* txtFN = nullptr;
  QLineEdit* txtMN = nullptr;
  QLineEdit* txtLN = nullptr;
  QGroupBox* frameSelectIcon = nullptr;
  std::array<QRadioButton*, UserFormLogic::kIconCount> optUserIcon{};
  std::array<QLabel*, UserFormLogic::kIconCount> imgUserIcon{};
  QGroupBox* frameTarget = nullptr;
  QGroupBox* frameDailyTarget = nullptr;
  QGroupBox* frameWeeklyTarget = nullptr;
  QLineEdit* txtActCalData = nullptr;
  QLineEdit* txtStepData = nullptr;
  QLineEdit* txtExerciseDate = nullptr;
  std::array<QRadioButton*, 3> optTargetUsing{};

  const UserFormLogic& logic() const { return logic_; }
  UserFormLogic& logic() { return logic_; }

 protected:
  UserFormDialog(VtDatabase& db, UserFormLogic::Mode mode, const QString& userId, QWidget* parent);
  bool eventFilter(QObject* watched, QEvent* event) override;

  // Builds the buttons row: OK (okName) and cancel (cancelName), captions from the section.
  void buildButtons(QPushButton*& ok, const char* okName, QPushButton*& cancel, const char* cancelName);
  // The OK press: fields into the logic, submit, focus or close. True when stored.
  bool pressOk();
  bool loaded() const { return loaded_; }

 private:
  void build();
  void showFields();
  void takeFields();
  QWidget* focusWidget(UserField field) const;

  UserFormLogic logic_;
  bool loaded_ = false;
};
