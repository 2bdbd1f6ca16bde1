#include "promo/mz/Tiers.h"

#include <algorithm>

#include "base/Numbers.h"
#include "engine/Log.h"

namespace Corvane {

namespace {

template <class Number>
bool AddRepeatedIn(Number (*store)(double), std::int32_t count, Number step, Number cap, Number& total) {
  if (ReachesCap(total, cap)) {
    total = cap;
    return true;
  }
  for (std::int32_t round = 0; round < count; ++round) {
    if (round == kMaxRepeats) return false;
    const Number next = store(static_cast<double>(total) + static_cast<double>(step));
    // An addition that changes nothing changes nothing in all rounds to come.
    if (next == total) return true;
    total = next;
    if (ReachesCap(total, cap)) {
      total = cap;
      return true;
    }
  }
  return true;
}

double AsItIs(double value) { return value; }

}  // namespace

void LogTooManyRepeats(Text billNo) { Log(Join("重复次数过多，该方案不参与计算，促销单号：", billNo)); }

void SortTiersDown(std::vector<PluAddAction>& tiers) {
  std::stable_sort(tiers.begin(), tiers.end(), [](const PluAddAction& left, const PluAddAction& right) {
    return SortsBefore(right.BaseConNum, left.BaseConNum);
  });
}

bool AddRepeated(std::int32_t count, double step, double cap, double& total) {
  return AddRepeatedIn(AsItIs, count, step, cap, total);
}

bool AddRepeatedSingle(std::int32_t count, float step, float cap, float& total) {
  return AddRepeatedIn(ToSingle, count, step, cap, total);
}

FurtherSteps FurtherStepsOf(const PluAddAction& tier, double amount) {
  FurtherSteps steps;
  const bool repeatsBase = tier.AddConNum == 0;
  steps.Size = repeatsBase ? tier.BaseConNum : tier.AddConNum;
  steps.Gift = repeatsBase ? tier.BaseDscNum : tier.AddDscNum;
  steps.Count = TruncToInt32((amount - tier.BaseConNum) / steps.Size);
  return steps;
}

std::optional<double> GiveFurtherSteps(const PluAddAction& tier, double remainder, double cap, double& sum) {
  const bool isAbove = tier.SaleMaxIn != 0 && remainder > tier.SaleMaxIn;
  const double amount = isAbove ? tier.SaleMaxIn : remainder;
  const FurtherSteps steps = FurtherStepsOf(tier, amount);
  if (!AddRepeated(steps.Count, steps.Gift, cap, sum)) return std::nullopt;
  const double base = ReachesCap(sum, cap) ? 0 : amount;
  return base - (tier.BaseConNum + steps.Count * steps.Size);
}

}  // namespace Corvane
