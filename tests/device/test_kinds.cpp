// Kind and language of a recorder, acceptance by the installation, the ring.
#include <gtest/gtest.h>

#include "device/device.h"
#include "testsupport/test_installation.h"

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
  RecorderKind kind;
  RecorderLang lang;
};

TEST(Kinds, FixedTextVersionAndLogicDecideKindAndLanguage) {
  TestInstallation inst;
  ASSERT_TRUE(inst.isValid());
  const RecorderNumbers n = RecorderNumbers::FromConfig();
  const int v = n.validVersion;
  const KindCase cases[] = {
      {n.al, v - 1, 0, RecorderKind::AL, RecorderLang::Japanese},
      {n.al, v, 0, RecorderKind::AL, RecorderLang::English},  // equal to the valid version: English
      {n.al, v + 50, 7, RecorderKind::AL, RecorderLang::English},  // byte 967 does not matter for family A
      {n.brioJpn, 1, 0, RecorderKind::BrioNormal, RecorderLang::Japanese},
      {n.brioJpn, 1, 1, RecorderKind::BrioMets, RecorderLang::Japanese},
      {n.brioEng, 1, 0, RecorderKind::BrioNormal, RecorderLang::English},
      {n.brioEng, 1, 1, RecorderKind::BrioMets, RecorderLang::English},
      {n.kt200, 1, 0, RecorderKind::BrioZr, RecorderLang::Japanese},  // the 200 key selects ZR
      {n.kt014, 1, 5, RecorderKind::BrioKt, RecorderLang::Japanese},  // the 014 key selects KT
  };
  for (const KindCase& c : cases) {
    DeviceState state;
    const QByteArray b = Block(c.fixed, c.version, c.logic);
    EXPECT_EQ(FlashManage_SetPMKind(AsBytes(b), state), 0) << c.fixed.toStdString();
    EXPECT_EQ(std::tuple(state.pmKind, state.pmLang), std::tuple(c.kind, c.lang))
        << c.fixed.toStdString() << " " << c.version;
  }
}

TEST(Kinds, UnknownBlocksLeaveTheEarlierKindAndLog) {
  TestInstallation inst;
  ASSERT_TRUE(inst.isValid());
  DeviceState state{.pmKind = RecorderKind::BrioZr, .pmLang = RecorderLang::Japanese};
  const RecorderNumbers n = RecorderNumbers::FromConfig();
  EXPECT_EQ(FlashManage_SetPMKind(AsBytes(Block(n.brioJpn, 1, 2)), state), kDeviceUnknownKind);
  EXPECT_TRUE(inst.logged("2", "FlashManage_SetPMKind", "PMLogicSelectionFlagVersion ERROR"));
  EXPECT_EQ(FlashManage_SetPMKind(AsBytes(Block("99999", 1)), state), kDeviceUnknownKind);
  EXPECT_EQ(FlashManage_SetPMKind(AsBytes(QByteArray(kManageBlockBytes, char(0xFF))), state),
            kDeviceUnknownKind);
  EXPECT_EQ(std::tuple(state.pmKind, state.pmLang), std::tuple(RecorderKind::BrioZr, RecorderLang::Japanese));
  EXPECT_TRUE(inst.logged("2", "FlashManage_SetPMKind", "PMSoftVersion ERROR,Not AL or BRIO"));
}

// An edition takes only recorders of its own language: family A tells by its version,
// the normal and METS recorders by their fixed text; ZR and KT are always Japanese.
TEST(Kinds, EachEditionAcceptsOnlyRecordersOfItsLanguage) {
  for (const bool englishEdition : {false, true}) {
    TestInstallation inst(QLatin1String(englishEdition ? "en" : "ja"));
    ASSERT_TRUE(inst.isValid());
    const RecorderNumbers n = RecorderNumbers::FromConfig();
    const struct {
      RecorderKind kind;
      int version;
      QString fixed;
      bool english;
    } cases[] = {
        {RecorderKind::AL, n.validVersion - 1, QString(), false},
        {RecorderKind::AL, n.validVersion, QString(), true},
        {RecorderKind::BrioNormal, 1, n.brioJpn, false},
        {RecorderKind::BrioMets, 1, n.brioJpn, false},
        {RecorderKind::BrioNormal, 1, n.brioEng, true},
        {RecorderKind::BrioMets, 1, n.brioEng + u' ', true},  // compared trimmed
        {RecorderKind::BrioZr, 1, n.brioEng, false},
        {RecorderKind::BrioKt, 1, n.brioEng, false},
    };
    for (const auto& c : cases) {
      FlashManage m;
      m.VersionNo = static_cast<quint8>(c.version);
      m.FixedData = c.fixed;
      EXPECT_EQ(IsRecorderMismatch(c.kind, m), c.english != englishEdition)
          << KindText(c.kind).toStdString() << " " << c.fixed.toStdString() << " on en=" << englishEdition;
    }
  }
}

// Page counts wrap round the ring of the kind and language in force.
TEST(Kinds, NegativePageCountsWrapRoundTheRing) {
  EXPECT_EQ(std::tuple(WrapPageCount(0, RecorderKind::BrioNormal, RecorderLang::Japanese),
                       WrapPageCount(17, RecorderKind::AL, RecorderLang::Japanese)),
            std::tuple(0, 17));
  for (RecorderKind kind : {RecorderKind::AL, RecorderKind::BrioNormal, RecorderKind::BrioMets, RecorderKind::BrioZr})
    for (RecorderLang lang : {RecorderLang::Japanese, RecorderLang::English})
      EXPECT_EQ(WrapPageCount(-1, kind, lang), RingSize(kind, lang) - 1);
  const DeviceState s{.pmKind = RecorderKind::BrioNormal, .pmLang = RecorderLang::English};
  EXPECT_EQ(WrapPageCount(-10, s), RingSize(s.pmKind, s.pmLang) - 10);
  EXPECT_EQ(PageBytesOfKind(RecorderKind::Unknown), 0);
}

}  // namespace
