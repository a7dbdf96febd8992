// A complete, throw-away installation for tests: bin/ (the working directory while the
// object lives), conf/config.cnf with every key, the catalogue files, data/mdb/, temp/,
// log/, raw/ and reader/. The frame is loaded as at start-up, and every dialog is
// recorded instead of shown. The working directory and the shared values belong to the
// whole process, so use one installation at a time.
#pragma once

#include <QFile>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

#include <ostream>
#include <vector>

#include "frame/dialog.h"

class TestInstallation {
 public:
  // lang "ja" or "en". The catalogue and profile files come from the source tree's
  // dist/<lang>/ (or dist/common/); the installation is invalid without them.
  explicit TestInstallation(const QString& lang = QStringLiteral("ja"));
  ~TestInstallation();
  TestInstallation(const TestInstallation&) = delete;
  TestInstallation& operator=(const TestInstallation&) = delete;

  bool isValid() const { return valid_; }

  QString root() const { return dir_.path(); }
  QString binPath() const { return path(QStringLiteral("bin")); }
  QString confPath() const { return path(QStringLiteral("conf")); }
  QString configFile() const { return path(QStringLiteral("conf/config.cnf")); }
  QString resourceIniFile() const { return path(QStringLiteral("conf/resource.ini")); }
  QString chartIniFile() const { return path(QStringLiteral("conf/chart.ini")); }
  QString dbFile() const { return path(QStringLiteral("data/mdb/ACTA.db")); }
  QString tempPath() const { return path(QStringLiteral("temp")); }
  QString logPath() const { return path(QStringLiteral("log")); }
  QString rawPath() const { return path(QStringLiteral("raw")); }
  QString readerPath() const { return path(QStringLiteral("reader")); }
  QString traceFile() const { return path(QStringLiteral("log/trace.log")); }
  // Absolute path of a file below the root.
  QString path(const QString& relative) const;

  // Writes one key of config.cnf (the section and key are created when missing).
  void setConfig(const QString& section, const QString& key, const QString& value);
  // Loads configuration, catalogues, LangCode and LogLevel again, as a fresh start does
  // (after setConfig of LANG or LOG_LEVEL, for instance). False when loading fails.
  bool reload();
  // Writes one key of the resource profile file.
  void setResource(const QString& section, const QString& key, const QString& value);
  // Replaces ACTA.res / menu.res in bin/ and loads them again.
  void writeCatalogue(const QByteArray& actaRes);
  void writeMenu(const QByteArray& menuRes);

  // The trace log's text ("" when there is none yet).
  QString traceText() const;
  // True when the trace log holds a line "|level|name|message..." (the log pads short
  // names to a fixed width and cuts long ones).
  bool logged(const QString& level, const QString& name, const QString& message = QString()) const;

  RecordingDialog& dialog() { return dialog_; }

 private:
  bool setUp(const QString& lang);

  QTemporaryDir dir_;
  QString oldCwd_;
  RecordingDialog dialog_;
  ScopedDialogInterface dialogGuard_{&dialog_};
  bool valid_ = false;
};

// Records what a long operation shows and answers yes to the cancel question at its
// cancelAt-th look (0 = never).
class CountingProgress : public ProgressInterface {
 public:
  int cancelAt = 0;
  int looks = 0;
  int maximum = 0;
  int value = 0;
  std::vector<int> values;
  QStringList statuses;
  void setMaximum(int m) override { maximum = m; }
  void setValue(int v) override { values.push_back(value = v); }
  void setStatus(const QString& s) override { statuses << s; }
  bool cancelRequested() override { return ++looks == cancelAt; }
};

// The whole content of a file ("" when it cannot be read), and a file written whole
// (false when it cannot be).
inline QByteArray ReadBytes(const QString& path) {
  QFile f(path);
  return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}
inline bool WriteBytes(const QString& path, const QByteArray& bytes) {
  QFile f(path);
  return f.open(QIODevice::WriteOnly | QIODevice::Truncate) && f.write(bytes) == bytes.size();
}

// Lets test failures show QString values as text.
inline void PrintTo(const QString& s, std::ostream* os) { *os << '"' << s.toStdString() << '"'; }
