// Making the chart files: a six-month chart (six four-week spans) from a database that
// holds five users with five years of days each.
#include <benchmark/benchmark.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include "charts/charts.h"
#include "frame/frame.h"
#include "store/store.h"

namespace {

constexpr int kUsers = 5;
constexpr int kYears = 5;
const QDate kLastDay(2024, 6, 30);

void WriteFile(const QString& path, const QByteArray& text) {
  QFile f(path);
  if (f.open(QIODevice::WriteOnly)) f.write(text);
}

// A minimal installation: bin/ as working directory, configuration, temp/, log/, and a
// database filled with the users' days.
class Installation {
 public:
  Installation() {
    QDir root(dir_.path());
    for (const char* sub : {"bin", "conf", "temp", "log", "data/mdb"}) root.mkpath(QLatin1String(sub));
    WriteFile(dir_.filePath(QStringLiteral("conf/resource.ini")),
              "[REPORT_HEADER]\nCAPTION_MALE=Male\nCAPTION_FEMALE=Female\n");
    WriteFile(dir_.filePath(QStringLiteral("conf/chart.ini")), "");
    WriteFile(dir_.filePath(QStringLiteral("conf/config.cnf")),
              "[SYSTEM]\nDB_NAME=../data/mdb/ACTA.db\nRESORCE_INI_PATH=../conf/resource.ini\n"
              "CHART_INI_PATH=../conf/chart.ini\nTEMPDATA_PATH=../temp\nLOG_PATH=../log\n"
              "LOG_LEVEL=1\nLANG=0\n[OTHER]\nINSTITUTION=\n[REPORT]\nEDFA_STARTING_DAY=1\n"
              "EDFA_ENDING_DAY=1\nEDFA_LOW_STEP_COUNT=50\n[USER_DEFAULT]\nMODERATE_FROM=4\n"
              "MODERATE_TO=7\nTARGET_STEP=8000\nTARGET_ACT_MIN=60\nTARGET_AVE_FOOD_INTAKE=2000\n"
              "TARGET_ACT_CAL=300\nTARGET_EXERCISE=23\n");
    oldCwd_ = QDir::currentPath();
    QDir::setCurrent(dir_.filePath(QStringLiteral("bin")));
    Ini_LoadConfig();
    SetLogLevel(QStringLiteral("1"));
    SetDialogInterface(&dialogs_);

    const QString dbPath = dir_.filePath(QStringLiteral("data/mdb/ACTA.db"));
    CreateDatabaseFile(dbPath, kDefaultDbPassword, nullptr);
    db.open(dbPath, kDefaultDbPassword);
    fill();
  }
  ~Installation() {
    db.close();
    QDir::setCurrent(oldCwd_);
    SetDialogInterface(nullptr);
  }

  VtDatabase db;

 private:
  void fill() {
    Transaction tx(db);
    Statement day(db, QStringLiteral(
        "INSERT INTO DAY_MEASUREMENT (RECEIVE_ID, SEQ_NUM, MEASUREMENT_DAY, RAW_MEASUREMENT_DAY, "
        "WEEK_DAY, USER_ID, GENDAR, AGE, HEIGHT_CM, HEIGHT_FEET, HEIGHT_INCH, WEIGHT_KG, "
        "WEIGHT_PAUND, TARGET_CAL, ENERGY_EXPENDITURE, ACTIVITY, STEP_COUNT, ACTIVITY_LEVEL_0, "
        "ACTIVITY_LEVEL_1, ACTIVITY_LEVEL_2, ACTIVITY_LEVEL_3, ACTIVITY_LEVEL_4, ACTIVITY_LEVEL_5, "
        "ACTIVITY_LEVEL_6, ACTIVITY_LEVEL_7, ACTIVITY_LEVEL_8, ACTIVITY_LEVEL_9, LOWER_BOUND, "
        "UPPER_BOUND, TARGET_TIME, PACE_CM, TARGET_STEP, MEASUREMENT_MODE, ACCUMULATION_TIME, "
        "DISTANCE_KM, DISTANCE_MILE, SELECT_TARGET, SELECT_UNIT, PEDOMERA, EXERCISE) VALUES "
        "(?, ?, ?, ?, ?, ?, '1', '45', '165', '5', '5', '62.5', '138', '300', ?, ?, ?, '0', ?, ?, "
        "?, ?, ?, ?, ?, ?, ?, '4', '9', '60', '70', '8000', '0', ?, ?, ?, '0', '0', '2', NULL)"));
    const QDate first = kLastDay.addYears(-kYears).addDays(1);
    for (int u = 1; u <= kUsers; ++u) {
      UserRecord user;
      user.USER_ID = QStringLiteral("U%1").arg(u, 9, 10, QLatin1Char('0'));
      user.GROUP_ID = kDefaultGroupId;
      user.FIRST_NAME = QStringLiteral("User%1").arg(u);
      user.NICK_NAME = user.FIRST_NAME;
      VTDB_SetUserInfo(db, user);
      // One reception per 30 days, as a household that reads its recorders monthly.
      int seq = 0;
      QString receiveId;
      int n = 0;
      for (QDate d = first; d <= kLastDay; d = d.addDays(1), ++n) {
        if (n % 30 == 0) {
          receiveId = CreateReceiveId(db);
          seq = 0;
        }
        ++seq;
        const int steps = 2000 + (n * 7919 + u * 104729) % 9000;
        const QString ymd = DateToYmd(d);
        int i = 1;
        day.reset();
        const auto bind = [&day, &i](const QString& v) { day.bind(i++, v); };
        bind(receiveId);
        bind(QString::number(seq));
        bind(ymd);
        bind(ymd);
        bind(QString::number(d.dayOfWeek()));
        bind(user.USER_ID);
        bind(QString::number(1700 + steps / 20));
        bind(QString::number(steps / 30));
        bind(QString::number(steps));
        for (int level = 1; level <= 9; ++level) bind(QString::number((steps / (level * 7)) % 700));
        bind(QString::number(steps / 150));
        bind(QString::number(steps * 0.0007, 'f', 1));
        bind(QString::number(steps * 0.0007 / 1.61, 'f', 1));
        day.run();
      }
    }
    tx.commit();
  }

  QTemporaryDir dir_;
  QString oldCwd_;
  StderrDialog dialogs_;
};

Installation& Shared() {
  static Installation inst;
  return inst;
}

void MakeChart(benchmark::State& state, int chartType, const QDate& from, const QDate& to) {
  Installation& inst = Shared();
  const QString user = QStringLiteral("U000000003");
  for (auto _ : state) {
    QString iface, header;
    const bool ok = charts::MakeChartData(inst.db, chartType, DateToSlash(from), DateToSlash(to),
                                          iface, header, user);
    if (!ok) state.SkipWithError("MakeChartData failed");
    QFile::remove(iface);
    QFile::remove(header);
  }
}

// The six-month window the screen shows at the latest date: six four-week spans.
void BM_SixMonthChartFiles(benchmark::State& state) {
  MakeChart(state, static_cast<int>(state.range(0)), kLastDay.addDays(-167), kLastDay);
}
BENCHMARK(BM_SixMonthChartFiles)->Arg(102)->Arg(902)->Unit(benchmark::kMillisecond);

void BM_WeekChartFiles(benchmark::State& state) {
  MakeChart(state, 100, kLastDay.addDays(-6), kLastDay);
}
BENCHMARK(BM_WeekChartFiles)->Unit(benchmark::kMillisecond);

// The six-month day list alone, without files.
void BM_SixMonthDayList(benchmark::State& state) {
  Installation& inst = Shared();
  std::vector<ChartDayRecord> days;
  for (auto _ : state) {
    const int n = charts::CalcStepActMin(inst.db, QStringLiteral("U000000003"),
                                         DateToYmd(kLastDay.addDays(-167)), DateToYmd(kLastDay),
                                         days, true, false, false);
    benchmark::DoNotOptimize(n);
  }
}
BENCHMARK(BM_SixMonthDayList)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
