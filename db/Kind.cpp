#include "db/Kind.h"

#include <QStringList>
#include <limits>

namespace Corvane {
namespace {

bool IsOverOdbc(const QString& kind) { return kind == Kind::kSqlServer || kind == Kind::kAccess; }

void Add(QStringList& options, const char* name, int seconds) {
  if (seconds > 0) options += QStringLiteral("%1=%2").arg(QLatin1String(name)).arg(seconds);
}

/// SQLite takes 0 for not waiting at all.
QString SqliteTimeout(int seconds) {
  const int milliseconds = seconds > 0 ? seconds * 1000 : std::numeric_limits<int>::max();
  return QStringLiteral("QSQLITE_BUSY_TIMEOUT=%1").arg(milliseconds);
}

}  // namespace

QString DriverOf(const QString& kind) {
  if (kind == Kind::kSqlite) return QStringLiteral("QSQLITE");
  if (kind == Kind::kMySql) return QStringLiteral("QMYSQL");
  if (IsOverOdbc(kind)) return QStringLiteral("QODBC");
  if (kind == Kind::kOracle) return QStringLiteral("QOCI");
  return {};
}

bool IsRemote(const QString& kind) { return kind == Kind::kMySql || kind == Kind::kSqlServer || kind == Kind::kOracle; }

bool PadsTexts(const QString& kind) { return kind == Kind::kSqlServer || kind == Kind::kOracle; }

QString ServerDateStatement(const QString& kind) {
  if (kind == Kind::kSqlite) return QStringLiteral("select datetime('now') as date");
  if (kind == Kind::kMySql) return QStringLiteral("select current_timestamp as date");
  if (IsOverOdbc(kind)) return QStringLiteral("select getdate() as date");
  if (kind == Kind::kOracle) return QStringLiteral("select sysdate as date from dual");
  return {};
}

QString TrialStatement(const QString& kind) {
  return kind == Kind::kOracle ? QStringLiteral("select 1 from dual") : QStringLiteral("select 1");
}

QString TimeoutOptions(const QString& kind, int connectTimeout, int readTimeout) {
  if (kind == Kind::kSqlite) return SqliteTimeout(readTimeout);
  QStringList options;
  if (kind == Kind::kMySql) {
    Add(options, "MYSQL_OPT_CONNECT_TIMEOUT", connectTimeout);
    Add(options, "MYSQL_OPT_READ_TIMEOUT", readTimeout);
    Add(options, "MYSQL_OPT_WRITE_TIMEOUT", readTimeout);
  }
  if (IsOverOdbc(kind)) {
    Add(options, "SQL_ATTR_LOGIN_TIMEOUT", connectTimeout);
    Add(options, "SQL_ATTR_CONNECTION_TIMEOUT", readTimeout);
  }
  return options.join(QLatin1Char(';'));
}

}  // namespace Corvane
