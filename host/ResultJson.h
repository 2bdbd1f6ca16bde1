#ifndef QNCORVANE_HOST_RESULTJSON_H
#define QNCORVANE_HOST_RESULTJSON_H

#include <string>

#include "sale/ProSale.h"

namespace Corvane::Host {

/// A result in the form of QNC_JSON; see qnc_calculate.
///
/// @param xml  the result of the engine.
/// @param sale the sale that it is of.
std::string ResultJson(const std::string& xml, const ProSale& sale);

}  // namespace Corvane::Host

#endif
