#ifndef TOOLS_EXPLANATION_H
#define TOOLS_EXPLANATION_H

#include <cstdint>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace Corvane::Tool {

/// Nothing, a number or a text; the decision's unit says of what.
using Measure = std::variant<std::monostate, double, std::string>;

/// A rule that took what another one misses.
struct Taker {
  std::string billNo;
  std::string primary;
};

/// Why a rule gave nothing, or not all.
struct Decision {
  std::string reason;
  /// `SerialNo` of the lines that it is about.
  std::vector<std::int64_t> lines;
  std::string goods;
  std::string slot;
  std::int64_t row = 0;
  std::int64_t tier = 0;
  std::string unit;
  Measure have;
  Measure need;
  std::vector<Taker> takenBy;

  [[nodiscard]] bool IsAbout(std::int64_t line) const;
};

/// What a rule took off a line.
struct LineMoney {
  std::int64_t serialNo = 0;
  double cents = 0;
};

/// What came of a rule in one pass.
struct Outcome {
  std::int64_t pass = 0;
  bool isApplied = false;
  double cents = 0;
  std::vector<LineMoney> lines;
  std::int64_t offers = 0;
  std::int64_t coupons = 0;
  /// The reason that decided; none where the rule was applied.
  std::optional<Decision> because;
  std::vector<Decision> looked;
};

struct RuleOutcomes {
  std::string billNo;
  std::string type;
  std::string primary;
  std::vector<Outcome> outcomes;
};

/// One step of a line's amount on its way.
struct WayStep {
  std::string billNo;
  std::string kind;
  std::string by;
  double count = 0;
  double cents = 0;
  double leftCents = 0;
};

/// The way of a line's amount from what was sent to what is to pay.
struct LineWay {
  std::int64_t serialNo = 0;
  std::string pluCode;
  double count = 0;
  double price = 0;
  double beforeCents = 0;
  std::vector<WayStep> steps;
  double leftCents = 0;
};

/// What would have to be added to a sale.
struct Addition {
  /// "goods", "payment" or "coupon".
  std::string what;
  std::string pluCode;
  double count = 0;
  std::optional<double> price;
};

/// What an addition brings.
struct Gain {
  double cents = 0;
  double ruleCents = 0;
  std::int64_t offers = 0;
  std::int64_t coupons = 0;
  double couponCents = 0;

  [[nodiscard]] bool IsNothing() const { return cents == 0 && ruleCents == 0 && offers == 0 && coupons == 0; }
};

struct NearMiss {
  std::string billNo;
  std::string type;
  Measure have;
  Measure need;
  std::vector<Addition> add;
  /// None where a price is not known.
  std::optional<Gain> brings;

  /// @return whether at least half of what is needed is there, and it isn't known to bring nothing.
  [[nodiscard]] bool IsWithinReach() const;
};

struct Pass {
  std::int64_t number = 0;
  std::string kind;
  std::string stackingClass;
};

/// The explanation of one calculation, with whole cents in doubles, whose sums can't overflow; docs/explanations.md tells what the fields mean.
struct Explanation {
  std::string mode;
  std::vector<Pass> passes;
  std::vector<RuleOutcomes> rules;
  std::vector<LineWay> lines;
  std::vector<NearMiss> nearMisses;
};

/// @param result what a calculation with QNC_EXPLAIN answered.
/// @throws std::exception when it has no explanation, or one of another form.
Explanation ReadExplanation(const std::string& result);

/// @param results what the calculations answered. @return a JSON array of their explanations, as they are.
std::string ExplanationsAsJson(const std::vector<std::string>& results);

}  // namespace Corvane::Tool

#endif
