#include "ui/frmSimulationGraph.h"

#include <QButtonGroup>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QVBoxLayout>

#include "chartmaker/chartmaker.h"
#include "charts/charts.h"
#include "frame/frame.h"
#include "plan/plan.h"
#include "store/store.h"
#include "ui/ini_picture.h"
#include "ui/picture_surface.h"

namespace {

const QString kSection = QStringLiteral("SIMULATIONGRAPH");
QString Caption(const char* key) { return GetIniCaption(kSection, QLatin1String(key)); }

QString ScreenDate(const QDate& d) { return d.toString(ScreenDateFormat()); }

QLabel* Cell(QWidget* parent, const char* name) {
  auto* l = new QLabel(parent);
  l->setObjectName(QLatin1String(name));
  l->setAlignment(Qt::AlignCenter);
  l->setFrameShape(QFrame::StyledPanel);
  l->setMinimumWidth(110);
  return l;
}

void Trace(const QString& message) {
  WriteTrace(QStringLiteral("0"), QStringLiteral("frmSimulationGraph"), message);
}

}  // namespace

QString ScreenDateFormat() {
  QString f = GetCommonScreenDateFormat();
  if (f.isEmpty()) f = Ini_GetDateScreenYmd();
  f.remove(u'\\');
  return f.isEmpty() ? QStringLiteral("yyyy/MM/dd") : f;
}

frmSimulationGraph::frmSimulationGraph(VtDatabase& db, const QString& userId, const plan::PlanFigures& figures,
                                       ChartMaker& maker, QWidget* parent)
    : QDialog(parent),
      db_(db),
      userId_(userId),
      maker_(maker),
      now_(figures.now.isValid() ? figures.now : QDate::currentDate()),
      modalBefore_(GetModalFormOpen()) {
  Trace(QStringLiteral("Form_Load Start"));
  SetModalFormOpen(true);  // put back as it was on closing: the plan screen stays open beneath
  setObjectName(QStringLiteral("frmSimulationGraph"));
  setModal(true);
  setWindowTitle(Caption("CAPTION_TITLE"));

  WeightPlanRecord saved;
  QDate start = figures.planStart;
  QDate end = figures.planEnd;
  if (plan::LoadWeightPlan(db_, userId_, saved)) {
    if (const QDate s = YmdToDate(saved.StartDate); s.isValid()) start = s;
    if (const QDate e = YmdToDate(saved.EndDate); e.isValid()) end = e;
    plan::WriteSimSummary(Ini_GetTempDataPath(), saved);
  }
  QDate first;
  QDate last;
  charts::ReadUserRange(db_, userId_, first, last);
  window_ = std::make_unique<plan::GraphWindow>(start, end, last, now_);

  build(figures);
  window_->AdjustData();
  window_->GetDisplayRange(0);
  draw();
  updateNavigation();
}

frmSimulationGraph::~frmSimulationGraph() {
  Trace(QStringLiteral("Form_Unload Start"));
  maker_.forgetSurface(picGraph);
  SetModalFormOpen(modalBefore_);
}

void frmSimulationGraph::build(const plan::PlanFigures& f) {
  if (const QString font = GetCommonFontName(); !font.isEmpty()) {
    QFont ft = this->font();
    ft.setFamily(font);
    setFont(ft);
  }
  auto* root = new QVBoxLayout(this);

  auto* top = new QHBoxLayout;
  optDays0 = new QRadioButton(Caption("CAPTION_OPTDAYS_0"), this);
  optDays0->setObjectName(QStringLiteral("optDays0"));
  optDays1 = new QRadioButton(Caption("CAPTION_OPTDAYS_1"), this);
  optDays1->setObjectName(QStringLiteral("optDays1"));
  optDays0->setChecked(true);
  auto* views = new QButtonGroup(this);
  views->addButton(optDays0, 0);
  views->addButton(optDays1, 1);
  top->addWidget(optDays0);
  top->addWidget(optDays1);
  top->addSpacing(24);
  cmdPrev = new QPushButton(Caption("CAPTION_CMDPREV"), this);
  cmdPrev->setObjectName(QStringLiteral("cmdPrev"));
  cmdNext = new QPushButton(Caption("CAPTION_CMDNEXT"), this);
  cmdNext->setObjectName(QStringLiteral("cmdNext"));
  top->addWidget(cmdPrev);
  lblPeriod = new QLabel(this);
  lblPeriod->setObjectName(QStringLiteral("lblPeriod"));
  lblPeriod->setAlignment(Qt::AlignCenter);
  lblPeriod->setMinimumWidth(300);
  top->addWidget(lblPeriod, 1);
  top->addWidget(cmdNext);
  root->addLayout(top);

  picGraph = new PictureSurface(this);
  picGraph->setObjectName(QStringLiteral("picGraph"));
  picGraph->setFixedSize(820, 400);
  root->addWidget(picGraph, 0, Qt::AlignHCenter);

  auto* grid = new QGridLayout;
  const char* columns[] = {"CAPTION_LBLSTART", "CAPTION_LBLNOW", "CAPTION_LBLEND"};
  for (int c = 0; c < 3; ++c) {
    auto* head = new QLabel(Caption(columns[c]), this);
    head->setAlignment(Qt::AlignCenter);
    QFont bold = head->font();
    bold.setBold(true);
    head->setFont(bold);
    grid->addWidget(head, 0, c + 1);
  }
  const char* rows[] = {"CAPTION_LBLDATE", "CAPTION_LBLWEIGHT", "CAPTION_LBLBMI"};
  for (int r = 0; r < 3; ++r) grid->addWidget(new QLabel(Caption(rows[r]), this), r + 1, 0);
  QLabel** cells[3][3] = {{&txtDietStart, &txtNow, &txtDietEnd},
                          {&txtWeightStart, &txtWeighNow, &txtWeightEnd},
                          {&txtBMIStart, &txtBMINow, &txtBMIEnd}};
  const char* names[3][3] = {{"txtDietStart", "txtNow", "txtDietEnd"},
                             {"txtWeightStart", "txtWeighNow", "txtWeightEnd"},
                             {"txtBMIStart", "txtBMINow", "txtBMIEnd"}};
  for (int r = 0; r < 3; ++r)
    for (int c = 0; c < 3; ++c) {
      *cells[r][c] = Cell(this, names[r][c]);
      grid->addWidget(*cells[r][c], r + 1, c + 1);
    }
  lblHeight = new QLabel(f.heightText, this);
  lblHeight->setObjectName(QStringLiteral("lblHeight"));
  grid->addWidget(lblHeight, 3, 4);
  grid->setColumnStretch(5, 1);

  const QString unit = u' ' + f.weightUnit;
  txtDietStart->setText(ScreenDate(f.planStart));
  txtNow->setText(ScreenDate(now_));
  txtDietEnd->setText(ScreenDate(f.planEnd));
  txtWeightStart->setText(f.startWeight + unit);
  txtWeighNow->setText(f.nowWeight + unit);
  txtWeightEnd->setText(f.targetWeight + unit);
  txtBMIStart->setText(f.startBmi);
  txtBMINow->setText(f.nowBmi);
  txtBMIEnd->setText(f.targetBmi);

  auto* bottom = new QHBoxLayout;
  bottom->addLayout(grid, 1);
  cmdBack = new QPushButton(Caption("CAPTION_CMDBACK"), this);
  cmdBack->setObjectName(QStringLiteral("cmdBack"));
  SetIniPicture(*cmdBack, kSection, QStringLiteral("IMG_CHANGE_PLAN"));
  cmdBack->setIconSize(QSize(24, 24));
  cmdBack->setAutoDefault(false);
  bottom->addWidget(cmdBack, 0, Qt::AlignBottom);
  root->addLayout(bottom);

  connect(cmdPrev, &QPushButton::clicked, this, [this] { step(-1); });
  connect(cmdNext, &QPushButton::clicked, this, [this] { step(1); });
  connect(views, &QButtonGroup::idToggled, this, [this](int id, bool on) {
    if (on) selectView(id == 0 ? plan::GraphWindow::OneMonth : plan::GraphWindow::SixMonths);
  });
  connect(cmdBack, &QPushButton::clicked, this, &QDialog::accept);
}

void frmSimulationGraph::step(int direction) {
  needsData_ = true;
  window_->GetDisplayRange(direction);
  draw();
  updateNavigation();
}

void frmSimulationGraph::selectView(plan::GraphWindow::View view) {
  window_->setView(view);
  needsData_ = true;
  window_->GetDisplayRange(0);
  draw();
  updateNavigation();
}

void frmSimulationGraph::updateNavigation() {
  cmdPrev->setEnabled(window_->previousEnabled());
  cmdNext->setEnabled(window_->nextEnabled());
}

bool frmSimulationGraph::draw() {
  const QDate from = window_->windowStart();
  const QDate to = window_->windowEnd();
  lblPeriod->setText(Caption("CAPTION_FROM") + QStringLiteral("  ") + ScreenDate(from) + QStringLiteral("  ") +
                     Caption("CAPTION_TO") + QStringLiteral("  ") + ScreenDate(to));
  if (!from.isValid() || !to.isValid()) return false;
  const QString folder = Ini_GetTempDataPath();
  if (needsData_) {
    QString iface;
    QString header;
    if (!charts::MakeChartData(db_, window_->chartType(), DateToSlash(from), DateToSlash(to), iface, header,
                               userId_)) {
      return false;
    }
    interfaceFile_ = iface;
    needsData_ = false;
  }
  if (interfaceFile_.isEmpty()) return false;
  const int rc = CreateGraphBMPPersonal(maker_, *picGraph, interfaceFile_,
                                        JoinPath(folder, QStringLiteral("simulation.bmp")));
  if (rc != chartcode::kOk && rc != chartcode::kStepActivityNoData)
    WriteTrace(QStringLiteral("1"), QStringLiteral("frmSimulationGraph"), QStringLiteral("ReDraw: %1").arg(rc));
  return true;
}
