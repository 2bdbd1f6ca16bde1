#ifndef QNCORVANE_PROMO_RULETABLE_H
#define QNCORVANE_PROMO_RULETABLE_H

#include <vector>

#include "base/Text.h"
#include "db/QnPosDBPro.h"
#include "promo/AnyRule.h"
#include "rule/RuleRun.h"

namespace Corvane {

/// The passes over the registry in which rules run. A mode names the passes that it makes.
enum class Pass { Ordinary, Combination, FullAmount, Pay, Coupon };

/// @return the pass's name as it is spelled above; a constant.
Text NameOf(Pass pass);

/// One row of the table of types: the class that a type word loads, and when which of its steps runs. The registry goes
/// by the word under which a rule is loaded, the driver by the rule's own `ProType`; where the two don't fit, nothing
/// happens.
struct RuleKind {
  Text Word;
  /// Makes an empty rule; null for a type that is loaded under another word.
  RulePtr (*Make)(const QnPosDBPro& db);
  Pass RunsIn;
  /// The rule's step in that pass. A rule whose class doesn't have it does nothing.
  void (*Calc)(AnyRule& rule, RuleRun& run);
};

using RuleTable = std::vector<RuleKind>;

/// The table of all types.
const RuleTable& RuleKinds();

/// @return the row of a type word, compared exactly, or null.
const RuleKind* FindKind(const RuleTable& table, Text word);

/// Makes an empty rule of the class that the word names. The rule's own `ProType` plays no part.
///
/// @param db copied into the rule, if its class reads tables.
/// @return null for a word under which nothing is loaded.
RulePtr MakeRule(const RuleTable& table, Text word, const QnPosDBPro& db);

}  // namespace Corvane

#endif
