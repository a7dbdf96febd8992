// Whose recorder it is: the decision after the management stage and the logic of the
// four dialogs that ask the person.
#include <QRegularExpression>
#include <exception>

#include "frame/catalogue.h"
#include "frame/config.h"
#include "frame/shared_values.h"
#include "frame/trace.h"
#include "frame/vbformat.h"
#include "receive/receive.h"

namespace {

bool EnglishEdition() {
  QString code = GetLangCode();
  if (code.isEmpty()) code = QString::number(Ini_GetLang());
  return code != QStringLiteral("0");
}

bool UserOpenOnMainScreen(const QString& state) {
  return state == kStateJob || state == kStateJobSelect;
}

void Click(const QString& form, const QString& button) {
  WriteTrace(QStringLiteral("0"), form, button + QStringLiteral("_Click Start"));
}

// Reads the user open on the main screen for a dialog; "UEDT-C-0004" when it can't.
UserInfo ReadCurrentUser(VtDatabase& db, ReceiveContext& ctx, const QString& userId) {
  UserInfo user;
  if (!GetUserInfo(db, user, userId)) {
    ShowReceiveMessage(ctx, QStringLiteral("UEDT-C-0004"));
    user = UserInfo{};
  }
  return user;
}

QString Sama(const QString& section) {
  return GetIniCaption(section, QStringLiteral("CAPTION_LBLSAMA"));
}

}  // namespace

bool ReleaseRecorderOfUser(VtDatabase& db, ReceiveContext& ctx, const QString& userId) {
  // The row the deletion will take: the user's first, in the order the rows were added.
  // Rows already noted for this receive count as gone.
  try {
    Statement st(db, QStringLiteral("SELECT CPU_NO FROM [CPU_TABLE] WHERE USER_ID = ? ORDER BY rowid"));
    st.bind(1, userId);
    int noted = 0;
    for (const auto& row : ctx.releasedCpuRows)
      if (row.userId == userId) ++noted;
    while (st.step()) {
      if (noted-- > 0) continue;
      ctx.releasedCpuRows.append({st.text(0), userId});
      break;
    }
    return true;
  } catch (const StoreError& e) {
    db.setLastError(QString::number(e.code()), e.text());
    WriteTrace(QStringLiteral("2"), QStringLiteral("VTDB_DeleteCPUNoOnUserId"), e.text());
    return false;
  }
}

void RestoreReleasedCpuRows(VtDatabase&, ReceiveContext& ctx) {
  // Nothing was deleted yet: the deletions belong to the data stage's commit.
  ctx.releasedCpuRows.clear();
}

QString ReceiveDialogName(ReceiveDialog dialog) {
  switch (dialog) {
    case ReceiveDialog::OpenRecvData: return QStringLiteral("frmRecvData");
    case ReceiveDialog::NewCPU: return QStringLiteral("frmRecvMsgNewCPU");
    case ReceiveDialog::NewCPUSelectUser: return QStringLiteral("frmRecvMsgNewCPUSelectUser");
    case ReceiveDialog::AlertUser: return QStringLiteral("frmRecvMsgAlertUser");
    case ReceiveDialog::AlertReset: return QStringLiteral("frmRecvMsgAlertReset");
  }
  return QString();
}

ReceiveDialog DecideReceiveUser(VtDatabase& db, ReceiveContext& ctx, const QString& screenState,
                                const QString& currentUserId) {
  // An unknown CPU number gives an empty record; a number whose user is gone counts the
  // same as unknown.
  UserInfo owner;
  const bool found = GetUserInfoFromCPUNo(db, owner, ctx.cpuNo) && !owner.USER_ID.trimmed().isEmpty();
  const bool userOpen = UserOpenOnMainScreen(screenState);
  if (!found) {
    ctx.deviceOwner = UserInfo{};
    return userOpen ? ReceiveDialog::NewCPUSelectUser : ReceiveDialog::NewCPU;
  }
  ctx.deviceOwner = owner;
  const QString ownerId = owner.USER_ID.trimmed();
  if (userOpen && currentUserId.trimmed() != ownerId) return ReceiveDialog::AlertUser;
  if (CheckPMReset(db, ctx, ownerId)) return ReceiveDialog::AlertReset;
  ctx.receiveUserId = userOpen ? currentUserId.trimmed() : ownerId;
  return ReceiveDialog::OpenRecvData;
}

NameRows LayOutNames(const UserInfo& user, const QString& samaCaption) {
  NameRows rows;
  if (EnglishEdition()) {
    rows.first = user.FIRST_NAME;
    rows.middle = user.MIDDLE_NAME;
    rows.last = user.LAST_NAME;
  } else {
    rows.first = user.FIRST_NAME + QStringLiteral(" ") + samaCaption;
    rows.middleVisible = false;
    rows.lastVisible = false;
  }
  return rows;
}

// ---------------------------------------------------------------- frmRecvMsgNewCPU

RecvMsgNewCPU::RecvMsgNewCPU(VtDatabase& db, ReceiveContext& ctx) : db_(db), ctx_(ctx) {
  WriteTrace(QStringLiteral("0"), QStringLiteral("frmRecvMsgNewCPU"), QStringLiteral("Form_Load Start"));
  // With no user at all only registration is offered.
  selectEnabled_ = VTDB_ExistUser(db_);
}

DialogAction RecvMsgNewCPU::btnCreateUser_Click() {
  Click(QStringLiteral("frmRecvMsgNewCPU"), QStringLiteral("btnCreateUser"));
  ctx_.callerForm = kCallerFormNewCpu;
  return DialogAction::OpenUserRegist;
}

DialogAction RecvMsgNewCPU::btnSelectUser_Click() {
  if (!selectEnabled_) return DialogAction::OpenNewCPU;  // a disabled button does nothing
  Click(QStringLiteral("frmRecvMsgNewCPU"), QStringLiteral("btnSelectUser"));
  ctx_.callerForm = kCallerFormNewCpu;
  return DialogAction::OpenUserSelect;
}

DialogAction RecvMsgNewCPU::btnNewCPUCancel_Click() {
  Click(QStringLiteral("frmRecvMsgNewCPU"), QStringLiteral("btnNewCPUCancel"));
  ReceiveCancelCleanup(db_, ctx_);
  return DialogAction::Cancelled;
}

DialogAction NewCpuUserRegistered(ReceiveContext& ctx, const QString& newUserId) {
  ctx.receiveUserId = newUserId.trimmed();
  ctx.callerForm.clear();
  SetCurrentUserId(newUserId.trimmed());
  SetCurrentUserName(QString());
  return DialogAction::OpenRecvData;
}

DialogAction NewCpuUserScreenCancelled(ReceiveContext& ctx) {
  if (ctx.callerForm != kCallerFormNewCpu) return DialogAction::Close;
  ctx.callerForm.clear();
  return DialogAction::OpenNewCPU;
}

DialogAction NewCpuUserSelected(VtDatabase& db, ReceiveContext& ctx, const QString& userId) {
  // A user has at most one recorder: an earlier one is let go first.
  if (!ReleaseRecorderOfUser(db, ctx, userId.trimmed())) {
    ctx.callerForm.clear();
    ReceiveErrorReport(db, ctx, QStringLiteral("DDWN-C-0006"), QString());
    return DialogAction::Failed;
  }
  ctx.receiveUserId = userId.trimmed();
  ctx.callerForm.clear();
  return DialogAction::OpenRecvData;
}

// ---------------------------------------------------------------- frmRecvMsgNewCPUSelectUser

RecvMsgNewCPUSelectUser::RecvMsgNewCPUSelectUser(VtDatabase& db, ReceiveContext& ctx,
                                                 QString currentUserId)
    : db_(db), ctx_(ctx), currentUserId_(std::move(currentUserId)) {
  WriteTrace(QStringLiteral("0"), QStringLiteral("frmRecvMsgNewCPUSelectUser"),
             QStringLiteral("Form_Load Start"));
  current_ = ReadCurrentUser(db_, ctx_, currentUserId_);
}

NameRows RecvMsgNewCPUSelectUser::names() const {
  return LayOutNames(current_, Sama(kSectionNewCpuSelectUser));
}

DialogAction RecvMsgNewCPUSelectUser::btnReceive_Click() {
  Click(QStringLiteral("frmRecvMsgNewCPUSelectUser"), QStringLiteral("btnReceive"));
  if (!ReleaseRecorderOfUser(db_, ctx_, currentUserId_.trimmed())) {
    ReceiveErrorReport(db_, ctx_, QStringLiteral("DDWN-C-0006"), QString());
    return DialogAction::Failed;
  }
  ctx_.receiveUserId = currentUserId_.trimmed();
  return DialogAction::OpenRecvData;
}

DialogAction RecvMsgNewCPUSelectUser::btnCancel_Click() {
  Click(QStringLiteral("frmRecvMsgNewCPUSelectUser"), QStringLiteral("btnCancel"));
  ReceiveCancelCleanup(db_, ctx_);
  return DialogAction::Cancelled;
}

// ---------------------------------------------------------------- frmRecvMsgAlertUser

RecvMsgAlertUser::RecvMsgAlertUser(VtDatabase& db, ReceiveContext& ctx, QString currentUserId)
    : db_(db), ctx_(ctx), currentUserId_(std::move(currentUserId)) {
  WriteTrace(QStringLiteral("0"), QStringLiteral("frmRecvMsgAlertUser"), QStringLiteral("Form_Load Start"));
  current_ = ReadCurrentUser(db_, ctx_, currentUserId_);
}

NameRows RecvMsgAlertUser::ownerNames() const {
  return LayOutNames(ctx_.deviceOwner, Sama(kSectionAlertUser));
}

NameRows RecvMsgAlertUser::currentNames() const {
  return LayOutNames(current_, Sama(kSectionAlertUser));
}

DialogAction RecvMsgAlertUser::btnReceive_Click() {
  Click(QStringLiteral("frmRecvMsgAlertUser"), QStringLiteral("btnReceive"));
  // The recorder changes hands: both old assignments go, and the data stage enters the
  // recorder afresh (and so fetches its whole range).
  if (!ReleaseRecorderOfUser(db_, ctx_, ctx_.deviceOwner.USER_ID.trimmed()) ||
      !ReleaseRecorderOfUser(db_, ctx_, currentUserId_.trimmed())) {
    ReceiveErrorReport(db_, ctx_, QStringLiteral("DDWN-C-0006"), QString());
    return DialogAction::Failed;
  }
  ctx_.receiveUserId = currentUserId_.trimmed();
  return DialogAction::OpenRecvData;
}

DialogAction RecvMsgAlertUser::btnUsingAlertCancel_Click() {
  Click(QStringLiteral("frmRecvMsgAlertUser"), QStringLiteral("btnUsingAlertCancel"));
  ReceiveCancelCleanup(db_, ctx_);
  return DialogAction::Cancelled;
}

// ---------------------------------------------------------------- frmRecvMsgAlertReset

RecvMsgAlertReset::RecvMsgAlertReset(VtDatabase& db, ReceiveContext& ctx) : db_(db), ctx_(ctx) {
  WriteTrace(QStringLiteral("0"), QStringLiteral("frmRecvMsgAlertReset"), QStringLiteral("Form_Load Start"));
}

NameRows RecvMsgAlertReset::ownerNames() const {
  return LayOutNames(ctx_.deviceOwner, Sama(kSectionAlertReset));
}

DialogAction RecvMsgAlertReset::btnReceive_Click() {
  Click(QStringLiteral("frmRecvMsgAlertReset"), QStringLiteral("btnReceive"));
  ctx_.receiveUserId = ctx_.deviceOwner.USER_ID.trimmed();
  return DialogAction::OpenRecvData;
}

DialogAction RecvMsgAlertReset::btnUsingAlertCancel_Click() {
  Click(QStringLiteral("frmRecvMsgAlertReset"), QStringLiteral("btnUsingAlertCancel"));
  ReceiveCancelCleanup(db_, ctx_);
  return DialogAction::Cancelled;
}

// ---------------------------------------------------------------- registration by name

bool SplitNameForRegistration(const QString& name, UserInfo& user) {
  const QStringList parts = name.simplified().split(u' ', Qt::SkipEmptyParts);
  if (EnglishEdition()) {
    if (parts.size() == 2) {
      user.FIRST_NAME = parts[0];
      user.LAST_NAME = parts[1];
    } else if (parts.size() == 3) {
      user.FIRST_NAME = parts[0];
      user.MIDDLE_NAME = parts[1];
      user.LAST_NAME = parts[2];
    } else {
      return false;
    }
  } else {
    if (parts.isEmpty()) return false;
    user.FIRST_NAME = name.trimmed();
  }
  return true;
}

QString UnusedUserOfName(VtDatabase& db, const UserInfo& user) {
  const QString id = (EnglishEdition() ? VTDB_SearchUserIdFromName(db, user.FIRST_NAME, user.MIDDLE_NAME,
                                                                   user.LAST_NAME, kInstructorGroupId)
                                       : VTDB_SearchUserIdFromName_Japanese(db, user.FIRST_NAME, QString(),
                                                                            kInstructorGroupId))
                         .trimmed();
  if (id.isEmpty()) return QString();
  QString first;
  QString last;
  try {
    Statement st(db, QStringLiteral("SELECT COUNT(*) FROM [CPU_TABLE] WHERE USER_ID = ?"));
    st.bind(1, id);
    if (!st.step() || st.text(0) != QLatin1String("0")) return QString();
  } catch (const StoreError&) {
    return QString();
  }
  if (!VTDB_GetDayMeasurementRange(db, id, first, last, false) || !first.isEmpty()) return QString();
  return id;
}

QString ExactUserId(VtDatabase& db, const QString& id) {
  try {
    Statement st(db, QStringLiteral("SELECT USER_ID FROM [USER] WHERE UPPER(TRIM(USER_ID)) = UPPER(TRIM(?)) "
                                    "ORDER BY USER_ID = ? DESC LIMIT 1"));
    st.bind(1, id).bind(2, FixWidth(id, 10));
    return st.step() ? st.text(0).trimmed() : QString();
  } catch (const StoreError& e) {
    WriteTrace(QStringLiteral("2"), QStringLiteral("ExactUserId"), e.text());
    return QString();
  }
}

int RegisterUserByName(VtDatabase& db, const QString& name, QString& userId) {
  UserInfo user;
  user.GROUP_ID = kDefaultGroupId;
  user.ICONINDEX = 1;
  if (!SplitNameForRegistration(name, user)) return -1;
  QString step, actMin, intake, actCal;
  Ini_GetUserTargets(step, actMin, intake, actCal);
  user.TARGET_STEP = step;
  user.TARGET_ACTMIN = actMin;
  user.TARGET_INTAKE = intake;
  user.TARGET_CAL = actCal;
  const QString exercise = Ini_GetTargetExercise();
  user.EXTRA1 = exercise.isEmpty() ? QString() : Format(Val(exercise), QStringLiteral("##0.0"));
  user.EXTRA3 = QStringLiteral("0");
  const int rc = SetUser(db, user);
  if (rc == 0) userId = user.USER_ID.trimmed();
  if (rc == 9) {
    // The name may be that of a user registered by an earlier receive that did not
    // complete: with no recorder and no days, that user is the one meant.
    const QString earlier = UnusedUserOfName(db, user);
    if (!earlier.isEmpty()) {
      userId = earlier;
      return 0;
    }
  }
  return rc;
}
