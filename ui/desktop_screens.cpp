#include "ui/desktop_screens.h"

#include "frame/catalogue.h"
#include "frame/config.h"
#include "ui/frmProgressBar.h"
#include "ui/frmUserDelete.h"
#include "ui/frmUserModify.h"
#include "ui/frmUserRegist.h"
#include "ui/receive_questions.h"

QtUserScreens::QtUserScreens(VtDatabase& db) : db_(db) {}

QtUserScreens::~QtUserScreens() = default;

QString QtUserScreens::registerUser(QWidget* parent) {
  frmUserRegist screen(db_, QString(), parent);
  return screen.exec() == QDialog::Accepted ? screen.newUserId() : QString();
}

bool QtUserScreens::modifyUser(QWidget* parent, const QString& userId) {
  frmUserModify screen(db_, userId, parent);
  return screen.exec() == QDialog::Accepted;
}

bool QtUserScreens::deleteUsers(QWidget* parent) {
  frmUserDelete screen(db_, parent);
  return screen.exec() == QDialog::Accepted;
}

ReceiveQuestions& QtUserScreens::receiveQuestions(QWidget* parent) {
  questions_ = std::make_unique<QtReceiveQuestions>(parent);
  return *questions_;
}

int CompactInProgressBar(QWidget* parent) {
  frmProgressBar bar(nullptr, parent);
  const QString section = QStringLiteral("PROGRESSBAR");
  bar.ProcSetExecParam(1, GetIniCaption(section, QStringLiteral("CAPTION_TITLE_COMPACT")),
                       GetIniCaption(section, QStringLiteral("CAPTION_STATUS_COMPACT")),
                       GetIniCaption(section, QStringLiteral("CAPTION_CMDCANCEL")), kCompactProgressMaximum, 0,
                       false);
  bar.ProcSetCompactDB(Ini_GetDbName());
  bar.exec();
  return bar.ProcGetExecRetParam();
}
