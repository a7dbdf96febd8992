// Receive workflow: the two stages that move one recorder's days into the database
// (management block and checks, then the pages), the page arithmetic of the recorder's
// ring, and the dialogs that settle whose recorder it is. Everything here is plain
// logic: a screen (or the command-line tool, or a test) supplies the progress and
// cancel, the dialog interface and the answers to the questions.
#pragma once

#include <QString>
#include <QStringList>
#include <memory>
#include <optional>

#include "device/device.h"
#include "frame/dialog.h"
#include "store/db_safety.h"
#include "store/store.h"

// Caller form value while a user screen was opened from the new-recorder question.
inline const QString kCallerFormNewCpu = QStringLiteral("FORM_NEWCPU");

// Main screen states the resolution distinguishes.
inline const QString kStateUserSelect = QStringLiteral("S_USERSELECT");
inline const QString kStateJobSelect = QStringLiteral("S_JOBSELECT");
inline const QString kStateJob = QStringLiteral("S_JOB");

// Caption sections of the screens (resource profile file).
inline const QString kSectionRecvManagement = QStringLiteral("MANEGEMENTRECEIVE");
inline const QString kSectionRecvData = QStringLiteral("RECEIVING");
inline const QString kSectionNewCpu = QStringLiteral("NEWCPU");
inline const QString kSectionNewCpuSelectUser = QStringLiteral("NEWCPUSETUSER");
inline const QString kSectionAlertUser = QStringLiteral("USINGALART");
inline const QString kSectionAlertReset = QStringLiteral("USINGALART_RESET");

// The values of the receive under way, handed from stage to dialog to stage. One object
// per receive; nothing of it lives in a global.
struct ReceiveContext {
  // The five values that every ending clears.
  QString receiveId;    // "R" + nine digits
  QString rawFilePath;  // RAWDATA_PATH/<receive id>.bin
  QString cpuNo;
  QString receiveUserId;
  UserInfo deviceOwner;  // the user found for the CPU number; empty when none

  DeviceState device;   // hUSB, tpFlashManage, tpFlashData, start page record, kind, language
  bool received = false;  // set when the data stage stored the receive
  QString callerForm;     // kCallerFormNewCpu while a user screen was opened from NewCPU

  // What the data stage worked out and did.
  qint16 startPage = 0;
  qint16 endPage = 0;
  qint16 pageCount = 0;
  int pagesFetched = 0;
  int daysStored = 0;
  int pagesSkipped = 0;  // pages without a valid date (erased, zeroed or damaged)

  // The history row of this receive, written in the data stage's commit together with
  // its days (the stale-page ending writes it at once: that ending keeps it).
  bool historyPending = false;
  QString historyDate;  // "yyyyMMddHHmmss"

  // The installation's lock, held from the management stage to the end of the receive:
  // one receive at a time per installation, whichever program runs it.
  std::shared_ptr<InstallationLock> lock;

  // Every catalogue code shown during this receive, in order (for reports and tests).
  QStringList shownCodes;

  // CPU_TABLE rows a dialog released for this receive (the owner's row of a recorder
  // taken over, a user's earlier recorder). They are deleted in the data stage's commit,
  // so a receive that does not complete leaves the assignments as they were.
  struct CpuRow {
    QString cpuNo;
    QString userId;
  };
  QList<CpuRow> releasedCpuRows;

  // What the five values held when they were last cleared, for reports.
  struct {
    QString receiveId;
    QString cpuNo;
    QString receiveUserId;
  } previous;

  // Clears the five values (the endings and a completed receive do this).
  void clearValues();
};

// What a receive works with. The clock carries the protocol's waits; tests and the
// command-line tool's --fast pass a clock that does not wait.
struct ReceiveServices {
  VtDatabase& db;
  TavoReader& reader;
  DeviceClock& clock;
  ProgressInterface& progress;
};

// How a stage, a dialog or the whole receive ended.
enum class ReceiveEnding {
  Continue,    // a stage finished its part; the next one takes over
  Received,    // the days are stored
  Cancelled,   // the cancel ending (cancel button or a dialog's cancel)
  Failed,      // the error ending
  Refused,     // the recorder is of no accepted kind
  StalePage,   // the page being recorded is older than the block ("MDWN-I-0001")
  NoRecorder,  // the data stage found no recorder on its new handle
  Busy,        // another program is writing to this installation ("COMN-W-0001")
};
QString ReceiveEndingName(ReceiveEnding ending);

// ---- page arithmetic and reset detection ----

// The pages to fetch from the ring: start, end and count. With the day limit on and a
// span above it the recorder's own end page counts. Unless wholeRange is set or the
// configuration asks for full receives, the start page's day is compared with what the
// database holds for that page; when equal, the receive starts again at the user's
// LAST_PAGE and that page's old day row is deleted first (its profile row stays, as
// only TIME_MEASUREMENT is cleared). False when the user can't be read or a deletion fails.
bool CalcReceivePage(VtDatabase& db, const ReceiveContext& ctx, qint16& startPage,
                     qint16& endPage, qint16& pageCount, bool wholeRange);
// True when the recorder looks reset since the user's last receive.
bool CheckPMReset(VtDatabase& db, const ReceiveContext& ctx, const QString& userId);
// Page number of the i-th page (1-based) of the day loop, going round the ring once by
// subtraction: a page equal to the ring size stands.
qint16 DayLoopPage(qint16 startPage, int i, qint16 ringSize);
// The end page that LAST_PAGE will name: RecordingPage, or RecordEndPage with the day
// limit on and the span above it.
qint16 ReceiveEndPage(const DeviceState& device);

// ---- the two stages ----

// frmRecvManagement's work: identifier, raw file, management block, acceptance,
// history row, the checks of the current and start pages. Continue hands over to the
// resolution with ctx.cpuNo set; every other result has run its ending.
class RecvManagementStage {
 public:
  RecvManagementStage(const ReceiveServices& services, ReceiveContext& ctx);
  // Marks the recorder as handled and the screen as open; status to its first caption.
  void Form_Load();
  ReceiveEnding ExecTransfer();
  void Form_Unload();

 private:
  bool cancelled();
  ReceiveEnding errorEnding(const QString& code, const QString& description = QString());
  ReceiveEnding cancelEnding();
  ReceiveEnding refusedEnding();

  ReceiveServices s_;
  ReceiveContext& ctx_;
};

// frmRecvData's work: a new handle, the recorder tied to the receive user, the pages
// fetched and stored, the user's body data and bookkeeping updated, all in one
// transaction committed at the end. A cancel, failure or kill before the commit leaves
// the database as it was before the receive (the overlap day included); pages without a
// valid date are skipped and counted.
class RecvDataStage {
 public:
  RecvDataStage(const ReceiveServices& services, ReceiveContext& ctx);
  void Form_Load();
  ReceiveEnding ExecTransfer();
  void Form_Unload();

 private:
  bool cancelled();
  ReceiveEnding errorEnding(const QString& code, const QString& description = QString());
  ReceiveEnding cancelEnding();
  void rollback();

  ReceiveServices s_;
  ReceiveContext& ctx_;
  std::optional<Transaction> tx_;
};

// Takes the installation's lock for the receive (waiting the shared writer wait). False
// when another program holds it; "COMN-W-0001" has then been shown.
bool LockInstallationForReceive(VtDatabase& db, ReceiveContext& ctx);
// The summary of a receive in the edition's words: "58 days stored, 2 pages unreadable".
QString ReceiveSummaryText(int daysStored, int pagesSkipped);

// Shows a catalogue message and notes its code in the receive's list.
void ShowReceiveMessage(ReceiveContext& ctx, const QString& code,
                        const QString& extra = QString());
// The error report of a failed receive: the message (if any), then "COMN-C-0001" with the
// description, then the receive's rows and raw file removed and the values cleared.
// Without a handle open (dialogs) nothing is closed.
void ReceiveErrorReport(VtDatabase& db, ReceiveContext& ctx, const QString& code,
                        const QString& description);
// The dialogs' cancel ending: the receive's rows and raw file removed, values cleared.
void ReceiveCancelCleanup(VtDatabase& db, ReceiveContext& ctx);
// Frees a user of a recorder as VTDB_DeleteCPUNoOnUserId does (the user's first row):
// the row is noted in ctx.releasedCpuRows and deleted in the data stage's commit. False
// when the user's rows cannot be read.
bool ReleaseRecorderOfUser(VtDatabase& db, ReceiveContext& ctx, const QString& userId);
// Forgets the released rows (the endings that do not complete a receive).
void RestoreReleasedCpuRows(VtDatabase& db, ReceiveContext& ctx);

// ---- whose recorder it is ----

// What follows the management stage.
enum class ReceiveDialog {
  OpenRecvData,      // the receive user is settled
  NewCPU,            // frmRecvMsgNewCPU
  NewCPUSelectUser,  // frmRecvMsgNewCPUSelectUser
  AlertUser,         // frmRecvMsgAlertUser
  AlertReset,        // frmRecvMsgAlertReset
};
QString ReceiveDialogName(ReceiveDialog dialog);

// The decision at the end of the management stage: looks up the owner of ctx.cpuNo,
// keeps it in ctx.deviceOwner, and either sets the receive user or names the dialog.
ReceiveDialog DecideReceiveUser(VtDatabase& db, ReceiveContext& ctx, const QString& screenState,
                                const QString& currentUserId);

// What a dialog's button leads to.
enum class DialogAction {
  OpenRecvData,    // receive user set; the data stage opens
  OpenUserRegist,  // frmUserRegist with caller form FORM_NEWCPU
  OpenUserSelect,  // frmUserSelectDialog with caller form FORM_NEWCPU
  OpenNewCPU,      // back to the new-recorder question
  Close,           // the user screen closes and nothing follows (not reached from NewCPU)
  Cancelled,       // the cancel ending has run
  Failed,          // "DDWN-C-0006" and the error report have run
};

// A user's names as the dialogs lay them out: the Japanese edition shows the whole name
// with a blank and the honorific caption (lblSama's) behind it in the first row and hides
// the other two rows; the English one shows first, middle and last name. lblSama itself
// is never shown on its own.
struct NameRows {
  QString first;
  QString middle;
  QString last;
  bool middleVisible = true;
  bool lastVisible = true;
};
NameRows LayOutNames(const UserInfo& user, const QString& samaCaption);

// frmRecvMsgNewCPU: a new recorder and no user open.
class RecvMsgNewCPU {
 public:
  RecvMsgNewCPU(VtDatabase& db, ReceiveContext& ctx);
  bool btnSelectUserEnabled() const { return selectEnabled_; }
  DialogAction btnCreateUser_Click();
  DialogAction btnSelectUser_Click();
  DialogAction btnNewCPUCancel_Click();

 private:
  VtDatabase& db_;
  ReceiveContext& ctx_;
  bool selectEnabled_ = false;
};

// The user screens' end when they were reached from the new-recorder question.
// Registration done: the new user receives and becomes the current user.
DialogAction NewCpuUserRegistered(ReceiveContext& ctx, const QString& newUserId);
// Registration or selection cancelled: back to the question when opened from it.
DialogAction NewCpuUserScreenCancelled(ReceiveContext& ctx);
// A user picked in the selection: freed of an earlier recorder, then the receive user.
DialogAction NewCpuUserSelected(VtDatabase& db, ReceiveContext& ctx, const QString& userId);

// frmRecvMsgNewCPUSelectUser: a new recorder while a user is open.
class RecvMsgNewCPUSelectUser {
 public:
  RecvMsgNewCPUSelectUser(VtDatabase& db, ReceiveContext& ctx, QString currentUserId);
  const UserInfo& currentUser() const { return current_; }
  NameRows names() const;
  DialogAction btnReceive_Click();
  DialogAction btnCancel_Click();

 private:
  VtDatabase& db_;
  ReceiveContext& ctx_;
  QString currentUserId_;
  UserInfo current_;
};

// frmRecvMsgAlertUser: the recorder belongs to another user than the one open.
class RecvMsgAlertUser {
 public:
  RecvMsgAlertUser(VtDatabase& db, ReceiveContext& ctx, QString currentUserId);
  const UserInfo& owner() const { return ctx_.deviceOwner; }
  const UserInfo& currentUser() const { return current_; }
  NameRows ownerNames() const;
  NameRows currentNames() const;
  DialogAction btnReceive_Click();
  DialogAction btnUsingAlertCancel_Click();

 private:
  VtDatabase& db_;
  ReceiveContext& ctx_;
  QString currentUserId_;
  UserInfo current_;
};

// frmRecvMsgAlertReset: the recorder may have been reset since its owner's last receive.
class RecvMsgAlertReset {
 public:
  RecvMsgAlertReset(VtDatabase& db, ReceiveContext& ctx);
  const UserInfo& owner() const { return ctx_.deviceOwner; }
  NameRows ownerNames() const;
  DialogAction btnReceive_Click();
  DialogAction btnUsingAlertCancel_Click();

 private:
  VtDatabase& db_;
  ReceiveContext& ctx_;
};

// The person's answers to the dialogs. The desktop shows the screens; tests and the
// command-line tool answer from a script or from flags.
class ReceiveQuestions {
 public:
  enum class NewCpuAnswer { CreateUser, SelectUser, Cancel };
  virtual ~ReceiveQuestions() = default;
  virtual NewCpuAnswer newRecorder(const RecvMsgNewCPU& dialog) = 0;
  // True for btnReceive, false for the cancel button.
  virtual bool receiveForCurrentUser(const RecvMsgNewCPUSelectUser& dialog) = 0;
  virtual bool takeOverRecorder(const RecvMsgAlertUser& dialog) = 0;
  virtual bool receiveResetRecorder(const RecvMsgAlertReset& dialog) = 0;
  // The registration screen: the new user's USER_ID once stored, "" when cancelled.
  virtual QString registerUser(VtDatabase& db) = 0;
  // The selection screen: the picked USER_ID, "" when cancelled.
  virtual QString selectUser(VtDatabase& db) = 0;
};

// Registers a user as the registration screen does with its defaults: group
// "G000000001", targets from USER_DEFAULT, first icon. name is the whole name in the
// Japanese edition, "FIRST [MIDDLE] LAST" in the English one. The SetUser code, 0 when
// stored (userId set); -1 when the name can't be split.
// A name already registered by an earlier receive that did not complete (no recorder and
// no days yet) gives that user again instead of refusing the name.
int RegisterUserByName(VtDatabase& db, const QString& name, QString& userId);
// The name as RegisterUserByName splits it into the record's names; false when it can't.
bool SplitNameForRegistration(const QString& name, UserInfo& user);
// The user of that name who has no recorder and no days (one a receive registered and
// did not complete); "" when there is none.
QString UnusedUserOfName(VtDatabase& db, const UserInfo& user);
// The USER_ID stored for id compared without regard to case and blanks (the one meant
// when a person typed it); "" when there is none. Callers refuse anything but an exact match.
QString ExactUserId(VtDatabase& db, const QString& id);

// ---- the whole receive ----

struct ReceiveReport {
  ReceiveEnding ending = ReceiveEnding::Continue;
  QStringList messageCodes;  // every catalogue code shown, in order
  QStringList dialogs;       // the dialogs that were asked, in order
  QString kind;
  QString lang;
  QString cpuNo;
  QString receiveId;
  QString userId;  // the receive user
  qint16 startPage = 0;
  qint16 endPage = 0;
  qint16 pageCount = 0;
  int pagesFetched = 0;
  int daysStored = 0;
  int pagesSkipped = 0;
  QString summary;  // ReceiveSummaryText of a completed receive
};

// Runs a receive from the management block to the last page, asking the questions on
// the way. Reads the main screen's state and current user from the shared values and,
// on success, makes the receive user the current user in state "S_JOB".
class ReceiveWorkflow {
 public:
  ReceiveWorkflow(const ReceiveServices& services, ReceiveQuestions& questions);
  ReceiveReport Run();

 private:
  ReceiveEnding resolve(ReceiveReport& report);
  ReceiveEnding runNewCpu(ReceiveReport& report);

  ReceiveServices s_;
  ReceiveQuestions& questions_;
  ReceiveContext ctx_;
};
