#ifndef QNCORVANE_DB_ROWFIELDS_H
#define QNCORVANE_DB_ROWFIELDS_H

#include <QByteArray>
#include <QSqlQuery>
#include <QString>
#include <QVariant>
#include <cstddef>
#include <string_view>
#include <utility>
#include <vector>

#include "base/Text.h"
#include "base/TextPool.h"
#include "db/ColumnValue.h"
#include "db/QnPosDBPro.h"
#include "db/Recordset.h"

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

/// The entry of a table that fills from a column. @return the number of entries when there is none.
template <class Record, std::size_t Size>
constexpr std::size_t FieldOf(const RowField<Record> (&fields)[Size], std::string_view column) {
  std::size_t field = 0;
  while (field < Size && column != fields[field].Column) ++field;
  return field;
}

/// Reads rows from the first to the last: each fills a new record, which goes to `take` when all rows are there. A
/// field whose column the rows don't have stays as a new record has it.
///
/// @param fields constants, as the rows remember where their columns stand.
/// @param error in and out: when the rows break off, the reason is appended.
/// @param look  sees each row's query, and the place of each field's column.
/// @return false when the rows broke off; `take` has seen none of them then.
template <class Record, std::size_t Size, class Taker, class Looker>
bool ReadRows(QnPosDBPro& db, Recordset rows, const RowField<Record> (&fields)[Size], QString& error, Taker take,
              Looker look) {
  const std::vector<int>& places = rows.Places->Of(rows.Query, fields);
  const bool isPadded = db.PadsTexts();
  std::vector<Record> records;
  while (rows.Query.next()) {
    look(rows.Query, places);
    Record& record = records.emplace_back();
    for (std::size_t field = 0; field < Size; ++field) {
      if (places[field] >= 0) fields[field].Read(record, Unpadded(rows.Query.value(places[field]), isPadded));
    }
  }
  if (!db.EndedWell(rows.Query, error)) return false;
  for (Record& record : records) take(record);
  return true;
}
template <class Record, std::size_t Size, class Taker>
bool ReadRows(QnPosDBPro& db, Recordset rows, const RowField<Record> (&fields)[Size], QString& error, Taker take) {
  return ReadRows(db, std::move(rows), fields, error, take,
                  [](const QSqlQuery& /*query*/, const std::vector<int>& /*places*/) {});
}

}  // namespace Corvane

#endif
