#ifndef QNCORVANE_TESTS_UNIT_DBSTORE_H
#define QNCORVANE_TESTS_UNIT_DBSTORE_H

#include <gtest/gtest.h>

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QString>
#include <QTemporaryDir>
#include <memory>
#include <string>

#include "db/Connection.h"
#include "db/QnPosDBPro.h"

namespace dbtest {

/** Texts are compared as UTF-8, so that a failed comparison shows them. */
inline std::string Utf8(const QString& text) { return text.toStdString(); }

/** A store's directory: the current one for the life of this object, empty at first. */
class Store {
 public:
  Store() : m_before(QDir::currentPath()) { QDir::setCurrent(m_directory.path()); }
  ~Store() { QDir::setCurrent(m_before); }
  Store(const Store&) = delete;
  Store& operator=(const Store&) = delete;

  QString Path(const QString& name) const { return m_directory.filePath(name); }

  static void Write(const QString& name, const QByteArray& content) {
    QFile file(name);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    ASSERT_EQ(file.write(content), content.size());
  }

  /** Writes "config.ini" with these lines in its group. */
  static void Configure(const QByteArray& lines) { Write(QStringLiteral("config.ini"), "[DataBase]\n" + lines); }

 private:
  QTemporaryDir m_directory;
  QString m_before;
};

/** `QnPosDBPro` with its fields in sight; those that copies share are the same in a copy. */
class OpenFields : public Corvane::QnPosDBPro {
 public:
  using QnPosDBPro::Queries;
  using QnPosDBPro::Slot;

  Corvane::DatabaseSettings& Settings = Slot->Settings;
  std::shared_ptr<QSqlDatabase>& Db = Slot->Db;
  QString& ConnName = Slot->ConnName;
  QString& DbTypeUpper = Slot->DbTypeUpper;
  QString& OpenName = Slot->OpenName;
  qint32& OpenFailed = Slot->OpenFailed;
};

}  // namespace dbtest

#endif
