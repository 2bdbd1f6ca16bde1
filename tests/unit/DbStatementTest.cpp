// Statements without arguments: `excuteSQL`, `openRecordset`, GetServerDate, transactions.
#include <gtest/gtest.h>

#include <QSqlDatabase>
#include <QSqlQuery>
#include <QSqlRecord>

#include "tests/unit/DbRecorder.h"
#include "tests/unit/DbStore.h"

using dbtest::OpenFields;
using dbtest::RecordingDriver;
using dbtest::Store;
using dbtest::TakeEvents;
using dbtest::TheRecorder;
using dbtest::Utf8;
using Events = std::vector<std::string>;

namespace {

/** An open SQLite store. */
class DbStatement : public testing::Test {
 protected:
  void SetUp() override {
    Store::Configure("DbType=SQLITE\nDBName=./shop.sqlite\n");
    m_db = std::make_unique<OpenFields>();
    ASSERT_TRUE(m_db->EnsureOpen(m_error));
  }

  bool Run(const char* sql) { return m_db->excuteSQL(QString::fromUtf8(sql), m_error); }
  bool Ask(const char* sql) { return m_db->openRecordset(QString::fromUtf8(sql), m_query, m_error); }

  Store m_store;
  std::unique_ptr<OpenFields> m_db;
  QString m_error;
  QSqlQuery m_query;
};

/** A connection of a kind whose driver records. */
std::unique_ptr<OpenFields> OpenRecorded(const char* kind) {
  Store::Configure("DbType=" + QByteArray(kind) + "\nDBName=d\n");
  auto db = std::make_unique<OpenFields>();
  QString error;
  EXPECT_TRUE(db->EnsureOpen(error)) << Utf8(error);
  TakeEvents();
  return db;
}

TEST_F(DbStatement, OpenRecordsetTellsWhatItRanAfterASuccessToo) {
  EXPECT_TRUE(Ask("select 7 as N"));
  EXPECT_EQ(Utf8(m_error), "函数:openRecordset||执行:select 7 as N||");
  ASSERT_TRUE(m_query.next());
  EXPECT_EQ(m_query.value(0).toInt(), 7);
  EXPECT_EQ(m_query.value(QStringLiteral("n")).toInt(), 7);
  EXPECT_FALSE(m_query.next());
}

TEST_F(DbStatement, OpenRecordsetForgetsTheEarlierText) {
  m_error = QStringLiteral("earlier");
  EXPECT_TRUE(Ask("select 1"));
  EXPECT_EQ(Utf8(m_error), "函数:openRecordset||执行:select 1||");
}

TEST_F(DbStatement, OpenRecordsetAppendsTheDriversReason) {
  EXPECT_FALSE(Ask("select a from missing"));
  EXPECT_EQ(Utf8(m_error),
            "函数:openRecordset||执行:select a from missing||no such table: missing Unable to execute statement");
  EXPECT_FALSE(m_query.isActive());
}

TEST_F(DbStatement, OpenRecordsetOnAClosedConnection) {
  m_db->Db->close();
  EXPECT_FALSE(Ask("select 1"));
  EXPECT_EQ(Utf8(m_error), "函数:openRecordset||执行:select 1|| DataBase is not opened!");
}

TEST_F(DbStatement, OpenRecordsetWithoutAConnectionHasNoOpeningText) {
  OpenFields db;
  EXPECT_FALSE(db.openRecordset(QStringLiteral("select 1"), m_query, m_error));
  EXPECT_EQ(Utf8(m_error), "Connection is not Created!");
}

TEST_F(DbStatement, OpenRecordsetGivesUpWhatTheQueryHeldBefore) {
  EXPECT_TRUE(Ask("select 1 union select 2"));
  ASSERT_TRUE(m_query.next());
  EXPECT_TRUE(Ask("select 3"));
  ASSERT_TRUE(m_query.next());
  EXPECT_EQ(m_query.value(0).toInt(), 3);
  EXPECT_FALSE(m_query.next());
}

TEST_F(DbStatement, OpenRecordsetMayRunWhileAnotherIsRead) {
  ASSERT_TRUE(Run("create table t(a)") && Run("insert into t values(1),(2)"));
  ASSERT_TRUE(Ask("select a from t order by a"));
  int rows = 0;
  while (m_query.next()) {
    QSqlQuery inner;
    ASSERT_TRUE(m_db->openRecordset(QStringLiteral("select a from t"), inner, m_error));
    while (inner.next()) ++rows;
  }
  EXPECT_EQ(rows, 4);
}

TEST_F(DbStatement, OpenRecordsetWithoutRows) {
  ASSERT_TRUE(Run("create table t(a)"));
  EXPECT_TRUE(Ask("select a from t"));
  EXPECT_TRUE(m_query.isActive());
  EXPECT_FALSE(m_query.next());
}

TEST_F(DbStatement, QuotesAndChineseTextPassAsTheyStand) {
  ASSERT_TRUE(Run("create table t(Name text)"));
  ASSERT_TRUE(Run("insert into t values('it''s \"满减\" 50%1 🎁')"));
  ASSERT_TRUE(Ask("select Name from t where Name='it''s \"满减\" 50%1 🎁'"));
  ASSERT_TRUE(m_query.next());
  EXPECT_EQ(Utf8(m_query.value(0).toString()), "it's \"满减\" 50%1 🎁");
  EXPECT_EQ(Utf8(m_error), "函数:openRecordset||执行:select Name from t where Name='it''s \"满减\" 50%1 🎁'||");
}

TEST_F(DbStatement, AnOpenQuoteIsAFailureAndNoMore) {
  EXPECT_FALSE(Ask("select 'it's'"));
  EXPECT_TRUE(m_db->EnsureOpen(m_error));
  EXPECT_TRUE(Ask("select 1"));
}

TEST_F(DbStatement, AnEmptyStatementIsAFailure) {
  EXPECT_FALSE(Ask(""));
  EXPECT_FALSE(Run(""));
}

TEST_F(DbStatement, NullNumbersAsTextAndTextAsNumbers) {
  ASSERT_TRUE(Run("create table t(Empty, NumberText text, TextNumber real, Big integer, Word real)"));
  ASSERT_TRUE(Run("insert into t values(null, '12.50', '7.25', 6901234567890, 'abc')"));
  ASSERT_TRUE(Ask("select Empty,NumberText,TextNumber,Big,Word from t"));
  ASSERT_TRUE(m_query.next());
  EXPECT_TRUE(m_query.value(0).isNull());
  EXPECT_EQ(Utf8(m_query.value(0).toString()), "");
  EXPECT_EQ(m_query.value(0).toDouble(), 0.0);
  EXPECT_EQ(m_query.value(1).toDouble(), 12.5);
  EXPECT_EQ(m_query.value(2).toDouble(), 7.25);
  EXPECT_EQ(Utf8(m_query.value(3).toString()), "6901234567890");
  EXPECT_EQ(m_query.value(4).toDouble(), 0.0);
}

TEST_F(DbStatement, ExcuteSqlShowsTheFirst30Characters) {
  EXPECT_TRUE(Run("create table tProPrjDirectProAct(BillNo text, PluCode text)"));
  EXPECT_EQ(Utf8(m_error), "函数:excuteSQL||执行:create table tProPrjDirectProA||");
  EXPECT_FALSE(Run("insert into 促销促销促销促销促销促销促销促销促销促销 values(1)"));
  EXPECT_EQ(Utf8(m_error),
            "函数:excuteSQL||执行:insert into 促销促销促销促销促销促销促销促销促销||"
            "no such table: 促销促销促销促销促销促销促销促销促销促销 Unable to execute statement");
}

TEST_F(DbStatement, ExcuteSqlShowsAShortStatementWhole) {
  EXPECT_TRUE(Run("create table t(a)"));
  EXPECT_EQ(Utf8(m_error), "函数:excuteSQL||执行:create table t(a)||");
}

TEST_F(DbStatement, ExcuteSqlOnAClosedConnectionOrNone) {
  m_db->Db->close();
  EXPECT_FALSE(Run("create table t(a)"));
  EXPECT_EQ(Utf8(m_error), "函数:excuteSQL||执行:create table t(a)|| DataBase is not opened!");
  OpenFields db;
  EXPECT_FALSE(db.excuteSQL(QStringLiteral("create table t(a)"), m_error));
  EXPECT_EQ(Utf8(m_error), "函数:excuteSQL||执行:create table t(a)|| DataBase is not opened!");
}

TEST(DbException, OfADriverBecomesAText) {
  const Store store;
  const RecordingDriver driver(QStringLiteral("QOCI"));
  const auto db = OpenRecorded("ORACLE");
  TheRecorder().Throws = true;
  QString error;
  QSqlQuery query;
  EXPECT_FALSE(db->openRecordset(QStringLiteral("a"), query, error));
  EXPECT_EQ(Utf8(error), "函数:openRecordset||执行:a||未定义的异常");
  EXPECT_FALSE(db->excuteSQL(QStringLiteral("a"), error));
  EXPECT_EQ(Utf8(error), "函数:excuteSQL||执行:a||未定义的异常");
  EXPECT_FALSE(db->exexProc(QStringLiteral("p"), QString(), error));
  EXPECT_EQ(Utf8(error), "函数:exexProc||执行:p||未定义的异常");
  QList<Corvane::ProcArg> args{{QStringLiteral("a"), QStringLiteral("1"), 1, 0}};
  EXPECT_FALSE(db->exexProcWithArgs(QStringLiteral("p"), args, error));
  EXPECT_EQ(Utf8(error), "函数:exexProcWithArgs||执行:p||未定义的异常");
  EXPECT_FALSE(db->OpenByHandle(1, QStringLiteral("a")));
  EXPECT_FALSE(db->InsertRecord(QStringLiteral("t"), {{"a", 1}}));
  EXPECT_TRUE(db->GetServerDate().isValid());
}

// ---- GetServerDate

struct KindAndStatement {
  const char* kind;
  const char* driver;
  const char* statement;
};

class DbServerDate : public testing::TestWithParam<KindAndStatement> {};

TEST_P(DbServerDate, AsksInTheKindsWay) {
  const Store store;
  const RecordingDriver driver(QString::fromLatin1(GetParam().driver));
  const auto db = OpenRecorded(GetParam().kind);
  TheRecorder().Columns = QStringList{QStringLiteral("other"), QStringLiteral("DATE")};
  const QDateTime date(QDate(2021, 3, 4), QTime(5, 6, 7));
  TheRecorder().Rows = {{1, date}, {2, date.addDays(1)}};
  EXPECT_EQ(db->GetServerDate(), date);
  EXPECT_EQ(TakeEvents(), Events{std::string("exec ") + GetParam().statement});
}

INSTANTIATE_TEST_SUITE_P(Kinds, DbServerDate,
                         testing::Values(KindAndStatement{"SQLITE", "QSQLITE", "select datetime('now') as date"},
                                         KindAndStatement{"MYSQL", "QMYSQL", "select current_timestamp as date"},
                                         KindAndStatement{"SQLSERVER", "QODBC", "select getdate() as date"},
                                         KindAndStatement{"ORACLE", "QOCI", "select sysdate as date from dual"},
                                         KindAndStatement{"ACCESS", "QODBC", "select getdate() as date"}),
                         [](const auto& tested) { return std::string(tested.param.kind); });

void ExpectTheClientsClock(OpenFields& db) {
  const QDateTime before = QDateTime::currentDateTime();
  const QDateTime date = db.GetServerDate();
  EXPECT_LE(before, date);
  EXPECT_LE(date, QDateTime::currentDateTime());
}

TEST(DbServerDateFallback, IsTheClientsClock) {
  const Store store;
  const RecordingDriver driver(QStringLiteral("QOCI"));
  const auto db = OpenRecorded("ORACLE");
  TheRecorder().Columns = QStringList{QStringLiteral("date")};
  ExpectTheClientsClock(*db);  // no row
  TheRecorder().StatementError = QStringLiteral("ORA-00923");
  ExpectTheClientsClock(*db);  // the statement fails
  db->Db->close();
  ExpectTheClientsClock(*db);  // not open
  OpenFields unopened;
  ExpectTheClientsClock(unopened);  // no connection
}

TEST_F(DbStatement, ServerDateOfSqliteIsItsText) {
  const qint64 difference = QDateTime::currentDateTimeUtc().secsTo(
      QDateTime(m_db->GetServerDate().date(), m_db->GetServerDate().time(), Qt::UTC));
  EXPECT_LE(qAbs(difference), 60);
}

// ---- transactions

TEST(DbTransaction, RunsWhereTheDriverHasIt) {
  const Store store;
  const RecordingDriver driver(QStringLiteral("QOCI"));
  const auto db = OpenRecorded("ORACLE");
  EXPECT_FALSE(db->BeginTransaction());
  EXPECT_FALSE(db->Commit());
  EXPECT_FALSE(db->Rollback());
  EXPECT_EQ(TakeEvents(), Events{});
  TheRecorder().Transactions = true;
  EXPECT_TRUE(db->BeginTransaction());
  EXPECT_TRUE(db->Commit());
  EXPECT_TRUE(db->Rollback());
  EXPECT_EQ(TakeEvents(), (Events{"begin", "commit", "rollback"}));
}

TEST(DbTransaction, NeedsAConnection) {
  const Store store;
  OpenFields db;
  EXPECT_FALSE(db.BeginTransaction());
  EXPECT_FALSE(db.Commit());
  EXPECT_FALSE(db.Rollback());
}

TEST_F(DbStatement, RollbackAndCommit) {
  const auto rows = [this] { return Ask("select count(*) from t") && m_query.next() ? m_query.value(0).toInt() : -1; };
  ASSERT_TRUE(Run("create table t(a)"));
  EXPECT_TRUE(m_db->BeginTransaction());
  EXPECT_TRUE(Run("insert into t values(1)"));
  EXPECT_TRUE(m_db->Rollback());
  EXPECT_EQ(rows(), 0);
  m_query.clear();
  EXPECT_TRUE(m_db->BeginTransaction());
  EXPECT_TRUE(Run("insert into t values(1)"));
  EXPECT_TRUE(m_db->Commit());
  EXPECT_EQ(rows(), 1);
}

}  // namespace
