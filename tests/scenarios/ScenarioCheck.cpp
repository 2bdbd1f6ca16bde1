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
  static const Cells columns = {"line", "rule", "quantity", "money"};
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
  RequireColumns(step, {"line", "goods", "count", "total", "unit price"});
  m_told.insert("lines");
  CompareRows(step, "the sale", LinesOf(m_outcome.Call.Out, step));
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
  RequireColumns(step, {"rule", "total", "left", "used", "row", "goods"});
  m_told.insert("offers");
  CompareRows(step, "the offers", OfferRowsOf(m_outcome.Call.Out, step));
}

void ScenarioCheck::CompareCoupons(const Step& step) {
  RequireColumns(step, {"BillNo", "CouponTypeCode", "Value"});
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
  if (m_told.count("offers") == 0) CompareOffers(Nothing(line, {"rule", "total", "left", "used", "row", "goods"}));
  if (m_told.count("coupons") == 0) CompareCoupons(Nothing(line, {"BillNo", "CouponTypeCode", "Value"}));
}

/// A discount is expected under its rule's type and as one that anybody gets, unless the table has columns for these.
Step ScenarioCheck::WithUsualColumns(const Step& step) const {
  Step told = step;
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
