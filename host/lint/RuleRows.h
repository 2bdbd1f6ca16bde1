#ifndef QNCORVANE_HOST_LINT_RULEROWS_H
#define QNCORVANE_HOST_LINT_RULEROWS_H

#include <QString>
#include <QVariant>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "db/QnPosDBPro.h"
#include "host/StoreTables.h"
#include "host/lint/Flaws.h"

namespace Corvane::Host::Lint {

/// A row of a table, as the database hands it out.
class Row {
 public:
  Row(const StoreTable& table, std::vector<QVariant> values) : m_table(&table), m_values(std::move(values)) {}

  const StoreTable& Table() const { return *m_table; }
  QVariant Value(const char* column) const;
  /// As the engine reads them: a missing value is empty, or 0.
  std::string Text(const char* column) const;
  double Number(const char* column) const;
  bool Boolean(const char* column) const;

  /// Its table and key, for the rule that it belongs to.
  Place Where() const;

 private:
  const StoreTable* m_table;
  std::vector<QVariant> m_values;  ///< in the order of the table's columns
};

using Rows = std::vector<Row>;

/// Reads the rules' rows from a store's database.
class RowReader {
 public:
  /// @param folder the store's.
  explicit RowReader(const QString& folder) : m_db(folder), m_call(m_db.Shared()) {}
  RowReader(const RowReader&) = delete;
  RowReader& operator=(const RowReader&) = delete;
  ~RowReader();

  bool Open();

  /// The numbers of the rules that have rows in a table; nothing where it can't be read.
  std::optional<std::set<std::string>> Numbers(const StoreTable& table);

  /// The rows of a rule, in the order in which the engine gets them; none where they can't be read.
  Rows Read(const StoreTable& table, const std::string& billNo);

  /// Whether the kind of database tells its indexes here, and none of the table's begins with the rule's number.
  bool LacksIndex(const StoreTable& table);

 private:
  bool Ask(const QString& sql, QSqlQuery& query);

  QnPosDBPro m_db;
  DatabaseCall m_call;
};

}  // namespace Corvane::Host::Lint

#endif
