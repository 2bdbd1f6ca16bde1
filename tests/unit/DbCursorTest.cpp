// Recordsets by handle.
#include <gtest/gtest.h>

#include <QSqlDatabase>
#include <QSqlQuery>
#include <memory>

#include "tests/unit/DbStore.h"

using dbtest::OpenFields;
using dbtest::Store;
using dbtest::Utf8;

namespace {

const QString Numbers = QStringLiteral("select a from t order by a");

/** A SQLite store with the numbers 1, 2 and 3 in t. */
class DbCursor : public testing::Test {
 protected:
  void SetUp() override {
    Store::Configure("DbType=SQLITE\nDBName=./shop.sqlite\n");
    m_db = std::make_unique<OpenFields>();
    ASSERT_TRUE(m_db->EnsureOpen(m_error));
    ASSERT_TRUE(m_db->excuteSQL(QStringLiteral("create table t(a integer, b text)"), m_error));
    ASSERT_TRUE(m_db->excuteSQL(QStringLiteral("insert into t values(1,'一'),(2,null),(3,'三')"), m_error));
  }

  static int Current(OpenFields& db, qint32 handle) {
    qint32 number = -1;
    return db.ReadRecord(handle, {{QStringLiteral("a"), &number}}) ? number : -1;
  }

  Store m_store;
  std::unique_ptr<OpenFields> m_db;
  QString m_error;
};

TEST_F(DbCursor, AnUnknownHandleIsAtBothEndsAndMovesNowhere) {
  EXPECT_TRUE(m_db->IsEOF(5));
  EXPECT_TRUE(m_db->IsBOF(5));
  EXPECT_FALSE(m_db->First(5));
  EXPECT_FALSE(m_db->Previous(5));
  EXPECT_FALSE(m_db->Next(5));
  EXPECT_FALSE(m_db->Last(5));
  EXPECT_FALSE(m_db->Seek(5, 0));
  qint32 number = 8;
  EXPECT_FALSE(m_db->ReadRecord(5, {{QStringLiteral("a"), &number}}));
  EXPECT_EQ(number, 8);
  m_db->CloseHandle(5);
}

TEST_F(DbCursor, WalksFromBeforeTheFirstToBehindTheLast) {
  ASSERT_TRUE(m_db->OpenByHandle(-7, Numbers));
  EXPECT_TRUE(m_db->IsBOF(-7));
  EXPECT_FALSE(m_db->IsEOF(-7));
  for (const int expected : {1, 2, 3}) {
    EXPECT_TRUE(m_db->Next(-7));
    EXPECT_FALSE(m_db->IsBOF(-7));
    EXPECT_FALSE(m_db->IsEOF(-7));
    EXPECT_EQ(Current(*m_db, -7), expected);
  }
  EXPECT_FALSE(m_db->Next(-7));
  EXPECT_TRUE(m_db->IsEOF(-7));
}

TEST_F(DbCursor, MovesInEveryDirection) {
  ASSERT_TRUE(m_db->OpenByHandle(1, Numbers));
  EXPECT_TRUE(m_db->Last(1));
  EXPECT_EQ(Current(*m_db, 1), 3);
  EXPECT_TRUE(m_db->Previous(1));
  EXPECT_EQ(Current(*m_db, 1), 2);
  EXPECT_TRUE(m_db->First(1));
  EXPECT_EQ(Current(*m_db, 1), 1);
  EXPECT_TRUE(m_db->Seek(1, 2));
  EXPECT_EQ(Current(*m_db, 1), 3);
  EXPECT_FALSE(m_db->Seek(1, 3));
  EXPECT_FALSE(m_db->Seek(1, -5));
}

TEST_F(DbCursor, AHandleInUseIsUsedAgain) {
  ASSERT_TRUE(m_db->OpenByHandle(1, Numbers));
  ASSERT_TRUE(m_db->Last(1));
  ASSERT_TRUE(m_db->OpenByHandle(1, QStringLiteral("select 9 as a")));
  EXPECT_TRUE(m_db->IsBOF(1));
  ASSERT_TRUE(m_db->Next(1));
  EXPECT_EQ(Current(*m_db, 1), 9);
  EXPECT_EQ(m_db->Queries.size(), 1);
}

TEST_F(DbCursor, AFailedStatementLeavesAnEmptyRecordset) {
  ASSERT_TRUE(m_db->OpenByHandle(1, Numbers));
  EXPECT_FALSE(m_db->OpenByHandle(1, QStringLiteral("select nothing from nowhere")));
  EXPECT_FALSE(m_db->Next(1));
  EXPECT_FALSE(m_db->Seek(1, 0));
  EXPECT_TRUE(m_db->IsBOF(1));
}

TEST_F(DbCursor, IsNotOpenedWithoutAConnection) {
  OpenFields none;
  EXPECT_FALSE(none.OpenByHandle(1, Numbers));
  EXPECT_TRUE(none.IsEOF(1));
  m_db->Db->close();
  EXPECT_FALSE(m_db->OpenByHandle(1, Numbers));
}

TEST_F(DbCursor, MovesOnlyOnAnOpenConnection) {
  ASSERT_TRUE(m_db->OpenByHandle(1, Numbers));
  m_db->Db->close();
  EXPECT_FALSE(m_db->Next(1));
  EXPECT_FALSE(m_db->First(1));
  EXPECT_FALSE(m_db->Last(1));
  EXPECT_FALSE(m_db->Previous(1));
  EXPECT_FALSE(m_db->Seek(1, 0));
}

TEST_F(DbCursor, ClosesOneHandle) {
  ASSERT_TRUE(m_db->OpenByHandle(1, Numbers));
  ASSERT_TRUE(m_db->OpenByHandle(2, Numbers));
  m_db->CloseHandle(1);
  EXPECT_TRUE(m_db->IsEOF(1));
  EXPECT_FALSE(m_db->Next(1));
  EXPECT_TRUE(m_db->Next(2));
}

TEST_F(DbCursor, ACopySeesTheRecordsetAndDiesWithoutHarm) {
  ASSERT_TRUE(m_db->OpenByHandle(1, Numbers));
  {
    OpenFields copy(*m_db);
    EXPECT_TRUE(copy.Next(1));
    EXPECT_EQ(Current(*m_db, 1), 1);
  }
  EXPECT_TRUE(m_db->Next(1));
  EXPECT_EQ(Current(*m_db, 1), 2);
}

TEST_F(DbCursor, ACopyOutlivesItsSource) {
  ASSERT_TRUE(m_db->OpenByHandle(1, Numbers));
  OpenFields copy(*m_db);
  m_db.reset();
  EXPECT_TRUE(copy.Next(1));
  EXPECT_EQ(Current(copy, 1), 1);
}

TEST_F(DbCursor, ACopyThatClosesOrReopensAHandleLeavesTheOthers) {
  ASSERT_TRUE(m_db->OpenByHandle(1, Numbers));
  ASSERT_TRUE(m_db->Next(1));
  OpenFields closing(*m_db);
  closing.CloseHandle(1);
  OpenFields reopening(*m_db);
  ASSERT_TRUE(reopening.OpenByHandle(1, QStringLiteral("select 9 as a")));
  EXPECT_EQ(Current(*m_db, 1), 1);
  EXPECT_TRUE(m_db->Next(1));
  EXPECT_EQ(Current(*m_db, 1), 2);
}

TEST_F(DbCursor, AnAssignedCopyTakesTheConnectionOver) {
  OpenFields other;
  static_cast<Corvane::QnPosDBPro&>(other) = *m_db;
  EXPECT_EQ(other.Slot, m_db->Slot);
  EXPECT_TRUE(other.OpenByHandle(1, Numbers));
  EXPECT_TRUE(m_db->IsEOF(1));
}

TEST_F(DbCursor, ReadRecordStoresByTheAddress) {
  ASSERT_TRUE(m_db->OpenByHandle(
      1, QStringLiteral("select 7 as n, '12.5' as f, '三' as s, x'0102' as b, '2021-03-04 05:06:07' as t")));
  ASSERT_TRUE(m_db->Next(1));
  qint32 number = 0;
  double money = 0;
  QString text;
  QByteArray bytes;
  QDateTime when;
  EXPECT_TRUE(m_db->ReadRecord(1, {{QStringLiteral("N"), &number},
                                   {QStringLiteral("f"), &money},
                                   {QStringLiteral("s"), &text},
                                   {QStringLiteral("b"), &bytes},
                                   {QStringLiteral("t"), &when}}));
  EXPECT_EQ(number, 7);
  EXPECT_EQ(money, 12.5);
  EXPECT_EQ(Utf8(text), "三");
  EXPECT_EQ(bytes, QByteArray("\x01\x02"));
  EXPECT_EQ(when, QDateTime(QDate(2021, 3, 4), QTime(5, 6, 7)));
}

TEST_F(DbCursor, ReadRecordGivesZeroOrEmptyForNullAndUnknownColumns) {
  ASSERT_TRUE(m_db->OpenByHandle(1, QStringLiteral("select a,b from t where a=2")));
  ASSERT_TRUE(m_db->Next(1));
  QString text = QStringLiteral("before");
  qint32 number = 5;
  EXPECT_TRUE(m_db->ReadRecord(1, {{QStringLiteral("b"), &text}, {QStringLiteral("c"), &number}}));
  EXPECT_EQ(Utf8(text), "");
  EXPECT_EQ(number, 0);
}

TEST_F(DbCursor, ReadRecordLeavesANullAddressAlone) {
  ASSERT_TRUE(m_db->OpenByHandle(1, Numbers));
  ASSERT_TRUE(m_db->Next(1));
  EXPECT_TRUE(m_db->ReadRecord(1, {{QStringLiteral("a"), static_cast<qint32*>(nullptr)}}));
}

}  // namespace
