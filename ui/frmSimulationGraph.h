// The plan graph: the saved plan's line beside the real weights over a window of dates,
// with the start, now and end figures, and previous and next by week or four-week
// span. The window arithmetic is plan::GraphWindow; the picture comes from the chart
// library through the chart files of types 801 and 802.
#pragma once

#include <QDialog>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <memory>

#include "plan/graph_window.h"
#include "plan/weight_form.h"

class ChartMaker;
class PictureSurface;
class VtDatabase;

// The date form of the screens' labels and pickers (the configured screen format without
// its escapes).
QString ScreenDateFormat();

class frmSimulationGraph : public QDialog {
  Q_OBJECT

 public:
  frmSimulationGraph(VtDatabase& db, const QString& userId, const plan::PlanFigures& figures, ChartMaker& maker,
                     QWidget* parent = nullptr);
  ~frmSimulationGraph() override;

  const plan::GraphWindow& window() const { return *window_; }
  // What previous, next and the view options do.
  void step(int direction);
  void selectView(plan::GraphWindow::View view);
  // Draws the window (new chart files when needed). False when the files could not be made.
  bool draw();

  QLabel* lblPeriod = nullptr;
  PictureSurface* picGraph = nullptr;
  QRadioButton* optDays0 = nullptr;  // one month
  QRadioButton* optDays1 = nullptr;  // six months
  QPushButton* cmdPrev = nullptr;
  QPushButton* cmdNext = nullptr;
  QPushButton* cmdBack = nullptr;
  QLabel* txtDietStart = nullptr;
  QLabel* txtNow = nullptr;
  QLabel* txtDietEnd = nullptr;
  QLabel* txtWeightStart = nullptr;
  QLabel* txtWeighNow = nullptr;
  QLabel* txtWeightEnd = nullptr;
  QLabel* txtBMIStart = nullptr;
  QLabel* txtBMINow = nullptr;
  QLabel* txtBMIEnd = nullptr;
  QLabel* lblHeight = nullptr;

 private:
  void build(const plan::PlanFigures& figures);
  void updateNavigation();

  VtDatabase& db_;
  QString userId_;
  ChartMaker& maker_;
  QDate now_;
  bool modalBefore_ = false;
  std::unique_ptr<plan::GraphWindow> window_;
  bool needsData_ = true;
  QString interfaceFile_;
};
