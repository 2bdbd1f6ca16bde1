#ifndef QNCORVANE_PROMO_MZ_TIERS_H
#define QNCORVANE_PROMO_MZ_TIERS_H

#include <cmath>
#include <cstdint>
#include <vector>

#include "base/RepeatedSum.h"
#include "base/Text.h"
#include "rule/RuleRun.h"
#include "sale/SaleRecords.h"

namespace Corvane {

// What the walks through tiers have in common. A tier is reached at its threshold, gives its base sum once, and gives
// its step sum for each further step that fits.

/// The unit of a threshold or a gift.
enum class TierUnit { Money, Quantity, Unknown };

/// The words for units in tables and rules.
namespace UnitWord {
constexpr Text kMoney = "SUM";
constexpr Text kQuantity = "NUM";
constexpr Text kAll = "SUM, NUM";
}  // namespace UnitWord

/// @param word one of UnitWord; any other is no unit.
TierUnit UnitOf(Text word);

/// Logs that a list of the rule would never come to an end and gives nothing.
void LogTooManyRepeats(Text billNo);

/// Order of numbers for sorting: `left < right`, and what is no number behind all numbers.
inline bool SortsBefore(double left, double right) { return left < right || (!std::isnan(left) && std::isnan(right)); }

/// Orders tiers by falling threshold. Tiers with equal thresholds keep their order; nothing may rely on it.
void SortTiersDown(std::vector<PluAddAction>& tiers);

/// The tiers behind one of a list, in their order, for a range-for. The list must outlive the walk.
class TiersBehind {
 public:
  /// @param tier an entry of `tiers`.
  TiersBehind(const std::vector<PluAddAction>& tiers, const PluAddAction& tier)
      : m_first(&tier + 1), m_end(tiers.data() + tiers.size()) {}
  const PluAddAction* begin() const { return m_first; }
  const PluAddAction* end() const { return m_end; }

 private:
  const PluAddAction* m_first;
  const PluAddAction* m_end;
};

/// Notes that a tier is not reached. What it misses may have been taken by rules on those lines.
///
/// @param tiers the list that holds the tier, from the highest threshold on.
/// @param have  what counts toward the threshold.
/// @param lines those that count; null for the whole sale.
void NoteBelow(const RuleRun& run, const std::vector<PluAddAction>& tiers, const PluAddAction& tier, Unit unit,
               double have, const LinePtrs* lines);

/// Notes what the next of a tier's further steps would take, where there is one: neither `SaleMaxIn` nor the limit of the sum
/// stands against it.
///
/// @param amount what reached the tier.
/// @param limit  of the sum; 0 means none.
/// @param sum    what the list gives, this tier included.
void NoteNextStep(const RuleRun& run, const std::vector<PluAddAction>& tiers, const PluAddAction& tier, double amount,
                  double limit, double sum, const LinePtrs* lines);

/// The unit in which a tier that names it is told.
inline Unit ToldUnit(const PluAddAction& tier) {
  return UnitOf(tier.BaseConTp) == TierUnit::Quantity ? Unit::Quantity : Unit::Money;
}

/// Notes that a tier counts or gives in an unknown unit.
void NoteUnknownUnit(const RuleRun& run, const std::vector<PluAddAction>& tiers, const PluAddAction& tier);

/// Whether a sum has reached a limit; a limit of 0 is none.
inline bool ReachesLimit(double sum, double limit) { return limit != 0 && sum >= limit; }

/// Adds `step` to `total`, `count` times, and stops at the limit. A total that is at or above the limit is cut to it at
/// once, with a count of 0 or less too. The sum is made by additions one by one, never by a multiplication: its
/// rounding is part of the result.
///
/// @param limit 0 means none.
void AddRepeated(std::int32_t count, double step, double limit, double& total);

/// AddRepeated in single precision: the additions are made in double precision, and each total is stored in single.
void AddRepeatedSingle(std::int32_t count, float step, float limit, float& total);

/// How many further additions are sure to leave a sum below a limit, and may be made at once; a limit of 0 is none.
std::int64_t EvenRoundsBelowLimit(const RepeatedSum& sum, double limit);

/// The steps that a tier gives beyond its threshold.
struct FurtherSteps {
  std::int32_t Count = 0;
  double Gift = 0;  ///< given for each step
  double Size = 0;  ///< what each step uses up
};

/// The further steps that fit into `amount`. There is no tolerance: an amount a hair short of a step doesn't count it.
/// A step size of 0 makes no steps.
FurtherSteps FurtherStepsOf(const PluAddAction& tier, double amount);

/// Gives the further steps of a tier that was reached.
///
/// @param remainder what reached the tier. What lies above the tier's `SaleMaxIn` is dropped; lower tiers don't see it.
/// @param limit       limit of the sum; 0 means none. When it is reached, nothing is left for lower tiers.
/// @param sum       in and out: what the list gives.
/// @return the new remainder, which may be negative.
double GiveFurtherSteps(const PluAddAction& tier, double remainder, double limit, double& sum);

}  // namespace Corvane

#endif
