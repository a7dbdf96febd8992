// CSV report files: one user's days over a period, day lines first, then the table of
// the two-minute profile with one column per day, made to open in a spreadsheet.
#pragma once

#include <QDate>
#include <QString>
#include <optional>
#include <vector>

#include "store/records.h"

class ProgressInterface;
class VtDatabase;

// Format kinds: which columns the file carries.
inline constexpr int kCsvKindBrio = 0;  // every column
inline constexpr int kCsvKindAl = 1;    // without the family B columns
inline constexpr int kCsvKindZr = 2;    // Japanese: kind 0 and the exercise; English: kind 1

// Text encodings of written files. Lines end in CR LF in every one.
enum class CsvEncoding { Cp932, Utf8, Utf8Bom };
// "CP932" (or "Shift_JIS"), "UTF-8", "UTF-8-BOM", in any case; false for anything else.
bool ParseCsvEncoding(const QString& text, CsvEncoding& encoding);
// CSV_ENCODING when it is set, else CP932 for the Japanese and UTF-8 for the English edition.
CsvEncoding DefaultCsvEncoding(bool english);
// False when the encoding cannot hold some characters; they are listed in unwritable.
bool EncodeCsvText(const QString& text, CsvEncoding encoding, QByteArray& bytes,
                   QString& unwritable);

// "Mon" to "Sun", or "(月)" to "(日)", for "1" to "7"; "" otherwise.
QString GetWeekDayText(const QString& weekDay, bool english);
// The name in double quotes: first, middle (when there is one) and last, blank-separated.
QString MakeQuotedName(const UserInfo& user);

// One row per calendar day from from to to ("YYYYMMDD", both included); days with a
// stored row take the newest one with its profile. 0 done, -1 on a failure of the store.
int CalcCSVData(VtDatabase& db, const QString& userId, const QString& from, const QString& to,
                std::vector<CsvRow>& rows);

// The values of line 1 that do not come from the rows.
struct CsvFileHead {
  QDate downloadDay;
  QString cpuNo;       // six characters
  QString quotedName;  // MakeQuotedName
};

// The whole report text, every line ending in CR LF. When no row has data, the last row
// takes the body values of latest. progress (may be null) is let through every 60 lines.
QString BuildCSVText(std::vector<CsvRow>& rows, const CsvRow& latest, int formatKind, bool english,
                     const CsvFileHead& head, ProgressInterface* progress = nullptr);

struct CsvExportOptions {
  std::optional<CsvEncoding> encoding;  // unset: DefaultCsvEncoding
  QDate today;                          // invalid: the local date now
  ProgressInterface* progress = nullptr;
};

// Writes the report (complete, or not at all: temporary file, sync, rename). The
// language is the configured one. False with the reason in error.
bool WriteCSVData2(VtDatabase& db, std::vector<CsvRow>& rows, const CsvRow& latest,
                   const QString& path, int formatKind, const UserInfo& user,
                   const CsvExportOptions& options, QString& error);

// The report of a user and period; latestDay is the day whose record stands in for the
// body values when the period has no data. maxRows -1 means no limit; above it the
// message CSVE-W-0001 is shown and no file is written. False with the reason in error.
bool MakeCSVData2(VtDatabase& db, const QString& userId, const QString& from, const QString& to,
                  const QString& latestDay, const QString& path, const UserInfo& user, int maxRows,
                  int formatKind, const CsvExportOptions& options, QString& error);
