// initdb, users and days: the database file and what it holds.
#include <QFileInfo>
#include <QMap>
#include <QTextStream>

#include "cli/commands.h"
#include "frame/catalogue.h"
#include "frame/config.h"
#include "frame/dialog.h"
#include "frame/shared_values.h"
#include "store/db_safety.h"
#include "store/store.h"

namespace {

QTextStream& errStream() {
  static QTextStream s(stderr);
  return s;
}

// "--name value" options only; false with a message on anything else.
bool ParseOptions(const QStringList& args, const QStringList& known, QMap<QString, QString>& out,
                  const char* command) {
  for (qsizetype i = 0; i < args.size(); ++i) {
    const QString& a = args[i];
    if (!known.contains(a)) {
      errStream() << command << ": unknown argument " << a << "\n";
      return false;
    }
    if (i + 1 >= args.size()) {
      errStream() << command << ": " << a << " needs a value\n";
      return false;
    }
    out[a] = args[++i];
  }
  return true;
}

bool HasConfiguration() {
  Ini_LoadConfig();
  return !GetConfigPath().isEmpty();
}

// The database of the installation (DB_NAME, DB_PASSWORD), unless given; the defaults
// fill what stays empty.
int OpenDatabase(VtDatabase& db, const QMap<QString, QString>& opts) {
  QString path = opts.value(QStringLiteral("--path"));
  QString password = opts.value(QStringLiteral("--password"));
  if (HasConfiguration()) {
    if (path.isEmpty()) path = Ini_GetDbName();
    if (password.isEmpty()) password = Ini_GetDbPassword();
  }
  return VTDB_Open(db, path, password);
}

bool ValidDate(const QString& s) {
  if (s.size() != 8) return false;
  for (QChar c : s)
    if (!c.isDigit()) return false;
  return true;
}

QString NameOf(const UserInfo& u) {
  try {
    if (!GetConfigPath().isEmpty()) return GetDisplayName(u);
  } catch (const ConfigError&) {
  }
  QStringList parts;
  for (const QString& p : {u.FIRST_NAME, u.MIDDLE_NAME, u.LAST_NAME})
    if (!p.isEmpty()) parts << p;
  if (!u.NICK_NAME.isEmpty()) parts << QStringLiteral("(%1)").arg(u.NICK_NAME);
  return parts.join(QLatin1Char(' '));
}

}  // namespace

int cmd_initdb(const QStringList& args) {
  QMap<QString, QString> opts;
  if (!ParseOptions(args, {QStringLiteral("--path"), QStringLiteral("--password")}, opts, "initdb")) return 2;
  const QString path = opts.value(QStringLiteral("--path"), kDefaultDbPath);
  QString password = opts.value(QStringLiteral("--password"));
  if (opts.contains(QStringLiteral("--password")) && password.isEmpty()) {
    errStream() << "initdb: the password must not be empty\n";
    return 2;
  }
  QString error;
  if (password.isEmpty() && HasConfiguration()) {
    // A new installation gets a random key of its own, readable by its owner only.
    const QString keyPath = InstallationKeyPath();
    if (!QFileInfo::exists(keyPath) && !CreateInstallationKey(keyPath, &error)) {
      errStream() << "initdb: " << error << "\n";
      return 1;
    }
    password = ReadInstallationKey(keyPath);
    if (password.isEmpty()) {
      errStream() << "initdb: " << keyPath << " holds no key (64 hex digits)\n";
      return 1;
    }
  }
  if (password.isEmpty()) password = kDefaultDbPassword;
  if (!CreateDatabaseFile(path, password, &error)) {
    errStream() << "initdb: " << error << "\n";
    return 1;
  }
  QTextStream(stdout) << "created " << QFileInfo(path).absoluteFilePath() << "\n";
  return 0;
}

int cmd_users(const QStringList& args) {
  QMap<QString, QString> opts;
  if (!ParseOptions(args, {QStringLiteral("--path"), QStringLiteral("--password")}, opts, "users")) return 2;
  VtDatabase db;
  if (OpenDatabase(db, opts) != 0) return 1;
  std::vector<GroupInfo> groups;
  if (GetGroupList(db, groups) < 0) return 1;
  QTextStream out(stdout);
  out << QStringLiteral("%1  %2  %3  %4  %5  %6\n")
             .arg(QStringLiteral("USER_ID"), -10)
             .arg(QStringLiteral("GROUP_ID"), -10)
             .arg(QStringLiteral("LOGIN_ID"), -10)
             .arg(QStringLiteral("NAME"), -30)
             .arg(QStringLiteral("RECORDER"), -13)
             .arg(QStringLiteral("LAST RECEIVE"));
  for (const GroupInfo& g : groups) {
    std::vector<UserInfo> users;
    if (GetUserList(db, g.GROUP_ID, users) < 0) return 1;
    for (const UserInfo& u : users) {
      QStringList recorders;
      UserRecord stored;
      try {
        Statement st(db, QStringLiteral("SELECT CPU_NO FROM [CPU_TABLE] WHERE USER_ID = ? ORDER BY rowid"));
        st.bind(1, u.USER_ID);
        while (st.step()) recorders << st.text(0).trimmed();
      } catch (const StoreError& e) {
        errStream() << "users: " << e.text() << "\n";
        return 1;
      }
      QString lastReceive;
      if (VTDB_GetUserInfoFromUserId(db, u.USER_ID, stored) && !stored.LAST_RECEIVE_ID.trimmed().isEmpty()) {
        ReceiveHistoryRecord h;
        VTDB_GetReceiveHistory(db, stored.LAST_RECEIVE_ID.trimmed(), h);
        lastReceive = stored.LAST_RECEIVE_ID.trimmed();
        if (!h.RECEIVE_DATE.trimmed().isEmpty()) lastReceive += QLatin1Char(' ') + h.RECEIVE_DATE.trimmed();
      }
      out << QStringLiteral("%1  %2  %3  %4  %5  %6\n")
                 .arg(u.USER_ID, -10)
                 .arg(u.GROUP_ID, -10)
                 .arg(u.LOGIN_ID, -10)
                 .arg(NameOf(u), -30)
                 .arg(recorders.isEmpty() ? QStringLiteral("-") : recorders.join(QLatin1Char(',')), -13)
                 .arg(lastReceive.isEmpty() ? QStringLiteral("-") : lastReceive);
    }
  }
  return 0;
}

int cmd_days(const QStringList& args) {
  QMap<QString, QString> opts;
  if (!ParseOptions(args,
                    {QStringLiteral("--user"), QStringLiteral("--from"), QStringLiteral("--to"),
                     QStringLiteral("--path"), QStringLiteral("--password")},
                    opts, "days"))
    return 2;
  const QString user = opts.value(QStringLiteral("--user"));
  const QString from = opts.value(QStringLiteral("--from"), QStringLiteral("00000101"));
  const QString to = opts.value(QStringLiteral("--to"), QStringLiteral("99991231"));
  if (user.isEmpty()) {
    errStream() << "days: --user ID is required\n";
    return 2;
  }
  if (!ValidDate(from) || !ValidDate(to)) {
    errStream() << "days: dates are YYYYMMDD\n";
    return 2;
  }
  VtDatabase db;
  if (OpenDatabase(db, opts) != 0) return 1;
  std::vector<ChartDayRecord> rows;
  const int n = VTDB_GetChartData(db, user, from, to, QStringLiteral("-1"), rows);
  if (n < 0) return 1;
  QTextStream out(stdout);
  out << "  DAY       RECEIVE_ID SEQ  STEPS ACT_CAL TOTAL_CAL ACT_TIME DIST  WEIGHT MODEL EXERCISE\n";
  for (int i = 0; i < n; ++i) {
    const ChartDayRecord& r = rows[static_cast<size_t>(i)];
    out << (r.NewestOfDay ? "* " : "  ")
        << QStringLiteral("%1 %2 %3 %4 %5 %6 %7 %8 %9 %10 %11\n")
               .arg(r.MEASUREMENT_DAY, -9)
               .arg(r.RECEIVE_ID, -10)
               .arg(r.SEQ_NUM, 3)
               .arg(r.STEP_COUNT, 6)
               .arg(r.ACTIVITY, 7)
               .arg(r.ENERGY_EXPENDITURE, 9)
               .arg(r.ACCUMULATION_TIME, 8)
               .arg(r.DistanceShown, 5)
               .arg(r.WeightShown, 6)
               .arg(r.PEDOMERA, 5)
               .arg(r.EXERCISE, 8);
  }
  out << n << " row(s); * marks the row that counts for its day\n";
  return 0;
}

int cmd_check(const QStringList& args) {
  QMap<QString, QString> opts;
  QStringList rest = args;
  const bool full = rest.removeAll(QStringLiteral("--full")) > 0;
  if (!ParseOptions(rest, {QStringLiteral("--path")}, opts, "check")) return 2;
  QString path = opts.value(QStringLiteral("--path"));
  if (path.isEmpty() && HasConfiguration()) path = Ini_GetDbName();
  if (path.isEmpty()) path = kDefaultDbPath;
  if (QFileInfo::exists(QStringLiteral("ACTA.res"))) LoadResource();
  InstallationLock lock(path);
  if (!AcquireForWriting(lock)) return 1;
  // The check the desktop runs at start: recovery from a good copy, rekey of an older
  // database, or the reason why there is no usable database.
  const DatabaseStartResult r = PrepareDatabaseAtStart(path);
  QTextStream out(stdout);
  static const char* const names[] = {"ready", "recovered", "rekeyed", "stop"};
  out << "database: " << names[static_cast<int>(r.outcome)] << "\n";
  if (!r.detail.isEmpty()) out << "detail: " << r.detail << "\n";
  out.flush();
  if (!r.messageCode.isEmpty()) MessageDialog(r.messageCode, r.messageArg);
  if (r.outcome == DatabaseStartResult::Outcome::Stop) return 1;
  if (full) {
    QString detail;
    const DbFileState state = InspectDatabaseFile(path, r.key, &detail, true);
    out << "integrity: " << (state == DbFileState::Good ? QStringLiteral("ok") : detail) << "\n";
    if (state != DbFileState::Good) return 1;
  }
  return 0;
}

int cmd_compact(const QStringList& args) {
  bool force = false;
  QStringList rest;
  for (const QString& a : args) {
    if (a == QLatin1String("--force")) force = true;
    else rest << a;
  }
  QMap<QString, QString> opts;
  if (!ParseOptions(rest, {QStringLiteral("--path")}, opts, "compact")) return 2;
  QString path = opts.value(QStringLiteral("--path"));
  if (path.isEmpty() && HasConfiguration()) path = Ini_GetDbName();
  NullProgress progress;
  int result = -1;
  CompactDB(path, result, progress, QString(), force ? 0.0 : kCompactMinimumFreeShare);
  if (result != 0) return 1;
  QTextStream(stdout) << "compact: done (" << QFileInfo(path).size() << " bytes)\n";
  return 0;
}
