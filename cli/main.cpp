// vantora-cli: the headless tool. Every operation that the desktop offers on data can
// be run from here, with messages on stderr and questions answered from flags.
#include <QCoreApplication>
#include <QGuiApplication>
#include <QDir>
#include <QTextStream>

#include <sys/stat.h>

#include <cstring>
#include <memory>

#include "cli/commands.h"
#include "frame/frame.h"

namespace {

struct Command {
  const char* name;
  int (*run)(const QStringList&);
  const char* usage;
};

const Command kCommands[] = {
    {"version", cmd_version, "version                      print the program version"},
    {"make-recorder", cmd_make_recorder,
     "make-recorder --kind K --lang ja|en --days N --out FILE [options]\n"
     "                             write a recorder memory image"},
    {"dump", cmd_dump, "dump FILE [--json]           decode a recorder image through the emulated reader"},
    {"initdb", cmd_initdb, "initdb [--path P] [--password PW]   create a new database"},
    {"check", cmd_check, "check [--path P] [--full]    the start-up check: recover from a good copy, rekey, or say why not;\n"
     "                             --full adds the whole integrity check"},
    {"compact", cmd_compact, "compact [--path P] [--force] compact the database when a tenth of it is free (always with --force)"},
    {"users", cmd_users, "users                        list the users"},
    {"days", cmd_days, "days --user ID [--from YYYYMMDD --to YYYYMMDD]   list a user's stored days"},
    {"backup", cmd_backup, "backup [FILE]                copy the database (default: a new file in data/backup)"},
    {"restore", cmd_restore, "restore FILE                 replace the database by a backup (not while Vantora runs)"},
    {"receive", cmd_receive,
     "receive [--as USER_ID | --new-user NAME] [--state S_USERSELECT|S_JOB] [--yes|--no]\n"
     "        [--fast | --clock-scale N]\n"
     "                             receive the recorder on the reader"},
    {"chart-data", cmd_chart_data,
     "chart-data --user ID --type N --from YYYYMMDD --to YYYYMMDD [--out DIR]\n"
     "                             write the chart files of a chart"},
    {"range", cmd_range,
     "range --user ID --period day|week|month|sixmonths [--end YYYYMMDD] [--mode 0|-1|1|2]\n"
     "                             print a chart's display window"},
    {"plan", cmd_plan,
     "plan --user ID --start YYYYMMDD (--months N | --end YYYYMMDD) (--target-weight W | --loss L)\n"
     "     [--start-weight W] [--food POS --portion POS | --reduction POS] [--method mets|rmr]\n"
     "     [--save] [--json]     compute a weight plan;  plan --user ID --show  print the saved plan"},
    {"render", cmd_render,
     "render --interface FILE [--header FILE] --out FILE.png|FILE.pdf [--size WxH]\n"
     "       [--settings chart.ini] [--paper N]\n"
     "                             draw a chart file to a picture or a report"},
    {"export-csv", cmd_export_csv,
     "export-csv --user ID --from YYYYMMDD --to YYYYMMDD --format 0|1|2 --out FILE\n"
     "           [--encoding cp932|utf-8|utf-8-bom]\n"
     "                             write one user's CSV report\n"
     "  export-csv --all --from YYYYMMDD --to YYYYMMDD --format 0|1|2 --dir DIR\n"
     "                             write the report of every user into DIR"},
    {"import-csv", cmd_import_csv,
     "import-csv PATH... [--group GROUP_ID]\n"
     "                             read CSV reports (files or folders) into the database"},
};

// The installed launcher runs the tool inside bin/, where the configuration's relative paths
// count from, and tells where it was called from. File names the person typed are meant from
// there, so they are made absolute before the commands see them.
void resolveCallerPaths(const QString& command, QStringList& args) {
  const QString callerDir = qEnvironmentVariable("VANTORA_CALLER_DIR");
  if (callerDir.isEmpty()) return;
  static const QStringList kPathOptions = {QStringLiteral("--out"), QStringLiteral("--path"),
                                           QStringLiteral("--interface"), QStringLiteral("--header"),
                                           QStringLiteral("--settings"), QStringLiteral("--dir")};
  const QDir caller(callerDir);
  auto absolute = [&](QString& value) {
    if (!value.isEmpty() && QDir::isRelativePath(value)) value = QDir::cleanPath(caller.absoluteFilePath(value));
  };
  for (int i = 0; i < args.size(); ++i) {
    QString& a = args[i];
    const int eq = a.indexOf(QLatin1Char('='));
    if (a.startsWith(QLatin1String("--")) && eq > 0 && kPathOptions.contains(a.left(eq))) {
      QString value = a.mid(eq + 1);
      absolute(value);
      a = a.left(eq + 1) + value;
    } else if (kPathOptions.contains(a) && i + 1 < args.size()) {
      absolute(args[++i]);
    } else if (a == QLatin1String("--group")) {
      ++i;  // a group id, not a file
    } else if ((command == QLatin1String("dump") || command == QLatin1String("import-csv") ||
                command == QLatin1String("backup") || command == QLatin1String("restore")) &&
               !a.startsWith(QLatin1String("--"))) {
      absolute(a);
    }
  }
}

void printHelp(QTextStream& out) {
  out << "Usage: vantora-cli COMMAND [ARGS]\n\n"
         "Run from an installation's bin/ folder (or give paths explicitly).\n"
         "Exit codes: 0 success, 1 the operation failed, 2 bad usage.\n\nCommands:\n";
  for (const auto& c : kCommands) out << "  " << c.usage << "\n";
}

}  // namespace

int cmd_version(const QStringList& args) {
  if (!args.isEmpty()) {
    QTextStream(stderr) << "version takes no arguments\n";
    return 2;
  }
  QTextStream(stdout) << "vantora-cli " << QCoreApplication::applicationVersion() << "\n";
  return 0;
}

int main(int argc, char** argv) {
  // What the tool writes (log, raw dumps, chart files, the key) is its owner's alone.
  ::umask(077);
  // Drawing charts needs fonts, hence a GUI application; without a display the
  // offscreen platform serves. Every other command stays a plain core application.
  std::unique_ptr<QCoreApplication> appHolder;
  if (argc > 1 && std::strcmp(argv[1], "render") == 0) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM") && qEnvironmentVariableIsEmpty("DISPLAY") &&
        qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY"))
      qputenv("QT_QPA_PLATFORM", "offscreen");
    appHolder = std::make_unique<QGuiApplication>(argc, argv);
  } else {
    appHolder = std::make_unique<QCoreApplication>(argc, argv);
  }
  QCoreApplication::setApplicationName(QStringLiteral("vantora-cli"));
  QCoreApplication::setApplicationVersion(QStringLiteral(VANTORA_VERSION));
  StderrDialog dialogs;
  SetDialogInterface(&dialogs);

  QStringList args = QCoreApplication::arguments().mid(1);
  QTextStream out(stdout);
  if (args.isEmpty()) {
    printHelp(out);
    return 2;
  }
  const QString name = args.takeFirst();
  if (name == QLatin1String("--help") || name == QLatin1String("-h") || name == QLatin1String("help")) {
    printHelp(out);
    return 0;
  }
  resolveCallerPaths(name, args);
  for (const auto& c : kCommands) {
    if (name == QLatin1String(c.name)) {
      try {
        return c.run(args);
      } catch (const ConfigError& e) {
        QTextStream(stderr) << e.text() << "\n";
        return 1;
      }
    }
  }
  QTextStream err(stderr);
  err << "unknown command: " << name << "\n\n";
  printHelp(err);
  return 2;
}
