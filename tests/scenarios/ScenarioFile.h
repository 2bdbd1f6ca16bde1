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

/// A line of a scenario file.
struct TextLine {
  int Number = 0;  ///< from 1
  std::string Text;
};

/// One scenario of a file: the file's background, then the scenario's own lines from its headline on, with one row of
/// its examples filled in.
struct ScenarioText {
  std::string Headline;  ///< with the case of the example behind it
  std::vector<TextLine> Lines;
};

/// The scenarios of a file, one for each row of examples where a scenario has them.
/// @throws ScenarioError for a file without a scenario, and for examples that nobody fills in.
std::vector<ScenarioText> ScenariosOf(const std::string& text);

/// What happens in a scenario, as README.md describes the format.
/// @throws ScenarioError for a line that is no part of the format, a table that isn't rectangular, a missing headline.
std::vector<Act> ReadScenario(const ScenarioText& text);

}  // namespace Corvane::Testing

#endif
