#include "qncorvane/SqlArg.h"

#include <QStringList>

namespace Corvane {

SqlArg::SqlArg() : IsText(false) {}

SqlArg::SqlArg(const QString& name, const QString& value, bool isText) : Name(name), Value(value), IsText(isText) {}

QString SqlArg::getIntSQL(const QString& table, const QList<SqlArg>& args) {
  QStringList columns;
  QStringList values;
  for (const SqlArg& arg : args) {
    columns += arg.Name;
    values += arg.IsText ? QLatin1Char('\'') + arg.Value + QLatin1Char('\'') : arg.Value;
  }
  const QLatin1Char comma(',');
  return QStringLiteral("insert into %1(%2) values(%3);").arg(table, columns.join(comma), values.join(comma));
}

}  // namespace Corvane
