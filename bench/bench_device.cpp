// Decoding speed of recorder memory: a full ring of pages, from bytes and through the
// emulated reader (with the protocol's waits skipped).
#include <benchmark/benchmark.h>

#include <QDir>
#include <QTemporaryDir>

#include "device/device.h"
#include "frame/profile.h"
#include "frame/shared_values.h"

namespace {

RecorderImageOptions FullRing(RecorderKind kind) {
  RecorderImageOptions o;
  o.kind = kind;
  o.seed = 3;
  o.days = RingSize(kind, RecorderLang::Japanese) - 1;  // every page but one holds a day
  o.lastDay = QDate(2024, 6, 30);
  return o;
}

void DecodeRing(benchmark::State& state, RecorderKind kind) {
  const RecorderImageOptions o = FullRing(kind);
  const QByteArray image = MakeRecorderImage(o);
  const int pageBytes = PageBytesOfKind(kind);
  const int pages = o.days;
  FlashData d;
  for (auto _ : state) {
    for (int p = 1; p <= pages; ++p) {
      const qsizetype at = static_cast<qsizetype>(FirstBlockOfPage(kind, p)) * kTransferBlockBytes;
      const ByteSpan page(reinterpret_cast<const quint8*>(image.constData()) + at,
                          static_cast<size_t>(pageBytes));
      benchmark::DoNotOptimize(FlashData_Decode(page, d, kind));
    }
    benchmark::ClobberMemory();
  }
  state.counters["pages"] = pages;
  state.counters["pages/s"] = benchmark::Counter(static_cast<double>(pages) * state.iterations(),
                                                 benchmark::Counter::kIsRate);
}

void BM_DecodeRingBrioNormal(benchmark::State& state) { DecodeRing(state, RecorderKind::BrioNormal); }
void BM_DecodeRingAL(benchmark::State& state) { DecodeRing(state, RecorderKind::AL); }
void BM_DecodeRingMets(benchmark::State& state) { DecodeRing(state, RecorderKind::BrioMets); }

// Management block and every page through UsbOpen / PM_RecvManage / PM_RecvData, with a
// configuration of its own (the recorder numbers; nothing logged, no raw file).
void BM_ReadRingThroughEmulator(benchmark::State& state) {
  QTemporaryDir dir;
  const QString conf = QDir(dir.path()).filePath("config.cnf");
  const RecorderNumbers n;
  WriteIniString(conf, "SYSTEM", "VALID_VERSION_NUMBER", QString::number(n.validVersion));
  WriteIniString(conf, "SYSTEM", "PMAL_NUMBER", n.al);
  WriteIniString(conf, "SYSTEM", "PMBRIO_JPN_NUMBER", n.brioJpn);
  WriteIniString(conf, "SYSTEM", "PMBRIO_ENG_NUMBER", n.brioEng);
  WriteIniString(conf, "SYSTEM", "PMBRIO_KT200_NUMBER", n.kt200);
  WriteIniString(conf, "SYSTEM", "PMBRIO_KT014_NUMBER", n.kt014);
  WriteIniString(conf, "SYSTEM", "LOG_PATH", dir.path());
  SetConfigPath(conf);
  SetLogLevel("3");
  WriteRecorderImage(FullRing(RecorderKind::BrioNormal), QDir(dir.path()).filePath("r.img"));
  EmulatedReader reader(dir.path());
  NoWaitClock clock;
  size_t pages = 0;
  for (auto _ : state) {
    RecorderContents c;
    ReadRecorderContents(reader, clock, c, nullptr);
    pages = c.pages.size();
    benchmark::DoNotOptimize(c);
  }
  state.counters["pages"] = static_cast<double>(pages);
  SetConfigPath(QString());
}

void BM_MakeRecorderImageFullRing(benchmark::State& state) {
  const RecorderImageOptions o = FullRing(RecorderKind::BrioNormal);
  for (auto _ : state) benchmark::DoNotOptimize(MakeRecorderImage(o));
}

}  // namespace

BENCHMARK(BM_DecodeRingBrioNormal)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_DecodeRingAL)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_DecodeRingMets)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_ReadRingThroughEmulator)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_MakeRecorderImageFullRing)->Unit(benchmark::kMillisecond);
BENCHMARK_MAIN();
