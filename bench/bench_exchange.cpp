// CSV exchange: the report of one user over a year (goal: 100 ms) and a batch import of
// 100 files of 30 days each into an empty database (goal: 3 s).
#include <benchmark/benchmark.h>

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include "exchange/exchange.h"
#include "frame/frame.h"
#include "store/store.h"

namespace {

const char kUser[] = "U000000001";

// bin/ as the working directory, a config.cnf with the keys the exchange reads, and an
// empty resource file (the log texts are not measured).
class BenchInstallation {
 public:
  BenchInstallation() {
    QDir root(dir_.path());
    for (const char* d : {"bin", "conf", "log", "data/mdb", "out", "in"}) root.mkpath(QLatin1String(d));
    QFile cnf(root.filePath(QStringLiteral("conf/config.cnf")));
    if (cnf.open(QIODevice::WriteOnly))
      cnf.write("[SYSTEM]\nLOG_PATH=../log\nLOG_LEVEL=3\nLANG=0\nRESORCE_INI_PATH=../conf/resource.ini\n"
                "CHART_INI_PATH=../conf/resource.ini\nPMMETS_INI_PATH=../conf/resource.ini\n"
                "[OTHER]\nCSV_ENCODING=\n[USER_DEFAULT]\nMODERATE_FROM=4\nMODERATE_TO=7\nTARGET_STEP=8000\n"
                "TARGET_ACT_MIN=60\nTARGET_AVE_FOOD_INTAKE=2000\nTARGET_ACT_CAL=300\nPREFECTURE=0\n"
                "[CSV]\nMAX_RECORD=366\nCSVLOGINID_PREFIX=VT\nCSVLOGINID_MAX=0\n");
    cnf.close();
    QFile res(root.filePath(QStringLiteral("conf/resource.ini")));
    if (res.open(QIODevice::WriteOnly)) res.write("[VB_COMMON]\n");
    res.close();
    oldCwd_ = QDir::currentPath();
    QDir::setCurrent(root.filePath(QStringLiteral("bin")));
    Ini_LoadConfig();
    SetDialogInterface(&dialog_);
  }
  ~BenchInstallation() {
    SetDialogInterface(nullptr);
    QDir::setCurrent(oldCwd_);
  }
  QString path(const QString& relative) const { return QDir(dir_.path()).filePath(relative); }

  // A new database holding the user, opened on db.
  bool freshDatabase(const QString& name, VtDatabase& db) {
    QString error;
    if (!CreateDatabaseFile(path(QStringLiteral("data/mdb/") + name), kDefaultDbPassword, &error)) return false;
    db.open(path(QStringLiteral("data/mdb/") + name), kDefaultDbPassword);
    UserRecord u;
    u.USER_ID = QString::fromLatin1(kUser);
    u.GROUP_ID = kDefaultGroupId;
    u.LOGIN_ID = QStringLiteral("bench");
    u.FIRST_NAME = QStringLiteral("計測");
    u.LAST_NAME = QStringLiteral("太郎");
    return VTDB_SetUserInfo(db, u);
  }

 private:
  QTemporaryDir dir_;
  QString oldCwd_;
  StderrDialog dialog_;
};

CsvRow day(const QDate& d, int n) {
  CsvRow r;
  r.MEASUREMENT_DAY = r.RAW_MEASUREMENT_DAY = DateToYmd(d);
  r.WEEK_DAY = QString::number(d.dayOfWeek());
  r.GENDAR = QStringLiteral("0");
  r.AGE = QStringLiteral("45");
  r.HEIGHT_CM = QStringLiteral("172");
  r.WEIGHT_KG = QStringLiteral("70.4");
  r.TARGET_CAL = QStringLiteral("300");
  r.ENERGY_EXPENDITURE = QString::number(2100 + n % 50);
  r.ACTIVITY = QString::number(250 + n % 70);
  r.STEP_COUNT = QString::number(6000 + (n * 37) % 5000);
  r.TARGET_STEP = QStringLiteral("8000");
  r.PACE_CM = QStringLiteral("72");
  r.DISTANCE_KM = QStringLiteral("4.5");
  r.ACCUMULATION_TIME = QStringLiteral("45");
  for (int i = 0; i <= 9; ++i) r.ACTIVITY_LEVEL[static_cast<size_t>(i)] = QString::number(200 + 13 * i + n % 11);
  r.EVENT[0] = QStringLiteral("0830");
  QStringList slots;
  for (int s = 0; s < 720; ++s) slots << QString::number((s * 7 + n) % 12);
  r.ACT_LEVEL_BLOCK = slots.join(u',');
  return r;
}

// Stores count days from first as one reception.
bool storeDays(VtDatabase& db, const QDate& first, int count) {
  UserInfo user;
  user.USER_ID = QString::fromLatin1(kUser);
  const QString receiveId = CreateReceiveId(db);
  VTDB_BeginTrans(db);
  for (int i = 0; i < count; ++i) {
    const CsvRow r = day(first.addDays(i), i);
    if (!VTDB_SetDayMeasurementForCSV(db, receiveId, i + 1, user, r) ||
        !VTDB_SetTimeMeasurementBlockForCSV(db, receiveId, i + 1, user, r))
      return false;
  }
  return VTDB_CommitTrans(db);
}

void BM_ExportUserYear(benchmark::State& state) {
  BenchInstallation inst;
  VtDatabase db;
  if (!inst.freshDatabase(QStringLiteral("year.db"), db) || !storeDays(db, QDate(2024, 1, 1), 366)) {
    state.SkipWithError("the year was not stored");
    return;
  }
  UserInfo user;
  GetUserInfo(db, user, QString::fromLatin1(kUser));
  const QString out = inst.path(QStringLiteral("out/year.csv"));
  for (auto _ : state) {
    QString error;
    if (!MakeCSVData2(db, user.USER_ID, QStringLiteral("20240101"), QStringLiteral("20241231"),
                      QStringLiteral("20241231"), out, user, 366, 0, CsvExportOptions{}, error)) {
      state.SkipWithError(error.toStdString().c_str());
      return;
    }
  }
  state.counters["file_bytes"] = double(QFileInfo(out).size());
}
BENCHMARK(BM_ExportUserYear)->Unit(benchmark::kMillisecond);

void BM_ImportHundredFilesOfThirtyDays(benchmark::State& state) {
  BenchInstallation inst;
  VtDatabase source;
  if (!inst.freshDatabase(QStringLiteral("source.db"), source) || !storeDays(source, QDate(2024, 6, 1), 30)) {
    state.SkipWithError("the month was not stored");
    return;
  }
  UserInfo user;
  GetUserInfo(source, user, QString::fromLatin1(kUser));
  const QString one = inst.path(QStringLiteral("out/month.csv"));
  QString error;
  if (!MakeCSVData2(source, user.USER_ID, QStringLiteral("20240601"), QStringLiteral("20240630"),
                    QStringLiteral("20240630"), one, user, -1, 0, CsvExportOptions{}, error)) {
    state.SkipWithError(error.toStdString().c_str());
    return;
  }
  const QString folder = inst.path(QStringLiteral("in"));
  for (int i = 0; i < 100; ++i)
    QFile::copy(one, QStringLiteral("%1/u%2_利用者%2_20240701.csv").arg(folder).arg(i, 3, 10, QLatin1Char('0')));
  int round = 0;
  for (auto _ : state) {
    state.PauseTiming();
    VtDatabase target;
    if (!inst.freshDatabase(QStringLiteral("target%1.db").arg(round++), target)) {
      state.SkipWithError("no database");
      return;
    }
    NullProgress progress;
    state.ResumeTiming();
    const CsvImportSummary s = CSVBatchImport(target, {folder}, QString(), progress);
    if (s.filesImported != 100) {
      state.SkipWithError(s.log.left(300).toStdString().c_str());
      return;
    }
  }
}
BENCHMARK(BM_ImportHundredFilesOfThirtyDays)->Unit(benchmark::kMillisecond)->Iterations(3);

}  // namespace

int main(int argc, char** argv) {
  QCoreApplication app(argc, argv);
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
