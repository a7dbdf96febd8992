// The settings of config.cnf. This module is the only code that knows section and
// key names of that file: every key has its own accessor, and every accessor goes to
// the file on each call (no cache), so a value written by one part is seen by the next.
//
// Types follow the key tables:
//   text      -> QString as it stands
//   flag "1"  -> bool, true only for exactly "1"
//   flag "0"  -> bool, true only for exactly "0"
//   not-"0"   -> bool, false only for exactly "0" (empty counts as true)
//   number    -> int; an empty or non-numeric value throws ConfigError naming the key,
//                because these keys are required and must not fall back silently
//   int       -> int through ReadIniInt (missing is 0)
#pragma once

#include <QString>
#include <QStringList>
#include <array>
#include <stdexcept>

// A required "number" key that is empty or not a number. The process ends on it
// (app and CLI catch it at the top and show the text).
class ConfigError : public std::runtime_error {
 public:
  explicit ConfigError(const QString& message);
  QString text() const;
};

// Finds "../conf/config.cnf", else "config.cnf", and the files it names; stores
// ConfigPath, ResourceIniPath and MetsIniPath. False when the configuration, the
// resource profile file or the chart settings file is missing.
bool Ini_LoadConfig();

// Why Ini_LoadConfig failed, as the catalogue code to show: "PTOP-C-0001" no
// configuration (or a file it names is missing), "PTOP-C-0003" empty, "PTOP-C-0004"
// unreadable, "PTOP-C-0005" malformed (no [SYSTEM] section, or binary).
QString Ini_ConfigProblemCode();

// Folder keys: empty means "."; the folder is created (one level) when missing.
QString Ini_GetRawDataPath();
QString Ini_GetTempDataPath();
QString Ini_GetLogPath();

// SYSTEM
QString Ini_GetDbName();
QString Ini_GetDbPassword();
// DB_PASSWORD before the configuration is located (the start-up's database check): read
// from "../conf/config.cnf" or "config.cnf" without locating it; "" when neither exists.
QString Ini_PeekDbPassword();
bool Ini_GetCompactDb();
int Ini_GetPollingInterval();
bool Ini_GetSaveRawData();
int Ini_GetLogLevel();
QString Ini_GetPdfHelpName();
QString Ini_GetHealthyDiaryAddress();
QString Ini_GetChartIniPath();
int Ini_GetSortOrder();
void Ini_SetSortOrder(int order);
int Ini_GetValidVersionNumber();
QString Ini_GetPmAlNumber();
QString Ini_GetPmBrioJpnNumber();
QString Ini_GetPmBrioEngNumber();
QString Ini_GetPmBrioKt200Number();
QString Ini_GetPmBrioKt014Number();
int Ini_GetLang();
QString Ini_GetShiftDb();
void Ini_SetShiftDb(const QString& v);
QString Ini_GetShiftDbAppName();
int Ini_GetLocaleCheck();
QString Ini_GetLocaleShortDate();
void Ini_SetLocaleShortDate(const QString& v);
QString Ini_GetDateScreenYmd();
void Ini_SetDateScreenYmd(const QString& v);
QString Ini_GetDateGraphYmd();
void Ini_SetDateGraphYmd(const QString& v);
QString Ini_GetDateGraphMda();
void Ini_SetDateGraphMda(const QString& v);

// OTHER
int Ini_GetSaveLastUser();
// LAST_USER_ID only when SAVE_LAST_USER converts to 1, else empty.
QString Ini_GetLastUserId();
void Ini_SetLastUserId(const QString& v);
QString Ini_GetLastGroupId();
void Ini_SetLastGroupId(const QString& v);
QString Ini_GetInstitution();
QString Ini_GetPrinterName();
void Ini_SetPrinterName(const QString& v);
QString Ini_GetPrintPaper();
void Ini_SetPrintPaper(const QString& v);

// DOWNLOAD: true when DOWNLOAD_DATA_RANGE is exactly "0" (take the whole memory).
bool Ini_GetDownloadDataRange();

// REPORT
bool Ini_GetExcludeStartingDay();
bool Ini_GetExcludeEndingDay();
QString Ini_GetExcludeLowStepCount();  // the text as it stands; "50" when the key is missing
void Ini_GetExcludeSettings(bool& startingDay, bool& endingDay, QString& lowStepCount);
// MAX_STEP, MAX_ACT_MIN, MAX_TOTAL_CAL, MAX_AVE_ACT_MIN, MAX_AVE_ACT_MIN.
std::array<QString, 5> Ini_GetMaxValues();
// "15000", "500", "100", "2000", "10000".
std::array<QString, 5> Ini_GetFixedMaxValues();

// USER_DEFAULT (raw texts; callers apply their own defaults)
void Ini_GetModerate(QString& from, QString& to);
void Ini_GetUserTargets(QString& step, QString& actMin, QString& aveFoodIntake, QString& actCal);
QString Ini_GetTargetExercise();
QString Ini_GetDefaultPrefecture();  // PREFECTURE

// CSV
int Ini_GetMaxRecord();
QString Ini_GetCsvLoginIdPrefix();
QString Ini_GetCsvLoginIdMax();
void Ini_SetCsvLoginIdMax(const QString& v);
// OTHER/CSV_ENCODING as it stands ("CP932", "UTF-8", "UTF-8-BOM"), empty when missing.
QString Ini_GetCsvEncoding();

// PM_TEST
bool Ini_GetPmAl();
int Ini_GetPmDump();  // missing reads as 0

// PROHIBIT_FILENAME: STRING_1 .. STRING_99, ending at the first empty value.
QStringList Ini_GetProhibitChars();

// BACKUP: how many backups of the database are kept (BACKUP_KEEP); missing or empty
// gives 10, a value below 1 counts as 1.
int Ini_GetBackupKeep();

// READER: how the system reaches a recorder.
QString Ini_GetReaderType();     // "EMULATOR" or "LIBRARY"
QString Ini_GetEmulatorPath();   // folder watched for recorder images (*.img)
QString Ini_GetLibraryPath();    // the vendor's reader library
