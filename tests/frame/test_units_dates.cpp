#include <gtest/gtest.h>

#include <stdexcept>

#include "frame/config.h"
#include "frame/helpers.h"
#include "testsupport/test_installation.h"

namespace {

TEST(KgToPound, TableWinsAndTheRuleGivesEvenPounds) {
  // 73 kg from the table. By the rule 72 kg is 158.73 lb: 159 is odd and lies above, so 158;
  // 74 kg is 163.14: 163 is odd and q lies above it, so 164.
  EXPECT_EQ(std::tuple(KgToPound(73), KgToPound(72), KgToPound(74), KgToPound(0)), std::tuple(160, 158, 164, 0));
  for (int kg = 1; kg <= 250; ++kg) EXPECT_EQ(KgToPound(kg) % 2, 0) << kg;
  EXPECT_EQ(KgDoubleToPound(72.9), 158);
  EXPECT_THROW(KgToPound(3000000), std::overflow_error);
}

TEST(PoundToKg, TwoConversionsSideBySide) {
  // 160 lb: 72574.4 g -> 72574 -> 72.574 -> 73; 1 lb: 454 g -> 0.454 -> 0; 5 lb: 2268 g (2267.95) -> 2.268 -> 2
  EXPECT_EQ(std::tuple(PoundToKg(0), PoundToKg(160), PoundToKg(1), PoundToKg(5)), std::tuple(0, 73, 0, 2));
  EXPECT_EQ(PoundToKgExact(0), 0.0);
  EXPECT_NEAR(PoundToKgExact(1), 0.4535920104980469, 1e-15);
  EXPECT_NEAR(PoundToKgExact(160), 72.5747216796875, 1e-12);
}

TEST(FeetInch, HalvesToEvenOneWayHalfUpTheOther) {
  // 177.8; 63.5 -> even 64; 190.5 -> even 190
  EXPECT_EQ(std::tuple(FeetInchToCm(5, 10), FeetInchToCm(0, 25), FeetInchToCm(0, 75), FeetInchToCm(0, 0)),
            std::tuple(178, 64, 190, 0));
  QString feet, inch;
  CmToFeetInch(QStringLiteral("178"), feet, inch);
  EXPECT_EQ(feet + "'" + inch, "5'10");
  CmToFeetInch(QStringLiteral("6.35"), feet, inch);  // exactly 2.5 inches: goes up
  EXPECT_EQ(inch, "3");
  CmToFeetInch(QStringLiteral("30.48"), feet, inch);
  EXPECT_EQ(feet + "'" + inch, "1'0");
}

TEST(RoundOff, HalvesAwayFromZero) {
  for (auto [value, rounded] : {std::pair{2.25, 2.3}, std::pair{-2.25, -2.3}, std::pair{2.24, 2.2}})
    EXPECT_DOUBLE_EQ(RoundOff(value, 1), rounded) << value;
  QString mile;
  KmToMile(QStringLiteral("10"), mile);  // 6.2111...
  EXPECT_EQ(mile, "6.2");
  KmToMile(QStringLiteral("1.61"), mile);
  EXPECT_EQ(mile, "1");
}

TEST(Exercise, RoundsAtEachStage) {
  // 45 counts = 3.0 min; 3.0/60*3.6 = 0.18 -> 0.2
  EXPECT_DOUBLE_EQ(ExerciseFromLevels({45, 0, 0, 0, 0, 0}), 0.2);
  // 900 counts = 60.0 min each: 3.6+4.3+5.2+6.1+7.1+8.3
  EXPECT_NEAR(ExerciseFromLevels({900, 900, 900, 900, 900, 900}), 34.6, 1e-9);
  // 8 counts = 0.5333 -> 0.5 min; 0.5/60*8.3 = 0.069 -> 0.1 (unrounded minutes give the same here)
  EXPECT_DOUBLE_EQ(ExerciseFromLevels({0, 0, 0, 0, 0, 8}), 0.1);
  // 7 counts = 0.4667 -> 0.5 min: without the first rounding 0.4667/60*6.1 = 0.047 -> 0.0
  EXPECT_DOUBLE_EQ(ExerciseFromLevels({0, 0, 0, 7, 0, 0}), 0.1);
}

TEST(Dates, PeriodEndsOfWholeMonths) {
  const std::tuple<QDate, int, QDate> cases[] = {
      {QDate(2007, 3, 10), 1, QDate(2007, 4, 9)},  {QDate(2007, 1, 31), 1, QDate(2007, 2, 28)},
      {QDate(2008, 1, 31), 1, QDate(2008, 2, 29)}, {QDate(2007, 12, 1), 6, QDate(2008, 5, 31)},
      {QDate(2007, 3, 31), -1, QDate(2007, 2, 28)}};
  for (const auto& [start, months, end] : cases)
    EXPECT_EQ(AddMonthsToPeriodEnd(start, months), end) << start.toString().toStdString() << " " << months;
}

TEST(Dates, ZeroDateIsNoDate) {
  EXPECT_TRUE(IsNoDate(ZeroDate()) && IsNoDate(QDate()));
  EXPECT_EQ(YmdToDate(QStringLiteral("20061231")), QDate(2006, 12, 31));
  for (const char* bad : {"18991230", "20060231", "2006-1-31"}) EXPECT_FALSE(YmdToDate(bad).isValid()) << bad;
  EXPECT_EQ(SlashToDate(QStringLiteral("2006/01/02")), QDate(2006, 1, 2));
  EXPECT_FALSE(SlashToDate(QStringLiteral("20060102")).isValid());
  EXPECT_EQ(QStringList({DateToYmd(ZeroDate()), DateToYmd(QDate(2006, 1, 2)), DateToSlash(QDate(2006, 1, 2)),
                         YmdToSlash(QStringLiteral("20061231")), SlashToYmd(QStringLiteral("2006/12/31"))}),
            QStringList({"", "20060102", "2006/01/02", "2006/12/31", "20061231"}));
}

TEST(Dates, ProgramFormatsFromTheLocalePattern) {
  QString picker, screen, graph, weekday;
  ASSERT_TRUE(ProgramDateFormatFrom("/", "dd/MM/yyyy", picker, screen, graph, weekday));
  EXPECT_EQ(QStringList({picker, screen, graph, weekday}),
            QStringList({"dd/MM/yyyy", "dd\\/MM\\/yyyy", "%d/%m/%Y", "%d/%m(%a)"}));
  ASSERT_TRUE(ProgramDateFormatFrom("/", "yyyy/M/d", picker, screen, graph, weekday));
  EXPECT_EQ(picker + " " + weekday, "yyyy/MM/dd %m/%d(%a)");
  ASSERT_TRUE(ProgramDateFormatFrom(".", "d.M.yy", picker, screen, graph, weekday));
  EXPECT_EQ(screen + " " + graph, "dd\\.MM\\.yyyy %d.%m.%Y");
}

TEST(Dates, UnusablePatternsKeepTheStartingFormats) {
  TestInstallation inst;
  ASSERT_TRUE(inst.isValid());
  QString picker = "x", screen, graph, weekday;
  EXPECT_FALSE(ProgramDateFormatFrom("/", "yyyy-MM-dd", picker, screen, graph, weekday));
  EXPECT_EQ(picker, "x");
  EXPECT_FALSE(ProgramDateFormatFrom("/", "yyyy/MMM/gg", picker, screen, graph, weekday));
  const QString log = inst.traceText();
  EXPECT_TRUE(log.contains("GetProgramDateFormat|DateSeparator Err") &&
              log.contains("Other than YMD LOCALE_SSHORTDATE:yyyy/MMM/gg"));

  // Whatever the machine's locale, the four keys end up written.
  SetLocaleDateFormats();
  EXPECT_FALSE(Ini_GetLocaleShortDate().isEmpty());
  EXPECT_TRUE(Ini_GetDateGraphMda().endsWith("(%a)"));
}

}  // namespace
