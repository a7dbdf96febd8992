#include "testsupport/test_installation.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include "frame/catalogue.h"
#include "frame/config.h"
#include "frame/profile.h"
#include "frame/shared_values.h"

namespace {

QByteArray configText(const QString& lang) {
  const QByteArray langValue = lang == QLatin1String("en") ? "1" : "0";
  return "[SYSTEM]\n"
         "DB_NAME=../data/mdb/ACTA.db\n"
         "DB_PASSWORD=\n"
         "COMPACT_DB=0\n"
         "POLLING_INTERVAL=1000\n"
         "RAWDATA_PATH=../raw\n"
         "SAVE_RAW_DATA=0\n"
         "TEMPDATA_PATH=../temp\n"
         "LOG_PATH=../log\n"
         "LOG_LEVEL=0\n"
         "PDFHELP_NAME=../help/manual.pdf\n"
         "HEALTY_DIARY_ADDRESS=https://example.invalid/diary\n"
         "CHART_INI_PATH=../conf/chart.ini\n"
         "RESORCE_INI_PATH=../conf/resource.ini\n"
         "PMMETS_INI_PATH=../conf/pmmets.ini\n"
         "SORT_ORDER=0\n"
         "VALID_VERSION_NUMBER=20\n"
         "PMAL_NUMBER=12820\n"
         "PMBRIO_JPN_NUMBER=13010\n"
         "PMBRIO_ENG_NUMBER=13020\n"
         "PMBRIO_KT200_NUMBER=14200\n"
         "PMBRIO_KT014_NUMBER=14014\n"
         "LANG=" + langValue + "\n"
         "SHIFT_DB=1\n"
         "SHIFT_DB_APPNAME=\n"
         "LOCALE_CHECK=0\n"
         "LOCALE_SHORTDATE=yyyy/MM/dd\n"
         "DATESCREEN_YMD=yyyy\\/MM\\/dd\n"
         "DATEGRAPH_YMD=%Y/%m/%d\n"
         "DATEGRAPH_MDA=%m/%d(%a)\n"
         "\n[OTHER]\n"
         "SAVE_LAST_USER=1\n"
         "LAST_USER_ID=\n"
         "LAST_GROUP_ID=\n"
         "INSTITUTION=\n"
         "PRINTER=\n"
         "PAPER_SIZE=\n"
         "\n[DOWNLOAD]\n"
         "DOWNLOAD_DATA_RANGE=1\n"
         "\n[REPORT]\n"
         "DEFAULT_DATA_RANGE=\n"
         "EDFA_STARTING_DAY=1\n"
         "EDFA_ENDING_DAY=1\n"
         "EDFA_LOW_STEP_COUNT=50\n"
         "MAX_STEP=20000\n"
         "MAX_ACT_MIN=600\n"
         "MAX_TOTAL_CAL=4000\n"
         "MAX_AVE_ACT_MIN=300\n"
         "\n[USER_DEFAULT]\n"
         "MODERATE_FROM=4\n"
         "MODERATE_TO=7\n"
         "TARGET_STEP=8000\n"
         "TARGET_ACT_MIN=60\n"
         "TARGET_AVE_FOOD_INTAKE=2000\n"
         "TARGET_ACT_CAL=300\n"
         "TARGET_EXERCISE=23\n"
         "\n[CSV]\n"
         "MAX_RECORD=366\n"
         "CSVLOGINID_PREFIX=CSV\n"
         "CSVLOGINID_MAX=9999\n"
         "\n[PM_TEST]\n"
         "PM_AL=1\n"
         "PM_DUNP=0\n"
         "\n[PROHIBIT_FILENAME]\n"
         "STRING_1=\\\n"
         "STRING_2=/\n"
         "STRING_3=:\n"
         "STRING_4=*\n"
         "STRING_5=?\n"
         "STRING_6=\"\n"
         "STRING_7=<\n"
         "STRING_8=>\n"
         "STRING_9=|\n"
         "STRING_10='\n"
         "\n[READER]\n"
         "TYPE=EMULATOR\n"
         "EMULATOR_PATH=../reader\n"
         "LIBRARY_PATH=\n";
}

bool writeFile(const QString& path, const QByteArray& bytes) {
  QFile f(path);
  if (!f.open(QIODevice::WriteOnly | QIODevice::Truncate)) return false;
  return f.write(bytes) == bytes.size();
}

// The source tree's installation file for the edition, if it has one.
QString distFile(const QString& lang, const QString& relative) {
  const QString source = QStringLiteral(VANTORA_SOURCE_DIR);
  for (const QString& edition : {lang, QStringLiteral("common")}) {
    const QString candidate = source + QStringLiteral("/dist/") + edition + u'/' + relative;
    if (QFileInfo::exists(candidate)) return candidate;
  }
  return QString();
}

bool installFile(const QString& lang, const QString& relative, const QString& target) {
  const QString source = distFile(lang, relative);
  return !source.isEmpty() && QFile::copy(source, target);
}

}  // namespace

TestInstallation::TestInstallation(const QString& lang) : oldCwd_(QDir::currentPath()) {
  valid_ = dir_.isValid() && setUp(lang);
}

TestInstallation::~TestInstallation() {
  QDir::setCurrent(oldCwd_);
  ResetSharedValues();
}

QString TestInstallation::path(const QString& relative) const { return dir_.filePath(relative); }

bool TestInstallation::setUp(const QString& lang) {
  QDir root(dir_.path());
  for (const char* sub : {"bin", "conf", "data/mdb", "temp", "log", "raw", "reader", "help", "images"}) {
    if (!root.mkpath(QLatin1String(sub))) return false;
  }
  QByteArray config = configText(lang);
  // The recorder numbers follow the installation files, so tests see the real ones.
  if (const QString dist = distFile(lang, QStringLiteral("conf/config.cnf")); !dist.isEmpty()) {
    for (const char* key : {"VALID_VERSION_NUMBER", "PMAL_NUMBER", "PMBRIO_JPN_NUMBER",
                            "PMBRIO_ENG_NUMBER", "PMBRIO_KT200_NUMBER", "PMBRIO_KT014_NUMBER"}) {
      const QString value = ReadIniString(dist, QStringLiteral("SYSTEM"), QLatin1String(key));
      if (value.isEmpty()) continue;
      const QByteArray prefix = QByteArray("\n") + key + '=';
      const qsizetype at = config.indexOf(prefix);
      const qsizetype end = config.indexOf('\n', at + 1);
      config.replace(at + prefix.size(), end - at - prefix.size(), value.toUtf8());
    }
  }
  bool ok = writeFile(configFile(), config);
  for (const char* file : {"bin/ACTA.res", "bin/menu.res", "conf/resource.ini", "conf/chart.ini", "conf/pmmets.ini"})
    ok = ok && installFile(lang, QLatin1String(file), path(QLatin1String(file)));
  if (!ok || !QDir::setCurrent(binPath())) return false;

  return reload();
}

bool TestInstallation::reload() {
  ResetSharedValues();
  if (!Ini_LoadConfig() || !LoadResource()) return false;
  LoadMenuResource();
  SetLangCode(QString::number(Ini_GetLang()));
  SetLogLevel(QString::number(Ini_GetLogLevel()));
  return true;
}

void TestInstallation::setConfig(const QString& section, const QString& key, const QString& value) {
  WriteIniString(configFile(), section, key, value);
}

void TestInstallation::setResource(const QString& section, const QString& key, const QString& value) {
  WriteIniString(resourceIniFile(), section, key, value);
}

void TestInstallation::writeCatalogue(const QByteArray& actaRes) {
  writeFile(path(QStringLiteral("bin/ACTA.res")), actaRes);
  LoadResource();
}

void TestInstallation::writeMenu(const QByteArray& menuRes) {
  writeFile(path(QStringLiteral("bin/menu.res")), menuRes);
  LoadMenuResource();
}

QString TestInstallation::traceText() const {
  QFile f(traceFile());
  if (!f.open(QIODevice::ReadOnly)) return QString();
  return QString::fromUtf8(f.readAll());
}

bool TestInstallation::logged(const QString& level, const QString& name, const QString& message) const {
  const QString shownName = name.size() < 20 ? name.leftJustified(21, u' ') : name.left(20);
  return traceText().contains(u'|' + level + u'|' + shownName + u'|' + message);
}
