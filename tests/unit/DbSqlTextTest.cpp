// Statements and the values in them.
#include <gtest/gtest.h>

#include "db/SqlText.h"

using Corvane::DialectOf;
using Corvane::Quoted;
using Corvane::SqlDialect;
using Corvane::SqlText;

namespace {

std::string Joined(const char* kind, const char* value) {
  return SqlText(DialectOf(QString::fromUtf8(kind)), "where a=", Quoted{value}, " and b=1").ToString().toStdString();
}

TEST(DbSqlText, AnOrdinaryValueKeepsEveryByte) {
  for (const char* kind : {"", "SQLITE", "MYSQL", "SQLSERVER", "ORACLE", "ACCESS"}) {
    EXPECT_EQ(Joined(kind, "6901234 茶\"%1;--"), "where a='6901234 茶\"%1;--' and b=1") << kind;
  }
}

TEST(DbSqlText, NullIsTheEmptyText) { EXPECT_EQ(Joined("SQLITE", nullptr), "where a='' and b=1"); }

TEST(DbSqlText, AQuoteIsDoubled) {
  for (const char* kind : {"SQLITE", "MYSQL", "SQLSERVER", "ORACLE", "ACCESS"}) {
    EXPECT_EQ(Joined(kind, "L'OR'"), "where a='L''OR''' and b=1") << kind;
  }
}

TEST(DbSqlText, ABackslashIsDoubledWhereItMeansSomething) {
  EXPECT_EQ(Joined("MYSQL", "\\' or 1=1 -- "), "where a='\\\\'' or 1=1 -- ' and b=1");
  EXPECT_EQ(Joined("SQLITE", "a\\"), "where a='a\\' and b=1");
  EXPECT_EQ(Joined("SQLSERVER", "a\\"), "where a='a\\' and b=1");
}

TEST(DbSqlText, APieceIsTakenAsItStands) {
  const SqlDialect dialect = DialectOf(QStringLiteral("MYSQL"));
  const SqlText piece(dialect, " and c=", Quoted{"'\\"});
  EXPECT_EQ(SqlText(dialect, "x", piece).ToString().toStdString(), "x and c='''\\\\'");
}

TEST(DbSqlText, EachKindAsksForOneRowInItsOwnWay) {
  using OneRow = SqlDialect::OneRow;
  EXPECT_EQ(DialectOf(QStringLiteral("SQLITE")).AskForOneRow, OneRow::Limit);
  EXPECT_EQ(DialectOf(QStringLiteral("MYSQL")).AskForOneRow, OneRow::Limit);
  EXPECT_EQ(DialectOf(QStringLiteral("SQLSERVER")).AskForOneRow, OneRow::Top);
  EXPECT_EQ(DialectOf(QStringLiteral("ACCESS")).AskForOneRow, OneRow::Top);
  EXPECT_EQ(DialectOf(QStringLiteral("ORACLE")).AskForOneRow, OneRow::RowNum);
}

}  // namespace
