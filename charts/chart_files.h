// The text files the chart library draws from: the interface file (lines 1 to 3, then
// one line per day, week or four-week span), the header file (the person and the period)
// and the .sim file of the weight plan charts. They are the wire format to the library:
// every field count, comma and number format here is part of the contract, including
// the irregularities the chart library expects (see the comments at each writer).
//
// This header holds the pure part: lines made from records. Writing them to disk and
// gathering the records from the database is in make_chart.h.
#pragma once

#include <QDate>
#include <QString>
#include <QStringList>
#include <array>
#include <functional>
#include <optional>
#include <vector>

#include "store/records.h"

namespace charts {

// A saved weight plan with both dates.
struct WeightPlan {
  QDate start;
  QDate end;
  QString startWeight;   // as written in the plan
  QString targetWeight;  // as written in the plan
};
// The plan of the record when it has a start and an end date.
std::optional<WeightPlan> PlanFromRecord(const WeightPlanRecord& record);
// The plan's weight for a day, "#0.0": the start weight before the start, the target
// weight after the end, else the straight line between them. "" without a plan.
QString PlanWeightAt(const std::optional<WeightPlan>& plan, const QDate& day);
// The same for a group, whose date is its last day; a group reaching beyond the plan's
// end gets the target weight even when it starts inside the plan.
QString PlanWeightOfGroup(const std::optional<WeightPlan>& plan, const QDate& first,
                          const QDate& last);

// Makes sure the line has fieldNumber fields (counting from 1) by adding commas, then
// appends value to the text of that field; text already in the field stays in front.
QString PutFieldAt(const QString& line, const QString& value, int fieldNumber);

// Everything the interface file needs besides the day list.
struct InterfaceContext {
  int chartType = 0;
  QString startDate;  // "yyyymmdd"
  QString endDate;    // "yyyymmdd"
  QString moderateFrom;
  QString moderateTo;
  std::array<QString, 5> fixedMax{QStringLiteral("15000"), QStringLiteral("500"),
                                  QStringLiteral("100"), QStringLiteral("2000"),
                                  QStringLiteral("10000")};
  QString exerciseTarget;
  bool useExclusion = false;
  // Field 1 of a day without a row: "3" no data in the period, "2" data in the period,
  // "4" the user has no measured range.
  QString statusText = QStringLiteral("3");
  QString targetStep;  // the user's, or the default when blank
  QString targetCal;   // the user's, or the default when blank
  QString extra3;      // "1" swaps the target flags, "2" derives the calorie target
  std::optional<WeightPlan> plan;
  // The one unit every day shows on an English installation (SetGraphDataUnit: 0 metric,
  // else imperial); empty where each row keeps the unit of its own SELECT_UNIT.
  std::optional<int> displayUnit;
  // The user's last measured day: weeks end on its weekday, spans on it +- 28 k days.
  QDate anchor;
  // Whether the user has rows between two "yyyymmdd" days (the status of an empty
  // group). Absent: never.
  std::function<bool(const QString& from, const QString& to)> existData;
};

// Line 1, 2 and 3.
QStringList InterfaceHeadLines(const InterfaceContext& ctx,
                               const std::vector<ChartDayRecord>& days);
// The data lines: one per day for a daily type, one per group otherwise.
QStringList InterfaceDataLines(const InterfaceContext& ctx,
                               const std::vector<ChartDayRecord>& days);
QString DailyLine(const InterfaceContext& ctx, const ChartDayRecord& day);

// Everything the header file needs.
struct HeaderContext {
  bool reservedUser = false;  // "U999999999": names, comment and targets are not shown
  UserRecord user;            // trimmed or not; trimmed when used
  QString groupName;
  std::optional<DayRecord> newestRow;  // the newest day of the list, read in full
  QString captionMale;                 // REPORT_HEADER CAPTION_MALE
  QString captionFemale;               // REPORT_HEADER CAPTION_FEMALE
  QString startDate;                   // "yyyymmdd"
  QString endDate;                     // "yyyymmdd"
  int countedDays = 0;                 // days with ExcludeFlag "0"
  QString targetStep;                  // the user's, or USER_DEFAULT's for the reserved user
  QString targetIntake;
  QString targetActMin;
  QString moderateFrom;
  QString moderateTo;
  bool excludeFirst = true;
  bool excludeLast = true;
  QString threshold;
  QString institution;
};
QStringList HeaderLines(const HeaderContext& ctx);

// The .sim file: "900", the plan, then a line at the end of every week and on the element
// before the last.
QStringList SimLines(const std::optional<WeightPlan>& plan, const std::vector<ChartDayRecord>& days,
                     const QDate& anchor);

// Writes lines each closed by CR LF in the system's text encoding; append or replace.
// False with errorText set when the file cannot be written completely.
bool WriteTextLines(const QString& path, const QStringList& lines, bool append,
                    QString& errorText);

}  // namespace charts
