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

std::optional<UnitGain> GainByAction(const PluAction& action, const SalePlu& line, double base) {
  if (Same(action.DisType, PriceKind::kPrice)) {
    if (ReachesPrice(action.DisPrice, base)) return std::nullopt;
    return UnitGain{base - action.DisPrice};
  }
  if (Same(action.DisType, PriceKind::kRate)) {
    // The rate is one of the line's price, not of the base.
    const double kept = action.DisRate * line.Price / 100;
    if (ReachesPrice(kept, base)) return std::nullopt;
    return UnitGain{base - kept};
  }
  return UnitGain{base - action.DisPrice, false};
}

}  // namespace

void ProDirectOs::InitRule(Text xml) { ReadRule(xml, *this); }

void ProDirectOs::CalcRule(RuleRun& run) {
  if (!run.MeetsConditions()) return;
  m_detail.LoadRuleDetail(m_db, Info.BillNo, run.Sale());  // nothing changes the lines meanwhile
  const LinePtrs pool = SelectRowLines(run, SelectSingleLines(run.Lines()));
  if (pool.empty()) return;
  for (const PluCondition& condition : LastToFirst(m_detail.Conditions())) {
    if (condition.MinNum >= 1) {
      DiscountByRow(run, condition, pool);
    } else {
      LogUnusableSaleCount(Info.BillNo, condition.SerialNo);
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
  }
  return pool;
}

void ProDirectOs::DiscountByRow(RuleRun& run, const PluCondition& condition, const LinePtrs& pool) const {
  SetCount count;
  for (SalePlu* line : pool) {
    if (!Same(line->PluCode, condition.PluCode)) continue;
    if (run.OpenCount(*line) <= 0) continue;
    count.Sum += line->PluCount;
    if (condition.MinNum > count.Sum) {
      count.Carry += line->PluCount;
    } else if (!ApplyOsDiscount(run, condition, *line, count)) {
      return;
    }
  }
}

/// @return false when the row's price is no gain on this line.
bool ProDirectOs::ApplyOsDiscount(RuleRun& run, const PluCondition& condition, SalePlu& line, SetCount& count) const {
  const PluAction& action = m_detail.ActionOf(condition);
  const Taken earlier = TakenOn(line, [&](const ProResult& row) { return IsGivenBack(row, Info); });
  const double sets = TakeSets(run, condition, count.Carry + line.PluCount - earlier.Quantity, count);
  if (PrintsAsZero(sets)) return true;

  const double base = RoundMoney(Quotient(earlier.Money + line.Total, line.PluCount));
  const std::optional<UnitGain> gain = GainByAction(action, line, base);
  if (!gain) return false;
  const Award award{sets, gain->Money * sets, action.DisPrice};
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
      count.Carry = units - condition.MinNum * left;
      return left;
    }
  }
  count.Carry = TruncToInt32(units) % TruncToInt32(condition.MinNum);
  return sets;
}

}  // namespace Corvane
