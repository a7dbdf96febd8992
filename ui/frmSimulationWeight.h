// The weight plan screen: one user's goal, the plan's figures, the BMI picture, saving,
// and the way to the plan graph. Modal. All decisions live in plan::SimulationWeightLogic;
// this class only binds the controls to it and copies its state back after each event.
#pragma once

#include <QCheckBox>
#include <QComboBox>
#include <QDateEdit>
#include <QDialog>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <memory>

#include "chartmaker/chartmaker.h"
#include "plan/weight_form.h"

class VtDatabase;
class PictureSurface;

class frmSimulationWeight : public QDialog {
  Q_OBJECT

 public:
  // Opens the plan of userId. Use exec(): the screen is modal and marks ModalFormOpen
  // for as long as it exists.
  frmSimulationWeight(VtDatabase& db, const QString& userId, QWidget* parent = nullptr);
  ~frmSimulationWeight() override;

  // Opens the graph of the saved plan (what btnGraph does after refreshing the BMI).
  // modal false shows it without waiting (tests and screenshots); the graph is returned.
  QDialog* openGraph(bool modal = true);

  // Controls, named as on the screen.
  QLabel* lblUserName = nullptr;
  QLabel* lblSex = nullptr;
  QLabel* lblAge = nullptr;
  QLabel* lblHeight = nullptr;        // pound mode: feet and inches, read-only
  QLineEdit* txtStartHeight = nullptr;  // kg mode
  QLabel* lblWeight = nullptr;
  QLineEdit* txtStartWeight = nullptr;
  QLineEdit* txtTargetWeight = nullptr;
  QLineEdit* txtLoss = nullptr;
  QLabel* lblBMI = nullptr;
  QLabel* lblTargetBMI = nullptr;
  QLabel* lblVerdict = nullptr;
  QLabel* lblStandardWeight = nullptr;
  QLabel* lblStandardDifference = nullptr;
  PictureSurface* picBMI = nullptr;
  QDateEdit* dtStart = nullptr;
  QComboBox* cmbPeriod = nullptr;
  QDateEdit* dtEnd = nullptr;
  QLabel* lblDays = nullptr;
  QLabel* lblDailyGap = nullptr;
  QCheckBox* chkDiet = nullptr;
  QRadioButton* optFoodCal = nullptr;
  QRadioButton* optReduce = nullptr;
  QComboBox* cmbFood = nullptr;
  QComboBox* cmbAmount = nullptr;
  QLabel* lblFoodCal = nullptr;
  QComboBox* cmbReduce = nullptr;
  QRadioButton* optActKind0 = nullptr;  // METs
  QRadioButton* optActKind1 = nullptr;  // resting rate
  QLabel* lblWalk = nullptr;            // caption of the walking column
  QLabel* lblRapidWalk = nullptr;       // caption of the brisk walking column (Japanese)
  QLabel* lblKcal[3] = {};              // average, more, target kcal
  QLabel* lblWalkMin[4] = {};           // average, more, target, per week
  QComboBox* cmbActivity[3] = {};       // average, more, target (English)
  QLabel* lblActMin[4] = {};
  QPushButton* btnReCalc = nullptr;
  QPushButton* btnSave = nullptr;
  QPushButton* btnGraph = nullptr;
  QPushButton* btnCancel = nullptr;
  QPushButton* btnBack = nullptr;

 private:
  void build();
  void fillLists();
  void refresh();
  void drawBmi();
  void leaveField(QLineEdit* field, bool (plan::SimulationWeightLogic::*leave)(const QString&));
  QLineEdit* fieldOf(plan::PlanField f) const;

  VtDatabase& db_;
  QString userId_;
  plan::SimulationWeightLogic logic_;
  ChartMaker maker_;
  bool refreshing_ = false;
  bool leaving_ = false;
  bool bmiDrawn_ = false;
  QString drawnBmi_;  // the picture is made again only when the BMI changes
};
