#include "promo/comb/ProCombCondition.h"

#include <algorithm>
#include <iterator>

#include "base/Walk.h"
#include "log/Log.h"
#include "log/LogTexts.h"
#include "promo/DetailTable.h"
#include "promo/PercentKept.h"
#include "rule/EligibleQuantity.h"
#include "rule/LineSelection.h"
#include "rule/ResultRows.h"
#include "rule/RuleReader.h"
#include "rule/Spreading.h"

namespace Corvane {

namespace {

using ConditionColumn = FromColumn<PluCondition>;
constexpr RowField<PluCondition> kConditionColumns[] = {
    {"SerialNo", ConditionColumn::Integer<&PluCondition::SerialNo>},
    {"PluCode", ConditionColumn::KeptText<&PluCondition::PluCode>},
    {"PluType", ConditionColumn::KeptText<&PluCondition::PluType>},
    {"SaleCount", ConditionColumn::Double<&PluCondition::MinNum>},
    {"PriceTotal", ConditionColumn::Double<&PluCondition::MinMoney>},
};

using ControlColumn = FromColumn<CombCondCtrl>;
constexpr RowField<CombCondCtrl> kControlColumns[] = {
    {"SerialNo", ControlColumn::Integer<&CombCondCtrl::SerialNo>},
    {"PriceTotal", ControlColumn::Double<&CombCondCtrl::PriceTotal>},
    {"CountTotal", ControlColumn::Double<&CombCondCtrl::CountTotal>},
};

/// The column holds the percent taken off.
void ReadRate(PluAction& row, const QVariant& value) { row.DisRate = PercentKept(ColumnDouble(value)); }

/// The column `SaleCount` is asked for but not read: no action row has a limit.
using ActionColumn = FromColumn<PluAction>;
constexpr RowField<PluAction> kActionColumns[] = {
    {"SerialNo", ActionColumn::Integer<&PluAction::SerialNo>}, {"PluCode", ActionColumn::KeptText<&PluAction::PluCode>},
    {"PluType", ActionColumn::KeptText<&PluAction::PluType>},  {"DscType", ActionColumn::KeptText<&PluAction::DisType>},
    {"DscPrice", ActionColumn::Double<&PluAction::DisPrice>},  {"DscRate", ReadRate},
};

/// Whether a demand is made at all and not met.
bool IsShort(double demand, double held) { return demand > 0 && demand > held; }

/// Tells the demand of a condition row that is not met.
void RefuseShort(const RuleRun& run, const PluCondition& condition, double count, double money) {
  if (run.Told() == nullptr) return;
  const bool isShortOfPieces = IsShort(condition.MinNum, count);
  Telling telling = run.Refuse(Reason::ConditionShort);
  for (const SalePlu& line : run.Lines()) {
    if (RowNamesLine(condition, line)) telling.On(line);
  }
  telling.Goods(NamesGoods(condition) ? condition.PluCode : nullptr)
      .Row(condition.SerialNo)
      .Has(isShortOfPieces ? Unit::Quantity : Unit::Money, isShortOfPieces ? count : money)
      .Needs(isShortOfPieces ? condition.MinNum : condition.MinMoney);
}

}  // namespace

void ProCombCondition::InitRule(Text xml) { ReadRule(xml, *this); }

void ProCombCondition::CalcRule(RuleRun& run) {
  if (!run.MeetsConditions()) return;
  QString message;
  if (!LoadRuleDetail(message)) {
    Log(QString::fromUtf8(LogText::kConditionFailed) + message);
    run.RefuseUnreadable(message);
    return;
  }
  if (m_actions.empty()) run.Refuse(Reason::NoRows);
  const LinePtrs single = SelectSingleLines(run);
  if (single.empty()) return;
  CombPool pool = GetCondLines(run, single);
  if (!CheckCondRows(run, pool) || !MeetsControl(run, pool)) return;
  Discounts given;
  DiscountByGoods(run, pool.Lines, given);
  DiscountByClass(run, pool.Lines, given);
  LogApportions(given);
  run.Limit();
}

// --- Rows -----------------------------------------------------------------------------------------------------------

bool ProCombCondition::LoadRuleDetail(QString& error) {
  m_conditions.clear();
  m_controls.clear();
  m_actions.clear();
  DetailTables tables(m_db, Info.BillNo, error);
  if (!tables.Open()) return false;
  const bool read =
      tables.Read(tables.Select(
                      "select SerialNo,PluCode,PluType,SaleCount,PriceTotal  from tProCombConditionAct where BillNo="),
                  kConditionColumns, m_conditions) &&
      tables.Read(tables.Select("select SerialNo,PriceTotal,CountTotal from tProPrjCombCtrl where BillNo="),
                  kControlColumns, m_controls) &&
      tables.Read(tables.Select("select SerialNo,PluCode,PluType,SaleCount,DscType,DscPrice,DscRate  from "
                                "tProPrjCombPluSet where BillNo="),
                  kActionColumns, m_actions);
  if (!read) Log(error);
  return read;
}

// --- Conditions -----------------------------------------------------------------------------------------------------

/// The lines that action rows name, once for each row that does, from the last line to the first; and what is open on
/// all candidates.
CombPool ProCombCondition::GetCondLines(const RuleRun& run, const LinePtrs& candidates) const {
  CombPool pool;
  for (SalePlu* line : LastToFirst(candidates)) {
    const double open = run.OpenCount(*line);
    pool.Money += GetLineLeftTotal(*line, Info.Primary, Info.ProMode);  // under the family word, not the type
    pool.Quantity += open;
    if (open == 0 && run.Told() == nullptr) continue;
    const auto naming = std::count_if(m_actions.begin(), m_actions.end(),
                                      [&](const PluAction& action) { return RowNamesLine(action, *line); });
    if (naming == 0) run.Note(Reason::NotNamed).On(*line);
    if (open == 0) {
      if (naming > 0) run.NoteNothingOpen(*line);
      continue;
    }
    pool.Lines.insert(pool.Lines.end(), static_cast<std::size_t>(naming), line);
  }
  return pool;
}

/// Whether every condition row holds. The conditions look at whole lines, packages and lines that earlier rules have
/// taken included.
///
/// @param sums in and out: with condition rows, what they cover in place of what is open. A line that two rows cover
///             counts twice.
bool ProCombCondition::CheckCondRows(const RuleRun& run, CombPool& sums) const {
  if (m_conditions.empty()) return true;
  sums.Quantity = 0;
  sums.Money = 0;
  for (const PluCondition& condition : LastToFirst(m_conditions)) {
    double count = 0;
    double money = 0;
    for (const SalePlu& line : LastToFirst(run.Lines())) {
      if (!RowNamesLine(condition, line)) continue;
      count += line.PluCount;
      money += line.PluCount * line.FinalPrice;
    }
    if (IsShort(condition.MinNum, count) || IsShort(condition.MinMoney, money)) {
      RefuseShort(run, condition, count, money);
      return false;
    }
    sums.Quantity += count;
    sums.Money += money;
  }
  return true;
}

/// Only the first control row counts.
bool ProCombCondition::MeetsControl(const RuleRun& run, const CombPool& sums) const {
  if (m_controls.empty()) return true;
  const CombCondCtrl& control = m_controls.front();
  const bool isShortOfPieces = IsShort(control.CountTotal, sums.Quantity);
  if (!isShortOfPieces && !IsShort(control.PriceTotal, sums.Money)) return true;
  const double demand = isShortOfPieces ? control.CountTotal : control.PriceTotal;
  run.Refuse(Reason::TotalShort)
      .On(sums.Lines)
      .Has(isShortOfPieces ? Unit::Quantity : Unit::Money, isShortOfPieces ? sums.Quantity : sums.Money)
      .Needs(demand);
  return false;
}

// --- Discount -------------------------------------------------------------------------------------------------------

void ProCombCondition::DiscountByGoods(RuleRun& run, const LinePtrs& matched, Discounts& given) const {
  for (const PluAction& action : LastToFirst(m_actions)) {
    if (!NamesGoods(action)) continue;
    LinePtrs lines;
    std::copy_if(matched.begin(), matched.end(), std::back_inserter(lines),
                 [&](const SalePlu* line) { return Same(line->PluCode, action.PluCode); });
    DiscountByRow(run, action, lines, given);
  }
}

/// Every class row is offered to every line that no goods row names, whichever class row matched that line.
void ProCombCondition::DiscountByClass(RuleRun& run, const LinePtrs& matched, Discounts& given) const {
  const LinePtrs outside = SelectOutsideLines(SplitRows(m_actions).PluIn, matched, RowsBy::Goods);
  for (const PluAction& action : LastToFirst(m_actions)) {
    if (!NamesGoods(action)) DiscountByRow(run, action, outside, given);
  }
}

void ProCombCondition::DiscountByRow(RuleRun& run, const PluAction& action, const LinePtrs& lines,
                                     Discounts& given) const {
  for (SalePlu* line : lines) {
    if (!(run.OpenCount(*line) > 0)) {
      run.NoteNothingOpen(*line);
      continue;
    }
    const bool isApportioned = FindRow(line->Apportions, Info.BillNo) != nullptr;
    Allowance unlimited;
    const std::optional<double> taken = run.Discount(*line, action, unlimited);
    if (taken && *taken > 0) given.push_back(isApportioned);
  }
}

/// The rule's money was on its lines before it could be apportioned: all that is left of that step is what it told the
/// log, discount by discount from the last to the first.
void ProCombCondition::LogApportions(const Discounts& given) {
  for (const bool isApportioned : LastToFirst(given)) LogApportion(isApportioned);
}

}  // namespace Corvane
