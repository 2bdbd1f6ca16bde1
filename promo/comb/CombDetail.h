#ifndef QNCORVANE_PROMO_COMB_COMBDETAIL_H
#define QNCORVANE_PROMO_COMB_COMBDETAIL_H

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <vector>

#include "rule/LinePtrs.h"

namespace Corvane {

// What the four combination rules share.

/// Lines that a rule's rows name, and what is open on them.
struct CombPool {
  LinePtrs Lines;  ///< a line may stand in it more than once
  double Quantity = 0;
  double Money = 0;
};

/// Whether sets of this size can be formed. A size below 1 is never divided by; nor is NaN.
inline bool IsSetSize(double saleCount) { return saleCount >= 1; }

/// The whole sets that a quantity fills. Both numbers are cut to whole pieces first: 2.5 pieces make one set of 2.
///
/// @param saleCount pieces of one set, at least 1.
std::int32_t WholeSets(double quantity, double saleCount);

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
