// The common frame of a modal screen: it logs "Form_Load Start" when built and
// "Form_Unload Start" when closed, raises ModalFormOpen while it is up (so that a
// recorder placed meanwhile is taken as seen, not received), and gives itself the
// installation's look (form colour, font).
#pragma once

#include <QDialog>
#include <QString>
#include <array>

#include "receive/receive.h"

class QHBoxLayout;
class QLabel;
class QPushButton;

class ModalScreen : public QDialog {
  Q_OBJECT

 public:
  // name: the screen's name, used as objectName and in the trace.
  ModalScreen(const QString& name, QWidget* parent);
  ~ModalScreen() override;

  void done(int result) override;

 protected:
  void showEvent(QShowEvent* event) override;
  // A label of the screen with its caption from section/key of the resource file.
  QLabel* captionLabel(const char* name, const QString& section, const QString& key);
  // A push button named name with its caption; big enough to hit without aiming.
  QPushButton* captionButton(const char* name, const QString& section, const QString& key);
  // A label with the given name and no caption (for data).
  QLabel* dataLabel(const char* name);
  // A user's icon (ICONINDEX 1..6) at the size of a list entry; empty when unknown.
  QLabel* userIconLabel(const char* name, int iconIndex);
  // The picture of a user's icon, size logical pixels square, sharp on high-density
  // screens; null when it can't be read.
  static QPixmap userIcon(int iconIndex, int size);
  // One user as the receive and delete screens show them: the icon, then rows of caption
  // and name (rows the edition hides are hidden). The object names of the icon and labels come from controls;
  // captions[i] and values[i] receive the labels.
  struct NameRowNames {
    const char* icon;
    std::array<const char*, 3> captions;
    std::array<const char*, 3> captionKeys;
    std::array<const char*, 3> values;
  };
  QHBoxLayout* userNameRows(const QString& section, const NameRowNames& controls, int iconIndex,
                            const NameRows& names, const std::array<QLabel**, 3>& captions,
                            const std::array<QLabel**, 3>& values);
  // The row of buttons at the bottom right.
  QWidget* buttonRow(std::initializer_list<QPushButton*> buttons);

 private:
  void restoreModalFlag();

  bool flagRaised_ = false;
  bool previousFlag_ = false;
  bool unloaded_ = false;
};

// A screen that shows one user's names in the rows lblFN/lblFNData, lblMN/lblMNData and
// lblLN/lblLNData, with the honorific caption in lblSama.
class UserNameScreen : public ModalScreen {
  Q_OBJECT

 public:
  QLabel* lblFN = nullptr;
  QLabel* lblMN = nullptr;
  QLabel* lblLN = nullptr;
  QLabel* lblFNData = nullptr;
  QLabel* lblMNData = nullptr;
  QLabel* lblLNData = nullptr;
  QLabel* lblSama = nullptr;

 protected:
  UserNameScreen(const QString& name, QWidget* parent) : ModalScreen(name, parent) {}
  // The icon and name rows of a user into the members above.
  QHBoxLayout* nameRowsOf(const QString& section, int iconIndex, const NameRows& names);
};
