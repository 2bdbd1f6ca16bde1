// The settings file.
//
// An input is the file. What it says is read; a database that it names is opened where that is a file, and that file
// inside the target's own folder: no input makes the target write elsewhere or talk to a server. The input is read as a
// connection file, too, which names the database of the kind "ACCESS".
#include <unistd.h>

#include <QString>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>

#include "db/Connection.h"
#include "db/ConnectionFile.h"
#include "db/Kind.h"
#include "db/Settings.h"
#include "log/LogFlush.h"
#include "tests/fuzz/Check.h"
#include "tests/fuzz/Shop.h"
#include "tests/fuzz/Target.h"

namespace {

using namespace Corvane;
using namespace Corvane::Fuzz;

namespace fs = std::filesystem;

/// The reader keeps what it has read of a file of some name and time, so each input gets a folder of its own.
class OwnFolder {
 public:
  explicit OwnFolder(const std::string& settings) {
    static long number = 0;
    m_path = EnterFolder() + "/" + std::to_string(++number);
    fs::create_directory(m_path);
    fs::current_path(m_path);
    std::ofstream("config.ini", std::ios::binary) << settings;
  }
  OwnFolder(const OwnFolder&) = delete;
  OwnFolder& operator=(const OwnFolder&) = delete;
  ~OwnFolder() {
    fs::current_path(EnterFolder());
    fs::remove_all(m_path);
  }

 private:
  std::string m_path;
};

bool IsSame(const DatabaseSettings& one, const DatabaseSettings& other) {
  return one.DbType == other.DbType && one.ServiceName == other.ServiceName && one.DBName == other.DBName &&
         one.UserName == other.UserName && one.Password == other.Password && one.Port == other.Port &&
         one.ConnectTimeout == other.ConnectTimeout && one.ReadTimeout == other.ReadTimeout;
}

void RequireTimeout(qint32 seconds) {
  // What is below 0 or beyond what drivers count in milliseconds is the default.
  Require(seconds >= 0 && seconds <= 2147483, "a timeout is one that a driver can count");
}

/// As if the process ended: the connection would be kept until then.
void LetGo(Connection& connection) {
  if (!connection.Db) return;
  connection.Db->close();
  *connection.Db = QSqlDatabase();
  QSqlDatabase::removeDatabase(connection.ConnName);
}

/// A name in the current directory.
QString Inside(QString name) {
  for (const char* sign : {"/", "\\", ":"}) name.replace(QLatin1String(sign), QLatin1String("_"));
  return QLatin1String("./") + name.left(40);
}

void OpenFile(const DatabaseSettings& settings) {
  Connection connection;
  connection.Settings.DBName = Inside(settings.DBName);
  QString error;
  if (connection.EnsureOpen(error)) {
    Require(connection.IsUsable(), "what is open can be used");
  } else {
    Require(!error.isEmpty(), "a database that doesn't open says why");
  }
  LetGo(connection);
}

void ReadAsConnectionFile() {
  QString database = QStringLiteral("before");
  QString error;
  const bool isRead = ReadConnectionFile(QStringLiteral("config.ini"), database, error);
  Require(isRead == error.isEmpty(), "a file that names no database is told");
  Require(isRead || database == QLatin1String("before"), "a file that names no database leaves the name alone");
}

}  // namespace

void Corvane::Fuzz::Prepare() {}

void Corvane::Fuzz::Try(Bytes input) {
  const OwnFolder folder(input.Rest());
  const DatabaseSettings settings = ReadSettings();
  const LogFlush flush = CurrentLogFlush();
  RequireTimeout(settings.ConnectTimeout);
  RequireTimeout(settings.ReadTimeout);
  Require(flush == LogFlush::Entry || flush == LogFlush::Call, "the log is written in one of two ways");
  Require(IsSame(settings, ReadSettings()) && flush == CurrentLogFlush(), "the same file says the same again");
  const QString kind = settings.DbType.toUpper();
  if (kind == Kind::kSqlite || DriverOf(kind).isEmpty()) OpenFile(settings);
  ReadAsConnectionFile();
}
