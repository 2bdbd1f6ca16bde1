#ifndef QNCORVANE_DB_RECORDSET_H
#define QNCORVANE_DB_RECORDSET_H

#include <QSqlQuery>
#include <QSqlRecord>
#include <QString>
#include <cstddef>
#include <memory>
#include <vector>

namespace Corvane {

/// Where the columns of a statement stand: looked up once, for it has the same ones whenever it runs.
class ColumnPlaces {
 public:
  /// @param query  a result set of the statement.
  /// @param fields what is read of it: a table that outlives the statement, whose entries tell their `Column`.
  /// @return the place of each field's column, -1 for one that the statement doesn't have.
  template <class Field, std::size_t Size>
  const std::vector<int>& Of(const QSqlQuery& query, const Field (&fields)[Size]) {
    if (m_fields == fields) return m_places;
    m_fields = nullptr;
    m_places.clear();
    const QSqlRecord columns = query.record();
    for (const Field& field : fields) m_places.push_back(columns.indexOf(QLatin1String(field.Column)));
    m_fields = fields;
    return m_places;
  }

 private:
  const void* m_fields = nullptr;  ///< whose columns were looked up
  std::vector<int> m_places;
};

/// The rows that a SELECT brings, standing before the first of them. A copy is the same set of rows.
struct Recordset {
  QSqlQuery Query;
  std::shared_ptr<ColumnPlaces> Places = std::make_shared<ColumnPlaces>();
};

}  // namespace Corvane

#endif
