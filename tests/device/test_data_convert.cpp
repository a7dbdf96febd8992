// The byte conversions of the recorder's memory.
#include <gtest/gtest.h>

#include <array>
#include <limits>
#include <vector>

#include "device/device.h"

namespace {

QDate D(int y, int m, int d) { return QDate(y, m, d); }

TEST(DataConvert, TextIsNoDataOnlyWhenEveryByteIsErased) {
  const quint8 erased[6] = {0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF};
  EXPECT_EQ(ByteToText(erased, 6), QStringLiteral("NoData"));
  const quint8 digits[6] = {'1', '2', '3', '4', '5', 0xFF};
  EXPECT_EQ(ByteToText(digits, 5), QStringLiteral("12345"));
  EXPECT_EQ(ByteToText(digits, 6).left(5), QStringLiteral("12345"));
  EXPECT_NE(ByteToText(digits, 6), QStringLiteral("NoData"));
  // Shift_JIS "ア" (0x83 0x41) comes out as the Japanese character.
  const quint8 kana[2] = {0x83, 0x41};
  EXPECT_EQ(ByteToText(kana, 2), QString::fromUtf8("ア"));
}

TEST(DataConvert, WordsAndLongsAreLittleEndian) {
  const quint8 w[2] = {0x34, 0x12};
  EXPECT_EQ(ByteToWord(w), 0x1234);
  const quint8 ff[4] = {0xFF, 0xFF, 0xFF, 0xFF};
  EXPECT_EQ(ByteToWord(ff), 65535);
  EXPECT_EQ(ByteToLong(ff), -1);
  const quint8 l[4] = {0x78, 0x56, 0x34, 0x12};
  EXPECT_EQ(ByteToLong(l), 0x12345678);
  const quint8 neg[4] = {0x00, 0x00, 0x00, 0x80};
  EXPECT_EQ(ByteToLong(neg), std::numeric_limits<qint32>::min());
}

TEST(DataConvert, BcdNibblesAboveNineCountAsTheirBinaryValue) {
  EXPECT_EQ(BcdToByte(0x59), 59);
  EXPECT_EQ(BcdToByte(0x0A), 10);
  EXPECT_EQ(BcdToByte(0xA0), 100);
  EXPECT_EQ(BcdToByte(0xFF), 165);
  const quint8 w[2] = {0x12, 0x3F};
  EXPECT_EQ(Bcd2ToWord(w), 12 * 100 + 45);  // 0x3F = 3 * 10 + 15
  const quint8 l[3] = {0x01, 0x23, 0x45};
  EXPECT_EQ(Bcd3ToLong(l), 12345);
  const quint8 lff[3] = {0xFF, 0xFF, 0xFF};
  EXPECT_EQ(Bcd3ToLong(lff), 165 * 10000 + 165 * 100 + 165);
}

TEST(DataConvert, FourDigitYearDates) {
  const quint8 d[4] = {0x20, 0x05, 0x03, 0x31};
  EXPECT_EQ(Bcd4ToDate(d), D(2005, 3, 31));
  const quint8 bad[4] = {0x20, 0x05, 0x02, 0x30};
  EXPECT_EQ(Bcd4ToDate(bad), ZeroDate());
  const quint8 leap[4] = {0x20, 0x24, 0x02, 0x29};
  EXPECT_EQ(Bcd4ToDate(leap), D(2024, 2, 29));
  const quint8 erased[4] = {0xFF, 0xFF, 0xFF, 0xFF};
  EXPECT_EQ(Bcd4ToDate(erased), ZeroDate());
}

TEST(DataConvert, TwoDigitYearsTurnAtSeventy) {
  const quint8 d70[3] = {0x70, 0x01, 0x01};
  EXPECT_EQ(Bcd3ToDate(d70), D(1970, 1, 1));
  const quint8 d69[3] = {0x69, 0x12, 0x31};
  EXPECT_EQ(Bcd3ToDate(d69), D(2069, 12, 31));
  const quint8 d00[3] = {0x00, 0x02, 0x29};
  EXPECT_EQ(Bcd3ToDate(d00), D(2000, 2, 29));
  const quint8 bad[3] = {0x23, 0x13, 0x01};
  EXPECT_EQ(Bcd3ToDate(bad), ZeroDate());
  const quint8 erased[3] = {0xFF, 0xFF, 0xFF};
  EXPECT_EQ(Bcd3ToDate(erased), ZeroDate());
}

TEST(DataConvert, MeasureStartAlwaysInThisCenturyAndCarriesHoursAndMinutes) {
  const quint8 plain[5] = {0x24, 0x06, 0x30, 0x08, 0x15};
  EXPECT_EQ(Bcd5ToDateTime(plain), QDateTime(D(2024, 6, 30), QTime(8, 15), Qt::UTC));
  const quint8 y99[5] = {0x99, 0x01, 0x01, 0x00, 0x00};
  EXPECT_EQ(Bcd5ToDateTime(y99).date(), D(2099, 1, 1));
  // Hour 25: 01:mm of the next day, across a month end.
  const quint8 hour25[5] = {0x24, 0x01, 0x31, 0x25, 0x10};
  EXPECT_EQ(Bcd5ToDateTime(hour25), QDateTime(D(2024, 2, 1), QTime(1, 10), Qt::UTC));
  // Minute 75 carries into the hour, and 23:60 into the next year.
  const quint8 min75[5] = {0x24, 0x03, 0x10, 0x10, 0x75};
  EXPECT_EQ(Bcd5ToDateTime(min75), QDateTime(D(2024, 3, 10), QTime(11, 15), Qt::UTC));
  const quint8 newYear[5] = {0x23, 0x12, 0x31, 0x23, 0x60};
  EXPECT_EQ(Bcd5ToDateTime(newYear), QDateTime(D(2024, 1, 1), QTime(0, 0), Qt::UTC));
  // Nibbles above 9 in the hour: 0xFF = 165 hours = 6 days 21 hours.
  const quint8 bigHour[5] = {0x24, 0x01, 0x01, 0xFF, 0x00};
  EXPECT_EQ(Bcd5ToDateTime(bigHour), QDateTime(D(2024, 1, 7), QTime(21, 0), Qt::UTC));
  const quint8 erased[5] = {0xFF, 0xFF, 0xFF, 0xFF, 0xFF};
  EXPECT_EQ(Bcd5ToDateTime(erased), ZeroDateTime());
}

TEST(DataConvert, TimesWithoutAValidValueBecomeTheMarker) {
  const quint8 t[2] = {0x07, 0x45};
  EXPECT_EQ(Bcd2ToTime(t), QTime(7, 45, 0));
  const quint8 lastMinute[2] = {0x23, 0x59};
  EXPECT_EQ(Bcd2ToTime(lastMinute), QTime(23, 59, 0));
  const quint8 ten[2] = {0x0A, 0x00};  // hour 10 by the nibble rule: a valid time
  EXPECT_EQ(Bcd2ToTime(ten), QTime(10, 0));
  for (const auto& bytes : std::vector<std::array<quint8, 2>>{{0xFF, 0xFF}, {0x24, 0x00}, {0x12, 0x60}}) {
    EXPECT_EQ(Bcd2ToTime(bytes.data()), QTime(0, 0, 59));
    EXPECT_TRUE(IsNoEventTime(Bcd2ToTime(bytes.data())));
  }
}

// Nibble slots are half levels up to 9, METS slots tenths up to 9.0; above is no data.
TEST(DataConvert, ProfileSlotTexts) {
  const struct {
    int value;
    bool mets;
    const char* text;
  } cases[] = {{0, false, "0"}, {1, false, "0.5"}, {2, false, "1"},   {10, false, "9"},  {11, false, ""},
               {0, true, "0"},  {1, true, "0.1"},  {35, true, "3.5"}, {90, true, "9.0"}, {91, true, ""}};
  for (const auto& c : cases)
    EXPECT_EQ(ProfileSlotDumpText(static_cast<quint8>(c.value), c.mets), QLatin1String(c.text)) << c.value;
}

}  // namespace
