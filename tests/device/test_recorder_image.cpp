// Recorder images: they read back through the emulated reader as they were made, their
// days are internally consistent, and they are reproducible.
#include <gtest/gtest.h>

#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>

#include "device/device.h"
#include "testsupport/device_test_util.h"

namespace {

const RecorderKind kAllKinds[] = {RecorderKind::AL, RecorderKind::BrioNormal, RecorderKind::BrioMets, RecorderKind::BrioZr,
                             RecorderKind::BrioKt};

RecorderImageOptions Options(RecorderKind kind, bool english = false) {
  return {.kind = kind, .english = english, .days = 10, .seed = 11, .cpuNo = QStringLiteral("123456"),
          .lastDay = QDate(2024, 3, 5), .numbers = RecorderNumbers::FromConfig()};
}

// What the generator writes as the fixed text, by the installation's numbers.
QString FixedTextOfForTest(const RecorderImageOptions& o) {
  if (o.kind == RecorderKind::BrioZr) return o.numbers.kt200;
  if (o.kind == RecorderKind::BrioKt) return o.numbers.kt014;
  return o.english ? o.numbers.brioEng : o.numbers.brioJpn;
}

// Puts the image on an emulated reader and reads the whole recorder.
RecorderContents ReadBack(const TestInstallation& inst, const RecorderImageOptions& o) {
  PlaceRecorder(inst, o);
  EmulatedReader reader(inst.readerPath());
  NoWaitClock clock;
  RecorderContents c;
  QString error;
  EXPECT_EQ(ReadRecorderContents(reader, clock, c, &error), 0) << error.toStdString();
  return c;
}

TEST(RecorderImage, EveryKindReadsBackThroughTheEmulatedReader) {
  TestInstallation inst;
  ASSERT_TRUE(inst.isValid());
  for (RecorderKind kind : kAllKinds) {
    SCOPED_TRACE(KindText(kind).toStdString());
    RecorderImageOptions o = Options(kind);
    const RecorderContents c = ReadBack(inst, o);
    EXPECT_EQ(std::tuple(c.kind, c.language, c.manage.CpuNo, c.manage.FixedData),
              std::tuple(kind, RecorderLang::Japanese, QString("123456"),
                         kind == RecorderKind::AL ? QString("12820") : FixedTextOfForTest(o)));
    EXPECT_EQ(std::tuple(c.manage.RecordStartPage, c.manage.RecordingPage, c.manage.LogicSelect),
              std::tuple(1, 10, kind == RecorderKind::BrioMets ? 1 : 0));
    EXPECT_EQ(std::tuple(c.manage.bcDate, c.manage.bcNowDate, c.manage.bcNowTime),
              std::tuple(o.lastDay, o.lastDay, QTime(18, 30)));
    ASSERT_EQ(c.pages.size(), 10u);
    for (size_t i = 0; i < c.pages.size(); ++i) {
      const auto& [page, d] = c.pages[i];
      EXPECT_EQ(std::tuple(page, d.bcDate, d.CpuNo),
                std::tuple(static_cast<int>(i) + 1, o.lastDay.addDays(static_cast<int>(i) - 9), QString("123456")));
      // The page the decoder reads equals the page the generator wrote.
      FlashData direct;
      ASSERT_EQ(FlashData_Decode(AsBytes(MakeDayPage(o, d.bcDate, i == 9)), direct, kind), 0);
      EXPECT_EQ(std::tuple(direct.StepCount, KindProfile(direct, kind)),
                std::tuple(d.StepCount, KindProfile(d, kind)));
    }
  }
}

TEST(RecorderImage, EnglishRecordersAreTakenForEnglish) {
  TestInstallation inst(QStringLiteral("en"));
  for (RecorderKind kind : {RecorderKind::AL, RecorderKind::BrioNormal, RecorderKind::BrioMets}) {
    const RecorderContents c = ReadBack(inst, Options(kind, true));
    EXPECT_EQ(std::tuple(c.kind, c.language), std::tuple(kind, RecorderLang::English));
    EXPECT_FALSE(IsRecorderMismatch(c.kind, c.manage));
  }
}

// Level counts, steps, distance, calories and time in range agree with the profile.
TEST(RecorderImage, DaysAreConsistentWithTheirProfile) {
  TestInstallation inst;
  for (RecorderKind kind : kAllKinds) {
    SCOPED_TRACE(KindText(kind).toStdString());
    RecorderImageOptions o = Options(kind);
    o.days = 30;
    const RecorderContents c = ReadBack(inst, o);
    const bool mets = kind == RecorderKind::BrioMets;
    int daysWithWorkout = 0;
    for (const auto& [page, d] : c.pages) {
      const bool recording = page == c.manage.RecordingPage;
      const LevelProfileArray& p = KindProfile(d, kind);
      int recorded = 0, active = 0, asleepAtThree = 0;
      for (int i = 0; i < kProfileSlots; ++i) {
        const int v = p[static_cast<size_t>(i)];
        const bool noData = mets ? v > 90 : v > 10;
        if (!noData) ++recorded;
        if (!noData && (mets ? v >= 42 : v >= 5)) ++active;  // level 4 and above
        if (i == 90 && v <= (mets ? 13 : 1)) ++asleepAtThree;
      }
      if (!recording) {  // a finished day: every slot, and 03:00 is night
        EXPECT_EQ(std::tuple(recorded, d.RecordTime, asleepAtThree), std::tuple(kProfileSlots, 1440, 1));
      }
      qint32 counts = d.LevelSmall;
      for (int l = 0; l < 10; ++l) counts += d.level(l);
      EXPECT_EQ(counts, recorded * 30);  // 30 four-second counts a slot
      EXPECT_TRUE(d.StepCount > 1000 && d.StepCount < 40000) << d.StepCount;
      EXPECT_TRUE(d.TotalEnergy > d.Activity && d.TotalEnergy < 4500) << d.TotalEnergy;
      if (kind != RecorderKind::AL) {
        EXPECT_EQ(d.RangeMinutes, (d.Level4 + d.Level5 + d.Level6 + d.Level7 + d.Level8 + d.Level9) * 4 / 60);
        EXPECT_LT(d.Distance, 665);  // 66.5 km would carry into the next field
      }
      if (active >= 15) ++daysWithWorkout;
    }
    EXPECT_GT(daysWithWorkout, 3);
  }
}

TEST(RecorderImage, SameSeedSameBytesAndALaterClockKeepsTheEarlierDays) {
  TestInstallation inst;
  for (RecorderKind kind : kAllKinds) {
    RecorderImageOptions o = Options(kind);
    EXPECT_EQ(MakeRecorderImage(o), MakeRecorderImage(o));
    // The unit flag changes what the recorder shows, not the kilometres it counts.
    if (kind != RecorderKind::AL) {
      RecorderImageOptions pounds = o;
      pounds.unitFlag = 1;
      FlashData km, mi;
      ASSERT_EQ(FlashData_Decode(AsBytes(MakeDayPage(o, o.lastDay, false)), km, kind), 0);
      ASSERT_EQ(FlashData_Decode(AsBytes(MakeDayPage(pounds, o.lastDay, false)), mi, kind), 0);
      EXPECT_TRUE(mi.UnitFlag == 1 && km.Distance > 0 && mi.Distance == km.Distance);
    }
    RecorderImageOptions other = o;
    other.seed = 12;
    EXPECT_NE(MakeRecorderImage(o), MakeRecorderImage(other));

    // Three more days of wearing: the same pages hold the same finished days.
    RecorderImageOptions later = o;
    later.days = o.days + 3;
    later.lastDay = o.lastDay.addDays(3);
    const QByteArray a = MakeRecorderImage(o);
    const QByteArray b = MakeRecorderImage(later);
    const int pageBytes = PageBytesOfKind(kind);
    for (int page = 1; page < o.days; ++page) {  // the recording day of `o` is unfinished
      const qsizetype at = static_cast<qsizetype>(FirstBlockOfPage(kind, page)) * kTransferBlockBytes;
      EXPECT_EQ(a.mid(at, pageBytes), b.mid(at, pageBytes)) << KindText(kind).toStdString() << " page " << page;
    }
    // The unfinished day is a prefix of the finished one: same slots so far.
    FlashData partial, full;
    ASSERT_EQ(FlashData_Decode(AsBytes(MakeDayPage(o, o.lastDay, true)), partial, kind), 0);
    ASSERT_EQ(FlashData_Decode(AsBytes(MakeDayPage(o, o.lastDay, false)), full, kind), 0);
    const int slots = (18 * 60 + 30) / 2 + 1;
    for (int i = 0; i < kProfileSlots; ++i) {
      if (i < slots) ASSERT_EQ(KindProfile(partial, kind)[i], KindProfile(full, kind)[i]);
      else ASSERT_EQ(KindProfile(partial, kind)[i], kind == RecorderKind::BrioMets ? 255 : 15);
    }
    EXPECT_LE(partial.StepCount, full.StepCount);
  }
}

TEST(RecorderImage, RingWrapsErasedPagesAndUnsetWeight) {
  TestInstallation inst;
  RecorderImageOptions o = Options(RecorderKind::BrioMets);  // ring of 120
  o.startPage = 115;
  o.erasedPages = {117};
  o.unsetWeight = true;
  const RecorderContents c = ReadBack(inst, o);
  EXPECT_EQ(std::tuple(c.manage.RecordStartPage, c.manage.RecordingPage), std::tuple(115, 4));
  ASSERT_EQ(c.pages.size(), 10u);
  EXPECT_EQ(std::tuple(c.pages[2].first, c.pages[5].first, c.pages[6].first), std::tuple(117, 120, 1));
  EXPECT_EQ(std::tuple(c.pages[2].second.bcDate, c.pages[2].second.CpuNo), std::tuple(ZeroDate(), QString("NoData")));
  EXPECT_EQ(c.pages.back().second.WeightFraction, 255);
  EXPECT_LE(c.pages[8].second.WeightFraction, 9);

  o = Options(RecorderKind::AL);  // ring of 240
  o.startPage = 240;
  o.days = 239;
  o.lastDay = QDate(2024, 12, 31);
  const RecorderContents all = ReadBack(inst, o);
  EXPECT_EQ(std::tuple(all.manage.RecordingPage, all.pages.size(), all.pages.front().second.bcDate),
            std::tuple(238, 239u, QDate(2024, 12, 31).addDays(-238)));
  EXPECT_EQ(all.manage.bcMeasureStart.date(), QDate(2024, 12, 31).addDays(-238));
  // A ring holding all 240 days has its recording page just below the start page:
  // the listing shows every one of them, oldest first.
  o.days = 240;
  const RecorderContents full = ReadBack(inst, o);
  EXPECT_EQ(full.manage.RecordingPage, 239);
  ASSERT_EQ(full.pages.size(), 240u);
  EXPECT_EQ(std::tuple(full.pages.front().first, full.pages.back().first, full.pages.back().second.bcDate),
            std::tuple(240, 239, QDate(2024, 12, 31)));
}

TEST(RecorderImage, MemoryLimitStopsWritingAtTheEndPage) {
  TestInstallation inst;
  RecorderImageOptions o = Options(RecorderKind::BrioNormal);
  o.memorySetting = 1;
  o.memoryDays = 5;
  o.days = 8;
  o.startPage = 3;
  const RecorderContents c = ReadBack(inst, o);
  EXPECT_EQ(std::tuple(c.manage.MemorySetting, c.manage.MemoryDays, c.manage.RecordEndPage, c.manage.RecordingPage),
            std::tuple(1, 5, 7, 10));
  ASSERT_EQ(c.pages.size(), 8u);
  EXPECT_EQ(std::tuple(c.pages[4].second.bcDate, c.pages[5].second.bcDate),
            std::tuple(o.lastDay.addDays(-3), ZeroDate()));
}

TEST(RecorderImage, BadOptionsAreRefused) {
  RecorderImageOptions o{.kind = RecorderKind::BrioMets, .days = 121};
  QString error;
  EXPECT_TRUE(MakeRecorderImage(o, &error).isEmpty() && !error.isEmpty());
  o.days = 5;
  o.erasedPages = {0};
  EXPECT_FALSE(CheckRecorderImageOptions(o).isEmpty());
  o.erasedPages.clear();
  o.kind = RecorderKind::BrioKt;
  o.english = true;  // no English KT or ZR recorder exists
  EXPECT_FALSE(CheckRecorderImageOptions(o).isEmpty());
  o.english = false;
  EXPECT_TRUE(CheckRecorderImageOptions(o).isEmpty());
  o.kind = RecorderKind::Unknown;
  EXPECT_FALSE(CheckRecorderImageOptions(o).isEmpty());
  EXPECT_EQ(KindFromName("brio_kt"), RecorderKind::BrioKt);
  EXPECT_EQ(KindFromName("X"), RecorderKind::Unknown);
}

TEST(RecorderImage, InvalidImagesAreReportedNotDecoded) {
  TestInstallation inst;
  QString error;
  NoWaitClock clock;
  RecorderContents c;
  {
    EmulatedReader none(inst.readerPath());
    EXPECT_TRUE(ReadRecorderContents(none, clock, c, &error) != 0 && error.contains("no recorder"));
  }
  // A short file, and a good block whose page 2 (blocks 11 and 12) lies beyond the file's end.
  const QByteArray image = MakeRecorderImage(Options(RecorderKind::BrioNormal));
  for (const auto& [bytes, what] :
       {std::pair{QByteArray(300, 'x'), "management block"}, std::pair{image.left(248 * 12), "page 2"}}) {
    ASSERT_TRUE(WriteBytes(inst.readerPath() + "/r.img", bytes));
    EmulatedReader reader(inst.readerPath());
    EXPECT_EQ(ReadRecorderContents(reader, clock, c, &error), kEmulatorFaultAddress) << what;
    EXPECT_TRUE(error.contains(what)) << error.toStdString();
  }
}

// The tool's recorder, read back by its dump, is the recorder made in-process from the
// same options.
TEST(RecorderImage, CommandLineRoundTrip) {
  const QString cli = QStringLiteral(VANTORA_CLI_PATH);
  if (!QFileInfo::exists(cli)) GTEST_SKIP() << "vantora-cli not built";
  TestInstallation inst;
  // The tool's output, or its error text when it is to fail.
  const auto run = [&](const QStringList& args, int exitCode = 0) {
    QProcess p;
    p.setWorkingDirectory(inst.binPath());
    p.start(cli, args);
    EXPECT_TRUE(p.waitForFinished(60000));
    const QByteArray err = p.readAllStandardError();
    EXPECT_EQ(p.exitCode(), exitCode) << err.toStdString();
    return exitCode == 0 ? p.readAllStandardOutput() : err;
  };
  for (const char* kindName : {"AL", "BRIO_NORMAL", "BRIO_METS", "BRIO_ZR", "BRIO_KT"}) {
    const QString name = QString::fromLatin1(kindName);
    SCOPED_TRACE(kindName);
    const RecorderKind kind = KindFromName(name);
    const int ring = RingSize(kind, RecorderLang::Japanese);
    const QString out = inst.path("temp/" + name + ".img");
    run({"make-recorder", "--kind", name, "--lang", "ja", "--days", "6", "--out", out, "--seed", "5", "--cpu",
         "777001", "--last-day", "20240110", "--start-page", QString::number(ring - 2)});
    const QByteArray json = run({"dump", out, "--json"});

    // The six days wrap round the ring.
    const RecorderImageOptions o{.kind = kind, .days = 6, .seed = 5, .cpuNo = "777001",
                                 .lastDay = QDate(2024, 1, 10), .startPage = ring - 2,
                                 .numbers = RecorderNumbers::FromConfig()};
    const RecorderContents c = ReadBack(inst, o);
    EXPECT_EQ(json, RecorderContentsJson(c));
    const QJsonArray pages = QJsonDocument::fromJson(json).object()["pages"].toArray();
    ASSERT_EQ(pages.size(), 6);
    const int expectedPages[] = {ring - 2, ring - 1, ring, 1, 2, 3};
    for (int i = 0; i < 6; ++i) {
      EXPECT_EQ(std::tuple(pages[i].toObject()["page"].toInt(), pages[i].toObject()["bcDate"].toString()),
                std::tuple(expectedPages[i], QDate(2024, 1, 5).addDays(i).toString("yyyy-MM-dd")));
    }
  }
  ASSERT_TRUE(WriteBytes(inst.path("temp/bad.img"), "not a recorder"));
  EXPECT_TRUE(run({"dump", inst.path("temp/bad.img"), "--json"}, 1).contains("no valid recorder image"));
}

}  // namespace
