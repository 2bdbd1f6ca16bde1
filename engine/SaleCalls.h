#ifndef QNCORVANE_ENGINE_SALECALLS_H
#define QNCORVANE_ENGINE_SALECALLS_H

#include <cstdint>

#include "base/Text.h"

namespace Corvane {

// The calls that end sales; include/qncorvane/qncorvane.h tells what a host may expect of them. The one forgets a sale,
// the other destroys all of them.

std::int32_t DeleteSaleSetByKey(Text key);
std::int32_t ClearSaleSetForNet(char* msg);

}  // namespace Corvane

#endif
