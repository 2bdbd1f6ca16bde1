#ifndef QNCORVANE_DB_CONNECTIONFILE_H
#define QNCORVANE_DB_CONNECTIONFILE_H

#include <QString>

namespace Corvane {

/// Reads the database name from a connection file ("...Provider=...;Data Source=C:\shop.mdb;..."), in UTF-8 or UTF-16.
///
/// @param path     the connection file.
/// @param database out: the value behind the second "=", up to the next ";". Without a ":" in it, it is a name in the
///                 host's directory, an absolute path without a drive included.
/// @param error    in and out: the reason is appended on failure.
/// @return false when the file can't be read or has no second "=".
bool ReadConnectionFile(const QString& path, QString& database, QString& error);

}  // namespace Corvane

#endif
