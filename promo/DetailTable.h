#ifndef QNCORVANE_PROMO_DETAILTABLE_H
#define QNCORVANE_PROMO_DETAILTABLE_H

#include <QSqlQuery>
#include <QString>
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <type_traits>
#include <vector>

#include "base/Text.h"
#include "db/QnPosDBPro.h"
#include "db/RowFields.h"
#include "db/SqlText.h"
#include "log/Log.h"
#include "sale/SaleRecords.h"

namespace Corvane {

/// What a failed statement puts in front of the database's own text.
constexpr Text kQueryFailed = "数据库查询失败";

/// What makes two rows the same, for a table whose rows are all kept.
struct AllDiffer {
  template <class Row>
  bool operator()(const Row& /*left*/, const Row& /*right*/) const {
    return false;
  }
};

/// What makes two rows the same, for a table that is asked line by line: the row's number.
struct SameSerialNo {
  bool operator()(const ProDetailKey& left, const ProDetailKey& right) const { return left.SerialNo == right.SerialNo; }
};

/// The detail tables of one rule in the store. A read appends to a list, in the order returned: a row with the head of
/// detail rows gets the rule's number and its place in the list, and one that is the same as a row held is dropped. A
/// read that fails appends nothing.
class DetailTables {
 public:
  /// All three are borrowed. @param error out: of a failure, what the database says and the words in front of it.
  DetailTables(QnPosDBPro& db, Text billNo, QString& error) : m_db(db), m_billNo(billNo), m_error(error) {}

  /// Makes sure that the store is open; before the first read.
  bool Open() { return m_db.EnsureOpen(m_error); }

  SqlDialect Dialect() const { return m_db.Dialect(); }

  /// Joins the pieces of a statement, in the dialect of the open store: words as literals, values as `Quoted`.
  template <class... Piece>
  SqlText Sql(const Piece&... pieces) const {
    return SqlText(Dialect(), pieces...);
  }

  /// A statement for the rule's rows. @param words literals that end in "BillNo=".
  template <class... Word>
  SqlText Select(const Word&... words) const {
    return Sql(words..., Quoted{m_billNo});
  }

  /// @param same    what makes two rows the same.
  /// @param failure what a failure puts in front of the database's text.
  template <class Row, std::size_t Size, class Same = AllDiffer>
  bool Read(const SqlText& sql, const RowField<Row> (&columns)[Size], std::vector<Row>& rows, Same same = {},
            Text failure = kQueryFailed) {
    if (Append(sql, columns, rows, same)) return true;
    m_error.prepend(QString::fromUtf8(failure));
    return false;
  }

  /// Read of a tier table. Its failure is told otherwise than that of the other tables: the database's text goes to the
  /// log as it stands, and nothing is put in front of it.
  template <class Row, std::size_t Size>
  bool ReadTiers(const SqlText& sql, const RowField<Row> (&columns)[Size], std::vector<Row>& rows) {
    if (Append(sql, columns, rows, AllDiffer())) return true;
    Log(m_error);
    return false;
  }

  /// Read for each line of a sale: the rows that name its goods, category or brand. The first failure ends it.
  ///
  /// @param more what the statement asks for beyond that.
  template <class Row, std::size_t Size, class Same>
  bool ReadOfLines(const std::vector<SalePlu>& lines, const SqlText& select, const RowField<Row> (&columns)[Size],
                   std::vector<Row>& rows, Same same, const SqlText& more = SqlText({})) {
    return std::all_of(lines.begin(), lines.end(), [&](const SalePlu& line) {
      return Read(Sql(select, NamingLine(line), more), columns, rows, same);
    });
  }

  /// The clause that picks the rows naming a line's goods, its category or its brand.
  SqlText NamingLine(const SalePlu& line) const {
    return Sql(" and ((PluCode=", Quoted{line.PluCode}, " and PluType='PLU') or (PluCode=", Quoted{line.CAT},
               " and PluType='CAT') or (PluCode=", Quoted{line.BRD}, " and PluType='BRD'))");
  }

 private:
  template <class Row, std::size_t Size, class Same>
  bool Append(const SqlText& sql, const RowField<Row> (&columns)[Size], std::vector<Row>& rows, Same same) {
    QSqlQuery query;
    return m_db.openRecordset(sql.ToString(), query, m_error) && ReadRows(m_db, query, columns, m_error, [&](Row& row) {
             if constexpr (std::is_base_of_v<ProDetailKey, Row>) {
               row.BillNo = m_billNo;
               row.Index = static_cast<std::int32_t>(rows.size());
             }
             const auto isRow = [&](const Row& held) { return same(held, row); };
             if (std::none_of(rows.begin(), rows.end(), isRow)) rows.push_back(row);
           });
  }

  QnPosDBPro& m_db;
  Text m_billNo;
  QString& m_error;
};

}  // namespace Corvane

#endif
