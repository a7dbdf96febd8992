// Page arithmetic of the ring and the reset test, on hand-made management records.
#include "testsupport/receive_fixture.h"

namespace {

ReceiveContext Context(int start, int end, int recording, RecorderKind kind = RecorderKind::BrioNormal,
                       RecorderLang lang = RecorderLang::Japanese) {
  ReceiveContext ctx;
  ctx.device.pmKind = kind;
  ctx.device.pmLang = lang;
  ctx.device.manage.RecordStartPage = start;
  ctx.device.manage.RecordEndPage = end;
  ctx.device.manage.RecordingPage = recording;
  return ctx;
}

}  // namespace

TEST(DayLoopPage, GoesRoundTheRingOnceAndKeepsThePageEqualToTheRingSize) {
  EXPECT_EQ(DayLoopPage(1, 1, 240), 1);
  EXPECT_EQ(DayLoopPage(230, 11, 240), 240);
  EXPECT_EQ(DayLoopPage(230, 12, 240), 1);
  EXPECT_EQ(DayLoopPage(200, 51, 240), 10);
  EXPECT_EQ(DayLoopPage(95, 7, 100), 1);
}

using PageArithmetic = ReceiveFixture;

TEST_F(PageArithmetic, WholeRangeCountsAcrossTheRingWithoutReadingTheDatabase) {
  qint16 s = 0, e = 0, n = 0;
  ReceiveContext ctx = Context(200, 10, 10);
  ctx.receiveUserId = QStringLiteral("U000000404");  // no such user: a read fails
  EXPECT_FALSE(CalcReceivePage(*db, ctx, s, e, n, false));
  ASSERT_TRUE(CalcReceivePage(*db, ctx, s, e, n, true));
  EXPECT_EQ(s, 200);
  EXPECT_EQ(e, 10);
  EXPECT_EQ(n, 51);

  ctx = Context(7, 7, 7);
  ASSERT_TRUE(CalcReceivePage(*db, ctx, s, e, n, true));
  EXPECT_EQ(n, 1);
  // End one below start: nothing to fetch, not the whole ring.
  ctx = Context(8, 7, 7);
  ASSERT_TRUE(CalcReceivePage(*db, ctx, s, e, n, true));
  EXPECT_EQ(n, 0);
  // English METS ring of 100.
  ctx = Context(95, 4, 4, RecorderKind::BrioMets, RecorderLang::English);
  ASSERT_TRUE(CalcReceivePage(*db, ctx, s, e, n, true));
  EXPECT_EQ(n, 10);
}

TEST_F(PageArithmetic, MemoryLockTakesTheEndPageOnlyWhenTheSpanExceedsTheLimit) {
  qint16 s = 0, e = 0, n = 0;
  ReceiveContext ctx = Context(1, 7, 12);
  ctx.device.manage.MemorySetting = 1;
  ctx.device.manage.MemoryDays = 7;
  ASSERT_TRUE(CalcReceivePage(*db, ctx, s, e, n, true));
  EXPECT_EQ(e, 7);
  EXPECT_EQ(n, 7);
  EXPECT_EQ(ReceiveEndPage(ctx.device), 7);
  ctx.device.manage.MemoryDays = 12;  // span equal to the limit: the page being recorded
  ASSERT_TRUE(CalcReceivePage(*db, ctx, s, e, n, true));
  EXPECT_EQ(e, 12);
  EXPECT_EQ(n, 12);
  ctx.device.manage.MemorySetting = 0;
  ctx.device.manage.MemoryDays = 3;
  EXPECT_EQ(ReceiveEndPage(ctx.device), 12);
}

TEST_F(PageArithmetic, CheckPMResetFollowsTheStartPageDayAndLastPage) {
  const QString id = addUser(QStringLiteral("佐藤 一郎"));
  ReceiveContext ctx = Context(1, 5, 5);
  ctx.device.startPage.bcDate = QDate(2024, 6, 1);
  // No day stored for page 1: the day at the start page is new, so a reset is suspected.
  EXPECT_TRUE(CheckPMReset(*db, ctx, id));
  EXPECT_FALSE(CheckPMReset(*db, ctx, QString()));
  EXPECT_FALSE(CheckPMReset(*db, ctx, QStringLiteral("U000000404")));
  inst->setConfig(QStringLiteral("DOWNLOAD"), QStringLiteral("DOWNLOAD_DATA_RANGE"), QStringLiteral("0"));
  EXPECT_FALSE(CheckPMReset(*db, ctx, id));
}
