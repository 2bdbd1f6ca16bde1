#include "db/DriverFile.h"

#include <QCoreApplication>
#include <QDir>
#include <QJsonArray>
#include <QJsonObject>
#include <QJsonValue>
#include <QPluginLoader>
#include <QSqlDriver>
#include <QSqlDriverPlugin>

namespace Corvane {
namespace {

bool Serves(const QPluginLoader& file, const QString& driver) {
  const QJsonObject about = file.metaData().value(QLatin1String("MetaData")).toObject();
  return about.value(QLatin1String("Keys")).toArray().contains(QJsonValue(driver));
}

}  // namespace

QSqlDriver* LoadDriverFile(const QString& driver) {
  for (const QString& folder : QCoreApplication::libraryPaths()) {
    const QDir drivers(folder + QStringLiteral("/sqldrivers"));
    for (const QString& name : drivers.entryList(QDir::Files)) {
      QPluginLoader file(drivers.filePath(name));
      if (!Serves(file, driver)) continue;
      auto* plugin = qobject_cast<QSqlDriverPlugin*>(file.instance());
      if (plugin != nullptr) return plugin->create(driver);
    }
  }
  return nullptr;
}

}  // namespace Corvane
