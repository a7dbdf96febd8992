// What the plan screen does, without the screen: the opening fill, what each input
// recomputes, the checks, the four states of the button row, saving and undoing. The
// screen (ui/frmSimulationWeight) copies these members into its controls after every
// event; tests drive the same events directly.
#pragma once

#include <QDate>
#include <QString>

#include "plan/plan.h"

class VtDatabase;

namespace plan {

// The button row and the activity options.
struct PlanButtons {
  bool btnGraph = false;
  bool btnSave = false;
  bool btnReCalc = true;
  bool btnCancel = true;
  bool actOptions = false;
};

// What the graph screen shows beside the chart, taken from the plan screen.
struct PlanFigures {
  QDate planStart;
  QDate planEnd;
  QDate now;             // the user's last measured day, or today without one
  QString startWeight;   // as shown on the plan screen
  QString targetWeight;
  QString nowWeight;     // the user's newest weight
  QString startBmi;
  QString targetBmi;
  QString nowBmi;
  QString weightUnit;    // "kg" or the pound caption
  QString heightText;    // cm, or feet and inches with their units
  bool pounds = false;
};

class SimulationWeightLogic {
 public:
  SimulationWeightLogic(VtDatabase& db, const QString& userId, const QDate& today = QDate::currentDate());

  // The opening fill, also what Undo does. False when the user cannot be read.
  bool open();

  // ---- inputs, as the screen sends them (nothing recomputes before Loaded) ----
  void startDateChanged(const QDate& date);
  void periodChanged(int position);
  void endDateChanged(const QDate& date);
  // Leaving a weight field with the text typed. False refuses the leave: a message was
  // shown and failedField names the field to select again.
  bool startWeightLeft(const QString& text);
  bool targetWeightLeft(const QString& text);
  bool lossLeft(const QString& text);
  void startHeightLeft(const QString& text);
  void dietOptionChanged(bool on);
  void foodMethodChosen(bool byFood);  // false: the reduction list
  void foodChanged(int food, int portion);
  void reductionChanged(int position);
  // row 0 average, 1 more, 2 target.
  void activityChanged(int row, int position);
  void activityKindChanged(ActivityMethod method);

  // ---- buttons ----
  bool reCalc();
  bool save();
  void cancel() { open(); }

  PlanFigures figures() const;
  WeightPlanRecord record() const;

  // ---- state ----
  const PlanTables& tables() const { return tables_; }
  bool englishMode = false;
  bool poundMode = false;
  bool loaded = false;
  bool restored = false;   // a saved plan was read at opening
  bool hasDays = false;    // the user has a measured day in the last month
  QDate displayDate;       // the user's last measured day, or today without one
  PlanField failedField = PlanField::None;
  // The catalogue code of the last message shown (a refused input, a stopped plan), or
  // "FOODERROR" for a diet without its choice; cleared by every event.
  QString lastMessage;

  // ---- what the screen shows ----
  QString userName;        // name with its caption, before any cut to the field's width
  QString sexText;
  QString ageText;
  int gender = 0;
  int age = 0;
  QString heightCm;        // kg mode: the user's height
  QString heightFeet;      // pound mode
  QString heightInch;
  QString userWeight;      // "0.0" kg or "0" pounds
  QString weightUnit;      // CAPTION_KG or CAPTION_LB
  QString startWeight;
  QString targetWeight;
  QString loss;
  QString startHeight;     // cm, or feet in pound mode
  QString startHeightInch;
  QDate startDate;
  QDate endDate;
  int period = 0;
  bool diet = false;
  bool byFood = true;
  int food = -1;
  int portion = -1;
  int reduction = -1;
  QString foodKcal;        // kcal of the chosen food and portion
  ActivityMethod method = ActivityMethod::Mets;
  int activityRow[3] = {0, 0, 0};
  QString bmi;
  QString targetBmi;
  HealthyRange range;
  PlanResult result;
  bool planShown = false;  // result holds a computed plan
  PlanButtons buttons;

 private:
  void inputChanged();
  void fillFromDays();
  void restorePlan();
  void computeBodyFigures();
  // Runs the plan; false when it stopped because food alone reaches the goal.
  bool runPlan(bool skipFoodTest);
  PlanRequest request(bool skipFoodTest) const;
  void refreshActivityRows();
  QString weightFormat() const;
  QString targetFormat() const;
  int monthsOf(int position) const;
  bool refuse(const QString& code, PlanField field);

  VtDatabase& db_;
  QString userId_;
  QDate today_;
  PlanTables tables_;
  UserRecord user_;
  QString averageActivity_;
};

// bmi.txt for the BMI picture: "700", then the BMI text (or an empty line). Replaced
// whole; the path written, empty on failure.
QString WriteBmiFile(const QString& folder, const QString& bmiText);
// sim.txt of the graph: start date and weight, end date and target weight.
QString WriteSimSummary(const QString& folder, const WeightPlanRecord& plan);
// Writes lines closed by CR LF to a temporary file and renames it over path.
bool ReplaceTextFile(const QString& path, const QStringList& lines);

}  // namespace plan
