#ifndef QNCORVANE_HOST_NEARMISS_H
#define QNCORVANE_HOST_NEARMISS_H

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "engine/Explanation.h"
#include "host/GoodsList.h"
#include "rule/Decision.h"
#include "sale/ProSale.h"

namespace Corvane::Host {

/// What the cents of a changed sale say beside those of the sale itself.
struct Gain {
  std::int64_t Cents = 0;        ///< more off the whole sale
  std::int64_t RuleCents = 0;    ///< more off by the rule
  std::int64_t Offers = 0;       ///< groups of gifts more
  std::int64_t Coupons = 0;      ///< coupons more
  std::int64_t CouponCents = 0;  ///< their value more
};

/// Something to be added to a sale.
struct Addition {
  enum class Thing { kGoods, kPayment, kCoupon };

  Thing What = Thing::kGoods;
  std::string PluCode;
  std::int32_t SerialNo = 0;    ///< the line that gets more; 0 for a line of its own
  double Count = 0;             ///< pieces; of a payment or coupon its money
  std::optional<double> Price;  ///< of a piece, where it is known
};

/// How near a rule came to its next step.
struct NearMiss {
  RulePtr Rule;
  Decision What;
  double Missing = 0;
  std::vector<Addition> Add;
  std::optional<Gain> Brings;
};

using NearMisses = std::vector<NearMiss>;

/// Finds what would have to be added for each rule's next step, and what that brings: by adding it and calculating again, on
/// copies of the sale. Nothing of it goes into the log, and the sale stays as it is.
///
/// @param told  of the calculation.
/// @param sale  as the calculation left it.
/// @param goods what goods cost that aren't in the sale.
NearMisses FindNearMisses(const std::string& mode, const Explanation& told, const ProSale& sale, GoodsList& goods);

}  // namespace Corvane::Host

#endif
