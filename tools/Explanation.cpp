#include "Explanation.h"

#include <algorithm>
#include <nlohmann/json.hpp>

namespace Corvane::Tool {
namespace {

// Names keep their order.
using Json = nlohmann::ordered_json;

std::string TextIn(const Json& object, const char* name) { return object.at(name).get<std::string>(); }
std::int64_t NumberIn(const Json& object, const char* name) { return object.at(name).get<std::int64_t>(); }
/// 0 for null: what is beyond all numbers is none.
double FigureIn(const Json& object, const char* name) {
  const Json& value = object.at(name);
  return value.is_null() ? 0 : value.get<double>();
}

Measure ReadMeasure(const Json& value) {
  if (value.is_null()) return {};
  if (value.is_string()) return value.get<std::string>();
  return value.get<double>();
}

Decision ReadDecision(const Json& object) {
  Decision decision;
  decision.reason = TextIn(object, "reason");
  decision.lines = object.at("lines").get<std::vector<std::int64_t>>();
  decision.goods = TextIn(object, "goods");
  decision.slot = TextIn(object, "slot");
  decision.row = NumberIn(object, "row");
  decision.tier = NumberIn(object, "tier");
  decision.unit = TextIn(object, "unit");
  decision.have = ReadMeasure(object.at("have"));
  decision.need = ReadMeasure(object.at("need"));
  for (const Json& taker : object.at("takenBy")) {
    decision.takenBy.push_back({TextIn(taker, "billNo"), TextIn(taker, "primary")});
  }
  return decision;
}

Outcome ReadOutcome(const Json& object) {
  Outcome outcome;
  outcome.pass = NumberIn(object, "pass");
  outcome.isApplied = TextIn(object, "outcome") == "applied";
  outcome.cents = FigureIn(object, "cents");
  for (const Json& line : object.at("lines")) {
    outcome.lines.push_back({NumberIn(line, "serialNo"), FigureIn(line, "cents")});
  }
  outcome.offers = NumberIn(object, "offers");
  outcome.coupons = NumberIn(object, "coupons");
  if (!object.at("because").is_null()) outcome.because = ReadDecision(object.at("because"));
  for (const Json& decision : object.at("looked")) outcome.looked.push_back(ReadDecision(decision));
  return outcome;
}

RuleOutcomes ReadRule(const Json& object) {
  RuleOutcomes rule{TextIn(object, "billNo"), TextIn(object, "type"), TextIn(object, "primary"), {}};
  for (const Json& outcome : object.at("outcomes")) rule.outcomes.push_back(ReadOutcome(outcome));
  return rule;
}

LineWay ReadLine(const Json& object) {
  LineWay line;
  line.serialNo = NumberIn(object, "serialNo");
  line.pluCode = TextIn(object, "pluCode");
  line.count = FigureIn(object, "count");
  line.price = FigureIn(object, "price");
  line.beforeCents = FigureIn(object, "beforeCents");
  line.leftCents = FigureIn(object, "leftCents");
  for (const Json& step : object.at("steps")) {
    line.steps.push_back({TextIn(step, "billNo"), TextIn(step, "kind"), TextIn(step, "by"), FigureIn(step, "count"),
                          FigureIn(step, "cents"), FigureIn(step, "leftCents")});
  }
  return line;
}

Addition ReadAddition(const Json& object) {
  Addition addition{TextIn(object, "what"), TextIn(object, "pluCode"), FigureIn(object, "count"), {}};
  if (!object.at("price").is_null()) addition.price = FigureIn(object, "price");
  return addition;
}

NearMiss ReadNearMiss(const Json& object) {
  NearMiss miss{TextIn(object, "billNo"),
                TextIn(object, "type"),
                ReadMeasure(object.at("have")),
                ReadMeasure(object.at("need")),
                {},
                {}};
  for (const Json& addition : object.at("add")) miss.add.push_back(ReadAddition(addition));
  const Json& brings = object.at("brings");
  if (brings.is_null()) return miss;
  miss.brings = Gain{FigureIn(brings, "cents"), FigureIn(brings, "ruleCents"), NumberIn(brings, "offers"),
                     NumberIn(brings, "coupons"), FigureIn(brings, "couponCents")};
  return miss;
}

}  // namespace

bool Decision::IsAbout(std::int64_t line) const { return std::find(lines.begin(), lines.end(), line) != lines.end(); }

bool NearMiss::IsWithinReach() const {
  if (brings && brings->IsNothing()) return false;
  const double* const there = std::get_if<double>(&have);
  const double* const needed = std::get_if<double>(&need);
  // Some have no measure: goods that would be given, a coupon that would be taken.
  return there == nullptr || needed == nullptr ? brings.has_value() : *there * 2 >= *needed;
}

Explanation ReadExplanation(const std::string& result) {
  const Json root = Json::parse(result).at("explanation");
  Explanation explanation;
  explanation.mode = TextIn(root, "mode");
  for (const Json& pass : root.at("passes")) {
    explanation.passes.push_back({NumberIn(pass, "pass"), TextIn(pass, "kind"), TextIn(pass, "class")});
  }
  for (const Json& rule : root.at("rules")) explanation.rules.push_back(ReadRule(rule));
  for (const Json& line : root.at("lines")) explanation.lines.push_back(ReadLine(line));
  for (const Json& miss : root.at("nearMisses")) explanation.nearMisses.push_back(ReadNearMiss(miss));
  return explanation;
}

std::string ExplanationsAsJson(const std::vector<std::string>& results) {
  Json array = Json::array();
  for (const std::string& result : results) array.push_back(Json::parse(result).at("explanation"));
  return array.dump();
}

}  // namespace Corvane::Tool
