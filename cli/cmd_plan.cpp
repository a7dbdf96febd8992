// plan: the weight plan of a stored user, computed by the same form logic the plan
// screen runs, so the figures are the texts the screen shows.
#include <QJsonDocument>
#include <QJsonObject>
#include <QTextStream>

#include "cli/commands.h"
#include "frame/frame.h"
#include "plan/weight_form.h"
#include "store/store.h"

namespace {

const char* const kUsage =
    "usage: plan --user ID --start YYYYMMDD (--months N | --end YYYYMMDD) (--target-weight W | --loss L)\n"
    "            [--start-weight W] [--food POS --portion POS | --reduction POS] [--method mets|rmr]\n"
    "            [--save] [--json]\n"
    "       plan --user ID --show\n";

QJsonObject RowJson(const plan::MinuteRow& r) {
  return {{"average", r.average}, {"more", r.more}, {"target", r.target}, {"weeklyTarget", r.weeklyTarget}};
}

int ShowSaved(VtDatabase& db, const QString& user) {
  WeightPlanRecord r;
  if (!plan::LoadWeightPlan(db, user, r)) {
    QTextStream(stderr) << "no saved weight plan for " << user << "\n";
    return 1;
  }
  const std::pair<const char*, const QString*> items[] = {
      {"IT007001", &r.PeriodIndex},  {"IT007002", &r.StartDate},   {"IT007003", &r.EndDate},
      {"IT007004", &r.TargetWeight}, {"IT007005", &r.DietOption},  {"IT007006", &r.FoodIndex},
      {"IT007007", &r.PortionIndex}, {"IT007008", &r.ReductionIndex}, {"IT007009", &r.StartWeight},
      {"IT007010", &r.TargetWeight}, {"IT007011", &r.StartHeight}, {"IT007012", &r.StartHeightInch},
      {"IT007013", &r.Loss},         {"IT007014", &r.PoundFlag},
  };
  QTextStream out(stdout);
  for (const auto& [code, value] : items) out << code << ' ' << *value << "\n";
  return 0;
}

}  // namespace

int cmd_plan(const QStringList& args) {
  QTextStream err(stderr);
  static const QStringList kValued{"--user",  "--start", "--months",    "--end",     "--target-weight", "--loss",
                                   "--start-weight", "--food", "--portion", "--reduction", "--method"};
  static const QStringList kFlags{"--save", "--json", "--show"};
  QHash<QString, QString> opt;
  for (int i = 0; i < args.size(); ++i) {
    const QString& a = args[i];
    if (kFlags.contains(a)) {
      opt.insert(a, QStringLiteral("1"));
    } else if (kValued.contains(a) && i + 1 < args.size()) {
      opt.insert(a, args[++i]);
    } else {
      err << "unknown or incomplete argument: " << a << "\n" << kUsage;
      return 2;
    }
  }
  const QString user = opt.value("--user");
  const bool show = opt.contains("--show");
  const QDate start = YmdToDate(opt.value("--start"));
  const QDate end = YmdToDate(opt.value("--end"));
  bool monthsOk = false;
  const int months = opt.value("--months").toInt(&monthsOk);
  const QString method = opt.value("--method", QStringLiteral("mets"));
  const bool food = opt.contains("--food");
  const bool usage =
      user.isEmpty() ||
      (!show && (!start.isValid() || (opt.contains("--months") == opt.contains("--end")) ||
                 (opt.contains("--months") && (!monthsOk || months < 1)) ||
                 (opt.contains("--end") && (!end.isValid() || end < start)) ||
                 opt.contains("--target-weight") == opt.contains("--loss") || food != opt.contains("--portion") ||
                 (food && opt.contains("--reduction")) || (method != "mets" && method != "rmr")));
  if (usage) {
    err << kUsage;
    return 2;
  }

  VtDatabase db;
  if (const int rc = OpenInstallation(db, err); rc != 0) return rc;
  if (show) return ShowSaved(db, user);

  // Messages are reported by code in the output, not as dialogs.
  RecordingDialog quiet;
  ScopedDialogInterface guard(&quiet);
  plan::SimulationWeightLogic form(db, user);
  if (!form.open()) {
    err << "no such user: " << user << "\n";
    return 1;
  }
  // Start from the user's figures, not from a plan saved earlier.
  form.diet = false;
  form.method = method == "rmr" ? plan::ActivityMethod::Rmr : plan::ActivityMethod::Mets;
  form.activityRow[0] = form.activityRow[1] = form.activityRow[2] = 0;
  form.startDate = start;
  const auto& periods = form.tables().periods;
  form.endDate = opt.contains("--end") ? end : plan::AddMonthsMinusDay(start, months);
  // The period list position when the months are one of its lengths, else none.
  form.period = -1;
  for (size_t i = 0; i < periods.size() && opt.contains("--months"); ++i)
    if (Val(periods[i].value) == months) form.period = static_cast<int>(i);

  bool ok = form.startWeightLeft(opt.value("--start-weight", form.userWeight));
  if (ok) ok = opt.contains("--loss") ? form.lossLeft(opt.value("--loss")) : form.targetWeightLeft(opt.value("--target-weight"));
  if (ok && (food || opt.contains("--reduction"))) {
    form.dietOptionChanged(true);
    form.foodMethodChosen(food);
    if (food) form.foodChanged(opt.value("--food").toInt(), opt.value("--portion").toInt());
    else form.reductionChanged(opt.value("--reduction").toInt());
  }
  if (ok) ok = form.reCalc() || form.result.stopped;
  const bool saved = ok && !form.result.stopped && opt.contains("--save") && form.save();

  const plan::PlanResult& r = form.result;
  const bool figures = ok && form.planShown;
  QJsonObject o{
      {"days", figures ? r.days : 0},
      {"end", DateToYmd(form.endDate)},
      {"averageActivity", figures ? r.averageActivity : QString()},
      {"dailyGap", figures ? r.dailyGap : QString()},
      {"foodReduction", figures ? r.foodReduction : QString()},
      {"moreActivity", figures ? r.moreActivity : QString()},
      {"targetActivity", figures ? r.targetActivity : QString()},
      {"message", form.lastMessage},
      {"walk", RowJson(figures ? r.walk : plan::MinuteRow{})},
      {"fastWalk", RowJson(figures ? r.fastWalk : plan::MinuteRow{})},
      {"bmi", form.bmi},
      {"bmiTarget", form.targetBmi},
      {"verdict", form.range.verdict},
      {"standardDifference", form.range.standardDifference},
  };
  QTextStream out(stdout);
  if (opt.contains("--json")) {
    out << QJsonDocument(o).toJson(QJsonDocument::Indented);
  } else {
    for (auto it = o.begin(); it != o.end(); ++it) {
      if (it->isObject()) {
        const QJsonObject row = it->toObject();
        out << it.key() << ' ' << row["average"].toString() << ' ' << row["more"].toString() << ' '
            << row["target"].toString() << ' ' << row["weeklyTarget"].toString() << "\n";
      } else {
        out << it.key() << ' ' << it->toVariant().toString() << "\n";
      }
    }
  }
  if (!form.lastMessage.isEmpty()) {
    const std::optional<MessageRecord> m = FindMessage(form.lastMessage);
    err << (m ? m->text1 + u' ' + m->text2 : GetIniCaption(QStringLiteral("SIMULATION"), form.lastMessage)) << "\n";
  }
  if (opt.contains("--save") && !saved) return 1;
  return ok ? 0 : 1;
}
