// Days and profiles as stored from a recorder (through the rows a reception makes of its
// pages) or a CSV file, and the chart queries.
#include <QFile>
#include <algorithm>

#include "device/device.h"
#include "receive/day_rows.h"
#include "testsupport/store_fixture.h"

namespace {

const QString kUser = QStringLiteral("U000000001");

FlashManage manageFor(const QString& fixedText) {
  return {.FixedData = fixedText, .CpuNo = QStringLiteral("CPU001"), .MemorySetting = 0, .RecordStartPage = 1,
          .RecordEndPage = 240, .RecordingPage = 12};
}

FlashData pageOf(const QDate& date, int steps) {
  FlashData d{.bcDate = date, .Gender = 1, .Age = 41, .HeightCm = 158, .WeightKg = 52,
              .TargetActivity = 250, .TotalEnergy = 1800, .Activity = 240, .StepCount = steps,
              .LevelSmall = 33, .WeightPound = 116, .Exercise = 25, .WeightFraction = 5,
              .TargetSelect = 1, .RangeLower = 3, .RangeUpper = 8, .TargetTime = 45,
              .RangeMinutes = 61, .Distance = 123, .LogicSelect = 0, .Stride = 70, .TargetSteps = 9000};
  for (int i = 0; i <= 9; ++i) d.level(i) = 100 * (i + 1);
  for (int i = 1; i <= 10; ++i) d.event(i) = QTime(0, 0, 59);
  d.event(1) = QTime(8, 30);
  return d;
}

class DayStore : public StoreTest {
 protected:
  // Stores one day and reads its row back.
  DayRecord storeDay(const QString& fixedText, RecorderKind kind, FlashData& page,
                     const QString& receive = QStringLiteral("R000000001"), int seq = 1) {
    const FlashManage m = manageFor(fixedText);
    EXPECT_TRUE(VTDB_SetDayMeasurement(db_, DayMeasurementRow(receive, seq, kUser, seq, 1, page, m, kind)));
    EXPECT_TRUE(VTDB_SetTimeMeasurementBlock(db_, TimeMeasurementBlockRow(receive, seq, page, kind)));
    DayRecord r;
    EXPECT_TRUE(VTDB_GetDayMeasurement(db_, receive, QString::number(seq), r));
    return r;
  }
  void storeBrio(const QDate& date, int steps, const QString& receive, int seq) {
    FlashData page = pageOf(date, steps);
    storeDay(QStringLiteral("13020"), RecorderKind::BrioNormal, page, receive, seq);
  }
  // The named columns (space separated) of one stored day, joined by '|'.
  QString columns(const QString& names, const QString& receive = QStringLiteral("R000000001"),
                  const QString& seq = QStringLiteral("1")) {
    const QStringList list = names.split(QLatin1Char(' '));
    Statement st(db_, QStringLiteral("SELECT %1 FROM [DAY_MEASUREMENT] WHERE RECEIVE_ID = ? AND SEQ_NUM = ?")
                          .arg(list.join(QLatin1Char(','))));
    st.bind(1, receive).bind(2, seq);
    if (!st.step()) return QStringLiteral("<none>");
    QStringList values;
    for (int i = 0; i < list.size(); ++i) values << (st.isNull(i) ? QStringLiteral("<null>") : st.text(i));
    return values.join(QLatin1Char('|'));
  }
};

TEST_F(DayStore, FamilyAUsesFixedBoundsAndComputedExercise) {
  FlashData page = pageOf(QDate(2024, 5, 6), 8000);
  const DayRecord r = storeDay(QStringLiteral("12820"), RecorderKind::AL, page);
  EXPECT_EQ(r.MEASUREMENT_DAY + r.WEEK_DAY, QStringLiteral("202405061"));
  EXPECT_EQ(r.WEIGHT_KG, QStringLiteral("52.0 ")) << "family A has no weight fraction";
  EXPECT_EQ(columns("WEIGHT_PAUND HEIGHT_FEET HEIGHT_INCH LOWER_BOUND UPPER_BOUND PACE_CM"), "116|5|2|4|9|0");
  // 500+...+1000 accumulated; no display mode; an empty event slot reads 9999.
  EXPECT_EQ(columns("ACCUMULATION_TIME PEDOMERA DISPLAY_MODE EVENT_1 EVENT_2"), "4500|0||0830|9999");
  EXPECT_EQ(columns("START_PAGE PAGE EXERCISE"), "1|1|30.6");
}

TEST_F(DayStore, FamilyBTakesThePageSettingsAndCarriesTheDistance) {
  FlashData page = pageOf(QDate(2024, 5, 6), 70000);
  page.Distance = 665;
  page.RangeMinutes = 65535;
  page.LogicSelect = 1;
  const DayRecord r = storeDay(QStringLiteral("13020"), RecorderKind::BrioNormal, page);
  EXPECT_EQ(page.Distance, 0) << "the carry changes the record itself";
  EXPECT_EQ(page.RangeMinutes, 0);
  EXPECT_EQ(r.WEIGHT_KG, QStringLiteral("52.5 "));
  EXPECT_EQ(columns("LOWER_BOUND UPPER_BOUND TARGET_TIME ACCUMULATION_TIME DISTANCE_KM"), "3|8|45|0|0");
  EXPECT_EQ(columns("MEASUREMENT_MODE SELECT_TARGET PEDOMERA PACE_CM WEIGHT_PAUND"), "1|1|1|70|116");

  FlashData over = pageOf(QDate(2024, 5, 7), 70001);
  over.Distance = 665;
  storeDay(QStringLiteral("13020"), RecorderKind::BrioNormal, over, QStringLiteral("R000000001"), 2);
  EXPECT_EQ(over.Distance, 665);
  EXPECT_EQ(columns("DISTANCE_KM ACCUMULATION_TIME", "R000000001", "2"), "66.5|61");
}

TEST_F(DayStore, ZrAndKtUseTheirOwnRules) {
  FlashData page = pageOf(QDate(2024, 5, 6), 8000);
  storeDay(QStringLiteral("14200"), RecorderKind::BrioZr, page);
  EXPECT_EQ(columns("LOWER_BOUND UPPER_BOUND TARGET_TIME ACCUMULATION_TIME SELECT_TARGET PEDOMERA EXERCISE"),
            "4|9|0|4500|0|2|2.5");
  EXPECT_NE(columns("WEIGHT_PAUND"), QStringLiteral("116")) << "from the kilograms";

  FlashData kt = pageOf(QDate(2024, 5, 7), 8000);
  storeDay(QStringLiteral("14014"), RecorderKind::BrioKt, kt, QStringLiteral("R000000001"), 2);
  EXPECT_EQ(columns("PEDOMERA", "R000000001", "2"), QStringLiteral("3"));
}

TEST_F(DayStore, ProfilesBecomeSlotTexts) {
  FlashData page = pageOf(QDate(2024, 5, 6), 8000);
  page.LevelProfileBrio.fill(15);
  const quint8 nibbles[] = {0, 1, 10, 11};
  std::copy(std::begin(nibbles), std::end(nibbles), page.LevelProfileBrio.begin());
  const QStringList nibble = MakeActLevelBlockText(page, RecorderKind::BrioNormal).split(QLatin1Char(','));
  ASSERT_EQ(nibble.size(), 720);
  EXPECT_EQ(nibble.mid(0, 5), (QStringList{"0", "0.5", "9", "-1", "-1"}));

  page.LevelProfileMets.fill(0);
  const quint8 tenths[] = {90, 91, 5};
  std::copy(std::begin(tenths), std::end(tenths), page.LevelProfileMets.begin());
  const QString mets = MakeActLevelBlockText(page, RecorderKind::BrioMets);
  EXPECT_TRUE(mets.startsWith(QStringLiteral("9.0,-1,0.5,0,")));
  EXPECT_FALSE(mets.endsWith(QLatin1Char(',')));
  EXPECT_EQ(MakeActLevelBlockText(page, RecorderKind::Unknown), QString());

  ASSERT_TRUE(VTDB_SetTimeMeasurementBlock(
      db_, TimeMeasurementBlockRow(QStringLiteral("R000000009"), 1, page, RecorderKind::BrioMets)));
  TimeBlockRecord block;
  ASSERT_TRUE(VTDB_GetTimeMeasurementDayBlock(db_, QStringLiteral("R000000009"), QStringLiteral("1"), block));
  EXPECT_EQ(block.ACT_LEVEL_BLOCK.trimmed(), mets);
  EXPECT_EQ(block.MEASUREMENT_MODE, QStringLiteral("1"));
}

TEST_F(DayStore, ZeroDatePagesNeverFallInARange) {
  FlashData empty = pageOf(ZeroDate(), 0);
  const DayRecord r = storeDay(QStringLiteral("13020"), RecorderKind::BrioNormal, empty);
  EXPECT_EQ(r.MEASUREMENT_DAY.trimmed(), QString());
  EXPECT_EQ(columns("RAW_MEASUREMENT_DAY"), QString());
  EXPECT_FALSE(VTDB_ExistData(db_, kUser, QStringLiteral("18991230"), QStringLiteral("99991231")));
  QString first = QStringLiteral("x"), last = QStringLiteral("x");
  ASSERT_TRUE(VTDB_GetDayMeasurementRange(db_, kUser, first, last, false));
  EXPECT_TRUE(first.isEmpty() && last.isEmpty());
  QString receive, seq;
  ASSERT_TRUE(VTDB_GetDayMeasurementReceiveId(db_, kUser, QStringLiteral("20240101"), receive, seq, true));
  EXPECT_TRUE(receive.isEmpty());
}

TEST_F(DayStore, NewestRowOfADayAcrossReceptionsAndSequenceNumbers) {
  // Reception 1 holds the 5th and 6th; reception 2 the 6th again, and within reception 2
  // sequence 9 and 10 both hold the 7th.
  storeBrio(QDate(2024, 5, 5), 1000, QStringLiteral("R000000001"), 1);
  storeBrio(QDate(2024, 5, 6), 2000, QStringLiteral("R000000001"), 2);
  storeBrio(QDate(2024, 5, 6), 3000, QStringLiteral("R000000002"), 1);
  storeBrio(QDate(2024, 5, 7), 50, QStringLiteral("R000000002"), 10);
  storeBrio(QDate(2024, 5, 7), 49, QStringLiteral("R000000002"), 9);

  std::vector<ChartDayRecord> rows;
  ASSERT_EQ(VTDB_GetChartData(db_, kUser, QStringLiteral("20240501"), QStringLiteral("20240531"),
                              QStringLiteral("50"), rows),
            5);
  QStringList keys;
  for (const ChartDayRecord& r : rows) {
    keys << r.MEASUREMENT_DAY + QLatin1Char('/') + r.RECEIVE_ID + QLatin1Char('/') + r.SEQ_NUM +
                (r.NewestOfDay ? QStringLiteral("*") : QString()) + QLatin1Char('x') + r.ExcludeFlag;
  }
  // 10 sorts after 9 as a number; only the day's newest row is kept in below 50 steps.
  EXPECT_EQ(keys.join(QLatin1Char(' ')),
            QStringLiteral("20240505/R000000001/1*x0 20240506/R000000002/1*x0 20240506/R000000001/2x0 "
                           "20240507/R000000002/10*x0 20240507/R000000002/9x1"));
  EXPECT_EQ(rows[0].StepTargetSelected + rows[0].CalTargetSelected + rows[0].TimeTargetSelected +
                QLatin1Char('|') + rows[0].EVENT[0] + QLatin1Char('|') + rows[0].EVENT[1] + QLatin1Char('|') +
                rows[0].HeightShown,
            QStringLiteral("100|0830||158"));

  std::vector<CsvRow> csv;
  ASSERT_EQ(VTDB_GetChartDataForCSV(db_, kUser, QStringLiteral("20240506"), QStringLiteral("20240506"), csv), 2);
  EXPECT_TRUE(csv[0].NewestOfDay);
  EXPECT_FALSE(csv[1].NewestOfDay);
  EXPECT_EQ(csv[0].EVENT[1], QStringLiteral("9999"));
  EXPECT_EQ(csv[0].WEIGHT_PAUND, QString()) << "metric day";

  std::vector<CsvRow> bySeq;
  ASSERT_TRUE(VTDB_GetDayMeasurementDataFromIdAndSeqNum(db_, QStringLiteral("R000000002"), QStringLiteral("2"),
                                                        QString(), bySeq));
  ASSERT_EQ(bySeq.size(), 2u);
  EXPECT_EQ(bySeq[0].SEQ_NUM, QStringLiteral("9"));

  QString receive, seq;
  ASSERT_TRUE(VTDB_GetDayMeasurementReceiveId(db_, kUser, QStringLiteral("20240531"), receive, seq, true));
  EXPECT_EQ(receive + QLatin1Char('/') + seq, QStringLiteral("R000000002/10"));
  ASSERT_TRUE(VTDB_GetDayMeasurementReceiveId(db_, kUser, QStringLiteral("20240506"), receive, seq, false));
  EXPECT_EQ(receive + QLatin1Char('/') + seq, QStringLiteral("R000000001/2"));

  QString first, last;
  ASSERT_TRUE(VTDB_GetDayMeasurementRange(db_, kUser, first, last, true));
  EXPECT_EQ(first + QLatin1Char('-') + last, QStringLiteral("20240506-20240507"));
  // Page 1 was received twice, with another day each time: the newest reception tells what
  // the ring held there last.
  EXPECT_EQ(VTDB_GetMeasurementDayFromPage(db_, QStringLiteral("1"), kUser), QStringLiteral("20240506"));
}

TEST_F(DayStore, ModerateIsBuiltFromTheLevelRange) {
  storeBrio(QDate(2024, 5, 6), 8000, QStringLiteral("R000000001"), 1);
  ChartDayRecord day;
  auto moderate = [&](const char* seq, const char* to) {
    return VTDB_GetModerate(db_, QStringLiteral("R000000001"), QString::fromLatin1(seq), QStringLiteral("4"),
                            QString::fromLatin1(to), day);
  };
  EXPECT_EQ(moderate("1", "7"), 1);
  EXPECT_EQ(day.MODERATE + QLatin1Char('|') + day.VIGOROUS, QStringLiteral("2600|1900"));  // 500..800, 900+1000
  EXPECT_EQ(moderate("2", "7"), 0);
  EXPECT_EQ(messages(), 0u);
  // A range ending at 9 leaves no vigorous term and the statement fails.
  EXPECT_EQ(moderate("1", "9"), -1);
  EXPECT_EQ(messages(), 1u);
  EXPECT_TRUE(traced(QStringLiteral("2"), QStringLiteral("VTDB_GetModerate")));
}

TEST_F(DayStore, NullExerciseIsComputedAndOldModelTextIsRepaired) {
  storeBrio(QDate(2024, 5, 6), 8000, QStringLiteral("R000000001"), 1);
  db_.exec(QStringLiteral("UPDATE [DAY_MEASUREMENT] SET EXERCISE = NULL, PEDOMERA = '0'"));
  DayRecord r;
  ASSERT_TRUE(VTDB_GetDayMeasurement(db_, QStringLiteral("R000000001"), QStringLiteral("1"), r));
  EXPECT_EQ(r.EXERCISE, QString(10, QLatin1Char(' ')));
  EXPECT_EQ(r.PEDOMERA, QStringLiteral("2"));
  std::vector<ChartDayRecord> rows;
  ASSERT_EQ(VTDB_GetChartData(db_, kUser, QStringLiteral("20240506"), QStringLiteral("20240506"),
                              QStringLiteral("-1"), rows),
            1);
  EXPECT_EQ(rows[0].EXERCISE + QLatin1Char('|') + rows[0].PEDOMERA, QStringLiteral("30.6|2"));

  EXPECT_EQ(FixPedomeraKind(QStringLiteral("0"), QStringLiteral("70")), QStringLiteral("2"));
  EXPECT_EQ(FixPedomeraKind(QStringLiteral("0"), QStringLiteral("0")), QStringLiteral("0"));
  EXPECT_EQ(FixPedomeraKind(QStringLiteral("1"), QStringLiteral("70")), QStringLiteral("1"));
}

TEST_F(DayStore, CsvRowsTakeTheirDefaults) {
  const UserInfo user{.USER_ID = kUser, .TARGET_CAL = QStringLiteral("300"), .TARGET_STEP = QStringLiteral("7000"),
                      .TARGET_ACTMIN = QStringLiteral("35")};
  const CsvRow row{.MEASUREMENT_DAY = "20240506", .RAW_MEASUREMENT_DAY = "20240506", .HEIGHT_FEET = "5",
                   .HEIGHT_INCH = "2", .WEIGHT_PAUND = "116", .STEP_COUNT = "4000", .PACE_CM = "70",
                   .DISTANCE_KM = "3.2", .ACT_LEVEL_BLOCK = "0,1,2"};
  const QString r = QStringLiteral("R000000005");
  ASSERT_TRUE(VTDB_SetDayMeasurementForCSV(db_, r, 1, user, row));
  ASSERT_TRUE(VTDB_SetTimeMeasurementBlockForCSV(db_, r, 1, user, row));
  EXPECT_EQ(columns("START_PAGE PAGE HEIGHT_CM TARGET_CAL TARGET_TIME EVENT_10", r),
            QStringLiteral("CSV|CSV|%1|300|35|9999").arg(FeetInchToCm(5, 2)));
  EXPECT_EQ(columns("SELECT_UNIT LOWER_BOUND UPPER_BOUND PACE_FEET EXERCISE REMARK", r), "1|4|9|2|0|");
  TimeBlockRecord block;
  ASSERT_TRUE(VTDB_GetTimeMeasurementDayBlock(db_, r, QStringLiteral("1"), block));
  EXPECT_EQ(block.ACT_LEVEL_BLOCK.trimmed(), QStringLiteral("0,1,2"));
  EXPECT_EQ(block.MEASUREMENT_MODE, QStringLiteral("0"));
}

TEST_F(DayStore, AFailedReceptionIsRemovedAsAWhole) {
  const QString raw = inst_.path(QStringLiteral("raw/R000000003.bin"));
  ASSERT_TRUE(WriteBytes(raw, "x"));
  const QString id = QStringLiteral("R000000003");
  ASSERT_TRUE(VTDB_SetReceiveHistory(
      db_, ReceiveHistoryRow(id, QStringLiteral("20240506120000"), raw, manageFor(QStringLiteral("13020")))));
  storeBrio(QDate(2024, 5, 5), 100, id, 1);
  storeBrio(QDate(2024, 5, 6), 100, id, 2);
  storeBrio(QDate(2024, 5, 6), 100, QStringLiteral("R000000004"), 1);

  ASSERT_TRUE(DeleteAllReceiveData(db_, raw, id));
  EXPECT_FALSE(QFile::exists(raw));
  ReceiveHistoryRecord h;
  ASSERT_TRUE(VTDB_GetReceiveHistory(db_, id, h));
  EXPECT_TRUE(h.RECEIVE_ID.isEmpty());
  std::vector<ChartDayRecord> rows;
  EXPECT_EQ(VTDB_GetChartData(db_, kUser, QStringLiteral("20240501"), QStringLiteral("20240531"),
                              QStringLiteral("-1"), rows),
            1);
  TimeBlockRecord block;
  ASSERT_TRUE(VTDB_GetTimeMeasurementDayBlock(db_, id, QStringLiteral("1"), block));
  EXPECT_TRUE(block.RECEIVE_ID.isEmpty());

  // Deleting by page returns the sequence number; the block row of that page stays.
  QString seq;
  ASSERT_TRUE(VTDB_DeleteDayMeasurementFromPage(db_, QStringLiteral("R000000004"), QStringLiteral("1"), seq));
  EXPECT_EQ(seq, QStringLiteral("1"));
  ASSERT_TRUE(VTDB_DeleteTimeMeasurement(db_, QStringLiteral("R000000004"), seq));
  ASSERT_TRUE(VTDB_GetTimeMeasurementDayBlock(db_, QStringLiteral("R000000004"), seq, block));
  EXPECT_EQ(block.RECEIVE_ID, QStringLiteral("R000000004"));
}

TEST_F(DayStore, UserDataFollowsTheRecorder) {
  UserInfo u{.GROUP_ID = kDefaultGroupId, .FIRST_NAME = QStringLiteral("森 花子"),
             .TARGET_STEP = QStringLiteral("1234")};
  ASSERT_EQ(SetUser(db_, u), 0);
  FlashManage m = manageFor(QStringLiteral("13010"));
  m.MemorySetting = 1;
  m.MemoryDays = 5;
  m.RecordStartPage = 3;
  m.RecordEndPage = 7;
  FlashData page = pageOf(QDate(2024, 5, 6), 100);
  page.UnitFlag = 1;
  const auto update = [&](const QString& userId, bool keepTargets) {
    return UpdateUserData(db_, userId, UserUpdateFromReceive(QStringLiteral("R000000008"), m, page, keepTargets,
                                                             RecorderKind::BrioNormal, RecorderLang::Japanese));
  };
  EXPECT_EQ(update(u.USER_ID, true), 0);
  UserRecord r;
  ASSERT_TRUE(VTDB_GetUserInfoFromUserId(db_, u.USER_ID, r));
  EXPECT_EQ(r.LAST_RECEIVE_ID, QStringLiteral("R000000008"));
  EXPECT_EQ(r.LAST_PAGE.trimmed(), QStringLiteral("7")) << "a locked memory past its days ends at the end page";
  // Body values follow the page; targets are kept.
  EXPECT_EQ(QStringList({r.WEIGHT_KG, r.HEIGHT_FEET, r.WEIGHT_PAUND, r.TARGET_STEP}).join(QLatin1Char('|'))
                .remove(QLatin1Char(' ')),
            QStringLiteral("52.5|5|116|1234"));
  EXPECT_EQ(update(u.USER_ID, false), 0);
  ASSERT_TRUE(VTDB_GetUserInfoFromUserId(db_, u.USER_ID, r));
  EXPECT_EQ(r.TARGET_STEP.trimmed() + QLatin1Char('|') + r.TARGET_ACTMIN.trimmed(), QStringLiteral("9000|45"));
  EXPECT_EQ(update(QStringLiteral("U000000077"), false), 0) << "no row, no failure";
}

}  // namespace
