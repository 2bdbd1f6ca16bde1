#ifndef QNCORVANE_PROMO_COMB_COMBDETAIL_H
#define QNCORVANE_PROMO_COMB_COMBDETAIL_H

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <vector>

#include "base/Text.h"
#include "rule/LineSelection.h"
#include "rule/ProInfo.h"
#include "sale/ProSale.h"
#include "sale/SaleRecords.h"

namespace Corvane {

// What the four combination rules share.

/// What the steps of one calculation take along.
struct CombWork {
  ProSale& Sale;
  std::vector<SalePlu>& Changed;  ///< receives copies of the lines as they are discounted
  Text VipType;                   ///< member type, empty for none
};

/// Lines that a rule's rows name, and what is open on them.
struct CombPool {
  LinePtrs Lines;  ///< a line may stand in it more than once
  double Quantity = 0;
  double Money = 0;
};

/// What combination rules have taken of a line, whichever they were.
struct CombTaken {
  double Quantity = 0;
  double Money = 0;
};
CombTaken TakenByCombinations(const SalePlu& line);

/// The line's unit price before any combination discount, not rounded.
double UnitBeforeCombinations(const SalePlu& line);

/// Whether sets of this size can be formed. A size below 1 is never divided by; nor is NaN.
inline bool IsSetSize(double saleCount) { return saleCount >= 1; }

/// The whole sets that a quantity fills. Both numbers are cut to whole pieces first: 2.5 pieces make one set of 2.
///
/// @param saleCount pieces of one set, at least 1.
std::int32_t WholeSets(double quantity, double saleCount);

/// A result row of the rule that has a new price; `YhMoney` is the discount too.
ProResult CombResult(const ProInfo& rule, double quantity, double money, double newPrice, Text vipType);

/// Sorts rows ascending by a number of theirs; equal rows keep their order. NaN stands in front of every number.
template <class Row, class Key>
void SortAscending(std::vector<Row>& rows, Key key) {
  const auto isBelow = [&](const Row& left, const Row& right) {
    return key(left) < key(right) || (std::isnan(key(left)) && !std::isnan(key(right)));
  };
  std::stable_sort(rows.begin(), rows.end(), isBelow);
}

}  // namespace Corvane

#endif
