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

/// A mode.
struct Mode {
  Text Name;
  /// Takes the rules through their passes in the registry's order and writes the result. @return the call's result.
  std::int32_t (*Run)(const Calculation& calculation);
  bool StartsAnew;  ///< whether it empties the lines' results first
};

/// @return the mode of this name, compared exactly, or null.
const Mode* FindMode(Text name);

}  // namespace Corvane

#endif
