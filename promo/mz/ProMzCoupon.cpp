#include "promo/mz/ProMzCoupon.h"

#include <algorithm>
#include <cstdint>
#include <utility>

#include "base/XmlFields.h"
#include "log/Log.h"
#include "log/LogTexts.h"
#include "promo/mz/CouponDays.h"
#include "promo/mz/Tiers.h"
#include "rule/LineSelection.h"
#include "rule/RuleReader.h"

namespace Corvane {

namespace {

using ListField = Into<ProMzList>;
constexpr XmlField<ProMzList> kListFields[] = {
    {"ConAreaType", ListField::KeptText<&ProMzList::ConAreaType>},
    {"RstAreaType", ListField::KeptText<&ProMzList::RstAreaType>},
    {"MaxDiscount", ListField::Double<&ProMzList::MaxDiscount>},
    {"CouponTypeCode", ListField::KeptText<&ProMzList::CouponTypeCode>},
    {"DscIntoPlu", ListField::KeptText<&ProMzList::DscIntoPlu>},
};

template <class Row>
std::string NumberOf(const std::vector<Row>& rows) {
  return FormatI(static_cast<std::int32_t>(rows.size()));
}

std::optional<double> LargestFitting(const std::vector<CouponDenomination>& rows, double rest) {
  std::optional<double> largest;
  for (const CouponDenomination& row : rows) {
    if (row.Denomination <= rest && (!largest || row.Denomination > *largest)) largest = row.Denomination;
  }
  return largest;
}

/// Notes a value that no denomination fits.
void NoteUncut(const RuleRun& run, const ProMzList& list, double rest) {
  const auto smallest = std::min_element(list.Denominations.begin(), list.Denominations.end(),
                                         [](const CouponDenomination& left, const CouponDenomination& right) {
                                           return left.Denomination < right.Denomination;
                                         });
  run.Note(Reason::NoDenomination).Has(Unit::Money, rest).Needs(smallest->Denomination);
}

}  // namespace

void ProMzCoupon::InitRule(Text xml) {
  ReadRule(xml, *this, [this](const TiXmlElement& group) {
    if (Same(group.Value(), "ProList")) ReadList(group);
  });
}

void ProMzCoupon::ReadList(const TiXmlElement& group) {
  ProMzList list;
  ReadAttributes(kListFields, group, list);
  for (const TiXmlElement& rows : ChildElements(group)) {
    if (Same(rows.Value(), "PluCondition")) ReadPluCondition(rows, Info.BillNo, list.Conditions);
    if (Same(rows.Value(), "PluAddAction")) ReadPluAddAction(rows, Info.BillNo, list.Tiers);
    if (Same(rows.Value(), "CouponType")) ReadCouponType(rows, list.Coupon);
    if (Same(rows.Value(), "CouponDenomination")) ReadCouponDenomination(rows, list.Denominations);
  }
  m_lists.push_back(std::move(list));
}

void ProMzCoupon::CalcRule(RuleRun& run) {
  if (!run.MayActOnSale()) return;
  Log(LogText::kCouponOffers, NumberOf(m_lists));
  if (m_lists.empty()) {
    run.Refuse(Reason::NoRows);
    return;
  }
  for (ProMzList& list : m_lists) CalcList(run, list);
  run.LimitProportionally();
}

void ProMzCoupon::CalcList(RuleRun& run, ProMzList& list) const {
  Log(LogText::kCouponTiers, NumberOf(list.Tiers));
  if (!list.HasTiers(run)) return;
  SortTiersDown(list.Tiers);
  RuleLines chosen;
  double amount = 0;
  // The lines' money as it stands, not what is open of it.
  if (list.IsOfWholeSale()) amount = run.Sale().SaleTotal();
  if (list.IsOfChosenLines()) {
    chosen = SelectRuleLines(run, SplitRows(list.Conditions));
    amount = chosen.Money;
    if (amount == 0) return;
  }
  Log(LogText::kCouponAmount, FormatF6(amount));
  const double sum = SumOfTiers(list, amount, &run, list.IsOfWholeSale() ? nullptr : &chosen.Lines);
  if (sum <= 0) return;
  const std::optional<double> value = GiveCoupons(run, list, sum);
  if (value) run.RecordOnSale({0, *value}, Member::Untold);
}

double ProMzCoupon::SumOfTiers(const ProMzList& list, double amount, const RuleRun* run, const LinePtrs* lines) {
  double remainder = amount;
  double sum = 0;
  for (const PluAddAction& tier : list.Tiers) {
    if (remainder < tier.BaseConNum) {
      if (run != nullptr) NoteBelow(*run, list.Tiers, tier, Unit::Money, remainder, lines);
      continue;
    }
    sum += tier.BaseDscNum;
    Log(LogText::kCouponSum, FormatF6(sum));
    // Unlike in the reduction, a tier may always leave less than nothing.
    const double left = GiveFurtherSteps(tier, remainder, list.MaxDiscount, sum);
    if (run != nullptr) NoteNextStep(*run, list.Tiers, tier, remainder, list.MaxDiscount, sum, lines);
    remainder = left;
    if (sum <= 0 && run != nullptr)
      run->Note(Reason::GivesNothing).Tier(&tier - list.Tiers.data()).Has(Unit::Money, 0.0);
  }
  return sum;
}

/// Makes coupons of a value and puts them into the sale: of its denominations, the largest that fits each time, when
/// the list cuts; one coupon otherwise. What can't be cut is not given.
///
/// @return the value given; nothing when it would take too many coupons.
std::optional<double> ProMzCoupon::GiveCoupons(const RuleRun& run, const ProMzList& list, double amount) const {
  ProSale& sale = run.Sale();
  constexpr Text kNeverGives = "*";
  if (Same(Info.BillNo, kNeverGives)) {
    run.Note(Reason::NeverGives);
    return 0;
  }
  const bool isCut = list.Coupon.IsDenom && !list.Denominations.empty();
  if (!isCut) {
    sale.GivenCoupons.push_back(MakeCoupon(sale, list.Coupon, amount));
    if (run.Told() != nullptr) ++run.Told()->Coupons;
    return amount;
  }
  double rest = amount;
  std::vector<SaleCoupon> made;
  while (rest > 0) {
    const std::optional<double> value = LargestFitting(list.Denominations, rest);
    if (!value) {
      NoteUncut(run, list, rest);
      break;
    }
    if (*value <= 0) {
      Log(LogText::kDenominationNotPositive, Info.BillNo);
      run.Note(Reason::UnusableDenomination).Has(Unit::Money, *value);
      break;
    }
    if (made.size() == kMaxCoupons) {
      LogTooManyRepeats(Info.BillNo);
      run.Note(Reason::TooManyRepeats);
      return std::nullopt;
    }
    made.push_back(MakeCoupon(sale, list.Coupon, *value));
    rest -= *value;
  }
  sale.GivenCoupons.insert(sale.GivenCoupons.end(), made.begin(), made.end());
  if (run.Told() != nullptr) run.Told()->Coupons += static_cast<std::int32_t>(made.size());
  return amount - rest;
}

SaleCoupon ProMzCoupon::MakeCoupon(ProSale& sale, const CouponType& header, double value) const {
  std::string dateTime = " ";
  if (!sale.Plus.empty()) dateTime = Join(sale.Plus.front().SaleDate, " ", sale.Plus.front().SaleTime);
  SaleCoupon coupon;
  coupon.BillNo = Info.BillNo;
  coupon.BgnDate = header.BgnDate;
  coupon.CouponTypeCode = header.CouponTypeCode;
  coupon.Value = sale.Texts.Keep(FormatF6(value));
  coupon.EndDate = AddCouponDays(header, dateTime, header.LimitDay, sale.Texts);
  return coupon;
}

}  // namespace Corvane
