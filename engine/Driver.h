#ifndef QNCORVANE_ENGINE_DRIVER_H
#define QNCORVANE_ENGINE_DRIVER_H

#include <cstdint>

#include "base/Text.h"
#include "engine/Explanation.h"
#include "engine/HostBuffer.h"
#include "sale/ProSale.h"

namespace Corvane {

/// What a mode works on: the sale, the line that the call brought (-1 for several), where the result goes, the
/// host's buffer for the text, and who asks why, or null.
struct Calculation {
  ProSale& Sale;
  std::int32_t LineIndex;
  ResultPlace Out;
  char* Msg;
  Explanation* Asked = nullptr;
};

/// A mode: takes the rules through their passes in the registry's order and writes the result.
/// @return the call's result.
using ModeStep = std::int32_t (*)(const Calculation& calculation);

/// @return the mode of this name, compared exactly, or null.
ModeStep FindMode(Text mode);

}  // namespace Corvane

#endif
