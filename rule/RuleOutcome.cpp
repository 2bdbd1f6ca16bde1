#include "rule/RuleOutcome.h"

#include <algorithm>
#include <iterator>
#include <limits>
#include <map>

#include "base/Numbers.h"

namespace Corvane {

namespace {

/// What a decision misses; the most there is where it has no two numbers.
double MissingOf(const Decision& decision) {
  const double* const have = std::get_if<double>(&decision.Have);
  const double* const need = std::get_if<double>(&decision.Need);
  return have != nullptr && need != nullptr ? *need - *have : std::numeric_limits<double>::max();
}

/// Whether lines with nothing open are why it came to a reason: they would count, but for the rules that took them.
bool ComesOfTakenLines(Reason reason) {
  return reason == Reason::BelowMinimum || reason == Reason::BelowSetSize || reason == Reason::BelowThreshold ||
         reason == Reason::NothingAboveThreshold;
}

/// Whether one decision tells who took what another misses.
bool TellsTakersOf(const Decision& decision, const Decision& missing) {
  if (missing.Why == Reason::SlotShort) return decision.Why == Reason::SlotShort && decision.Slot == missing.Slot;
  return decision.Why == Reason::NothingOpen && ComesOfTakenLines(missing.Why);
}

void AddTaker(std::vector<Taker>& takers, const Taker& added) {
  const bool isTold =
      std::any_of(takers.begin(), takers.end(), [&](const Taker& taker) { return Same(taker.BillNo, added.BillNo); });
  if (!isTold) takers.push_back(added);
}

void AddTakers(std::vector<Taker>& takers, const std::vector<Taker>& added) {
  for (const Taker& taker : added) AddTaker(takers, taker);
}

bool IsNearer(const Decision& decision, const Decision& other) {
  if (decision.IsFinal != other.IsFinal) return decision.IsFinal;
  if (decision.Why != other.Why) return decision.Why > other.Why;
  return MissingOf(decision) < MissingOf(other);
}

}  // namespace

bool RuleOutcome::HasGiven() const {
  if (Offers > 0 || Coupons > 0 || SaleRows > 0) return true;
  std::map<std::int32_t, double> given;
  for (const Movement& movement : Movements) given[movement.Line] += movement.After - movement.Before;
  return std::any_of(given.begin(), given.end(), [](const auto& line) { return RoundMoney(line.second) != 0; });
}

Decision RuleOutcome::Deciding() const {
  const Decision* deciding = nullptr;
  for (const Decision& decision : Decisions) {
    if (deciding == nullptr || IsNearer(decision, *deciding)) deciding = &decision;
  }
  if (deciding == nullptr) return {};
  Decision decided = *deciding;
  for (const Decision& decision : Decisions) {
    if (TellsTakersOf(decision, decided)) AddTakers(decided.TakenBy, decision.TakenBy);
  }
  return decided;
}

Telling& Telling::On(const LinePtrs& lines) {
  if (m_decision == nullptr) return *this;
  for (const SalePlu* line : lines) {
    std::vector<std::int32_t>& told = m_decision->Lines;
    if (std::find(told.begin(), told.end(), line->Index) == told.end()) told.push_back(line->Index);
  }
  return *this;
}

Telling& Telling::On(const std::vector<SalePlu>& lines) {
  if (m_decision == nullptr) return *this;
  for (const SalePlu& line : lines) m_decision->Lines.push_back(line.Index);
  return *this;
}

Telling& Telling::TakenBy(const ProResult& row) {
  if (m_decision != nullptr) AddTaker(m_decision->TakenBy, {row.ProBillNo, row.Primary});
  return *this;
}

void SetRowMoney(RuleOutcome* outcome, const std::vector<SalePlu>& lines, ProResult& row, double money, Change how,
                 double quantity) {
  const double before = row.DisMoney;
  row.DisMoney = money;
  if (outcome == nullptr || before == money) return;
  for (const SalePlu& line : lines) {
    const std::vector<ProResult>& rows = line.ProResults;
    const auto own = std::find_if(rows.begin(), rows.end(), [&](const ProResult& held) { return &held == &row; });
    if (own == rows.end()) continue;
    outcome->Movements.push_back(
        {how, line.Index, static_cast<std::int32_t>(std::distance(rows.begin(), own)), quantity, before, money});
    return;
  }
}

}  // namespace Corvane
