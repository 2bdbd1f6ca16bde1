#ifndef QNCORVANE_DB_ODBCTIMEOUT_H
#define QNCORVANE_DB_ODBCTIMEOUT_H

class QSqlDatabase;

namespace Corvane {

/// Sets how long each statement of an open ODBC connection may take. Qt's driver has no option for this; the driver
/// manager that it brought along does. A driver that knows no such limit goes without.
///
/// @param seconds above 0.
void SetOdbcQueryTimeout(const QSqlDatabase& connection, int seconds);

}  // namespace Corvane

#endif
