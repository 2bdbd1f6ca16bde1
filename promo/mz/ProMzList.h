#ifndef QNCORVANE_PROMO_MZ_PROMZLIST_H
#define QNCORVANE_PROMO_MZ_PROMZLIST_H

#include <vector>

#include "base/Text.h"
#include "rule/RuleRows.h"
#include "rule/RuleRun.h"
#include "rule/Spreading.h"
#include "sale/SaleRecords.h"

namespace Corvane {

/// The areas of a sale that a list counts. With any other text nothing counts.
namespace ConditionArea {
constexpr Text kWholeSale = "ALL";
constexpr Text kChosenLines = "DES";
constexpr Text kAll = "ALL, DES";
}  // namespace ConditionArea

/// One list of a full-amount rule, independent of the rule's other lists: its area, its tiers and its own limit.
struct ProMzList {
  Text ConAreaType = nullptr;     ///< area that counts toward the thresholds, and that gets the result
  Text RstAreaType = nullptr;     ///< carried
  double MaxDiscount = 0;         ///< the most that this list gives on one sale; 0 means no limit
  Text DscIntoPlu = nullptr;      ///< "1": the lines' `FinalPrice` becomes the price that the discount leaves
  Text CouponTypeCode = nullptr;  ///< carried
  std::vector<PluCondition> Conditions;
  std::vector<PluAddAction> Tiers;
  CouponType Coupon;                              ///< the kind of coupon given
  std::vector<CouponDenomination> Denominations;  ///< face values into which a coupon sum is cut

  bool IsOfWholeSale() const { return Same(ConAreaType, ConditionArea::kWholeSale); }
  bool IsOfChosenLines() const { return Same(ConAreaType, ConditionArea::kChosenLines); }

  /// Tells why a list without tiers, or in an area of no known name, gives nothing.
  /// @return whether it has tiers.
  bool HasTiers(const RuleRun& run) const {
    if (Tiers.empty()) run.Note(Reason::NoTiers);
    if (!IsOfWholeSale() && !IsOfChosenLines()) {
      run.Note(Reason::UnknownArea).Has(Unit::Area, ConAreaType).Needs(ConditionArea::kAll);
    }
    return !Tiers.empty();
  }

  FinalPrice Price() const { return Same(DscIntoPlu, "1") ? FinalPrice::Follows : FinalPrice::Stays; }
};

}  // namespace Corvane

#endif
