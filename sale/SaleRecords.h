#ifndef QNCORVANE_SALE_SALERECORDS_H
#define QNCORVANE_SALE_SALERECORDS_H

#include <cstdint>
#include <utility>
#include <vector>

#include "base/Text.h"
#include "sale/ProDetailKey.h"

namespace Corvane {

// The records of a sale. Texts are borrowed (base/TextPool.h), lists own their rows by value. Money is in currency
// units, quantities are in the unit of the goods. Fields that arrive in XML bear the attribute's name.

/// What a rule did to a line: the discount itself, or the line's share of one (then called an apportion row).
struct ProResult {
  Text ProBillNo = nullptr;  ///< `BillNo` of the rule
  Text Primary = nullptr;    ///< stacking class of the rule: "DZ", "PT" or "DJ"
  Text ProType = nullptr;    ///< type word of the rule
  double DisNum = 0;         ///< quantity; see AppNum
  double DisMoney = 0;       ///< discount money; see AppMoney
  double NewPrice = 0;       ///< unit price that the discount leaves
  double BaseMoney = 0;      ///< the line's money that the discount was computed on
  double YhMoney = 0;        ///< the discount again, kept apart from later changes of DisMoney
  bool IsVip = false;        ///< the rule acted through a member price
  Text VipType = "";         ///< member type, empty for none

  /// The names of DisNum and DisMoney in an apportion row: it is the same record.
  double& AppNum() { return DisNum; }
  double AppNum() const { return DisNum; }
  double& AppMoney() { return DisMoney; }
  double AppMoney() const { return DisMoney; }

  /// Sets the member type; a text that is not empty marks the row as a member's.
  void SetMember(Text vipType) {
    VipType = OrEmpty(vipType);
    IsVip = !IsEmpty(vipType);
  }
};

using Apportion = ProResult;

/// One sale line.
struct SalePlu : ProDetailKey {
  double Price = 0;        ///< unit price
  double FinalPrice = 0;   ///< unit price after discount; `Total` / `PluCount` when read
  double VipPrice = 0;     ///< member price
  double PluCount = 0;     ///< quantity
  double Total = 0;        ///< line amount, lowered by discounts
  double TotalBefore = 0;  ///< before the results that the line has: as it was sent, or an earlier subtotal left it
  double DisNum = 0;       ///< quantity that the last rule took on this line
  double PackCnt = 0;      ///< pack count; 0 or 1 marks a single article
  Text CAT = nullptr;      ///< category code
  Text BRD = nullptr;      ///< brand code
  /// (class word, code) pairs of the line; no pair stands twice. "CAT" and "BRD" are among them.
  std::vector<std::pair<Text, Text>> LineClasses;
  Text SaleDate = nullptr;            ///< "YYYY-MM-DD"
  Text SaleTime = nullptr;            ///< "HH:MM:SS"
  std::int32_t PluDtId = 0;           ///< passed through to the result
  std::int32_t PageNo = 0;            ///< passed through to the result
  std::int32_t LnNo = 0;              ///< passed through to the result
  double YhBefore = 0;                ///< discount on the line before this engine; passed through to the result
  Text ClsId = nullptr;               ///< passed through to the result
  std::vector<ProResult> ProResults;  ///< what rules did to this line
  std::vector<Apportion> Apportions;  ///< the line's shares of whole-sale and combination discounts
};

/// A payment; the same record is a rule's payment filter.
struct ProPayMode {
  Text BillNo = nullptr;     ///< the sale's number, in a filter the rule's
  Text PayMode = nullptr;    ///< way of paying; "*" in a filter means any
  Text PayCardNo = nullptr;  ///< card number
  double PayMoney = 0;       ///< money paid; in a filter the least money
};
using SalePay = ProPayMode;

/// A member record; the same record is a rule's member filter.
struct ProVip {
  Text BillNo = nullptr;   ///< the sale's number, in a filter the rule's
  Text VipType = nullptr;  ///< member type; "*" in a filter means any
};
using SaleVip = ProVip;

/// A gift that the front end took of an offer.
struct SaleGift {
  Text SerialNo = nullptr;
  Text ProBillNo = nullptr;
  Text SaleBillNo = nullptr;
  Text PluCode = nullptr;
  double PluCount = 0;
  double Price = 0;
  double DscPrice = 0;
  double Total = 0;
};

/// A tier of a rule: what is given from which threshold on. Which unit a number has is told by the `...Tp` words: "SUM"
/// money, "NUM" quantity.
struct PluAddAction : ProDetailKey {
  Text DisType = "PRC";
  double DisRate = 0;
  double Price = 0;        ///< price of the offered goods, from the sale XML and back
  double DscPrice = 0;     ///< price at which the goods are offered; above 0 they cost money
  Text BaseConTp = "SUM";  ///< unit of the threshold
  double BaseConNum = 0;   ///< threshold; tiers are ordered by it
  Text BaseDscTp = "SUM";  ///< unit of the gift
  double BaseDscNum = 0;   ///< given on reaching the threshold
  double AddConNum = 0;    ///< size of each further step; 0 means BaseConNum again
  Text AddDscTp = "SUM";
  double AddDscNum = 0;      ///< given for each further step
  double SaleMaxIn = 0;      ///< the most that the tier looks at or gives; 0 means no limit
  double HgPluCount = 0;     ///< how many the cashier picked of this offer
  std::int32_t CanPart = 1;  ///< 1 while the offer can still be taken
  Text DataId = nullptr;     ///< part of a table row's identity
};

/// The offers that one full-amount gift rule makes to a sale.
struct SaleProGift {
  double Total = 0;          ///< what the sale brought for this group of offers
  double LeftTotal = 0;      ///< what is left of it after the picks
  double UsedTotal = 0;      ///< what the picks used
  Text ProBillNo = nullptr;  ///< the rule
  std::vector<PluAddAction> Rows;
};

/// A coupon, received from the front end or given by a rule.
struct SaleCoupon {
  Text Value = nullptr;  ///< the coupon's amount as text
  Text CouponTypeCode = nullptr;
  Text EndDate = nullptr;
  Text Remark = nullptr;
  Text BillNo = nullptr;  ///< number of the coupon, or of the rule that gave it
  Text BgnDate = nullptr;
};

}  // namespace Corvane

#endif
