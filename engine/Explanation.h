#ifndef QNCORVANE_ENGINE_EXPLANATION_H
#define QNCORVANE_ENGINE_EXPLANATION_H

#include <cstddef>
#include <vector>

#include "base/Text.h"
#include "engine/RuleRegistry.h"
#include "rule/RuleOutcome.h"
#include "sale/ProSale.h"

namespace Corvane {

/// A walk over the registry.
struct PassWalk {
  Text Kind;   ///< the name of the pass, or "Single" or "Gift"
  Text Class;  ///< the one stacking class that it takes, or empty
};

/// A rule, and what became of it in each walk.
struct ExplainedRule {
  RulePtr Rule;
  std::vector<RuleOutcome> Outcomes;
};

/// What a calculation decided, told by those who decided it while it ran. Whoever wants to know makes one and hands it to
/// CalcPromotion; a calculation without one records nothing.
class Explanation {
 public:
  /// Keeps the sale as it stands before the mode begins.
  void Begin(const ProSale& sale) { m_before.CopyFrom(sale); }

  /// A new walk over these rules begins. @param sale as it stands at the first of them.
  void BeginPass(const RuleList& rules, const ProSale& sale, Text kind, Text primary);

  /// @return where the present walk tells of a rule. Good until the next walk begins.
  RuleOutcome* OutcomeOf(std::size_t place) { return &m_rules[place].Outcomes.back(); }

  const std::vector<PassWalk>& Passes() const { return m_passes; }
  const std::vector<ExplainedRule>& Rules() const { return m_rules; }

  /// The sale as the call's text left it, before anything was calculated.
  const ProSale& Before() const { return m_before; }

  /// The rows that the sale's lines had when the first walk began: those of earlier calls.
  const std::vector<std::vector<ProResult>>& EarlierRows() const { return m_earlierRows; }

 private:
  ProSale m_before;
  std::vector<PassWalk> m_passes;
  std::vector<ExplainedRule> m_rules;
  std::vector<std::vector<ProResult>> m_earlierRows;
};

}  // namespace Corvane

#endif
