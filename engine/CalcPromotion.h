#ifndef QNCORVANE_ENGINE_CALCPROMOTION_H
#define QNCORVANE_ENGINE_CALCPROMOTION_H

#include <cstdint>

#include "base/Text.h"
#include "engine/Explanation.h"
#include "engine/HostBuffer.h"

namespace Corvane {

/// The frame of every calculation: tests state and arguments, finds or creates the sale, merges the sale XML into it
/// and runs the mode. include/qncorvane/qncorvane.h tells what a host may expect.
///
/// @param explanation is told what the calculation decides; null where nobody asks.
std::int32_t CalcPromotion(Text key, Text mode, Text xml, ResultPlace out, char* msg,
                           Explanation* explanation = nullptr);

}  // namespace Corvane

#endif
