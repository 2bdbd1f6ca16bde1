#include "tests/scenarios/ScenarioRunner.h"

#include <regex>

#include "qncorvane/qncorvane.h"
#include "tests/scenarios/ScenarioXml.h"

namespace Corvane::Testing {

namespace {

/// A call that answers with a text alone, or with nothing.
Outcome WithoutSale(const Answer& answer) { return {answer, {}, {}, false, false}; }

/// For a sentence that says it all.
void RequireBare(const Act& act) {
  RequireNothingBelow(act.Head);
  if (!act.Parts.empty()) throw ScenarioError(act.Parts.front().Line, "nothing reads this: " + act.Parts.front().Text);
}

/// The lines as a result left them. A result need not have all of them.
HeldLines WithResult(HeldLines lines, const std::string& result) {
  for (const Row& row : RowsOf(result, "Plu"))
    Hold(lines, {row["SerialNo"], row["PluCode"], row["PluCount"], row["Total"], row["FinalPrice"]});
  return lines;
}

}  // namespace

void ScenarioRunner::SetUp() {
  Till::SetUp();
  MakeTables();
}

std::vector<std::string> ScenarioRunner::Play(const ScenarioText& text) {
  try {
    for (const Act& act : ReadScenario(text)) PlayAct(act);
  } catch (const ScenarioError& error) {
    m_differences.emplace_back(error.what());
  }
  return m_differences;
}

void ScenarioRunner::PlayAct(const Act& act) {
  if (!act.IsWhen) return ChangeStore(act);
  const Outcome outcome = MakeCall(act);
  for (const std::string& difference : ScenarioCheck(outcome, m_types).Compare(act))
    m_differences.push_back(difference);
}

void ScenarioRunner::ChangeStore(const Act& act) {
  static const std::regex kTableGone(R"(the table (\w+) is missing)");
  static const std::regex kRuleGone(R"(the rule (\S+) is taken away)");
  static const std::string kNoRules = "every rule is taken away";
  std::smatch found;
  if (act.Head.Text == "the store changes by") {
    RequireBlock(act.Head);
    Sql(act.Head.Block);
  } else if (std::regex_match(act.Head.Text, found, kTableGone)) {
    RequireBare(act);
    Sql("drop table " + found[1].str());
  } else if (act.Head.Text == kNoRules) {
    RequireBare(act);
    Clear("*");
  } else if (std::regex_match(act.Head.Text, found, kRuleGone)) {
    RequireBare(act);
    if (Clear(found[1]).Code != 0) throw ScenarioError(act.Head.Line, "the rule can't be taken away");
  } else {
    LoadRule(act);
  }
}

void ScenarioRunner::LoadRule(const Act& act) {
  const ScenarioRule rule = RuleOf(act);
  if (!rule.Statements.empty()) Sql(rule.Statements);
  const Answer answer = Load(rule.LoadType, rule.Xml);
  if (answer.Code != 0) throw ScenarioError(act.Head.Line, "the rule doesn't load: " + answer.Msg);
  m_types[rule.BillNo] = rule.ProType;
}

Outcome ScenarioRunner::MakeCall(const Act& act) {
  static const std::regex kCalculate(R"(the (?:same )?sale(?: of till (\S+))? is calculated in mode (\w+))");
  static const std::regex kEnd(R"(the (?:same )?sale(?: of till (\S+))? ends)");
  std::smatch found;
  TakeLog();
  if (std::regex_match(act.Head.Text, found, kCalculate)) return Calculate(act, "till " + found[1].str(), found[2]);
  RequireBare(act);
  if (std::regex_match(act.Head.Text, found, kEnd)) {
    const std::string key = "till " + found[1].str();
    m_results.erase(key);
    m_lines.erase(key);
    return WithoutSale({DeleteSaleSetByKey(key.c_str()), "sucess", "(untouched)"});
  }
  if (act.Head.Text == "all sales are forgotten") {
    m_results.clear();
    m_lines.clear();
    return WithoutSale(ClearSales());
  }
  throw ScenarioError(act.Head.Line, "nothing does this: " + act.Head.Text);
}

Outcome ScenarioRunner::Calculate(const Act& act, const std::string& key, const std::string& mode) {
  Outcome outcome;
  outcome.Before = WithSentLines(m_lines[key], act.Head);
  outcome.Call = Calc(key, mode, SaleOf(act, m_results[key]));
  outcome.Log = TakeLog();
  outcome.HasOffers = mode != "Single";
  m_lines[key] = outcome.Before;
  if (outcome.Call.Code == 0) {
    m_results[key] = outcome.Call.Out;
    m_lines[key] = WithResult(outcome.Before, outcome.Call.Out);
  }
  return outcome;
}

}  // namespace Corvane::Testing
