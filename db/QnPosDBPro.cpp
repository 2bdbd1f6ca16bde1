#include "db/QnPosDBPro.h"

#include <QSqlDatabase>
#include <QSqlDriver>
#include <QSqlError>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QStringList>

#include "db/Connection.h"
#include "db/Guarded.h"
#include "db/Kind.h"
#include "db/ProcessEnd.h"
#include "db/Statements.h"

namespace Corvane {
namespace {

const QLatin1String kSeparator("||");
const QLatin1String kNotOpened(" DataBase is not opened!");
const QLatin1String kNotCreated("Connection is not Created!");

constexpr int kShownStatementChars = 30;

}  // namespace

QnPosDBPro::QnPosDBPro() : Slot(std::make_shared<Connection>()) {}

QnPosDBPro::~QnPosDBPro() = default;

bool QnPosDBPro::EnsureOpen(QString& error) { return Slot->EnsureOpen(error); }

void QnPosDBPro::SetDbType(const QString& type) {
  if (!DriverOf(type.toUpper()).isEmpty()) Queries.clear();
  Slot->SetKind(type);
}

bool QnPosDBPro::Open(const QString& server, const QString& database, QString& error, const QString& user,
                      const QString& password, qint32 port) {
  return Slot->Open(server, database, error, user, password, port);
}

void QnPosDBPro::SetConnectOptions(const QString& options) {
  if (Slot->HasDriver()) Slot->SetOptions(options);
}

SqlDialect QnPosDBPro::Dialect() const { return DialectOf(Slot->DbTypeUpper); }

bool QnPosDBPro::PadsTexts() const { return Corvane::PadsTexts(Slot->DbTypeUpper); }

bool QnPosDBPro::BeginTransaction() {
  return Guarded([&] {
    return Slot->HasDriver() && Slot->Db->driver()->hasFeature(QSqlDriver::Transactions) && Slot->Db->transaction();
  });
}

bool QnPosDBPro::Commit() {
  return Guarded([&] {
    return Slot->HasDriver() && Slot->Db->driver()->hasFeature(QSqlDriver::Transactions) && Slot->Db->commit();
  });
}

bool QnPosDBPro::Rollback() {
  return Guarded([&] {
    return Slot->HasDriver() && Slot->Db->driver()->hasFeature(QSqlDriver::Transactions) && Slot->Db->rollback();
  });
}

QDateTime QnPosDBPro::GetServerDate() {
  QDateTime date;
  const bool answered = Guarded([&] {
    if (!Slot->IsUsable()) return false;
    QSqlQuery query(*Slot->Db);
    if (!Exec(query, ServerDateStatement(Slot->DbTypeUpper)) || !query.next()) return false;
    date = query.value(QStringLiteral("date")).toDateTime();
    return true;
  });
  return answered ? date : QDateTime::currentDateTime();
}

bool QnPosDBPro::Exec(QSqlQuery& query, const QString& sql) {
  return Slot->Run(query, [&] { return query.exec(sql); });
}

bool QnPosDBPro::Prepare(QSqlQuery& query, const QString& sql) {
  return Slot->Run(query, [&] { return query.prepare(sql); });
}

bool QnPosDBPro::Exec(QSqlQuery& query) {
  return Slot->Run(query, [&] { return query.exec(); });
}

bool QnPosDBPro::excuteSQL(const QString& sql, QString& error) {
  error = QStringLiteral("函数:excuteSQL||执行:") + sql.left(kShownStatementChars) + kSeparator;
  return Guarded(error, [&] {
    if (!Slot->IsUsable()) {
      error += kNotOpened;
      return false;
    }
    QSqlQuery query(*Slot->Db);
    if (Exec(query, sql)) return true;
    error += query.lastError().text();
    return false;
  });
}

bool QnPosDBPro::openRecordset(const QString& sql, QSqlQuery& query, QString& error) {
  if (!Slot->Db) {
    error = kNotCreated;
    return false;
  }
  error = QStringLiteral("函数:openRecordset||执行:") + sql + kSeparator;
  return Guarded(error, [&] {
    if (!Slot->IsUsable()) {
      error += kNotOpened;
      return false;
    }
    query = QSqlQuery(*Slot->Db);
    // SQL Server sends one forward-only result at a time, and loaders ask the next question while reading the last.
    query.setForwardOnly(Slot->DbTypeUpper != Kind::kSqlServer);
    if (Exec(query, sql)) return true;
    error += query.lastError().text();
    return false;
  });
}

bool QnPosDBPro::EndedWell(const QSqlQuery& query, QString& error) {
  if (query.lastError().type() == QSqlError::NoError) return true;
  error += query.lastError().text();
  return Slot->Note(query, false);
}

QString QnPosDBPro::UnsupportedProc() const {
  return QStringLiteral("不支持在数据库类型") + Slot->DbTypeUpper + QStringLiteral("执行存储过程");
}

bool QnPosDBPro::exexProc(const QString& name, const QString& args, QString& error) {
  error = QStringLiteral("函数:exexProc||执行:") + name + kSeparator;
  return Guarded(error, [&] { return RunProc(name, args, error); });
}

bool QnPosDBPro::RunProc(const QString& name, const QString& args, QString& error) {
  if (!Slot->IsUsable()) {
    error += kNotOpened;
    return false;
  }
  if (Slot->DbTypeUpper != Kind::kSqlServer && Slot->DbTypeUpper != Kind::kOracle) {
    error = UnsupportedProc();
    return false;
  }
  QSqlQuery query(*Slot->Db);
  const QString statement = Slot->DbTypeUpper == Kind::kOracle ? OracleCall(name, args) : SqlServerExec(name, args);
  if (Prepare(query, statement) && Exec(query)) return true;
  error += query.lastError().text();
  return false;
}

bool QnPosDBPro::exexProcWithArgs(const QString& name, QList<ProcArg>& args, QString& error) {
  error = QStringLiteral("函数:exexProcWithArgs||执行:") + name + kSeparator;
  return Guarded(error, [&] { return RunProcWithArgs(name, args, error); });
}

bool QnPosDBPro::RunProcWithArgs(const QString& name, QList<ProcArg>& args, QString& error) {
  if (!Slot->IsUsable()) {
    error += kNotOpened;
    return false;
  }
  if (name.isEmpty() || args.isEmpty()) {
    error += QStringLiteral(" 存储过程名称或参数错误!");
    return false;
  }
  if (Slot->DbTypeUpper != Kind::kSqlServer && Slot->DbTypeUpper != Kind::kOracle) {
    error = UnsupportedProc();
    return false;
  }
  QSqlQuery query(*Slot->Db);
  const QString statement = Slot->DbTypeUpper == Kind::kOracle ? OracleCall(name, args) : SqlServerExec(name, args);
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
    if (Slot->DbTypeUpper == Kind::kOracle) {
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
    const bool named = Slot->DbTypeUpper == Kind::kOracle;
    arg.Value = (named ? query.boundValue(QLatin1Char(':') + arg.Name) : query.boundValue(place)).toString();
  }
}

bool QnPosDBPro::OpenByHandle(qint32 handle, const QString& sql) {
  return Guarded([&] {
    if (!Slot->Db || ProcessEnd::HasCome()) return false;
    // A new query rather than the old one emptied: a copy may still be reading from that.
    auto query = std::make_shared<QSqlQuery>(*Slot->Db);
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
    return Slot->IsUsable() && query != nullptr && query->isActive() && step(*query);
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
  if (!Slot->IsUsable()) return false;
  QSqlQuery query(*Slot->Db);
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
    if (!Slot->IsUsable() || Slot->DbTypeUpper != Kind::kSqlServer) return false;
    QSqlQuery query(*Slot->Db);
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
