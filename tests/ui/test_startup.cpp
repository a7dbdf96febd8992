// The start-up sequence and the closing stages, driven headless through a scripted
// platform on a throw-away installation.
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include "chartmaker/chartmaker.h"
#include "frame/catalogue.h"
#include "frame/config.h"
#include "frame/helpers.h"
#include "frame/shared_values.h"
#include "store/store.h"
#include "testsupport/test_installation.h"
#include "ui/startup.h"

namespace {

constexpr double kGiB = 1024.0 * 1024.0 * 1024.0;

QString CatalogueText(const QString& code) {
  const auto rec = FindMessage(code);
  return rec ? BuildMessageText(*rec, QString(), false) : QString();
}

class StartupTest : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(inst.isValid());
    ResetSharedValues();
    ASSERT_TRUE(inst.reload());
    QString error;
    ASSERT_TRUE(CreateDatabaseFile(inst.dbFile(), kDefaultDbPassword, &error)) << error.toStdString();
    inst.setConfig(QStringLiteral("SYSTEM"), QStringLiteral("SHIFT_DB"), QStringLiteral("1"));
    inst.dialog().shown.clear();
  }
  void TearDown() override { ResetSharedValues(); }

  StartupSequence::Outcome run() {
    StartupSequence seq(platform, chart);
    seq.setSplash([this] { platform.log << QStringLiteral("splash"); });
    const auto outcome = seq.run();
    stoppedAt = seq.stoppedAt();
    return outcome;
  }

  // The step the start stopped at; None when it went on.
  StartupStep stop() { return run() == StartupSequence::Outcome::Stop ? stoppedAt : StartupStep::None; }
  QStringList steps() const {
    QStringList s;
    for (const QString& line : platform.log)
      if (line.startsWith(QLatin1String("step "))) s << line.mid(5);
    return s;
  }
  // The names of the steps from the first up to last.
  static QStringList StepsUpTo(StartupStep last) {
    QStringList s;
    for (int i = static_cast<int>(StartupStep::SystemCheck); i <= static_cast<int>(last); ++i)
      s << StartupStepName(static_cast<StartupStep>(i));
    return s;
  }

  QStringList shownTexts() {
    QStringList t;
    for (const auto& s : inst.dialog().shown) t << s.text;
    return t;
  }

  void removeConfigKey(const QString& key) {
    const QByteArray text = ReadBytes(inst.configFile());
    ASSERT_FALSE(text.isEmpty());
    QStringList lines = QString::fromUtf8(text).split(u'\n');
    lines.removeIf([&](const QString& l) { return l.startsWith(key + u'='); });
    ASSERT_TRUE(WriteBytes(inst.configFile(), lines.join(u'\n').toUtf8()));
  }

  TestInstallation inst;
  ScriptedStartupPlatform platform;
  ChartMaker chart;
  StartupStep stoppedAt = StartupStep::None;
};

TEST_F(StartupTest, RunsEveryStepInOrderAndAsksThePlatformAtTheRightPoints) {
  ASSERT_EQ(run(), StartupSequence::Outcome::Continue);
  EXPECT_EQ(stoppedAt, StartupStep::None);
  EXPECT_EQ(steps(), StepsUpTo(StartupStep::DatabaseMove));

  const QStringList& log = platform.log;
  EXPECT_EQ(log.indexOf(QStringLiteral("freeBytes ../data/mdb/ACTA.db")),
            log.indexOf(QStringLiteral("step free disk space")) + 1);
  EXPECT_EQ(log.indexOf(QStringLiteral("instance")), log.indexOf(QStringLiteral("step single instance")) + 1);
  EXPECT_EQ(log.indexOf(QStringLiteral("splash")), log.indexOf(QStringLiteral("step splash")) + 1);
  // SHIFT_DB is "1": the earlier version is not looked for.
  EXPECT_TRUE(platform.existsAsked.isEmpty() && inst.dialog().shown.empty());
  // The one-time part has read the configuration.
  EXPECT_EQ(std::pair(GetLogLevel(), GetLangCode()),
            std::pair(QString::number(Ini_GetLogLevel()), QString::number(Ini_GetLang())));
}

TEST_F(StartupTest, FreeSpaceCountsWholeGibibytesAndShowsTheFixedText) {
  platform.freeByteCount = 8 * kGiB;
  EXPECT_EQ(run(), StartupSequence::Outcome::Continue);

  platform.log.clear();
  platform.freeByteCount = 7.99 * kGiB;
  platform.driveName = QStringLiteral("/srv/data/");
  EXPECT_EQ(stop(), StartupStep::FreeDiskSpace);
  EXPECT_EQ(steps(), StepsUpTo(StartupStep::FreeDiskSpace));
  ASSERT_EQ(inst.dialog().shown.size(), 1u);
  EXPECT_EQ(inst.dialog().shown[0].icon, DialogIcon::None);
  EXPECT_EQ(shownTexts()[0],
            QStringLiteral("ヴァントーラ05パーソナルがインストールされているドライブ (/srv/data/) "
                           "の容量が8GBを下回っているので、起動を中止しました。\r\n"
                           "不要なファイルを削除する等して、ドライブ (/srv/data/) の空き容量を"
                           "確保した上でヴァントーラ05パーソナルの起動をお願いいたします。"));

  // An unreadable volume counts as too little space.
  inst.dialog().shown.clear();
  platform.freeByteCount = 100 * kGiB;
  platform.freeBytesReadable = false;
  EXPECT_EQ(stop(), StartupStep::FreeDiskSpace);
}

TEST_F(StartupTest, TheFirstChecksUseTheDefaultDatabaseWhateverTheConfigurationSays) {
  // A working database elsewhere does not help a broken one at the default path...
  const QString elsewhere = inst.path(QStringLiteral("data/other.db"));
  QString error;
  ASSERT_TRUE(CreateDatabaseFile(elsewhere, kDefaultDbPassword, &error));
  inst.setConfig(QStringLiteral("SYSTEM"), QStringLiteral("DB_NAME"), elsewhere);
  inst.setConfig(QStringLiteral("SYSTEM"), QStringLiteral("DB_PASSWORD"), QStringLiteral("other"));
  ASSERT_EQ(run(), StartupSequence::Outcome::Continue);
  EXPECT_EQ(platform.freeBytesPaths, QStringList{QStringLiteral("../data/mdb/ACTA.db")});

  // ...and the default one is what is checked.
  ASSERT_TRUE(QFile::remove(inst.dbFile()));
  EXPECT_EQ(stop(), StartupStep::DatabaseCheck);
}

TEST_F(StartupTest, ABrokenDatabaseStopsWithItsTextAndOpensTheManualUntilThatWorks) {
  ASSERT_TRUE(WriteBytes(inst.dbFile(), QByteArray(4096, 'x')));
  const QString manual = QDir(inst.binPath()).absoluteFilePath(QStringLiteral("../help/ERROR_DB.pdf"));
  platform.openSucceedsAt = 0;
  EXPECT_EQ(stop(), StartupStep::DatabaseCheck);
  EXPECT_EQ(steps(), StepsUpTo(StartupStep::DatabaseCheck));
  EXPECT_EQ(platform.openedDocuments.size(), 10);
  EXPECT_EQ(QFileInfo(platform.openedDocuments.value(0)).absoluteFilePath(),
            QFileInfo(manual).absoluteFilePath());
  // Says in the edition's words that the key does not open it, and names the file.
  const QString said = shownTexts().value(shownTexts().size() - 1);
  EXPECT_TRUE(said.startsWith(CatalogueText(QStringLiteral("DBSF-C-0003"))) && said.contains(QStringLiteral("ACTA.db")))
      << said.toStdString();
  // Never written to, never replaced.
  EXPECT_EQ(ReadBytes(inst.dbFile()), QByteArray(4096, 'x'));
  // The message comes before the manual.
  EXPECT_EQ(platform.log.indexOf(QStringLiteral("step database check")) + 1,
            platform.log.indexOf(QRegularExpression(QStringLiteral("open .*"))));

  platform.log.clear();
  platform.openedDocuments.clear();
  platform.openSucceedsAt = 3;
  EXPECT_EQ(run(), StartupSequence::Outcome::Stop);
  EXPECT_EQ(platform.openedDocuments.size(), 3);
}

TEST_F(StartupTest, MissingCatalogueOrConfigurationStops) {
  ASSERT_TRUE(QFile::rename(inst.configFile(), inst.configFile() + QStringLiteral(".away")));
  EXPECT_EQ(stop(), StartupStep::Configuration);
  EXPECT_EQ(shownTexts(), QStringList{CatalogueText(QStringLiteral("PTOP-C-0001"))});
  EXPECT_FALSE(shownTexts()[0].isEmpty());
  ASSERT_TRUE(QFile::rename(inst.configFile() + QStringLiteral(".away"), inst.configFile()));

  inst.dialog().shown.clear();
  ASSERT_TRUE(QFile::remove(inst.path(QStringLiteral("bin/ACTA.res"))));
  EXPECT_EQ(stop(), StartupStep::Messages);
  EXPECT_EQ(shownTexts(), QStringList{QStringLiteral("resource file[ACTA.res] not found.")});
}

TEST_F(StartupTest, ASecondInstanceStopsBeforeTheSplashAndTheChartLibrary) {
  removeConfigKey(QStringLiteral("SHIFT_DB"));
  platform.anotherInstance = true;
  EXPECT_EQ(stop(), StartupStep::SingleInstance);
  EXPECT_EQ(shownTexts(), QStringList{CatalogueText(QStringLiteral("PTOP-I-0001"))});
  EXPECT_FALSE(platform.log.contains(QStringLiteral("splash")));
  EXPECT_EQ(Ini_GetShiftDb(), QString());
}

TEST_F(StartupTest, TheMoveFromTheEarlierVersionIsLookedForOnce) {
  removeConfigKey(QStringLiteral("SHIFT_DB"));
  ASSERT_EQ(run(), StartupSequence::Outcome::Continue);
  EXPECT_EQ(platform.existsAsked, QStringList{kEarlierVersionDbPath});
  EXPECT_TRUE(platform.startedCommands.isEmpty());
  EXPECT_EQ(Ini_GetShiftDb(), QStringLiteral("1"));

  // With the earlier database on the disk the helper runs, then the flag is written.
  inst.setConfig(QStringLiteral("SYSTEM"), QStringLiteral("SHIFT_DB"), QStringLiteral("0"));
  inst.setConfig(QStringLiteral("SYSTEM"), QStringLiteral("SHIFT_DB_APPNAME"),
                 QStringLiteral("../bin/shiftdb --from old"));
  platform.existingFiles << kEarlierVersionDbPath;
  ASSERT_EQ(run(), StartupSequence::Outcome::Continue);
  EXPECT_EQ(platform.startedCommands, QStringList{QStringLiteral("../bin/shiftdb --from old")});
  EXPECT_EQ(Ini_GetShiftDb(), QStringLiteral("1"));

  // A helper that cannot be started ends the start; the move stays pending.
  inst.setConfig(QStringLiteral("SYSTEM"), QStringLiteral("SHIFT_DB"), QString());
  platform.startSucceeds = false;
  EXPECT_EQ(stop(), StartupStep::DatabaseMove);
  EXPECT_EQ(Ini_GetShiftDb(), QString());
}

TEST_F(StartupTest, ASecondLoadRunsOnlyTheFirstThreeChecks) {
  SetStartupDone(true);
  SetLogLevel(QStringLiteral("0"));
  ASSERT_TRUE(QFile::remove(inst.path(QStringLiteral("bin/ACTA.res"))));
  platform.anotherInstance = true;
  ASSERT_EQ(run(), StartupSequence::Outcome::Continue);
  EXPECT_EQ(steps(), StepsUpTo(StartupStep::DatabaseCheck));
  EXPECT_FALSE(platform.log.contains(QStringLiteral("instance")));
  EXPECT_EQ(GetLogLevel(), QStringLiteral("0"));
  EXPECT_TRUE(inst.dialog().shown.empty());
}

TEST_F(StartupTest, TheWorkingConnectionUsesTheConfiguredDatabase) {
  VtDatabase db;
  ASSERT_TRUE(OpenWorkingDatabase(db) && db.isOpen());
  VTDB_Close(db);

  inst.setConfig(QStringLiteral("SYSTEM"), QStringLiteral("DB_NAME"),
                 inst.path(QStringLiteral("data/mdb/missing.db")));
  inst.dialog().shown.clear();
  VtDatabase missing;
  EXPECT_FALSE(OpenWorkingDatabase(missing));
  EXPECT_EQ(shownTexts().value(shownTexts().size() - 1), CatalogueText(QStringLiteral("COMN-C-0002")));
  // The name is cut to the log's column width.
  EXPECT_TRUE(inst.traceText().contains(QStringLiteral("|2|UserSelection: Form_|VTDB_Open Error")))
      << inst.traceText().toStdString();
}

class ClosingTest : public StartupTest {
 protected:
  // Compaction on, the database at dbFile (opened when open), and one chart drawn so that
  // finishing the chart library is visible: it forgets it.
  void prepare(const QString& dbFile, bool open) {
    inst.setConfig(QStringLiteral("SYSTEM"), QStringLiteral("COMPACT_DB"), QStringLiteral("1"));
    inst.setConfig(QStringLiteral("SYSTEM"), QStringLiteral("DB_NAME"), dbFile);
    ASSERT_TRUE(!open || OpenWorkingDatabase(db));
    const QString file = inst.path(QStringLiteral("temp/chart.txt"));
    ASSERT_TRUE(WriteBytes(file, "200\r\n20240601,20240607\r\n0,0,0,0,0,0\r\n"));  // a week without data
    ChartMakerPersonal(chart, surface, file);
    ASSERT_TRUE(chart.hasChart(&surface));
  }
  // The compaction of DB_NAME, as the desktop runs it.
  int compact() {
    QString path = Ini_GetDbName();
    int result = 0;
    CompactDB(path, result, progress, Ini_GetDbPassword());
    return result;
  }

  ImageSurface surface{QSize(400, 300)};
  VtDatabase db;
  NullProgress progress;
};

TEST_F(ClosingTest, TheUsersStopCompactsAndFinishesTheChartLibrary) {
  ASSERT_NO_FATAL_FAILURE(prepare(inst.dbFile(), true));
  // A tenth of the file free: worth compacting.
  db.exec(QStringLiteral("CREATE TABLE F (X); INSERT INTO F SELECT randomblob(2000) FROM (WITH RECURSIVE "
                         "c(n) AS (SELECT 1 UNION ALL SELECT n + 1 FROM c WHERE n < 300) SELECT n FROM c);"
                         "DROP TABLE F;"));
  SetUserSortOrder(3);
  ClosingStages closing(db, chart);
  closing.queryClose(0);
  EXPECT_TRUE(!db.isOpen() && closing.quitRequested());
  EXPECT_EQ(closing.closeMainScreen([this] { return compact(); }), StartupSequence::Outcome::Continue);
  EXPECT_EQ(std::pair(Ini_GetSortOrder(), chart.hasChart(&surface)), std::pair(3, false));
  // The compaction leaves a backup beside a database that still opens.
  EXPECT_TRUE(QFile::exists(inst.dbFile() + QStringLiteral(".bak")));
  VtDatabase again;
  EXPECT_TRUE(OpenWorkingDatabase(again));
}

TEST_F(ClosingTest, AFailedCompactionStopsWithoutFinishingTheChartLibrary) {
  ASSERT_NO_FATAL_FAILURE(prepare(inst.path(QStringLiteral("data/mdb/gone.db")), false));
  ClosingStages closing(db, chart);
  closing.requestQuit();
  closing.queryClose(1);
  EXPECT_EQ(closing.closeMainScreen([this] { return compact(); }), StartupSequence::Outcome::Stop);
  EXPECT_EQ(shownTexts().value(shownTexts().size() - 1), CatalogueText(QStringLiteral("PTOP-C-0002")));
  EXPECT_TRUE(chart.hasChart(&surface));
}

TEST_F(ClosingTest, ClosingByTheSystemOnlyClosesAndStoresTheSortOrder) {
  ASSERT_NO_FATAL_FAILURE(prepare(inst.dbFile(), true));
  SetUserSortOrder(2);
  ClosingStages closing(db, chart);
  closing.queryClose(1);
  EXPECT_FALSE(db.isOpen() || closing.quitRequested());
  EXPECT_EQ(closing.closeMainScreen([this] { return compact(); }), StartupSequence::Outcome::Continue);
  EXPECT_EQ(Ini_GetSortOrder(), 2);
  EXPECT_TRUE(chart.hasChart(&surface) && !QFile::exists(inst.dbFile() + QStringLiteral(".bak")));
}

TEST(QtStartupPlatformTest, OneInstancePerInstallationFolder) {
  QTemporaryDir a;
  const QString old = QDir::currentPath();
  ASSERT_TRUE(QDir::setCurrent(a.path()));
  {
    QtStartupPlatform first;
    EXPECT_FALSE(first.otherInstanceRunning() || first.otherInstanceRunning());  // asking again does not count itself
    QtStartupPlatform second;
    EXPECT_TRUE(second.otherInstanceRunning());
  }
  QtStartupPlatform third;
  EXPECT_FALSE(third.otherInstanceRunning());
  EXPECT_NE(QtStartupPlatform::lockFilePath(a.path()), QtStartupPlatform::lockFilePath(old));
  QDir::setCurrent(old);
}

}  // namespace
