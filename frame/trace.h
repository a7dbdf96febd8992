// trace.log: one line per call, "yyyy/mm/dd hh:mm:ss|level|name|message", opened and
// closed for every line so nothing is lost when the process ends abruptly.
#pragma once

#include <QString>

// level "0" trace, "1" warning, "2" error. A level below GetLogLevel() returns before
// any file access. An empty path means LOG_PATH/trace.log. A level that is not a
// number throws std::invalid_argument (a programming fault, never user input).
void WriteTrace(const QString& level, const QString& name, const QString& message,
                const QString& path = QString());

// The size beyond which trace.log is moved aside before the next line.
inline constexpr qint64 kTraceRotateBytes = 1048576;
