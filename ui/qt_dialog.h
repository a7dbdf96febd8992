// The desktop's dialogs: Qt message boxes with the catalogue's title, text and icon.
#pragma once

#include <QPointer>
#include <QWidget>

#include "frame/dialog.h"

class QtDialog : public DialogInterface {
 public:
  // parent: the window the boxes are modal to; may be null or go away meanwhile.
  explicit QtDialog(QWidget* parent = nullptr) : parent_(parent) {}
  void setParent(QWidget* parent) { parent_ = parent; }

  void showMessage(const QString& title, const QString& text, DialogIcon icon) override;
  int askQuestion(const QString& title, const QString& text, DialogIcon icon) override;

 private:
  QPointer<QWidget> parent_;
};
