#include "promo/comb/CombDetail.h"

#include "base/Numbers.h"

namespace Corvane {

std::int32_t WholeSets(double quantity, double saleCount) {
  return DivideInt32(TruncToInt32(std::floor(quantity)), TruncToInt32(std::floor(saleCount)));
}

}  // namespace Corvane
