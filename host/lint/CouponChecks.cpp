#include <QString>
#include <algorithm>

#include "base/Text.h"
#include "host/ValueForm.h"
#include "host/lint/Checks.h"
#include "host/lint/Words.h"
#include "promo/mz/ProMzList.h"
#include "rule/RuleType.h"

namespace Corvane::Host::Lint {

namespace {

/// The word of a goods row in a rule's XML; without the attribute it is "IN".
std::string RangeOf(const XmlNode& row) {
  return row.Find("Contain") != nullptr ? row.Value("Contain") : RangeWord::kIn;
}

void CheckArea(const Rule& rule, const XmlNode& list, Flaws& flaws) {
  const std::string area = list.Value("ConAreaType");
  const Place place = rule.At(list, "ConAreaType");
  CheckWord(flaws, Codes::kUnknownArea, place, "ConAreaType", area,
            {ConditionArea::kWholeSale, ConditionArea::kChosenLines}, "no area: the list counts nothing");
  const std::vector<const XmlNode*> goods = list.RowsOf("PluCondition");
  for (const XmlNode* const row : goods) {
    CheckWord(flaws, Codes::kUnknownRange, rule.At(*row, "Contain"), "Contain", RangeOf(*row),
              {RangeWord::kIn, RangeWord::kNot}, "neither IN nor NOT: the row does nothing");
  }
  if (area != ConditionArea::kChosenLines) return;
  if (goods.empty()) {
    flaws.Add(Codes::kAreaWithoutGoods, place, "ConAreaType DES and no rows in PluCondition: nothing counts",
              "write the goods there, or ConAreaType ALL");
  }
  const bool excludesAll = !goods.empty() && std::all_of(goods.begin(), goods.end(), [](const XmlNode* row) {
    return RangeOf(*row) == RangeWord::kNot;
  });
  if (!excludesAll) return;
  flaws.Add(Codes::kOnlyNotRows, rule.At(*goods.front()),
            "every row leaves goods out, and none takes any in: nothing is left",
            "write a row with Contain IN for what is meant");
}

void CheckDenominations(const Rule& rule, const XmlNode& list, const XmlNode& coupon, Flaws& flaws) {
  const std::vector<const XmlNode*> rows = list.RowsOf("CouponDenomination");
  if (rows.empty()) return;
  const XmlAttribute* const flag = coupon.Find("IsDenom");
  if (flag == nullptr) {
    flaws.Add(Codes::kIdleDenominations, rule.At(*rows.front()),
              "denominations without IsDenom are not looked at: one coupon is given",
              "write IsDenom=\"1\" in CouponType, or delete the rows");
    return;
  }
  if (Trimmed(flag->Value) == "0" || SameIgnoringCase(Trimmed(flag->Value).c_str(), "false") || flag->Value.empty()) {
    flaws.Add(Codes::kFlagByPresence, rule.At(coupon, "IsDenom"),
              "IsDenom " + Shown(flag->Value) + " counts as true, for it is there",
              "leave the attribute out, or write IsDenom=\"1\"");
  }
  double least = rows.front()->Number("Denomination");
  for (const XmlNode* const row : rows) least = std::min(least, row->Number("Denomination"));
  for (const XmlNode* const tier : list.RowsOf("PluAddAction")) {
    const double sum = tier->Number("BaseDscNum");
    if (sum <= 0 || sum >= least) continue;
    flaws.Add(Codes::kUncutCoupon, rule.At(*tier, "BaseDscNum"),
              "the tier gives " + Shown(sum) + ", and the smallest denomination is " + Shown(least) +
                  ": what is less is not given",
              "write a smaller denomination");
  }
}

bool IsDate(const std::string& value) {
  return !value.empty() && Fits(QString::fromStdString(value), ValueForm::kMoment);
}

/// What a coupon says of itself when it is given.
void CheckCouponType(const Rule& rule, const XmlNode& list, const XmlNode& coupon, Flaws& flaws) {
  CheckDenominations(rule, list, coupon, flaws);
  const std::string end = coupon.Value("EndDate");
  const std::string begin = coupon.Value("BgnDate");
  const bool hasFixedEnd = coupon.Value("LimitType") == "0";
  if (hasFixedEnd && IsDate(begin) && IsDate(end) && end < begin) {
    flaws.Add(Codes::kEndBeforeStart, rule.At(coupon, "EndDate"),
              "EndDate " + end + " lies before BgnDate " + begin + ": the coupon is never valid", "change the two");
  }
  if (hasFixedEnd && end.empty()) {
    flaws.Add(Codes::kCouponWithoutEnd, rule.At(coupon, "LimitType"),
              "LimitType 0 without an EndDate: the coupon has no end", "write EndDate, or LimitType 1 and LimitDay");
  }
  if (hasFixedEnd || coupon.Number("LimitDay") > 0) return;
  flaws.Add(Codes::kCouponWithoutEnd, rule.At(coupon, "LimitDay"),
            "no LimitDay: the coupon ends on the day on which it is given",
            "write for how many days it is valid, or LimitType 0 and EndDate");
}

/// It always answers to the taking of coupons, too, and refuses only where it has given some on the sale. Some sales on which
/// it gives none reach that step all the same.
void CheckTaking(const Rule& rule, Flaws& flaws) {
  const std::string mend =
      "let the till send no coupons in mode Coupon on such sales, or give the rule no such condition";
  const std::string mark = rule.Xml.Value("Remark");
  if (mark == SaleMark::kDv || mark == SaleMark::kNv) {
    flaws.Add(
        Codes::kTakesCoupons, rule.At(rule.Xml, "Remark"),
        "on sales that Remark " + mark +
            " keeps it from, the rule gives no coupons, but takes them in mode Coupon, which doesn't look at Remark",
        mend);
  }
  const std::vector<const XmlNode*> payments = rule.Xml.RowsOf("PayMode");
  const bool waits = !payments.empty() && std::none_of(payments.begin(), payments.end(),
                                                       [](const XmlNode* row) { return row->Value("PayMode") == "*"; });
  if (!waits) return;
  flaws.Add(Codes::kTakesCoupons, rule.At(*payments.front(), "PayMode"),
            "before the payment is known the rule gives no coupons; behind it, it takes them in mode Coupon as a rule "
            "MZYQ does",
            mend);
}

}  // namespace

void CheckCoupons(const Rule& rule, Flaws& flaws) {
  const bool gives = rule.Is(TypeWord::kGiveCoupon);
  if (!gives && !rule.Is(TypeWord::kUseCoupon)) return;
  const std::vector<const XmlNode*> lists = rule.Xml.Groups("ProList");
  if (lists.empty()) {
    flaws.Add(Codes::kNoRows, rule.Where(), "the rule has no ProList: it does nothing",
              "write its list, with area and tiers");
  }
  for (const XmlNode* const list : lists) {
    CheckArea(rule, *list, flaws);
    if (list->RowsOf("PluAddAction").empty()) {
      flaws.Add(Codes::kListWithoutTier, rule.At(*list), "the list has no rows in PluAddAction: it does nothing",
                "write a tier");
    }
    if (!gives) continue;
    for (const XmlNode* const coupon : list->Groups("CouponType")) CheckCouponType(rule, *list, *coupon, flaws);
  }
  if (gives) CheckTaking(rule, flaws);
}

// --- Payments -------------------------------------------------------------------------------------------------------

void CheckPayment(const Rule& rule, Flaws& flaws) {
  if (!rule.Is(TypeWord::kPay)) return;
  const std::vector<const XmlNode*> controls = rule.Xml.RowsOf("ProCtr");
  std::string payType;
  double limit = 0;
  for (const XmlNode* const control : controls) {
    if (control->Find("PayType") != nullptr) payType = control->Value("PayType");
    if (control->Find("PriceTotal") != nullptr) limit = control->Number("PriceTotal");
  }
  const Place place = controls.empty() ? rule.Where() : rule.At(*controls.front());
  if (payType.empty()) {
    flaws.Add(Codes::kNoPayType, place, "ProCtr names no PayType: no payment counts",
              "write the way of paying that counts");
  }
  if (limit <= 0) {
    flaws.Add(Codes::kZeroLimit, place,
              "ProCtr has a PriceTotal of " + Shown(limit) + ": the most that is given is nothing",
              "write the most that is given at a payment");
  }
  const std::vector<const XmlNode*> steps = rule.Xml.RowsOf("PluAction");
  if (steps.empty()) {
    flaws.Add(Codes::kNoRows, rule.Where(), "the rule has no row in PluAction: it gives nothing",
              "write a step: of each DisPrice paid the customer pays DisRate");
  }
  for (const XmlNode* const step : steps) {
    if (step->Number("DisPrice") > step->Number("DisRate")) continue;
    flaws.Add(Codes::kNoGain, rule.At(*step, "DisRate"),
              "DisPrice " + Shown(step->Number("DisPrice")) + " with DisRate " + Shown(step->Number("DisRate")) +
                  " gives nothing",
              "write a DisRate below DisPrice: the difference is given");
  }
  for (const XmlNode* const range : rule.Xml.RowsOf("CardNoFilter")) {
    if (range->Value("BgnCardNo") <= range->Value("EndCardNo")) continue;
    flaws.Add(Codes::kEmptyCardRange, rule.At(*range, "EndCardNo"),
              "EndCardNo " + Shown(range->Value("EndCardNo")) + " comes before BgnCardNo " +
                  Shown(range->Value("BgnCardNo")) + ": no card is between them",
              "change the two; they are compared as texts");
  }
}

}  // namespace Corvane::Host::Lint
