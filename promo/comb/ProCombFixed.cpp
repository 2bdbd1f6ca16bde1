#include "promo/comb/ProCombFixed.h"

#include <algorithm>
#include <iterator>

#include "base/Numbers.h"
#include "base/Walk.h"
#include "log/Log.h"
#include "promo/DetailTable.h"
#include "promo/UnusableRow.h"
#include "rule/LineSelection.h"
#include "rule/ResultRows.h"
#include "rule/RuleReader.h"
#include "rule/Spreading.h"

namespace Corvane {

namespace {

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

/// Sells pieces of the line at the row's unit price, which never raises a price. Not rounded, unlike every other
/// discount of the family.
void SellAtUnitPrice(RuleRun& run, const CombFixedRow& row, SalePlu& line, double quantity) {
  const double unit = UnitBeforeCombinations(line);
  const double price = std::min(row.DscPrice, unit);
  if (!(price < unit)) run.Note(Reason::NoGain).On(line).Row(row.SerialNo).Has(Unit::Price, unit).Needs(row.DscPrice);
  line.DisNum = quantity;
  run.Give(line, {quantity, (unit - price) * quantity, price});
}

}  // namespace

void ProCombFixed::InitRule(Text xml) { ReadRule(xml, *this); }

void ProCombFixed::CalcRule(RuleRun& run) {
  Log(Info.BillNo);
  if (!run.MeetsConditions()) return;
  QString message;
  if (!LoadRuleDetail(message)) {
    Log(message);
    run.RefuseUnreadable(message);
    return;
  }
  if (m_rows.empty()) run.Refuse(Reason::NoRows);
  SortAscending(m_rows, [](const CombFixedRow& row) { return row.SaleCount; });
  const LinePtrs single = SelectSingleLines(run);
  if (single.empty()) return;
  const std::optional<FixedSets> found = GetFixedSets(run, single);
  if (!found || found->Lines.empty()) return;
  TakePieces(run, *found);
  // A price at or over the ordinary value gives nothing, and the limit is not even looked at.
  if (IsPricedAsWhole() && !SpreadPrice(run, *found)) return;
  run.Limit();
}

// --- Rows -----------------------------------------------------------------------------------------------------------

/// Reads the rule's kind of price, from its first row, and its articles. A rule without that row has none.
bool ProCombFixed::LoadRuleDetail(QString& error) {
  m_rows.clear();
  DetailTables tables(m_db, Info.BillNo, error);
  if (!tables.Open()) return false;
  std::vector<CombFixedPrice> prices;
  if (!tables.Read(tables.Select("select PriceType, PriceTotal from tProPrjCombProAct where BillNo="), kPriceColumns,
                   prices)) {
    return false;
  }
  if (prices.empty()) return true;
  const SqlText sql =
      tables.Select("select SerialNo,PluCode,PluType,SaleCount,DscPrice from tProPrjCombPluSet where BillNo=");
  if (!tables.Read(sql, kRowColumns, m_rows, kRowsFailed)) return false;
  SettleRows(prices.front());
  return true;
}

void ProCombFixed::SettleRows(const CombFixedPrice& price) {
  const auto isEmpty = [](const CombFixedRow& row) { return PrintsAsZero(row.SaleCount); };
  m_rows.erase(std::remove_if(m_rows.begin(), m_rows.end(), isEmpty), m_rows.end());
  for (CombFixedRow& row : m_rows) {
    row.PriceType = price.PriceType;
    if (Same(price.PriceType, FixedPrice::kPerCombination)) row.DscPrice = price.PriceTotal;
  }
}

// --- Number of combinations -----------------------------------------------------------------------------------------

/// @return nothing when an article is short, or when a row's piece count can form no combination.
std::optional<ProCombFixed::FixedSets> ProCombFixed::GetFixedSets(const RuleRun& run,
                                                                  const LinePtrs& candidates) const {
  FixedSets found;
  bool isFirst = true;
  for (const CombFixedRow& row : LastToFirst(m_rows)) {
    const Article article = TakeArticle(run, row.PluCode, candidates, found.Lines);
    if (!IsSetSize(row.SaleCount)) {
      LogUnusableSaleCount(Info.BillNo, row.SerialNo);
      run.Refuse(Reason::UnusableRow).Row(row.SerialNo).Has(Unit::Count, row.SaleCount).Needs(1);
      return std::nullopt;
    }
    if (row.SaleCount > article.Quantity) {
      RefuseShort(run, row, candidates, article.Quantity);
      return std::nullopt;
    }
    const std::int32_t sets = WholeSets(article.Quantity, row.SaleCount);
    found.Sets = isFirst ? sets : std::min(found.Sets, sets);
    isFirst = false;
    // The limit by quantity counts combinations.
    if (Same(Info.MaxYhType, LimitKind::kQuantity) && found.Sets > Info.MaxYhValue) {
      run.Note(Reason::LimitUsedUp).Has(Unit::Quantity, found.Sets).Needs(Info.MaxYhValue);
      found.Sets = TruncToInt32(Info.MaxYhValue);
    }
    found.SetValue += article.UnitValue * row.SaleCount;
  }
  return found;
}

void ProCombFixed::RefuseShort(const RuleRun& run, const CombFixedRow& row, const LinePtrs& candidates, double open) {
  if (run.Told() == nullptr) return;
  LinePtrs holding;
  std::copy_if(candidates.begin(), candidates.end(), std::back_inserter(holding),
               [&](const SalePlu* line) { return Same(line->PluCode, row.PluCode); });
  Telling telling = run.Refuse(Reason::ArticleShort);
  telling.On(holding).Goods(row.PluCode).Row(row.SerialNo).Has(Unit::Quantity, open).Needs(row.SaleCount);
  run.TellTakersOf(holding, telling);
}

/// Appends the lines that hold the article and have pieces open, and clears their `DisNum`. Where several lines hold
/// it, the last one's unit value counts.
ProCombFixed::Article ProCombFixed::TakeArticle(const RuleRun& run, Text pluCode, const LinePtrs& candidates,
                                                LinePtrs& matched) {
  Article article;
  for (SalePlu* line : candidates) {
    if (!Same(line->PluCode, pluCode)) continue;
    const double open = run.OpenCount(*line);
    if (!(open > 0)) continue;
    matched.push_back(line);
    line->DisNum = 0;
    article.Quantity += open;
    article.UnitValue = UnitBeforeCombinations(*line);
  }
  return article;
}

// --- Discount -------------------------------------------------------------------------------------------------------

void ProCombFixed::TakePieces(RuleRun& run, const FixedSets& found) const {
  for (const CombFixedRow& row : LastToFirst(m_rows)) {
    Pieces pieces{found.Sets * row.SaleCount};
    for (SalePlu* line : found.Lines) {
      if (Same(line->PluCode, row.PluCode)) DiscountFixedRow(run, row, *line, pieces);
    }
  }
}

/// Takes the line's pieces for the row. A unit price is given at once; the price of a whole combination is spread
/// later.
void ProCombFixed::DiscountFixedRow(RuleRun& run, const CombFixedRow& row, SalePlu& line, Pieces& pieces) {
  double quantity = run.OpenCount(line);
  if (!(pieces.Target > quantity + pieces.Running)) {
    quantity = pieces.Target - pieces.Running;
    if (!(quantity > 0)) return;
  }
  const bool perArticle = Same(row.PriceType, FixedPrice::kPerArticle);
  if (!perArticle && !Same(row.PriceType, FixedPrice::kPerCombination)) {
    run.Note(Reason::UnknownPriceKind).On(line).Has(Unit::Kind, row.PriceType).Needs(FixedPrice::kAll);
    return;
  }
  if (perArticle) {
    SellAtUnitPrice(run, row, line, quantity);
  } else {
    line.DisNum = quantity;
  }
  pieces.Running += quantity;
}

bool ProCombFixed::IsPricedAsWhole() const { return Same(m_rows.front().PriceType, FixedPrice::kPerCombination); }

/// @return false when the price of the combination is no gain.
bool ProCombFixed::SpreadPrice(RuleRun& run, const FixedSets& found) const {
  const double value = found.SetValue * found.Sets;
  const double discount = value - found.Sets * m_rows.front().DscPrice;
  if (!(discount > 0)) {
    run.Refuse(Reason::NoGain).On(found.Lines).Has(Unit::Price, value).Needs(value - discount);
    return false;
  }
  SpreadFixedDiscount(run, found.Lines, discount, value);
  return true;
}

}  // namespace Corvane
