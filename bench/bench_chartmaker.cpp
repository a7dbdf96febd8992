// Drawing speed of the chart library: a six-month chart (six four-week spans) and a
// half year of daily bars at 1280x800, the day profile, and a PDF report page.
#include <benchmark/benchmark.h>

#include <QFileInfo>
#include <QGuiApplication>
#include <QTemporaryDir>

#include "chartmaker/chartmaker.h"
#include "testsupport/chart_fixtures.h"

namespace {

void EnsureGuiApp() {
  if (QGuiApplication::instance()) return;
  if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
  static int argc = 1;
  static char name[] = "bench_chartmaker";
  static char* argv[] = {name, nullptr};
  static QGuiApplication app(argc, argv);
}

void RunMake(benchmark::State& state, int type, int days) {
  EnsureGuiApp();
  QTemporaryDir dir;
  fixtures::Options o;
  o.type = type;
  o.days = days;
  const QString file = dir.filePath("bench.txt");
  fixtures::WriteInterface(file, o);
  ChartMaker maker;
  maker.prepare(QFileInfo(QStringLiteral(__FILE__)).absolutePath() + QStringLiteral("/../dist/ja/conf/chart.ini"));
  ImageSurface surface(QSize(1280, 800));
  for (auto _ : state) {
    const int rc = maker.make(surface, file);
    benchmark::DoNotOptimize(rc);
  }
}

// Six months as the screen shows it: six four-week spans (type 202, 168 days read).
void BM_SixMonthSteps(benchmark::State& state) { RunMake(state, 202, 168); }
void BM_SixMonthActivityTime(benchmark::State& state) { RunMake(state, 402, 168); }
// A harder case than the screen ever asks for: 182 daily bars.
void BM_HalfYearOfDailyBars(benchmark::State& state) { RunMake(state, 200, 182); }
void BM_DayProfile(benchmark::State& state) { RunMake(state, 5, 1); }

void BM_Remake(benchmark::State& state) {
  EnsureGuiApp();
  QTemporaryDir dir;
  fixtures::Options o;
  o.type = 402;
  const QString file = dir.filePath("bench.txt");
  fixtures::WriteInterface(file, o);
  ChartMaker maker;
  ImageSurface surface(QSize(1280, 800));
  maker.make(surface, file);
  for (auto _ : state) benchmark::DoNotOptimize(maker.remake(surface));
}

void BM_PdfReport(benchmark::State& state) {
  EnsureGuiApp();
  QTemporaryDir dir;
  fixtures::Options o;
  o.type = 202;
  const QString file = dir.filePath("bench.txt");
  const QString header = dir.filePath("hed.txt");
  fixtures::WriteInterface(file, o);
  fixtures::WriteText(header, fixtures::HeaderText(true, o.end.addDays(-167), o.end));
  ChartMaker maker;
  const QString pdf = QStringLiteral("pdf:") + dir.filePath("r.pdf");
  for (auto _ : state) benchmark::DoNotOptimize(maker.print(header, file, pdf, 9));
}

}  // namespace

BENCHMARK(BM_SixMonthSteps)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_SixMonthActivityTime)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_HalfYearOfDailyBars)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_DayProfile)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Remake)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_PdfReport)->Unit(benchmark::kMillisecond);
BENCHMARK_MAIN();
