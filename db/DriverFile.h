#ifndef QNCORVANE_DB_DRIVERFILE_H
#define QNCORVANE_DB_DRIVERFILE_H

#include <QString>

class QSqlDriver;

namespace Corvane {

/// Loads a Qt driver from the files that are there now. Qt itself looks for its drivers once in a process: one that
/// could not be read then, for want of descriptors, is never found by it again.
///
/// @param driver the driver's name, e.g. "QSQLITE".
/// @return the driver, the caller's own; null without one.
QSqlDriver* LoadDriverFile(const QString& driver);

}  // namespace Corvane

#endif
