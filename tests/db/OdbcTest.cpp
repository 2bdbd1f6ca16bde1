// The "SQLSERVER" and "ACCESS" kinds through a real driver manager. Behind the drivers' names stands one that serves
// SQLite files: what is shown is that connection texts, statements, values and reasons pass, not how the servers
// answer.
#include <QDateTime>
#include <QVariant>
#include <algorithm>
#include <chrono>
#include <clocale>

#include "db/Connection.h"
#include "db/RowFields.h"
#include "tests/db/ServerStore.h"
#include "tests/support/BothWays.h"

using Corvane::QnPosDBPro;
using dbtest::U;
using dbtest::Utf8;

namespace {

/**
 * The driver manager translates texts for a driver that knows no wide characters, by the process's locale, as the host
 * has set it.
 */
void TakeUtf8Locale() { ASSERT_NE(std::setlocale(LC_CTYPE, "C.UTF-8"), nullptr); }

class OdbcSqlServer : public dbtest::ServerStore {
 protected:
  void SetUp() override {
    FromScript("ODBCSYSINI");
    TakeUtf8Locale();
    Configure("DbType=SqlServer\nServiceName=store-server\nDBName=shop.db\nUserName=till\nPassword=p\n");
    Open();
  }
};

TEST_F(OdbcSqlServer, TheConnectionTextLeadsToTheDatabase) {
  ASSERT_TRUE(Run("create table t(a)")) << Utf8(m_error);
  EXPECT_TRUE(QFile::exists(QStringLiteral("shop.db")));
}

TEST_F(OdbcSqlServer, TextsKeepQuotesAndChinese) {
  ASSERT_TRUE(Run("create table t(Name varchar(100))")) << Utf8(m_error);
  ASSERT_TRUE(Run("insert into t values('it''s \"满减\" 50%1')")) << Utf8(m_error);
  EXPECT_EQ(Answer("select Name from t where Name='it''s \"满减\" 50%1'"), "it's \"满减\" 50%1");
}

TEST_F(OdbcSqlServer, NullsNumbersAsTextAndTextAsNumbers) {
  ASSERT_TRUE(Run("create table t(Empty integer, NumberText varchar(20), Money double, Flag smallint)"));
  ASSERT_TRUE(Run("insert into t values(null, '12.50', 9.9, 1)")) << Utf8(m_error);
  ASSERT_TRUE(Ask("select * from t"));
  ASSERT_TRUE(m_query.next());
  EXPECT_TRUE(m_query.value(0).isNull());
  EXPECT_EQ(m_query.value(0).toDouble(), 0.0);
  EXPECT_EQ(m_query.value(1).toDouble(), 12.5);
  EXPECT_EQ(m_query.value(2).toDouble(), 9.9);
  EXPECT_TRUE(m_query.value(3).toBool());
}

TEST_F(OdbcSqlServer, RowsOfAllLinesAtOnceAreThoseOfEachLine) {
  for (const char* declared : {"varchar(40)", "varchar(40) collate nocase", "integer"}) {
    ASSERT_TRUE(Run("drop table if exists t") &&
                Run((std::string("create table t(BillNo varchar(20), SerialNo integer, PluCode ") + declared +
                     ", PluType varchar(5) collate nocase)")
                        .c_str()))
        << Utf8(m_error);
    const Corvane::DatabaseCall call(m_db->Shared());
    bothways::Words codes = bothways::LookAlikes();
    // Signs of four bytes don't pass this driver.
    codes.erase(std::remove_if(codes.begin(), codes.end(), [](const char* code) { return *code == '\xF0'; }),
                codes.end());
    bothways::Comparison lookAlikes(*m_db, codes);
    lookAlikes.Run(100);
    EXPECT_GT(lookAlikes.LineByLine, 30) << declared;
    bothways::Comparison ordinary(*m_db, bothways::Ordinary());
    ordinary.Run(100);
    if (std::string(declared) != "integer") {
      EXPECT_GT(ordinary.AtOnce, 20) << declared;
    }
  }
}

TEST_F(OdbcSqlServer, AQuestionMayBeAskedWhileAnAnswerIsRead) {
  ASSERT_TRUE(Run("create table t(a)") && Run("insert into t values(1)") && Run("insert into t values(2)"));
  ASSERT_TRUE(Ask("select a from t order by a"));
  int rows = 0;
  while (m_query.next()) {
    QSqlQuery inner;
    ASSERT_TRUE(m_db->openRecordset(U("select a from t"), inner, m_error)) << Utf8(m_error);
    ASSERT_TRUE(inner.next());
    ++rows;
  }
  EXPECT_EQ(rows, 2);
}

TEST_F(OdbcSqlServer, FailuresTellTheDriversReason) {
  EXPECT_FALSE(Ask("select a from missing"));
  EXPECT_EQ(Utf8(m_error),
            "函数:openRecordset||执行:select a from missing||"
            "[SQLite]no such table: missing (1) QODBC3: Unable to execute statement");
  EXPECT_TRUE(m_db->EnsureOpen(m_error)) << Utf8(m_error);
}

TEST_F(OdbcSqlServer, TimeoutsReachTheDriver) {
  QTemporaryDir folder;
  const QString notes = folder.filePath(QStringLiteral("notes"));
  qputenv("QNCORVANE_ODBC_NOTES", notes.toUtf8());
  Configure("DbType=SqlServer\nServiceName=store-server\nDBName=shop.db\nConnectTimeout=2\nReadTimeout=1\n");
  Open();
  qunsetenv("QNCORVANE_ODBC_NOTES");
  QFile file(notes);
  ASSERT_TRUE(file.open(QIODevice::ReadOnly));
  const QByteArray noted = file.readAll();
  EXPECT_TRUE(noted.contains("103=2\n")) << noted.constData();  // login
  EXPECT_TRUE(noted.contains("113=1\n")) << noted.constData();  // connection
  EXPECT_TRUE(noted.contains("0=1\n")) << noted.constData();    // statement
}

TEST_F(OdbcSqlServer, ASilentStatementEndsInTimeAndTheUseWithIt) {
  Configure("DbType=SqlServer\nServiceName=store-server\nDBName=shop.db\nReadTimeout=1\n");
  Open();
  const Corvane::DatabaseCall call(m_db->Shared());
  const auto start = std::chrono::steady_clock::now();
  for (int i = 0; i < 10; ++i) EXPECT_FALSE(Ask("select 'stand-in silence' from missing"));
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(3));
  EXPECT_FALSE(m_db->EnsureOpen(m_error));
}

struct TextRow {
  const char* Text = nullptr;
};

TEST_F(OdbcSqlServer, BlanksThatPadATextAreDropped) {
  ASSERT_TRUE(Run("create table t(Word char(8))") && Run("insert into t values(' PLU     ')")) << Utf8(m_error);
  const Corvane::RowField<TextRow> fields[] = {{"Word", Corvane::FromColumn<TextRow>::KeptText<&TextRow::Text>}};
  TextRow read;
  ASSERT_TRUE(Ask("select Word from t"));
  EXPECT_TRUE(Corvane::ReadRows<TextRow>(*m_db, Rows(), fields, m_error, [&](const TextRow& row) { read = row; }));
  EXPECT_STREQ(read.Text, " PLU");
}

TEST_F(OdbcSqlServer, RowsThatBreakOffAreAFailure) {
  ASSERT_TRUE(Run("create table t(a integer)") && Run("insert into t values(1)") &&
              Run("insert into t values(-9223372036854775807 - 1)"));
  const Corvane::RowField<TextRow> fields[] = {{"b", Corvane::FromColumn<TextRow>::KeptText<&TextRow::Text>}};
  int taken = 0;
  const bool read = Ask("select abs(a) as b from t") &&
                    Corvane::ReadRows<TextRow>(*m_db, Rows(), fields, m_error, [&](const TextRow&) { ++taken; });
  EXPECT_FALSE(read);
  EXPECT_EQ(taken, 0);
  EXPECT_NE(Utf8(m_error).find("integer overflow"), std::string::npos) << Utf8(m_error);
}

TEST_F(OdbcSqlServer, ProceduresReachTheServer) {
  EXPECT_FALSE(m_db->exexProc(U("pClose"), U("1"), m_error));
  EXPECT_EQ(Utf8(m_error),
            "函数:exexProc||执行:pClose||[SQLite]near \"exec\": syntax error (1) QODBC3: Unable to execute statement");
}

TEST_F(OdbcSqlServer, ServerDateFallsBackToTheClientsClock) {
  const QDateTime before = QDateTime::currentDateTime();
  EXPECT_GE(m_db->GetServerDate(), before);  // the stand-in has no getdate()
}

TEST_F(OdbcSqlServer, BuildersBindTheirValues) {
  ASSERT_TRUE(Run("create table t(Name varchar(40), Qty integer, Price double)"));
  EXPECT_TRUE(m_db->InsertRecord(U("t"), {{"Name", "it's 茶"}, {"Qty", 2}, {"Price", 9.9}}));
  EXPECT_TRUE(m_db->UpdateRecord(U("t"), U("where Qty=2"), {{"Price", 8.8}}));
  EXPECT_EQ(Answer("select Name from t where Price=8.8"), "it's 茶");
}

TEST_F(OdbcSqlServer, TransactionsRollBack) {
  ASSERT_TRUE(Run("create table t(a)"));
  EXPECT_TRUE(m_db->BeginTransaction());
  EXPECT_TRUE(Run("insert into t values(1)"));
  EXPECT_TRUE(m_db->Rollback());
  EXPECT_EQ(Answer("select count(*) from t"), "0");
}

/** Run by itself, where the manager knows no driver: it reads its settings once. */
class OdbcWithoutDriver : public dbtest::ServerStore {};

TEST_F(OdbcWithoutDriver, TheManagerTellsWhy) {
  Configure("DbType=SQLSERVER\nServiceName=h\nDBName=d\n");
  QnPosDBPro db;
  EXPECT_FALSE(db.EnsureOpen(m_error));
  EXPECT_EQ(Utf8(m_error),
            "[unixODBC][Driver Manager]Can't open lib 'SQL SERVER' : file not found QODBC3: Unable to connect"
            "数据库打开失败！");
  QSqlQuery query;
  EXPECT_FALSE(db.openRecordset(U("select 1"), query, m_error));
  EXPECT_EQ(Utf8(m_error), "函数:openRecordset||执行:select 1|| DataBase is not opened!");
}

class OdbcAccess : public dbtest::ServerStore {};

TEST_F(OdbcAccess, TheConnectionTextReachesTheDriver) {
  FromScript("ODBCSYSINI");
  TakeUtf8Locale();
  // The stand-in has no word "DBQ"; the one it knows rides along in the file's name.
  Configure("DbType=ACCESS\nDBName=\"./shop.mdb;Database=shop.db\"\n");
  Open();
  ASSERT_TRUE(Run("create table t(Name varchar(40))")) << Utf8(m_error);
  ASSERT_TRUE(Run("insert into t values('茶')")) << Utf8(m_error);
  EXPECT_EQ(Answer("select Name from t"), "茶");
  EXPECT_TRUE(QFile::exists(QStringLiteral("shop.db")));
}

/** Run by itself, with a driver for real Access files behind the name. */
class OdbcAccessFile : public dbtest::ServerStore {};

TEST_F(OdbcAccessFile, IsOpenedByItsName) {
  Configure("DbType=ACCESS\nDBName=" + FromScript("QNCORVANE_MDB") + "\n");
  Open();
}

TEST_F(OdbcAccessFile, IsOpenedByAConnectionFile) {
  QFile file(QStringLiteral("shop.udl"));
  ASSERT_TRUE(file.open(QIODevice::WriteOnly));
  // A name without a drive is one in the host's directory, from which this leads to the file.
  const QByteArray upwards = QByteArray("../").repeated(20);
  file.write("[oledb]\nProvider=Jet;Data Source=" + upwards + FromScript("QNCORVANE_MDB") + ";Mode=Read\n");
  file.close();
  Configure("DbType=ACCESS\nServiceName=shop.udl\n");
  Open();
}

TEST_F(OdbcAccessFile, AMissingFileIsAFailure) {
  Configure("DbType=ACCESS\nDBName=/nonexistent/shop.mdb\n");
  QnPosDBPro db;
  EXPECT_FALSE(db.EnsureOpen(m_error));
  EXPECT_EQ(Utf8(m_error), "QODBC3: Unable to connect数据库打开失败！");
}

TEST_F(OdbcAccessFile, ADriverThatServesNoStatementsFailsThemAndStaysOpen) {
  Configure("DbType=ACCESS\nDBName=" + FromScript("QNCORVANE_MDB") + "\n");
  Open();
  EXPECT_FALSE(Ask("select Code from shop"));
  EXPECT_EQ(Utf8(m_error).rfind("函数:openRecordset||执行:select Code from shop||[unixODBC][Driver Manager]", 0), 0U)
      << Utf8(m_error);
  m_error.clear();
  EXPECT_TRUE(m_db->EnsureOpen(m_error)) << Utf8(m_error);
}

}  // namespace
