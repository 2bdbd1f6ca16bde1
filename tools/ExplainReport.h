#ifndef TOOLS_EXPLAINREPORT_H
#define TOOLS_EXPLAINREPORT_H

#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <map>
#include <string>
#include <vector>

#include "Explanation.h"
#include "SaleView.h"
#include "Sentences.h"
#include "Store.h"
#include "Terminal.h"

namespace Corvane::Tool {

/// Prints the explanations of a sale's steps for a person at a support desk.
class ExplainReport {
 public:
  /// All but the explanations must outlive the report.
  ///
  /// @param sale  the sale as it was sent.
  /// @param steps one explanation a step, in the order of the steps; at least one.
  ExplainReport(std::ostream& out, const Paint& paint, const Store& store, const Sentences& sentences,
                const SaleView& sale, std::vector<Explanation> steps);

  /// @throws ToolError naming the rules that there are when this is none of them.
  void RequireRule(const std::string& billNo) const;
  /// @throws ToolError naming the lines that there are when this is none of them.
  void RequireLine(std::int64_t line) const;

  /// The sale's number, and what was calculated.
  void PrintHeader() const;
  /// All promotions, what is within reach, all lines and their totals.
  void PrintAll() const;
  /// One promotion, all its passes and what was decided on the way; of one line where `line` is not null.
  void PrintRule(const std::string& billNo, const std::int64_t* line) const;
  /// One line, and the promotions that looked at it.
  void PrintLine(std::int64_t line) const;

 private:
  /// What came of a rule, all its passes taken together.
  struct Summary {
    const RuleOutcomes* rule = nullptr;
    const Outcome* outcome = nullptr;
  };

  [[nodiscard]] std::vector<Summary> Summaries() const;
  [[nodiscard]] std::size_t RankOf(const Outcome& outcome) const;
  [[nodiscard]] std::vector<std::string> RuleNumbers() const;
  [[nodiscard]] std::size_t RuleWidth() const;
  [[nodiscard]] std::size_t NameWidth() const;
  [[nodiscard]] std::string NameOf(const std::string& billNo) const;

  [[nodiscard]] Subject SubjectOf(const Decision& decision, const std::string& billNo) const;
  [[nodiscard]] std::string Why(const Decision& decision, const std::string& billNo) const;
  [[nodiscard]] std::string TextOf(const Summary& summary) const;
  [[nodiscard]] std::string Applied(const Outcome& outcome, double cents) const;
  [[nodiscard]] std::string WithLimits(const std::string& text, const Summary& summary) const;
  [[nodiscard]] std::string PlaceOf(const Decision& decision) const;
  [[nodiscard]] std::string LinesOf(const Decision& decision) const;
  [[nodiscard]] std::string PassText(const Explanation& step, const Outcome& outcome) const;
  [[nodiscard]] double CentsOf(const std::string& billNo) const;
  [[nodiscard]] double CentsOn(const LineWay& line, const std::string& billNo) const;
  [[nodiscard]] const Decision* DecisionOn(std::int64_t line, const std::string& billNo) const;
  [[nodiscard]] const Outcome* OutcomeOn(std::int64_t line, const std::string& billNo) const;

  void PrintHeading(const std::string& text) const;
  void PrintColumns() const;
  void PrintOutcome(const RuleOutcomes& rule, const std::string& text, bool isApplied) const;
  void PrintPasses(const std::string& billNo, const std::int64_t* line) const;
  void PrintDecision(const Decision& decision, const std::string& billNo) const;
  void PrintWrapped(const std::string& text, std::size_t indent) const;
  void PrintAdvice(const Summary& summary) const;
  void PrintNearMisses(const std::string* billNo) const;
  void PrintNearMiss(const NearMiss& miss) const;
  [[nodiscard]] std::string AdditionText(const Addition& addition) const;
  [[nodiscard]] std::string GainText(const NearMiss& miss) const;
  void PrintLineColumns() const;
  void PrintWay(const LineWay& line) const;
  void PrintWayStep(const WayStep& step) const;
  void PrintTotals() const;
  void PrintSum(const std::string& text, double cents, bool isBold) const;
  [[nodiscard]] std::string Heading(const char* key) const { return m_sentences.Of("headings", key); }

  std::ostream& m_out;
  const Paint& m_paint;
  const Store& m_store;
  const Sentences& m_sentences;
  const SaleView& m_sale;
  std::vector<Explanation> m_steps;
  /// The first step that the others build on.
  std::size_t m_first;
  /// What the last step that tells of it says of a line, by `SerialNo`.
  std::map<std::int64_t, LineWay> m_lines;
};

}  // namespace Corvane::Tool

#endif
