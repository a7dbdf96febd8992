// vantora-cli plan gives the figures the plan screen shows for the same goal, saves the
// plan on request and prints it back.
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <gtest/gtest.h>

#include "frame/frame.h"
#include "plan/weight_form.h"
#include "testsupport/sample_user.h"

namespace {

const QString kUser = QStringLiteral("U000000001");

struct CliRun {
  int exitCode = -1;
  QString out, err;
};

CliRun RunPlan(const TestInstallation& inst, const QStringList& args) {
  QProcess p;
  p.setWorkingDirectory(inst.binPath());
  p.start(QStringLiteral(VANTORA_CLI_PATH), QStringList{QStringLiteral("plan"), QStringLiteral("--user"), kUser} + args);
  if (!p.waitForFinished(60000)) return {};
  return {p.exitCode(), QString::fromUtf8(p.readAllStandardOutput()),
          QString::fromUtf8(p.readAllStandardError())};
}

}  // namespace

TEST(PlanCommand, SameFiguresAsTheScreenThenSavedAndShown) {
  if (!QFileInfo::exists(QStringLiteral(VANTORA_CLI_PATH))) GTEST_SKIP() << "vantora-cli not built";
  TestInstallation inst;
  ASSERT_TRUE(inst.isValid());
  VtDatabase db;
  ASSERT_EQ(OpenDatabaseWithSampleUser(inst, db, kUser), "");
  ASSERT_EQ(StoreRecorderDays(db, kUser, {.days = 30}), "");

  CliRun r = RunPlan(inst, {"--start", "20240701", "--months", "3", "--loss", "4", "--food", "9", "--portion", "1",
                            "--method", "rmr", "--json"});
  ASSERT_EQ(r.exitCode, 0) << r.err.toStdString();
  const QJsonObject j = QJsonDocument::fromJson(r.out.toUtf8()).object();
  ASSERT_FALSE(j.isEmpty()) << r.out.toStdString();

  // The screen, given the same goal.
  plan::SimulationWeightLogic screen(db, kUser, QDate(2024, 6, 30));
  ASSERT_TRUE(screen.open());
  screen.startDateChanged(QDate(2024, 7, 1));
  screen.periodChanged(2);  // 3 months
  ASSERT_TRUE(screen.lossLeft("4"));
  screen.dietOptionChanged(true);
  screen.foodChanged(9, 1);
  ASSERT_TRUE(screen.reCalc());
  screen.activityKindChanged(plan::ActivityMethod::Rmr);
  const plan::PlanResult& p = screen.result;

  // 1 July + 3 months ends on 30 September: 92 days; 4 kg: 28000 / 92 -> 304.
  EXPECT_EQ(QString::number(j["days"].toInt()) + u'|' + j["end"].toString() + u'|' + j["dailyGap"].toString(),
            "92|20240930|304");
  for (const auto& [key, shown] : {std::pair{"averageActivity", p.averageActivity}, {"foodReduction", p.foodReduction},
                                   {"moreActivity", p.moreActivity}, {"targetActivity", p.targetActivity},
                                   {"bmi", screen.bmi}, {"verdict", screen.range.verdict}})
    EXPECT_EQ(j[QLatin1String(key)].toString(), shown) << key;
  EXPECT_EQ(j["walk"].toObject()["target"].toString(), p.walk.target);
  EXPECT_EQ(j["fastWalk"].toObject()["weeklyTarget"].toString(), p.fastWalk.weeklyTarget);

  // Under METs the brisk-walk object stays empty; a goal that food alone reaches stops.
  r = RunPlan(inst, {"--start", "20240701", "--end", "20240930", "--loss", "1", "--reduction", "11", "--json"});
  ASSERT_EQ(r.exitCode, 0) << r.err.toStdString();
  const QJsonObject stopped = QJsonDocument::fromJson(r.out.toUtf8()).object();
  EXPECT_EQ(stopped["message"].toString() + u'|' + stopped["fastWalk"].toObject()["average"].toString(),
            "DSIM-I-0001|");

  // A refused figure fails with its code; bad usage is 2.
  r = RunPlan(inst, {"--start", "20240701", "--months", "3", "--loss", "201", "--json"});
  EXPECT_EQ(r.exitCode, 1);
  EXPECT_EQ(QJsonDocument::fromJson(r.out.toUtf8()).object()["message"].toString(), "DSIM-I-0004");
  EXPECT_EQ(RunPlan(inst, {"--start", "20240701", "--loss", "4"}).exitCode, 2);

  r = RunPlan(inst, {"--start", "20240701", "--months", "3", "--target-weight", "50", "--save"});
  ASSERT_EQ(r.exitCode, 0) << r.err.toStdString();
  r = RunPlan(inst, {"--show"});
  ASSERT_EQ(r.exitCode, 0) << r.err.toStdString();
  for (const char* line : {"IT007002 20240701\n", "IT007003 20240930\n", "IT007004 50.0\n", "IT007014 0\n"})
    EXPECT_TRUE(r.out.contains(QLatin1String(line))) << line << r.out.toStdString();
}
