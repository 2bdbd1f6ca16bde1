#include "tests/scenarios/ScenarioCheck.h"

#include <algorithm>
#include <regex>
#include <sstream>

#include "tests/scenarios/ResultTables.h"

namespace Corvane::Testing {

namespace {

constexpr long kAtLeastOnce = -1;

std::string Shown(const Cells& cells) {
  std::string text = "|";
  for (const std::string& cell : cells) text.append(" ").append(cell).append(" |");
  return text;
}

std::string RowOrNothing(const std::vector<Cells>& rows, std::size_t place) {
  return place < rows.size() ? Shown(rows[place]) : "nothing";
}

void RequireColumns(const Step& step, const Cells& required) {
  for (const std::string& column : required) {
    if (!step.Rows.HasColumn(column)) throw ScenarioError(step.Line, "the column is missing: " + column);
  }
}

Step Nothing(int line, const Cells& columns) {
  Step step;
  step.Line = line;
  step.Rows.Columns = columns;
  return step;
}

void AddColumn(Table& table, const std::string& column, const Cells& cells) {
  table.Columns.push_back(column);
  for (std::size_t place = 0; place < cells.size(); ++place) table.Rows[place].push_back(cells[place]);
}

std::size_t PlaceOf(const Table& table, const std::string& column) {
  const auto found = std::find(table.Columns.begin(), table.Columns.end(), column);
  return static_cast<std::size_t>(found - table.Columns.begin());
}

const Cells& DiscountColumns() {
  static const Cells columns = {"line", "money"};
  return columns;
}

/// What stands on the lines: a discount of the whole sale has no apportion.
Step WithoutWholeSale(Step discounts) {
  const std::size_t line = PlaceOf(discounts.Rows, "line");
  std::vector<Cells>& rows = discounts.Rows.Rows;
  rows.erase(std::remove_if(rows.begin(), rows.end(), [&](const Cells& row) { return row[line] == "*"; }), rows.end());
  return discounts;
}

}  // namespace

std::vector<std::string> ScenarioCheck::Compare(const Act& act) {
  for (const Step& step : act.Expectations) CompareSentence(step);
  CompareUntold(act);
  return m_differences;
}

void ScenarioCheck::CompareSentence(const Step& step) {
  static const std::map<std::string, void (ScenarioCheck::*)(const Step&)> kTables = {
      {"the sale comes out as", &ScenarioCheck::CompareLines},
      {"the discounts are", &ScenarioCheck::CompareDiscounts},
      {"the apportions are", &ScenarioCheck::CompareApportions},
      {"the offers are", &ScenarioCheck::CompareOffers},
      {"the coupons are", &ScenarioCheck::CompareCoupons}};
  static const std::regex kAnswer(R"re(the answer is (-?\d+) "(.*)")re");
  static const std::regex kLogHolds(R"re(the log holds "(.*)")re");
  static const std::regex kLogCounts(R"re(the log holds "(.*)" (\d+) times?)re");
  static const std::regex kLogLacks(R"re(the log doesn't hold "(.*)")re");
  std::smatch found;
  const auto table = kTables.find(step.Text);
  if (table != kTables.end()) {
    RequireTable(step);
    return (this->*table->second)(step);
  }
  RequireNothingBelow(step);
  if (step.Text == "the sale comes out as it came in") return CompareUnchanged(step);
  if (std::regex_match(step.Text, found, kAnswer)) {
    CompareAnswer(step, found[1], found[2]);
  } else if (std::regex_match(step.Text, found, kLogCounts)) {
    CompareLog(step, found[1], std::stol(found[2]));
  } else if (std::regex_match(step.Text, found, kLogHolds)) {
    CompareLog(step, found[1], kAtLeastOnce);
  } else if (std::regex_match(step.Text, found, kLogLacks)) {
    CompareLog(step, found[1], 0);
  } else {
    throw ScenarioError(step.Line, "nothing checks this: " + step.Text);
  }
}

void ScenarioCheck::CompareAnswer(const Step& step, const std::string& code, const std::string& msg) {
  m_told.insert("answer");
  const std::string answer = std::to_string(m_outcome.Call.Code) + " \"" + m_outcome.Call.Msg + "\"";
  const std::string expected = code + " \"" + msg + "\"";
  if (answer != expected) Report(step.Line, "the answer: expected " + expected + ", got " + answer);
}

void ScenarioCheck::CompareLines(const Step& step) {
  RequireColumns(step, {"total"});
  m_told.insert("lines");
  const Step told = WithLinesBefore(step);
  CompareRows(told, "the sale", LinesOf(m_outcome.Call.Out, told));
}

void ScenarioCheck::CompareUnchanged(const Step& step) {
  Step told = Nothing(step.Line, {"total"});
  for (const HeldLine& line : m_outcome.Before) told.Rows.Rows.push_back({line.Total});
  CompareLines(told);
}

void ScenarioCheck::CompareDiscounts(const Step& step) {
  RequireColumns(step, DiscountColumns());
  m_told.insert("discounts");
  m_discounts = step;
  const Step told = WithUsualColumns(step);
  CompareRows(told, "the discounts", DiscountsOf(m_outcome.Call.Out, told));
}

void ScenarioCheck::CompareApportions(const Step& step) {
  RequireColumns(step, DiscountColumns());
  m_told.insert("apportions");
  const Step told = WithUsualColumns(step);
  CompareRows(told, "the apportions", ApportionsOf(m_outcome.Call.Out, told));
}

void ScenarioCheck::CompareOffers(const Step& step) {
  RequireColumns(step, {"total", "row", "goods"});
  m_told.insert("offers");
  const Step told = WithUnusedOffers(step);
  CompareRows(told, "the offers", OfferRowsOf(m_outcome.Call.Out, told));
}

void ScenarioCheck::CompareCoupons(const Step& step) {
  RequireColumns(step, {"value"});
  m_told.insert("coupons");
  CompareRows(step, "the coupons", CouponsOf(m_outcome.Call.Out, step));
}

void ScenarioCheck::CompareLog(const Step& step, const std::string& entry, long count) {
  const long actual = std::count(m_outcome.Log.begin(), m_outcome.Log.end(), entry);
  if (count == kAtLeastOnce ? actual > 0 : actual == count) return;
  Report(step.Line, "the log holds \"" + entry + "\" " + std::to_string(actual) + " times");
}

void ScenarioCheck::CompareUntold(const Act& act) {
  const int line = act.Head.Line;
  if (m_told.count("answer") == 0) CompareAnswer(Nothing(line, {}), "0", "sucess");
  if (m_outcome.Call.Out == "(untouched)") {
    if (m_outcome.WritesSale && m_outcome.Call.Code == 0) Report(line, "there is no result");
    return;
  }
  if (m_told.count("lines") == 0) Report(line, "the scenario doesn't tell how the sale comes out");
  if (m_told.count("discounts") == 0) CompareDiscounts(Nothing(line, DiscountColumns()));
  if (m_told.count("apportions") == 0) CompareApportions(WithoutWholeSale(m_discounts));
  if (!m_outcome.HasOffers) return;
  if (m_told.count("offers") == 0) CompareOffers(Nothing(line, {"total", "row", "goods"}));
  if (m_told.count("coupons") == 0) CompareCoupons(Nothing(line, {"value"}));
}

/// What the table doesn't tell of a line is expected as the call found it. A table without numbers tells of all lines
/// in their order.
Step ScenarioCheck::WithLinesBefore(const Step& step) const {
  static const std::map<std::string, std::string HeldLine::*> kUsual = {
      {"goods", &HeldLine::PluCode}, {"count", &HeldLine::Count}, {"unit price", &HeldLine::UnitPrice}};
  Step told = step;
  std::vector<Cells>& rows = told.Rows.Rows;
  if (!told.Rows.HasColumn("line")) {
    if (rows.size() != m_outcome.Before.size())
      throw ScenarioError(step.Line, "a row for each line belongs below this");
    Cells numbers;
    for (const HeldLine& line : m_outcome.Before) numbers.push_back(line.SerialNo);
    AddColumn(told.Rows, "line", numbers);
  }
  const std::size_t number = PlaceOf(told.Rows, "line");
  for (const auto& [column, member] : kUsual) {
    if (told.Rows.HasColumn(column)) continue;
    Cells cells;
    for (const Cells& row : rows) {
      const auto line = std::find_if(m_outcome.Before.begin(), m_outcome.Before.end(),
                                     [&](const HeldLine& one) { return one.SerialNo == row[number]; });
      cells.push_back(line == m_outcome.Before.end() ? "(no such line)" : (*line).*member);
    }
    AddColumn(told.Rows, column, cells);
  }
  return told;
}

/// The rule of a scenario that has one alone.
std::string ScenarioCheck::OnlyRule(int line) const {
  if (m_types.size() != 1) throw ScenarioError(line, "the column is missing: rule");
  return m_types.begin()->first;
}

std::string ScenarioCheck::CountBefore(const std::string& line) const {
  if (line == "*") return "0.00";
  for (const HeldLine& held : m_outcome.Before) {
    if (held.SerialNo == line) return held.Count;
  }
  return "(no such line)";
}

/// An offer is expected as one of the scenario's only rule of which nothing is used up, unless the table has columns
/// for these.
Step ScenarioCheck::WithUnusedOffers(const Step& step) const {
  Step told = step;
  const std::size_t count = told.Rows.Rows.size();
  if (!told.Rows.HasColumn("rule")) AddColumn(told.Rows, "rule", Cells(count, count == 0 ? "" : OnlyRule(step.Line)));
  if (!told.Rows.HasColumn("left")) {
    const std::size_t total = PlaceOf(told.Rows, "total");
    Cells left;
    for (const Cells& row : told.Rows.Rows) left.push_back(row[total]);
    AddColumn(told.Rows, "left", left);
  }
  if (!told.Rows.HasColumn("used")) AddColumn(told.Rows, "used", Cells(count, "0.00"));
  return told;
}

/// A discount is expected under its rule's type and as one that anybody gets, of the scenario's only rule and
/// on the whole line, unless the table has columns for these.
Step ScenarioCheck::WithUsualColumns(const Step& step) const {
  Step told = step;
  const std::size_t count = told.Rows.Rows.size();
  if (!told.Rows.HasColumn("rule")) AddColumn(told.Rows, "rule", Cells(count, count == 0 ? "" : OnlyRule(step.Line)));
  if (!told.Rows.HasColumn("quantity")) {
    const std::size_t line = PlaceOf(told.Rows, "line");
    Cells quantities;
    for (const Cells& row : told.Rows.Rows) quantities.push_back(CountBefore(row[line]));
    AddColumn(told.Rows, "quantity", quantities);
  }
  const std::size_t rule = PlaceOf(told.Rows, "rule");
  Cells types;
  for (const Cells& row : told.Rows.Rows) {
    const auto type = m_types.find(row[rule]);
    types.push_back(type == m_types.end() ? "(no such rule)" : type->second);
  }
  if (!told.Rows.HasColumn("type")) AddColumn(told.Rows, "type", types);
  if (!told.Rows.HasColumn("member")) AddColumn(told.Rows, "member", Cells(types.size()));
  return told;
}

void ScenarioCheck::CompareRows(const Step& told, const std::string& what, const std::vector<Cells>& actual) {
  const std::vector<Cells>& expected = told.Rows.Rows;
  if (actual == expected) return;
  std::stringstream text;
  text << what << ":\n    columns  " << Shown(told.Rows.Columns);
  for (std::size_t place = 0; place < std::max(actual.size(), expected.size()); ++place) {
    const std::string want = RowOrNothing(expected, place);
    const std::string got = RowOrNothing(actual, place);
    if (want == got) {
      text << "\n    as told  " << got;
    } else {
      text << "\n    expected " << want << "\n    got      " << got;
    }
  }
  Report(told.Line, text.str());
}

void ScenarioCheck::Report(int line, const std::string& text) {
  m_differences.push_back("line " + std::to_string(line) + ": " + text);
}

}  // namespace Corvane::Testing
