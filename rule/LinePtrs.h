#ifndef QNCORVANE_RULE_LINEPTRS_H
#define QNCORVANE_RULE_LINEPTRS_H

#include <vector>

#include "sale/SaleRecords.h"

namespace Corvane {

/// Pointers to lines of a sale, valid while nothing is added to the sale's list of lines.
using LinePtrs = std::vector<SalePlu*>;

}  // namespace Corvane

#endif
