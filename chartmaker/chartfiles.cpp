#include "chartmaker/chartfiles.h"

#include <QFile>
#include <QFileInfo>
#include <limits>

#include "frame/profile.h"

namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

std::optional<double> ParseNumber(const QString& text) {
  const QString t = text.trimmed();
  if (t.isEmpty()) return std::nullopt;
  bool ok = false;
  const double v = t.toDouble(&ok);
  if (!ok || !std::isfinite(v)) return std::nullopt;
  return v;
}

std::optional<int> ParseInt(const QString& text) {
  bool ok = false;
  const int v = text.trimmed().toInt(&ok);
  if (!ok) return std::nullopt;
  return v;
}

}  // namespace

std::optional<double> ChartLine::number(int n) const { return ParseNumber(field(n)); }

int InterfaceFile::linesWithFigures() const {
  int n = 0;
  for (const auto& l : lines) n += l.hasFigures() ? 1 : 0;
  return n;
}

int InterfaceFile::countedLines() const {
  int n = 0;
  for (const auto& l : lines) n += l.state == LineState::Counted ? 1 : 0;
  return n;
}

std::optional<bool> InterfaceFile::imperialUnit() const {
  for (auto it = lines.rbegin(); it != lines.rend(); ++it)
    if (it->imperial) return it->imperial;
  return std::nullopt;
}

int ChartFamily(int type) {
  if (type == 5) return 0;
  return type % 100;
}

int ChartKindOf(int type) { return type == 5 ? 5 : type / 100 * 100; }

bool IsKnownChartType(int type) {
  if (type == 5) return true;
  if (type < 100 || type > 902) return false;
  const int family = type % 100;
  const int kind = type / 100;
  return family <= 2 && kind >= 1 && kind <= 9 && kind != 7;
}

QDate ParseChartDate(const QString& text) {
  const QString t = text.trimmed();
  if (t.size() == 8) return QDate::fromString(t, QStringLiteral("yyyyMMdd"));
  if (t.size() == 10) return QDate::fromString(t, QStringLiteral("yyyy/MM/dd"));
  return {};
}

std::optional<QStringList> ReadTextLines(const QString& path) {
  if (path.isEmpty()) return std::nullopt;
  QFile f(path);
  if (!QFileInfo(path).isFile() || !f.open(QIODevice::ReadOnly)) return std::nullopt;
  // A chart file is a few hundred kilobytes at most; anything far larger is not one.
  if (f.size() > 64 * 1024 * 1024) return QStringList();
  const QString text = DecodeSystemText(f.readAll());
  QStringList lines = text.split(QLatin1Char('\n'));
  for (auto& l : lines) {
    if (l.endsWith(QLatin1Char('\r'))) l.chop(1);
  }
  while (!lines.isEmpty() && lines.last().trimmed().isEmpty()) lines.removeLast();
  return lines;
}

ChartReadStatus ReadInterfaceFile(const QString& path, InterfaceFile& out) {
  out = InterfaceFile();
  const auto read = ReadTextLines(path);
  if (!read) return ChartReadStatus::Missing;
  const QStringList& lines = *read;
  if (lines.size() < 3) return ChartReadStatus::Malformed;

  const auto type = ParseInt(lines[0]);
  if (!type || !IsKnownChartType(*type)) return ChartReadStatus::Malformed;
  out.type = *type;

  const QStringList l2 = lines[1].split(QLatin1Char(','));
  if (l2.size() < 2) return ChartReadStatus::Malformed;
  out.start = ParseChartDate(l2[0]);
  out.end = ParseChartDate(l2[1]);
  if (!out.start.isValid() || !out.end.isValid()) return ChartReadStatus::Malformed;
  if (l2.size() > 3) {
    out.moderateFrom = ParseInt(l2[2]).value_or(4);
    out.moderateTo = ParseInt(l2[3]).value_or(7);
  }
  if (out.moderateFrom < 1 || out.moderateFrom > 9) out.moderateFrom = 4;
  if (out.moderateTo < out.moderateFrom || out.moderateTo > 9) out.moderateTo = std::max(7, out.moderateFrom);
  for (int i = 0; i < 5 && 4 + i < l2.size(); ++i) {
    const auto v = ParseNumber(l2[4 + i]);
    if (v && *v > 0) out.fixedMax[static_cast<size_t>(i)] = *v;
  }
  if (l2.size() >= 32) {
    const auto v = ParseNumber(l2[31]);
    if (v && *v > 0) out.exerciseTarget = v;
  }

  const QStringList l3 = lines[2].split(QLatin1Char(','));
  if (l3.size() < 6) return ChartReadStatus::Malformed;
  const auto n = ParseInt(l3[0]);
  if (!n || *n < 0) return ChartReadStatus::Malformed;
  out.validDays = *n;
  out.meanSteps = ParseNumber(l3[1]).value_or(0);
  out.meanActivityCal = ParseNumber(l3[2]).value_or(0);
  out.meanTotalCal = ParseNumber(l3[3]).value_or(0);
  out.meanActivityTime = ParseNumber(l3[4]).value_or(0);
  out.meanDistance = ParseNumber(l3[5]).value_or(0);

  for (qsizetype i = 3; i < lines.size(); ++i) {
    if (lines[i].trimmed().isEmpty()) continue;
    ChartLine line;
    line.fields = lines[i].split(QLatin1Char(','));
    if (line.fields.size() < 3) return ChartReadStatus::Malformed;
    line.first = ParseChartDate(line.fields[1]);
    line.last = ParseChartDate(line.fields[2]);
    if (!line.first.isValid() || !line.last.isValid() || line.last < line.first)
      return ChartReadStatus::Malformed;
    const QString status = line.fields[0].trimmed();
    // A line carries figures when its steps (field 6) hold a number; the status field
    // then is the exclusion flag. Without figures it is the status of the day or group.
    const bool figures = line.number(6).has_value();
    if (figures)
      line.state = status == QLatin1String("1") ? LineState::Excluded : LineState::Counted;
    else if (status == QLatin1String("1") && ChartFamily(out.type) != 0)
      line.state = LineState::AllExcluded;
    else
      line.state = LineState::NoData;
    if (line.fields.size() >= 786) line.exercise = ParseNumber(line.fields[785]);
    if (out.type == 5 && figures) {
      line.mode = line.field(785).trimmed();
      // A day without a block: its 720 empty slots push the mode into field 786, where
      // the exercise is appended behind it ("0" + "2.5" gives "02.5").
      const QString f786 = line.field(786).trimmed();
      if (line.mode.isEmpty() && !f786.isEmpty()) {
        line.mode = f786.left(1);
        line.exercise = ParseNumber(f786.mid(1));
      }
    }
    if (figures) {
      const QString w = line.field(15).trimmed();
      if (ParseNumber(w)) line.imperial = !w.contains(QLatin1Char('.'));
    }
    out.lines.push_back(std::move(line));
  }
  return ChartReadStatus::Ok;
}

DayProfile ReadDayProfile(const ChartLine& line) {
  DayProfile p;
  p.slot.fill(kNaN);
  // Layout behind the 27 figures: 27 empty fields, ten events (55-64), the 720 slots
  // (65-784), the mode (785), the exercise (786).
  for (int e = 55; e <= 64; ++e) {
    const QString t = line.field(e).trimmed();
    if (t.size() != 4 || t == QLatin1String("9999")) continue;
    const auto hhmm = ParseInt(t);
    if (!hhmm) continue;
    const int h = *hhmm / 100, m = *hhmm % 100;
    if (h >= 0 && h < 24 && m >= 0 && m < 60) p.eventMinutes.push_back(h * 60 + m);
  }
  for (int s = 0; s < 720; ++s) {
    const QString t = line.field(65 + s).trimmed();
    const auto v = ParseNumber(t);
    if (v && *v >= 0) {
      p.slot[static_cast<size_t>(s)] = *v;
      p.any = true;
      // Levels are stored as "0", "0.5" and "1" to "9"; a METS recorder's slots are
      // METs with one decimal ("1.0" to "9.0"). Any other decimal text is METs.
      if (t.contains(QLatin1Char('.')) && t != QLatin1String("0.5")) p.metsMode = true;
    }
  }
  QString mode = line.mode;
  if (mode.isEmpty()) {
    mode = line.field(785).trimmed();
    if (mode.isEmpty()) mode = line.field(786).trimmed().left(1);
  }
  p.averaged = mode == QLatin1String("1");
  return p;
}

ChartReadStatus ReadHeaderFile(const QString& path, HeaderFile& out) {
  out = HeaderFile();
  const auto read = ReadTextLines(path);
  if (!read) return ChartReadStatus::Missing;
  QStringList lines = *read;
  if (lines.isEmpty()) return ChartReadStatus::Malformed;
  while (lines.size() < 7) lines.append(QString());

  const QStringList names = lines[0].split(QLatin1Char(','));
  auto name = [&](int i) { return i < names.size() ? names[i].trimmed() : QString(); };
  out.firstName = name(0);
  out.middleName = name(1);
  out.lastName = name(2);
  out.nickName = name(3);
  out.group = name(4);
  out.comment = lines[1].trimmed();

  // Age, gender (which carries its own comma, so an empty field follows it), height,
  // weight. Read from both ends, so that an empty gender caption shifts nothing.
  QStringList body = lines[2].split(QLatin1Char(','));
  for (auto& part : body) part = part.trimmed();
  qsizetype last = body.size() - 1;
  while (last >= 0 && body[last].isEmpty()) --last;
  if (last >= 1) out.weight = body[last];
  qsizetype heightAt = last - 1;
  while (heightAt >= 1 && body[heightAt].isEmpty()) --heightAt;
  if (heightAt >= 1) out.height = body[heightAt];
  out.age = body.value(0);
  if (heightAt > 1 || (heightAt < 1 && body.size() > 1)) out.gender = body.value(1);
  out.imperial = out.weight.contains(QLatin1String("lbs"));

  const QStringList period = lines[3].split(QLatin1Char(','));
  if (period.size() > 0) out.start = ParseChartDate(period[0]);
  if (period.size() > 1) out.end = ParseChartDate(period[1]);
  if (period.size() > 2) out.validDays = period[2].trimmed();
  if (period.size() > 3) out.recorderKind = period[3].trimmed();

  const QStringList targets = lines[4].split(QLatin1Char(','));
  auto target = [&](int i) { return i < targets.size() ? targets[i].trimmed() : QString(); };
  out.targetStep = target(0);
  out.targetIntake = target(1);
  out.targetActMin = target(2);
  out.moderateFrom = target(3);
  out.moderateTo = target(4);

  QString excl = lines[5].trimmed();
  if (excl.startsWith(QLatin1Char('"'))) excl.remove(0, 1);
  if (excl.endsWith(QLatin1Char('"'))) excl.chop(1);
  out.exclusionText = excl.trimmed();
  out.institution = lines[6].trimmed();
  return ChartReadStatus::Ok;
}

std::optional<ExclusionRule> ParseExclusionText(const QString& text) {
  static const QString kFirst = QStringLiteral("First Date");
  static const QString kLast = QStringLiteral("Last Date");
  static const QString kTail = QStringLiteral("Step and under/day");
  QString t = text.trimmed();
  if (t.startsWith(QLatin1Char('"')) && t.endsWith(QLatin1Char('"')) && t.size() >= 2) t = t.mid(1, t.size() - 2);
  ExclusionRule r;
  auto skipSeparator = [&t] {
    t = t.trimmed();
    if (t.startsWith(QLatin1Char(','))) t = t.mid(1).trimmed();
  };
  if (t.startsWith(kFirst)) {
    r.firstDay = true;
    t = t.mid(kFirst.size());
    skipSeparator();  // "First Date" alone is written without a separator behind it
  }
  if (t.startsWith(kLast)) {
    r.lastDay = true;
    t = t.mid(kLast.size());
    skipSeparator();
  }
  if (!t.endsWith(kTail)) return std::nullopt;
  t.chop(kTail.size());
  r.threshold = t.trimmed();
  if (!r.threshold.isEmpty()) {
    bool ok = false;
    r.threshold.toLong(&ok);
    if (!ok) return std::nullopt;
  }
  return r;
}

ChartReadStatus ReadSimFile(const QString& path, SimFile& out) {
  out = SimFile();
  const auto read = ReadTextLines(path);
  if (!read) return ChartReadStatus::Missing;
  const QStringList& lines = *read;
  if (lines.size() < 2 || lines[0].trimmed() != QLatin1String("900")) return ChartReadStatus::Malformed;
  const QStringList plan = lines[1].split(QLatin1Char(','));
  if (plan.size() >= 4) {
    out.planStart = ParseChartDate(plan[0]);
    out.startWeight = ParseNumber(plan[1]);
    out.planEnd = ParseChartDate(plan[2]);
    out.targetWeight = ParseNumber(plan[3]);
  }
  for (qsizetype i = 2; i < lines.size(); ++i) {
    const QStringList f = lines[i].split(QLatin1Char(','));
    if (f.size() < 2) continue;
    SimPoint p;
    p.day = ParseChartDate(f[0]);
    if (!p.day.isValid()) continue;
    p.weight = ParseNumber(f[1]);
    if (p.weight) p.imperial = !f[1].contains(QLatin1Char('.'));
    if (f.size() > 2) p.plan = ParseNumber(f[2]);
    out.points.push_back(p);
  }
  return ChartReadStatus::Ok;
}

ChartReadStatus ReadBmiFile(const QString& path, std::optional<double>& bmi) {
  bmi.reset();
  const auto read = ReadTextLines(path);
  if (!read) return ChartReadStatus::Missing;
  const QStringList& lines = *read;
  if (lines.isEmpty() || lines[0].trimmed() != QLatin1String("700")) return ChartReadStatus::Malformed;
  if (lines.size() > 1) {
    const QString t = lines[1].trimmed();
    if (!t.isEmpty()) {
      bmi = ParseNumber(t);
      if (!bmi) return ChartReadStatus::Malformed;
    }
  }
  return ChartReadStatus::Ok;
}

namespace {

constexpr double kKmPerMile = 1.61;  // the system's own mile
constexpr double kKgPerPound = 0.45359237;

QString Converted(const QString& text, bool toImperial, bool weight) {
  const auto v = ParseNumber(text);
  if (!v) return text;
  if (weight) {
    return toImperial ? QString::number(std::round(*v / kKgPerPound), 'f', 0)
                      : QString::number(*v * kKgPerPound, 'f', 1);
  }
  return QString::number(toImperial ? *v / kKmPerMile : *v * kKmPerMile, 'f', 1);
}

}  // namespace

void ConvertToUnit(InterfaceFile& data, SimFile* sim, bool imperial) {
  for (auto& l : data.lines) {
    if (!l.imperial || *l.imperial == imperial) continue;
    if (l.fields.size() >= 14) l.fields[13] = Converted(l.fields[13], imperial, false);
    if (l.fields.size() >= 15) l.fields[14] = Converted(l.fields[14], imperial, true);
    // The five weekly weights of a four-week line.
    if (ChartFamily(data.type) == 2)
      for (int i = 31; i < 36 && i < l.fields.size(); ++i)
        l.fields[i] = Converted(l.fields[i], imperial, true);
    l.imperial = imperial;
  }
  if (!sim) return;
  for (auto& p : sim->points) {
    if (!p.weight || !p.imperial || *p.imperial == imperial) continue;
    p.weight = imperial ? *p.weight / kKgPerPound : *p.weight * kKgPerPound;
    p.imperial = imperial;
  }
}
