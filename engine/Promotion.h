#ifndef QNCORVANE_ENGINE_PROMOTION_H
#define QNCORVANE_ENGINE_PROMOTION_H

#include <cstdint>
#include <vector>

#include "base/ProError.h"
#include "db/QnPosDBPro.h"
#include "promo/AnyRule.h"

namespace Corvane {

/// The registry of rules and the process-wide database, one per process and never destroyed. Rules stand in the order
/// of calculation: all "DZ", then all "PT", then all "DJ", each group by falling `JzDate`. Only the creation is locked.
class Promotion : public ProError {
 public:
  static Promotion& Instance();

  QnPosDBPro& Database() { return db; }
  const std::vector<RulePtr>& Rules() const { return rules; }

  /// @return the place of the last entry with exactly this number, or -1.
  std::int32_t FindRule(Text billNo) const;

  /// Puts the rule into the slot of the rule with the same number, which is dropped, or behind all others.
  void AddRule(RulePtr rule);

  /// Brings the rules into the order of calculation. A rule whose `Primary` is none of the three words falls out of the
  /// order: it may vanish, and others may stand twice.
  void SortRules();

  /// Drops the rules with this number in any letter case; all of them for "*".
  void RemoveRules(Text billNo);

 private:
  Promotion() = default;  // reads the settings of the database

  std::vector<RulePtr> rules;
  QnPosDBPro db;
};

}  // namespace Corvane

#endif
