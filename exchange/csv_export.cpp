#include "exchange/csv_export.h"

#include <QSaveFile>

#include "frame/catalogue.h"
#include "frame/config.h"
#include "frame/dialog.h"
#include "frame/helpers.h"
#include "frame/trace.h"
#include "frame/vbformat.h"
#include "store/store.h"

namespace {

constexpr int kProfileSlots = 720;
constexpr int kPumpEveryLines = 60;

void trace(const char* name, const QString& message) {
  WriteTrace(QStringLiteral("2"), QLatin1String(name), message);
}

QString dateText(const QString& ymd, bool english) {
  const QDate d = YmdToDate(ymd);
  if (!d.isValid()) return ymd;
  return d.toString(english ? QStringLiteral("MM/dd/yyyy") : QStringLiteral("yyyy/MM/dd"));
}

// "0830" -> "08:30"; a shorter text is right-aligned first, as "@@:@@" does.
QString eventText(const QString& event) {
  const QString e = event.trimmed();
  if (e.isEmpty() || e == QLatin1String("9999")) return QString();
  const QString padded = e.rightJustified(4, u' ');
  return padded.left(padded.size() - 2) + u':' + padded.right(2);
}

QString versionText(const QString& pedomera) {
  static const char* const kNames[] = {"AL", "BRIO", "BRIO_ZR", "BRIO_KT"};
  bool ok = false;
  const int n = pedomera.toInt(&ok);
  return ok && n >= 0 && n <= 3 ? QString::fromLatin1(kNames[n]) : QString();
}

class LineWriter {
 public:
  explicit LineWriter(QString& out) : out_(out) {}
  // A field followed by its comma.
  void field(const QString& v) {
    out_ += v;
    out_ += u',';
  }
  void raw(QStringView v) { out_ += v; }
  void end() { out_ += QLatin1String("\r\n"); }

 private:
  QString& out_;
};

// The body fields of a row: heights and weights by the language, gender, age.
void writeBody(LineWriter& w, const CsvRow& r, bool english) {
  if (english) {
    if (!r.HEIGHT_FEET.isEmpty()) {
      w.field(r.HEIGHT_FEET);
      w.field(r.HEIGHT_INCH);
      w.field(QString());
      w.field(r.WEIGHT_PAUND);
      w.field(QString());
    } else {
      w.field(QString());
      w.field(QString());
      w.field(r.HEIGHT_CM);
      w.field(QString());
      w.field(r.WEIGHT_KG);
    }
  } else {
    w.field(r.HEIGHT_CM);
    w.field(r.WEIGHT_KG);
  }
  w.field(Val(r.GENDAR) == 0 ? QStringLiteral("M") : QStringLiteral("F"));
  w.field(r.AGE);
}

void writeNoDataLine(LineWriter& w, const QString& day, const QString& weekDay, const CsvRow& ref, bool english) {
  w.field(dateText(day, english));
  writeBody(w, ref, english);
  w.field(GetWeekDayText(weekDay, english));
  w.field(ref.TARGET_CAL);
  w.raw(u",,,,,,,,,,,,,,,,,,,,,,,");
  w.end();
}

void writeDataLine(LineWriter& w, const CsvRow& r, int kind, bool english) {
  const bool familyB = kind == kCsvKindBrio || (kind == kCsvKindZr && !english);
  w.field(dateText(r.MEASUREMENT_DAY, english));
  writeBody(w, r, english);
  w.field(GetWeekDayText(r.WEEK_DAY, english));
  w.field(r.TARGET_CAL);
  w.field(r.ENERGY_EXPENDITURE);
  w.field(r.ACTIVITY);
  if (familyB) w.field(r.TARGET_STEP);
  w.field(r.STEP_COUNT);
  if (familyB) {
    w.field(r.PACE_CM);
    w.field(r.DISTANCE_KM);
    if (english) w.field(r.TARGET_TIME);
    w.field(r.ACCUMULATION_TIME);
    w.field(r.LOWER_BOUND);
    w.field(r.UPPER_BOUND);
    if (kind == kCsvKindZr) w.field(r.EXERCISE);
  }
  for (const QString& level : r.ACTIVITY_LEVEL) w.field(level);
  w.field(r.ACTIVITY_LEVEL_SMALL);
  for (const QString& event : r.EVENT) w.field(eventText(event));
  if (familyB) {
    w.field(versionText(r.PEDOMERA));
    if (english) {
      w.field(r.MEMORY_LOCK == QLatin1String("0") ? QStringLiteral("LOOP") : QStringLiteral("LOCK"));
      w.field(r.MEASUREMENT_MODE == QLatin1String("0") ? QString() : QStringLiteral("Average in 2 min."));
    } else {
      w.field(r.MEMORY_LOCK == QLatin1String("0") ? QStringLiteral("ループ") : QStringLiteral("ロック"));
      w.field(r.MEASUREMENT_MODE == QLatin1String("0") ? QString() : QStringLiteral("2分間の平均値"));
    }
  }
  w.end();
}

QString formatWord(int kind, bool english) {
  if (kind == kCsvKindAl) return QStringLiteral("AL-100");
  if (kind == kCsvKindZr) return QStringLiteral("ZR200");
  return english ? QStringLiteral("BRIO-ENG") : QStringLiteral("BRIO-JP");
}

void writeHeaderLines(LineWriter& w, int kind, bool english, const CsvFileHead& head) {
  const bool familyB = kind == kCsvKindBrio || (kind == kCsvKindZr && !english);
  w.raw(english ? u"Download Day," : u"受信日,");
  w.raw(head.downloadDay.toString(english ? QStringLiteral("MM/dd/yyyy") : QStringLiteral("yyyy/MM/dd")));
  w.raw(u",CPU No:");
  w.raw(head.cpuNo);
  w.raw(u",Data Format Ver.,");
  w.raw(formatWord(kind, english));
  w.raw(u",,");
  w.raw(head.quotedName);
  w.raw(u",,,,,,,,,,,,,,,,,,,,,,,,");
  w.end();

  if (english) {
    w.raw(u"Recording Date,Height(feet),Height(inch),Height(cm),Weight(lbs.),Weight(kg),Gender,Age,"
          u"A day of week,Target Activity Cal,Total Cal(DEE),Activity Cal");
    if (familyB) w.raw(u",Target Step");
    w.raw(u",Step");
    if (familyB)
      w.raw(u",Pace(cm),Distance(km),Target Activity Time,Activity Time,Intensity Level Lower Bound,"
            u"Intensity Level Upper Bound");
    w.raw(u",,Activity Intensity Level,,,,,Distibution of Activity Intensity Level (number of 4sec. Point),,,,,"
          u"Event1,Event2,Event3,Event4,Event5,Event6,Event7,Event8,Event9,Event10");
    if (familyB) w.raw(u",PedoMyra Version,PedoMyra Memory Setting,Measurement Mode");
    w.end();
    if (familyB) w.raw(u",,,,,,,");
    w.raw(u",,,,,,,,,,,,,Intensity0,Intensity1,Intensity2,Intensity3,Intensity4,Intensity5,Intensity6,"
          u"Intensity7,Intensity8,Intensity9,Micro Activity,,,,,,,,,,");
    w.end();
  } else {
    w.raw(u"測定日,身長,体重,性別,年齢,曜日,目標運動量,総消費量,運動量");
    if (familyB) w.raw(u",目標歩数");
    w.raw(u",歩数");
    if (familyB) w.raw(u",歩幅,距離,活動時間,運動強度下限,運動強度上限");
    if (kind == kCsvKindZr) w.raw(u",EX");
    w.raw(u",,,,運動強度,,,度数分布,,（回）,,,ｲﾍﾞﾝﾄ1,ｲﾍﾞﾝﾄ2,ｲﾍﾞﾝﾄ3,ｲﾍﾞﾝﾄ4,ｲﾍﾞﾝﾄ5,ｲﾍﾞﾝﾄ6,ｲﾍﾞﾝﾄ7,ｲﾍﾞﾝﾄ8,"
          u"ｲﾍﾞﾝﾄ9,ｲﾍﾞﾝﾄ10");
    if (familyB) w.raw(u",ペドミラバージョン,ペドミラメモリ設定,測定方法");
    w.end();
    if (kind == kCsvKindBrio) w.raw(u",,,,,,");
    if (kind == kCsvKindZr) w.raw(u",,,,,,,");
    w.raw(u",,,,,,,,,,強度０,強度１,強度２,強度３,強度４,強度５,強度６,強度７,強度８,強度９,微小運動,,,,,,,,,,");
    w.end();
  }
}

}  // namespace

QString MakeQuotedName(const UserInfo& user) {
  QString s = QStringLiteral("\"") + user.FIRST_NAME + u' ';
  if (!user.MIDDLE_NAME.isEmpty()) s += user.MIDDLE_NAME + u' ';
  return s + user.LAST_NAME + u'"';
}

int CalcCSVData(VtDatabase& db, const QString& userId, const QString& from, const QString& to,
                std::vector<CsvRow>& rows) {
  rows.clear();
  if (from > to) return 0;
  const QDate first = YmdToDate(from);
  const QDate last = YmdToDate(to);
  if (!first.isValid() || !last.isValid()) return -1;
  rows.reserve(static_cast<size_t>(first.daysTo(last) + 1));
  for (QDate d = first; d <= last; d = d.addDays(1)) {
    CsvRow r;
    r.MEASUREMENT_DAY = DateToYmd(d);
    r.WEEK_DAY = QString::number(d.dayOfWeek());
    r.NoDataMark = QStringLiteral("1");
    rows.push_back(std::move(r));
  }
  std::vector<CsvRow> stored;
  const int count = VTDB_GetChartDataForCSV(db, userId, from, to, stored);
  if (count < 0) {
    trace("CalcCSVData", QStringLiteral("VTDB_GetChartData Error"));
    return -1;
  }
  if (count == 0) return 0;
  for (CsvRow& s : stored) {
    if (!s.NewestOfDay) continue;
    TimeBlockRecord block;
    if (!VTDB_GetTimeMeasurementDayBlock(db, s.RECEIVE_ID, s.SEQ_NUM, block)) {
      trace("CalcCSVData", QStringLiteral("VTDB_GetTimeMeasurementDayBlock Error"));
      return -1;
    }
    s.ACT_LEVEL_BLOCK = block.ACT_LEVEL_BLOCK.trimmed();
    const qint64 index = first.daysTo(YmdToDate(s.MEASUREMENT_DAY));
    if (index < 0 || index >= static_cast<qint64>(rows.size())) continue;
    CsvRow& target = rows[static_cast<size_t>(index)];
    const QString calendarWeekDay = target.WEEK_DAY;
    target = std::move(s);
    if (GetWeekDayText(target.WEEK_DAY, false).isEmpty()) target.WEEK_DAY = calendarWeekDay;
  }
  return 0;
}

QString BuildCSVText(std::vector<CsvRow>& rows, const CsvRow& latest, int formatKind, bool english,
                     const CsvFileHead& head, ProgressInterface* progress) {
  // The reference row: the earliest day with data; without any, the last row with the
  // body values of the latest day record.
  CsvRow fallback;
  const CsvRow* ref = nullptr;
  for (const CsvRow& r : rows) {
    if (r.NewestOfDay) {
      ref = &r;
      break;
    }
  }
  if (!ref) {
    CsvRow& target = rows.empty() ? fallback : rows.back();
    target.GENDAR = latest.GENDAR;
    target.AGE = latest.AGE;
    target.HEIGHT_CM = latest.HEIGHT_CM;
    target.HEIGHT_FEET = latest.HEIGHT_FEET;
    target.HEIGHT_INCH = latest.HEIGHT_INCH;
    target.WEIGHT_KG = latest.WEIGHT_KG;
    target.WEIGHT_PAUND = latest.WEIGHT_PAUND;
    target.TARGET_CAL = latest.TARGET_CAL;
    ref = &target;
  }

  QString out;
  out.reserve(static_cast<qsizetype>(4096 + rows.size() * (200 + 6 * kProfileSlots)));
  LineWriter w(out);
  writeHeaderLines(w, formatKind, english, head);

  // Lead-in days from the Monday of the first week.
  int leadIn = 0;
  QDate firstDay;
  if (!rows.empty()) {
    firstDay = YmdToDate(rows.front().MEASUREMENT_DAY);
    const int weekDay = rows.front().WEEK_DAY.toInt();
    leadIn = weekDay >= 1 && weekDay <= 7 ? weekDay - 1 : 0;
  }
  QStringList leadInWeekDays;
  for (int i = leadIn; i >= 1; --i) {
    const QDate d = firstDay.addDays(-i);
    const QString weekDay = QString::number(d.dayOfWeek());
    leadInWeekDays << weekDay;
    writeNoDataLine(w, DateToYmd(d), weekDay, *ref, english);
  }
  int lines = 0;
  for (const CsvRow& r : rows) {
    if (r.NewestOfDay)
      writeDataLine(w, r, formatKind, english);
    else
      writeNoDataLine(w, r.MEASUREMENT_DAY, r.WEEK_DAY, *ref, english);
    if (progress && ++lines % kPumpEveryLines == 0) progress->yield();
  }
  for (int i = 0; i < 6; ++i) w.end();

  // The profile table: a column per day, lead-in days empty.
  for (const QString& weekDay : leadInWeekDays) {
    w.raw(u",");
    w.raw(GetWeekDayText(weekDay, english));
  }
  for (const CsvRow& r : rows) {
    w.raw(u",");
    w.raw(GetWeekDayText(r.WEEK_DAY, english));
  }
  w.end();
  const QString leadInCommas(leadIn, u',');
  static const QString minus1 = QStringLiteral("-1");
  for (int slot = 0; slot < kProfileSlots; ++slot) {
    const int minutes = slot * 2;
    out += QStringLiteral("%1:%2").arg(minutes / 60, 2, 10, QLatin1Char('0')).arg(minutes % 60, 2, 10, QLatin1Char('0'));
    out += leadInCommas;
    for (const CsvRow& r : rows) {
      out += u',';
      if (slot < r.ProfileValues.size()) {
        const QString& v = r.ProfileValues[slot];
        if (v != minus1) out += v;
      }
    }
    w.end();
    if (progress && slot % kPumpEveryLines == 0) progress->yield();
  }
  return out;
}

bool WriteCSVData2(VtDatabase& db, std::vector<CsvRow>& rows, const CsvRow& latest, const QString& path,
                   int formatKind, const UserInfo& user, const CsvExportOptions& options, QString& error) {
  const bool english = Ini_GetLang() == 1;
  CsvFileHead head;
  head.downloadDay = options.today.isValid() ? options.today : QDate::currentDate();
  head.quotedName = MakeQuotedName(user);
  // The CPU number of the reference row's reception.
  QString receiveId;
  for (const CsvRow& r : rows) {
    if (r.NewestOfDay) {
      receiveId = r.RECEIVE_ID;
      break;
    }
  }
  head.cpuNo = QString(6, u' ');
  if (!receiveId.isEmpty()) {
    ReceiveHistoryRecord history;
    if (!VTDB_GetReceiveHistory(db, receiveId, history))
      trace("WriteCSVData", QStringLiteral("VTDB_GetReceiveHistory Error"));
    else if (!history.RECEIVE_ID.trimmed().isEmpty())
      head.cpuNo = history.CPU_NO.leftJustified(6, u' ', true);
  }
  const QString text = BuildCSVText(rows, latest, formatKind, english, head, options.progress);

  QByteArray bytes;
  QString unwritable;
  if (!EncodeCsvText(text, options.encoding.value_or(DefaultCsvEncoding(english)), bytes, unwritable)) {
    MessageDialog(QStringLiteral("CSVE-W-0002"), unwritable);
    const auto rec = FindMessage(QStringLiteral("CSVE-W-0002"));
    error = rec ? BuildMessageText(*rec, unwritable, false) : unwritable;
    trace("WriteCSVData2", QStringLiteral("WRITE_CSV_DATA_ERROR: unwritable characters ") + unwritable);
    return false;
  }
  QSaveFile file(path);
  if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size() || !file.commit()) {
    error = file.errorString();
    trace("WriteCSVData2", QStringLiteral("WRITE_CSV_DATA_ERROR: ") + path + QStringLiteral(": ") + error);
    return false;
  }
  return true;
}

bool MakeCSVData2(VtDatabase& db, const QString& userId, const QString& from, const QString& to,
                  const QString& latestDay, const QString& path, const UserInfo& user, int maxRows, int formatKind,
                  const CsvExportOptions& options, QString& error) {
  CsvRow latest;
  QString receiveId;
  QString seqNum;
  if (!VTDB_GetDayMeasurementReceiveId(db, userId, latestDay, receiveId, seqNum, true)) {
    trace("MakeCSVData2", QStringLiteral("VTDB_GetDayMeasurementReceiveId Error"));
    error = db.lastErrorText();
    return false;
  }
  if (!receiveId.isEmpty()) {
    std::vector<CsvRow> one;
    if (!VTDB_GetDayMeasurementDataFromIdAndSeqNum(db, receiveId, seqNum, seqNum, one)) {
      trace("MakeCSVData2", QStringLiteral("VTDB_GetDayMeasurementDataFromIdAndSeqNum Error"));
      error = db.lastErrorText();
      return false;
    }
    if (!one.empty()) latest = one.front();
  }
  std::vector<CsvRow> rows;
  if (CalcCSVData(db, userId, from, to, rows) == -1) {
    trace("MakeCSVData2", QStringLiteral("CalcStepActMin Error"));
    error = db.lastErrorText();
    return false;
  }
  if (maxRows != -1 && static_cast<qint64>(rows.size()) - 1 > maxRows) {
    const QString extra = QStringLiteral("MAX Record is %1 records").arg(maxRows);
    MessageDialog(QStringLiteral("CSVE-W-0001"), extra);
    const auto rec = FindMessage(QStringLiteral("CSVE-W-0001"));
    error = rec ? BuildMessageText(*rec, extra, false) : extra;
    return false;
  }
  for (CsvRow& r : rows) {
    if (r.ACT_LEVEL_BLOCK.isEmpty()) continue;
    r.ProfileValues = r.ACT_LEVEL_BLOCK.split(u',');
    for (QString& v : r.ProfileValues) v = v.trimmed();
  }
  if (!WriteCSVData2(db, rows, latest, path, formatKind, user, options, error)) {
    trace("MakeCSVData2", QStringLiteral("WriteCSVData Error"));
    return false;
  }
  return true;
}
