#include "db/Settings.h"

#include <QFile>
#include <QSettings>
#include <QStringList>
#include <QVariant>

#include "db/ProcessEnd.h"
#include "log/LogFlush.h"

namespace Corvane {
namespace {

/// The longest timeout, in seconds: drivers count it in milliseconds in 32 bits.
constexpr qint32 kLongestTimeout = 2147483;

/// A setting as text. The INI reader takes an unquoted comma for a list; here it is part of the password or path.
QString TextSetting(const QSettings& settings, const char* key) {
  const QVariant value = settings.value(QLatin1String(key));
  if (value.type() == QVariant::StringList) return value.toStringList().join(QLatin1Char(','));
  return value.toString();
}

qint32 TimeoutSetting(const QSettings& settings, const char* key) {
  bool isNumber = false;
  const qint32 seconds = TextSetting(settings, key).trimmed().toInt(&isNumber);
  return isNumber && seconds >= 0 && seconds <= kLongestTimeout ? seconds : DatabaseSettings::DefaultTimeout;
}

LogFlush FlushSetting(const QSettings& settings) {
  const bool isCall = TextSetting(settings, "Log/Flush").compare(QLatin1String("call"), Qt::CaseInsensitive) == 0;
  return isCall ? LogFlush::Call : LogFlush::Entry;
}

/// Qt keeps what it has read of a file until its size or time changes: also nothing, when the disk failed at it or memory
/// was short. So a file that had no kind is read under another name of it the next time.
///
/// @param folder  empty for the current directory.
/// @param attempt counts the reads that came to no kind. Names come again after so many that Qt keeps none of them, which
///                are fewer than Linux follows links for.
QString NameFor(const QString& folder, unsigned attempt) {
  constexpr unsigned kNames = 16;
  const QString file = QStringLiteral("config.ini");
  const QString inFolder = folder + QLatin1Char('/') + file;
  QString name = folder.isEmpty() ? file : inFolder;
  if (attempt % kNames == 0) return name;
  const QString otherName =
      QStringLiteral("/proc/self/root").repeated(static_cast<int>(attempt % kNames) - 1) +
      (folder.isEmpty() ? QStringLiteral("/proc/self/cwd/") + file : QStringLiteral("/proc/self/root") + inFolder);
  return QFile::exists(otherName) ? otherName : name;
}

}  // namespace

DatabaseSettings ReadSettings(const QString& folder) {
  static unsigned attempt = 0;
  DatabaseSettings read;
  QSettings settings(NameFor(folder, attempt++), QSettings::IniFormat);
  settings.setIniCodec("UTF-8");
  // Asked for single keys, Qt reads a group when it thinks that it holds the key: not "Log", while a "Log/Archive" that
  // would stand between the two in the alphabet is unread. Asked for all, it reads all groups.
  settings.allKeys();
  read.DbType = TextSetting(settings, "DataBase/DbType");
  read.ServiceName = TextSetting(settings, "DataBase/ServiceName");
  read.DBName = TextSetting(settings, "DataBase/DBName");
  read.UserName = TextSetting(settings, "DataBase/UserName");
  read.Password = TextSetting(settings, "DataBase/Password");
  read.Port = settings.value(QStringLiteral("DataBase/Port")).toInt();
  read.ConnectTimeout = TimeoutSetting(settings, "DataBase/ConnectTimeout");
  read.ReadTimeout = TimeoutSetting(settings, "DataBase/ReadTimeout");
  SetLogFlush(FlushSetting(settings));
  ProcessEnd::AfterSettings();
  if (!read.DbType.isEmpty()) --attempt;
  return read;
}

}  // namespace Corvane
