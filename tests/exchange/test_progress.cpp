// The progress driver: its bar, its cancel between users, and the operations it runs.
#include <QDir>

#include "testsupport/exchange_fixture.h"

namespace {

// Stands in for the screen: records what it was asked to show and presses Cancel once
// the bar has reached a given value.
class ScriptedView : public ProgressView {
 public:
  explicit ScriptedView(ProgressDriver& d, int cancelAt = -1) : driver_(d), cancelAt_(cancelAt) {}
  void stateChanged() override { values.push_back(driver_.value()); }
  void processEvents() override {
    ++pumps;
    if (cancelAt_ >= 0 && driver_.value() >= cancelAt_) driver_.cancelClicked();
  }
  std::vector<int> values;
  int pumps = 0;

 private:
  ProgressDriver& driver_;
  int cancelAt_;
};

class ProgressTest : public ExchangeTest {
 protected:
  void SetUp() override {
    SetUpEdition(QStringLiteral("ja"));
    StoreRecorder();
    for (const char* id : {"U000000002", "U000000003"}) {
      UserRecord u = SampleUser(QString::fromLatin1(id));
      u.LOGIN_ID = QString::fromLatin1(id).right(4);
      u.FIRST_NAME = QStringLiteral("利用者") + u.LOGIN_ID;
      u.NICK_NAME.clear();
      ASSERT_TRUE(VTDB_SetUserInfo(db_, u));
      ASSERT_TRUE(StoreRecorderDays(db_, u.USER_ID, {.kind = RecorderKind::BrioZr, .days = 3}).isEmpty());
    }
  }
};

}  // namespace

TEST_F(ProgressTest, BarStaysWithinItsMaximumAndEveryStepLetsEventsThrough) {
  ProgressDriver d;
  ScriptedView view(d);
  d.setView(&view);
  d.ProcSetExecParam(ProgressDriver::kNone, QStringLiteral("t"), QStringLiteral("s"), QStringLiteral("c"), 10, 8,
                     true);
  d.SetProgressbarValue(14);
  EXPECT_EQ(d.value(), 10);
  d.SetProgressbarValue(-3);
  EXPECT_EQ(d.value(), 0);
  EXPECT_EQ(view.pumps, 2);
  // Operation 0 runs nothing: the caller drives the bar itself.
  EXPECT_TRUE(d.run() == 0 && !d.hasRun());
}

TEST_F(ProgressTest, CancelDuringExportEndsAfterTheCurrentUserAndKeepsItsFile) {
  const QString folder = inst_->path(QStringLiteral("temp/cancel"));
  QDir().mkpath(folder);
  ProgressDriver d(&db_);
  ScriptedView view(d, 1);
  d.setView(&view);
  d.ProcSetExecParam(ProgressDriver::kCsvExport, "t", "s", "c", 3, 0, true);
  d.ProcSetCSVExportParam(QStringLiteral("20240101"), QStringLiteral("20241231"), 0, folder,
                          {kCsvUser, QStringLiteral("U000000002"), QStringLiteral("U000000003")});
  d.run();
  int written = 0;
  QString log;
  int result = 0;
  d.ProcGetCSVExportParam(written, log, result);
  EXPECT_TRUE(d.ProcGetCancelParam() && result != 0);
  EXPECT_EQ(std::tuple(written, QDir(folder).entryList(QDir::Files).size()), std::tuple(1, 1));
}

TEST_F(ProgressTest, ImportRunsThroughTheDriverAndReportsItsCounts) {
  const QString folder = inst_->path(QStringLiteral("temp/roundtrip"));
  QDir().mkpath(folder);
  NullProgress none;
  QString log;
  ASSERT_EQ(CSVBatchExport(db_, QStringLiteral("20240101"), QStringLiteral("20241231"), 1, folder,
                           {QStringLiteral("U000000002"), QStringLiteral("U000000003")}, none, log),
            2);
  ASSERT_EQ(DeleteUser(db_, QStringLiteral("U000000002"), true), 0);
  ProgressDriver d(&db_);
  d.ProcSetExecParam(ProgressDriver::kCsvImport, "t", "s", "c", 1, 0, true);
  d.ProcSetCSVImportParam(folder);
  EXPECT_EQ(d.run(), 0);
  int read = 0, imported = 0, result = -1;
  d.ProcGetCSVImportParam(read, imported, log, result);
  EXPECT_EQ(std::tuple(read, imported), std::tuple(2, 2));
  EXPECT_TRUE(log.contains(QStringLiteral("利用者新規登録 ログインID=0002")) &&
              log.contains(QStringLiteral("利用者更新 ログインID=0003")))
      << log.toStdString();
}

TEST_F(ProgressTest, DeleteGroupRemovesItsUsersThenTheGroup) {
  GroupInfo g;
  ASSERT_TRUE(GetGroupInfo(db_, g, kDefaultGroupId));
  ProgressDriver d(&db_);
  ScriptedView view(d);
  d.setView(&view);
  d.ProcSetExecParam(ProgressDriver::kDeleteGroup, QStringLiteral("t"), QStringLiteral("s"), QStringLiteral("c"), 1,
                     0, false);
  SetCurrentGroupId(kDefaultGroupId);
  EXPECT_EQ(d.run(), 0);
  std::vector<UserInfo> users;
  GetUserList(db_, kDefaultGroupId, users);
  EXPECT_EQ(std::tuple(users.size(), d.value()), std::tuple(0u, d.maximum()));
  EXPECT_GE(view.pumps, 3);  // once per user at least
}

TEST_F(ProgressTest, CompactionRunsOnTheClosedFileAndFillsTheBar) {
  db_.close();
  ProgressDriver d;
  ScriptedView view(d);
  d.setView(&view);
  d.ProcSetExecParam(ProgressDriver::kCompact, "t", "s", "c", kCompactProgressMaximum, 0, false);
  d.ProcSetCompactDB(inst_->dbFile());
  // What the compacted file holds is the compaction's own test; here the driver runs it.
  EXPECT_EQ(d.run(), 0);
  EXPECT_EQ(d.value(), kCompactProgressMaximum);
  ProgressDriver missing;
  missing.ProcSetExecParam(ProgressDriver::kCompact, QString(), QString(), QString(), 100, 0, false);
  missing.ProcSetCompactDB(inst_->path(QStringLiteral("data/mdb/none.db")));
  EXPECT_EQ(missing.run(), -1);
}
