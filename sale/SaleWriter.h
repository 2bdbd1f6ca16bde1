#ifndef QNCORVANE_SALE_SALEWRITER_H
#define QNCORVANE_SALE_SALEWRITER_H

#include <cstdint>
#include <vector>

#include "base/Text.h"
#include "sale/ProSale.h"

namespace Corvane {

// The result XML. Both writers copy the printed text into `out` and "sucess" into `msg` and return 0; after an
// exception they leave `out` alone, put "return pro result error" into `msg` and return -1. The buffers are the host's
// and are not length-checked; a null buffer is left alone.

/// The Sale form: the whole sale. Lines, rows, offers and coupons leave from the last to the first.
std::int32_t WriteSale(const ProSale& sale, const std::vector<SalePlu>& lines, char* out, char* msg);

/// The Single form: one line, with the organisation of its sale.
std::int32_t WriteLine(Text orgCode, const SalePlu& line, char* out, char* msg);

}  // namespace Corvane

#endif
