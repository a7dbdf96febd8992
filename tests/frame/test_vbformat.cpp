#include <gtest/gtest.h>

#include <stdexcept>

#include "frame/vbformat.h"

namespace {

QString F(double v, const char* fmt) { return Format(v, QString::fromLatin1(fmt)); }

TEST(Format, NumberPlaceholdersRoundTheDecimalFormHalfAwayFromZero) {
  const struct {
    double value;
    const char* format;
    const char* text;
  } cases[] = {
      {0.5, "#0", "1"}, {2.5, "#0", "3"}, {-2.5, "#0", "-3"}, {-0.25, "#0.0", "-0.3"},
      // 2.675 and 1.005 are stored just below the half; the shown form still rounds up.
      {2.675, "#0.00", "2.68"}, {1.005, "#0.00", "1.01"}, {4.35, "##0.0", "4.4"}, {9.96, "#0.0", "10.0"},
      {99.95, "##0.0", "100.0"}, {0.04, "#0.0", "0.0"}, {-0.04, "#0.0", "-0.0"},  // the sign stays
      {12345.678, "###0", "12346"}, {7, "#0.00", "7.00"}, {42, "000000000", "000000042"},
      {1234567890, "000000000", "1234567890"}, {0.004, "#0.00", "0.00"}, {1e-20, "#0.0", "0.0"},
      // A half that lies entirely behind the kept places still carries into a new digit.
      {0.005, "#0.00", "0.01"}, {-0.05, "#0.0", "-0.1"},
      // Beyond fifteen significant digits the figure shows zeros.
      {123456789012345678.0, "#0", "123456789012346000"}, {1e20, "##0.0", "100000000000000000000.0"},
      {3.25, "#0.0#", "3.25"}, {3.2, "#0.0#", "3.2"}};
  for (const auto& c : cases) EXPECT_EQ(F(c.value, c.format), c.text) << c.value << " " << c.format;
  EXPECT_THROW(F(1, "#,##0"), std::invalid_argument);
  // Unlike the number formats, the integer conversions round halves to even.
  EXPECT_EQ(std::tuple(CIntVb(2.5), CIntVb(3.5), CIntVb(-2.5), CLngVb(0.5)), std::tuple(2, 4, -2, 0));
}

TEST(Format, TextPlaceholdersFillFromTheRight) {
  EXPECT_EQ(Format(QStringLiteral("20061231"), QStringLiteral("@@@@/@@/@@")), "2006/12/31");
  EXPECT_EQ(Format(QStringLiteral("061231"), QStringLiteral("@@@@/@@/@@")), "  06/12/31");
  EXPECT_EQ(Format(QStringLiteral("1120061231"), QStringLiteral("@@@@/@@/@@")), "112006/12/31");
  // Numeric text takes a number format; other text stays as it is.
  EXPECT_EQ(Format(QStringLiteral("2.25"), QStringLiteral("#0.0")), "2.3");
  EXPECT_EQ(Format(QStringLiteral("abc"), QStringLiteral("#0.0")), "abc");
}

TEST(Val, ReadsTheLeadingNumber) {
  const std::pair<const char*, double> cases[] = {{"12a", 12},  {"abc", 0},     {"", 0},     {"  -3.5kg", -3.5},
                                                  {"1 2 3", 123}, {"1e3x", 1000}, {"&H1F", 31}, {"1.2.3", 1.2}};
  for (const auto& [text, value] : cases) EXPECT_EQ(Val(QString::fromLatin1(text)), value) << text;
}

TEST(CIntVb, SixteenAndThirtyTwoBitLimitsAndTextThatMustBeANumber) {
  EXPECT_EQ(std::tuple(CIntVb(32767.49), CIntVb(-32768.5), CLngVb(2147483647.4), CLngVb(-2147483648.5)),
            std::tuple(32767, -32768, 2147483647, -2147483648LL));
  EXPECT_THROW(CIntVb(32767.5), std::overflow_error);
  EXPECT_THROW(CIntVb(-32768.51), std::overflow_error);
  EXPECT_THROW(CIntVb(QStringLiteral("40000")), std::overflow_error);
  EXPECT_THROW(CLngVb(2147483647.5), std::overflow_error);
  EXPECT_EQ(std::tuple(CIntVb(QStringLiteral(" 12 ")), CIntVb(QStringLiteral("1.5")), CLngVb(QStringLiteral("1,000"))),
            std::tuple(12, 2, 1000));
  EXPECT_THROW(CIntVb(QString()), std::invalid_argument);
  EXPECT_THROW(CIntVb(QStringLiteral("12a")), std::invalid_argument);
  EXPECT_THROW(CLngVb(QStringLiteral("-")), std::invalid_argument);
  EXPECT_TRUE(IsNumericVb(QStringLiteral("1e3")));
  EXPECT_FALSE(IsNumericVb(QStringLiteral("")) || IsNumericVb(QStringLiteral("1e")));
  EXPECT_DOUBLE_EQ(CDblVb(QStringLiteral("-0.25")), -0.25);
}

TEST(RoundHalfEven, Neighbours) {
  EXPECT_EQ(std::tuple(RoundHalfEven(0.5), RoundHalfEven(-1.5), RoundHalfEven(-0.5), RoundHalfEven(2.5000001)),
            std::tuple(0, -2, 0, 3));
}

}  // namespace
