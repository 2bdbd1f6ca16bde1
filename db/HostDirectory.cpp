#include "db/HostDirectory.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>

namespace Corvane {

QString HostDirectory() {
  if (QCoreApplication::instance()) return QCoreApplication::applicationDirPath();
  return QFileInfo(QFileInfo(QStringLiteral("/proc/self/exe")).symLinkTarget()).path();
}

QString InHostDirectory(const QString& name) { return QStringLiteral("%1/%2").arg(HostDirectory(), name); }

QString InFolder(const QString& folder, const QString& name) {
  return QDir::isAbsolutePath(name) ? name : folder + QLatin1Char('/') + name;
}

}  // namespace Corvane
