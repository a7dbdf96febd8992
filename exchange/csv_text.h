// Small pieces shared by the CSV writer and reader.
#pragma once

#include <QString>

namespace csv_detail {

// A caption of the resource section of the CSV import texts.
QString ImportText(const char* key);
// The weekday number ("1" Monday .. "7" Sunday) of a weekday text of either language,
// or of a digit; "" when the text is none of them.
QString WeekDayNumber(const QString& text);

}  // namespace csv_detail
