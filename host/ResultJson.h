#ifndef QNCORVANE_HOST_RESULTJSON_H
#define QNCORVANE_HOST_RESULTJSON_H

#include <string>

#include "host/ExplanationJson.h"
#include "sale/ProSale.h"

namespace Corvane::Host {

/// A result in the form of QNC_JSON; see qnc_calculate.
///
/// @param xml  the result of the engine.
/// @param sale the sale that it is of.
/// @param explained what goes into "explanation"; null for a result without.
std::string ResultJson(const std::string& xml, const ProSale& sale, const Explained* explained = nullptr);

}  // namespace Corvane::Host

#endif
