#ifndef QNCORVANE_TESTS_SCENARIOS_SCENARIO_XML_H
#define QNCORVANE_TESTS_SCENARIOS_SCENARIO_XML_H

#include <string>
#include <vector>

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

/// A line as a sale held it, its numbers as a result prints them.
struct HeldLine {
  std::string SerialNo;
  std::string PluCode;
  std::string Count;
  std::string Total;
  std::string UnitPrice;
};

/// The lines of a sale, in its order.
using HeldLines = std::vector<HeldLine>;

/// Puts a line at the place of the one with its number, or behind all.
void Hold(HeldLines& lines, const HeldLine& line);

/// The lines that a sale holds when those below a "When" have come in.
HeldLines WithSentLines(HeldLines lines, const Step& sentence);

/// The sale XML of a "When". `lastResult` is the result XML of the sale's call before, from which the offers come back.
/// @throws ScenarioError for a part that a sale doesn't have, and for an offer that isn't there.
std::string SaleOf(const Act& act, const std::string& lastResult);

}  // namespace Corvane::Testing

#endif
