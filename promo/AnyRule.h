#ifndef QNCORVANE_PROMO_ANYRULE_H
#define QNCORVANE_PROMO_ANYRULE_H

#include <memory>
#include <variant>

#include "promo/comb/ProCombChoice.h"
#include "promo/comb/ProCombCondition.h"
#include "promo/comb/ProCombFixed.h"
#include "promo/comb/ProCombFree.h"
#include "promo/direct/ProDirectBatch.h"
#include "promo/direct/ProDirectLimit.h"
#include "promo/direct/ProDirectOs.h"
#include "promo/mz/ProMzFree.h"
#include "promo/mz/ProMzGift.h"
#include "promo/mz/ProMzPay.h"
#include "promo/mz/ProMzPlu.h"
#include "promo/mz/ProMzReduce.h"
#include "promo/mz/ProMzUseCoupon.h"

namespace Corvane {

/// A rule of any class. The set is closed: rule classes have no virtual operations, and whoever runs a step asks the
/// rule whether it is of the class that has it.
using AnyRule = std::variant<ProDirectLimit, ProDirectBatch, ProDirectOs, ProCombFree, ProCombFixed, ProCombCondition,
                             ProCombChoice, ProMzReduce, ProMzPlu, ProMzFree, ProMzGift, ProMzPay, ProMzUseCoupon>;

/// The registry may hold an entry twice, so entries share their rule; the rule goes with its last entry.
using RulePtr = std::shared_ptr<AnyRule>;

/// The common part of a rule.
inline ProBase& BaseOf(AnyRule& rule) {
  return std::visit([](auto& own) -> ProBase& { return own; }, rule);
}

/// The header of a rule.
inline const ProInfo& InfoOf(AnyRule& rule) { return BaseOf(rule).Info; }

}  // namespace Corvane

#endif
