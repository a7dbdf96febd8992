// Pictures named in the resource profile file: shown when readable, else logged while
// the control keeps what it had.
#include <QFile>
#include <QImage>
#include <QLabel>
#include <QPushButton>
#include <gtest/gtest.h>

#include "frame/shared_values.h"
#include "testsupport/test_installation.h"
#include "ui/ini_picture.h"

namespace {

TEST(SetIniPictureTest, ShowsAReadablePictureAndKeepsTheOldOneOtherwise) {
  TestInstallation inst;
  ASSERT_TRUE(inst.isValid());
  SetLogLevel(QStringLiteral("0"));
  const QString good = inst.path(QStringLiteral("images/good.png"));
  QImage image(24, 16, QImage::Format_RGB32);
  image.fill(Qt::red);
  ASSERT_TRUE(image.save(good));
  const QString broken = inst.path(QStringLiteral("images/broken.png"));
  ASSERT_TRUE(WriteBytes(broken, "not a picture at all"));
  inst.setResource(QStringLiteral("TEST"), QStringLiteral("GOOD"), good);
  inst.setResource(QStringLiteral("TEST"), QStringLiteral("BROKEN"), broken);
  inst.setResource(QStringLiteral("TEST"), QStringLiteral("MISSING"),
                   inst.path(QStringLiteral("images/none.png")));

  QLabel label;
  SetIniPicture(label, QStringLiteral("TEST"), QStringLiteral("GOOD"));
  ASSERT_EQ(label.pixmap().size(), QSize(24, 16));

  for (const char* key : {"BROKEN", "MISSING"}) {
    SetIniPicture(label, QStringLiteral("TEST"), QLatin1String(key));
    EXPECT_EQ(label.pixmap().size(), QSize(24, 16)) << key;
  }

  const QString log = inst.traceText();
  EXPECT_TRUE(log.contains(QStringLiteral("SetIniPicture "))) << log.toStdString();
  EXPECT_TRUE(log.contains(QStringLiteral("image file not found: TEST,MISSING"))) << log.toStdString();
  EXPECT_FALSE(log.contains(QStringLiteral("TEST,BROKEN")));

  QPushButton button;
  SetIniPicture(button, QStringLiteral("TEST"), QStringLiteral("GOOD"));
  EXPECT_FALSE(button.icon().isNull());
  EXPECT_EQ(button.iconSize(), QSize(24, 16));
}

}  // namespace
