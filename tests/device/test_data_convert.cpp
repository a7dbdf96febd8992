// The byte conversions of the recorder's memory.
#include <gtest/gtest.h>

#include <array>
#include <limits>

#include "device/device.h"

namespace {

QDate D(int y, int m, int d) { return QDate(y, m, d); }
template <size_t N>
using Bytes = std::array<quint8, N>;

TEST(DataConvert, TextIsNoDataOnlyWhenEveryByteIsErased) {
  const quint8 erased[6] = {0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF};
  const quint8 digits[6] = {'1', '2', '3', '4', '5', 0xFF};
  // Shift_JIS "ア" (0x83 0x41) comes out as the Japanese character.
  const quint8 kana[2] = {0x83, 0x41};
  EXPECT_EQ(QStringList({ByteToText(erased, 6), ByteToText(digits, 5), ByteToText(digits, 6).left(5),
                         ByteToText(kana, 2)}),
            QStringList({"NoData", "12345", "12345", "ア"}));
  EXPECT_NE(ByteToText(digits, 6), QStringLiteral("NoData"));
}

TEST(DataConvert, WordsAndLongsAreLittleEndian) {
  const quint8 w[2] = {0x34, 0x12};
  const quint8 ff[4] = {0xFF, 0xFF, 0xFF, 0xFF};
  const quint8 l[4] = {0x78, 0x56, 0x34, 0x12};
  const quint8 neg[4] = {0x00, 0x00, 0x00, 0x80};
  EXPECT_EQ(std::tuple(ByteToWord(w), ByteToWord(ff), ByteToLong(ff), ByteToLong(l), ByteToLong(neg)),
            std::tuple(0x1234, 65535, -1, 0x12345678, std::numeric_limits<qint32>::min()));
}

TEST(DataConvert, BcdNibblesAboveNineCountAsTheirBinaryValue) {
  EXPECT_EQ(std::tuple(BcdToByte(0x59), BcdToByte(0x0A), BcdToByte(0xA0), BcdToByte(0xFF)),
            std::tuple(59, 10, 100, 165));
  const quint8 w[2] = {0x12, 0x3F};
  const quint8 l[3] = {0x01, 0x23, 0x45};
  const quint8 lff[3] = {0xFF, 0xFF, 0xFF};
  // 0x3F = 3 * 10 + 15.
  EXPECT_EQ(std::tuple(Bcd2ToWord(w), Bcd3ToLong(l), Bcd3ToLong(lff)),
            std::tuple(12 * 100 + 45, 12345, 165 * 10000 + 165 * 100 + 165));
}

TEST(DataConvert, FourDigitYearDates) {
  const std::pair<Bytes<4>, QDate> cases[] = {{{0x20, 0x05, 0x03, 0x31}, D(2005, 3, 31)},
                                              {{0x20, 0x05, 0x02, 0x30}, ZeroDate()},
                                              {{0x20, 0x24, 0x02, 0x29}, D(2024, 2, 29)},
                                              {{0xFF, 0xFF, 0xFF, 0xFF}, ZeroDate()}};
  for (const auto& [bytes, date] : cases) EXPECT_EQ(Bcd4ToDate(bytes.data()), date) << date.toString().toStdString();
}

TEST(DataConvert, TwoDigitYearsTurnAtSeventy) {
  const std::pair<Bytes<3>, QDate> cases[] = {
      {{0x70, 0x01, 0x01}, D(1970, 1, 1)}, {{0x69, 0x12, 0x31}, D(2069, 12, 31)}, {{0x00, 0x02, 0x29}, D(2000, 2, 29)},
      {{0x23, 0x13, 0x01}, ZeroDate()},    {{0xFF, 0xFF, 0xFF}, ZeroDate()}};
  for (const auto& [bytes, date] : cases) EXPECT_EQ(Bcd3ToDate(bytes.data()), date) << int(bytes[0]);
}

TEST(DataConvert, MeasureStartAlwaysInThisCenturyAndCarriesHoursAndMinutes) {
  const auto at = [](QDate d, int h, int m) { return QDateTime(d, QTime(h, m), Qt::UTC); };
  const std::pair<Bytes<5>, QDateTime> cases[] = {
      {{0x24, 0x06, 0x30, 0x08, 0x15}, at(D(2024, 6, 30), 8, 15)},
      {{0x99, 0x01, 0x01, 0x00, 0x00}, at(D(2099, 1, 1), 0, 0)},
      {{0x24, 0x01, 0x31, 0x25, 0x10}, at(D(2024, 2, 1), 1, 10)},   // hour 25: the next day, across a month end
      {{0x24, 0x03, 0x10, 0x10, 0x75}, at(D(2024, 3, 10), 11, 15)},  // minute 75 carries into the hour
      {{0x23, 0x12, 0x31, 0x23, 0x60}, at(D(2024, 1, 1), 0, 0)},     // and 23:60 into the next year
      {{0x24, 0x01, 0x01, 0xFF, 0x00}, at(D(2024, 1, 7), 21, 0)},    // hour 0xFF = 165 h = 6 days 21 hours
      {{0xFF, 0xFF, 0xFF, 0xFF, 0xFF}, ZeroDateTime()}};
  for (const auto& [bytes, when] : cases) EXPECT_EQ(Bcd5ToDateTime(bytes.data()), when) << int(bytes[3]);
}

TEST(DataConvert, TimesWithoutAValidValueBecomeTheMarker) {
  // 0x0A is hour 10 by the nibble rule: a valid time.
  const std::pair<Bytes<2>, QTime> cases[] = {{{0x07, 0x45}, QTime(7, 45)}, {{0x23, 0x59}, QTime(23, 59)},
                                              {{0x0A, 0x00}, QTime(10, 0)}, {{0xFF, 0xFF}, QTime(0, 0, 59)},
                                              {{0x24, 0x00}, QTime(0, 0, 59)}, {{0x12, 0x60}, QTime(0, 0, 59)}};
  for (const auto& [bytes, time] : cases) {
    EXPECT_EQ(Bcd2ToTime(bytes.data()), time) << int(bytes[0]) << " " << int(bytes[1]);
    EXPECT_EQ(IsNoEventTime(Bcd2ToTime(bytes.data())), time.second() == 59);
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
