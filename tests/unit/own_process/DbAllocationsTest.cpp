// A statement that is kept, where memory is refused while it gets other values: what it reads next is what was asked
// for. This program refuses memory to everything in it, Qt and SQLite included; so it is one of its own.
#include <gtest/gtest.h>

#include <QVariant>
#include <cstddef>
#include <new>
#include <string>

#include "db/SqlText.h"
#include "tests/unit/DbStore.h"

namespace {

long g_left = -1;  // how many requests are still granted before one is refused; below 0 none is

}  // namespace

extern "C" {

void* __libc_malloc(std::size_t size);  // the C library's own

void* malloc(std::size_t size) { return g_left-- == 0 ? nullptr : __libc_malloc(size); }

}  // extern "C"

using Corvane::DatabaseCall;
using Corvane::Quoted;
using Corvane::SqlText;

namespace {

// Too long to be held without a request of their own.
constexpr Corvane::Text kFirst = "the goods of the first line of all";
constexpr Corvane::Text kOther = "the goods of another line, with more letters";

/// `b` of the row with this `a`; a text of its own when it can't be read.
std::string Ask(Corvane::QnPosDBPro& db, Corvane::Text a) {
  try {
    const SqlText sql(db.Dialect(), "select b from t where a=", Quoted{a});
    Corvane::Recordset rows;
    QString reason;
    if (!db.openRecordset(sql, rows, reason)) return "failed";
    return rows.Query.next() ? rows.Query.value(0).toString().toStdString() : "no row";
  } catch (const std::bad_alloc&) {
    return "failed";
  }
}

TEST(DbAllocations, AStatementIsNeverRunWithTheValuesOfAnother) {
  const dbtest::Store store;
  dbtest::Store::Configure("DbType=SQLITE\nDBName=./shop.db\n");
  Corvane::QnPosDBPro db;
  QString error;
  ASSERT_TRUE(db.EnsureOpen(error));
  ASSERT_TRUE(db.excuteSQL(QStringLiteral("create table t(a text, b text)"), error));
  for (const Corvane::Text value : {kFirst, kOther}) {
    const SqlText insert(db.Dialect(), "insert into t values(", Quoted{value}, ",", Quoted{value}, ")");
    ASSERT_TRUE(db.excuteSQL(insert.ToString(), error));
  }
  const DatabaseCall call(db.Shared());
  bool isRefused = true;
  for (long granted = 0; isRefused; ++granted) {
    ASSERT_EQ(Ask(db, kFirst), kFirst) << "before request " << granted;
    g_left = granted;
    const std::string other = Ask(db, kOther);
    isRefused = g_left < 0;
    g_left = -1;
    EXPECT_TRUE(isRefused || other == kOther) << other;
    EXPECT_NE(other, kFirst) << "at request " << granted;
    ASSERT_EQ(Ask(db, kFirst), kFirst) << "after request " << granted;
  }
}

}  // namespace
