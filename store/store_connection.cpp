// Connection, identifier counters, transactions and compaction.
#include <QFile>
#include <QFileInfo>
#include <QThread>

#include "dialog.h"
#include "helpers.h"
#include "store.h"
#include "store_internal.h"
#include "trace.h"
#include "vbformat.h"

using namespace store_detail;

namespace store_detail {

void ReportFailure(VtDatabase& db, const QString& operation, const QString& number,
                   const QString& text) {
  db.setLastError(number, text);
  GetDialogInterface()->showMessage(QStringLiteral("Vantora"), text, DialogIcon::None);
  try {
    WriteTrace(QStringLiteral("2"), operation, text);
  } catch (const std::exception&) {
    // The log is best effort; the failure value still reaches the caller.
  }
}

void Fail(const QString& text) { throw StoreError(0, text); }

void InsertRow(VtDatabase& db, const char* table, const QStringList& values) {
  const TableSpec* layout = FindTable(QLatin1String(table));
  if (!layout) Fail(QStringLiteral("Unknown table %1").arg(QLatin1String(table)));
  if (values.size() > static_cast<int>(layout->columns.size()))
    Fail(QStringLiteral("%1 values for the %2 columns of %3").arg(values.size()).arg(layout->columns.size()).arg(QLatin1String(table)));
  QStringList names;
  QStringList marks;
  for (const ColumnSpec& c : layout->columns) {
    names << QLatin1Char('[') + QLatin1String(c.name) + QLatin1Char(']');
    marks << QStringLiteral("?");
  }
  Statement st(db, QStringLiteral("INSERT INTO [%1] (%2) VALUES (%3)")
                       .arg(QLatin1String(table), names.join(QLatin1Char(',')), marks.join(QLatin1Char(','))));
  for (int i = 0; i < static_cast<int>(layout->columns.size()); ++i) {
    QString v = i < values.size() ? values.at(i) : QString();
    if (layout->padded) v = FixWidth(RemoveLineBreaks(v, 0), layout->columns[static_cast<size_t>(i)].width);
    st.bind(i + 1, v.isNull() ? QStringLiteral("") : v);
  }
  st.run();
}

QString NumberText(double value) {
  QString s = QString::number(value, 'f', 10);
  if (s.contains(QLatin1Char('.'))) {
    while (s.endsWith(QLatin1Char('0'))) s.chop(1);
    if (s.endsWith(QLatin1Char('.'))) s.chop(1);
  }
  if (s == QLatin1String("-0")) s = QStringLiteral("0");
  return s;
}

}  // namespace store_detail

int VTDB_Open(VtDatabase& db, QString& path, QString& password) {
  if (path.isEmpty()) path = kDefaultDbPath;
  if (password.isEmpty()) password = kDefaultDbPassword;
  return ConnectDB(db, path, password);
}

int VTDB_Close(VtDatabase& db) {
  db.close();
  return 0;
}

int ConnectDB(VtDatabase& db, const QString& path, const QString& password) {
  try {
    db.open(path, password, VtDatabase::OpenMode::Existing);
    return 0;
  } catch (const StoreError& e) {
    db.setLastError(QString::number(e.code()), e.text());
    GetDialogInterface()->showMessage(QStringLiteral("Vantora"), QStringLiteral("ConnectDB : ") + e.text(),
                                      DialogIcon::None);
    return 1;
  }
}

bool VTDB_ProbeDatabase(VtDatabase& db) {
  try {
    Statement st(db, QStringLiteral("SELECT * FROM [USER] "));
    st.step();
    return true;
  } catch (const StoreError&) {
    return false;
  }
}

QString GetId(VtDatabase& db, const QString& key) {
  return Guarded(db, "GetId", QString(), [&] {
    // A savepoint keeps read and write of the counter together, inside or outside a
    // transaction of the caller.
    db.exec(QStringLiteral("SAVEPOINT get_id"));
    try {
      QString number;
      Statement sel(db, QStringLiteral("SELECT rowid, CRNTNO FROM [ID_TABLE] WHERE KEY = ? ORDER BY rowid LIMIT 1"));
      sel.bind(1, FixWidth(key, 2));
      if (!sel.step()) {
        number = QStringLiteral("000000001");
        Statement ins(db, QStringLiteral("INSERT INTO [ID_TABLE] (KEY, CRNTNO) VALUES (?, ?)"));
        ins.bind(1, FixWidth(key, 2)).bind(2, number);
        ins.run();
      } else {
        const qint64 rowid = sel.text(0).toLongLong();
        const std::int32_t next = CLngVb(Val(sel.text(1))) + 1;
        number = Format(static_cast<double>(next), QStringLiteral("000000000")).left(9);
        Statement upd(db, QStringLiteral("UPDATE [ID_TABLE] SET KEY = ?, CRNTNO = ? WHERE rowid = ?"));
        upd.bind(1, FixWidth(key, 2)).bind(2, number).bind(3, rowid);
        upd.run();
      }
      db.exec(QStringLiteral("RELEASE get_id"));
      return number;
    } catch (...) {
      try {
        db.exec(QStringLiteral("ROLLBACK TO get_id; RELEASE get_id"));
      } catch (...) {
      }
      throw;
    }
  });
}

QString CreateUserId(VtDatabase& db) { return QStringLiteral("U") + GetId(db, QStringLiteral("02")); }

QString CreateReceiveId(VtDatabase& db) { return QStringLiteral("R") + GetId(db, QStringLiteral("03")); }

bool VTDB_BeginTrans(VtDatabase& db) {
  return Guarded(db, "BeginTrans", false, [&] {
    db.exec(QStringLiteral("BEGIN IMMEDIATE"));
    return true;
  });
}

bool VTDB_CommitTrans(VtDatabase& db) {
  return Guarded(db, "CommitTrans", false, [&] {
    db.exec(QStringLiteral("COMMIT"));
    return true;
  });
}

bool VTDB_RollbackTrans(VtDatabase& db) {
  return Guarded(db, "RollbackTrans", false, [&] {
    db.exec(QStringLiteral("ROLLBACK"));
    return true;
  });
}

namespace {

void removeSidecars(const QString& path) {
  QFile::remove(path + QStringLiteral("-wal"));
  QFile::remove(path + QStringLiteral("-shm"));
}

void requireOk(bool ok, const QString& what) {
  if (!ok) Fail(what);
}

}  // namespace

void CompactDB(QString& path, int& result, ProgressInterface& progress, const QString& password) {
  result = -1;
  if (path.isEmpty()) path = kDefaultDbPath;
  if (!QFileInfo(path).isFile()) {
    WriteTrace(QStringLiteral("2"), QStringLiteral("CompactDB"), QStringLiteral("DBFile No Exist"));
    return;
  }
  const QString bak = path + QStringLiteral(".bak");
  const QString org = path + QStringLiteral(".org");
  bool renamed = false;
  bool exported = false;
  try {
    // Whatever the log of the database still holds goes into the file before it is
    // copied, so that the copy and the renamed file are complete on their own.
    {
      VtDatabase db;
      db.open(path, password);
      db.exec(QStringLiteral("PRAGMA wal_checkpoint(TRUNCATE)"));
      db.exec(QStringLiteral("PRAGMA journal_mode=DELETE"));
    }
    removeSidecars(path);
    int value = 0;
    progress.setValue(value += 20);
    QFile::remove(bak);
    requireOk(QFile::copy(path, bak), QStringLiteral("Copy to %1 failed").arg(bak));
    progress.setValue(value += 20);
    if (QFileInfo::exists(org)) requireOk(QFile::remove(org), QStringLiteral("%1 cannot be deleted").arg(org));
    removeSidecars(org);
    requireOk(QFile::rename(path, org), QStringLiteral("Rename to %1 failed").arg(org));
    renamed = true;
    progress.setValue(value += 20);
    QThread::msleep(100);
    {
      // The connection opens files without creating them; an empty file is an empty
      // database to attach and fill.
      QFile fresh(path);
      requireOk(fresh.open(QIODevice::WriteOnly), QStringLiteral("%1 cannot be created").arg(path));
      fresh.close();
      VtDatabase source;
      source.open(org, password);
      Statement attach(source, QStringLiteral("ATTACH DATABASE ? AS compacted KEY ?"));
      attach.bind(1, QFileInfo(path).absoluteFilePath()).bind(2, password);
      attach.run();
      source.exec(QStringLiteral("SELECT sqlcipher_export('compacted')"));
      source.exec(QStringLiteral("DETACH DATABASE compacted"));
    }
    exported = true;
    removeSidecars(org);
    requireOk(QFile::remove(org), QStringLiteral("%1 cannot be deleted").arg(org));
    progress.setValue(kCompactProgressMaximum);
    result = 0;
  } catch (const std::exception& e) {
    // A failed export leaves a half-made file under the database's name, which the next
    // start would open as an empty database. The household's data are whole in the
    // ".org" file, so that goes back under its name (the ".bak" copy stays either way).
    if (renamed && !exported && QFileInfo::exists(org)) {
      removeSidecars(path);
      if (!QFileInfo::exists(path) || QFile::remove(path)) QFile::rename(org, path);
    }
    GetDialogInterface()->showMessage(QStringLiteral("Vantora"), QString::fromStdString(e.what()),
                                      DialogIcon::None);
  }
}
