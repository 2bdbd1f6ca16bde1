#include "db/Connection.h"

#include <unistd.h>

#include <QCoreApplication>
#include <QSqlDriver>
#include <QVariant>
#include <chrono>
#include <utility>

#include "base/NeverDestroyed.h"
#include "db/ConnectionFile.h"
#include "db/DriverFile.h"
#include "db/HostDirectory.h"
#include "db/Kind.h"
#include "db/OdbcTimeout.h"
#include "db/ProcessEnd.h"

namespace Corvane {
namespace {

QString Translated(const char* text) { return QCoreApplication::translate("Corvane::QnPosDBPro", text); }

QString NotOpened() { return Translated("数据库打开失败！"); }

/// A bare file name is a file in the host's directory; anything with a separator or a drive is a path of its own.
QString FilePath(const QString& name) {
  const bool bare =
      !name.contains(QLatin1Char(':')) && !name.contains(QLatin1Char('/')) && !name.contains(QLatin1Char('\\'));
  return bare ? InHostDirectory(name) : name;
}

/// A value that no statement has: none holds a zero byte.
const std::string kUnbound(1, '\0');

/// A new connection in Qt's list. Qt looks for its drivers once, and when want of memory broke that off, it never comes to
/// it again: the driver's file is loaded without it then.
QSqlDatabase NewDatabase(const QString& driver, const QString& name) {
  try {
    return QSqlDatabase::addDatabase(driver, name);
  } catch (...) {
    QSqlDriver* const loaded = LoadDriverFile(driver);
    if (loaded == nullptr) throw;
    return QSqlDatabase::addDatabase(loaded, name);
  }
}

}  // namespace

Connection::Connection(const QString& folder) : m_folder(folder) {
  if (!ProcessEnd::HasCome()) Settings = ReadSettings(folder);
}

bool Connection::HasDriver() const { return !ProcessEnd::HasCome() && Db && !IsInherited() && Db->isValid(); }

bool Connection::IsOpen() const { return HasDriver() && Db->isOpen(); }

bool Connection::IsInherited() const { return Db != nullptr && m_maker != getpid(); }

bool Connection::IsUsable() const { return !Use.IsOver() && IsOpen(); }

bool Connection::IsUsable(QString& error) const {
  if (IsUsable()) return true;
  error += QLatin1String(" DataBase is not opened!");
  return false;
}

// --- Opening --------------------------------------------------------------------------------------------------------

bool Connection::EnsureOpen(QString& error) {
  if (ProcessEnd::HasCome()) {
    error += QStringLiteral("进程正在结束，数据库已关闭");
    return false;
  }
  return Guarded(error, [&] {
    QString reason = Use.Reason();
    if (!Use.IsOver() && MakeOpen(reason)) {
      OpenFailed = 0;
      return true;
    }
    OpenFailed = 1;
    Use.NoteFailedOpen(reason);
    error = Settings.DbType.isEmpty() ? reason : error + reason;
    return false;
  });
}

bool Connection::MakeOpen(QString& reason) {
  if (IsInherited()) LeaveToItsProcess();
  if (!HasDriverOrHope()) TryDriverAgain();
  if (Settings.DbType.isEmpty()) {
    reason = Translated("未设置数据库类型");
    return false;
  }
  if (DbTypeUpper.isEmpty()) SetKind(Settings.DbType);
  if (m_isSilent) {
    Close();
    m_isSilent = false;
  }
  if (Use.IsFirstUse() && IsOpen() && m_file.IsOutdated()) {
    Close();
    // Under the name that it had: the host may have gone to another directory since.
    Db->setDatabaseName(m_file.Path());
    if (OpenNamed(reason)) return true;
    reason += NotOpened();
    return false;
  }
  if (IsOpen() && !WasLost(reason)) return true;
  // A server that was waited for in vain is not asked for a connection, too.
  if (Use.IsOver()) return false;
  reason.clear();
  const DatabaseSettings& s = Settings;
  if (Open(s.ServiceName, s.DBName, reason, s.UserName, s.Password, s.Port)) return true;
  reason += NotOpened();
  return false;
}

/// Whether nothing is missing, as far as was tried.
bool Connection::HasDriverOrHope() const {
  return !Settings.DbType.isEmpty() && (DbTypeUpper.isEmpty() || HasDriver());
}

/// Settings or driver were not to be had: the file came later, or there was no descriptor left to read them with.
void Connection::TryDriverAgain() {
  Settings = ReadSettings(m_folder);
  if (Settings.DbType.isEmpty() || DbTypeUpper.isEmpty() || HasDriver()) return;
  if (!Db || Settings.DbType.toUpper() != DbTypeUpper) {
    SetKind(Settings.DbType);
    return;
  }
  QSqlDriver* const driver = LoadDriverFile(DriverOf(DbTypeUpper));
  if (driver == nullptr) return;
  *Db = QSqlDatabase();
  QSqlDatabase::removeDatabase(ConnName);
  *Db = QSqlDatabase::addDatabase(driver, ConnName);
}

void Connection::Close() {
  LetGo();
  Db->close();
}

void Connection::End() {
  if (!HasDriver()) return;
  Close();
  ProcessEnd::Forget(Db);
  *Db = QSqlDatabase();  // Qt complains of a connection that somebody holds when it is taken out
  QSqlDatabase::removeDatabase(ConnName);
  Db = nullptr;
  DbTypeUpper.clear();
}

/// Lets go of what belongs to the connection as it was opened.
void Connection::LetGo() {
  m_kept.clear();
  m_isReading = false;
}

/// Tries an open connection that there is reason to doubt; closes it when it gives no answer.
bool Connection::WasLost(QString& reason) {
  if (!m_health.NeedsTrial()) return false;
  QSqlQuery trial(*Db);
  if (Exec(trial, TrialStatement(DbTypeUpper))) return false;
  reason = Use.Reason();
  trial.clear();
  Close();
  m_isSilent = false;
  return true;
}

/// This process was forked from the one that made the connection. To close it, or to end a statement on it, would be told
/// to the server, whose other end is that process; so both stay as they are, until this process is gone.
void Connection::LeaveToItsProcess() {
  static NeverDestroyed<std::vector<QHash<QString, KeptStatement>>> statements;
  statements->push_back(m_kept);
  m_kept = {};
  Db = nullptr;  // ProcessEnd holds it, too
  SetKind(DbTypeUpper);
}

/// A file that the settings name.
QString Connection::FileIn(const QString& name) const {
  return m_folder.isEmpty() ? FilePath(name) : InFolder(m_folder, name);
}

/// The two faces of the engine may be in one process: neither takes the other's names.
QString Connection::FirstFreeName() const {
  const bool isHosts = !m_folder.isEmpty();
  const QString pattern = isHosts ? QStringLiteral("QnCorvaneHost%1") : QStringLiteral("MyDBProcessConn%1");
  // The safe face has connections on several threads, and Qt shows none of another thread's but in its list.
  const auto isTaken = [&](const QString& name) {
    return isHosts ? QSqlDatabase::contains(name) : QSqlDatabase::database(name, false).isValid();
  };
  int number = 0;
  while (isTaken(pattern.arg(number))) ++number;
  return pattern.arg(number);
}

void Connection::SetKind(const QString& type) {
  DbTypeUpper = type.toUpper();
  const QString driver = DriverOf(DbTypeUpper);
  if (driver.isEmpty() || ProcessEnd::HasCome()) return;
  LetGo();
  ConnName = FirstFreeName();
  Db = std::make_shared<QSqlDatabase>(NewDatabase(driver, ConnName));
  m_maker = getpid();
  m_health = ConnectionHealth(IsRemote(DbTypeUpper));
  m_file.Forget();
  m_isSilent = false;
  ProcessEnd::AfterConnection(Db);
}

bool Connection::Open(const QString& server, const QString& database, QString& error, const QString& user,
                      const QString& password, qint32 port) {
  return Guarded(error, [&] {
    OpenName = database;
    if (!Db || ProcessEnd::HasCome()) return false;
    if (IsInherited()) LeaveToItsProcess();
    return OpenByKind(server, database, error, user, password, port);
  });
}

bool Connection::OpenByKind(const QString& server, const QString& database, QString& error, const QString& user,
                            const QString& password, qint32 port) {
  if (DbTypeUpper == Kind::kSqlite) {
    Db->setDatabaseName(FileIn(database.trimmed()));
  } else if (DbTypeUpper == Kind::kMySql) {
    NameMySql(server, database, user, password);
  } else if (DbTypeUpper == Kind::kSqlServer) {
    NameSqlServer(server, database, user, password, port);
  } else if (DbTypeUpper == Kind::kOracle) {
    NameOracle(server, database, user, password, port);
  } else if (DbTypeUpper != Kind::kAccess || !NameAccess(server, database, error, user, password)) {
    return false;
  }
  return OpenNamed(error);
}

void Connection::NameMySql(const QString& server, const QString& database, const QString& user,
                           const QString& password) {
  Db->setHostName(server.isEmpty() ? QStringLiteral("localhost") : server);
  Db->setDatabaseName(database);
  Db->setUserName(user.isEmpty() ? QStringLiteral("root") : user);
  Db->setPassword(password);
  // Wanted before the open, though a closed connection makes nothing of it; and the port is not applied here.
  QSqlQuery(*Db).exec(QStringLiteral("SET NAMES 'utf8'"));
}

void Connection::NameSqlServer(const QString& server, const QString& database, const QString& user,
                               const QString& password, qint32 port) {
  Db->setDatabaseName(QStringLiteral("DRIVER={SQL SERVER};SERVER=%1;DATABASE=%2").arg(server, database));
  Db->setUserName(user);
  Db->setPassword(password);
  Db->setPort(port == 0 ? 1433 : port);
}

void Connection::NameOracle(const QString& server, const QString& database, const QString& user,
                            const QString& password, qint32 port) {
  Db->setHostName(server);
  Db->setDatabaseName(database);
  Db->setUserName(user);
  Db->setPassword(password);
  Db->setPort(port == 0 ? 1521 : port);
}

bool Connection::NameAccess(const QString& server, const QString& database, QString& error, const QString& user,
                            const QString& password) {
  QString name = database;
  const QString file = m_folder.isEmpty() || server.isEmpty() ? server : InFolder(m_folder, server);
  if (!file.isEmpty() && !ReadConnectionFile(file, name, error)) return false;
  Db->setDatabaseName(QStringLiteral("DRIVER={Microsoft Access Driver (*.mdb,*.accdb)};DBQ=%1;UID=%2;PWD=%3")
                          .arg(FileIn(name), user.isEmpty() ? QStringLiteral("sa") : user, password));
  return true;
}

bool Connection::OpenNamed(QString& error) {
  LetGo();
  Db->setConnectOptions(DriverOptions());
  if (!Db->open()) {
    error += Db->lastError().text();
    return false;
  }
  ProcessEnd::AfterOpening();
  m_isSilent = false;
  if (DbTypeUpper == Kind::kSqlite) {
    m_file.Opened(Db->databaseName());
  } else if (Db->driverName() == QLatin1String("QODBC") && Settings.ReadTimeout > 0) {
    SetOdbcQueryTimeout(*Db, Settings.ReadTimeout);
  }
  m_health.Note(true);
  return DbTypeUpper != Kind::kMySql || TakeAllCharacters(error);
}

/// Qt's driver asks for MySQL's "utf8", which has no characters of four bytes. A server that knows no other stays at
/// it.
bool Connection::TakeAllCharacters(QString& error) {
  QSqlQuery names(*Db);
  Exec(names, QStringLiteral("SET NAMES 'utf8mb4'"));
  if (!Use.IsOver()) return true;
  error += names.lastError().text();
  return false;
}

/// The timeouts stand first: of an option that occurs twice the last one counts, so that the host's own holds.
QString Connection::DriverOptions() const {
  const QString timeouts = TimeoutOptions(DbTypeUpper, Settings.ConnectTimeout, Settings.ReadTimeout);
  return timeouts.isEmpty() || m_options.isEmpty() ? timeouts + m_options : timeouts + QLatin1Char(';') + m_options;
}

// --- Statements -----------------------------------------------------------------------------------------------------

bool Connection::Transact(bool (QSqlDatabase::*step)()) {
  return Guarded([&] { return HasDriver() && Db->driver()->hasFeature(QSqlDriver::Transactions) && ((*Db).*step)(); });
}

QDateTime Connection::ServerDate() {
  QDateTime date;
  QString ignored;
  const bool answered = Ask(ignored, [&](QSqlQuery& query) {
    if (!Exec(query, ServerDateStatement(DbTypeUpper)) || !query.next()) return false;
    date = query.value(QStringLiteral("date")).toDateTime();
    return true;
  });
  return answered ? date : QDateTime::currentDateTime();
}

bool Connection::Note(const QSqlQuery& query, bool succeeded) {
  if (!succeeded) {
    m_file.NoteFailure();
    const auto took = ConnectionHealth::Now() - m_started;
    const std::chrono::seconds timeout(Settings.ReadTimeout);
    const bool isSilent = Use.NoteFailedStatement(took, timeout, query.lastError().text() + NotOpened());
    m_isSilent = m_isSilent || (isSilent && IsRemote(DbTypeUpper));
  }
  return m_health.Note(succeeded);
}

QSqlQuery Connection::NewQuery() const {
  QSqlQuery query(*Db);
  // SQL Server sends one forward-only result at a time, and loaders ask the next question while reading the last.
  query.setForwardOnly(DbTypeUpper != Kind::kSqlServer);
  return query;
}

bool Connection::Select(const SqlText& sql, Recordset& rows) {
  const bool keeps = DialectOf(DbTypeUpper).KeepsStatements;
  const bool isFirst = keeps && BeginReading();
  if (!keeps || !sql.CanBeBound()) {
    rows = {NewQuery()};
    return Exec(rows.Query, sql.ToString());
  }
  // A table that is gone is missed when a statement is prepared, or only when it runs, where the connection has not heard
  // of it yet: the reasons differ, and support knows both. A statement from before would tell the one for the other.
  if (isFirst && m_file.WasWritten()) m_kept.clear();
  const QString pattern = sql.Pattern();
  const auto kept = m_kept.find(pattern);
  if (kept != m_kept.end()) {
    rows = kept->Rows;
    if (ExecWith(sql, *kept)) return true;
    m_kept.erase(kept);
    if (isFirst || Use.IsOver()) return false;
  }
  rows = {NewQuery()};
  if (!Prepare(rows.Query, pattern)) return false;
  KeptStatement statement{rows, {}};
  if (!ExecWith(sql, statement)) return false;
  Keep(pattern, statement);
  return true;
}

/// Bounded, for statements hold their values: a till that has once seen a sale of thousands of lines goes on for weeks.
void Connection::Keep(const QString& pattern, const KeptStatement& statement) {
  constexpr int kMostKept = 200;
  constexpr std::size_t kMostValues = 2000;
  if (statement.Values.size() > kMostValues) return;
  if (m_kept.size() >= kMostKept) m_kept.clear();
  m_kept.insert(pattern, statement);
}

/// Most values are as they were: rule after rule asks for the same lines.
bool Connection::ExecWith(const SqlText& sql, KeptStatement& statement) {
  // Short of memory in the middle, nothing is known of what is bound, and the next run binds all.
  std::vector<std::string> bound = std::move(statement.Values);
  bound.resize(sql.Values().size(), kUnbound);
  for (std::size_t place = 0; place < bound.size(); ++place) {
    const Text value = sql.Values()[place];
    if (bound[place] == value) continue;
    statement.Rows.Query.bindValue(static_cast<int>(place), SqlText::ValueOf(value));
    bound[place] = value;
  }
  statement.Values = std::move(bound);
  return ExecPrepared(statement.Rows.Query);
}

// --- Calls ----------------------------------------------------------------------------------------------------------

bool Connection::BeginCall() {
  if (!Use.Begin()) return false;
  EndReading();  // what an earlier call had no memory left to end
  return true;
}

void Connection::EndCall() noexcept {
  EndReading();
  Use.End();
}

/// @return whether nothing has been read from the transaction yet, or there is none.
bool Connection::BeginReading() {
  if (m_isReading) return false;
  m_isReading = Use.IsInCall() && Db->transaction();
  return true;
}

/// Nothing was written: a transaction that can't be committed is as well given up.
void Connection::EndReading() noexcept {
  Guarded([&] {
    if (!m_isReading || !IsOpen()) return true;
    // A statement that was broken off holds the file.
    for (KeptStatement& statement : m_kept) statement.Rows.Query.finish();
    m_isReading = !Db->commit() && !Db->rollback();
    return true;
  });
}

QString Asked(const char* operation, const QString& what) {
  return QStringLiteral("函数:") + QLatin1String(operation) + QStringLiteral("||执行:") + what + QLatin1String("||");
}

}  // namespace Corvane
