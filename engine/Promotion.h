#ifndef QNCORVANE_ENGINE_PROMOTION_H
#define QNCORVANE_ENGINE_PROMOTION_H

#include <utility>

#include "base/ProError.h"
#include "base/Text.h"
#include "db/QnPosDBPro.h"
#include "engine/RuleRegistry.h"

namespace Corvane {

/// The registry of rules and the process-wide database, one per process and never destroyed. Only the creation is
/// locked.
class Promotion : public ProError {
 public:
  static Promotion& Instance();

  QnPosDBPro& Database() { return m_db; }

  /// The rules in the order of calculation; see RuleRegistry.
  const RuleList& Rules() noexcept { return m_rules.Rules(); }
  void LoadRule(RulePtr rule) { m_rules.Load(std::move(rule)); }
  void RemoveRules(Text billNo) { m_rules.Remove(billNo); }

 private:
  Promotion() = default;  // reads the settings of the database

  RuleRegistry m_rules;
  QnPosDBPro m_db;
};

}  // namespace Corvane

#endif
