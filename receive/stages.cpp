// The two stages of a receive: frmRecvManagement's and frmRecvData's ExecTransfer, step
// by step, with the endings they share.
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <exception>

#include "frame/catalogue.h"
#include "frame/config.h"
#include "frame/helpers.h"
#include "frame/shared_values.h"
#include "frame/trace.h"
#include "receive/day_rows.h"
#include "receive/receive.h"

namespace {

const QString kExecTransfer = QStringLiteral("ExecTransfer");

void Trace(const QString& level, const QString& name, const QString& message) {
  WriteTrace(level, name, message);
}

bool DumpLevel() {
  const int level = Ini_GetPmDump();
  return level == 1 || level == 2;
}

// A date as the locale's short date text the program uses. Both dates of the current
// page check go through this and are then compared as text.
QString ShortDateText(const QDate& date) {
  QString format = Ini_GetLocaleShortDate();
  if (format.isEmpty()) format = QStringLiteral("yyyy/MM/dd");
  return date.toString(format);
}

}  // namespace

void ReceiveContext::clearValues() {
  historyPending = false;
  historyDate.clear();
  lock.reset();
  previous.receiveId = receiveId;
  previous.cpuNo = cpuNo;
  previous.receiveUserId = receiveUserId;
  receiveId.clear();
  rawFilePath.clear();
  cpuNo.clear();
  receiveUserId.clear();
  deviceOwner = UserInfo{};
}

QString ReceiveEndingName(ReceiveEnding ending) {
  switch (ending) {
    case ReceiveEnding::Continue: return QStringLiteral("continue");
    case ReceiveEnding::Received: return QStringLiteral("received");
    case ReceiveEnding::Cancelled: return QStringLiteral("cancelled");
    case ReceiveEnding::Failed: return QStringLiteral("failed");
    case ReceiveEnding::Refused: return QStringLiteral("refused");
    case ReceiveEnding::StalePage: return QStringLiteral("stale-page");
    case ReceiveEnding::NoRecorder: return QStringLiteral("no-recorder");
    case ReceiveEnding::Busy: return QStringLiteral("busy");
  }
  return QString();
}

void ShowReceiveMessage(ReceiveContext& ctx, const QString& code, const QString& extra) {
  ctx.shownCodes << code;
  MessageDialog(code, extra);
}

void ReceiveErrorReport(VtDatabase& db, ReceiveContext& ctx, const QString& code,
                        const QString& description) {
  // Two dialogs one after the other: the failure itself, then the common report.
  if (!code.isEmpty()) ShowReceiveMessage(ctx, code);
  ShowReceiveMessage(ctx, QStringLiteral("COMN-C-0001"), description);
  DeleteAllReceiveData(db, ctx.rawFilePath, ctx.receiveId);
  RestoreReleasedCpuRows(db, ctx);
  ctx.clearValues();
}

void ReceiveCancelCleanup(VtDatabase& db, ReceiveContext& ctx) {
  DeleteAllReceiveData(db, ctx.rawFilePath, ctx.receiveId);
  RestoreReleasedCpuRows(db, ctx);
  ctx.clearValues();
}

// ---------------------------------------------------------------- management stage

RecvManagementStage::RecvManagementStage(const ReceiveServices& services, ReceiveContext& ctx)
    : s_(services), ctx_(ctx) {}

void RecvManagementStage::Form_Load() {
  Trace(QStringLiteral("0"), QStringLiteral("frmRecvManagement"), QStringLiteral("Form_Load Start"));
  SetModalFormOpen(true);
  // The recorder on the reader is being dealt with: polling must not start it again.
  SetRecorderHandled(true);
  s_.progress.setStatus(GetIniCaption(kSectionRecvManagement, QStringLiteral("MANAGEMENT_RECEIVING")));
}

void RecvManagementStage::Form_Unload() {
  Trace(QStringLiteral("0"), QStringLiteral("frmRecvManagement"), QStringLiteral("Form_Unload Start"));
  SetModalFormOpen(false);
}

bool RecvManagementStage::cancelled() { return s_.progress.cancelRequested(); }

ReceiveEnding RecvManagementStage::errorEnding(const QString& code, const QString& description) {
  UsbClose(s_.reader, ctx_.device);
  ReceiveErrorReport(s_.db, ctx_, code, description);
  return ReceiveEnding::Failed;
}

ReceiveEnding RecvManagementStage::cancelEnding() {
  UsbClose(s_.reader, ctx_.device);
  ReceiveCancelCleanup(s_.db, ctx_);
  return ReceiveEnding::Cancelled;
}

ReceiveEnding RecvManagementStage::refusedEnding() {
  UsbClose(s_.reader, ctx_.device);
  if (!ctx_.rawFilePath.isEmpty() && QFile::exists(ctx_.rawFilePath)) QFile::remove(ctx_.rawFilePath);
  ShowReceiveMessage(ctx_, QStringLiteral("MDWN-W-0003"));
  ctx_.clearValues();
  return ReceiveEnding::Refused;
}

ReceiveEnding RecvManagementStage::ExecTransfer() {
  ProgressInterface& progress = s_.progress;
  DeviceState& dev = ctx_.device;
  try {
    // 1. identifier and raw file; one receive at a time per installation
    progress.yield();
    progress.setMaximum(3);
    if (!LockInstallationForReceive(s_.db, ctx_)) return ReceiveEnding::Busy;
    ctx_.receiveId = CreateReceiveId(s_.db);
    const QString rawDir = Ini_GetRawDataPath();
    ctx_.rawFilePath = JoinPath(rawDir, ctx_.receiveId + QStringLiteral(".bin"));
    if (Ini_GetSaveRawData()) {
      // Raw dumps hold a person's days: a folder and files of the owner only.
      if (!MakePrivateFolder(rawDir) || !MakePrivateFile(ctx_.rawFilePath)) {
        UsbClose(s_.reader, dev);
        ShowReceiveMessage(ctx_, QStringLiteral("MDWN-C-0005"), QDir::toNativeSeparators(GetAbsolutePath(rawDir)));
        ctx_.clearValues();
        return ReceiveEnding::Failed;
      }
    } else if (!PathExists(rawDir)) {
      MakeFolderTree(rawDir);
    }

    // 2. handle
    if (UsbOpen(s_.reader, s_.clock, dev) == 0) return errorEnding(QStringLiteral("COMN-I-0001"));

    // 3.
    if (DumpLevel()) Trace(QStringLiteral("0"), kExecTransfer, QStringLiteral("PageManage"));
    if (cancelled()) return cancelEnding();

    // 4. management block
    const qint32 rc = PM_RecvManage(s_.reader, s_.clock, dev, ctx_.rawFilePath);
    if (rc == kDeviceUnknownKind) return refusedEnding();
    if (rc != kDeviceOk) return errorEnding(QStringLiteral("MDWN-C-0001"));

    // 5.
    const FlashManage& manage = dev.manage;
    progress.setValue(1);
    progress.yield();
    const RecorderKind kind = dev.pmKind;
    if (DumpLevel()) Trace(QStringLiteral("0"), QStringLiteral("PMKind"), KindText(kind));

    // 6. acceptance
    if (kind == RecorderKind::AL && !Ini_GetPmAl()) return refusedEnding();
    if (IsRecorderMismatch(kind, manage)) return refusedEnding();
    // Page numbers outside the ring would give negative or empty page counts: such a
    // recorder is refused before anything is stored.
    const QString pageProblem = CheckRecorderPageNumbers(manage, kind, dev.pmLang);
    if (!pageProblem.isEmpty()) {
      Trace(QStringLiteral("2"), kExecTransfer, pageProblem);
      UsbClose(s_.reader, dev);
      if (!ctx_.rawFilePath.isEmpty() && QFile::exists(ctx_.rawFilePath)) QFile::remove(ctx_.rawFilePath);
      ShowReceiveMessage(ctx_, QStringLiteral("MDWN-W-0004"), pageProblem);
      ctx_.clearValues();
      return ReceiveEnding::Refused;
    }

    // 7. history row: written with the days, in the data stage's commit
    ctx_.historyDate = QDateTime::currentDateTime().toString(QStringLiteral("yyyyMMddHHmmss"));
    ctx_.historyPending = true;

    // 8.
    progress.setStatus(GetIniCaption(kSectionRecvManagement, QStringLiteral("CURRENTPAGE_RECEIVING")));
    progress.yield();
    if (DumpLevel())
      Trace(QStringLiteral("0"), kExecTransfer,
            QStringLiteral("P:PageNow") + QString::number(manage.RecordingPage));

    // 9. the page being recorded, unless the day limit has cut the ring short
    const qint16 span =
        WrapPageCount(static_cast<qint16>(manage.RecordingPage - manage.RecordStartPage + 1), dev);
    if (manage.MemorySetting != 1 || span <= manage.MemoryDays) {
      if (cancelled()) return cancelEnding();
      if (PM_RecvData(s_.reader, s_.clock, dev, static_cast<qint16>(manage.RecordingPage), QString()) !=
          kDeviceOk)
        return errorEnding(QStringLiteral("MDWN-C-0003"));
      progress.setValue(2);
      progress.yield();
      if (cancelled()) return cancelEnding();
      const QString pageDate = ShortDateText(dev.data.bcDate);
      const QString blockDate = ShortDateText(manage.bcDate);
      if (pageDate.compare(blockDate, Qt::CaseInsensitive) < 0) {
        // A stale or empty current page. Nothing is cleaned on this path: the history
        // row and the raw file stay as evidence of the attempt.
        UsbClose(s_.reader, dev);
        if (VTDB_SetReceiveHistory(s_.db, ReceiveHistoryRow(ctx_.receiveId, ctx_.historyDate, ctx_.rawFilePath, manage)))
          ctx_.historyPending = false;
        ShowReceiveMessage(ctx_, QStringLiteral("MDWN-I-0001"));
        Trace(QStringLiteral("0"), kExecTransfer,
              QStringLiteral("StartPageDateErr tpFlashManage.bcDate = ") + blockDate +
                  QStringLiteral(":tpFlashData.bcDate = ") + pageDate);
        ctx_.lock.reset();
        return ReceiveEnding::StalePage;
      }
      progress.yield();
    }

    // 10. 11. the start page
    progress.setStatus(GetIniCaption(kSectionRecvManagement, QStringLiteral("STARTPAGE_RECEIVING")));
    progress.yield();
    if (cancelled()) return cancelEnding();
    if (DumpLevel())
      Trace(QStringLiteral("0"), kExecTransfer,
            QStringLiteral("P:PageStart") + QString::number(manage.RecordStartPage));
    if (PM_RecvData(s_.reader, s_.clock, dev, static_cast<qint16>(manage.RecordStartPage), QString()) !=
        kDeviceOk)
      return errorEnding(QStringLiteral("MDWN-C-0004"));
    dev.startPage = dev.data;
    progress.setValue(3);
    progress.yield();

    // 12.
    UsbClose(s_.reader, dev);
    if (cancelled()) return cancelEnding();

    // 13. hand over to the resolution
    ctx_.cpuNo = manage.CpuNo;
    return ReceiveEnding::Continue;
  } catch (const std::exception& e) {
    return errorEnding(QString(), QString::fromUtf8(e.what()));
  }
}

// ---------------------------------------------------------------- data stage

RecvDataStage::RecvDataStage(const ReceiveServices& services, ReceiveContext& ctx)
    : s_(services), ctx_(ctx) {}

void RecvDataStage::Form_Load() {
  Trace(QStringLiteral("0"), QStringLiteral("frmRecvData"), QStringLiteral("Form_Load Start"));
  SetModalFormOpen(true);
  s_.progress.setStatus(GetIniCaption(kSectionRecvData, QStringLiteral("DATA_RECEIVING")));
}

void RecvDataStage::Form_Unload() {
  Trace(QStringLiteral("0"), QStringLiteral("frmRecvData"), QStringLiteral("Form_Unload Start"));
  SetModalFormOpen(false);
}

bool RecvDataStage::cancelled() { return s_.progress.cancelRequested(); }

void RecvDataStage::rollback() {
  // Everything this stage wrote goes in one go: days, profiles, history row, recorder
  // table, the overlap day's deletion and the user's bookkeeping.
  if (!tx_) return;
  try {
    tx_->rollback();
  } catch (const std::exception& e) {
    Trace(QStringLiteral("2"), kExecTransfer, QString::fromUtf8(e.what()));
  }
  tx_.reset();
}

ReceiveEnding RecvDataStage::errorEnding(const QString& code, const QString& description) {
  UsbClose(s_.reader, ctx_.device);
  rollback();
  ReceiveErrorReport(s_.db, ctx_, code, description);
  return ReceiveEnding::Failed;
}

ReceiveEnding RecvDataStage::cancelEnding() {
  UsbClose(s_.reader, ctx_.device);
  rollback();
  ReceiveCancelCleanup(s_.db, ctx_);
  return ReceiveEnding::Cancelled;
}

ReceiveEnding RecvDataStage::ExecTransfer() {
  ProgressInterface& progress = s_.progress;
  DeviceState& dev = ctx_.device;
  try {
    if (UsbOpen(s_.reader, s_.clock, dev) == 0) {
      // The recorder went away between the stages; nothing is cleaned here (nothing of
      // the receive is stored yet).
      ShowReceiveMessage(ctx_, QStringLiteral("COMN-I-0001"));
      ctx_.lock.reset();
      return ReceiveEnding::NoRecorder;
    }

    // 1.
    Trace(QStringLiteral("0"), kExecTransfer, QStringLiteral("frmReceiving"));
    progress.yield();
    ctx_.received = false;
    const RecorderKind kind = dev.pmKind;
    if (cancelled()) return cancelEnding();
    if (!LockInstallationForReceive(s_.db, ctx_)) {
      UsbClose(s_.reader, dev);
      ReceiveCancelCleanup(s_.db, ctx_);
      return ReceiveEnding::Busy;
    }

    // Everything from here to the end becomes visible in one commit.
    tx_.emplace(s_.db);
    if (ctx_.historyPending) {
      if (!VTDB_SetReceiveHistory(s_.db,
                                  ReceiveHistoryRow(ctx_.receiveId, ctx_.historyDate, ctx_.rawFilePath, dev.manage)))
        return errorEnding(QStringLiteral("MDWN-C-0002"));
    }
    for (const auto& row : ctx_.releasedCpuRows) {
      if (!VTDB_DeleteCPUNoOnUserId(s_.db, row.userId)) return errorEnding(QStringLiteral("DDWN-C-0006"));
    }

    // 2. tie the recorder to the receive user; a recorder entered now is new and its
    // whole range is fetched.
    bool wholeRange = false;
    bool found = false;
    const bool changed = VTDB_ChangeUserIdOnCPUNo(s_.db, ctx_.cpuNo, ctx_.receiveUserId, &found);
    if (!found) {
      if (!changed || !VTDB_SetUserIdOnCPUNo(s_.db, ctx_.cpuNo, ctx_.receiveUserId))
        return errorEnding(QStringLiteral("DDWN-C-0001"));
      wholeRange = true;
    }

    // 3. which pages
    qint16 start = 0;
    qint16 end = 0;
    qint16 count = 0;
    if (!CalcReceivePage(s_.db, ctx_, start, end, count, wholeRange)) {
      // A warning, not a failure report: the cancel ending with its message.
      UsbClose(s_.reader, dev);
      rollback();
      ShowReceiveMessage(ctx_, QStringLiteral("DDWN-W-0001"));
      ReceiveCancelCleanup(s_.db, ctx_);
      return ReceiveEnding::Cancelled;
    }
    ctx_.startPage = start;
    ctx_.endPage = end;
    ctx_.pageCount = count;

    // 4. 5. the day loop
    progress.setMaximum(count + 1);
    const qint16 ring = RingSize(kind, dev.pmLang);
    for (int i = 1; i <= count; ++i) {
      if (cancelled()) return cancelEnding();
      const qint16 page = DayLoopPage(start, i, ring);
      if (PM_RecvData(s_.reader, s_.clock, dev, page, ctx_.rawFilePath) != kDeviceOk)
        return errorEnding(QStringLiteral("DDWN-C-0002"));
      ++ctx_.pagesFetched;
      progress.yield();

      // An erased, zeroed or damaged page has no day to store: it is skipped and counted.
      if (IsNoDate(dev.data.bcDate)) {
        ++ctx_.pagesSkipped;
        Trace(QStringLiteral("1"), kExecTransfer,
              QStringLiteral("page %1 skipped: no valid date (erased or damaged)").arg(page));
        progress.setValue(i);
        continue;
      }

      // A day whose weight has not been set yet is not stored; LAST_PAGE still names it,
      // so it is fetched again next time.
      if (kind != RecorderKind::AL && page == end && dev.data.WeightFraction == 255) {
        Trace(QStringLiteral("1"), kExecTransfer,
              QStringLiteral("WeightErr UserID=") + ctx_.receiveUserId + QStringLiteral(":ReceiveID=") +
                  ctx_.receiveId + QStringLiteral(":PedoMeraDate=") +
                  dev.data.bcDate.toString(QStringLiteral("yyyy/MM/dd")));
        continue;
      }

      if (!VTDB_SetDayMeasurement(
              s_.db, DayMeasurementRow(ctx_.receiveId, i, ctx_.receiveUserId, page, start, dev.data, dev.manage, kind)))
        return errorEnding(QStringLiteral("DDWN-C-0003"));
      progress.yield();
      if (!VTDB_SetTimeMeasurementBlock(s_.db, TimeMeasurementBlockRow(ctx_.receiveId, i, dev.data, kind)))
        return errorEnding(QStringLiteral("DDWN-C-0004"));
      ++ctx_.daysStored;
      progress.setValue(i);
      progress.yield();
    }

    // 6. 7. body data and the bookkeeping for the next receive; targets stay.
    UsbClose(s_.reader, dev);
    progress.setValue(count + 1);
    if (UpdateUserData(s_.db, ctx_.receiveUserId,
                       UserUpdateFromReceive(ctx_.receiveId, dev.manage, dev.data, true, kind, dev.pmLang)) != 0)
      return errorEnding(QStringLiteral("DDWN-C-0005"));

    // The one commit of the receive. A full disk fails here and leaves nothing stored.
    try {
      tx_->commit();
      tx_.reset();
    } catch (const StoreError& e) {
      Trace(QStringLiteral("2"), kExecTransfer, QStringLiteral("commit: ") + e.text());
      return errorEnding(QStringLiteral("DDWN-C-0007"), StoreErrorMessage(e.code()));
    }

    // 8.
    UsbClose(s_.reader, dev);
    const QString summary = ReceiveSummaryText(ctx_.daysStored, ctx_.pagesSkipped);
    Trace(QStringLiteral("1"), kExecTransfer, ctx_.receiveId + QStringLiteral(": ") + summary);
    if (ctx_.pagesSkipped > 0) ShowReceiveMessage(ctx_, QStringLiteral("DDWN-I-0001"), summary);
    ctx_.releasedCpuRows.clear();
    ctx_.received = true;
    ctx_.lock.reset();
    SetCurrentUserId(ctx_.receiveUserId);
    SetCurrentUserName(QString());
    SetScreenState(kStateJob);
    ctx_.clearValues();
    return ReceiveEnding::Received;
  } catch (const StoreError& e) {
    Trace(QStringLiteral("2"), kExecTransfer, e.text());
    return errorEnding(QString(), StoreErrorMessage(e.code()));
  } catch (const std::exception& e) {
    return errorEnding(QString(), QString::fromUtf8(e.what()));
  }
}

// ---------------------------------------------------------------- shared

bool LockInstallationForReceive(VtDatabase& db, ReceiveContext& ctx) {
  if (ctx.lock && ctx.lock->held()) return true;
  auto lock = std::make_shared<InstallationLock>(db.path());
  if (!lock->acquire()) {
    Trace(QStringLiteral("1"), kExecTransfer, QStringLiteral("busy: ") + lock->path());
    ShowReceiveMessage(ctx, QStringLiteral("COMN-W-0001"));
    return false;
  }
  ctx.lock = std::move(lock);
  return true;
}

QString ReceiveSummaryText(int daysStored, int pagesSkipped) {
  return CatalogueLine(QStringLiteral("DDWN-I-0002"),
                       {QString::number(daysStored), QString::number(pagesSkipped)});
}
