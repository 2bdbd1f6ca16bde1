#include "db/Recordsets.h"

#include "db/ProcessEnd.h"

namespace Corvane {

bool ExecuteSql(Connection& connection, const QString& sql, QString& error) {
  constexpr int kShownStatementChars = 30;
  error = Asked("excuteSQL", sql.left(kShownStatementChars));
  return connection.Ask(error, [&](QSqlQuery& query) { return connection.Exec(query, sql); });
}

bool OpenRecordset(Connection& connection, const QString& sql, QSqlQuery& query, QString& error) {
  if (!connection.Db) {
    error = QLatin1String("Connection is not Created!");
    return false;
  }
  error = Asked("openRecordset", sql);
  return Guarded(error, [&] {
    if (!connection.IsUsable(error)) return false;
    query = connection.NewQuery();
    if (connection.Exec(query, sql)) return true;
    error += query.lastError().text();
    return false;
  });
}

bool OpenRecordset(Connection& connection, const SqlText& sql, Recordset& rows, QString& reason) {
  return Guarded(reason, [&] {
    if (!connection.IsUsable(reason)) return false;
    if (connection.Select(sql, rows)) return true;
    reason += rows.Query.lastError().text();
    return false;
  });
}

QString FailedRecordset(const SqlText& sql, const QString& reason) {
  return Asked("openRecordset", sql.ToString()) + reason;
}

bool EndedWell(Connection& connection, const QSqlQuery& query, QString& error) {
  if (query.lastError().type() == QSqlError::NoError) return true;
  error += query.lastError().text();
  return connection.Note(query, false);
}

bool OpenCursor(Connection& connection, Cursors& cursors, qint32 handle, const QString& sql) {
  return Guarded([&] {
    if (!connection.Db || ProcessEnd::HasCome()) return false;
    // A new query rather than the old one emptied: a copy may still be reading from that.
    auto query = std::make_shared<QSqlQuery>(*connection.Db);
    cursors.insert(handle, query);
    return connection.Exec(*query, sql);
  });
}

}  // namespace Corvane
