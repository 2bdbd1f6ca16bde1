#ifndef QNCORVANE_PROMO_MZ_PROMZUSECOUPON_H
#define QNCORVANE_PROMO_MZ_PROMZUSECOUPON_H

#include "promo/mz/ProMzCoupon.h"
#include "rule/LinePtrs.h"
#include "rule/RuleRun.h"

namespace Corvane {

/// "MZYQ", the use of coupons: when the cashier presents coupons, the tiers tell how much coupon value the sale may
/// take in. It takes in at most what was presented, and spreads it over the lines as a discount.
///
/// A rule that gives coupons is loaded as one of these, with the `ProType` "MZZQ": the two have one data shape, and the
/// object answers to both steps. Here the tiers' sums mean the value taken; coupon header and denominations mean
/// nothing.
class ProMzUseCoupon : public ProMzCoupon {
 public:
  void CalcRule(RuleRun& run);

 private:
  static void CalcList(RuleRun& run, ProMzList& list);
  static void TakeCoupons(RuleRun& run, const ProMzList& list, double amount, const LinePtrs& chosen);
  static float SumOfTiers(const RuleRun& run, const ProMzList& list, double amount, const LinePtrs* lines);
};

}  // namespace Corvane

#endif
