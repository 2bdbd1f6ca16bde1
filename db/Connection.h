#ifndef QNCORVANE_DB_CONNECTION_H
#define QNCORVANE_DB_CONNECTION_H

#include <sys/types.h>

#include <QDateTime>
#include <QHash>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QString>
#include <QtGlobal>
#include <memory>
#include <string>
#include <vector>

#include "db/ConnectionHealth.h"
#include "db/Guarded.h"
#include "db/OpenedFile.h"
#include "db/Recordset.h"
#include "db/Settings.h"
#include "db/SqlText.h"
#include "db/UseInCall.h"

namespace Corvane {

/// What all copies of a `QnPosDBPro` share: the settings, the connection once there is one, and what is known of it.
///
/// No operation touches Qt's databases or settings after the end of the process has come; all of them fail then.
///
/// A connection belongs to the process that made it: in one that was forked from that, the next open makes another, and
/// the inherited one is never touched again.
class Connection {
 public:
  /// Reads the settings of `folder`, from which their relative file names count then. An empty one is the current
  /// directory, and a bare file name stands beside the host's executable. Opens nothing.
  explicit Connection(const QString& folder = {});
  Connection(const Connection&) = delete;
  Connection& operator=(const Connection&) = delete;

  /// As `QnPosDBPro::EnsureOpen`.
  bool EnsureOpen(QString& error);

  /// As `QnPosDBPro::Open`.
  bool Open(const QString& server, const QString& database, QString& error, const QString& user,
            const QString& password, qint32 port);

  /// Chooses the kind. Without a driver for it the connection stays what it was.
  void SetKind(const QString& type);

  /// Driver options beside those of the timeouts, for the next open.
  void SetOptions(const QString& options) { m_options = options; }

  /// Closes the connection and takes it out of Qt's list, on the thread that opened it. The next open makes another.
  void End();

  /// Whether there is a connection with a driver, open or not.
  bool HasDriver() const;

  /// Whether another process made the connection, which forked this one.
  bool IsInherited() const;

  /// Whether statements may run: the connection is open, and the call that is running has not given it up.
  bool IsUsable() const;

  /// The same. @param error in and out: that there is no usable connection is appended.
  bool IsUsable(QString& error) const;

  /// As `QnPosDBPro::BeginTransaction`, `Commit` and `Rollback`.
  bool Transact(bool (QSqlDatabase::*step)());

  /// As `QnPosDBPro::GetServerDate`.
  QDateTime ServerDate();

  /// Does `work` with a new query on the connection, which must be usable: not even an empty query can be made after
  /// the end of the process.
  ///
  /// @param error in and out: the reason of a failure is appended.
  /// @param work  answers whether it succeeded.
  template <class Work>
  bool Ask(QString& error, Work work) {
    return Guarded(error, [&] {
      if (!IsUsable(error)) return false;
      QSqlQuery query(*Db);
      if (work(query)) return true;
      error += query.lastError().text();
      return false;
    });
  }

  /// Statements on `query`, so that a connection that fails is doubted.
  bool Exec(QSqlQuery& query, const QString& sql) {
    return Run(query, [&] { return query.exec(sql); });
  }
  bool Prepare(QSqlQuery& query, const QString& sql) {
    return Run(query, [&] { return query.prepare(sql); });
  }
  bool ExecPrepared(QSqlQuery& query) {
    return Run(query, [&] { return query.exec(); });
  }

  /// Runs a SELECT of a rule. Where the kind keeps statements, it is prepared once for as long as the connection stays
  /// open; and within a call all of them read from one transaction, which sees the store as it was at the first.
  ///
  /// @param rows out. The connection must be usable.
  bool Select(const SqlText& sql, Recordset& rows);

  /// A query for rows that are read once, from the first to the last.
  QSqlQuery NewQuery() const;

  /// The two ends of a call; see DatabaseCall. @return whether no call was running.
  bool BeginCall();
  void EndCall() noexcept;

  /// Takes in how the last statement went, or how its rows ended. @return `succeeded`.
  bool Note(const QSqlQuery& query, bool succeeded);

  DatabaseSettings Settings;
  std::shared_ptr<QSqlDatabase> Db;  ///< The connection; null until a kind is set.
  QString ConnName;                  ///< The connection's name in Qt's list.
  QString DbTypeUpper;               ///< The kind, in capitals.
  QString OpenName;                  ///< The database name of the last open.
  qint32 OpenFailed = 0;             ///< 1 after an open failed, 0 when known to be open.
  UseInCall Use;

 private:
  /// A prepared statement, and the values that it was last run with.
  struct KeptStatement {
    Recordset Rows;
    std::vector<std::string> Values;
  };

  template <class Statement>
  bool Run(const QSqlQuery& query, Statement statement) {
    m_started = ConnectionHealth::Now();
    return Note(query, statement());
  }
  bool IsOpen() const;
  void LeaveToItsProcess();
  bool HasDriverOrHope() const;
  void TryDriverAgain();
  bool MakeOpen(QString& reason);
  bool WasLost(QString& reason);
  bool OpenByKind(const QString& server, const QString& database, QString& error, const QString& user,
                  const QString& password, qint32 port);
  void NameMySql(const QString& server, const QString& database, const QString& user, const QString& password);
  void NameSqlServer(const QString& server, const QString& database, const QString& user, const QString& password,
                     qint32 port);
  void NameOracle(const QString& server, const QString& database, const QString& user, const QString& password,
                  qint32 port);
  bool NameAccess(const QString& server, const QString& database, QString& error, const QString& user,
                  const QString& password);
  bool OpenNamed(QString& error);
  bool TakeAllCharacters(QString& error);
  QString DriverOptions() const;
  void Close();
  void LetGo();
  bool ExecWith(const SqlText& sql, KeptStatement& statement);
  void Keep(const QString& pattern, const KeptStatement& statement);
  bool BeginReading();
  void EndReading() noexcept;

  QString FileIn(const QString& name) const;
  QString FirstFreeName() const;

  QString m_folder;  ///< empty for the current directory
  ConnectionHealth m_health{false};
  ConnectionHealth::Clock::time_point m_started;
  pid_t m_maker = 0;  ///< the process that made the connection
  OpenedFile m_file;
  QString m_options;
  QHash<QString, KeptStatement> m_kept;  ///< prepared statements of the open connection, by their patterns
  bool m_isReading = false;              ///< the transaction of a call is open
  bool m_isSilent = false;  ///< a statement was not answered in time: what the server says next belongs to that
};

/// What the text of a statement operation begins with: "函数:", its name, "||执行:", what it was asked to run, "||".
QString Asked(const char* operation, const QString& what);

/// Marks one of the engine's calls as running, for the life of this object: the database is given up for its rest when
/// it can't be opened or keeps silent, and a file that was replaced is opened anew at its first use. No transaction
/// outlives it. A call within a call is part of it.
class DatabaseCall {
 public:
  explicit DatabaseCall(Connection& connection) : m_connection(connection), m_isOuter(connection.BeginCall()) {}
  DatabaseCall(const DatabaseCall&) = delete;
  DatabaseCall& operator=(const DatabaseCall&) = delete;
  ~DatabaseCall() {
    if (m_isOuter) m_connection.EndCall();
  }

 private:
  Connection& m_connection;
  bool m_isOuter;
};

}  // namespace Corvane

#endif
