#include <gtest/gtest.h>

#include <QStringEncoder>
#include <QTemporaryDir>

#include "frame/profile.h"
#include "testsupport/test_installation.h"

namespace {

class Profile : public ::testing::Test {
 protected:
  void write(const QByteArray& bytes) { ASSERT_TRUE(WriteBytes(file, bytes)); }
  QByteArray contents() const { return ReadBytes(file); }
  QString read(const char* section, const char* key) const {
    return ReadIniString(file, QString::fromUtf8(section), QString::fromUtf8(key));
  }

  QTemporaryDir dir;
  QString file = dir.filePath("test.ini");
};

TEST_F(Profile, SectionsAndKeysIgnoreCaseAndBlanks) {
  write("[System]\r\n  Db_Name = ../data/mdb/ACTA.db  \r\n[other]\r\nKEY=2\r\n");
  // Keys belong to their section.
  EXPECT_EQ(QStringList({read("SYSTEM", "DB_NAME"), read("system", "db_name"), read("OTHER", "DB_NAME"),
                         read("NONE", "KEY")}),
            QStringList({"../data/mdb/ACTA.db", "../data/mdb/ACTA.db", "", ""}));
}

TEST_F(Profile, FirstSectionAndFirstKeyWin) {
  write("[A]\nK=1\nK=2\n[B]\nK=3\n[A]\nK=4\nL=5\n");
  EXPECT_EQ(read("A", "K") + "|" + read("A", "L"), "1|");
}

TEST_F(Profile, ValueIsCutAt255AndAtNul) {
  const QByteArray longValue(300, 'x');
  write("[S]\nLONG=" + longValue + "\nNUL=ab" + QByteArray(1, '\0') + "cd\nQ=\"  spaced  \"\nE=\n");
  EXPECT_EQ(std::tuple(read("S", "LONG"), read("S", "NUL"), read("S", "Q"), read("S", "E")),
            std::tuple(QString(255, u'x'), QString("ab"), QString("  spaced  "), QString()));
  // A default stands in only for a key that is not there at all.
  EXPECT_EQ(QStringList({ReadIniString(file, "S", "E", "d"), ReadIniString(file, "S", "MISSING", "d"),
                         ReadIniString(file, "S", "NUL", "d")}),
            QStringList({"", "d", "ab"}));
}

TEST_F(Profile, IntegerReadingTakesTheLeadingNumber) {
  // No file yet.
  EXPECT_EQ(QStringList({ReadIniString(QString(), "S", "K"), ReadIniString(file, "S", "K", "d"),
                         ReadIniInt(file, "S", "K")}),
            QStringList({"", "d", "0"}));
  EXPECT_FALSE(FileExists(file) || FileExists(QString()) || FileExists(dir.path()));  // a folder is no file
  write("[S]\nA=42\nB= -7x\nC=abc\nD=\nE=12.9\nF=+3\nG=4294967297\n");
  // G wraps at 32 bits.
  const std::pair<const char*, const char*> cases[] = {{"A", "42"}, {"B", "-7"}, {"C", "0"},      {"E", "12"},
                                                       {"F", "3"},  {"G", "1"},  {"MISSING", "0"}};
  for (const auto& [key, value] : cases) EXPECT_EQ(ReadIniInt(file, "S", QString::fromLatin1(key)), value) << key;
}

TEST_F(Profile, WriteKeepsPlaceAndCreatesWhatIsMissing) {
  write("; settings\r\n[SYSTEM]\r\nA=1\r\nSORT_ORDER=0\r\nZ=9\r\n\r\n[OTHER]\r\nX=1\r\n");
  EXPECT_NE(WriteIniString(file, "system", "sort_order", "3"), 0);
  EXPECT_EQ(contents(),
            "; settings\r\n[SYSTEM]\r\nA=1\r\nsort_order=3\r\nZ=9\r\n\r\n[OTHER]\r\nX=1\r\n");
  // A new key goes behind the section's last entry, before the blank line.
  WriteIniString(file, "SYSTEM", "NEW", "n");
  EXPECT_EQ(contents(),
            "; settings\r\n[SYSTEM]\r\nA=1\r\nsort_order=3\r\nZ=9\r\nNEW=n\r\n\r\n[OTHER]\r\nX=1\r\n");
  WriteIniString(file, "OTHER", "Y", "2");
  WriteIniString(file, "FRESH", "K", "v");
  EXPECT_TRUE(contents().endsWith("[OTHER]\r\nX=1\r\nY=2\r\n[FRESH]\r\nK=v\r\n"));
}

TEST_F(Profile, WriteCreatesTheFile) {
  EXPECT_NE(WriteIniString(file, "S", "K", QStringLiteral("値")), 0);
  EXPECT_EQ(std::tuple(contents(), read("S", "K")), std::tuple(QByteArray("[S]\nK=値\n"), QString("値")));
  WriteIniString(file, "S", "K", QString::fromUtf16(u"a\0b", 3));
  EXPECT_EQ(read("S", "K"), "a");
  EXPECT_EQ(WriteIniString(dir.filePath("no/such/dir.ini"), "S", "K", "v"), 0);
}

TEST_F(Profile, Cp932FilesAreRead) {
  QStringEncoder cp932("CP932");
  ASSERT_TRUE(cp932.isValid());
  const QString text = QStringLiteral("[USERSELECTION]\r\nCAPTION_TITLE=ユーザー選択\r\n");
  write(cp932.encode(text));
  EXPECT_EQ(read("USERSELECTION", "CAPTION_TITLE"), "ユーザー選択");
  // A write turns the whole file into UTF-8 and keeps the value.
  WriteIniString(file, "USERSELECTION", "OTHER", "x");
  EXPECT_EQ(QString::fromUtf8(contents()),
            "[USERSELECTION]\r\nCAPTION_TITLE=ユーザー選択\r\nOTHER=x\r\n");
}

TEST(DecodeSystemText, Utf8WithOrWithoutBomElseCp932) {
  EXPECT_EQ(QStringList({DecodeSystemText("\xEF\xBB\xBF" "abc"), DecodeSystemText(QStringLiteral("日本").toUtf8()),
                         DecodeSystemText(QByteArray("\x93\xfa\x96\x7b"))}),
            QStringList({"abc", "日本", "日本"}));
}

}  // namespace
