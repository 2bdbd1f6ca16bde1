#ifndef QNCORVANE_DB_RECORDS_H
#define QNCORVANE_DB_RECORDS_H

#include <QList>
#include <QString>

#include "db/ReadItem.h"
#include "db/SqlItem.h"

class QSqlQuery;

namespace Corvane {

class Connection;

/// As `QnPosDBPro::InsertRecord`.
bool InsertRow(Connection& connection, const QString& table, const QList<SqlItem>& items);

/// As `QnPosDBPro::UpdateRecord`.
bool UpdateRows(Connection& connection, const QString& table, const QString& where, const QList<SqlItem>& items);

/// As `QnPosDBPro::ReadRecord`. @param query null for no recordset.
bool ReadRow(const QSqlQuery* query, const QList<ReadItem>& items);

}  // namespace Corvane

#endif
