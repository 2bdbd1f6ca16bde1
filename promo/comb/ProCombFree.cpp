#include "promo/comb/ProCombFree.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "base/Numbers.h"
#include "base/Walk.h"
#include "engine/Log.h"
#include "promo/DetailQuery.h"
#include "promo/PercentKept.h"
#include "promo/Statement.h"
#include "rule/EligibleQuantity.h"
#include "rule/LineDiscount.h"
#include "rule/MaxDiscount.h"
#include "rule/RuleReader.h"

namespace Corvane {

namespace {

using PluColumn = FromColumn<CombFreePluRow>;
constexpr RowField<CombFreePluRow> kPluColumns[] = {
    {"SerialNo", PluColumn::Integer<&CombFreePluRow::SerialNo>},
    {"PluCode", PluColumn::KeptText<&CombFreePluRow::PluCode>},
    {"PluType", PluColumn::KeptText<&CombFreePluRow::PluType>},
};

using TierColumn = FromColumn<CombFreeActRow>;
constexpr RowField<CombFreeActRow> kTierColumns[] = {
    {"SerialNo", TierColumn::Integer<&CombFreeActRow::SerialNo>},
    {"PriceType", TierColumn::KeptText<&CombFreeActRow::PriceType>},
    {"SaleCount", TierColumn::Double<&CombFreeActRow::SaleCount>},
    {"PriceTotal", TierColumn::Double<&CombFreeActRow::PriceTotal>},
};

/// The kinds of price that a tier sets; with any other text the pieces are taken and nothing is given.
namespace TierPrice {
constexpr Text kSetPrice = "DP";    ///< one set costs this
constexpr Text kPercentOff = "TC";  ///< so many percent off
constexpr Text kSetDiscount = "2";  ///< one set costs this much less
}  // namespace TierPrice

/// Fewer pieces than this are none.
constexpr double kNoPieces = 0.001;

/// A smaller difference is no tail.
constexpr double kNoMoney = 0.001;

double PiecePrice(const CombFreeActRow& tier) { return Quotient(tier.PriceTotal, tier.SaleCount); }

}  // namespace

void ProCombFree::InitRule(Text xml) { ReadRule(xml, *this); }

void ProCombFree::CalcRule(ProSale& sale, std::vector<SalePlu>& changed) {
  Log(Join("开始计算自由组合促销，促销单号：", Info.BillNo));
  if (!CheckBaseCondition(sale)) return;
  // Rows that can't be read are missing; the rule goes on with those that were. Until the first discount nothing
  // changes the lines, so that the live ones serve.
  QString message;
  LoadRuleDetail(sale.Plus, message);
  Log("开始计算自由组合促销，1");
  const LinePtrs single = SelectSingleLines(sale.Plus);
  if (single.empty()) return;
  const CombPool pool = GetSaleAccordCombFree(single, sale.Plus);
  if (pool.Lines.empty()) return;
  if (!DiscountByTiers(pool, {sale, changed, MemberText(sale)})) return;
  SettleTail(pool);
  LimitByMaxDiscount(Info, sale);
}

// --- Rows -----------------------------------------------------------------------------------------------------------

bool ProCombFree::LoadRuleDetail(const std::vector<SalePlu>& lines, QString& message) {
  m_pluRows.clear();
  m_tiers.clear();
  if (!m_db.EnsureOpen(message)) return false;
  const bool read =
      std::all_of(lines.begin(), lines.end(), [&](const SalePlu& line) { return LoadPluRows(line, message); }) &&
      LoadTiers(message);
  if (!read) Log(message);
  return read;
}

/// Reads the rows that name the line's goods, category or brand. A row that several lines hit is kept once.
bool ProCombFree::LoadPluRows(const SalePlu& line, QString& message) {
  const SqlText sql =
      Statement(m_db, "select SerialNo,PluCode,PluType  from tProPrjCombPluSet where BillNo=", Quoted{Info.BillNo},
                RowsOfLine(m_db, line));
  return LoadDetail(m_db, sql, kPluColumns, message, [&](CombFreePluRow& row) {
    if (HoldsPluRow(row.SerialNo)) return;
    row.BillNo = Info.BillNo;
    row.Index = static_cast<std::int32_t>(m_pluRows.size());
    m_pluRows.push_back(row);
  });
}

bool ProCombFree::HoldsPluRow(std::int32_t serialNo) const {
  return std::any_of(m_pluRows.begin(), m_pluRows.end(),
                     [&](const CombFreePluRow& row) { return row.SerialNo == serialNo; });
}

bool ProCombFree::LoadTiers(QString& message) {
  const SqlText sql = Statement(
      m_db, "select SerialNo,SaleCount,PriceType,PriceTotal from tProPrjCombProAct where BillNo=", Quoted{Info.BillNo});
  return LoadDetail(m_db, sql, kTierColumns, message, [&](CombFreeActRow& tier) {
    tier.BillNo = Info.BillNo;
    tier.Index = static_cast<std::int32_t>(m_tiers.size());
    if (Same(tier.PriceType, TierPrice::kPercentOff)) tier.PriceTotal = PercentKept(tier.PriceTotal);
    m_tiers.push_back(tier);
  });
}

// --- Pool -----------------------------------------------------------------------------------------------------------

CombPool ProCombFree::GetSaleAccordCombFree(const LinePtrs& lines, const std::vector<SalePlu>& allLines) const {
  Log("GetSaleAccordCombFree函数开始计算");
  CombPool pool;
  for (SalePlu* line : lines) {
    Log(Join("iCondition数量为：", FormatI(static_cast<std::int32_t>(m_pluRows.size()))));
    AddToPool(pool, *line, allLines);
  }
  return pool;
}

/// Puts the line into the pool through the last row that names it. Rows by brand are loaded, yet no line joins the pool
/// through one.
void ProCombFree::AddToPool(CombPool& pool, SalePlu& line, const std::vector<SalePlu>& allLines) const {
  for (const CombFreePluRow& row : LastToFirst(m_pluRows)) {
    const bool byGoods = NamesGoods(row);
    if (!byGoods && !Same(row.PluType, "CAT")) continue;
    Log(Join("优惠类型为", row.PluType));
    if (!Same(row.PluCode, byGoods ? line.PluCode : line.CAT)) continue;
    const double open = GetCalcCount(line, Info, allLines);
    if (PrintsAsZero(open)) {
      // A line with nothing open is dropped by a goods row; a category row leaves it to the next row.
      if (byGoods) return;
      continue;
    }
    if (!byGoods) Log(Join("优惠类型为", row.PluType, "plucode为：", row.PluCode));
    pool.Quantity += open;
    // A goods row brings the whole line's amount into the sum, a category row only that of the open quantity. The tail
    // is reckoned against this sum.
    pool.Money += byGoods ? line.Total : open * line.FinalPrice;
    pool.Lines.push_back(&line);
    return;
  }
}

// --- Tiers ----------------------------------------------------------------------------------------------------------

/// @return whether any set was formed.
bool ProCombFree::DiscountByTiers(const CombPool& pool, const CombWork& work) {
  SortAscending(m_tiers, [](const CombFreeActRow& tier) { return tier.SaleCount; });
  double available = pool.Quantity;
  bool anySet = false;
  for (const CombFreeActRow& tier : LastToFirst(m_tiers)) {
    const double allowed = PiecesAllowed(work.Sale.Plus);
    if (allowed < kNoPieces) {
      available = 0;
      continue;
    }
    available = std::min(available, allowed);
    if (!IsSetSize(tier.SaleCount)) {
      LogUnusableSaleCount(Info.BillNo, tier.SerialNo);
      continue;
    }
    const std::int32_t sets = WholeSets(available, tier.SaleCount);
    if (sets <= 0) continue;
    anySet = true;
    m_dTotalPrice = 0;
    TierRun run{tier, sets, sets * tier.SaleCount};
    for (SalePlu* line : pool.Lines) DiscountSale(run, *line, work);
    // The pieces of the sets are gone, whatever the lines took.
    available -= run.Target;
  }
  return anySet;
}

/// The pieces that the rule's limit by quantity still allows; infinite without such a limit.
double ProCombFree::PiecesAllowed(const std::vector<SalePlu>& lines) const {
  if (!Same(Info.MaxYhType, LimitKind::kQuantity)) return std::numeric_limits<double>::infinity();
  double used = 0;
  for (const SalePlu& line : lines) {
    for (const ProResult& row : line.ProResults) {
      if (Same(row.ProBillNo, Info.BillNo)) used += row.DisNum;
    }
  }
  return Info.MaxYhValue - used;
}

/// Sells what the line gives to the tier's sets at the tier's terms. A line that would not get cheaper gives nothing;
/// its pieces pass on to the next line.
void ProCombFree::DiscountSale(TierRun& run, SalePlu& line, const CombWork& work) {
  Log("ProCombFree::DiscountSale begin");
  const CombTaken taken = TakenByCombinations(line);
  const double left = run.Target - run.Running;
  LinePart part;
  part.Value = line.Total + taken.Money;
  part.Unit = RoundMoney(Quotient(part.Value, line.PluCount));
  part.Quantity = line.PluCount - taken.Quantity;
  if (!(left > part.Quantity)) {
    if (!(left > 0)) return;
    Log("本组中最后一行商品，需要分摊尾差");
    part.Quantity = left;
    part.IsLast = true;
  }
  const Offer offer = OfferOfTier(run, line, part);
  if (offer.NewPrice >= part.Unit) {
    // Taken back whatever the kind of price, also where nothing was added.
    if (!part.IsLast) m_dTotalPrice -= RoundMoney(PiecePrice(run.Tier) * part.Quantity);
    return;
  }
  line.Total -= offer.Money;
  line.FinalPrice = Quotient(line.Total, line.PluCount);
  line.DisNum = part.Quantity;
  run.Running += part.Quantity;
  work.Changed.push_back(line);
  WriteOrMerge(line, part.Quantity, offer, work.VipType);
}

ProCombFree::Offer ProCombFree::OfferOfTier(const TierRun& run, const SalePlu& line, const LinePart& part) {
  const Text priceType = run.Tier.PriceType;
  if (Same(priceType, TierPrice::kSetPrice)) return OfferSetPrice(run, part);
  if (Same(priceType, TierPrice::kSetDiscount)) return OfferReduction(run, part);
  if (!Same(priceType, TierPrice::kPercentOff)) return {};
  // A percentage leaves its rounding difference where it is: the last line is not corrected.
  const double kept = run.Tier.PriceTotal;
  return {RoundMoney(Quotient(part.Value * part.Quantity, line.PluCount) * (100 - kept) / 100), part.Unit * kept / 100};
}

ProCombFree::Offer ProCombFree::OfferSetPrice(const TierRun& run, const LinePart& part) {
  const double price = PiecePrice(run.Tier);
  Offer offer{RoundMoney((part.Unit - price) * part.Quantity), price};
  m_dTotalPrice += RoundMoney(price * part.Quantity);
  if (part.IsLast) {
    offer.Money = RoundMoney(offer.Money - (run.Sets * run.Tier.PriceTotal - m_dTotalPrice));
    m_dTotalPrice = 0;
  }
  return offer;
}

ProCombFree::Offer ProCombFree::OfferReduction(const TierRun& run, const LinePart& part) {
  const double reduction = PiecePrice(run.Tier);
  Offer offer{RoundMoney(Quotient(part.Quantity * run.Tier.PriceTotal, run.Tier.SaleCount)),
              std::max(0.0, part.Unit - reduction)};
  Log(Join("组合自选促销生成的优惠：", FormatG6(offer.Money)));
  if (part.IsLast) {
    const double rest = run.Sets * run.Tier.PriceTotal - m_dTotalPrice;
    Log(Join("temp:", FormatG6(rest)));
    offer.Money = RoundMoney(rest);
    m_dTotalPrice = 0;
  }
  m_dTotalPrice += RoundMoney(reduction * part.Quantity);
  Log(Join("m_dTotalPrice:", FormatG6(m_dTotalPrice)));
  return offer;
}

void ProCombFree::WriteOrMerge(SalePlu& line, double quantity, const Offer& offer, Text vipType) const {
  if (ProResult* held = FindResult(line, Info.BillNo)) {
    // The apportion row stays as it was first written.
    held->DisNum += quantity;
    held->DisMoney += offer.Money;
    return;
  }
  WriteResultRow(line, CombResult(Info, quantity, offer.Money, offer.NewPrice, vipType));
}

// --- Tail -----------------------------------------------------------------------------------------------------------

/// Reckons what the pool brought against what its lines cost now and what the rule gave; the difference lands on a
/// line.
void ProCombFree::SettleTail(const CombPool& pool) const {
  double actual = 0;
  double discount = 0;
  for (SalePlu* line : pool.Lines) {
    actual += line->Total;
    for (ProResult& row : line->ProResults) {
      if (!Same(row.ProBillNo, Info.BillNo)) continue;
      row.DisMoney = RoundThroughF2(row.DisMoney);  // halves to even here; everywhere else in this rule RoundMoney
      discount += row.DisMoney;
    }
  }
  const double tail = pool.Money - actual - discount;
  Log(Join("自由组合原始total", FormatG6(pool.Money)));
  Log(Join("自由组合实际total", FormatG6(actual)));
  Log(Join("自由组合优惠total", FormatG6(discount)));
  Log(Join("自由组合尾差为", FormatG6(tail)));
  if (std::fabs(tail) > kNoMoney) PutTail(pool.Lines, tail);
}

/// The tail lands on the last line that has a result of the rule. A line passed on the way that has only an apportion
/// row of it gets the tail there.
void ProCombFree::PutTail(const LinePtrs& lines, double tail) const {
  for (SalePlu* line : LastToFirst(lines)) {
    if (line->ProResults.empty() || line->Apportions.empty()) continue;
    if (Apportion* apportion = FindRow(line->Apportions, Info.BillNo)) apportion->AppMoney() += tail;
    ProResult* const result = FindResult(*line, Info.BillNo);
    if (result == nullptr) continue;
    result->DisMoney += tail;
    line->Total -= tail;
    return;
  }
}

}  // namespace Corvane
