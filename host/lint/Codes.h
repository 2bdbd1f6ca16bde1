#ifndef QNCORVANE_HOST_LINT_CODES_H
#define QNCORVANE_HOST_LINT_CODES_H

namespace Corvane::Host::Lint {

/// An error keeps a rule from giving what it says; a warning is something that is rarely meant.
enum class Severity { kError, kWarning };

/// A kind of finding. The names stay what they are: hosts and CI go by them. docs/lint.md tells each.
struct Code {
  const char* Name;
  Severity Weight;
};

namespace Codes {
// The store.
constexpr Code kStore = {"store", Severity::kError};
constexpr Code kStoreDoubt = {"store-doubt", Severity::kWarning};
constexpr Code kMissingTable = {"missing-table", Severity::kError};
constexpr Code kMissingColumn = {"missing-column", Severity::kError};
constexpr Code kMissingIndex = {"missing-index", Severity::kWarning};
constexpr Code kBadGoodsList = {"bad-goods-list", Severity::kWarning};
constexpr Code kBadXml = {"bad-xml", Severity::kError};
constexpr Code kUnreadableRule = {"unreadable-rule", Severity::kError};
constexpr Code kRefusedRule = {"refused-rule", Severity::kError};

// The form of values.
constexpr Code kDecimalComma = {"decimal-comma", Severity::kError};
constexpr Code kNotANumber = {"not-a-number", Severity::kError};
constexpr Code kNegativeNumber = {"negative-number", Severity::kError};
constexpr Code kPaddedText = {"padded-text", Severity::kError};

// The header.
constexpr Code kNoNumber = {"no-number", Severity::kError};
constexpr Code kDuplicateNumber = {"duplicate-number", Severity::kError};
constexpr Code kUnknownType = {"unknown-type", Severity::kError};
constexpr Code kUnknownClass = {"unknown-class", Severity::kError};
constexpr Code kWrongFamily = {"wrong-family", Severity::kError};
constexpr Code kUnknownLimit = {"unknown-limit", Severity::kError};
constexpr Code kIdleLimit = {"idle-limit", Severity::kWarning};
constexpr Code kZeroLimit = {"zero-limit", Severity::kError};
constexpr Code kNoOrderDate = {"no-order-date", Severity::kWarning};
constexpr Code kMisspeltMark = {"misspelt-mark", Severity::kWarning};
constexpr Code kMisspeltName = {"misspelt-name", Severity::kWarning};

// Filters.
constexpr Code kNoShop = {"no-shop", Severity::kError};
constexpr Code kAllShops = {"all-shops", Severity::kWarning};
constexpr Code kAllMembers = {"all-members", Severity::kWarning};
constexpr Code kAllPayments = {"all-payments", Severity::kWarning};

// Days and hours.
constexpr Code kNoTime = {"no-time", Severity::kError};
constexpr Code kBadDate = {"bad-date", Severity::kError};
constexpr Code kBadTime = {"bad-time", Severity::kError};
constexpr Code kMissingDate = {"missing-date", Severity::kError};
constexpr Code kEndBeforeStart = {"end-before-start", Severity::kError};
constexpr Code kMissingEndTime = {"missing-end-time", Severity::kError};
constexpr Code kIdleEndTime = {"idle-end-time", Severity::kWarning};
constexpr Code kOverMidnight = {"over-midnight", Severity::kError};
constexpr Code kMissingFrequency = {"missing-frequency", Severity::kError};
constexpr Code kUnknownFrequency = {"unknown-frequency", Severity::kError};
constexpr Code kNoWeekDays = {"no-weekdays", Severity::kError};
constexpr Code kBadWeekDay = {"bad-weekday", Severity::kError};
constexpr Code kIdleDays = {"idle-days", Severity::kWarning};

// Tables.
constexpr Code kNoRows = {"no-rows", Severity::kError};
constexpr Code kWrongTable = {"wrong-table", Severity::kError};
constexpr Code kIdleRows = {"idle-rows", Severity::kWarning};
constexpr Code kRowsWithoutRule = {"rows-without-rule", Severity::kWarning};
constexpr Code kSameKey = {"same-key", Severity::kError};

// Goods.
constexpr Code kNoGoodsCode = {"no-goods-code", Severity::kError};
constexpr Code kUnknownGoodsKind = {"unknown-goods-kind", Severity::kError};
constexpr Code kUnknownRange = {"unknown-range", Severity::kError};
constexpr Code kOnlyNotRows = {"only-not-rows", Severity::kError};
constexpr Code kArticlesOnly = {"articles-only", Severity::kError};
constexpr Code kNotCountsAsIn = {"not-counts-as-in", Severity::kError};
constexpr Code kBrandInFreeSet = {"brand-in-free-set", Severity::kError};
constexpr Code kUnknownGoods = {"unknown-goods", Severity::kWarning};

// Prices.
constexpr Code kUnknownPriceKind = {"unknown-price-kind", Severity::kError};
constexpr Code kNoReductionInSets = {"no-reduction-in-sets", Severity::kError};
constexpr Code kUnknownSetPrice = {"unknown-set-price", Severity::kError};
constexpr Code kPriceNotLower = {"price-not-lower", Severity::kError};
constexpr Code kReductionAbovePrice = {"reduction-above-price", Severity::kError};
constexpr Code kRateOutOfRange = {"rate-out-of-range", Severity::kError};
constexpr Code kNoGain = {"no-gain", Severity::kError};
constexpr Code kFreePrice = {"free-price", Severity::kWarning};
constexpr Code kGiftPrice = {"gift-price", Severity::kWarning};

// Pieces and sets.
constexpr Code kSaleCount = {"sale-count", Severity::kError};
constexpr Code kNoMinimum = {"no-minimum", Severity::kWarning};
constexpr Code kFewerThanMinimum = {"fewer-than-minimum", Severity::kWarning};
constexpr Code kMinimumAboveLimit = {"minimum-above-limit", Severity::kError};
constexpr Code kSetAboveLimit = {"set-above-limit", Severity::kError};
constexpr Code kRowWithoutSlot = {"row-without-slot", Severity::kError};
constexpr Code kEmptySlot = {"empty-slot", Severity::kError};
constexpr Code kNoCondition = {"no-condition", Severity::kWarning};
constexpr Code kMixedClasses = {"mixed-classes", Severity::kWarning};

// Lists and tiers.
constexpr Code kUnknownArea = {"unknown-area", Severity::kError};
constexpr Code kAreaWithoutGoods = {"area-without-goods", Severity::kError};
constexpr Code kRowWithoutList = {"row-without-list", Severity::kError};
constexpr Code kListWithoutTier = {"list-without-tier", Severity::kError};
constexpr Code kUnknownUnit = {"unknown-unit", Severity::kError};
constexpr Code kMoneyAlone = {"money-alone", Severity::kError};
constexpr Code kNoThreshold = {"no-threshold", Severity::kWarning};
constexpr Code kEqualThresholds = {"equal-thresholds", Severity::kError};
constexpr Code kRepeats = {"repeats", Severity::kWarning};
constexpr Code kMaxBelowThreshold = {"max-below-threshold", Severity::kWarning};
constexpr Code kTierAboveLimit = {"tier-above-limit", Severity::kError};
constexpr Code kFallingTier = {"falling-tier", Severity::kWarning};
constexpr Code kTierWithoutGain = {"tier-without-gain", Severity::kWarning};

// Coupons and payments.
constexpr Code kIdleDenominations = {"idle-denominations", Severity::kWarning};
constexpr Code kFlagByPresence = {"flag-by-presence", Severity::kWarning};
constexpr Code kUncutCoupon = {"uncut-coupon", Severity::kError};
constexpr Code kCouponWithoutEnd = {"coupon-without-end", Severity::kWarning};
constexpr Code kTakesCoupons = {"takes-coupons", Severity::kWarning};
constexpr Code kNoPayType = {"no-pay-type", Severity::kError};
constexpr Code kEmptyCardRange = {"empty-card-range", Severity::kError};

// What rules do to each other.
constexpr Code kSameDate = {"same-date", Severity::kWarning};
constexpr Code kStarvedGift = {"starved-gift", Severity::kWarning};
constexpr Code kBarredByCoupons = {"barred-by-coupons", Severity::kWarning};
constexpr Code kLimitedTwice = {"limited-twice", Severity::kError};
}  // namespace Codes

}  // namespace Corvane::Host::Lint

#endif
