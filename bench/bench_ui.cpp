// The desktop program as a person meets it: from process start to the first paint of the
// main window (against a minimal Qt program showing one Japanese label; both run as child
// processes of this benchmark), the longest stall of the
// window during a 240-page receive with the protocol's waits, and the peak memory.
//
// The receive's waits run at a tenth of real time (VANTORA_BENCH_WAIT_SCALE changes it):
// a stall is the work between two waits (a read's decoding and storing), which does not
// depend on how long the waits are, and a full ring at real time takes over two minutes.
#include <benchmark/benchmark.h>

#include <QApplication>
#include <QElapsedTimer>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QLabel>
#include <QTimer>
#include <QVBoxLayout>

#include "chartmaker/chartmaker.h"
#include "device/readers.h"
#include "device/recorder_image.h"
#include "frame/catalogue.h"
#include "frame/config.h"
#include "frame/shared_values.h"
#include "store/store.h"
#include "testsupport/test_installation.h"
#include "testsupport/unattended_screens.h"
#include "ui/frmTerminal.h"
#include "ui/qt_dialog.h"
#include "ui/receive_screens.h"
#include "ui/startup.h"

namespace {

// Waits until the widget has been painted once.
class FirstPaint : public QObject {
 public:
  explicit FirstPaint(QWidget* w) : w_(w) { w->installEventFilter(this); }
  bool wait() {
    QElapsedTimer t;
    t.start();
    while (!painted_ && t.elapsed() < 20000) QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
    return painted_;
  }

 protected:
  bool eventFilter(QObject* o, QEvent* e) override {
    if (o == w_ && e->type() == QEvent::Paint) painted_ = true;
    return false;
  }

 private:
  QWidget* w_;
  bool painted_ = false;
};

double PeakMegabytes() {
  QFile status(QStringLiteral("/proc/self/status"));
  if (!status.open(QIODevice::ReadOnly)) return 0;
  for (const QByteArray& line : status.readAll().split('\n')) {
    if (line.startsWith("VmHWM:")) return line.mid(6).trimmed().split(' ').first().toDouble() / 1024.0;
  }
  return 0;
}

// The receives of these measures register "山田 花子" for a new recorder.
class NoScreens : public UnattendedScreens {
 public:
  NoScreens() : UnattendedScreens(QStringLiteral("山田 花子")) {}
};

// ---- start to first paint, each in a process of its own ----

// Child: a minimal program, one window with one Japanese label; ends at its first paint.
int MinimalChild(QApplication& app) {
  QWidget w;
  auto* layout = new QVBoxLayout(&w);
  layout->addWidget(new QLabel(QStringLiteral("ようこそ。ペドミラをリーダーにセットしてください。"), &w));
  FirstPaint paint(&w);
  w.show();
  (void)app;
  return paint.wait() ? 0 : 1;
}

// Child: the desktop program's start in an installation's bin/ (the working directory),
// from the first check to the painted main window.
int MainChild() {
  QtDialog dialogs;
  SetDialogInterface(&dialogs);
  ScriptedStartupPlatform platform;
  ChartMaker chart;
  StartupSequence startup(platform, chart);
  startup.setSplash([] { LoadMenuResource(); });
  if (startup.run() != StartupSequence::Outcome::Continue) return 1;
  const QString family = GetCommonFontName();
  if (!family.isEmpty()) {
    QFont f = QApplication::font();
    f.setFamily(family);
    QApplication::setFont(f);
  }
  VtDatabase db;
  auto reader = CreateConfiguredReader();
  EventLoopDeviceClock clock;
  NoScreens screens;
  frmTerminal w(TerminalServices{db, chart, *reader, clock, screens});
  if (!w.Form_Load()) return 1;
  FirstPaint paint(&w);
  w.show();
  return paint.wait() ? 0 : 1;
}

QString g_self;
double g_minimalMs = 0;

double RunChild(const QStringList& args, const QString& workingDir, benchmark::State& state) {
  QProcess child;
  child.setWorkingDirectory(workingDir);
  QElapsedTimer t;
  t.start();
  child.start(g_self, args);
  if (!child.waitForFinished(60000) || child.exitCode() != 0) {
    state.SkipWithError("the child program failed");
    return 0;
  }
  return static_cast<double>(t.nsecsElapsed()) / 1e6;
}

void BM_MinimalProgramFirstPaint(benchmark::State& state) {
  double total = 0;
  for (auto _ : state) total += RunChild({QStringLiteral("--minimal-child")}, QDir::currentPath(), state);
  g_minimalMs = total / static_cast<double>(state.iterations());
  state.counters["ms"] = g_minimalMs;
}
BENCHMARK(BM_MinimalProgramFirstPaint)->Unit(benchmark::kMillisecond)->Iterations(10)->UseRealTime();

// remembered: the window opens on a user's week chart instead of the user list.
void MainWindowFirstPaint(benchmark::State& state, bool remembered) {
  TestInstallation inst(QStringLiteral("ja"));
  inst.setConfig(QStringLiteral("SYSTEM"), QStringLiteral("SHIFT_DB"), QStringLiteral("1"));
  inst.setConfig(QStringLiteral("OTHER"), QStringLiteral("SAVE_LAST_USER"), QStringLiteral("1"));
  QString error;
  CreateDatabaseFile(inst.dbFile(), kDefaultDbPassword, &error);
  QString userId;
  if (remembered) {
    // One receive stores a month for the remembered user.
    VtDatabase db;
    db.open(inst.dbFile(), kDefaultDbPassword);
    EmulatedReader reader(inst.readerPath());
    RecorderImageOptions o;
    o.days = 30;
    WriteRecorderImage(o, inst.readerPath() + QStringLiteral("/r.img"));
    NoWaitClock clock;
    NullProgress progress;
    NoScreens q;
    ReceiveServices services{db, reader, clock, progress};
    ReceiveWorkflow flow(services, q);
    userId = flow.Run().userId;
    VTDB_Close(db);
    QFile::remove(inst.readerPath() + QStringLiteral("/r.img"));
  }
  inst.setConfig(QStringLiteral("OTHER"), QStringLiteral("LAST_USER_ID"), userId);
  double total = 0;
  for (auto _ : state) total += RunChild({QStringLiteral("--main-child")}, inst.binPath(), state);
  const double ms = total / static_cast<double>(state.iterations());
  state.counters["ms"] = ms;
  if (g_minimalMs > 0) state.counters["x_minimal"] = ms / g_minimalMs;
}
void BM_MainWindowFirstPaint_UserList(benchmark::State& state) { MainWindowFirstPaint(state, false); }
void BM_MainWindowFirstPaint_WeekChart(benchmark::State& state) { MainWindowFirstPaint(state, true); }
BENCHMARK(BM_MainWindowFirstPaint_UserList)->Unit(benchmark::kMillisecond)->Iterations(10)->UseRealTime();
BENCHMARK(BM_MainWindowFirstPaint_WeekChart)->Unit(benchmark::kMillisecond)->Iterations(10)->UseRealTime();

// A full ring received through the two receive screens over the main window, with a 1 ms
// timer on the interface thread: the longest gap between two of its ticks is the longest
// time the window could not paint or take a click.
void BM_ReceiveLongestStall(benchmark::State& state) {
  TestInstallation inst(QStringLiteral("ja"));
  QString error;
  CreateDatabaseFile(inst.dbFile(), kDefaultDbPassword, &error);
  const double scale = qEnvironmentVariableIsSet("VANTORA_BENCH_WAIT_SCALE")
                           ? qEnvironmentVariable("VANTORA_BENCH_WAIT_SCALE").toDouble()
                           : 0.1;
  for (auto _ : state) {
    state.PauseTiming();
    VtDatabase db;
    db.open(inst.dbFile(), kDefaultDbPassword);
    RecorderImageOptions o;
    o.days = 240;
    o.seed = 3;
    if (!WriteRecorderImage(o, inst.readerPath() + QStringLiteral("/r.img"), &error)) {
      state.SkipWithError(qPrintable(error));
      break;
    }
    EmulatedReader reader(inst.readerPath());
    EventLoopDeviceClock clock(scale);
    NoScreens screens;
    QWidget window;
    window.resize(800, 600);
    window.show();
    qint64 longest = 0;
    QElapsedTimer gap;
    QTimer ticker;
    ticker.setTimerType(Qt::PreciseTimer);
    QObject::connect(&ticker, &QTimer::timeout, [&] {
      longest = std::max(longest, gap.restart());
    });
    state.ResumeTiming();
    gap.start();
    ticker.start(1);
    ReceiveOnScreen receive(db, reader, clock, screens, &window);
    const ReceiveReport report = receive.run();
    ticker.stop();
    state.PauseTiming();
    if (report.ending != ReceiveEnding::Received || report.daysStored < 200) state.SkipWithError("receive failed");
    state.counters["pages"] = report.pagesFetched;
    state.counters["longest_stall_ms"] = static_cast<double>(longest);
    state.counters["peak_MB"] = PeakMegabytes();
    VTDB_Close(db);
    state.ResumeTiming();
  }
}
BENCHMARK(BM_ReceiveLongestStall)->Unit(benchmark::kMillisecond)->Iterations(1);

}  // namespace

int main(int argc, char** argv) {
  if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
  const QByteArray role = argc > 1 ? QByteArray(argv[1]) : QByteArray();
  if (role == "--minimal-child") {
    QApplication app(argc, argv);
    QFont f = QApplication::font();
    f.setFamily(QStringLiteral("Noto Sans CJK JP"));
    QApplication::setFont(f);
    return MinimalChild(app);
  }
  if (role == "--main-child") {
    QApplication app(argc, argv);
    return MainChild();
  }
  QApplication app(argc, argv);
  g_self = QCoreApplication::applicationFilePath();
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
