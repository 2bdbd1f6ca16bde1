// A server that goes away and comes back: a driver goes on calling such a connection open.
#include <gtest/gtest.h>

#include <QSqlQuery>
#include <memory>

#include "tests/unit/DbRecorder.h"
#include "tests/unit/DbStore.h"

using dbtest::OpenFields;
using dbtest::RecordingDriver;
using dbtest::RestForAServersRestart;
using dbtest::Store;
using dbtest::TakeEvents;
using dbtest::TheRecorder;
using dbtest::Utf8;
using Events = std::vector<std::string>;

namespace {

const std::string Opened = "open db[d] user[u] password[] host[h] port[1521] options[]";

class DbLostConnection : public testing::Test {
 protected:
  DbLostConnection() : m_driver(QStringLiteral("QOCI")) {
    Store::Configure("DbType=ORACLE\nServiceName=h\nDBName=d\nUserName=u\n");
  }

  void SetUp() override {
    m_db = std::make_unique<OpenFields>();
    ASSERT_TRUE(m_db->EnsureOpen(m_error));
    TakeEvents();
  }

  bool Ask(const char* sql) {
    QSqlQuery query;
    return m_db->openRecordset(QString::fromUtf8(sql), query, m_error);
  }

  Store m_store;
  RecordingDriver m_driver;
  std::unique_ptr<OpenFields> m_db;
  QString m_error;
};

TEST_F(DbLostConnection, WorkWithoutPausesIsNeverTried) {
  for (int i = 0; i < 100; ++i) ASSERT_TRUE(m_db->EnsureOpen(m_error) && Ask("a"));
  EXPECT_EQ(TakeEvents(), Events(100, "exec a"));
}

TEST_F(DbLostConnection, AFailedStatementMakesTheNextEnsureOpenTry) {
  TheRecorder().StatementError = QStringLiteral("no such table");
  EXPECT_FALSE(Ask("a"));
  EXPECT_EQ(Utf8(m_error), "函数:openRecordset||执行:a||no such table");
  TheRecorder().StatementError.clear();
  EXPECT_TRUE(m_db->EnsureOpen(m_error));
  EXPECT_TRUE(m_db->EnsureOpen(m_error));
  EXPECT_EQ(TakeEvents(), (Events{"exec a", "exec select 1 from dual"}));
}

TEST_F(DbLostConnection, ALostConnectionIsOpenedAgainAtTheNextEnsureOpen) {
  TheRecorder().StatementError = QStringLiteral("gone");
  EXPECT_FALSE(Ask("a"));
  EXPECT_TRUE(m_db->Db->isOpen());
  EXPECT_TRUE(m_db->EnsureOpen(m_error));
  EXPECT_EQ(m_db->OpenFailed, 0);
  TheRecorder().StatementError.clear();
  EXPECT_TRUE(Ask("b"));
  EXPECT_EQ(TakeEvents(), (Events{"exec a", "exec select 1 from dual", "close", Opened, "exec b"}));
}

TEST_F(DbLostConnection, AServerThatStaysAwayIsTriedAtEachEnsureOpen) {
  TheRecorder().StatementError = QStringLiteral("gone");
  TheRecorder().OpenError = QStringLiteral("no listener");
  EXPECT_FALSE(Ask("a"));
  m_error.clear();
  EXPECT_FALSE(m_db->EnsureOpen(m_error));
  EXPECT_EQ(Utf8(m_error), "no listener数据库打开失败！");
  EXPECT_EQ(m_db->OpenFailed, 1);
  EXPECT_FALSE(Ask("b"));
  EXPECT_EQ(Utf8(m_error), "函数:openRecordset||执行:b|| DataBase is not opened!");
  EXPECT_FALSE(m_db->EnsureOpen(m_error));
  EXPECT_EQ(TakeEvents(), (Events{"exec a", "exec select 1 from dual", "close", Opened, Opened}));
  TheRecorder().StatementError.clear();
  TheRecorder().OpenError.clear();
  EXPECT_TRUE(m_db->EnsureOpen(m_error));
  EXPECT_TRUE(Ask("c"));
  EXPECT_EQ(TakeEvents(), (Events{Opened, "exec c"}));
}

TEST_F(DbLostConnection, AServerThatRestartedBetweenTwoSalesCostsNoRule) {
  RestForAServersRestart();
  TheRecorder().StatementError = QStringLiteral("gone");
  EXPECT_TRUE(m_db->EnsureOpen(m_error));
  TheRecorder().StatementError.clear();
  EXPECT_TRUE(Ask("a"));
  EXPECT_EQ(TakeEvents(), (Events{"exec select 1 from dual", "close", Opened, "exec a"}));
}

TEST_F(DbLostConnection, ARestWithAServerThatStayedIsNoLoss) {
  RestForAServersRestart();
  EXPECT_TRUE(m_db->EnsureOpen(m_error));
  EXPECT_TRUE(m_db->EnsureOpen(m_error));
  EXPECT_EQ(TakeEvents(), Events{"exec select 1 from dual"});
}

TEST_F(DbLostConnection, IsNoticedByEveryCopy) {
  OpenFields copy(*m_db);
  TheRecorder().StatementError = QStringLiteral("gone");
  EXPECT_FALSE(Ask("a"));
  EXPECT_TRUE(copy.EnsureOpen(m_error));
  TheRecorder().StatementError.clear();
  EXPECT_TRUE(m_db->EnsureOpen(m_error));
  EXPECT_TRUE(Ask("b"));
  EXPECT_EQ(TakeEvents(), (Events{"exec a", "exec select 1 from dual", "close", Opened, "exec b"}));
}

TEST_F(DbLostConnection, IsNoticedByEveryOperation) {
  TheRecorder().StatementError = QStringLiteral("gone");
  const Events reopened{"exec select 1 from dual", "close", Opened};
  const auto reopens = [this] {
    TakeEvents();
    EXPECT_TRUE(m_db->EnsureOpen(m_error));
    return TakeEvents();
  };
  EXPECT_FALSE(m_db->excuteSQL(QStringLiteral("a"), m_error));
  EXPECT_EQ(reopens(), reopened);
  EXPECT_FALSE(m_db->exexProc(QStringLiteral("p"), QString(), m_error));
  EXPECT_EQ(reopens(), reopened);
  EXPECT_FALSE(m_db->OpenByHandle(1, QStringLiteral("a")));
  EXPECT_EQ(reopens(), reopened);
  EXPECT_FALSE(m_db->InsertRecord(QStringLiteral("t"), {{"a", 1}}));
  EXPECT_EQ(reopens(), reopened);
  m_db->GetServerDate();
  EXPECT_EQ(reopens(), reopened);
}

TEST(DbLostFile, AFileIsNotTriedAfterARest) {
  const Store store;
  const RecordingDriver driver(QStringLiteral("QSQLITE"));
  Store::Configure("DbType=SQLITE\nDBName=./d\n");
  OpenFields db;
  QString error;
  ASSERT_TRUE(db.EnsureOpen(error));
  TakeEvents();
  RestForAServersRestart();
  EXPECT_TRUE(db.EnsureOpen(error));
  EXPECT_EQ(TakeEvents(), Events{});
}

}  // namespace
