#ifndef QNCORVANE_PROMO_ANYRULE_H
#define QNCORVANE_PROMO_ANYRULE_H

#include <memory>
#include <variant>

#include "promo/direct/ProDirectBatch.h"
#include "promo/direct/ProDirectLimit.h"
#include "promo/direct/ProDirectOs.h"

namespace Corvane {

/// A rule of any class. The set is closed: rule classes have no virtual operations, and whoever runs a step asks the
/// rule whether it is of the class that has it.
using AnyRule = std::variant<ProDirectLimit, ProDirectBatch, ProDirectOs>;

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
