#include "host/ExplanationJson.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <utility>

#include "base/Numbers.h"
#include "host/Cents.h"
#include "promo/AnyRule.h"

namespace Corvane::Host {

namespace {

constexpr std::int64_t kVersion = 1;

// --- Values ----------------------------------------------------------------------------------------------------------

/// With six decimals at most; what is no finite number is 0, as in the result.
void WriteNumber(JsonWriter& json, double number) {
  std::string digits = FormatF6(number);
  digits.erase(digits.find_last_not_of('0') + 1);
  if (digits.back() == '.') digits.pop_back();
  json.Number(digits == "-0" ? "0" : digits);
}

void WriteMeasure(JsonWriter& json, const Measure& measure) {
  if (const double* const number = std::get_if<double>(&measure)) {
    WriteNumber(json, *number);
  } else if (const std::string* const text = std::get_if<std::string>(&measure)) {
    json.String(*text);
  } else {
    json.Number("null");
  }
}

void WriteCents(JsonWriter& json, std::int64_t cents) {
  json.Key("cents").Integer(cents);
  json.Key("money").Number(UnitsOf(cents));
}

// --- Decisions -------------------------------------------------------------------------------------------------------

std::int32_t SerialNoOf(const ProSale& sale, std::int32_t place) {
  return sale.Plus[static_cast<std::size_t>(place)].SerialNo;
}

void WriteDecision(JsonWriter& json, const Decision& decision, const ProSale& sale) {
  json.Object();
  json.Key("reason").String(NameOf(decision.Why));
  json.Key("lines").Array();
  for (const std::int32_t place : decision.Lines) json.Integer(SerialNoOf(sale, place));
  json.End();
  json.Key("goods").String(decision.Goods);
  json.Key("slot").String(decision.Slot);
  json.Key("row").Integer(decision.Row);
  json.Key("tier").Integer(decision.Tier);
  json.Key("unit").String(NameOf(decision.In));
  WriteMeasure(json.Key("have"), decision.Have);
  WriteMeasure(json.Key("need"), decision.Need);
  json.Key("takenBy").Array();
  for (const Taker& taker : decision.TakenBy) {
    json.Object();
    json.Key("billNo").String(OrEmpty(taker.BillNo));
    json.Key("primary").String(OrEmpty(taker.Primary));
    json.End();
  }
  json.End();
  json.End();
}

bool SameTakers(const std::vector<Taker>& left, const std::vector<Taker>& right) {
  return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                    [](const Taker& one, const Taker& other) { return Same(one.BillNo, other.BillNo); });
}

/// Whether two decisions say the same of different lines.
bool SaysTheSame(const Decision& left, const Decision& right) {
  return left.Why == right.Why && left.IsFinal == right.IsFinal && left.Goods == right.Goods &&
         left.Slot == right.Slot && left.Row == right.Row && left.Tier == right.Tier && left.In == right.In &&
         left.Have == right.Have && left.Need == right.Need && SameTakers(left.TakenBy, right.TakenBy) &&
         left.Lines.empty() == right.Lines.empty();
}

void AddLines(Decision& decision, const Decision& same) {
  for (const std::int32_t line : same.Lines) {
    if (std::find(decision.Lines.begin(), decision.Lines.end(), line) == decision.Lines.end()) {
      decision.Lines.push_back(line);
    }
  }
}

/// A decision with the lines of all that say the same.
Decision OnAllLines(Decision decision, const std::vector<Decision>& decisions) {
  Decision gathered = std::move(decision);
  for (const Decision& other : decisions) {
    const bool saysTheSame = other.Why == gathered.Why && other.In == gathered.In && other.Have == gathered.Have &&
                             other.Need == gathered.Need && other.Row == gathered.Row && other.Tier == gathered.Tier &&
                             (other.Why != Reason::NothingOpen || SameTakers(other.TakenBy, gathered.TakenBy));
    if (saysTheSame) AddLines(gathered, other);
  }
  return gathered;
}

/// One decision for all lines of which the same is said.
std::vector<Decision> Gathered(const std::vector<Decision>& decisions) {
  std::vector<Decision> gathered;
  for (const Decision& decision : decisions) {
    const auto same = std::find_if(gathered.begin(), gathered.end(),
                                   [&](const Decision& held) { return SaysTheSame(held, decision); });
    if (same == gathered.end()) {
      gathered.push_back(decision);
      continue;
    }
    AddLines(*same, decision);
  }
  return gathered;
}

// --- Outcomes --------------------------------------------------------------------------------------------------------

std::int64_t CentsOf(const Movement& movement) { return PrintedCents(movement.After) - PrintedCents(movement.Before); }

/// What a rule took off in a walk, by the lines' places.
std::vector<std::pair<std::int32_t, std::int64_t>> CentsByLine(const RuleOutcome& outcome) {
  std::vector<std::pair<std::int32_t, std::int64_t>> lines;
  for (const Movement& movement : outcome.Movements) {
    const auto held =
        std::find_if(lines.begin(), lines.end(), [&](const auto& line) { return line.first == movement.Line; });
    if (held == lines.end()) {
      lines.emplace_back(movement.Line, CentsOf(movement));
    } else {
      held->second = SumOfCents(held->second, CentsOf(movement));
    }
  }
  return lines;
}

void WriteOutcome(JsonWriter& json, std::size_t pass, const RuleOutcome& outcome, const ProSale& sale) {
  const bool isApplied = outcome.HasGiven();
  const auto lines = CentsByLine(outcome);
  std::int64_t cents = 0;
  for (const auto& line : lines) cents = SumOfCents(cents, line.second);
  json.Object();
  json.Key("pass").Integer(static_cast<std::int64_t>(pass) + 1);
  json.Key("outcome").String(isApplied ? "applied" : "refused");
  WriteCents(json, cents);
  json.Key("lines").Array();
  for (const auto& [place, lineCents] : lines) {
    json.Object();
    json.Key("serialNo").Integer(SerialNoOf(sale, place));
    WriteCents(json, lineCents);
    json.End();
  }
  json.End();
  json.Key("offers").Integer(outcome.Offers);
  json.Key("coupons").Integer(outcome.Coupons);
  json.Key("because");
  if (isApplied) {
    json.Number("null");
  } else {
    WriteDecision(json, OnAllLines(outcome.Deciding(), outcome.Decisions), sale);
  }
  json.Key("looked").Array();
  for (const Decision& decision : Gathered(outcome.Decisions)) WriteDecision(json, decision, sale);
  json.End();
  json.End();
}

void WriteRules(JsonWriter& json, const Explanation& told, const ProSale& sale) {
  json.Array();
  for (const ExplainedRule& rule : told.Rules()) {
    const ProInfo& info = InfoOf(*rule.Rule);
    json.Object();
    json.Key("billNo").String(OrEmpty(info.BillNo));
    json.Key("type").String(OrEmpty(info.ProType));
    json.Key("primary").String(OrEmpty(info.Primary));
    json.Key("outcomes").Array();
    for (std::size_t pass = 0; pass < rule.Outcomes.size(); ++pass) WriteOutcome(json, pass, rule.Outcomes[pass], sale);
    json.End();
    json.End();
  }
  json.End();
}

// --- Lines -----------------------------------------------------------------------------------------------------------

const char* NameOf(Change change) {
  switch (change) {
    case Change::Discount:
      return "discount";
    case Change::Tail:
      return "tail";
    case Change::Rounding:
      return "rounding";
    case Change::Limit:
      break;
  }
  return "limit";
}

/// A step on the way of a line's amount.
struct Step {
  std::size_t Pass;  ///< from 1; 0 for a discount of an earlier call
  const ProResult* Row;
  const char* Kind;
  Text By;
  double Count;
  std::int64_t Cents;
};

/// The steps of the lines, by their places, in the order in which they were made.
std::vector<std::vector<Step>> StepsOf(const Explanation& told, const ProSale& sale) {
  std::vector<std::vector<Step>> steps(sale.Plus.size());
  for (std::size_t place = 0; place < told.EarlierRows().size(); ++place) {
    const std::vector<ProResult>& rows = told.EarlierRows()[place];
    for (const ProResult& row : rows) {
      steps[place].push_back({0, &row, "earlier", row.ProBillNo, row.DisNum, PrintedCents(row.DisMoney)});
    }
  }
  for (std::size_t pass = 0; pass < told.Passes().size(); ++pass) {
    for (const ExplainedRule& rule : told.Rules()) {
      for (const Movement& movement : rule.Outcomes[pass].Movements) {
        const auto place = static_cast<std::size_t>(movement.Line);
        const ProResult& row = sale.Plus[place].ProResults[static_cast<std::size_t>(movement.Row)];
        const std::int64_t cents = CentsOf(movement);
        if (cents == 0 && movement.How != Change::Discount) continue;
        steps[place].push_back(
            {pass + 1, &row, NameOf(movement.How), InfoOf(*rule.Rule).BillNo, movement.Quantity, cents});
      }
    }
  }
  return steps;
}

void WriteStep(JsonWriter& json, const Step& step, std::int64_t left) {
  json.Object();
  json.Key("pass").Integer(static_cast<std::int64_t>(step.Pass));
  json.Key("billNo").String(OrEmpty(step.Row->ProBillNo));
  json.Key("type").String(OrEmpty(step.Row->ProType));
  json.Key("kind").String(step.Kind);
  json.Key("by").String(OrEmpty(step.By));
  WriteNumber(json.Key("count"), step.Count);
  WriteCents(json, step.Cents);
  json.Key("leftCents").Integer(left);
  json.Key("left").Number(UnitsOf(left));
  json.End();
}

void WriteLine(JsonWriter& json, const SalePlu& line, const std::vector<Step>& steps) {
  std::int64_t left = PrintedCents(line.TotalBefore);
  json.Object();
  json.Key("serialNo").Integer(line.SerialNo);
  json.Key("pluCode").String(OrEmpty(line.PluCode));
  WriteNumber(json.Key("count"), line.PluCount);
  WriteNumber(json.Key("price"), line.Price);
  json.Key("before").Number(UnitsOf(left));
  json.Key("beforeCents").Integer(left);
  json.Key("steps").Array();
  for (const Step& step : steps) {
    left = SumOfCents(left, -step.Cents);
    WriteStep(json, step, left);
  }
  json.End();
  json.Key("left").Number(UnitsOf(left));
  json.Key("leftCents").Integer(left);
  WriteNumber(json.Key("total"), line.Total);
  json.End();
}

void WriteLines(JsonWriter& json, const Explanation& told, const ProSale& sale) {
  const std::vector<std::vector<Step>> steps = StepsOf(told, sale);
  json.Array();
  for (std::size_t place = 0; place < sale.Plus.size(); ++place) WriteLine(json, sale.Plus[place], steps[place]);
  json.End();
}

// --- Near misses -----------------------------------------------------------------------------------------------------

const char* NameOf(Addition::Thing thing) {
  switch (thing) {
    case Addition::Thing::kGoods:
      return "goods";
    case Addition::Thing::kPayment:
      return "payment";
    case Addition::Thing::kCoupon:
      break;
  }
  return "coupon";
}

void WriteAddition(JsonWriter& json, const Addition& addition) {
  json.Object();
  json.Key("what").String(NameOf(addition.What));
  json.Key("pluCode").String(addition.PluCode);
  json.Key("serialNo").Integer(addition.SerialNo);
  WriteNumber(json.Key("count"), addition.Count);
  json.Key("price");
  if (addition.Price) {
    WriteNumber(json, *addition.Price);
  } else {
    json.Number("null");
  }
  json.End();
}

void WriteGain(JsonWriter& json, const Gain& gain) {
  json.Object();
  WriteCents(json, gain.Cents);
  json.Key("ruleCents").Integer(gain.RuleCents);
  json.Key("offers").Integer(gain.Offers);
  json.Key("coupons").Integer(gain.Coupons);
  json.Key("couponCents").Integer(gain.CouponCents);
  json.End();
}

void WriteNearMiss(JsonWriter& json, const NearMiss& near) {
  const ProInfo& info = InfoOf(*near.Rule);
  json.Object();
  json.Key("billNo").String(OrEmpty(info.BillNo));
  json.Key("type").String(OrEmpty(info.ProType));
  json.Key("reason").String(Corvane::NameOf(near.What.Why));
  json.Key("slot").String(near.What.Slot);
  json.Key("tier").Integer(near.What.Tier);
  json.Key("unit").String(Corvane::NameOf(near.What.In));
  WriteMeasure(json.Key("have"), near.What.Have);
  WriteMeasure(json.Key("need"), near.What.Need);
  WriteNumber(json.Key("missing"), near.Missing);
  json.Key("add").Array();
  for (const Addition& addition : near.Add) WriteAddition(json, addition);
  json.End();
  json.Key("brings");
  if (near.Brings) {
    WriteGain(json, *near.Brings);
  } else {
    json.Number("null");
  }
  json.End();
}

}  // namespace

void WriteExplanation(JsonWriter& json, const Explained& explained, const ProSale& sale) {
  const Explanation& told = explained.Told;
  json.Object();
  json.Key("version").Integer(kVersion);
  json.Key("mode").String(explained.Mode);
  json.Key("passes").Array();
  for (std::size_t pass = 0; pass < told.Passes().size(); ++pass) {
    json.Object();
    json.Key("pass").Integer(static_cast<std::int64_t>(pass) + 1);
    json.Key("kind").String(told.Passes()[pass].Kind);
    json.Key("class").String(told.Passes()[pass].Class);
    json.End();
  }
  json.End();
  WriteRules(json.Key("rules"), told, sale);
  WriteLines(json.Key("lines"), told, sale);
  json.Key("nearMisses").Array();
  for (const NearMiss& near : explained.Near) WriteNearMiss(json, near);
  json.End();
  json.End();
}

}  // namespace Corvane::Host
