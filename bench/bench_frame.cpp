// Frame costs that sit on hot paths: settings are read from the file on every call
// (there is no cache by design), and a trace line below the threshold must cost no file
// access at all.
#include <benchmark/benchmark.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include "frame/frame.h"

namespace {

// A configuration of the installed size and shape (about 90 lines, 10 sections).
const char kConfig[] =
    "; settings of the installation\n"
    "[SYSTEM]\nDB_NAME=../data/mdb/ACTA.db\nDB_PASSWORD=qoxtlamv\nCOMPACT_DB=1\n"
    "POLLING_INTERVAL=1000\nRAWDATA_PATH=../raw\nSAVE_RAW_DATA=0\nTEMPDATA_PATH=../temp\n"
    "LOG_PATH=../log\nLOG_LEVEL=1\nPDFHELP_NAME=../help/manual.html\n"
    "HEALTY_DIARY_ADDRESS=../help/diary.html\nCHART_INI_PATH=../conf/chart.ini\n"
    "RESORCE_INI_PATH=../conf/resource.ini\nPMMETS_INI_PATH=../conf/pmmets.ini\nSORT_ORDER=0\n"
    "VALID_VERSION_NUMBER=20\nPMAL_NUMBER=12820\nPMBRIO_JPN_NUMBER=13010\nPMBRIO_ENG_NUMBER=13020\n"
    "PMBRIO_KT200_NUMBER=14200\nPMBRIO_KT014_NUMBER=14014\nLANG=0\nSHIFT_DB=1\nSHIFT_DB_APPNAME=\n"
    "LOCALE_CHECK=0\nLOCALE_SHORTDATE=yyyy/MM/dd\nDATESCREEN_YMD=yyyy\\/MM\\/dd\n"
    "DATEGRAPH_YMD=%Y/%m/%d\nDATEGRAPH_MDA=%m/%d(%a)\n\n"
    "[OTHER]\nSAVE_LAST_USER=1\nLAST_USER_ID=U000000001\nLAST_GROUP_ID=G000000001\nINSTITUTION=\n"
    "PRINTER=\nPAPER_SIZE=\n\n"
    "[DOWNLOAD]\nDOWNLOAD_DATA_RANGE=1\n\n"
    "[REPORT]\nDEFAULT_DATA_RANGE=2\nEDFA_STARTING_DAY=1\nEDFA_ENDING_DAY=1\nEDFA_LOW_STEP_COUNT=50\n"
    "MAX_STEP=20000\nMAX_ACT_MIN=180\nMAX_TOTAL_CAL=3500\nMAX_AVE_ACT_MIN=120\n\n"
    "[USER_DEFAULT]\nMODERATE_FROM=4\nMODERATE_TO=7\nTARGET_STEP=8000\nTARGET_ACT_MIN=60\n"
    "TARGET_AVE_FOOD_INTAKE=2000\nTARGET_ACT_CAL=300\nTARGET_EXERCISE=23.0\n\n"
    "[CSV]\nMAX_RECORD=366\nCSVLOGINID_PREFIX=VT\nCSVLOGINID_MAX=0\n\n"
    "[PM_TEST]\nPM_AL=1\nPM_DUNP=0\n\n"
    "[PROHIBIT_FILENAME]\nSTRING_1=\\\nSTRING_2=/\nSTRING_3=:\nSTRING_4=*\nSTRING_5=?\n"
    "STRING_6=\"\nSTRING_7=<\nSTRING_8=>\nSTRING_9=|\nSTRING_10=,\nSTRING_11='\n\n"
    "[READER]\nTYPE=EMULATOR\nEMULATOR_PATH=../reader\nLIBRARY_PATH=\n";

struct Installation {
  QTemporaryDir dir;
  QString config;
  Installation() : config(dir.filePath(QStringLiteral("config.cnf"))) {
    QFile f(config);
    if (f.open(QIODevice::WriteOnly)) f.write(kConfig);
    ResetSharedValues();
    SetConfigPath(config);
  }
};

void BM_ReadIniString_FirstKey(benchmark::State& state) {
  Installation inst;
  const QString section = QStringLiteral("SYSTEM");
  const QString key = QStringLiteral("DB_NAME");
  for (auto _ : state) benchmark::DoNotOptimize(ReadIniString(inst.config, section, key));
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_ReadIniString_FirstKey);

void BM_ReadIniString_LastKey(benchmark::State& state) {
  Installation inst;
  const QString section = QStringLiteral("reader");
  const QString key = QStringLiteral("library_path");
  for (auto _ : state) benchmark::DoNotOptimize(ReadIniString(inst.config, section, key));
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_ReadIniString_LastKey);

void BM_Ini_GetPollingInterval(benchmark::State& state) {
  Installation inst;
  for (auto _ : state) benchmark::DoNotOptimize(Ini_GetPollingInterval());
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_Ini_GetPollingInterval);

void BM_WriteIniString_ExistingKey(benchmark::State& state) {
  Installation inst;
  int n = 0;
  for (auto _ : state) Ini_SetLastUserId(QStringLiteral("U%1").arg(++n % 10, 9, 10, QLatin1Char('0')));
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_WriteIniString_ExistingKey);

void BM_WriteTrace_BelowThreshold(benchmark::State& state) {
  Installation inst;
  SetLogLevel(QStringLiteral("1"));
  const QString level = QStringLiteral("0");
  const QString name = QStringLiteral("frmTerminal");
  const QString message = QStringLiteral("Form_Load Start");
  for (auto _ : state) WriteTrace(level, name, message);
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_WriteTrace_BelowThreshold);

void BM_WriteTrace_Written(benchmark::State& state) {
  Installation inst;
  SetLogLevel(QStringLiteral("0"));
  const QString path = inst.dir.filePath(QStringLiteral("trace.log"));
  const QString level = QStringLiteral("0");
  const QString name = QStringLiteral("frmTerminal");
  const QString message = QStringLiteral("Form_Load Start");
  for (auto _ : state) WriteTrace(level, name, message, path);
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_WriteTrace_Written);

void BM_Format_OneDecimal(benchmark::State& state) {
  const QString fmt = QStringLiteral("#0.0");
  double v = 0.05;
  for (auto _ : state) {
    benchmark::DoNotOptimize(Format(v, fmt));
    v += 0.1;
  }
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_Format_OneDecimal);

}  // namespace

BENCHMARK_MAIN();
