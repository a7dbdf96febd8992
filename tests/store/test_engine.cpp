// The engine layer: keying, the SQL functions and the text comparison of the name searches.
#include <QFile>
#include <QTemporaryDir>
#include <chrono>
#include <thread>

#include "testsupport/store_fixture.h"

namespace {

QString one(VtDatabase& db, const QString& sql, const QStringList& values = {}) {
  Statement st(db, sql);
  for (int i = 0; i < values.size(); ++i) st.bind(i + 1, values.at(i));
  EXPECT_TRUE(st.step());
  return st.isNull(0) ? QStringLiteral("<null>") : st.text(0);
}

class EngineTest : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(dir_.isValid());
    path_ = dir_.filePath(QStringLiteral("e.db"));
    db_.open(path_, QStringLiteral("secret"), VtDatabase::OpenMode::Create);
  }
  QTemporaryDir dir_;
  QString path_;
  VtDatabase db_;
};

TEST_F(EngineTest, FileIsUnreadableWithoutTheRightKey) {
  db_.exec(QStringLiteral("CREATE TABLE T (A TEXT); INSERT INTO T VALUES ('hello household');"));
  db_.close();

  const QByteArray raw = ReadBytes(path_);
  EXPECT_FALSE(raw.contains("hello household") || raw.startsWith("SQLite format 3"));

  VtDatabase other;
  EXPECT_THROW(other.open(path_, QStringLiteral("wrong")), StoreError);
  EXPECT_FALSE(other.isOpen());
  other.open(path_, QStringLiteral("secret"));
  EXPECT_EQ(one(other, QStringLiteral("SELECT A FROM T")), QStringLiteral("hello household"));
  // Keys are bound, not pasted: quotes in a password are just characters.
  VtDatabase quoted;
  const QString odd = dir_.filePath(QStringLiteral("q.db"));
  quoted.open(odd, QStringLiteral("it's; --"), VtDatabase::OpenMode::Create);
  quoted.exec(QStringLiteral("CREATE TABLE T (A TEXT)"));
  quoted.close();
  EXPECT_NO_THROW(quoted.open(odd, QStringLiteral("it's; --")));
}

TEST_F(EngineTest, MissingOrForeignFilesFailCleanly) {
  VtDatabase other;
  EXPECT_THROW(other.open(dir_.filePath(QStringLiteral("none.db")), QStringLiteral("x")), StoreError);
  EXPECT_FALSE(QFile::exists(dir_.filePath(QStringLiteral("none.db"))));
  const QString junk = dir_.filePath(QStringLiteral("junk.db"));
  ASSERT_TRUE(WriteBytes(junk, QByteArray(8192, 'x')));
  EXPECT_THROW(other.open(junk, QStringLiteral("x")), StoreError);
  EXPECT_THROW(VtDatabase().open(path_, QStringLiteral("x"), VtDatabase::OpenMode::Create), StoreError);
}

TEST_F(EngineTest, OpeningWaitsForAnotherWriterInsteadOfFailing) {
  // A file in rollback-journal mode (as a compacted file comes out) with another
  // connection in the middle of a write: the open waits for the lock and then succeeds.
  db_.exec(QStringLiteral("PRAGMA journal_mode=DELETE; CREATE TABLE T (A TEXT);"));
  db_.exec(QStringLiteral("BEGIN EXCLUSIVE; INSERT INTO T VALUES ('x');"));
  std::thread writer([this] {
    std::this_thread::sleep_for(std::chrono::milliseconds(300));
    db_.exec(QStringLiteral("COMMIT"));
  });
  VtDatabase other;
  QString error;
  try {
    other.open(path_, QStringLiteral("secret"));
  } catch (const StoreError& e) {
    error = e.text();
  }
  writer.join();
  EXPECT_EQ(std::tuple(error, other.isOpen()), std::tuple(QString(), true));
}

// CINT rounds halves to even and rejects text; StrComp with 0 is binary.
TEST_F(EngineTest, SqlFunctionsAndTheTextComparison) {
  const std::pair<const char*, const char*> cases[] = {
      {"CINT('2.5')", "2"},       {"CINT('3.5')", "4"},  {"CINT(' 10 ')", "10"},         {"CINT('-1.5')", "-2"},
      {"CINT(NULL)", "<null>"},   {"CDbl('1.25') * 2", "2.5"}, {"LEN('ＡＢ c')", "4"},   {"LEN('')", "0"},
      {"StrComp('ab','AB',0)", "1"}, {"StrComp('ab','ab',0)", "0"}, {"StrComp('ab','ab ',0)", "-1"},
      {"StrComp('ab','AB ',1)", "0"}};
  for (const auto& [expr, value] : cases) EXPECT_EQ(one(db_, "SELECT " + QString::fromUtf8(expr)), value) << expr;
  for (const char* bad : {"SELECT CINT('abc')", "SELECT CINT('40000')"}) {
    Statement st(db_, QString::fromLatin1(bad));
    EXPECT_THROW(st.step(), StoreError) << bad;
  }

  db_.exec(QStringLiteral("CREATE TABLE N (V TEXT COLLATE JETTEXT)"));
  Statement ins(db_, QStringLiteral("INSERT INTO N VALUES (?)"));
  for (const QString& v : {QStringLiteral("Mori      "), QStringLiteral("ＭＯＲＩ"), QStringLiteral("ｶﾞｸ"),
                           QStringLiteral("mora")}) {
    ins.reset();
    ins.bind(1, v).run();
  }
  auto count = [&](const QString& v) {
    return one(db_, QStringLiteral("SELECT count(*) FROM N WHERE V = ?"), {v}).toInt();
  };
  // Trailing blanks, case and full/half width are one text for "=".
  EXPECT_EQ(std::tuple(count("mori"), count("ガク"), count("mor"), count("")), std::tuple(2, 1, 0, 0));
  // Ordering stays a total order: the index gives the same answer as a scan.
  db_.exec(QStringLiteral("CREATE INDEX NI ON N (V)"));
  EXPECT_EQ(count(QStringLiteral("MORI  ")), 2);
}

TEST_F(EngineTest, NullsReadAsBlanksAndWidthsCutAndPad) {
  Statement st(db_, QStringLiteral("SELECT NULL AS A, 'abcdef' AS B, 'ab' AS C"));
  ASSERT_TRUE(st.step());
  EXPECT_TRUE(st.isNull("A"));
  EXPECT_EQ(QStringList({st.text("A"), st.fixed("A", 4), st.fixed("B", 4), st.fixed("C", 4)}),
            QStringList({"", "    ", "abcd", "ab  "}));
  EXPECT_THROW(st.text("MISSING"), StoreError);
}

TEST_F(EngineTest, TransactionRollsBackUnlessCommitted) {
  db_.exec(QStringLiteral("CREATE TABLE T (A TEXT)"));
  for (const bool commit : {false, true}) {
    {
      Transaction tx(db_);
      db_.exec(QStringLiteral("INSERT INTO T VALUES ('x')"));
      EXPECT_TRUE(db_.inTransaction());
      if (commit) tx.commit();
    }
    EXPECT_FALSE(db_.inTransaction());
    EXPECT_EQ(one(db_, QStringLiteral("SELECT count(*) FROM T")), commit ? "1" : "0");
  }
}

}  // namespace
