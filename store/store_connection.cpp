// Connection, identifier counters, transactions and compaction.
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <cstdio>
#include <utility>
#include <vector>

#include "store/db_safety.h"

#include "frame/catalogue.h"
#include "frame/dialog.h"
#include "frame/helpers.h"
#include "frame/trace.h"
#include "frame/vbformat.h"
#include "store/backup.h"
#include "store/store.h"
#include "store/store_internal.h"

using namespace store_detail;

namespace store_detail {

void ReportFailure(VtDatabase& db, const QString& operation, const QString& number,
                   const QString& text) {
  db.setLastError(number, text);
  // The person gets the failure in the edition's words; the engine's words go to the
  // log. Without a catalogue (tools, early start) the engine's text is all there is.
  const QString code = StoreErrorCode(number.toInt());
  if (FindMessage(code))
    MessageDialog(code);
  else
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

}  // namespace store_detail

int VTDB_Open(VtDatabase& db, QString& path, QString& password) {
  if (path.isEmpty()) path = kDefaultDbPath;
  // The installation's own key; the built-in password only for one that has none yet.
  password = ResolveDatabaseKey(password);
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
    try {
      WriteTrace(QStringLiteral("2"), QStringLiteral("ConnectDB"), e.text());
    } catch (const std::exception&) {
    }
    // Missing, empty, not readable with the key, or another fault: each in its words.
    QString code = StoreErrorCode(e.code());
    const QFileInfo file(path);
    if (!file.exists())
      code = QStringLiteral("DBSF-C-0001");
    else if (file.isFile() && file.size() == 0)
      code = QStringLiteral("DBSF-C-0002");
    if (FindMessage(code))
      MessageDialog(code, QDir::toNativeSeparators(path));
    else
      GetDialogInterface()->showMessage(QStringLiteral("Vantora"), QStringLiteral("ConnectDB : ") + e.text(),
                                        DialogIcon::None);
    return 1;
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

void requireOk(bool ok, const QString& what) {
  if (!ok) Fail(what);
}

// Table names and row counts of a database, for the check that a copy holds all rows.
std::vector<std::pair<QString, qint64>> RowCounts(VtDatabase& db, const QString& schema) {
  std::vector<std::pair<QString, qint64>> counts;
  QStringList tables;
  {
    Statement st(db, QStringLiteral("SELECT name FROM %1.sqlite_master WHERE type = 'table' ORDER BY name").arg(schema));
    while (st.step()) tables << st.text(0);
  }
  for (const QString& t : tables) {
    QString quoted = t;
    quoted.replace(QLatin1Char('"'), QStringLiteral("\"\""));
    Statement count(db, QStringLiteral("SELECT COUNT(*) FROM %1.\"%2\"").arg(schema, quoted));
    count.step();
    counts.emplace_back(t, count.text(0).toLongLong());
  }
  return counts;
}

}  // namespace

QString CompactTempPath(const QString& path) { return path + QStringLiteral(".compact"); }

void CompactDB(QString& path, int& result, ProgressInterface& progress, const QString& password,
               double minimumFreeShare) {
  result = -1;
  if (path.isEmpty()) path = kDefaultDbPath;
  if (!QFileInfo(path).isFile()) {
    WriteTrace(QStringLiteral("2"), QStringLiteral("CompactDB"), QStringLiteral("DBFile No Exist"));
    return;
  }
  const QString key = ResolveDatabaseKey(password);
  const QString temp = CompactTempPath(path);
  const QString bak = path + QStringLiteral(".bak");
  try {
    // No other writer may change the file between its copy and the rename.
    InstallationLock lock(path);
    if (!lock.acquire()) Fail(QStringLiteral("%1 is in use by another Vantora program").arg(path));

    VtDatabase source;
    source.open(path, key);
    {
      Statement pages(source, QStringLiteral("PRAGMA page_count"));
      pages.step();
      Statement freePages(source, QStringLiteral("PRAGMA freelist_count"));
      freePages.step();
      const qint64 total = pages.text(0).toLongLong();
      const qint64 unused = freePages.text(0).toLongLong();
      if (total <= 0 || static_cast<double>(unused) < minimumFreeShare * static_cast<double>(total)) {
        WriteTrace(QStringLiteral("1"), QStringLiteral("CompactDB"),
                   QStringLiteral("skipped: %1 of %2 pages free").arg(unused).arg(total));
        progress.setValue(kCompactProgressMaximum);
        result = 0;
        return;
      }
    }
    // The installation's own database also gets a dated backup among the kept ones; the
    // .bak copy below stays whatever becomes of it.
    QString installed, installedKey;
    InstallationDatabase(installed, installedKey);
    if (QFileInfo(installed).canonicalFilePath() == QFileInfo(path).canonicalFilePath())
      (void)MakeAutomaticBackup(QStringLiteral("compaction"));
    // The log goes into the file and stays off while the file is copied and replaced: a
    // log left beside the new file would be read into it.
    source.exec(QStringLiteral("PRAGMA wal_checkpoint(TRUNCATE); PRAGMA journal_mode=DELETE"));
    int value = 0;
    QString error;
    requireOk(CopyFileAtomically(path, bak, &error), error);
    progress.setValue(value += 20);

    // The compacted copy is made beside the database and checked before it replaces it;
    // until the rename the database stands untouched under its name.
    QFile::remove(temp);
    QFile::remove(temp + QStringLiteral("-journal"));
    {
      QFile fresh(temp);
      requireOk(fresh.open(QIODevice::WriteOnly), QStringLiteral("%1 cannot be created").arg(temp));
      fresh.setPermissions(QFileDevice::ReadOwner | QFileDevice::WriteOwner);
    }
    Statement attach(source, QStringLiteral("ATTACH DATABASE ? AS compacted KEY ?"));
    attach.bind(1, QFileInfo(temp).absoluteFilePath()).bind(2, key);
    attach.run();
    source.exec(QStringLiteral("SELECT sqlcipher_export('compacted')"));
    const auto before = RowCounts(source, QStringLiteral("main"));
    const auto after = RowCounts(source, QStringLiteral("compacted"));
    source.exec(QStringLiteral("DETACH DATABASE compacted"));
    requireOk(before == after, QStringLiteral("the compacted copy does not hold every row"));
    requireOk(SyncFile(temp), QStringLiteral("%1 cannot be synced").arg(temp));
    progress.setValue(value += 20);
    {
      VtDatabase check;
      check.open(temp, key, VtDatabase::OpenMode::ReadOnly);
      Statement integrity(check, QStringLiteral("PRAGMA integrity_check"));
      requireOk(integrity.step() && integrity.text(0) == QLatin1String("ok"),
                QStringLiteral("the compacted copy fails its integrity check"));
    }
    progress.setValue(value += 20);
    source.close();
    requireOk(::rename(QFile::encodeName(temp).constData(), QFile::encodeName(path).constData()) == 0,
              QStringLiteral("%1 cannot be renamed to %2").arg(temp, path));
    SyncFolder(QFileInfo(path).absolutePath());
    progress.setValue(kCompactProgressMaximum);
    result = 0;
  } catch (const std::exception& e) {
    // The database was never touched; only the temporary copy goes.
    QFile::remove(temp);
    WriteTrace(QStringLiteral("2"), QStringLiteral("CompactDB"), QString::fromUtf8(e.what()));
    GetDialogInterface()->showMessage(QStringLiteral("Vantora"), QString::fromUtf8(e.what()),
                                      DialogIcon::None);
  }
}
