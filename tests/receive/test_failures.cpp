// Faults and cancels at every point: each ending reports its codes and leaves the
// database as it was, the overlap day that the page arithmetic deletes included.
#include "testsupport/receive_fixture.h"

class Failures : public ReceiveFixture {
 protected:
  // After a first receive of 10 days the recorder holds 13: the second receive reads the
  // block (transfer 0), the current page (1), the start page (2) and pages 10..13 (3..6).
  void prepareSecondReceive() {
    ownerId = firstReceive(recorder(10));
    second = recorder(13, QDate(2024, 7, 3));
    place(second);
    SetScreenState(kStateUserSelect);
    before = dump();
    // The overlap day, page 10 of the first receive, is deleted before the loop starts:
    // it is in `before`, so every comparison with it covers that deletion too.
    ASSERT_EQ(rows("DAY_MEASUREMENT", "RECEIVE_ID = 'R000000001' AND PAGE = '10'"), 1);
  }
  ReceiveReport receiveWithFault(int transfer, qint32 status = 5) {
    FakeReader fake(image(second));
    fake.faultAt[transfer] = status;
    ScriptedQuestions q;
    return receive(q, nullptr, &fake);
  }

  QString ownerId;
  RecorderImageOptions second;
  QStringList before;
};

TEST_F(Failures, ReaderFaultsInTheManagementStageReportTheirCodesAndLeaveNothing) {
  prepareSecondReceive();
  const struct {
    int transfer;
    const char* code;
  } cases[] = {{0, "MDWN-C-0001"}, {1, "MDWN-C-0003"}, {2, "MDWN-C-0004"}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.code);
    const ReceiveReport r = receiveWithFault(c.transfer);
    EXPECT_EQ(std::tuple(r.ending, r.messageCodes),
              std::tuple(ReceiveEnding::Failed, QStringList{QLatin1String(c.code), QStringLiteral("COMN-C-0001")}));
    EXPECT_EQ(dump(), before);
  }
}

TEST_F(Failures, AFaultAtEveryPageOfTheLoopLeavesTheStoreAsItWas) {
  prepareSecondReceive();
  for (int transfer = 3; transfer <= 6; ++transfer) {
    SCOPED_TRACE(transfer);
    const ReceiveReport r = receiveWithFault(transfer);
    EXPECT_EQ(std::tuple(r.ending, r.messageCodes, r.pagesFetched),
              std::tuple(ReceiveEnding::Failed, QStringList{"DDWN-C-0002", "COMN-C-0001"}, transfer - 3));
    // The overlap day too: its deletion belongs to the receive's one commit.
    EXPECT_EQ(dump(), before);
  }
  // The next complete receive starts from the same page and replaces the day.
  FakeReader fine(image(second));
  ScriptedQuestions q;
  const ReceiveReport r = receive(q, nullptr, &fine);
  ASSERT_EQ(std::tuple(r.ending, r.startPage), std::tuple(ReceiveEnding::Received, 10));
  EXPECT_EQ(count(QStringLiteral("SELECT COUNT(DISTINCT MEASUREMENT_DAY) FROM DAY_MEASUREMENT")), 13);
}

TEST_F(Failures, AFaultInTheFirstReceiveAlsoUndoesTheRecordersAssignment) {
  RecorderImageOptions o = recorder(6);
  const QString id = addUser(QStringLiteral("伊藤 五郎"));
  const QStringList start = dump();
  for (int transfer = 3; transfer <= 8; ++transfer) {
    SCOPED_TRACE(transfer);
    FakeReader fake(image(o));
    fake.faultAt[transfer] = 7;
    EXPECT_EQ(receiveSelecting(id, &fake).ending, ReceiveEnding::Failed);
    EXPECT_EQ(dump(), start);
  }
}

TEST_F(Failures, TheCancelFlagIsLookedAtExactlyAtTheMarkedPoints) {
  prepareSecondReceive();
  // Management stage: after the handle, before and after the current page, before the
  // start page, after closing (5). Data stage: at its start (6), then before each page.
  for (int n = 1; n <= 10; ++n) {
    SCOPED_TRACE(n);
    FakeReader fake(image(second));
    CountingProgress progress;
    progress.cancelAt = n;
    ScriptedQuestions q;
    const ReceiveReport r = receive(q, &progress, &fake);
    EXPECT_EQ(std::tuple(r.ending, r.messageCodes, progress.looks, r.pagesFetched),
              std::tuple(ReceiveEnding::Cancelled, QStringList(), n, n > 6 ? n - 7 : 0));
    // Wherever the cancel comes, nothing of the receive stays (the overlap day included).
    EXPECT_EQ(dump(), before);
  }
  CountingProgress never;
  FakeReader fake(image(second));
  ScriptedQuestions q;
  ASSERT_EQ(receive(q, &never, &fake).ending, ReceiveEnding::Received);
  EXPECT_EQ(never.looks, 10);
}

TEST_F(Failures, APageArithmeticFailureWarnsAndEndsAsCancel) {
  prepareSecondReceive();
  Statement(*db, QStringLiteral("UPDATE [USER] SET LAST_PAGE = 'x  ' WHERE USER_ID = ?")).bind(1, ownerId).run();
  FakeReader fake(image(second));
  ScriptedQuestions q;
  const ReceiveReport r = receiveChangingNothing(q, &fake);
  EXPECT_EQ(std::tuple(r.ending, r.messageCodes), std::tuple(ReceiveEnding::Cancelled, QStringList{"DDWN-W-0001"}));
}

TEST_F(Failures, AFailedReleaseOfTheRecorderReportsAndCleansUp) {
  place(recorder(3));
  const QString id = addUser(QStringLiteral("渡辺 六郎"));
  db->exec(QStringLiteral("DROP TABLE CPU_TABLE"));
  const ReceiveReport r = receiveSelecting(id);
  EXPECT_EQ(r.ending, ReceiveEnding::Failed);
  EXPECT_TRUE(r.messageCodes.contains(QStringLiteral("DDWN-C-0006")) && r.messageCodes.last() == "COMN-C-0001")
      << r.messageCodes.join(u',').toStdString();
  EXPECT_EQ(rows("RECEIVE_HISTORY"), 0);
}

TEST_F(Failures, AFailedTakeOverGivesBothUsersTheirRecordersBack) {
  // The owner's recorder A00042 is taken over by a user who has two recorders of his
  // own (B00007, D00001); the dialog releases A00042 and the user's first one, then the
  // data stage fails or is cancelled.
  const QString owner = firstReceive(recorder(10));
  const QString other = addUser(QStringLiteral("田中 三郎"));
  ASSERT_TRUE(VTDB_SetUserIdOnCPUNo(*db, QStringLiteral("B00007"), other));
  ASSERT_TRUE(VTDB_SetUserIdOnCPUNo(*db, QStringLiteral("D00001"), other));
  second = recorder(12, QDate(2024, 7, 2));
  SetScreenState(kStateJob);
  SetCurrentUserId(other);
  const QStringList start = dump();
  for (int transfer : {3, 8}) {
    SCOPED_TRACE(transfer);
    FakeReader fake(image(second));
    fake.faultAt[transfer] = 5;
    ScriptedQuestions q;
    q.yesNo = {true};
    const ReceiveReport r = receive(q, nullptr, &fake);
    EXPECT_EQ(r.ending, ReceiveEnding::Failed);
    EXPECT_EQ(dump(), start);
  }
  FakeReader fake(image(second));
  CountingProgress progress;
  progress.cancelAt = 8;  // before the second page of the loop
  ScriptedQuestions q;
  q.yesNo = {true};
  EXPECT_EQ(receive(q, &progress, &fake).ending, ReceiveEnding::Cancelled);
  EXPECT_EQ(dump(), start);
  EXPECT_EQ(VTDB_GetUserIDFromCPUNo(*db, QStringLiteral("A00042")), owner);

  // A new recorder taken by the open user releases the user's earlier one the same way.
  RecorderImageOptions fresh = recorder(3, QDate(2024, 7, 10));
  fresh.cpuNo = QStringLiteral("C00009");
  FakeReader faulty(image(fresh));
  faulty.faultAt[4] = 5;
  ScriptedQuestions yes;
  yes.yesNo = {true};
  const ReceiveReport r = receive(yes, nullptr, &faulty);
  EXPECT_EQ(std::tuple(r.ending, yes.asked), std::tuple(ReceiveEnding::Failed, QStringList{"NewCPUSelectUser"}));
  EXPECT_EQ(dump(), start);
}
