#include "charts/chart_files.h"

#include <QFile>

#include "charts/day_stats.h"
#include "charts/periods.h"

#include "frame/helpers.h"
#include "frame/vbformat.h"

namespace charts {

namespace {

const QString kComma = QStringLiteral(",");

QString F(double v, const char* fmt) { return Format(v, QString::fromLatin1(fmt)); }

QString Commas(int n) { return QString(n, QLatin1Char(',')); }

// The flags of the step and calorie targets.
QString StepFlag(const InterfaceContext& ctx) {
  return ctx.extra3 == QLatin1String("1") ? QStringLiteral("1") : QStringLiteral("0");
}
QString CalFlag(const InterfaceContext& ctx) {
  return ctx.extra3 == QLatin1String("1") ? QStringLiteral("0") : QStringLiteral("1");
}
QString TargetCalFor(const InterfaceContext& ctx, const QString& weightShown) {
  if (ctx.extra3 == QLatin1String("2")) return CalorieTargetFromWeight(weightShown);
  return ctx.targetCal;
}

// The weight of a group or week: the shown weight of its last counted day, one decimal
// in kilograms, whole pounds. The form follows the unit the weight is shown in: the
// row's own SELECT_UNIT, or on an English installation the one unit of the whole list
// (a kilogram row shown in pounds would otherwise read "149.0", a pound row shown in
// kilograms lose its decimal). The chart library tells the unit by this form.
QString GroupWeight(const InterfaceContext& ctx, const ChartDayRecord& last) {
  const bool metric = ctx.displayUnit ? *ctx.displayUnit == 0
                                      : last.SELECT_UNIT == QLatin1String("0");
  return F(Val(last.WeightShown), metric ? "#0.0" : "#0");
}

QString ExerciseField(double v) { return F(v, "#0.0"); }

// One week inside a four-week group.
struct WeekSlot {
  QDate first;
  QDate last;
  const ChartDayRecord* lastCounted = nullptr;
};

// Sums of a group while the day list is walked.
struct Group {
  int firstIndex = 0;
  int n = 0;
  double steps = 0, activity = 0, accTime = 0, energy = 0, distance = 0;
  std::array<double, 9> levels{};
  const ChartDayRecord* lastCounted = nullptr;
  bool anyRow = false;
  // Exercise: the running total of the current week, and for four-week groups the sum of
  // finished week totals and how many weeks contributed.
  double weekExercise = 0;
  bool weekContributed = false;
  double weekTotals = 0;
  int weeksCounted = 0;
  int weekFirstIndex = 0;
  const ChartDayRecord* weekLastCounted = nullptr;
  std::vector<WeekSlot> weeks;
};

void AddDay(Group& g, const ChartDayRecord& d) {
  if (!d.NewestOfDay) return;
  g.anyRow = true;
  g.weekExercise += Val(d.EXERCISE);
  g.weekContributed = true;
  if (!Counts(d)) return;
  ++g.n;
  g.steps += Val(d.STEP_COUNT);
  g.activity += Val(d.ACTIVITY);
  g.accTime += Val(d.ACCUMULATION_TIME);
  g.energy += Val(d.ENERGY_EXPENDITURE);
  g.distance += Val(d.DistanceShown);
  for (std::size_t i = 0; i < 9; ++i) g.levels[i] += Val(d.ACTIVITY_LEVEL[i + 1]);
  g.lastCounted = &d;
  g.weekLastCounted = &d;
}

void CloseWeek(Group& g, const std::vector<ChartDayRecord>& days, int lastIndex) {
  if (g.weekContributed) {
    g.weekTotals += g.weekExercise;
    ++g.weeksCounted;
  }
  WeekSlot w;
  w.first = YmdToDate(days[std::size_t(g.weekFirstIndex)].MEASUREMENT_DAY);
  w.last = YmdToDate(days[std::size_t(lastIndex)].MEASUREMENT_DAY);
  w.lastCounted = g.weekLastCounted;
  g.weeks.push_back(w);
  g.weekExercise = 0;
  g.weekContributed = false;
  g.weekLastCounted = nullptr;
  g.weekFirstIndex = lastIndex + 1;
}

QString GroupLine(const InterfaceContext& ctx, const Group& g, const QString& firstDay,
                  const QString& lastDay, bool fourWeek) {
  const QDate first = YmdToDate(firstDay);
  const QDate last = YmdToDate(lastDay);
  const QString plan = PlanWeightOfGroup(ctx.plan, first, last);
  QString line;
  if (g.n > 0) {
    const ChartDayRecord& lc = *g.lastCounted;
    const double n = g.n;
    QStringList f;
    f.reserve(37);
    f << QStringLiteral("0") << firstDay << lastDay << ctx.targetStep << StepFlag(ctx)
      << F(g.steps / n, "#0") << lc.TARGET_TIME << lc.TimeTargetSelected
      << F(g.accTime / n, "#0.0") << TargetCalFor(ctx, lc.WeightShown) << CalFlag(ctx)
      << F(g.activity / n, "#0") << F(g.energy / n, "#0") << F(g.distance / n, "#0.0")
      << GroupWeight(ctx, lc);
    for (double lv : g.levels) f << F(lv / n, "#0.00");
    f << lc.LOWER_BOUND << lc.UPPER_BOUND;
    if (!fourWeek) {
      f << plan;
      line = f.join(kComma);
    } else {
      // Five plan weights and five weights, one per week of the span, and a closing comma.
      std::array<QString, 5> plans;
      std::array<QString, 5> weights;
      for (std::size_t i = 0; i < g.weeks.size() && i < 5; ++i) {
        plans[i] = PlanWeightOfGroup(ctx.plan, g.weeks[i].first, g.weeks[i].last);
        if (g.weeks[i].lastCounted) weights[i] = GroupWeight(ctx, *g.weeks[i].lastCounted);
      }
      for (const QString& p : plans) f << p;
      for (const QString& w : weights) f << w;
      line = f.join(kComma) + kComma;
    }
  } else {
    // One comma more than the empty day line: the plan weight lands in field 28.
    const bool exists = ctx.existData && ctx.existData(firstDay, lastDay);
    line = (exists ? QStringLiteral("1") : QStringLiteral("3")) + kComma + firstDay + kComma +
           lastDay + Commas(25) + plan;
  }
  if (g.anyRow) {
    const double exercise =
        fourWeek ? (g.weeksCounted > 0 ? g.weekTotals / g.weeksCounted : 0.0) : g.weekTotals;
    line = PutFieldAt(line, ExerciseField(exercise), 786);
  }
  return line;
}

QStringList GroupLines(const InterfaceContext& ctx, const std::vector<ChartDayRecord>& days,
                       bool fourWeek) {
  QStringList lines;
  if (days.empty()) return lines;
  const WeekEndWeekdays wd = GetWeekEndWeekdays(ctx.anchor);
  const int count = int(days.size());
  Group g;
  for (int i = 0; i < count; ++i) {
    const ChartDayRecord& d = days[std::size_t(i)];
    AddDay(g, d);
    const QDate date = YmdToDate(d.MEASUREMENT_DAY);
    const bool listEnd = i == count - 1;
    const bool weekEnd = listEnd || (wd.last != 0 && date.dayOfWeek() == wd.last);
    bool groupEnd = listEnd;
    if (!fourWeek) {
      groupEnd = weekEnd;
    } else if (ctx.anchor.isValid() && FindFourWeekSpan(ctx.anchor, date).end == date) {
      groupEnd = true;
    }
    if (weekEnd || groupEnd) CloseWeek(g, days, i);
    if (!groupEnd) continue;
    lines << GroupLine(ctx, g, days[std::size_t(g.firstIndex)].MEASUREMENT_DAY,
                       d.MEASUREMENT_DAY, fourWeek);
    g = Group();
    g.firstIndex = i + 1;
    g.weekFirstIndex = i + 1;
  }
  return lines;
}

double Interpolate(const WeightPlan& p, const QDate& d) {
  const qint64 total = p.start.daysTo(p.end);
  if (total == 0) return Val(p.targetWeight);
  return (Val(p.targetWeight) * double(p.start.daysTo(d)) +
          Val(p.startWeight) * double(d.daysTo(p.end))) /
         double(total);
}

}  // namespace

std::optional<WeightPlan> PlanFromRecord(const WeightPlanRecord& record) {
  WeightPlan p;
  p.start = YmdToDate(record.StartDate.trimmed());
  p.end = YmdToDate(record.EndDate.trimmed());
  if (!p.start.isValid() || !p.end.isValid()) return std::nullopt;
  p.startWeight = record.StartWeight.trimmed();
  p.targetWeight = record.TargetWeight.trimmed();
  return p;
}

QString PlanWeightAt(const std::optional<WeightPlan>& plan, const QDate& day) {
  return PlanWeightOfGroup(plan, day, day);
}

QString PlanWeightOfGroup(const std::optional<WeightPlan>& plan, const QDate& first,
                          const QDate& last) {
  if (!plan || !last.isValid()) return QString();
  if (last < plan->start) return F(Val(plan->startWeight), "#0.0");
  if (first > plan->end || last > plan->end) return F(Val(plan->targetWeight), "#0.0");
  return F(Interpolate(*plan, last), "#0.0");
}

QString PutFieldAt(const QString& line, const QString& value, int fieldNumber) {
  if (fieldNumber < 1) return line;
  QString out = line;
  const int fields = int(out.count(QLatin1Char(','))) + 1;
  if (fields < fieldNumber) {
    out += Commas(fieldNumber - fields);
    return out + value;
  }
  // The end of field fieldNumber: the comma that opens the next field, or the line's end.
  int pos = -1;
  for (int i = 0; i < fieldNumber; ++i) {
    pos = int(out.indexOf(QLatin1Char(','), pos + 1));
    if (pos < 0) break;
  }
  if (pos < 0) return out + value;
  out.insert(pos, value);
  return out;
}

QStringList InterfaceHeadLines(const InterfaceContext& ctx,
                               const std::vector<ChartDayRecord>& days) {
  QStringList lines;
  lines << QString::number(ctx.chartType);

  QStringList l2;
  l2 << ctx.startDate << ctx.endDate << ctx.moderateFrom << ctx.moderateTo;
  for (const QString& v : ctx.fixedMax) l2 << v;
  lines << l2.join(kComma) + Commas(23) + ctx.exerciseTarget;

  int n = 0;
  double steps = 0, activity = 0, energy = 0, accTime = 0, distance = 0;
  for (const ChartDayRecord& d : days) {
    if (!d.NewestOfDay) continue;
    if (ctx.useExclusion && d.ExcludeFlag != QLatin1String("0")) continue;
    ++n;
    steps += Val(d.STEP_COUNT);
    activity += Val(d.ACTIVITY);
    energy += Val(d.ENERGY_EXPENDITURE);
    accTime += Val(d.ACCUMULATION_TIME);
    distance += Val(d.DistanceShown);
  }
  if (n == 0) {
    lines << QStringLiteral("0,0,0,0,0,0");
  } else {
    lines << QStringList{QString::number(n), F(steps / n, "0"), F(activity / n, "0"),
                         F(energy / n, "0"), F(accTime / n, "#0.0"), F(distance / n, "#0.0")}
                 .join(kComma);
  }
  return lines;
}

QString DailyLine(const InterfaceContext& ctx, const ChartDayRecord& d) {
  const QString plan = PlanWeightAt(ctx.plan, YmdToDate(d.MEASUREMENT_DAY));
  if (!d.NewestOfDay) {
    return ctx.statusText + kComma + d.MEASUREMENT_DAY + kComma + d.MEASUREMENT_DAY + Commas(24) +
           plan;
  }
  QStringList f;
  f.reserve(70);
  f << d.ExcludeFlag << d.MEASUREMENT_DAY << d.MEASUREMENT_DAY << ctx.targetStep << StepFlag(ctx)
    << d.STEP_COUNT << d.TARGET_TIME << d.TimeTargetSelected << d.ACCUMULATION_TIME
    << TargetCalFor(ctx, d.WeightShown) << CalFlag(ctx) << d.ACTIVITY << d.ENERGY_EXPENDITURE
    << d.DistanceShown << d.WeightShown;
  for (std::size_t i = 1; i <= 9; ++i) f << d.ACTIVITY_LEVEL[i];
  f << d.LOWER_BOUND << d.UPPER_BOUND << plan;
  if (ctx.chartType == 5) {
    for (int i = 0; i < 27; ++i) f << QString();
    for (const QString& e : d.EVENT) f << e;
    // A day without a block keeps its place with 720 commas; the mode then stands in
    // field 786, where the exercise is appended to it.
    if (CutAtNul(d.ACT_LEVEL_BLOCK).isEmpty())
      f << Commas(720);
    else
      f << d.ACT_LEVEL_BLOCK;
    f << d.MEASUREMENT_MODE;
  }
  return PutFieldAt(f.join(kComma), ExerciseField(Val(d.EXERCISE)), 786);
}

QStringList InterfaceDataLines(const InterfaceContext& ctx,
                               const std::vector<ChartDayRecord>& days) {
  switch (FamilyOf(ctx.chartType)) {
    case ChartFamily::Daily: {
      QStringList lines;
      lines.reserve(qsizetype(days.size()));
      for (const ChartDayRecord& d : days) lines << DailyLine(ctx, d);
      return lines;
    }
    case ChartFamily::Weekly: return GroupLines(ctx, days, false);
    case ChartFamily::FourWeek: return GroupLines(ctx, days, true);
    case ChartFamily::Unknown: break;
  }
  return {};
}

QStringList HeaderLines(const HeaderContext& ctx) {
  const UserRecord& u = ctx.user;
  QStringList lines;
  if (ctx.reservedUser) {
    lines << QStringLiteral(",,,,") << QString();
  } else {
    lines << QStringList{u.FIRST_NAME.trimmed(), u.MIDDLE_NAME.trimmed(), u.LAST_NAME.trimmed(),
                         u.NICK_NAME.trimmed(), ctx.groupName.trimmed()}
                 .join(kComma);
    lines << u.COMMENT.trimmed();
  }

  QString body;
  if (ctx.newestRow) {
    const DayRecord& r = *ctx.newestRow;
    // The gender carries its own comma and is followed by the separator, so the line
    // has an empty field between gender and height.
    body = r.AGE.trimmed() + kComma +
           (r.GENDAR.trimmed() == QLatin1String("0") ? ctx.captionMale : ctx.captionFemale) +
           kComma + kComma;
    if (r.SELECT_UNIT.trimmed() == QLatin1String("0"))
      body += r.HEIGHT_CM.trimmed() + QStringLiteral(" cm,") + r.WEIGHT_KG.trimmed() +
              QStringLiteral(" kg");
    else
      body += r.HEIGHT_FEET.trimmed() + QStringLiteral("' ") + r.HEIGHT_INCH.trimmed() +
              QStringLiteral("\",") + r.WEIGHT_PAUND.trimmed() + QStringLiteral(" lbs.");
  } else {
    body = u.AGE.trimmed() + kComma +
           (u.GENDAR.trimmed() == QLatin1String("0") ? QStringLiteral("Male,")
                                                     : QStringLiteral("Female,")) +
           kComma;
    if (u.HEIGHT_FEET.trimmed().isEmpty())
      body += u.HEIGHT_CM.trimmed() + QStringLiteral(" cm,") + u.WEIGHT_KG.trimmed() +
              QStringLiteral(" kg");
    else
      body += u.HEIGHT_FEET.trimmed() + QStringLiteral("' ") + u.HEIGHT_INCH.trimmed() +
              QStringLiteral("\",") + u.WEIGHT_PAUND.trimmed() + QStringLiteral(" lbs.");
  }
  lines << body;

  lines << ctx.startDate + kComma + ctx.endDate + kComma + QString::number(ctx.countedDays) +
               QStringLiteral(", ") + (ctx.newestRow ? ctx.newestRow->PEDOMERA.trimmed() : QString());

  lines << QStringList{ctx.targetStep, ctx.targetIntake, ctx.targetActMin, ctx.moderateFrom,
                       ctx.moderateTo}
               .join(kComma);

  // "First Date" alone has no separator behind it, and "and under" stays although a day
  // at the threshold counts: the library and the printed reports expect this wording.
  QString excl = QStringLiteral("\"");
  if (ctx.excludeFirst) excl += QStringLiteral("First Date");
  if (ctx.excludeLast) {
    if (ctx.excludeFirst) excl += QStringLiteral(", ");
    excl += QStringLiteral("Last Date, ");
  }
  excl += ctx.threshold + QStringLiteral(" Step and under/day\"");
  lines << excl;

  lines << ctx.institution;
  return lines;
}

QStringList SimLines(const std::optional<WeightPlan>& plan, const std::vector<ChartDayRecord>& days,
                     const QDate& anchor) {
  QStringList lines;
  lines << QStringLiteral("900");
  if (plan) {
    lines << DateToYmd(plan->start) + kComma + plan->startWeight + kComma + DateToYmd(plan->end) +
                 kComma + plan->targetWeight;
  } else {
    lines << Commas(3);
  }
  const int lastWeekday = GetWeekEndWeekdays(anchor).last;
  QString currentWeight;
  const int count = int(days.size());
  for (int i = 0; i + 1 < count; ++i) {
    const ChartDayRecord& d = days[std::size_t(i)];
    if (d.NewestOfDay) currentWeight = d.WeightShown;
    const QDate date = YmdToDate(d.MEASUREMENT_DAY);
    if (!(date.dayOfWeek() == lastWeekday || i == count - 2)) continue;
    QString planValue;
    if (plan) {
      if (!(date > plan->start))
        planValue = plan->startWeight;
      else if (!(date < plan->end))
        planValue = plan->targetWeight;
      else
        planValue = F(Interpolate(*plan, date), "#0.0");
    }
    lines << d.MEASUREMENT_DAY + kComma + currentWeight + kComma + planValue;
    currentWeight.clear();
  }
  return lines;
}

bool WriteTextLines(const QString& path, const QStringList& lines, bool append,
                    QString& errorText) {
  QFile f(path);
  const QIODevice::OpenMode mode =
      QIODevice::WriteOnly | (append ? QIODevice::Append : QIODevice::Truncate);
  if (!f.open(mode)) {
    errorText = f.errorString();
    return false;
  }
  QByteArray bytes;
  qsizetype size = 0;
  for (const QString& l : lines) size += l.size() + 2;
  bytes.reserve(size);
  for (const QString& l : lines) {
    bytes += l.toUtf8();
    bytes += "\r\n";
  }
  if (f.write(bytes) != bytes.size() || !f.flush()) {
    errorText = f.errorString();
    return false;
  }
  f.close();
  return true;
}

}  // namespace charts
