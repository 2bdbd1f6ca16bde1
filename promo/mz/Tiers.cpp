#include "promo/mz/Tiers.h"

#include <algorithm>

#include "base/Numbers.h"
#include "log/Log.h"
#include "log/LogTexts.h"

namespace Corvane {

namespace {

/// @return the sum after `count` additions, or the cap.
double AddUpTo(double cap, std::int64_t count, RepeatedSum sum) {
  while (count > 0 && !ReachesCap(sum.Value(), cap)) {
    const std::int64_t rounds = RoundsAtOnce(std::min(count, EvenRoundsBelowCap(sum, cap)));
    sum.Add(rounds);
    count -= rounds;
  }
  return ReachesCap(sum.Value(), cap) ? cap : sum.Value();
}

}  // namespace

void LogTooManyRepeats(Text billNo) { Log(LogText::kTooManyRepeats, billNo); }

TierUnit UnitOf(Text word) {
  if (Same(word, "SUM")) return TierUnit::Money;
  return Same(word, "NUM") ? TierUnit::Quantity : TierUnit::Unknown;
}

void SortTiersDown(std::vector<PluAddAction>& tiers) {
  std::stable_sort(tiers.begin(), tiers.end(), [](const PluAddAction& left, const PluAddAction& right) {
    return SortsBefore(right.BaseConNum, left.BaseConNum);
  });
}

void AddRepeated(std::int32_t count, double step, double cap, double& total) {
  total = AddUpTo(cap, count, RepeatedSum(total, step));
}

void AddRepeatedSingle(std::int32_t count, float step, float cap, float& total) {
  total = ToSingle(AddUpTo(cap, count, RepeatedSum(total, step, RepeatedSum::Precision::Single)));
}

std::int64_t EvenRoundsBelowCap(const RepeatedSum& sum, double cap) {
  return cap == 0 ? sum.EvenRounds() : sum.EvenRoundsBelow(cap);
}

FurtherSteps FurtherStepsOf(const PluAddAction& tier, double amount) {
  FurtherSteps steps;
  const bool repeatsBase = tier.AddConNum == 0;
  steps.Size = repeatsBase ? tier.BaseConNum : tier.AddConNum;
  steps.Gift = repeatsBase ? tier.BaseDscNum : tier.AddDscNum;
  steps.Count = TruncToInt32(Quotient(amount - tier.BaseConNum, steps.Size));
  return steps;
}

double GiveFurtherSteps(const PluAddAction& tier, double remainder, double cap, double& sum) {
  const bool isAbove = tier.SaleMaxIn != 0 && remainder > tier.SaleMaxIn;
  const double amount = isAbove ? tier.SaleMaxIn : remainder;
  const FurtherSteps steps = FurtherStepsOf(tier, amount);
  AddRepeated(steps.Count, steps.Gift, cap, sum);
  const double base = ReachesCap(sum, cap) ? 0 : amount;
  return base - (tier.BaseConNum + steps.Count * steps.Size);
}

}  // namespace Corvane
