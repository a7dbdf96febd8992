// The Edit menu's backup and restore on the working connection, answered through a
// recording dialog.
#include <QFile>
#include <QFileInfo>
#include <gtest/gtest.h>

#include "backup.h"
#include "backup_actions.h"
#include "catalogue.h"
#include "dialog.h"
#include "store.h"
#include "store_fixture.h"

namespace {

class WindowBackupTest : public StoreTestEn {
 protected:
  QString lastShown() {
    return inst_.dialog().shown.empty() ? QString() : inst_.dialog().shown.back().text;
  }
  QString catalogue(const char* code) const {
    const auto rec = FindMessage(QLatin1String(code));
    return rec ? rec->text1 : QString();
  }
};

}  // namespace

TEST_F(WindowBackupTest, BackUpThenRestoreOnTheWorkingConnection) {
  WindowBackup actions(db_);
  addUser(QStringLiteral("U000000001"));
  const QString target = actions.suggestedBackupPath();
  EXPECT_TRUE(QFileInfo(target).fileName().startsWith(QLatin1String("ACTA-")));
  EXPECT_EQ(QFileInfo(target).absolutePath(), QFileInfo(inst_.path(QStringLiteral("data/backup"))).absoluteFilePath());
  ASSERT_TRUE(actions.backUp(target));
  EXPECT_TRUE(lastShown().contains(catalogue("BKUP-I-0001")));
  addUser(QStringLiteral("U000000002"));

  // No to the question: nothing changes, the connection stays usable.
  inst_.dialog().queueAnswer(kAnswerNo);
  EXPECT_FALSE(actions.restore(target));
  EXPECT_TRUE(inst_.dialog().shown.back().question);
  EXPECT_TRUE(hasUser(QStringLiteral("U000000002")));

  inst_.dialog().queueAnswer(kAnswerYes);
  EXPECT_TRUE(actions.restore(target));
  EXPECT_TRUE(lastShown().contains(catalogue("BKUP-I-0002")));
  ASSERT_TRUE(db_.isOpen());
  EXPECT_TRUE(hasUser(QStringLiteral("U000000001")));
  EXPECT_FALSE(hasUser(QStringLiteral("U000000002")));
}

TEST_F(WindowBackupTest, ARefusedFileLeavesTheConnectionOpenOnTheSameData) {
  WindowBackup actions(db_);
  addUser(QStringLiteral("U000000003"));
  const QString bogus = inst_.path(QStringLiteral("bogus.db"));
  {
    QFile f(bogus);
    ASSERT_TRUE(f.open(QIODevice::WriteOnly));
    f.write(QByteArray(8192, 'x'));
  }
  inst_.dialog().queueAnswer(kAnswerYes);
  EXPECT_FALSE(actions.restore(bogus));
  EXPECT_TRUE(lastShown().contains(catalogue("BKUP-C-0002")));
  ASSERT_TRUE(db_.isOpen());
  EXPECT_TRUE(hasUser(QStringLiteral("U000000003")));

  // A backup into a folder that cannot be made is told, not thrown.
  EXPECT_FALSE(actions.backUp(inst_.path(QStringLiteral("bogus.db/inside/copy.db"))));
  EXPECT_TRUE(lastShown().contains(catalogue("BKUP-C-0001")));
}
