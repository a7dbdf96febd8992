#include "frame/helpers.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLocale>
#include <QRandomGenerator>

#include <cmath>
#include <cstdint>
#include <stdexcept>
#include <utility>

#include "frame/config.h"
#include "frame/trace.h"
#include "frame/vbformat.h"

namespace {

// The pound divisor in single precision (453.592f), so converted weights match the
// figures stored before to the last digit.
constexpr double kPoundGramsSingle = static_cast<double>(453.592f);

void logLevel1(const char* name, const QString& message) {
  WriteTrace(QStringLiteral("1"), QLatin1String(name), message);
}

QString plainNumber(double v) {
  if (v == std::floor(v) && std::fabs(v) < 1e15) return QString::number(static_cast<long long>(v));
  return QString::number(v, 'g', 15);
}

}  // namespace

// ---- dates ----

QDate YmdToDate(const QString& ymd) {
  if (ymd.size() != 8) return QDate();
  for (QChar c : ymd) {
    if (c < u'0' || c > u'9') return QDate();
  }
  const QDate d(ymd.left(4).toInt(), ymd.mid(4, 2).toInt(), ymd.mid(6, 2).toInt());
  return IsNoDate(d) ? QDate() : d;
}

QString DateToYmd(const QDate& d) {
  return IsNoDate(d) ? QString() : d.toString(QStringLiteral("yyyyMMdd"));
}

QDate SlashToDate(const QString& slash) {
  if (slash.size() != 10 || slash[4] != u'/' || slash[7] != u'/') return QDate();
  return YmdToDate(slash.left(4) + slash.mid(5, 2) + slash.mid(8, 2));
}

QString DateToSlash(const QDate& d) {
  return IsNoDate(d) ? QString() : d.toString(QStringLiteral("yyyy/MM/dd"));
}

QString YmdToSlash(const QString& ymd) {
  if (ymd.isEmpty()) return QString();
  return Format(ymd, QStringLiteral("@@@@/@@/@@"));
}

QString SlashToYmd(const QString& slash) {
  QString out = slash;
  out.remove(u'/');
  return out;
}

void SetLocaleDateFormats() {
  QString picker = QStringLiteral("MM/dd/yyyy");
  QString screen = QStringLiteral("MM\\/dd\\/yyyy");
  QString graph = QStringLiteral("%m/%d/%Y");
  QString graphWeekday = QStringLiteral("%m/%d(%a)");
  QString p, s, g, gw;
  if (GetProgramDateFormat(p, s, g, gw)) {
    picker = p;
    screen = s;
    graph = g;
    graphWeekday = gw;
  }
  Ini_SetLocaleShortDate(picker);
  Ini_SetDateScreenYmd(screen);
  Ini_SetDateGraphYmd(graph);
  Ini_SetDateGraphMda(graphWeekday);
}

bool GetSystemLocaleDateInfo(QString& separator, QString& shortDate) {
  const QString pattern = QLocale::system().dateFormat(QLocale::ShortFormat);
  // The separator is the first character between the fields that is not a letter.
  QString sep;
  for (QChar c : pattern) {
    if (!c.isLetter() && c != u'\'') {
      sep = c;
      break;
    }
  }
  if (sep.isEmpty()) {
    logLevel1("GetSystemLocaleDateInfo", QStringLiteral("GetLocaleInfo LOCALE_SDATE Err"));
    return false;
  }
  if (pattern.isEmpty()) {
    logLevel1("GetSystemLocaleDateInfo", QStringLiteral("GetLocaleInfo LOCALE_SSHORTDATE Err"));
    return false;
  }
  separator = sep;
  shortDate = pattern;
  return true;
}

bool ProgramDateFormatFrom(const QString& separator, const QString& shortDate, QString& picker,
                           QString& screen, QString& graph, QString& graphWeekday) {
  const QStringList parts = separator.isEmpty() ? QStringList{shortDate} : shortDate.split(separator);
  if (parts.size() != 3) {
    logLevel1("GetProgramDateFormat", QStringLiteral("DateSeparator Err"));
    return false;
  }
  QString pk, sc, gr, gw;
  bool weekdaySeparatorDone = false;
  for (int i = 0; i < 3; ++i) {
    const QChar letter = parts[i].isEmpty() ? QChar() : parts[i][0].toLower();
    if (letter == u'y') {
      pk += QStringLiteral("yyyy");
      sc += QStringLiteral("yyyy");
      gr += QStringLiteral("%Y");
    } else if (letter == u'm' || letter == u'd') {
      const QString two = letter == u'm' ? QStringLiteral("MM") : QStringLiteral("dd");
      const QString code = letter == u'm' ? QStringLiteral("%m") : QStringLiteral("%d");
      pk += two;
      sc += two;
      gr += code;
      gw += code;
      if (!weekdaySeparatorDone) {
        gw += separator;
        weekdaySeparatorDone = true;
      }
    } else {
      logLevel1("GetSystemShortDateFormat",
                QStringLiteral("Other than YMD LOCALE_SSHORTDATE:") + shortDate);
      return false;
    }
    if (i < 2) {
      pk += separator;
      sc += u'\\' + separator;
      gr += separator;
    }
  }
  picker = pk;
  screen = sc;
  graph = gr;
  graphWeekday = gw + QStringLiteral("(%a)");
  return true;
}

bool GetProgramDateFormat(QString& picker, QString& screen, QString& graph, QString& graphWeekday) {
  QString separator, shortDate;
  if (!GetSystemLocaleDateInfo(separator, shortDate)) {
    logLevel1("GetProgramDateFormat", QStringLiteral("GetSystemLocaleDateInfo Err"));
    return false;
  }
  return ProgramDateFormatFrom(separator, shortDate, picker, screen, graph, graphWeekday);
}

QDate AddMonthsToPeriodEnd(const QDate& start, std::int16_t months) {
  if (!start.isValid()) return QDate();
  const QDate later = start.addMonths(months);  // clamped to the month's last day
  if (QDate::isValid(later.year(), later.month(), start.day())) return later.addDays(-1);
  return later;
}

// ---- units ----

std::int32_t FeetInchToCm(std::int32_t feet, std::int32_t inch) {
  const std::int64_t inches = static_cast<std::int64_t>(feet) * 12 + inch;
  return CLngVb(static_cast<double>(inches) * 2.54);
}

void CmToFeetInch(const QString& cm, QString& feet, QString& inch) {
  const double n = std::floor(CDblVb(cm) / 2.54 + 0.5);
  const std::int32_t whole = CLngVb(n);
  feet = QString::number(whole / 12);
  inch = QString::number(whole % 12);
}

std::int32_t KgToPound(std::int32_t kg) {
  static constexpr std::pair<std::int32_t, std::int32_t> kTable[] = {
      {5, 10},    {15, 32},   {24, 52},   {34, 74},   {44, 96},   {54, 118},  {64, 140},  {73, 160},
      {83, 182},  {93, 204},  {103, 226}, {112, 246}, {122, 268}, {132, 290}, {142, 312}, {151, 332},
      {161, 354}, {171, 376}, {181, 398}, {191, 420}, {200, 440}, {210, 462}, {220, 484},
  };
  for (const auto& [k, lb] : kTable) {
    if (k == kg) return lb;
  }
  const std::int64_t grams = static_cast<std::int64_t>(kg) * 1000;
  if (grams > INT32_MAX || grams < INT32_MIN) throw std::overflow_error("KgToPound: overflow");
  const double q = static_cast<double>(grams) / kPoundGramsSingle;
  std::int32_t r = CLngVb(q);
  // A pound value from the rule is always even: an odd one moves towards q.
  if (r % 2 != 0) {
    if (static_cast<double>(static_cast<float>(q)) < r) {
      --r;
    } else {
      ++r;
    }
  }
  return r;
}

std::int32_t KgDoubleToPound(double kg) { return KgToPound(CLngVb(std::trunc(kg))); }

std::int32_t PoundToKg(std::int32_t pound) {
  const std::int32_t grams = CLngVb(static_cast<double>(pound) * 453.59);
  return CLngVb(static_cast<double>(grams) / 1000.0);
}

double PoundToKgExact(std::int32_t pound) {
  if (pound == 0) return 0.0;
  return static_cast<double>(pound) * kPoundGramsSingle / 1000.0;
}

void KmToMile(const QString& km, QString& mile) {
  mile = plainNumber(RoundOff(CDblVb(km) / 1.61, 1));
}

double RoundOff(double value, std::int32_t digits) {
  const double p = std::pow(10.0, digits);
  if (value == 0.0) return 0.0;
  if (value > 0) return std::floor(value * p + 0.5) / p;
  return std::trunc(value * p - 0.5) / p;
}

double ExerciseFromLevels(const std::array<std::int32_t, 6>& countsLevel4To9) {
  static constexpr double kMets[6] = {3.6, 4.3, 5.2, 6.1, 7.1, 8.3};
  const QString oneDecimal = QStringLiteral("##0.0");
  double sum = 0.0;
  for (size_t i = 0; i < 6; ++i) {
    const double minutes = Val(Format(countsLevel4To9[i] * 4.0 / 60.0, oneDecimal));
    sum += Val(Format(minutes / 60.0 * kMets[i], oneDecimal));
  }
  return sum;
}

// ---- input checks ----

std::int32_t CheckLength(const QString& text, std::int32_t maxLength, std::int32_t minLength) {
  const auto length = static_cast<std::int32_t>(text.toUcs4().size());
  if (length > maxLength) return 1;
  if (length < minLength) return 2;
  return 0;
}

std::int32_t CheckRange(const QString& text, double maxValue, double minValue) {
  const double v = Val(text);
  if (v > maxValue) return 3;
  if (v < minValue) return 4;
  return 0;
}

QString FirstProhibitedChar(const QString& text) {
  const QStringList prohibited = Ini_GetProhibitChars();
  for (QChar c : text)
    for (const QString& entry : prohibited)
      if (entry.size() == 1 && entry[0] == c) return QString(c);
  return QString();
}

bool CheckProhibitChar(const QString& text) {
  const QStringList prohibited = Ini_GetProhibitChars();
  for (QChar c : text) {
    for (const QString& entry : prohibited) {
      if (entry.size() == 1 && entry[0] == c) return false;
    }
  }
  return true;
}

QString ReplaceProhibitChar(const QString& text) {
  const QStringList prohibited = Ini_GetProhibitChars();
  QString out;
  out.reserve(text.size());
  for (QChar c : text) {
    if (!prohibited.contains(QString(c))) {
      out += c;
      continue;
    }
    QChar r = c;
    if (r == u'\\') r = QChar(0xFFE5);       // full-width yen sign
    else if (r == u'"') r = QChar(0x201D);   // right double quotation mark
    else if (r == u'\'') r = QChar(0x2019);  // right single quotation mark
    // The wide form of the Japanese code page.
    if (r == u' ') r = QChar(0x3000);
    else if (r.unicode() >= 0x21 && r.unicode() <= 0x7E) r = QChar(r.unicode() + 0xFEE0);
    out += r;
  }
  return out;
}

// ---- text and paths ----

QString CutAtNul(const QString& text) {
  const qsizetype nul = text.indexOf(QChar(u'\0'));
  return nul < 0 ? text : text.left(nul);
}

QString RemoveLineBreaks(const QString& text, std::int16_t mode) {
  QString out = text;
  if (mode != 0) {
    out.remove(QLatin1String("\r\n"));
    out.remove(u'\r');
    out.remove(u'\n');
  } else {
    out.replace(QLatin1String("\r\n"), QLatin1String("  "));
    out.replace(u'\r', u' ');
    out.replace(u'\n', u' ');
  }
  return out;
}

void EnsureFolder(QString& path) {
  if (path.isEmpty()) path = QStringLiteral(".");
  if (!QFileInfo::exists(path)) QDir().mkdir(path);
}

void MakeFolderTree(const QString& path) {
  if (!path.isEmpty()) QDir().mkpath(path);
}

bool PathExists(const QString& path) { return !path.isEmpty() && QFileInfo::exists(path); }

bool ChangeCurrentDirectory(const QString& path) { return QDir::setCurrent(path); }

QString MakeTempFileName(const QString& folder, const QString& prefix) {
  const QDir dir(folder.isEmpty() ? QStringLiteral(".") : folder);
  if (!dir.exists()) return QString();
  const QString pre = prefix.left(3);
  // Like the platform call with unique number 0: start somewhere on the clock and
  // take the first free number of four hex digits.
  const auto start = static_cast<quint32>(QDateTime::currentMSecsSinceEpoch()) ^
                     QRandomGenerator::global()->generate();
  for (quint32 i = 0; i < 0x10000; ++i) {
    const quint32 n = ((start + i) & 0xFFFF) == 0 ? 1 : (start + i) & 0xFFFF;
    const QString name = dir.filePath(pre + QString::number(n, 16).toUpper() + QStringLiteral(".tmp"));
    QFile f(name);
    if (f.open(QIODevice::WriteOnly | QIODevice::NewOnly)) return name;
    if (!QFileInfo::exists(name)) return QString();  // not a name clash: the folder refuses
  }
  return QString();
}

QString GetAbsolutePathName(const QString& path) {
  return QDir::cleanPath(QDir::current().absoluteFilePath(path.isEmpty() ? QStringLiteral(".") : path));
}

QString GetAbsolutePath(const QString& path) {
  if (path.isEmpty()) return QString();
  QString full = QDir::cleanPath(QDir::current().absoluteFilePath(path));
  if (full.size() > 1 && full.endsWith(u'/')) full.chop(1);
  return full;
}

QString JoinPath(const QString& folder, const QString& name) {
  if (folder.isEmpty()) return name;
  if (name.isEmpty()) return folder;
  QString f = folder;
  while (f.size() > 1 && f.endsWith(u'/')) f.chop(1);
  qsizetype skip = 0;
  while (skip < name.size() && name[skip] == u'/') ++skip;
  const QString n = name.mid(skip);
  return f.endsWith(u'/') ? f + n : f + u'/' + n;
}

int RemoveFilesIn(const QString& folder) {
  if (folder.isEmpty()) return 0;
  QDir dir(folder);
  int removed = 0;
  for (const QString& name : dir.entryList(QDir::Files | QDir::Hidden | QDir::System))
    if (dir.remove(name)) ++removed;
  return removed;
}
