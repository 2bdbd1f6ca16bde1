// Statements built from columns and values: `SqlArg`, InsertRecord, UpdateRecord.
#include <gtest/gtest.h>

#include <QSqlDatabase>
#include <QSqlQuery>
#include <memory>
#include <type_traits>

#include "qncorvane/SqlArg.h"
#include "tests/unit/DbRecorder.h"
#include "tests/unit/DbStore.h"

using Corvane::SqlItem;
using dbtest::OpenFields;
using dbtest::RecordingDriver;
using dbtest::Store;
using dbtest::TakeEvents;
using dbtest::TheRecorder;
using dbtest::Utf8;
using Events = std::vector<std::string>;

namespace {

QString U(const char* text) { return QString::fromUtf8(text); }

TEST(SqlArgText, ANumberStandsAsItIsAndATextInQuotes) {
  EXPECT_EQ(Utf8(SqlArg::getIntSQL(U("tSale"), {SqlArg(U("Qty"), U("3"), false), SqlArg(U("Name"), U("茶"), true)})),
            "insert into tSale(Qty,Name) values(3,'茶');");
}

TEST(SqlArgText, AnEmptyListLeavesTheBracketsEmpty) {
  EXPECT_EQ(Utf8(SqlArg::getIntSQL(U("tSale"), {})), "insert into tSale() values();");
}

TEST(SqlArgText, AQuoteIsNotDoubled) {
  EXPECT_EQ(Utf8(SqlArg::getIntSQL(U("t"), {SqlArg(U("a"), U("it's"), true)})), "insert into t(a) values('it's');");
}

TEST(SqlArgText, OnlyTheLastCommaGoes) {
  EXPECT_EQ(Utf8(SqlArg::getIntSQL(U("t"), {SqlArg(U("a,"), U("1,"), false), SqlArg(U(""), U(""), false)})),
            "insert into t(a,,) values(1,,);");
}

TEST(SqlArgText, PercentSignsAreText) {
  EXPECT_EQ(Utf8(SqlArg::getIntSQL(U("t%2"), {SqlArg(U("a%3"), U("%1"), true)})), "insert into t%2(a%3) values('%1');");
}

TEST(SqlArgText, FieldsAreOpen) {
  SqlArg arg;
  EXPECT_TRUE(arg.Name.isEmpty());
  EXPECT_TRUE(arg.Value.isEmpty());
  arg.Name = U("a");
  arg.Value = U("x");
  arg.IsText = true;
  EXPECT_EQ(Utf8(Corvane::SqlArg::getIntSQL(U("t"), {arg})), "insert into t(a) values('x');");
}

/** An "ORACLE" connection over the recording driver, which takes names as they are. */
class DbBuilder : public testing::Test {
 protected:
  DbBuilder() : m_driver(QStringLiteral("QOCI")) { Store::Configure("DbType=ORACLE\nDBName=d\n"); }

  void SetUp() override {
    m_db = std::make_unique<OpenFields>();
    QString error;
    ASSERT_TRUE(m_db->EnsureOpen(error));
    TakeEvents();
  }

  Store m_store;
  RecordingDriver m_driver;
  std::unique_ptr<OpenFields> m_db;
};

TEST_F(DbBuilder, InsertHasOnePlaceholderForEachColumn) {
  EXPECT_TRUE(m_db->InsertRecord(U("tSale"), {{"Qty", 3}, {"Name", "茶"}}));
  EXPECT_EQ(TakeEvents(), (Events{"prepare INSERT INTO tSale(Qty,Name) VALUES (:Qty,:Name)", "bind :Qty in int [3]",
                                  "bind :Name in QString [茶]", "exec prepared"}));
}

TEST_F(DbBuilder, InsertBindsEachTypeAsItself) {
  EXPECT_TRUE(m_db->InsertRecord(U("t"), {{"b", QByteArray("raw")},
                                          {"d", -1},
                                          {"f", 0.5},
                                          {"s", U("text")},
                                          {"n", static_cast<const char*>(nullptr)},
                                          {"t", QDateTime(QDate(2021, 3, 4), QTime(5, 6, 7))}}));
  EXPECT_EQ(TakeEvents(),
            (Events{"prepare INSERT INTO t(b,d,f,s,n,t) VALUES (:b,:d,:f,:s,:n,:t)", "bind :b in QByteArray [raw]",
                    "bind :d in int [-1]", "bind :f in double [0.5]", "bind :s in QString [text]",
                    "bind :n in QString []", "bind :t in QDateTime [2021-03-04T05:06:07]", "exec prepared"}));
}

TEST_F(DbBuilder, UpdatePutsTheRawConditionBehind) {
  EXPECT_TRUE(m_db->UpdateRecord(U("tSale"), U("WHERE BillNo='1'"), {{"Qty", 3}, {"Name", "x"}}));
  EXPECT_EQ(TakeEvents(), (Events{"prepare UPDATE tSale SET Qty=:Qty,Name=:Name WHERE BillNo='1'",
                                  "bind :Qty in int [3]", "bind :Name in QString [x]", "exec prepared"}));
}

TEST_F(DbBuilder, UpdateWithoutAConditionEndsInABlank) {
  EXPECT_TRUE(m_db->UpdateRecord(U("tSale"), QString(), {{"Qty", 3}}));
  EXPECT_EQ(TakeEvents(), (Events{"prepare UPDATE tSale SET Qty=:Qty ", "bind :Qty in int [3]", "exec prepared"}));
}

TEST_F(DbBuilder, AnEmptyListIsTheServersToRefuse) {
  EXPECT_TRUE(m_db->InsertRecord(U("t"), {}));
  EXPECT_EQ(TakeEvents(), (Events{"prepare INSERT INTO t() VALUES ()", "exec prepared"}));
}

TEST_F(DbBuilder, NeedsAnOpenConnection) {
  m_db->Db->close();
  TakeEvents();
  EXPECT_FALSE(m_db->InsertRecord(U("t"), {{"a", 1}}));
  EXPECT_FALSE(m_db->UpdateRecord(U("t"), QString(), {{"a", 1}}));
  OpenFields none;
  EXPECT_FALSE(none.InsertRecord(U("t"), {{"a", 1}}));
  EXPECT_EQ(TakeEvents(), Events{});
}

TEST_F(DbBuilder, AFailedStatementGivesFalse) {
  TheRecorder().StatementError = QStringLiteral("no");
  EXPECT_FALSE(m_db->InsertRecord(U("t"), {{"a", 1}}));
  TheRecorder().PrepareError = QStringLiteral("no");
  EXPECT_FALSE(m_db->UpdateRecord(U("t"), QString(), {{"a", 1}}));
}

/** Numbers that would be bound as something else than they are do not compile. */
static_assert(std::is_constructible_v<SqlItem, QString, int>);
static_assert(std::is_constructible_v<SqlItem, QString, double>);
static_assert(!std::is_constructible_v<SqlItem, QString, bool>);
static_assert(!std::is_constructible_v<SqlItem, QString, qint64>);
static_assert(!std::is_constructible_v<SqlItem, QString, unsigned>);
static_assert(!std::is_constructible_v<SqlItem, QString, float>);

TEST(DbBuilderOnSqlite, RowsGoInAndChange) {
  const Store store;
  Store::Configure("DbType=SQLITE\nDBName=./shop.sqlite\n");
  OpenFields db;
  QString error;
  ASSERT_TRUE(db.EnsureOpen(error));
  ASSERT_TRUE(db.excuteSQL(U("create table t(Name text, Qty integer, Price real, Raw blob)"), error));
  EXPECT_TRUE(db.InsertRecord(U("t"), {{"Name", "it's 茶"}, {"Qty", 2}, {"Price", 9.9}, {"Raw", QByteArray("\x01")}}));
  EXPECT_TRUE(db.UpdateRecord(U("t"), U("where Qty=2"), {{"Price", 8.8}}));
  EXPECT_FALSE(db.UpdateRecord(U("missing"), QString(), {{"Price", 8.8}}));
  QSqlQuery query;
  ASSERT_TRUE(db.openRecordset(U("select Name,Qty,Price,hex(Raw),typeof(Raw) from t"), query, error));
  ASSERT_TRUE(query.next());
  EXPECT_EQ(Utf8(query.value(0).toString()), "it's 茶");
  EXPECT_EQ(query.value(1).toInt(), 2);
  EXPECT_EQ(query.value(2).toDouble(), 8.8);
  EXPECT_EQ(Utf8(query.value(3).toString()), "01");
  EXPECT_EQ(Utf8(query.value(4).toString()), "blob");
  EXPECT_FALSE(query.next());
}

}  // namespace
