// A whole receive with the protocol's waits taken out: the system's own cost of reading,
// decoding and storing a full ring of 240 pages, and of an incremental receive of the
// day being recorded plus one new day.
#include <benchmark/benchmark.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include "device/device.h"
#include "device/fake_reader.h"
#include "frame/frame.h"
#include "receive/receive.h"
#include "store/store.h"

namespace {

void WriteFile(const QString& path, const QByteArray& text) {
  QFile f(path);
  if (f.open(QIODevice::WriteOnly)) f.write(text);
}

class Installation {
 public:
  explicit Installation(const QByteArray& downloadRange) {
    QDir root(dir_.path());
    for (const char* sub : {"bin", "conf", "temp", "log", "raw", "data/mdb"}) root.mkpath(QLatin1String(sub));
    WriteFile(dir_.filePath(QStringLiteral("conf/resource.ini")), "[RECEIVING]\nDATA_RECEIVING=x\n");
    WriteFile(dir_.filePath(QStringLiteral("conf/chart.ini")), "");
    WriteFile(dir_.filePath(QStringLiteral("conf/config.cnf")),
              "[SYSTEM]\nDB_NAME=../data/mdb/ACTA.db\nRESORCE_INI_PATH=../conf/resource.ini\n"
              "CHART_INI_PATH=../conf/chart.ini\nTEMPDATA_PATH=../temp\nLOG_PATH=../log\n"
              "RAWDATA_PATH=../raw\nSAVE_RAW_DATA=0\nLOG_LEVEL=1\nLANG=0\nVALID_VERSION_NUMBER=20\n"
              "PMAL_NUMBER=12820\nPMBRIO_JPN_NUMBER=13010\nPMBRIO_ENG_NUMBER=13020\n"
              "PMBRIO_KT200_NUMBER=14200\nPMBRIO_KT014_NUMBER=14014\nLOCALE_SHORTDATE=yyyy/MM/dd\n"
              "[DOWNLOAD]\nDOWNLOAD_DATA_RANGE=" + downloadRange +
              "\n[PM_TEST]\nPM_AL=1\nPM_DUNP=0\n[USER_DEFAULT]\nTARGET_STEP=8000\nTARGET_ACT_MIN=60\n"
              "TARGET_AVE_FOOD_INTAKE=2000\nTARGET_ACT_CAL=300\nTARGET_EXERCISE=23\n");
    oldCwd_ = QDir::currentPath();
    QDir::setCurrent(dir_.filePath(QStringLiteral("bin")));
    Ini_LoadConfig();
    SetLogLevel(QStringLiteral("1"));
    SetLangCode(QStringLiteral("0"));
    SetDialogInterface(&dialogs_);
    const QString dbPath = dir_.filePath(QStringLiteral("data/mdb/ACTA.db"));
    CreateDatabaseFile(dbPath, kDefaultDbPassword, nullptr);
    db.open(dbPath, kDefaultDbPassword);
    RegisterUserByName(db, QStringLiteral("山田 花子"), userId);
    SetScreenState(kStateUserSelect);
  }
  ~Installation() {
    db.close();
    QDir::setCurrent(oldCwd_);
    SetDialogInterface(nullptr);
  }

  VtDatabase db;
  QString userId;

 private:
  QTemporaryDir dir_;
  QString oldCwd_;
  RecordingDialog dialogs_;
};

class SelectOnce : public ReceiveQuestions {
 public:
  explicit SelectOnce(QString id) : id_(std::move(id)) {}
  NewCpuAnswer newRecorder(const RecvMsgNewCPU&) override { return NewCpuAnswer::SelectUser; }
  bool receiveForCurrentUser(const RecvMsgNewCPUSelectUser&) override { return true; }
  bool takeOverRecorder(const RecvMsgAlertUser&) override { return true; }
  bool receiveResetRecorder(const RecvMsgAlertReset&) override { return true; }
  QString registerUser(VtDatabase&) override { return QString(); }
  QString selectUser(VtDatabase&) override { return id_; }

 private:
  QString id_;
};

RecorderImageOptions Recorder(int days, const QDate& lastDay) {
  RecorderImageOptions o;
  o.kind = RecorderKind::BrioNormal;
  o.days = days;
  o.lastDay = lastDay;
  o.cpuNo = QStringLiteral("B00001");
  o.numbers = RecorderNumbers::FromConfig();
  return o;
}

ReceiveEnding Receive(Installation& inst, const QByteArray& image) {
  FakeReader reader(image);
  NoWaitClock clock;
  NullProgress progress;
  SelectOnce answers(inst.userId);
  ReceiveServices s{inst.db, reader, clock, progress};
  return ReceiveWorkflow(s, answers).Run().ending;
}

void BM_ReceiveWholeRing(benchmark::State& state) {
  Installation inst("0");  // every receive fetches all the recorder holds
  const QByteArray image = MakeRecorderImage(Recorder(240, QDate(2024, 6, 30)));
  for (auto _ : state) {
    if (Receive(inst, image) != ReceiveEnding::Received) state.SkipWithError("receive failed");
  }
  state.counters["pages/s"] = benchmark::Counter(240.0 * static_cast<double>(state.iterations()),
                                                 benchmark::Counter::kIsRate);
}
BENCHMARK(BM_ReceiveWholeRing)->Unit(benchmark::kMillisecond);

void BM_ReceiveTwoNewPages(benchmark::State& state) {
  Installation inst("1");
  int days = 30;
  QDate last(2024, 6, 30);
  Receive(inst, MakeRecorderImage(Recorder(days, last)));
  for (auto _ : state) {
    state.PauseTiming();
    ++days;
    last = last.addDays(1);
    if (days > 240) state.SkipWithError("ring full");
    const QByteArray image = MakeRecorderImage(Recorder(days, last));
    state.ResumeTiming();
    if (Receive(inst, image) != ReceiveEnding::Received) state.SkipWithError("receive failed");
  }
}
BENCHMARK(BM_ReceiveTwoNewPages)->Unit(benchmark::kMillisecond)->Iterations(150);

}  // namespace

BENCHMARK_MAIN();
