// Daily statistics: one ChartDayRecord for every calendar day of a period, which days
// count, and the figures of a day (moderate and vigorous minutes, exercise, the
// calorie target from weight). Nothing here draws or writes files.
#pragma once

#include <QDate>
#include <QString>
#include <vector>

#include "store/records.h"

class VtDatabase;

namespace charts {

// ---- chart types ----

enum class ChartFamily { Unknown, Daily, Weekly, FourWeek };

// Daily: 100, 200, ..., 900 (no 700) and 5; weekly: the same hundreds + 1; four-week: + 2.
ChartFamily FamilyOf(int chartType);
// The 24 types of the three families and 5.
bool IsKnownChartType(int chartType);
// True for the types whose figures leave excluded days out (2, 3, 4, 5 and every weekly
// and four-week type).
bool UsesExclusion(int chartType);

// ---- the rules of one run ----

// What the configuration says about exclusions (REPORT section).
struct ExclusionSettings {
  bool startingDay = true;  // EDFA_STARTING_DAY is anything but "0"
  bool endingDay = true;    // EDFA_ENDING_DAY is anything but "0"
  QString lowStepCount;     // EDFA_LOW_STEP_COUNT as written
};
ExclusionSettings ReadExclusionSettings();

// The rules a run applies to its day list.
struct DayListRules {
  QString firstMeasuredDay;  // "yyyymmdd" of the user's first day when it is excluded, else ""
  QString lastMeasuredDay;   // likewise for the last day
  QString threshold = QStringLiteral("-1");  // step threshold text; "-1" switches the rule off
};
// The rules for useExclusion and lowStepOnly given the settings and the user's measured
// range ("yyyymmdd" texts, "" when none).
DayListRules MakeDayListRules(const ExclusionSettings& settings, bool useExclusion,
                              bool lowStepOnly, const QString& firstMeasured,
                              const QString& lastMeasured);

// ---- figures of a day ----

// The default moderate band "4" to "7" for empty texts.
void ApplyModerateDefaults(QString& moderateFrom, QString& moderateTo);
// ModerateMinutes and VigorousMinutes from MODERATE and VIGOROUS: count x 4 / 60 through
// "#0.0", kept only when above 0. The count x 4 is a 16-bit product, as on the recorder's
// side; a count above 8191 overflows, which ends the computation: false, the row
// unchanged.
bool ComputeModerateMinutes(ChartDayRecord& day);
// The exercise of a stored row: its EXERCISE text when not empty, else the figure
// computed from the counts of levels 4 to 9.
QString ExerciseOf(const ChartDayRecord& day);
// Fix(weight x 5.0 + 0.5) of the shown weight, as text: the activity calorie target of a
// user whose EXTRA3 is "2".
QString CalorieTargetFromWeight(const QString& weightShown);

// ---- the day list ----

// One element per calendar day from start to end: day, weekday, ExcludeFlag "1", no row.
std::vector<ChartDayRecord> MakeEmptyDays(const QDate& start, const QDate& end);
// Lays the newest row of each day (rows as VTDB_GetChartData returns them) over the
// element of that day and applies the first/last day and threshold rules. Returns the
// number of days that received a row.
int FillDayList(std::vector<ChartDayRecord>& days, const std::vector<ChartDayRecord>& rows,
                const DayListRules& rules);
// True for a day that counts for statistics: a newest row and ExcludeFlag "0".
inline bool Counts(const ChartDayRecord& d) {
  return d.NewestOfDay && d.ExcludeFlag == QLatin1String("0");
}

// The single entry point: builds days for startDate..endDate ("yyyymmdd") of the user.
// Returns the number of newest rows found, or -1 after a database failure or a moderate
// count that overflows (each logged under "CalcStepActMin" at level "2"). A start after
// the end leaves days alone and gives 0.
int CalcStepActMin(VtDatabase& db, const QString& userId, const QString& startDate,
                   const QString& endDate, std::vector<ChartDayRecord>& days, bool useExclusion,
                   bool withTimeBlock, bool lowStepOnly);

// False as soon as a later day comes from an earlier reception, or from the same one with
// a lower sequence number: data of different receptions are interleaved.
bool CheckDataChronology(const std::vector<ChartDayRecord>& days);

// ---- units ----

// SELECT_UNIT of the user's last measured day as a number; -1 when it cannot be read.
int GetUnitFlag(VtDatabase& db, const QString& userId);
// Rewrites HeightShown, WeightShown and DistanceShown of every day with a row to one
// unit: imperial for a non-zero flag, metric for zero.
void ApplyDisplayUnit(std::vector<ChartDayRecord>& days, int unitFlag);
// The English installation's rule: every day shows the unit of the user's last measured
// day. False when that unit could not be read.
bool SetGraphDataUnit(VtDatabase& db, const QString& userId, std::vector<ChartDayRecord>& days);

}  // namespace charts
