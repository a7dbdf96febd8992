// The plan screen's logic on a test installation with stored days: the opening fill,
// the button row through its events, the checks on leaving a field, saving, undoing and
// the unit rules of the two editions.
#include <gtest/gtest.h>

#include <memory>

#include "frame/frame.h"
#include "plan/weight_form.h"
#include "testsupport/sample_user.h"

using namespace plan;

namespace {

const QString kUser = QStringLiteral("U000000001");
const QDate kToday(2024, 7, 10);

struct Buttons {
  bool graph, save, reCalc, cancel, options;
};
void ExpectButtons(const PlanButtons& b, Buttons want, const char* when) {
  EXPECT_EQ(std::tuple(b.btnGraph, b.btnSave, b.btnReCalc, b.btnCancel, b.actOptions),
            std::tuple(want.graph, want.save, want.reCalc, want.cancel, want.options))
      << when << " (graph, save, reCalc, cancel, options)";
}
// A saved plan of 11 July to 10 October 2024 (3 months, list position 2).
WeightPlanRecord SavedPlan(const char* start, const char* target, const char* loss, const char* pounds) {
  return {.UserId = kUser, .PeriodIndex = "2", .StartDate = "20240711", .EndDate = "20241010", .TargetWeight = target,
          .Loss = loss, .DietOption = "False", .FoodIndex = {}, .PortionIndex = {}, .ReductionIndex = {},
          .StartWeight = start, .StartHeight = {}, .StartHeightInch = {}, .PoundFlag = pounds};
}

const Buttons kChanged{false, false, true, true, false};
const Buttons kComputed{false, true, false, true, true};
const Buttons kSaved{true, false, false, false, true};

class WeightForm : public ::testing::Test {
 protected:
  // An installation of the edition with the sample user and 20 recorded days up to
  // 30 June 2024 (pounds when unitFlag is 1).
  void install(const char* lang, int unitFlag = 0) {
    db_.close();
    inst_.reset();  // one installation at a time: the old one puts the process back
    inst_ = std::make_unique<TestInstallation>(QString::fromLatin1(lang));
    ASSERT_TRUE(inst_->isValid());
    ASSERT_EQ(OpenDatabaseWithSampleUser(*inst_, db_, kUser), "");
    const RecorderImageOptions o{
        .english = QLatin1String(lang) == QLatin1String("en"), .days = 20, .unitFlag = unitFlag};
    ASSERT_EQ(StoreRecorderDays(db_, kUser, o), "");
  }
  std::unique_ptr<SimulationWeightLogic> open() {
    auto form = std::make_unique<SimulationWeightLogic>(db_, kUser, kToday);
    EXPECT_TRUE(form->open());
    return form;
  }
  QString shownText() const {
    return inst_->dialog().shown.empty() ? QString() : inst_->dialog().shown.back().text;
  }
  static QString catalogueText(const char* code) { return FindMessage(QLatin1String(code))->text1; }

  std::unique_ptr<TestInstallation> inst_;
  VtDatabase db_;
};

}  // namespace

TEST_F(WeightForm, OpeningStartsTomorrowFromTheNewestWeight) {
  install("ja");
  auto f = open();
  EXPECT_FALSE(f->poundMode);
  EXPECT_TRUE(f->hasDays);
  EXPECT_TRUE(f->userName.endsWith(GetIniCaption("SIMULATION", "CAPTION_SAMA")));
  // Start tomorrow; the default period (3 months): 11 July + 3 -> 10 October, 92 days.
  EXPECT_EQ(f->startDate, QDate(2024, 7, 11));
  EXPECT_EQ(f->endDate, QDate(2024, 10, 10));
  EXPECT_EQ(f->startWeight, f->userWeight);
  EXPECT_EQ(Val(f->targetWeight), Val(f->userWeight) - 1);
  EXPECT_EQ(f->loss, "1.0");
  // 1 kg over 92 days: 7000 / 92 = 76.09 -> 76.
  EXPECT_EQ(QString::number(f->result.days) + u' ' + f->result.dailyGap, "92 76");
  EXPECT_FALSE(f->bmi.isEmpty());
  ExpectButtons(f->buttons, kComputed, "opened without a saved plan");
}

TEST_F(WeightForm, ButtonRowFollowsItsEvents) {
  install("ja");
  auto f = std::make_unique<SimulationWeightLogic>(db_, kUser, kToday);
  // Before the opening fill is over, an input changes nothing.
  f->periodChanged(0);
  EXPECT_EQ(f->period, 0);
  ExpectButtons(f->buttons, {false, false, true, true, false}, "not loaded");
  ASSERT_TRUE(f->open());

  f->periodChanged(0);  // one month: 11 July -> 10 August
  EXPECT_EQ(f->endDate, QDate(2024, 8, 10));
  ExpectButtons(f->buttons, kChanged, "period changed");
  ASSERT_TRUE(f->reCalc());
  ExpectButtons(f->buttons, kComputed, "computed");
  ASSERT_TRUE(f->save());
  ExpectButtons(f->buttons, kSaved, "saved");
  // Any change after saving takes the graph away until the next save.
  ASSERT_TRUE(f->lossLeft("2"));
  EXPECT_EQ(f->loss, "2.0");
  ExpectButtons(f->buttons, kChanged, "loss changed after saving");
  // Leaving a field without changing it is no change.
  ASSERT_TRUE(f->reCalc());
  ASSERT_TRUE(f->lossLeft("2.0"));
  ExpectButtons(f->buttons, kComputed, "loss left unchanged");

  // Eating 700 kcal less covers a 2 kg month (14000 / 31 = 452): the plan stops.
  f->dietOptionChanged(true);
  f->foodMethodChosen(false);
  f->reductionChanged(static_cast<int>(f->tables().reductions.size()) - 1);
  EXPECT_FALSE(f->reCalc());
  EXPECT_EQ(f->lastMessage, "DSIM-I-0001");
  EXPECT_EQ(shownText().left(10), catalogueText("DSIM-I-0001").left(10));
  ExpectButtons(f->buttons, kChanged, "stopped");
  // A diet without its choice asks for one and computes nothing.
  f->foodMethodChosen(true);
  EXPECT_FALSE(f->reCalc());
  EXPECT_EQ(f->lastMessage, "FOODERROR");
  f->foodChanged(0, 1);
  EXPECT_FALSE(f->foodKcal.isEmpty());
}

TEST_F(WeightForm, LeavingAWeightFieldChecksAndReconciles) {
  install("ja");
  auto f = open();
  ASSERT_TRUE(f->startWeightLeft("80"));
  ASSERT_TRUE(f->targetWeightLeft("70"));
  EXPECT_EQ(f->targetWeight + u' ' + f->loss, "70.0 10.0");
  // A new start keeps the target and moves the loss.
  ASSERT_TRUE(f->startWeightLeft("82.46"));
  EXPECT_EQ(f->startWeight + u' ' + f->loss, "82.5 12.5");
  // A loss keeps the start and moves the target.
  ASSERT_TRUE(f->lossLeft("5"));
  EXPECT_EQ(f->targetWeight, "77.5");

  struct Refusal {
    bool (SimulationWeightLogic::*leave)(const QString&);
    const char* text;
    const char* code;
    PlanField field;
  };
  const Refusal refusals[] = {
      {&SimulationWeightLogic::lossLeft, "82.5", "DSIM-I-0003", PlanField::Loss},  // the whole start weight
      {&SimulationWeightLogic::lossLeft, "abc", "DSIM-I-0002", PlanField::Loss},
      {&SimulationWeightLogic::lossLeft, "200.1", "DSIM-I-0004", PlanField::Loss},
      {&SimulationWeightLogic::targetWeightLeft, "82.5", "DSIM-I-0003", PlanField::TargetWeight},
      {&SimulationWeightLogic::targetWeightLeft, "7O", "DSIM-I-0002", PlanField::TargetWeight},
      {&SimulationWeightLogic::startWeightLeft, "9.9", "DSIM-I-0004", PlanField::StartWeight},
  };
  for (const Refusal& r : refusals) {
    f->startWeight = "82.5";
    f->targetWeight = "77.5";
    f->loss = "5.0";
    EXPECT_FALSE((f.get()->*r.leave)(QString::fromLatin1(r.text))) << r.text;
    EXPECT_EQ(std::pair(f->lastMessage, f->failedField), std::pair(QString::fromLatin1(r.code), r.field))
        << r.text;
    EXPECT_EQ(f->targetWeight + u' ' + f->loss, "77.5 5.0") << r.text;
  }
  // Bounds are not checked while the start weight is below 0.1.
  EXPECT_TRUE(f->startWeightLeft("0"));
}

TEST_F(WeightForm, SavedPlanComesBackAndUndoReloadsIt) {
  install("ja");
  auto f = open();
  f->periodChanged(5);
  ASSERT_TRUE(f->lossLeft("3"));
  f->dietOptionChanged(true);
  f->foodChanged(9, 0);  // half a unit of the last food, well below the gap
  ASSERT_TRUE(f->reCalc());
  ASSERT_TRUE(f->save());
  const WeightPlanRecord saved = f->record();

  auto g = open();
  EXPECT_TRUE(g->restored);
  const WeightPlanRecord r = g->record();
  EXPECT_EQ(QStringList({r.StartDate, r.EndDate, r.Loss, r.FoodIndex, r.PortionIndex, r.ReductionIndex}).join(u'|'),
            saved.StartDate + u'|' + saved.EndDate + QStringLiteral("|3.0|9|0|"));
  EXPECT_EQ(g->result.foodReduction + u'|' + g->result.moreActivity, f->result.foodReduction + u'|' + f->result.moreActivity);
  ExpectButtons(g->buttons, kSaved, "opened with a saved plan");

  ASSERT_TRUE(g->lossLeft("6"));
  g->dietOptionChanged(false);
  g->cancel();
  EXPECT_EQ(std::pair(g->loss, g->diet), std::pair(QStringLiteral("3.0"), true));
  ExpectButtons(g->buttons, kSaved, "undone");
}

TEST_F(WeightForm, FailedSaveKeepsTheOldPlanAndSaysSo) {
  install("en");
  auto f = open();
  ASSERT_TRUE(f->save());
  ASSERT_TRUE(f->lossLeft("4"));
  ASSERT_TRUE(f->reCalc());
  // Another program holds the database: the write fails and nothing of it stays.
  VtDatabase other;
  other.open(inst_->dbFile(), kDefaultDbPassword);
  other.exec("BEGIN EXCLUSIVE");
  db_.exec("PRAGMA busy_timeout = 0");
  EXPECT_FALSE(f->save());
  EXPECT_TRUE(shownText().contains(catalogueText("DSIM-C-0001")));
  ExpectButtons(f->buttons, kComputed, "save failed");
  other.exec("ROLLBACK");
  WeightPlanRecord back;
  ASSERT_TRUE(LoadWeightPlan(db_, kUser, back));
  EXPECT_EQ(back.Loss, "1.0");
}

TEST_F(WeightForm, EditionsTreatAPlanSavedInTheOtherUnitDifferently) {
  const WeightPlanRecord inPounds = SavedPlan("150", "140", "10", "1");
  // English, kg screen: 150 lb x 0.4535920 = 68.04 -> 68.0; 140 lb -> 63.50 -> 63.5;
  // the loss follows: 4.5.
  install("en");
  ASSERT_TRUE(SetWeightPlan(db_, inPounds));
  auto f = open();
  EXPECT_FALSE(f->poundMode);
  EXPECT_EQ(QStringList({f->startWeight, f->targetWeight, f->loss}).join(u' '), "68.0 63.5 4.5");
  EXPECT_TRUE(f->userName.startsWith(GetIniCaption("SIMULATION", "CAPTION_USER_NAME") + " Hana"));
  // Japanese: the saved figures stand as they are.
  install("ja");
  ASSERT_TRUE(SetWeightPlan(db_, inPounds));
  f = open();
  EXPECT_EQ(f->startWeight + u' ' + f->loss, "150 10");
}

TEST_F(WeightForm, EnglishOpeningSkipsTheFoodTestJapaneseStops) {
  WeightPlanRecord bigDiet = SavedPlan("60.0", "59.0", "1.0", "0");
  bigDiet.DietOption = "True";
  bigDiet.ReductionIndex = "11";  // 700 kcal a day against a gap of 76
  for (const char* lang : {"en", "ja"}) {
    install(lang);
    ASSERT_TRUE(SetWeightPlan(db_, bigDiet));
    auto f = open();
    const bool ja = *lang == 'j';
    EXPECT_EQ(f->result.stopped, ja) << lang;
    EXPECT_EQ(f->lastMessage, ja ? "DSIM-I-0001" : "") << lang;
    EXPECT_EQ(inst_->dialog().shown.empty(), !ja) << lang;
  }
  ExpectButtons(open()->buttons, kChanged, "stopped at opening");
}
