#include "promo/mz/Tiers.h"

#include <algorithm>

#include "base/Numbers.h"
#include "log/Log.h"
#include "log/LogTexts.h"

namespace Corvane {

namespace {

/// @return the sum after `count` additions, or the limit.
double AddUpTo(double limit, std::int64_t count, RepeatedSum sum) {
  while (count > 0 && !ReachesLimit(sum.Value(), limit)) {
    const std::int64_t rounds = RoundsAtOnce(std::min(count, EvenRoundsBelowLimit(sum, limit)));
    sum.Add(rounds);
    count -= rounds;
  }
  return ReachesLimit(sum.Value(), limit) ? limit : sum.Value();
}

}  // namespace

void LogTooManyRepeats(Text billNo) { Log(LogText::kTooManyRepeats, billNo); }

TierUnit UnitOf(Text word) {
  if (Same(word, UnitWord::kMoney)) return TierUnit::Money;
  return Same(word, UnitWord::kQuantity) ? TierUnit::Quantity : TierUnit::Unknown;
}

namespace {

void NoteBelowMark(const RuleRun& run, const std::vector<PluAddAction>& tiers, const PluAddAction& tier, Unit unit,
                   double have, double need, const LinePtrs* lines) {
  if (run.Told() == nullptr) return;
  Telling telling = run.Note(Reason::BelowThreshold);
  telling.Row(tier.SerialNo).Tier(&tier - tiers.data()).Has(unit, have).Needs(need);
  if (lines != nullptr) {
    telling.On(*lines);
  } else {
    telling.On(run.Lines());
  }
}

}  // namespace

void NoteBelow(const RuleRun& run, const std::vector<PluAddAction>& tiers, const PluAddAction& tier, Unit unit,
               double have, const LinePtrs* lines) {
  NoteBelowMark(run, tiers, tier, unit, have, tier.BaseConNum, lines);
}

void NoteNextStep(const RuleRun& run, const std::vector<PluAddAction>& tiers, const PluAddAction& tier, double amount,
                  double limit, double sum, const LinePtrs* lines) {
  if (run.Told() == nullptr || ReachesLimit(sum, limit)) return;
  const FurtherSteps steps = FurtherStepsOf(tier, amount);
  const double next = tier.BaseConNum + (steps.Count + 1.0) * steps.Size;
  const bool isOpen =
      steps.Gift > 0 && steps.Size > 0 && next > amount && (tier.SaleMaxIn == 0 || next <= tier.SaleMaxIn);
  if (isOpen) NoteBelowMark(run, tiers, tier, Unit::Money, amount, next, lines);
}

void NoteUnknownUnit(const RuleRun& run, const std::vector<PluAddAction>& tiers, const PluAddAction& tier) {
  const bool isCounted = UnitOf(tier.BaseConTp) == TierUnit::Unknown;
  run.Note(Reason::UnknownUnit)
      .Row(tier.SerialNo)
      .Tier(&tier - tiers.data())
      .Has(Unit::UnitOfTier, isCounted ? tier.BaseConTp : tier.BaseDscTp)
      .Needs(UnitWord::kAll);
}

void SortTiersDown(std::vector<PluAddAction>& tiers) {
  std::stable_sort(tiers.begin(), tiers.end(), [](const PluAddAction& left, const PluAddAction& right) {
    return SortsBefore(right.BaseConNum, left.BaseConNum);
  });
}

void AddRepeated(std::int32_t count, double step, double limit, double& total) {
  total = AddUpTo(limit, count, RepeatedSum(total, step));
}

void AddRepeatedSingle(std::int32_t count, float step, float limit, float& total) {
  total = ToSingle(AddUpTo(limit, count, RepeatedSum(total, step, RepeatedSum::Precision::Single)));
}

std::int64_t EvenRoundsBelowLimit(const RepeatedSum& sum, double limit) {
  return limit == 0 ? sum.EvenRounds() : sum.EvenRoundsBelow(limit);
}

FurtherSteps FurtherStepsOf(const PluAddAction& tier, double amount) {
  FurtherSteps steps;
  const bool repeatsBase = tier.AddConNum == 0;
  steps.Size = repeatsBase ? tier.BaseConNum : tier.AddConNum;
  steps.Gift = repeatsBase ? tier.BaseDscNum : tier.AddDscNum;
  steps.Count = TruncToInt32(Quotient(amount - tier.BaseConNum, steps.Size));
  return steps;
}

double GiveFurtherSteps(const PluAddAction& tier, double remainder, double limit, double& sum) {
  const bool isAbove = tier.SaleMaxIn != 0 && remainder > tier.SaleMaxIn;
  const double amount = isAbove ? tier.SaleMaxIn : remainder;
  const FurtherSteps steps = FurtherStepsOf(tier, amount);
  AddRepeated(steps.Count, steps.Gift, limit, sum);
  const double base = ReachesLimit(sum, limit) ? 0 : amount;
  return base - (tier.BaseConNum + steps.Count * steps.Size);
}

}  // namespace Corvane
