#ifndef QNCORVANE_PROMO_MZ_GIFTCHOICE_H
#define QNCORVANE_PROMO_MZ_GIFTCHOICE_H

#include <cstdint>

#include "base/Text.h"
#include "rule/RuleOutcome.h"
#include "sale/ProSale.h"

namespace Corvane {

// What becomes of the offers once the cashier has picked. Offers belong to a rule by its number alone, so both steps
// work for a rule of any class.

/// The answers to a choice.
namespace GiftAnswer {
constexpr std::int32_t kFits = 0;
constexpr std::int32_t kTotalOverflow = -2;
constexpr std::int32_t kNumberOverflow = -3;
}  // namespace GiftAnswer

/// Whether the picks among a rule's offers fit what the sale brought.
///
/// @param used in and out: what the picks have used up, summed over the offers of all rules.
/// @param outcome is told what doesn't fit, or how many offers the rule has; null where nobody asks.
/// @return one of GiftAnswer.
std::int32_t CheckGiftChoice(const ProSale& sale, Text billNo, double& used, RuleOutcome* outcome = nullptr);

/// Writes onto a rule's offers what is left when `used` is used up by all rules together, and which of them can still
/// be taken.
void SetGiftLeft(ProSale& sale, Text billNo, double used);

}  // namespace Corvane

#endif
