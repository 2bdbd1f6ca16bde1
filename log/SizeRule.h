#ifndef QNCORVANE_LOG_SIZERULE_H
#define QNCORVANE_LOG_SIZERULE_H

#include <cstddef>
#include <cstdint>
#include <vector>

namespace Corvane {

/// What becomes of entries that are appended to the log one by one, when an entry that finds the file longer than
/// 1000000 bytes starts it anew. Places count from the begin of the first entry.
struct SizeRule {
  static constexpr std::int64_t LargestSize = 1000000;

  /// @param size the file's size before the first entry.
  /// @param ends where each entry ends, in their order.
  SizeRule(std::int64_t size, const std::vector<std::size_t>& ends);

  bool StartsAnew = false;     ///< whether the file does so at all
  std::size_t FirstStart = 0;  ///< the entry where it does so first
  std::size_t LastStart = 0;   ///< the entry where it does so last: from here on the file holds them
};

}  // namespace Corvane

#endif
