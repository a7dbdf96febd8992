// Days and profiles as stored from a recorder (through the rows a reception makes of its
// pages) or a CSV file, and the chart queries.
#include <QFile>

#include "device/device.h"
#include "receive/day_rows.h"
#include "testsupport/store_fixture.h"

namespace {

const QString kUser = QStringLiteral("U000000001");

FlashManage manageFor(const QString& fixedText) {
  FlashManage m;
  m.FixedData = fixedText;
  m.CpuNo = QStringLiteral("CPU001");
  m.RecordStartPage = 1;
  m.RecordEndPage = 240;
  m.RecordingPage = 12;
  m.MemorySetting = 0;
  return m;
}

FlashData pageOf(const QDate& date, int steps) {
  FlashData d;
  d.bcDate = date;
  d.Gender = 1;
  d.Age = 41;
  d.HeightCm = 158;
  d.WeightKg = 52;
  d.WeightFraction = 5;
  d.WeightPound = 116;
  d.TargetActivity = 250;
  d.TotalEnergy = 1800;
  d.Activity = 240;
  d.StepCount = steps;
  for (int i = 0; i <= 9; ++i) d.level(i) = 100 * (i + 1);
  d.LevelSmall = 33;
  for (int i = 1; i <= 10; ++i) d.event(i) = QTime(0, 0, 59);
  d.event(1) = QTime(8, 30);
  d.RangeLower = 3;
  d.RangeUpper = 8;
  d.TargetTime = 45;
  d.RangeMinutes = 61;
  d.Distance = 123;
  d.Stride = 70;
  d.TargetSteps = 9000;
  d.TargetSelect = 1;
  d.LogicSelect = 0;
  d.Exercise = 25;
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
  QString column(const QString& name, const QString& receive = QStringLiteral("R000000001"),
                 const QString& seq = QStringLiteral("1")) {
    Statement st(db_, QStringLiteral("SELECT %1 FROM [DAY_MEASUREMENT] WHERE RECEIVE_ID = ? AND SEQ_NUM = ?")
                          .arg(name));
    st.bind(1, receive).bind(2, seq);
    return st.step() ? (st.isNull(0) ? QStringLiteral("<null>") : st.text(0)) : QStringLiteral("<none>");
  }
};

TEST_F(DayStore, FamilyAUsesFixedBoundsAndComputedExercise) {
  FlashData page = pageOf(QDate(2024, 5, 6), 8000);
  const DayRecord r = storeDay(QStringLiteral("12820"), RecorderKind::AL, page);
  EXPECT_EQ(r.MEASUREMENT_DAY, QStringLiteral("20240506"));
  EXPECT_EQ(r.WEEK_DAY, QStringLiteral("1"));
  EXPECT_EQ(r.WEIGHT_KG, QStringLiteral("52.0 ")) << "family A has no weight fraction";
  EXPECT_EQ(column(QStringLiteral("WEIGHT_PAUND")), QStringLiteral("116"));
  EXPECT_EQ(column(QStringLiteral("HEIGHT_FEET")), QStringLiteral("5"));
  EXPECT_EQ(column(QStringLiteral("HEIGHT_INCH")), QStringLiteral("2"));
  EXPECT_EQ(column(QStringLiteral("LOWER_BOUND")) + column(QStringLiteral("UPPER_BOUND")), QStringLiteral("49"));
  EXPECT_EQ(column(QStringLiteral("PACE_CM")), QStringLiteral("0"));
  EXPECT_EQ(column(QStringLiteral("ACCUMULATION_TIME")), QStringLiteral("4500"));  // 500+...+1000
  EXPECT_EQ(column(QStringLiteral("PEDOMERA")), QStringLiteral("0"));
  EXPECT_EQ(column(QStringLiteral("DISPLAY_MODE")), QString());
  EXPECT_EQ(column(QStringLiteral("EVENT_1")), QStringLiteral("0830"));
  EXPECT_EQ(column(QStringLiteral("EVENT_2")), QStringLiteral("9999"));
  EXPECT_EQ(column(QStringLiteral("START_PAGE")) + column(QStringLiteral("PAGE")), QStringLiteral("11"));
  EXPECT_EQ(column(QStringLiteral("EXERCISE")), QStringLiteral("30.6"));
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
  EXPECT_EQ(column(QStringLiteral("LOWER_BOUND")) + column(QStringLiteral("UPPER_BOUND")), QStringLiteral("38"));
  EXPECT_EQ(column(QStringLiteral("TARGET_TIME")), QStringLiteral("45"));
  EXPECT_EQ(column(QStringLiteral("ACCUMULATION_TIME")), QStringLiteral("0"));
  EXPECT_EQ(column(QStringLiteral("DISTANCE_KM")), QStringLiteral("0"));
  EXPECT_EQ(column(QStringLiteral("MEASUREMENT_MODE")), QStringLiteral("1"));
  EXPECT_EQ(column(QStringLiteral("SELECT_TARGET")), QStringLiteral("1"));
  EXPECT_EQ(column(QStringLiteral("PEDOMERA")), QStringLiteral("1"));
  EXPECT_EQ(column(QStringLiteral("PACE_CM")), QStringLiteral("70"));
  EXPECT_EQ(column(QStringLiteral("WEIGHT_PAUND")), QStringLiteral("116"));

  FlashData over = pageOf(QDate(2024, 5, 7), 70001);
  over.Distance = 665;
  storeDay(QStringLiteral("13020"), RecorderKind::BrioNormal, over, QStringLiteral("R000000001"), 2);
  EXPECT_EQ(over.Distance, 665);
  EXPECT_EQ(column(QStringLiteral("DISTANCE_KM"), QStringLiteral("R000000001"), QStringLiteral("2")),
            QStringLiteral("66.5"));
  EXPECT_EQ(column(QStringLiteral("ACCUMULATION_TIME"), QStringLiteral("R000000001"), QStringLiteral("2")),
            QStringLiteral("61"));
}

TEST_F(DayStore, ZrAndKtUseTheirOwnRules) {
  FlashData page = pageOf(QDate(2024, 5, 6), 8000);
  storeDay(QStringLiteral("14200"), RecorderKind::BrioZr, page);
  EXPECT_EQ(column(QStringLiteral("LOWER_BOUND")) + column(QStringLiteral("UPPER_BOUND")) +
                column(QStringLiteral("TARGET_TIME")),
            QStringLiteral("490"));
  EXPECT_EQ(column(QStringLiteral("ACCUMULATION_TIME")), QStringLiteral("4500"));
  EXPECT_EQ(column(QStringLiteral("SELECT_TARGET")), QStringLiteral("0"));
  EXPECT_EQ(column(QStringLiteral("PEDOMERA")), QStringLiteral("2"));
  EXPECT_EQ(column(QStringLiteral("EXERCISE")), QStringLiteral("2.5"));
  EXPECT_NE(column(QStringLiteral("WEIGHT_PAUND")), QStringLiteral("116")) << "from the kilograms";

  FlashData kt = pageOf(QDate(2024, 5, 7), 8000);
  storeDay(QStringLiteral("14014"), RecorderKind::BrioKt, kt, QStringLiteral("R000000001"), 2);
  EXPECT_EQ(column(QStringLiteral("PEDOMERA"), QStringLiteral("R000000001"), QStringLiteral("2")),
            QStringLiteral("3"));
}

TEST_F(DayStore, ProfilesBecomeSlotTexts) {
  FlashData page = pageOf(QDate(2024, 5, 6), 8000);
  page.LevelProfileBrio.fill(15);
  page.LevelProfileBrio[0] = 0;
  page.LevelProfileBrio[1] = 1;
  page.LevelProfileBrio[2] = 10;
  page.LevelProfileBrio[3] = 11;
  const QStringList nibble = MakeActLevelBlockText(page, RecorderKind::BrioNormal).split(QLatin1Char(','));
  ASSERT_EQ(nibble.size(), 720);
  EXPECT_EQ(nibble.mid(0, 5), (QStringList{"0", "0.5", "9", "-1", "-1"}));

  page.LevelProfileMets.fill(0);
  page.LevelProfileMets[0] = 90;
  page.LevelProfileMets[1] = 91;
  page.LevelProfileMets[2] = 5;
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
  EXPECT_EQ(column(QStringLiteral("RAW_MEASUREMENT_DAY")), QString());
  EXPECT_FALSE(VTDB_ExistData(db_, kUser, QStringLiteral("18991230"), QStringLiteral("99991231")));
  QString first = QStringLiteral("x");
  QString last = QStringLiteral("x");
  ASSERT_TRUE(VTDB_GetDayMeasurementRange(db_, kUser, first, last, false));
  EXPECT_TRUE(first.isEmpty() && last.isEmpty());
  QString receive;
  QString seq;
  ASSERT_TRUE(VTDB_GetDayMeasurementReceiveId(db_, kUser, QStringLiteral("20240101"), receive, seq, true));
  EXPECT_TRUE(receive.isEmpty());
}

TEST_F(DayStore, NewestRowOfADayAcrossReceptionsAndSequenceNumbers) {
  // Reception 1 holds the 5th and 6th; reception 2 the 6th again, and within reception 2
  // sequence 9 and 10 both hold the 7th.
  FlashData d5 = pageOf(QDate(2024, 5, 5), 1000);
  FlashData d6a = pageOf(QDate(2024, 5, 6), 2000);
  FlashData d6b = pageOf(QDate(2024, 5, 6), 3000);
  FlashData d7a = pageOf(QDate(2024, 5, 7), 49);
  FlashData d7b = pageOf(QDate(2024, 5, 7), 50);
  storeDay(QStringLiteral("13020"), RecorderKind::BrioNormal, d5, QStringLiteral("R000000001"), 1);
  storeDay(QStringLiteral("13020"), RecorderKind::BrioNormal, d6a, QStringLiteral("R000000001"), 2);
  storeDay(QStringLiteral("13020"), RecorderKind::BrioNormal, d6b, QStringLiteral("R000000002"), 1);
  storeDay(QStringLiteral("13020"), RecorderKind::BrioNormal, d7b, QStringLiteral("R000000002"), 10);
  storeDay(QStringLiteral("13020"), RecorderKind::BrioNormal, d7a, QStringLiteral("R000000002"), 9);

  std::vector<ChartDayRecord> rows;
  ASSERT_EQ(VTDB_GetChartData(db_, kUser, QStringLiteral("20240501"), QStringLiteral("20240531"),
                              QStringLiteral("50"), rows),
            5);
  auto key = [](const ChartDayRecord& r) {
    return r.MEASUREMENT_DAY + QLatin1Char('/') + r.RECEIVE_ID + QLatin1Char('/') + r.SEQ_NUM +
           (r.NewestOfDay ? QStringLiteral("*") : QString());
  };
  EXPECT_EQ(key(rows[0]), QStringLiteral("20240505/R000000001/1*"));
  EXPECT_EQ(key(rows[1]), QStringLiteral("20240506/R000000002/1*"));
  EXPECT_EQ(key(rows[2]), QStringLiteral("20240506/R000000001/2"));
  EXPECT_EQ(key(rows[3]), QStringLiteral("20240507/R000000002/10*")) << "10 after 9 as a number";
  EXPECT_EQ(key(rows[4]), QStringLiteral("20240507/R000000002/9"));
  EXPECT_EQ(rows[3].ExcludeFlag, QStringLiteral("0"));
  EXPECT_EQ(rows[4].ExcludeFlag, QStringLiteral("1"));
  EXPECT_EQ(rows[0].StepTargetSelected + rows[0].CalTargetSelected + rows[0].TimeTargetSelected,
            QStringLiteral("100"));
  EXPECT_EQ(rows[0].EVENT[0], QStringLiteral("0830"));
  EXPECT_EQ(rows[0].EVENT[1], QString());
  EXPECT_EQ(rows[0].HeightShown, QStringLiteral("158"));

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

  QString receive;
  QString seq;
  ASSERT_TRUE(VTDB_GetDayMeasurementReceiveId(db_, kUser, QStringLiteral("20240531"), receive, seq, true));
  EXPECT_EQ(receive + QLatin1Char('/') + seq, QStringLiteral("R000000002/10"));
  ASSERT_TRUE(VTDB_GetDayMeasurementReceiveId(db_, kUser, QStringLiteral("20240506"), receive, seq, false));
  EXPECT_EQ(receive + QLatin1Char('/') + seq, QStringLiteral("R000000001/2"));

  QString first;
  QString last;
  ASSERT_TRUE(VTDB_GetDayMeasurementRange(db_, kUser, first, last, true));
  EXPECT_EQ(first + QLatin1Char('-') + last, QStringLiteral("20240506-20240507"));
  // Page 1 was received twice, with another day each time: the newest reception tells what
  // the ring held there last.
  EXPECT_EQ(VTDB_GetMeasurementDayFromPage(db_, QStringLiteral("1"), kUser), QStringLiteral("20240506"));
}

TEST_F(DayStore, ModerateIsBuiltFromTheLevelRange) {
  FlashData page = pageOf(QDate(2024, 5, 6), 8000);
  storeDay(QStringLiteral("13020"), RecorderKind::BrioNormal, page);
  ChartDayRecord day;
  EXPECT_EQ(VTDB_GetModerate(db_, QStringLiteral("R000000001"), QStringLiteral("1"), QStringLiteral("4"),
                             QStringLiteral("7"), day),
            1);
  EXPECT_EQ(day.MODERATE, QStringLiteral("2600"));  // 500+600+700+800
  EXPECT_EQ(day.VIGOROUS, QStringLiteral("1900"));  // 900+1000
  EXPECT_EQ(VTDB_GetModerate(db_, QStringLiteral("R000000001"), QStringLiteral("2"), QStringLiteral("4"),
                             QStringLiteral("7"), day),
            0);
  EXPECT_EQ(messages(), 0u);
  // A range ending at 9 leaves no vigorous term and the statement fails.
  EXPECT_EQ(VTDB_GetModerate(db_, QStringLiteral("R000000001"), QStringLiteral("1"), QStringLiteral("4"),
                             QStringLiteral("9"), day),
            -1);
  EXPECT_EQ(messages(), 1u);
  EXPECT_TRUE(traced(QStringLiteral("2"), QStringLiteral("VTDB_GetModerate")));
}

TEST_F(DayStore, NullExerciseIsComputedAndOldModelTextIsRepaired) {
  FlashData page = pageOf(QDate(2024, 5, 6), 8000);
  storeDay(QStringLiteral("13020"), RecorderKind::BrioNormal, page);
  db_.exec(QStringLiteral("UPDATE [DAY_MEASUREMENT] SET EXERCISE = NULL, PEDOMERA = '0'"));
  DayRecord r;
  ASSERT_TRUE(VTDB_GetDayMeasurement(db_, QStringLiteral("R000000001"), QStringLiteral("1"), r));
  EXPECT_EQ(r.EXERCISE, QString(10, QLatin1Char(' ')));
  EXPECT_EQ(r.PEDOMERA, QStringLiteral("2"));
  std::vector<ChartDayRecord> rows;
  ASSERT_EQ(VTDB_GetChartData(db_, kUser, QStringLiteral("20240506"), QStringLiteral("20240506"),
                              QStringLiteral("-1"), rows),
            1);
  EXPECT_EQ(rows[0].EXERCISE, QStringLiteral("30.6"));
  EXPECT_EQ(rows[0].PEDOMERA, QStringLiteral("2"));

  EXPECT_EQ(FixPedomeraKind(QStringLiteral("0"), QStringLiteral("70")), QStringLiteral("2"));
  EXPECT_EQ(FixPedomeraKind(QStringLiteral("0"), QStringLiteral("0")), QStringLiteral("0"));
  EXPECT_EQ(FixPedomeraKind(QStringLiteral("1"), QStringLiteral("70")), QStringLiteral("1"));
}

TEST_F(DayStore, CsvRowsTakeTheirDefaults) {
  UserInfo user;
  user.USER_ID = kUser;
  user.TARGET_CAL = QStringLiteral("300");
  user.TARGET_ACTMIN = QStringLiteral("35");
  user.TARGET_STEP = QStringLiteral("7000");
  CsvRow row;
  row.MEASUREMENT_DAY = row.RAW_MEASUREMENT_DAY = QStringLiteral("20240506");
  row.HEIGHT_FEET = QStringLiteral("5");
  row.HEIGHT_INCH = QStringLiteral("2");
  row.WEIGHT_PAUND = QStringLiteral("116");
  row.STEP_COUNT = QStringLiteral("4000");
  row.PACE_CM = QStringLiteral("70");
  row.DISTANCE_KM = QStringLiteral("3.2");
  row.ACT_LEVEL_BLOCK = QStringLiteral("0,1,2");
  ASSERT_TRUE(VTDB_SetDayMeasurementForCSV(db_, QStringLiteral("R000000005"), 1, user, row));
  ASSERT_TRUE(VTDB_SetTimeMeasurementBlockForCSV(db_, QStringLiteral("R000000005"), 1, user, row));
  const QString r = QStringLiteral("R000000005");
  EXPECT_EQ(column(QStringLiteral("START_PAGE"), r) + column(QStringLiteral("PAGE"), r), QStringLiteral("CSVCSV"));
  EXPECT_EQ(column(QStringLiteral("HEIGHT_CM"), r), QString::number(FeetInchToCm(5, 2)));
  EXPECT_EQ(column(QStringLiteral("TARGET_CAL"), r), QStringLiteral("300"));
  EXPECT_EQ(column(QStringLiteral("TARGET_TIME"), r), QStringLiteral("35"));
  EXPECT_EQ(column(QStringLiteral("EVENT_10"), r), QStringLiteral("9999"));
  EXPECT_EQ(column(QStringLiteral("SELECT_UNIT"), r), QStringLiteral("1"));
  EXPECT_EQ(column(QStringLiteral("LOWER_BOUND"), r) + column(QStringLiteral("UPPER_BOUND"), r), QStringLiteral("49"));
  EXPECT_EQ(column(QStringLiteral("PACE_FEET"), r), QStringLiteral("2"));
  EXPECT_EQ(column(QStringLiteral("EXERCISE"), r), QStringLiteral("0"));
  EXPECT_EQ(column(QStringLiteral("REMARK"), r), QString());
  TimeBlockRecord block;
  ASSERT_TRUE(VTDB_GetTimeMeasurementDayBlock(db_, r, QStringLiteral("1"), block));
  EXPECT_EQ(block.ACT_LEVEL_BLOCK.trimmed(), QStringLiteral("0,1,2"));
  EXPECT_EQ(block.MEASUREMENT_MODE, QStringLiteral("0"));
}

TEST_F(DayStore, AFailedReceptionIsRemovedAsAWhole) {
  const QString raw = inst_.path(QStringLiteral("raw/R000000003.bin"));
  QFile f(raw);
  ASSERT_TRUE(f.open(QIODevice::WriteOnly));
  f.write("x");
  f.close();
  const QString id = QStringLiteral("R000000003");
  ASSERT_TRUE(VTDB_SetReceiveHistory(
      db_, ReceiveHistoryRow(id, QStringLiteral("20240506120000"), raw, manageFor(QStringLiteral("13020")))));
  FlashData a = pageOf(QDate(2024, 5, 5), 100);
  FlashData b = pageOf(QDate(2024, 5, 6), 100);
  storeDay(QStringLiteral("13020"), RecorderKind::BrioNormal, a, id, 1);
  storeDay(QStringLiteral("13020"), RecorderKind::BrioNormal, b, id, 2);
  FlashData other = pageOf(QDate(2024, 5, 6), 100);
  storeDay(QStringLiteral("13020"), RecorderKind::BrioNormal, other, QStringLiteral("R000000004"), 1);

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
  UserInfo u;
  u.GROUP_ID = kDefaultGroupId;
  u.FIRST_NAME = QStringLiteral("森 花子");
  u.TARGET_STEP = QStringLiteral("1234");
  ASSERT_EQ(SetUser(db_, u), 0);
  FlashManage m = manageFor(QStringLiteral("13010"));
  m.MemorySetting = 1;
  m.MemoryDays = 5;
  m.RecordStartPage = 3;
  m.RecordingPage = 12;
  m.RecordEndPage = 7;
  FlashData page = pageOf(QDate(2024, 5, 6), 100);
  page.UnitFlag = 1;
  EXPECT_EQ(UpdateUserData(db_, u.USER_ID,
                           UserUpdateFromReceive(QStringLiteral("R000000008"), m, page, true,
                                                 RecorderKind::BrioNormal, RecorderLang::Japanese)),
            0);
  UserRecord r;
  ASSERT_TRUE(VTDB_GetUserInfoFromUserId(db_, u.USER_ID, r));
  EXPECT_EQ(r.LAST_RECEIVE_ID, QStringLiteral("R000000008"));
  EXPECT_EQ(r.LAST_PAGE.trimmed(), QStringLiteral("7")) << "a locked memory past its days ends at the end page";
  EXPECT_EQ(r.WEIGHT_KG.trimmed(), QStringLiteral("52.5"));
  EXPECT_EQ(r.HEIGHT_FEET.trimmed(), QStringLiteral("5"));
  EXPECT_EQ(r.WEIGHT_PAUND.trimmed(), QStringLiteral("116"));
  EXPECT_EQ(r.TARGET_STEP.trimmed(), QStringLiteral("1234")) << "targets kept";
  EXPECT_EQ(UpdateUserData(db_, u.USER_ID,
                           UserUpdateFromReceive(QStringLiteral("R000000008"), m, page, false,
                                                 RecorderKind::BrioNormal, RecorderLang::Japanese)),
            0);
  ASSERT_TRUE(VTDB_GetUserInfoFromUserId(db_, u.USER_ID, r));
  EXPECT_EQ(r.TARGET_STEP.trimmed(), QStringLiteral("9000"));
  EXPECT_EQ(r.TARGET_ACTMIN.trimmed(), QStringLiteral("45"));
  EXPECT_EQ(UpdateUserData(db_, QStringLiteral("U000000077"),
                           UserUpdateFromReceive(QStringLiteral("R1"), m, page, false, RecorderKind::BrioNormal,
                                                 RecorderLang::Japanese)),
            0) << "no row, no failure";
}

}  // namespace
