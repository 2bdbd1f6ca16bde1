#include "promo/direct/ProDirectOs.h"

#include <algorithm>
#include <cmath>
#include <optional>

#include "base/Numbers.h"
#include "base/Walk.h"
#include "promo/UnusableRow.h"
#include "rule/ActionPrice.h"
#include "rule/EligibleQuantity.h"
#include "rule/ResultRows.h"
#include "rule/RuleReader.h"

namespace Corvane {

namespace {

/// What one unit gains. @return nothing when the price is no gain.
struct UnitGain {
  double Money = 0;
  bool ChangesLine = true;  ///< false for a price kind that this type doesn't know: only the row is written
};

/// The price that a row leaves of a line; the rate is one of the line's price.
double PriceOf(const PluAction& action, const SalePlu& line) {
  return Same(action.DisType, PriceKind::kRate) ? action.DisRate * line.Price / 100 : action.DisPrice;
}

std::optional<UnitGain> GainByAction(const PluAction& action, const SalePlu& line, double base) {
  if (Same(action.DisType, PriceKind::kPrice)) {
    if (ReachesPrice(action.DisPrice, base)) return std::nullopt;
    return UnitGain{base - action.DisPrice};
  }
  if (Same(action.DisType, PriceKind::kRate)) {
    // The rate is one of the line's price, not of the base.
    const double kept = PriceOf(action, line);
    if (ReachesPrice(kept, base)) return std::nullopt;
    return UnitGain{base - kept};
  }
  return UnitGain{base - action.DisPrice, false};
}

/// What this type knows of the kinds of price.
constexpr Text kPriceKinds = "PRC, RAT";

void NoteNoGain(const RuleRun& run, const PluAction& action, const SalePlu& line, double base) {
  run.Note(Reason::NoGain).On(line).Row(action.SerialNo).Has(Unit::Price, base).Needs(PriceOf(action, line));
}

Telling NoteBelowSet(const RuleRun& run, const PluCondition& condition, double units) {
  Telling telling = run.Note(Reason::BelowSetSize);
  telling.Row(condition.SerialNo).Has(Unit::Quantity, units).Needs(condition.MinNum);
  return telling;
}

/// Notes the units that belong to no full set at the end.
void NoteCarry(const RuleRun& run, const PluCondition& condition, const LinePtrs& pool, double carry) {
  if (run.Told() == nullptr) return;
  Telling telling = NoteBelowSet(run, condition, carry);
  telling.Goods(condition.PluCode);
  for (const SalePlu* line : pool) {
    if (Same(line->PluCode, condition.PluCode)) telling.On(*line);
  }
}

}  // namespace

void ProDirectOs::InitRule(Text xml) { ReadRule(xml, *this); }

void ProDirectOs::CalcRule(RuleRun& run) {
  if (!run.MeetsConditions()) return;
  m_detail.LoadRuleDetail(m_db, run);  // nothing changes the lines meanwhile
  const LinePtrs pool = SelectRowLines(run, SelectSingleLines(run));
  if (pool.empty()) return;
  for (const PluCondition& condition : LastToFirst(m_detail.Conditions())) {
    if (condition.MinNum >= 1) {
      DiscountByRow(run, condition, pool);
    } else {
      LogUnusableSaleCount(Info.BillNo, condition.SerialNo);
      run.Note(Reason::UnusableRow).Row(condition.SerialNo).Has(Unit::Count, condition.MinNum).Needs(1);
    }
  }
  run.Limit();
}

/// The lines that a row names by goods code and that have a quantity open. Every row counts as including, and a class
/// row's code is compared with the goods code like any other.
LinePtrs ProDirectOs::SelectRowLines(const RuleRun& run, const LinePtrs& lines) const {
  LinePtrs pool;
  for (SalePlu* line : lines) {
    for (const PluCondition& row : LastToFirst(m_detail.Conditions())) {
      if (!Same(row.PluCode, line->PluCode) || run.OpenCount(*line) <= 0) continue;
      pool.push_back(line);
      break;
    }
    if (run.Told() != nullptr && (pool.empty() || pool.back() != line)) NoteOutside(run, *line);
  }
  return pool;
}

/// Notes why a line is not in the pool.
void ProDirectOs::NoteOutside(const RuleRun& run, const SalePlu& line) const {
  const std::vector<PluCondition>& rows = m_detail.Conditions();
  const bool isNamed =
      std::any_of(rows.begin(), rows.end(), [&](const PluCondition& row) { return Same(row.PluCode, line.PluCode); });
  if (isNamed) {
    run.NoteNothingOpen(line);
  } else {
    run.Note(Reason::NotNamed).On(line);
  }
}

void ProDirectOs::DiscountByRow(RuleRun& run, const PluCondition& condition, const LinePtrs& pool) const {
  SetCount count;
  for (SalePlu* line : pool) {
    if (!Same(line->PluCode, condition.PluCode)) continue;
    if (run.OpenCount(*line) <= 0) {
      run.NoteNothingOpen(*line);
      continue;
    }
    count.Sum += line->PluCount;
    if (condition.MinNum > count.Sum) {
      count.Carry += line->PluCount;
    } else if (!ApplyOsDiscount(run, condition, *line, count)) {
      return;
    }
  }
  if (count.Carry > 0) NoteCarry(run, condition, pool, count.Carry);
}

/// @return false when the row's price is no gain on this line.
bool ProDirectOs::ApplyOsDiscount(RuleRun& run, const PluCondition& condition, SalePlu& line, SetCount& count) const {
  const PluAction& action = m_detail.ActionOf(condition);
  const Taken earlier = TakenOn(line, [&](const ProResult& row) { return IsGivenBack(row, Info); });
  const double unitsOpen = count.Carry + line.PluCount - earlier.Quantity;
  const double sets = TakeSets(run, condition, unitsOpen, count);
  if (PrintsAsZero(sets)) {
    NoteBelowSet(run, condition, unitsOpen).On(line);
    return true;
  }

  const double base = RoundMoney(Quotient(earlier.Money + line.Total, line.PluCount));
  const std::optional<UnitGain> gain = GainByAction(action, line, base);
  if (!gain) {
    NoteNoGain(run, action, line, base);
    return false;
  }
  const Award award{sets, gain->Money * sets, action.DisPrice};
  if (!gain->ChangesLine) {
    run.Note(Reason::UnknownPriceKind).On(line).Row(action.SerialNo).Has(Unit::Kind, action.DisType).Needs(kPriceKinds);
  }
  // Always a row of its own, also where the rule has one on the line.
  if (gain->ChangesLine) {
    line.DisNum = sets;
    run.Give(line, award);
  } else {
    run.Record(line, award);
  }
  return true;
}

/// The full sets among the units, as far as the rule's limit by quantity allows; what belongs to none carries over.
double ProDirectOs::TakeSets(const RuleRun& run, const PluCondition& condition, double units, SetCount& count) const {
  const double sets = std::floor(Quotient(units, condition.MinNum));
  if (Same(Info.MaxYhType, LimitKind::kQuantity)) {
    const double left = GetRuleLeftCount(Info.BillNo, Info.MaxYhValue, run.Lines());
    if (left < sets) {
      run.Note(Reason::LimitUsedUp).Has(Unit::Quantity, Info.MaxYhValue - left).Needs(Info.MaxYhValue);
      count.Carry = units - condition.MinNum * left;
      return left;
    }
  }
  count.Carry = TruncToInt32(units) % TruncToInt32(condition.MinNum);
  return sets;
}

}  // namespace Corvane
