// Number formats and conversions with the rules the stored texts and files follow:
// format strings round halves away from zero, CInt and CLng round halves to even, Val
// reads the leading number of a text.
#pragma once

#include <QString>
#include <cstdint>

// Supported forms: "#0", "#0.0", "##0.0", "#0.00", "0", "000000000", "###0" (and any
// mix of '#', '0' and one '.'), plus "@@@@/@@/@@" for text. Halves go away from zero.
QString Format(double value, const QString& format);
QString Format(const QString& text, const QString& format);

// Leading numeric part of a text: blanks skipped, "12a" is 12, "abc" and "" are 0.
double Val(const QString& text);
// Conversions that fail on text that is not a number (std::invalid_argument) and on
// overflow (std::overflow_error).
std::int16_t CIntVb(double value);
std::int16_t CIntVb(const QString& text);
std::int32_t CLngVb(double value);
std::int32_t CLngVb(const QString& text);
double CDblVb(const QString& text);
// True when CDblVb would accept the text.
bool IsNumericVb(const QString& text);
// Decimal text of a number with no exponent and no trailing zeros: "2.5", "30", "0".
QString NumberText(double value);
// Round to the nearest whole number, halves to the even neighbour.
double RoundHalfEven(double value);
