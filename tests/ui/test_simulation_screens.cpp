// The plan screen and the plan graph as a person uses them: a goal typed in, computed,
// saved, and the graph of plan against real weights opened and moved. With
// VANTORA_SCREENSHOT_DIR set, each screen is also written there as a PNG to look at.
#include <QApplication>
#include <QDir>
#include <QLineEdit>
#include <gtest/gtest.h>

#include <memory>

#include "frame/frame.h"
#include "testsupport/sample_user.h"
#include "ui/frmSimulationGraph.h"
#include "ui/frmSimulationWeight.h"
#include "ui/picture_surface.h"

namespace {

const QString kUser = QStringLiteral("U000000001");

void Shot(QWidget& w, const QString& name) {
  const QString dir = qEnvironmentVariable("VANTORA_SCREENSHOT_DIR");
  if (dir.isEmpty()) return;
  QDir().mkpath(dir);
  w.grab().save(QDir(dir).filePath(name + QStringLiteral(".png")));
}

// Types a text into a field and leaves it, as the focus moving on would.
void Type(QLineEdit* field, const QString& text) {
  field->setText(text);
  Q_EMIT field->editingFinished();
}

class SimulationScreens : public ::testing::TestWithParam<const char*> {
 protected:
  void SetUp() override {
    inst_ = std::make_unique<TestInstallation>(english() ? QStringLiteral("en") : QStringLiteral("ja"));
    ASSERT_TRUE(inst_->isValid());
    ASSERT_EQ(OpenDatabaseWithSampleUser(*inst_, db_, kUser), "");
    const RecorderImageOptions o{.english = english(), .days = 60, .lastDay = QDate::currentDate().addDays(-1),
                                 .unitFlag = pounds() ? 1 : 0};
    ASSERT_EQ(StoreRecorderDays(db_, kUser, o), "");
  }
  void TearDown() override {
    db_.close();
    inst_.reset();
  }
  bool english() const { return QLatin1String(GetParam()).startsWith(QLatin1String("en")); }
  bool pounds() const { return QLatin1String(GetParam()).endsWith(QLatin1String("pounds")); }
  QString edition() const { return QString::fromLatin1(GetParam()); }

  std::unique_ptr<TestInstallation> inst_;
  VtDatabase db_;
};

}  // namespace

TEST_P(SimulationScreens, GoalComputedSavedAndGraphed) {
  ASSERT_FALSE(GetModalFormOpen());
  auto form = std::make_unique<frmSimulationWeight>(db_, kUser);
  EXPECT_TRUE(GetModalFormOpen());
  form->resize(1100, 680);
  form->show();
  QApplication::processEvents();
  // The method options are the Japanese way, the activity lists the English one.
  EXPECT_EQ(std::tuple(form->optActKind0->isVisible(), form->lblRapidWalk->isVisible(), form->cmbActivity[0]->isVisible()),
            std::tuple(!english(), !english(), english()));
  EXPECT_FALSE(form->lblDailyGap->text().isEmpty() || form->picBMI->pixmap().isNull());
  // Pounds: the height is one read-only label, weights are whole.
  EXPECT_EQ(form->txtStartHeight->isVisible(), !pounds());
  EXPECT_EQ(form->txtStartWeight->text().contains('.'), !pounds());

  // Lose 4 kg (or pounds): the target follows, then compute.
  Type(form->txtLoss, "4");
  EXPECT_EQ(form->txtLoss->text(), pounds() ? "4" : "4.0");
  EXPECT_EQ(Val(form->txtTargetWeight->text()), Val(form->txtStartWeight->text()) - 4);
  EXPECT_TRUE(form->btnReCalc->isEnabled() && !form->btnSave->isEnabled());
  form->btnReCalc->click();
  EXPECT_TRUE(form->btnSave->isEnabled() && !form->btnGraph->isEnabled());
  // The shown target is the sum of the shown parts.
  EXPECT_EQ(Val(form->lblWalkMin[2]->text()), Val(form->lblWalkMin[0]->text()) + Val(form->lblWalkMin[1]->text()));
  form->btnSave->click();
  EXPECT_TRUE(form->btnGraph->isEnabled());
  Shot(*form, QStringLiteral("plan-") + edition());

  // Japanese: the resting-rate option renames the columns and recomputes.
  if (!english()) {
    const QString metsWalk = form->lblWalkMin[1]->text();
    form->optActKind1->setChecked(true);
    EXPECT_EQ(form->lblWalk->text(), GetIniCaption("SIMULATION", "CAPTION_RMR_WALK"));
    EXPECT_NE(form->lblWalkMin[1]->text(), metsWalk);
    form->optActKind0->setChecked(true);
  }

  QDialog* shown = form->openGraph(false);
  ASSERT_NE(shown, nullptr);
  auto* graph = static_cast<frmSimulationGraph*>(shown);
  graph->resize(900, 640);
  QApplication::processEvents();
  EXPECT_FALSE(graph->picGraph->pixmap().isNull());
  EXPECT_EQ(graph->window().chartType(), 801);
  EXPECT_EQ(graph->txtWeightStart->text().split(' ').first(), form->txtStartWeight->text());
  EXPECT_EQ(graph->cmdPrev->isEnabled(), graph->window().previousEnabled());
  Shot(*graph, QStringLiteral("graph-month-") + edition());
  // Forward until next gives out: it does exactly at the high bound.
  for (int i = 0; i < 40 && graph->cmdNext->isEnabled(); ++i) graph->cmdNext->click();
  EXPECT_EQ(graph->window().windowEnd(), graph->window().highBound());
  graph->optDays1->setChecked(true);
  EXPECT_EQ(graph->window().chartType(), 802);
  EXPECT_FALSE(graph->picGraph->pixmap().isNull());
  Shot(*graph, QStringLiteral("graph-sixmonths-") + edition());
  graph->cmdBack->click();
  QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  EXPECT_TRUE(form->findChildren<frmSimulationGraph*>().isEmpty());
  EXPECT_TRUE(GetModalFormOpen());  // the plan screen is still open
  form.reset();
  EXPECT_FALSE(GetModalFormOpen());
}

INSTANTIATE_TEST_SUITE_P(Editions, SimulationScreens, ::testing::Values("ja", "en", "en-pounds"));
