#ifndef QNCORVANE_HOST_LINT_CHECKS_H
#define QNCORVANE_HOST_LINT_CHECKS_H

#include "host/lint/Store.h"

namespace Corvane::Host::Lint {

// What is looked for, by theme. Each notes what it finds.

/// Number, type, class, family, limit and mark of the rule; two rules of one number, the first of which is
/// marked as replaced.
void CheckHeader(const Rule& rule, Flaws& flaws);
void CheckNumbers(Store& store, Flaws& flaws);

/// Groups and attributes whose names are nearly those of what is read, and missing.
void CheckNames(const Rule& rule, Flaws& flaws);

/// The form of every value in the rule's XML: numbers, dates, times, and no blanks around.
void CheckForms(const Rule& rule, Flaws& flaws);

/// The rows of "OrgFilter", "Vip" and "PayMode".
void CheckFilters(const Rule& rule, Flaws& flaws);

/// The rows of "ProTime".
void CheckTimes(const Rule& rule, Flaws& flaws);

/// Which tables have rows of which rules, and how the tables are found through.
void CheckTables(const Store& store, Flaws& flaws);
void CheckIndexes(RowReader& reader, Flaws& flaws);

/// The words and numbers of the rule's rows, and whether each row can do something.
void CheckRows(const Rule& rule, Flaws& flaws);

/// Set prices, reductions and rates, beside the goods' prices where the goods list tells them.
void CheckPrices(const Rule& rule, const Goods& goods, Flaws& flaws);

/// Piece counts, slots and limits of sets.
void CheckSets(const Rule& rule, Flaws& flaws);

/// Thresholds and steps, in tables and in the lists of coupon rules.
void CheckTiers(const Rule& rule, Flaws& flaws);

/// What rules of coupons and of payments have in their XML beside tiers.
void CheckCoupons(const Rule& rule, Flaws& flaws);
void CheckPayment(const Rule& rule, Flaws& flaws);

/// What rules do to each other: classes, order, and what a rule leaves to those behind it.
void CheckStacking(const Store& store, Flaws& flaws);

/// The goods that the rule names, beside the goods list.
void CheckGoods(const Rule& rule, const Goods& goods, Flaws& flaws);

}  // namespace Corvane::Host::Lint

#endif
