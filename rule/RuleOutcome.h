#ifndef QNCORVANE_RULE_RULEOUTCOME_H
#define QNCORVANE_RULE_RULEOUTCOME_H

#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "base/Text.h"
#include "rule/Decision.h"
#include "rule/LinePtrs.h"
#include "sale/SaleRecords.h"

namespace Corvane {

/// How the money of a result row came to change.
enum class Change {
  Discount,  ///< a row was written, or grew
  Tail,      ///< cents that rounding left over were put there
  Rounding,  ///< it was cut to cents
  Limit,     ///< the rule's limit in money took something back
};

/// A change of a result row's money on a line.
struct Movement {
  Change How = Change::Discount;
  std::int32_t Line = 0;  ///< the line's place in the sale
  std::int32_t Row = 0;   ///< the row's place among the line's results
  double Quantity = 0;    ///< what the change discounted; 0 for one of money alone
  double Before = 0;      ///< the row's money
  double After = 0;
};

/// What became of a rule in one pass: filled while it runs, for whoever asked. Nobody asks in an ordinary calculation; all
/// that records something takes a pointer then that is null.
struct RuleOutcome {
  std::vector<Decision> Decisions;
  std::vector<Movement> Movements;
  std::int32_t Offers = 0;    ///< groups of gifts offered
  std::int32_t Coupons = 0;   ///< coupons given
  std::int32_t SaleRows = 0;  ///< rows with money written for the whole sale

  /// Whether the rule took money off a line, offered gifts, or gave or took coupons.
  bool HasGiven() const;

  /// The decision that kept the rule from giving: the one that ended its step, otherwise the one nearest to a discount, and
  /// of several alike the one that misses least. A rule without a decision has one that says so.
  Decision Deciding() const;
};

/// Tells one decision, piece by piece: `run.Note(Reason::BelowMinimum).Row(7).Has(Unit::Quantity, 2).Needs(3)`. Each piece does
/// nothing where nobody asked.
class Telling {
 public:
  /// @param outcome null where nobody asked.
  Telling(RuleOutcome* outcome, Reason reason, bool isFinal) {
    if (outcome == nullptr) return;
    outcome->Decisions.emplace_back();
    m_decision = &outcome->Decisions.back();
    m_decision->Why = reason;
    m_decision->IsFinal = isFinal;
  }

  bool IsAsked() const { return m_decision != nullptr; }

  Telling& On(const SalePlu& line) {
    if (m_decision != nullptr) m_decision->Lines.push_back(line.Index);
    return *this;
  }
  Telling& On(const LinePtrs& lines);
  Telling& On(const std::vector<SalePlu>& lines);

  Telling& Goods(Text code) {
    if (m_decision != nullptr) m_decision->Goods = OrEmpty(code);
    return *this;
  }
  Telling& Slot(Text code) {
    if (m_decision != nullptr) m_decision->Slot = OrEmpty(code);
    return *this;
  }
  Telling& Row(std::int32_t serialNo) {
    if (m_decision != nullptr) m_decision->Row = serialNo;
    return *this;
  }
  /// @param place 0 for the highest tier.
  Telling& Tier(std::ptrdiff_t place) {
    if (m_decision != nullptr) m_decision->Tier = static_cast<std::int32_t>(place) + 1;
    return *this;
  }

  Telling& Has(Unit unit, double number) {
    if (m_decision != nullptr) SetMeasure(m_decision->Have, unit, number);
    return *this;
  }
  /// @param text null is the empty text.
  Telling& Has(Unit unit, Text text) {
    if (m_decision != nullptr) SetMeasure(m_decision->Have, unit, std::string(OrEmpty(text)));
    return *this;
  }
  Telling& Needs(double number) {
    if (m_decision != nullptr) m_decision->Need = number;
    return *this;
  }
  Telling& Needs(Text text) {
    if (m_decision != nullptr) m_decision->Need = std::string(OrEmpty(text));
    return *this;
  }
  /// A span, told as "from..to".
  Telling& Needs(Text from, Text to) {
    if (m_decision != nullptr) m_decision->Need = Join(from, "..", to);
    return *this;
  }
  Telling& In(Unit unit) {
    if (m_decision != nullptr) m_decision->In = unit;
    return *this;
  }

  /// Lists, told with commas between what `textOf` gives of each entry; what is empty is left out.
  template <class List, class TextOf>
  Telling& HasEach(Unit unit, const List& list, TextOf textOf) {
    if (m_decision != nullptr) SetMeasure(m_decision->Have, unit, Listed(list, textOf));
    return *this;
  }
  template <class List, class TextOf>
  Telling& NeedsEach(const List& list, TextOf textOf) {
    if (m_decision != nullptr) m_decision->Need = Listed(list, textOf);
    return *this;
  }

  /// The rule of a row took what is missing; each rule is told once.
  Telling& TakenBy(const ProResult& row);

  /// The rules of those rows of the line that the predicate picks.
  template <class Predicate>
  Telling& TakenBy(const SalePlu& line, Predicate picks) {
    if (m_decision == nullptr) return *this;
    for (const ProResult& row : line.ProResults) {
      if (picks(row)) TakenBy(row);
    }
    return *this;
  }

 private:
  void SetMeasure(Measure& measure, Unit unit, Measure value) {
    m_decision->In = unit;
    measure = std::move(value);
  }

  template <class List, class TextOf>
  static std::string Listed(const List& list, TextOf textOf) {
    std::string listed;
    for (const auto& entry : list) {
      const std::string text = textOf(entry);
      if (text.empty()) continue;
      if (!listed.empty()) listed += ", ";
      listed += text;
    }
    return listed;
  }

  Decision* m_decision = nullptr;  ///< the last one of the outcome; no other is told meanwhile
};

/// A decision on the way, which ends nothing.
inline Telling Note(RuleOutcome* outcome, Reason reason) { return {outcome, reason, false}; }

/// The decision that ends the rule's step.
inline Telling Refuse(RuleOutcome* outcome, Reason reason) { return {outcome, reason, true}; }

/// Sets the money of a row that stands on one of the lines, and tells the change.
///
/// @param quantity what the change discounted.
void SetRowMoney(RuleOutcome* outcome, const std::vector<SalePlu>& lines, ProResult& row, double money, Change how,
                 double quantity = 0);

}  // namespace Corvane

#endif
