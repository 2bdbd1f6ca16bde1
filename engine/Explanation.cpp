#include "engine/Explanation.h"

namespace Corvane {

void Explanation::BeginPass(const RuleList& rules, const ProSale& sale, Text kind, Text primary) {
  if (m_passes.empty()) {
    for (const RulePtr& rule : rules) m_rules.push_back({rule, {}});
    for (const SalePlu& line : sale.Plus) m_earlierRows.push_back(line.ProResults);
  }
  m_passes.push_back({kind, OrEmpty(primary)});
  for (ExplainedRule& rule : m_rules) rule.Outcomes.emplace_back();
}

}  // namespace Corvane
