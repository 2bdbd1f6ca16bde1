// Settings, kinds and the ways of opening.
#include <gtest/gtest.h>

#include <unistd.h>
#include <QCoreApplication>
#include <QFileInfo>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <clocale>
#include <memory>

#include "db/HostDirectory.h"
#include "db/QnPosDBPro.h"
#include "tests/unit/DbRecorder.h"
#include "tests/unit/DbStore.h"

using dbtest::OpenFields;
using dbtest::QtMessagesAsEvents;
using dbtest::RecordingDriver;
using dbtest::Store;
using dbtest::TakeEvents;
using dbtest::TheRecorder;
using dbtest::Utf8;
using Events = std::vector<std::string>;

namespace {

/** Where a bare file name belongs: beside the executable of this test. Taken from the system, not from the code. */
QString TestExecutableDirectory() {
  return QFileInfo(QFile::symLinkTarget(QStringLiteral("/proc/self/exe"))).absolutePath();
}

/** The first number that Qt's list has no valid connection for. */
int FirstFreeNumber() {
  const QStringList names = QSqlDatabase::connectionNames();
  for (int number = 0;; ++number) {
    const QString name = QStringLiteral("MyDBProcessConn%1").arg(number);
    if (!names.contains(name) || !QSqlDatabase::database(name, false).isValid()) return number;
  }
}

std::string NumberedName(int number) { return "MyDBProcessConn" + std::to_string(number); }

TEST(DatabaseSettings, AreReadFromTheCurrentDirectory) {
  const Store store;
  Store::Configure("DbType=Oracle\nServiceName=db.store\nDBName=shop\nUserName=till\nPassword=s3cret\nPort=1522\n");
  const OpenFields db;
  EXPECT_EQ(Utf8(db.Settings.DbType), "Oracle");
  EXPECT_EQ(Utf8(db.Settings.ServiceName), "db.store");
  EXPECT_EQ(Utf8(db.Settings.DBName), "shop");
  EXPECT_EQ(Utf8(db.Settings.UserName), "till");
  EXPECT_EQ(Utf8(db.Settings.Password), "s3cret");
  EXPECT_EQ(db.Settings.Port, 1522);
}

TEST(DatabaseSettings, OpenNothingAtConstruction) {
  const Store store;
  Store::Configure("DbType=SQLITE\nDBName=./shop.sqlite\n");
  const OpenFields db;
  EXPECT_EQ(Utf8(db.DbTypeUpper), "");
  EXPECT_EQ(db.Db, nullptr);
  EXPECT_EQ(db.OpenFailed, 0);
  EXPECT_FALSE(QFile::exists(QStringLiteral("shop.sqlite")));
}

TEST(DatabaseSettings, AreReadAtConstructionOnly) {
  const Store store;
  Store::Configure("DbType=SQLITE\nDBName=./first.sqlite\n");
  OpenFields db;
  Store::Configure("DbType=SQLITE\nDBName=./second.sqlite\n");
  QString error;
  EXPECT_TRUE(db.EnsureOpen(error)) << Utf8(error);
  EXPECT_TRUE(QFile::exists(QStringLiteral("first.sqlite")));
  EXPECT_FALSE(QFile::exists(QStringLiteral("second.sqlite")));
}

TEST(DatabaseSettings, AreEmptyOrZeroWithoutAFile) {
  const Store store;
  const OpenFields db;
  EXPECT_TRUE(db.Settings.DbType.isEmpty());
  EXPECT_TRUE(db.Settings.ServiceName.isEmpty());
  EXPECT_TRUE(db.Settings.DBName.isEmpty());
  EXPECT_TRUE(db.Settings.UserName.isEmpty());
  EXPECT_TRUE(db.Settings.Password.isEmpty());
  EXPECT_EQ(db.Settings.Port, 0);
}

TEST(DatabaseSettings, APortThatIsNoNumberIsZero) {
  const Store store;
  Store::Configure("DbType=MYSQL\nPort=default\n");
  EXPECT_EQ(OpenFields().Settings.Port, 0);
}

TEST(DatabaseSettings, TimeoutsAreThreeSecondsUnlessTheySayOtherwise) {
  const Store store;
  Store::Configure("DbType=MYSQL\n");
  EXPECT_EQ(OpenFields().Settings.ConnectTimeout, 3);
  EXPECT_EQ(OpenFields().Settings.ReadTimeout, 3);
  Store::Configure("DbType=MYSQL\nConnectTimeout=7\nReadTimeout=0\n");
  EXPECT_EQ(OpenFields().Settings.ConnectTimeout, 7);
  EXPECT_EQ(OpenFields().Settings.ReadTimeout, 0);
  // Each of a size of its own: Qt takes a file of the same size and time for the same.
  for (const char* nonsense : {"-1", "soon", "", "1.5", "99999999999", "2147484"}) {
    Store::Configure(QByteArray("DbType=MYSQL\nReadTimeout=") + nonsense + "\n");
    EXPECT_EQ(OpenFields().Settings.ReadTimeout, 3) << nonsense;
  }
}

TEST(DatabaseSettings, TimeoutsReachTheDriver) {
  const Store store;
  const RecordingDriver sqlite(QStringLiteral("QSQLITE"));
  const RecordingDriver mysql(QStringLiteral("QMYSQL"));
  const RecordingDriver odbc(QStringLiteral("QODBC"));
  // Each file has a size of its own: Qt takes a file of the same size and time for the same.
  const auto options = [](const char* kind, const char* timeouts) {
    Store::Configure(QByteArray("DBName=./d\nDbType=") + kind + timeouts);
    OpenFields db;
    QString error;
    EXPECT_TRUE(db.EnsureOpen(error));
    return Utf8(db.Db->connectOptions());
  };
  EXPECT_EQ(options("MYSQL", "\nConnectTimeout=7\nReadTimeout=2\n"),
            "MYSQL_OPT_CONNECT_TIMEOUT=7;MYSQL_OPT_READ_TIMEOUT=2;MYSQL_OPT_WRITE_TIMEOUT=2");
  EXPECT_EQ(options("MYSQL", "\nConnectTimeout=0\nReadTimeout=0\n\n"), "");
  EXPECT_EQ(options("SQLSERVER", "\nConnectTimeout=7\nReadTimeout=0\n"), "SQL_ATTR_LOGIN_TIMEOUT=7");
  EXPECT_EQ(options("SQLITE", "\nReadTimeout=1\n"), "QSQLITE_BUSY_TIMEOUT=1000");
  EXPECT_EQ(options("SQLITE", "\nReadTimeout=0\n\n"), "QSQLITE_BUSY_TIMEOUT=2147483647");
}

TEST(DatabaseSettings, KeepCommasInPasswordAndPath) {
  const Store store;
  Store::Configure("DbType=SQLITE\nDBName=./a,b.sqlite\nPassword=x,y,z\n");
  const OpenFields db;
  EXPECT_EQ(Utf8(db.Settings.DBName), "./a,b.sqlite");
  EXPECT_EQ(Utf8(db.Settings.Password), "x,y,z");
}

TEST(DatabaseSettings, AreUtf8) {
  const Store store;
  Store::Configure("DbType=SQLITE\nDBName=./门店.sqlite\n");
  OpenFields db;
  EXPECT_EQ(Utf8(db.Settings.DBName), "./门店.sqlite");
  QString error;
  EXPECT_TRUE(db.EnsureOpen(error)) << Utf8(error);
  EXPECT_TRUE(QFile::exists(QStringLiteral("门店.sqlite")));
}

TEST(DatabaseEnsureOpen, NeedsADbTypeAndReplacesTheText) {
  const Store store;
  Corvane::QnPosDBPro db;
  QString error = QStringLiteral("earlier");
  EXPECT_FALSE(db.EnsureOpen(error));
  EXPECT_EQ(Utf8(error), "未设置数据库类型");
}

TEST(DatabaseEnsureOpen, AppendsTheReasonAndItsOwnText) {
  const Store store;
  Store::Configure("DbType=SQLITE\nDBName=./no/such/directory/shop.sqlite\n");
  OpenFields db;
  QString error = QStringLiteral("earlier ");
  EXPECT_FALSE(db.EnsureOpen(error));
  EXPECT_EQ(Utf8(error), "earlier unable to open database file Error opening database数据库打开失败！");
  EXPECT_EQ(db.OpenFailed, 1);
}

TEST(DatabaseEnsureOpen, LeavesTheTextAloneOnSuccess) {
  const Store store;
  Store::Configure("DbType=SQLITE\nDBName=./shop.sqlite\n");
  OpenFields db;
  QString error = QStringLiteral("earlier");
  EXPECT_TRUE(db.EnsureOpen(error));
  EXPECT_TRUE(db.EnsureOpen(error));
  EXPECT_EQ(Utf8(error), "earlier");
  EXPECT_EQ(db.OpenFailed, 0);
  EXPECT_EQ(Utf8(db.OpenName), "./shop.sqlite");
}

TEST(DatabaseEnsureOpen, SucceedsAfterAFailureOnceTheCauseIsGone) {
  const Store store;
  Store::Configure("DbType=SQLITE\nDBName=./late/shop.sqlite\n");
  OpenFields db;
  QString error;
  EXPECT_FALSE(db.EnsureOpen(error));
  ASSERT_TRUE(QDir().mkdir(QStringLiteral("late")));
  EXPECT_TRUE(db.EnsureOpen(error));
  EXPECT_EQ(db.OpenFailed, 0);
}

TEST(DatabaseEnsureOpen, RefusesAKindOutsideTheFive) {
  const Store store;
  Store::Configure("DbType=POSTGRES\nDBName=shop\n");
  OpenFields db;
  QString error;
  EXPECT_FALSE(db.EnsureOpen(error));
  EXPECT_EQ(Utf8(error), "数据库打开失败！");
  EXPECT_EQ(db.Db, nullptr);
  EXPECT_EQ(db.OpenFailed, 1);
  EXPECT_EQ(Utf8(db.DbTypeUpper), "POSTGRES");
}

TEST(DatabaseEnsureOpen, KeepsExceptionsOfADriver) {
  const Store store;
  const RecordingDriver driver(QStringLiteral("QOCI"));
  Store::Configure("DbType=ORACLE\nDBName=shop\n");
  OpenFields db;
  TheRecorder().Throws = true;
  QString error;
  EXPECT_FALSE(db.EnsureOpen(error));
  EXPECT_EQ(Utf8(error), "未定义的异常数据库打开失败！");
  EXPECT_EQ(db.OpenFailed, 1);
  TheRecorder().Throws = false;
  EXPECT_TRUE(db.EnsureOpen(error));
}

TEST(DatabaseEnsureOpen, AnswersWithoutADriverAndGoesOn) {
  const Store store;
  Store::Configure("DbType=ORACLE\nDBName=shop\n");
  Corvane::QnPosDBPro db;
  QString error;
  EXPECT_FALSE(db.EnsureOpen(error));
  EXPECT_EQ(Utf8(error), "Driver not loaded Driver not loaded数据库打开失败！");
  QSqlQuery query;
  EXPECT_FALSE(db.openRecordset(QStringLiteral("select 1"), query, error));
  EXPECT_EQ(Utf8(error), "函数:openRecordset||执行:select 1|| DataBase is not opened!");
}

TEST(DatabaseKind, IsChosenInAnyLetterCase) {
  const Store store;
  const RecordingDriver driver(QStringLiteral("QMYSQL"));
  Store::Configure("DbType=mysql\nDBName=shop\n");
  OpenFields db;
  QString error;
  EXPECT_TRUE(db.EnsureOpen(error));
  EXPECT_EQ(Utf8(db.DbTypeUpper), "MYSQL");
  EXPECT_EQ(Utf8(db.Db->driverName()), "QMYSQL");
}

TEST(DatabaseKind, AccessGoesOverOdbc) {
  const Store store;
  const RecordingDriver driver(QStringLiteral("QODBC"));
  OpenFields db;
  db.SetDbType(QStringLiteral("Access"));
  ASSERT_NE(db.Db, nullptr);
  EXPECT_EQ(Utf8(db.Db->driverName()), "QODBC");
}

TEST(DatabaseKind, WithoutADriverLeavesTheConnection) {
  const Store store;
  Store::Configure("DbType=SQLITE\nDBName=./shop.sqlite\n");
  OpenFields db;
  QString error;
  ASSERT_TRUE(db.EnsureOpen(error));
  const auto before = db.Db;
  ASSERT_TRUE(db.OpenByHandle(1, QStringLiteral("select 1")));
  db.SetDbType(QStringLiteral("dbase"));
  EXPECT_EQ(Utf8(db.DbTypeUpper), "DBASE");
  EXPECT_EQ(db.Db, before);
  EXPECT_EQ(db.Queries.size(), 1);
  EXPECT_FALSE(db.Open({}, QStringLiteral("shop"), error, {}, {}, 0));
}

TEST(DatabaseKind, ANewKindLetsGoOfRecordsets) {
  const Store store;
  Store::Configure("DbType=SQLITE\nDBName=./shop.sqlite\n");
  OpenFields db;
  QString error;
  ASSERT_TRUE(db.EnsureOpen(error));
  ASSERT_TRUE(db.OpenByHandle(1, QStringLiteral("select 1")));
  db.SetDbType(QStringLiteral("sqlite"));
  EXPECT_EQ(db.Queries.size(), 0);
  EXPECT_FALSE(db.Db->isOpen());
}

TEST(DatabaseConnection, IsNumberedByTheFirstFreeName) {
  const Store store;
  const int number = FirstFreeNumber();
  OpenFields first;
  OpenFields second;
  first.SetDbType(QStringLiteral("sqlite"));
  second.SetDbType(QStringLiteral("sqlite"));
  EXPECT_EQ(Utf8(first.ConnName), NumberedName(number));
  EXPECT_EQ(Utf8(second.ConnName), NumberedName(number + 1));
}

TEST(DatabaseConnection, StaysInQtsListAfterItsLastHolder) {
  const Store store;
  Store::Configure("DbType=SQLITE\nDBName=./shop.sqlite\n");
  QString name;
  {
    OpenFields db;
    QString error;
    ASSERT_TRUE(db.EnsureOpen(error));
    name = db.ConnName;
  }
  EXPECT_TRUE(QSqlDatabase::database(name, false).isOpen());
}

TEST(DatabaseConnection, IsSharedByCopies) {
  const Store store;
  Store::Configure("DbType=SQLITE\nDBName=./shop.sqlite\n");
  OpenFields db;
  QString error;
  ASSERT_TRUE(db.EnsureOpen(error));
  OpenFields copy(db);
  EXPECT_EQ(copy.Db, db.Db);
  EXPECT_TRUE(copy.Db->isOpen());
  db.Db->close();
  EXPECT_FALSE(copy.Db->isOpen());
  EXPECT_TRUE(copy.EnsureOpen(error));
  EXPECT_TRUE(db.Db->isOpen());
}

TEST(DatabaseConnection, IsSharedByCopiesMadeBeforeTheFirstOpen) {
  const Store store;
  Store::Configure("DbType=SQLITE\nDBName=./shop.sqlite\n");
  OpenFields db;
  OpenFields copy(db);
  QString error;
  ASSERT_TRUE(copy.EnsureOpen(error)) << Utf8(error);
  ASSERT_NE(db.Db, nullptr);
  EXPECT_EQ(copy.Db, db.Db);
  EXPECT_EQ(Utf8(copy.ConnName), Utf8(db.ConnName));
  EXPECT_TRUE(db.Db->isOpen());
  EXPECT_TRUE(db.EnsureOpen(error)) << Utf8(error);
}

TEST(DatabaseOptions, NeedAConnection) {
  const Store store;
  const RecordingDriver driver(QStringLiteral("QOCI"));
  Store::Configure("DbType=ORACLE\nServiceName=h\nDBName=d\nUserName=u\nPassword=p\n");
  OpenFields db;
  db.SetConnectOptions(QStringLiteral("OCI_ATTR_PREFETCH_ROWS=9"));
  db.SetDbType(QStringLiteral("oracle"));
  db.SetConnectOptions(QStringLiteral("OCI_ATTR_PREFETCH_ROWS=100"));
  QString error;
  EXPECT_TRUE(db.EnsureOpen(error));
  EXPECT_EQ(TakeEvents(),
            Events{"open db[d] user[u] password[p] host[h] port[1521] options[OCI_ATTR_PREFETCH_ROWS=100]"});
}

// ---- SQLITE

TEST(DatabaseSqlite, ABareNameIsAFileBesideTheExecutable) {
  const Store store;
  const QString name = QStringLiteral("DatabaseSqlite-%1.sqlite").arg(QCoreApplication::applicationPid());
  const QString path = TestExecutableDirectory() + QLatin1Char('/') + name;
  ASSERT_FALSE(QFile::exists(path));
  Store::Configure("DbType=SQLITE\nDBName=" + name.toUtf8() + "\n");
  OpenFields db;
  QString error;
  EXPECT_TRUE(db.EnsureOpen(error)) << Utf8(error);
  EXPECT_EQ(Utf8(db.Db->databaseName()), Utf8(path));
  EXPECT_TRUE(QFile::exists(path));
  EXPECT_FALSE(QFile::exists(name));
  QFile::remove(path);
}

TEST(DatabaseSqlite, APathIsUsedAsItStands) {
  const Store store;
  const RecordingDriver driver(QStringLiteral("QSQLITE"));
  OpenFields db;
  db.SetDbType(QStringLiteral("SQLITE"));
  QString error;
  EXPECT_TRUE(db.Open(QStringLiteral("s"), QStringLiteral("data/shop.db"), error, {}, {}, 0));
  EXPECT_TRUE(db.Open({}, QStringLiteral("data\\shop.db"), error, {}, {}, 0));
  EXPECT_TRUE(db.Open({}, QStringLiteral("C:shop.db"), error, {}, {}, 0));
  EXPECT_EQ(TakeEvents(),
            (Events{"open db[data/shop.db] user[] password[] host[] port[-1] options[QSQLITE_BUSY_TIMEOUT=3000]",
                    "open db[data\\shop.db] user[] password[] host[] port[-1] options[QSQLITE_BUSY_TIMEOUT=3000]",
                    "open db[C:shop.db] user[] password[] host[] port[-1] options[QSQLITE_BUSY_TIMEOUT=3000]"}));
}

TEST(DatabaseSqlite, TheNameIsTrimmedButRememberedAsItCame) {
  const Store store;
  OpenFields db;
  db.SetDbType(QStringLiteral("SQLITE"));
  QString error;
  EXPECT_TRUE(db.Open({}, QStringLiteral("  ./shop.sqlite \t"), error, {}, {}, 0));
  EXPECT_EQ(Utf8(db.Db->databaseName()), "./shop.sqlite");
  EXPECT_EQ(Utf8(db.OpenName), "  ./shop.sqlite \t");
}

TEST(DatabaseSqlite, UserPasswordAndPortAreNotUsed) {
  const Store store;
  const RecordingDriver driver(QStringLiteral("QSQLITE"));
  Store::Configure("DbType=SQLITE\nServiceName=h\nDBName=./d\nUserName=u\nPassword=p\nPort=7\n");
  OpenFields db;
  QString error;
  EXPECT_TRUE(db.EnsureOpen(error));
  EXPECT_EQ(TakeEvents(), Events{"open db[./d] user[] password[] host[] port[-1] options[QSQLITE_BUSY_TIMEOUT=3000]"});
}

// ---- MYSQL

TEST(DatabaseMySql, EmptyServerAndUserAreTheLocalHostAndRoot) {
  const Store store;
  const RecordingDriver driver(QStringLiteral("QMYSQL"));
  Store::Configure("DbType=MYSQL\nDBName=shop\n");
  OpenFields db;
  QString error;
  EXPECT_TRUE(db.EnsureOpen(error));
  EXPECT_EQ(TakeEvents(),
            (Events{"open db[shop] user[root] password[] host[localhost] port[-1] "
                    "options[MYSQL_OPT_CONNECT_TIMEOUT=3;MYSQL_OPT_READ_TIMEOUT=3;MYSQL_OPT_WRITE_TIMEOUT=3]",
                    "exec SET NAMES 'utf8mb4'"}));
}

TEST(DatabaseMySql, ThePortIsNotApplied) {
  const Store store;
  const RecordingDriver driver(QStringLiteral("QMYSQL"));
  Store::Configure("DbType=MYSQL\nServiceName=h\nDBName=d\nUserName=u\nPassword=p\nPort=3307\n");
  OpenFields db;
  QString error;
  EXPECT_TRUE(db.EnsureOpen(error));
  EXPECT_EQ(TakeEvents(),
            (Events{"open db[d] user[u] password[p] host[h] port[-1] "
                    "options[MYSQL_OPT_CONNECT_TIMEOUT=3;MYSQL_OPT_READ_TIMEOUT=3;MYSQL_OPT_WRITE_TIMEOUT=3]",
                    "exec SET NAMES 'utf8mb4'"}));
}

TEST(DatabaseMySql, SetNamesComesBeforeTheOpen) {
  const Store store;
  const RecordingDriver driver(QStringLiteral("QMYSQL"));
  Store::Configure("DbType=MYSQL\nDBName=d\n");
  OpenFields db;
  QString error;
  {
    // A closed connection takes no statement; Qt says so at the moment it is asked.
    const QtMessagesAsEvents messages;
    EXPECT_TRUE(db.EnsureOpen(error));
  }
  EXPECT_EQ(TakeEvents(),
            (Events{"qt QSqlQuery::exec: database not open",
                    "open db[d] user[root] password[] host[localhost] port[-1] "
                    "options[MYSQL_OPT_CONNECT_TIMEOUT=3;MYSQL_OPT_READ_TIMEOUT=3;MYSQL_OPT_WRITE_TIMEOUT=3]",
                    "exec SET NAMES 'utf8mb4'"}));
  EXPECT_TRUE(db.Open({}, QStringLiteral("e"), error, {}, {}, 0));
  EXPECT_EQ(TakeEvents(),
            (Events{"exec SET NAMES 'utf8'",
                    "open db[e] user[root] password[] host[localhost] port[-1] "
                    "options[MYSQL_OPT_CONNECT_TIMEOUT=3;MYSQL_OPT_READ_TIMEOUT=3;MYSQL_OPT_WRITE_TIMEOUT=3]",
                    "exec SET NAMES 'utf8mb4'"}));
}

// ---- SQLSERVER

TEST(DatabaseSqlServer, TheConnectionTextNamesServerAndDatabase) {
  const Store store;
  const RecordingDriver driver(QStringLiteral("QODBC"));
  Store::Configure("DbType=SqlServer\nServiceName=h%2\nDBName=d\nUserName=u\nPassword=p\n");
  OpenFields db;
  QString error;
  EXPECT_TRUE(db.EnsureOpen(error));
  EXPECT_EQ(TakeEvents(), Events{"open db[DRIVER={SQL SERVER};SERVER=h%2;DATABASE=d] user[u] password[p] host[] "
                                 "port[1433] options[SQL_ATTR_LOGIN_TIMEOUT=3;SQL_ATTR_CONNECTION_TIMEOUT=3]"});
}

TEST(DatabaseSqlServer, AGivenPortIsApplied) {
  const Store store;
  const RecordingDriver driver(QStringLiteral("QODBC"));
  Store::Configure("DbType=SQLSERVER\nServiceName=h\nDBName=d\nPort=14330\n");
  OpenFields db;
  QString error;
  EXPECT_TRUE(db.EnsureOpen(error));
  EXPECT_EQ(TakeEvents(), Events{"open db[DRIVER={SQL SERVER};SERVER=h;DATABASE=d] user[] password[] host[] "
                                 "port[14330] options[SQL_ATTR_LOGIN_TIMEOUT=3;SQL_ATTR_CONNECTION_TIMEOUT=3]"});
}

// ---- ORACLE

TEST(DatabaseOracle, PortZeroIs1521) {
  const Store store;
  const RecordingDriver driver(QStringLiteral("QOCI"));
  Store::Configure("DbType=ORACLE\nServiceName=h\nDBName=d\nUserName=u\nPassword=p\nPort=0\n");
  OpenFields db;
  QString error;
  EXPECT_TRUE(db.EnsureOpen(error));
  EXPECT_EQ(TakeEvents(), Events{"open db[d] user[u] password[p] host[h] port[1521] options[]"});
}

TEST(DatabaseOracle, AGivenPortIsApplied) {
  const Store store;
  const RecordingDriver driver(QStringLiteral("QOCI"));
  Store::Configure("DbType=ORACLE\nServiceName=h\nDBName=d\nPort=1526\n");
  OpenFields db;
  QString error;
  EXPECT_TRUE(db.EnsureOpen(error));
  EXPECT_EQ(TakeEvents(), Events{"open db[d] user[] password[] host[h] port[1526] options[]"});
}

TEST(DatabaseOracle, AFailedOpenTellsTheDriversReason) {
  const Store store;
  const RecordingDriver driver(QStringLiteral("QOCI"));
  Store::Configure("DbType=ORACLE\nServiceName=h\nDBName=d\n");
  OpenFields db;
  TheRecorder().OpenError = QStringLiteral("ORA-12541: 无监听程序");
  QString error;
  EXPECT_FALSE(db.EnsureOpen(error));
  EXPECT_EQ(Utf8(error), "ORA-12541: 无监听程序数据库打开失败！");
  EXPECT_EQ(db.OpenFailed, 1);
}

// ---- ACCESS

TEST(DatabaseAccess, ABareNameIsAFileBesideTheExecutable) {
  const Store store;
  const RecordingDriver driver(QStringLiteral("QODBC"));
  Store::Configure("DbType=ACCESS\nDBName=shop.mdb\nPassword=p\nPort=9\n");
  OpenFields db;
  QString error;
  EXPECT_TRUE(db.EnsureOpen(error));
  EXPECT_EQ(TakeEvents(),
            Events{"open db[DRIVER={Microsoft Access Driver (*.mdb,*.accdb)};DBQ=" + Utf8(TestExecutableDirectory()) +
                   "/shop.mdb;UID=sa;PWD=p] user[] password[] host[] port[-1] "
                   "options[SQL_ATTR_LOGIN_TIMEOUT=3;SQL_ATTR_CONNECTION_TIMEOUT=3]"});
}

TEST(DatabaseAccess, APathAndAUserAreUsedAsTheyStand) {
  const Store store;
  const RecordingDriver driver(QStringLiteral("QODBC"));
  Store::Configure("DbType=ACCESS\nDBName=/srv/shop.mdb\nUserName=u\n");
  OpenFields db;
  QString error;
  EXPECT_TRUE(db.EnsureOpen(error));
  EXPECT_EQ(
      TakeEvents(),
      Events{
          "open db[DRIVER={Microsoft Access Driver (*.mdb,*.accdb)};DBQ=/srv/shop.mdb;UID=u;"
          "PWD=] user[] password[] host[] port[-1] options[SQL_ATTR_LOGIN_TIMEOUT=3;SQL_ATTR_CONNECTION_TIMEOUT=3]"});
}

TEST(DatabaseAccess, AServerIsAConnectionFile) {
  const Store store;
  const RecordingDriver driver(QStringLiteral("QODBC"));
  Store::Configure("DbType=ACCESS\nServiceName=shop.udl\nDBName=unused.mdb\n");
  Store::Write(QStringLiteral("shop.udl"), "[oledb]\nProvider=Jet;Data Source=C:\\pos\\shop.mdb;Mode=Read\n");
  OpenFields db;
  QString error;
  EXPECT_TRUE(db.EnsureOpen(error));
  EXPECT_EQ(TakeEvents(), Events{"open db[DRIVER={Microsoft Access Driver (*.mdb,*.accdb)};DBQ=C:\\pos\\shop.mdb;"
                                 "UID=sa;PWD=] user[] password[] host[] port[-1] "
                                 "options[SQL_ATTR_LOGIN_TIMEOUT=3;SQL_ATTR_CONNECTION_TIMEOUT=3]"});
}

TEST(DatabaseAccess, AMissingConnectionFileIsAReasonAndOpensNothing) {
  const Store store;
  const RecordingDriver driver(QStringLiteral("QODBC"));
  Store::Configure("DbType=ACCESS\nServiceName=none.udl\nDBName=shop.mdb\n");
  OpenFields db;
  QString error;
  EXPECT_FALSE(db.EnsureOpen(error));
  EXPECT_EQ(Utf8(error), "No such file or directory数据库打开失败！");
  EXPECT_EQ(TakeEvents(), Events{});
}

// ---- hosts without Qt

TEST(DatabaseHost, NeedsNoApplicationObject) {
  if (QCoreApplication::instance()) GTEST_SKIP() << "this process has one";
  const Store store;
  const std::string before = std::setlocale(LC_ALL, nullptr);
  Store::Configure("DbType=SQLITE\nDBName=./shop.sqlite\n");
  OpenFields db;
  QString error;
  QSqlQuery query;
  EXPECT_TRUE(db.EnsureOpen(error)) << Utf8(error);
  EXPECT_TRUE(db.openRecordset(QStringLiteral("select 1.5"), query, error)) << Utf8(error);
  EXPECT_EQ(QCoreApplication::instance(), nullptr);
  EXPECT_EQ(std::string(std::setlocale(LC_ALL, nullptr)), before);
}

TEST(DatabaseHost, DirectoryIsTheExecutables) {
  EXPECT_EQ(Utf8(Corvane::HostDirectory()), Utf8(TestExecutableDirectory()));
  EXPECT_EQ(Utf8(Corvane::InHostDirectory(QStringLiteral("a%1"))), Utf8(TestExecutableDirectory()) + "/a%1");
}

/** Ends the process with 0 if the answer under an application object is `expected`. */
void AnswerUnderAnApplicationObject(const QString& expected) {
  int count = 1;
  char name[] = "elsewhere/host";
  char* arguments[] = {name, nullptr};
  const QCoreApplication application(count, arguments);
  _exit(Corvane::HostDirectory() == expected ? 0 : 1);
}

TEST(DatabaseHostDeathTest, DirectoryIsTheSameWithAnApplicationObject) {
  const QString expected = TestExecutableDirectory();
  EXPECT_EXIT(AnswerUnderAnApplicationObject(expected), testing::ExitedWithCode(0), "");
}

}  // namespace
