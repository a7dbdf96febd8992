// The weight plan: turns a goal (lose so much weight between two dates) into a daily
// calorie gap, splits it into food and activity, and states the activity as minutes of
// walking or of a chosen activity. Headless: the screens bind their controls to these
// functions and to the form logic of weight_form.h.
//
// Weights are computed in kilograms; a screen in pounds converts first. Every figure a
// person sees is text made with the format strings of vbformat.h (halves away from zero),
// and later figures are made from those texts, so the screen, the tool and the saved
// record always agree to the last digit.
#pragma once

#include <QDate>
#include <QString>
#include <vector>

#include "store/records.h"

class VtDatabase;

namespace plan {

// ---- body figures ----

// Basal metabolic rate in kcal per kg and day by gender ("0" male) and age in years.
// Age 11 and negative ages give 0, which makes the resting-rate walking figures 0.
double GetBasalRatePerKg(int gender, int age);
// weightKg x 10000 / heightCm^2 to one decimal, halves away from zero; 0 for height 0.
double CalcBMI(double weightKg, double heightCm);
// The BMI field: "##0.0", empty when the height is 0.
QString BmiText(double weightKg, double heightCm);

// Weight in kg for the plan's arithmetic: kg text as written, or whole pounds converted
// exactly (pound x 453.592 / 1000 in single precision, 0 stays 0).
double PlanWeightKg(const QString& weightText, bool pounds);
// Weight and height in kg and cm for the BMI: kg and cm as written, or whole pounds to
// whole kilograms and feet and inches to whole centimetres.
double BmiWeightKg(const QString& weightText, bool pounds);
double BmiHeightCm(const QString& cmText, const QString& feetText, const QString& inchText,
                   bool pounds);

// The healthy range of a height and where a weight stands in it, in the person's unit.
struct HealthyRange {
  double normalTop = 0;  // BMI 24.9
  double overLine = 0;   // BMI 25
  double lowLine = 0;    // BMI 18.5
  double standard = 0;   // BMI 22
  QString verdict;             // over (with the excess and unit), within or under
  QString standardWeight;      // standard as text ("##0" pounds, "##0.0" kg)
  QString standardDifference;  // weight - standard, "+" in front when above 0
};
// weight in the shown unit (whole pounds or kg); unitText is appended to an excess.
// Verdict texts come from the resource file's plan section.
HealthyRange CalcHealthyRange(double weight, double heightCm, bool pounds, const QString& unitText);

// ---- dates ----

// End of a plan of whole months from start: the day before the same day number that
// many months later, or the clamped month end when that day does not exist.
QDate AddMonthsMinusDay(const QDate& start, int months);
// Calendar days from start to end, both counted.
int PlanDays(const QDate& start, const QDate& end);

// ---- the resource tables ----

struct ListItem {
  QString text;
  QString value;
};
struct FoodItem {
  QString name;
  QString kcal;  // of one unit
  QString unit;
};
struct PlanTables {
  std::vector<ListItem> periods;     // value: months
  int periodDefault = 0;             // position chosen first
  std::vector<FoodItem> foods;
  std::vector<ListItem> portions;    // value: tenths of a unit
  std::vector<ListItem> reductions;  // value: kcal per day
  std::vector<ListItem> activities;  // value: METs in tenths
};
// The plan section of the resource file. Lists with a fixed end skip an index whose text
// is empty; the activity list ends at its first empty key.
PlanTables LoadPlanTables();

// ---- the plan ----

// The mean ACTIVITY of the newest up-to-10 counting days (newest row, not excluded),
// taken from the newest day backward; "###0". With none the divisor is 1.
QString AverageActivityText(const std::vector<ChartDayRecord>& days);
// The same read from the database: the user's days from the first measured day up to
// the plan start, with exclusions. "0" without days; empty after a database failure.
QString ReadAverageActivity(VtDatabase& db, const QString& userId, const QDate& planStart);
// loss x 7000 / days, "###0" (7000 kcal stand for 1 kg).
QString DailyGapText(double lossKg, int days);
// The food reduction: "0" without the diet option; a food's kcal x portion / 10 ("##0");
// or the chosen reduction value.
QString FoodKcalText(const QString& kcalOfUnit, const QString& portionTenths);

enum class ActivityMethod { Mets = 0, Rmr = 1 };

struct MinuteRow {
  QString average;
  QString more;
  QString target;        // the sum of the two shown figures above
  QString weeklyTarget;  // target x 7
};

struct PlanRequest {
  QDate start;
  QDate end;
  double lossKg = 0;
  double weightKg = 0;  // start weight, for the minutes
  int gender = 0;
  int age = 0;
  QString averageActivity;  // text of AverageActivity
  QString foodReduction = QStringLiteral("0");
  ActivityMethod method = ActivityMethod::Mets;
  // METs in tenths of the activity chosen for the average, more and target rows.
  int metsAverage = 0;
  int metsMore = 0;
  int metsTarget = 0;
  // Leaves out the test of the gap against the food reduction (English opening).
  bool skipFoodTest = false;
};

struct PlanResult {
  int days = 0;
  QString averageActivity;
  QString dailyGap;
  QString foodReduction;
  QString moreActivity;
  QString targetActivity;
  QString message;  // "DSIM-I-0001" when food alone reaches the goal, else ""
  bool stopped = false;
  MinuteRow walk;      // 2.8 METs walking, or resting-rate walking
  MinuteRow fastWalk;  // resting-rate brisk walking; empty under METs
  MinuteRow activity;  // the chosen activities (METs), or the brisk walking (rate)
};

// Minutes of an activity for C kcal: C x 60 / ((M / 10 - 1) x W), "##0"; "0" for W 0.
QString MetsMinutes(double kcal, int metsTenths, double weightKg);
// Minutes of ordinary walking: C x 60 / (W x 2.8), "###0"; "0" for W 0.
QString WalkMinutes(double kcal, double weightKg);
// Minutes by the resting rate: C x 60 x 24 / (W x factor x B), "###0"; "0" for W or B 0.
// factor 3.5 for walking, 6.0 for brisk walking.
QString RateMinutes(double kcal, double weightKg, double basalRate, double factor);

PlanResult ComputePlan(const PlanRequest& request);

// ---- checks ----

enum class PlanField { None, StartWeight, TargetWeight, Loss };
struct CheckResult {
  QString code;  // catalogue code, empty when the figures pass
  PlanField field = PlanField::None;
  bool ok() const { return code.isEmpty(); }
};
// The checks of a new computation, in order: numbers, target below start, loss and
// target above 0, start weight within 10..350 kg or 10..700 lb, loss at most 200.
CheckResult CheckPlanFigures(const QString& startWeight, const QString& targetWeight,
                             const QString& loss, bool pounds);
// Start weight within bounds in the shown unit (not checked below 0.1).
bool StartWeightInBounds(double weight, bool pounds);
inline constexpr double kMaxLoss = 200;

// ---- the saved plan ----

// Replaces the user's saved plan in one transaction. On failure nothing of the new plan
// stays, the old one is kept, and DSIM-C-0001 is shown.
bool SaveWeightPlan(VtDatabase& db, const WeightPlanRecord& record);
// The saved plan; false when it cannot be read or the user has none (no start date).
bool LoadWeightPlan(VtDatabase& db, const QString& userId, WeightPlanRecord& record);

}  // namespace plan
