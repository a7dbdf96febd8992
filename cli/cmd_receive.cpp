// vantora-cli receive: one whole receive against the configured reader, headless. The
// dialogs' questions are answered from the flags; a question the flags don't answer
// ends as that dialog's cancel.
#include <QFile>
#include <QTextStream>
#include <exception>
#include <memory>

#include "cli/commands.h"
#include "device/device.h"
#include "frame/catalogue.h"
#include "frame/config.h"
#include "frame/dialog.h"
#include "frame/shared_values.h"
#include "receive/receive.h"
#include "store/store.h"

namespace {

// Progress goes to nowhere; a headless receive is never cancelled.
class QuietProgress : public ProgressInterface {
 public:
  void setMaximum(int) override {}
  void setValue(int) override {}
  void setStatus(const QString&) override {}
  bool cancelRequested() override { return false; }
};

// Answers from the flags. Each flag answers its question once, so a registration that
// is refused (and returns to the new-recorder question) ends as cancel there.
class FlagQuestions : public ReceiveQuestions {
 public:
  QString selectId;  // --as in S_USERSELECT
  QString newName;   // --new-user
  int yesNo = 0;     // 1 --yes, -1 --no, 0 neither
  QTextStream* err = nullptr;

  NewCpuAnswer newRecorder(const RecvMsgNewCPU& dialog) override {
    if (!newName.isEmpty() && !nameUsed_) return NewCpuAnswer::CreateUser;
    if (!selectId.isEmpty() && !selectUsed_ && dialog.btnSelectUserEnabled()) return NewCpuAnswer::SelectUser;
    if (nameUsed_ || selectUsed_)
      note(QStringLiteral("new recorder: asked again and no answer is left, cancelled"));
    else
      note(QStringLiteral("new recorder: no --new-user or --as answer, cancelled"));
    return NewCpuAnswer::Cancel;
  }
  bool receiveForCurrentUser(const RecvMsgNewCPUSelectUser&) override {
    return answer(QStringLiteral("new recorder for the current user"));
  }
  bool takeOverRecorder(const RecvMsgAlertUser& dialog) override {
    return answer(QStringLiteral("recorder of another user (") + dialog.owner().USER_ID.trimmed() +
                  QStringLiteral(")"));
  }
  bool receiveResetRecorder(const RecvMsgAlertReset&) override {
    return answer(QStringLiteral("recorder may have been reset"));
  }
  QString registerUser(VtDatabase& db) override {
    nameUsed_ = true;
    QString userId;
    const int rc = RegisterUserByName(db, newName, userId);
    if (rc == 0) return userId;
    if (rc == -1) {
      note(QStringLiteral("--new-user: give the name as \"FIRST [MIDDLE] LAST\""));
    } else {
      // The registration screen's messages for its refusals, each with its reason.
      UserInfo asTyped;
      SplitNameForRegistration(newName, asTyped);
      QString code;
      QString argument;
      UserRefusalMessage(rc, asTyped, code, argument);
      if (!code.isEmpty()) MessageDialog(code, argument);
      note(QStringLiteral("registration refused (code %1)").arg(rc));
    }
    return QString();
  }
  QString selectUser(VtDatabase&) override {
    selectUsed_ = true;
    return selectId;
  }
  bool nameUsed() const { return nameUsed_; }
  bool selectUsed() const { return selectUsed_; }

 private:
  bool answer(const QString& what) {
    if (yesNo == 0) note(what + QStringLiteral(": no --yes or --no answer, cancelled"));
    return yesNo > 0;
  }
  void note(const QString& text) {
    if (err) *err << "receive: " << text << "\n" << Qt::flush;
  }
  bool nameUsed_ = false;
  bool selectUsed_ = false;
};

// Real waits shortened by a factor (crash tests: a receive that takes long enough to be
// killed at any point, without the minutes of a real reader).
class ScaledClock : public SystemDeviceClock {
 public:
  explicit ScaledClock(int scale) : scale_(scale) {}
  void sleepMs(int ms) override { SystemDeviceClock::sleepMs(ms / scale_); }

 private:
  int scale_;
};

int Usage(QTextStream& err, const QString& text) {
  err << "receive: " << text << "\n"
      << "usage: receive [--as USER_ID | --new-user NAME] [--state S_USERSELECT|S_JOB] [--yes|--no] [--fast | --clock-scale N]\n";
  return 2;
}

}  // namespace

int cmd_receive(const QStringList& args) {
  QTextStream out(stdout);
  QTextStream err(stderr);
  QString asUser, newUser, state = kStateUserSelect;
  int yesNo = 0;
  bool fast = false;
  int clockScale = 0;
  for (int i = 0; i < args.size(); ++i) {
    const QString& a = args[i];
    auto value = [&](QString& target) {
      if (i + 1 >= args.size()) return false;
      target = args[++i];
      return true;
    };
    if (a == QLatin1String("--as")) {
      if (!value(asUser) || asUser.trimmed().isEmpty()) return Usage(err, QStringLiteral("--as needs a USER_ID"));
    } else if (a == QLatin1String("--new-user")) {
      if (!value(newUser) || newUser.trimmed().isEmpty()) return Usage(err, QStringLiteral("--new-user needs a NAME"));
    } else if (a == QLatin1String("--state")) {
      if (!value(state)) return Usage(err, QStringLiteral("--state needs S_USERSELECT or S_JOB"));
    } else if (a == QLatin1String("--yes") || a == QLatin1String("--no")) {
      const int v = a == QLatin1String("--yes") ? 1 : -1;
      if (yesNo != 0 && yesNo != v) return Usage(err, QStringLiteral("--yes and --no exclude each other"));
      yesNo = v;
    } else if (a == QLatin1String("--fast")) {
      fast = true;
    } else if (a == QLatin1String("--clock-scale")) {
      QString v;
      bool ok = false;
      if (value(v)) clockScale = v.toInt(&ok);
      if (!ok || clockScale < 1) return Usage(err, QStringLiteral("--clock-scale needs a whole number from 1"));
    } else {
      return Usage(err, QStringLiteral("unknown argument ") + a);
    }
  }
  if (!asUser.isEmpty() && !newUser.isEmpty())
    return Usage(err, QStringLiteral("--as and --new-user exclude each other"));
  if (state != kStateUserSelect && state != kStateJob)
    return Usage(err, QStringLiteral("--state must be S_USERSELECT or S_JOB"));
  if (state == kStateJob && asUser.isEmpty())
    return Usage(err, QStringLiteral("--state S_JOB needs --as USER_ID (the user open on the main screen)"));

  if (!Ini_LoadConfig()) {
    // Missing, empty, unreadable or malformed: each in the edition's words when the
    // messages can be read.
    if (QFile::exists(QStringLiteral("ACTA.res")) && LoadResource())
      MessageDialog(Ini_ConfigProblemCode());
    else
      err << "receive: the configuration (config.cnf) was not found; run from an installation's bin/\n";
    return 1;
  }
  SetLangCode(QString::number(Ini_GetLang()));
  SetLogLevel(QString::number(Ini_GetLogLevel()));
  if (!LoadResource()) return 1;
  const bool emulated = Ini_GetReaderType() != QLatin1String("LIBRARY");
  if (fast && !emulated) return Usage(err, QStringLiteral("--fast works with the emulated reader only"));

  VtDatabase db;
  QString dbPath = Ini_GetDbName();
  QString dbPassword = Ini_GetDbPassword();
  if (VTDB_Open(db, dbPath, dbPassword) != 0) return 1;
  // --as names a user the person could have picked or have open: one that exists. Days
  // received for an unknown identifier would be stored under nobody.
  // Identifiers are matched exactly: days stored under "u000000001" would never show
  // in the charts of "U000000001".
  if (!asUser.isEmpty()) {
    const QString exact = ExactUserId(db, asUser.trimmed());
    if (exact != asUser.trimmed()) {
      err << "receive: no user " << asUser.trimmed();
      if (!exact.isEmpty()) err << "; did you mean " << exact << "?";
      else err << " (see the users command)";
      err << "\n";
      VTDB_Close(db);
      return 1;
    }
  }

  std::unique_ptr<TavoReader> reader = CreateConfiguredReader();
  SystemDeviceClock realClock;
  NoWaitClock noWait;
  ScaledClock scaled(clockScale > 0 ? clockScale : 1);
  DeviceClock& clock = fast ? static_cast<DeviceClock&>(noWait)
                       : clockScale > 0 ? static_cast<DeviceClock&>(scaled)
                                        : static_cast<DeviceClock&>(realClock);
  QuietProgress progress;

  SetScreenState(state);
  SetCurrentUserId(state == kStateJob ? asUser.trimmed() : QString());
  SetCurrentUserName(QString());
  FlagQuestions questions;
  questions.selectId = state == kStateJob ? QString() : asUser.trimmed();
  questions.newName = newUser;
  questions.yesNo = yesNo;
  questions.err = &err;

  ReceiveServices services{db, *reader, clock, progress};
  ReceiveWorkflow workflow(services, questions);
  const ReceiveReport r = workflow.Run();
  reader->Tavo_CloseAll();
  VTDB_Close(db);

  out << "ending: " << ReceiveEndingName(r.ending) << "\n";
  if (!r.kind.isEmpty()) out << "kind: " << r.kind << "\n" << "language: " << r.lang << "\n";
  if (!r.cpuNo.isEmpty()) out << "cpu: " << r.cpuNo << "\n";
  if (!r.receiveId.isEmpty()) out << "receive id: " << r.receiveId << "\n";
  if (!r.dialogs.isEmpty()) out << "dialogs: " << r.dialogs.join(QStringLiteral(", ")) << "\n";
  if (r.ending == ReceiveEnding::Received) {
    out << "user: " << r.userId << "\n"
        << "pages: " << r.startPage << " to " << r.endPage << " (" << r.pageCount << ")\n"
        << "pages fetched: " << r.pagesFetched << "\n"
        << "days stored: " << r.daysStored << "\n"
        << "pages skipped: " << r.pagesSkipped << "\n"
        << "summary: " << r.summary << "\n";
  }
  if (!r.messageCodes.isEmpty()) out << "messages: " << r.messageCodes.join(QStringLiteral(", ")) << "\n";
  out.flush();
  // A recorder that already has its owner asks no question: say so when a flag that
  // would have answered one was not used.
  if (r.ending == ReceiveEnding::Received) {
    if (!newUser.isEmpty() && !questions.nameUsed())
      err << "receive: --new-user not used: the recorder belongs to " << r.userId << "\n";
    if (state == kStateUserSelect && !asUser.isEmpty() && !questions.selectUsed() &&
        r.userId != asUser.trimmed())
      err << "receive: --as not used: the recorder belongs to " << r.userId << "\n";
  }
  return r.ending == ReceiveEnding::Received ? 0 : 1;
}
