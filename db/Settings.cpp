#include "db/Settings.h"

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

}  // namespace

DatabaseSettings ReadSettings() {
  DatabaseSettings read;
  QSettings settings(QStringLiteral("config.ini"), QSettings::IniFormat);
  settings.setIniCodec("UTF-8");
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
  return read;
}

}  // namespace Corvane
