#include "db/QnPosDBPro.h"

#include <QCoreApplication>
#include <QSettings>
#include <QSqlDatabase>
#include <QSqlDriver>
#include <QSqlError>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QStringList>

#include "db/ConnectionFile.h"
#include "db/ConnectionHealth.h"
#include "db/HostDirectory.h"
#include "db/Statements.h"

namespace Corvane {
namespace {

const QLatin1String kSqlite("SQLITE");
const QLatin1String kMySql("MYSQL");
const QLatin1String kSqlServer("SQLSERVER");
const QLatin1String kOracle("ORACLE");
const QLatin1String kAccess("ACCESS");

const QLatin1String kSeparator("||");
const QLatin1String kNotOpened(" DataBase is not opened!");
const QLatin1String kNotCreated("Connection is not Created!");

constexpr int kShownStatementChars = 30;

QString Translated(const char* text) { return QCoreApplication::translate("Corvane::QnPosDBPro", text); }

/// The driver of a kind; empty for a kind without one.
QString DriverOf(const QString& kind) {
  if (kind == kSqlite) return QStringLiteral("QSQLITE");
  if (kind == kMySql) return QStringLiteral("QMYSQL");
  if (kind == kSqlServer || kind == kAccess) return QStringLiteral("QODBC");
  if (kind == kOracle) return QStringLiteral("QOCI");
  return {};
}

/// Whether the database is a server's: a file doesn't go away and come back.
bool IsRemote(const QString& kind) { return kind == kMySql || kind == kSqlServer || kind == kOracle; }

QString ServerDateStatement(const QString& kind) {
  if (kind == kSqlite) return QStringLiteral("select datetime('now') as date");
  if (kind == kMySql) return QStringLiteral("select current_timestamp as date");
  if (kind == kSqlServer || kind == kAccess) return QStringLiteral("select getdate() as date");
  if (kind == kOracle) return QStringLiteral("select sysdate as date from dual");
  return {};
}

/// The least that a server can be asked.
QString TrialStatement(const QString& kind) {
  return kind == kOracle ? QStringLiteral("select 1 from dual") : QStringLiteral("select 1");
}

/// A bare file name is a file in the host's directory; anything with a separator or a drive is a path of its own.
QString FilePath(const QString& name) {
  const bool bare =
      !name.contains(QLatin1Char(':')) && !name.contains(QLatin1Char('/')) && !name.contains(QLatin1Char('\\'));
  return bare ? InHostDirectory(name) : name;
}

/// A setting as text. The INI reader takes an unquoted comma for a list; here it is part of the password or path.
QString TextSetting(const QSettings& settings, const char* key) {
  const QVariant value = settings.value(QLatin1String(key));
  if (value.type() == QVariant::StringList) return value.toStringList().join(QLatin1Char(','));
  return value.toString();
}

/// Runs `operation`; an exception becomes a failure.
template <typename Operation>
bool Guarded(QString& error, Operation operation) {
  try {
    return operation();
  } catch (...) {
    error += QStringLiteral("未定义的异常");
    return false;
  }
}

template <typename Operation>
bool Guarded(Operation operation) {
  QString ignored;
  return Guarded(ignored, operation);
}

}  // namespace

QnPosDBPro::QnPosDBPro() {
  QSettings settings(QStringLiteral("config.ini"), QSettings::IniFormat);
  settings.setIniCodec("UTF-8");
  DbType = TextSetting(settings, "DataBase/DbType");
  ServiceName = TextSetting(settings, "DataBase/ServiceName");
  DBName = TextSetting(settings, "DataBase/DBName");
  UserName = TextSetting(settings, "DataBase/UserName");
  Password = TextSetting(settings, "DataBase/Password");
  Port = settings.value(QStringLiteral("DataBase/Port")).toInt();
}

QnPosDBPro::~QnPosDBPro() = default;

bool QnPosDBPro::IsOpen() const { return Db && Db->isOpen(); }

/// Tries an open connection that there is reason to doubt; closes it when it gives no answer.
bool QnPosDBPro::WasLost() {
  if (!Health->NeedsTrial()) return false;
  QSqlQuery trial(*Db);
  if (Exec(trial, TrialStatement(DbTypeUpper))) return false;
  trial.clear();
  Db->close();
  return true;
}

bool QnPosDBPro::EnsureOpen(QString& error) {
  return Guarded(error, [&] {
    if (DbType.isEmpty()) {
      error = Translated("未设置数据库类型");
      return false;
    }
    if (DbTypeUpper.isEmpty()) SetDbType(DbType);
    if ((IsOpen() && !WasLost()) || Open(ServiceName, DBName, error, UserName, Password, Port)) {
      OpenFailed = 0;
      return true;
    }
    OpenFailed = 1;
    error += Translated("数据库打开失败！");
    return false;
  });
}

void QnPosDBPro::SetDbType(const QString& type) {
  DbTypeUpper = type.toUpper();
  const QString driver = DriverOf(DbTypeUpper);
  if (driver.isEmpty()) return;
  Queries.clear();
  const QString pattern = QStringLiteral("MyDBProcessConn%1");
  int number = 0;
  while (QSqlDatabase::database(pattern.arg(number), false).isValid()) ++number;
  ConnName = pattern.arg(number);
  Db = std::make_shared<QSqlDatabase>(QSqlDatabase::addDatabase(driver, ConnName));
  Health = std::make_shared<ConnectionHealth>(IsRemote(DbTypeUpper));
}

bool QnPosDBPro::Open(const QString& server, const QString& database, QString& error, const QString& user,
                      const QString& password, qint32 port) {
  return Guarded(error, [&] {
    OpenName = database;
    if (!Db) return false;
    if (DbTypeUpper == kSqlite) return OpenSqlite(database, error);
    if (DbTypeUpper == kMySql) return OpenMySql(server, database, error, user, password);
    if (DbTypeUpper == kSqlServer) return OpenSqlServer(server, database, error, user, password, port);
    if (DbTypeUpper == kOracle) return OpenOracle(server, database, error, user, password, port);
    if (DbTypeUpper == kAccess) return OpenAccess(server, database, error, user, password);
    return false;
  });
}

bool QnPosDBPro::OpenSqlite(const QString& database, QString& error) {
  Db->setDatabaseName(FilePath(database.trimmed()));
  return OpenDb(error);
}

bool QnPosDBPro::OpenMySql(const QString& server, const QString& database, QString& error, const QString& user,
                           const QString& password) {
  Db->setHostName(server.isEmpty() ? QStringLiteral("localhost") : server);
  Db->setDatabaseName(database);
  Db->setUserName(user.isEmpty() ? QStringLiteral("root") : user);
  Db->setPassword(password);
  // Wanted before the open, though a closed connection makes nothing of it; and the port is not applied here.
  QSqlQuery(*Db).exec(QStringLiteral("SET NAMES 'utf8'"));
  return OpenDb(error);
}

bool QnPosDBPro::OpenSqlServer(const QString& server, const QString& database, QString& error, const QString& user,
                               const QString& password, qint32 port) {
  Db->setDatabaseName(QStringLiteral("DRIVER={SQL SERVER};SERVER=%1;DATABASE=%2").arg(server, database));
  Db->setUserName(user);
  Db->setPassword(password);
  Db->setPort(port == 0 ? 1433 : port);
  return OpenDb(error);
}

bool QnPosDBPro::OpenOracle(const QString& server, const QString& database, QString& error, const QString& user,
                            const QString& password, qint32 port) {
  Db->setHostName(server);
  Db->setDatabaseName(database);
  Db->setUserName(user);
  Db->setPassword(password);
  Db->setPort(port == 0 ? 1521 : port);
  return OpenDb(error);
}

bool QnPosDBPro::OpenAccess(const QString& server, const QString& database, QString& error, const QString& user,
                            const QString& password) {
  QString name = database;
  if (!server.isEmpty() && !ReadConnectionFile(server, name, error)) return false;
  Db->setDatabaseName(QStringLiteral("DRIVER={Microsoft Access Driver (*.mdb,*.accdb)};DBQ=%1;UID=%2;PWD=%3")
                          .arg(FilePath(name), user.isEmpty() ? QStringLiteral("sa") : user, password));
  return OpenDb(error);
}

bool QnPosDBPro::OpenDb(QString& error) {
  if (!Db->open()) {
    error += Db->lastError().text();
    return false;
  }
  return Health->Note(true);
}

void QnPosDBPro::SetConnectOptions(const QString& options) {
  if (Db && Db->isValid()) Db->setConnectOptions(options);
}

bool QnPosDBPro::BeginTransaction() {
  return Guarded([&] { return Db && Db->driver()->hasFeature(QSqlDriver::Transactions) && Db->transaction(); });
}

bool QnPosDBPro::Commit() {
  return Guarded([&] { return Db && Db->driver()->hasFeature(QSqlDriver::Transactions) && Db->commit(); });
}

bool QnPosDBPro::Rollback() {
  return Guarded([&] { return Db && Db->driver()->hasFeature(QSqlDriver::Transactions) && Db->rollback(); });
}

QDateTime QnPosDBPro::GetServerDate() {
  QDateTime date;
  const bool answered = Guarded([&] {
    if (!IsOpen()) return false;
    QSqlQuery query(*Db);
    if (!Exec(query, ServerDateStatement(DbTypeUpper)) || !query.next()) return false;
    date = query.value(QStringLiteral("date")).toDateTime();
    return true;
  });
  return answered ? date : QDateTime::currentDateTime();
}

/// Every statement goes out through these three, so that a connection that fails is doubted.
bool QnPosDBPro::Exec(QSqlQuery& query, const QString& sql) { return Health->Note(query.exec(sql)); }

bool QnPosDBPro::Prepare(QSqlQuery& query, const QString& sql) { return Health->Note(query.prepare(sql)); }

bool QnPosDBPro::Exec(QSqlQuery& query) { return Health->Note(query.exec()); }

bool QnPosDBPro::excuteSQL(const QString& sql, QString& error) {
  error = QStringLiteral("函数:excuteSQL||执行:") + sql.left(kShownStatementChars) + kSeparator;
  return Guarded(error, [&] {
    if (!IsOpen()) {
      error += kNotOpened;
      return false;
    }
    QSqlQuery query(*Db);
    if (Exec(query, sql)) return true;
    error += query.lastError().text();
    return false;
  });
}

bool QnPosDBPro::openRecordset(const QString& sql, QSqlQuery& query, QString& error) {
  if (!Db) {
    error = kNotCreated;
    return false;
  }
  error = QStringLiteral("函数:openRecordset||执行:") + sql + kSeparator;
  return Guarded(error, [&] {
    if (!IsOpen()) {
      error += kNotOpened;
      return false;
    }
    query = QSqlQuery(*Db);
    // SQL Server sends one forward-only result at a time, and loaders ask the next question while reading the last.
    query.setForwardOnly(DbTypeUpper != kSqlServer);
    if (Exec(query, sql)) return true;
    error += query.lastError().text();
    return false;
  });
}

QString QnPosDBPro::UnsupportedProc() const {
  return QStringLiteral("不支持在数据库类型") + DbTypeUpper + QStringLiteral("执行存储过程");
}

bool QnPosDBPro::exexProc(const QString& name, const QString& args, QString& error) {
  error = QStringLiteral("函数:exexProc||执行:") + name + kSeparator;
  return Guarded(error, [&] { return RunProc(name, args, error); });
}

bool QnPosDBPro::RunProc(const QString& name, const QString& args, QString& error) {
  if (!IsOpen()) {
    error += kNotOpened;
    return false;
  }
  if (DbTypeUpper != kSqlServer && DbTypeUpper != kOracle) {
    error = UnsupportedProc();
    return false;
  }
  QSqlQuery query(*Db);
  const QString statement = DbTypeUpper == kOracle ? OracleCall(name, args) : SqlServerExec(name, args);
  if (Prepare(query, statement) && Exec(query)) return true;
  error += query.lastError().text();
  return false;
}

bool QnPosDBPro::exexProcWithArgs(const QString& name, QList<ProcArg>& args, QString& error) {
  error = QStringLiteral("函数:exexProcWithArgs||执行:") + name + kSeparator;
  return Guarded(error, [&] { return RunProcWithArgs(name, args, error); });
}

bool QnPosDBPro::RunProcWithArgs(const QString& name, QList<ProcArg>& args, QString& error) {
  if (!IsOpen()) {
    error += kNotOpened;
    return false;
  }
  if (name.isEmpty() || args.isEmpty()) {
    error += QStringLiteral(" 存储过程名称或参数错误!");
    return false;
  }
  if (DbTypeUpper != kSqlServer && DbTypeUpper != kOracle) {
    error = UnsupportedProc();
    return false;
  }
  QSqlQuery query(*Db);
  const QString statement = DbTypeUpper == kOracle ? OracleCall(name, args) : SqlServerExec(name, args);
  if (!Prepare(query, statement)) {
    error += query.lastError().text();
    return false;
  }
  if (!BindArgs(query, args, error)) return false;
  if (!Exec(query)) {
    error += query.lastError().text();
    return false;
  }
  ReadOutArgs(query, args);
  return true;
}

bool QnPosDBPro::BindArgs(QSqlQuery& query, const QList<ProcArg>& args, QString& error) const {
  int position = 0;
  for (const ProcArg& arg : args) {
    QVariant value;
    if (arg.Type == ProcArg::Integer) {
      value = arg.Value.toInt();
    } else if (arg.Type == ProcArg::Text) {
      value = arg.Value;
    } else {
      error += QStringLiteral("参数") + arg.Name + QStringLiteral("类型转换错误");
      return false;
    }
    const auto direction = QSql::ParamType(QFlag(arg.Direction));
    if (DbTypeUpper == kOracle) {
      query.bindValue(QLatin1Char(':') + arg.Name, value, direction);
    } else {
      query.bindValue(position++, value, direction);
    }
  }
  return true;
}

void QnPosDBPro::ReadOutArgs(const QSqlQuery& query, QList<ProcArg>& args) const {
  int position = 0;
  for (ProcArg& arg : args) {
    const int place = position++;
    if (arg.Direction != ProcArg::Out) continue;
    const bool named = DbTypeUpper == kOracle;
    arg.Value = (named ? query.boundValue(QLatin1Char(':') + arg.Name) : query.boundValue(place)).toString();
  }
}

bool QnPosDBPro::OpenByHandle(qint32 handle, const QString& sql) {
  return Guarded([&] {
    if (!Db) return false;
    // A new query rather than the old one emptied: a copy may still be reading from that.
    auto query = std::make_shared<QSqlQuery>(*Db);
    Queries.insert(handle, query);
    return Exec(*query, sql);
  });
}

void QnPosDBPro::CloseHandle(qint32 handle) { Queries.remove(handle); }

QSqlQuery* QnPosDBPro::FindQuery(qint32 handle) const { return Queries.value(handle).get(); }

bool QnPosDBPro::IsEOF(qint32 handle) const {
  const QSqlQuery* query = FindQuery(handle);
  return query == nullptr || query->at() == QSql::AfterLastRow;
}

bool QnPosDBPro::IsBOF(qint32 handle) const {
  const QSqlQuery* query = FindQuery(handle);
  return query == nullptr || query->at() == QSql::BeforeFirstRow;
}

template <typename Step>
bool QnPosDBPro::Move(qint32 handle, Step step) {
  return Guarded([&] {
    QSqlQuery* query = FindQuery(handle);
    return IsOpen() && query != nullptr && query->isActive() && step(*query);
  });
}

bool QnPosDBPro::First(qint32 handle) {
  return Move(handle, [](QSqlQuery& query) { return query.first(); });
}

bool QnPosDBPro::Previous(qint32 handle) {
  return Move(handle, [](QSqlQuery& query) { return query.previous(); });
}

bool QnPosDBPro::Next(qint32 handle) {
  return Move(handle, [](QSqlQuery& query) { return query.next(); });
}

bool QnPosDBPro::Last(qint32 handle) {
  return Move(handle, [](QSqlQuery& query) { return query.last(); });
}

bool QnPosDBPro::Seek(qint32 handle, qint32 row) {
  return Move(handle, [row](QSqlQuery& query) { return query.seek(row); });
}

bool QnPosDBPro::InsertRecord(const QString& table, const QList<SqlItem>& items) {
  return Guarded([&] { return RunWithItems(InsertStatement(table, items), items); });
}

bool QnPosDBPro::UpdateRecord(const QString& table, const QString& where, const QList<SqlItem>& items) {
  return Guarded([&] { return RunWithItems(UpdateStatement(table, where, items), items); });
}

bool QnPosDBPro::RunWithItems(const QString& statement, const QList<SqlItem>& items) {
  if (!IsOpen()) return false;
  QSqlQuery query(*Db);
  if (!Prepare(query, statement)) return false;
  for (const SqlItem& item : items) query.bindValue(QLatin1Char(':') + item.Column(), item.Value(), QSql::In);
  return Exec(query);
}

bool QnPosDBPro::ReadRecord(qint32 handle, const QList<ReadItem>& items) {
  return Guarded([&] {
    const QSqlQuery* query = FindQuery(handle);
    if (!query) return false;
    const QSqlRecord columns = query->record();
    for (const ReadItem& item : items) {
      const int place = columns.indexOf(item.Column);
      item.Target.Store(place < 0 ? QVariant() : query->value(place));
    }
    return true;
  });
}

bool QnPosDBPro::ExecProcFormat(const QString& name, const QList<ProcParam>& params) {
  return Guarded([&] {
    if (!IsOpen() || DbTypeUpper != kSqlServer) return false;
    QSqlQuery query(*Db);
    if (!Prepare(query, SqlServerExec(name, params))) return false;
    int position = 0;
    for (const ProcParam& param : params) query.bindValue(position++, param.Value(), param.Direction());
    if (!Exec(query)) return false;
    position = 0;
    for (const ProcParam& param : params) param.Store(query.boundValue(position++));
    return true;
  });
}

}  // namespace Corvane
