// export-csv and import-csv: CSV report files of one user or of every user, and reading
// such files back.
#include <QDir>
#include <QFileInfo>
#include <QTextStream>

#include "cli/commands.h"
#include "exchange/exchange.h"
#include "frame/frame.h"
#include "store/store.h"

namespace {

struct CsvArgs {
  QHash<QString, QString> options;
  QStringList flags;
  QStringList positional;
};

// "--name value" options of the known names, flags without a value, and plain words.
bool ParseCsvArgs(const QStringList& args, const QStringList& withValue, const QStringList& flags, CsvArgs& out,
                  QTextStream& err) {
  for (int i = 0; i < args.size(); ++i) {
    const QString& a = args[i];
    if (!a.startsWith(QLatin1String("--"))) {
      out.positional << a;
    } else if (flags.contains(a.mid(2))) {
      out.flags << a.mid(2);
    } else if (withValue.contains(a.mid(2))) {
      if (i + 1 >= args.size()) {
        err << a << " needs a value\n";
        return false;
      }
      out.options.insert(a.mid(2), args[++i]);
    } else {
      err << "unknown argument: " << a << "\n";
      return false;
    }
  }
  return true;
}

bool ValidDay(const QString& text) { return text.size() == 8 && YmdToDate(text).isValid(); }

// The rest of a file's line in the tool's output: what was stored, or why not.
QString DescribeImport(const CsvImportFileResult& r) {
  if (r.imported)
    return QStringLiteral("imported format %1, user %2 (%3, login %4), %5 day(s)")
        .arg(r.formatCode)
        .arg(r.userId, r.userCreated ? QStringLiteral("registered") : QStringLiteral("found"), r.loginId)
        .arg(r.days);
  QString s = QStringLiteral("refused");
  if (r.formatCode >= 0) s += QStringLiteral(" (format %1)").arg(r.formatCode);
  if (r.errorLine > 0) s += QStringLiteral(", line %1").arg(r.errorLine);
  return s + QStringLiteral(": ") + r.reason;
}

}  // namespace

int cmd_export_csv(const QStringList& args) {
  QTextStream err(stderr);
  QTextStream out(stdout);
  CsvArgs a;
  const char* usage =
      "usage: export-csv --user ID --from YYYYMMDD --to YYYYMMDD --format 0|1|2 --out FILE "
      "[--encoding cp932|utf-8|utf-8-bom]\n"
      "       export-csv --all --from YYYYMMDD --to YYYYMMDD --format 0|1|2 --dir DIR [--encoding ...]\n";
  if (!ParseCsvArgs(args,
                    {QStringLiteral("user"), QStringLiteral("from"), QStringLiteral("to"), QStringLiteral("format"),
                     QStringLiteral("out"), QStringLiteral("dir"), QStringLiteral("encoding")},
                    {QStringLiteral("all")}, a, err) ||
      !a.positional.isEmpty()) {
    err << usage;
    return 2;
  }
  const bool all = a.flags.contains(QStringLiteral("all"));
  const QString from = a.options.value(QStringLiteral("from"));
  const QString to = a.options.value(QStringLiteral("to"));
  bool kindOk = false;
  const int kind = a.options.value(QStringLiteral("format")).toInt(&kindOk);
  CsvExportOptions options;
  if (a.options.contains(QStringLiteral("encoding"))) {
    CsvEncoding e{};
    if (!ParseCsvEncoding(a.options.value(QStringLiteral("encoding")), e)) {
      err << "--encoding is cp932, utf-8 or utf-8-bom\n";
      return 2;
    }
    options.encoding = e;
  }
  const QString user = a.options.value(QStringLiteral("user"));
  const QString file = a.options.value(QStringLiteral("out"));
  const QString dir = a.options.value(QStringLiteral("dir"));
  if (!ValidDay(from) || !ValidDay(to) || !kindOk || kind < 0 || kind > 2 ||
      (all ? dir.isEmpty() || !user.isEmpty() : user.isEmpty() || file.isEmpty())) {
    err << usage;
    return 2;
  }

  VtDatabase db;
  if (const int rc = OpenInstallation(db, err); rc != 0) return rc;

  if (all) {
    if (!QDir().mkpath(dir)) {
      err << "cannot create " << dir << "\n";
      return 1;
    }
    QStringList ids;
    std::vector<GroupInfo> groups;
    if (GetGroupList(db, groups) < 0) return 1;
    for (const GroupInfo& g : groups) {
      std::vector<UserInfo> users;
      if (GetUserList(db, g.GROUP_ID, users) < 0) return 1;
      for (const UserInfo& u : users) ids << u.USER_ID;
    }
    NullProgress progress;
    QString log;
    const int written = CSVBatchExport(db, from, to, kind, QFileInfo(dir).absoluteFilePath(), ids, progress, log, options);
    out << log;
    out << written << " of " << ids.size() << " user(s) written to " << QFileInfo(dir).absoluteFilePath() << "\n";
    return written > 0 || ids.isEmpty() ? 0 : 1;
  }

  UserInfo info;
  if (!GetUserInfo(db, info, user)) {
    err << "export-csv: no user " << user << "\n";
    return 1;
  }
  QString first;
  QString last;
  if (!VTDB_GetDayMeasurementRange(db, user, first, last, false)) return 1;
  if (!QDir().mkpath(QFileInfo(file).absolutePath())) {
    err << "cannot create " << QFileInfo(file).absolutePath() << "\n";
    return 1;
  }
  QString error;
  bool ok = false;
  {
    // The refusal's text is printed once below, not also by the message box.
    RecordingDialog quiet;
    ScopedDialogInterface guard(&quiet);
    ok = MakeCSVData2(db, user, from, to, last, QFileInfo(file).absoluteFilePath(), info, Ini_GetMaxRecord(), kind,
                      options, error);
  }
  if (!ok) {
    err << "export-csv: " << error << "\n";
    return 1;
  }
  out << QFileInfo(file).absoluteFilePath() << "\n";
  return 0;
}

int cmd_import_csv(const QStringList& args) {
  QTextStream err(stderr);
  QTextStream out(stdout);
  CsvArgs a;
  if (!ParseCsvArgs(args, {QStringLiteral("group")}, {}, a, err) || a.positional.isEmpty()) {
    err << "usage: import-csv PATH... [--group GROUP_ID]\n";
    return 2;
  }
  VtDatabase db;
  if (const int rc = OpenInstallation(db, err); rc != 0) return rc;
  const QString group = a.options.value(QStringLiteral("group"));
  if (!group.isEmpty()) {
    GroupInfo g;
    if (!GetGroupInfo(db, g, group) || g.GROUP_ID.isEmpty()) {
      err << "import-csv: no group " << group << "\n";
      return 1;
    }
  }
  NullProgress progress;
  const CsvImportSummary s = CSVBatchImport(db, a.positional, group, progress);
  for (const CsvImportFileResult& r : s.files) out << r.path << ": " << DescribeImport(r) << "\n";
  if (s.files.empty()) out << s.log;
  out << s.filesImported << " of " << s.filesRead << " file(s) imported\n";
  return s.filesRead > 0 && s.filesImported == s.filesRead ? 0 : 1;
}
