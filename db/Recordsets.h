#ifndef QNCORVANE_DB_RECORDSETS_H
#define QNCORVANE_DB_RECORDSETS_H

#include <QMap>
#include <QSqlQuery>
#include <QString>
#include <QtGlobal>
#include <memory>

#include "db/Connection.h"
#include "db/Guarded.h"
#include "db/SqlText.h"

namespace Corvane {

/// As `QnPosDBPro::excuteSQL`.
bool ExecuteSql(Connection& connection, const QString& sql, QString& error);

/// As `QnPosDBPro::openRecordset`.
bool OpenRecordset(Connection& connection, const QString& sql, QSqlQuery& query, QString& error);

bool OpenRecordset(Connection& connection, const SqlText& sql, Recordset& rows, QString& reason);

/// What the error of a SELECT that failed says: the statement, and the reason behind it.
QString FailedRecordset(const SqlText& sql, const QString& reason);

/// As `QnPosDBPro::EndedWell`.
bool EndedWell(Connection& connection, const QSqlQuery& query, QString& error);

/// Recordsets by handle.
using Cursors = QMap<qint32, std::shared_ptr<QSqlQuery>>;

/// As `QnPosDBPro::OpenByHandle`.
bool OpenCursor(Connection& connection, Cursors& cursors, qint32 handle, const QString& sql);

/// @return true at this place outside the rows, and for no recordset.
inline bool StandsAt(const QSqlQuery* query, QSql::Location place) { return query == nullptr || query->at() == place; }

/// Moves by one of QSqlQuery's steps. @return whether the recordset, if there is one, then stands on a row.
template <class... Step, class... To>
bool MoveCursor(const Connection& connection, QSqlQuery* query, bool (QSqlQuery::*step)(Step...), To... to) {
  return Guarded(
      [&] { return connection.IsUsable() && query != nullptr && query->isActive() && (query->*step)(to...); });
}

}  // namespace Corvane

#endif
