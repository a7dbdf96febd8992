#include "testsupport/test_installation.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include "frame/catalogue.h"
#include "frame/config.h"
#include "frame/profile.h"
#include "frame/shared_values.h"

namespace {

// The values the tests count on where they differ from an installation's: no compaction,
// every log line, fixed date formats in both editions and the test's own report limits.
const char* const kTestConfig[][2] = {
    {"COMPACT_DB", "0"},          {"LOG_LEVEL", "0"},
    {"PDFHELP_NAME", "../help/manual.pdf"}, {"HEALTY_DIARY_ADDRESS", "https://example.invalid/diary"},
    {"LOCALE_SHORTDATE", "yyyy/MM/dd"}, {"DATESCREEN_YMD", "yyyy\\/MM\\/dd"}, {"DATEGRAPH_YMD", "%Y/%m/%d"},
    {"DEFAULT_DATA_RANGE", ""},   {"MAX_ACT_MIN", "600"}, {"MAX_TOTAL_CAL", "4000"}, {"MAX_AVE_ACT_MIN", "300"},
    {"TARGET_AVE_FOOD_INTAKE", "2000"}, {"TARGET_EXERCISE", "23"}, {"PREFECTURE", ""},
    {"CSVLOGINID_PREFIX", "CSV"}, {"CSVLOGINID_MAX", "9999"}, {"STRING_10", "'"}, {"STRING_11", ""},
};

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
  for (const char* sub : {"bin", "conf", "data/mdb", "temp", "log", "raw", "reader", "help", "images"})
    if (!root.mkpath(QLatin1String(sub))) return false;
  // The edition's configuration file with the values the tests count on.
  QByteArray config = ReadBytes(distFile(lang, QStringLiteral("conf/config.cnf")));
  if (config.isEmpty()) return false;
  for (const auto& [key, value] : kTestConfig) {
    const QByteArray prefix = QByteArray("\n") + key + '=';
    const qsizetype at = config.indexOf(prefix);
    if (at < 0) return false;
    const qsizetype end = config.indexOf('\n', at + 1);
    config.replace(at + prefix.size(), end - at - prefix.size(), value);
  }
  bool ok = WriteBytes(configFile(), config);
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
  WriteBytes(path(QStringLiteral("bin/ACTA.res")), actaRes);
  LoadResource();
}

void TestInstallation::writeMenu(const QByteArray& menuRes) {
  WriteBytes(path(QStringLiteral("bin/menu.res")), menuRes);
  LoadMenuResource();
}

QString TestInstallation::traceText() const {
  return QString::fromUtf8(ReadBytes(traceFile()));
}

bool TestInstallation::logged(const QString& level, const QString& name, const QString& message) const {
  const QString shownName = name.size() < 20 ? name.leftJustified(21, u' ') : name.left(20);
  return traceText().contains(u'|' + level + u'|' + shownName + u'|' + message);
}
