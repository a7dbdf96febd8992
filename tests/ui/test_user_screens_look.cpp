// Pictures of the user screens and the receive dialogs in both editions (left in the
// build's screenshots/ folder to be looked at), and the check that no caption is cut:
// every visible label, button and option gets at least the room its text asks for.
#include <QAbstractButton>
#include <QDir>
#include <QGroupBox>
#include <QLabel>
#include <QtTest/QTest>

#include "testsupport/user_fixture.h"
#include "ui/frmUserDelete.h"
#include "ui/frmUserModify.h"
#include "ui/frmUserRegist.h"
#include "ui/frmUserSelectDialog.h"
#include "ui/recv_dialogs.h"

namespace {

QString ScreenshotDir() {
  const QString env = qEnvironmentVariable("VANTORA_SCREENSHOT_DIR");
  return env.isEmpty() ? QStringLiteral(VANTORA_SCREENSHOT_DIR) : env;
}

// The controls whose text does not fit.
QStringList CutCaptions(QWidget* screen) {
  QStringList cut;
  const auto tooSmall = [](QWidget* w) {
    const QSize hint = w->sizeHint();
    return w->width() + 1 < hint.width() || w->height() + 1 < hint.height();
  };
  for (QLabel* l : screen->findChildren<QLabel*>()) {
    if (!l->isVisibleTo(screen) || l->text().isEmpty()) continue;
    if (l->wordWrap() ? l->height() + 1 < l->heightForWidth(l->width()) : tooSmall(l))
      cut << l->objectName() + QLatin1Char(':') + l->text();
  }
  for (QAbstractButton* b : screen->findChildren<QAbstractButton*>())
    if (b->isVisibleTo(screen) && tooSmall(b)) cut << b->objectName() + QLatin1Char(':') + b->text();
  for (QGroupBox* g : screen->findChildren<QGroupBox*>())
    if (g->isVisibleTo(screen) && g->width() < g->fontMetrics().horizontalAdvance(g->title()))
      cut << g->objectName() + QLatin1Char(':') + g->title();
  return cut;
}

}  // namespace

class UserScreensLook : public UserScreenFixture, public ::testing::WithParamInterface<const char*> {
 protected:
  void SetUp() override { setUpEdition(QLatin1String(GetParam())); }

  void look(QDialog& screen) {
    screen.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&screen));
    QTest::qWait(30);
    const QString name = QLatin1String(GetParam()) + QLatin1Char('_') + screen.objectName();
    EXPECT_TRUE(CutCaptions(&screen).isEmpty()) << name.toStdString() << ": "
                                                << CutCaptions(&screen).join(u'|').toStdString();
    QDir().mkpath(ScreenshotDir());
    EXPECT_TRUE(screen.grab().save(ScreenshotDir() + QLatin1Char('/') + name + QStringLiteral(".png")));
    screen.reject();
  }
  template <typename Screen, typename... Args>
  void lookAt(Args&&... args) {
    Screen screen(std::forward<Args>(args)...);
    look(screen);
  }
  // A receive dialog over its logic.
  template <typename Logic, typename Screen, typename... Args>
  void lookAtReceive(Args&&... args) {
    Logic logic(std::forward<Args>(args)...);
    lookAt<Screen>(logic);
  }

  bool english() const { return QLatin1String(GetParam()) == QLatin1String("en"); }
  QString person(const char* ja, const char* en) const {
    return english() ? QString::fromUtf8(en) : QString::fromUtf8(ja);
  }
};

TEST_P(UserScreensLook, EveryScreenShowsItsCaptionsWhole) {
  const QString a = addUser(person("山田 花子", "Hannah Grace Yamada"), 2);
  // The longest name a column holds.
  const QString b = addUser(person("寿限無寿限無五劫の擦り切れ海砂利水魚の水", "Maximilianus Aurelius"), 1);
  addUser(person("佐藤 美咲", "Misaki Sato"), 5);
  addUser(person("鈴木 健", "Ken Suzuki"), 4);
  SetCurrentUserId(a);
  lookAt<frmUserRegist>(*db, QString());
  {
    frmUserModify screen(*db, a);
    // The edition decides the fields: targets in the Japanese one, three names in the English one.
    EXPECT_EQ(screen.frameTarget->isVisibleTo(&screen), !english());
    EXPECT_EQ(screen.txtMN->isVisibleTo(&screen), english());
    EXPECT_EQ(screen.txtFN->text(), english() ? QStringLiteral("Hannah") : QStringLiteral("山田 花子"));
    EXPECT_TRUE(screen.optUserIcon[1]->isChecked());
    look(screen);
  }
  {
    frmUserSelectDialog screen(*db, kCallerFormNewCpu);
    screen.lvUserList->setCurrentRow(1);
    look(screen);
  }
  lookAt<frmUserDelete>(*db);

  ReceiveContext ctx;
  GetUserInfo(*db, ctx.deviceOwner, b);
  lookAtReceive<RecvMsgNewCPU, frmRecvMsgNewCPU>(*db, ctx);
  lookAtReceive<RecvMsgNewCPUSelectUser, frmRecvMsgNewCPUSelectUser>(*db, ctx, a);
  lookAtReceive<RecvMsgAlertUser, frmRecvMsgAlertUser>(*db, ctx, a);
  lookAtReceive<RecvMsgAlertReset, frmRecvMsgAlertReset>(*db, ctx);
  EXPECT_TRUE(inst->dialog().shown.empty());
}

INSTANTIATE_TEST_SUITE_P(Editions, UserScreensLook, ::testing::Values("ja", "en"));
