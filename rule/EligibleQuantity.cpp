#include "rule/EligibleQuantity.h"

#include <algorithm>

#include "base/Numbers.h"
#include "base/Walk.h"
#include "log/Log.h"
#include "log/LogTexts.h"
#include "rule/ResultRows.h"
#include "rule/RuleType.h"

namespace Corvane {

namespace {

bool CountsAsUsed(const ProResult& row, Text primary, Text proType) {
  const std::string_view family = FamilyOf(proType);
  const bool ownFamily = FamilyOf(row.ProType) == family;
  const bool ownFamilyCounts = family == Family::kOrdinary || family == Family::kCombination ||
                               (family == Family::kFullAmount && !SameIgnoringCase(primary, StackingClass::kDj)) ||
                               Same(primary, StackingClass::kPt);
  return (ownFamily && ownFamilyCounts) || Same(row.Primary, StackingClass::kDz);
}

/// Whether the row takes the whole line from a rule of this type.
bool TakesWholeLine(const ProResult& row, const RuleType& type) {
  return type.Has(Fact::TakesLinesWhole) && Same(row.ProType, type.Word);
}

double UsedQuantity(const SalePlu& line, Text primary, Text proType) {
  const RuleType& type = TypeOf(proType);
  double used = 0;
  for (const ProResult& row : LastToFirst(line.ProResults)) {
    if (TakesWholeLine(row, type)) {
      // Two such rules never share a line: the row takes all of it, whatever was summed so far. Rows met later add.
      used = line.PluCount;
    } else if (CountsAsUsed(row, primary, proType)) {
      used += row.DisNum;
    }
  }
  return used;
}

/// Unlike the quantity: a "DJ" row never counts, and a row of the own family only under "PT".
bool CountsAsUsedMoney(const ProResult& row, Text primary, Text proType) {
  return Same(row.Primary, StackingClass::kDz) ||
         (Same(row.Primary, StackingClass::kPt) && FamilyOf(row.ProType) == FamilyOf(proType) &&
          !SameIgnoringCase(primary, StackingClass::kDj));
}

/// Whether the limit by quantity is enforced here and not by the type itself.
bool IsLimitedByQuantity(const ProInfo& rule, Text proType) {
  return Same(rule.MaxYhType, LimitKind::kQuantity) && !TypeOf(proType).Has(Fact::LimitsItself);
}

double CountHeldByRule(Text billNo, const std::vector<SalePlu>& lines) {
  double held = 0;
  for (const SalePlu& line : lines) {
    for (const ProResult& row : line.ProResults) {
      if (!Same(row.ProBillNo, billNo)) continue;
      Log(LogText::kHeldRow);
      held += row.DisNum;
    }
  }
  return held;
}

}  // namespace

double GetCalcCount(const SalePlu& line, const ProInfo& rule, const std::vector<SalePlu>& lines) {
  return GetCalcCount(line, rule, rule.ProType, lines);
}

double GetCalcCount(const SalePlu& line, const ProInfo& rule, Text proType, const std::vector<SalePlu>& lines) {
  Log(LogText::kLimitKind, rule.MaxYhType);
  Log(LogText::kRuleType, proType);
  const double used = UsedQuantity(line, rule.Primary, proType);
  const bool limited = IsLimitedByQuantity(rule, proType);
  double total = 0;
  if (limited) {
    Log(LogText::kLimitedByQuantity);
    total = CountHeldByRule(rule.BillNo, lines);
  }
  Log(LogText::kHeldQuantity, FormatG6(total));
  const double remaining = WithoutNoise(line.PluCount - used);
  if (!limited) return remaining;

  const double room = WithoutNoise(rule.MaxYhValue - total);
  // A rule that has passed its limit gets a negative quantity, which every caller takes for nothing.
  if (room < remaining) return std::min(rule.MaxYhValue, room);
  if (remaining <= 0) return 0;
  Log(LogText::kOpenQuantity, FormatG6(remaining));
  return std::min(rule.MaxYhValue, remaining);
}

double GetLineLeftTotal(const SalePlu& line, Text primary, Text proType) {
  double used = 0;
  for (const ProResult& row : LastToFirst(line.ProResults)) {
    if (CountsAsUsedMoney(row, primary, proType)) used += row.BaseMoney;
  }
  return line.Total - std::min(used, line.Total);
}

void TellNothingOpen(const SalePlu& line, const ProInfo& rule, Text proType, const std::vector<SalePlu>& lines,
                     RuleOutcome* outcome) {
  if (outcome == nullptr) return;
  if (!(line.PluCount > 0)) {
    Note(outcome, Reason::EmptyLine).On(line).Has(Unit::Quantity, line.PluCount);
    return;
  }
  const double remaining = WithoutNoise(line.PluCount - UsedQuantity(line, rule.Primary, proType));
  if (remaining > 0 && IsLimitedByQuantity(rule, proType)) {
    Note(outcome, Reason::LimitUsedUp)
        .On(line)
        .Has(Unit::Quantity, HeldQuantity(lines, rule.BillNo))
        .Needs(rule.MaxYhValue);
    return;
  }
  Telling telling = Note(outcome, Reason::NothingOpen);
  telling.On(line).Has(Unit::Quantity, remaining);
  TellTakers(line, rule, proType, telling);
}

void TellTakers(const SalePlu& line, const ProInfo& rule, Text proType, Telling& telling) {
  telling.TakenBy(line, [&](const ProResult& row) {
    return TakesWholeLine(row, TypeOf(proType)) || CountsAsUsed(row, rule.Primary, proType);
  });
}

void TellNoMoneyOpen(const SalePlu& line, Text primary, Text proType, RuleOutcome* outcome) {
  if (outcome == nullptr) return;
  if (!(line.Total > 0)) {
    // All of its money may be given away: then it is those who gave it that the rule lacks it by.
    const auto hasGiven = [](const ProResult& row) { return row.DisMoney > 0; };
    const bool isGivenAway = line.PluCount > 0 && std::any_of(line.ProResults.begin(), line.ProResults.end(), hasGiven);
    Note(outcome, isGivenAway ? Reason::NothingOpen : Reason::EmptyLine)
        .On(line)
        .Has(Unit::Money, line.Total)
        .TakenBy(line, hasGiven);
    return;
  }
  Note(outcome, Reason::NothingOpen)
      .On(line)
      .Has(Unit::Money, GetLineLeftTotal(line, primary, proType))
      .TakenBy(line, [&](const ProResult& row) { return CountsAsUsedMoney(row, primary, proType); });
}

double GetRuleLeftCount(Text billNo, double limit, const std::vector<SalePlu>& lines) {
  return RoundMoney(limit - HeldQuantity(lines, billNo));
}

}  // namespace Corvane
