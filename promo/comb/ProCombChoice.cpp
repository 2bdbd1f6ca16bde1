#include "promo/comb/ProCombChoice.h"

#include <algorithm>
#include <iterator>

#include "base/Numbers.h"
#include "base/Walk.h"
#include "log/Log.h"
#include "log/LogTexts.h"
#include "promo/DetailTable.h"
#include "promo/UnusableRow.h"
#include "rule/LineSelection.h"
#include "rule/ResultRows.h"
#include "rule/RuleReader.h"

namespace Corvane {

namespace {

using SlotColumn = FromColumn<CombChoiceSlot>;
constexpr RowField<CombChoiceSlot> kSlotColumns[] = {
    {"ProActCode", SlotColumn::KeptText<&CombChoiceSlot::ProActCode>},
    {"ProActname", SlotColumn::KeptText<&CombChoiceSlot::ProActname>},
    {"IsRequired", SlotColumn::Boolean<&CombChoiceSlot::IsRequired>},
};

using RowColumn = FromColumn<CombChoiceRow>;
constexpr RowField<CombChoiceRow> kRowColumns[] = {
    {"ProActCode", RowColumn::KeptText<&CombChoiceRow::ProActCode>},
    {"PluCode", RowColumn::KeptText<&CombChoiceRow::PluCode>},
    {"SaleCount", RowColumn::Double<&CombChoiceRow::SaleCount>},
    {"DscPrice", RowColumn::Double<&CombChoiceRow::DscPrice>},
};

/// Sells the line's `DisNum` at the row's price. A menu never raises a price: a row that is dearer than the line
/// comes down to the line's price and stays there for the rest of the calculation.
void SellAtRowPrice(RuleRun& run, CombChoiceRow& row, SalePlu& line) {
  const double unit = UnitBeforeCombinations(line);
  if (!(row.DscPrice < unit)) {
    run.Note(Reason::NoGain).On(line).Slot(row.ProActCode).Has(Unit::Price, unit).Needs(row.DscPrice);
  }
  if (row.DscPrice > unit) row.DscPrice = unit;
  if (!(line.DisNum > 0)) {
    run.NoteNothingOpen(line);
    return;
  }
  // Always a row of its own, also where the rule has one on the line.
  run.Give(line, {line.DisNum, RoundMoney((unit - row.DscPrice) * line.DisNum), row.DscPrice});
}

/// Notes that an article fills no whole menu by itself.
void NoteShort(const RuleRun& run, Text slot, const CombChoiceRow& row, const LinePtrs& holding, double menus) {
  if (run.Told() == nullptr) return;
  Telling telling = run.Note(Reason::SlotShort);
  telling.On(holding).Slot(slot).Goods(row.PluCode).Has(Unit::Count, menus).Needs(1);
  run.TellTakersOf(holding, telling);
}

/// The lines that hold the article, from the last to the first.
LinePtrs LinesOf(Text pluCode, const LinePtrs& lines) {
  LinePtrs found;
  std::copy_if(lines.rbegin(), lines.rend(), std::back_inserter(found),
               [&](const SalePlu* line) { return Same(line->PluCode, pluCode); });
  return found;
}

}  // namespace

void ProCombChoice::InitRule(Text xml) { ReadRule(xml, *this); }

void ProCombChoice::CalcRule(RuleRun& run) {
  Log(LogText::kChoiceStarts);
  if (!run.MeetsConditions()) return;
  // Slots and rows that can't be read are missing; the rule goes on with those that were.
  LoadRuleDetail(run);
  Log(LogText::kChoiceRowsRead);
  LinePtrs matched;
  const std::int32_t sets = GetChoiceSets(run, matched);
  if (sets == 0 || matched.empty()) return;
  ServeSlots(run, SlotKind::Mandatory, sets, matched);
  ServeSlots(run, SlotKind::Optional, sets, matched);
  run.Limit();
}

// --- Rows -----------------------------------------------------------------------------------------------------------

void ProCombChoice::LoadRuleDetail(const RuleRun& run) {
  m_slots.clear();
  QString error;
  DetailTables tables(m_db, Info.BillNo, error);
  if (!tables.Open()) {
    run.RefuseUnreadable(error);
    return;
  }
  std::vector<CombChoiceRow> rows;
  const bool read =
      tables.Read(tables.Select("select ProActCode,ProActname,IsRequired from tProPrjCombProAct where BillNo="),
                  kSlotColumns, m_slots) &&
      tables.Read(tables.Select("select ProActCode,PluCode,SaleCount,DscPrice from tProPrjCombPluSet where BillNo="),
                  kRowColumns, rows);
  if (!read) {
    Log(error);
    run.RefuseUnreadable(error);
  } else if (m_slots.empty()) {
    run.Refuse(Reason::NoRows);
  }
  for (const CombChoiceRow& row : rows) PutIntoSlot(row);
}

/// Puts a row into the first slot of its code; a row without a slot is dropped.
void ProCombChoice::PutIntoSlot(const CombChoiceRow& row) {
  const auto slot = std::find_if(m_slots.begin(), m_slots.end(),
                                 [&](const CombChoiceSlot& held) { return Same(held.ProActCode, row.ProActCode); });
  if (slot != m_slots.end()) slot->Rows.push_back(row);
}

// --- Number of menus ------------------------------------------------------------------------------------------------

/// The number of menus that the mandatory slots allow; without any, the pieces of the sale do. Nothing changes the
/// lines in here, so that the live ones serve.
///
/// @param matched out: the lines that a slot may take, article by article.
std::int32_t ProCombChoice::GetChoiceSets(const RuleRun& run, LinePtrs& matched) const {
  const LinePtrs candidates = SelectSingleLines(run);
  if (candidates.empty()) return 0;
  std::int32_t sets = 0;
  // Fractions are dropped at each step: two lines of 0.5 make no menu.
  for (const SalePlu* line : LastToFirst(candidates)) sets = TruncToInt32(sets + line->PluCount);
  if (sets == 0) run.Note(Reason::SlotShort).On(candidates).Has(Unit::Count, 0.0).Needs(1);
  for (const CombChoiceSlot& slot : LastToFirst(m_slots)) {
    // An optional slot is asked too, for the lines that it adds; its answer doesn't count.
    const std::int32_t slotSets = GetSlotSets(run, slot, candidates, matched);
    if (slot.Kind() == SlotKind::Optional) continue;
    if (slotSets == 0) return 0;
    sets = std::min(sets, slotSets);
  }
  return sets;
}

/// The menus that a slot can serve; what its rows can serve in fractions adds up.
///
/// @param matched in and out: receives the lines of each row that serves a whole menu by itself, once per article.
std::int32_t ProCombChoice::GetSlotSets(const RuleRun& run, const CombChoiceSlot& slot, const LinePtrs& candidates,
                                        LinePtrs& matched) const {
  double sum = 0;
  if (slot.Rows.empty()) run.Note(Reason::NoRows).Slot(slot.ProActCode);
  for (const CombChoiceRow& row : LastToFirst(slot.Rows)) {
    if (!IsSetSize(row.SaleCount)) {
      // The rows have no number of their own: slot and article tell which one it is.
      LogUnusableSaleCount(Info.BillNo, Join(slot.ProActCode, "/", row.PluCode));
      run.Note(Reason::UnusableRow).Slot(slot.ProActCode).Goods(row.PluCode).Has(Unit::Count, row.SaleCount).Needs(1);
      continue;
    }
    const LinePtrs holding = LinesOf(row.PluCode, candidates);
    double open = 0;
    for (const SalePlu* line : holding) open += run.OpenCount(*line);
    const double menus = Quotient(open, row.SaleCount);
    sum += menus;
    if (menus < 1) NoteShort(run, slot.ProActCode, row, holding, menus);
    if (menus >= 1 && LinesOf(row.PluCode, matched).empty()) {
      matched.insert(matched.end(), holding.begin(), holding.end());
    }
  }
  const std::int32_t sets = TruncToInt32(sum);
  if (sets == 0) {
    const bool isNeeded = slot.Kind() == SlotKind::Mandatory;
    (isNeeded ? run.Refuse(Reason::SlotShort) : run.Note(Reason::SlotShort))
        .Slot(slot.ProActCode)
        .Has(Unit::Count, sum)
        .Needs(1);
  }
  return sets;
}

// --- Discount -------------------------------------------------------------------------------------------------------

void ProCombChoice::ServeSlots(RuleRun& run, SlotKind kind, std::int32_t sets, const LinePtrs& matched) {
  for (CombChoiceSlot& slot : LastToFirst(m_slots)) {
    if (slot.Kind() != kind) continue;
    Log(kind == SlotKind::Mandatory ? LogText::kMandatorySlot : LogText::kOptionalSlot);
    SortSlotRows(slot);
    std::int64_t remaining = sets;
    for (CombChoiceRow& row : LastToFirst(slot.Rows)) {
      if (remaining <= 0) break;
      if (IsSetSize(row.SaleCount)) DiscountChoiceRow(run, row, matched, remaining);
    }
  }
}

void SortSlotRows(CombChoiceSlot& slot) {
  SortAscending(slot.Rows, [](const CombChoiceRow& row) { return row.SaleCount * row.DscPrice; });
}

/// @param remaining in and out: menus still to be served in this slot.
void ProCombChoice::DiscountChoiceRow(RuleRun& run, CombChoiceRow& row, const LinePtrs& matched,
                                      std::int64_t& remaining) const {
  const std::int32_t menus = MenusOfRow(run, row, matched, remaining);
  if (menus <= 0 && run.Told() != nullptr) NoteShort(run, row.ProActCode, row, LinesOf(row.PluCode, matched), menus);
  double need = row.SaleCount * menus;
  remaining = std::max<std::int64_t>(0, remaining - menus);
  if (need < 1) return;
  for (SalePlu* line : LinesOf(row.PluCode, matched)) {
    double quantity = run.OpenCount(*line);
    need -= quantity;
    if (need < 0) quantity += need;
    line->DisNum = quantity;
    SellAtRowPrice(run, row, *line);
    if (need < 1) return;
  }
}

/// The menus for which a row fills the slot.
std::int32_t ProCombChoice::MenusOfRow(const RuleRun& run, const CombChoiceRow& row, const LinePtrs& matched,
                                       std::int64_t remaining) const {
  double open = 0;
  // Asked under the family word here and under the type where the line is discounted.
  for (const SalePlu* line : LinesOf(row.PluCode, matched)) open += run.OpenCountAs(Info.ProMode, *line);
  const std::int64_t served = std::min<std::int64_t>(remaining, WholeSets(open, row.SaleCount));
  const auto menus = static_cast<std::int32_t>(served);
  // The limit by quantity counts the menus of one row.
  const bool overLimit = Same(Info.MaxYhType, LimitKind::kQuantity) && menus > Info.MaxYhValue;
  if (overLimit) run.Note(Reason::LimitUsedUp).Slot(row.ProActCode).Has(Unit::Quantity, menus).Needs(Info.MaxYhValue);
  return overLimit ? TruncToInt32(Info.MaxYhValue) : menus;
}

}  // namespace Corvane
