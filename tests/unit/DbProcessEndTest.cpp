// Calls behind the end: when what Qt keeps for the whole process is gone, nothing of it is touched.
#include <gtest/gtest.h>

#include <unistd.h>
#include <QSqlDatabase>
#include <cstdlib>

#include "db/ProcessEnd.h"
#include "tests/unit/DbStore.h"

using dbtest::OpenFields;
using dbtest::Store;
using dbtest::Utf8;

namespace {

OpenFields* g_db = nullptr;

/// The first place that doesn't hold is the process's code.
void WorkAtTheEnd() {
  QString error = QStringLiteral("earlier ");
  if (!Corvane::ProcessEnd::HasCome()) _exit(1);
  if (g_db->EnsureOpen(error)) _exit(2);
  if (Utf8(error) != "earlier 进程正在结束，数据库已关闭") _exit(3);
  if (g_db->excuteSQL(QStringLiteral("select 1"), error)) _exit(4);
  if (Utf8(error) != "函数:excuteSQL||执行:select 1|| DataBase is not opened!") _exit(5);
  OpenFields late;
  if (late.EnsureOpen(error) || late.BeginTransaction() || late.OpenByHandle(1, QStringLiteral("select 1"))) _exit(6);
  g_db->SetDbType(QStringLiteral("sqlite"));
  if (g_db->Open({}, QStringLiteral("./shop.sqlite"), error, {}, {}, 0)) _exit(7);
  delete g_db;
  _exit(0);
}

TEST(DbProcessEnd, HandlersOfTheHostFindTheDatabaseClosed) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_EXIT(
      {
        const Store store;
        Store::Configure("DbType=SQLITE\nDBName=./shop.sqlite\n");
        std::atexit(WorkAtTheEnd);
        g_db = new OpenFields;
        QString error;
        if (!g_db->EnsureOpen(error) || !g_db->OpenByHandle(1, QStringLiteral("select 1"))) _exit(8);
        std::exit(9);
      },
      testing::ExitedWithCode(0), "");
}

TEST(DbProcessEnd, AHostThatNeverOpenedFindsItClosedToo) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_EXIT(
      {
        const Store store;
        std::atexit(WorkAtTheEnd);
        g_db = new OpenFields;
        std::exit(9);
      },
      testing::ExitedWithCode(0), "");
}

}  // namespace
