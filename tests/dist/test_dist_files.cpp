// The installation files of both editions, read through the same readers the program
// uses: every message code with a level that fits its class letter, menu and resource keys
// that both editions hold, pictures that exist, and a configuration whose required
// numbers are numbers.
#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QImage>
#include <QMap>
#include <QRegularExpression>
#include <QSet>

#include "frame/catalogue.h"
#include "frame/config.h"
#include "frame/helpers.h"
#include "frame/profile.h"
#include "frame/shared_values.h"
#include "testsupport/test_installation.h"

namespace {

const QString kSource = QStringLiteral(VANTORA_SOURCE_DIR);

QString distFile(const QString& edition, const QString& rel) {
  return kSource + QStringLiteral("/dist/") + edition + QLatin1Char('/') + rel;
}

QString readText(const QString& path) {
  return DecodeSystemText(ReadBytes(path));
}

// The codes of an edition's catalogue file, in file order.
QStringList CodesOfCatalogue(const QString& text) {
  QStringList codes;
  for (const QString& line : text.split(QLatin1Char('\n'))) {
    const QString t = line.trimmed();
    if (t.isEmpty() || t.startsWith(QLatin1Char(';'))) continue;
    codes << t.section(QLatin1Char(','), 0, 0);
  }
  return codes;
}

// "KEY" of each "KEY,caption" line of a menu file, or "[SECTION]KEY" of each "KEY=value"
// line of a profile file, with its value.
QMap<QString, QString> KeysOf(const QString& text, bool menu) {
  QMap<QString, QString> keys;
  QString section;
  for (const QString& line : text.split(QLatin1Char('\n'))) {
    const QString t = line.trimmed();
    if (t.isEmpty() || t.startsWith(QLatin1Char(';'))) continue;
    if (!menu && t.startsWith(QLatin1Char('['))) {
      section = t;
      continue;
    }
    const qsizetype at = t.indexOf(QLatin1Char(menu ? ',' : '='));
    keys.insert(section + t.left(at), at < 0 ? QString() : t.mid(at + 1).trimmed());
  }
  return keys;
}

bool isWholeNumber(const QString& s) {
  static const QRegularExpression re(QStringLiteral("^-?[0-9]+$"));
  return re.match(s).hasMatch();
}

// A picture path of the resource file ("../images/x.png", relative to bin/) as a file
// of the source tree.
QString pictureSource(const QString& value) {
  const QString prefix = QStringLiteral("../images/");
  if (!value.startsWith(prefix)) return QString();
  return kSource + QStringLiteral("/dist/common/images/") + value.mid(prefix.size());
}

class Edition : public ::testing::TestWithParam<const char*> {
 protected:
  QString ed() const { return QString::fromLatin1(GetParam()); }
  QString resourceIni() const { return distFile(ed(), QStringLiteral("conf/resource.ini")); }
  QString configCnf() const { return distFile(ed(), QStringLiteral("conf/config.cnf")); }
};

TEST_P(Edition, CatalogueRecordsAreWholeAndMatchTheOtherEdition) {
  const QString text = readText(distFile(ed(), QStringLiteral("bin/ACTA.res")));
  ASSERT_FALSE(text.isEmpty());
  const QString other = ed() == QLatin1String("ja") ? QStringLiteral("en") : QStringLiteral("ja");
  const QStringList codes = CodesOfCatalogue(text);
  QStringList otherCodes = CodesOfCatalogue(readText(distFile(other, QStringLiteral("bin/ACTA.res"))));
  // Both editions tell the same things: a code missing from one shows as a bare code there.
  QStringList sorted = codes;
  sorted.sort();
  otherCodes.sort();
  EXPECT_EQ(sorted, otherCodes);
  EXPECT_EQ(QSet<QString>(codes.begin(), codes.end()).size(), codes.size()) << "a code stands twice";
  LoadResourceFromText(text);
  for (const QString& code : codes) {
    SCOPED_TRACE(code.toStdString());
    // A code that does not look like one means a broken line was read as a record.
    ASSERT_TRUE(QRegularExpression(QStringLiteral("^[A-Z]{4}-[CWI]-\\d{4}$")).match(code).hasMatch());
    const auto rec = FindMessage(code);
    ASSERT_TRUE(rec.has_value());
    const QChar cls = code.at(5);
    const int expected = cls == QLatin1Char('C') ? 2 : cls == QLatin1Char('W') ? 1 : 0;
    EXPECT_EQ(rec->level, expected);
    EXPECT_FALSE(rec->text1.trimmed().isEmpty());
    // A quote left in a text means a field was split or joined wrongly.
    EXPECT_FALSE(rec->text1.contains(QLatin1Char('"')) || rec->text2.contains(QLatin1Char('"')));
  }
}

TEST_P(Edition, TitleNamesTheEdition) {
  LoadResourceFromText(readText(distFile(ed(), QStringLiteral("bin/ACTA.res"))));
  const auto title = FindMessage(QStringLiteral("TITL-I-0001"));
  ASSERT_TRUE(title.has_value());
  EXPECT_EQ(title->text1, ed() == QLatin1String("ja") ? QStringLiteral("ヴァントーラ パーソナル") : QStringLiteral("Vantora Personal"));
}

// A key that only one edition holds is a caption the other shows as missing; the English
// edition adds the middle and last name and leaves the honorific empty.
TEST(BothEditions, MenuAndResourceFilesHoldTheSameKeys) {
  const auto menuJa = KeysOf(readText(distFile(QStringLiteral("ja"), QStringLiteral("bin/menu.res"))), true);
  const auto menuEn = KeysOf(readText(distFile(QStringLiteral("en"), QStringLiteral("bin/menu.res"))), true);
  EXPECT_GE(menuJa.size(), 19);
  EXPECT_EQ(menuJa.keys(), menuEn.keys());
  for (const auto* menu : {&menuJa, &menuEn})
    for (auto it = menu->begin(); it != menu->end(); ++it) EXPECT_FALSE(it.value().isEmpty()) << it.key().toStdString();

  const auto ja = KeysOf(readText(distFile(QStringLiteral("ja"), QStringLiteral("conf/resource.ini"))), false);
  const auto en = KeysOf(readText(distFile(QStringLiteral("en"), QStringLiteral("conf/resource.ini"))), false);
  for (auto it = ja.begin(); it != ja.end(); ++it) {
    SCOPED_TRACE(it.key().toStdString());
    EXPECT_FALSE(it.value().isEmpty());
    EXPECT_TRUE(en.contains(it.key()));
    // Colours are three whole numbers of a byte each.
    if (it.key().endsWith(QLatin1String("_R")) || it.key().endsWith(QLatin1String("_G")) ||
        it.key().endsWith(QLatin1String("_B"))) {
      for (const QString& v : {it.value(), en.value(it.key())})
        EXPECT_TRUE(isWholeNumber(v) && v.toInt() >= 0 && v.toInt() <= 255) << v.toStdString();
    }
  }
  for (auto it = en.begin(); it != en.end(); ++it) {
    EXPECT_TRUE(it.key().contains(QLatin1String("SAMA")) || it.key().contains(QLatin1String("CAPTION_NAME_")) ||
                (ja.contains(it.key()) && !it.value().isEmpty()))
        << it.key().toStdString();
  }
}

TEST_P(Edition, EveryPictureOfTheResourceFileExistsAndLoads) {
  const QString text = readText(resourceIni());
  static const QRegularExpression re(QStringLiteral("^(IMAGE_\\w+|IMG_\\w+|FORM_ICON|GIF_RECEIVING)=(.*)$"),
                                     QRegularExpression::MultilineOption);
  int count = 0;
  for (auto it = re.globalMatch(text); it.hasNext();) {
    const auto m = it.next();
    const QString file = pictureSource(m.captured(2).trimmed());
    SCOPED_TRACE(m.captured(0).toStdString());
    ASSERT_FALSE(file.isEmpty()) << "picture outside ../images/";
    if (file.endsWith(QLatin1String(".gif"))) {
      // The GIF reader is a plugin that needs a running application; the header suffices.
      EXPECT_EQ(ReadBytes(file).left(6), QByteArray("GIF89a"));
    } else {
      EXPECT_FALSE(QImage(file).isNull());
    }
    ++count;
  }
  EXPECT_GT(count, 90);
}

TEST_P(Edition, ConfigurationReadsThroughTheAccessors) {
  // A throw-away installation of this edition's files, with the configuration as shipped.
  TestInstallation inst(ed());
  ASSERT_TRUE(inst.isValid());
  ASSERT_TRUE(QFile::remove(inst.configFile()));
  ASSERT_TRUE(QFile::copy(configCnf(), inst.configFile()));
  ASSERT_TRUE(Ini_LoadConfig());
  EXPECT_FALSE(GetMetsIniPath().isEmpty());
  // The required numbers: a missing or broken one would end the program.
  EXPECT_NO_THROW({
    EXPECT_GT(Ini_GetPollingInterval(), 0);
    EXPECT_GT(Ini_GetMaxRecord(), 0);
    EXPECT_GT(Ini_GetValidVersionNumber(), 0);
  });
  EXPECT_EQ(Ini_GetLang(), ed() == QLatin1String("ja") ? 0 : 1);

  // Five distinct recorder numbers of five digits, the family A one as the recorder reports it.
  const QStringList numbers{Ini_GetPmAlNumber(), Ini_GetPmBrioJpnNumber(), Ini_GetPmBrioEngNumber(),
                            Ini_GetPmBrioKt200Number(), Ini_GetPmBrioKt014Number()};
  static const QRegularExpression five(QStringLiteral("^[0-9]{5}$"));
  for (const QString& n : numbers) EXPECT_TRUE(five.match(n).hasMatch()) << n.toStdString();
  EXPECT_EQ(QSet<QString>(numbers.begin(), numbers.end()).size(), 5);

  EXPECT_FALSE(CheckProhibitChar(QStringLiteral("a/b")));
  EXPECT_TRUE(CheckProhibitChar(QStringLiteral("Hanako")));

  // Targets offered to a new user pass the checks of the user screens.
  QString step, actMin, intake, actCal;
  Ini_GetUserTargets(step, actMin, intake, actCal);
  EXPECT_TRUE(step.toInt() >= 2000 && step.toInt() <= 20000) << step.toStdString();
  EXPECT_TRUE(actCal.toInt() >= 0 && actCal.toInt() <= 1000) << actCal.toStdString();
  const double exercise = Ini_GetTargetExercise().toDouble();
  EXPECT_TRUE(exercise >= 0.0 && exercise <= 50.0) << exercise;
  QString from, to;
  Ini_GetModerate(from, to);
  EXPECT_LT(from.toInt(), to.toInt());

  // The date formats agree with each other: the screen form is the picker form with
  // each separator escaped.
  QString screen = Ini_GetLocaleShortDate();
  screen.replace(QLatin1Char('/'), QStringLiteral("\\/"));
  EXPECT_EQ(Ini_GetDateScreenYmd(), screen);
  EXPECT_TRUE(Ini_GetDateGraphMda().endsWith(QStringLiteral("(%a)")));

  // The common look reads from the resource file named by the configuration.
  LoadCommonFormat();
  EXPECT_FALSE(GetCommonFontName().isEmpty());
  EXPECT_NE(GetCommonFormBackColor(), 0u);
}

std::string EditionName(const ::testing::TestParamInfo<const char*>& p) { return p.param; }

INSTANTIATE_TEST_SUITE_P(BothEditions, Edition, ::testing::Values("ja", "en"), EditionName);

}  // namespace
