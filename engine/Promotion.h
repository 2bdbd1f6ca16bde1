#ifndef QNCORVANE_ENGINE_PROMOTION_H
#define QNCORVANE_ENGINE_PROMOTION_H

#include <cstdint>
#include <vector>

#include "base/ProError.h"
#include "db/QnPosDBPro.h"
#include "promo/AnyRule.h"

namespace Corvane {

using RuleList = std::vector<RulePtr>;

/// The registry of rules and the process-wide database, one per process and never destroyed. Rules stand in the order
/// of calculation: all "DZ", then all "PT", then all "DJ", each group by falling `JzDate`. Only the creation is locked.
class Promotion : public ProError {
 public:
  static Promotion& Instance();

  QnPosDBPro& Database() { return m_db; }
  const RuleList& Rules() const { return m_rules; }

  /// Puts the rule into the slot of the last entry with exactly its number, which is dropped, or behind all others;
  /// then brings the rules into the order of calculation. An exception leaves the registry as it was.
  ///
  /// A rule whose `Primary` is none of the three words falls out of the order: it may vanish, and others may
  /// stand twice.
  void LoadRule(RulePtr rule);

  /// Drops the rules with this number in any letter case; all of them for "*".
  void RemoveRules(Text billNo);

 private:
  Promotion() = default;  // reads the settings of the database

  RuleList m_rules;
  QnPosDBPro m_db;
};

}  // namespace Corvane

#endif
