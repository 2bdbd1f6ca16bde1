#ifndef QNCORVANE_TESTS_SCENARIOS_SCENARIO_CHECK_H
#define QNCORVANE_TESTS_SCENARIOS_SCENARIO_CHECK_H

#include <map>
#include <set>
#include <string>
#include <vector>

#include "tests/scenarios/ScenarioFile.h"
#include "tests/scenarios/ScenarioXml.h"
#include "tests/support/Till.h"

namespace Corvane::Testing {

/// What a call gave back.
struct Outcome {
  Answer Call;
  std::vector<std::string> Log;
  HeldLines Before;        ///< the sale's lines as the call found them
  bool WritesSale = true;  ///< a success brings a result XML
  bool HasOffers = true;   ///< that XML has groups of offers and coupons
};

/// The `ProType` of each rule of a scenario, by its `BillNo`.
using RuleTypes = std::map<std::string, std::string>;

/// Compares what a call gave back with the "Then" sentences about it. What no sentence tells is compared as well:
/// nothing that the scenario doesn't tell may come out.
class ScenarioCheck {
 public:
  ScenarioCheck(const Outcome& outcome, const RuleTypes& types) : m_outcome(outcome), m_types(types) {}

  /// @return what differs, one text each; empty when everything is as told.
  /// @throws ScenarioError for a sentence or a column that isn't known.
  std::vector<std::string> Compare(const Act& act);

 private:
  void CompareSentence(const Step& step);
  void CompareAnswer(const Step& step, const std::string& code, const std::string& msg);
  void CompareLines(const Step& step);
  void CompareUnchanged(const Step& step);
  void CompareDiscounts(const Step& step);
  void CompareApportions(const Step& step);
  void CompareOffers(const Step& step);
  void CompareCoupons(const Step& step);
  void CompareLog(const Step& step, const std::string& entry, long count);
  void CompareUntold(const Act& act);

  Step WithUnusedOffers(const Step& step) const;
  Step WithLinesBefore(const Step& step) const;
  Step WithUsualColumns(const Step& step) const;
  std::string OnlyRule(int line) const;
  std::string CountBefore(const std::string& line) const;
  void CompareRows(const Step& told, const std::string& what, const std::vector<Cells>& actual);
  void Report(int line, const std::string& text);

  const Outcome& m_outcome;
  const RuleTypes& m_types;
  std::vector<std::string> m_differences;
  std::set<std::string> m_told;  ///< what has been compared
  Step m_discounts;              ///< the last sentence about discounts
};

}  // namespace Corvane::Testing

#endif
