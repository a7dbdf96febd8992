// A throw-away installation of one edition with a fresh database, the pictures of the
// users, and helpers to add users and days, for the user screens and receive dialogs.
#pragma once

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <memory>

#include "frame/catalogue.h"
#include "device/device.h"
#include "receive/receive.h"
#include "device/recorder_image.h"
#include "testsupport/sample_user.h"
#include "frame/shared_values.h"
#include "store/store.h"
#include "testsupport/test_installation.h"

class UserScreenFixture : public ::testing::Test {
 protected:
  void SetUp() override { setUpEdition(QStringLiteral("ja")); }
  void TearDown() override {
    db.reset();
    inst.reset();
  }

  void setUpEdition(const QString& lang) {
    db.reset();
    inst.reset();
    inst = std::make_unique<TestInstallation>(lang);
    ASSERT_TRUE(inst->isValid());
    // The users' pictures and the form look, as an installation has them.
    const QDir images(QStringLiteral(VANTORA_SOURCE_DIR "/dist/common/images"));
    for (const QString& f : images.entryList({QStringLiteral("*.png"), QStringLiteral("*.gif")}))
      QFile::copy(images.filePath(f), inst->path(QStringLiteral("images/") + f));
    LoadCommonFormat();
    SetScreenState(kStateUserSelect);
    QString error;
    QFile::remove(inst->dbFile());
    ASSERT_TRUE(CreateDatabaseFile(inst->dbFile(), kDefaultDbPassword, &error)) << error.toStdString();
    db = std::make_unique<VtDatabase>();
    db->open(inst->dbFile(), kDefaultDbPassword);
  }

  QString addUser(const QString& name, int icon = 1) {
    QString id;
    EXPECT_EQ(RegisterUserByName(*db, name, id), 0) << name.toStdString();
    if (icon != 1) {
      UserInfo u;
      GetUserInfo(*db, u, id);
      u.ICONINDEX = static_cast<std::int16_t>(icon);
      EXPECT_EQ(EditUser(*db, u), 0);
    }
    return id;
  }

  RecorderImageOptions recorder(int days, const QDate& lastDay = QDate(2024, 6, 30)) const {
    RecorderImageOptions o;
    o.numbers = RecorderNumbers::FromConfig();
    o.kind = RecorderKind::BrioNormal;
    o.days = days;
    o.lastDay = lastDay;
    o.cpuNo = QStringLiteral("A00042");
    return o;
  }
  void place(const RecorderImageOptions& o) {
    QDir(inst->readerPath()).removeRecursively();
    QDir().mkpath(inst->readerPath());
    QString error;
    ASSERT_TRUE(WriteRecorderImage(o, inst->readerPath() + QStringLiteral("/recorder.img"), &error))
        << error.toStdString();
  }

  int count(const QString& sql, const QString& bind1 = QString()) {
    Statement st(*db, sql);
    if (!bind1.isNull()) st.bind(1, bind1);
    return st.step() ? st.text(0).toInt() : -1;
  }

  // True when a message of that catalogue code was shown (with or without extra text).
  bool wasShown(const QString& code) {
    const auto rec = FindMessage(code);
    if (!rec) return false;
    const QString text = BuildMessageText(*rec, QString(), false);
    for (const auto& shown : inst->dialog().shown)
      if (shown.text == text || shown.text.startsWith(text + QStringLiteral("\r\n"))) return true;
    return false;
  }
  QString lastShownText() {
    return inst->dialog().shown.empty() ? QString() : inst->dialog().shown.back().text;
  }

  std::unique_ptr<TestInstallation> inst;
  std::unique_ptr<VtDatabase> db;
};
