#include "promo/comb/ProCombFree.h"

#include <algorithm>
#include <limits>

#include "base/Numbers.h"
#include "base/Walk.h"
#include "log/Log.h"
#include "log/LogTexts.h"
#include "promo/DetailTable.h"
#include "promo/PercentKept.h"
#include "promo/UnusableRow.h"
#include "rule/LineSelection.h"
#include "rule/ResultRows.h"
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

/// Fewer pieces than this are none.
constexpr double kNoPieces = 0.001;

/// Whether a row brings the line into the pool: by its goods or its category.
bool JoinsThrough(const CombFreePluRow& row, const SalePlu& line) {
  if (NamesGoods(row)) return Same(row.PluCode, line.PluCode);
  return Same(row.PluType, "CAT") && Same(row.PluCode, line.CAT);
}

}  // namespace

void ProCombFree::InitRule(Text xml) { ReadRule(xml, *this); }

void ProCombFree::CalcRule(RuleRun& run) {
  Log(LogText::kFreeStarts, Info.BillNo);
  if (!run.MeetsConditions()) return;
  // Rows that can't be read are missing; the rule goes on with those that were.
  LoadRuleDetail(run);
  Log(LogText::kFreeRowsRead);
  const LinePtrs single = SelectSingleLines(run);
  if (single.empty()) return;
  const CombPool pool = GetSaleAccordCombFree(run, single);
  if (pool.Lines.empty()) return;
  if (!DiscountByTiers(run, pool)) return;
  SettlePool(run, pool.Lines, pool.Money);
  run.Limit();
}

// --- Rows -----------------------------------------------------------------------------------------------------------

/// Reads the rows that name goods, category or brand of one of the lines, each once, and the tiers.
void ProCombFree::LoadRuleDetail(const RuleRun& run) {
  m_pluRows.clear();
  m_tiers.clear();
  QString error;
  DetailTables tables(m_db, Info.BillNo, error);
  if (!tables.Open()) {
    run.RefuseUnreadable(error);
    return;
  }
  const bool read =
      tables.ReadOfLines(run.Sale(),
                         tables.Select("select SerialNo,PluCode,PluType  from tProPrjCombPluSet where BillNo="),
                         kPluColumns, m_pluRows, SameSerialNo()) &&
      tables.Read(tables.Select("select SerialNo,SaleCount,PriceType,PriceTotal from tProPrjCombProAct where BillNo="),
                  kTierColumns, m_tiers);
  if (!read) {
    Log(error);
    run.RefuseUnreadable(error);
  }
  for (CombFreeActRow& tier : m_tiers) {
    if (Same(tier.PriceType, TierPrice::kPercentOff)) tier.PriceTotal = PercentKept(tier.PriceTotal);
  }
}

// --- Pool -----------------------------------------------------------------------------------------------------------

CombPool ProCombFree::GetSaleAccordCombFree(const RuleRun& run, const LinePtrs& lines) const {
  Log(LogText::kFreePoolStarts);
  CombPool pool;
  for (SalePlu* line : lines) {
    Log(LogText::kFreeRows, FormatI(static_cast<std::int32_t>(m_pluRows.size())));
    AddToPool(run, pool, *line);
  }
  return pool;
}

/// Puts the line into the pool through the last row that names it. Rows by brand are loaded, yet no line joins the pool
/// through one.
void ProCombFree::AddToPool(const RuleRun& run, CombPool& pool, SalePlu& line) const {
  for (const CombFreePluRow& row : LastToFirst(m_pluRows)) {
    const bool byGoods = NamesGoods(row);
    if (!byGoods && !Same(row.PluType, GoodsKind::kCategory)) continue;
    Log(LogText::kFreeRowType, row.PluType);
    if (!JoinsThrough(row, line)) continue;
    const double open = run.OpenCount(line);
    if (PrintsAsZero(open)) {
      run.NoteNothingOpen(line);
      // A line with nothing open is dropped by a goods row; a category row leaves it to the next row.
      if (byGoods) return;
      continue;
    }
    if (!byGoods) Log(LogText::kFreeRowType, row.PluType, LogText::kFreeRowCode, row.PluCode);
    pool.Quantity += open;
    // A goods row brings the whole line's amount into the sum, a category row only that of the open quantity. The tail
    // is reckoned against this sum.
    pool.Money += byGoods ? line.Total : open * line.FinalPrice;
    pool.Lines.push_back(&line);
    return;
  }
  NoteUnnamed(run, line);
}

void ProCombFree::NoteUnnamed(const RuleRun& run, const SalePlu& line) const {
  if (run.Told() == nullptr) return;
  const bool isNamed = std::any_of(m_pluRows.begin(), m_pluRows.end(),
                                   [&](const CombFreePluRow& row) { return JoinsThrough(row, line); });
  if (!isNamed) run.Note(Reason::NotNamed).On(line);
}

// --- Tiers ----------------------------------------------------------------------------------------------------------

/// @return whether any set was formed.
bool ProCombFree::DiscountByTiers(RuleRun& run, const CombPool& pool) {
  SortAscending(m_tiers, [](const CombFreeActRow& tier) { return tier.SaleCount; });
  if (m_tiers.empty()) run.Refuse(Reason::NoTiers);
  double available = pool.Quantity;
  bool anySet = false;
  for (const CombFreeActRow& row : LastToFirst(m_tiers)) {
    const double allowed = PiecesAllowed(run);
    if (allowed < kNoPieces) {
      run.Note(Reason::LimitUsedUp).Has(Unit::Quantity, Info.MaxYhValue - allowed).Needs(Info.MaxYhValue);
      available = 0;
      continue;
    }
    available = std::min(available, allowed);
    if (!IsSetSize(row.SaleCount)) {
      LogUnusableSaleCount(Info.BillNo, row.SerialNo);
      run.Note(Reason::UnusableRow).Row(row.SerialNo).Has(Unit::Count, row.SaleCount).Needs(1);
      continue;
    }
    const std::int32_t sets = WholeSets(available, row.SaleCount);
    if (sets <= 0) {
      NoteBelowSet(run, row, pool, available);
      continue;
    }
    anySet = true;
    TierRun tier(row, sets);
    for (SalePlu* line : pool.Lines) DiscountSale(run, tier, *line);
    // The pieces of the sets are gone, whatever the lines took.
    available -= tier.Target;
    // What the smallest tier leaves waits for a set of its own.
    if (&row == &m_tiers.front() && available > 0) NoteBelowSet(run, row, pool, available);
  }
  return anySet;
}

/// Tiers go from the smallest to the largest, and are told by their place from the largest. A set takes whole pieces: one
/// of 2.5 is full with 2.
void ProCombFree::NoteBelowSet(const RuleRun& run, const CombFreeActRow& tier, const CombPool& pool,
                               double available) const {
  if (run.Told() == nullptr) return;
  Telling telling = run.Note(Reason::BelowSetSize);
  telling.On(pool.Lines)
      .Row(tier.SerialNo)
      .Tier(&m_tiers.back() - &tier)
      .Has(Unit::Quantity, available)
      .Needs(TruncToInt32(tier.SaleCount));
  run.TellTakersOf(pool.Lines, telling);
}

/// The pieces that the rule's limit by quantity still allows; infinite without such a limit.
double ProCombFree::PiecesAllowed(const RuleRun& run) const {
  if (!Same(Info.MaxYhType, LimitKind::kQuantity)) return std::numeric_limits<double>::infinity();
  return Info.MaxYhValue - HeldQuantity(run.Lines(), Info.BillNo);
}

/// Sells what the line gives to the tier's sets at the tier's terms. A line that would not get cheaper gives nothing;
/// its pieces pass on to the next line.
void ProCombFree::DiscountSale(RuleRun& run, TierRun& tier, SalePlu& line) {
  Log(LogText::kFreeLineStarts);
  const Taken taken = TakenByCombinations(line);
  const double left = tier.Target - tier.Running;
  LinePart part;
  part.Value = line.Total + taken.Money;
  part.Unit = RoundMoney(Quotient(part.Value, line.PluCount));
  part.Quantity = line.PluCount - taken.Quantity;
  if (!(left > part.Quantity)) {
    if (!(left > 0)) return;
    Log(LogText::kFreeLastLine);
    part.Quantity = left;
    part.IsLast = true;
  }
  const Award award = AwardOfTier(run, tier, line, part);
  if (award.NewPrice >= part.Unit) {
    run.Note(Reason::NoGain).On(line).Row(tier.Tier.SerialNo).Has(Unit::Price, part.Unit).Needs(award.NewPrice);
    if (!part.IsLast) tier.Sum.TakeBack(part.Quantity);
    return;
  }
  line.DisNum = part.Quantity;
  tier.Running += part.Quantity;
  run.GiveOrMerge(line, award);
}

Award ProCombFree::AwardOfTier(const RuleRun& run, TierRun& tier, const SalePlu& line, const LinePart& part) {
  Award award;
  award.Quantity = part.Quantity;
  if (Same(tier.Tier.PriceType, TierPrice::kSetPrice)) {
    award.Money = tier.Sum.DiscountToPrice(part.Unit, part.Quantity, part.IsLast);
    award.NewPrice = tier.Sum.PerPiece();
  } else if (Same(tier.Tier.PriceType, TierPrice::kSetDiscount)) {
    award.Money = tier.Sum.DiscountByReduction(part.Quantity, part.IsLast);
    award.NewPrice = std::max(0.0, part.Unit - tier.Sum.PerPiece());
  } else if (Same(tier.Tier.PriceType, TierPrice::kPercentOff)) {
    // A percentage leaves its rounding difference where it is: the last line is not corrected.
    const double kept = tier.Tier.PriceTotal;
    award.Money = RoundMoney(Quotient(part.Value * part.Quantity, line.PluCount) * (100 - kept) / 100);
    award.NewPrice = part.Unit * kept / 100;
  } else {
    run.Note(Reason::UnknownPriceKind)
        .On(line)
        .Row(tier.Tier.SerialNo)
        .Has(Unit::Kind, tier.Tier.PriceType)
        .Needs(TierPrice::kAll);
  }
  if (award.Money == 0) run.Note(Reason::GivesNothing).On(line).Row(tier.Tier.SerialNo).Has(Unit::Money, 0.0);
  return award;
}

}  // namespace Corvane
