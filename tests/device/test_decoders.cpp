// Hand-built management blocks and pages of every kind, decoded field by field.
#include <gtest/gtest.h>

#include <QByteArray>
#include <functional>

#include "device/device.h"

namespace {

QByteArray Filled(int size, quint8 value) { return QByteArray(size, static_cast<char>(value)); }
void Set(QByteArray& b, int offset, std::initializer_list<int> bytes) {
  for (int v : bytes) b[offset++] = static_cast<char>(v);
}

// A management block with a value in every field of the table.
QByteArray ManageBlock() {
  QByteArray b = Filled(kManageBlockBytes, 0);
  Set(b, 0, {'2', '0', '1', '0', '1'});
  Set(b, 5, {7, 3});
  Set(b, 7, {'A', 'B', '1', '2', '3', '4'});
  Set(b, 13, {0x01, 0x02, 0x03, 0x04});
  Set(b, 17, {0x20, 0x24, 0x06, 0x30});
  Set(b, 21, {0x18, 0x30});
  Set(b, 23, {1, 44, 168, 61});
  Set(b, 27, {0x2C, 0x01});  // 300
  Set(b, 29, {0x02, 0x00});
  Set(b, 31, {1, 2, 1, 30, 3, 4, 10, 5});
  Set(b, 39, {0x05, 0x00, 0x0C, 0x00, 0x0D, 0x00});  // 5, 12, 13
  Set(b, 45, {0x24, 0x07, 0x01});
  Set(b, 48, {0x09, 0x05});
  Set(b, 50, {1});
  Set(b, 51, {0x24, 0x06, 0x24, 0x07, 0x00});
  Set(b, 56, {1, 0x87, 0x00, 6});  // unit, 135 lb, fraction 6
  for (int i = 0; i < kRecordCheckBytes; ++i) b[60 + i] = static_cast<char>(i % 256);
  Set(b, 960, {4, 9, 30, 72, 0x10, 0x27, 2, 0, 1, 1, 0x07, 0x30});
  return b;
}

TEST(ManageDecoder, FamilyAReadsTheCommonFieldsAndCarriesTheFixedLiteral) {
  const QByteArray b = ManageBlock();
  FlashManage m;
  ASSERT_EQ(FlashManage_ConvertByteArray2Struct(AsBytes(b), m), 0);
  EXPECT_EQ(std::tuple(m.FixedData, m.VersionNo, m.ErrorCode, m.CpuNo, m.RecorderId),
            std::tuple(QString("12820"), 7, 3, QString("AB1234"), 0x04030201));
  EXPECT_EQ(std::tuple(m.bcDate, m.bcTime, m.bcNowDate, m.bcNowTime),
            std::tuple(QDate(2024, 6, 30), QTime(18, 30), QDate(2024, 7, 1), QTime(9, 5)));
  EXPECT_EQ(m.bcMeasureStart, QDateTime(QDate(2024, 6, 24), QTime(7, 0), Qt::UTC));
  EXPECT_EQ(std::tuple(m.Gender, m.Age, m.HeightCm, m.WeightKg, m.TargetActivity, m.GroupNo, m.KeyLock),
            std::tuple(1, 44, 168, 61, 300, 2, 1));
  EXPECT_EQ(std::tuple(m.FixedDisplayItem, m.MemorySetting, m.MemoryDays, m.StandbySetting,
                       m.IntentionalIntensity, m.DurationSetting, m.IntensityThreshold),
            std::tuple(2, 1, 30, 3, 4, 10, 5));
  EXPECT_EQ(std::tuple(m.RecordStartPage, m.RecordEndPage, m.RecordingPage, m.BatteryLowFlag, m.UnitFlag,
                       m.WeightPound, m.RecordCheck[0], m.RecordCheck[899]),
            std::tuple(5, 12, 13, 1, 1, 135, 0, 899 % 256));
}

TEST(ManageDecoder, BrioReadsItsFieldsAndZrKtReadTheDailyWeight) {
  const QByteArray b = ManageBlock();
  FlashManage m;
  ASSERT_EQ(FlashManage_ConvertByteArray2Struct_Brio(AsBytes(b), m, RecorderKind::BrioNormal), 0);
  EXPECT_EQ(m.FixedData, "20101");  // as read
  EXPECT_EQ(std::tuple(m.WeightFraction, m.RangeLower, m.RangeUpper, m.TargetTime, m.Stride, m.TargetSteps),
            std::tuple(6, 4, 9, 30, 72, 10000));
  EXPECT_EQ(std::tuple(m.DisplayItem, m.LogicSelect, m.TargetSelect, m.DailyWeightSelect, m.DailyWeightTime),
            std::tuple(2, 0, 1, 0, QTime(0, 0)));

  for (RecorderKind kind : {RecorderKind::BrioZr, RecorderKind::BrioKt}) {
    FlashManage z;
    ASSERT_EQ(FlashManage_ConvertByteArray2Struct_Brio(AsBytes(b), z, kind), 0);
    EXPECT_EQ(std::tuple(z.DailyWeightSelect, z.DailyWeightTime), std::tuple(1, QTime(7, 30)));
  }
}

TEST(ManageDecoder, ErasedBlockDecodesWithoutError) {
  FlashManage m;
  const QByteArray erased = Filled(kManageBlockBytes, 0xFF);
  ASSERT_EQ(FlashManage_ConvertByteArray2Struct_Brio(AsBytes(erased), m, RecorderKind::BrioKt), 0);
  EXPECT_EQ(std::tuple(m.FixedData, m.RecorderId, m.RecordingPage), std::tuple(QString("NoData"), -1, 65535));
  EXPECT_EQ(std::tuple(m.bcDate, m.bcMeasureStart, m.bcNowTime, m.DailyWeightTime),
            std::tuple(ZeroDate(), ZeroDateTime(), QTime(0, 0, 59), QTime(0, 0, 59)));
}

TEST(ManageDecoder, ShortBlockIsARunTimeError) {
  const QByteArray b = Filled(500, 0);
  FlashManage m;
  m.Age = 33;
  EXPECT_EQ(FlashManage_ConvertByteArray2Struct(AsBytes(b), m), kErrSubscriptOutOfRange);
  EXPECT_EQ(FlashManage_ConvertByteArray2Struct_Brio(AsBytes(b), m, RecorderKind::BrioNormal),
            kErrSubscriptOutOfRange);
  EXPECT_EQ(m.Age, 33);  // left as it was
}

// Bytes 0..83 of a page, the same on every kind.
QByteArray PageHead(int size) {
  QByteArray b = Filled(size, 0);
  Set(b, 0, {2, 0xFE, 0xFF, 0xFF, 0xFF});  // version 2, id -2
  Set(b, 5, {'9', '9', '0', '0', '0', '1'});
  Set(b, 11, {1, 0, 1, 0, 0xA0, 0x05});  // flags, record time 1440
  Set(b, 17, {0x20, 0x05, 0x01, 0x02});
  Set(b, 21, {3, 0, 35, 175, 70});
  Set(b, 26, {0xC8, 0x00, 0x01, 0x00, 0xD0, 0x07, 0x2C, 0x01});  // 200, 1, 2000, 300
  Set(b, 34, {0x01, 0x23, 0x45});
  for (int i = 0; i < 11; ++i) Set(b, 37 + 2 * i, {i * 10, 1});
  Set(b, 59, {4, 10, 3, 2, 0});
  Set(b, 64, {0x07, 0x15, 0x12, 0x00});
  for (int i = 2; i < 10; ++i) Set(b, 64 + 2 * i, {0xFF, 0xFF});
  return b;
}

void ExpectHead(const FlashData& d) {
  EXPECT_EQ(std::tuple(d.VersionNo, d.RecorderId, d.CpuNo, d.SentFlag, d.BatteryChangedFlag, d.ClearKeyFlag),
            std::tuple(2, -2, QString("990001"), 1, 1, 0));
  EXPECT_EQ(std::tuple(d.RecordTime, d.bcDate, d.WeekDay, d.Age, d.HeightCm, d.WeightKg),
            std::tuple(1440, QDate(2005, 1, 2), 3, 35, 175, 70));
  EXPECT_EQ(std::tuple(d.TargetActivity, d.GroupCode, d.TotalEnergy, d.Activity, d.StepCount),
            std::tuple(200, 1, 2000, 300, 12345));
  for (int i = 0; i < 10; ++i) EXPECT_EQ(d.level(i), 256 + i * 10);
  EXPECT_EQ(d.LevelSmall, 256 + 100);
  EXPECT_EQ(std::tuple(d.Intentional, d.Duration, d.Frequency, d.LowBatteryDays, d.Event1, d.Event2),
            std::tuple(4, 10, 3, 2, QTime(7, 15), QTime(12, 0)));
  for (int i = 3; i <= 10; ++i) EXPECT_TRUE(IsNoEventTime(d.event(i)));
}

TEST(PageDecoder, FamilyAPage) {
  QByteArray b = PageHead(kPageBytesNibble);
  b[84] = static_cast<char>(0x12);   // slots 1, 2
  b[443] = static_cast<char>(0xAF);  // slots 719, 720
  Set(b, 475, {0x11, 0x11});         // not read for family A
  Set(b, 493, {1, 0x9A, 0x01});      // unit 1, 410 lb
  FlashData d;
  ASSERT_EQ(FlashData_ConvertByteArray2Struct(AsBytes(b), d), 0);
  ExpectHead(d);
  EXPECT_EQ(std::tuple(d.LevelProfileAL[0], d.LevelProfileAL[1], d.LevelProfileAL[718], d.LevelProfileAL[719]),
            std::tuple(1, 2, 10, 15));
  EXPECT_EQ(std::tuple(d.UnitFlag, d.WeightPound, d.Exercise, d.LevelProfileBrio[0]), std::tuple(1, 410, 0, 0));
}

QByteArray BrioPage() {
  QByteArray b = PageHead(kPageBytesNibble);
  b[84] = static_cast<char>(0x34);
  Set(b, 475, {0x2A, 0x00, 1, 0x06, 0x45});      // exercise 42, daily weight 1 at 06:45
  Set(b, 480, {5, 1, 3, 8, 40, 0x10, 0x01});      // fraction .. range minutes 272
  Set(b, 487, {0x01, 0x23, 0, 70, 0x40, 0x1F});   // distance 123, logic 0, stride 70, 8000
  Set(b, 493, {0, 0x90, 0x00});
  return b;
}

TEST(PageDecoder, BrioNormalReadsItsTargetsRangeAndStride) {
  const QByteArray b = BrioPage();
  FlashData d;
  ASSERT_EQ(FlashData_ConvertByteArray2Struct_Brio(AsBytes(b), d, RecorderKind::BrioNormal), 0);
  ExpectHead(d);
  EXPECT_EQ(std::tuple(d.LevelProfileBrio[0], d.LevelProfileBrio[1], d.WeightFraction, d.TargetSelect),
            std::tuple(3, 4, 5, 1));
  EXPECT_EQ(std::tuple(d.RangeLower, d.RangeUpper, d.TargetTime, d.RangeMinutes), std::tuple(3, 8, 40, 272));
  EXPECT_EQ(std::tuple(d.Distance, d.LogicSelect, d.Stride, d.TargetSteps, d.WeightPound),
            std::tuple(123, 0, 70, 8000, 144));
}

TEST(PageDecoder, ZrAndKtReadExerciseAndDailyWeight) {
  const QByteArray b = BrioPage();
  for (RecorderKind kind : {RecorderKind::BrioZr, RecorderKind::BrioKt}) {
    FlashData d;
    ASSERT_EQ(FlashData_Decode(AsBytes(b), d, kind), 0);
    EXPECT_EQ(std::tuple(d.Exercise, d.DailyWeightSelect, d.DailyWeightTime, d.Distance),
              std::tuple(42, 1, QTime(6, 45), 123));
  }
}

TEST(PageDecoder, MetsProfileLiesInTheLastThreeTransferBlocks) {
  QByteArray b = PageHead(kPageBytesMets);
  Set(b, 84, {1, 2, 7, 20, 0x05, 0x01, 0x09, 0x99, 1, 68, 0x10, 0x27, 1, 0x30, 0x01, 7});
  // Slot values: slot i (0-based) of part p at 248 * (p + 1) + i; gaps of 8 bytes hold 0xEE.
  for (int part = 0; part < 3; ++part) {
    for (int i = 0; i < 240; ++i) b[248 * (part + 1) + i] = static_cast<char>((part * 240 + i) % 91);
    for (int g = 0; g < 8; ++g) b[248 * (part + 1) + 240 + g] = static_cast<char>(0xEE);
  }
  FlashData d;
  ASSERT_EQ(FlashData_ConvertByteArray2Struct_METS(AsBytes(b), d), 0);
  ExpectHead(d);
  EXPECT_EQ(std::tuple(d.TargetSelect, d.RangeLower, d.RangeUpper, d.TargetTime, d.RangeMinutes, d.Distance),
            std::tuple(1, 2, 7, 20, 261, 999));
  EXPECT_EQ(std::tuple(d.LogicSelect, d.Stride, d.TargetSteps, d.UnitFlag, d.WeightPound, d.WeightFraction),
            std::tuple(1, 68, 10000, 1, 304, 7));
  for (int i = 0; i < kProfileSlots; ++i) ASSERT_EQ(d.LevelProfileMets[static_cast<size_t>(i)], i % 91) << i;
  EXPECT_EQ(d.LevelProfileBrio[0], 0);
  EXPECT_EQ(FlashData_ConvertByteArray2Struct_METS(AsBytes(b.left(496)), d), kErrSubscriptOutOfRange);
}

TEST(PageDecoder, ErasedPageShowsAsNoDay) {
  for (RecorderKind kind : {RecorderKind::AL, RecorderKind::BrioNormal, RecorderKind::BrioMets, RecorderKind::BrioZr,
                            RecorderKind::BrioKt}) {
    const QByteArray b = Filled(kPageBufferBytes, 0xFF);
    FlashData d;
    ASSERT_EQ(FlashData_Decode(AsBytes(b), d, kind), 0) << KindText(kind).toStdString();
    EXPECT_EQ(std::tuple(d.bcDate, d.CpuNo), std::tuple(ZeroDate(), QString("NoData")));
    for (int i = 1; i <= 10; ++i) EXPECT_EQ(d.event(i), QTime(0, 0, 59));
    for (quint8 v : KindProfile(d, kind))
      ASSERT_EQ(ProfileSlotDumpText(v, kind == RecorderKind::BrioMets), QString());
  }
  FlashData d;
  EXPECT_EQ(FlashData_Decode(AsBytes(Filled(kPageBufferBytes, 0)), d, RecorderKind::Unknown),
            kDeviceUnknownKind);
}

TEST(Dumps, ManageLinesCarryTheLabelsAndTheRecordCheckGrid) {
  FlashManage m;
  ASSERT_EQ(FlashManage_ConvertByteArray2Struct_Brio(AsBytes(ManageBlock()), m, RecorderKind::BrioZr), 0);
  const QStringList lines = FlashManageDumpLines(m, RecorderKind::BrioZr);
  EXPECT_EQ(lines.first(), QString::fromUtf8("固定データ[20101]"));
  for (const char* line : {"日付[2024/06/30]", "時刻[18:30]", "性別[F]", "測定開始日時[2024/06/24 07:00]"})
    EXPECT_TRUE(lines.contains(QString::fromUtf8(line))) << line;
  const qsizetype grid = lines.indexOf(QString::fromUtf8("データ記録確認"));
  ASSERT_GE(grid, 0);
  EXPECT_EQ(lines[grid + 1], "0000:0 1 2 3 4-5 6 7 8 9");
  EXPECT_EQ(lines[grid + 90], "0890:2 3 4 5 6-7 8 9 0 1");  // bytes 122..131
  EXPECT_EQ(lines.last(), QString::fromUtf8("日毎体重設定表示時刻[07:30]"));
  EXPECT_EQ(FlashManageDumpLines(m, RecorderKind::BrioNormal).size(), lines.size() - 2);
}

TEST(Dumps, PageLinesListTheProfileSlotBySlot) {
  FlashData d;
  ASSERT_EQ(FlashData_Decode(AsBytes(BrioPage()), d, RecorderKind::BrioNormal), 0);
  const QStringList lines = FlashDataDumpLines(d, RecorderKind::BrioNormal);
  const qsizetype p = lines.indexOf(QString::fromUtf8("身体活動レベル日内変動"));
  ASSERT_GE(p, 0);
  EXPECT_EQ(QStringList({lines[p + 1], lines[p + 2], lines[p + 720]}),
            QStringList({"00:00:2", "00:02:3", "23:58:0"}));
  EXPECT_TRUE(lines.contains(QString::fromUtf8("歩数[12345]")));
  EXPECT_TRUE(lines.contains(QString::fromUtf8("イベント1[07:15]")));
  const QStringList raw = RawDumpLines(AsBytes(BrioPage()));
  EXPECT_EQ(std::tuple(raw.size(), raw[0]), std::tuple(496, QString("0(2)")));
}

// The offsets whose change alters the decoded record: every byte is flipped in turn
// on a base where each encoding is valid (0x12 decodes as 12, 1212-12-12, 12:12).
QList<int> ReadOffsets(int size, const std::function<QByteArray(const QByteArray&)>& decode) {
  const QByteArray base(size, char(0x12));
  const QByteArray reference = decode(base);
  QList<int> read;
  for (int i = 0; i < size; ++i) {
    QByteArray b = base;
    b[i] = char(0x13);
    if (decode(b) != reference) read << i;
  }
  return read;
}

QList<int> AllBut(int size, std::initializer_list<std::pair<int, int>> unread) {
  QList<int> read;
  for (int i = 0; i < size; ++i) {
    bool skip = false;
    for (const auto& [from, to] : unread) skip = skip || (i >= from && i <= to);
    if (!skip) read << i;
  }
  return read;
}

QByteArray PageJson(RecorderKind kind, const QByteArray& bytes) {
  RecorderContents c;
  c.kind = kind;
  FlashData d;
  EXPECT_EQ(FlashData_Decode(AsBytes(bytes), d, kind), 0);
  c.pages.emplace_back(1, d);
  return RecorderContentsJson(c);
}

QByteArray ManageJson(RecorderKind kind, const QByteArray& bytes) {
  RecorderContents c;
  c.kind = kind;
  const qint32 code = kind == RecorderKind::AL
                          ? FlashManage_ConvertByteArray2Struct(AsBytes(bytes), c.manage)
                          : FlashManage_ConvertByteArray2Struct_Brio(AsBytes(bytes), c.manage, kind);
  EXPECT_EQ(code, 0);
  return RecorderContentsJson(c);
}

}  // namespace

// Every byte of each layout is read exactly where the layout has a field, and the
// unread gaps stay unread.
TEST(Layout, EachKindReadsExactlyItsFields) {
  const auto page = [](RecorderKind kind) {
    return ReadOffsets(PageBytesOfKind(kind), [&kind](const QByteArray& b) { return PageJson(kind, b); });
  };
  EXPECT_EQ(page(RecorderKind::AL), AllBut(496, {{444, 492}}));
  EXPECT_EQ(page(RecorderKind::BrioNormal), AllBut(496, {{444, 479}}));
  EXPECT_EQ(page(RecorderKind::BrioZr), AllBut(496, {{444, 474}}));
  EXPECT_EQ(page(RecorderKind::BrioKt), AllBut(496, {{444, 474}}));
  EXPECT_EQ(page(RecorderKind::BrioMets), AllBut(992, {{100, 247}, {488, 495}, {736, 743}, {984, 991}}));

  const auto manage = [](RecorderKind kind) {
    return ReadOffsets(kManageBlockBytes, [&kind](const QByteArray& b) { return ManageJson(kind, b); });
  };
  // Family A: the fixed text is the literal, whatever bytes 0 to 4 hold.
  EXPECT_EQ(manage(RecorderKind::AL), AllBut(992, {{0, 4}, {59, 59}, {960, 991}}));
  EXPECT_EQ(manage(RecorderKind::BrioNormal), AllBut(992, {{969, 991}}));
  EXPECT_EQ(manage(RecorderKind::BrioMets), AllBut(992, {{969, 991}}));
  EXPECT_EQ(manage(RecorderKind::BrioZr), AllBut(992, {{972, 991}}));
  EXPECT_EQ(manage(RecorderKind::BrioKt), AllBut(992, {{972, 991}}));
}
