// Writes realistic chart files (interface, header, .sim, bmi.txt) in the exact line
// format the chart data writer produces, for every chart type and period. Used by the
// tests, the benchmark and the render-all tool until real files are at hand.
#pragma once

#include <QDate>
#include <QFile>
#include <QImage>
#include <QProcess>
#include <QSet>
#include <QString>
#include <QStringList>
#include <cmath>
#include <cstdint>

namespace fixtures {

// Small deterministic generator so every run draws the same charts.
class Rng {
 public:
  explicit Rng(std::uint32_t seed) : s_(seed ? seed : 1) {}
  double next() {
    s_ ^= s_ << 13;
    s_ ^= s_ >> 17;
    s_ ^= s_ << 5;
    return (s_ % 100000) / 100000.0;
  }
  double range(double lo, double hi) { return lo + (hi - lo) * next(); }

 private:
  std::uint32_t s_;
};

inline QString Ymd(const QDate& d) { return d.toString(QStringLiteral("yyyyMMdd")); }
inline QString F0(double v) { return QString::number(std::round(v), 'f', 0); }
inline QString F1(double v) { return QString::number(std::round(v * 10) / 10, 'f', 1); }
inline QString F2(double v) { return QString::number(std::round(v * 100) / 100, 'f', 2); }

// Appends value to field n (1-based), adding commas as needed.
inline QString PutFieldAt(const QString& line, const QString& value, int n) {
  QStringList f = line.split(QLatin1Char(','));
  while (f.size() < n) f.append(QString());
  f[n - 1] += value;
  return f.join(QLatin1Char(','));
}

struct Day {
  QDate date;
  bool hasRow = true;
  bool excluded = false;
  double steps = 0, act = 0, total = 0, accTime = 0, dist = 0, weight = 0, exercise = 0;
  double levels[9] = {};  // 4-second counts
};

inline Day MakeDay(const QDate& date, Rng& r, double weight) {
  Day d;
  d.date = date;
  d.steps = std::round(r.range(3500, 12500));
  const double f = d.steps / 8000.0;
  const double minutes[9] = {110, 60, 40, 18 * f, 11 * f, 7 * f, 4 * f, 2.5 * f, 1.0 * f};
  for (int i = 0; i < 9; ++i) d.levels[i] = std::round(minutes[i] * r.range(0.7, 1.3) * 15);
  d.accTime = 0;
  for (int i = 3; i < 9; ++i) d.accTime += d.levels[i] * 4 / 60.0;
  d.accTime = std::round(d.accTime);
  d.act = std::round(d.steps * 0.034 + r.range(-20, 20));
  d.total = std::round(1650 + d.act + r.range(-40, 40));
  d.dist = std::round(d.steps * 0.0007 * 10) / 10;
  d.weight = weight;
  const double mets[6] = {3.6, 4.3, 5.2, 6.1, 7.1, 8.3};
  for (int i = 0; i < 6; ++i) d.exercise += std::round(d.levels[3 + i] * 4 / 60.0 / 60.0 * mets[i] * 10) / 10;
  return d;
}

struct Options {
  int type = 200;
  QDate end = QDate(2024, 6, 30);
  int days = 0;             // 0: the natural window of the family
  bool withData = true;     // false: every day without a row
  bool planWeights = false;
  std::uint32_t seed = 7;
  double exerciseTarget = 23;
};

inline QString Line2(const QDate& start, const QDate& end, double exerciseTarget) {
  QString l = Ymd(start) + QLatin1Char(',') + Ymd(end) + QStringLiteral(",4,7,15000,500,100,2000,10000");
  l += QString(23, QLatin1Char(','));
  l += F0(exerciseTarget);
  return l;
}

inline QString DailyLine(const Day& d, const QString& plan) {
  if (!d.hasRow) return QStringLiteral("2,") + Ymd(d.date) + QLatin1Char(',') + Ymd(d.date) + QString(24, QLatin1Char(',')) + plan;
  QStringList f = {d.excluded ? QStringLiteral("1") : QStringLiteral("0"),
                   Ymd(d.date), Ymd(d.date), QStringLiteral("8000"), QStringLiteral("1"), F0(d.steps),
                   QStringLiteral("30"), QStringLiteral("0"), F0(d.accTime), QStringLiteral("300"), QStringLiteral("0"),
                   F0(d.act), F0(d.total), F1(d.dist), F1(d.weight)};
  for (double lv : d.levels) f.append(F0(lv));
  f << QStringLiteral("4") << QStringLiteral("9") << plan;
  return f.join(QLatin1Char(','));
}

inline double PlanAt(const QDate& day, const QDate& s, const QDate& e, double ws, double wt) {
  if (day < s) return ws;
  if (day > e) return wt;
  return (wt * s.daysTo(day) + ws * day.daysTo(e)) / s.daysTo(e);
}

// The days of a window with a few no-data and excluded days mixed in.
inline std::vector<Day> MakeDays(const QDate& first, const QDate& last, const Options& o) {
  Rng r(o.seed);
  std::vector<Day> days;
  double w = 68.4;
  int i = 0;
  for (QDate d = first; d <= last; d = d.addDays(1), ++i) {
    w -= r.range(-0.05, 0.12);
    Day day = MakeDay(d, r, std::round(w * 10) / 10);
    if (!o.withData || i % 11 == 4) day.hasRow = false;
    if (day.hasRow && i % 9 == 6) {
      day.excluded = true;
      day.steps = 32;
      day.act = 1;
      day.accTime = day.exercise = day.dist = 0;
      for (double& lv : day.levels) lv = std::round(lv * 0.05);
    }
    days.push_back(day);
  }
  return days;
}

// The interface file text (CR LF lines).
inline QString InterfaceText(const Options& o) {
  const int family = o.type == 5 ? 0 : o.type % 100;
  int span = o.days;
  if (span == 0) span = o.type == 5 ? 1 : family == 0 ? 7 : family == 1 ? 35 : 168;
  const QDate end = o.end;
  const QDate start = end.addDays(-(span - 1));
  const std::vector<Day> days = MakeDays(start, end, o);
  const QDate ps = start.addDays(3), pe = end.addDays(60);
  const double ws = 68.5, wt = 63.0;
  auto plan = [&](const QDate& d) { return o.planWeights ? F1(PlanAt(d, ps, pe, ws, wt)) : QString(); };

  QStringList out;
  out << QString::number(o.type) << Line2(start, end, o.exerciseTarget);
  int n = 0;
  double s[5] = {};
  for (const auto& d : days)
    if (d.hasRow && !d.excluded) {
      ++n;
      s[0] += d.steps, s[1] += d.act, s[2] += d.total, s[3] += d.accTime, s[4] += d.dist;
    }
  if (n == 0)
    out << QStringLiteral("0,0,0,0,0,0");
  else
    out << QStringLiteral("%1,%2,%3,%4,%5,%6").arg(n).arg(F0(s[0] / n), F0(s[1] / n), F0(s[2] / n), F1(s[3] / n), F1(s[4] / n));

  if (family == 0) {
    for (const auto& d : days) {
      QString line = DailyLine(d, plan(d.date));
      if (d.hasRow && o.type == 5) {
        line += QString(27, QLatin1Char(','));
        const int events[10] = {712, 1230, 1815, 9999, 9999, 9999, 9999, 9999, 9999, 9999};
        for (int e : events) line += QLatin1Char(',') + (e == 9999 ? QString() : QStringLiteral("%1").arg(e, 4, 10, QLatin1Char('0')));
        Rng r(o.seed + 3);
        QStringList slots;
        for (int sl = 0; sl < 720; ++sl) {
          const double hour = sl / 30.0;
          QString v;
          if (hour < 6.5 || hour >= 23.2) v = QStringLiteral("-1");        // not worn at night
          else if (hour >= 13.0 && hour < 13.6) v = QStringLiteral("-1");  // taken off
          else {
            double lv = r.range(0, 3.2);
            if ((hour > 7.5 && hour < 8.2) || (hour > 17.8 && hour < 18.5)) lv = r.range(3.5, 7.9);
            if (hour > 12.2 && hour < 12.4) lv = r.range(7.5, 9.4);
            if (hour > 9 && hour < 12 && r.next() < 0.5) lv = 0;
            v = lv < 0.5 ? QStringLiteral("0") : lv < 1 ? QStringLiteral("0.5") : QString::number(static_cast<int>(lv));
          }
          slots << v;
        }
        line += QLatin1Char(',') + slots.join(QLatin1Char(',')) + QStringLiteral(",0");
      }
      if (d.hasRow) line = PutFieldAt(line, F1(d.exercise), 786);
      out << line;
    }
  } else {
    const int groupDays = family == 1 ? 7 : 28;
    for (size_t g = 0; g < days.size(); g += groupDays) {
      const size_t e = std::min(days.size(), g + groupDays);
      int cnt = 0, rows = 0;
      double sum[5] = {}, lv[9] = {}, ex = 0;
      const Day* lastCounted = nullptr;
      std::vector<double> weekEx(5, 0.0);
      std::vector<bool> weekHas(5, false);
      QString weekW[5], weekP[5];
      for (size_t i = g; i < e; ++i) {
        const Day& d = days[i];
        const int wk = static_cast<int>((i - g) / 7);
        if (d.hasRow) {
          ++rows;
          ex += d.exercise;
          weekEx[static_cast<size_t>(wk)] += d.exercise;
          weekHas[static_cast<size_t>(wk)] = true;
          if (!d.excluded) {
            ++cnt;
            sum[0] += d.steps, sum[1] += d.act, sum[2] += d.total, sum[3] += d.accTime, sum[4] += d.dist;
            for (int k = 0; k < 9; ++k) lv[k] += d.levels[k];
            lastCounted = &d;
            weekW[wk] = F1(d.weight);
          }
        }
        weekP[wk] = plan(d.date);
      }
      const QDate first = days[g].date, last = days[e - 1].date;
      QString line;
      if (cnt > 0) {
        QStringList f = {QStringLiteral("0"), Ymd(first), Ymd(last), QStringLiteral("8000"), QStringLiteral("1"), F0(sum[0] / cnt),
                         QStringLiteral("30"), QStringLiteral("0"), F1(sum[3] / cnt), QStringLiteral("300"), QStringLiteral("0"),
                         F0(sum[1] / cnt), F0(sum[2] / cnt), F1(sum[4] / cnt), F1(lastCounted->weight)};
        for (double v : lv) f << F2(v / cnt);
        f << QStringLiteral("4") << QStringLiteral("9");
        if (family == 1) {
          f << plan(last);
        } else {
          for (auto& p : weekP) f << p;
          for (auto& w : weekW) f << w;
          f << QString();
        }
        line = f.join(QLatin1Char(','));
      } else {
        line = (rows > 0 ? QStringLiteral("1,") : QStringLiteral("3,")) + Ymd(first) + QLatin1Char(',') + Ymd(last) +
               QString(25, QLatin1Char(',')) + plan(last);
      }
      if (rows > 0) {
        double figure = ex;
        if (family == 2) {
          int weeks = 0;
          double t = 0;
          for (int k = 0; k < 5; ++k)
            if (weekHas[static_cast<size_t>(k)]) ++weeks, t += weekEx[static_cast<size_t>(k)];
          figure = weeks ? t / weeks : 0;
        }
        line = PutFieldAt(line, F1(figure), 786);
      }
      out << line;
    }
  }
  return out.join(QStringLiteral("\r\n")) + QStringLiteral("\r\n");
}

inline QString SimText(const Options& o) {
  const int family = o.type % 100;
  const int span = family == 2 ? 168 : 35;
  const QDate start = o.end.addDays(-(span - 1));
  const QDate ps = start.addDays(3), pe = o.end.addDays(60);
  const double ws = 68.5, wt = 63.0;
  const std::vector<Day> days = MakeDays(start, o.end, o);
  QStringList out;
  out << QStringLiteral("900") << Ymd(ps) + QStringLiteral(",68.5,") + Ymd(pe) + QStringLiteral(",63.0");
  QString current;
  for (size_t i = 0; i + 1 < days.size(); ++i) {
    if (days[i].hasRow) current = F1(days[i].weight);
    const bool weekEnd = days[i].date.dayOfWeek() == o.end.dayOfWeek();
    if (weekEnd || i + 2 == days.size()) {
      out << Ymd(days[i].date) + QLatin1Char(',') + current + QLatin1Char(',') + F1(PlanAt(days[i].date, ps, pe, ws, wt));
      current.clear();
    }
  }
  return out.join(QStringLiteral("\r\n")) + QStringLiteral("\r\n");
}

inline QString HeaderText(bool japanese, const QDate& start, const QDate& end) {
  const QStringList person =
      japanese ? QStringList{QStringLiteral("山田 花子,,,はなこ,健康教室A"), QStringLiteral("毎日の散歩を続けています"),
                             QStringLiteral("45,女性,,158 cm,55.0 kg")}
               : QStringList{QStringLiteral("Margaret,Anne,Holloway,Maggie,Tuesday walkers"),
                             QStringLiteral("Walks to work on weekdays"), QStringLiteral("52,Female,,5' 4\",152 lbs.")};
  const QStringList l = person + QStringList{Ymd(start) + QLatin1Char(',') + Ymd(end) + QStringLiteral(",5, 1"),
                                             QStringLiteral("8000,1800,30,4,7"),
                                             QStringLiteral("\"First Date, Last Date, 50 Step and under/day\""),
                                             japanese ? QStringLiteral("さくら健康クリニック") : QStringLiteral("Riverside Health Centre")};
  return l.join(QStringLiteral("\r\n")) + QStringLiteral("\r\n");
}

inline bool WriteText(const QString& path, const QString& text) {
  QFile f(path);
  if (!f.open(QIODevice::WriteOnly | QIODevice::Truncate)) return false;
  return f.write(text.toUtf8()) >= 0;
}

// Writes the interface file (and its .sim file for the weight plan types).
inline bool WriteInterface(const QString& path, const Options& o) {
  if (!WriteText(path, InterfaceText(o))) return false;
  if (o.type / 100 == 8) return WriteText(path + QStringLiteral(".sim"), SimText(o));
  return true;
}

// Number of distinct colours in a sample of every step-th pixel: a blank picture has one.
inline int DistinctColours(const QImage& img, int step = 5) {
  QSet<QRgb> seen;
  for (int y = 0; y < img.height(); y += step)
    for (int x = 0; x < img.width(); x += step) seen.insert(img.pixel(x, y));
  return static_cast<int>(seen.size());
}

// The text of a PDF file as pdftotext lays it out; empty without pdftotext.
inline QString PdfText(const QString& pdf) {
  QProcess p;
  p.start(QStringLiteral("pdftotext"), {QStringLiteral("-layout"), pdf, QStringLiteral("-")});
  p.waitForFinished(30000);
  return QString::fromUtf8(p.readAllStandardOutput());
}

}  // namespace fixtures
