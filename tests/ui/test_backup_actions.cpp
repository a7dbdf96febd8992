// The Edit menu's backup and restore on the working connection, answered through a
// recording dialog.
#include <QFileInfo>
#include <gtest/gtest.h>

#include "frame/catalogue.h"
#include "frame/dialog.h"
#include "store/backup.h"
#include "store/store.h"
#include "testsupport/store_fixture.h"
#include "ui/backup_actions.h"

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
  EXPECT_EQ(QFileInfo(target).absolutePath(), QFileInfo(inst_.path(QStringLiteral("data/backup"))).absoluteFilePath());
  ASSERT_TRUE(actions.backUp(target));
  EXPECT_TRUE(lastShown().contains(catalogue("BKUP-I-0001")));
  addUser(QStringLiteral("U000000002"));

  // No to the question changes nothing; a file that is no backup is refused; either way
  // the connection stays open on the same data.
  inst_.dialog().queueAnswer(kAnswerNo);
  EXPECT_FALSE(actions.restore(target));
  inst_.dialog().queueAnswer(kAnswerYes);
  EXPECT_FALSE(actions.restore(inst_.configFile()));
  EXPECT_TRUE(lastShown().contains(catalogue("BKUP-C-0002")));
  ASSERT_TRUE(db_.isOpen());
  EXPECT_TRUE(hasUser(QStringLiteral("U000000002")));

  inst_.dialog().queueAnswer(kAnswerYes);
  EXPECT_TRUE(actions.restore(target));
  EXPECT_TRUE(lastShown().contains(catalogue("BKUP-I-0002")));
  ASSERT_TRUE(db_.isOpen());
  EXPECT_TRUE(hasUser(QStringLiteral("U000000001")) && !hasUser(QStringLiteral("U000000002")));
}
