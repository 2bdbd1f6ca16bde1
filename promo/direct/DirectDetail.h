#ifndef QNCORVANE_PROMO_DIRECT_DIRECTDETAIL_H
#define QNCORVANE_PROMO_DIRECT_DIRECTDETAIL_H

#include <cstdint>
#include <vector>

#include "db/QnPosDBPro.h"
#include "rule/LineSelection.h"
#include "rule/RuleRows.h"
#include "rule/RuleRun.h"
#include "sale/SaleRecords.h"

namespace Corvane {

/// The detail rows of an ordinary rule, from the table `tProPrjDirectProAct`: condition and action rows, filled
/// pairwise. They hold what concerns the lines of one sale.
class DirectDetail {
 public:
  void Clear();

  /// Empties the rows and reads those that name the goods, category or brand of one of the sale's lines. A row that several
  /// lines hit is kept once, by its `SerialNo`. A line for which the database doesn't answer has no rows; the log then
  /// names the rule, and the other lines go on.
  void LoadRuleDetail(QnPosDBPro& db, const RuleRun& run);

  const std::vector<PluCondition>& Conditions() const { return m_conditions; }

  /// The action row that was read with a condition row: the one of the same `Index`.
  const PluAction& ActionOf(const ProDetailKey& condition) const;

  /// The condition row itself, for a pointer to its head.
  const PluCondition& ConditionOf(const ProDetailKey& head) const;

 private:
  std::vector<PluCondition> m_conditions;
  std::vector<PluAction> m_actions;
};

/// Whether a class row names the line: a "CAT" row by the line's category, a "BRD" row by its brand. No other class
/// word is known to the ordinary rules.
bool MatchClassRow(const ProDetailKey& row, const SalePlu& line);

/// Whether any row names the line: by the goods code, or as a class by MatchClassRow.
bool LineMatchesRows(const RowPtrs& rows, const SalePlu& line, RowsBy by);

/// Notes a line that no including row names. @return whether it is one; false where nobody asks.
bool NoteUnnamed(const RuleRun& run, const SplitRows& rows, const SalePlu& line);

}  // namespace Corvane

#endif
