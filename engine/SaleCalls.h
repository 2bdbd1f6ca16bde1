#ifndef QNCORVANE_ENGINE_SALECALLS_H
#define QNCORVANE_ENGINE_SALECALLS_H

#include <cstdint>

#include "base/Text.h"

namespace Corvane {

// The calls that end sales; include/qncorvane/qncorvane.h tells what a host may expect of them. Both give back the
// memory of what they end.

std::int32_t DeleteSaleSetByKey(Text key);
std::int32_t ClearSaleSetForNet(char* msg);

}  // namespace Corvane

#endif
