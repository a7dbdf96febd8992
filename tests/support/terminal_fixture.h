// The main window on a throw-away installation, with the emulated reader over the
// installation's reader folder and scripted user screens and receive questions. The
// protocol's waits run the event loop without sleeping, so the receive goes through
// its real screens quickly.
#pragma once

#include <QApplication>
#include <QDeadlineTimer>
#include <QTest>
#include <functional>
#include <gtest/gtest.h>
#include <memory>

#include "chartmaker/chartmaker.h"
#include "device/readers.h"
#include "device/recorder_image.h"
#include "frame/config.h"
#include "testsupport/receive_fixture.h"
#include "ui/desktop_screens.h"
#include "ui/frmTerminal.h"
#include "ui/receive_screens.h"

// The user screens answered from fields, the receive's questions from the receive
// fixture's queues; every screen asked for is recorded.
class ScriptedScreens : public TerminalScreens, public ScriptedQuestions {
 public:
  // frmUserRegist: registers this name (empty: cancelled). duringRegist runs while the
  // screen is "open" (ModalFormOpen set, as the real screen does).
  QString registName = QStringLiteral("山田 花子");
  std::function<void()> duringRegist;
  QString lastRegisteredId;
  VtDatabase* db = nullptr;

  QString registerUser(QWidget*) override { return doRegister(); }
  QString registerUser(VtDatabase&) override { return doRegister(); }
  bool modifyUser(QWidget*, const QString& id) override {
    asked << QStringLiteral("UserModify ") + id;
    return true;
  }
  bool deleteUsers(QWidget*) override { return false; }
  ReceiveQuestions& receiveQuestions(QWidget*) override { return *this; }

 private:
  QString doRegister() {
    asked << QStringLiteral("UserRegist");
    SetModalFormOpen(true);
    if (duringRegist) duringRegist();
    QString id;
    if (!registName.isEmpty() && RegisterUserByName(*db, registName, id) != 0) id.clear();
    SetModalFormOpen(false);
    lastRegisteredId = id;
    return id;
  }
};

// Waits, running the event loop, until pred holds or timeoutMs pass.
inline bool WaitUntil(const std::function<bool()>& pred, int timeoutMs = 10000) {
  QDeadlineTimer deadline(timeoutMs);
  while (!pred()) {
    if (deadline.hasExpired()) return false;
    QTest::qWait(5);
  }
  return true;
}

class TerminalTest : public ::testing::Test {
 protected:
  explicit TerminalTest(const QString& lang = QStringLiteral("ja")) : inst(lang) {}

  void SetUp() override {
    ASSERT_TRUE(inst.isValid());
    ResetSharedValues();
    inst.setConfig(QStringLiteral("SYSTEM"), QStringLiteral("POLLING_INTERVAL"), QStringLiteral("20"));
    inst.setConfig(QStringLiteral("SYSTEM"), QStringLiteral("SHIFT_DB"), QStringLiteral("1"));
    ASSERT_TRUE(inst.reload());
    QString error;
    ASSERT_TRUE(CreateDatabaseFile(inst.dbFile(), kDefaultDbPassword, &error)) << error.toStdString();
    ChartPreparePersonal(chart, Ini_GetChartIniPath());
    reader = std::make_unique<EmulatedReader>(inst.readerPath());
    screens.db = &db;
  }
  void TearDown() override {
    if (window) {
      window->timerPolling->stop();
      window.reset();
    }
    VTDB_Close(db);
    ResetSharedValues();
  }

  // Builds the window and runs its preparation, as the program does at start.
  // realScreens: the desktop's own user screens and receive dialogs instead of the script.
  frmTerminal& open(bool realScreens = false) {
    if (realScreens) desktopScreens = std::make_unique<QtUserScreens>(db);
    TerminalScreens& used = realScreens ? static_cast<TerminalScreens&>(*desktopScreens) : screens;
    window = std::make_unique<frmTerminal>(TerminalServices{db, chart, *reader, clock, used});
    EXPECT_TRUE(window->Form_Load());
    window->show();
    return *window;
  }

  // Puts the sample recorder on the reader, or takes it away.
  void placeRecorder(int days, const QDate& lastDay) { PlaceRecorder(inst, SampleRecorder(days, lastDay)); }
  void takeRecorder() { QFile::remove(inst.readerPath() + QStringLiteral("/recorder.img")); }

  int daysOf(const QString& userId) {
    QDate f;
    QDate l;
    charts::ReadUserRange(db, userId, f, l);
    return f.isValid() ? static_cast<int>(f.daysTo(l)) + 1 : 0;
  }

  TestInstallation inst;
  VtDatabase db;
  ChartMaker chart;
  std::unique_ptr<EmulatedReader> reader;
  EventLoopDeviceClock clock{0.0};
  ScriptedScreens screens;
  std::unique_ptr<QtUserScreens> desktopScreens;
  std::unique_ptr<frmTerminal> window;
};
