// The receive on screen: frmRecvManagement (management block and the two page checks)
// and frmRecvData (the pages, with the animation), over the receive workflow.
//
// How the window stays alive during a receive. The reader protocol waits about half a
// second per page, in slices of 100 ms while a transfer runs and 500 ms after it. Two
// ways keep the window painting: reading on a worker thread, or waiting by running the
// event loop. The waits run the event loop here (EventLoopDeviceClock), and everything
// stays on the interface thread, because the receive is not only reads: between the
// stages it asks the person questions (modal dialogs, user screens), its failures show
// catalogue messages, it reads and sets the shared values, and it writes through the
// one working database connection, which belongs to the interface thread. A worker would
// have to hand each of these back and forth; the waits are where the time goes, and
// while one runs the cancel button and every repaint are served. What stays blocking is
// the work between two waits (decoding a page and storing it); bench_ui measures that.
#pragma once

#include <QDialog>
#include <QPointer>

#include "device/transport.h"
#include "receive/receive.h"

class QLabel;
class QMovie;
class QProgressBar;
class QPushButton;

// Waits by running a local event loop, so that painting, timers and the cancel button
// go on. scale stretches or shrinks every wait (1 real time; tests pass a small value;
// 0 only lets pending events through). now() is the wall clock.
class EventLoopDeviceClock : public DeviceClock {
 public:
  explicit EventLoopDeviceClock(double scale = 1.0) : scale_(scale) {}
  void sleepMs(int ms) override;
  QDateTime now() const override;

 private:
  double scale_;
};

// What the two receive screens share: a status line, a bar, a cancel button, no close
// button. Escape and the window's close do what the cancel button does.
class ReceiveScreen : public QDialog {
  Q_OBJECT

 public:
  QLabel* lblTransferStatus = nullptr;
  QProgressBar* progressTransfer = nullptr;
  QPushButton* btnDataReceiveCancel = nullptr;

  bool cancelRequested() const { return cancelled_; }
  void reject() override;

 protected:
  ReceiveScreen(const QString& name, const QString& section, QWidget* parent);
  void closeEvent(QCloseEvent* event) override;
  void addAnimation(QWidget* animation);

 private:
  void btnDataReceiveCancel_Click();
  bool cancelled_ = false;
};

class frmRecvManagement : public ReceiveScreen {
  Q_OBJECT
 public:
  explicit frmRecvManagement(QWidget* parent = nullptr);
};

class frmRecvData : public ReceiveScreen {
  Q_OBJECT
 public:
  explicit frmRecvData(QWidget* parent = nullptr);
  QLabel* lblAnimation = nullptr;
  QMovie* movie = nullptr;  // null when the installation has no animation
};

// Runs one whole receive with its two screens, modal over parent. The management screen
// shows first; when the data stage begins (its status caption), the data screen takes
// over. The questions between the stages are asked with neither screen showing.
class ReceiveOnScreen : public ProgressInterface {
 public:
  ReceiveOnScreen(VtDatabase& db, TavoReader& reader, DeviceClock& clock,
                  ReceiveQuestions& questions, QWidget* parent);
  ~ReceiveOnScreen() override;
  ReceiveReport run();

  void setMaximum(int maximum) override;
  void setValue(int value) override;
  void setStatus(const QString& caption) override;
  bool cancelRequested() override;
  void yield() override;

 private:
  class HidingQuestions;
  void showScreen(ReceiveScreen* screen);
  void hideScreens();

  VtDatabase& db_;
  TavoReader& reader_;
  DeviceClock& clock_;
  ReceiveQuestions& questions_;
  QPointer<QWidget> parent_;
  QPointer<frmRecvManagement> management_;
  QPointer<frmRecvData> data_;
  QPointer<ReceiveScreen> current_;
};
