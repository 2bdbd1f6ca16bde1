#include "log/SizeRule.h"

namespace Corvane {

SizeRule::SizeRule(std::int64_t size, const std::vector<std::size_t>& ends) {
  std::size_t begin = 0;
  for (const std::size_t end : ends) {
    if (size > LargestSize) {
      if (!StartsAnew) FirstStart = begin;
      LastStart = begin;
      StartsAnew = true;
      size = 0;
    }
    size += static_cast<std::int64_t>(end - begin);
    begin = end;
  }
}

}  // namespace Corvane
