#ifndef QNCORVANE_DB_SETTINGS_H
#define QNCORVANE_DB_SETTINGS_H

#include <QString>
#include <QtGlobal>

namespace Corvane {

/// The group "DataBase" of "config.ini". A key that is absent is empty or zero, the two timeouts excepted.
struct DatabaseSettings {
  /// Seconds that a silent server or a locked file is waited for.
  static constexpr qint32 DefaultTimeout = 3;

  QString DbType;
  QString ServiceName;
  QString DBName;
  QString UserName;
  QString Password;  ///< in plain
  qint32 Port = 0;
  qint32 ConnectTimeout = DefaultTimeout;  ///< seconds for opening; 0 for as long as it takes
  qint32 ReadTimeout = DefaultTimeout;     ///< seconds for one statement; 0 for as long as it takes
};

/// Reads "config.ini" in a folder; an empty one is the current directory. A timeout that is no whole number of seconds, 0 included, is the
/// default. The file's one other group, "Log", is for the log, which is told at once: `Flush`, "call" or "entry"
/// (log/LogFlush.h), in any letter case; anything else is "entry".
DatabaseSettings ReadSettings(const QString& folder = {});

}  // namespace Corvane

#endif
