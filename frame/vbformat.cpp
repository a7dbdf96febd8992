#include "frame/vbformat.h"

#include <cmath>
#include <cstdio>
#include <limits>
#include <stdexcept>
#include <string>

namespace {

// A number as decimal digits rounded to a number of places, halves away from zero.
// The value's 15-digit decimal form is rounded, not the binary double, so 2.675
// (stored as 2.67499999...) shows as "2.68" in "#0.00", as a person reading the figure expects.
struct DecimalText {
  bool negative = false;
  std::string intDigits;   // without leading zeros; empty for zero
  std::string fracDigits;  // exactly the requested number of places
};

DecimalText roundDecimal(double value, int places) {
  DecimalText out;
  out.negative = std::signbit(value) && value != 0.0;
  char buf[40];
  std::snprintf(buf, sizeof buf, "%.14e", std::fabs(value));
  const std::string s(buf);
  const auto e = s.find('e');
  std::string digits = s.substr(0, 1) + s.substr(2, e - 2);  // 15 significant digits
  int point = std::stoi(s.substr(e + 1)) + 1;                 // value = 0.digits x 10^point

  const int keepCount = point + places;
  std::string keep;
  if (keepCount >= static_cast<int>(digits.size())) {
    keep = digits + std::string(static_cast<size_t>(keepCount) - digits.size(), '0');
  } else if (keepCount >= 0) {
    keep = digits.substr(0, static_cast<size_t>(keepCount));
    if (digits[static_cast<size_t>(keepCount)] >= '5') {
      int i = keepCount - 1;
      while (i >= 0 && keep[static_cast<size_t>(i)] == '9') keep[static_cast<size_t>(i--)] = '0';
      if (i >= 0) {
        ++keep[static_cast<size_t>(i)];
      } else {
        keep.insert(keep.begin(), '1');
        ++point;
      }
    }
  }
  // keep now holds point + places digits (or fewer when the value vanished entirely).
  if (static_cast<int>(keep.size()) < places) {
    keep.insert(0, static_cast<size_t>(places) - keep.size(), '0');
  }
  const size_t intLen = keep.size() - static_cast<size_t>(places);
  out.intDigits = keep.substr(0, intLen);
  out.fracDigits = keep.substr(intLen);
  const auto firstNonZero = out.intDigits.find_first_not_of('0');
  out.intDigits = firstNonZero == std::string::npos ? std::string() : out.intDigits.substr(firstNonZero);
  return out;
}

QString generalNumber(double value) {
  if (value == std::floor(value) && std::fabs(value) < 1e15) {
    return QString::number(static_cast<long long>(value));
  }
  return QString::number(value, 'g', 15);
}

struct NumberScan {
  double value = 0.0;
  qsizetype consumed = 0;  // characters taken from the text, 0 when no digits
};

// sign, digits, optional '.', digits, optional exponent (E or D)
NumberScan scanNumber(const QString& s, bool allowThousands) {
  std::string ascii;
  qsizetype i = 0;
  if (i < s.size() && (s[i] == u'+' || s[i] == u'-')) ascii += static_cast<char>(s[i++].unicode());
  bool digits = false;
  while (i < s.size() && (s[i].isDigit() || (allowThousands && s[i] == u',' && digits))) {
    if (s[i] != u',') ascii += static_cast<char>(u'0' + s[i].digitValue());
    digits = true;
    ++i;
  }
  if (i < s.size() && s[i] == u'.') {
    ascii += '.';
    ++i;
    while (i < s.size() && s[i].isDigit()) {
      ascii += static_cast<char>(u'0' + s[i].digitValue());
      digits = true;
      ++i;
    }
  }
  if (!digits) return {};
  if (i < s.size() && (s[i] == u'e' || s[i] == u'E' || s[i] == u'd' || s[i] == u'D')) {
    qsizetype j = i + 1;
    std::string exp = "e";
    if (j < s.size() && (s[j] == u'+' || s[j] == u'-')) exp += static_cast<char>(s[j++].unicode());
    bool expDigits = false;
    while (j < s.size() && s[j].isDigit()) {
      exp += static_cast<char>(u'0' + s[j].digitValue());
      expDigits = true;
      ++j;
    }
    if (expDigits) {
      ascii += exp;
      i = j;
    }
  }
  return {std::strtod(ascii.c_str(), nullptr), i};
}

// Hexadecimal "&H1F" and octal "&O17"; consumed 0 when the text is neither.
NumberScan scanRadix(const QString& s) {
  if (s.size() < 3 || s[0] != u'&') return {};
  const QChar kind = s[1].toUpper();
  const int base = kind == u'H' ? 16 : kind == u'O' ? 8 : 0;
  if (base == 0) return {};
  qsizetype i = 2;
  long long n = 0;
  for (; i < s.size(); ++i) {
    const int d = s[i].isDigit() ? s[i].digitValue()
                  : (base == 16 && s[i].toUpper() >= u'A' && s[i].toUpper() <= u'F')
                      ? s[i].toUpper().unicode() - u'A' + 10
                      : -1;
    if (d < 0 || d >= base) break;
    n = n * base + d;
    if (n > 0xFFFFFFFFLL) break;
  }
  if (i == 2) return {};
  return {static_cast<double>(n), i};
}

}  // namespace

QString Format(double value, const QString& format) {
  if (format.isEmpty()) return generalNumber(value);
  if (!std::isfinite(value)) throw std::invalid_argument("Format: not a finite number");
  const qsizetype dot = format.indexOf(u'.');
  const QStringView intFmt = dot < 0 ? QStringView(format) : QStringView(format).first(dot);
  const QStringView fracFmt = dot < 0 ? QStringView() : QStringView(format).sliced(dot + 1);
  for (QChar c : format) {
    if (c != u'#' && c != u'0' && c != u'.') {
      throw std::invalid_argument("Format: unsupported number format " + format.toStdString());
    }
  }
  if (fracFmt.contains(u'.')) throw std::invalid_argument("Format: two decimal points");

  const int minInt = static_cast<int>(intFmt.count(u'0'));
  const int places = static_cast<int>(fracFmt.size());
  const int minPlaces = static_cast<int>(fracFmt.lastIndexOf(u'0') + 1);

  DecimalText d = roundDecimal(value, places);
  std::string intPart = d.intDigits;
  if (static_cast<int>(intPart.size()) < minInt) {
    intPart.insert(0, static_cast<size_t>(minInt) - intPart.size(), '0');
  }
  std::string frac = d.fracDigits;
  while (static_cast<int>(frac.size()) > minPlaces && frac.back() == '0') frac.pop_back();

  QString out;
  // A negative value keeps its sign even when it shows as zero ("-0.0"), so files
  // written before read back the same.
  if (d.negative) out += u'-';
  out += QString::fromLatin1(intPart);
  if (dot >= 0) out += u'.' + QString::fromLatin1(frac);
  return out;
}

QString Format(const QString& text, const QString& format) {
  if (format.contains(u'@')) {
    // Placeholders fill from the right; surplus characters stand before the first one,
    // missing ones show as blanks.
    const qsizetype slots = format.count(u'@');
    QString out;
    qsizetype next = 0;
    qsizetype blanks = 0;
    if (text.size() > slots) {
      out = text.left(text.size() - slots);
      next = text.size() - slots;
    } else {
      blanks = slots - text.size();
    }
    for (QChar c : format) {
      if (c != u'@') {
        out += c;
      } else if (blanks > 0) {
        out += u' ';
        --blanks;
      } else {
        out += text[next++];
      }
    }
    return out;
  }
  if (!IsNumericVb(text)) return text;
  return Format(CDblVb(text), format);
}

double Val(const QString& text) {
  QString compact;
  compact.reserve(text.size());
  for (QChar c : text) {
    if (c != u' ' && c != u'\t' && c != u'\n' && c != u'\r') compact += c;
  }
  if (NumberScan r = scanRadix(compact); r.consumed > 0) return r.value;
  return scanNumber(compact, false).value;
}

double CDblVb(const QString& text) {
  const QString t = text.trimmed();
  NumberScan r = scanRadix(t);
  if (r.consumed == 0) r = scanNumber(t, true);
  if (r.consumed == 0 || r.consumed != t.size()) {
    throw std::invalid_argument("type mismatch: \"" + text.toStdString() + "\" is not a number");
  }
  if (!std::isfinite(r.value)) throw std::overflow_error("overflow: " + text.toStdString());
  return r.value;
}

bool IsNumericVb(const QString& text) {
  try {
    CDblVb(text);
    return true;
  } catch (const std::exception&) {
    return false;
  }
}

double RoundHalfEven(double value) {
  const double lower = std::floor(value);
  const double diff = value - lower;
  if (diff > 0.5) return lower + 1.0;
  if (diff < 0.5) return lower;
  return std::fmod(lower, 2.0) == 0.0 ? lower : lower + 1.0;
}

std::int16_t CIntVb(double value) {
  const double r = RoundHalfEven(value);
  if (!(r >= std::numeric_limits<std::int16_t>::min() && r <= std::numeric_limits<std::int16_t>::max())) {
    throw std::overflow_error("overflow: integer out of range");
  }
  return static_cast<std::int16_t>(r);
}

std::int16_t CIntVb(const QString& text) { return CIntVb(CDblVb(text)); }

std::int32_t CLngVb(double value) {
  const double r = RoundHalfEven(value);
  if (!(r >= std::numeric_limits<std::int32_t>::min() && r <= std::numeric_limits<std::int32_t>::max())) {
    throw std::overflow_error("overflow: long out of range");
  }
  return static_cast<std::int32_t>(r);
}

std::int32_t CLngVb(const QString& text) { return CLngVb(CDblVb(text)); }

QString NumberText(double value) {
  QString s = QString::number(value, 'f', 10);
  if (s.contains(QLatin1Char('.'))) {
    while (s.endsWith(QLatin1Char('0'))) s.chop(1);
    if (s.endsWith(QLatin1Char('.'))) s.chop(1);
  }
  if (s == QLatin1String("-0")) s = QStringLiteral("0");
  return s;
}
