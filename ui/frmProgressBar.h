// The progress screen: a small modal window with a status line, a bar and Cancel. It
// shows the progress of whoever calls its progress operations, and runs one long
// operation of its own (compaction, deleting a group, CSV export or import) as soon as
// it is first shown, then closes itself. Parameters go in through the Proc... operations
// before exec(); results come out through the others after it.
//
// The window never freezes: the operation runs on the interface thread (the database
// connection belongs to it), and every progress call lets the window's events through
// (QCoreApplication::processEvents), which happens between two files or two users and
// within a file every few dozen lines, so Cancel is seen within a fraction of a second.
// Being modal, the window keeps every other window from taking input meanwhile; closing
// it or pressing Escape while the operation runs only asks it to cancel.
#pragma once

#include <QDialog>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>

#include "exchange/progress_driver.h"

class VtDatabase;

class frmProgressBar : public QDialog, private ProgressView {
  Q_OBJECT

 public:
  explicit frmProgressBar(VtDatabase* db = nullptr, QWidget* parent = nullptr);
  ~frmProgressBar() override;

  QLabel* lblStatus = nullptr;
  QProgressBar* progressExec = nullptr;
  QPushButton* cmdCancel = nullptr;

  // ---- parameters ----
  void ProcSetExecParam(int operation, const QString& title, const QString& status, const QString& buttonText,
                        int maximum, int startValue, bool buttonEnabled) {
    driver_.ProcSetExecParam(operation, title, status, buttonText, maximum, startValue, buttonEnabled);
  }
  void ProcSetCompactDB(const QString& path) { driver_.ProcSetCompactDB(path); }
  void ProcSetCSVImportParam(const QString& folder) { driver_.ProcSetCSVImportParam(folder); }
  void ProcSetCSVImportParam(const QStringList& paths, const QString& groupId = QString()) {
    driver_.ProcSetCSVImportParam(paths, groupId);
  }
  void ProcSetCSVExportParam(const QString& from, const QString& to, int formatKind, const QString& folder,
                             const QStringList& userIds) {
    driver_.ProcSetCSVExportParam(from, to, formatKind, folder, userIds);
  }

  // ---- results ----
  bool ProcGetCancelParam() const { return driver_.ProcGetCancelParam(); }
  int ProcGetExecRetParam() const { return driver_.ProcGetExecRetParam(); }
  void ProcGetCSVImportParam(int& filesRead, int& filesImported, QString& log, int& result) const {
    driver_.ProcGetCSVImportParam(filesRead, filesImported, log, result);
  }
  void ProcGetCSVExportParam(int& filesWritten, QString& log, int& result) const {
    driver_.ProcGetCSVExportParam(filesWritten, log, result);
  }

  // The state behind the window; it is also the ProgressInterface of the running work.
  ProgressDriver& driver() { return driver_; }

 public:
  void reject() override;

 protected:
  void showEvent(QShowEvent* event) override;
  void closeEvent(QCloseEvent* event) override;

 private:
  void stateChanged() override;
  void processEvents() override;
  void runOperation();

  ProgressDriver driver_;
  bool started_ = false;
  bool modalBefore_ = false;  // ModalFormOpen as it was, put back on closing
};
