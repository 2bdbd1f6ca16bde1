#ifndef QNCORVANE_DB_STATEMENTS_H
#define QNCORVANE_DB_STATEMENTS_H

#include <QList>
#include <QString>

#include "db/ProcArg.h"
#include "db/ProcParam.h"
#include "db/SqlItem.h"

namespace Corvane {

/// The texts of the statements that `QnPosDBPro` prepares. Names go in as they are: nothing is quoted or escaped.

/// @return "INSERT INTO t(a,b) VALUES (:a,:b)".
QString InsertStatement(const QString& table, const QList<SqlItem>& items);

/// @return "UPDATE t SET a=:a,b=:b where"; the blank before `where` is there without a `where` too.
QString UpdateStatement(const QString& table, const QString& where, const QList<SqlItem>& items);

/// @return "call name() args": the brackets stay empty, the argument text stands behind them.
QString OracleCall(const QString& name, const QString& args);

/// @return "CALL name(:a,:b)".
QString OracleCall(const QString& name, const QList<ProcArg>& args);

/// @return "exec name args".
QString SqlServerExec(const QString& name, const QString& args);

/// @return "exec name ?,? output ": " output " behind each argument whose `Direction` is Out.
QString SqlServerExec(const QString& name, const QList<ProcArg>& args);

/// @return "exec name ?,?".
QString SqlServerExec(const QString& name, const QList<ProcParam>& params);

}  // namespace Corvane

#endif
