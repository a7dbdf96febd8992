// The CSV screens: export of the current user or every user, import of folders or
// files, and the log of either, which the person can copy. Each runs its work in
// frmProgressBar with a working Cancel. The main window opens them from its Job menu
// through ShowCsvExport and ShowCsvImport.
#pragma once

#include <QButtonGroup>
#include <QComboBox>
#include <QDateEdit>
#include <QDialog>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>

#include "exchange/csv_forms.h"

class VtDatabase;

// Opens the export screen (modal to parent); currentUserId may be empty.
void ShowCsvExport(VtDatabase& db, const QString& currentUserId, QWidget* parent);
// Opens the import screen (modal to parent). New users go into the current group.
void ShowCsvImport(VtDatabase& db, QWidget* parent);

class frmCsvExport : public QDialog {
  Q_OBJECT

 public:
  frmCsvExport(VtDatabase& db, const QString& currentUserId, QWidget* parent = nullptr);
  ~frmCsvExport() override;

  QRadioButton* optCurrentUser = nullptr;
  QRadioButton* optAllUsers = nullptr;
  QDateEdit* dtDateFrom = nullptr;
  QDateEdit* dtDateTo = nullptr;
  QComboBox* cmbFormat = nullptr;
  QLineEdit* txtFolder = nullptr;
  QPushButton* btnBrowse = nullptr;
  QPushButton* btnOK = nullptr;
  QPushButton* btnCancel = nullptr;

  CsvExportChoice choice() const;
  // Runs the export in the progress screen and shows its log. The screen stays open
  // when the choice is refused (the reason is shown).
  void btnOK_Click();

 private:
  VtDatabase& db_;
  CsvExportFormLogic logic_;
};

class frmCsvImport : public QDialog {
  Q_OBJECT

 public:
  frmCsvImport(VtDatabase& db, QWidget* parent = nullptr);
  ~frmCsvImport() override;

  QListWidget* lstSources = nullptr;
  QPushButton* btnAddFolder = nullptr;
  QPushButton* btnAddFiles = nullptr;
  QPushButton* btnImport = nullptr;
  QPushButton* btnCancel = nullptr;

  void addSources(const QStringList& paths);
  void btnImport_Click();

 private:
  VtDatabase& db_;
  CsvImportFormLogic logic_;
};

// The log of a CSV batch, selectable, with a Copy button.
class frmCsvLog : public QDialog {
  Q_OBJECT

 public:
  frmCsvLog(const QString& summary, const QString& log, QWidget* parent = nullptr);

  QPlainTextEdit* txtLog = nullptr;
  QPushButton* btnCopy = nullptr;
  QPushButton* btnClose = nullptr;
};
