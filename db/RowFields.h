#ifndef QNCORVANE_DB_ROWFIELDS_H
#define QNCORVANE_DB_ROWFIELDS_H

#include <QByteArray>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QString>
#include <QVariant>
#include <array>
#include <cstddef>
#include <vector>

#include "base/Text.h"
#include "base/TextPool.h"
#include "db/ColumnValue.h"
#include "db/QnPosDBPro.h"

namespace Corvane {

/// One row of a table that says which column of a result set fills which field of a record.
template <class Record>
struct RowField {
  const char* Column;
  void (*Read)(Record& record, const QVariant& value);
};

/// The ways in which a column's value gets into a field. NULL reads as 0, false or the empty text.
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
    record.*Field = ColumnDouble(value);
  }
  template <auto Field>
  static void Integer(Record& record, const QVariant& value) {
    record.*Field = ColumnInteger(value);
  }
  template <auto Field>
  static void Boolean(Record& record, const QVariant& value) {
    record.*Field = ColumnBoolean(value);
  }
};

/// The value as it is read: without the blanks that pad a text, where the kind of database pads texts.
inline QVariant Unpadded(const QVariant& value, bool isPadded) {
  if (!isPadded || value.type() != QVariant::String || value.isNull()) return value;
  const QString text = value.toString();
  int size = text.size();
  while (size > 0 && text.at(size - 1) == QLatin1Char(' ')) --size;
  return text.left(size);
}

/// Reads a result set from its first row to its last: each row fills a new record, which goes to `take` when all rows
/// are there. A column's place is looked up once; a field whose column the result set doesn't have stays as a new
/// record has it.
///
/// @param query a result set as `db.openRecordset` hands it over.
/// @param error in and out: when the rows break off, the reason is appended.
/// @param look  sees the result set on each row.
/// @return false when the rows broke off; `take` has seen none of them then.
template <class Record, std::size_t Size, class Taker, class Looker>
bool ReadRows(QnPosDBPro& db, QSqlQuery& query, const RowField<Record> (&fields)[Size], QString& error, Taker take,
              Looker look) {
  const QSqlRecord columns = query.record();
  std::array<int, Size> places{};
  for (std::size_t field = 0; field < Size; ++field)
    places[field] = columns.indexOf(QLatin1String(fields[field].Column));
  const bool isPadded = db.PadsTexts();
  std::vector<Record> records;
  while (query.next()) {
    look(query);
    Record& record = records.emplace_back();
    for (std::size_t field = 0; field < Size; ++field) {
      if (places[field] >= 0) fields[field].Read(record, Unpadded(query.value(places[field]), isPadded));
    }
  }
  if (!db.EndedWell(query, error)) return false;
  for (Record& record : records) take(record);
  return true;
}
template <class Record, std::size_t Size, class Taker>
bool ReadRows(QnPosDBPro& db, QSqlQuery& query, const RowField<Record> (&fields)[Size], QString& error, Taker take) {
  return ReadRows(db, query, fields, error, take, [](const QSqlQuery& /*query*/) {});
}

}  // namespace Corvane

#endif
