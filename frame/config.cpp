#include "frame/config.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>

#include <algorithm>

#include <stdexcept>

#include "frame/profile.h"
#include "frame/shared_values.h"
#include "frame/vbformat.h"

ConfigError::ConfigError(const QString& message) : std::runtime_error(message.toStdString()) {}

QString ConfigError::text() const { return QString::fromStdString(what()); }

namespace {

const QString kSystem = QStringLiteral("SYSTEM");
const QString kOther = QStringLiteral("OTHER");
const QString kDownload = QStringLiteral("DOWNLOAD");
const QString kReport = QStringLiteral("REPORT");
const QString kUserDefault = QStringLiteral("USER_DEFAULT");
const QString kCsv = QStringLiteral("CSV");
const QString kPmTest = QStringLiteral("PM_TEST");
const QString kProhibit = QStringLiteral("PROHIBIT_FILENAME");
const QString kReader = QStringLiteral("READER");

QString read(const QString& section, const char* key) {
  return ReadIniString(GetConfigPath(), section, QLatin1String(key));
}

void write(const QString& section, const char* key, const QString& value) {
  WriteIniString(GetConfigPath(), section, QLatin1String(key), value);
}

bool flagOne(const QString& section, const char* key) {
  return read(section, key) == QLatin1String("1");
}
bool flagZero(const QString& section, const char* key) {
  return read(section, key) == QLatin1String("0");
}
bool notZero(const QString& section, const char* key) {
  return read(section, key) != QLatin1String("0");
}

int readInt(const QString& section, const char* key) {
  return ReadIniInt(GetConfigPath(), section, QLatin1String(key)).toInt();
}

// A required whole number. Converted with CLngVb's rules, so "1000 " and
// "1e3" pass, while "", "abc" or a value out of range end the process with the key named.
int readNumber(const QString& section, const char* key) {
  const QString value = read(section, key);
  try {
    return CLngVb(value);
  } catch (const std::exception&) {
    const QString shown = value.isEmpty() ? QStringLiteral("empty") : u'"' + value + u'"';
    throw ConfigError(QStringLiteral("config.cnf: the key %1 in section [%2] must be a number, "
                                     "but it is %3 (%4).")
                          .arg(QLatin1String(key), section, shown,
                               GetConfigPath().isEmpty() ? QStringLiteral("no configuration file")
                                                         : GetConfigPath()));
  }
}

QString folderKey(const char* key) {
  QString path = read(kSystem, key);
  if (path.isEmpty()) path = QStringLiteral(".");
  // The log, raw dumps and chart files hold people's data: a new folder is the owner's.
  if (!QDir(path).exists())
    QDir().mkdir(path, QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner);
  return path;
}

bool existingFile(const QString& path) { return !path.isEmpty() && FileExists(path); }

}  // namespace

bool Ini_LoadConfig() {
  QString path;
  if (FileExists(QStringLiteral("../conf/config.cnf"))) {
    path = QStringLiteral("../conf/config.cnf");
  } else if (FileExists(QStringLiteral("config.cnf"))) {
    path = QStringLiteral("config.cnf");
  } else {
    return false;
  }
  SetConfigPath(path);

  const QString resource = read(kSystem, "RESORCE_INI_PATH");
  if (!existingFile(resource)) return false;
  SetResourceIniPath(resource);

  if (!existingFile(read(kSystem, "CHART_INI_PATH"))) return false;

  const QString mets = read(kSystem, "PMMETS_INI_PATH");
  if (existingFile(mets)) SetMetsIniPath(mets);
  return true;
}

QString Ini_ConfigProblemCode() {
  QString path;
  for (const QString& candidate : {QStringLiteral("../conf/config.cnf"), QStringLiteral("config.cnf")}) {
    if (QFileInfo::exists(candidate)) {
      path = candidate;
      break;
    }
  }
  if (path.isEmpty()) return QStringLiteral("PTOP-C-0001");
  const QFileInfo info(path);
  if (info.isFile() && info.size() == 0) return QStringLiteral("PTOP-C-0003");
  QFile file(path);
  if (!info.isFile() || !file.open(QIODevice::ReadOnly)) return QStringLiteral("PTOP-C-0004");
  const QString text = DecodeSystemText(file.readAll());
  static const QRegularExpression systemSection(QStringLiteral("^\\s*\\[\\s*SYSTEM\\s*\\]"),
                                                QRegularExpression::CaseInsensitiveOption |
                                                    QRegularExpression::MultilineOption);
  if (!systemSection.match(text).hasMatch() || text.contains(QChar(u'\0'))) return QStringLiteral("PTOP-C-0005");
  return QStringLiteral("PTOP-C-0001");
}

QString Ini_GetRawDataPath() { return folderKey("RAWDATA_PATH"); }
QString Ini_GetTempDataPath() { return folderKey("TEMPDATA_PATH"); }
QString Ini_GetLogPath() { return folderKey("LOG_PATH"); }

QString Ini_GetDbName() { return read(kSystem, "DB_NAME"); }
QString Ini_GetDbPassword() { return read(kSystem, "DB_PASSWORD"); }
QString Ini_PeekDbPassword() {
  for (const QString& candidate : {QStringLiteral("../conf/config.cnf"), QStringLiteral("config.cnf")})
    if (FileExists(candidate)) return ReadIniString(candidate, kSystem, QStringLiteral("DB_PASSWORD"));
  return QString();
}
bool Ini_GetCompactDb() { return flagOne(kSystem, "COMPACT_DB"); }
int Ini_GetPollingInterval() { return readNumber(kSystem, "POLLING_INTERVAL"); }
bool Ini_GetSaveRawData() { return flagOne(kSystem, "SAVE_RAW_DATA"); }
int Ini_GetLogLevel() { return readNumber(kSystem, "LOG_LEVEL"); }
QString Ini_GetPdfHelpName() { return read(kSystem, "PDFHELP_NAME"); }
QString Ini_GetHealthyDiaryAddress() { return read(kSystem, "HEALTY_DIARY_ADDRESS"); }
QString Ini_GetChartIniPath() { return read(kSystem, "CHART_INI_PATH"); }
int Ini_GetSortOrder() { return readNumber(kSystem, "SORT_ORDER"); }
void Ini_SetSortOrder(int order) { write(kSystem, "SORT_ORDER", QString::number(order)); }
int Ini_GetValidVersionNumber() { return readNumber(kSystem, "VALID_VERSION_NUMBER"); }
QString Ini_GetPmAlNumber() { return read(kSystem, "PMAL_NUMBER"); }
QString Ini_GetPmBrioJpnNumber() { return read(kSystem, "PMBRIO_JPN_NUMBER"); }
QString Ini_GetPmBrioEngNumber() { return read(kSystem, "PMBRIO_ENG_NUMBER"); }
QString Ini_GetPmBrioKt200Number() { return read(kSystem, "PMBRIO_KT200_NUMBER"); }
QString Ini_GetPmBrioKt014Number() { return read(kSystem, "PMBRIO_KT014_NUMBER"); }
int Ini_GetLang() { return readInt(kSystem, "LANG"); }
QString Ini_GetShiftDb() { return read(kSystem, "SHIFT_DB"); }
void Ini_SetShiftDb(const QString& v) { write(kSystem, "SHIFT_DB", v); }
QString Ini_GetShiftDbAppName() { return read(kSystem, "SHIFT_DB_APPNAME"); }
int Ini_GetLocaleCheck() { return readInt(kSystem, "LOCALE_CHECK"); }
QString Ini_GetLocaleShortDate() { return read(kSystem, "LOCALE_SHORTDATE"); }
void Ini_SetLocaleShortDate(const QString& v) { write(kSystem, "LOCALE_SHORTDATE", v); }
QString Ini_GetDateScreenYmd() { return read(kSystem, "DATESCREEN_YMD"); }
void Ini_SetDateScreenYmd(const QString& v) { write(kSystem, "DATESCREEN_YMD", v); }
QString Ini_GetDateGraphYmd() { return read(kSystem, "DATEGRAPH_YMD"); }
void Ini_SetDateGraphYmd(const QString& v) { write(kSystem, "DATEGRAPH_YMD", v); }
QString Ini_GetDateGraphMda() { return read(kSystem, "DATEGRAPH_MDA"); }
void Ini_SetDateGraphMda(const QString& v) { write(kSystem, "DATEGRAPH_MDA", v); }

int Ini_GetSaveLastUser() { return readNumber(kOther, "SAVE_LAST_USER"); }
QString Ini_GetLastUserId() {
  if (Ini_GetSaveLastUser() != 1) return QString();
  return read(kOther, "LAST_USER_ID");
}
void Ini_SetLastUserId(const QString& v) { write(kOther, "LAST_USER_ID", v); }
QString Ini_GetLastGroupId() { return read(kOther, "LAST_GROUP_ID"); }
void Ini_SetLastGroupId(const QString& v) { write(kOther, "LAST_GROUP_ID", v); }
QString Ini_GetInstitution() { return read(kOther, "INSTITUTION"); }
QString Ini_GetPrinterName() { return read(kOther, "PRINTER"); }
void Ini_SetPrinterName(const QString& v) { write(kOther, "PRINTER", v); }
QString Ini_GetPrintPaper() { return read(kOther, "PAPER_SIZE"); }
void Ini_SetPrintPaper(const QString& v) { write(kOther, "PAPER_SIZE", v); }

bool Ini_GetDownloadDataRange() { return flagZero(kDownload, "DOWNLOAD_DATA_RANGE"); }

bool Ini_GetExcludeStartingDay() { return notZero(kReport, "EDFA_STARTING_DAY"); }
bool Ini_GetExcludeEndingDay() { return notZero(kReport, "EDFA_ENDING_DAY"); }
// A file without the key excludes days of 50 steps or fewer; a key written empty turns the
// low-step rule off (the chart step reads an empty threshold so).
QString Ini_GetExcludeLowStepCount() {
  return ReadIniString(GetConfigPath(), kReport, QStringLiteral("EDFA_LOW_STEP_COUNT"),
                       QStringLiteral("50"));
}
void Ini_GetExcludeSettings(bool& startingDay, bool& endingDay, QString& lowStepCount) {
  startingDay = Ini_GetExcludeStartingDay();
  endingDay = Ini_GetExcludeEndingDay();
  lowStepCount = Ini_GetExcludeLowStepCount();
}

std::array<QString, 5> Ini_GetMaxValues() {
  // The average activity time limit serves two axes.
  const QString aveActMin = read(kReport, "MAX_AVE_ACT_MIN");
  return {read(kReport, "MAX_STEP"), read(kReport, "MAX_ACT_MIN"), read(kReport, "MAX_TOTAL_CAL"),
          aveActMin, aveActMin};
}

std::array<QString, 5> Ini_GetFixedMaxValues() {
  return {QStringLiteral("15000"), QStringLiteral("500"), QStringLiteral("100"),
          QStringLiteral("2000"), QStringLiteral("10000")};
}

void Ini_GetModerate(QString& from, QString& to) {
  from = read(kUserDefault, "MODERATE_FROM");
  to = read(kUserDefault, "MODERATE_TO");
}

void Ini_GetUserTargets(QString& step, QString& actMin, QString& aveFoodIntake, QString& actCal) {
  step = read(kUserDefault, "TARGET_STEP");
  actMin = read(kUserDefault, "TARGET_ACT_MIN");
  aveFoodIntake = read(kUserDefault, "TARGET_AVE_FOOD_INTAKE");
  actCal = read(kUserDefault, "TARGET_ACT_CAL");
}

QString Ini_GetTargetExercise() { return read(kUserDefault, "TARGET_EXERCISE"); }
QString Ini_GetDefaultPrefecture() { return read(kUserDefault, "PREFECTURE"); }

int Ini_GetMaxRecord() { return readNumber(kCsv, "MAX_RECORD"); }
QString Ini_GetCsvLoginIdPrefix() { return read(kCsv, "CSVLOGINID_PREFIX"); }
QString Ini_GetCsvLoginIdMax() { return read(kCsv, "CSVLOGINID_MAX"); }
void Ini_SetCsvLoginIdMax(const QString& v) { write(kCsv, "CSVLOGINID_MAX", v); }
QString Ini_GetCsvEncoding() { return read(kOther, "CSV_ENCODING").trimmed(); }

int Ini_GetBackupKeep() {
  if (read(QStringLiteral("BACKUP"), "BACKUP_KEEP").trimmed().isEmpty()) return 10;
  return std::max(1, readNumber(QStringLiteral("BACKUP"), "BACKUP_KEEP"));
}

bool Ini_GetPmAl() { return flagOne(kPmTest, "PM_AL"); }
int Ini_GetPmDump() {
  if (read(kPmTest, "PM_DUNP").isEmpty()) return 0;
  return readNumber(kPmTest, "PM_DUNP");
}

QStringList Ini_GetProhibitChars() {
  QStringList chars;
  for (int i = 1; i <= 99; ++i) {
    const QString v = ReadIniString(GetConfigPath(), kProhibit, QStringLiteral("STRING_%1").arg(i));
    if (v.isEmpty()) break;
    chars << v;
  }
  return chars;
}

QString Ini_GetReaderType() {
  const QString type = read(kReader, "TYPE").trimmed().toUpper();
  return type.isEmpty() ? QStringLiteral("EMULATOR") : type;
}
QString Ini_GetEmulatorPath() { return read(kReader, "EMULATOR_PATH"); }
QString Ini_GetLibraryPath() { return read(kReader, "LIBRARY_PATH"); }
