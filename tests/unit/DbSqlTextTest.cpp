// Statements and the values in them.
#include <gtest/gtest.h>

#include "db/SqlText.h"

using Corvane::DialectOf;
using Corvane::OneOf;
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

TEST(DbSqlText, OneOfSomeValuesIsAList) {
  const std::vector<const char*> values{"a", "'", nullptr};
  EXPECT_EQ(SqlText(DialectOf(QStringLiteral("MYSQL")), "x and ", OneOf("c", values)).ToString().toStdString(),
            "x and c in ('a','''','')");
}

TEST(DbSqlText, WhereStatementsAreKeptListsHaveFewLengths) {
  const SqlDialect dialect = DialectOf(QStringLiteral("SQLITE"));
  const std::vector<const char*> values{"a", "b", "c"};
  const SqlText sql(dialect, "x=", Quoted{"1"}, " and ", OneOf("y", values));
  EXPECT_EQ(sql.Pattern().toStdString(), "x=? and y in (?,?,?,?,changes()+null)");
  EXPECT_EQ(sql.ToString().toStdString(), "x='1' and y in ('a','b','c','c',changes()+null)");
}

TEST(DbSqlText, ALongListIsMadeOfConstants) {
  const std::vector<const char*> values(65, "a");
  std::string expected = "y in (?";
  for (int value = 1; value < 128; ++value) expected += ",?";
  EXPECT_EQ(SqlText(DialectOf(QStringLiteral("SQLITE")), OneOf("y", values)).Pattern().toStdString(), expected + ")");
}

TEST(DbSqlText, APatternTakesItsPiecesInTheirOrder) {
  const SqlDialect dialect = DialectOf(QStringLiteral("SQLITE"));
  const SqlText piece(dialect, " and b=", Quoted{"2"}, " and c=", Quoted{"3"});
  const SqlText sql(dialect, "a=", Quoted{"1"}, piece, " and d=", Quoted{"4"}, ";");
  EXPECT_EQ(sql.Pattern().toStdString(), "a=? and b=? and c=? and d=?;");
  EXPECT_EQ(sql.ToString().toStdString(), "a='1' and b='2' and c='3' and d='4';");
}

TEST(DbSqlText, AValueHasTheSignsThatItHasWithinTheStatement) {
  EXPECT_EQ(SqlText::ValueOf("\uFEFFa'b"), QString::fromUtf8(" \uFEFFa'b").mid(1));
  EXPECT_EQ(SqlText::ValueOf("\xE4\xB8"), QString::fromUtf8(" \xE4\xB8 ").trimmed());
  EXPECT_EQ(SqlText::ValueOf(""), QString());
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
