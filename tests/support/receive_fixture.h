// A throw-away installation with a fresh database and a recorder on the emulated reader,
// scripted answers to the receive's questions, and a table dump to compare databases.
#pragma once

#include <gtest/gtest.h>

#include <QFile>
#include <QString>
#include <QStringList>
#include <deque>
#include <memory>

#include "device/device.h"
#include "device/fake_reader.h"
#include "frame/shared_values.h"
#include "receive/receive.h"
#include "store/store.h"
#include "testsupport/device_test_util.h"
#include "testsupport/test_installation.h"

// Answers queued by the test; an empty queue answers cancel.
class ScriptedQuestions : public ReceiveQuestions {
 public:
  std::deque<NewCpuAnswer> newCpu;
  std::deque<bool> yesNo;
  std::deque<QString> registered;  // user ids the registration returns ("" = cancel)
  std::deque<QString> selected;
  QStringList asked;
  bool selectWasEnabled = false;

  NewCpuAnswer newRecorder(const RecvMsgNewCPU& d) override {
    selectWasEnabled = d.btnSelectUserEnabled();
    return ask("NewCPU", newCpu, NewCpuAnswer::Cancel);
  }
  bool receiveForCurrentUser(const RecvMsgNewCPUSelectUser&) override {
    return ask("NewCPUSelectUser", yesNo, false);
  }
  bool takeOverRecorder(const RecvMsgAlertUser&) override { return ask("AlertUser", yesNo, false); }
  bool receiveResetRecorder(const RecvMsgAlertReset&) override { return ask("AlertReset", yesNo, false); }
  QString registerUser(VtDatabase&) override { return ask("UserRegist", registered, QString()); }
  QString selectUser(VtDatabase&) override { return ask("UserSelect", selected, QString()); }

 private:
  // Notes the question and takes the next queued answer.
  template <typename T>
  T ask(const char* question, std::deque<T>& q, T fallback) {
    asked << QLatin1String(question);
    if (q.empty()) return fallback;
    T v = q.front();
    q.pop_front();
    return v;
  }
};

class ReceiveFixture : public ::testing::Test {
 protected:
  void SetUp() override { setUpEdition(QStringLiteral("ja")); }

  void setUpEdition(const QString& lang) {
    db.reset();
    inst.reset();  // one installation at a time: the old one restores the working directory
    inst = std::make_unique<TestInstallation>(lang);
    ASSERT_TRUE(inst->isValid());
    SetScreenState(kStateUserSelect);
    SetCurrentUserId(QString());
    QString error;
    QFile::remove(inst->dbFile());
    ASSERT_TRUE(CreateDatabaseFile(inst->dbFile(), kDefaultDbPassword, &error)) << error.toStdString();
    db = std::make_unique<VtDatabase>();
    db->open(inst->dbFile(), kDefaultDbPassword);
  }
  void TearDown() override {
    db.reset();
    inst.reset();
  }

  RecorderImageOptions recorder(int days, const QDate& lastDay = QDate(2024, 6, 30)) const {
    return SampleRecorder(days, lastDay);
  }
  void place(const RecorderImageOptions& o) { PlaceRecorder(*inst, o); }
  QByteArray image(const RecorderImageOptions& o) const { return MakeRecorderImage(o); }

  ReceiveReport receive(ReceiveQuestions& q, ProgressInterface* progress = nullptr,
                        TavoReader* reader = nullptr) {
    EmulatedReader emulated(inst->readerPath());
    NullProgress none;
    ReceiveServices s{*db, reader ? *reader : emulated, clock, progress ? *progress : none};
    ReceiveWorkflow w(s, q);
    return w.Run();
  }

  QString addUser(const QString& name) {
    QString id;
    EXPECT_EQ(RegisterUserByName(*db, name, id), 0);
    return id;
  }

  // Every row of every used table but the identifier counters, as sorted text.
  QStringList dump() {
    QStringList rows;
    for (const char* table : {"GROUP", "USER", "CPU_TABLE", "GENERAL_DATA", "RECEIVE_HISTORY",
                              "RECEIVE_HISTORY_DATE", "DAY_MEASUREMENT", "TIME_MEASUREMENT_BLOCK",
                              "TIME_MEASUREMENT"}) {
      Statement st(*db, QStringLiteral("SELECT * FROM [%1]").arg(QLatin1String(table)));
      while (st.step()) {
        QStringList cols;
        for (int c = 0; c < st.columnCount(); ++c) cols << st.text(c);
        rows << QLatin1String(table) + QLatin1Char('|') + cols.join(QLatin1Char('|'));
      }
    }
    rows.sort();
    return rows;
  }
  // A receive that must leave the database as it was.
  ReceiveReport receiveChangingNothing(ReceiveQuestions& q, TavoReader* reader = nullptr) {
    const QStringList before = dump();
    const ReceiveReport r = receive(q, nullptr, reader);
    EXPECT_EQ(dump(), before) << "the receive changed the database";
    return r;
  }
  int count(const QString& sql, const QString& bind1 = QString()) { return scalar(sql, bind1).toInt(); }
  // Rows of a table, or of those that meet a condition with one bound value.
  int rows(const char* table, const char* where = nullptr, const QString& bind1 = QString()) {
    const QString sql = QStringLiteral("SELECT COUNT(*) FROM [%1]").arg(QLatin1String(table));
    return count(where ? sql + QStringLiteral(" WHERE ") + QString::fromUtf8(where) : sql, bind1);
  }
  QString scalar(const QString& sql, const QString& bind1 = QString()) {
    Statement st(*db, sql);
    if (!bind1.isNull()) st.bind(1, bind1);
    return st.step() ? st.text(0) : QString();
  }
  UserRecord user(const QString& id) {
    UserRecord u;
    VTDB_GetUserInfoFromUserId(*db, id, u);
    return u;
  }
  // A receive of a new recorder that the user `id` takes from S_USERSELECT.
  ReceiveReport receiveSelecting(const QString& id, TavoReader* reader = nullptr) {
    ScriptedQuestions q;
    q.newCpu = {ReceiveQuestions::NewCpuAnswer::SelectUser};
    q.selected = {id};
    return receive(q, nullptr, reader);
  }
  // First receive of a new recorder, registered as a new user from S_USERSELECT.
  QString firstReceive(const RecorderImageOptions& o, const QString& name = QStringLiteral("山田 花子")) {
    place(o);
    const QString id = addUser(name);
    const ReceiveReport r = receiveSelecting(id);
    EXPECT_EQ(r.ending, ReceiveEnding::Received) << r.messageCodes.join(u',').toStdString();
    return id;
  }

  std::unique_ptr<TestInstallation> inst;
  std::unique_ptr<VtDatabase> db;
  NoWaitClock clock;
};
