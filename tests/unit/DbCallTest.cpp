// The use of the database within one of the engine's calls: what ends it, and what a new call finds.
#include <gtest/gtest.h>

#include <unistd.h>
#include <QSqlQuery>
#include <memory>

#include "db/ConnectionHealth.h"
#include "tests/unit/DbRecorder.h"
#include "tests/unit/DbStore.h"

using Corvane::DatabaseCall;
using dbtest::Advance;
using dbtest::OpenFields;
using dbtest::RecordingDriver;
using dbtest::Store;
using dbtest::TakeEvents;
using dbtest::TheRecorder;
using dbtest::Utf8;
using Events = std::vector<std::string>;
using std::chrono::milliseconds;

namespace {

const std::string Opened = "open db[d] user[u] password[] host[h] port[1521] options[]";

class DbCall : public testing::Test {
 protected:
  DbCall() : m_driver(QStringLiteral("QOCI")) {
    Store::Configure("DbType=ORACLE\nServiceName=h\nDBName=d\nUserName=u\n");
  }

  void SetUp() override { m_db = std::make_unique<OpenFields>(); }

  void OpenBefore() {
    ASSERT_TRUE(m_db->EnsureOpen(m_error));
    TakeEvents();
  }

  bool Ask(const char* sql) {
    QSqlQuery query;
    return m_db->openRecordset(QString::fromUtf8(sql), query, m_error);
  }

  /// Statements fail after having taken this long.
  static void FailAfter(milliseconds time) {
    TheRecorder().StatementError = QStringLiteral("silent");
    TheRecorder().Takes = time;
  }

  static void AnswerAgain() {
    TheRecorder().StatementError.clear();
    TheRecorder().Takes = milliseconds(0);
  }

  Store m_store;
  RecordingDriver m_driver;
  std::unique_ptr<OpenFields> m_db;
  QString m_error;
};

TEST_F(DbCall, AnOpenThatFailsIsNotTriedAgainBeforeTheNextCall) {
  TheRecorder().OpenError = QStringLiteral("no listener");
  {
    const DatabaseCall call(m_db->Shared());
    EXPECT_FALSE(m_db->EnsureOpen(m_error));
    EXPECT_EQ(Utf8(m_error), "no listener数据库打开失败！");
    TheRecorder().OpenError.clear();
    m_error = QStringLiteral("earlier ");
    EXPECT_FALSE(m_db->EnsureOpen(m_error));
    EXPECT_EQ(Utf8(m_error), "earlier no listener数据库打开失败！");
    EXPECT_EQ(TakeEvents(), Events{Opened});
  }
  const DatabaseCall call(m_db->Shared());
  EXPECT_TRUE(m_db->EnsureOpen(m_error));
  EXPECT_EQ(TakeEvents(), Events{Opened});
}

TEST_F(DbCall, AStatementThatFailsAtOnceEndsNothing) {
  OpenBefore();
  const DatabaseCall call(m_db->Shared());
  FailAfter(milliseconds(1));
  for (int i = 0; i < 50; ++i) EXPECT_FALSE(Ask("a"));
  AnswerAgain();
  EXPECT_TRUE(m_db->EnsureOpen(m_error));
  EXPECT_TRUE(Ask("b"));
}

TEST_F(DbCall, ASilentStatementEndsTheUse) {
  OpenBefore();
  {
    const DatabaseCall call(m_db->Shared());
    FailAfter(milliseconds(3000));
    EXPECT_FALSE(Ask("a"));
    AnswerAgain();
    EXPECT_FALSE(Ask("b"));
    EXPECT_EQ(Utf8(m_error), "函数:openRecordset||执行:b|| DataBase is not opened!");
    m_error.clear();
    EXPECT_FALSE(m_db->EnsureOpen(m_error));
    EXPECT_EQ(Utf8(m_error), "silent数据库打开失败！");
    EXPECT_EQ(TakeEvents(), Events{"exec a"});
  }
  // What the server says next may be its late answer: the connection is not used again.
  const DatabaseCall call(m_db->Shared());
  EXPECT_TRUE(m_db->EnsureOpen(m_error));
  EXPECT_TRUE(Ask("c"));
  EXPECT_EQ(TakeEvents(), (Events{"close", Opened, "exec c"}));
}

TEST_F(DbCall, ASilentTrialEndsTheUseWithoutANewConnection) {
  OpenBefore();
  Advance(milliseconds(1000));
  FailAfter(milliseconds(3000));
  const DatabaseCall call(m_db->Shared());
  EXPECT_FALSE(m_db->EnsureOpen(m_error));
  EXPECT_EQ(Utf8(m_error), "silent数据库打开失败！");
  EXPECT_EQ(TakeEvents(), (Events{"exec select 1 from dual", "close"}));
}

TEST_F(DbCall, FailuresAddUp) {
  OpenBefore();
  const DatabaseCall call(m_db->Shared());
  FailAfter(milliseconds(700));
  EXPECT_FALSE(Ask("a"));
  EXPECT_FALSE(Ask("b"));
  EXPECT_FALSE(Ask("c"));
  EXPECT_FALSE(Ask("d"));
  EXPECT_EQ(TakeEvents(), (Events{"exec a", "exec b", "exec c"}));
}

TEST_F(DbCall, WithoutATimeoutSilenceEndsNothing) {
  Store::Configure("DbType=ORACLE\nServiceName=h\nDBName=d\nUserName=u\nReadTimeout=0\n");
  m_db = std::make_unique<OpenFields>();
  OpenBefore();
  const DatabaseCall call(m_db->Shared());
  FailAfter(milliseconds(60000));
  EXPECT_FALSE(Ask("a"));
  AnswerAgain();
  EXPECT_TRUE(Ask("b"));
}

TEST_F(DbCall, OutsideACallTheUseNeverEnds) {
  OpenBefore();
  FailAfter(milliseconds(3000));
  EXPECT_FALSE(Ask("a"));
  AnswerAgain();
  EXPECT_TRUE(Ask("b"));
}

TEST_F(DbCall, ACallWithinACallIsPartOfIt) {
  TheRecorder().OpenError = QStringLiteral("no listener");
  const DatabaseCall outer(m_db->Shared());
  {
    const DatabaseCall inner(m_db->Shared());
    EXPECT_FALSE(m_db->EnsureOpen(m_error));
  }
  TheRecorder().OpenError.clear();
  EXPECT_FALSE(m_db->EnsureOpen(m_error));
  EXPECT_EQ(TakeEvents(), Events{Opened});
}

// ---- Settings and drivers that come later

TEST(DbLate, SettingsAreReadAgainWhileTheyNameNoKind) {
  const Store store;
  OpenFields db;
  QString error;
  EXPECT_FALSE(db.EnsureOpen(error));
  Store::Configure("DbType=SQLITE\nDBName=./shop.sqlite\n");
  error.clear();
  EXPECT_TRUE(db.EnsureOpen(error)) << Utf8(error);
  EXPECT_TRUE(QFile::exists(QStringLiteral("shop.sqlite")));
}

TEST(DbLate, AreReadOnceInACall) {
  const Store store;
  OpenFields db;
  QString error;
  const DatabaseCall call(db.Shared());
  EXPECT_FALSE(db.EnsureOpen(error));
  Store::Configure("DbType=SQLITE\nDBName=./shop.sqlite\n");
  error = QStringLiteral("earlier");
  EXPECT_FALSE(db.EnsureOpen(error));
  EXPECT_EQ(Utf8(error), "未设置数据库类型");
}

TEST(DbLate, AKindWithoutADriverIsAskedForAgain) {
  const Store store;
  Store::Configure("DbType=SQLIGHT\nDBName=./shop.sqlite\n");
  OpenFields db;
  QString error;
  EXPECT_FALSE(db.EnsureOpen(error));
  Store::Configure("DbType=SQLITE\nDBName=./shop.sqlite\n");
  error.clear();
  EXPECT_TRUE(db.EnsureOpen(error)) << Utf8(error);
}

// ---- Files

class DbFile : public testing::Test {
 protected:
  DbFile() { Store::Configure("DbType=SQLITE\nDBName=./shop.sqlite\n"); }

  /// A database whose table t holds the number.
  static void Make(const QString& name, int number) {
    OpenFields db;
    db.SetDbType(QStringLiteral("sqlite"));
    QString error;
    ASSERT_TRUE(db.Open({}, name, error, {}, {}, 0)) << Utf8(error);
    ASSERT_TRUE(db.excuteSQL(QStringLiteral("create table t(a)"), error)) << Utf8(error);
    ASSERT_TRUE(db.excuteSQL(QStringLiteral("insert into t values(%1)").arg(number), error)) << Utf8(error);
    db.Db->close();
  }

  /// What table t holds, asked in a call; -1 when it can't be read.
  static int Number(OpenFields& db) {
    const DatabaseCall call(db.Shared());
    QString error;
    QSqlQuery query;
    if (!db.EnsureOpen(error) || !db.openRecordset(QStringLiteral("select a from t"), query, error)) return -1;
    return query.next() ? query.value(0).toInt() : -1;
  }

  static void Replace(const QString& by, const QString& name) {
    ASSERT_EQ(rename(by.toUtf8().constData(), name.toUtf8().constData()), 0);
  }

  Store m_store;
};

TEST_F(DbFile, AnotherInItsPlaceIsOpenedAtTheNextCall) {
  Make(QStringLiteral("./shop.sqlite"), 1);
  Make(QStringLiteral("./new.sqlite"), 2);
  OpenFields db;
  EXPECT_EQ(Number(db), 1);
  Replace(QStringLiteral("new.sqlite"), QStringLiteral("shop.sqlite"));
  EXPECT_EQ(Number(db), 2);
}

TEST_F(DbFile, ThatWasTakenAwayIsReadOn) {
  Make(QStringLiteral("./shop.sqlite"), 1);
  OpenFields db;
  EXPECT_EQ(Number(db), 1);
  Replace(QStringLiteral("shop.sqlite"), QStringLiteral("away.sqlite"));
  EXPECT_EQ(Number(db), 1);
  EXPECT_FALSE(QFile::exists(QStringLiteral("shop.sqlite")));
}

TEST_F(DbFile, IsFoundAfterTheHostWentToAnotherDirectory) {
  Make(QStringLiteral("./shop.sqlite"), 1);
  Make(QStringLiteral("./new.sqlite"), 2);
  OpenFields db;
  EXPECT_EQ(Number(db), 1);
  Replace(QStringLiteral("new.sqlite"), QStringLiteral("shop.sqlite"));
  ASSERT_TRUE(QDir().mkdir(QStringLiteral("elsewhere")));
  ASSERT_TRUE(QDir::setCurrent(QStringLiteral("elsewhere")));
  EXPECT_EQ(Number(db), 2);
  EXPECT_FALSE(QFile::exists(QStringLiteral("shop.sqlite")));
}

TEST_F(DbFile, ThatWasBrokenIsReadWhenItIsMended) {
  Make(QStringLiteral("./good.sqlite"), 3);
  QFile good(QStringLiteral("good.sqlite"));
  ASSERT_TRUE(good.open(QIODevice::ReadOnly));
  const QByteArray content = good.readAll();
  QByteArray broken = content;
  broken.replace(100, 400, QByteArray(400, 'x'));  // the table of contents, behind a sound head
  Store::Write(QStringLiteral("shop.sqlite"), broken);
  OpenFields db;
  EXPECT_EQ(Number(db), -1);
  EXPECT_EQ(Number(db), -1);
  Store::Write(QStringLiteral("shop.sqlite"), content);
  EXPECT_EQ(Number(db), 3);
}

}  // namespace
