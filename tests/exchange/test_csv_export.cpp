// The exported report compared with files checked line by line against the layout, in
// both editions and all three format kinds; the record limit; encodings.
#include <QDir>
#include <QStringDecoder>

#include "testsupport/exchange_fixture.h"

namespace {

// Compares with tests/exchange/golden/<name>; on a difference the text written is kept
// beside the build for inspection and the first differing line is named.
void ExpectGolden(const QString& text, const QString& name) {
  const QString expected = QString::fromUtf8(ReadBytes(TestDataPath(QStringLiteral("golden/") + name)));
  if (text == expected) return;
  QFile out(QDir::temp().filePath(name));
  if (out.open(QIODevice::WriteOnly)) out.write(text.toUtf8());
  ASSERT_FALSE(expected.isEmpty()) << "missing golden file " << name.toStdString();
  const QStringList a = text.split(QStringLiteral("\r\n"));
  const QStringList b = expected.split(QStringLiteral("\r\n"));
  for (qsizetype i = 0; i < std::min(a.size(), b.size()); ++i) {
    ASSERT_EQ(a[i], b[i]) << name.toStdString() << " line " << i + 1;
  }
  FAIL() << name.toStdString() << ": " << a.size() << " lines instead of " << b.size() << ", written to "
         << out.fileName().toStdString();
}

class JapaneseExport : public ExchangeTest {
 protected:
  void SetUp() override { SetUpWithDays(QStringLiteral("ja")); }
};

class EnglishExport : public ExchangeTest {
 protected:
  void SetUp() override { SetUpWithDays(QStringLiteral("en")); }
};

}  // namespace

// A range from a Sunday: six lead-in days, no-data days before and between the days
// with data; the reference row is the imported metric day.
TEST_F(JapaneseExport, EachKindMatchesItsGoldenFile) {
  for (int kind : {0, 1, 2}) {
    SCOPED_TRACE(kind);
    ExpectGolden(Export(QStringLiteral("20240616"), QStringLiteral("20240625"), kind),
                 QStringLiteral("ja_kind%1_sunday.csv").arg(kind));
  }
}

TEST_F(EnglishExport, EachKindMatchesItsGoldenFile) {
  for (int kind : {0, 1, 2}) {
    SCOPED_TRACE(kind);
    ExpectGolden(Export(QStringLiteral("20240616"), QStringLiteral("20240625"), kind),
                 QStringLiteral("en_kind%1_sunday.csv").arg(kind));
  }
}

// From a Monday: no lead-in line; a period without data: every line from the latest day.
TEST_F(JapaneseExport, MondayStartAndPeriodWithoutData) {
  ExpectGolden(Export(QStringLiteral("20240624"), QStringLiteral("20240626"), 0), QStringLiteral("ja_kind0_monday.csv"));
  ExpectGolden(Export(QStringLiteral("20240101"), QStringLiteral("20240103"), 1), QStringLiteral("ja_kind1_nodata.csv"));
}

TEST_F(JapaneseExport, RecordLimitCountsTheUpperIndex) {
  bool ok = false;
  Export(QStringLiteral("20240601"), QStringLiteral("20240701"), 0, 30, &ok);  // 31 days
  ASSERT_TRUE(ok);
  Export(QStringLiteral("20240601"), QStringLiteral("20240702"), 0, 30, &ok);  // 32 days
  EXPECT_FALSE(ok);
  ASSERT_EQ(inst_->dialog().shown.size(), 1u);
  EXPECT_TRUE(inst_->dialog().shown[0].text.contains(QStringLiteral("MAX Record is 30 records")));
  EXPECT_FALSE(QFile::exists(inst_->path(QStringLiteral("temp/out_20240601_20240702_0.csv"))));
}

TEST_F(JapaneseExport, WritesShiftJisWithCrLfAndRefusesWhatItCannotHold) {
  const QString path = inst_->path(QStringLiteral("temp/sjis.csv"));
  CsvExportOptions options;
  QString error;
  const auto write = [&](const QString& to, const UserInfo& user) {
    return MakeCSVData2(db_, kCsvUser, "20240623", "20240624", "20240630", to, user, -1, 0, options, error);
  };
  ASSERT_TRUE(write(path, user_));
  const QByteArray bytes = ReadBytes(path);
  // 受信日 in CP932, every line ended by CR LF.
  EXPECT_TRUE(bytes.startsWith("\x8e\xf3\x90\x4d\x93\xfa,") && bytes.endsWith("\r\n") &&
              bytes.contains("\r\n23:58,") && bytes.count("\r\n") == bytes.count("\n"));

  // A name with a character CP932 has not: refused before anything is written.
  UserInfo emoji = user_;
  emoji.FIRST_NAME = QStringLiteral("花子😀");
  const QString refused = inst_->path(QStringLiteral("temp/emoji.csv"));
  EXPECT_FALSE(write(refused, emoji));
  EXPECT_TRUE(error.contains(QStringLiteral("😀")) && !QFile::exists(refused)) << error.toStdString();
  // The same name goes into a UTF-8 file, with or without a byte order mark.
  options.encoding = CsvEncoding::Utf8Bom;
  ASSERT_TRUE(write(refused, emoji));
  EXPECT_TRUE(ReadBytes(refused).startsWith("\xEF\xBB\xBF" "\xE5\x8F\x97"));
  inst_->setConfig(QStringLiteral("OTHER"), QStringLiteral("CSV_ENCODING"), QStringLiteral("UTF-8"));
  EXPECT_EQ(DefaultCsvEncoding(false), CsvEncoding::Utf8);
}

TEST_F(EnglishExport, WritesUtf8WithoutByteOrderMark) {
  const QString path = inst_->path(QStringLiteral("temp/en.csv"));
  QString error;
  ASSERT_TRUE(MakeCSVData2(db_, kCsvUser, QStringLiteral("20240623"), QStringLiteral("20240624"),
                           QStringLiteral("20240630"), path, user_, -1, 0, {}, error));
  const QByteArray bytes = ReadBytes(path);
  EXPECT_TRUE(bytes.startsWith("Download Day," + QDate::currentDate().toString(QStringLiteral("MM/dd/yyyy")).toLatin1()));
}

TEST_F(JapaneseExport, BatchSkipsUsersWithoutDataAndNamesFilesByLoginAndName) {
  UserRecord other = SampleUser(QStringLiteral("U000000002"));
  other.LOGIN_ID = QStringLiteral("taro");
  other.FIRST_NAME = QStringLiteral("太郎");
  other.NICK_NAME = QStringLiteral("taro");
  ASSERT_TRUE(VTDB_SetUserInfo(db_, other));
  const QString folder = inst_->path(QStringLiteral("temp/batch"));
  QDir().mkpath(folder);
  NullProgress progress;
  QString log;
  const CsvExportOptions options{.today = QDate(2024, 7, 1)};
  const int written = CSVBatchExport(db_, QStringLiteral("20240101"), QStringLiteral("20241231"), 0, folder,
                                     {kCsvUser, QStringLiteral("U000000002")}, progress, log, options);
  EXPECT_EQ(std::tuple(written, QDir(folder).entryList(QDir::Files)),
            std::tuple(1, QStringList{QStringLiteral("hana_山田_20240701.csv")}));
  EXPECT_EQ(log, QStringLiteral("出力できませんでした@ログインID=taro,氏名=太郎 taro@指定した期間にデータがありません\r\n"));
  // The file holds the user's measured days only: from the imported day to the last.
  const QString text = QStringDecoder("CP932").decode(ReadBytes(folder + QStringLiteral("/hana_山田_20240701.csv")));
  EXPECT_TRUE(text.contains(QStringLiteral("\r\n2024/06/20,158,58.5,F,41,(木),250,1850,")) &&
              text.contains(QStringLiteral("\r\n2024/06/30,")) && !text.contains(QStringLiteral("\r\n2024/07/01,")));
}
