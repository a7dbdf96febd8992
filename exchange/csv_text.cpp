#include "exchange/csv_text.h"

#include <QStringDecoder>
#include <QStringEncoder>

#include "exchange/csv_export.h"
#include "frame/catalogue.h"
#include "frame/config.h"

namespace {

const char16_t* const kWeekJa[] = {u"(月)", u"(火)", u"(水)", u"(木)", u"(金)", u"(土)", u"(日)"};
const char* const kWeekEn[] = {"Mon", "Tue", "Wed", "Thu", "Fri", "Sat", "Sun"};

}  // namespace

bool ParseCsvEncoding(const QString& text, CsvEncoding& encoding) {
  const QString t = text.trimmed().toUpper().replace(u'_', u'-');
  if (t == QLatin1String("CP932") || t == QLatin1String("SHIFT-JIS") || t == QLatin1String("SJIS")) {
    encoding = CsvEncoding::Cp932;
  } else if (t == QLatin1String("UTF-8") || t == QLatin1String("UTF8")) {
    encoding = CsvEncoding::Utf8;
  } else if (t == QLatin1String("UTF-8-BOM") || t == QLatin1String("UTF8-BOM")) {
    encoding = CsvEncoding::Utf8Bom;
  } else {
    return false;
  }
  return true;
}

CsvEncoding DefaultCsvEncoding(bool english) {
  CsvEncoding e = english ? CsvEncoding::Utf8 : CsvEncoding::Cp932;
  const QString configured = Ini_GetCsvEncoding();
  if (!configured.isEmpty()) ParseCsvEncoding(configured, e);
  return e;
}

bool EncodeCsvText(const QString& text, CsvEncoding encoding, QByteArray& bytes, QString& unwritable) {
  unwritable.clear();
  if (encoding != CsvEncoding::Cp932) {
    bytes = text.toUtf8();
    if (encoding == CsvEncoding::Utf8Bom) bytes.prepend("\xEF\xBB\xBF");
    return true;
  }
  QStringEncoder enc("CP932");
  bytes = enc.encode(text);
  if (!enc.hasError()) return true;
  // Name the characters that cannot be written, each once.
  for (qsizetype i = 0; i < text.size(); ++i) {
    const qsizetype len = text[i].isHighSurrogate() && i + 1 < text.size() ? 2 : 1;
    const QString ch = text.mid(i, len);
    QStringEncoder one("CP932");
    const QByteArray probe = one.encode(ch);
    if (one.hasError() && !unwritable.contains(ch)) unwritable += ch;
    i += len - 1;
  }
  bytes.clear();
  return false;
}

QString GetWeekDayText(const QString& weekDay, bool english) {
  bool ok = false;
  const int n = weekDay.trimmed().toInt(&ok);
  if (!ok || n < 1 || n > 7) return QString();
  return english ? QString::fromLatin1(kWeekEn[n - 1]) : QString::fromUtf16(kWeekJa[n - 1]);
}

namespace csv_detail {

QString ImportText(const char* key) { return GetIniCaption(QStringLiteral("CSVIMPORT"), QLatin1String(key)); }

QString WeekDayNumber(const QString& text) {
  const QString t = text.trimmed();
  if (t.size() == 1 && t[0] >= u'1' && t[0] <= u'7') return t;
  for (int i = 0; i < 7; ++i) {
    if (t == QString::fromUtf16(kWeekJa[i]) || t.compare(QLatin1String(kWeekEn[i]), Qt::CaseInsensitive) == 0)
      return QString::number(i + 1);
  }
  return QString();
}

}  // namespace csv_detail
