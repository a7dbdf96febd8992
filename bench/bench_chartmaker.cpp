// Drawing speed of the chart library: a six-month chart (six four-week spans) and a
// half year of daily bars at 1280x800, the day profile, and a PDF report page.
#include <benchmark/benchmark.h>

#include <QGuiApplication>

#include "chartmaker/chartmaker.h"
#include "testsupport/sample_charts.h"

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
  SampleCharts sample;
  const QDate end(2024, 6, 30);
  const QString file = sample.makeOver(type, end.addDays(1 - days), end).iface;
  ChartMaker maker;
  maker.prepare(sample.inst.chartIniFile());
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
  SampleCharts sample;
  ChartMaker maker;
  ImageSurface surface(QSize(1280, 800));
  maker.make(surface, sample.make(402).iface);
  for (auto _ : state) benchmark::DoNotOptimize(maker.remake(surface));
}

void BM_PdfReport(benchmark::State& state) {
  EnsureGuiApp();
  SampleCharts sample;
  const SampleCharts::Files f = sample.make(202);
  ChartMaker maker;
  const QString pdf = QStringLiteral("pdf:") + sample.inst.path(QStringLiteral("temp/r.pdf"));
  for (auto _ : state) benchmark::DoNotOptimize(maker.print(f.header, f.iface, pdf, 9));
}

}  // namespace

BENCHMARK(BM_SixMonthSteps)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_SixMonthActivityTime)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_HalfYearOfDailyBars)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_DayProfile)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Remake)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_PdfReport)->Unit(benchmark::kMillisecond);
BENCHMARK_MAIN();
