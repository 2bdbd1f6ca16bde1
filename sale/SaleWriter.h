#ifndef QNCORVANE_SALE_SALEWRITER_H
#define QNCORVANE_SALE_SALEWRITER_H

#include <string>

#include "base/Text.h"
#include "sale/ProSale.h"

namespace Corvane {

/// The result XML in the Sale form: the whole sale. Lines, rows, offers and coupons leave from the last to the first.
std::string SaleXml(const ProSale& sale);

/// The result XML in the Single form: one line, with the organisation of its sale.
std::string LineXml(Text orgCode, const SalePlu& line);

}  // namespace Corvane

#endif
