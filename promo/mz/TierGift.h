#ifndef QNCORVANE_PROMO_MZ_TIERGIFT_H
#define QNCORVANE_PROMO_MZ_TIERGIFT_H

#include <cstdint>
#include <optional>

#include "sale/SaleRecords.h"

namespace Corvane {

// What a tier gives out of goods ("MZDP", "MZZM"), when threshold and gift are each counted in money or in quantity.
// The pool, the goods that are there to be given, is counted in the unit of the threshold.

/// The gift of a tier at its threshold, and what its further steps go by.
struct TierGift {
  double Amount = 0;    ///< the gift, in the unit of the threshold
  double Quantity = 0;  ///< the gift in units of goods; 0 when money is given out of money
  double StepGift = 0;  ///< the gift of a further step, in the unit of the threshold
  double Limit = 0;     ///< `SaleMaxIn` in the unit of the threshold
};

/// @param pool  the goods there to be given; no more is given at the threshold.
/// @param price unit price that turns quantity into money and back.
/// @return nothing when the tier's two units are not a pair of "SUM" and "NUM".
std::optional<TierGift> GiftAtThreshold(const PluAddAction& tier, double pool, double price);

/// The size of a further step. Unlike the tiers that give a sum, a negative `AddConNum` is none here.
inline double StepSizeOf(const PluAddAction& tier) { return tier.AddConNum > 0 ? tier.AddConNum : tier.BaseConNum; }

/// How many further steps fit into an amount, cut toward zero.
std::int32_t CountSteps(const PluAddAction& tier, double amount);

/// Whether two tiers give out of the same goods and count in the same unit: what one leaves over, the other may give.
bool SharesGoods(const PluAddAction& left, const PluAddAction& right);

}  // namespace Corvane

#endif
