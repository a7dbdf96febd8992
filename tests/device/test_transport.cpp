// The transport against the scripted fake reader: call order, waits, codes, log lines,
// and the raw file.
#include <gtest/gtest.h>

#include <QFile>

#include "device/device.h"
#include "device/fake_reader.h"
#include "testsupport/test_installation.h"

namespace {

DeviceState Opened(qint32 handle = 7, RecorderKind kind = RecorderKind::BrioNormal) {
  return {.hUSB = handle, .pmKind = kind, .pmLang = RecorderLang::Japanese};
}

// Every test has an installation for the log, a clock that only counts and a buffer.
class Transport : public ::testing::Test {
 protected:
  TestInstallation inst;
  NoWaitClock clock;
  std::array<quint8, 992> buffer{};
};

// Open closes every handle first and waits, found or not; close passes on whatever
// handle there is (0 after a failed open) and keeps it.
TEST_F(Transport, OpenClosesAllWaitsAndCloseKeepsTheHandle) {
  FakeReader reader;
  reader.openResult = 42;
  DeviceState s;
  EXPECT_EQ(UsbOpen(reader, clock, s), 42);
  EXPECT_EQ(s.hUSB, 42);
  EXPECT_EQ(std::tuple(reader.callNames(), clock.waits()),
            std::tuple(QStringList({"Tavo_CloseAll", "Tavo_Open"}), QList<int>({100})));
  reader.openResult = 0;
  EXPECT_EQ(UsbOpen(reader, clock, s), 0);
  EXPECT_EQ(clock.waits(), QList<int>({100, 100}));

  reader.calls.clear();
  reader.closeResult = 0;
  EXPECT_FALSE(UsbClose(reader, s));
  EXPECT_EQ(std::tuple(reader.callNames(), reader.calls[0].handle), std::tuple(QStringList({"Tavo_Close"}), 0));
  s.hUSB = 5;
  reader.closeResult = 1;
  EXPECT_TRUE(UsbClose(reader, s));
  EXPECT_EQ(s.hUSB, 5);
}

// Start, read, poll every 100 ms while the reader runs, finish, then the settling wait.
TEST_F(Transport, SuccessfulReadIsStartReadPollFinishWithTheSettlingWait) {
  FakeReader reader(QByteArray(248 * 20, char(0x5A)));
  reader.runningPolls = 2;
  EXPECT_EQ(RecvManage(reader, clock, Opened(), buffer.data()), 0);
  EXPECT_EQ(reader.callNames(), QStringList({"Tavo_Start", "Tavo_BRead", "Tavo_GetStatus", "Tavo_GetStatus",
                                             "Tavo_GetStatus", "Tavo_Finish"}));
  EXPECT_EQ(std::tuple(reader.calls[1].firstBlock, reader.calls[1].byteCount, reader.calls[1].handle),
            std::tuple(0, 992, 7));
  EXPECT_EQ(std::tuple(buffer[991], clock.waits()), std::tuple(0x5A, QList<int>({100, 100, 500})));
}

TEST_F(Transport, NeverFinishingReadKeepsWaiting) {
  FakeReader reader;
  reader.neverFinish = true;
  clock.setWaitLimitMs(60 * 60 * 1000);  // an hour of polling, then the test stops it
  EXPECT_THROW(RecvData(reader, clock, Opened(), 1, buffer.data()), DeviceClockLimitReached);
  EXPECT_EQ(std::tuple(reader.count("Tavo_GetStatus"), reader.count("Tavo_Finish") + reader.count("Tavo_Stop")),
            std::tuple(36001, 0));
}

TEST_F(Transport, FaultStatusIsReturnedAfterTheWaitAndTheTransferStopped) {
  FakeReader reader;
  reader.faultAt[0] = 77;
  reader.runningPolls = 1;
  EXPECT_EQ(RecvManage(reader, clock, Opened(), buffer.data()), 77);
  EXPECT_EQ(reader.callNames(), QStringList({"Tavo_Start", "Tavo_BRead", "Tavo_GetStatus",
                                             "Tavo_GetStatus", "Tavo_Stop"}));
  EXPECT_EQ(clock.waits(), QList<int>({100, 500}));
  EXPECT_TRUE(inst.logged("2", "RecvManage", "Tavo_GetStatus=77"));
}

TEST_F(Transport, PageAddressesAndSizesFollowTheKind) {
  struct Case {
    RecorderKind kind;
    qint16 page;
    int block, bytes;
  };
  for (const Case& c : {Case{RecorderKind::AL, 1, 9, 496}, Case{RecorderKind::AL, 2, 11, 496},
                        Case{RecorderKind::BrioZr, 240, 487, 496}, Case{RecorderKind::BrioMets, 2, 13, 992}}) {
    FakeReader reader;
    ASSERT_EQ(RecvData(reader, clock, Opened(3, c.kind), c.page, buffer.data()), 0);
    EXPECT_EQ(std::tuple(reader.calls[1].firstBlock, reader.calls[1].byteCount), std::tuple(c.block, c.bytes))
        << c.page;
  }
}

// A transfer the reader refuses, one without a handle and one of an unknown kind end
// early with their code, make no further call and say why in the log.
TEST_F(Transport, RefusedTransfersEndEarlyAndAreLogged) {
  const struct {
    const char* what;
    qint32 handle;
    RecorderKind kind;
    bool refuseStart, refuseRead;
    qint32 code;
    QStringList calls;
    const char* logName;
    const char* logText;
  } cases[] = {
      {"start refused", 7, RecorderKind::BrioNormal, true, false, kDeviceNoTransfer, {"Tavo_Start"}, "RecvData",
       "Tavo_Start Error"},
      {"read refused", 7, RecorderKind::BrioNormal, false, true, kDeviceNoTransfer, {"Tavo_Start", "Tavo_BRead"},
       "RecvData", "Tavo_BRead Error"},
      {"no handle", 0, RecorderKind::BrioNormal, false, false, kDeviceNoTransfer, {}, "RecvData", "hUSB=0"},
      // The transfer is left open: the kind is looked at after the start.
      {"unknown kind", 3, RecorderKind::Unknown, false, false, kDeviceUnknownKind, {"Tavo_Start"},
       "FlashManage_SetPMKind", "PMSoftVersion ERROR,Not AL or BRIO"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    FakeReader reader;
    if (c.refuseStart) reader.refuseStartAt = {0};
    if (c.refuseRead) reader.refuseReadAt = {0};
    EXPECT_EQ(RecvData(reader, clock, Opened(c.handle, c.kind), 1, buffer.data()), c.code);
    EXPECT_EQ(reader.callNames(), c.calls);
    EXPECT_TRUE(clock.waits().isEmpty());
    EXPECT_TRUE(inst.logged("2", c.logName, c.logText));
  }
  // The management block goes the same way.
  FakeReader reader;
  EXPECT_EQ(RecvManage(reader, clock, Opened(0), buffer.data()), kDeviceNoTransfer);
  EXPECT_TRUE(inst.logged("2", "RecvManage", "hUSB=0"));
}

TEST_F(Transport, PageBelowOneDecodesAZeroedBuffer) {
  FakeReader reader;
  DeviceState s = Opened(3, RecorderKind::BrioNormal);
  s.data.StepCount = 999;
  EXPECT_EQ(PM_RecvData(reader, clock, s, 0, QString()), 0);
  EXPECT_EQ(PM_RecvData(reader, clock, s, -5, QString()), 0);
  EXPECT_TRUE(reader.calls.empty());
  EXPECT_EQ(std::tuple(s.data.StepCount, s.data.bcDate, s.data.CpuNo), std::tuple(0, ZeroDate(), QString(6, QChar(0))));
  for (const char* text : {"too less block [0]", "too less block [-5]"})
    EXPECT_TRUE(inst.logged("2", "RecvData", text)) << text;
}

TEST_F(Transport, ManagementReceiveSetsKindDecodesAndSavesTheRawBlock) {
  inst.setConfig("SYSTEM", "SAVE_RAW_DATA", "1");
  const RecorderImageOptions o{.kind = RecorderKind::BrioZr, .days = 3, .numbers = RecorderNumbers::FromConfig()};
  const QByteArray image = MakeRecorderImage(o);
  ASSERT_FALSE(image.isEmpty());
  FakeReader reader(image);
  DeviceState s;
  ASSERT_NE(UsbOpen(reader, clock, s), 0);
  const QString raw = inst.rawPath() + "/R000000001.bin";
  ASSERT_EQ(PM_RecvManage(reader, clock, s, raw), 0);
  EXPECT_EQ(std::tuple(s.pmKind, s.pmLang, s.manage.FixedData, s.manage.RecordingPage),
            std::tuple(RecorderKind::BrioZr, RecorderLang::Japanese, o.numbers.kt200, 3));

  // Pages append 992 bytes each; a 496-byte page is followed by zeros.
  ASSERT_EQ(PM_RecvData(reader, clock, s, 2, raw), 0);
  ASSERT_EQ(PM_RecvData(reader, clock, s, 3, QString()), 0);  // an empty path saves nothing
  EXPECT_EQ(ReadBytes(raw), image.left(992) + image.mid(248 * 11, 496) + QByteArray(496, 0));

  inst.setConfig("SYSTEM", "SAVE_RAW_DATA", "0");
  ASSERT_EQ(PM_RecvData(reader, clock, s, 1, raw), 0);
  EXPECT_EQ(QFile(raw).size(), 992 * 2);
}

TEST_F(Transport, ReceiveFailuresAreLoggedWithTheirCode) {
  FakeReader reader(QByteArray(kManageBlockBytes, char(0xFF)));
  DeviceState s = Opened(1, RecorderKind::Unknown);
  EXPECT_EQ(PM_RecvManage(reader, clock, s, QString()), kDeviceUnknownKind);
  EXPECT_TRUE(inst.logged("2", "PM_RecvManage", "FlashManage_SetPMKind ERROR(-40001)"));
  reader.faultAt[1] = 12;
  s.pmKind = RecorderKind::AL;
  EXPECT_EQ(PM_RecvData(reader, clock, s, 1, QString()), 12);
  EXPECT_TRUE(inst.logged("2", "PM_RecvData", "RecvData ERROR(12)"));
  reader.refuseStartAt = {2};
  EXPECT_EQ(PM_RecvManage(reader, clock, s, QString()), kDeviceNoTransfer);
  EXPECT_TRUE(inst.logged("2", "PM_RecvManage", "RecvManage ERROR(-30000)"));
}

TEST_F(Transport, DumpLevelsWriteRecordsAndRawBytes) {
  const RecorderImageOptions o{.days = 2, .numbers = RecorderNumbers::FromConfig()};
  FakeReader reader(MakeRecorderImage(o));
  DeviceState s;
  UsbOpen(reader, clock, s);
  inst.setConfig("PM_TEST", "PM_DUNP", "1");
  ASSERT_EQ(PM_RecvManage(reader, clock, s, QString()), 0);
  ASSERT_EQ(PM_RecvData(reader, clock, s, 1, QString()), 0);
  EXPECT_TRUE(inst.logged("0", "FLASHMANAGE", QString::fromUtf8("固定データ[") + o.numbers.brioJpn + "]"));
  EXPECT_TRUE(inst.logged("0", "FLASHDATA", "23:58:") && !inst.logged("0", "FLASHDATA", "991("))
      << "records only at level 1";
  inst.setConfig("PM_TEST", "PM_DUNP", "2");
  ASSERT_EQ(PM_RecvData(reader, clock, s, 1, QString()), 0);
  EXPECT_TRUE(inst.logged("0", "FLASHDATA", "991(0)"));  // the zero padding after 496 bytes
}

}  // namespace
