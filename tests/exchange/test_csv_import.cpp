// Reading CSV files back: the older layouts from hand-made samples, the round trip of
// every kind in both editions, bad files refused whole, and the rules of file names.
#include <QDir>

#include "exchange_fixture.h"

namespace {

// Every stored day of a user, newest reception of each day, with its profile.
std::vector<CsvRow> StoredDays(VtDatabase& db, const QString& userId) {
  std::vector<CsvRow> rows;
  std::vector<CsvRow> out;
  VTDB_GetChartDataForCSV(db, userId, QStringLiteral("19000101"), QStringLiteral("29991231"), rows);
  for (CsvRow& r : rows) {
    if (!r.NewestOfDay) continue;
    TimeBlockRecord b;
    VTDB_GetTimeMeasurementDayBlock(db, r.RECEIVE_ID, r.SEQ_NUM, b);
    r.ACT_LEVEL_BLOCK = b.ACT_LEVEL_BLOCK.trimmed();
    out.push_back(r);
  }
  return out;
}

int CountRows(VtDatabase& db, const char* table) {
  Statement st(db, QStringLiteral("SELECT COUNT(*) FROM [%1]").arg(QLatin1String(table)));
  return st.step() ? st.text(0).toInt() : -1;
}

class ImportTest : public ExchangeTest {
 protected:
  // A second, empty database in the same installation.
  void OpenFreshDatabase() {
    const QString path = inst_->path(QStringLiteral("data/mdb/fresh.db"));
    QString error;
    ASSERT_TRUE(CreateDatabaseFile(path, kDefaultDbPassword, &error)) << error.toStdString();
    fresh_.open(path, kDefaultDbPassword);
  }

  CsvImportSummary Import(VtDatabase& db, const QStringList& paths) {
    NullProgress progress;
    return CSVBatchImport(db, paths, QString(), progress);
  }

  VtDatabase fresh_;
};

class JapaneseImport : public ImportTest {
 protected:
  void SetUp() override { SetUpEdition(QStringLiteral("ja")); }
};

class EnglishImport : public ImportTest {
 protected:
  void SetUp() override { SetUpEdition(QStringLiteral("en")); }
};

// Exports every kind, imports each file into an empty database, and compares the days
// column by column as far as the kind carries them.
void ExpectRoundTrip(ImportTest& t, VtDatabase& source, VtDatabase& target, TestInstallation& inst, bool english) {
  for (int kind : {0, 1, 2}) {
    SCOPED_TRACE(kind);
    const QString folder = inst.path(QStringLiteral("temp/kind%1").arg(kind));
    QDir().mkpath(folder);
    NullProgress progress;
    QString log;
    ASSERT_EQ(CSVBatchExport(source, QStringLiteral("20240101"), QStringLiteral("20241231"), kind, folder,
                             {kCsvUser}, progress, log),
              1)
        << log.toStdString();
    const CsvImportSummary s = CSVBatchImport(target, {folder}, QString(), progress);
    ASSERT_EQ(s.filesImported, 1) << s.log.toStdString();
    const std::vector<CsvRow> before = StoredDays(source, kCsvUser);
    const std::vector<CsvRow> after = StoredDays(target, s.files[0].userId);
    ASSERT_EQ(after.size(), before.size());
    const bool familyB = kind == 0 || (kind == 2 && !english);
    for (size_t i = 0; i < before.size(); ++i) {
      const CsvRow& a = before[i];
      const CsvRow& b = after[i];
      SCOPED_TRACE(a.MEASUREMENT_DAY.toStdString());
      EXPECT_EQ(b.MEASUREMENT_DAY, a.MEASUREMENT_DAY);
      EXPECT_EQ(b.WEEK_DAY, a.WEEK_DAY);
      EXPECT_EQ(b.GENDAR, a.GENDAR);
      EXPECT_EQ(b.AGE, a.AGE);
      if (english && !a.HEIGHT_FEET.isEmpty()) {
        EXPECT_EQ(b.HEIGHT_FEET + b.HEIGHT_INCH + u'/' + b.WEIGHT_PAUND, a.HEIGHT_FEET + a.HEIGHT_INCH + u'/' + a.WEIGHT_PAUND);
      } else {
        EXPECT_EQ(b.HEIGHT_CM + u'/' + b.WEIGHT_KG, a.HEIGHT_CM + u'/' + a.WEIGHT_KG);
      }
      EXPECT_EQ(b.TARGET_CAL, a.TARGET_CAL);
      EXPECT_EQ(b.ENERGY_EXPENDITURE, a.ENERGY_EXPENDITURE);
      EXPECT_EQ(b.ACTIVITY, a.ACTIVITY);
      EXPECT_EQ(b.STEP_COUNT, a.STEP_COUNT);
      for (size_t l = 0; l < 10; ++l) EXPECT_EQ(b.ACTIVITY_LEVEL[l], a.ACTIVITY_LEVEL[l]) << l;
      EXPECT_EQ(b.ACTIVITY_LEVEL_SMALL, a.ACTIVITY_LEVEL_SMALL);
      for (size_t e = 0; e < 10; ++e) EXPECT_EQ(b.EVENT[e], a.EVENT[e]) << e;
      if (familyB) {
        EXPECT_EQ(b.TARGET_STEP, a.TARGET_STEP);
        EXPECT_EQ(b.PACE_CM, a.PACE_CM);
        EXPECT_EQ(b.DISTANCE_KM, a.DISTANCE_KM);
        EXPECT_EQ(b.ACCUMULATION_TIME, a.ACCUMULATION_TIME);
        EXPECT_EQ(b.LOWER_BOUND + b.UPPER_BOUND, a.LOWER_BOUND + a.UPPER_BOUND);
        EXPECT_EQ(b.PEDOMERA, a.PEDOMERA);
        EXPECT_EQ(b.MEMORY_LOCK, a.MEMORY_LOCK);
        EXPECT_EQ(b.MEASUREMENT_MODE, a.MEASUREMENT_MODE);
        if (english) {
          EXPECT_EQ(b.TARGET_TIME, a.TARGET_TIME);
        }
      }
      if (kind == 2 && !english) {
        EXPECT_EQ(b.EXERCISE, a.EXERCISE);
      }
      // Profiles: a missing or "-1" slot comes back as "-1".
      QStringList pa = a.ACT_LEVEL_BLOCK.split(u',');
      while (pa.size() < 720) pa << QStringLiteral("-1");
      EXPECT_EQ(b.ACT_LEVEL_BLOCK, pa.join(u','));
    }
  }
  (void)t;
}

}  // namespace

TEST_F(JapaneseImport, EveryKindReadsBackTheDaysItWrote) {
  StoreRecorder();
  StoreImportedDay();
  OpenFreshDatabase();
  ExpectRoundTrip(*this, db_, fresh_, *inst_, false);
}

TEST_F(EnglishImport, EveryKindReadsBackTheDaysItWrote) {
  StoreRecorder();
  StoreImportedDay();
  OpenFreshDatabase();
  ExpectRoundTrip(*this, db_, fresh_, *inst_, true);
}

// The hand-made files of the older layouts: format code, level scale, date order.
TEST_F(JapaneseImport, OlderLayoutsReadWithTheirScaleAndDateOrder) {
  struct Case {
    const char* file;
    int code;
    int scale;
    bool monthFirst;
    const char* firstDay;
    const char* level0;  // stored count of level 0 on the first day
    const char* last;    // the third line's day
  };
  const Case cases[] = {
      {"old02_佐藤一郎_20030405.csv", 2, 216, false, "20030401", "12960", "20030403"},
      {"old03_John Smith_20030405.csv", 3, 216, true, "20030401", "10800", "20030403"},
      {"old04_Anna Berg_20040405.csv", 4, 216, true, "20040330", "8640", "20040401"},
      {"old05_高橋真_20050405.csv", 5, 1, false, "20050329", "12000", "20050331"},
      {"old06_伊藤花_20060405.csv", 6, 1, false, "20060328", "11500", "20060330"},
      {"old10_Mia Lee_20070405.csv", 10, 1, false, "20070403", "11000", "20070405"},
      {"old11_Tom Ford_20080405.csv", 11, 1, false, "20080401", "12500", "20080403"},
      {"old12_Kate Moss_20090405.csv", 12, 1, true, "20090331", "11200", "20090402"},
      {"old13_中村愛_20100405.csv", 13, 1, false, "20100330", "11400", "20100401"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.file);
    std::vector<CsvRow> rows;
    CsvFormat format;
    int line = 0;
    QString reason;
    ASSERT_TRUE(ReadCSVData(rows, TestDataPath(QStringLiteral("samples/") + QString::fromUtf8(c.file)), line, format,
                            reason))
        << line << " " << reason.toStdString();
    EXPECT_EQ(format.code, c.code);
    EXPECT_EQ(format.levelScale, c.scale);
    EXPECT_EQ(format.monthFirst, c.monthFirst);
    ASSERT_EQ(rows.size(), 3u);
    EXPECT_EQ(rows[0].MEASUREMENT_DAY, QLatin1String(c.firstDay));
    EXPECT_EQ(rows[2].MEASUREMENT_DAY, QLatin1String(c.last));
    EXPECT_EQ(rows[0].ACTIVITY_LEVEL[0], QLatin1String(c.level0));
    EXPECT_TRUE(rows[0].NewestOfDay);
    EXPECT_FALSE(rows[1].NewestOfDay);
    EXPECT_TRUE(rows[2].NewestOfDay);
    EXPECT_TRUE(rows[0].ACT_LEVEL_BLOCK.startsWith(QStringLiteral("0,1,2,3,0,")));
    EXPECT_TRUE(rows[1].ACT_LEVEL_BLOCK.startsWith(QStringLiteral("-1,-1,")));
  }
  // The oldest layouts have no activity time: the minutes at levels 4 to 9 stand in.
  std::vector<CsvRow> rows;
  CsvFormat format;
  int line = 0;
  QString reason;
  ASSERT_TRUE(ReadCSVData(rows, TestDataPath(QStringLiteral("samples/old02_佐藤一郎_20030405.csv")), line, format, reason));
  EXPECT_EQ(rows[0].ACCUMULATION_TIME, QStringLiteral("144"));  // (4+3+2+1)*216 points of 4 s
  EXPECT_EQ(rows[2].WEEK_DAY, QStringLiteral("4"));             // blank weekday taken from the date
  EXPECT_EQ(rows[0].EVENT[0], QStringLiteral("0715"));

  // The whole folder in one batch: a user per file, two days each.
  const CsvImportSummary s = Import(db_, {TestDataPath(QStringLiteral("samples"))});
  EXPECT_EQ(s.filesRead, 9);
  EXPECT_EQ(s.filesImported, 9) << s.log.toStdString();
  for (const CsvImportFileResult& r : s.files) {
    EXPECT_TRUE(r.userCreated);
    EXPECT_EQ(r.days, 2);
  }
  UserInfo kate;
  ASSERT_TRUE(GetUserInfo(db_, kate, VTDB_SearchUserIdFromLoginID(db_, QStringLiteral("old12"))));
  EXPECT_EQ(kate.FIRST_NAME, QStringLiteral("Kate Moss"));
  EXPECT_EQ(kate.GROUP_ID, kDefaultGroupId);
  const std::vector<CsvRow> days = StoredDays(db_, kate.USER_ID);
  ASSERT_EQ(days.size(), 2u);
  EXPECT_EQ(days[0].STEP_COUNT, QStringLiteral("10400"));
  EXPECT_EQ(days[0].PEDOMERA, QStringLiteral("3"));
  EXPECT_TRUE(s.log.startsWith(QStringLiteral("フォルダ=")));
  EXPECT_TRUE(s.log.contains(QStringLiteral("CSVインポート成功@ファイル名=old12_Kate Moss_20090405.csv@利用者新規登録 "
                                            "ログインID=old12,氏名=Kate Moss,識別番号=U")));
}
