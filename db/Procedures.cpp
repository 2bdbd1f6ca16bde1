#include "db/Procedures.h"

#include "db/Connection.h"
#include "db/Kind.h"
#include "db/Statements.h"

namespace Corvane {
namespace {

/// Oracle knows arguments by name, SQL Server by place.
bool IsNamed(const Connection& connection) { return connection.DbTypeUpper == Kind::kOracle; }

/// Whether the kind has procedures. @param error out: replaced when it has none.
bool HasProcs(const Connection& connection, QString& error) {
  if (connection.DbTypeUpper == Kind::kSqlServer || IsNamed(connection)) return true;
  error = QStringLiteral("不支持在数据库类型") + connection.DbTypeUpper + QStringLiteral("执行存储过程");
  return false;
}

template <class Args>
bool PrepareProc(Connection& connection, QSqlQuery& query, const QString& name, const Args& args) {
  return connection.Prepare(query, IsNamed(connection) ? OracleCall(name, args) : SqlServerExec(name, args));
}

bool BindArgs(QSqlQuery& query, const QList<ProcArg>& args, bool isNamed, QString& error) {
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
    if (isNamed) {
      query.bindValue(QLatin1Char(':') + arg.Name, value, direction);
    } else {
      query.bindValue(position++, value, direction);
    }
  }
  return true;
}

void ReadOutArgs(const QSqlQuery& query, QList<ProcArg>& args, bool isNamed) {
  int position = 0;
  for (ProcArg& arg : args) {
    const int place = position++;
    if (arg.Direction != ProcArg::Out) continue;
    arg.Value = (isNamed ? query.boundValue(QLatin1Char(':') + arg.Name) : query.boundValue(place)).toString();
  }
}

}  // namespace

bool RunProc(Connection& connection, const QString& name, const QString& args, QString& error) {
  error = Asked("exexProc", name);
  return connection.Ask(error, [&](QSqlQuery& query) {
    return HasProcs(connection, error) && PrepareProc(connection, query, name, args) && connection.ExecPrepared(query);
  });
}

bool RunProcWithArgs(Connection& connection, const QString& name, QList<ProcArg>& args, QString& error) {
  error = Asked("exexProcWithArgs", name);
  return connection.Ask(error, [&](QSqlQuery& query) {
    if (name.isEmpty() || args.isEmpty()) {
      error += QStringLiteral(" 存储过程名称或参数错误!");
      return false;
    }
    const bool isNamed = IsNamed(connection);
    if (!HasProcs(connection, error) || !PrepareProc(connection, query, name, args)) return false;
    if (!BindArgs(query, args, isNamed, error) || !connection.ExecPrepared(query)) return false;
    ReadOutArgs(query, args, isNamed);
    return true;
  });
}

bool RunProcByPosition(Connection& connection, const QString& name, const QList<ProcParam>& params) {
  QString ignored;
  return connection.Ask(ignored, [&](QSqlQuery& query) {
    if (connection.DbTypeUpper != Kind::kSqlServer) return false;
    if (!connection.Prepare(query, SqlServerExec(name, params))) return false;
    int position = 0;
    for (const ProcParam& param : params) query.bindValue(position++, param.Value(), param.Direction());
    if (!connection.ExecPrepared(query)) return false;
    position = 0;
    for (const ProcParam& param : params) param.Store(query.boundValue(position++));
    return true;
  });
}

}  // namespace Corvane
