#ifndef QNCORVANE_TESTS_SUPPORT_RESULTROOM_H
#define QNCORVANE_TESTS_SUPPORT_RESULTROOM_H

#include <cstddef>
#include <initializer_list>
#include <string>
#include <vector>

#include "tests/support/Till.h"

namespace Corvane::Testing {

/// The formula's sizes, without the texts. `Frame` has the closing zero in it.
struct Sizes {
  std::size_t Frame;
  std::size_t Line;
  std::size_t Discount;  ///< and apportion
  std::size_t Offer;
  std::size_t OfferRow;
  std::size_t Coupon;
};
inline constexpr Sizes kNumbersBelow1e15 = {220, 400, 180, 150, 370, 110};
inline constexpr Sizes kAnyNumbers = {220, 1900, 770, 1030, 2730, 110};
inline constexpr std::size_t kBytesOfAnEscape = 6;

inline std::size_t TextBytes(const std::vector<Row>& rows, std::initializer_list<const char*> texts) {
  std::size_t bytes = 0;
  for (const Row& row : rows) {
    for (const char* text : texts) bytes += row[text].size();
  }
  return kBytesOfAnEscape * bytes;
}

/// The room that the guide gives to a result, by the rows that it has.
/// @param headTexts bytes of the sale's number and organisation.
inline std::size_t RoomFor(const Sizes& sizes, const std::string& result, std::size_t headTexts) {
  std::size_t room = sizes.Frame + kBytesOfAnEscape * headTexts;
  const std::vector<Row> lines = RowsOf(result, "Plu");
  room += lines.size() * sizes.Line;
  room += TextBytes(lines, {"PluCode", "BRD", "CAT", "SaleDate", "SaleTime", "ClsId", "PluID"});
  for (const char* group : {"ProResult", "Apportion"}) {
    const std::vector<Row> rows = RowsOf(result, group);
    room += rows.size() * sizes.Discount + TextBytes(rows, {"PluCode", "ProBillNo", "ProType", "VipType"});
  }
  for (const Offer& offer : OffersOf(result)) {
    room += sizes.Offer + TextBytes({offer.Head}, {"ProBillNo"});
    room += offer.Rows.size() * sizes.OfferRow;
    room += TextBytes(offer.Rows, {"PluCode", "PluType", "BaseConTp", "BaseDscTp"});
  }
  const std::vector<Row> coupons = RowsOf(result, "ProCoupons");
  room += coupons.size() * sizes.Coupon;
  room += TextBytes(coupons, {"SendSaleNo", "BillNo", "CouponTypeCode", "BgnDate", "EndDate", "Value", "Remark"});
  return room;
}

}  // namespace Corvane::Testing

#endif
