#include "db/Records.h"

#include <QSqlRecord>

#include "db/Connection.h"
#include "db/Guarded.h"
#include "db/Statements.h"

namespace Corvane {
namespace {

bool RunWithItems(Connection& connection, const QString& statement, const QList<SqlItem>& items) {
  QString ignored;
  return connection.Ask(ignored, [&](QSqlQuery& query) {
    if (!connection.Prepare(query, statement)) return false;
    for (const SqlItem& item : items) query.bindValue(QLatin1Char(':') + item.Column(), item.Value(), QSql::In);
    return connection.ExecPrepared(query);
  });
}

}  // namespace

bool InsertRow(Connection& connection, const QString& table, const QList<SqlItem>& items) {
  return Guarded([&] { return RunWithItems(connection, InsertStatement(table, items), items); });
}

bool UpdateRows(Connection& connection, const QString& table, const QString& where, const QList<SqlItem>& items) {
  return Guarded([&] { return RunWithItems(connection, UpdateStatement(table, where, items), items); });
}

bool ReadRow(const QSqlQuery* query, const QList<ReadItem>& items) {
  return Guarded([&] {
    if (query == nullptr) return false;
    const QSqlRecord columns = query->record();
    for (const ReadItem& item : items) {
      const int place = columns.indexOf(item.Column);
      item.Target.Store(place < 0 ? QVariant() : query->value(place));
    }
    return true;
  });
}

}  // namespace Corvane
