#include "exchange/csv_import.h"

#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <QRegularExpression>

#include "exchange/csv_text.h"
#include "frame/helpers.h"
#include "frame/profile.h"
#include "frame/trace.h"
#include "frame/vbformat.h"

using csv_detail::ImportText;

namespace {

constexpr int kProfileSlots = 720;
constexpr qint64 kMaxFileBytes = 64 * 1024 * 1024;

// What a column of the day lines holds.
enum class Col {
  None, Day, HeightFeet, HeightInch, HeightCm, WeightPound, WeightKg, Gender, Age, WeekDay, TargetCal,
  Energy, Activity, TargetStep, Step, Pace, Distance, TargetTime, AccumTime, Lower, Upper, Pedomera,
  MemoryLock, MeasMode, Exercise, Event0, Level0 = Event0 + 10, LevelSmall = Level0 + 10
};

// Columns of the body that every day line carries, data or not.
bool isLeading(Col c) { return c >= Col::Day && c <= Col::TargetCal; }

const QHash<QString, Col>& line2Names() {
  static const QHash<QString, Col> names = [] {
    QHash<QString, Col> h;
    auto add = [&h](std::initializer_list<const char16_t*> list, Col c) {
      for (const char16_t* n : list) h.insert(QString::fromUtf16(n), c);
    };
    add({u"測定日", u"Recording Date"}, Col::Day);
    add({u"Height(feet)"}, Col::HeightFeet);
    add({u"Height(inch)"}, Col::HeightInch);
    add({u"身長", u"Height(cm)"}, Col::HeightCm);
    add({u"Weight(paund)", u"Weight(lbs.)"}, Col::WeightPound);
    add({u"体重", u"Weight(kg)"}, Col::WeightKg);
    add({u"性別", u"Gender"}, Col::Gender);
    add({u"年齢", u"Age"}, Col::Age);
    add({u"曜日", u"A day of week"}, Col::WeekDay);
    add({u"目標運動量", u"Target Activity Cal"}, Col::TargetCal);
    add({u"総消費量", u"Total Cal(DEE)"}, Col::Energy);
    add({u"運動量", u"Activity Cal"}, Col::Activity);
    add({u"目標歩数", u"Target Step"}, Col::TargetStep);
    add({u"歩数", u"Step"}, Col::Step);
    add({u"歩幅", u"Pace", u"Pace(cm)"}, Col::Pace);
    add({u"距離", u"Distance", u"Distance(km)"}, Col::Distance);
    add({u"Target Activity Time"}, Col::TargetTime);
    add({u"活動時間", u"Activity Time"}, Col::AccumTime);
    add({u"運動強度下限", u"Intensity Level Lower Bound"}, Col::Lower);
    add({u"運動強度上限", u"Intensity Level Upper Bound"}, Col::Upper);
    add({u"ペドミラバージョン", u"PedoMyra Version"}, Col::Pedomera);
    add({u"ペドミラメモリ設定", u"PedoMyra Memory Setting"}, Col::MemoryLock);
    add({u"測定方法", u"Measurement Mode"}, Col::MeasMode);
    add({u"EX"}, Col::Exercise);
    for (int i = 1; i <= 10; ++i) {
      const Col c = static_cast<Col>(static_cast<int>(Col::Event0) + i - 1);
      h.insert(QStringLiteral("ｲﾍﾞﾝﾄ%1").arg(i), c);
      h.insert(QStringLiteral("イベント%1").arg(i), c);
      h.insert(QStringLiteral("Event%1").arg(i), c);
    }
    return h;
  }();
  return names;
}

const QHash<QString, Col>& line3Names() {
  static const QHash<QString, Col> names = [] {
    QHash<QString, Col> h;
    static const char16_t* const kFullDigits[] = {u"０", u"１", u"２", u"３", u"４",
                                                  u"５", u"６", u"７", u"８", u"９"};
    for (int i = 0; i <= 9; ++i) {
      const Col c = static_cast<Col>(static_cast<int>(Col::Level0) + i);
      h.insert(QStringLiteral("強度") + QString::fromUtf16(kFullDigits[i]), c);
      h.insert(QStringLiteral("強度%1").arg(i), c);
      h.insert(QStringLiteral("Intensity%1").arg(i), c);
    }
    for (const char16_t* n : {u"微小運動", u"微小運動量", u"Micro Activity"}) h.insert(QString::fromUtf16(n), Col::LevelSmall);
    return h;
  }();
  return names;
}

// The widest text each number column can hold.
int numberWidth(Col c) {
  switch (c) {
    case Col::HeightFeet: case Col::Lower: case Col::Upper: return 1;
    case Col::HeightInch: return 2;
    case Col::HeightCm: case Col::WeightPound: case Col::Age: return 3;
    case Col::TargetCal: return 4;
    case Col::Exercise: return 10;
    case Col::WeightKg: case Col::Energy: case Col::Activity: case Col::TargetStep: case Col::Step:
    case Col::Pace: case Col::Distance: case Col::TargetTime: case Col::AccumTime: case Col::LevelSmall:
      return 5;
    default:
      return (c >= Col::Level0 && c < Col::LevelSmall) ? 5 : 0;
  }
}

QString* numberField(CsvRow& r, Col c) {
  switch (c) {
    case Col::HeightFeet: return &r.HEIGHT_FEET;
    case Col::HeightInch: return &r.HEIGHT_INCH;
    case Col::HeightCm: return &r.HEIGHT_CM;
    case Col::WeightPound: return &r.WEIGHT_PAUND;
    case Col::WeightKg: return &r.WEIGHT_KG;
    case Col::Age: return &r.AGE;
    case Col::TargetCal: return &r.TARGET_CAL;
    case Col::Energy: return &r.ENERGY_EXPENDITURE;
    case Col::Activity: return &r.ACTIVITY;
    case Col::TargetStep: return &r.TARGET_STEP;
    case Col::Step: return &r.STEP_COUNT;
    case Col::Pace: return &r.PACE_CM;
    case Col::Distance: return &r.DISTANCE_KM;
    case Col::TargetTime: return &r.TARGET_TIME;
    case Col::AccumTime: return &r.ACCUMULATION_TIME;
    case Col::Lower: return &r.LOWER_BOUND;
    case Col::Upper: return &r.UPPER_BOUND;
    case Col::Exercise: return &r.EXERCISE;
    case Col::LevelSmall: return &r.ACTIVITY_LEVEL_SMALL;
    default:
      if (c >= Col::Level0 && c < Col::LevelSmall)
        return &r.ACTIVITY_LEVEL[static_cast<size_t>(static_cast<int>(c) - static_cast<int>(Col::Level0))];
      return nullptr;
  }
}

QStringList splitTrimmed(const QString& line) {
  QStringList cells = line.split(u',');
  for (QString& c : cells) c = c.trimmed();
  return cells;
}

bool allEmpty(const QStringList& cells) {
  for (const QString& c : cells)
    if (!c.isEmpty()) return false;
  return true;
}

// "yyyy/m/d" (four digits before the first slash) or "m/d/yyyy" -> "yyyymmdd"; "" when no date.
QString parseDay(const QString& text) {
  static const QRegularExpression yearFirst(QStringLiteral("^(\\d{4})/(\\d{1,2})/(\\d{1,2})$"));
  static const QRegularExpression monthFirst(QStringLiteral("^(\\d{1,2})/(\\d{1,2})/(\\d{4})$"));
  int y = 0, m = 0, d = 0;
  if (auto a = yearFirst.match(text); a.hasMatch()) {
    y = a.captured(1).toInt(); m = a.captured(2).toInt(); d = a.captured(3).toInt();
  } else if (auto b = monthFirst.match(text); b.hasMatch()) {
    m = b.captured(1).toInt(); d = b.captured(2).toInt(); y = b.captured(3).toInt();
  } else {
    return QString();
  }
  const QDate date(y, m, d);
  return date.isValid() ? date.toString(QStringLiteral("yyyyMMdd")) : QString();
}

// "8:30" or "08:30" -> "0830"; false when it is no time of a day.
bool parseEvent(const QString& text, QString& hhmm) {
  static const QRegularExpression re(QStringLiteral("^(\\d{1,2}):(\\d{2})$"));
  const auto m = re.match(text);
  if (!m.hasMatch()) return false;
  const int h = m.captured(1).toInt();
  const int mi = m.captured(2).toInt();
  if (h > 23 || mi > 59) return false;
  hhmm = QStringLiteral("%1%2").arg(h, 2, 10, QLatin1Char('0')).arg(mi, 2, 10, QLatin1Char('0'));
  return true;
}

bool isTimeCell(const QString& cell) {
  static const QRegularExpression re(QStringLiteral("^\\d{1,2}:\\d{2}$"));
  return re.match(cell).hasMatch();
}

struct Reader {
  CsvFormat format;
  std::vector<Col> cols;
  QString reason;

  bool fail(const char* key, const QString& detail = QString()) {
    reason = ImportText(key);
    if (!detail.isEmpty()) reason += QStringLiteral(" (") + detail + u')';
    return false;
  }

  bool readDayLine(const QStringList& cells, CsvRow& r) {
    bool hasData = false;
    const qsizetype n = std::min<qsizetype>(cells.size(), static_cast<qsizetype>(cols.size()));
    for (qsizetype i = n; i < cells.size(); ++i)
      if (!cells[i].isEmpty()) hasData = true;
    for (qsizetype i = 0; i < n; ++i) {
      const QString& cell = cells[i];
      const Col c = cols[static_cast<size_t>(i)];
      if (!isLeading(c) && !cell.isEmpty()) hasData = true;
      if (c == Col::None || cell.isEmpty()) continue;
      if (QString* field = numberField(r, c)) {
        if (!IsNumericText(cell)) return fail("ERR_READ_NUMBER", cell);
        QString v = cell;
        const bool level = c >= Col::Level0 && c <= Col::LevelSmall;
        if (level && format.levelScale != 1) v = Format(Val(cell) * format.levelScale, QStringLiteral("0"));
        if (v.size() > numberWidth(c)) return fail("ERR_READ_TOOLARGE", cell);
        *field = v;
        continue;
      }
      switch (c) {
        case Col::Day:
          r.MEASUREMENT_DAY = parseDay(cell);
          if (r.MEASUREMENT_DAY.isEmpty()) return fail("ERR_READ_DATE", cell);
          r.RAW_MEASUREMENT_DAY = r.MEASUREMENT_DAY;
          break;
        case Col::Gender:
          r.GENDAR = cell == QLatin1String("M") ? QStringLiteral("0") : QStringLiteral("1");
          break;
        case Col::WeekDay:
          r.WEEK_DAY = csv_detail::WeekDayNumber(cell);
          break;
        case Col::Pedomera: {
          static const QStringList kinds = {QStringLiteral("AL"), QStringLiteral("BRIO"), QStringLiteral("BRIO_ZR"),
                                            QStringLiteral("BRIO_KT")};
          const qsizetype k = kinds.indexOf(cell);
          if (k < 0) return fail("ERR_READ_VALUE", cell);
          r.PEDOMERA = QString::number(k);
          break;
        }
        case Col::MemoryLock:
          r.MEMORY_LOCK = cell == QLatin1String("LOCK") || cell == QStringLiteral("ロック") ? QStringLiteral("1")
                                                                                          : QStringLiteral("0");
          break;
        case Col::MeasMode:
          r.MEASUREMENT_MODE =
              cell == QLatin1String("Average in 2 min.") || cell == QStringLiteral("2分間の平均値") ? QStringLiteral("1")
                                                                                                : QStringLiteral("0");
          break;
        default:
          if (c >= Col::Event0 && c < Col::Level0) {
            QString hhmm;
            if (!parseEvent(cell, hhmm)) return fail("ERR_READ_VALUE", cell);
            r.EVENT[static_cast<size_t>(static_cast<int>(c) - static_cast<int>(Col::Event0))] = hhmm;
          }
          break;
      }
    }
    if (r.MEASUREMENT_DAY.isEmpty()) return fail("ERR_READ_DATE");
    if (r.WEEK_DAY.isEmpty()) {
      if (format.levelScale == 1) return fail("ERR_READ_WEEKDAY");
      r.WEEK_DAY = QString::number(YmdToDate(r.MEASUREMENT_DAY).dayOfWeek());
    }
    r.NewestOfDay = hasData;
    r.NoDataMark = hasData ? QStringLiteral("0") : QStringLiteral("1");
    // The oldest formats carry no activity time: it is the time spent at levels 4 to 9.
    if (hasData && format.levelScale != 1 && r.ACCUMULATION_TIME.isEmpty()) {
      double points = 0;
      for (int i = 4; i <= 9; ++i) points += Val(r.ACTIVITY_LEVEL[static_cast<size_t>(i)]);
      r.ACCUMULATION_TIME = Format(points * 4.0 / 60.0, QStringLiteral("0"));
    }
    return true;
  }
};

}  // namespace

bool ParseCsvFormatLine(const QString& line, CsvFormat& format) {
  const QStringList cells = splitTrimmed(line);
  if (cells.size() < 5) return false;
  QString c3 = cells[3];
  if (c3 == QLatin1String("Data Format")) c3 += QStringLiteral(" Ver.");
  if (!c3.endsWith(u'.')) c3 += u'.';
  const bool pmal4s = c3 == QLatin1String("Data Format Ver.(PMAL4S).");
  if (c3 != QLatin1String("Data Format Ver.") && !pmal4s) return false;
  const QString& word = cells[4];
  CsvFormat f;
  if (word == QLatin1String("BRIO-JP")) {
    f.code = 0;
  } else if (word == QLatin1String("AL-100")) {
    if (cells[0] == QStringLiteral("受信日")) f.code = 1;
    if (cells[0] == QLatin1String("Download Day")) f.code = 11;
    if (pmal4s) f.code = 5;
  } else if (word == QLatin1String("1")) {
    f.code = 2;
    f.levelScale = 216;
  } else if (word == QLatin1String("1.00.0001")) {
    f.code = 3;
    f.levelScale = 216;
  } else if (word == QLatin1String("3.00.0001")) {
    f.code = 4;
    f.levelScale = 216;
  } else if (word == QLatin1String("AL-101")) {
    f.code = 6;
  } else if (word == QLatin1String("BRIO-EN")) {
    f.code = 10;
  } else if (word == QLatin1String("BRIO-ENG")) {
    f.code = 12;
  } else if (word == QLatin1String("ZR200")) {
    f.code = 13;
  }
  if (f.code < 0) return false;
  f.monthFirst = f.code == 3 || f.code == 4 || f.code == 12;
  format = f;
  return true;
}

bool ReadCSVBytes(std::vector<CsvRow>& rows, const QByteArray& bytes, int& errorLine, CsvFormat& format,
                  QString& reason) {
  rows.clear();
  errorLine = 0;
  Reader rd;
  auto refuseWith = [&](int line, const QString& why) {
    errorLine = line;
    reason = why;
    rows.clear();
    return false;
  };
  auto refuse = [&](int line, const char* key, const QString& detail = QString()) {
    rd.fail(key, detail);
    return refuseWith(line, rd.reason);
  };
  if (bytes.size() > kMaxFileBytes) return refuse(0, "ERR_READ_NOTTEXT");
  if (bytes.contains('\0')) return refuse(1, "ERR_READ_NOTTEXT");
  const QString text = DecodeSystemText(bytes);
  if (text.contains(QChar(0xFFFD))) return refuse(1, "ERR_READ_NOTTEXT");
  QStringList lines = text.split(u'\n');
  for (QString& l : lines)
    if (l.endsWith(u'\r')) l.chop(1);

  auto lineAt = [&lines](int number) { return number <= lines.size() ? lines[number - 1] : QString(); };
  if (lineAt(1).trimmed().isEmpty() || !ParseCsvFormatLine(lineAt(1), rd.format)) return refuse(1, "ERR_READ_FORMAT");
  if (lineAt(2).trimmed().isEmpty()) return refuse(2, "ERR_READ_HEADER");
  if (lineAt(3).trimmed().isEmpty()) return refuse(3, "ERR_READ_HEADER");
  const QStringList names2 = splitTrimmed(lineAt(2));
  const QStringList names3 = splitTrimmed(lineAt(3));
  rd.cols.assign(static_cast<size_t>(std::max(names2.size(), names3.size())), Col::None);
  bool hasDay = false;
  for (qsizetype i = 0; i < names2.size(); ++i) {
    const Col c = line2Names().value(names2[i], Col::None);
    rd.cols[static_cast<size_t>(i)] = c;
    hasDay = hasDay || c == Col::Day;
  }
  for (qsizetype i = 0; i < names3.size(); ++i) {
    const Col c = line3Names().value(names3[i], Col::None);
    if (c != Col::None) rd.cols[static_cast<size_t>(i)] = c;
  }
  if (!hasDay) return refuse(2, "ERR_READ_HEADER");

  // The day lines, up to the first empty line.
  int number = 4;
  for (; number <= lines.size(); ++number) {
    const QStringList cells = splitTrimmed(lines[number - 1]);
    if (allEmpty(cells)) break;
    CsvRow r;
    if (!rd.readDayLine(cells, r)) return refuseWith(number, rd.reason);
    rows.push_back(std::move(r));
  }

  // The profile table: the weekday line, then a line per two minutes.
  for (; number <= lines.size() && lines[number - 1].trimmed().isEmpty(); ++number) {}
  if (number > lines.size()) return refuse(number, "ERR_READ_TRUNCATED");
  qsizetype firstColumn = -1;
  {
    const QStringList cells = splitTrimmed(lines[number - 1]);
    for (qsizetype i = 0; i < cells.size(); ++i) {
      if (!cells[i].isEmpty()) {
        firstColumn = i;
        break;
      }
    }
    ++number;
  }
  if (firstColumn < 0) firstColumn = 1;
  std::vector<QString> profiles(rows.size());
  for (QString& p : profiles) p.reserve(kProfileSlots * 3);
  int slots = 0;
  for (; number <= lines.size() && slots < kProfileSlots; ++number) {
    const QString& line = lines[number - 1];
    if (line.trimmed().isEmpty()) continue;
    const QStringList cells = splitTrimmed(line);
    if (cells.isEmpty() || cells[0].isEmpty() || !cells[0][0].isDigit() || !isTimeCell(cells[0])) continue;
    for (size_t i = 0; i < rows.size(); ++i) {
      const qsizetype col = firstColumn + static_cast<qsizetype>(i);
      QString v = col < cells.size() ? cells[col] : QString();
      if (v.isEmpty()) {
        v = QStringLiteral("-1");
      } else if (!IsNumericText(v) || v.size() > 5) {
        return refuse(number, "ERR_READ_NUMBER", v);
      }
      if (slots > 0) profiles[i] += u',';
      profiles[i] += v;
    }
    ++slots;
  }
  if (slots < kProfileSlots) return refuse(number, "ERR_READ_TRUNCATED");
  for (size_t i = 0; i < rows.size(); ++i) rows[i].ACT_LEVEL_BLOCK = std::move(profiles[i]);
  format = rd.format;
  return true;
}

bool ReadCSVData(std::vector<CsvRow>& rows, const QString& path, int& errorLine, CsvFormat& format, QString& reason) {
  QFile file(path);
  if (!file.open(QIODevice::ReadOnly)) {
    errorLine = 0;
    reason = file.errorString();
    WriteTrace(QStringLiteral("2"), QStringLiteral("ReadCSVData"), QStringLiteral("READ_CSV_DATA_ERROR: ") + reason);
    return false;
  }
  const QByteArray bytes = file.read(kMaxFileBytes + 1);
  file.close();
  if (!ReadCSVBytes(rows, bytes, errorLine, format, reason)) {
    WriteTrace(QStringLiteral("2"), QStringLiteral("ReadCSVData"),
               QStringLiteral("CSV File Format Error(Line No.%1):").arg(errorLine) + reason);
    return false;
  }
  return true;
}

bool IsFileCsv(const QString& path) { return QFileInfo(path).suffix().toLower() == QLatin1String("csv"); }

bool ParseCsvFileName(const QString& path, QString& loginId, QString& name) {
  const QFileInfo info(path);
  QString joined = info.completeBaseName() + u'.' + info.suffix().toLower();
  joined.remove(u'\r');
  joined.remove(u'\n');
  static const QRegularExpression re(QStringLiteral("^(([^_]*)_)?(.*)_\\d{8}.csv$"));
  const auto m = re.match(joined);
  if (!m.hasMatch()) return false;
  loginId = m.captured(2);
  name = m.captured(3);
  return true;
}

bool IsLoginIdText(const QString& text) {
  for (QChar c : text) {
    const char16_t u = c.unicode();
    const bool ok = (u >= u'0' && u <= u'9') || (u >= u'a' && u <= u'z') || (u >= u'A' && u <= u'Z');
    if (!ok) return true;
  }
  return false;
}

bool IsNumericText(const QString& text) {
  if (text.isEmpty() || text.endsWith(u'.')) return false;
  int points = 0;
  for (QChar c : text) {
    if (c == u'.') {
      if (++points > 1) return false;
    } else if (c < u'0' || c > u'9') {
      return false;
    }
  }
  if (text.size() > 1 && text[0] == u'0' && text[1] != u'.') return false;
  return text[0] != u'.';
}
