#include "exchange/progress_driver.h"

#include <algorithm>
#include <vector>

#include "exchange/csv_batch.h"
#include "frame/shared_values.h"
#include "frame/trace.h"
#include "store/db_safety.h"
#include "store/store.h"

void ProgressDriver::ProcSetExecParam(int operation, const QString& title, const QString& status,
                                      const QString& buttonText, int maximum, int startValue,
                                      bool buttonEnabled) {
  operation_ = operation;
  title_ = title;
  status_ = status;
  buttonText_ = buttonText;
  maximum_ = std::max(0, maximum);
  value_ = std::clamp(startValue, 0, maximum_);
  buttonEnabled_ = buttonEnabled;
  changed();
}

void ProgressDriver::ProcSetCompactDB(const QString& path) { compactPath_ = path; }

void ProgressDriver::ProcSetCSVImportParam(const QStringList& paths, const QString& groupId) {
  importPaths_ = paths;
  importGroupId_ = groupId;
}

void ProgressDriver::ProcSetCSVExportParam(const QString& from, const QString& to, int formatKind,
                                           const QString& folder, const QStringList& userIds) {
  exportFrom_ = from;
  exportTo_ = to;
  exportKind_ = formatKind;
  exportFolder_ = folder;
  exportUserIds_ = userIds;
}

void ProgressDriver::ProcGetCSVImportParam(int& filesRead, int& filesImported, QString& log, int& result) const {
  filesRead = filesRead_;
  filesImported = filesImported_;
  log = importLog_;
  result = result_;
}

void ProgressDriver::ProcGetCSVExportParam(int& filesWritten, QString& log, int& result) const {
  filesWritten = filesWritten_;
  log = exportLog_;
  result = result_;
}

void ProgressDriver::SetProgressbarValue(int value) {
  value_ = std::clamp(value, 0, maximum_);
  changed();
  yield();
}

void ProgressDriver::ChangeLabelCaption(const QString& text) {
  status_ = text;
  changed();
}

void ProgressDriver::cancelClicked() {
  WriteTrace(QStringLiteral("0"), QStringLiteral("frmProgressBar"), QStringLiteral("cmdCancel_Click Start"));
  cancel_ = true;
}

void ProgressDriver::setMaximum(int maximum) {
  maximum_ = std::max(0, maximum);
  value_ = std::min(value_, maximum_);
  changed();
}

void ProgressDriver::yield() {
  if (view_) view_->processEvents();
}

void ProgressDriver::changed() {
  if (view_) view_->stateChanged();
}

int ProgressDriver::run() {
  if (ran_ || operation_ == kNone) return result_;
  ran_ = true;
  running_ = true;
  changed();
  switch (operation_) {
    case kCompact: {
      QString path = compactPath_;
      int result = -1;
      CompactDB(path, result, *this);
      result_ = result;
      break;
    }
    case kDeleteGroup:
      result_ = db_ ? DeleteGroup(*db_, GetCurrentGroupId(), *this) : -1;
      break;
    case kCsvExport: {
      if (!db_) {
        result_ = -1;
        break;
      }
      CsvExportOptions options;
      options.progress = nullptr;  // the batch advances the bar per user
      filesWritten_ = CSVBatchExport(*db_, exportFrom_, exportTo_, exportKind_, exportFolder_, exportUserIds_,
                                     *this, exportLog_, options);
      result_ = filesWritten_ == exportUserIds_.size() ? 0 : 1;
      break;
    }
    case kCsvImport: {
      if (!db_) {
        result_ = -1;
        break;
      }
      const CsvImportSummary s = CSVBatchImport(*db_, importPaths_, importGroupId_, *this);
      filesRead_ = s.filesRead;
      filesImported_ = s.filesImported;
      importLog_ = s.log;
      result_ = s.filesImported == s.filesRead ? 0 : 1;
      break;
    }
    default:
      result_ = 0;
      break;
  }
  running_ = false;
  changed();
  return result_;
}

int DeleteGroup(VtDatabase& db, const QString& groupId, ProgressInterface& progress) {
  InstallationLock lock(db.path());
  if (!AcquireForWriting(lock)) return 3;
  std::vector<UserInfo> users;
  GetUserList(db, groupId, users);
  progress.setMaximum(static_cast<int>(users.size()) + 1);
  progress.setValue(0);
  int done = 0;
  for (const UserInfo& u : users) {
    const int code = DeleteUser(db, u.USER_ID, true);
    if (code != 0) {
      WriteTrace(QStringLiteral("2"), QStringLiteral("DeleteGroup"), QStringLiteral("DeleteUser Error"));
      return code;
    }
    progress.setValue(++done);
  }
  if (!VTDB_DeleteGroupInfo(db, groupId)) {
    WriteTrace(QStringLiteral("2"), QStringLiteral("DeleteGroup"), QStringLiteral("VTDB_DeleteGroupInfo Error"));
    return 3;
  }
  progress.setValue(static_cast<int>(users.size()) + 1);
  return 0;
}
