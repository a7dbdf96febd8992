// A thin RAII layer over the sqlite3 C API of SQLCipher: one connection object, prepared
// statements with bound parameters, rows read as text with null detection, and a
// transaction guard. Everything here throws StoreError on failure; the data operations
// (VTDB_...) catch it and report in the system's way, so nothing throws past them.
#pragma once

#include <QHash>
#include <QString>
#include <cstdint>
#include <stdexcept>

struct sqlite3;
struct sqlite3_stmt;

class StoreError : public std::runtime_error {
 public:
  StoreError(int code, const QString& message);
  // The engine's result code (SQLITE_...); 0 for failures of our own making.
  int code() const { return code_; }
  QString text() const;

 private:
  int code_;
};

// One open database file. The working connection of the program is one of these, owned
// by the main screen and passed to every data operation; there is no hidden global one.
class VtDatabase {
 public:
  enum class OpenMode { Existing, Create, ReadOnly, AsIs };

  VtDatabase() = default;
  ~VtDatabase();
  VtDatabase(const VtDatabase&) = delete;
  VtDatabase& operator=(const VtDatabase&) = delete;

  // Opens and keys the file with the password, checks that the key reads it, sets WAL and
  // a busy timeout, and registers CINT, CDbl, LEN, StrComp and the JETTEXT collation.
  // Existing refuses a missing file; Create makes a new one; ReadOnly refuses a missing
  // file and changes nothing in it (no journal mode is set); AsIs is ReadOnly with write
  // access, for a file whose log must be recovered before it can be read. A wrong key or a file that is
  // no database throws. An already open connection is closed first.
  void open(const QString& path, const QString& password, OpenMode mode = OpenMode::Existing);
  void close() noexcept;
  bool isOpen() const { return db_ != nullptr; }
  QString path() const { return path_; }
  sqlite3* handle() const { return db_; }

  // Runs one or more statements without parameters (schema, pragmas).
  void exec(const QString& sql);
  bool inTransaction() const;

  // The last error of a failed data operation: number as text and its message.
  QString lastErrorNumber() const { return lastErrorNumber_; }
  QString lastErrorText() const { return lastErrorText_; }
  void setLastError(const QString& number, const QString& text) {
    lastErrorNumber_ = number;
    lastErrorText_ = text;
  }

 private:
  sqlite3* db_ = nullptr;
  QString path_;
  QString lastErrorNumber_;
  QString lastErrorText_;
};

// A prepared statement. Parameters are numbered from 1 ("?"); values are always bound,
// never written into the text.
class Statement {
 public:
  Statement(VtDatabase& db, const QString& sql);
  ~Statement();
  Statement(const Statement&) = delete;
  Statement& operator=(const Statement&) = delete;

  Statement& bind(int index, const QString& value);
  Statement& bind(int index, std::int64_t value);
  Statement& bindNull(int index);

  // Advances to the next row: true when a row is ready, false at the end. Throws on failure.
  bool step();
  // Runs a statement that returns no rows.
  void run();
  void reset();

  int columnCount() const;
  // Index of a result column by name (exact, as the query spells it); -1 when absent.
  int columnIndex(const char* name) const;

  bool isNull(int column) const;
  bool isNull(const char* name) const;
  // The value as text; null reads as "".
  QString text(int column) const;
  QString text(const char* name) const;
  // The value cut or padded with blanks on the right to width; null gives width blanks.
  QString fixed(int column, int width) const;
  QString fixed(const char* name, int width) const;

 private:
  int requireColumn(const char* name) const;
  VtDatabase& db_;
  sqlite3_stmt* stmt_ = nullptr;
  mutable QHash<QByteArray, int> names_;
};

// Commits on commit(); rolls back when left without it.
class Transaction {
 public:
  explicit Transaction(VtDatabase& db);
  ~Transaction();
  Transaction(const Transaction&) = delete;
  Transaction& operator=(const Transaction&) = delete;
  void commit();
  void rollback();

 private:
  VtDatabase& db_;
  bool open_ = true;
};

// Text cut or padded with blanks on the right to exactly width characters (a character
// outside the basic plane counts one and is never split).
QString FixWidth(const QString& text, int width);
// Characters of a text, a pair of UTF-16 surrogates counting one.
int CharacterCount(const QString& text);
// The key under which the JETTEXT collation compares: trailing blanks dropped, full and
// half width forms folded together, letter case folded.
QString JetTextKey(const QString& text);
