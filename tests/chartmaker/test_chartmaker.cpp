#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QImage>
#include <QProcess>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QTemporaryDir>

#include "chartmaker/chartdraw.h"
#include "chartmaker/chartfiles.h"
#include "chartmaker/chartmaker.h"
#include "chartmaker/chartsettings.h"
#include "charts/chart_files.h"
#include "testsupport/sample_charts.h"

namespace {

QString DistChartIni(const char* lang) {
  return QStringLiteral(VANTORA_SOURCE_DIR "/dist/%1/conf/chart.ini").arg(QLatin1String(lang));
}

class ChartMakerTest : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(dir.isValid());
    ASSERT_EQ(maker.prepare(DistChartIni("ja")), chartcode::kOk);
  }
  QString path(const QString& name) const { return dir.filePath(name); }
  QString write(const QString& name, const QByteArray& bytes) {
    EXPECT_TRUE(WriteBytes(path(name), bytes));
    return path(name);
  }

  QTemporaryDir dir;
  ChartMaker maker;
};

TEST_F(ChartMakerTest, BadFilesGiveTheirCodesAndNeverAPicture) {
  ImageSurface surface(QSize(400, 300));
  for (const QString& missing : {path("absent.txt"), QString(), dir.path() /* a folder */})
    EXPECT_EQ(ChartMakerPersonal(maker, surface, missing), chartcode::kFileMissing) << missing.toStdString();
  EXPECT_EQ(ChartMakerPersonal(maker, surface, write("empty.txt", "")), chartcode::kFileMalformed);
  EXPECT_EQ(ChartMakerPersonal(maker, surface, write("blank.txt", "\r\n\r\n")), chartcode::kFileMalformed);
  // Unknown type, type that is not a number, missing line 3, bad dates, short data line,
  // a day that ends before it starts.
  for (const char* text : {"703\r\n20240601,20240607\r\n0,0,0,0,0,0\r\n", "abc\r\n20240601,20240607\r\n0,0,0,0,0,0\r\n",
                           "200\r\n20240601,20240607\r\n", "200\r\n2024-06-01,x\r\n0,0,0,0,0,0\r\n",
                           "200\r\n20240601,20240607\r\n0,0,0,0,0,0\r\n0,20240601\r\n",
                           "200\r\n20240601,20240607\r\n0,0,0,0,0,0\r\n0,20240608,20240601\r\n"})
    EXPECT_EQ(ChartMakerPersonal(maker, surface, write("t.txt", text)), chartcode::kFileMalformed) << text;
  // Bytes of every value, no text.
  QByteArray noise;
  for (int i = 0; i < 5000; ++i) noise.append(static_cast<char>((i * 7919 + i / 13) % 256));
  EXPECT_EQ(ChartMakerPersonal(maker, surface, write("noise.txt", noise)), chartcode::kFileMalformed);
  EXPECT_EQ(surface.timesShown(), 0);
  EXPECT_FALSE(maker.hasChart(&surface));
}

TEST_F(ChartMakerTest, FilesWithoutDataGiveTheFamilyNoDataCodeAndStillDraw) {
  SampleCharts sample(QStringLiteral("ja"), 30);
  ASSERT_EQ(sample.error, QString());
  const std::pair<int, int> expected[] = {{100, 310}, {200, 710}, {201, 710}, {302, 810}, {400, 510},
                                          {501, 410}, {602, 310}, {900, 610}, {5, 910}};
  for (const auto& [type, code] : expected) {
    ImageSurface surface(QSize(640, 400));
    const QString file = sample.make(type, QDate(2023, 6, 30)).iface;  // a year before the first day
    EXPECT_EQ(ChartMakerPersonal(maker, surface, file), code) << type;
    EXPECT_EQ(surface.timesShown(), 1) << type;
    EXPECT_GT(DistinctColours(surface.image(), 7), 2) << type;  // axes and captions are there
  }
  // Only the three head lines: a period without days.
  ImageSurface surface(QSize(640, 400));
  EXPECT_EQ(ChartMakerPersonal(maker, surface, write("head.txt", "300\r\n20240601,20240607\r\n0,0,0,0,0,0\r\n")),
            chartcode::kAveActNoData);
}

TEST_F(ChartMakerTest, AllDaysExcludedIsReportedAsNoEffectiveData) {
  // The sample's week with every measured day left out.
  SampleCharts sample(QStringLiteral("ja"), 10);
  ASSERT_EQ(sample.error, QString());
  QStringList lines = QString::fromUtf8(ReadBytes(sample.make(200).iface)).split("\r\n");
  for (qsizetype i = 3; i < lines.size(); ++i) lines[i].replace(QRegularExpression("^0,"), "1,");
  ImageSurface surface(QSize(640, 400));
  EXPECT_EQ(ChartMakerPersonal(maker, surface, write("excl.txt", lines.join("\r\n").toUtf8())),
            chartcode::kAveStepNoEffectiveData);

  // The same in a weekly file: a group whose days were all left out is written as a
  // "1" line without figures; it had data, so it is not "no data" either.
  const QString weekly = "201\r\n20240601,20240614,4,7,15000,500,100,2000,10000" + QString(23, ',') + "23" +
                         "\r\n0,0,0,0,0,0\r\n1,20240601,20240607" + QString(25, ',') +
                         "\r\n3,20240608,20240614" + QString(25, ',') + "\r\n";
  EXPECT_EQ(ChartMakerPersonal(maker, surface, write("wexcl.txt", weekly.toUtf8())),
            chartcode::kAveStepNoEffectiveData);
  // Read back with the first group's exercise: the group had rows and carries it.
  const QString withExercise = QString(weekly).replace(
      "1,20240601,20240607" + QString(25, ','), charts::PutFieldAt("1,20240601,20240607" + QString(25, ','), "4.5", 786));
  InterfaceFile f;
  ASSERT_EQ(ReadInterfaceFile(write("wexcl.txt", withExercise.toUtf8()), f), ChartReadStatus::Ok);
  ASSERT_EQ(f.lines.size(), 2u);
  EXPECT_EQ(std::tuple(f.lines[0].state, f.lines[0].exercise, f.lines[1].state),
            std::tuple(LineState::AllExcluded, std::optional(4.5), LineState::NoData));
}

TEST_F(ChartMakerTest, RemakeRepaintsFromMemoryWithoutTheFile) {
  SampleCharts sample(QStringLiteral("ja"), 40);
  const QString file = sample.make(401).iface;
  ImageSurface surface(QSize(700, 420));
  ImageSurface other(QSize(700, 420));
  ASSERT_EQ(ChartMakerPersonal(maker, surface, file), 0);
  const QImage first = surface.image();
  ASSERT_TRUE(QFile::remove(file));

  EXPECT_EQ(ChartReMakePersonal(maker, surface), 0);
  EXPECT_EQ(surface.timesShown(), 2);
  EXPECT_EQ(surface.image(), first);
  // A new size is honoured on remake; a surface that never had a chart has nothing.
  surface.setSize(QSize(500, 300));
  EXPECT_EQ(ChartReMakePersonal(maker, surface), 0);
  EXPECT_EQ(surface.image().size(), QSize(500, 300));
  EXPECT_EQ(ChartReMakePersonal(maker, other), chartcode::kFileMissing);
  EXPECT_EQ(other.timesShown(), 0);

  // A failed make keeps the last good chart; finish forgets everything.
  EXPECT_EQ(ChartMakerPersonal(maker, surface, file), chartcode::kFileMissing);
  EXPECT_EQ(ChartReMakePersonal(maker, surface), 0);
  EXPECT_EQ(ChartFinishPersonal(maker), 0);
  EXPECT_EQ(ChartReMakePersonal(maker, surface), chartcode::kFileMissing);
}

bool HavePdfToText() { return !QStandardPaths::findExecutable(QStringLiteral("pdftotext")).isEmpty(); }

TEST_F(ChartMakerTest, ReportPdfCarriesThePersonAndThePeriod) {
  QString pdf = path("report.pdf");
  {
    SampleCharts sample(QStringLiteral("ja"), 10);
    UserInfo user = SampleUserInfo(QStringLiteral("花子"), QStringLiteral("山田"));
    user.USER_ID = SampleCharts::kUserId;
    ASSERT_EQ(EditUser(sample.db, user), 0);
    sample.inst.setConfig(QStringLiteral("OTHER"), QStringLiteral("INSTITUTION"), QStringLiteral("さくら健康クリニック"));
    const SampleCharts::Files f = sample.make(200);
    ASSERT_EQ(PrintChartPersonal(maker, f.header, f.iface, "pdf:" + pdf, 9), 0);
    EXPECT_TRUE(ReadBytes(pdf).startsWith("%PDF"));
  }
  if (!HavePdfToText()) GTEST_SKIP() << "pdftotext not installed";
  // Ideographs that share their glyph with a radical read back as the ideograph; figures
  // beside Latin letters keep their text too (the CJK font's shaping would swap them for
  // glyphs without one).
  const QString text = PdfText(pdf);
  for (const char* part : {"身長 / 体重", "初日・最終日", "花子 山田", "さくら健康クリニック", "2024/06/24"})
    EXPECT_TRUE(text.contains(QString::fromUtf8(part))) << part << "\n" << text.toStdString();
  EXPECT_TRUE(text.contains(QRegularExpression(" \\d+ cm / \\d+\\.\\d kg"))) << text.toStdString();

  // English settings, Letter paper.
  SampleCharts sample(QStringLiteral("en"), 10);
  const SampleCharts::Files f = sample.make(200);
  ChartMaker en;
  ASSERT_EQ(en.prepare(DistChartIni("en")), 0);
  pdf = path("report-en.pdf");
  ASSERT_EQ(PrintChartPersonal(en, f.header, f.iface, "pdf:" + pdf, 1), 0);
  const QString text2 = PdfText(pdf);
  EXPECT_TRUE(text2.contains(QStringLiteral("Hana Sato")) && text2.contains(QStringLiteral("Activity report")))
      << text2.toStdString();
}

TEST_F(ChartMakerTest, PrintingCodes) {
  SampleCharts sample(QStringLiteral("ja"), 10);
  const auto [iface, header, sim] = sample.make(200);
  EXPECT_EQ(PrintChartPersonal(maker, header, iface, QString(), 9), chartcode::kPrintNoPrinter);
  EXPECT_EQ(PrintChartPersonal(maker, header, iface, "  ", 9), chartcode::kPrintNoPrinter);
  EXPECT_EQ(PrintChartPersonal(maker, header, iface, "No Such Printer 4711", 9), chartcode::kPrintUnknownPrinter);
  EXPECT_EQ(PrintChartPersonal(maker, header, iface, "pdf:", 9), chartcode::kPrintUnknownPrinter);
  EXPECT_EQ(PrintChartPersonal(maker, path("none.txt"), iface, "pdf:" + path("x.pdf"), 9), chartcode::kFileMissing);
  EXPECT_EQ(PrintChartPersonal(maker, header, path("none.txt"), "pdf:" + path("x.pdf"), 9), chartcode::kFileMissing);
  EXPECT_EQ(PrintChartPersonal(maker, header, write("bad.txt", "x"), "pdf:" + path("x.pdf"), 9),
            chartcode::kFileMalformed);
  // A folder that does not exist cannot take the PDF.
  EXPECT_EQ(PrintChartPersonal(maker, header, iface, "pdf:" + path("no/such/dir/x.pdf"), 9), chartcode::kPrintFailed);
  // An unknown paper number still prints (the edition's usual paper).
  EXPECT_EQ(PrintChartPersonal(maker, header, iface, "pdf:" + path("odd.pdf"), 9999), 0);
  // A failed print leaves an earlier file as it was; a good one replaces it whole.
  const QString kept = write("kept.pdf", "earlier report");
  EXPECT_EQ(PrintChartPersonal(maker, header, write("bad2.txt", "x"), "pdf:" + kept, 9), chartcode::kFileMalformed);
  EXPECT_EQ(ReadBytes(kept), QByteArray("earlier report"));
  EXPECT_EQ(PrintChartPersonal(maker, header, iface, "pdf:" + kept, 9), 0);
  EXPECT_TRUE(ReadBytes(kept).startsWith("%PDF"));
  EXPECT_EQ(QDir(dir.path()).entryList({QStringLiteral("kept.pdf*")}, QDir::Files | QDir::Hidden).size(), 1);
}

TEST_F(ChartMakerTest, BmiPictureWritesItsBitmap) {
  ImageSurface surface(QSize(480, 150));
  const QString bmp = path("bmi.bmp");
  EXPECT_EQ(CreateBMIGraphPersonal(maker, surface, write("bmi.txt", "700\r\n23.4\r\n"), bmp), 0);
  QImage img(bmp);
  ASSERT_FALSE(img.isNull());
  EXPECT_EQ(img.size(), QSize(480, 150));
  for (const auto& [text, code] : {std::pair{"700\r\n\r\n", 0}, {"700\r\n", 0}, {"701\r\n22\r\n", chartcode::kFileMalformed},
                                    {"700\r\nfat\r\n", chartcode::kFileMalformed}})
    EXPECT_EQ(CreateBMIGraphPersonal(maker, surface, write("bmi.txt", text), bmp), code) << text;
  EXPECT_EQ(CreateBMIGraphPersonal(maker, surface, path("nobmi.txt"), bmp), chartcode::kFileMissing);
  // The picture stays on the surface for a repaint.
  EXPECT_EQ(ChartReMakePersonal(maker, surface), 0);
}

TEST(ChartFiles, LineStatesExerciseAndMeans) {
  SampleCharts sample(QStringLiteral("ja"), 7);
  ASSERT_EQ(sample.error, QString());
  // The sample's week, 06/26 without a row, with 06/25 marked as left out.
  const QString file = sample.make(200).iface;
  ASSERT_TRUE(WriteBytes(file, ReadBytes(file).replace("\r\n0,20240625,", "\r\n1,20240625,")));
  InterfaceFile f;
  ASSERT_EQ(ReadInterfaceFile(file, f), ChartReadStatus::Ok);
  EXPECT_EQ(std::tuple(f.type, f.moderateFrom, f.moderateTo, f.fixedMax[0]), std::tuple(200, 4, 7, 15000));
  EXPECT_EQ(std::pair(f.start, f.exerciseTarget), std::pair(QDate(2024, 6, 24), std::optional(23.0)));
  ASSERT_EQ(f.lines.size(), 7u);
  EXPECT_EQ(std::pair(f.lines[0].state, f.lines[0].exercise), std::pair(LineState::Counted, std::optional(1.9)));
  EXPECT_EQ(std::pair(f.lines[1].state, f.lines[1].exercise), std::pair(LineState::Excluded, std::optional(1.9)));
  EXPECT_EQ(std::pair(f.lines[2].state, f.lines[2].exercise.has_value()), std::pair(LineState::NoData, false));
  // Line 3's count as the writer made it; the lines counted as they are now.
  EXPECT_EQ(std::pair(f.validDays, f.countedLines()), std::pair(6, 5));
}

TEST(ChartFiles, DayProfileSlotsGapsEventsAndMode) {
  SampleCharts sample(QStringLiteral("ja"), 3);
  const QString file = sample.make(5, QDate(2024, 6, 29)).iface;
  InterfaceFile f;
  ASSERT_EQ(ReadInterfaceFile(file, f), ChartReadStatus::Ok);
  ASSERT_EQ(f.lines.size(), 1u);
  const ChartLine l = f.lines[0];  // a copy: f is read again below
  EXPECT_EQ(l.fields.size(), 786);
  const DayProfile p = ReadDayProfile(l);
  EXPECT_TRUE(p.any && !p.metsMode);
  EXPECT_EQ(std::pair(p.slot[0], p.slot[12]), std::pair(0.0, 0.5));  // 00:00 and 00:24
  EXPECT_EQ(p.eventMinutes, (std::vector<int>{20 * 60 + 40, 21 * 60 + 57}));
  ASSERT_TRUE(l.exercise.has_value());
  const QString head = QString::fromUtf8(ReadBytes(file)).section("\r\n", 0, 2) + "\r\n";

  // A day without a block: 720 empty slots push the mode into field 786, where the
  // exercise is appended to it.
  QStringList fields = l.fields.mid(0, 64);
  QString line = fields.join(',') + QString(720, ',') + ",1";
  line = charts::PutFieldAt(line, "2.5", 786);
  ASSERT_TRUE(WriteBytes(file, (head + line).toUtf8()));
  ASSERT_EQ(ReadInterfaceFile(file, f), ChartReadStatus::Ok);
  const DayProfile empty = ReadDayProfile(f.lines[0]);
  // Mode "1" is the two-minute average, not METs; the exercise behind it is read alone.
  EXPECT_TRUE(!empty.any && empty.averaged && !empty.metsMode);
  EXPECT_EQ(f.lines[0].exercise, 2.5);

  // A METS recorder's block holds METs with one decimal, whatever the mode says.
  QStringList slots(720, QStringLiteral("-1"));
  slots[300] = QStringLiteral("1.0");
  slots[301] = QStringLiteral("3.4");
  line = fields.join(',') + ',' + slots.join(',') + ",0";
  line = charts::PutFieldAt(line, "0.4", 786);
  ASSERT_TRUE(WriteBytes(file, (head + line).toUtf8()));
  ASSERT_EQ(ReadInterfaceFile(file, f), ChartReadStatus::Ok);
  const DayProfile mets = ReadDayProfile(f.lines[0]);
  EXPECT_TRUE(mets.metsMode && !mets.averaged);
  EXPECT_DOUBLE_EQ(mets.slot[301], 3.4);
  EXPECT_TRUE(std::isnan(mets.slot[0]));  // not worn
  EXPECT_EQ(f.lines[0].exercise, 0.4);
}

TEST(ChartFiles, HeaderFileFields) {
  QTemporaryDir dir;
  const QString file = dir.filePath("h.txt");
  QString text = "Margaret,Anne,Holloway,Maggie,Tuesday walkers\r\nWalks to work\r\n52,Female,,5' 4\",152 lbs.\r\n"
                 "20240601,20240630,5, 1\r\n8000,1800,30,4,7\r\n\"First Date, Last Date, 50 Step and under/day\"\r\n"
                 "Riverside Health Centre\r\n";
  ASSERT_TRUE(WriteBytes(file, text.toUtf8()));
  HeaderFile h;
  ASSERT_EQ(ReadHeaderFile(file, h), ChartReadStatus::Ok);
  EXPECT_EQ(QStringList({h.firstName, h.lastName, h.age, h.gender, h.height, h.weight, h.validDays, h.targetStep,
                         h.exclusionText, h.institution}).join(u'|'),
            "Margaret|Holloway|52|Female|5' 4\"|152 lbs.|5|8000|First Date, Last Date, 50 Step and under/day|"
            "Riverside Health Centre");
  EXPECT_TRUE(h.imperial && h.start == QDate(2024, 6, 1));
  // An empty gender caption leaves height and weight in their places.
  text.replace("52,Female,,5' 4\",152 lbs.", "45,,,158 cm,55.0 kg");
  ASSERT_TRUE(WriteBytes(file, text.toUtf8()));
  ASSERT_EQ(ReadHeaderFile(file, h), ChartReadStatus::Ok);
  EXPECT_EQ(QStringList({h.gender, h.height, h.weight}).join(u'|'), "|158 cm|55.0 kg");
  EXPECT_FALSE(h.imperial);
  // Shift_JIS text is read too.
  const QString sj = dir.filePath("sj.txt");
  ASSERT_TRUE(WriteBytes(sj, QByteArray("\x8E\x52\x93\x63,,,,\r\n", 10)));  // 山田 in CP932
  ASSERT_EQ(ReadHeaderFile(sj, h), ChartReadStatus::Ok);
  EXPECT_EQ(h.firstName, QStringLiteral("山田"));
  EXPECT_EQ(ReadHeaderFile(dir.filePath("none"), h), ChartReadStatus::Missing);
}

TEST(ChartFilesTest, ExclusionLineParsesEveryFormTheWriterMakes) {
  auto parsed = [](const QString& text) {
    const auto r = ParseExclusionText(text);
    if (!r) return QStringLiteral("none");
    return QStringLiteral("%1%2|%3").arg(r->firstDay ? "F" : "-", r->lastDay ? "L" : "-", r->threshold);
  };
  // "First Date" alone has no separator behind it. Last: other wording, a threshold that
  // is no number, or the parts in another order.
  for (const auto& [text, expected] :
       {std::pair{"First Date, Last Date, 50 Step and under/day", "FL|50"},
        {"\"First Date, Last Date, 50 Step and under/day\"", "FL|50"},
        {"First Date50 Step and under/day", "F-|50"},
        {"Last Date, 1000 Step and under/day", "-L|1000"}, {"50 Step and under/day", "--|50"},
        {"First Date, Last Date,  Step and under/day", "FL|"}, {" Step and under/day", "--|"}, {"", "none"},
        {"First Date, Last Date", "none"}, {"First Date, Last Date, fifty Step and under/day", "none"},
        {"Last Date, First Date, 50 Step and under/day", "none"}, {"初日・最終日", "none"}})
    EXPECT_EQ(parsed(QString::fromUtf8(text)), expected) << text;
}

TEST(ChartSettingsTest, ExclusionCaptionsAndDatesInTheEditionsLanguage) {
  ChartSettings ja, en;
  ASSERT_TRUE(ja.load(DistChartIni("ja")) && en.load(DistChartIni("en")));
  // No step rule (empty or a threshold that leaves no day out) and no day rule: none. What
  // does not parse is shown as written.
  for (const auto& [settings, text, caption] :
       {std::tuple{&ja, "First Date, Last Date, 50 Step and under/day", "初日・最終日・1日50歩未満の日"},
        {&ja, "Last Date, 2000 Step and under/day", "最終日・1日2,000歩未満の日"},
        {&ja, "First Date Step and under/day", "初日"}, {&ja, "0 Step and under/day", "なし"},
        {&en, "First Date, Last Date, 50 Step and under/day", "First day, last day, days under 50 steps"},
        {&ja, "Sundays", "Sundays"}})
    EXPECT_EQ(ExclusionCaption(*settings, text), QString::fromUtf8(caption)) << text;

  const QDate d(2024, 6, 30);  // a Sunday
  EXPECT_EQ(ja.formatDate(d, "%Y/%m/%d"), "2024/06/30");
  EXPECT_EQ(ja.formatDate(d, "%m/%d(%a)"), QStringLiteral("06/30(日)"));
  EXPECT_EQ(ja.formatDate(d, "%d.%m.%y %%"), "30.06.24 %");
  EXPECT_EQ(en.formatDate(d, en.dateMda), "06/30(Sun)");
  // A missing file keeps the built-in defaults.
  ChartSettings none;
  EXPECT_FALSE(none.load("/nonexistent/chart.ini"));
  EXPECT_FALSE(none.text("CHART_400").isEmpty());
  ChartMaker m;
  EXPECT_EQ(ChartPreparePersonal(m, "/nonexistent/chart.ini"), chartcode::kFileMissing);
}

}  // namespace
