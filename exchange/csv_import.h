// Reading CSV report files back: the current layout and the older ones, told apart by
// the format word of line 1.
#pragma once

#include <QString>
#include <vector>

#include "store/records.h"

// What line 1 says about a file.
struct CsvFormat {
  int code = -1;         // 0, 1, 2, 3, 4, 5, 6, 10, 11, 12, 13
  int levelScale = 1;    // the level counts are multiplied by it (216 in the oldest formats)
  bool monthFirst = false;  // the usual date order of the format (both orders are read)
};

// The format of line 1, or false when the line is not one of a report file.
bool ParseCsvFormatLine(const QString& line, CsvFormat& format);

// Reads a report file into rows (every day line, lead-in and no-data lines included;
// NewestOfDay marks the days with data). False with the number of the line at fault and
// the reason (in the edition's words) when the file is refused.
bool ReadCSVData(std::vector<CsvRow>& rows, const QString& path, int& errorLine, CsvFormat& format,
                 QString& reason);
// Same on the bytes of a file (UTF-8 with or without a byte order mark, or CP932).
bool ReadCSVBytes(std::vector<CsvRow>& rows, const QByteArray& bytes, int& errorLine, CsvFormat& format,
                  QString& reason);

// True when the extension in lower case is ".csv".
bool IsFileCsv(const QString& path);
// "[login_]name_yyyymmdd.csv": true with the login id (may be empty) and the name.
bool ParseCsvFileName(const QString& path, QString& loginId, QString& name);
// True when some character is not a half-width letter or digit.
bool IsLoginIdText(const QString& text);
// Digits with at most one point; no point at the end; a leading 0 only alone or before
// the point.
bool IsNumericText(const QString& text);
