// A process that was forked from one with a connection.
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <QSqlQuery>
#include <QVariant>
#include <cstdlib>

#include "db/SqlText.h"
#include "tests/unit/DbStore.h"

using dbtest::OpenFields;
using dbtest::Store;
using dbtest::Utf8;

namespace {

std::string FirstValue(Corvane::QnPosDBPro& db, QString& error) {
  QSqlQuery query;
  if (!db.openRecordset(QStringLiteral("select a from t"), query, error)) return "failed: " + Utf8(error);
  return query.next() ? Utf8(query.value(0).toString()) : "no row";
}

/// The first expectation that doesn't hold is the process's code.
int WorkInTheChild(OpenFields& db, const std::shared_ptr<QSqlDatabase>& inherited) {
  QString error;
  if (db.BeginTransaction() || FirstValue(db, error).substr(0, 6) != "failed") return 1;  // not without an open
  if (!db.EnsureOpen(error)) return 2;
  if (Utf8(db.ConnName) != "MyDBProcessConn1" || db.Db == inherited) return 3;
  if (FirstValue(db, error) != "7") return 4;
  if (!inherited->isOpen() || Utf8(inherited->connectionName()) != "MyDBProcessConn0") return 5;
  return 0;
}

TEST(DbFork, TheChildOpensAConnectionOfItsOwnAndLeavesTheInheritedOneAlone) {
  const Store store;
  Store::Configure("DbType=SQLITE\nDBName=./shop.db\n");
  OpenFields db;
  QString error;
  ASSERT_TRUE(db.EnsureOpen(error));
  ASSERT_TRUE(db.excuteSQL(QStringLiteral("create table t(a text)"), error));
  ASSERT_TRUE(db.excuteSQL(QStringLiteral("insert into t values('7')"), error));
  const std::shared_ptr<QSqlDatabase> connection = db.Db;
  const pid_t child = fork();
  if (child == 0) _exit(WorkInTheChild(db, connection));
  int status = -1;
  ASSERT_EQ(waitpid(child, &status, 0), child);
  EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << status;
  EXPECT_TRUE(db.EnsureOpen(error));
  EXPECT_EQ(Utf8(db.ConnName), "MyDBProcessConn0");
  EXPECT_EQ(FirstValue(db, error), "7");
}

TEST(DbFork, ASecondOpenOfTheChildKeepsItsConnection) {
  const Store store;
  Store::Configure("DbType=SQLITE\nDBName=./shop.db\n");
  OpenFields db;
  QString error;
  ASSERT_TRUE(db.EnsureOpen(error));
  const pid_t child = fork();
  if (child == 0) {
    const bool opened = db.EnsureOpen(error);
    const std::shared_ptr<QSqlDatabase> own = db.Db;
    _exit(opened && db.EnsureOpen(error) && db.Db == own ? 0 : 1);
  }
  int status = -1;
  ASSERT_EQ(waitpid(child, &status, 0), child);
  EXPECT_EQ(status, 0);
}

}  // namespace
