// Dates, units and the small text and path helpers shared by every subsystem.
#pragma once

#include <QDate>
#include <QString>
#include <QStringList>
#include <array>
#include <cstdint>

// ---- dates ----
// The device decoders' zero date. Everywhere in the system it means "no date".
inline QDate ZeroDate() { return QDate(1899, 12, 30); }
inline bool IsNoDate(const QDate& d) { return !d.isValid() || d == ZeroDate(); }
// "YYYYMMDD" <-> QDate; an empty, malformed or zero date gives an invalid QDate / "".
QDate YmdToDate(const QString& ymd);
QString DateToYmd(const QDate& d);
// "yyyy/mm/dd" <-> QDate, same rules.
QDate SlashToDate(const QString& slash);
QString DateToSlash(const QDate& d);
// "20061231" -> "2006/12/31" through the format "@@@@/@@/@@".
QString YmdToSlash(const QString& ymd);
QString SlashToYmd(const QString& slash);

void SetLocaleDateFormats();
bool GetProgramDateFormat(QString& picker, QString& screen, QString& graph, QString& graphWeekday);
bool GetSystemLocaleDateInfo(QString& separator, QString& shortDate);
// Same from a given separator and pattern (the locale query's answer), for tests.
bool ProgramDateFormatFrom(const QString& separator, const QString& shortDate, QString& picker,
                           QString& screen, QString& graph, QString& graphWeekday);
QDate AddMonthsToPeriodEnd(const QDate& start, std::int16_t months);

// ---- units ----
std::int32_t FeetInchToCm(std::int32_t feet, std::int32_t inch);
void CmToFeetInch(const QString& cm, QString& feet, QString& inch);
std::int32_t KgToPound(std::int32_t kg);
std::int32_t KgDoubleToPound(double kg);
std::int32_t PoundToKg(std::int32_t pound);
double PoundToKgExact(std::int32_t pound);
void KmToMile(const QString& km, QString& mile);
double RoundOff(double value, std::int32_t digits);
// Exercise of a day from the 4-second counts of levels 4 to 9, with the rounding of
// each stage ("##0.0" after the minutes and after each level's figure).
double ExerciseFromLevels(const std::array<std::int32_t, 6>& countsLevel4To9);

// ---- input checks ----
// 0 fine, 1 longer than maxLength, 2 shorter than minLength (characters).
std::int32_t CheckLength(const QString& text, std::int32_t maxLength, std::int32_t minLength);
// 0 fine, 3 above maxValue, 4 below minValue (leading numeric value of the text).
std::int32_t CheckRange(const QString& text, double maxValue, double minValue);
// The first character of text that the configuration prohibits in names; "" when none.
QString FirstProhibitedChar(const QString& text);
bool CheckProhibitChar(const QString& text);
QString ReplaceProhibitChar(const QString& text);

// ---- text and paths ----
QString CutAtNul(const QString& text);
// mode != 0 removes CR LF, CR and LF; mode 0 turns CR LF into two blanks and a lone
// CR or LF into one.
QString RemoveLineBreaks(const QString& text, std::int16_t mode);
void EnsureFolder(QString& path);
void MakeFolderTree(const QString& path);
// Deletes the files lying directly in folder (not its subfolders); the number deleted.
int RemoveFilesIn(const QString& folder);
bool PathExists(const QString& path);
bool ChangeCurrentDirectory(const QString& path);
// Creates a new empty file "folder/PREFxxxx.tmp" (prefix cut to three characters) and
// returns its path; empty on failure.
QString MakeTempFileName(const QString& folder, const QString& prefix);
QString GetAbsolutePathName(const QString& path);
// Full path without a trailing separator; empty when it cannot be made.
QString GetAbsolutePath(const QString& path);
// Joins a folder and a file name with one "/".
QString JoinPath(const QString& folder, const QString& name);
