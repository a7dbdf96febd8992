// make-recorder and dump: recorder memory images without a recorder.
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTextStream>
#include <optional>

#include "cli/commands.h"
#include "device/device.h"
#include "frame/config.h"
#include "frame/profile.h"
#include "frame/shared_values.h"

namespace {

QTextStream& err() {
  static QTextStream s(stderr);
  return s;
}

// "--name value" pairs and bare flags; false with a message on anything unknown.
struct Args {
  QMap<QString, QString> values;
  QStringList flags;
  QStringList positional;
};

bool ParseArgs(const QStringList& args, const QStringList& withValue, const QStringList& bareFlags,
               Args& out, const char* command) {
  for (qsizetype i = 0; i < args.size(); ++i) {
    const QString& a = args[i];
    if (a.startsWith(QLatin1String("--"))) {
      if (withValue.contains(a)) {
        if (i + 1 >= args.size()) {
          err() << command << ": " << a << " needs a value\n";
          return false;
        }
        out.values[a] = args[++i];
      } else if (bareFlags.contains(a)) {
        out.flags << a;
      } else {
        err() << command << ": unknown option " << a << "\n";
        return false;
      }
    } else {
      out.positional << a;
    }
  }
  return true;
}

std::optional<int> IntArg(const Args& a, const QString& name, int lo, int hi, const char* command) {
  bool ok = false;
  const int v = a.values.value(name).toInt(&ok);
  if (!ok || v < lo || v > hi) {
    err() << command << ": " << name << " must be a whole number from " << lo << " to " << hi << "\n";
    return std::nullopt;
  }
  return v;
}

// The configuration of the installation this runs in, when there is one.
void LoadInstallationConfig() {
  if (GetConfigPath().isEmpty()) Ini_LoadConfig();
}

}  // namespace

int cmd_make_recorder(const QStringList& args) {
  const char* cmd = "make-recorder";
  Args a;
  if (!ParseArgs(args,
                 {"--kind", "--lang", "--days", "--out", "--seed", "--cpu", "--last-day", "--time",
                  "--memory-lock", "--memory-setting", "--memory-days", "--unit", "--start-page",
                  "--erased-pages"},
                 {"--unset-weight"}, a, cmd))
    return 2;
  if (!a.positional.isEmpty()) {
    err() << cmd << ": unexpected argument " << a.positional.first() << "\n";
    return 2;
  }
  for (const char* required : {"--kind", "--days", "--out"}) {
    if (!a.values.contains(QLatin1String(required))) {
      err() << cmd << ": " << required << " is required\n";
      return 2;
    }
  }
  LoadInstallationConfig();
  RecorderImageOptions o;
  o.numbers = RecorderNumbers::FromConfig();
  o.kind = KindFromName(a.values.value("--kind"));
  if (o.kind == RecorderKind::Unknown) {
    err() << cmd << ": --kind must be AL, BRIO_NORMAL, BRIO_METS, BRIO_ZR or BRIO_KT\n";
    return 2;
  }
  const QString lang = a.values.value("--lang", "ja");
  if (lang != QLatin1String("ja") && lang != QLatin1String("en")) {
    err() << cmd << ": --lang must be ja or en\n";
    return 2;
  }
  o.english = lang == QLatin1String("en");
  if (auto v = IntArg(a, "--days", 1, 240, cmd)) o.days = *v; else return 2;
  if (a.values.contains("--seed")) {
    bool ok = false;
    o.seed = a.values.value("--seed").toUInt(&ok);
    if (!ok) {
      err() << cmd << ": --seed must be a whole number\n";
      return 2;
    }
  }
  if (a.values.contains("--cpu")) {
    o.cpuNo = a.values.value("--cpu");
    if (o.cpuNo.isEmpty() || o.cpuNo.size() > 6) {
      err() << cmd << ": --cpu must have 1 to 6 characters\n";
      return 2;
    }
  }
  if (a.values.contains("--last-day")) {
    o.lastDay = QDate::fromString(a.values.value("--last-day"), QStringLiteral("yyyyMMdd"));
    if (!o.lastDay.isValid()) {
      err() << cmd << ": --last-day must be a date YYYYMMDD\n";
      return 2;
    }
  }
  if (a.values.contains("--time")) {
    o.clockTime = QTime::fromString(a.values.value("--time"), QStringLiteral("HHmm"));
    if (!o.clockTime.isValid()) {
      err() << cmd << ": --time must be a time HHMM\n";
      return 2;
    }
  }
  if (a.values.contains("--memory-lock")) {
    if (auto v = IntArg(a, "--memory-lock", 1, 255, cmd)) {
      o.memorySetting = 1;
      o.memoryDays = *v;
    } else {
      return 2;
    }
  }
  if (a.values.contains("--memory-setting")) {
    if (auto v = IntArg(a, "--memory-setting", 0, 255, cmd)) o.memorySetting = *v; else return 2;
  }
  if (a.values.contains("--memory-days")) {
    if (auto v = IntArg(a, "--memory-days", 0, 255, cmd)) o.memoryDays = *v; else return 2;
  }
  if (a.values.contains("--unit")) {
    if (auto v = IntArg(a, "--unit", 0, 1, cmd)) o.unitFlag = *v; else return 2;
  }
  if (a.values.contains("--start-page")) {
    if (auto v = IntArg(a, "--start-page", 1, 240, cmd)) o.startPage = *v; else return 2;
  }
  if (a.values.contains("--erased-pages")) {
    for (const QString& p : a.values.value("--erased-pages").split(QLatin1Char(','), Qt::SkipEmptyParts)) {
      bool ok = false;
      const int page = p.trimmed().toInt(&ok);
      if (!ok) {
        err() << cmd << ": --erased-pages takes page numbers separated by commas\n";
        return 2;
      }
      o.erasedPages << page;
    }
  }
  o.unsetWeight = a.flags.contains("--unset-weight");

  const QString problem = CheckRecorderImageOptions(o);
  if (!problem.isEmpty()) {
    err() << cmd << ": " << problem << "\n";
    return 2;
  }
  QString error;
  if (!WriteRecorderImage(o, a.values.value("--out"), &error)) {
    err() << cmd << ": " << error << "\n";
    return 1;
  }
  return 0;
}

int cmd_dump(const QStringList& args) {
  const char* cmd = "dump";
  Args a;
  if (!ParseArgs(args, {}, {"--json"}, a, cmd)) return 2;
  if (a.positional.size() != 1) {
    err() << "usage: vantora-cli dump FILE [--json]\n";
    return 2;
  }
  const QString file = a.positional.first();
  if (!QFileInfo(file).isFile()) {
    err() << cmd << ": " << file << " does not exist\n";
    return 1;
  }
  // The image goes on an emulated reader of its own, so that it is read exactly as a
  // receive reads a recorder.
  QTemporaryDir reader;
  if (!reader.isValid() || !QFile::copy(file, QDir(reader.path()).filePath(QStringLiteral("recorder.img")))) {
    err() << cmd << ": cannot prepare a reader for " << file << "\n";
    return 1;
  }
  // The kind is decided from the configured recorder numbers: the installation's when
  // run inside one, else the generator's defaults.
  LoadInstallationConfig();
  QTemporaryDir confDir;
  const QString oldConfig = GetConfigPath();
  if (oldConfig.isEmpty()) {
    const RecorderNumbers n;
    const QString conf = QDir(confDir.path()).filePath(QStringLiteral("config.cnf"));
    WriteIniString(conf, QStringLiteral("SYSTEM"), QStringLiteral("VALID_VERSION_NUMBER"), QString::number(n.validVersion));
    WriteIniString(conf, QStringLiteral("SYSTEM"), QStringLiteral("PMAL_NUMBER"), n.al);
    WriteIniString(conf, QStringLiteral("SYSTEM"), QStringLiteral("PMBRIO_JPN_NUMBER"), n.brioJpn);
    WriteIniString(conf, QStringLiteral("SYSTEM"), QStringLiteral("PMBRIO_ENG_NUMBER"), n.brioEng);
    WriteIniString(conf, QStringLiteral("SYSTEM"), QStringLiteral("PMBRIO_KT200_NUMBER"), n.kt200);
    WriteIniString(conf, QStringLiteral("SYSTEM"), QStringLiteral("PMBRIO_KT014_NUMBER"), n.kt014);
    WriteIniString(conf, QStringLiteral("SYSTEM"), QStringLiteral("LOG_LEVEL"), QStringLiteral("9"));
    WriteIniString(conf, QStringLiteral("SYSTEM"), QStringLiteral("LOG_PATH"), confDir.path());
    SetConfigPath(conf);
  }
  EmulatedReader emulated(reader.path());
  NoWaitClock clock;
  RecorderContents contents;
  QString error;
  const qint32 code = ReadRecorderContents(emulated, clock, contents, &error);
  if (oldConfig.isEmpty()) SetConfigPath(oldConfig);
  if (code != kDeviceOk) {
    err() << cmd << ": " << file << " is no valid recorder image: " << error << "\n";
    return 1;
  }
  QTextStream out(stdout);
  if (a.flags.contains("--json")) {
    out << QString::fromUtf8(RecorderContentsJson(contents));
  } else {
    out << RecorderContentsText(contents);
  }
  return 0;
}
