// A whole receive: the management stage, the resolution with its dialogs, the data stage.
#include "frame/shared_values.h"
#include "receive/receive.h"

namespace {

ReceiveEnding EndingOf(DialogAction action) {
  switch (action) {
    case DialogAction::OpenRecvData: return ReceiveEnding::Continue;
    case DialogAction::Failed: return ReceiveEnding::Failed;
    default: return ReceiveEnding::Cancelled;
  }
}

// A dialog is a modal screen: the open-screen flag is set while it is up.
struct ModalScope {
  ModalScope() { SetModalFormOpen(true); }
  ~ModalScope() { SetModalFormOpen(false); }
  ModalScope(const ModalScope&) = delete;
  ModalScope& operator=(const ModalScope&) = delete;
};

}  // namespace

ReceiveWorkflow::ReceiveWorkflow(const ReceiveServices& services, ReceiveQuestions& questions)
    : s_(services), questions_(questions) {}

ReceiveReport ReceiveWorkflow::Run() {
  ReceiveReport report;
  ctx_ = ReceiveContext{};

  ReceiveEnding ending;
  {
    RecvManagementStage stage(s_, ctx_);
    stage.Form_Load();
    ending = stage.ExecTransfer();
    stage.Form_Unload();
  }
  report.kind = KindText(ctx_.device.pmKind);
  report.lang = IsKnownPMKind(ctx_.device.pmKind) ? LangText(ctx_.device.pmLang) : QString();
  report.cpuNo = ctx_.device.manage.CpuNo;
  report.receiveId = ctx_.receiveId.isEmpty() ? ctx_.previous.receiveId : ctx_.receiveId;

  if (ending == ReceiveEnding::Continue) ending = resolve(report);
  if (ending == ReceiveEnding::Continue) {
    report.userId = ctx_.receiveUserId;
    RecvDataStage stage(s_, ctx_);
    stage.Form_Load();
    ending = stage.ExecTransfer();
    stage.Form_Unload();
  }

  report.ending = ending;
  report.messageCodes = ctx_.shownCodes;
  report.startPage = ctx_.startPage;
  report.endPage = ctx_.endPage;
  report.pageCount = ctx_.pageCount;
  report.pagesFetched = ctx_.pagesFetched;
  report.daysStored = ctx_.daysStored;
  report.pagesSkipped = ctx_.pagesSkipped;
  if (ending == ReceiveEnding::Received) report.summary = ReceiveSummaryText(ctx_.daysStored, ctx_.pagesSkipped);
  // Whatever the ending, the next writer may go on.
  ctx_.lock.reset();
  return report;
}

ReceiveEnding ReceiveWorkflow::resolve(ReceiveReport& report) {
  const QString currentUserId = GetCurrentUserId();
  const ReceiveDialog dialog = DecideReceiveUser(s_.db, ctx_, GetScreenState(), currentUserId);
  if (dialog != ReceiveDialog::OpenRecvData) report.dialogs << ReceiveDialogName(dialog);
  switch (dialog) {
    case ReceiveDialog::OpenRecvData:
      return ReceiveEnding::Continue;
    case ReceiveDialog::NewCPU:
      return runNewCpu(report);
    case ReceiveDialog::NewCPUSelectUser: {
      ModalScope modal;
      RecvMsgNewCPUSelectUser box(s_.db, ctx_, currentUserId);
      return EndingOf(questions_.receiveForCurrentUser(box) ? box.btnReceive_Click() : box.btnCancel_Click());
    }
    case ReceiveDialog::AlertUser: {
      ModalScope modal;
      RecvMsgAlertUser box(s_.db, ctx_, currentUserId);
      return EndingOf(questions_.takeOverRecorder(box) ? box.btnReceive_Click()
                                                       : box.btnUsingAlertCancel_Click());
    }
    case ReceiveDialog::AlertReset: {
      ModalScope modal;
      RecvMsgAlertReset box(s_.db, ctx_);
      return EndingOf(questions_.receiveResetRecorder(box) ? box.btnReceive_Click()
                                                           : box.btnUsingAlertCancel_Click());
    }
  }
  return ReceiveEnding::Cancelled;
}

ReceiveEnding ReceiveWorkflow::runNewCpu(ReceiveReport& report) {
  for (;;) {
    DialogAction action;
    {
      ModalScope modal;
      RecvMsgNewCPU box(s_.db, ctx_);
      switch (questions_.newRecorder(box)) {
        case ReceiveQuestions::NewCpuAnswer::CreateUser: action = box.btnCreateUser_Click(); break;
        case ReceiveQuestions::NewCpuAnswer::SelectUser:
          // The button is disabled without users; pressing it then is no answer.
          action = box.btnSelectUser_Click();
          if (action == DialogAction::OpenNewCPU) action = box.btnNewCPUCancel_Click();
          break;
        default: action = box.btnNewCPUCancel_Click(); break;
      }
    }
    if (action == DialogAction::OpenUserRegist) {
      report.dialogs << QStringLiteral("frmUserRegist");
      ModalScope modal;
      const QString userId = questions_.registerUser(s_.db);
      action = userId.isEmpty() ? NewCpuUserScreenCancelled(ctx_) : NewCpuUserRegistered(ctx_, userId);
    } else if (action == DialogAction::OpenUserSelect) {
      report.dialogs << QStringLiteral("frmUserSelectDialog");
      ModalScope modal;
      const QString userId = questions_.selectUser(s_.db);
      action = userId.isEmpty() ? NewCpuUserScreenCancelled(ctx_) : NewCpuUserSelected(s_.db, ctx_, userId);
    }
    if (action == DialogAction::OpenNewCPU) {
      report.dialogs << ReceiveDialogName(ReceiveDialog::NewCPU);
      continue;
    }
    return EndingOf(action);
  }
}
