// The layout rules of the charts, checked as rules over many sizes rather than as the
// numbers one drawing happens to produce.
#include <gtest/gtest.h>

#include <QImage>
#include <QPainter>
#include <cmath>

#include "chartmaker/chartdraw.h"
#include "chartmaker/draw/layout.h"
#include "testsupport/sample_charts.h"

using namespace chartdraw;

namespace {

// Spans of n date labels of width w centred on slots of width sw, as a chart lays them out.
std::vector<Span> Labels(int n, double sw, double w, double areaRight) {
  std::vector<Span> spans;
  for (int i = 0; i < n; ++i) {
    const double left = ClampedLabelLeft(sw * (i + 0.5), w, 0, areaRight);
    spans.push_back({left, left + w});
  }
  return spans;
}

}  // namespace

TEST(ChartLayout, DateLabelsNeverTouchAndKeepTheEnds) {
  const double gap = 4;
  for (int n = 1; n <= 190; n += 3) {
    for (double w : {30.0, 55.0, 90.0}) {
      const double width = 900, sw = width / n;
      const auto spans = Labels(n, sw, w, width);
      const auto dated = DatedSlots(spans, LabelEvery(w, gap, sw), gap);
      ASSERT_FALSE(dated.empty());
      EXPECT_EQ(dated.front(), 0) << n;
      for (size_t k = 1; k < dated.size(); ++k)
        EXPECT_LE(spans[static_cast<size_t>(dated[k - 1])].right + gap, spans[static_cast<size_t>(dated[k])].left)
            << "labels " << dated[k - 1] << " and " << dated[k] << " of " << n << " overlap";
      // The last day keeps its label unless it would collide with the first.
      if (n > 1 && spans[0].right + gap <= spans.back().left) {
        EXPECT_EQ(dated.back(), n - 1) << n;
      }
      for (const Span& s : spans) EXPECT_TRUE(s.left >= 0 && s.right <= width + 1e-9) << s.left << " " << s.right;
    }
  }
}

TEST(ChartLayout, LabelsWiderThanTheAreaStartAtItsLeft) {
  EXPECT_EQ(ClampedLabelLeft(10, 200, 0, 100), 0);
  EXPECT_EQ(ClampedLabelLeft(95, 40, 0, 100), 60);
  EXPECT_EQ(LabelEvery(10, 2, 100), 1);
  EXPECT_EQ(LabelEvery(50, 5, 20), 3);
}

TEST(ChartLayout, AxisHoldsEveryValueOnWholeSteps) {
  for (double data : {0.0, 0.3, 7.0, 99.0, 101.0, 480.0, 12345.0, 29999.0}) {
    for (double configured : {0.0, 100.0, 20000.0}) {
      for (int ticks : {3, 5}) {
        const AxisScale a = ScaleAxis(configured, data, ticks);
        EXPECT_GE(a.max, configured);
        EXPECT_GE(a.max, data * 1.1 - 1e-9);
        EXPECT_GT(a.step, 0);
        const double steps = a.max / a.step;
        EXPECT_NEAR(steps, std::round(steps), 1e-6) << data << " " << configured;
        // A mantissa of 1, 2, 2.5 or 5.
        const double m = a.step / std::pow(10.0, std::floor(std::log10(a.step)));
        EXPECT_TRUE(std::abs(m - 1) < 1e-9 || std::abs(m - 2) < 1e-9 || std::abs(m - 2.5) < 1e-9 ||
                    std::abs(m - 5) < 1e-9)
            << a.step;
        EXPECT_EQ(a.decimals, a.step < 0.1 ? 2 : a.step < 1 ? 1 : 0);
      }
    }
  }
  EXPECT_EQ(ScaleAxis(0, 0, 5).max, 1);
}

TEST(ChartLayout, ValueLabelsFitTheirSlotAndClearTheMarker) {
  EXPECT_TRUE(ValueLabelFits(40, 50, false));
  EXPECT_FALSE(ValueLabelFits(49.5, 50, false));
  EXPECT_FALSE(ValueLabelFits(10, 50, true));  // compact bands carry no figures
  EXPECT_EQ(ValueLabelBase(200, std::nullopt, 30, 10), 200);
  // A marker above the bar lifts the label over the marker's diamond.
  EXPECT_LT(ValueLabelBase(200, 150, 30, 10), 150);
  EXPECT_EQ(ValueLabelBase(200, 260, 30, 10), 200);
  const QRectF right = PlateRect(QPointF(100, 50), Qt::AlignRight, 40, 12, 10);
  EXPECT_EQ(right.bottomRight(), QPointF(100, 50));
  EXPECT_GT(right.width(), 40);
  const QRectF centred = PlateRect(QPointF(100, 50), Qt::AlignHCenter, 40, 12, 10);
  EXPECT_DOUBLE_EQ(centred.center().x(), 100);
}

TEST(ChartLayout, TargetCaptionMovesAwayFromValues) {
  const QRectF plot(0, 0, 400, 200);
  const double w = 60, h = 14, b = 10, line = 100;
  auto rectOf = [&](const CaptionPlace& c) {
    return QRectF(c.align & Qt::AlignRight ? c.anchor.x() - w : c.anchor.x(), c.anchor.y() - h, w, h);
  };
  // Nothing in the way: the right end, above the line.
  CaptionPlace c = PlaceTargetCaption(plot, line, w, h, b, {}, {});
  EXPECT_EQ(c.align, Qt::AlignRight);
  EXPECT_LE(rectOf(c).bottom(), line);
  // A value label at the right end above: the caption goes below the line.
  const std::vector<QRectF> rightAbove = {QRectF(330, 80, 70, 20)};
  c = PlaceTargetCaption(plot, line, w, h, b, rightAbove, {});
  EXPECT_FALSE(rectOf(c).intersects(rightAbove[0]));
  EXPECT_GT(rectOf(c).top(), line);
  // Labels at both right places and a bar on the left above: the free place without a bar.
  const std::vector<QRectF> rightBoth = {QRectF(330, 70, 70, 60)};
  const std::vector<QRectF> leftBar = {QRectF(0, 60, 70, 40)};
  c = PlaceTargetCaption(plot, line, w, h, b, rightBoth, leftBar);
  EXPECT_EQ(c.align, Qt::AlignLeft);
  EXPECT_FALSE(rectOf(c).intersects(leftBar[0]));
  // Bars everywhere: the first place that covers no value label.
  const std::vector<QRectF> bars = {QRectF(0, 0, 400, 200)};
  c = PlaceTargetCaption(plot, line, w, h, b, rightAbove, bars);
  EXPECT_FALSE(rectOf(c).intersects(rightAbove[0]));
  // A line at the plot's foot: never below the plot.
  c = PlaceTargetCaption(plot, 199, w, h, b, {}, {});
  EXPECT_LE(rectOf(c).bottom(), plot.bottom());
}

TEST(ChartLayout, NoDataRunsGetOneWordEachWhereItFits) {
  using S = LineState;
  const std::vector<LineState> states = {S::Counted, S::NoData,  S::NoData,      S::AllExcluded, S::Excluded,
                                         S::NoData,  S::Counted, S::AllExcluded, S::AllExcluded};
  const std::vector<std::pair<int, int>> want = {{1, 2}, {3, 3}, {5, 5}, {7, 8}};
  EXPECT_EQ(GapRuns(states), want);
  EXPECT_TRUE(GapRuns({S::Counted, S::Excluded}).empty());
  EXPECT_EQ(PlaceGapWord(30, 40, 40), GapWord::PerColumn);
  EXPECT_EQ(PlaceGapWord(50, 40, 120), GapWord::OverRun);
  EXPECT_EQ(PlaceGapWord(50, 10, 40), GapWord::None);
}

TEST(ChartLayout, ReportTableShrinksRowsBeforeLeavingThemOff) {
  const double b = 10;
  for (int rows : {1, 7, 28, 31, 60, 200}) {
    for (double height : {60.0, 200.0, 400.0, 900.0}) {
      const TableFit t = FitTable(height, rows, b);
      EXPECT_LE(t.shown, rows);
      EXPECT_TRUE(t.scale >= 0.5 && t.scale <= 1.0) << t.scale;
      EXPECT_LE((t.shown + 1) * t.rowH, height + 1e-9) << rows << " rows in " << height;
      // Rows are only left off at half height.
      if (t.shown < rows) {
        EXPECT_DOUBLE_EQ(t.scale, 0.5) << rows << " rows in " << height;
      }
    }
  }
  EXPECT_EQ(FittedPixelSize(20, 80, 100), 20);
  EXPECT_EQ(FittedPixelSize(20, 110, 100), 18);
  EXPECT_EQ(FittedPixelSize(20, 400, 100), 15);  // never below three quarters; the rest is elided
  // The table below the chart takes at most about two fifths of the space.
  EXPECT_EQ(ReportChartHeight(500, 30, 10, false), 500);
  EXPECT_GE(ReportChartHeight(500, 300, 10, true), 500 * 0.58 - 10 * 0.8 - 1e-9);
  EXPECT_DOUBLE_EQ(ReportChartHeight(500, 1, 10, true), 500 - 10 * 1.7 * 2.5 - 8);
}

// The configured axis maximum reaches the drawing through the settings alone: a larger
// one draws the same chart smaller, an unusable one leaves the chart's own.
TEST(ChartAxis, ConfiguredMaximumComesWithTheSettings) {
  SampleCharts sample(QStringLiteral("ja"), 10);
  ChartDocument doc;
  ASSERT_EQ(ReadInterfaceFile(sample.make(200).iface, doc.data), ChartReadStatus::Ok);
  auto draw = [&](const QString& maxSteps) {
    ChartSettings s;
    s.axisMaxima.steps = maxSteps;
    QImage img(640, 400, QImage::Format_ARGB32);
    QPainter p(&img);
    DrawChartDocument(p, QRectF(0, 0, 640, 400), doc, s);
    return img;
  };
  const QImage own = draw(QString());
  EXPECT_NE(draw(QStringLiteral("60000")), own);
  EXPECT_EQ(draw(QStringLiteral("none")), own);
  EXPECT_EQ(draw(QStringLiteral("-5")), own);
}
