// The installation files of both editions, read through the same readers the program
// uses: every message code with a level that fits its class letter, every menu key, the
// resource profile sections the screens read, pictures that exist, sane plan tables, and
// a configuration whose required numbers are numbers.
#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QImage>
#include <QRegularExpression>
#include <QSet>
#include <QTemporaryDir>

#include "frame/catalogue.h"
#include "frame/config.h"
#include "frame/helpers.h"
#include "frame/profile.h"
#include "frame/shared_values.h"

namespace {

const QString kSource = QStringLiteral(VANTORA_SOURCE_DIR);

QString distFile(const QString& edition, const QString& rel) {
  return kSource + QStringLiteral("/dist/") + edition + QLatin1Char('/') + rel;
}

QString readText(const QString& path) {
  QFile f(path);
  if (!f.open(QIODevice::ReadOnly)) return QString();
  return DecodeSystemText(f.readAll());
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

const QStringList& menuKeys() {
  static const QStringList keys = QStringLiteral(
      "MENU_EDIT MENU_EDIT_NEW_USER MENU_EDIT_EDIT_USER MENU_EDIT_DELETE_USER MENU_DISPLAY "
      "MENU_DISPLAY_ALPHABET_ASC MENU_DISPLAY_ALPHABET_DESC MENU_DISPLAY_REG_ASC "
      "MENU_DISPLAY_REG_DESC MENU_JOB MENU_JOB_DOWNLOAD MENU_JOB_REPORT MENU_MOVE "
      "MENU_MOVE_USERLIST MENU_HELP MENU_HELP_HELP MENU_HELP_VERSION MENU_HEALTHYDIARY "
      "MENU_QUIT").split(QLatin1Char(' '));
  return keys;
}

// Keys with their section as the screens read them; all must hold a text.
struct Need {
  const char* section;
  const char* keys;
};
const Need kResourceNeeds[] = {
    {"VB_COMMON", "CHARSET FONT DATE_FORMAT FORM_ICON IMAGE_USERICON_1 IMAGE_USERICON_2 "
                  "IMAGE_USERICON_3 IMAGE_USERICON_4 IMAGE_USERICON_5 IMAGE_USERICON_6"},
    {"USERSELECTION", "CAPTION_USER_SELECT_TITLE CAPTION_USER_JOB_SELECT_TITLE "
                      "CAPTION_USER_GRAPH_TITLE CAPTION_TOOLTIP_BACK CAPTION_TOOLTIP_USERNEW "
                      "CAPTION_TOOLTIP_USEREDIT CAPTION_TOOLTIP_RECEIVE CAPTION_TOOLTIP_PRINT "
                      "CAPTION_LBLCHARTFROM CAPTION_LBLCHARTTO CAPTION_LBLWAIT CAPTION_LBLWELCOME "
                      "IMAGE_BACK_UP IMAGE_BACK_DOWN IMAGE_BG_SVGA IMAGE_BG_XGA IMAGE_BG_SXGA "
                      "IMAGE_FOOTER_XGA IMAGE_PERIODAREA_XGA IMAGE_DATEBTNAREA_XGA IMAGE_GRAPHBTN_XGA "
                      "IMAGE_GRAPHBTN1_UP_SVGA IMAGE_GRAPHBTN7_DOWN_SXGA"},
    {"USERLIST", "CAPTION_TITLE CAPTION_BTNCANCEL"},
    {"USERREGIST", "CAPTION_TITLE CAPTION_LBLFN CAPTION_BTNUSERREGIST CAPTION_BTNUSERREGISTCANCEL"},
    {"USERMODIFY", "CAPTION_TITLE CAPTION_LBLFN CAPTION_BTNUSERMODIFY CAPTION_BTNUSERMODIFYCANCEL"},
    {"USERDELETE", "CAPTION_TITLE CAPTION_BTNUSERDELETE CAPTION_BTNUSERDELETECANCEL"},
    {"PRINTER", "CAPTION_TITLE CAPTION_LBLPRINTER CAPTION_LBLPAPERSIZE CAPTION_BTNOK CAPTION_BTNCANCEL"},
    {"VERSION", "CAPTION_TITLE IMAGE_BACK"},
    {"SPLASH", "IMAGE_BACK"},
    {"MANEGEMENTRECEIVE", "CAPTION_TITLE MANAGEMENT_RECEIVING CURRENTPAGE_RECEIVING "
                          "STARTPAGE_RECEIVING CAPTION_BTNCANCEL"},
    {"RECEIVING", "CAPTION_TITLE MANAGEMENT_RECEIVING DATA_RECEIVING CAPTION_BTNCANCEL GIF_RECEIVING"},
    {"DOWNLOADFINISH", "CAPTION_LBLMESSAGE"},
    {"NEWCPU", "CAPTION_TITLE CAPTION_LBLNEWCPU CAPTION_BTNSELECTUSER CAPTION_BTNCREATEUSER "
               "CAPTION_BTNCANCEL"},
    {"NEWCPUSETUSER", "CAPTION_TITLE CAPTION_LBLREGIST CAPTION_LBLFN CAPTION_BTNRECEIVE CAPTION_BTNCANCEL"},
    {"USINGALART", "CAPTION_TITLE CAPTION_LBLREGIST CAPTION_LBLCHANGE CAPTION_LBLFN CAPTION_LBLCHGFN "
                   "CAPTION_BTNRECEIVE CAPTION_BTNCANCEL"},
    {"USINGALART_RESET", "CAPTION_TITLE CAPTION_LBLREGIST CAPTION_LBLCHANGE CAPTION_LBLFN "
                         "CAPTION_BTNRECEIVE CAPTION_BTNCANCEL"},
    {"SIMULATION", "CAPTION_TITLE CAPTION_METS CAPTION_RMR CAPTION_WALK CAPTION_SPEED_WALK "
                   "CAPTION_RMR_WALK CAPTION_RMR_SPEED_WALK CAPTION_USER_NAME NUMERICERROR FOODERROR "
                   "YOU_OVERWEIGHT YOU_STWEIGHT YOU_UNDERWEIGHT TOMUCHWEIGHTLOSSERROR "
                   "MESSAGE_YOUR_HEALTHYWEIGHT1 MESSAGE_COMPAREDWITH_STWEIGH IMG_BACK IMG_CALC "
                   "IMG_SAVE IMG_GRAPH IMG_CANCEL PERIOD_DEFALT"},
    {"SIMULATIONGRAPH", "CAPTION_FROM CAPTION_TO IMG_CHANGE_PLAN IMG_ONE"},
    {"CSVEXPORT", "CAPTION_ERR_PERIODMSG CAPTION_ERR_TITLEMSG CAPTION_ERR_LOGIN CAPTION_ERR_NAME"},
    {"REPORT_HEADER", "CAPTION_MALE CAPTION_FEMALE"},
};

const char* const kColours[][2] = {
    {"VB_COMMON", "FORM_BKCOLOR"},          {"USERLIST", "BKCOLOUR_GROUPINFO"},
    {"SIMULATION", "BKCOLOUR_OPTREDUCE"},   {"SIMULATION", "BKCOLOUR_OPTFOODCAL"},
    {"SIMULATION", "BKCOLOUR_OPTKINDACT"},
};

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
    EXPECT_FALSE(rec->text1.contains(QLatin1Char('"')));
    EXPECT_FALSE(rec->text2.contains(QLatin1Char('"')));
  }
}

TEST_P(Edition, TitleNamesTheEdition) {
  LoadResourceFromText(readText(distFile(ed(), QStringLiteral("bin/ACTA.res"))));
  const auto title = FindMessage(QStringLiteral("TITL-I-0001"));
  ASSERT_TRUE(title.has_value());
  if (ed() == QLatin1String("ja")) {
    EXPECT_EQ(title->text1, QStringLiteral("ヴァントーラ パーソナル"));
  } else {
    EXPECT_EQ(title->text1, QStringLiteral("Vantora Personal"));
  }
}

TEST_P(Edition, MenuHasEveryKey) {
  const QString text = readText(distFile(ed(), QStringLiteral("bin/menu.res")));
  ASSERT_FALSE(text.isEmpty());
  LoadMenuResourceFromText(text);
  for (const QString& key : menuKeys()) {
    SCOPED_TRACE(key.toStdString());
    const QString caption = GetMenuCaption(key);
    EXPECT_NE(caption, QStringLiteral("*** Resouce Not Exist ***"));
    EXPECT_FALSE(caption.trimmed().isEmpty());
  }
}

TEST_P(Edition, ResourceFileHasTheKeysTheScreensRead) {
  const QString ini = resourceIni();
  ASSERT_TRUE(FileExists(ini));
  for (const Need& n : kResourceNeeds) {
    for (const QString& key : QString::fromLatin1(n.keys).split(QLatin1Char(' '))) {
      EXPECT_FALSE(ReadIniString(ini, QString::fromLatin1(n.section), key).isEmpty())
          << n.section << "/" << key.toStdString();
    }
  }
  for (const auto& c : kColours) {
    for (const char* part : {"_R", "_G", "_B"}) {
      const QString key = QString::fromLatin1(c[1]) + QString::fromLatin1(part);
      const QString v = ReadIniString(ini, QString::fromLatin1(c[0]), key);
      ASSERT_TRUE(isWholeNumber(v)) << c[0] << "/" << key.toStdString();
      EXPECT_GE(v.toInt(), 0);
      EXPECT_LE(v.toInt(), 255);
    }
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
      QFile gif(file);
      ASSERT_TRUE(gif.open(QIODevice::ReadOnly));
      EXPECT_EQ(gif.read(6), QByteArray("GIF89a"));
    } else {
      QImage img(file);
      EXPECT_FALSE(img.isNull());
    }
    ++count;
  }
  EXPECT_GT(count, 90);
}

TEST_P(Edition, PlanTablesHoldUsableValues) {
  const QString ini = resourceIni();
  const QString sec = QStringLiteral("SIMULATION");
  auto value = [&](const QString& key) { return ReadIniString(ini, sec, key); };

  int periods = 0;
  for (int i = 0; i <= 25; ++i) {
    const QString text = value(QStringLiteral("PERIOD%1").arg(i));
    if (text.isEmpty()) continue;
    ++periods;
    const QString months = value(QStringLiteral("PERIOD_MONTHVAL%1").arg(i));
    ASSERT_TRUE(isWholeNumber(months)) << i;
    EXPECT_GT(months.toInt(), 0);
  }
  EXPECT_GE(periods, 6);
  EXPECT_LT(value(QStringLiteral("PERIOD_DEFALT")).toInt(), periods);

  for (int i = 0; i <= 9; ++i) {
    if (value(QStringLiteral("FOOD_NAME%1").arg(i)).isEmpty()) continue;
    const QString kcal = value(QStringLiteral("FOOD_CAL%1").arg(i));
    ASSERT_TRUE(isWholeNumber(kcal)) << i;
    EXPECT_GT(kcal.toInt(), 0);
    EXPECT_LT(kcal.toInt(), 1500);  // kcal of one portion unit
    EXPECT_FALSE(value(QStringLiteral("FOOD_UNIT%1").arg(i)).isEmpty());
  }
  for (int i = 0; i <= 9; ++i) {
    if (value(QStringLiteral("FOOD_AMOUNT%1").arg(i)).isEmpty()) continue;
    const QString tenths = value(QStringLiteral("FOOD_AMOUNT_VAL%1").arg(i));
    ASSERT_TRUE(isWholeNumber(tenths)) << i;
    EXPECT_GT(tenths.toInt(), 0);
  }
  for (int i = 0; i <= 24; ++i) {
    const QString cut = value(QStringLiteral("DIET_CAL%1").arg(i));
    if (cut.isEmpty()) continue;
    ASSERT_TRUE(isWholeNumber(cut)) << i;
    EXPECT_GT(cut.toInt(), 0);
  }
  int activities = 0;
  for (int i = 0;; ++i) {
    if (value(QStringLiteral("ACTIVITY%1").arg(i)).isEmpty()) break;
    ++activities;
    const QString mets = value(QStringLiteral("ACTIVITY_VAL%1").arg(i));
    ASSERT_TRUE(isWholeNumber(mets)) << i;
    // METs in tenths; 1.0 would divide the minutes formula by zero.
    EXPECT_GT(mets.toInt(), 10) << i;
    EXPECT_LT(mets.toInt(), 200) << i;
  }
  EXPECT_GE(activities, 10);
}

TEST_P(Edition, ConfigurationReadsThroughTheAccessors) {
  // A throw-away installation of this edition's files, as the program sees them.
  QTemporaryDir dir;
  ASSERT_TRUE(dir.isValid());
  const QString root = dir.path();
  for (const char* d : {"bin", "conf", "data/mdb", "temp", "log", "raw", "reader"}) {
    ASSERT_TRUE(QDir(root).mkpath(QString::fromLatin1(d)));
  }
  for (const char* f : {"conf/config.cnf", "conf/resource.ini", "bin/ACTA.res", "bin/menu.res"}) {
    ASSERT_TRUE(QFile::copy(distFile(ed(), QString::fromLatin1(f)), root + QLatin1Char('/') + QString::fromLatin1(f)));
  }
  ASSERT_TRUE(QFile::copy(kSource + QStringLiteral("/dist/common/conf/pmmets.ini"), root + QStringLiteral("/conf/pmmets.ini")));
  QFile chart(root + QStringLiteral("/conf/chart.ini"));
  if (!QFile::exists(distFile(ed(), QStringLiteral("conf/chart.ini")))) {
    ASSERT_TRUE(chart.open(QIODevice::WriteOnly));
    chart.close();
  } else {
    ASSERT_TRUE(QFile::copy(distFile(ed(), QStringLiteral("conf/chart.ini")), chart.fileName()));
  }
  const QString oldCwd = QDir::currentPath();
  ASSERT_TRUE(QDir::setCurrent(root + QStringLiteral("/bin")));
  struct Back {
    QString dir;
    ~Back() {
      QDir::setCurrent(dir);
      ResetSharedValues();
    }
  } back{oldCwd};

  ASSERT_TRUE(Ini_LoadConfig());
  EXPECT_FALSE(GetMetsIniPath().isEmpty());
  // The required numbers: a missing or broken one would end the program.
  EXPECT_NO_THROW({
    EXPECT_EQ(Ini_GetPollingInterval(), 1000);
    EXPECT_EQ(Ini_GetLogLevel(), 1);
    EXPECT_EQ(Ini_GetSortOrder(), 0);
    EXPECT_EQ(Ini_GetSaveLastUser(), 1);
    EXPECT_EQ(Ini_GetMaxRecord(), 366);
    EXPECT_GT(Ini_GetValidVersionNumber(), 0);
  });
  EXPECT_EQ(Ini_GetLang(), ed() == QLatin1String("ja") ? 0 : 1);
  EXPECT_EQ(Ini_GetPmDump(), 0);
  EXPECT_TRUE(Ini_GetPmAl());
  EXPECT_TRUE(Ini_GetCompactDb());
  EXPECT_FALSE(Ini_GetSaveRawData());
  EXPECT_FALSE(Ini_GetDownloadDataRange());

  // Five distinct recorder numbers of five digits, the family A one as the recorder reports it.
  const QStringList numbers{Ini_GetPmAlNumber(), Ini_GetPmBrioJpnNumber(), Ini_GetPmBrioEngNumber(),
                            Ini_GetPmBrioKt200Number(), Ini_GetPmBrioKt014Number()};
  static const QRegularExpression five(QStringLiteral("^[0-9]{5}$"));
  for (const QString& n : numbers) EXPECT_TRUE(five.match(n).hasMatch()) << n.toStdString();
  EXPECT_EQ(QSet<QString>(numbers.begin(), numbers.end()).size(), 5);
  EXPECT_EQ(Ini_GetPmAlNumber(), QStringLiteral("12820"));

  EXPECT_EQ(Ini_GetProhibitChars(),
            QStringList({"\\", "/", ":", "*", "?", "\"", "<", ">", "|", ",", "'"}));
  EXPECT_FALSE(CheckProhibitChar(QStringLiteral("a/b")));
  EXPECT_TRUE(CheckProhibitChar(QStringLiteral("Hanako")));

  // Targets offered to a new user pass the checks of the user screens.
  QString step, actMin, intake, actCal;
  Ini_GetUserTargets(step, actMin, intake, actCal);
  EXPECT_GE(step.toInt(), 2000);
  EXPECT_LE(step.toInt(), 20000);
  EXPECT_GE(actCal.toInt(), 0);
  EXPECT_LE(actCal.toInt(), 1000);
  const double exercise = Ini_GetTargetExercise().toDouble();
  EXPECT_GE(exercise, 0.0);
  EXPECT_LE(exercise, 50.0);
  QString from, to;
  Ini_GetModerate(from, to);
  EXPECT_LT(from.toInt(), to.toInt());

  EXPECT_EQ(Ini_GetReaderType(), QStringLiteral("EMULATOR"));
  EXPECT_EQ(Ini_GetEmulatorPath(), QStringLiteral("../reader"));

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
