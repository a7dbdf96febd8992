// Profile files ("[SECTION]" / "KEY=value") with the semantics of the classic
// Windows profile calls: sections and keys match without regard to case, a value
// comes back cut to 255 characters and ends at its first NUL, a missing key or file
// reads as the empty text, and a write creates the file, the section or the key.
// Files are read as UTF-8, or as CP932 when they are not valid UTF-8; writes keep UTF-8.
#pragma once

#include <QString>

QString ReadIniString(const QString& file, const QString& section, const QString& key);
// Same, with the text given back when the key (or the file) is missing altogether; a key
// that stands in the file with an empty value reads as empty.
QString ReadIniString(const QString& file, const QString& section, const QString& key,
                      const QString& defaultValue);
// The whole-number reading of the value as decimal text: leading blanks skipped, an
// optional sign, then digits; a missing key or a value that does not start so gives "0".
QString ReadIniInt(const QString& file, const QString& section, const QString& key);
// Non-zero on success. An existing value keeps its place in the file.
int WriteIniString(const QString& file, const QString& section, const QString& key,
                   const QString& value);
// False for the empty path and for anything the file system cannot answer.
bool FileExists(const QString& path);

// Text of a file in the system's text encoding: UTF-8 when valid, else CP932.
QString DecodeSystemText(const QByteArray& bytes);
