// The data store on a real encrypted file: storing a recorder's full ring of days with
// their profiles, and reading a year of chart rows.
#include <benchmark/benchmark.h>

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include "device/device.h"
#include "frame/config.h"
#include "frame/dialog.h"
#include "receive/day_rows.h"
#include "store/backup.h"
#include "store/store.h"

namespace {

constexpr int kRingDays = 240;

// A throw-away installation: bin/ as the working directory and a config.cnf with the
// recorder numbers the storing reads.
class BenchInstallation {
 public:
  BenchInstallation() {
    QDir root(dir_.path());
    root.mkpath(QStringLiteral("bin"));
    root.mkpath(QStringLiteral("conf"));
    root.mkpath(QStringLiteral("log"));
    root.mkpath(QStringLiteral("data/mdb"));
    QFile cnf(root.filePath(QStringLiteral("conf/config.cnf")));
    if (cnf.open(QIODevice::WriteOnly)) {
      cnf.write(
          "[SYSTEM]\nLOG_PATH=../log\nLOG_LEVEL=0\nLANG=0\nVALID_VERSION_NUMBER=2\n"
          "PMAL_NUMBER=12820\nPMBRIO_JPN_NUMBER=13010\nPMBRIO_ENG_NUMBER=13020\n"
          "PMBRIO_KT200_NUMBER=14200\nPMBRIO_KT014_NUMBER=14014\n");
      cnf.close();
    }
    oldCwd_ = QDir::currentPath();
    QDir::setCurrent(root.filePath(QStringLiteral("bin")));
    Ini_LoadConfig();
    SetDialogInterface(&dialog_);
  }
  ~BenchInstallation() {
    SetDialogInterface(nullptr);
    QDir::setCurrent(oldCwd_);
  }
  QString db(const QString& name) const { return QDir(dir_.path()).filePath(QStringLiteral("data/mdb/") + name); }

 private:
  QTemporaryDir dir_;
  QString oldCwd_;
  StderrDialog dialog_;
};

FlashData dayPage(const QDate& date, int n) {
  FlashData d;
  d.bcDate = date;
  d.Gender = 0;
  d.Age = 45;
  d.HeightCm = 172;
  d.WeightKg = 70;
  d.WeightFraction = 4;
  d.TargetActivity = 300;
  d.TotalEnergy = 2100 + n % 50;
  d.Activity = 250 + n % 70;
  d.StepCount = 6000 + (n * 37) % 5000;
  for (int i = 0; i <= 9; ++i) d.level(i) = 200 + 13 * i + n % 11;
  for (int i = 1; i <= 10; ++i) d.event(i) = QTime(0, 0, 59);
  d.RangeLower = 4;
  d.RangeUpper = 9;
  d.TargetTime = 30;
  d.RangeMinutes = 45;
  d.Distance = 45;
  d.Stride = 72;
  d.TargetSteps = 8000;
  for (int s = 0; s < kProfileSlots; ++s) d.LevelProfileBrio[static_cast<size_t>(s)] = static_cast<quint8>((s * 7 + n) % 12);
  return d;
}

FlashManage brioManage() {
  FlashManage m;
  m.FixedData = QStringLiteral("13010");
  m.CpuNo = QStringLiteral("123456");
  m.RecordStartPage = 1;
  m.RecordEndPage = kRingDays;
  m.RecordingPage = kRingDays;
  return m;
}

// Stores days [first, first + count) as one reception; false on any failure.
bool storeReception(VtDatabase& db, const QDate& first, int count) {
  const QString receiveId = CreateReceiveId(db);
  const FlashManage m = brioManage();
  if (!VTDB_SetReceiveHistory(db, ReceiveHistoryRow(receiveId, QStringLiteral("20240101120000"), QString(), m)))
    return false;
  for (int i = 0; i < count; ++i) {
    FlashData page = dayPage(first.addDays(i), i);
    if (!VTDB_SetDayMeasurement(db, DayMeasurementRow(receiveId, i + 1, QStringLiteral("U000000001"), i + 1, 1,
                                                      page, m, RecorderKind::BrioNormal)))
      return false;
    if (!VTDB_SetTimeMeasurementBlock(db, TimeMeasurementBlockRow(receiveId, i + 1, page, RecorderKind::BrioNormal)))
      return false;
  }
  return true;
}

// A new database file at path, opened on db; false (with the benchmark marked as failed)
// when it cannot be made.
bool OpenNewDatabase(benchmark::State& state, const QString& path, VtDatabase& db) {
  QString error;
  if (!CreateDatabaseFile(path, kDefaultDbPassword, &error)) {
    state.SkipWithError(error.toStdString().c_str());
    return false;
  }
  QString p = path;
  QString pw;
  return VTDB_Open(db, p, pw) == 0;
}

void BM_StoreFullRing(benchmark::State& state) {
  BenchInstallation inst;
  int round = 0;
  qint64 bytes = 0;
  for (auto _ : state) {
    state.PauseTiming();
    const QString path = inst.db(QStringLiteral("ring%1.db").arg(round++));
    VtDatabase db;
    if (!OpenNewDatabase(state, path, db)) return;
    state.ResumeTiming();
    if (!storeReception(db, QDate(2024, 1, 1), kRingDays)) {
      state.SkipWithError("storing failed");
      return;
    }
    state.PauseTiming();
    db.close();  // checkpoints the log into the file
    bytes = QFileInfo(path).size();
    QFile::remove(path);
    state.ResumeTiming();
  }
  state.counters["days_per_s"] = benchmark::Counter(double(kRingDays) * double(state.iterations()),
                                                    benchmark::Counter::kIsRate);
  state.counters["db_bytes_after_ring"] = double(bytes);
}
BENCHMARK(BM_StoreFullRing)->Unit(benchmark::kMillisecond)->Iterations(3);

// A database of two overlapping receptions starting on the given days; false (with the
// benchmark marked as failed) when it cannot be made.
bool OpenTwoReceptions(benchmark::State& state, const QString& path, VtDatabase& db, const QDate& first,
                       const QDate& second) {
  if (!OpenNewDatabase(state, path, db)) return false;
  if (!storeReception(db, first, kRingDays) || !storeReception(db, second, kRingDays)) {
    state.SkipWithError("storing failed");
    return false;
  }
  return true;
}

void BM_ReadYearOfChartRows(benchmark::State& state) {
  BenchInstallation inst;
  const QString path = inst.db(QStringLiteral("year.db"));
  VtDatabase db;
  // Two overlapping receptions, as a household's year looks after two full rings: 480
  // stored rows, 366 calendar days of 2024 among them.
  if (!OpenTwoReceptions(state, path, db, QDate(2023, 12, 1), QDate(2024, 7, 1))) return;
  std::vector<ChartDayRecord> rows;
  int n = 0;
  for (auto _ : state) {
    n = VTDB_GetChartData(db, QStringLiteral("U000000001"), QStringLiteral("20240101"), QStringLiteral("20241231"),
                          QStringLiteral("50"), rows);
    benchmark::DoNotOptimize(rows.data());
  }
  state.counters["rows"] = n;
  db.close();
  state.counters["db_bytes"] = double(QFileInfo(path).size());
}
BENCHMARK(BM_ReadYearOfChartRows)->Unit(benchmark::kMillisecond);

// The same year with each newest day's profile fetched, as the one-day profile chart and
// the CSV export need it.
void BM_ReadYearWithProfiles(benchmark::State& state) {
  BenchInstallation inst;
  const QString path = inst.db(QStringLiteral("year.db"));
  VtDatabase db;
  if (!OpenTwoReceptions(state, path, db, QDate(2024, 1, 1), QDate(2024, 7, 1))) return;
  std::vector<ChartDayRecord> rows;
  for (auto _ : state) {
    const int n = VTDB_GetChartData(db, QStringLiteral("U000000001"), QStringLiteral("20240101"),
                                    QStringLiteral("20241231"), QStringLiteral("50"), rows);
    for (int i = 0; i < n; ++i) {
      ChartDayRecord& r = rows[static_cast<size_t>(i)];
      if (!r.NewestOfDay) continue;
      TimeBlockRecord block;
      VTDB_GetTimeMeasurementDayBlock(db, r.RECEIVE_ID, r.SEQ_NUM, block);
      VTDB_GetModerate(db, r.RECEIVE_ID, r.SEQ_NUM, QStringLiteral("4"), QStringLiteral("7"), r);
      r.ACT_LEVEL_BLOCK = block.ACT_LEVEL_BLOCK.trimmed();
    }
    benchmark::DoNotOptimize(rows.data());
  }
}
BENCHMARK(BM_ReadYearWithProfiles)->Unit(benchmark::kMillisecond);

// A backup and a restore of a household's five years: eight full rings of one recorder
// (1920 days with their profiles), copied while the working connection is open.
void BM_BackUpAndRestoreFiveYears(benchmark::State& state) {
  BenchInstallation inst;
  const QString path = inst.db(QStringLiteral("years.db"));
  VtDatabase db;
  if (!OpenNewDatabase(state, path, db)) return;
  VTDB_BeginTrans(db);
  for (int ring = 0; ring < 8; ++ring) {
    if (!storeReception(db, QDate(2020, 1, 1).addDays(ring * kRingDays), kRingDays)) {
      state.SkipWithError("storing failed");
      return;
    }
  }
  VTDB_CommitTrans(db);
  const QString copy = inst.db(QStringLiteral("copy.db"));
  for (auto _ : state) {
    BackUpDatabase(path, kDefaultDbPassword, copy);
    if (state.range(0) == 1) {
      state.PauseTiming();
      db.close();
      state.ResumeTiming();
      RestoreDatabase(path, kDefaultDbPassword, copy);
      state.PauseTiming();
      QString p = path;
      QString pw;
      VTDB_Open(db, p, pw);
      state.ResumeTiming();
    }
  }
  state.counters["db_bytes"] = double(QFileInfo(copy).size());
}
BENCHMARK(BM_BackUpAndRestoreFiveYears)->ArgName("with_restore")->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond)->Iterations(5);
// Opening the database as the working connection does: with the installation's random raw
// key (no key derivation) against a passphrase, which SQLCipher stretches on every open.
void OpenBench(benchmark::State& state, bool rawKey) {
  BenchInstallation inst;
  const QString path = inst.db(QStringLiteral("open.db"));
  const QString key = rawKey ? QStringLiteral("x'") + QString(64, QLatin1Char('7')) + QStringLiteral("'")
                             : kDefaultDbPassword;
  QString error;
  if (!CreateDatabaseFile(path, key, &error)) {
    state.SkipWithError(error.toStdString().c_str());
    return;
  }
  for (auto _ : state) {
    VtDatabase db;
    db.open(path, key);
    benchmark::DoNotOptimize(db.handle());
  }
}
void BM_OpenWithRawKey(benchmark::State& state) { OpenBench(state, true); }
void BM_OpenWithPassphrase(benchmark::State& state) { OpenBench(state, false); }
BENCHMARK(BM_OpenWithRawKey)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_OpenWithPassphrase)->Unit(benchmark::kMillisecond)->Iterations(20);

}  // namespace

int main(int argc, char** argv) {
  QCoreApplication app(argc, argv);
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
