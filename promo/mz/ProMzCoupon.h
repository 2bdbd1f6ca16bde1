#ifndef QNCORVANE_PROMO_MZ_PROMZCOUPON_H
#define QNCORVANE_PROMO_MZ_PROMZCOUPON_H

#include <tinyxml.h>

#include <cstddef>
#include <optional>
#include <vector>

#include "promo/mz/ProMzList.h"
#include "rule/LinePtrs.h"
#include "rule/ProBase.h"
#include "rule/RuleRun.h"

namespace Corvane {

/// "MZZQ", the giving of coupons: a sale, or a chosen part of it, that brings enough money earns a coupon value, which
/// is cut into coupons. The lines stay as they are: a sale-level result tells the value, and the coupons stay in the
/// sale and go with it. All data comes from the rule's XML; no table is read.
class ProMzCoupon : public ProBase {
 public:
  /// The most coupons made at one giving, far above any denomination in use. A value that would need more is not given,
  /// and the log says so.
  static constexpr std::size_t kMaxCoupons = 100'000;

  /// Reads the groups "ProList", each of which is one list, besides header and filters.
  void InitRule(Text xml);

  void CalcRule(RuleRun& run);

  /// The coupon value that an amount earns over the tiers of a list.
  /// @param list  its tiers stand by falling threshold.
  /// @param run   is told of the tiers that are not reached; null where there is none.
  /// @param lines those that bring the amount; null for the whole sale.
  static double SumOfTiers(const ProMzList& list, double amount, const RuleRun* run = nullptr,
                           const LinePtrs* lines = nullptr);

 protected:
  std::vector<ProMzList> m_lists;  ///< lists, for the life of the rule

 private:
  void ReadList(const TiXmlElement& group);
  void CalcList(RuleRun& run, ProMzList& list) const;
  std::optional<double> GiveCoupons(const RuleRun& run, const ProMzList& list, double amount) const;
  SaleCoupon MakeCoupon(ProSale& sale, const CouponType& header, double value) const;
};

}  // namespace Corvane

#endif
