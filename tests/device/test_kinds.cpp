// Kind and language of a recorder, acceptance by the installation, the ring.
#include <gtest/gtest.h>

#include "device.h"
#include "device_test_util.h"
#include "test_installation.h"

namespace {

// Blocks are built from the test installation's configured recorder numbers.
QByteArray Block(const QString& fixed, int version, int logic = 0) {
  QByteArray b(kManageBlockBytes, 0);
  const QByteArray text = fixed.toLatin1();
  for (int i = 0; i < 5; ++i) b[i] = i < text.size() ? text[i] : ' ';
  b[5] = static_cast<char>(version);
  b[967] = static_cast<char>(logic);
  return b;
}

struct KindCase {
  QString fixed;
  int version;
  int logic;
  QString kind;
  QString lang;
};

TEST(Kinds, FixedTextVersionAndLogicDecideKindAndLanguage) {
  TestInstallation inst;
  ASSERT_TRUE(inst.isValid());
  const RecorderNumbers n = RecorderNumbers::FromConfig();
  const int v = n.validVersion;
  const KindCase cases[] = {
      {n.al, v - 1, 0, PMKIND_AL, PMLANG_JPN},
      {n.al, v, 0, PMKIND_AL, PMLANG_ENG},  // equal to the valid version: English
      {n.al, v + 50, 7, PMKIND_AL, PMLANG_ENG},  // byte 967 does not matter for family A
      {n.brioJpn, 1, 0, PMKIND_BRIO_NORMAL, PMLANG_JPN},
      {n.brioJpn, 1, 1, PMKIND_BRIO_METS, PMLANG_JPN},
      {n.brioEng, 1, 0, PMKIND_BRIO_NORMAL, PMLANG_ENG},
      {n.brioEng, 1, 1, PMKIND_BRIO_METS, PMLANG_ENG},
      {n.kt200, 1, 0, PMKIND_BRIO_ZR, PMLANG_JPN},  // the 200 key selects ZR
      {n.kt014, 1, 5, PMKIND_BRIO_KT, PMLANG_JPN},  // the 014 key selects KT
  };
  for (const KindCase& c : cases) {
    DeviceState state;
    const QByteArray b = Block(c.fixed, c.version, c.logic);
    EXPECT_EQ(FlashManage_SetPMKind(AsBytes(b), state), 0) << c.fixed.toStdString();
    EXPECT_EQ(state.pmKind, c.kind) << c.fixed.toStdString() << " " << c.version;
    EXPECT_EQ(state.pmLang, c.lang) << c.fixed.toStdString() << " " << c.version;
  }
}

TEST(Kinds, UnknownBlocksLeaveTheEarlierKindAndLog) {
  TestInstallation inst;
  ASSERT_TRUE(inst.isValid());
  DeviceState state;
  state.pmKind = PMKIND_BRIO_ZR;
  state.pmLang = PMLANG_JPN;
  const RecorderNumbers n = RecorderNumbers::FromConfig();
  EXPECT_EQ(FlashManage_SetPMKind(AsBytes(Block(n.brioJpn, 1, 2)), state), kDeviceUnknownKind);
  EXPECT_EQ(state.pmKind, PMKIND_BRIO_ZR);
  EXPECT_TRUE(Logged(inst, "2", "FlashManage_SetPMKind", "PMLogicSelectionFlagVersion ERROR"));
  EXPECT_EQ(FlashManage_SetPMKind(AsBytes(Block("99999", 1)), state), kDeviceUnknownKind);
  EXPECT_EQ(FlashManage_SetPMKind(AsBytes(QByteArray(kManageBlockBytes, char(0xFF))), state),
            kDeviceUnknownKind);
  EXPECT_EQ(state.pmKind, PMKIND_BRIO_ZR);
  EXPECT_EQ(state.pmLang, PMLANG_JPN);
  EXPECT_TRUE(Logged(inst, "2", "FlashManage_SetPMKind", "PMSoftVersion ERROR,Not AL or BRIO"));
}

TEST(Kinds, JapaneseEditionAcceptsOnlyJapaneseRecorders) {
  TestInstallation inst(QStringLiteral("ja"));
  ASSERT_TRUE(inst.isValid());
  const RecorderNumbers n = RecorderNumbers::FromConfig();
  FlashManage m;
  m.VersionNo = static_cast<quint8>(n.validVersion - 1);
  EXPECT_FALSE(IsRecorderMismatch(PMKIND_AL, m));
  m.VersionNo = static_cast<quint8>(n.validVersion);
  EXPECT_TRUE(IsRecorderMismatch(PMKIND_AL, m));
  m.FixedData = n.brioJpn;
  EXPECT_FALSE(IsRecorderMismatch(PMKIND_BRIO_NORMAL, m));
  EXPECT_FALSE(IsRecorderMismatch(PMKIND_BRIO_METS, m));
  m.FixedData = n.brioEng;
  EXPECT_TRUE(IsRecorderMismatch(PMKIND_BRIO_NORMAL, m));
  EXPECT_FALSE(IsRecorderMismatch(PMKIND_BRIO_ZR, m));
  EXPECT_FALSE(IsRecorderMismatch(PMKIND_BRIO_KT, m));
}

TEST(Kinds, EnglishEditionAcceptsOnlyEnglishRecorders) {
  TestInstallation inst(QStringLiteral("en"));
  ASSERT_TRUE(inst.isValid());
  const RecorderNumbers n = RecorderNumbers::FromConfig();
  FlashManage m;
  m.VersionNo = static_cast<quint8>(n.validVersion - 1);
  EXPECT_TRUE(IsRecorderMismatch(PMKIND_AL, m));
  m.VersionNo = static_cast<quint8>(n.validVersion);
  EXPECT_FALSE(IsRecorderMismatch(PMKIND_AL, m));
  m.FixedData = n.brioEng + " ";  // compared trimmed
  EXPECT_FALSE(IsRecorderMismatch(PMKIND_BRIO_METS, m));
  m.FixedData = n.brioJpn;
  EXPECT_TRUE(IsRecorderMismatch(PMKIND_BRIO_METS, m));
  EXPECT_TRUE(IsRecorderMismatch(PMKIND_BRIO_ZR, m));
  EXPECT_TRUE(IsRecorderMismatch(PMKIND_BRIO_KT, m));
}

TEST(Kinds, RingSizesAndWrap) {
  EXPECT_EQ(RingSize(PMKIND_BRIO_METS, PMLANG_JPN), 120);
  EXPECT_EQ(RingSize(PMKIND_BRIO_NORMAL, PMLANG_JPN), 240);
  EXPECT_EQ(RingSize(PMKIND_AL, PMLANG_JPN), 240);
  EXPECT_EQ(RingSize(PMKIND_BRIO_NORMAL, PMLANG_ENG), 200);
  EXPECT_EQ(RingSize(PMKIND_BRIO_METS, PMLANG_ENG), 100);
  EXPECT_EQ(RingSize(PMKIND_AL, PMLANG_ENG), 240);
  EXPECT_EQ(WrapPageCount(0, PMKIND_BRIO_NORMAL, PMLANG_JPN), 0);
  EXPECT_EQ(WrapPageCount(-1, PMKIND_BRIO_METS, PMLANG_ENG), 99);
  EXPECT_EQ(WrapPageCount(-189, PMKIND_AL, PMLANG_JPN), 51);
  EXPECT_EQ(WrapPageCount(17, PMKIND_AL, PMLANG_JPN), 17);
  DeviceState s;
  s.pmKind = PMKIND_BRIO_NORMAL;
  s.pmLang = PMLANG_ENG;
  EXPECT_EQ(WrapPageCount(-10, s), 190);
}

TEST(Kinds, PageAddresses) {
  EXPECT_EQ(FirstBlockOfPage(PMKIND_AL, 1), 9);
  EXPECT_EQ(FirstBlockOfPage(PMKIND_AL, 2), 11);
  EXPECT_EQ(FirstBlockOfPage(PMKIND_BRIO_KT, 240), 9 + 239 * 2);
  EXPECT_EQ(FirstBlockOfPage(PMKIND_BRIO_METS, 2), 13);
  EXPECT_EQ(PageBytesOfKind(PMKIND_BRIO_METS), 992);
  EXPECT_EQ(PageBytesOfKind(PMKIND_BRIO_ZR), 496);
  EXPECT_EQ(PageBytesOfKind(QStringLiteral("x")), 0);
}

}  // namespace
