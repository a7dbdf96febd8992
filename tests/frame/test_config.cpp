#include <gtest/gtest.h>

#include <QDir>
#include <QFile>

#include "frame/config.h"
#include "frame/profile.h"
#include "frame/shared_values.h"
#include "testsupport/test_installation.h"

namespace {

class Config : public ::testing::Test {
 protected:
  void SetUp() override { ASSERT_TRUE(inst.isValid()); }
  TestInstallation inst;
};

TEST_F(Config, NumberKeysAreRequiredAndNameTheKey) {
  struct Case {
    const char* section;
    const char* key;
    int (*get)();
  };
  const Case cases[] = {{"SYSTEM", "POLLING_INTERVAL", Ini_GetPollingInterval},
                        {"SYSTEM", "LOG_LEVEL", Ini_GetLogLevel},
                        {"SYSTEM", "SORT_ORDER", Ini_GetSortOrder},
                        {"SYSTEM", "VALID_VERSION_NUMBER", Ini_GetValidVersionNumber},
                        {"OTHER", "SAVE_LAST_USER", Ini_GetSaveLastUser},
                        {"CSV", "MAX_RECORD", Ini_GetMaxRecord}};
  for (const Case& c : cases) {
    for (const char* bad : {"", "abc", "12a"}) {
      inst.setConfig(c.section, c.key, bad);
      try {
        c.get();
        ADD_FAILURE() << c.key << "=" << bad << " did not throw";
      } catch (const ConfigError& e) {
        EXPECT_TRUE(e.text().contains(QLatin1String(c.key))) << e.what();
      }
    }
    inst.setConfig(c.section, c.key, " 2 ");
    EXPECT_EQ(c.get(), 2) << c.key;
  }
  // The remembered user depends on a required key too.
  inst.setConfig("OTHER", "SAVE_LAST_USER", "");
  EXPECT_THROW(Ini_GetLastUserId(), ConfigError);
}

TEST_F(Config, FlagTypes) {
  for (const char* v : {"2", "1"}) {
    inst.setConfig("SYSTEM", "COMPACT_DB", v);
    EXPECT_EQ(Ini_GetCompactDb(), v[0] == '1') << v;
  }

  inst.setConfig("REPORT", "EDFA_STARTING_DAY", "");
  inst.setConfig("REPORT", "EDFA_ENDING_DAY", "0");
  inst.setConfig("REPORT", "EDFA_LOW_STEP_COUNT", "80");
  bool starting = false, ending = true;
  QString low;
  Ini_GetExcludeSettings(starting, ending, low);
  EXPECT_EQ(std::tuple(starting, ending, low), std::tuple(true, false, QString("80")));

  inst.setConfig("DOWNLOAD", "DOWNLOAD_DATA_RANGE", "");
  EXPECT_FALSE(Ini_GetDownloadDataRange());
  inst.setConfig("DOWNLOAD", "DOWNLOAD_DATA_RANGE", "0");
  EXPECT_TRUE(Ini_GetDownloadDataRange());

  EXPECT_TRUE(Ini_GetPmAl());
  inst.setConfig("PM_TEST", "PM_AL", "yes");
  EXPECT_FALSE(Ini_GetPmAl());
}

TEST_F(Config, LowStepCountDefaultsOnlyWhenTheKeyIsMissing) {
  QByteArray text = ReadBytes(inst.configFile());
  ASSERT_TRUE(text.contains("EDFA_LOW_STEP_COUNT=50\n"));
  ASSERT_TRUE(WriteBytes(inst.configFile(), text.replace("EDFA_LOW_STEP_COUNT=50\n", "")));

  bool starting = false, ending = false;
  QString low;
  Ini_GetExcludeSettings(starting, ending, low);
  EXPECT_EQ(low, "50");
  // Written empty, the value stands as it is: the chart step reads that as "rule off".
  inst.setConfig("REPORT", "EDFA_LOW_STEP_COUNT", "");
  EXPECT_EQ(Ini_GetExcludeLowStepCount(), "");
  inst.setConfig("REPORT", "EDFA_LOW_STEP_COUNT", "0");
  EXPECT_EQ(Ini_GetExcludeLowStepCount(), "0");
}

TEST_F(Config, IntKeysAndDefaults) {
  inst.setConfig("SYSTEM", "LANG", "1x");
  inst.setConfig("SYSTEM", "LOCALE_CHECK", "");
  inst.setConfig("PM_TEST", "PM_DUNP", "");
  inst.setConfig("READER", "TYPE", "");
  EXPECT_EQ(std::tuple(Ini_GetLang(), Ini_GetLocaleCheck(), Ini_GetPmDump(), Ini_GetReaderType()),
            std::tuple(1, 0, 0, QString("EMULATOR")));
  EXPECT_EQ(Ini_GetEmulatorPath(), "../reader");
}

TEST_F(Config, GroupedAndSystemWrittenValues) {
  inst.setConfig("REPORT", "MAX_AVE_ACT_MIN", "250");
  const auto max = Ini_GetMaxValues();
  EXPECT_EQ(max[3] + max[4], "250250");  // one key, two axes

  Ini_SetSortOrder(3);
  EXPECT_EQ(Ini_GetSortOrder(), 3);
  Ini_SetLastUserId("U000000007");
  EXPECT_EQ(Ini_GetLastUserId(), "U000000007");
  inst.setConfig("OTHER", "SAVE_LAST_USER", "0");
  EXPECT_EQ(Ini_GetLastUserId(), "");
  Ini_SetPrinterName("Office");
  EXPECT_EQ(Ini_GetPrinterName(), "Office");
}

TEST_F(Config, FolderKeysAreCreated) {
  QDir(inst.logPath()).removeRecursively();
  EXPECT_EQ(Ini_GetLogPath(), "../log");
  EXPECT_TRUE(QDir(inst.logPath()).exists());
  inst.setConfig("SYSTEM", "TEMPDATA_PATH", "");
  EXPECT_EQ(Ini_GetTempDataPath(), ".");
  inst.setConfig("SYSTEM", "RAWDATA_PATH", "../raw2");
  EXPECT_EQ(Ini_GetRawDataPath(), "../raw2");
  EXPECT_TRUE(QDir(inst.path("raw2")).exists());
}

TEST_F(Config, ConfInstallationWinsOverWorkingDirectory) {
  EXPECT_EQ(GetConfigPath(), "../conf/config.cnf");
  QFile::copy(inst.configFile(), inst.path("bin/config.cnf"));
  WriteIniString(inst.path("bin/config.cnf"), "SYSTEM", "POLLING_INTERVAL", "5");
  ASSERT_TRUE(Ini_LoadConfig());
  EXPECT_EQ(Ini_GetPollingInterval(), 1000);

  QFile::remove(inst.configFile());
  ASSERT_TRUE(Ini_LoadConfig());
  EXPECT_EQ(GetConfigPath(), "config.cnf");
  EXPECT_EQ(Ini_GetPollingInterval(), 5);
}

TEST_F(Config, LoadNeedsTheResourceAndChartFiles) {
  EXPECT_EQ(GetResourceIniPath() + "|" + GetMetsIniPath(), "../conf/resource.ini|../conf/pmmets.ini");

  QFile::remove(inst.path("conf/pmmets.ini"));
  SetMetsIniPath("");
  EXPECT_TRUE(Ini_LoadConfig());
  EXPECT_EQ(GetMetsIniPath(), "");

  inst.setConfig("SYSTEM", "CHART_INI_PATH", "../conf/none.ini");
  EXPECT_FALSE(Ini_LoadConfig());
  inst.setConfig("SYSTEM", "CHART_INI_PATH", "../conf/chart.ini");
  inst.setConfig("SYSTEM", "RESORCE_INI_PATH", "");
  EXPECT_FALSE(Ini_LoadConfig());

  QFile::remove(inst.configFile());
  EXPECT_FALSE(Ini_LoadConfig());
}

TEST(ConfigUnloaded, ReadsEmptyBeforeTheFileIsFound) {
  ResetSharedValues();
  EXPECT_EQ(std::tuple(Ini_GetDbName(), Ini_GetLang()), std::tuple(QString(), 0));
  EXPECT_THROW(Ini_GetLogLevel(), ConfigError);
}

}  // namespace
