#ifndef QNCORVANE_PROMO_MZ_CONDITIONROWS_H
#define QNCORVANE_PROMO_MZ_CONDITIONROWS_H

#include <vector>

#include "promo/DetailTable.h"
#include "rule/LineSelection.h"
#include "rule/RuleRows.h"
#include "rule/RuleRun.h"
#include "sale/SaleRecords.h"

namespace Corvane {

// The condition rows of full-amount rules, from the table `tProMzConPluSet`: which lines of a sale count toward the
// thresholds. Only rows that name a line of the sale are read. A row that several lines hit is held once, by its
// `SerialNo`, `ListCode` and `DataId`.

/// Reads the rows of one list of a rule.
bool LoadListConditions(DetailTables& tables, Text listCode, ProSale& sale, std::vector<PluCondition>& rows);

/// Reads the rows of a rule without lists of its own. When none of the rule's rows names a line of the sale, one of
/// them is held all the same: no rows at all mean the whole sale, and this is not that case.
bool LoadRuleConditions(DetailTables& tables, ProSale& sale, std::vector<PluCondition>& rows);

/// The lines that count, and what they bring: with rows those that the rows take, without rows all.
RuleLines SelectConditionLines(const RuleRun& run, const std::vector<PluCondition>& rows);

}  // namespace Corvane

#endif
