#ifndef QNCORVANE_DB_ROWREADER_H
#define QNCORVANE_DB_ROWREADER_H

#include <QSqlQuery>
#include <QSqlRecord>
#include <QString>
#include <QVariant>
#include <cstdint>

#include "base/Numbers.h"
#include "base/Text.h"
#include "base/TextPool.h"

namespace Corvane {

/// Reads the rows of a result set from the first to the last. A column's place is looked up once per result set. NULL
/// and a column that the result set doesn't have read as 0, false or the empty text; so does a text that is no number.
class RowReader {
 public:
  /// A column of the result set, by its place.
  using Column = int;

  /// @param query a result set as `openRecordset` hands it over; must outlive the reader.
  explicit RowReader(QSqlQuery& query) : m_query(query), m_record(query.record()) {}

  Column Place(const char* name) const { return m_record.indexOf(QLatin1String(name)); }

  /// Goes to the next row. @return false behind the last one.
  bool Next() { return m_query.next(); }

  double Double(Column column) const { return Value(column).toDouble(); }

  std::int32_t Integer(Column column) const {
    const QVariant value = Value(column);
    return value.type() == QVariant::Double ? TruncToInt32(value.toDouble()) : value.toInt();
  }

  bool Boolean(Column column) const { return Value(column).toBool(); }

  /// Kept for the life of the process: rows of results borrow it.
  Text KeptText(Column column) const {
    const QByteArray text = Value(column).toString().toUtf8();
    return KeepText({text.constData(), static_cast<std::size_t>(text.size())});
  }

 private:
  QVariant Value(Column column) const { return column < 0 ? QVariant() : m_query.value(column); }

  QSqlQuery& m_query;
  const QSqlRecord m_record;
};

}  // namespace Corvane

#endif
