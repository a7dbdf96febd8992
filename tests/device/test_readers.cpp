// The emulated reader over image files, the vendor library loader and the factory.
#include <gtest/gtest.h>

#include <QFile>
#include <QTemporaryDir>

#include "device/device.h"
#include "testsupport/test_installation.h"

namespace {

QByteArray Blocks(int count) {
  QByteArray b(count * kTransferBlockBytes, 0);
  for (int i = 0; i < count; ++i) b[i * kTransferBlockBytes] = static_cast<char>(i);
  return b;
}

TEST(EmulatedReader, RecorderIsPresentWhileAnImageLiesInTheFolder) {
  TestInstallation inst;
  QTemporaryDir dir;
  EmulatedReader reader(dir.path());
  EXPECT_EQ(reader.Tavo_Open(), 0);
  WriteBytes(dir.filePath("notes.txt"), "x");
  EXPECT_EQ(reader.Tavo_Open(), 0);
  WriteBytes(dir.filePath("b.img"), Blocks(12));
  WriteBytes(dir.filePath("a.img"), Blocks(10));
  EXPECT_EQ(reader.currentImagePath(), dir.filePath("a.img"));
  const qint32 h = reader.Tavo_Open();
  EXPECT_NE(h, 0);

  quint8 buffer[496] = {};
  ASSERT_NE(reader.Tavo_Start(h), 0);
  ASSERT_NE(reader.Tavo_BRead(h, 0, -1, 9, buffer, 248), 0);
  qint32 a = 0, b = 0;
  EXPECT_EQ(reader.Tavo_GetStatus(h, &a, &b), kTavoStatusDone);
  EXPECT_EQ(buffer[0], 9);
  reader.Tavo_Finish(h);

  // Past the end of a.img (10 blocks): a fault status, not a crash.
  for (auto [block, bytes] : {std::pair{9, 496}, std::pair{-1, 248}}) {
    ASSERT_NE(reader.Tavo_Start(h), 0);
    ASSERT_NE(reader.Tavo_BRead(h, 0, -1, block, buffer, bytes), 0);
    EXPECT_EQ(reader.Tavo_GetStatus(h, &a, &b), kEmulatorFaultAddress) << block;
    reader.Tavo_Stop(h);
  }

  EXPECT_EQ(reader.Tavo_Close(h), 0);
  EXPECT_EQ(reader.Tavo_Start(h), 0);  // closed handle
}

TEST(EmulatedReader, TakingTheRecorderOffRefusesTheNextTransfer) {
  TestInstallation inst;
  QTemporaryDir dir;
  WriteBytes(dir.filePath("r.img"), Blocks(20));
  EmulatedReader reader(dir.path());
  NoWaitClock clock;
  DeviceState s{.pmKind = RecorderKind::AL};
  ASSERT_NE(UsbOpen(reader, clock, s), 0);
  std::array<quint8, 992> buffer{};
  EXPECT_EQ(RecvData(reader, clock, s, 1, buffer.data()), 0);
  QFile::remove(dir.filePath("r.img"));
  EXPECT_EQ(RecvData(reader, clock, s, 1, buffer.data()), kDeviceNoTransfer);
  EXPECT_EQ(UsbOpen(reader, clock, s), 0);
}

TEST(EmulatedReader, AnImageLargerThanAnyRecorderIsNotReadWhole) {
  TestInstallation inst;
  QTemporaryDir dir;
  const qint64 largest = LargestRecorderMemoryBytes();
  EXPECT_EQ(largest, 489 * kTransferBlockBytes);
  WriteBytes(dir.filePath("r.img"), QByteArray(largest, '\xff'));
  EmulatedReader reader(dir.path());
  EXPECT_NE(reader.Tavo_Open(), 0);
  reader.Tavo_CloseAll();
  WriteBytes(dir.filePath("r.img"), QByteArray(largest + 1, '\xff'));
  EXPECT_EQ(reader.Tavo_Open(), 0);
  // An endless device behind the name is read only up to the bound.
  QFile::remove(dir.filePath("r.img"));
  ASSERT_TRUE(QFile::link(QStringLiteral("/dev/zero"), dir.filePath("r.img")));
  EXPECT_EQ(reader.Tavo_Open(), 0);
}

// A missing library, or one without the reader's symbols (the C runtime's math library),
// behaves as no recorder and says so once.
TEST(LibraryReader, MissingOrForeignLibraryBehavesAsNoRecorder) {
  TestInstallation inst;
  LibraryReader reader(inst.path("nowhere/libtavo.so"));
  EXPECT_FALSE(reader.isLoaded());
  NoWaitClock clock;
  DeviceState s;
  EXPECT_EQ(UsbOpen(reader, clock, s), 0);
  EXPECT_EQ(UsbOpen(reader, clock, s), 0);
  EXPECT_EQ(inst.traceText().count("|2|LibraryReader        |"), 1);
  LibraryReader foreign(QStringLiteral("libm.so.6"));
  EXPECT_TRUE(!foreign.isLoaded() && foreign.Tavo_Open() == 0);
  EXPECT_TRUE(inst.traceText().contains("lacks Tavo_Open"));
}

TEST(ReaderFactory, FollowsTheReaderSection) {
  TestInstallation inst;
  std::unique_ptr<TavoReader> reader = CreateConfiguredReader();
  auto* emulated = dynamic_cast<EmulatedReader*>(reader.get());
  ASSERT_NE(emulated, nullptr);
  EXPECT_EQ(emulated->folder(), "../reader");
  WriteBytes(inst.readerPath() + "/x.img", Blocks(4));
  EXPECT_NE(reader->Tavo_Open(), 0);

  inst.setConfig("READER", "TYPE", "LIBRARY");
  inst.setConfig("READER", "LIBRARY_PATH", inst.path("lib/none.so"));
  reader = CreateConfiguredReader();
  EXPECT_NE(dynamic_cast<LibraryReader*>(reader.get()), nullptr);
  EXPECT_EQ(reader->Tavo_Open(), 0);
}

}  // namespace
