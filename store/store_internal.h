// Shared pieces of the operation files: the failure path of a data operation and the
// row writers. Not part of the interface.
#pragma once

#include <QString>
#include <QStringList>
#include <array>
#include <exception>
#include <utility>

#include "store/engine.h"
#include "store/records.h"
#include "store/schema.h"

namespace store_detail {

// The failure path of every data operation: last error into the connection, the text in
// a plain message, a level-"2" trace line under the operation's name.
void ReportFailure(VtDatabase& db, const QString& operation, const QString& number,
                   const QString& text);

// Runs body; on any failure reports under name and gives fail.
template <typename R, typename F>
R Guarded(VtDatabase& db, const char* name, R fail, F&& body) {
  try {
    return std::forward<F>(body)();
  } catch (const StoreError& e) {
    ReportFailure(db, QLatin1String(name), QString::number(e.code()), e.text());
  } catch (const std::exception& e) {
    ReportFailure(db, QLatin1String(name), QStringLiteral("5"), QString::fromStdString(e.what()));
  }
  return fail;
}

// A failure of our own making inside an operation (no current record and the like).
[[noreturn]] void Fail(const QString& text);
inline const char* kNoCurrentRecord =
    "Either BOF or EOF is True, or the current record has been deleted. Requested operation "
    "requires a current record.";

// Inserts one row into table with the values in column order (missing values are empty
// text). Padded tables get their values cleaned of line breaks and padded to the widths.
void InsertRow(VtDatabase& db, const char* table, const QStringList& values);

// A stored day row as a CsvRow (trimmed, cut at NUL, imperial members emptied for metric
// days, PEDOMERA repaired, missing EXERCISE computed). NewestOfDay is left false.
CsvRow ReadCsvRow(const Statement& st);
// The exercise figure computed from the level counts 4 to 9, as text.
QString ComputedExercise(const std::array<QString, 10>& levels);

}  // namespace store_detail
