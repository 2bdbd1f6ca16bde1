#ifndef QNCORVANE_DB_QNPOSDBPRO_H
#define QNCORVANE_DB_QNPOSDBPRO_H

#include <QDateTime>
#include <QList>
#include <QSqlDatabase>
#include <QString>
#include <QtGlobal>
#include <memory>

#include "db/Connection.h"
#include "db/Kind.h"
#include "db/Procedures.h"
#include "db/Records.h"
#include "db/Recordsets.h"
#include "db/SqlText.h"

namespace Corvane {

/// The store's database, of any of five kinds: "SQLITE", "MYSQL", "SQLSERVER", "ORACLE" or "ACCESS".
///
/// Copies share one connection, also when there is none yet: what one opens is open for all. The connection outlives
/// every copy; it is closed and taken out of Qt's list when the library or the process goes, and from then on every
/// operation fails. It belongs to the thread that opened it, and so does all work with it.
///
/// A server that does not answer and a file that somebody holds locked are waited for as long as the settings
/// "ConnectTimeout" and "ReadTimeout" say. Oracle's driver knows no such limits. Within one of the engine's calls
/// (DatabaseCall) the first open that fails and the first silence end the use of the database.
///
/// Failures are a false result and a text in `error`; no operation lets an exception out. The statement operations
/// (`excuteSQL`, `openRecordset`, `exexProc`, `exexProcWithArgs`) begin `error` with what they were asked to do, so
/// that `error` is NOT empty after a success: look at the result. The reason, if any, stands behind the last "||".
///
/// A program without a QCoreApplication may use this class: drivers load all the same, and a bare file name stands in
/// the directory of the running executable.
class QnPosDBPro {
 public:
  /// Reads the settings from "config.ini" in the current directory, or in `folder`, from which their relative file names
  /// count then. Opens nothing. They are read again by EnsureOpen only as long as they name no kind, or the kind has no
  /// driver.
  explicit QnPosDBPro(const QString& folder = {});

  /// The copy uses the same settings and connection and sees the same recordsets, which live until their last holder
  /// lets them go.
  QnPosDBPro(const QnPosDBPro&) = default;
  QnPosDBPro& operator=(const QnPosDBPro&) = default;

  /// Lets go of the recordsets. The connection stays.
  virtual ~QnPosDBPro();

  /// Makes sure that the connection is open; opens it when it isn't, or when it was lost since.
  ///
  /// One attempt. To be called before each piece of work: then a server that went away and came back costs nothing but
  /// the statement during which it went. An SQLite file that was replaced, or mended after a statement failed, is
  /// opened anew at the first use in a call.
  ///
  /// @param error in and out: on failure the reason is appended; without a `DbType` it is replaced. Else left alone.
  /// @return whether the connection is open.
  bool EnsureOpen(QString& error) { return Slot->EnsureOpen(error); }

  /// Chooses the kind and makes a new, closed connection for it, under the first free name of "MyDBProcessConn0",
  /// "MyDBProcessConn1" and so on. Open recordsets are let go.
  ///
  /// @param type the kind in any letter case. With a kind that has no driver the connection stays what it was.
  void SetDbType(const QString& type);

  /// Opens the connection in the way of its kind.
  ///
  /// @param server   server or host; for "ACCESS" a connection file that names the database; unused for "SQLITE".
  /// @param database database or file name; a bare file name ("SQLITE", "ACCESS") is a file beside the host's
  /// executable.
  /// @param error    out: the driver's reason is appended on failure.
  /// @param user     login; empty is "root" for "MYSQL" and "sa" for "ACCESS"; unused for "SQLITE".
  /// @param password as it is.
  /// @param port     0 is 1433 for "SQLSERVER" and 1521 for "ORACLE"; unused for the others, "MYSQL" included.
  /// @return whether the connection is open. False for a kind outside the five.
  bool Open(const QString& server, const QString& database, QString& error, const QString& user,
            const QString& password, qint32 port) {
    return Slot->Open(server, database, error, user, password, port);
  }

  /// Driver options for the next open, in Qt's form ("NAME=value;..."), beside those of the timeouts. Without a
  /// connection nothing happens.
  void SetConnectOptions(const QString& options) {
    if (Slot->HasDriver()) Slot->SetOptions(options);
  }

  /// Transactions. @return false as well when the driver has none.
  bool BeginTransaction() { return Slot->Transact(&QSqlDatabase::transaction); }
  bool Commit() { return Slot->Transact(&QSqlDatabase::commit); }
  bool Rollback() { return Slot->Transact(&QSqlDatabase::rollback); }

  /// @return the server's date and time; the client's clock when the server doesn't answer.
  QDateTime GetServerDate() { return Slot->ServerDate(); }

  /// Runs a statement that gives no rows.
  ///
  /// @param error out: "函数:excuteSQL||执行:", the first 30 characters of `sql`, "||", and the reason if it failed.
  bool excuteSQL(const QString& sql, QString& error) { return ExecuteSql(*Slot, sql, error); }

  /// Runs a SELECT.
  ///
  /// @param query out: the result set, standing before the first row. It may be forward only: `next()` is the one way
  /// to
  ///              move. Further statements may run while it is being read.
  /// @param error out: "函数:openRecordset||执行:", `sql`, "||", and the reason if it failed.
  bool openRecordset(const QString& sql, QSqlQuery& query, QString& error) {
    return OpenRecordset(*Slot, sql, query, error);
  }

  /// Runs a SELECT of a rule, at the least cost that its kind allows.
  ///
  /// @param rows   out: forward only, and to be read before the next statement of the same words runs.
  /// @param reason in and out: the reason of a failure is appended, without the statement.
  bool openRecordset(const SqlText& sql, Recordset& rows, QString& reason) {
    return OpenRecordset(*Slot, sql, rows, reason);
  }

  /// To be asked when `query`, from openRecordset, has no next row: whether its rows ended there or broke off.
  ///
  /// @param error in and out: when they broke off, the reason is appended.
  bool EndedWell(const QSqlQuery& query, QString& error) { return Corvane::EndedWell(*Slot, query, error); }

  /// How this kind writes its statements; before a kind is set, as most kinds do.
  SqlDialect Dialect() const { return DialectOf(Slot->DbTypeUpper); }

  /// Whether this kind pads texts with blanks to the width of their column.
  bool PadsTexts() const { return Corvane::PadsTexts(Slot->DbTypeUpper); }

  /// What the copies share; for DatabaseCall.
  Connection& Shared() { return *Slot; }

  /// Runs a stored procedure ("SQLSERVER" and "ORACLE" only).
  ///
  /// @param args  the argument text, which goes out as it stands.
  /// @param error out: "函数:exexProc||执行:", `name`, "||", and the reason; another kind replaces the whole text.
  bool exexProc(const QString& name, const QString& args, QString& error) { return RunProc(*Slot, name, args, error); }

  /// Runs a stored procedure with bound arguments ("SQLSERVER" and "ORACLE" only).
  ///
  /// @param args  in and out: an argument whose `Direction` is Out gets its value back as text.
  /// @param error out: as for `exexProc`.
  bool exexProcWithArgs(const QString& name, QList<ProcArg>& args, QString& error) {
    return RunProcWithArgs(*Slot, name, args, error);
  }

  /// Recordsets by handle. The caller chooses the number; a handle in use is emptied and used again.
  bool OpenByHandle(qint32 handle, const QString& sql) { return OpenCursor(*Slot, Queries, handle, sql); }
  void CloseHandle(qint32 handle) { Queries.remove(handle); }
  /// @return true behind the last row, and for an unknown handle.
  bool IsEOF(qint32 handle) const { return StandsAt(FindQuery(handle), QSql::AfterLastRow); }
  /// @return true before the first row, and for an unknown handle.
  bool IsBOF(qint32 handle) const { return StandsAt(FindQuery(handle), QSql::BeforeFirstRow); }
  /// Moves. @return whether the recordset then stands on a row; false for a handle without rows or a lost connection.
  bool First(qint32 handle) { return MoveCursor(*Slot, FindQuery(handle), &QSqlQuery::first); }
  bool Previous(qint32 handle) { return MoveCursor(*Slot, FindQuery(handle), &QSqlQuery::previous); }
  bool Next(qint32 handle) { return MoveCursor(*Slot, FindQuery(handle), &QSqlQuery::next); }
  bool Last(qint32 handle) { return MoveCursor(*Slot, FindQuery(handle), &QSqlQuery::last); }
  /// @param row counted from 0.
  bool Seek(qint32 handle, qint32 row) { return MoveCursor(*Slot, FindQuery(handle), &QSqlQuery::seek, row, false); }

  /// INSERT of one row, each value bound to its column's name. @return false on failure; there is no reason kept.
  bool InsertRecord(const QString& table, const QList<SqlItem>& items) { return InsertRow(*Slot, table, items); }

  /// UPDATE. @param where raw SQL behind the columns, e.g. "WHERE BillNo='1'"; empty changes every row.
  bool UpdateRecord(const QString& table, const QString& where, const QList<SqlItem>& items) {
    return UpdateRows(*Slot, table, where, items);
  }

  /// Reads the current row of the recordset under `handle` into the addresses of `items`. A column that the recordset
  /// doesn't have, or a NULL, reads as zero or empty.
  ///
  /// @return false when there is no such recordset; nothing is written then.
  bool ReadRecord(qint32 handle, const QList<ReadItem>& items) { return ReadRow(FindQuery(handle), items); }

  /// Runs a stored procedure ("SQLSERVER" only), arguments by position, and stores what comes out of it.
  bool ExecProcFormat(const QString& name, const QList<ProcParam>& params) {
    return RunProcByPosition(*Slot, name, params);
  }

 protected:
  Cursors Queries;                   ///< Open recordsets.
  std::shared_ptr<Connection> Slot;  ///< Settings and connection; never null.

 private:
  QSqlQuery* FindQuery(qint32 handle) const { return Queries.value(handle).get(); }
};

}  // namespace Corvane

#endif
