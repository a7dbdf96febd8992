// The Edit menu's backup and restore on the working connection, answered through a
// recording dialog.
#include <QFile>
#include <QFileInfo>
#include <gtest/gtest.h>

#include "backup.h"
#include "backup_actions.h"
#include "catalogue.h"
#include "dialog.h"
#include "shared_values.h"
#include "store.h"
#include "test_installation.h"

namespace {

class WindowBackupTest : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(inst.isValid());
    ResetSharedValues();
    ASSERT_TRUE(inst.reload());
    QString error;
    ASSERT_TRUE(CreateDatabaseFile(inst.dbFile(), kDefaultDbPassword, &error)) << error.toStdString();
    QString path = inst.dbFile();
    QString password;
    ASSERT_EQ(VTDB_Open(db, path, password), 0);
    inst.dialog().shown.clear();
  }
  void TearDown() override { ResetSharedValues(); }

  void addUser(const QString& id) {
    UserRecord u;
    u.USER_ID = id;
    u.GROUP_ID = kDefaultGroupId;
    u.NICK_NAME = id;
    ASSERT_TRUE(VTDB_SetUserInfo(db, u));
  }
  bool hasUser(const QString& id) {
    UserRecord u;
    return VTDB_GetUserInfoFromUserId(db, id, u);
  }
  QString lastShown() {
    return inst.dialog().shown.empty() ? QString() : inst.dialog().shown.back().text;
  }
  QString catalogue(const char* code) const {
    const auto rec = FindMessage(QLatin1String(code));
    return rec ? rec->text1 : QString();
  }

  TestInstallation inst{QStringLiteral("en")};
  VtDatabase db;
};

}  // namespace

TEST_F(WindowBackupTest, BackUpThenRestoreOnTheWorkingConnection) {
  WindowBackup actions(db);
  addUser(QStringLiteral("U000000001"));
  const QString target = actions.suggestedBackupPath();
  EXPECT_TRUE(QFileInfo(target).fileName().startsWith(QLatin1String("ACTA-")));
  EXPECT_EQ(QFileInfo(target).absolutePath(), QFileInfo(inst.path(QStringLiteral("data/backup"))).absoluteFilePath());
  ASSERT_TRUE(actions.backUp(target));
  EXPECT_TRUE(lastShown().contains(catalogue("BKUP-I-0001")));
  addUser(QStringLiteral("U000000002"));

  // No to the question: nothing changes, the connection stays usable.
  inst.dialog().queueAnswer(kAnswerNo);
  EXPECT_FALSE(actions.restore(target));
  EXPECT_TRUE(inst.dialog().shown.back().question);
  EXPECT_TRUE(hasUser(QStringLiteral("U000000002")));

  inst.dialog().queueAnswer(kAnswerYes);
  EXPECT_TRUE(actions.restore(target));
  EXPECT_TRUE(lastShown().contains(catalogue("BKUP-I-0002")));
  ASSERT_TRUE(db.isOpen());
  EXPECT_TRUE(hasUser(QStringLiteral("U000000001")));
  EXPECT_FALSE(hasUser(QStringLiteral("U000000002")));
}

TEST_F(WindowBackupTest, ARefusedFileLeavesTheConnectionOpenOnTheSameData) {
  WindowBackup actions(db);
  addUser(QStringLiteral("U000000003"));
  const QString bogus = inst.path(QStringLiteral("bogus.db"));
  {
    QFile f(bogus);
    ASSERT_TRUE(f.open(QIODevice::WriteOnly));
    f.write(QByteArray(8192, 'x'));
  }
  inst.dialog().queueAnswer(kAnswerYes);
  EXPECT_FALSE(actions.restore(bogus));
  EXPECT_TRUE(lastShown().contains(catalogue("BKUP-C-0002")));
  ASSERT_TRUE(db.isOpen());
  EXPECT_TRUE(hasUser(QStringLiteral("U000000003")));

  // A backup into a folder that cannot be made is told, not thrown.
  EXPECT_FALSE(actions.backUp(inst.path(QStringLiteral("bogus.db/inside/copy.db"))));
  EXPECT_TRUE(lastShown().contains(catalogue("BKUP-C-0001")));
}
