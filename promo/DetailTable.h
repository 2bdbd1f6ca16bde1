#ifndef QNCORVANE_PROMO_DETAILTABLE_H
#define QNCORVANE_PROMO_DETAILTABLE_H

#include <QSqlQuery>
#include <QString>
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <optional>
#include <type_traits>
#include <vector>

#include "base/Text.h"
#include "db/QnPosDBPro.h"
#include "db/RowFields.h"
#include "db/SqlText.h"
#include "log/Log.h"
#include "promo/DistinctRows.h"
#include "sale/LineCodes.h"
#include "sale/ProSale.h"
#include "sale/SaleRecords.h"

namespace Corvane {

/// What a failed statement puts in front of the database's own text.
constexpr Text kQueryFailed = "数据库查询失败";

/// A row, and the first line of a sale that it names.
template <class Row>
struct NamingRow {
  std::size_t Line;
  Row Itself;
};

/// The detail tables of one rule in the store. A read appends to a list, in the order returned: a row with the head of
/// detail rows gets the rule's number and its place in the list. A read that fails appends nothing.
///
/// A table of goods is asked for the lines of a sale: first line by line in the order of the sale, then as the rows
/// come, each row once. One statement brings the rows of all lines, and they are dealt out here; but where the database
/// may compare codes otherwise than byte by byte, each line is asked for by a statement of its own, so that the
/// database decides which rows are the line's.
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

  /// Appends all rows that the statement brings.
  /// @param failure what a failure puts in front of the database's text.
  template <class Row, std::size_t Size>
  bool Read(const SqlText& sql, const RowField<Row> (&columns)[Size], std::vector<Row>& rows,
            Text failure = kQueryFailed) {
    if (Append(sql, columns, rows)) return true;
    TellOf(sql, m_reason, failure);
    return false;
  }

  /// Read of a tier table. Its failure is told otherwise than that of the other tables: the database's text goes to the
  /// log as it stands, and nothing is put in front of it.
  template <class Row, std::size_t Size>
  bool ReadTiers(const SqlText& sql, const RowField<Row> (&columns)[Size], std::vector<Row>& rows) {
    if (Append(sql, columns, rows)) return true;
    TellOf(sql, m_reason, "");
    Log(m_error);
    return false;
  }

  /// Appends the rows that name goods, category or brand of a sale's lines, each once. The first failure ends it.
  ///
  /// @param rows empty.
  /// @param same what makes two rows of one number the same.
  /// @param more what the statement asks for beyond that.
  template <class Row, std::size_t Size, class Same>
  bool ReadOfLines(ProSale& sale, const SqlText& select, const RowField<Row> (&columns)[Size], std::vector<Row>& rows,
                   Same same, const SqlText& more = SqlText({})) {
    DistinctRows<Row, Same> distinct(rows, same);
    const std::vector<LineCodes>& groups = GroupsOf(sale);
    return std::all_of(groups.begin(), groups.end(), [&](const LineCodes& codes) {
      if (ReadAtOnce(codes, select, columns, distinct, more)) return true;
      const QString reason = m_reason;
      const auto* const unread = std::find_if_not(codes.First, codes.End, [&](const SalePlu& line) {
        return ReadOfLine(line, select, columns, distinct, more);
      });
      // What keeps every statement from running was told to the first, that for all lines.
      if (unread == codes.First && !reason.isEmpty()) TellOf(Sql(select, NamingLine(*unread), more), reason);
      return unread == codes.End;
    });
  }

  /// The lines of a sale, in groups for which one statement each may ask.
  const std::vector<LineCodes>& GroupsOf(ProSale& sale) const { return sale.CodesOfLines(Dialect().LinesAtOnce); }

  /// One statement for a group of several lines; and one for a line of them where the order of rows is in doubt.
  ///
  /// @return false when it failed, when it is in doubt which rows are which line's or in which order, and for a single
  ///         line; nothing is appended then, and the lines are to be asked for one by one.
  template <class Row, std::size_t Size, class Same>
  bool ReadAtOnce(const LineCodes& codes, const SqlText& select, const RowField<Row> (&columns)[Size],
                  DistinctRows<Row, Same>& rows, const SqlText& more = SqlText({})) {
    m_reason.clear();
    if (std::next(codes.First) == codes.End || !codes.AreDistinctEverywhere()) return false;
    bool isCertain = true;
    std::vector<NamingRow<Row>> naming;
    const auto take = [&](const Row& row) {
      const std::optional<std::size_t> line = codes.FirstNamed(row);
      if (line) naming.push_back({*line, row});
      isCertain = isCertain && line.has_value();
    };
    const auto look = [&](const QSqlQuery& query, const std::vector<int>& places) {
      // A code that is no text was found as a number: 7 by "007".
      isCertain = isCertain && IsText(query.value(places[FieldOf(columns, "PluCode")]));
    };
    if (!Take(Sql(select, NamingLines(codes), more), columns, take, look) || !isCertain) return false;
    std::stable_sort(naming.begin(), naming.end(),
                     [](const NamingRow<Row>& left, const NamingRow<Row>& right) { return left.Line < right.Line; });
    if (!IsOrderOfLines(codes, naming, select, columns, more)) return false;
    for (const NamingRow<Row>& row : naming) rows.Add(WithHead(row.Itself, rows.Size()));
    return true;
  }

  /// One statement for one line.
  template <class Row, std::size_t Size, class Same>
  bool ReadOfLine(const SalePlu& line, const SqlText& select, const RowField<Row> (&columns)[Size],
                  DistinctRows<Row, Same>& rows, const SqlText& more = SqlText({})) {
    const SqlText sql = Sql(select, NamingLine(line), more);
    const auto take = [&](const Row& row) { rows.Add(WithHead(row, rows.Size())); };
    if (Take(sql, columns, take)) return true;
    TellOf(sql, m_reason);
    return false;
  }

 private:
  /// The clause that picks the rows naming a line's goods, its category or its brand.
  SqlText NamingLine(const SalePlu& line) const {
    return Sql(" and ((PluCode=", Quoted{line.PluCode}, " and PluType='PLU') or (PluCode=", Quoted{line.CAT},
               " and PluType='CAT') or (PluCode=", Quoted{line.BRD}, " and PluType='BRD'))");
  }

  /// The same for several lines.
  SqlText NamingLines(const LineCodes& codes) const {
    return Sql(" and ((PluType='PLU' and ", OneOf("PluCode", codes.Goods.Codes()), ") or (PluType='CAT' and ",
               OneOf("PluCode", codes.Categories.Codes()), ") or (PluType='BRD' and ",
               OneOf("PluCode", codes.Brands.Codes()), "))");
  }

  /// Whether the rows of each line stand in the order in which its own statement brings them. Where a line has rows of
  /// several types, a database that goes from row to row finds them by their numbers, and one that follows an index on
  /// the codes finds goods before categories before brands. Which road it takes may depend on the number of codes. So a
  /// line whose rows tell the roads apart is asked for by itself, and what is seen of it holds for all.
  template <class Row, std::size_t Size>
  bool IsOrderOfLines(const LineCodes& codes, const std::vector<NamingRow<Row>>& naming, const SqlText& select,
                      const RowField<Row> (&columns)[Size], const SqlText& more) {
    const auto telling = std::adjacent_find(naming.begin(), naming.end(), TellsTheRoad<Row>);
    if (telling == naming.end()) return true;
    const auto isOfLine = [&](const NamingRow<Row>& row) { return row.Line == telling->Line; };
    const auto first = std::find_if(naming.begin(), naming.end(), isOfLine);
    const auto end = std::find_if_not(first, naming.end(), isOfLine);
    std::vector<Row> own;
    const auto take = [&](const Row& row) { own.push_back(row); };
    return Take(Sql(select, NamingLine(codes.First[telling->Line]), more), columns, take) &&
           std::equal(first, end, own.begin(), own.end(), [](const NamingRow<Row>& row, const Row& ownRow) {
             return row.Itself.SerialNo == ownRow.SerialNo && Same(row.Itself.PluType, ownRow.PluType);
           });
  }

  /// Whether two neighbours of one line differ in type, and by type or by number the second would stand in front.
  template <class Row>
  static bool TellsTheRoad(const NamingRow<Row>& row, const NamingRow<Row>& next) {
    if (row.Line != next.Line || Same(row.Itself.PluType, next.Itself.PluType)) return false;
    return RankOf(next.Itself.PluType) < RankOf(row.Itself.PluType) || next.Itself.SerialNo < row.Itself.SerialNo;
  }

  /// The place of a type in the statement of a line.
  static int RankOf(Text pluType) {
    if (Same(pluType, "PLU")) return 0;
    return Same(pluType, "CAT") ? 1 : 2;
  }

  /// Hands over the rows of a statement when all are there.
  template <class Row, std::size_t Size, class... Taker>
  bool Take(const SqlText& sql, const RowField<Row> (&columns)[Size], Taker... take) {
    Recordset rows;
    m_reason.clear();
    return m_db.openRecordset(sql, rows, m_reason) && ReadRows(m_db, rows, columns, m_reason, take...);
  }

  template <class Row, std::size_t Size>
  bool Append(const SqlText& sql, const RowField<Row> (&columns)[Size], std::vector<Row>& rows) {
    return Take(sql, columns, [&](const Row& row) { rows.push_back(WithHead(row, rows.size())); });
  }

  /// The row as it is held: with the rule's number and its place, where it has room for them.
  template <class Row>
  Row WithHead(Row row, std::size_t place) const {
    if constexpr (std::is_base_of_v<ProDetailKey, Row>) {
      row.BillNo = m_billNo;
      row.Index = static_cast<std::int32_t>(place);
    }
    return row;
  }

  /// Makes `error` tell of a statement that failed.
  void TellOf(const SqlText& sql, const QString& reason, Text failure = kQueryFailed) {
    m_error = QString::fromUtf8(failure) + FailedRecordset(sql, reason);
  }

  QnPosDBPro& m_db;
  Text m_billNo;
  QString& m_error;
  QString m_reason;  ///< why the last statement failed; empty when it didn't
};

}  // namespace Corvane

#endif
