// The decisions of the two CSV screens, without widgets: what they offer at first, what
// they accept, and which users an export covers.
#pragma once

#include <QDate>
#include <QString>
#include <QStringList>

class VtDatabase;

struct CsvExportChoice {
  bool allUsers = false;
  QDate from;
  QDate to;
  int formatKind = 0;
  QString folder;
};

class CsvExportFormLogic {
 public:
  CsvExportFormLogic(VtDatabase& db, const QString& currentUserId);

  // The current user's measured days; with no current user (or no days), those of every
  // user; with none at all, today.
  QDate defaultFrom() const { return from_; }
  QDate defaultTo() const { return to_; }
  bool hasCurrentUser() const { return !currentUserId_.isEmpty(); }
  // The range of the chosen users, for when the choice between one and all changes.
  void rangeFor(bool allUsers, QDate& from, QDate& to) const;

  // Empty when the choice can run, else the text to show.
  QString check(const CsvExportChoice& choice) const;
  // The users the export covers: the current one, or every user of every group.
  QStringList userIds(bool allUsers) const;

 private:
  VtDatabase& db_;
  QString currentUserId_;
  QDate from_;
  QDate to_;
};

class CsvImportFormLogic {
 public:
  // Adds folders or files not yet listed; returns how many were new.
  int add(const QStringList& paths);
  const QStringList& sources() const { return sources_; }
  // Empty when something is listed and every entry exists, else the text to show.
  QString check() const;

 private:
  QStringList sources_;
};

// A caption of the CSV screens' resource section.
QString CsvDialogText(const char* key);
