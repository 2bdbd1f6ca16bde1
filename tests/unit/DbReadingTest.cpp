// How rules read: statements that are kept, and the one transaction of a call.
#include <gtest/gtest.h>

#include <QSqlQuery>
#include <string>
#include <vector>

#include "db/SqlText.h"
#include "tests/unit/DbStore.h"

using Corvane::DatabaseCall;
using Corvane::Quoted;
using Corvane::Recordset;
using Corvane::SqlText;
using dbtest::Utf8;
using Values = std::vector<std::string>;

namespace {

/// A store with a table t(a, b), and a till and a back office on it, each with a connection of its own. Nobody waits
/// for a lock.
class Reading : public testing::Test {
 protected:
  Reading() { dbtest::Store::Configure("DbType=SQLITE\nDBName=./shop.db\n"); }

  void SetUp() override {
    m_till = std::make_unique<dbtest::OpenFields>();
    m_office = std::make_unique<dbtest::OpenFields>();
    for (auto* const db : {m_till.get(), m_office.get()}) {
      ASSERT_TRUE(db->EnsureOpen(m_error)) << Utf8(m_error);
      QSqlQuery nobodyWaits;
      ASSERT_TRUE(db->openRecordset(QStringLiteral("pragma busy_timeout=0"), nobodyWaits, m_error)) << Utf8(m_error);
    }
    ASSERT_TRUE(Office("create table t(a text, b text)"));
    ASSERT_TRUE(Office("insert into t values('1', 'one'), ('2', 'two')"));
  }

  bool Office(const char* sql) {
    QString error;
    return m_office->excuteSQL(QString::fromUtf8(sql), error);
  }

  /// `b` of the rows with this `a`; the reason when they can't be read.
  Values Ask(const char* a) {
    const SqlText sql(m_till->Dialect(), "select b from t where a=", Quoted{a});
    Recordset rows;
    QString reason;
    if (!m_till->openRecordset(sql, rows, reason)) return {Utf8(reason)};
    Values values;
    while (rows.Query.next()) values.push_back(Utf8(rows.Query.value(0).toString()));
    return values;
  }

  dbtest::Store m_store;
  std::unique_ptr<dbtest::OpenFields> m_till;
  std::unique_ptr<dbtest::OpenFields> m_office;
  QString m_error;
};

TEST_F(Reading, AStatementIsAskedAgainWithOtherValues) {
  EXPECT_EQ(Ask("1"), Values{"one"});
  EXPECT_EQ(Ask("2"), Values{"two"});
  EXPECT_EQ(Ask("3"), Values{});
  EXPECT_EQ(Ask("1"), Values{"one"});
}

TEST_F(Reading, RowsThatChangedBetweenTwoCallsAreRead) {
  for (const char* change : {"update t set b='eins' where a='1'", "update t set b='uno' where a='1'"}) {
    ASSERT_TRUE(Office(change));
    const DatabaseCall call(m_till->Shared());
    EXPECT_EQ(Ask("1"), Values{std::string(change).find("eins") != std::string::npos ? "eins" : "uno"});
  }
}

TEST_F(Reading, ATableThatWasMadeAnewIsReadByItsNewColumns) {
  EXPECT_EQ(Ask("1"), Values{"one"});
  ASSERT_TRUE(Office("drop table t") && Office("create table t(b text, c text, a text)") &&
              Office("insert into t values('neu', 'x', '1')"));
  EXPECT_EQ(Ask("1"), Values{"neu"});
}

TEST_F(Reading, ATableThatWentAndCameIsReadAgain) {
  EXPECT_EQ(Ask("1"), Values{"one"});
  ASSERT_TRUE(Office("alter table t rename to gone"));
  EXPECT_EQ(Ask("1"), Values{"no such table: t Unable to fetch row"});
  EXPECT_EQ(Ask("1"), Values{"no such table: t Unable to execute statement"});
  ASSERT_TRUE(Office("alter table gone rename to t"));
  EXPECT_EQ(Ask("1"), Values{"one"});
}

/// A connection hears of a change with its next statement, whichever that is; from then on what is gone is missed when
/// a statement is prepared. That this one was prepared long ago makes no difference.
TEST_F(Reading, ATableThatWentIsMissedInTheSameWordsByAStatementThatWasKept) {
  ASSERT_TRUE(Office("create table other(b text)"));
  {
    const DatabaseCall call(m_till->Shared());
    EXPECT_EQ(Ask("1"), Values{"one"});
  }
  ASSERT_TRUE(Office("alter table t rename to gone"));
  {
    const DatabaseCall call(m_till->Shared());
    Recordset rows;
    ASSERT_TRUE(m_till->openRecordset(SqlText(m_till->Dialect(), "select b from other"), rows, m_error));
  }
  const DatabaseCall call(m_till->Shared());
  EXPECT_EQ(Ask("1"), Values{"no such table: t Unable to execute statement"});
}

TEST_F(Reading, NothingIsWrittenIntoTheMiddleOfACall) {
  {
    const DatabaseCall call(m_till->Shared());
    EXPECT_EQ(Ask("1"), Values{"one"});
    EXPECT_FALSE(Office("update t set b='changed' where a='2'"));
    EXPECT_EQ(Ask("2"), Values{"two"});
  }
  EXPECT_TRUE(Office("update t set b='changed' where a='2'"));
  EXPECT_EQ(Ask("2"), Values{"changed"});
}

TEST_F(Reading, WithAWriteAheadLogTheOfficeWritesAndTheCallSeesTheStoreAsItWas) {
  ASSERT_TRUE(Office("pragma journal_mode=wal"));
  {
    const DatabaseCall call(m_till->Shared());
    EXPECT_EQ(Ask("1"), Values{"one"});
    EXPECT_TRUE(Office("update t set b='changed' where a='2'"));
    EXPECT_EQ(Ask("2"), Values{"two"});
  }
  const DatabaseCall call(m_till->Shared());
  EXPECT_EQ(Ask("2"), Values{"changed"});
}

TEST_F(Reading, ACallThatReadsNothingHoldsNothing) {
  const DatabaseCall call(m_till->Shared());
  EXPECT_TRUE(m_till->EnsureOpen(m_error));
  EXPECT_TRUE(Office("update t set b='changed'"));
}

TEST_F(Reading, ACallWithinACallLeavesTheTransactionToTheOuterOne) {
  const DatabaseCall outer(m_till->Shared());
  {
    const DatabaseCall inner(m_till->Shared());
    EXPECT_EQ(Ask("1"), Values{"one"});
  }
  EXPECT_FALSE(Office("update t set b='changed'"));
}

TEST_F(Reading, RowsThatWereNotReadToTheirEndHoldNothingBehindTheCall) {
  Recordset rows;
  {
    const DatabaseCall call(m_till->Shared());
    const SqlText sql(m_till->Dialect(), "select b from t where a<>", Quoted{"0"});
    ASSERT_TRUE(m_till->openRecordset(sql, rows, m_error));
    ASSERT_TRUE(rows.Query.next());
  }
  EXPECT_TRUE(Office("update t set b='changed'"));
}

TEST_F(Reading, AFailedStatementLeavesTheCallItsTransaction) {
  {
    const DatabaseCall call(m_till->Shared());
    Recordset rows;
    EXPECT_FALSE(m_till->openRecordset(SqlText(m_till->Dialect(), "select b from missing"), rows, m_error));
    EXPECT_EQ(Ask("1"), Values{"one"});
    EXPECT_FALSE(Office("update t set b='changed'"));
  }
  EXPECT_TRUE(Office("update t set b='changed'"));
}

TEST_F(Reading, AFileThatIsLockedIsAFailedStatementAndIsReadLater) {
  ASSERT_TRUE(Office("begin exclusive"));
  {
    const DatabaseCall call(m_till->Shared());
    EXPECT_EQ(Ask("1"), Values{"database is locked Unable to execute statement"});
  }
  ASSERT_TRUE(Office("commit"));
  const DatabaseCall call(m_till->Shared());
  EXPECT_EQ(Ask("1"), Values{"one"});
}

TEST_F(Reading, MoreStatementsThanAreKeptAreAskedAllTheSame) {
  for (int round = 0; round < 2; ++round) {
    SqlText words(m_till->Dialect(), "select b from t where a=", Quoted{"1"});
    for (int statement = 0; statement < 300; ++statement) {
      Recordset rows;
      ASSERT_TRUE(m_till->openRecordset(words, rows, m_error)) << Utf8(m_error);
      EXPECT_TRUE(rows.Query.next());
      words = SqlText(m_till->Dialect(), words, " ");
    }
  }
}

TEST_F(Reading, ValuesOfEveryKindComeBackAsTheyWentIn) {
  for (const char* value : {"it's", "\\", "茶", "😀", "\uFEFFmark", "\uFFFEmark", "", " a ", "%_?:x", "a\nb"}) {
    ASSERT_TRUE(m_office->excuteSQL(
        SqlText(m_office->Dialect(), "insert into t values(", Quoted{value}, ",'here')").ToString(), m_error));
    EXPECT_EQ(Ask(value), Values{"here"}) << value;
    ASSERT_TRUE(Office("delete from t where b='here'"));
  }
}

}  // namespace
