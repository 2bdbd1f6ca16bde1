#include "db/Statements.h"

#include <QStringList>

namespace Corvane {
namespace {

const QLatin1Char kComma(',');
const QLatin1Char kColon(':');

}  // namespace

QString InsertStatement(const QString& table, const QList<SqlItem>& items) {
  QStringList columns;
  QStringList placeholders;
  for (const SqlItem& item : items) {
    columns += item.Column();
    placeholders += kColon + item.Column();
  }
  return QStringLiteral("INSERT INTO %1(%2) VALUES (%3)").arg(table, columns.join(kComma), placeholders.join(kComma));
}

QString UpdateStatement(const QString& table, const QString& where, const QList<SqlItem>& items) {
  QStringList settings;
  for (const SqlItem& item : items) settings += QStringLiteral("%1=:%1").arg(item.Column());
  return QStringLiteral("UPDATE %1 SET %2 %3").arg(table, settings.join(kComma), where);
}

QString OracleCall(const QString& name, const QString& args) { return QStringLiteral("call %1() %2").arg(name, args); }

QString OracleCall(const QString& name, const QList<ProcArg>& args) {
  QStringList placeholders;
  for (const ProcArg& arg : args) placeholders += kColon + arg.Name;
  return QStringLiteral("CALL %1(%2)").arg(name, placeholders.join(kComma));
}

QString SqlServerExec(const QString& name, const QString& args) { return QStringLiteral("exec %1 %2").arg(name, args); }

QString SqlServerExec(const QString& name, const QList<ProcArg>& args) {
  QStringList placeholders;
  for (const ProcArg& arg : args) {
    placeholders += arg.Direction == ProcArg::Out ? QStringLiteral("? output ") : QStringLiteral("?");
  }
  return QStringLiteral("exec %1 %2").arg(name, placeholders.join(kComma));
}

QString SqlServerExec(const QString& name, const QList<ProcParam>& params) {
  QStringList placeholders;
  for (int i = 0; i < params.size(); ++i) placeholders += QStringLiteral("?");
  if (params.isEmpty()) return QStringLiteral("exec %1").arg(name);
  return QStringLiteral("exec %1 %2").arg(name, placeholders.join(kComma));
}

}  // namespace Corvane
