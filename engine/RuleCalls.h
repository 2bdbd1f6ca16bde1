#ifndef QNCORVANE_ENGINE_RULECALLS_H
#define QNCORVANE_ENGINE_RULECALLS_H

#include <cstdint>

#include "base/Text.h"

namespace Corvane {

// The calls that load and remove rules; include/qncorvane/qncorvane.h tells what a host may expect of them.

std::int32_t BeginInitPro();
std::int32_t InitPromotion(Text type, Text xml, char* msg);
std::int32_t FinishInitPro();
std::int32_t ClearPromotion(char* msg, Text billNo);

}  // namespace Corvane

#endif
