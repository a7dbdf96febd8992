// vantora-cli receive on a test installation: the report it prints, its exit codes, and
// what lands in the database.
#include <QFileInfo>
#include <QProcess>

#include "frame/catalogue.h"
#include "testsupport/receive_fixture.h"

namespace {

struct CliRun {
  int exitCode = -1;
  QString out;
  QString err;
};

}  // namespace

class ReceiveCommand : public ReceiveFixture {
 protected:
  void SetUp() override {
    cli_ = QStringLiteral(VANTORA_CLI_PATH);
    if (!QFileInfo::exists(cli_)) GTEST_SKIP() << "vantora-cli not built";
    ReceiveFixture::SetUp();
  }
  CliRun run(const QStringList& args) {
    QProcess p;
    p.setWorkingDirectory(inst->binPath());
    p.start(cli_, QStringList{QStringLiteral("receive"), QStringLiteral("--fast")} + args);
    CliRun r;
    if (!p.waitForFinished(60000)) return r;
    r.exitCode = p.exitCode();
    r.out = QString::fromUtf8(p.readAllStandardOutput());
    r.err = QString::fromUtf8(p.readAllStandardError());
    return r;
  }

  QString cli_;
};

TEST_F(ReceiveCommand, ANewUserThenALaterStateOfTheSameRecorder) {
  place(recorder(10));
  CliRun r = run({QStringLiteral("--new-user"), QStringLiteral("山田 花子")});
  ASSERT_EQ(r.exitCode, 0) << r.err.toStdString();
  const QString id = scalar(QStringLiteral("SELECT USER_ID FROM [USER] WHERE FIRST_NAME LIKE '山田 花子%'")).trimmed();
  ASSERT_FALSE(id.isEmpty());
  for (const QString& line : {QStringLiteral("ending: received\n"), QStringLiteral("cpu: A00042\n"),
                              QStringLiteral("days stored: 10\n"), "user: " + id + "\n"})
    EXPECT_TRUE(r.out.contains(line)) << r.out.toStdString();

  place(recorder(13, QDate(2024, 7, 3)));
  r = run({});
  ASSERT_EQ(r.exitCode, 0) << r.err.toStdString();
  EXPECT_TRUE(r.out.contains(QStringLiteral("pages: 10 to 13 (4)\n"))) << r.out.toStdString();
  EXPECT_EQ(count(QStringLiteral("SELECT COUNT(DISTINCT MEASUREMENT_DAY) FROM DAY_MEASUREMENT WHERE USER_ID = ?"), id),
            13);
}

// An unknown user (an identifier matches exactly) is refused before anything is read, and
// a second process is told the installation is busy.
TEST_F(ReceiveCommand, UnknownUsersAndASecondProcessAreRefusedBeforeAnythingIsRead) {
  place(recorder(5));
  const QString id = addUser(QStringLiteral("山田 花子"));
  const QStringList before = dump();
  const struct {
    QStringList args;
    QString error;
  } refused[] = {
      {{"--as", "U000000404"}, "U000000404"},
      {{"--state", "S_JOB", "--as", "U000000404", "--yes"}, "U000000404"},
      {{QStringLiteral("--as"), id.toLower()}, QStringLiteral("no user %1; did you mean %2?").arg(id.toLower(), id)},
  };
  for (const auto& c : refused) {
    const CliRun r = run(c.args);
    EXPECT_TRUE(r.exitCode == 1 && r.err.contains(c.error)) << r.exitCode << " " << r.err.toStdString();
    EXPECT_EQ(dump(), before);
  }

  // Another process holds the installation: the tool waits its few seconds, then says so.
  InstallationLock other(db->path());
  ASSERT_TRUE(other.acquire(0));
  CliRun r = run({QStringLiteral("--as"), id});
  EXPECT_TRUE(r.exitCode == 1 && r.out.contains(QStringLiteral("ending: busy"))) << r.out.toStdString();
  EXPECT_TRUE(r.err.contains(CatalogueLine(QStringLiteral("COMN-W-0001")))) << r.err.toStdString();
  EXPECT_EQ(dump(), before);
  other.release();
  r = run({QStringLiteral("--as"), id});
  EXPECT_EQ(r.exitCode, 0) << r.err.toStdString();
}
