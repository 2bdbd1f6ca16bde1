#ifndef QNCORVANE_DB_SQLITEM_H
#define QNCORVANE_DB_SQLITEM_H

#include <QByteArray>
#include <QDateTime>
#include <QString>
#include <QVariant>
#include <QtGlobal>
#include <type_traits>

namespace Corvane {

/// One column and its value, for `QnPosDBPro::InsertRecord` and `UpdateRecord`:
///
///     db.InsertRecord("tLog", {{"BillNo", "P1"}, {"Lines", 3}, {"Money", 9.9}});
///
/// The value's C++ type decides how it is bound; a type that is none of the five does not compile.
class SqlItem {
 public:
  SqlItem(const QString& column, qint32 value) : m_column(column), m_value(value) {}
  SqlItem(const QString& column, double value) : m_column(column), m_value(value) {}
  /// @param value zero-terminated UTF-8, copied; a null pointer is the empty text.
  SqlItem(const QString& column, const char* value) : m_column(column), m_value(QString::fromUtf8(value)) {}
  SqlItem(const QString& column, const QString& value) : m_column(column), m_value(value) {}
  SqlItem(const QString& column, const QByteArray& value) : m_column(column), m_value(value) {}
  SqlItem(const QString& column, const QDateTime& value) : m_column(column), m_value(value) {}

  /// Other numbers would be narrowed or widened without a word.
  template <typename Number, typename = std::enable_if_t<std::is_arithmetic_v<Number>>>
  SqlItem(const QString& column, Number value) = delete;

  const QString& Column() const { return m_column; }
  const QVariant& Value() const { return m_value; }

 private:
  QString m_column;
  QVariant m_value;
};

}  // namespace Corvane

#endif
