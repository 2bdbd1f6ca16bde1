#ifndef QNCORVANE_TESTS_SCENARIOS_SCENARIO_FILE_H
#define QNCORVANE_TESTS_SCENARIOS_SCENARIO_FILE_H

#include <stdexcept>
#include <string>
#include <vector>

namespace Corvane::Testing {

/// A scenario that can't be understood; `what()` names the line of the file.
class ScenarioError : public std::runtime_error {
 public:
  ScenarioError(int line, const std::string& text);
};

using Cells = std::vector<std::string>;

/// An aligned text table. Every row has a cell for each column, without the blanks around it.
struct Table {
  Cells Columns;
  std::vector<Cells> Rows;

  bool HasColumn(const std::string& name) const;
};

/// One sentence of a scenario with what stands below it.
struct Step {
  int Line = 0;       ///< the sentence's line in the file, from 1
  std::string Text;   ///< the sentence without its first word
  Table Rows;         ///< without columns when no table stands below it
  std::string Block;  ///< the lines between two lines of three quotes
};

/// What may stand below a sentence.
/// @throws ScenarioError when something else does, which nobody would read.
void RequireTable(const Step& step);
void RequireBlock(const Step& step);
void RequireNothingBelow(const Step& step);

/// A "Given" or a "When", the "And" sentences that belong to it, and the "Then" sentences that follow it.
struct Act {
  bool IsWhen = false;
  Step Head;
  std::vector<Step> Parts;
  std::vector<Step> Expectations;
};

/// A scenario as README.md describes its format.
struct ScenarioFile {
  std::string Headline;
  std::string Story;
  std::vector<Act> Acts;
};

/// Reads a scenario's text.
/// @throws ScenarioError for a line that is no part of the format, a table that isn't rectangular, a missing headline.
ScenarioFile ReadScenario(const std::string& text);

}  // namespace Corvane::Testing

#endif
