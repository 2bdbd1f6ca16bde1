#ifndef QNCORVANE_TESTS_DB_SERVERSTORE_H
#define QNCORVANE_TESTS_DB_SERVERSTORE_H

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QSqlQuery>
#include <QString>
#include <QTemporaryDir>
#include <memory>
#include <string>

#include "db/QnPosDBPro.h"
#include "db/Recordset.h"

namespace dbtest {

/** Texts are compared as UTF-8, so that a failed comparison shows them. */
inline std::string Utf8(const QString& text) { return text.toStdString(); }

inline QString U(const char* text) { return QString::fromUtf8(text); }

/** A directory with a "config.ini" as the current one, and the database that this names, open. */
class ServerStore : public testing::Test {
 protected:
  ServerStore() : m_before(QDir::currentPath()) { QDir::setCurrent(m_directory.path()); }
  ~ServerStore() override { QDir::setCurrent(m_before); }

  static void Configure(const QByteArray& lines) {
    QFile file(QStringLiteral("config.ini"));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    ASSERT_GT(file.write("[DataBase]\n" + lines), 0);
  }

  /** What the script that runs these tests hands over; a test can't run without it. */
  static QByteArray FromScript(const char* name) {
    const QByteArray value = qgetenv(name);
    EXPECT_FALSE(value.isEmpty()) << name << " is not set: run tests/db/run.sh";
    return value;
  }

  void Open() {
    m_db = std::make_unique<Corvane::QnPosDBPro>();
    ASSERT_TRUE(m_db->EnsureOpen(m_error)) << Utf8(m_error);
  }

  bool Run(const char* sql) { return m_db->excuteSQL(U(sql), m_error); }
  bool Ask(const char* sql) { return m_db->openRecordset(U(sql), m_query, m_error); }
  /** What the last question brought. */
  Corvane::Recordset Rows() const { return {m_query}; }
  /** The first column of the first row as text; "(none)" without one. */
  std::string Answer(const char* sql) {
    if (!Ask(sql)) return "failed: " + Utf8(m_error);
    return m_query.next() ? Utf8(m_query.value(0).toString()) : "(none)";
  }

  std::unique_ptr<Corvane::QnPosDBPro> m_db;
  QString m_error;
  QSqlQuery m_query;

 private:
  QTemporaryDir m_directory;
  QString m_before;
};

}  // namespace dbtest

#endif
