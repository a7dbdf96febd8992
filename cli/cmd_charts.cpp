// chart-data and range: the chart files of one chart, and the display window a period
// button or a date button would set.
#include "cli/commands.h"

#include <QDir>
#include <QTextStream>

#include "charts/charts.h"
#include "frame/frame.h"
#include "store/store.h"

namespace {

// --name value pairs; false (with a message) for anything else.
bool ParseOptions(const QStringList& args, const QStringList& known, QHash<QString, QString>& out,
                  QTextStream& err) {
  for (int i = 0; i < args.size(); ++i) {
    const QString& a = args[i];
    if (!a.startsWith(QLatin1String("--")) || !known.contains(a.mid(2))) {
      err << "unknown argument: " << a << "\n";
      return false;
    }
    if (i + 1 >= args.size()) {
      err << a << " needs a value\n";
      return false;
    }
    out.insert(a.mid(2), args[++i]);
  }
  return true;
}

bool ValidYmd(const QString& text) { return text.size() == 8 && YmdToDate(text).isValid(); }

}  // namespace

// The installation of the working directory: configuration, catalogue, language, and
// the configured database. 0 when ready, else the exit code.
int OpenInstallation(VtDatabase& db, QTextStream& err) {
  if (!Ini_LoadConfig()) {
    err << "no installation here: run from an installation's bin/ folder\n";
    return 1;
  }
  LoadResource();
  SetLangCode(QString::number(Ini_GetLang()));
  SetLogLevel(QString::number(Ini_GetLogLevel()));
  QString path = Ini_GetDbName();
  QString password = Ini_GetDbPassword();
  if (VTDB_Open(db, path, password) != 0) {
    err << "cannot open the database " << path << "\n";
    return 1;
  }
  return 0;
}

int cmd_chart_data(const QStringList& args) {
  QTextStream err(stderr);
  QHash<QString, QString> opt;
  if (!ParseOptions(args, {QStringLiteral("user"), QStringLiteral("type"), QStringLiteral("from"),
                           QStringLiteral("to"), QStringLiteral("out")},
                    opt, err))
    return 2;
  bool typeOk = false;
  const int type = opt.value(QStringLiteral("type")).toInt(&typeOk);
  const QString user = opt.value(QStringLiteral("user"));
  const QString from = opt.value(QStringLiteral("from"));
  const QString to = opt.value(QStringLiteral("to"));
  if (user.isEmpty() || !typeOk || !ValidYmd(from) || !ValidYmd(to)) {
    err << "usage: chart-data --user ID --type N --from YYYYMMDD --to YYYYMMDD [--out DIR]\n";
    return 2;
  }
  QString out = opt.value(QStringLiteral("out"));
  if (!out.isEmpty() && !QDir().mkpath(out)) {
    err << "cannot create " << out << "\n";
    return 1;
  }

  VtDatabase db;
  if (const int rc = OpenInstallation(db, err); rc != 0) return rc;
  QString interfaceFile;
  QString headerFile;
  QString simFile;
  const bool ok = charts::MakeChartData(db, type, YmdToSlash(from), YmdToSlash(to), interfaceFile,
                                        headerFile, user, out, &simFile);
  VTDB_Close(db);
  QTextStream stdOut(stdout);
  if (!interfaceFile.isEmpty()) stdOut << "interface " << GetAbsolutePath(interfaceFile) << "\n";
  if (!headerFile.isEmpty()) stdOut << "header " << GetAbsolutePath(headerFile) << "\n";
  if (!simFile.isEmpty()) stdOut << "sim " << GetAbsolutePath(simFile) << "\n";
  if (!ok) {
    err << "the chart files were not made\n";
    return 1;
  }
  return 0;
}

int cmd_range(const QStringList& args) {
  QTextStream err(stderr);
  QHash<QString, QString> opt;
  if (!ParseOptions(args, {QStringLiteral("user"), QStringLiteral("period"), QStringLiteral("end"),
                           QStringLiteral("mode")},
                    opt, err))
    return 2;
  static const QStringList periods{QStringLiteral("day"), QStringLiteral("week"),
                                   QStringLiteral("month"), QStringLiteral("sixmonths")};
  const QString user = opt.value(QStringLiteral("user"));
  const int period = int(periods.indexOf(opt.value(QStringLiteral("period")))) + 1;
  bool modeOk = true;
  const int mode = opt.contains(QStringLiteral("mode"))
                       ? opt.value(QStringLiteral("mode")).toInt(&modeOk)
                       : 0;
  const QString end = opt.value(QStringLiteral("end"));
  if (user.isEmpty() || period < 1 || !modeOk || !(mode >= -1 && mode <= 2) ||
      (!end.isEmpty() && !ValidYmd(end))) {
    err << "usage: range --user ID --period day|week|month|sixmonths [--end YYYYMMDD] "
           "[--mode 0|-1|1|2]\n";
    return 2;
  }

  VtDatabase db;
  if (const int rc = OpenInstallation(db, err); rc != 0) return rc;
  QDate first;
  QDate last;
  const bool read = charts::ReadUserRange(db, user, first, last);
  VTDB_Close(db);
  if (!read) {
    err << "cannot read the measured range of " << user << "\n";
    return 1;
  }

  charts::RangeState state;
  state.rangeFirst = first;
  state.rangeLast = last;
  state.periodKind = period;
  state.graphIndex = period == charts::kPeriodDay ? charts::kGraphIndexDay : 0;
  state.chartKind = charts::ChartKindFor(state.graphIndex, period);
  state.dtDateEnd = end.isEmpty() ? (last.isValid() ? last : QDate::currentDate()) : YmdToDate(end);
  if (!charts::DateAdjustment(state, period, mode)) {
    err << "no window can be formed (the user has no measured days)\n";
    return 1;
  }
  QTextStream(stdout) << "from " << DateToYmd(state.dtDateStart) << "\n"
                      << "to " << DateToYmd(state.dtDateEnd) << "\n"
                      << "days " << (state.dtDateStart.daysTo(state.dtDateEnd) + 1) << "\n"
                      << "kind " << state.chartKind << "\n"
                      << "first " << DateToYmd(first) << "\n"
                      << "last " << DateToYmd(last) << "\n"
                      << "latest " << (charts::IsLatestDate(state) ? 1 : 0) << "\n";
  return 0;
}
