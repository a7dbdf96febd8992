// The receive fixture's installation with the users' pictures and the form look added, for
// the user screens and receive dialogs.
#pragma once

#include "frame/catalogue.h"
#include "testsupport/receive_fixture.h"
#include "testsupport/sample_user.h"

class UserScreenFixture : public ReceiveFixture {
 protected:
  void SetUp() override { setUpEdition(QStringLiteral("ja")); }

  void setUpEdition(const QString& lang) {
    ReceiveFixture::setUpEdition(lang);
    if (HasFatalFailure()) return;
    const QDir images(QStringLiteral(VANTORA_SOURCE_DIR "/dist/common/images"));
    for (const QString& f : images.entryList({QStringLiteral("*.png"), QStringLiteral("*.gif")}))
      QFile::copy(images.filePath(f), inst->path(QStringLiteral("images/") + f));
    LoadCommonFormat();
  }

  // A registered user with the given picture.
  QString addUser(const QString& name, int icon = 1) {
    const QString id = ReceiveFixture::addUser(name);
    if (icon != 1) {
      UserInfo u;
      GetUserInfo(*db, u, id);
      u.ICONINDEX = static_cast<std::int16_t>(icon);
      EXPECT_EQ(EditUser(*db, u), 0);
    }
    return id;
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
};
