#include <gtest/gtest.h>

#include <QDir>
#include <QFileInfo>
#include <QProcess>
#include <QProcessEnvironment>
#include <QTemporaryDir>

#include "device/recorder_kinds.h"
#include "testsupport/test_installation.h"

namespace {

struct Outcome {
  int code = -1;
  QString out, err;
};

// The tool runs inside the installation's bin/, as its launcher runs it; callerDir, when
// given, is the folder the person called it from.
class CliArgs : public ::testing::Test {
 protected:
  void SetUp() override {
    if (!QFileInfo::exists(QStringLiteral(VANTORA_CLI_PATH))) GTEST_SKIP() << "vantora-cli not built";
    ASSERT_TRUE(inst.isValid());
    ASSERT_TRUE(caller.isValid());
  }

  Outcome run(const QStringList& args, const QString& callerDir = QString()) {
    QProcess p;
    p.setWorkingDirectory(inst.binPath());
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.remove(QStringLiteral("VANTORA_CALLER_DIR"));
    if (!callerDir.isEmpty()) env.insert(QStringLiteral("VANTORA_CALLER_DIR"), callerDir);
    p.setProcessEnvironment(env);
    p.start(QStringLiteral(VANTORA_CLI_PATH), args);
    EXPECT_TRUE(p.waitForFinished(60000));
    return {p.exitCode(), QString::fromUtf8(p.readAllStandardOutput()), QString::fromUtf8(p.readAllStandardError())};
  }

  static QStringList recorder(const QString& out) {
    return {"make-recorder", "--kind", "brio_normal", "--days", "3", "--out", out};
  }

  TestInstallation inst;
  QTemporaryDir caller;
};

TEST_F(CliArgs, UsageErrorsExitWithTwoAndSayWhatIsWrong) {
  Outcome r = run({});
  EXPECT_EQ(r.code, 2);
  EXPECT_TRUE(r.out.contains("Usage: vantora-cli COMMAND"));
  EXPECT_EQ(run({"--help"}).code, 0);
  EXPECT_EQ(run({"version", "extra"}).code, 2);

  struct Case {
    QStringList args;
    const char* message;
  };
  const Case cases[] = {
      {{"make-recorder", "--kind", "AL", "--days", "3", "--out", "a.img", "--colour", "red"}, "unknown option --colour"},
      {{"make-recorder", "--kind", "AL", "--days", "3", "--out"}, "--out needs a value"},
      {{"make-recorder", "--kind", "AL", "--days", "3"}, "--out is required"},
      {{"make-recorder", "--kind", "BRIO", "--days", "3", "--out", "a.img"}, "--kind must be"},
      {{"make-recorder", "--kind", "AL", "--days", "0", "--out", "a.img"}, "--days must be a whole number from 1"},
      {{"make-recorder", "--kind", "AL", "--days", "x", "--out", "a.img"}, "--days must be a whole number"},
      {{"make-recorder", "--kind", "AL", "--days", "3", "--out", "a.img", "--last-day", "2024-06-30"}, "YYYYMMDD"},
      {{"make-recorder", "--kind", "BRIO_ZR", "--lang", "en", "--days", "3", "--out", "a.img"}, "Japanese recorders only"},
      {{"make-recorder", "--kind", "AL", "--days", "3", "--out", "a.img", "stray"}, "unexpected argument stray"},
      {{"dump"}, "usage: vantora-cli dump FILE"},
      {{"frobnicate"}, "unknown command: frobnicate"},
  };
  for (const Case& c : cases) {
    r = run(c.args);
    EXPECT_EQ(r.code, 2) << c.args.join(' ').toStdString();
    EXPECT_TRUE(r.err.contains(QLatin1String(c.message))) << r.err.toStdString();
  }
  // Nothing was written by a refused command.
  EXPECT_FALSE(QFileInfo::exists(inst.path("bin/a.img")));
}

TEST_F(CliArgs, FileNamesCountFromTheCallersFolder) {
  const QDir from(caller.path());
  ASSERT_TRUE(from.mkpath("sub"));
  // A bare name, a name with a folder and one climbing out of a folder all count from the caller.
  ASSERT_EQ(run(recorder("r1.img"), caller.path()).code, 0);
  ASSERT_EQ(run({"make-recorder", "--kind", "AL", "--days", "2", "--out", "sub/../r2.img"}, caller.path()).code, 0);
  ASSERT_EQ(run(recorder("sub/r3.img"), caller.path()).code, 0);
  for (const char* made : {"r1.img", "r2.img", "sub/r3.img"}) EXPECT_TRUE(QFileInfo::exists(from.filePath(made))) << made;
  EXPECT_FALSE(QFileInfo::exists(inst.path("bin/r1.img")));
  // An absolute name stays as it is.
  const QString absolute = inst.path("temp/abs.img");
  ASSERT_EQ(run(recorder(absolute), caller.path()).code, 0);
  EXPECT_TRUE(QFileInfo::exists(absolute));
  // The file to dump is found the same way, however the tool's own folder differs.
  Outcome r = run({"dump", "sub/r3.img", "--json"}, caller.path());
  EXPECT_EQ(r.code, 0) << r.err.toStdString();
  EXPECT_TRUE(r.out.contains(QStringLiteral("\"kind\": \"%1\"").arg(KindText(RecorderKind::BrioNormal))));
  r = run({"dump", "r2.img"}, caller.path());
  EXPECT_TRUE(r.code == 0 && r.out.startsWith(QStringLiteral("kind: ") + KindText(RecorderKind::AL)))
      << r.err.toStdString();
  // Called without a caller's folder the names count from bin/, where it runs.
  ASSERT_EQ(run(recorder("here.img")).code, 0);
  EXPECT_TRUE(QFileInfo::exists(inst.path("bin/here.img")));
  r = run({"dump", "no-such.img"}, caller.path());
  EXPECT_TRUE(r.code == 1 && r.err.contains(from.filePath("no-such.img")))
      << r.code << " " << r.err.toStdString();
}

}  // namespace
