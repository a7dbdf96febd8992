// The logic of the progress screen: what it shows, the cancel flag, and the long
// operation it runs once it is on screen (compaction, deleting a group, the CSV batch
// export and import). The screen (ui/frmProgressBar) only draws this state and lets
// events through; tests drive the class without a display.
#pragma once

#include <QString>
#include <QStringList>
#include <functional>

#include "frame/dialog.h"

class VtDatabase;

// What the screen does for the driver: show a changed state, and let the window's
// events through (so Cancel can be clicked) at the driver's yield points.
class ProgressView {
 public:
  virtual ~ProgressView() = default;
  virtual void stateChanged() = 0;
  virtual void processEvents() = 0;
};

class ProgressDriver : public ProgressInterface {
 public:
  enum Operation { kNone = 0, kCompact = 1, kDeleteGroup = 2, kCsvExport = 3, kCsvImport = 4 };

  explicit ProgressDriver(VtDatabase* db = nullptr) : db_(db) {}
  void setView(ProgressView* view) { view_ = view; }

  // ---- parameters, set before the screen is shown ----
  void ProcSetExecParam(int operation, const QString& title, const QString& status,
                        const QString& buttonText, int maximum, int startValue, bool buttonEnabled);
  void ProcSetCompactDB(const QString& path);
  // Folders and/or single files; groupId is the group of users registered by the import
  // (empty: the current group).
  void ProcSetCSVImportParam(const QString& folder) { ProcSetCSVImportParam(QStringList{folder}); }
  void ProcSetCSVImportParam(const QStringList& paths, const QString& groupId = QString());
  // Dates "YYYYMMDD"; format kind 0, 1 or 2.
  void ProcSetCSVExportParam(const QString& from, const QString& to, int formatKind,
                             const QString& folder, const QStringList& userIds);

  // ---- results, read after the screen has closed ----
  bool ProcGetCancelParam() const { return cancel_; }
  int ProcGetExecRetParam() const { return result_; }
  void ProcGetCSVImportParam(int& filesRead, int& filesImported, QString& log, int& result) const;
  void ProcGetCSVExportParam(int& filesWritten, QString& log, int& result) const;

  // ---- progress operations (every one lets events through afterwards) ----
  void SetProgressbarValue(int value);
  void ChangeLabelCaption(const QString& text);
  // cmdCancel: the running loop ends at its next test.
  void cancelClicked();

  // Runs the operation set by ProcSetExecParam; stores and returns the result. Operation 0
  // runs nothing and gives 0: the caller keeps the screen under its own control.
  int run();
  bool hasRun() const { return ran_; }

  // ---- state the screen shows ----
  int operation() const { return operation_; }
  const QString& title() const { return title_; }
  const QString& status() const { return status_; }
  const QString& buttonText() const { return buttonText_; }
  bool buttonEnabled() const { return buttonEnabled_; }
  int maximum() const { return maximum_; }
  int value() const { return value_; }
  bool running() const { return running_; }

  // ProgressInterface, so the store's and the CSV code's progress reaches the screen.
  void setMaximum(int maximum) override;
  void setValue(int value) override { SetProgressbarValue(value); }
  void setStatus(const QString& caption) override { ChangeLabelCaption(caption); }
  bool cancelRequested() override { return cancel_; }
  void yield() override;

 private:
  void changed();

  VtDatabase* db_ = nullptr;
  ProgressView* view_ = nullptr;
  bool cancel_ = false;
  QString title_;
  QString status_;
  QString buttonText_;
  int maximum_ = 100;
  int value_ = 0;
  bool buttonEnabled_ = true;
  int operation_ = kNone;
  int result_ = 0;
  bool ran_ = false;
  bool running_ = false;
  QString compactPath_;
  QStringList importPaths_;
  QString importGroupId_;
  int filesRead_ = 0;
  int filesImported_ = 0;
  QString importLog_;
  QString exportFrom_;
  QString exportTo_;
  int exportKind_ = 0;
  QString exportFolder_;
  QStringList exportUserIds_;
  int filesWritten_ = 0;
  QString exportLog_;
};

// Deletes every user of the group with their data, then the group. 0 done; a DeleteUser
// code when a user could not be deleted (the users before it stay deleted); 3 when the
// group row could not be deleted.
int DeleteGroup(VtDatabase& db, const QString& groupId, ProgressInterface& progress);
