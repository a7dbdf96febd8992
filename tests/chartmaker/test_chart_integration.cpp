// The chart files as the charts writer makes them from stored recorder days, drawn by the
// chart library: every type in each of its periods must parse, draw something and give
// 0, and the library must read the unit the writer meant.
#include <gtest/gtest.h>

#include <QFileInfo>
#include <QImage>

#include "chartmaker/chartfiles.h"
#include "chartmaker/chartmaker.h"
#include "charts/charts.h"
#include "device/data_convert.h"
#include "device/recorder_image.h"
#include "frame/frame.h"
#include "store/store.h"
#include "testsupport/sample_charts.h"

namespace {

// Share of sampled pixels that differ from the background (the top left corner).
double InkShare(const QImage& img) {
  const QRgb bg = img.pixel(0, 0);
  int ink = 0, all = 0;
  for (int y = 0; y < img.height(); y += 4)
    for (int x = 0; x < img.width(); x += 4, ++all) ink += img.pixel(x, y) != bg ? 1 : 0;
  return all ? double(ink) / all : 0.0;
}

class ChartIntegration : public ::testing::Test {
 protected:
  explicit ChartIntegration(const QString& lang = QStringLiteral("ja"), int days = 0) : sample_(lang, days) {}

  void SetUp() override {
    ASSERT_EQ(sample_.error, QString());
    ASSERT_EQ(maker_.prepare(sample_.inst.chartIniFile()), chartcode::kOk);
  }
  // Makes the files of a type over the window its screen shows; false when not made.
  bool make(int type, const QDate& end = QDate(2024, 6, 30)) {
    files_ = sample_.make(type, end);
    return !files_.iface.isEmpty();
  }

  SampleCharts sample_;
  ChartMaker maker_;
  SampleCharts::Files files_;
};

class SampleChartIntegration : public ChartIntegration {
 protected:
  SampleChartIntegration() : ChartIntegration(QStringLiteral("ja"), 200) {}
};

const int kTypes[] = {100, 101, 102, 200, 201, 202, 300, 301, 302, 400, 401, 402, 500,
                      501, 502, 600, 601, 602, 800, 801, 802, 900, 901, 902, 5};

// The sample has a weight plan, so the plan weights and the .sim file carry values.
TEST_F(SampleChartIntegration, EveryWrittenChartDrawsWithoutFault) {

  for (int type : kTypes) {
    SCOPED_TRACE(type);
    ASSERT_TRUE(make(type));
    InterfaceFile parsed;
    ASSERT_EQ(ReadInterfaceFile(files_.iface, parsed), ChartReadStatus::Ok);
    EXPECT_EQ(parsed.type, type);
    EXPECT_GT(parsed.linesWithFigures(), 0);
    EXPECT_EQ(parsed.imperialUnit(), false);

    // Drawn at the surface's size and pixel ratio.
    ImageSurface surface(QSize(640, 400), 2.0);
    EXPECT_EQ(ChartMakerPersonal(maker_, surface, files_.iface), chartcode::kOk);
    ASSERT_EQ(surface.image().size(), QSize(1280, 800));
    EXPECT_DOUBLE_EQ(surface.image().devicePixelRatio(), 2.0);
    EXPECT_GT(DistinctColours(surface.image()), 8);
    EXPECT_GT(InkShare(surface.image()), 0.03);
    // To look at the pictures: VANTORA_CHART_OUT=/some/folder.
    if (const QString out = qEnvironmentVariable("VANTORA_CHART_OUT"); !out.isEmpty())
      surface.image().save(QStringLiteral("%1/%2.png").arg(out).arg(type));

    if (type / 100 == 8) {
      ASSERT_FALSE(files_.sim.isEmpty());
      SimFile sim;
      ASSERT_EQ(ReadSimFile(files_.sim, sim), ChartReadStatus::Ok);
      EXPECT_EQ(sim.planStart, QDate(2024, 4, 1));
      EXPECT_TRUE(sim.targetWeight.has_value());
      const QString bmp = sample_.inst.path(QStringLiteral("temp/simulation.bmp"));
      EXPECT_EQ(CreateGraphBMPPersonal(maker_, surface, files_.iface, bmp), chartcode::kOk);
      EXPECT_FALSE(QImage(bmp).isNull());
      // Without the .sim file the weights of the lines still draw.
      ASSERT_TRUE(QFile::remove(files_.sim));
      EXPECT_EQ(CreateGraphBMPPersonal(maker_, surface, files_.iface, bmp), chartcode::kOk);
    }
  }

  // The report of the six-month evaluation, with the header file the writer made.
  ASSERT_TRUE(make(102));
  const QString pdf = sample_.inst.path(QStringLiteral("temp/report.pdf"));
  EXPECT_EQ(PrintChartPersonal(maker_, files_.header, files_.iface, QStringLiteral("pdf:") + pdf, 9), chartcode::kOk);
  EXPECT_GT(QFileInfo(pdf).size(), 10000);
  HeaderFile h;
  ASSERT_EQ(ReadHeaderFile(files_.header, h), ChartReadStatus::Ok);
  EXPECT_EQ(h.firstName + u'|' + h.height.right(3) + u'|' + h.weight.right(3), "Hana| cm| kg");
  EXPECT_FALSE(h.imperial);
}

TEST_F(ChartIntegration, DayProfileOfEachRecorderKind) {
  // Levels of a BRIO recorder, METs of a METS recorder: the library tells them apart by
  // the block's values, not by the day's measurement mode.
  RecorderImageOptions o{.days = 3};
  for (RecorderKind kind : {RecorderKind::BrioNormal, RecorderKind::BrioMets}) {
    o.kind = kind;
    o.lastDay = o.lastDay.addDays(3);
    ASSERT_EQ(StoreRecorderDays(sample_.db, SampleCharts::kUserId, o), QString());
    ASSERT_TRUE(make(5, o.lastDay));
    InterfaceFile parsed;
    ASSERT_EQ(ReadInterfaceFile(files_.iface, parsed), ChartReadStatus::Ok);
    ASSERT_EQ(parsed.lines.size(), 1u);
    const DayProfile p = ReadDayProfile(parsed.lines[0]);
    EXPECT_EQ(std::pair(p.any, p.metsMode), std::pair(true, kind == RecorderKind::BrioMets));
    ImageSurface surface(QSize(800, 500));
    EXPECT_EQ(ChartMakerPersonal(maker_, surface, files_.iface), chartcode::kOk);
  }
}

class EnglishChartIntegration : public ChartIntegration {
 protected:
  EnglishChartIntegration() : ChartIntegration(QStringLiteral("en")) {}
};

TEST_F(EnglishChartIntegration, MixedUnitsAreReadInTheUnitOfTheLastDay) {
  ASSERT_TRUE(IsEnglishEdition());
  // Kilograms and kilometres first, then the same recorder set to pounds and miles.
  RecorderImageOptions o{.kind = RecorderKind::BrioMets, .english = true, .days = 60, .cpuNo = "123456",
                         .lastDay = QDate(2024, 5, 31)};
  ASSERT_EQ(StoreRecorderDays(sample_.db, SampleCharts::kUserId, o), QString());
  o.unitFlag = 1;
  o.lastDay = QDate(2024, 6, 30);
  ASSERT_EQ(StoreRecorderDays(sample_.db, SampleCharts::kUserId, o), QString());

  for (int type : {100, 600, 601, 602, 801, 802, 5}) {
    SCOPED_TRACE(type);
    ASSERT_TRUE(make(type));
    InterfaceFile parsed;
    ASSERT_EQ(ReadInterfaceFile(files_.iface, parsed), ChartReadStatus::Ok);
    // Every line that tells its unit tells pounds: the writer showed the whole list in
    // the unit of the last day, and gave each weight the form of that unit.
    int told = 0;
    for (const ChartLine& l : parsed.lines) {
      if (!l.imperial) continue;
      ++told;
      EXPECT_TRUE(*l.imperial) << l.fields.join(',').left(120).toStdString();
    }
    EXPECT_GT(told, 0);
    ImageSurface surface(QSize(640, 400));
    EXPECT_EQ(ChartMakerPersonal(maker_, surface, files_.iface), chartcode::kOk);
  }

  // The report's header says pounds as well.
  ASSERT_TRUE(make(601));
  HeaderFile h;
  ASSERT_EQ(ReadHeaderFile(files_.header, h), ChartReadStatus::Ok);
  EXPECT_TRUE(h.imperial);
}

}  // namespace
