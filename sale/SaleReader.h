#ifndef QNCORVANE_SALE_SALEREADER_H
#define QNCORVANE_SALE_SALEREADER_H

#include <cstdint>

#include "base/Text.h"
#include "sale/ProSale.h"

namespace Corvane {

/// Merges a sale XML into a sale. Lines are matched by `SerialNo`: a known line is replaced whole and keeps its place,
/// a new one is appended, and a line that the XML doesn't mention stays. Payments, members, gifts and coupons are
/// appended; offers ("ProGifts") replace the earlier ones.
///
/// @param lineIndex in and out: the `Index` of the one line that the XML brought, -1 when a "Plu" group brought
///                  several; untouched without a line.
/// @return false after an exception; what was read until then stays in the sale. A malformed text is none: what stands
///         before the fault is read.
bool ReadSale(ProSale& sale, Text xml, std::int32_t& lineIndex);

}  // namespace Corvane

#endif
