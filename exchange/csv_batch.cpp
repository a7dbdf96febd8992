#include "exchange/csv_batch.h"

#include <QDateTime>
#include <QDir>
#include <QFileInfo>

#include "exchange/csv_import.h"
#include "exchange/csv_text.h"
#include "frame/catalogue.h"
#include "frame/config.h"
#include "frame/dialog.h"
#include "frame/helpers.h"
#include "frame/shared_values.h"
#include "frame/trace.h"
#include "frame/vbformat.h"
#include "store/db_safety.h"
#include "store/store.h"

using csv_detail::ImportText;

namespace {

const QString kCrLf = QStringLiteral("\r\n");

QString exportCaption(const char* key) { return GetIniCaption(QStringLiteral("CSVEXPORT"), QLatin1String(key)); }

}  // namespace

bool ExportUserCSV(VtDatabase& db, const QString& from, const QString& to, const UserInfo& user, const QString& path,
                   int maxRows, int formatKind, const CsvExportOptions& options, QString& error) {
  if (!VTDB_ExistData(db, user.USER_ID, from, to)) {
    error = exportCaption("CAPTION_ERR_PERIODMSG");
    return false;
  }
  QString first;
  QString last;
  if (!VTDB_GetDayMeasurementRange(db, user.USER_ID, first, last, false)) {
    error = db.lastErrorText();
    return false;
  }
  QString f = from;
  QString t = to;
  if (!first.isEmpty() && f < first) f = first;
  if (!last.isEmpty() && t > last) t = last;
  return MakeCSVData2(db, user.USER_ID, f, t, last, path, user, maxRows, formatKind, options, error);
}

QString CsvExportFileName(const UserInfo& user, bool withLogin, bool english, const QDate& today) {
  QString name;
  if (withLogin && !user.LOGIN_ID.isEmpty()) name = user.LOGIN_ID + u'_';
  QString shown;
  if (!english) {
    shown = user.FIRST_NAME;
  } else if (!user.NICK_NAME.isEmpty()) {
    shown = user.NICK_NAME;
  } else {
    QStringList parts;
    for (const QString& p : {user.FIRST_NAME, user.MIDDLE_NAME, user.LAST_NAME})
      if (!p.isEmpty()) parts << p;
    shown = parts.join(u' ');
  }
  // A name may hold characters no file name can; they are replaced in both editions.
  name += ReplaceProhibitChar(shown);
  name.replace(u'/', u'_');
  return name + u'_' + today.toString(QStringLiteral("yyyyMMdd")) + QStringLiteral(".csv");
}

int CSVBatchExport(VtDatabase& db, const QString& from, const QString& to, int formatKind, const QString& folder,
                   const QStringList& userIds, ProgressInterface& progress, QString& log,
                   const CsvExportOptions& options) {
  const QString titleMessage = exportCaption("CAPTION_ERR_TITLEMSG");
  const QString loginCaption = exportCaption("CAPTION_ERR_LOGIN");
  const QString nameCaption = exportCaption("CAPTION_ERR_NAME");
  const int maxRows = Ini_GetMaxRecord();
  const bool english = Ini_GetLang() == 1;
  const QDate today = options.today.isValid() ? options.today : QDate::currentDate();
  progress.setMaximum(static_cast<int>(userIds.size()));
  progress.setValue(0);
  log.clear();
  int written = 0;
  int done = 0;
  for (const QString& userId : userIds) {
    UserInfo user;
    QString error;
    bool ok = GetUserInfo(db, user, userId);
    if (ok) {
      const QString path = JoinPath(folder, CsvExportFileName(user, true, english, today));
      ok = ExportUserCSV(db, from, to, user, path, maxRows, formatKind, options, error);
    } else {
      error = db.lastErrorText();
    }
    if (ok) {
      ++written;
    } else {
      QString line = titleMessage + u'@' + loginCaption + u'=' + user.LOGIN_ID + u',' + nameCaption + u'=' +
                     GetDisplayName(user);
      if (user.USER_ID.isEmpty()) line += u'(' + userId + u')';
      if (!error.isEmpty()) line += u'@' + error;
      WriteTrace(QStringLiteral("2"), QStringLiteral("CSVBatchExport"), line);
      log += line + kCrLf;
    }
    progress.setValue(++done);
    if (progress.cancelRequested()) break;
  }
  if (!progress.cancelRequested()) progress.setValue(static_cast<int>(userIds.size()));
  return written;
}

// ---- import ----

namespace {

struct ImportContext {
  VtDatabase& db;
  QString groupId;
};

// A login id for a file without one: the configured prefix (at most its last 4
// characters) and a six-digit running number not yet in use. Empty when none is left.
QString nextLoginId(VtDatabase& db, int& number) {
  QString prefix = Ini_GetCsvLoginIdPrefix();
  if (prefix.size() > 4) prefix = prefix.right(4);
  number = static_cast<int>(Val(Ini_GetCsvLoginIdMax().right(6)));
  while (true) {
    ++number;
    if (number > 999999) return QString();
    const QString login = prefix + QStringLiteral("%1").arg(number, 6, 10, QLatin1Char('0'));
    if (VTDB_SearchUserIdFromLoginID(db, login).isEmpty()) return login;
  }
}

void importFile(ImportContext& ctx, CsvImportFileResult& res) {
  VtDatabase& db = ctx.db;
  const QString fileName = QFileInfo(res.path).fileName();
  auto refuse = [&](const QString& why, int line = 0) {
    res.errorLine = line;
    res.reason = why;
    res.logLine = ImportText("LOG_ERROR") + fileName + u'@' + why;
  };

  QString loginId;
  QString name;
  if (!ParseCsvFileName(res.path, loginId, name)) return refuse(ImportText("ERR_FILENAME"));
  if (name.isEmpty()) return refuse(ImportText("ERR_NONAME"));
  if (name.size() > 20 || loginId.size() > 10) return refuse(ImportText("ERR_TOOLONG"));

  std::vector<CsvRow> rows;
  CsvFormat format;
  int errorLine = 0;
  QString readReason;
  if (!ReadCSVData(rows, res.path, errorLine, format, readReason)) {
    return refuse(ImportText("ERR_LINE").arg(errorLine) + QStringLiteral(": ") + readReason, errorLine);
  }
  res.formatCode = format.code;
  std::vector<const CsvRow*> days;
  for (const CsvRow& r : rows)
    if (r.NewestOfDay) days.push_back(&r);
  if (days.empty()) return refuse(ImportText("ERR_NODAYS"));

  UserInfo user;
  int generatedNumber = -1;
  if (!loginId.isEmpty()) {
    const QString found = VTDB_SearchUserIdFromLoginID(db, loginId);
    if (!found.isEmpty()) {
      GetUserInfo(db, user, found);
      if (user.GROUP_ID == kInstructorGroupId) return refuse(ImportText("ERR_INSTRUCTOR"));
    }
  } else {
    loginId = nextLoginId(db, generatedNumber);
    if (loginId.isEmpty()) return refuse(ImportText("ERR_LOGINMAX"));
  }
  if (IsLoginIdText(loginId)) return refuse(ImportText("ERR_LOGINCHAR"));

  // One transaction for the file, a new user included: a refused file leaves nothing.
  if (!VTDB_BeginTrans(db)) return refuse(ImportText("ERR_DATA") + QStringLiteral(": ") + db.lastErrorText());
  auto rollback = [&](const QString& why) {
    VTDB_RollbackTrans(db);
    refuse(why);
  };
  QString word = ImportText("WORD_UPDATE");
  const CsvRow& lastRow = *days.back();
  if (user.USER_ID.isEmpty()) {
    word = ImportText("WORD_NEW");
    user.LOGIN_ID = loginId;
    user.FIRST_NAME = name;
    if (Ini_GetLang() == 1) {
      // The English edition keeps first and last names apart: "Mary Ann Jones" is split at
      // its blanks; a single word stands for both.
      const QStringList words = name.split(u' ', Qt::SkipEmptyParts);
      user.FIRST_NAME = words.value(0, name);
      user.LAST_NAME = words.size() > 1 ? words.last() : user.FIRST_NAME;
      if (words.size() > 2) user.MIDDLE_NAME = words.mid(1, words.size() - 2).join(u' ');
    }
    user.GROUP_ID = ctx.groupId;
    Ini_GetUserTargets(user.TARGET_STEP, user.TARGET_ACTMIN, user.TARGET_INTAKE, user.TARGET_CAL);
    Ini_GetModerate(user.MODERATE_LOW, user.MODERATE_HIGH);
    user.PREF_ID = Ini_GetDefaultPrefecture();
    user.ICONINDEX = 0;
    user.GENDAR = lastRow.GENDAR;
    user.AGE = lastRow.AGE;
    user.HEIGHT_CM = lastRow.HEIGHT_CM;
    user.WEIGHT_KG = lastRow.WEIGHT_KG;
    if (VTDB_isUsedName_Japanese(db, user.FIRST_NAME, user.NICK_NAME, kInstructorGroupId)) user.NICK_NAME = loginId;
    const int code = SetUser(db, user);
    if (code != 0) {
      return rollback(code == 7   ? ImportText("ERR_DUPID")
                      : code == 9 ? ImportText("ERR_DUPNAME")
                                  : ImportText("ERR_REGIST"));
    }
    res.userCreated = true;
  }
  const QString receiveId = CreateReceiveId(db);
  if (receiveId.isEmpty()) return rollback(ImportText("ERR_DATA"));
  int seq = 0;
  for (const CsvRow* r : days) {
    ++seq;
    if (!VTDB_SetDayMeasurementForCSV(db, receiveId, seq, user, *r) ||
        !VTDB_SetTimeMeasurementBlockForCSV(db, receiveId, seq, user, *r))
      return rollback(ImportText("ERR_DATA"));
  }
  if (!VTDB_UpdateUserDataForCSV(db, user.USER_ID, lastRow) ||
      !VTDB_SetReceiveHistoryDate(db, receiveId, days.front()->MEASUREMENT_DAY, user.USER_ID,
                                  QDateTime::currentDateTime().toString(QStringLiteral("yyyyMMddhhmmss")),
                                  QStringLiteral("1")) ||
      !VTDB_CommitTrans(db))
    return rollback(ImportText("ERR_DATA"));
  if (generatedNumber > 0) Ini_SetCsvLoginIdMax(QString::number(generatedNumber));

  res.imported = true;
  res.userId = user.USER_ID;
  res.loginId = loginId;
  res.days = seq;
  res.logLine = ImportText("LOG_SUCCESS") + fileName + u'@' + word + u' ' + ImportText("LOG_LOGIN") + loginId +
                u',' + ImportText("LOG_NAME") + name;
  if (!user.USER_ID.isEmpty()) res.logLine += u',' + ImportText("LOG_ID") + user.USER_ID;
}

}  // namespace

CsvImportSummary CSVBatchImport(VtDatabase& db, const QStringList& paths, const QString& groupId,
                                ProgressInterface& progress) {
  CsvImportSummary s;
  QStringList files;
  for (const QString& p : paths) {
    const QFileInfo info(p);
    if (info.isDir()) {
      s.log += ImportText("LOG_FOLDER") + p + kCrLf;
      const QDir dir(p);
      for (const QFileInfo& f : dir.entryInfoList(QDir::Files, QDir::Name))
        if (IsFileCsv(f.fileName())) files << f.filePath();
    } else {
      files << p;
    }
  }
  progress.setMaximum(static_cast<int>(files.size()));
  progress.setValue(0);
  if (files.isEmpty()) return s;

  // One writer at a time: a receive or another import of this installation finishes first.
  InstallationLock lock(db.path());
  if (!lock.acquire()) {
    s.log += CatalogueLine(QStringLiteral("COMN-W-0001")) + kCrLf;
    s.filesRead = static_cast<int>(files.size());
    return s;
  }
  QString backupMessage;
  if (!BackupBeforeCsvImport(db, backupMessage)) {
    s.log += backupMessage + kCrLf;
    s.filesRead = static_cast<int>(files.size());
    return s;
  }
  ImportContext ctx{db, groupId.isEmpty() ? GetCurrentGroupId() : groupId};
  if (ctx.groupId.isEmpty()) ctx.groupId = kDefaultGroupId;
  for (const QString& f : files) {
    CsvImportFileResult res;
    res.path = f;
    ++s.filesRead;
    if (!QFileInfo(f).isFile()) {
      res.reason = ImportText("ERR_NOFILE");
      res.logLine = ImportText("LOG_ERROR") + QFileInfo(f).fileName() + u'@' + res.reason;
    } else {
      importFile(ctx, res);
    }
    if (res.imported) ++s.filesImported;
    WriteTrace(QStringLiteral("2"), QStringLiteral("CSVBatchImport"), res.logLine);
    s.log += res.logLine + kCrLf;
    s.files.push_back(std::move(res));
    progress.setValue(s.filesRead);
    if (progress.cancelRequested()) {
      s.cancelled = true;
      break;
    }
  }
  return s;
}
