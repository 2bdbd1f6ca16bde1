#include "promo/comb/ProCombFixed.h"

#include <algorithm>

#include "base/Numbers.h"
#include "base/Walk.h"
#include "engine/Log.h"
#include "promo/DetailQuery.h"
#include "promo/Statement.h"
#include "rule/EligibleQuantity.h"
#include "rule/LineDiscount.h"
#include "rule/MaxDiscount.h"
#include "rule/RuleReader.h"
#include "rule/Spreading.h"

namespace Corvane {

namespace {

/// The kinds of price; any other text sets none.
namespace FixedPrice {
constexpr Text kPerArticle = "DP";
constexpr Text kPerCombination = "TC";
}  // namespace FixedPrice

using PriceColumn = FromColumn<CombFixedPrice>;
constexpr RowField<CombFixedPrice> kPriceColumns[] = {
    {"PriceType", PriceColumn::KeptText<&CombFixedPrice::PriceType>},
    {"PriceTotal", PriceColumn::Double<&CombFixedPrice::PriceTotal>},
};

using RowColumn = FromColumn<CombFixedRow>;
constexpr RowField<CombFixedRow> kRowColumns[] = {
    {"SerialNo", RowColumn::Integer<&CombFixedRow::SerialNo>},
    {"PluCode", RowColumn::KeptText<&CombFixedRow::PluCode>},
    {"PluType", RowColumn::KeptText<&CombFixedRow::PluType>},
    {"SaleCount", RowColumn::Double<&CombFixedRow::SaleCount>},
    {"DscPrice", RowColumn::Double<&CombFixedRow::DscPrice>},
};

/// The second statement's failure text has the words in the other order.
constexpr Text kRowsFailed = "查询数据库失败";

double SumOfTotals(const LinePtrs& lines) {
  double total = 0;
  for (const SalePlu* line : lines) total += line->Total;
  return total;
}

}  // namespace

void ProCombFixed::InitRule(Text xml) { ReadRule(xml, *this); }

void ProCombFixed::CalcRule(ProSale& sale, std::vector<SalePlu>& changed) {
  Log(Info.BillNo);
  if (!CheckBaseCondition(sale)) return;
  QString message;
  if (!LoadRuleDetail(message)) {
    Log(message);
    return;
  }
  SortAscending(m_rows, [](const CombFixedRow& row) { return row.SaleCount; });
  const LinePtrs single = SelectSingleLines(sale.Plus);
  if (single.empty()) return;
  const std::optional<FixedSets> found = GetFixedSets(single, sale.Plus);
  if (!found || found->Lines.empty()) return;
  const CombWork work{sale, changed, MemberText(sale)};
  TakePieces(*found, work);
  // A price at or over the ordinary value gives nothing, and the ceiling is not even looked at.
  if (IsPricedAsWhole() && !SpreadPrice(*found, work.VipType)) return;
  LimitByMaxDiscount(Info, sale);
}

// --- Rows -----------------------------------------------------------------------------------------------------------

/// Reads the rule's kind of price, from its first row, and its articles. A rule without that row has none.
bool ProCombFixed::LoadRuleDetail(QString& message) {
  m_rows.clear();
  if (!m_db.EnsureOpen(message)) return false;
  const SqlText sql =
      Statement(m_db, "select PriceType, PriceTotal from tProPrjCombProAct where BillNo=", Quoted{Info.BillNo});
  std::optional<CombFixedPrice> price;
  const auto takeFirst = [&](const CombFixedPrice& row) {
    if (!price) price = row;
  };
  if (!LoadDetail(m_db, sql, kPriceColumns, message, takeFirst)) return false;
  return !price || LoadRows(*price, message);
}

bool ProCombFixed::LoadRows(const CombFixedPrice& price, QString& message) {
  const SqlText sql = Statement(
      m_db,
      "select SerialNo,PluCode,PluType,SaleCount,DscPrice from tProPrjCombPluSet where BillNo=", Quoted{Info.BillNo});
  const auto take = [&](CombFixedRow& row) {
    if (PrintsAsZero(row.SaleCount)) return;
    row.BillNo = Info.BillNo;
    row.Index = static_cast<std::int32_t>(m_rows.size());
    row.PriceType = price.PriceType;
    if (Same(price.PriceType, FixedPrice::kPerCombination)) row.DscPrice = price.PriceTotal;
    m_rows.push_back(row);
  };
  return LoadDetail(m_db, sql, kRowColumns, message, take, kRowsFailed);
}

// --- Number of combinations -----------------------------------------------------------------------------------------

/// @return nothing when an article is short, or when a row's piece count can form no combination.
std::optional<ProCombFixed::FixedSets> ProCombFixed::GetFixedSets(const LinePtrs& candidates,
                                                                  const std::vector<SalePlu>& lines) const {
  FixedSets found;
  bool isFirst = true;
  for (const CombFixedRow& row : LastToFirst(m_rows)) {
    const Article article = TakeArticle(row.PluCode, candidates, found.Lines, lines);
    if (!IsSetSize(row.SaleCount)) {
      LogUnusableSaleCount(Info.BillNo, row.SerialNo);
      return std::nullopt;
    }
    if (row.SaleCount > article.Quantity) return std::nullopt;
    const std::int32_t sets = WholeSets(article.Quantity, row.SaleCount);
    found.Sets = isFirst ? sets : std::min(found.Sets, sets);
    isFirst = false;
    // The limit by quantity counts combinations.
    if (Same(Info.MaxYhType, LimitKind::kQuantity) && found.Sets > Info.MaxYhValue) {
      found.Sets = TruncToInt32(Info.MaxYhValue);
    }
    found.SetValue += article.UnitValue * row.SaleCount;
  }
  return found;
}

/// Appends the lines that hold the article and have pieces open, and clears their `DisNum`. Where several lines hold
/// it, the last one's unit value counts.
ProCombFixed::Article ProCombFixed::TakeArticle(Text pluCode, const LinePtrs& candidates, LinePtrs& matched,
                                                const std::vector<SalePlu>& lines) const {
  Article article;
  for (SalePlu* line : candidates) {
    if (!Same(line->PluCode, pluCode)) continue;
    const double open = GetCalcCount(*line, Info, lines);
    if (!(open > 0)) continue;
    matched.push_back(line);
    line->DisNum = 0;
    article.Quantity += open;
    article.UnitValue = UnitBeforeCombinations(*line);
  }
  return article;
}

// --- Discount -------------------------------------------------------------------------------------------------------

void ProCombFixed::TakePieces(const FixedSets& found, const CombWork& work) const {
  for (const CombFixedRow& row : LastToFirst(m_rows)) {
    const double target = found.Sets * row.SaleCount;
    double running = 0;
    for (SalePlu* line : found.Lines) {
      if (Same(line->PluCode, row.PluCode)) DiscountFixedRow(row, *line, running, target, work);
    }
  }
}

/// Takes the line's pieces for the row. A unit price is given at once; the price of a whole combination is spread
/// later.
///
/// @param running in and out: pieces that lines have given to the row so far.
/// @param target  pieces that the combinations hold of the row's article.
void ProCombFixed::DiscountFixedRow(const CombFixedRow& row, SalePlu& line, double& running, double target,
                                    const CombWork& work) const {
  double quantity = GetCalcCount(line, Info, work.Sale.Plus);
  if (!(target > quantity + running)) {
    quantity = target - running;
    if (!(quantity > 0)) return;
  }
  const bool perArticle = Same(row.PriceType, FixedPrice::kPerArticle);
  if (!perArticle && !Same(row.PriceType, FixedPrice::kPerCombination)) return;
  if (perArticle) {
    WriteUnitPrice(row, line, quantity, work);
  } else {
    line.DisNum = quantity;
  }
  running += quantity;
}

void ProCombFixed::WriteUnitPrice(const CombFixedRow& row, SalePlu& line, double quantity, const CombWork& work) const {
  const double unit = UnitBeforeCombinations(line);
  const double price = std::min(row.DscPrice, unit);
  // Not rounded, unlike every other discount of the family.
  const double money = (unit - price) * quantity;
  line.Total -= money;
  line.DisNum = quantity;
  WriteResultRow(line, CombResult(Info, quantity, money, price, work.VipType));
  work.Changed.push_back(line);  // here the copy holds the new row
}

bool ProCombFixed::IsPricedAsWhole() const { return Same(m_rows.front().PriceType, FixedPrice::kPerCombination); }

/// @return false when the price of the combination is no gain.
bool ProCombFixed::SpreadPrice(const FixedSets& found, Text vipType) const {
  const double value = found.SetValue * found.Sets;
  const double discount = value - found.Sets * m_rows.front().DscPrice;
  if (!(discount > 0)) return false;
  SpreadFixedDiscount(found.Lines, discount, value, vipType);
  return true;
}

/// Spreads the discount of all combinations over the lines by value.
///
/// @param value ordinary value of all combinations.
void ProCombFixed::SpreadFixedDiscount(const LinePtrs& matched, double discount, double value, Text vipType) const {
  if (discount == 0 || matched.empty()) return;
  double spread = 0;
  for (SalePlu* line : matched) {
    if (FindResult(*line, Info.BillNo) == nullptr) spread += WriteShare(*line, matched, discount, value, vipType);
  }
  const double rest = discount - spread;
  if (rest != 0) PutTailOnFirstRows(Info, matched, rest, true);
}

/// Gives the line its share and uses up its `DisNum`. @return the share; a share of 0 leaves the line as it is.
double ProCombFixed::WriteShare(SalePlu& line, const LinePtrs& matched, double discount, double value,
                                Text vipType) const {
  const double unit = RoundMoney(UnitBeforeCombinations(line));
  const double share = RoundMoney(Quotient(unit * line.DisNum, value) * discount);
  if (share == 0) return 0;
  const double newPrice = RoundMoney(unit - Quotient(share, line.DisNum));
  const double quantity = CeilSingle(line.DisNum);
  line.DisNum = 0;
  ProResult row = CombResult(Info, quantity, share, newPrice, vipType);
  row.BaseMoney = quantity > 0 ? quantity * unit : Quotient(value * line.Total, SumOfTotals(matched));
  WriteResultRow(line, row);
  line.Total -= share;
  return share;
}

}  // namespace Corvane
