// A fresh installation with a new encrypted database made as initdb makes it, opened as
// the working connection.
#pragma once

#include <gtest/gtest.h>

#include <memory>

#include "store/store.h"
#include "testsupport/test_installation.h"

class StoreTest : public ::testing::Test {
 protected:
  explicit StoreTest(const QString& lang = QStringLiteral("ja")) : inst_(lang) {}

  void SetUp() override {
    ASSERT_TRUE(inst_.isValid());
    QString error;
    ASSERT_TRUE(CreateDatabaseFile(inst_.dbFile(), kDefaultDbPassword, &error)) << error.toStdString();
    QString path = inst_.dbFile();
    QString password;
    ASSERT_EQ(VTDB_Open(db_, path, password), 0);
  }

  // A user row with only its id, group and nick name; hasUser tells whether it is stored.
  void addUser(const QString& id) {
    UserRecord u;
    u.USER_ID = id;
    u.GROUP_ID = kDefaultGroupId;
    u.NICK_NAME = id;
    ASSERT_TRUE(VTDB_SetUserInfo(db_, u));
  }
  bool hasUser(const QString& id) {
    UserRecord u;
    return VTDB_GetUserInfoFromUserId(db_, id, u);
  }

  // Messages shown through the dialog interface so far.
  size_t messages() { return inst_.dialog().shown.size(); }

  // True when the trace log has a line of that level and name (and message, if given).
  bool traced(const QString& level, const QString& name, const QString& message = QString()) {
    return inst_.logged(level, name, message);
  }

  TestInstallation inst_;
  VtDatabase db_;
};

class StoreTestEn : public StoreTest {
 protected:
  StoreTestEn() : StoreTest(QStringLiteral("en")) {}
};
