#include "tests/scenarios/ScenarioFile.h"

#include <algorithm>
#include <sstream>

namespace Corvane::Testing {

namespace {

constexpr const char* kHeadline = "Scenario:";
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
  ScenarioFile Read(const std::string& text);

 private:
  void ReadLine(const std::string& line, const std::string& content);
  void ReadStory(const std::string& content);
  void ReadStep(const std::string& content);
  void ReadRow(const std::string& content);
  Step& CurrentStep();
  [[noreturn]] void Refuse(const std::string& text) const { throw ScenarioError(m_line, text); }

  ScenarioFile m_file;
  int m_line = 0;
  bool m_isInBlock = false;
  std::vector<Step>* m_list = nullptr;  ///< where an "And" belongs; null before the first sentence
};

ScenarioFile Reader::Read(const std::string& text) {
  std::stringstream lines(text);
  for (std::string line; std::getline(lines, line);) {
    ++m_line;
    ReadLine(line, Trimmed(line));
  }
  if (m_isInBlock) Refuse("the block has no end");
  if (m_file.Headline.empty()) Refuse("no headline");
  if (m_file.Acts.empty()) Refuse("nothing happens");
  return m_file;
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
  } else if (m_list == nullptr && !BeginsWith(content, "Given ") && !BeginsWith(content, "When ")) {
    ReadStory(content);
  } else {
    ReadStep(content);
  }
}

void Reader::ReadStory(const std::string& content) {
  if (m_file.Headline.empty()) {
    if (!BeginsWith(content, kHeadline)) Refuse("the first line isn't the headline");
    m_file.Headline = Trimmed(content.substr(std::string(kHeadline).size()));
    return;
  }
  m_file.Story += content + "\n";
}

void Reader::ReadStep(const std::string& content) {
  const std::size_t blank = content.find(' ');
  const std::string word = content.substr(0, blank);
  const Step step{m_line, blank == std::string::npos ? "" : Trimmed(content.substr(blank)), {}, ""};
  if (word == "Given" || word == "When") {
    m_file.Acts.push_back({word == "When", step, {}, {}});
    m_list = &m_file.Acts.back().Parts;
  } else if (word == "Then") {
    if (!m_file.Acts.back().IsWhen) Refuse("a \"Then\" without a \"When\"");
    m_list = &m_file.Acts.back().Expectations;
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
  return m_list->empty() ? m_file.Acts.back().Head : m_list->back();
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

ScenarioFile ReadScenario(const std::string& text) { return Reader().Read(text); }

}  // namespace Corvane::Testing
