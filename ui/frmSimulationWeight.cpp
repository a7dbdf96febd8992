#include "ui/frmSimulationWeight.h"

#include <QButtonGroup>
#include <QFontMetrics>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QSignalBlocker>
#include <QTimer>
#include <QVBoxLayout>

#include "frame/frame.h"
#include "ui/frmSimulationGraph.h"
#include "ui/ini_picture.h"
#include "ui/picture_surface.h"

namespace {

const QString kSection = QStringLiteral("SIMULATION");
QString Caption(const char* key) { return GetIniCaption(kSection, QLatin1String(key)); }

QColor FromVbColor(std::uint32_t c) { return QColor(int(c & 0xFF), int((c >> 8) & 0xFF), int((c >> 16) & 0xFF)); }

QLabel* Label(QWidget* parent, const QString& name, const QString& text = QString()) {
  auto* l = new QLabel(text, parent);
  if (!name.isEmpty()) l->setObjectName(name);
  return l;
}

// A figure: right-aligned, so columns of numbers line up.
QLabel* Figure(QWidget* parent, const QString& name) {
  QLabel* l = Label(parent, name);
  l->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
  l->setMinimumWidth(48);
  return l;
}

template <class W>
W* Named(W* w, const char* name) {
  w->setObjectName(QLatin1String(name));
  return w;
}

// Fills a group box's background from a colour of the resource file.
void Tint(QWidget* w, const char* key) {
  const std::uint32_t c = GetIniBackColor(kSection, QLatin1String(key));
  if (c == 0) return;
  QPalette p = w->palette();
  p.setColor(QPalette::Window, FromVbColor(c));
  w->setPalette(p);
  w->setAutoFillBackground(true);
}

// Cuts a text one character at a time from the right until it fits the width.
QString FitToWidth(const QString& text, const QFontMetrics& fm, int width) {
  QString t = text;
  while (!t.isEmpty() && fm.horizontalAdvance(t) > width) t.chop(1);
  return t;
}

}  // namespace

frmSimulationWeight::frmSimulationWeight(VtDatabase& db, const QString& userId, QWidget* parent)
    : QDialog(parent), db_(db), userId_(userId), logic_(db, userId) {
  WriteTrace(QStringLiteral("0"), QStringLiteral("frmSimulationWeight"), QStringLiteral("Form_Load Start"));
  SetModalFormOpen(true);
  setObjectName(QStringLiteral("frmSimulationWeight"));
  setModal(true);
  setWindowTitle(Caption("CAPTION_TITLE"));
  maker_.prepare(Ini_GetChartIniPath());
  build();
  logic_.open();
  fillLists();
  refresh();
}

frmSimulationWeight::~frmSimulationWeight() {
  WriteTrace(QStringLiteral("0"), QStringLiteral("frmSimulationWeight"), QStringLiteral("Form_Unload Start"));
  // A graph still open goes first, so that the mark is cleared last.
  qDeleteAll(findChildren<frmSimulationGraph*>());
  // The fields go after this object's members: a field losing its focus then must not
  // reach the logic any more.
  for (QObject* child : findChildren<QObject*>()) child->disconnect(this);
  SetModalFormOpen(false);
}

void frmSimulationWeight::build() {
  const QString font = GetCommonFontName();
  if (!font.isEmpty()) {
    QFont f = this->font();
    f.setFamily(font);
    setFont(f);
  }
  if (const std::uint32_t back = GetCommonFormBackColor(); back != 0) {
    QPalette p = palette();
    p.setColor(QPalette::Window, FromVbColor(back));
    setPalette(p);
  }
  auto* root = new QVBoxLayout(this);
  root->setSpacing(8);

  // ---- the person ----
  lblUserName = Label(this, QStringLiteral("lblUserName"));
  QFont big = lblUserName->font();
  big.setPointSizeF(big.pointSizeF() * 1.25);
  big.setBold(true);
  lblUserName->setFont(big);
  root->addWidget(lblUserName);

  auto* columns = new QHBoxLayout;
  root->addLayout(columns, 1);

  auto* body = new QGroupBox(this);
  body->setObjectName(QStringLiteral("fraBody"));
  auto* bg = new QGridLayout(body);
  int r = 0;
  bg->addWidget(Label(body, {}, Caption("CAPTION_LBLSEX")), r, 0);
  lblSex = Label(body, QStringLiteral("lblSex"));
  bg->addWidget(lblSex, r, 1);
  bg->addWidget(Label(body, {}, Caption("CAPTION_LBLAGE")), r, 2);
  lblAge = Label(body, QStringLiteral("lblAge"));
  bg->addWidget(lblAge, r++, 3);
  bg->addWidget(Label(body, {}, Caption("CAPTION_LBLHEIGHT")), r, 0);
  txtStartHeight = Named(new QLineEdit(body), "txtStartHeight");
  txtStartHeight->setMaximumWidth(70);
  txtStartHeight->setAlignment(Qt::AlignRight);
  lblHeight = Label(body, QStringLiteral("lblHeight"));
  auto* heightRow = new QHBoxLayout;
  heightRow->addWidget(txtStartHeight);
  heightRow->addWidget(lblHeight);
  heightRow->addStretch();
  bg->addLayout(heightRow, r++, 1, 1, 3);

  auto weightRow = [&](const char* caption, QLineEdit*& edit, const char* name) {
    bg->addWidget(Label(body, {}, Caption(caption)), r, 0);
    edit = Named(new QLineEdit(body), name);
    edit->setMaximumWidth(70);
    edit->setAlignment(Qt::AlignRight);
    auto* row = new QHBoxLayout;
    row->addWidget(edit);
    row->addWidget(Label(body, QLatin1String(name) + QStringLiteral("Unit")));
    row->addStretch();
    bg->addLayout(row, r++, 1, 1, 3);
  };
  weightRow("CAPTION_LBLSTARTWEIGHT", txtStartWeight, "txtStartWeight");
  weightRow("CAPTION_LBLTARGETWEIGHT", txtTargetWeight, "txtTargetWeight");
  weightRow("CAPTION_LBLLOSS", txtLoss, "txtLoss");
  lblWeight = Label(body, QStringLiteral("lblWeight"));
  lblWeight->hide();  // the user's weight is the start weight's first value

  bg->addWidget(Label(body, {}, Caption("CAPTION_LBLBMI")), r, 0);
  lblBMI = Label(body, QStringLiteral("lblBMI"));
  bg->addWidget(lblBMI, r, 1);
  bg->addWidget(Label(body, {}, Caption("CAPTION_LBLTARGETBMI")), r, 2);
  lblTargetBMI = Label(body, QStringLiteral("lblTargetBMI"));
  bg->addWidget(lblTargetBMI, r++, 3);
  picBMI = new PictureSurface(body);
  picBMI->setObjectName(QStringLiteral("picBMI"));
  picBMI->setFixedSize(360, 96);
  bg->addWidget(picBMI, r++, 0, 1, 4);
  lblVerdict = Label(body, QStringLiteral("lblVerdict"));
  lblVerdict->setWordWrap(true);
  bg->addWidget(lblVerdict, r++, 0, 1, 4);
  bg->addWidget(Label(body, {}, Caption("MESSAGE_YOUR_HEALTHYWEIGHT1")), r, 0, 1, 2);
  lblStandardWeight = Label(body, QStringLiteral("lblStandardWeight"));
  bg->addWidget(lblStandardWeight, r++, 2, 1, 2);
  bg->addWidget(Label(body, {}, Caption("MESSAGE_COMPAREDWITH_STWEIGH")), r, 0, 1, 2);
  lblStandardDifference = Label(body, QStringLiteral("lblStandardDifference"));
  bg->addWidget(lblStandardDifference, r++, 2, 1, 2);
  bg->setRowStretch(r, 1);
  columns->addWidget(body);

  // ---- the plan ----
  auto* planBox = new QGroupBox(this);
  planBox->setObjectName(QStringLiteral("fraPlan"));
  auto* pg = new QGridLayout(planBox);
  r = 0;
  const QString dateFormat = ScreenDateFormat();
  pg->addWidget(Label(planBox, {}, Caption("CAPTION_LBLSTARTDATE")), r, 0);
  dtStart = Named(new QDateEdit(planBox), "dtStart");
  dtStart->setCalendarPopup(true);
  dtStart->setDisplayFormat(dateFormat);
  pg->addWidget(dtStart, r, 1);
  pg->addWidget(Label(planBox, {}, Caption("CAPTION_LBLPERIOD")), r, 2);
  cmbPeriod = Named(new QComboBox(planBox), "cmbPeriod");
  pg->addWidget(cmbPeriod, r++, 3);
  pg->addWidget(Label(planBox, {}, Caption("CAPTION_LBLENDDATE")), r, 0);
  dtEnd = Named(new QDateEdit(planBox), "dtEnd");
  dtEnd->setCalendarPopup(true);
  dtEnd->setDisplayFormat(dateFormat);
  pg->addWidget(dtEnd, r, 1);
  lblDays = Label(planBox, QStringLiteral("lblDays"));
  pg->addWidget(lblDays, r++, 2, 1, 2);
  pg->addWidget(Label(planBox, {}, Caption("CAPTION_LBLDAILYGAP")), r, 0, 1, 2);
  lblDailyGap = Figure(planBox, QStringLiteral("lblDailyGap"));
  QFont strong = lblDailyGap->font();
  strong.setBold(true);
  lblDailyGap->setFont(strong);
  pg->addWidget(lblDailyGap, r++, 2);

  auto* diet = new QGroupBox(planBox);
  diet->setObjectName(QStringLiteral("fraDiet"));
  auto* dg = new QGridLayout(diet);
  chkDiet = Named(new QCheckBox(Caption("CAPTION_OPTDIET"), diet), "chkDiet");
  dg->addWidget(chkDiet, 0, 0, 1, 4);
  optFoodCal = Named(new QRadioButton(Caption("CAPTION_OPTFOODCAL"), diet), "optFoodCal");
  Tint(optFoodCal, "BKCOLOUR_OPTFOODCAL");
  dg->addWidget(optFoodCal, 1, 0);
  cmbFood = Named(new QComboBox(diet), "cmbFood");
  cmbFood->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
  cmbFood->setMinimumContentsLength(14);
  dg->addWidget(cmbFood, 1, 1);
  cmbAmount = Named(new QComboBox(diet), "cmbAmount");
  dg->addWidget(cmbAmount, 1, 2);
  lblFoodCal = Figure(diet, QStringLiteral("lblFoodCal"));
  dg->addWidget(lblFoodCal, 1, 3);
  optReduce = Named(new QRadioButton(Caption("CAPTION_OPTREDUCE"), diet), "optReduce");
  Tint(optReduce, "BKCOLOUR_OPTREDUCE");
  dg->addWidget(optReduce, 2, 0);
  cmbReduce = Named(new QComboBox(diet), "cmbReduce");
  dg->addWidget(cmbReduce, 2, 1);
  dg->addWidget(Label(diet, {}, Caption("CAPTION_KCAL")), 2, 2);
  auto* dietGroup = new QButtonGroup(diet);
  dietGroup->addButton(optFoodCal);
  dietGroup->addButton(optReduce);
  pg->addWidget(diet, r++, 0, 1, 4);

  auto* act = new QGroupBox(planBox);
  act->setObjectName(QStringLiteral("fraActivity"));
  Tint(act, "BKCOLOUR_OPTKINDACT");
  auto* ag = new QGridLayout(act);
  optActKind0 = Named(new QRadioButton(Caption("CAPTION_METS"), act), "optActKind0");
  optActKind1 = Named(new QRadioButton(Caption("CAPTION_RMR"), act), "optActKind1");
  auto* kindGroup = new QButtonGroup(act);
  kindGroup->addButton(optActKind0, 0);
  kindGroup->addButton(optActKind1, 1);
  auto* kindRow = new QHBoxLayout;
  kindRow->addWidget(optActKind0);
  kindRow->addWidget(optActKind1);
  kindRow->addStretch();
  ag->addLayout(kindRow, 0, 0, 1, 6);
  ag->addWidget(Label(act, {}, Caption("CAPTION_KCAL")), 1, 1, Qt::AlignRight);
  lblWalk = Label(act, QStringLiteral("lblWalk"));
  ag->addWidget(lblWalk, 1, 2, Qt::AlignRight);
  lblRapidWalk = Label(act, QStringLiteral("lblRapidWalk"), Caption("CAPTION_LBLRAPIDWALK"));
  ag->addWidget(lblRapidWalk, 1, 3, 1, 2, Qt::AlignRight);
  const char* rowCaptions[] = {"CAPTION_LBLAVERAGE", "CAPTION_LBLMORE", "CAPTION_LBLTARGET", "CAPTION_LBLPERWEEK"};
  const char* rowNames[] = {"Average", "More", "Target", "Week"};
  for (int i = 0; i < 4; ++i) {
    ag->addWidget(Label(act, {}, Caption(rowCaptions[i])), i + 2, 0);
    if (i < 3) {
      lblKcal[i] = Figure(act, QStringLiteral("lblKcal") + QLatin1String(rowNames[i]));
      ag->addWidget(lblKcal[i], i + 2, 1);
      cmbActivity[i] = new QComboBox(act);
      cmbActivity[i]->setObjectName(QStringLiteral("cmbAct") + QLatin1String(rowNames[i]));
      cmbActivity[i]->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
      cmbActivity[i]->setMinimumContentsLength(16);
      ag->addWidget(cmbActivity[i], i + 2, 3);
    }
    lblWalkMin[i] = Figure(act, QStringLiteral("lblWalk") + QLatin1String(rowNames[i]));
    ag->addWidget(lblWalkMin[i], i + 2, 2);
    lblActMin[i] = Figure(act, QStringLiteral("lblAct") + QLatin1String(rowNames[i]));
    ag->addWidget(lblActMin[i], i + 2, 4);
  }
  ag->setColumnStretch(5, 1);
  pg->addWidget(act, r++, 0, 1, 4);
  pg->setRowStretch(r, 1);
  columns->addWidget(planBox, 1);

  // ---- buttons ----
  auto* buttons = new QHBoxLayout;
  auto button = [&](const char* name, const char* caption, const char* image) {
    auto* b = Named(new QPushButton(Caption(caption), this), name);
    SetIniPicture(*b, kSection, QLatin1String(image));
    b->setIconSize(QSize(24, 24));
    b->setAutoDefault(false);
    buttons->addWidget(b);
    return b;
  };
  btnReCalc = button("btnReCalc", "CAPTION_BTNRECALC", "IMG_CALC");
  btnSave = button("btnSave", "CAPTION_BTNSAVE", "IMG_SAVE");
  btnGraph = button("btnGraph", "CAPTION_BTNGRAPH", "IMG_GRAPH");
  btnCancel = button("btnCancel", "CAPTION_BTNCANCEL", "IMG_CANCEL");
  buttons->addStretch();
  btnBack = button("btnBack", "CAPTION_BTNBACK", "IMG_BACK");
  root->addLayout(buttons);

  // ---- events ----
  connect(dtStart, &QDateEdit::dateChanged, this, [this](const QDate& d) {
    if (refreshing_) return;
    logic_.startDateChanged(d);
    refresh();
  });
  connect(dtEnd, &QDateEdit::dateChanged, this, [this](const QDate& d) {
    if (refreshing_) return;
    logic_.endDateChanged(d);
    refresh();
  });
  connect(cmbPeriod, &QComboBox::currentIndexChanged, this, [this](int i) {
    if (refreshing_) return;
    logic_.periodChanged(i);
    refresh();
  });
  connect(txtStartWeight, &QLineEdit::editingFinished, this,
          [this] { leaveField(txtStartWeight, &plan::SimulationWeightLogic::startWeightLeft); });
  connect(txtTargetWeight, &QLineEdit::editingFinished, this,
          [this] { leaveField(txtTargetWeight, &plan::SimulationWeightLogic::targetWeightLeft); });
  connect(txtLoss, &QLineEdit::editingFinished, this,
          [this] { leaveField(txtLoss, &plan::SimulationWeightLogic::lossLeft); });
  connect(txtStartHeight, &QLineEdit::editingFinished, this, [this] {
    if (refreshing_) return;
    logic_.startHeightLeft(txtStartHeight->text());
    refresh();
  });
  connect(chkDiet, &QCheckBox::toggled, this, [this](bool on) {
    if (refreshing_) return;
    logic_.dietOptionChanged(on);
    refresh();
  });
  connect(optFoodCal, &QRadioButton::toggled, this, [this](bool on) {
    if (refreshing_) return;
    logic_.foodMethodChosen(on);
    refresh();
  });
  auto foodChanged = [this] {
    if (refreshing_) return;
    logic_.foodChanged(cmbFood->currentIndex(), cmbAmount->currentIndex());
    refresh();
  };
  connect(cmbFood, &QComboBox::currentIndexChanged, this, foodChanged);
  connect(cmbAmount, &QComboBox::currentIndexChanged, this, foodChanged);
  connect(cmbReduce, &QComboBox::currentIndexChanged, this, [this](int i) {
    if (refreshing_) return;
    logic_.reductionChanged(i);
    refresh();
  });
  for (int i = 0; i < 3; ++i) {
    connect(cmbActivity[i], &QComboBox::currentIndexChanged, this, [this, i](int position) {
      if (refreshing_) return;
      logic_.activityChanged(i, position);
      refresh();
    });
  }
  connect(kindGroup, &QButtonGroup::idToggled, this, [this](int id, bool on) {
    if (refreshing_ || !on) return;
    logic_.activityKindChanged(id == 0 ? plan::ActivityMethod::Mets : plan::ActivityMethod::Rmr);
    refresh();
  });
  connect(btnReCalc, &QPushButton::clicked, this, [this] {
    WriteTrace(QStringLiteral("0"), QStringLiteral("frmSimulationWeight"), QStringLiteral("btnReCalc_Click Start"));
    if (!logic_.reCalc()) {
      if (QLineEdit* f = fieldOf(logic_.failedField)) {
        f->setFocus();
        f->selectAll();
      }
    }
    refresh();
  });
  connect(btnSave, &QPushButton::clicked, this, [this] {
    WriteTrace(QStringLiteral("0"), QStringLiteral("frmSimulationWeight"), QStringLiteral("btnSave_Click Start"));
    logic_.save();
    refresh();
  });
  connect(btnGraph, &QPushButton::clicked, this, [this] { openGraph(true); });
  connect(btnCancel, &QPushButton::clicked, this, [this] {
    logic_.cancel();
    fillLists();
    refresh();
  });
  connect(btnBack, &QPushButton::clicked, this, &QDialog::accept);
}

void frmSimulationWeight::fillLists() {
  const QSignalBlocker b1(cmbPeriod), b2(cmbFood), b3(cmbAmount), b4(cmbReduce);
  const plan::PlanTables& t = logic_.tables();
  cmbPeriod->clear();
  for (const auto& p : t.periods) cmbPeriod->addItem(p.text, p.value);
  cmbFood->clear();
  for (const auto& f : t.foods) cmbFood->addItem(f.name, f.kcal);
  cmbAmount->clear();
  for (const auto& p : t.portions) cmbAmount->addItem(p.text, p.value);
  cmbReduce->clear();
  for (const auto& d : t.reductions) cmbReduce->addItem(d.text, d.value);
  for (QComboBox* c : cmbActivity) {
    const QSignalBlocker b(c);
    c->clear();
    for (const auto& a : t.activities) c->addItem(a.text, a.value);
  }
}

QLineEdit* frmSimulationWeight::fieldOf(plan::PlanField f) const {
  switch (f) {
    case plan::PlanField::StartWeight: return txtStartWeight;
    case plan::PlanField::TargetWeight: return txtTargetWeight;
    case plan::PlanField::Loss: return txtLoss;
    case plan::PlanField::None: break;
  }
  return nullptr;
}

void frmSimulationWeight::leaveField(QLineEdit* field, bool (plan::SimulationWeightLogic::*leave)(const QString&)) {
  // A message box takes the focus, which ends the editing once more: one check at a time.
  if (refreshing_ || leaving_) return;
  leaving_ = true;
  const bool ok = (logic_.*leave)(field->text());
  leaving_ = false;
  if (!ok) {
    // The leave is refused: back into the field with its text selected.
    QTimer::singleShot(0, field, [field] {
      field->setFocus();
      field->selectAll();
    });
    return;
  }
  refresh();
}

void frmSimulationWeight::refresh() {
  refreshing_ = true;
  const plan::SimulationWeightLogic& l = logic_;
  const QString kg = l.weightUnit;
  const QString kcal = Caption("CAPTION_KCAL");
  const QString min = Caption("CAPTION_MIN");

  lblUserName->setText(FitToWidth(l.userName, lblUserName->fontMetrics(), qMax(200, width() - 40)));
  lblSex->setText(l.sexText);
  lblAge->setText(l.ageText + u' ' + Caption("CAPTION_LBLAGEUNIT"));
  txtStartHeight->setVisible(!l.poundMode);
  if (l.poundMode) {
    lblHeight->setText(l.startHeight + u' ' + Caption("CAPTION_FEET") + u' ' + l.startHeightInch + u' ' +
                       Caption("CAPTION_INCH"));
  } else {
    txtStartHeight->setText(l.startHeight);
    lblHeight->setText(Caption("CAPTION_CM"));
  }
  lblWeight->setText(l.userWeight);
  txtStartWeight->setText(l.startWeight);
  txtTargetWeight->setText(l.targetWeight);
  txtLoss->setText(l.loss);
  for (const char* unit : {"txtStartWeightUnit", "txtTargetWeightUnit", "txtLossUnit"})
    if (auto* u = findChild<QLabel*>(QLatin1String(unit))) u->setText(kg);
  lblBMI->setText(l.bmi);
  lblTargetBMI->setText(l.targetBmi);
  lblVerdict->setText(l.range.verdict);
  lblStandardWeight->setText(l.range.standardWeight + u' ' + kg);
  lblStandardDifference->setText(l.range.standardDifference + u' ' + kg);

  dtStart->setDate(l.startDate);
  dtEnd->setMinimumDate(l.startDate);
  dtEnd->setDate(l.endDate);
  cmbPeriod->setCurrentIndex(l.period);
  const plan::PlanResult& p = l.result;
  lblDays->setText(p.days > 0 ? QStringLiteral("(%1)").arg(p.days) : QString());
  lblDailyGap->setText(p.dailyGap.isEmpty() ? QString() : p.dailyGap + u' ' + kcal);

  chkDiet->setChecked(l.diet);
  optFoodCal->setEnabled(l.diet);
  optReduce->setEnabled(l.diet);
  optFoodCal->setChecked(l.diet && l.byFood);
  optReduce->setChecked(l.diet && !l.byFood);
  cmbFood->setEnabled(l.diet && l.byFood);
  cmbAmount->setEnabled(l.diet && l.byFood);
  cmbReduce->setEnabled(l.diet && !l.byFood);
  cmbFood->setCurrentIndex(l.diet ? l.food : -1);
  cmbAmount->setCurrentIndex(l.diet ? l.portion : -1);
  cmbReduce->setCurrentIndex(l.diet ? l.reduction : -1);
  lblFoodCal->setText(l.foodKcal.isEmpty() ? QString() : l.foodKcal + u' ' + kcal);

  // Japanese: the method options and the brisk walking caption; English: the lists.
  const bool mets = l.method == plan::ActivityMethod::Mets;
  optActKind0->setVisible(!l.englishMode);
  optActKind1->setVisible(!l.englishMode);
  optActKind0->setChecked(mets);
  optActKind1->setChecked(!mets);
  optActKind0->setEnabled(l.buttons.actOptions);
  optActKind1->setEnabled(l.buttons.actOptions);
  lblRapidWalk->setVisible(!l.englishMode);
  lblRapidWalk->setText(Caption(mets ? "CAPTION_LBLRAPIDWALK" : "CAPTION_RMR_SPEED_WALK"));
  lblWalk->setText(Caption(mets ? "CAPTION_WALK" : "CAPTION_RMR_WALK"));
  const QString kcalFigures[3] = {p.averageActivity, p.moreActivity, p.targetActivity};
  const QString walk[4] = {p.walk.average, p.walk.more, p.walk.target, p.walk.weeklyTarget};
  const QString act[4] = {p.activity.average, p.activity.more, p.activity.target, p.activity.weeklyTarget};
  auto withUnit = [](const QString& v, const QString& unit) { return v.isEmpty() ? QString() : v + u' ' + unit; };
  for (int i = 0; i < 4; ++i) {
    if (i < 3) {
      lblKcal[i]->setText(withUnit(kcalFigures[i], kcal));
      cmbActivity[i]->setVisible(l.englishMode);
      cmbActivity[i]->setCurrentIndex(l.activityRow[i]);
    }
    lblWalkMin[i]->setText(withUnit(walk[i], min));
    lblActMin[i]->setText(withUnit(act[i], min));
  }

  btnGraph->setEnabled(l.buttons.btnGraph);
  btnSave->setEnabled(l.buttons.btnSave);
  btnReCalc->setEnabled(l.buttons.btnReCalc);
  btnCancel->setEnabled(l.buttons.btnCancel);
  refreshing_ = false;
  drawBmi();
}

void frmSimulationWeight::drawBmi() {
  if (bmiDrawn_ && logic_.bmi == drawnBmi_) return;
  bmiDrawn_ = true;
  drawnBmi_ = logic_.bmi;
  const QString folder = Ini_GetTempDataPath();
  const QString bmiFile = plan::WriteBmiFile(folder, logic_.bmi);
  if (bmiFile.isEmpty()) return;
  CreateBMIGraphPersonal(maker_, *picBMI, bmiFile, JoinPath(folder, QStringLiteral("bmi.bmp")));
}

QDialog* frmSimulationWeight::openGraph(bool modal) {
  WriteTrace(QStringLiteral("0"), QStringLiteral("frmSimulationWeight"), QStringLiteral("btnGraph_Click Start"));
  // The start BMI follows the start weight as it stands now.
  logic_.startWeightLeft(logic_.startWeight);
  refresh();
  if (modal) {
    frmSimulationGraph graph(db_, userId_, logic_.figures(), maker_, this);
    graph.exec();
    return nullptr;
  }
  auto* graph = new frmSimulationGraph(db_, userId_, logic_.figures(), maker_, this);
  graph->setAttribute(Qt::WA_DeleteOnClose);
  graph->show();
  return graph;
}
