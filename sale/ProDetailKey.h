#ifndef QNCORVANE_SALE_PRODETAILKEY_H
#define QNCORVANE_SALE_PRODETAILKEY_H

#include <cstdint>

#include "base/Text.h"

namespace Corvane {

/// What the code of a row names, in a store's tables.
namespace GoodsKind {
constexpr Text kGoods = "PLU";     ///< an article
constexpr Text kCategory = "CAT";  ///< a category of goods
constexpr Text kBrand = "BRD";     ///< a brand
}  // namespace GoodsKind

/// Whether a row includes what it names; with any other text it does neither.
namespace RangeWord {
constexpr Text kIn = "IN";
constexpr Text kNot = "NOT";
}  // namespace RangeWord

/// The head that sale lines and the detail rows of rules share.
struct ProDetailKey {
  Text BillNo = nullptr;      ///< the rule's number; on a sale line the sale's
  std::int32_t SerialNo = 0;  ///< number of the row; on a sale line the line's identity inside the sale
  std::int32_t Index = 0;     ///< 0-based place in the order of reading; links a condition row with its action row
  Text PluCode = nullptr;     ///< goods code, or the code of the class that PluType names
  Text PluType = GoodsKind::kGoods;  ///< what PluCode means: "PLU" goods, or a class word such as "CAT" or "BRD"
  Text Contain = RangeWord::kIn;     ///< "IN" the row includes what it names, "NOT" it excludes it
  Text PluID = nullptr;              ///< goods identity in the host; only sale lines have one
};

}  // namespace Corvane

#endif
