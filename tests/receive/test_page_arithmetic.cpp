// Page arithmetic of the ring and the reset test, on hand-made management records.
#include "testsupport/receive_fixture.h"

namespace {

ReceiveContext Context(int start, int end, int recording, RecorderKind kind = RecorderKind::BrioNormal,
                       RecorderLang lang = RecorderLang::Japanese) {
  return {.device = {.manage = {.RecordStartPage = start, .RecordEndPage = end, .RecordingPage = recording},
                     .pmKind = kind,
                     .pmLang = lang}};
}

}  // namespace

TEST(DayLoopPage, GoesRoundTheRingOnceAndKeepsThePageEqualToTheRingSize) {
  EXPECT_EQ(std::tuple(DayLoopPage(1, 1, 240), DayLoopPage(230, 11, 240), DayLoopPage(230, 12, 240),
                       DayLoopPage(200, 51, 240), DayLoopPage(95, 7, 100)),
            std::tuple(1, 240, 1, 10, 1));
}

using PageArithmetic = ReceiveFixture;

TEST_F(PageArithmetic, WholeRangeCountsAcrossTheRingWithoutReadingTheDatabase) {
  qint16 s = 0, e = 0, n = 0;
  ReceiveContext ctx = Context(200, 10, 10);
  ctx.receiveUserId = QStringLiteral("U000000404");  // no such user: a read fails
  EXPECT_FALSE(CalcReceivePage(*db, ctx, s, e, n, false));
  ASSERT_TRUE(CalcReceivePage(*db, ctx, s, e, n, true));
  EXPECT_EQ(std::tuple(s, e, n), std::tuple(200, 10, 51));
  // End one below start: nothing to fetch, not the whole ring; the English METS ring is 100.
  const std::pair<ReceiveContext, int> cases[] = {{Context(7, 7, 7), 1},
                                                  {Context(8, 7, 7), 0},
                                                  {Context(95, 4, 4, RecorderKind::BrioMets, RecorderLang::English), 10}};
  for (const auto& [c, pages] : cases) {
    ASSERT_TRUE(CalcReceivePage(*db, c, s, e, n, true));
    EXPECT_EQ(n, pages) << c.device.manage.RecordStartPage;
  }
}

TEST_F(PageArithmetic, MemoryLockTakesTheEndPageOnlyWhenTheSpanExceedsTheLimit) {
  qint16 s = 0, e = 0, n = 0;
  // A span above the limit is the receive scenario's; equal to it, the page being recorded.
  ReceiveContext ctx = Context(1, 7, 12);
  ctx.device.manage.MemorySetting = 1;
  ctx.device.manage.MemoryDays = 12;
  ASSERT_TRUE(CalcReceivePage(*db, ctx, s, e, n, true));
  EXPECT_EQ(std::tuple(e, n), std::tuple(12, 12));
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
  EXPECT_FALSE(CheckPMReset(*db, ctx, QString()) || CheckPMReset(*db, ctx, QStringLiteral("U000000404")));
  inst->setConfig(QStringLiteral("DOWNLOAD"), QStringLiteral("DOWNLOAD_DATA_RANGE"), QStringLiteral("0"));
  EXPECT_FALSE(CheckPMReset(*db, ctx, id));
}
