// Answers modal screens as a person would: each time a screen comes up, the next step
// checks that it is the expected one and acts on it (clicks, typing). A screen that was
// not expected is closed and noted, so that a fault ends the test instead of hanging it.
#pragma once

#include <QApplication>
#include <QDialog>
#include <QPointer>
#include <QPushButton>
#include <QTimer>
#include <QtTest/QTest>
#include <deque>
#include <functional>
#include <gtest/gtest.h>

class ScreenScript : public QObject {
 public:
  using Action = std::function<void(QDialog*)>;

  ScreenScript() {
    timer_.setInterval(20);
    connect(&timer_, &QTimer::timeout, this, [this] { tick(); });
    timer_.start();
  }
  void then(const QString& screen, Action action) { steps_.push_back({screen, std::move(action)}); }
  // A step that only clicks one button of the screen.
  ScreenScript& thenClick(const QString& screen, const char* button) {
    then(screen, [button](QDialog* s) {
      auto* b = s->findChild<QPushButton*>(QLatin1String(button));
      if (b) return QTest::mouseClick(b, Qt::LeftButton);
      ADD_FAILURE() << "no button " << button << " on " << s->objectName().toStdString();
      s->reject();
    });
    return *this;
  }
  bool finished() const { return steps_.empty(); }
  // Stops watching (the run it was written for has ended).
  void stop() { timer_.stop(); }

  QStringList seen;    // the screens acted on, in order
  QStringList errors;  // screens that came up unexpected

 private:
  struct Step {
    QString screen;
    Action action;
  };
  void tick() {
    auto* screen = qobject_cast<QDialog*>(QApplication::activeModalWidget());
    if (!screen || !screen->isVisible()) return;
    if (steps_.empty() || steps_.front().screen != screen->objectName()) {
      // A screen left up after its step (a refused entry) gets a little time first.
      if (screen == last_ && ++waited_ < 50) return;
      errors << screen->objectName();
      screen->reject();
      return;
    }
    Step step = steps_.front();
    steps_.pop_front();
    seen << screen->objectName();
    last_ = screen;
    waited_ = 0;
    step.action(screen);
  }

  QTimer timer_;
  std::deque<Step> steps_;
  QPointer<QDialog> last_;
  int waited_ = 0;
};
