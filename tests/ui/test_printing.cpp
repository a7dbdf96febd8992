// Printing from the window: printer and paper choice, the print command, the result
// codes of the chart library, and the PDF a household saves instead of printing.
#include <QDir>
#include <QFile>
#include <QPageLayout>
#include <QPageSize>
#include <QProcess>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QUrl>
#include <gtest/gtest.h>

#include "chartmaker/chartmaker.h"
#include "frame/catalogue.h"
#include "frame/config.h"
#include "frame/shared_values.h"
#include "testsupport/sample_charts.h"
#include "ui/frmPrinterSetup.h"
#include "ui/frmVersion.h"
#include "ui/printing.h"

namespace {

// A printer that records what it was asked and answers with a set code; it also moves
// the working directory, as a printer driver may.
class RecordingPrinter : public ReportPrinter {
 public:
  int answer = 0;
  QStringList printed;
  int printPage(const QString& name, const QString&, const QPageLayout& layout, const PagePainter&) override {
    printed << name + QLatin1Char('|') + layout.pageSize().name();
    QDir::setCurrent(QDir::rootPath());
    return answer;
  }
};

FixedPrinterCatalog TwoPrinters() {
  FixedPrinterCatalog c;
  c.printers.push_back({QStringLiteral("Office"), {{QStringLiteral("Letter"), 1}, {QStringLiteral("A4"), 9}}});
  c.printers.push_back({QStringLiteral("Kitchen"), {{QStringLiteral("A5"), 11}, {QStringLiteral("Legal"), 5}}});
  c.printers.push_back({QStringLiteral("Label"), {}});
  c.defaultName = QStringLiteral("Kitchen");
  return c;
}

bool Shown(const RecordingDialog& d, const QString& code, const QString& extra = QString()) {
  const auto rec = FindMessage(code);
  if (!rec) return false;
  const QString text = BuildMessageText(*rec, extra, false);
  for (const auto& s : d.shown)
    if (s.text == text) return true;
  return false;
}

class PrintingTest : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(inst.isValid());
    SetLogLevel(QStringLiteral("0"));
  }
  // A week's chart files as temp/INT.txt and temp/HED.txt, and a chart library whose
  // printer records.
  void writeChartFiles() {
    const SampleCharts::Files f = sample.make(200);
    ASSERT_TRUE(QFile::rename(f.iface, inst.path(QStringLiteral("temp/INT.txt"))) &&
                QFile::rename(f.header, inst.path(QStringLiteral("temp/HED.txt"))));
    maker.setReportPrinter(printer);
  }
  ChartMaker maker;
  std::shared_ptr<RecordingPrinter> printer = std::make_shared<RecordingPrinter>();
  SampleCharts sample{QStringLiteral("ja"), 10};
  TestInstallation& inst = sample.inst;
};

TEST(PaperNumbers, MapBothWaysAndKeepSizesWithoutANumber) {
  for (auto id : {QPageSize::A4, QPageSize::Letter, QPageSize::Legal, QPageSize::A3, QPageSize::A5,
                  QPageSize::JisB5, QPageSize::A6, QPageSize::A0, QPageSize::Comm10E}) {
    const int number = ChartMaker::PaperNumberOf(id);
    int back = -1;
    ASSERT_TRUE(ChartMaker::PaperFromNumber(number, back)) << number;
    EXPECT_EQ(back, static_cast<int>(id)) << number;
  }
  EXPECT_EQ(std::pair(ChartMaker::PaperNumberOf(QPageSize::A4), ChartMaker::PaperNumberOf(QPageSize::Letter)), std::pair(9, 1));
  // A size without a number of its own is carried above the platform's numbers.
  EXPECT_GE(ChartMaker::PaperNumberOf(QPageSize::A0), ChartMaker::kPrinterOwnPaper);
  EXPECT_EQ(ChartMaker::PaperNumberOf(QPageSize::Custom), 0);
  int id = -1;
  for (int number : {0, ChartMaker::kPrinterOwnPaper + QPageSize::Custom, ChartMaker::kPrinterOwnPaper + 100000})
    EXPECT_FALSE(ChartMaker::PaperFromNumber(number, id)) << number;
}

TEST_F(PrintingTest, DefaultPaperFollowsLanguageUnlessPaperSizeIsSet) {
  FixedPrinterCatalog c = TwoPrinters();
  c.defaultName = QStringLiteral("Office");
  PrinterSetupLogic logic(c, true);
  auto paper = [&logic] { return logic.papers()[static_cast<size_t>(logic.paperIndex())].number; };
  // LANG 0: A4, LANG 1: Letter; a configured paper whatever the language.
  for (const auto& [section, key, value, number] :
       {std::tuple{"SYSTEM", "LANG", "0", 9}, {"SYSTEM", "LANG", "1", 1}, {"OTHER", "PAPER_SIZE", " 9 ", 9}}) {
    inst.setConfig(QLatin1String(section), QLatin1String(key), QLatin1String(value));
    ASSERT_TRUE(logic.load());
    EXPECT_EQ(paper(), number) << key << "=" << value;
  }
  // A number the printer lacks leaves the first paper; a printer with none, an empty list.
  logic.selectPrinter(1);
  EXPECT_EQ(logic.paperIndex(), 0);
  logic.selectPrinter(2);
  EXPECT_TRUE(logic.papers().empty() && logic.paperIndex() == -1);
  // The PDF entry offers the common sizes and takes the same rule.
  logic.selectPrinter(3);
  ASSERT_TRUE(logic.isPdfEntry(3));
  EXPECT_EQ(paper(), 9);
}

TEST_F(PrintingTest, LastChoiceHoldsForTheProcessAndCancelKeepsIt) {
  FixedPrinterCatalog c = TwoPrinters();
  {
    frmPrinterSetup first(c, QString());
    EXPECT_TRUE(GetModalFormOpen());
    EXPECT_EQ(first.cmbPrinter->currentText(), QStringLiteral("Kitchen"));  // system default
    EXPECT_EQ(first.cmbPrinter->count(), 4);
    EXPECT_EQ(first.cmbPrinter->itemText(3), PrinterSetupLogic::pdfEntryText());
    first.cmbPrinter->setCurrentIndex(0);
    EXPECT_EQ(first.cmbPaper->currentData().toInt(), 9);
    first.cmbPaper->setCurrentIndex(0);
    first.btnOK->click();
    EXPECT_EQ(first.result(), QDialog::Accepted);
  }
  EXPECT_FALSE(GetModalFormOpen());
  EXPECT_EQ(std::pair(GetChosenPrinter(), GetChosenPaper()), std::pair(QStringLiteral("Office"), 1));
  {
    frmPrinterSetup second(c, QString());
    EXPECT_EQ(second.cmbPrinter->currentText(), QStringLiteral("Office"));
    second.btnCancel->click();
  }
  EXPECT_EQ(std::pair(GetChosenPrinter(), GetChosenPaper()), std::pair(QString(), 0));
  EXPECT_EQ(GetPrinterName(), QStringLiteral("Office"));
  frmPrinterSetup third(c, QString());
  EXPECT_EQ(third.cmbPrinter->currentText(), QStringLiteral("Office"));
  // Nothing of it reaches the configuration.
  EXPECT_TRUE(Ini_GetPrinterName().isEmpty());
  for (const char* line : {"btnOK_Click Start", "btnCancel_Click Start"})
    EXPECT_TRUE(inst.logged(QStringLiteral("0"), QStringLiteral("frmPrinterSetup"), QLatin1String(line))) << line;
}

TEST_F(PrintingTest, WithoutPrintersOnlyThePdfEntryOrTheMessage) {
  FixedPrinterCatalog none;
  {
    frmPrinterSetup setup(none, QString(), nullptr, false);
    setup.activate();
    EXPECT_TRUE(Shown(inst.dialog(), QStringLiteral("PRNT-I-0001")));
    EXPECT_EQ(std::pair(setup.result(), GetChosenPrinter()), std::pair(int(QDialog::Rejected), QString()));
  }
  inst.dialog().shown.clear();
  frmPrinterSetup withPdf(none, QString());
  withPdf.activate();
  EXPECT_EQ(std::pair(inst.dialog().shown.size(), withPdf.cmbPrinter->count()), std::pair(size_t{0}, 1));
  EXPECT_TRUE(withPdf.logic().isPdfEntry(withPdf.cmbPrinter->currentIndex()));
  // OK without a file name keeps the screen open and chooses nothing.
  withPdf.askPdfPath = [](QWidget*, const QString&) { return QString(); };
  withPdf.btnOK->click();
  EXPECT_TRUE(GetChosenPrinter().isEmpty());
}

TEST_F(PrintingTest, ResultCodesReachLogAndPerson) {
  struct Case {
    int code;
    const char* line;  // level and text under "ChartMaker"; nullptr: no line
    const char* message;
    const char* extra;
  };
  const Case cases[] = {
      // One of each kind: a message with a line, a silent cancel, a message without a
      // line, a no-data code that is only logged, and a number without a name.
      {110, "1|ERR_PRINT_NO_PRINTER_VALUE", "USEL-I-0001", ""},
      {1120, "1|ERR_REPORT_CANCEL_PRINTER_VALUE", nullptr, nullptr},
      {1200, "2|ERR_EXCEPTION", "USEL-C-0004", "(DLL)ChartMaker ERR_EXCEPTION"},
      {220, nullptr, "USEL-C-0004", "(DLL)ChartMaker ERROR"},
      {540, "1|ERR_ACTIVITY_LEVEL_AVE_NO_EFFECTIVE_DATA_IN_FILE_VALUE", nullptr, nullptr},
      {4711, "1|4711", nullptr, nullptr},
  };
  for (const Case& c : cases) {
    QFile::remove(inst.traceFile());
    inst.dialog().shown.clear();
    ReportChartResult(c.code);
    const QString log = inst.traceText();
    if (c.line) {
      const QStringList parts = QString::fromLatin1(c.line).split(QLatin1Char('|'));
      EXPECT_TRUE(inst.logged(parts[0], QStringLiteral("ChartMaker"), parts[1])) << c.code << log.toStdString();
    } else {
      EXPECT_FALSE(log.contains(QRegularExpression(QStringLiteral("\\|ChartMaker *\\|")))) << c.code;
    }
    if (c.message) {
      ASSERT_EQ(inst.dialog().shown.size(), 1u) << c.code;
      EXPECT_TRUE(Shown(inst.dialog(), QLatin1String(c.message), QLatin1String(c.extra))) << c.code;
    } else {
      EXPECT_TRUE(inst.dialog().shown.empty()) << c.code;
    }
  }
}

TEST_F(PrintingTest, ConfiguredPrinterFallsBackToTheDefaultAndTheDirectoryComesBack) {
  writeChartFiles();
  const QString iface = inst.path(QStringLiteral("temp/INT.txt"));
  const QString header = inst.path(QStringLiteral("temp/HED.txt"));

  FixedPrinterCatalog none;
  EXPECT_FALSE(PrintOnConfiguredPrinter(maker, none, header, iface).has_value());
  EXPECT_TRUE(printer->printed.isEmpty());

  FixedPrinterCatalog c = TwoPrinters();
  inst.setConfig(QStringLiteral("OTHER"), QStringLiteral("PRINTER"), QStringLiteral("Gone"));
  inst.setConfig(QStringLiteral("OTHER"), QStringLiteral("PAPER_SIZE"), QStringLiteral("11"));
  const QString cwd = QDir::currentPath();
  EXPECT_EQ(PrintOnConfiguredPrinter(maker, c, QStringLiteral("../temp/HED.txt"), QStringLiteral("../temp/INT.txt")),
            std::optional<int>(0));
  EXPECT_EQ(QDir::currentPath(), cwd);
  EXPECT_EQ(Ini_GetPrinterName(), QStringLiteral("Kitchen"));
  EXPECT_EQ(printer->printed, QStringList{QStringLiteral("Kitchen|A5")});
  for (const QString& line : {QStringLiteral("GetAbsolutePath(g_sHeaderFileName) = ") + header,
                              QStringLiteral("GetAbsolutePath(g_sInterfaceFileName) = ") + iface,
                              QStringLiteral("Ini_GetPrinterName = Kitchen"), QStringLiteral("Ini_GetPrintPaper = 11"),
                              QStringLiteral("lChartProcessRet = 0"), QStringLiteral("PrintChart After")})
    EXPECT_TRUE(inst.logged(QStringLiteral("0"), QStringLiteral("DrawChart"), line)) << line.toStdString();
}

TEST_F(PrintingTest, PrintCurrentChartPrintsTheChosenPrinterOrNothing) {
  writeChartFiles();
  int redraws = 0, updates = 0;
  QString choose;
  const std::pair<QString, QString> files(QStringLiteral("../temp/HED.txt"), QStringLiteral("../temp/INT.txt"));
  const PrintChartRequest r{.maker = &maker,
                            .redraw = [&] { ++redraws; return files; },
                            .updateStates = [&] { ++updates; },
                            .showPrinterSetup = [&] { SetChosenPrinter(choose); SetChosenPaper(9); }};

  EXPECT_FALSE(PrintCurrentChart(r).has_value());  // cancelled choice
  EXPECT_EQ(redraws, 0);

  choose = QStringLiteral("Office");
  const QString cwd = QDir::currentPath();
  EXPECT_EQ(PrintCurrentChart(r), std::optional<int>(0));
  EXPECT_EQ(QDir::currentPath(), cwd);
  EXPECT_EQ(printer->printed, QStringList{QStringLiteral("Office|A4")});
  // A cancelled print dialog is silent; a printer that went away meanwhile is not.
  printer->answer = chartcode::kPrintCancel;
  EXPECT_EQ(PrintCurrentChart(r), std::optional<int>(120));
  EXPECT_TRUE(inst.dialog().shown.empty());
  printer->answer = chartcode::kPrintUnknownPrinter;
  EXPECT_EQ(PrintCurrentChart(r), std::optional<int>(130));
  EXPECT_TRUE(Shown(inst.dialog(), QStringLiteral("USEL-C-0004"), QStringLiteral("(DLL)ChartMaker ERROR")));
  EXPECT_EQ(std::pair(redraws, updates), std::pair(3, 3));  // a cancelled choice ends before the states
}

// A person saves the month report as PDF through the printer screen, in each edition
// on its own paper.
TEST(SaveAsPdfScenario, TheReportLandsInTheChosenFileWithItsText) {
  for (const char* lang : {"ja", "en"}) {
    SampleCharts sample{QLatin1String(lang), 30};
    ASSERT_EQ(sample.error, QString());
    const TestInstallation& inst = sample.inst;
    const bool ja = QLatin1String(lang) == QLatin1String("ja");
    const SampleCharts::Files f = sample.make(102);
    ASSERT_TRUE(QFile::rename(f.iface, inst.path(QStringLiteral("temp/INT.txt"))) &&
                QFile::rename(f.header, inst.path(QStringLiteral("temp/HED.txt"))));
    ChartMaker maker;
    ASSERT_EQ(maker.prepare(inst.chartIniFile()), 0);
    FixedPrinterCatalog c = TwoPrinters();
    const QString pdf = inst.path(QStringLiteral("out/report.pdf"));
    QDir().mkpath(QFileInfo(pdf).path());
    QString offered;

    PrintChartRequest r{.maker = &maker, .catalog = &c, .redraw = [] {
      return std::pair<QString, QString>(QStringLiteral("../temp/HED.txt"), QStringLiteral("../temp/INT.txt"));
    }};
    r.showPrinterSetup = [&] {
      frmPrinterSetup setup(c, DefaultPdfPath(QStringLiteral("山田 花子"), QStringLiteral("2024/06"), inst.path("docs")));
      setup.askPdfPath = [&](QWidget*, const QString& suggested) {
        offered = suggested;
        return pdf;
      };
      setup.show();
      setup.cmbPrinter->setCurrentIndex(setup.cmbPrinter->count() - 1);
      setup.btnOK->click();
    };
    ASSERT_EQ(PrintCurrentChart(r), std::optional<int>(0));
    EXPECT_EQ(offered, inst.path(QStringLiteral("docs/山田_花子_2024-06.pdf")));
    EXPECT_EQ(std::pair(GetChosenPrinter(), GetChosenPaper()), std::pair(QStringLiteral("pdf:") + pdf, ja ? 9 : 1));
    ASSERT_TRUE(QFileInfo(pdf).size() > 1000);
    if (QStandardPaths::findExecutable(QStringLiteral("pdftotext")).isEmpty()) GTEST_SKIP() << "no pdftotext";
    // The month report of that person, text that can be found and copied.
    const QString text = PdfText(pdf);
    EXPECT_TRUE(text.contains(QStringLiteral("Hana Sato")) &&
                text.contains(QRegularExpression(ja ? QStringLiteral("\\d+ / 男性") : QStringLiteral("\\d+ / Male"))))
        << text.toStdString();
    QProcess info;
    info.start(QStringLiteral("pdfinfo"), {pdf});
    info.waitForFinished(30000);
    EXPECT_TRUE(QString::fromUtf8(info.readAllStandardOutput()).contains(ja ? QStringLiteral("(A4)") : QStringLiteral("(letter)")));
  }
}

TEST_F(PrintingTest, HelpAndDiaryOpenOrSayWhy) {
  QStringList opened;
  bool answer = true;
  const UrlOpener open = [&](const QUrl& u) {
    opened << u.toString();
    return answer;
  };
  QDir().mkpath(inst.path(QStringLiteral("help")));
  inst.setConfig(QStringLiteral("SYSTEM"), QStringLiteral("PDFHELP_NAME"), QStringLiteral("../help/manual.pdf"));
  EXPECT_FALSE(OpenHelp(nullptr, open));  // no such file
  EXPECT_TRUE(opened.isEmpty());
  EXPECT_TRUE(Shown(inst.dialog(), QStringLiteral("USEL-I-0004")));
  WriteBytes(inst.path(QStringLiteral("help/manual.pdf")), "%PDF-1.4");
  inst.dialog().shown.clear();
  EXPECT_TRUE(OpenHelp(nullptr, open));
  EXPECT_EQ(opened, QStringList{QUrl::fromLocalFile(inst.path(QStringLiteral("help/manual.pdf"))).toString()});
  answer = false;
  EXPECT_FALSE(OpenHelp(nullptr, open));
  EXPECT_EQ(inst.dialog().shown.size(), 1u);

  inst.dialog().shown.clear();
  inst.setConfig(QStringLiteral("SYSTEM"), QStringLiteral("HEALTY_DIARY_ADDRESS"), QStringLiteral("https://example.org/diary"));
  EXPECT_FALSE(OpenHealthyDiary(open));
  EXPECT_EQ(opened.last(), QStringLiteral("https://example.org/diary"));
  EXPECT_TRUE(inst.dialog().shown.empty());
}

}  // namespace
