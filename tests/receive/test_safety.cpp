// What a receive must never do: store a recorder with impossible page numbers, report
// pages it skipped as stored, run beside another writer, or store a retry's user twice.
#include "frame/catalogue.h"
#include "testsupport/receive_fixture.h"

namespace {

class ReceiveSafety : public ReceiveFixture {};

TEST_F(ReceiveSafety, ImpossiblePageNumbersAreRefusedBeforeAnythingIsStored) {
  for (const quint16 start : {quint16{0}, quint16{241}, quint16{0xFFFF}}) {
    SCOPED_TRACE(start);
    QByteArray memory = image(recorder(10));
    memory[39] = static_cast<char>(start & 0xFF);
    memory[40] = static_cast<char>(start >> 8);
    FakeReader fake(memory);
    ScriptedQuestions q;
    q.newCpu = {ReceiveQuestions::NewCpuAnswer::CreateUser};
    const ReceiveReport r = receiveChangingNothing(q, &fake);
    EXPECT_EQ(std::tuple(r.ending, r.messageCodes, r.daysStored, q.asked),
              std::tuple(ReceiveEnding::Refused, QStringList{"MDWN-W-0004"}, 0, QStringList()));
  }
}

TEST_F(ReceiveSafety, ErasedPagesAreSkippedCountedAndReportedNeverStoredEmpty) {
  RecorderImageOptions o = recorder(10);
  o.erasedPages = {3, 6};
  place(o);
  const ReceiveReport r = receiveSelecting(addUser(QStringLiteral("山田 花子")));
  ASSERT_EQ(r.ending, ReceiveEnding::Received);
  EXPECT_EQ(std::tuple(r.pagesFetched, r.daysStored, r.pagesSkipped, r.summary, r.messageCodes),
            std::tuple(10, 8, 2, QString("8日分を保存、読めないページ 2"), QStringList{"DDWN-I-0001"}));
  EXPECT_EQ(std::tuple(rows("DAY_MEASUREMENT", "LENGTH(TRIM(MEASUREMENT_DAY)) = 0"), rows("DAY_MEASUREMENT")),
            std::tuple(0, 8));
  EXPECT_TRUE(inst->traceText().contains(QStringLiteral("8日分を保存、読めないページ 2")));
}

TEST_F(ReceiveSafety, ASecondWriterIsToldVantoraIsBusyAndStoresNothing) {
  place(recorder(5));
  const QString id = addUser(QStringLiteral("山田 花子"));
  const QStringList before = dump();
  SetWriterLockWaitMs(100);
  {
    InstallationLock other(db->path());
    ASSERT_TRUE(other.acquire(0));
    const ReceiveReport r = receiveSelecting(id);
    EXPECT_EQ(std::tuple(r.ending, r.messageCodes), std::tuple(ReceiveEnding::Busy, QStringList{"COMN-W-0001"}));
    EXPECT_EQ(dump(), before);
  }
  // Once the other writer is done the same receive goes through, and the lock is free
  // again afterwards.
  EXPECT_EQ(receiveSelecting(id).ending, ReceiveEnding::Received);
  InstallationLock after(db->path());
  EXPECT_TRUE(after.acquire(0));
  SetWriterLockWaitMs(5000);
}

TEST_F(ReceiveSafety, ARetryOffersTheUserAnEarlierReceiveRegisteredInsteadOfRefusingTheName) {
  QString first;
  ASSERT_EQ(RegisterUserByName(*db, QStringLiteral("山田 花子"), first), 0);
  QString again;
  EXPECT_EQ(RegisterUserByName(*db, QStringLiteral("山田 花子"), again), 0);
  EXPECT_EQ(again, first);
  EXPECT_EQ(rows("USER", "FIRST_NAME LIKE '山田%'"), 1);

  // Once that user has days the name is taken as before.
  place(recorder(3));
  ASSERT_EQ(receiveSelecting(first).ending, ReceiveEnding::Received);
  QString third;
  EXPECT_EQ(RegisterUserByName(*db, QStringLiteral("山田 花子"), third), 9);
}

}  // namespace
