// The common frame of a modal screen: it logs "Form_Load Start" when built and
// "Form_Unload Start" when closed, raises ModalFormOpen while it is up (so that a
// recorder placed meanwhile is taken as seen, not received), and gives itself the
// installation's look (form colour, font).
#pragma once

#include <QDialog>
#include <QString>
#include <array>

#include "receive.h"

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
  // The three name rows of the receive and delete screens: caption labels named
  // captionNames with captions from captionKeys, data labels named dataNames with the
  // laid-out names; rows the edition hides are hidden. Returns the grid's widget.
  QWidget* nameRows(const QString& section, const std::array<const char*, 3>& captionNames,
                    const std::array<const char*, 3>& captionKeys,
                    const std::array<const char*, 3>& dataNames, const NameRows& names,
                    std::array<QLabel*, 3>& captions, std::array<QLabel*, 3>& values);
  // The row of buttons at the bottom right.
  QWidget* buttonRow(std::initializer_list<QPushButton*> buttons);

 private:
  void restoreModalFlag();

  bool flagRaised_ = false;
  bool previousFlag_ = false;
  bool unloaded_ = false;
};
