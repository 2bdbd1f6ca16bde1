#ifndef QNCORVANE_DB_KIND_H
#define QNCORVANE_DB_KIND_H

#include <QString>

namespace Corvane {

/// The five kinds of database, in capitals.
namespace Kind {
template <int Size>
constexpr QLatin1String Word(const char (&letters)[Size]) {
  return QLatin1String(letters, Size - 1);
}

constexpr QLatin1String kSqlite = Word("SQLITE");
constexpr QLatin1String kMySql = Word("MYSQL");
constexpr QLatin1String kSqlServer = Word("SQLSERVER");
constexpr QLatin1String kOracle = Word("ORACLE");
constexpr QLatin1String kAccess = Word("ACCESS");
}  // namespace Kind

/// The Qt driver of a kind; empty for a kind without one.
QString DriverOf(const QString& kind);

/// Whether the database is a server's: a file doesn't go away and come back.
bool IsRemote(const QString& kind);

/// Whether the kind pads texts with blanks to the width of their column.
bool PadsTexts(const QString& kind);

/// The statement for the server's date and time, in a column `date`.
QString ServerDateStatement(const QString& kind);

/// The least that a server can be asked.
QString TrialStatement(const QString& kind);

/// The driver options, in Qt's form, by which opening and statements end in time. Oracle's driver has none.
///
/// @param connectTimeout seconds for opening; 0 for no end.
/// @param readTimeout    seconds for a statement; 0 for no end.
QString TimeoutOptions(const QString& kind, int connectTimeout, int readTimeout);

}  // namespace Corvane

#endif
