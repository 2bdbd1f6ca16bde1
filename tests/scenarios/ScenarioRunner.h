#ifndef QNCORVANE_TESTS_SCENARIOS_SCENARIO_RUNNER_H
#define QNCORVANE_TESTS_SCENARIOS_SCENARIO_RUNNER_H

#include <map>
#include <string>
#include <vector>

#include "tests/scenarios/ScenarioCheck.h"
#include "tests/scenarios/ScenarioFile.h"
#include "tests/support/Till.h"

namespace Corvane::Testing {

/// A till on which scenarios are played through the exported calls.
class ScenarioRunner : public Till {
 protected:
  void SetUp() override;

  /// Plays a scenario from its first sentence to its last.
  /// @return what differs from what it tells, and what in it can't be understood; empty when it all holds.
  std::vector<std::string> Play(const ScenarioText& text);

 private:
  void PlayAct(const Act& act);
  void ChangeStore(const Act& act);
  void LoadRule(const Act& act);
  Outcome MakeCall(const Act& act);
  Outcome Calculate(const Act& act, const std::string& key, const std::string& mode);

  RuleTypes m_types;
  std::map<std::string, HeldLines> m_lines;      ///< of each sale, by its key
  std::map<std::string, std::string> m_results;  ///< the last result XML of each sale, by its key
  std::vector<std::string> m_differences;
};

}  // namespace Corvane::Testing

#endif
