#ifndef QNCORVANE_TESTS_SCENARIOS_SCENARIO_XML_H
#define QNCORVANE_TESTS_SCENARIOS_SCENARIO_XML_H

#include <string>

#include "tests/scenarios/ScenarioFile.h"

namespace Corvane::Testing {

/// What a "Given the rule ..." loads.
struct ScenarioRule {
  std::string BillNo;
  std::string ProType;
  std::string LoadType;  ///< the type argument of the load
  std::string Xml;
  std::string Statements;  ///< that put the rule's rows into the store
};

/// The rule of a "Given".
/// @throws ScenarioError for a sentence that isn't about a rule, and for a part that a rule doesn't have.
ScenarioRule RuleOf(const Act& act);

/// The sale XML of a "When". `lastResult` is the result XML of the sale's call before, from which the offers come back.
/// @throws ScenarioError for a part that a sale doesn't have, and for an offer that isn't there.
std::string SaleOf(const Act& act, const std::string& lastResult);

}  // namespace Corvane::Testing

#endif
