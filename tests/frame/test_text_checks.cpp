#include <gtest/gtest.h>

#include <QFileInfo>

#include "frame/config.h"
#include "frame/helpers.h"
#include "testsupport/test_installation.h"

namespace {

TEST(Checks, LengthAndRange) {
  // Lengths count characters, not bytes.
  EXPECT_EQ(std::tuple(CheckLength("abc", 2, 0), CheckLength("", 5, 1), CheckLength("山田", 2, 1)),
            std::tuple(1, 2, 0));
  // "" reads as 0.
  EXPECT_EQ(std::tuple(CheckRange("250", 200.0, 10.0), CheckRange("5", 200.0, 10.0), CheckRange("", 10, 1),
                       CheckRange("12a", 12, 1)),
            std::tuple(3, 4, 4, 0));
}

TEST(ProhibitChars, CheckAndReplaceWithWideForms) {
  TestInstallation inst;
  ASSERT_TRUE(inst.isValid());
  inst.setConfig("PROHIBIT_FILENAME", "STRING_11", "\" \"");  // quotes keep the blank
  inst.setConfig("PROHIBIT_FILENAME", "STRING_12", "ab");  // two characters never match
  EXPECT_TRUE(CheckProhibitChar(QStringLiteral("山田_2006.csv")) && CheckProhibitChar(QStringLiteral("ab")));
  EXPECT_FALSE(CheckProhibitChar(QStringLiteral("a/b")) || CheckProhibitChar(QStringLiteral("a b")));

  EXPECT_EQ(ReplaceProhibitChar(QStringLiteral("a\\b\"c'd e/f:g")),
            QString::fromUtf16(u"a\uFFE5b\u201Dc\u2019d\u3000e\uFF0Ff\uFF1Ag"));
  EXPECT_EQ(ReplaceProhibitChar(QStringLiteral("plain-name_1.csv")), "plain-name_1.csv");
}

TEST(ProhibitChars, ListEndsAtTheFirstGap) {
  TestInstallation inst;
  ASSERT_TRUE(inst.isValid());
  inst.setConfig("PROHIBIT_FILENAME", "STRING_3", "");
  EXPECT_EQ(Ini_GetProhibitChars(), QStringList({"\\", "/"}));
  EXPECT_TRUE(CheckProhibitChar(QStringLiteral("a*b")));  // STRING_4 is not seen
}

TEST(Text, LineBreaksAndNul) {
  const QString t = QStringLiteral("a\r\nb\rc\nd");
  EXPECT_EQ(QStringList({RemoveLineBreaks(t, 1), RemoveLineBreaks(t, 0), CutAtNul(QString::fromUtf16(u"ab\0cd", 5)),
                         CutAtNul(QStringLiteral("abc"))}),
            QStringList({"abcd", "a  b c d", "ab", "abc"}));
}

TEST(Paths, TempNamesFoldersAndJoins) {
  TestInstallation inst;
  ASSERT_TRUE(inst.isValid());
  const QString a = MakeTempFileName(inst.tempPath(), QStringLiteral("CHART"));
  const QString b = MakeTempFileName(inst.tempPath(), QStringLiteral("CHART"));
  ASSERT_FALSE(a.isEmpty());
  // Made, so the name is taken.
  EXPECT_TRUE(a != b && QFileInfo(a).size() == 0 && QFileInfo(a).fileName().startsWith("CHA")) << a.toStdString();
  EXPECT_TRUE(MakeTempFileName(inst.path("no/such"), "x").isEmpty());

  QString folder;
  EnsureFolder(folder);
  EXPECT_EQ(folder, ".");
  folder = inst.path("newfolder");
  EnsureFolder(folder);
  EXPECT_TRUE(PathExists(folder));
  MakeFolderTree(inst.path("x/y/z"));
  EXPECT_TRUE(PathExists(inst.path("x/y/z")));

  EXPECT_EQ(QStringList({GetAbsolutePath("../conf/"), GetAbsolutePath(QString()),
                         GetAbsolutePathName("../temp/./a.txt"), JoinPath("../temp", "a.txt"),
                         JoinPath(QString(), "a.txt")}),
            QStringList({inst.confPath(), "", inst.path("temp/a.txt"), "../temp/a.txt", "a.txt"}));
}

}  // namespace
