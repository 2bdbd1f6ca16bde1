// The "MYSQL" kind on a real server.
#include <sys/wait.h>
#include <unistd.h>

#include <QDateTime>
#include <QVariant>
#include <cstdlib>

#include "db/Connection.h"
#include "db/RowFields.h"
#include "tests/db/ServerStore.h"
#include "tests/support/BothWays.h"

using Corvane::QnPosDBPro;
using dbtest::U;
using dbtest::Utf8;

namespace {

/** The server listens on the client library's default socket, as the environment names it; "root" has no password. */
class MySql : public dbtest::ServerStore {
 protected:
  void SetUp() override {
    FromScript("MYSQL_UNIX_PORT");
    Configure("DbType=mysql\nServiceName=\nDBName=unittest\nUserName=\nPassword=\nPort=1\n");
    Open();
    ASSERT_TRUE(Run("drop table if exists t")) << Utf8(m_error);
  }

  /** Ends the connection from the server's side, as an administrator or a restart would. */
  void LoseConnection() {
    const std::string id = Answer("select connection_id()");
    m_query.clear();
    QnPosDBPro other;
    QString error;
    ASSERT_TRUE(other.EnsureOpen(error)) << Utf8(error);
    ASSERT_TRUE(other.excuteSQL(U(("kill " + id).c_str()), error)) << Utf8(error);
  }
};

TEST_F(MySql, EmptyServerUserAndPortOpen) { EXPECT_EQ(Answer("select database()"), "unittest"); }

TEST_F(MySql, AServerThatIsNamedIsReachedByItsName) {
  FromScript("MYSQL_TCP_PORT");
  Configure("DbType=MYSQL\nServiceName=127.0.0.1\nDBName=unittest\nUserName=root\nPort=1\n");
  Open();
  EXPECT_EQ(Answer("select host from information_schema.processlist where id=connection_id()").substr(0, 10),
            "127.0.0.1:");
}

/// Ends a child with its exit handlers. @return whether it went well.
template <class Work>
bool InForkedProcess(Work work) {
  const pid_t child = fork();
  if (child == 0) std::exit(work() ? 0 : 1);
  int status = -1;
  return waitpid(child, &status, 0) == child && status == 0;
}

TEST_F(MySql, AForkedProcessHasAConnectionOfItsOwn) {
  const std::string own = Answer("select connection_id()");
  m_query.clear();
  EXPECT_TRUE(InForkedProcess([&] {
    QString error;
    return m_db->EnsureOpen(error) && Answer("select connection_id()") != own && Answer("select 'child'") == "child";
  }));
  EXPECT_EQ(Answer("select connection_id()"), own);
}

TEST_F(MySql, AForkedProcessThatEndsWithoutACallLeavesTheConnectionOpen) {
  const std::string own = Answer("select connection_id()");
  m_query.clear();
  EXPECT_TRUE(InForkedProcess([] { return true; }));
  EXPECT_EQ(Answer("select connection_id()"), own);
}

TEST_F(MySql, TextsKeepQuotesAndChinese) {
  ASSERT_TRUE(Run("create table t(Name varchar(100)) character set utf8mb4")) << Utf8(m_error);
  ASSERT_TRUE(Run("insert into t values('it''s \"满减\" 50%1')")) << Utf8(m_error);
  EXPECT_EQ(Answer("select Name from t where Name='it''s \"满减\" 50%1'"), "it's \"满减\" 50%1");
  EXPECT_EQ(Answer("select char_length(Name) from t"), "14");
}

TEST_F(MySql, NullsNumbersAsTextAndTextAsNumbers) {
  ASSERT_TRUE(
      Run("create table t(Empty varchar(8), NoNumber decimal(18,4), NumberText varchar(20), Money decimal(18,4), Big "
          "bigint, Flag smallint)"));
  ASSERT_TRUE(Run("insert into t values(null, null, '12.50', 9.9, 6901234567890, 1)")) << Utf8(m_error);
  ASSERT_TRUE(Ask("select * from t"));
  ASSERT_TRUE(m_query.next());
  EXPECT_TRUE(m_query.value(0).isNull());
  EXPECT_EQ(m_query.value(0).toDouble(), 0.0);
  EXPECT_EQ(Utf8(m_query.value(0).toString()), "");
  EXPECT_TRUE(m_query.value(1).isNull());
  EXPECT_EQ(m_query.value(1).toDouble(), 0.0);
  EXPECT_EQ(m_query.value(2).toDouble(), 12.5);
  EXPECT_EQ(m_query.value(3).toDouble(), 9.9);
  EXPECT_EQ(Utf8(m_query.value(4).toString()), "6901234567890");
  EXPECT_TRUE(m_query.value(5).toBool());
}

TEST_F(MySql, FourByteCharactersPassBothWays) {
  ASSERT_TRUE(Run("create table t(Name varchar(100)) character set utf8mb4")) << Utf8(m_error);
  ASSERT_TRUE(Run("insert into t values('😀𠮷')")) << Utf8(m_error);
  EXPECT_EQ(Answer("select Name from t where Name='😀𠮷'"), "😀𠮷");
  EXPECT_EQ(Answer("select char_length(Name) from t"), "2");
  EXPECT_EQ(Answer("select @@character_set_client"), "utf8mb4");
}

TEST_F(MySql, RowsOfAllLinesAtOnceAreThoseOfEachLine) {
  for (const char* declared :
       {"varchar(40) character set utf8mb4 collate utf8mb4_bin",
        "varchar(40) character set utf8mb4 collate utf8mb4_general_ci",
        "varchar(40) character set utf8mb4 collate utf8mb4_unicode_ci",
        "char(40) character set utf8mb4 collate utf8mb4_general_ci",
        "varchar(40) character set latin1 collate latin1_swedish_ci", "varbinary(80)", "int", "double"}) {
    const bool holdsNumbers = std::string(declared) == "int" || std::string(declared) == "double";
    ASSERT_TRUE(Run("drop table if exists t") &&
                Run((std::string("create table t(BillNo varchar(20), SerialNo int, Place int "
                                 "auto_increment primary key, PluCode ") +
                     declared + ", PluType varchar(5) collate utf8mb4_general_ci)")
                        .c_str()))
        << declared << ": " << Utf8(m_error);
    ASSERT_TRUE(Run("set sql_mode=''"));  // a code that the column can't hold goes in as what is left of it
    const Corvane::DatabaseCall call(m_db->Shared());
    bothways::Comparison lookAlikes(*m_db, bothways::LookAlikes());
    lookAlikes.Run(200);
    EXPECT_GT(lookAlikes.LineByLine, 50) << declared;
    bothways::Comparison ordinary(*m_db, bothways::Ordinary());
    ordinary.Run(100);
    bothways::Comparison numbers(*m_db, bothways::Numbers());
    numbers.Run(100);
    if (holdsNumbers) {
      EXPECT_EQ(numbers.AtOnce, 0) << declared;
    } else {
      EXPECT_GT(ordinary.AtOnce, 0) << declared;
    }
  }
}

struct FlagRow {
  bool Flag = false;
};

TEST_F(MySql, ABitIsATruthValue) {
  ASSERT_TRUE(Run("create table t(Number int, Flag bit(1), Word char(5))") &&
              Run("insert into t values(1,b'0','N'),(2,b'1','Y'),(3,null,'FALSE')"))
      << Utf8(m_error);
  for (const char* column : {"Flag", "Word"}) {
    const Corvane::RowField<FlagRow> fields[] = {{column, Corvane::FromColumn<FlagRow>::Boolean<&FlagRow::Flag>}};
    std::vector<bool> read;
    ASSERT_TRUE(Ask("select * from t order by Number"));
    EXPECT_TRUE(Corvane::ReadRows<FlagRow>(*m_db, Rows(), fields, m_error,
                                           [&](const FlagRow& row) { read.push_back(row.Flag); }));
    EXPECT_EQ(read, (std::vector<bool>{false, true, false})) << column;
  }
}

struct TextRow {
  const char* Text = nullptr;
};

TEST_F(MySql, ANullReadsAsTheEmptyTextInAColumnOfNumbersToo) {
  ASSERT_TRUE(Run("create table t(Word varchar(8), Number int)") && Run("insert into t values(null, null)"));
  const Corvane::RowField<TextRow> word[] = {{"Word", Corvane::FromColumn<TextRow>::KeptText<&TextRow::Text>}};
  const Corvane::RowField<TextRow> number[] = {{"Number", Corvane::FromColumn<TextRow>::KeptText<&TextRow::Text>}};
  TextRow read;
  const auto take = [&read](const TextRow& row) { read = row; };
  ASSERT_TRUE(Ask("select * from t"));
  EXPECT_TRUE(Corvane::ReadRows<TextRow>(*m_db, Rows(), word, m_error, take));
  EXPECT_STREQ(read.Text, "");
  ASSERT_TRUE(Ask("select * from t"));
  EXPECT_TRUE(Corvane::ReadRows<TextRow>(*m_db, Rows(), number, m_error, take));
  EXPECT_STREQ(read.Text, "");
}

TEST_F(MySql, FailuresTellTheServersReason) {
  EXPECT_FALSE(Ask("select a from missing"));
  EXPECT_EQ(Utf8(m_error),
            "函数:openRecordset||执行:select a from missing||"
            "Table 'unittest.missing' doesn't exist QMYSQL: Unable to execute query");
  EXPECT_FALSE(Run("insert into missing values(1)"));
  EXPECT_EQ(Utf8(m_error),
            "函数:excuteSQL||执行:insert into missing values(1)||"
            "Table 'unittest.missing' doesn't exist QMYSQL: Unable to execute query");
  EXPECT_TRUE(m_db->EnsureOpen(m_error));
  EXPECT_EQ(Answer("select 1"), "1");
}

TEST_F(MySql, ProceduresAreRefused) {
  EXPECT_FALSE(m_db->exexProc(U("p"), QString(), m_error));
  EXPECT_EQ(Utf8(m_error), "不支持在数据库类型MYSQL执行存储过程");
}

TEST_F(MySql, AQuestionMayBeAskedWhileAnAnswerIsRead) {
  ASSERT_TRUE(Run("create table t(a int)") && Run("insert into t values(1),(2),(3)"));
  ASSERT_TRUE(Ask("select a from t order by a"));
  int rows = 0;
  while (m_query.next()) {
    QSqlQuery inner;
    ASSERT_TRUE(m_db->openRecordset(U("select a from t"), inner, m_error)) << Utf8(m_error);
    ASSERT_TRUE(inner.next());
    ++rows;
  }
  EXPECT_EQ(rows, 3);
}

TEST_F(MySql, TransactionsCommitAndRollBack) {
  ASSERT_TRUE(Run("create table t(a int) engine=innodb"));
  EXPECT_TRUE(m_db->BeginTransaction());
  EXPECT_TRUE(Run("insert into t values(1)"));
  EXPECT_TRUE(m_db->Rollback());
  EXPECT_EQ(Answer("select count(*) from t"), "0");
  EXPECT_TRUE(m_db->BeginTransaction());
  EXPECT_TRUE(Run("insert into t values(1)"));
  EXPECT_TRUE(m_db->Commit());
  EXPECT_EQ(Answer("select count(*) from t"), "1");
}

TEST_F(MySql, BuildersBindTheirValues) {
  ASSERT_TRUE(
      Run("create table t(Name varchar(40), Qty int, Price decimal(18,4), Raw blob, At datetime) "
          "character set utf8mb4"));
  const QDateTime when(QDate(2021, 3, 4), QTime(5, 6, 7));
  EXPECT_TRUE(m_db->InsertRecord(
      U("t"), {{"Name", "it's 茶"}, {"Qty", 2}, {"Price", 9.9}, {"Raw", QByteArray("\x01\x02")}, {"At", when}}));
  EXPECT_TRUE(m_db->UpdateRecord(U("t"), U("where Name='it''s 茶'"), {{"Price", 8.8}}));
  ASSERT_TRUE(m_db->OpenByHandle(1, U("select * from t")));
  ASSERT_TRUE(m_db->Next(1));
  QString name;
  qint32 quantity = 0;
  double price = 0;
  QByteArray raw;
  QDateTime at;
  EXPECT_TRUE(m_db->ReadRecord(
      1, {{U("Name"), &name}, {U("Qty"), &quantity}, {U("Price"), &price}, {U("Raw"), &raw}, {U("At"), &at}}));
  EXPECT_EQ(Utf8(name), "it's 茶");
  EXPECT_EQ(quantity, 2);
  EXPECT_EQ(price, 8.8);
  EXPECT_EQ(raw, QByteArray("\x01\x02"));
  EXPECT_EQ(at, when);
  EXPECT_FALSE(m_db->Next(1));
  EXPECT_TRUE(m_db->IsEOF(1));
}

TEST_F(MySql, ServerDateIsTheServers) {
  ASSERT_TRUE(Run("set timestamp=1614834367"));  // the server's clock, for this connection
  EXPECT_EQ(m_db->GetServerDate().toSecsSinceEpoch(), 1614834367);
}

TEST_F(MySql, ALostConnectionFailsOneStatementAndIsOpenedAgain) {
  LoseConnection();
  EXPECT_FALSE(Ask("select 1"));
  EXPECT_EQ(Utf8(m_error).rfind("函数:openRecordset||执行:select 1||", 0), 0U) << Utf8(m_error);
  EXPECT_NE(Utf8(m_error), "函数:openRecordset||执行:select 1||");
  m_error.clear();
  EXPECT_TRUE(m_db->EnsureOpen(m_error)) << Utf8(m_error);
  EXPECT_EQ(Utf8(m_error), "");
  EXPECT_EQ(Answer("select database()"), "unittest");
}

TEST_F(MySql, ALostConnectionTakesNoCopyWithIt) {
  QnPosDBPro copy(*m_db);
  LoseConnection();
  QSqlQuery query;
  EXPECT_FALSE(copy.openRecordset(U("select 1"), query, m_error));
  EXPECT_TRUE(m_db->EnsureOpen(m_error)) << Utf8(m_error);
  EXPECT_TRUE(copy.openRecordset(U("select 1"), query, m_error)) << Utf8(m_error);
}

TEST_F(MySql, ALossWhileRowsAreReadLeavesWhatCame) {
  ASSERT_TRUE(Run("create table t(a int)") && Run("insert into t values(1),(2),(3)"));
  ASSERT_TRUE(Ask("select a from t"));
  QSqlQuery reading = m_query;
  m_query = QSqlQuery();
  ASSERT_TRUE(reading.next());
  LoseConnection();
  EXPECT_TRUE(reading.next());
  EXPECT_TRUE(reading.next());
  EXPECT_FALSE(reading.next());
  EXPECT_FALSE(Ask("select 1"));
  EXPECT_TRUE(m_db->EnsureOpen(m_error)) << Utf8(m_error);
  EXPECT_EQ(Answer("select 1"), "1");
}

TEST_F(MySql, AnUnknownDatabaseIsAReason) {
  Configure("DbType=MYSQL\nDBName=nowhere\n");
  QnPosDBPro db;
  m_error.clear();
  EXPECT_FALSE(db.EnsureOpen(m_error));
  EXPECT_EQ(Utf8(m_error), "Unknown database 'nowhere' QMYSQL: Unable to connect数据库打开失败！");
}

}  // namespace
