#ifndef QNCORVANE_DB_ROWFIELDS_H
#define QNCORVANE_DB_ROWFIELDS_H

#include <QByteArray>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QString>
#include <QVariant>
#include <array>
#include <cstddef>
#include <cstdint>

#include "base/Numbers.h"
#include "base/Text.h"
#include "base/TextPool.h"

namespace Corvane {

/// One row of a table that says which column of a result set fills which field of a record.
template <class Record>
struct RowField {
  const char* Column;
  void (*Read)(Record& record, const QVariant& value);
};

/// The ways in which a column's value gets into a field. NULL reads as 0,
/// false or the empty text; a text that is no number reads as 0.
template <class Record>
struct FromColumn {
  /// The text itself, kept for the life of the process: rows of results borrow it.
  template <auto Field>
  static void KeptText(Record& record, const QVariant& value) {
    // Some drivers make "0" of a NULL in a column of numbers.
    const QByteArray text = value.isNull() ? QByteArray() : value.toString().toUtf8();
    record.*Field = KeepText({text.constData(), static_cast<std::size_t>(text.size())});
  }
  template <auto Field>
  static void Double(Record& record, const QVariant& value) {
    record.*Field = value.toDouble();
  }
  template <auto Field>
  static void Integer(Record& record, const QVariant& value) {
    record.*Field = value.type() == QVariant::Double ? TruncToInt32(value.toDouble()) : value.toInt();
  }
  template <auto Field>
  static void Boolean(Record& record, const QVariant& value) {
    record.*Field = value.toBool();
  }
};

/// Reads a result set from its first row to its last: each row fills a new record, which goes to `take`. A column's
/// place is looked up once; a field whose column the result set doesn't have stays as a new record has it.
///
/// @param query a result set as `openRecordset` hands it over.
template <class Record, std::size_t Size, class Taker>
void ReadRows(QSqlQuery& query, const RowField<Record> (&fields)[Size], Taker take) {
  const QSqlRecord columns = query.record();
  std::array<int, Size> places{};
  for (std::size_t field = 0; field < Size; ++field)
    places[field] = columns.indexOf(QLatin1String(fields[field].Column));
  while (query.next()) {
    Record record;
    for (std::size_t field = 0; field < Size; ++field) {
      if (places[field] >= 0) fields[field].Read(record, query.value(places[field]));
    }
    take(record);
  }
}

}  // namespace Corvane

#endif
