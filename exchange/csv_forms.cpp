#include "exchange/csv_forms.h"

#include <QFileInfo>
#include <vector>

#include "frame/catalogue.h"
#include "frame/helpers.h"
#include "store/store.h"

QString CsvDialogText(const char* key) { return GetIniCaption(QStringLiteral("CSVDIALOG"), QLatin1String(key)); }

CsvExportFormLogic::CsvExportFormLogic(VtDatabase& db, const QString& currentUserId)
    : db_(db), currentUserId_(currentUserId) {
  rangeFor(currentUserId_.isEmpty(), from_, to_);
  if (!from_.isValid() && !currentUserId_.isEmpty()) rangeFor(true, from_, to_);
  if (!from_.isValid() || !to_.isValid()) from_ = to_ = QDate::currentDate();
}

void CsvExportFormLogic::rangeFor(bool allUsers, QDate& from, QDate& to) const {
  QString first;
  QString last;
  for (const QString& id : userIds(allUsers)) {
    QString f;
    QString l;
    if (!VTDB_GetDayMeasurementRange(db_, id, f, l, false) || f.isEmpty()) continue;
    if (first.isEmpty() || f < first) first = f;
    if (last.isEmpty() || l > last) last = l;
  }
  from = YmdToDate(first);
  to = YmdToDate(last);
}

QString CsvExportFormLogic::check(const CsvExportChoice& choice) const {
  if (!choice.allUsers && currentUserId_.isEmpty()) return CsvDialogText("CAPTION_NO_SOURCE");
  if (!choice.from.isValid() || !choice.to.isValid() || choice.from > choice.to)
    return CsvDialogText("CAPTION_BAD_PERIOD");
  if (choice.folder.trimmed().isEmpty() || !QFileInfo(choice.folder).isDir()) return CsvDialogText("CAPTION_NO_FOLDER");
  return QString();
}

QStringList CsvExportFormLogic::userIds(bool allUsers) const {
  if (!allUsers) return currentUserId_.isEmpty() ? QStringList() : QStringList{currentUserId_};
  QStringList ids;
  std::vector<GroupInfo> groups;
  if (GetGroupList(db_, groups) < 0) return ids;
  for (const GroupInfo& g : groups) {
    std::vector<UserInfo> users;
    if (GetUserList(db_, g.GROUP_ID, users) < 0) continue;
    for (const UserInfo& u : users) ids << u.USER_ID;
  }
  return ids;
}

int CsvImportFormLogic::add(const QStringList& paths) {
  int added = 0;
  for (const QString& p : paths) {
    if (p.isEmpty() || sources_.contains(p)) continue;
    sources_ << p;
    ++added;
  }
  return added;
}

QString CsvImportFormLogic::check() const {
  if (sources_.isEmpty()) return CsvDialogText("CAPTION_NO_SOURCE");
  for (const QString& s : sources_)
    if (!QFileInfo::exists(s)) return CsvDialogText("CAPTION_NO_SOURCE") + QStringLiteral("\n") + s;
  return QString();
}
