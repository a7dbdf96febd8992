#include "store/engine.h"

#include <QFileInfo>
#include <algorithm>
#include <cstring>
#include <stdexcept>

#include <sqlcipher/sqlite3.h>

#include "frame/vbformat.h"

namespace {

constexpr int kBusyTimeoutMs = 5000;

[[noreturn]] void throwDb(sqlite3* db, int rc) {
  const char* msg = db ? sqlite3_errmsg(db) : sqlite3_errstr(rc);
  throw StoreError(rc, QString::fromUtf8(msg ? msg : "database error"));
}

QString argText(sqlite3_value* v) {
  const auto* p = reinterpret_cast<const char*>(sqlite3_value_text(v));
  return p ? QString::fromUtf8(p, sqlite3_value_bytes(v)) : QString();
}

// ---- SQL functions the queries use: CINT, CDbl, LEN, StrComp ----

// CINT: to a 16-bit integer, halves to even; a text that is no number is an error, so a
// damaged value stops the query instead of counting as 0. Digits-only texts (the usual SEQ_NUM and counts) skip Qt.
void sqlCint(sqlite3_context* ctx, int, sqlite3_value** argv) {
  sqlite3_value* v = argv[0];
  switch (sqlite3_value_type(v)) {
    case SQLITE_NULL:
      sqlite3_result_null(ctx);
      return;
    case SQLITE_INTEGER: {
      const sqlite3_int64 n = sqlite3_value_int64(v);
      if (n < -32768 || n > 32767) {
        sqlite3_result_error(ctx, "Overflow", -1);
        return;
      }
      sqlite3_result_int(ctx, static_cast<int>(n));
      return;
    }
    default:
      break;
  }
  const auto* p = reinterpret_cast<const char*>(sqlite3_value_text(v));
  const int len = sqlite3_value_bytes(v);
  if (p && len > 0 && len <= 5) {
    int n = 0;
    bool digits = true;
    for (int i = 0; i < len; ++i) {
      if (p[i] < '0' || p[i] > '9') {
        digits = false;
        break;
      }
      n = n * 10 + (p[i] - '0');
    }
    if (digits && n <= 32767) {
      sqlite3_result_int(ctx, n);
      return;
    }
  }
  try {
    sqlite3_result_int(ctx, CIntVb(argText(v)));
  } catch (const std::overflow_error&) {
    sqlite3_result_error(ctx, "Overflow", -1);
  } catch (const std::exception&) {
    sqlite3_result_error(ctx, "Data type mismatch in criteria expression.", -1);
  }
}

void sqlCdbl(sqlite3_context* ctx, int, sqlite3_value** argv) {
  sqlite3_value* v = argv[0];
  switch (sqlite3_value_type(v)) {
    case SQLITE_NULL:
      sqlite3_result_null(ctx);
      return;
    case SQLITE_INTEGER:
    case SQLITE_FLOAT:
      sqlite3_result_double(ctx, sqlite3_value_double(v));
      return;
    default:
      break;
  }
  try {
    sqlite3_result_double(ctx, CDblVb(argText(v)));
  } catch (const std::exception&) {
    sqlite3_result_error(ctx, "Data type mismatch in criteria expression.", -1);
  }
}

// LEN: characters, not bytes.
void sqlLen(sqlite3_context* ctx, int, sqlite3_value** argv) {
  sqlite3_value* v = argv[0];
  if (sqlite3_value_type(v) == SQLITE_NULL) {
    sqlite3_result_null(ctx);
    return;
  }
  const auto* p = reinterpret_cast<const unsigned char*>(sqlite3_value_text(v));
  const int bytes = sqlite3_value_bytes(v);
  sqlite3_int64 n = 0;
  for (int i = 0; i < bytes; ++i)
    if ((p[i] & 0xC0) != 0x80) ++n;
  sqlite3_result_int64(ctx, n);
}

int sign(int c) { return c < 0 ? -1 : (c > 0 ? 1 : 0); }

// StrComp(a, b, mode): mode 0 compares binary (case and width count), any other mode as
// the text comparison of "=". -1, 0 or 1; null when an argument is null.
void sqlStrComp(sqlite3_context* ctx, int argc, sqlite3_value** argv) {
  if (sqlite3_value_type(argv[0]) == SQLITE_NULL || sqlite3_value_type(argv[1]) == SQLITE_NULL) {
    sqlite3_result_null(ctx);
    return;
  }
  const int mode = argc > 2 ? sqlite3_value_int(argv[2]) : 0;
  const QString a = argText(argv[0]);
  const QString b = argText(argv[1]);
  if (mode == 0)
    sqlite3_result_int(ctx, sign(QString::compare(a, b, Qt::CaseSensitive)));
  else
    sqlite3_result_int(ctx, sign(QString::compare(JetTextKey(a), JetTextKey(b), Qt::CaseSensitive)));
}

bool isAscii(const char* p, int n) {
  for (int i = 0; i < n; ++i)
    if (static_cast<unsigned char>(p[i]) >= 0x80) return false;
  return true;
}

// JETTEXT: text equality and ordering that ignore trailing blanks, letter case and
// character width, so "Yamada " and "YAMADA" are one name.
int jetCollate(void*, int n1, const void* v1, int n2, const void* v2) {
  const auto* a = static_cast<const char*>(v1);
  const auto* b = static_cast<const char*>(v2);
  if (isAscii(a, n1) && isAscii(b, n2)) {
    while (n1 > 0 && a[n1 - 1] == ' ') --n1;
    while (n2 > 0 && b[n2 - 1] == ' ') --n2;
    const int n = n1 < n2 ? n1 : n2;
    for (int i = 0; i < n; ++i) {
      unsigned char ca = static_cast<unsigned char>(a[i]);
      unsigned char cb = static_cast<unsigned char>(b[i]);
      if (ca >= 'A' && ca <= 'Z') ca = static_cast<unsigned char>(ca + 32);
      if (cb >= 'A' && cb <= 'Z') cb = static_cast<unsigned char>(cb + 32);
      if (ca != cb) return ca < cb ? -1 : 1;
    }
    return n1 == n2 ? 0 : (n1 < n2 ? -1 : 1);
  }
  const QString ka = JetTextKey(QString::fromUtf8(a, n1));
  const QString kb = JetTextKey(QString::fromUtf8(b, n2));
  return sign(QString::compare(ka, kb, Qt::CaseSensitive));
}

void registerFunctions(sqlite3* db) {
  const int flags = SQLITE_UTF8 | SQLITE_DETERMINISTIC;
  int rc = sqlite3_create_function_v2(db, "CINT", 1, flags, nullptr, sqlCint, nullptr, nullptr, nullptr);
  if (rc == SQLITE_OK)
    rc = sqlite3_create_function_v2(db, "CDbl", 1, flags, nullptr, sqlCdbl, nullptr, nullptr, nullptr);
  if (rc == SQLITE_OK)
    rc = sqlite3_create_function_v2(db, "LEN", 1, flags, nullptr, sqlLen, nullptr, nullptr, nullptr);
  if (rc == SQLITE_OK)
    rc = sqlite3_create_function_v2(db, "StrComp", 2, flags, nullptr, sqlStrComp, nullptr, nullptr, nullptr);
  if (rc == SQLITE_OK)
    rc = sqlite3_create_function_v2(db, "StrComp", 3, flags, nullptr, sqlStrComp, nullptr, nullptr, nullptr);
  if (rc == SQLITE_OK)
    rc = sqlite3_create_collation_v2(db, "JETTEXT", SQLITE_UTF8, nullptr, jetCollate, nullptr);
  if (rc != SQLITE_OK) throwDb(db, rc);
}

}  // namespace

// ---- StoreError ----

StoreError::StoreError(int code, const QString& message)
    : std::runtime_error(message.toStdString()), code_(code) {}

QString StoreError::text() const { return QString::fromStdString(what()); }

// ---- helpers ----

QString FixWidth(const QString& text, int width) {
  if (width <= 0) return text;
  const bool surrogates = std::any_of(text.cbegin(), text.cend(), [](QChar c) { return c.isSurrogate(); });
  if (!surrogates) {
    if (text.size() >= width) return text.left(width);
    return text + QString(width - text.size(), QLatin1Char(' '));
  }
  // Widths count characters: a character outside the basic plane (two UTF-16 units) is
  // one, and a cut never splits it.
  qsizetype units = 0;
  int characters = 0;
  while (units < text.size() && characters < width) {
    units += (text.at(units).isHighSurrogate() && units + 1 < text.size() && text.at(units + 1).isLowSurrogate()) ? 2 : 1;
    ++characters;
  }
  return text.left(units) + QString(width - characters, QLatin1Char(' '));
}

int CharacterCount(const QString& text) {
  int n = 0;
  for (qsizetype i = 0; i < text.size(); ++i, ++n)
    if (text.at(i).isHighSurrogate() && i + 1 < text.size() && text.at(i + 1).isLowSurrogate()) ++i;
  return n;
}

QString JetTextKey(const QString& text) {
  QString s = text.normalized(QString::NormalizationForm_KC);
  int n = static_cast<int>(s.size());
  while (n > 0 && s.at(n - 1) == QLatin1Char(' ')) --n;
  s.truncate(n);
  return s.toCaseFolded();
}

// ---- VtDatabase ----

VtDatabase::~VtDatabase() { close(); }

void VtDatabase::open(const QString& path, const QString& password, OpenMode mode) {
  close();
  if (mode != OpenMode::Create && !QFileInfo(path).isFile())
    throw StoreError(SQLITE_CANTOPEN, QStringLiteral("Could not find file '%1'.").arg(path));
  // A file of 0 bytes would open as a new, empty database and be filled as one, while
  // the household's data sit in a copy somewhere: it is refused like a damaged file.
  if (mode != OpenMode::Create && QFileInfo(path).size() == 0)
    throw StoreError(SQLITE_NOTADB, QStringLiteral("The database file '%1' is empty (0 bytes).").arg(path));
  if (mode == OpenMode::Create && QFileInfo::exists(path))
    throw StoreError(SQLITE_CANTOPEN, QStringLiteral("File '%1' already exists.").arg(path));

  sqlite3* db = nullptr;
  const int flags = mode == OpenMode::ReadOnly
                        ? SQLITE_OPEN_READONLY
                        : SQLITE_OPEN_READWRITE | (mode == OpenMode::Create ? SQLITE_OPEN_CREATE : 0);
  int rc = sqlite3_open_v2(QFileInfo(path).absoluteFilePath().toUtf8().constData(), &db, flags, nullptr);
  if (rc != SQLITE_OK) {
    const QString msg = QString::fromUtf8(db ? sqlite3_errmsg(db) : sqlite3_errstr(rc));
    sqlite3_close(db);
    throw StoreError(rc, msg);
  }
  try {
    const QByteArray key = password.toUtf8();
    rc = sqlite3_key(db, key.constData(), static_cast<int>(key.size()));
    if (rc != SQLITE_OK) throwDb(db, rc);
    // Before the first read: another connection in the middle of a write is waited for,
    // not taken for a damaged file.
    sqlite3_busy_timeout(db, kBusyTimeoutMs);
    // The first read tells whether the key fits: a wrong key or a file that is not a
    // database fails here with SQLITE_NOTADB.
    rc = sqlite3_exec(db, "SELECT count(*) FROM sqlite_master;", nullptr, nullptr, nullptr);
    if (rc != SQLITE_OK) throwDb(db, rc);
    // Every write stands alone, so each commit is synced to disk before the call returns:
    // a day stored, a user saved or a plan changed is still there after a power cut, not
    // only after a crash of the process. The sync costs a few milliseconds per write, far
    // below the half second the reader needs for each page of a recorder.
    if (mode != OpenMode::ReadOnly && mode != OpenMode::AsIs) {
      rc = sqlite3_exec(db, "PRAGMA journal_mode=WAL; PRAGMA synchronous=FULL;", nullptr, nullptr,
                        nullptr);
      if (rc != SQLITE_OK) throwDb(db, rc);
    }
    registerFunctions(db);
  } catch (...) {
    sqlite3_close(db);
    throw;
  }
  db_ = db;
  path_ = path;
}

void VtDatabase::close() noexcept {
  if (!db_) return;
  sqlite3_close_v2(db_);
  db_ = nullptr;
}

void VtDatabase::exec(const QString& sql) {
  if (!db_) throw StoreError(SQLITE_MISUSE, QStringLiteral("Operation is not allowed when the object is closed."));
  char* err = nullptr;
  const int rc = sqlite3_exec(db_, sql.toUtf8().constData(), nullptr, nullptr, &err);
  if (rc != SQLITE_OK) {
    const QString msg = QString::fromUtf8(err ? err : sqlite3_errmsg(db_));
    sqlite3_free(err);
    throw StoreError(rc, msg);
  }
}

bool VtDatabase::inTransaction() const { return db_ && sqlite3_get_autocommit(db_) == 0; }

// ---- Statement ----

Statement::Statement(VtDatabase& db, const QString& sql) : db_(db) {
  if (!db.handle())
    throw StoreError(SQLITE_MISUSE, QStringLiteral("Operation is not allowed when the object is closed."));
  const QByteArray text = sql.toUtf8();
  const int rc = sqlite3_prepare_v2(db.handle(), text.constData(), static_cast<int>(text.size()),
                                    &stmt_, nullptr);
  if (rc != SQLITE_OK) throwDb(db.handle(), rc);
}

Statement::~Statement() { sqlite3_finalize(stmt_); }

Statement& Statement::bind(int index, const QString& value) {
  const QByteArray text = value.toUtf8();
  const int rc = sqlite3_bind_text(stmt_, index, text.constData(), static_cast<int>(text.size()),
                                   SQLITE_TRANSIENT);
  if (rc != SQLITE_OK) throwDb(db_.handle(), rc);
  return *this;
}

Statement& Statement::bind(int index, std::int64_t value) {
  const int rc = sqlite3_bind_int64(stmt_, index, value);
  if (rc != SQLITE_OK) throwDb(db_.handle(), rc);
  return *this;
}

Statement& Statement::bindNull(int index) {
  const int rc = sqlite3_bind_null(stmt_, index);
  if (rc != SQLITE_OK) throwDb(db_.handle(), rc);
  return *this;
}

bool Statement::step() {
  const int rc = sqlite3_step(stmt_);
  if (rc == SQLITE_ROW) return true;
  if (rc == SQLITE_DONE) return false;
  throwDb(db_.handle(), rc);
}

void Statement::run() {
  while (step()) {
  }
}

void Statement::reset() {
  sqlite3_reset(stmt_);
  sqlite3_clear_bindings(stmt_);
}

int Statement::columnCount() const { return sqlite3_column_count(stmt_); }

int Statement::columnIndex(const char* name) const {
  if (names_.isEmpty()) {
    const int n = sqlite3_column_count(stmt_);
    for (int i = 0; i < n; ++i) names_.insert(QByteArray(sqlite3_column_name(stmt_, i)), i);
  }
  return names_.value(QByteArray::fromRawData(name, static_cast<qsizetype>(std::strlen(name))), -1);
}

int Statement::requireColumn(const char* name) const {
  const int i = columnIndex(name);
  if (i < 0)
    throw StoreError(SQLITE_ERROR,
                     QStringLiteral("Item cannot be found in the collection: %1").arg(QLatin1String(name)));
  return i;
}

bool Statement::isNull(int column) const { return sqlite3_column_type(stmt_, column) == SQLITE_NULL; }

bool Statement::isNull(const char* name) const { return isNull(requireColumn(name)); }

QString Statement::text(int column) const {
  const auto* p = reinterpret_cast<const char*>(sqlite3_column_text(stmt_, column));
  if (!p) return QString();
  return QString::fromUtf8(p, sqlite3_column_bytes(stmt_, column));
}

QString Statement::text(const char* name) const { return text(requireColumn(name)); }

QString Statement::fixed(int column, int width) const { return FixWidth(text(column), width); }

QString Statement::fixed(const char* name, int width) const { return fixed(requireColumn(name), width); }

// ---- Transaction ----

Transaction::Transaction(VtDatabase& db) : db_(db) { db_.exec(QStringLiteral("BEGIN IMMEDIATE")); }

Transaction::~Transaction() {
  if (open_) {
    try {
      db_.exec(QStringLiteral("ROLLBACK"));
    } catch (...) {
    }
  }
}

void Transaction::commit() {
  db_.exec(QStringLiteral("COMMIT"));
  open_ = false;
}

void Transaction::rollback() {
  open_ = false;
  db_.exec(QStringLiteral("ROLLBACK"));
}
