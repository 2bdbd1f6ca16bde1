#include "ExplainReport.h"

#include <algorithm>
#include <limits>
#include <numeric>
#include <ostream>

#include "TextTable.h"
#include "ToolError.h"

namespace Corvane::Tool {
namespace {

constexpr std::size_t kWidth = 100;
constexpr std::size_t kMostRuleWidth = 20;
constexpr std::size_t kMostNameWidth = 38;
constexpr std::size_t kTypeWidth = 6;
constexpr std::size_t kDecisionIndent = 4;

constexpr std::size_t kNumberWidth = 4;
constexpr std::size_t kGoodsWidth = 40;
constexpr std::size_t kCodeWidth = 14;
constexpr std::size_t kColumnWidth = 10;

std::string Cents(double cents) { return Money(cents / 100); }

std::string LineRow(const std::string& number, const std::string& goods, const std::string& code,
                    const std::string& quantity, const std::string& price, const std::string& amount,
                    const std::string& left) {
  return AtRight(number, kNumberWidth) + "  " + AtLeft(goods, kGoodsWidth - 1) + " " + AtLeft(code, kCodeWidth) +
         AtRight(quantity, kColumnWidth) + AtRight(price, kColumnWidth) + AtRight(amount, kColumnWidth) +
         AtRight(left, kColumnWidth);
}

/// These modes empty the discounts of what was calculated before them.
bool BeginsAnew(const Explanation& step) { return step.mode == "All" || step.mode == "Union" || step.mode == "Zh"; }

std::size_t FirstOf(const std::vector<Explanation>& steps) {
  const auto last = std::find_if(steps.rbegin(), steps.rend(), BeginsAnew);
  return last == steps.rend() ? 0 : static_cast<std::size_t>(std::distance(last, steps.rend())) - 1;
}

double SumOf(const std::vector<WayStep>& steps) {
  return std::accumulate(steps.begin(), steps.end(), 0.0,
                         [](double sum, const WayStep& step) { return sum + step.cents; });
}

/// A line's way with the steps of the calculation before it in the place of their sums.
LineWay WithWayBefore(const LineWay& line, const LineWay& before) {
  const auto isOwn = [](const WayStep& step) { return step.kind != "earlier"; };
  const auto own = std::find_if(line.steps.begin(), line.steps.end(), isOwn);
  const bool isSame = line.beforeCents == before.beforeCents &&
                      SumOf(std::vector<WayStep>(line.steps.begin(), own)) == SumOf(before.steps);
  if (!isSame) return line;
  LineWay whole = line;
  whole.steps = before.steps;
  whole.steps.insert(whole.steps.end(), own, line.steps.end());
  return whole;
}

const RuleOutcomes* RuleIn(const Explanation& step, const std::string& billNo) {
  const auto found = std::find_if(step.rules.begin(), step.rules.end(),
                                  [&](const RuleOutcomes& rule) { return rule.billNo == billNo; });
  return found == step.rules.end() ? nullptr : &*found;
}

bool IsLimit(const Decision& decision) {
  return decision.reason == "LimitedByMoney" || decision.reason == "LimitUsedUp" || decision.reason == "RowLimitUsedUp";
}

/// The decision on one of its lines; what is counted against a need is about all of them.
Decision OfLineAlone(Decision decision, std::int64_t line) {
  const bool isCounted = decision.have.index() != 0 && decision.need.index() != 0;
  if (!isCounted) decision.lines = {line};
  return decision;
}

std::string Comma(const std::vector<std::string>& words) {
  std::string joined;
  for (const std::string& word : words) joined += (joined.empty() ? "" : ", ") + word;
  return joined.empty() ? "none" : joined;
}

}  // namespace

ExplainReport::ExplainReport(std::ostream& out, const Paint& paint, const Store& store, const Sentences& sentences,
                             const SaleView& sale, std::vector<Explanation> steps)
    : m_out(out),
      m_paint(paint),
      m_store(store),
      m_sentences(sentences),
      m_sale(sale),
      m_steps(std::move(steps)),
      m_first(FirstOf(m_steps)) {
  for (const Explanation& step : m_steps) {
    for (const LineWay& line : step.lines) m_lines[line.serialNo] = WithWayBefore(line, m_lines[line.serialNo]);
  }
}

// What is asked for

void ExplainReport::RequireRule(const std::string& billNo) const {
  const std::vector<std::string> numbers = RuleNumbers();
  if (std::find(numbers.begin(), numbers.end(), billNo) != numbers.end()) return;
  throw ToolError("no rule has the number '" + billNo + "'; the rules are " + Comma(numbers) +
                  "; 'qncorvane lint' tells what keeps a rule from being among them");
}

void ExplainReport::RequireLine(std::int64_t line) const {
  if (m_lines.count(line) != 0) return;
  std::vector<std::string> numbers;
  for (const auto& [number, way] : m_lines) numbers.push_back(std::to_string(number));
  throw ToolError("the sale has no line " + std::to_string(line) + "; its lines are " + Comma(numbers));
}

void ExplainReport::PrintHeader() const {
  std::vector<std::string> words = {m_sentences.Of(
      "headings", "sale", {{"sale", m_sale.BillNo()}, {"shop", m_sale.OrgCode()}, {"time", m_sale.DateTime()}})};
  for (const std::string& member : m_sale.Members()) {
    words.push_back(m_sentences.Of("headings", "member", {{"member", member}}));
  }
  m_out << m_sentences.Joined(words, "comma") << "\n";
  std::vector<std::string> modes;
  for (const Explanation& step : m_steps) modes.push_back(step.mode);
  m_out << m_sentences.Of("headings", "modes", {{"modes", m_sentences.Joined(modes, "comma")}}) << "\n";
}

void ExplainReport::PrintAll() const {
  PrintHeading(Heading("promotions"));
  PrintColumns();
  for (const Summary& summary : Summaries()) PrintOutcome(*summary.rule, TextOf(summary), summary.outcome->isApplied);
  PrintNearMisses(nullptr);
  PrintHeading(Heading("lines"));
  PrintLineColumns();
  for (const auto& [number, line] : m_lines) PrintWay(line);
  PrintTotals();
}

void ExplainReport::PrintRule(const std::string& billNo, const std::int64_t* line) const {
  PrintHeading(Heading("promotions"));
  PrintColumns();
  for (const Summary& summary : Summaries()) {
    if (summary.rule->billNo != billNo) continue;
    PrintOutcome(*summary.rule, TextOf(summary), summary.outcome->isApplied);
    m_out << "\n"
          << m_sentences.Of("headings", "kind",
                            {{"type", summary.rule->type},
                             {"kind", m_sentences.Of("types", summary.rule->type)},
                             {"class", summary.rule->primary}})
          << "\n";
    PrintAdvice(summary);
  }
  PrintPasses(billNo, line);
  PrintNearMisses(&billNo);
  std::vector<const LineWay*> ways;
  for (const auto& [number, way] : m_lines) {
    if (line == nullptr ? CentsOn(way, billNo) != 0 : number == *line) ways.push_back(&way);
  }
  if (ways.empty()) return;
  PrintHeading(Heading("lines"));
  PrintLineColumns();
  for (const LineWay* way : ways) PrintWay(*way);
}

void ExplainReport::PrintLine(std::int64_t line) const {
  PrintHeading(m_sentences.Of("headings", "promotionsOfLine", {{"line", std::to_string(line)}}));
  PrintColumns();
  std::vector<Summary> others;
  for (const Summary& summary : Summaries()) {
    const std::string& billNo = summary.rule->billNo;
    const Outcome* const applied = OutcomeOn(line, billNo);
    const Decision* const decision = DecisionOn(line, billNo);
    if (applied != nullptr) {
      PrintOutcome(*summary.rule, Applied(Outcome{}, CentsOn(m_lines.at(line), billNo)), true);
    } else if (decision != nullptr) {
      PrintOutcome(*summary.rule, Why(OfLineAlone(*decision, line), billNo), false);
    } else {
      others.push_back(summary);
    }
  }
  if (others.size() == Summaries().size()) m_out << Heading("promotionsNone") << "\n";
  if (!others.empty()) PrintHeading(Heading("promotionsOther"));
  for (const Summary& summary : others) PrintOutcome(*summary.rule, TextOf(summary), summary.outcome->isApplied);
  PrintHeading(Heading("lines"));
  PrintLineColumns();
  PrintWay(m_lines.at(line));
}

// What came of the rules

std::vector<std::string> ExplainReport::RuleNumbers() const {
  std::vector<std::string> numbers;
  for (const Explanation& step : m_steps) {
    for (const RuleOutcomes& rule : step.rules) {
      if (std::find(numbers.begin(), numbers.end(), rule.billNo) == numbers.end()) numbers.push_back(rule.billNo);
    }
  }
  return numbers;
}

/// The higher, the nearer to a discount. A choice of gifts that is refused says more than the offer that it is from; of a pass
/// for another class nobody wants to hear.
std::size_t ExplainReport::RankOf(const Outcome& outcome) const {
  constexpr std::size_t kHighest = std::numeric_limits<std::size_t>::max();
  if (outcome.isApplied || !outcome.because) return kHighest;
  const std::string& reason = outcome.because->reason;
  if (reason == "ChoiceTooMany" || reason == "ChoiceTooDear") return kHighest;
  return reason == "OtherClass" ? 0 : m_sentences.PlaceOf(reason) + 1;
}

std::vector<ExplainReport::Summary> ExplainReport::Summaries() const {
  std::vector<Summary> summaries;
  for (const std::string& billNo : RuleNumbers()) {
    Summary summary;
    for (std::size_t step = m_first; step < m_steps.size(); ++step) {
      const RuleOutcomes* const rule = RuleIn(m_steps[step], billNo);
      if (rule == nullptr) continue;
      for (const Outcome& outcome : rule->outcomes) {
        if (summary.outcome == nullptr || RankOf(outcome) >= RankOf(*summary.outcome)) summary = {rule, &outcome};
      }
    }
    if (summary.outcome != nullptr) summaries.push_back(summary);
  }
  return summaries;
}

double ExplainReport::CentsOn(const LineWay& line, const std::string& billNo) const {
  return std::accumulate(line.steps.begin(), line.steps.end(), 0.0, [&](double sum, const WayStep& step) {
    return step.billNo == billNo ? sum + step.cents : sum;
  });
}

double ExplainReport::CentsOf(const std::string& billNo) const {
  return std::accumulate(m_lines.begin(), m_lines.end(), 0.0,
                         [&](double sum, const auto& line) { return sum + CentsOn(line.second, billNo); });
}

const Outcome* ExplainReport::OutcomeOn(std::int64_t line, const std::string& billNo) const {
  const Outcome* found = nullptr;
  for (std::size_t step = m_first; step < m_steps.size(); ++step) {
    const RuleOutcomes* const rule = RuleIn(m_steps[step], billNo);
    if (rule == nullptr) continue;
    for (const Outcome& outcome : rule->outcomes) {
      const bool isOnLine = std::any_of(outcome.lines.begin(), outcome.lines.end(),
                                        [&](const LineMoney& money) { return money.serialNo == line; });
      if (outcome.isApplied && isOnLine) found = &outcome;
    }
  }
  return found;
}

const Decision* ExplainReport::DecisionOn(std::int64_t line, const std::string& billNo) const {
  const Decision* nearest = nullptr;
  for (std::size_t step = m_first; step < m_steps.size(); ++step) {
    const RuleOutcomes* const rule = RuleIn(m_steps[step], billNo);
    if (rule == nullptr) continue;
    for (const Outcome& outcome : rule->outcomes) {
      for (const Decision& decision : outcome.looked) {
        if (!decision.IsAbout(line)) continue;
        const bool isNearer =
            nearest == nullptr || m_sentences.PlaceOf(decision.reason) >= m_sentences.PlaceOf(nearest->reason);
        if (isNearer) nearest = &decision;
      }
    }
  }
  return nearest;
}

// Words

std::string ExplainReport::NameOf(const std::string& billNo) const {
  const std::string name = m_store.RuleName(billNo);
  return name == billNo ? std::string() : name;
}

Subject ExplainReport::SubjectOf(const Decision& decision, const std::string& billNo) const {
  Subject subject{billNo, {}};
  if (!decision.goods.empty()) {
    subject.goods.push_back(m_store.GoodsName(decision.goods));
    return subject;
  }
  for (const std::int64_t number : decision.lines) {
    const auto line = m_lines.find(number);
    if (line == m_lines.end()) continue;
    const std::string name = m_store.GoodsName(line->second.pluCode);
    const bool isKnown = std::find(subject.goods.begin(), subject.goods.end(), name) != subject.goods.end();
    if (!isKnown) subject.goods.push_back(name);
  }
  return subject;
}

std::string ExplainReport::Why(const Decision& decision, const std::string& billNo) const {
  return m_sentences.Why(decision, SubjectOf(decision, billNo));
}

std::string ExplainReport::Applied(const Outcome& outcome, double cents) const {
  std::vector<std::string> parts;
  if (cents != 0) parts.push_back(m_sentences.Of("phrases", "applied.money", {{"money", Cents(-cents)}}));
  if (outcome.offers != 0) parts.push_back(m_sentences.Of("phrases", "applied.offers"));
  if (outcome.coupons != 0) {
    parts.push_back(m_sentences.Of("phrases", "applied.coupons", {{"count", std::to_string(outcome.coupons)}}));
  }
  return parts.empty() ? m_sentences.Of("phrases", "applied") : m_sentences.Joined(parts, "comma");
}

/// What kept an applied rule from giving more.
std::string ExplainReport::WithLimits(const std::string& text, const Summary& summary) const {
  std::string whole = text;
  for (const Decision& decision : summary.outcome->looked) {
    if (!IsLimit(decision)) continue;
    whole = m_sentences.Of("phrases", "join", {{"first", whole}, {"second", Why(decision, summary.rule->billNo)}});
  }
  return whole;
}

std::string ExplainReport::TextOf(const Summary& summary) const {
  const std::string& billNo = summary.rule->billNo;
  if (!summary.outcome->isApplied) return summary.outcome->because ? Why(*summary.outcome->because, billNo) : "";
  const double cents = CentsOf(billNo);
  return WithLimits(Applied(*summary.outcome, cents == 0 ? summary.outcome->cents : cents), summary);
}

std::string ExplainReport::LinesOf(const Decision& decision) const {
  if (decision.lines.empty()) return {};
  std::vector<std::string> numbers;
  for (const std::int64_t line : decision.lines) numbers.push_back(std::to_string(line));
  return m_sentences.Of("phrases", numbers.size() == 1 ? "onLine" : "onLine.many",
                        {{"lines", m_sentences.Joined(numbers, "comma")}});
}

std::string ExplainReport::PlaceOf(const Decision& decision) const {
  std::vector<std::string> places;
  const std::string lines = LinesOf(decision);
  if (!lines.empty()) places.push_back(lines);
  if (!decision.slot.empty()) places.push_back(m_sentences.Of("phrases", "slot", {{"slot", decision.slot}}));
  if (decision.row != 0) {
    places.push_back(m_sentences.Of("phrases", "row", {{"row", std::to_string(decision.row)}}));
  }
  if (decision.tier != 0) {
    places.push_back(m_sentences.Of("phrases", "tier", {{"tier", std::to_string(decision.tier)}}));
  }
  return m_sentences.Joined(places, "comma");
}

std::string ExplainReport::PassText(const Explanation& step, const Outcome& outcome) const {
  Pass pass;
  for (const Pass& known : step.passes) {
    if (known.number == outcome.pass) pass = known;
  }
  return m_sentences.Of("phrases", pass.stackingClass.empty() ? "pass" : "pass.class",
                        {{"mode", step.mode},
                         {"pass", std::to_string(outcome.pass)},
                         {"kind", m_sentences.Of("passes", pass.kind)},
                         {"class", pass.stackingClass}});
}

// The table of promotions

std::size_t ExplainReport::RuleWidth() const {
  std::size_t width = DisplayWidth(Heading("rule"));
  for (const std::string& billNo : RuleNumbers()) width = std::max(width, DisplayWidth(billNo));
  return std::min(width, kMostRuleWidth) + 2;
}

std::size_t ExplainReport::NameWidth() const {
  std::size_t width = DisplayWidth(Heading("name"));
  for (const std::string& billNo : RuleNumbers()) width = std::max(width, DisplayWidth(NameOf(billNo)));
  return std::min(width, kMostNameWidth) + 2;
}

void ExplainReport::PrintHeading(const std::string& text) const {
  m_out << "\n" << m_paint.Bold(text) << "\n" << std::string(kWidth, '-') << "\n";
}

void ExplainReport::PrintColumns() const {
  m_out << AtLeft(Heading("rule"), RuleWidth()) << AtLeft(Heading("name"), NameWidth())
        << AtLeft(Heading("type"), kTypeWidth) << Heading("outcome") << "\n";
}

void ExplainReport::PrintOutcome(const RuleOutcomes& rule, const std::string& text, bool isApplied) const {
  const std::size_t indent = RuleWidth() + NameWidth() + kTypeWidth;
  std::string begin = AtLeft(rule.billNo, RuleWidth() - 1) + " " + AtLeft(NameOf(rule.billNo), NameWidth() - 1) + " " +
                      AtLeft(rule.type, kTypeWidth);
  for (const std::string& line : Wrapped(text, kWidth - indent)) {
    m_out << (isApplied ? m_paint.Green(begin + line) : begin + line) << "\n";
    begin = std::string(indent, ' ');
  }
}

// One promotion

void ExplainReport::PrintPasses(const std::string& billNo, const std::int64_t* line) const {
  PrintHeading(Heading("passes"));
  for (const Explanation& step : m_steps) {
    const RuleOutcomes* const rule = RuleIn(step, billNo);
    if (rule == nullptr) continue;
    for (const Outcome& outcome : rule->outcomes) {
      const std::string text = outcome.because ? Why(*outcome.because, billNo) : Applied(outcome, outcome.cents);
      PrintWrapped(m_sentences.Of("phrases", "labelled", {{"label", PassText(step, outcome)}, {"text", text}}), 0);
      for (const Decision& decision : outcome.looked) {
        const bool isWanted = line == nullptr || decision.IsAbout(*line);
        // What decided and has no place is told already.
        const bool isTold = PlaceOf(decision).empty() && Why(decision, billNo) == text;
        if (isWanted && !isTold) PrintDecision(decision, billNo);
      }
    }
  }
}

void ExplainReport::PrintDecision(const Decision& decision, const std::string& billNo) const {
  const std::string place = PlaceOf(decision);
  const std::string why = Why(decision, billNo);
  const std::string text =
      place.empty() ? why : m_sentences.Of("phrases", "labelled", {{"label", place}, {"text", why}});
  PrintWrapped(text, kDecisionIndent);
}

void ExplainReport::PrintWrapped(const std::string& text, std::size_t indent) const {
  for (const std::string& part : Wrapped(text, kWidth - indent)) m_out << std::string(indent, ' ') << part << "\n";
}

void ExplainReport::PrintAdvice(const Summary& summary) const {
  if (!summary.outcome->because) return;
  const Decision& decision = *summary.outcome->because;
  const std::string advice = m_sentences.Advice(decision, SubjectOf(decision, summary.rule->billNo));
  if (advice.empty()) return;
  PrintWrapped(m_sentences.Of("phrases", "advice", {{"text", advice}}), 0);
}

// What is within reach

void ExplainReport::PrintNearMisses(const std::string* billNo) const {
  std::vector<const NearMiss*> misses;
  for (std::size_t step = m_first; step < m_steps.size(); ++step) {
    for (const NearMiss& miss : m_steps[step].nearMisses) {
      const bool isWanted = billNo == nullptr ? miss.IsWithinReach() : miss.billNo == *billNo;
      if (isWanted) misses.push_back(&miss);
    }
  }
  if (misses.empty()) return;
  PrintHeading(Heading("nearMisses"));
  for (const NearMiss* miss : misses) PrintNearMiss(*miss);
}

void ExplainReport::PrintNearMiss(const NearMiss& miss) const {
  std::vector<std::string> additions;
  for (const Addition& addition : miss.add) additions.push_back(AdditionText(addition));
  const std::string text = m_sentences.Of("phrases", "nearMiss",
                                          {{"add", m_sentences.Joined(additions, "and")}, {"brings", GainText(miss)}});
  PrintOutcome({miss.billNo, miss.type, {}, {}}, text, false);
}

std::string ExplainReport::AdditionText(const Addition& addition) const {
  const bool isGoods = addition.what == "goods";
  const Sentences::Fields fields = {{"count", isGoods ? Figure(addition.count) : Money(addition.count)},
                                    {"goods", m_store.GoodsName(addition.pluCode)},
                                    {"price", addition.price ? Money(*addition.price) : std::string()}};
  const bool hasPrice = isGoods && addition.price;
  return m_sentences.Of("phrases", "add." + addition.what + (hasPrice ? ".price" : ""), fields);
}

std::string ExplainReport::GainText(const NearMiss& miss) const {
  if (!miss.brings) return m_sentences.Of("phrases", "brings.unknown");
  const Gain& gain = *miss.brings;
  std::vector<std::string> parts;
  if (gain.cents > 0) parts.push_back(m_sentences.Of("phrases", "brings.money", {{"money", Cents(gain.cents)}}));
  if (gain.cents < 0) {
    parts.push_back(m_sentences.Of("phrases", "brings.less",
                                   {{"rule_money", Cents(gain.ruleCents)}, {"money", Cents(-gain.cents)}}));
  }
  if (gain.offers > 0) parts.push_back(m_sentences.Of("phrases", "brings.offers"));
  // A larger coupon in place of a smaller one is a gain, too.
  if (gain.couponCents > 0) {
    parts.push_back(m_sentences.Of("phrases", "brings.coupons", {{"money", Cents(gain.couponCents)}}));
  }
  return parts.empty() ? m_sentences.Of("phrases", "brings.nothing") : m_sentences.Joined(parts, "comma");
}

// The lines

void ExplainReport::PrintLineColumns() const {
  m_out << LineRow(Heading("number"), Heading("goods"), Heading("code"), Heading("quantity"), Heading("price"),
                   Heading("amount"), Heading("left"))
        << "\n";
}

void ExplainReport::PrintWay(const LineWay& line) const {
  m_out << LineRow(std::to_string(line.serialNo), m_store.GoodsName(line.pluCode), line.pluCode, Quantity(line.count),
                   Money(line.price), Cents(line.beforeCents), Cents(line.beforeCents))
        << "\n";
  for (const WayStep& step : line.steps) PrintWayStep(step);
}

void ExplainReport::PrintWayStep(const WayStep& step) const {
  const std::string text = m_sentences.Of("steps", step.kind, {{"name", m_store.RuleName(step.by)}});
  // A reduction for a payment takes money and no pieces.
  const std::string quantity = step.count == 0 ? "" : Quantity(step.count);
  std::vector<std::string> parts = Wrapped(text, kGoodsWidth - 3);
  m_out << m_paint.Green(
               LineRow("", "  " + parts.front(), step.by, quantity, "", Cents(-step.cents), Cents(step.leftCents)))
        << "\n";
  for (std::size_t part = 1; part < parts.size(); ++part) {
    m_out << m_paint.Green(std::string(kNumberWidth + 4, ' ') + parts[part]) << "\n";
  }
}

void ExplainReport::PrintSum(const std::string& text, double cents, bool isBold) const {
  const std::size_t indent = kNumberWidth + 2;
  const std::size_t width = kGoodsWidth + kCodeWidth + 3 * kColumnWidth;
  const std::string line = std::string(indent, ' ') + AtLeft(text, width) + AtRight(Cents(cents), kColumnWidth);
  m_out << (isBold ? m_paint.Bold(line) : line) << "\n";
}

void ExplainReport::PrintTotals() const {
  double before = 0;
  double left = 0;
  for (const auto& [number, line] : m_lines) {
    before += line.beforeCents;
    left += line.leftCents;
  }
  m_out << "\n";
  PrintSum(Heading("totalBefore"), before, false);
  for (const std::string& billNo : RuleNumbers()) {
    const double cents = CentsOf(billNo);
    if (cents != 0) PrintSum("  " + billNo + "  " + NameOf(billNo), -cents, false);
  }
  PrintSum(Heading("toPay"), left, true);
}

}  // namespace Corvane::Tool
