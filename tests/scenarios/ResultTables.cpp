#include "tests/scenarios/ResultTables.h"

#include <algorithm>
#include <iterator>
#include <map>

#include "tests/support/Till.h"

namespace Corvane::Testing {

namespace {

/// The columns of a table and the attributes that they show.
using Columns = std::map<std::string, std::string>;

const Columns& LineColumns() {
  static const Columns columns = {{"line", "SerialNo"},     {"goods", "PluCode"},     {"price", "Price"},
                                  {"count", "PluCount"},    {"total", "Total"},       {"unit price", "FinalPrice"},
                                  {"taken", "DisNum"},      {"packs", "PackCnt"},     {"BRD", "BRD"},
                                  {"CAT", "CAT"},           {"SaleDate", "SaleDate"}, {"SaleTime", "SaleTime"},
                                  {"PluDtId", "PluDtId"},   {"PageNo", "PageNo"},     {"LnNo", "LnNo"},
                                  {"YhBefore", "YhBefore"}, {"VipPrice", "VipPrice"}, {"ClsId", "ClsId"},
                                  {"PluID", "PluID"}};
  return columns;
}

const Columns& DiscountColumns() {
  static const Columns columns = {{"line", "RowID"},      {"goods", "PluCode"},  {"rule", "ProBillNo"},
                                  {"quantity", "DisNum"}, {"money", "DisMoney"}, {"type", "ProType"}};
  return columns;
}

const Columns& ApportionColumns() {
  static const Columns columns = {{"line", "RowID"},      {"goods", "PluCode"},  {"rule", "ProBillNo"},
                                  {"quantity", "AppNum"}, {"money", "AppMoney"}, {"type", "ProType"}};
  return columns;
}

const Columns& OfferColumns() {
  static const Columns columns = {
      {"rule", "ProBillNo"}, {"total", "Total"}, {"left", "LeftTotal"}, {"used", "UsedTotal"}};
  return columns;
}

const Columns& OfferRowColumns() {
  static const Columns columns = {{"row", "SerialNo"},          {"goods", "PluCode"},
                                  {"PluType", "PluType"},       {"BaseConTp", "BaseConTp"},
                                  {"BaseConNum", "BaseConNum"}, {"BaseDscTp", "BaseDscTp"},
                                  {"BaseDscNum", "BaseDscNum"}, {"AddConNum", "AddConNum"},
                                  {"AddDscNum", "AddDscNum"},   {"SaleMaxIn", "SaleMaxIn"},
                                  {"DscPrice", "DscPrice"},     {"picked", "HgPluCount"},
                                  {"CanPart", "CanPart"},       {"price", "Price"}};
  return columns;
}

const Columns& CouponColumns() {
  static const Columns columns = {{"sale", "SendSaleNo"}, {"number", "BillNo"}, {"coupon", "CouponTypeCode"},
                                  {"from", "BgnDate"},    {"to", "EndDate"},    {"value", "Value"},
                                  {"remark", "Remark"}};
  return columns;
}

template <class List>
List InOrder(List rows) {
  std::reverse(rows.begin(), rows.end());
  return rows;
}

std::string CellOf(const Row& row, const std::string& attribute) {
  const std::string value = row[attribute];
  if (value == "(absent)") return "";
  return value.empty() ? "\"\"" : value;
}

const std::string& AttributeOf(const Columns& columns, const std::string& name, int line) {
  const auto found = columns.find(name);
  if (found == columns.end()) throw ScenarioError(line, "no such column: " + name);
  return found->second;
}

/// One row's cell for each told column.
template <class CellOfColumn>
Cells CellsOf(const Step& told, CellOfColumn cellOf) {
  Cells cells;
  std::transform(told.Rows.Columns.begin(), told.Rows.Columns.end(), std::back_inserter(cells), cellOf);
  return cells;
}

std::vector<Cells> PlainRowsOf(const std::string& result, const std::string& group, const Columns& columns,
                               const Step& told) {
  std::vector<Cells> rows;
  for (const Row& row : InOrder(RowsOf(result, group))) {
    rows.push_back(
        CellsOf(told, [&](const auto& column) { return CellOf(row, AttributeOf(columns, column, told.Line)); }));
  }
  return rows;
}

/// The member type through which a discount came; empty for a discount that anybody gets.
std::string MemberOf(const Row& row) {
  if (row["IsVip"] == "0" && row["VipType"].empty()) return "";
  if (row["IsVip"] == "1" && !row["VipType"].empty()) return row["VipType"];
  return "IsVip " + row["IsVip"] + " with VipType " + row["VipType"];
}

/// A result of the whole sale names no line.
bool IsOfWholeSale(const Row& row) { return row["RowID"] == "(absent)" && row["PluCode"] == "*"; }

Cells DiscountCells(const Row& row, const Columns& columns, const Step& told) {
  return CellsOf(told, [&](const auto& column) -> std::string {
    if (column == "member") return MemberOf(row);
    if (column == "line" && IsOfWholeSale(row)) return "*";
    return CellOf(row, AttributeOf(columns, column, told.Line));
  });
}

Cells OfferCells(const Offer& offer, const Row& row, const Step& told) {
  return CellsOf(told, [&](const auto& column) {
    const auto ofHead = OfferColumns().find(column);
    if (ofHead != OfferColumns().end()) return CellOf(offer.Head, ofHead->second);
    return CellOf(row, AttributeOf(OfferRowColumns(), column, told.Line));
  });
}

}  // namespace

std::vector<Cells> LinesOf(const std::string& result, const Step& told) {
  return PlainRowsOf(result, "Plu", LineColumns(), told);
}

std::vector<Cells> DiscountsOf(const std::string& result, const Step& told) {
  std::vector<Cells> rows;
  std::vector<Cells> ofSale;
  for (const Row& row : InOrder(RowsOf(result, "ProResult"))) {
    (IsOfWholeSale(row) ? ofSale : rows).push_back(DiscountCells(row, DiscountColumns(), told));
  }
  rows.insert(rows.end(), ofSale.begin(), ofSale.end());
  return rows;
}

std::vector<Cells> ApportionsOf(const std::string& result, const Step& told) {
  std::vector<Cells> rows;
  for (const Row& row : InOrder(RowsOf(result, "Apportion"))) {
    rows.push_back(DiscountCells(row, ApportionColumns(), told));
  }
  return rows;
}

std::vector<Cells> OfferRowsOf(const std::string& result, const Step& told) {
  std::vector<Cells> rows;
  for (const Offer& offer : InOrder(OffersOf(result))) {
    const std::vector<Row> own = offer.Rows.empty() ? std::vector<Row>{Row({})} : InOrder(offer.Rows);
    for (const Row& row : own) rows.push_back(OfferCells(offer, row, told));
  }
  return rows;
}

std::vector<Cells> CouponsOf(const std::string& result, const Step& told) {
  return PlainRowsOf(result, "ProCoupons", CouponColumns(), told);
}

}  // namespace Corvane::Testing
