#include "host/lint/RuleRows.h"

#include <QSqlQuery>
#include <QStringList>
#include <algorithm>
#include <string_view>
#include <utility>

#include "db/ColumnValue.h"
#include "db/Guarded.h"
#include "db/Kind.h"
#include "db/RowFields.h"
#include "db/SqlText.h"

namespace Corvane::Host::Lint {

namespace {

/// @return where a name stands in a list with commas; the number of names when it doesn't.
std::size_t PlaceIn(std::string_view list, std::string_view name) {
  std::size_t place = 0;
  for (std::size_t begin = 0; begin <= list.size(); ++place) {
    const std::size_t end = std::min(list.find(',', begin), list.size());
    if (list.substr(begin, end - begin) == name) break;
    begin = end + 1;
  }
  return place;
}

}  // namespace

QVariant Row::Value(const char* column) const {
  const std::size_t place = PlaceIn(m_table->Columns, column);
  return place < m_values.size() ? m_values[place] : QVariant();
}

std::string Row::Text(const char* column) const {
  const QVariant& value = Value(column);
  return value.isNull() ? std::string() : value.toString().toStdString();
}

double Row::Number(const char* column) const { return ColumnDouble(Value(column)); }

bool Row::Boolean(const char* column) const { return ColumnBoolean(Value(column)); }

Place Row::Where() const {
  Place place;
  place.Table = m_table->Name;
  place.BillNo = Text("BillNo");
  for (const QString& column : QString::fromLatin1(m_table->Key).split(QLatin1Char(','))) {
    const std::string name = column.toStdString();
    place.Key += (place.Key.empty() ? "" : " ") + name + "=" + Text(name.c_str());
  }
  return place;
}

RowReader::~RowReader() {
  Guarded([&] {
    m_db.Shared().End();
    return true;
  });
}

bool RowReader::Open() {
  QString reason;
  return m_db.EnsureOpen(reason);
}

bool RowReader::Ask(const QString& sql, QSqlQuery& query) {
  QString error;
  return m_db.openRecordset(sql, query, error);
}

std::optional<std::set<std::string>> RowReader::Numbers(const StoreTable& table) {
  QSqlQuery query;
  if (!Ask(QStringLiteral("select distinct BillNo from %1").arg(QLatin1String(table.Name)), query)) {
    return std::nullopt;
  }
  std::set<std::string> numbers;
  while (query.next()) {
    const QVariant number = Unpadded(query.value(0), m_db.PadsTexts());
    numbers.insert(number.isNull() ? std::string() : number.toString().toStdString());
  }
  QString reason;
  if (!m_db.EndedWell(query, reason)) return std::nullopt;
  return numbers;
}

Rows RowReader::Read(const StoreTable& table, const std::string& billNo) {
  Rows rows;
  const QString value = SqlText(m_db.Dialect(), Quoted{billNo.c_str()}).ToString();
  QSqlQuery query;
  const QString sql =
      QStringLiteral("select %1 from %2 where BillNo=").arg(QLatin1String(table.Columns), QLatin1String(table.Name)) +
      value;
  if (!Ask(sql, query)) return rows;
  const int columns = QString::fromLatin1(table.Columns).count(QLatin1Char(',')) + 1;
  while (query.next()) {
    std::vector<QVariant> values;
    values.reserve(static_cast<std::size_t>(columns));
    for (int column = 0; column < columns; ++column) {
      values.push_back(Unpadded(query.value(column), m_db.PadsTexts()));
    }
    rows.emplace_back(table, std::move(values));
  }
  QString reason;
  return m_db.EndedWell(query, reason) ? rows : Rows();
}

bool RowReader::LacksIndex(const StoreTable& table) {
  if (m_db.Shared().DbTypeUpper != Kind::kSqlite) return false;
  const QLatin1String name(table.Name);
  QSqlQuery query;
  const QString kind = QStringLiteral("select 1 from sqlite_master where type='table' and lower(name)=lower('%1')");
  if (!Ask(kind.arg(name), query) || !query.next()) return false;
  const QString leading = QStringLiteral(
      "select c.name from pragma_index_list('%1') i, pragma_index_info(i.name) c where c.seqno=0 and "
      "lower(c.name)='billno'");
  return Ask(leading.arg(name), query) && !query.next();
}

}  // namespace Corvane::Host::Lint
