// Reading the chart files into plain structures. Nothing here draws; every reader
// tolerates anything a file may hold and reports "missing" or "malformed" instead of
// failing.
#pragma once

#include <QDate>
#include <QString>
#include <QStringList>
#include <array>
#include <cmath>
#include <optional>
#include <vector>

enum class ChartReadStatus { Ok, Missing, Malformed };

// What a data line stands for.
enum class LineState {
  Counted,      // has figures and counts for the analysis
  Excluded,     // has figures, left out of the analysis (field 1 "1")
  AllExcluded,  // a group whose days all were left out: no figures, but data existed
  NoData,       // no measurement
};

struct ChartLine {
  QStringList fields;  // field n is fields[n - 1]
  QDate first;
  QDate last;
  LineState state = LineState::NoData;
  std::optional<double> exercise;  // field 786 when present
  // The unit of the line's weight and distance, told by the weight's form (field 15):
  // kilograms always carry one decimal ("60.0"), pounds are whole ("132"). Empty when
  // the line has no weight.
  std::optional<bool> imperial;
  // Type 5: the day's measurement mode ("0" normal, "1" two-minute average).
  QString mode;

  QString field(int n) const { return n >= 1 && n <= fields.size() ? fields[n - 1] : QString(); }
  // The number in field n; nullopt when blank or not a number.
  std::optional<double> number(int n) const;
  double value(int n) const { return number(n).value_or(0.0); }
  bool hasFigures() const { return state == LineState::Counted || state == LineState::Excluded; }
};

// The day profile of a type-5 line.
struct DayProfile {
  std::array<double, 720> slot{};  // NaN = no measurement in the slot
  bool metsMode = false;           // values are METs (a METS recorder) instead of levels
  bool averaged = false;           // mode "1": each slot is the average of two minutes
  bool any = false;                // at least one slot has a value
  std::vector<int> eventMinutes;   // minutes after midnight
};

struct InterfaceFile {
  int type = 0;
  QDate start;
  QDate end;
  int moderateFrom = 4;
  int moderateTo = 7;
  std::array<double, 5> fixedMax{15000, 500, 100, 2000, 10000};
  std::optional<double> exerciseTarget;
  // Line 3.
  int validDays = 0;
  double meanSteps = 0, meanActivityCal = 0, meanTotalCal = 0, meanActivityTime = 0,
         meanDistance = 0;
  std::vector<ChartLine> lines;

  int linesWithFigures() const;
  int countedLines() const;
  // The unit the chart shows: that of the newest line with a weight (the English edition
  // writes every line in that unit anyway); empty when no line tells.
  std::optional<bool> imperialUnit() const;
};

// Family of a type: 0 daily (and 5), 1 weekly, 2 four-week.
int ChartFamily(int type);
// The chart a type belongs to: 100, 200, ... 900, or 5.
int ChartKindOf(int type);
bool IsKnownChartType(int type);

ChartReadStatus ReadInterfaceFile(const QString& path, InterfaceFile& out);
// The profile, events and mode of a type-5 line.
DayProfile ReadDayProfile(const ChartLine& line);

struct HeaderFile {
  QString firstName, middleName, lastName, nickName, group;
  QString comment;
  QString age, gender, height, weight;
  QDate start, end;
  QString validDays;
  QString recorderKind;
  QString targetStep, targetIntake, targetActMin, moderateFrom, moderateTo;
  QString exclusionText;
  QString institution;
  bool imperial = false;  // weight given in pounds
};
ChartReadStatus ReadHeaderFile(const QString& path, HeaderFile& out);

// The header's exclusion line, whose English wording the file format keeps:
// ["First Date"][", "]["Last Date, "]<threshold>" Step and under/day". The threshold
// may be empty (no step rule). nullopt when the text has another form.
struct ExclusionRule {
  bool firstDay = false;
  bool lastDay = false;
  QString threshold;  // as written; empty when the line names none
};
std::optional<ExclusionRule> ParseExclusionText(const QString& text);

struct SimPoint {
  QDate day;
  std::optional<double> weight;
  std::optional<bool> imperial;  // the weight's unit by its form, as on interface lines
  std::optional<double> plan;
};
struct SimFile {
  QDate planStart, planEnd;
  std::optional<double> startWeight, targetWeight;
  std::vector<SimPoint> points;
};
ChartReadStatus ReadSimFile(const QString& path, SimFile& out);

// Brings the weights and distances of lines (and .sim points) written in the other unit
// into the unit given: a Japanese installation writes each day in the unit of its own
// row, so one period may hold both.
void ConvertToUnit(InterfaceFile& data, SimFile* sim, bool imperial);

// bmi.txt: "700", then the BMI or an empty line. bmi stays empty for an empty line.
ChartReadStatus ReadBmiFile(const QString& path, std::optional<double>& bmi);

// "yyyymmdd" or "yyyy/mm/dd".
QDate ParseChartDate(const QString& text);
// Lines of a text file in the system encoding, CR LF or LF; nullopt when unreadable.
std::optional<QStringList> ReadTextLines(const QString& path);
