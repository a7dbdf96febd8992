// Reading CSV files back: the older layouts from hand-made samples, the round trip of
// every kind in both editions, bad files refused whole, and the rules of file names.
#include <QDir>
#include <QFileInfo>
#include <map>

#include "testsupport/exchange_fixture.h"

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

  // The recorder days of the sample user exported as good UTF-8 text, and an empty second
  // database to import them into.
  QString GoodFileAndFreshDatabase() {
    StoreRecorder();
    const QString path = inst_->path(QStringLiteral("temp/good.csv"));
    CsvExportOptions options{.encoding = CsvEncoding::Utf8};
    QString error;
    EXPECT_TRUE(MakeCSVData2(db_, kCsvUser, "20240624", "20240630", "20240630", path, user_, -1, 0, options, error))
        << error.toStdString();
    OpenFreshDatabase();
    return QString::fromUtf8(ReadBytes(path));
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
  void SetUp() override { SetUpWithDays(QStringLiteral("en")); }
};

// Exports every kind, imports each file into an empty database and exports the new user
// again: all that the kind carries comes back, so the two files agree below the first
// line (which names the user as the file name gave it).
void ExpectRoundTrip(VtDatabase& source, VtDatabase& target, TestInstallation& inst) {
  const auto exportOne = [&inst](VtDatabase& db, const QString& userId, int kind, const QString& name) {
    const QString folder = inst.path(QStringLiteral("temp/%1%2").arg(name).arg(kind));
    QDir().mkpath(folder);
    NullProgress progress;
    QString log;
    EXPECT_EQ(CSVBatchExport(db, QStringLiteral("20240101"), QStringLiteral("20241231"), kind, folder, {userId},
                             progress, log),
              1)
        << log.toStdString();
    return folder;
  };
  const auto body = [](const QString& folder) {
    const QDir dir(folder);
    const QStringList files = dir.entryList(QDir::Files);
    return files.size() == 1 ? ReadBytes(dir.filePath(files[0])).split('\n').mid(1) : QList<QByteArray>();
  };
  for (int kind : {0, 1, 2}) {
    SCOPED_TRACE(kind);
    const QString written = exportOne(source, kCsvUser, kind, QStringLiteral("out"));
    NullProgress progress;
    const CsvImportSummary s = CSVBatchImport(target, {written}, QString(), progress);
    ASSERT_EQ(s.filesImported, 1) << s.log.toStdString();
    const QList<QByteArray> before = body(written);
    const QList<QByteArray> after = body(exportOne(target, s.files[0].userId, kind, QStringLiteral("back")));
    ASSERT_GT(before.size(), 700);
    ASSERT_EQ(after.size(), before.size());
    for (qsizetype i = 0; i < before.size(); ++i) ASSERT_EQ(after[i], before[i]) << "line " << i + 2;
  }
}

}  // namespace

TEST_F(JapaneseImport, EveryKindReadsBackTheDaysItWrote) {
  StoreRecorder();
  StoreImportedDay();
  OpenFreshDatabase();
  ExpectRoundTrip(db_, fresh_, *inst_);
}

TEST_F(EnglishImport, EveryKindReadsBackTheDaysItWrote) {
  OpenFreshDatabase();
  ExpectRoundTrip(db_, fresh_, *inst_);
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
    EXPECT_EQ(std::tuple(format.code, format.levelScale, format.monthFirst), std::tuple(c.code, c.scale, c.monthFirst));
    ASSERT_EQ(rows.size(), 3u);
    EXPECT_EQ(QStringList({rows[0].MEASUREMENT_DAY, rows[2].MEASUREMENT_DAY, rows[0].ACTIVITY_LEVEL[0]}),
              QStringList({c.firstDay, c.last, c.level0}));
    EXPECT_EQ(std::tuple(rows[0].NewestOfDay, rows[1].NewestOfDay, rows[2].NewestOfDay), std::tuple(true, false, true));
    EXPECT_TRUE(rows[0].ACT_LEVEL_BLOCK.startsWith(QStringLiteral("0,1,2,3,0,")));
    EXPECT_TRUE(rows[1].ACT_LEVEL_BLOCK.startsWith(QStringLiteral("-1,-1,")));
    if (c.code != 2) continue;
    // The oldest layouts have no activity time: the minutes at levels 4 to 9, (4+3+2+1)*216
    // points of 4 s, stand in; a blank weekday is taken from the date.
    EXPECT_EQ(QStringList({rows[0].ACCUMULATION_TIME, rows[2].WEEK_DAY, rows[0].EVENT[0]}),
              QStringList({"144", "4", "0715"}));
  }

  // The whole folder in one batch: a user per file, two days each.
  const CsvImportSummary s = Import(db_, {TestDataPath(QStringLiteral("samples"))});
  EXPECT_EQ(std::tuple(s.filesRead, s.filesImported), std::tuple(9, 9)) << s.log.toStdString();
  for (const CsvImportFileResult& r : s.files) EXPECT_EQ(std::tuple(r.userCreated, r.days), std::tuple(true, 2));
  UserInfo kate;
  ASSERT_TRUE(GetUserInfo(db_, kate, VTDB_SearchUserIdFromLoginID(db_, QStringLiteral("old12"))));
  EXPECT_EQ(kate.FIRST_NAME + "|" + kate.GROUP_ID, "Kate Moss|" + kDefaultGroupId);
  const std::vector<CsvRow> days = StoredDays(db_, kate.USER_ID);
  ASSERT_EQ(days.size(), 2u);
  EXPECT_EQ(days[0].STEP_COUNT + "|" + days[0].PEDOMERA, "10400|3");
  EXPECT_TRUE(s.log.startsWith(QStringLiteral("フォルダ=")));
  EXPECT_TRUE(s.log.contains(QStringLiteral("CSVインポート成功@ファイル名=old12_Kate Moss_20090405.csv@利用者新規登録 "
                                            "ログインID=old12,氏名=Kate Moss,識別番号=U")));
}

// Each spoiled file is refused with the line at fault, stores nothing (not even its new
// user), and the batch goes on to the next file.
TEST_F(JapaneseImport, BadFilesAreRefusedWholeAndTheBatchGoesOn) {
  const QString good = GoodFileAndFreshDatabase();
  ASSERT_FALSE(good.isEmpty());
  const QString folder = inst_->path(QStringLiteral("temp/bad"));
  QDir().mkpath(folder);
  QStringList lines = good.split(QStringLiteral("\r\n"));
  auto spoiled = [&](int lineIndex, const QString& from, const QString& to) {
    QStringList copy = lines;
    copy[lineIndex].replace(from, to);
    return copy.join(QStringLiteral("\r\n")).toUtf8();
  };
  struct Bad {
    const char* file;
    QByteArray bytes;
    int line;
  };
  const std::vector<Bad> bad = {
      {"a1_Kt_20240701.csv", spoiled(0, QStringLiteral("BRIO-JP"), QStringLiteral("Kt014")), 1},
      {"a2_Date_20240701.csv", spoiled(4, QStringLiteral("2024/06/25"), QStringLiteral("2024/13/25")), 5},
      {"a3_Minus_20240701.csv", spoiled(5, QStringLiteral(",4,9,"), QStringLiteral(",4,-9,")), 6},
      {"a4_Huge_20240701.csv", spoiled(5, QStringLiteral(",4,9,"), QStringLiteral(",4,9123456789,")), 6},
      {"a5_Cut_20240701.csv", good.left(good.indexOf(QStringLiteral("\r\n12:00,"))).toUtf8(), 378},
      {"a6_Binary_20240701.csv", QByteArray("\x89PNG\r\n\x1a\n\0\0\0\rIHDR", 16), 1},
      {"a7_Profile_20240701.csv", spoiled(30, QStringLiteral(","), QStringLiteral(",x")), 31},
      {"a8_Empty_20240701.csv", QByteArray(), 1},
  };
  for (const Bad& b : bad) WriteBytes(folder + u'/' + QString::fromUtf8(b.file), b.bytes);
  WriteBytes(folder + QStringLiteral("/z9_Good_20240701.csv"), good.toUtf8());

  const CsvImportSummary s = Import(fresh_, {folder});
  ASSERT_EQ(s.files.size(), bad.size() + 1);
  for (size_t i = 0; i < bad.size(); ++i) {
    SCOPED_TRACE(bad[i].file);
    EXPECT_EQ(std::tuple(s.files[i].imported, s.files[i].errorLine), std::tuple(false, bad[i].line))
        << s.files[i].reason.toStdString();
    EXPECT_TRUE(s.files[i].logLine.contains(QString::fromUtf8(bad[i].file)) &&
                s.files[i].logLine.contains(QStringLiteral("エラー行=%1行目").arg(bad[i].line)))
        << s.files[i].logLine.toStdString();
  }
  EXPECT_TRUE(s.files.back().imported && s.filesImported == 1) << s.files.back().logLine.toStdString();
  // Only the good file's user and days are there.
  std::vector<UserInfo> users;
  GetUserList(fresh_, kDefaultGroupId, users);
  ASSERT_EQ(users.size(), 1u);
  EXPECT_EQ(std::tuple(users[0].LOGIN_ID, CountRows(fresh_, "DAY_MEASUREMENT"),
                       CountRows(fresh_, "TIME_MEASUREMENT_BLOCK")),
            std::tuple(QString("z9"), 7, 7));
}

// Importing a file twice gives two receptions of the same user; the second one wins.
TEST_F(JapaneseImport, ReimportAddsAReceptionThatWins) {
  const QString file = inst_->path(QStringLiteral("temp/hana_山田_20240701.csv"));
  WriteBytes(file, GoodFileAndFreshDatabase().toUtf8());
  ASSERT_EQ(Import(fresh_, {file}).filesImported, 1);
  const CsvImportSummary again = Import(fresh_, {file});
  ASSERT_EQ(again.filesImported, 1);
  EXPECT_FALSE(again.files[0].userCreated);
  EXPECT_TRUE(again.log.contains(QStringLiteral("@利用者更新 ログインID=hana,氏名=山田")));
  std::vector<CsvRow> rows;
  ASSERT_EQ(VTDB_GetChartDataForCSV(fresh_, again.files[0].userId, QStringLiteral("20240624"),
                                    QStringLiteral("20240624"), rows),
            2);
  EXPECT_TRUE(rows[0].NewestOfDay && rows[0].RECEIVE_ID == "R000000002") << rows[0].RECEIVE_ID.toStdString();
}

TEST_F(JapaneseImport, FileNamesAndLoginIds) {
  QString login, name;
  EXPECT_TRUE(ParseCsvFileName(QStringLiteral("/x/abc_Hana Mori_20070402.csv"), login, name) &&
              login + u'|' + name == QStringLiteral("abc|Hana Mori"));
  EXPECT_TRUE(ParseCsvFileName(QStringLiteral("Hana_20070402.CSV"), login, name) && login + u'|' + name == "|Hana");
  EXPECT_FALSE(ParseCsvFileName(QStringLiteral("Hana_2007042.csv"), login, name));
  EXPECT_FALSE(IsFileCsv(QStringLiteral("a.txt")));
  EXPECT_TRUE(IsLoginIdText(QStringLiteral("ab-c")) && IsLoginIdText(QStringLiteral("ａｂ")));
  EXPECT_FALSE(IsLoginIdText(QStringLiteral("Ab09")));
  for (const char* yes : {"0", "0.5", "10", "12.25"}) EXPECT_TRUE(IsNumericText(QString::fromLatin1(yes))) << yes;
  for (const char* no : {"", "01", "1.", "1.2.3", "-1", "1e3", " 1"})
    EXPECT_FALSE(IsNumericText(QString::fromLatin1(no))) << no;

  // Names of 20 and login ids of 10 characters pass; one more is refused before reading.
  const QString good = GoodFileAndFreshDatabase();
  const QString dir = inst_->path(QStringLiteral("temp/names"));
  QDir().mkpath(dir);
  const QString name20 = QString(20, u'名');
  const QString tooLong = QStringLiteral("ファイル名のログインIDまたは氏名が長すぎます");
  const std::pair<QString, QString> names[] = {{"abcdefghij_" + name20, "ok"},
                                               {"abcdefghijk_x", tooLong},
                                               {"k1_" + name20 + u'名', tooLong},
                                               {"ログイン_x", "ログインIDに使用できない文字があります"},
                                               {"", "氏名がファイル名にありません"}};
  for (const auto& [file, reason] : names) WriteBytes(dir + u'/' + file + "_20240701.csv", good.toUtf8());
  const CsvImportSummary s = Import(fresh_, {dir});
  ASSERT_EQ(s.files.size(), 5u);
  std::map<QString, QString> reasons;
  for (const auto& r : s.files) reasons[QFileInfo(r.path).fileName()] = r.imported ? QStringLiteral("ok") : r.reason;
  for (const auto& [file, reason] : names) EXPECT_EQ(reasons[file + "_20240701.csv"], reason) << file.toStdString();

  // Without a login id one is made from the prefix and the counter, which is kept.
  const QString plain = inst_->path(QStringLiteral("temp/Hana_20240701.csv"));
  WriteBytes(plain, good.toUtf8());
  const CsvImportSummary made = Import(fresh_, {plain});
  ASSERT_EQ(made.filesImported, 1) << made.log.toStdString();
  EXPECT_EQ(made.files[0].loginId, Ini_GetCsvLoginIdPrefix().right(4) +
                                       QStringLiteral("%1").arg(Ini_GetCsvLoginIdMax().toInt(), 6, 10, QLatin1Char('0')));
  const int counter = Ini_GetCsvLoginIdMax().toInt();
  ASSERT_EQ(Import(fresh_, {plain}).filesImported, 1);
  EXPECT_EQ(Ini_GetCsvLoginIdMax().toInt(), counter + 1);

  // The instructor's login id is refused.
  const QString instructor = inst_->path(QStringLiteral("temp/INSTRUCTOR_x_20240701.csv"));
  WriteBytes(instructor, good.toUtf8());
  UserRecord teacher = SampleUser(kInstructorUserId);
  teacher.GROUP_ID = kInstructorGroupId;
  teacher.LOGIN_ID = QStringLiteral("INSTRUCTOR");
  teacher.FIRST_NAME = QStringLiteral("先生");
  VTDB_SetUserInfo(fresh_, teacher);
  const CsvImportSummary refused = Import(fresh_, {instructor});
  EXPECT_EQ(refused.files[0].reason, QStringLiteral("指導者と同じログインIDです"));
}

// A store failure in the middle of a file (the fifth day cannot be written) takes back
// the whole file, the user it registered included.
TEST_F(JapaneseImport, AStoreFailureMidFileTakesBackTheUserToo) {
  const QString good = GoodFileAndFreshDatabase();
  fresh_.exec(QStringLiteral("CREATE TRIGGER refuse_day BEFORE INSERT ON DAY_MEASUREMENT "
                             "WHEN NEW.MEASUREMENT_DAY = '20240628' BEGIN SELECT RAISE(ABORT, 'disk says no'); END"));
  const QString file = inst_->path(QStringLiteral("temp/hana_山田_20240701.csv"));
  WriteBytes(file, good.toUtf8());
  const CsvImportSummary s = Import(fresh_, {file});
  ASSERT_EQ(s.filesImported, 0);
  EXPECT_EQ(s.files[0].reason, QStringLiteral("不正なデータがありました"));
  EXPECT_EQ(VTDB_SearchUserIdFromLoginID(fresh_, QStringLiteral("hana")), QString());
  EXPECT_EQ(std::tuple(CountRows(fresh_, "DAY_MEASUREMENT"), CountRows(fresh_, "TIME_MEASUREMENT_BLOCK"),
                       CountRows(fresh_, "RECEIVE_HISTORY_DATE")),
            std::tuple(0, 0, 0));
  // Once the store takes days again the same file goes in whole.
  fresh_.exec(QStringLiteral("DROP TRIGGER refuse_day"));
  EXPECT_EQ(Import(fresh_, {file}).filesImported, 1);
  EXPECT_EQ(CountRows(fresh_, "DAY_MEASUREMENT"), 7);
}
