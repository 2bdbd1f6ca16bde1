#include "tests/scenarios/ScenarioFile.h"

#include <algorithm>
#include <sstream>

namespace Corvane::Testing {

namespace {

constexpr const char* kHeadline = "Scenario:";
constexpr const char* kBackground = "Background:";
constexpr const char* kExamples = "Examples:";
constexpr const char* kBlockMark = "\"\"\"";

std::string Trimmed(const std::string& text) {
  constexpr const char* kBlanks = " \t\r";
  const std::size_t begin = text.find_first_not_of(kBlanks);
  if (begin == std::string::npos) return "";
  return text.substr(begin, text.find_last_not_of(kBlanks) - begin + 1);
}

bool BeginsWith(const std::string& text, const std::string& begin) { return text.compare(0, begin.size(), begin) == 0; }

Cells CellsOf(const std::string& row) {
  Cells cells;
  std::stringstream rest(row.substr(1));
  for (std::string cell; std::getline(rest, cell, '|');) cells.push_back(Trimmed(cell));
  return cells;
}

class Reader {
 public:
  std::vector<Act> Read(const std::vector<TextLine>& lines);

 private:
  void ReadLine(const std::string& line, const std::string& content);
  void ReadStep(const std::string& content);
  void ReadRow(const std::string& content);
  Step& CurrentStep();
  [[noreturn]] void Refuse(const std::string& text) const { throw ScenarioError(m_line, text); }

  std::vector<Act> m_acts;
  int m_line = 0;
  bool m_isInBlock = false;
  std::vector<Step>* m_list = nullptr;  ///< where an "And" belongs; null in a story
};

std::vector<Act> Reader::Read(const std::vector<TextLine>& lines) {
  for (const TextLine& line : lines) {
    m_line = line.Number;
    ReadLine(line.Text, Trimmed(line.Text));
  }
  if (m_isInBlock) Refuse("the block has no end");
  if (m_acts.empty()) Refuse("nothing happens");
  return m_acts;
}

void Reader::ReadLine(const std::string& line, const std::string& content) {
  if (content == kBlockMark) {
    CurrentStep();
    m_isInBlock = !m_isInBlock;
  } else if (m_isInBlock) {
    CurrentStep().Block += line + "\n";
  } else if (content.empty() || content[0] == '#') {
    return;
  } else if (content[0] == '|') {
    ReadRow(content);
  } else if (BeginsWith(content, kHeadline)) {
    m_list = nullptr;
  } else if (m_list != nullptr || BeginsWith(content, "Given ") || BeginsWith(content, "When ")) {
    ReadStep(content);
  }
}

void Reader::ReadStep(const std::string& content) {
  const std::size_t blank = content.find(' ');
  const std::string word = content.substr(0, blank);
  const Step step{m_line, blank == std::string::npos ? "" : Trimmed(content.substr(blank)), {}, ""};
  if (word == "Given" || word == "When") {
    m_acts.push_back({word == "When", step, {}, {}});
    m_list = &m_acts.back().Parts;
  } else if (word == "Then") {
    if (!m_acts.back().IsWhen) Refuse("a \"Then\" without a \"When\"");
    m_list = &m_acts.back().Expectations;
    m_list->push_back(step);
  } else if (word == "And") {
    m_list->push_back(step);
  } else {
    Refuse("neither a sentence nor a row: " + content);
  }
}

void Reader::ReadRow(const std::string& content) {
  if (content.size() < 2 || content.back() != '|') Refuse("the row doesn't end with \"|\"");
  Table& table = CurrentStep().Rows;
  const Cells cells = CellsOf(content);
  if (table.Columns.empty()) {
    table.Columns = cells;
    return;
  }
  if (cells.size() != table.Columns.size()) Refuse("the row doesn't have a cell for each column");
  table.Rows.push_back(cells);
}

Step& Reader::CurrentStep() {
  if (m_list == nullptr) Refuse("this stands before the first sentence");
  return m_list->empty() ? m_acts.back().Head : m_list->back();
}

/// The rows below "Examples:" and the lines above it.
struct Examples {
  std::vector<TextLine> Lines;
  Table Cases;
  int Line = 0;
};

Examples ExamplesOf(const std::vector<TextLine>& lines) {
  Examples examples;
  for (const TextLine& line : lines) {
    const std::string content = Trimmed(line.Text);
    if (content == kExamples) {
      examples.Line = line.Number;
    } else if (examples.Line == 0) {
      examples.Lines.push_back(line);
    } else if (content.empty() || content[0] == '#') {
      continue;
    } else if (content[0] != '|' || content.size() < 2 || content.back() != '|') {
      throw ScenarioError(line.Number, "only a table stands below the examples");
    } else if (examples.Cases.Columns.empty()) {
      examples.Cases.Columns = CellsOf(content);
    } else {
      examples.Cases.Rows.push_back(CellsOf(content));
      if (examples.Cases.Rows.back().size() != examples.Cases.Columns.size())
        throw ScenarioError(line.Number, "the row doesn't have a cell for each column");
    }
  }
  if (examples.Line != 0 && examples.Cases.Rows.empty()) throw ScenarioError(examples.Line, "there are no examples");
  return examples;
}

/// Puts a value at each place that bears its name.
/// @return whether there was one.
bool FillIn(std::vector<TextLine>& lines, const std::string& name, const std::string& value) {
  const std::string place = "<" + name + ">";
  bool isFound = false;
  for (TextLine& line : lines) {
    for (std::size_t at = line.Text.find(place); at != std::string::npos; at = line.Text.find(place, at)) {
      line.Text.replace(at, place.size(), value);
      at += value.size();
      isFound = true;
    }
  }
  return isFound;
}

/// A scenario for one row of its examples. Of the columns, "case" goes behind the headline, and "working" is for the
/// reader alone.
ScenarioText ExampleOf(const std::string& headline, const Examples& examples, const Cells& row) {
  ScenarioText example{headline, examples.Lines};
  for (std::size_t place = 0; place < row.size(); ++place) {
    const std::string& column = examples.Cases.Columns[place];
    if (column == "case") {
      example.Headline += ": " + row[place];
    } else if (column != "working" && !FillIn(example.Lines, column, row[place])) {
      throw ScenarioError(examples.Line, "nothing is filled in for this: " + column);
    }
  }
  return example;
}

std::vector<ScenarioText> WithExamples(const std::vector<TextLine>& background, const std::vector<TextLine>& own) {
  const std::string headline = Trimmed(Trimmed(own.front().Text).substr(std::string(kHeadline).size()));
  if (headline.empty()) throw ScenarioError(own.front().Number, "no headline");
  const Examples examples = ExamplesOf(own);
  std::vector<ScenarioText> scenarios;
  for (const Cells& row : examples.Cases.Rows) scenarios.push_back(ExampleOf(headline, examples, row));
  if (scenarios.empty()) scenarios.push_back({headline, examples.Lines});
  for (ScenarioText& scenario : scenarios)
    scenario.Lines.insert(scenario.Lines.begin(), background.begin(), background.end());
  return scenarios;
}

}  // namespace

ScenarioError::ScenarioError(int line, const std::string& text)
    : std::runtime_error("line " + std::to_string(line) + ": " + text) {}

bool Table::HasColumn(const std::string& name) const {
  return std::find(Columns.begin(), Columns.end(), name) != Columns.end();
}

void RequireTable(const Step& step) {
  if (step.Rows.Columns.empty() || !step.Block.empty()) throw ScenarioError(step.Line, "a table belongs below this");
}

void RequireBlock(const Step& step) {
  if (step.Block.empty() || !step.Rows.Columns.empty()) throw ScenarioError(step.Line, "a block belongs below this");
}

void RequireNothingBelow(const Step& step) {
  if (step.Rows.Columns.empty() && step.Block.empty()) return;
  throw ScenarioError(step.Line, "nothing belongs below this");
}

std::vector<ScenarioText> ScenariosOf(const std::string& text) {
  std::vector<TextLine> background;
  std::vector<std::vector<TextLine>> scenarios;
  std::stringstream lines(text);
  int number = 0;
  for (std::string line; std::getline(lines, line);) {
    ++number;
    const std::string content = Trimmed(line);
    if (BeginsWith(content, kHeadline)) scenarios.emplace_back();
    if (!scenarios.empty()) {
      scenarios.back().push_back({number, line});
    } else if (!background.empty()) {
      background.push_back({number, line});
    } else if (content == kBackground) {
      background.push_back({number, ""});
    } else if (!content.empty() && content[0] != '#') {
      throw ScenarioError(number, "the first line isn't the headline");
    }
  }
  if (scenarios.empty()) throw ScenarioError(number, "no headline");
  std::vector<ScenarioText> all;
  for (const std::vector<TextLine>& own : scenarios) {
    const std::vector<ScenarioText> some = WithExamples(background, own);
    all.insert(all.end(), some.begin(), some.end());
  }
  return all;
}

std::vector<Act> ReadScenario(const ScenarioText& text) { return Reader().Read(text.Lines); }

}  // namespace Corvane::Testing
