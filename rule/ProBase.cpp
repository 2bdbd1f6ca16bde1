#include "rule/ProBase.h"

#include <algorithm>

#include "base/Walk.h"
#include "log/Log.h"
#include "log/LogTexts.h"
#include "rule/RuleType.h"
#include "rule/SaleFilters.h"

namespace Corvane {

namespace {

constexpr Text kAny = "*";

}  // namespace

bool ProBase::CheckBaseCondition(const ProSale& sale, RuleOutcome* outcome) const {
  if (!MeetsTime(sale, outcome) || !MeetsOrganisation(sale, outcome) || !MeetsMember(sale, outcome) ||
      !MeetsPayment(sale, outcome)) {
    return false;
  }
  Log(LogText::kConditionsMet);
  return true;
}

// --- Time -----------------------------------------------------------------------------------------------------------

bool ProBase::MeetsTime(const ProSale& sale, RuleOutcome* outcome) const {
  const bool matched = !sale.Plus.empty() && std::any_of(Times.begin(), Times.end(), [&](const ProTime& row) {
    return MatchTime(row, sale.Plus.front().SaleDate, sale.Plus.front().SaleTime);
  });
  // For the use of coupons the time rows have no power to refuse.
  if (!matched && !TypeOf(Info.ProType).Has(Fact::IgnoresTime)) {
    if (!Times.empty()) Log(LogText::kTimeNotMet);
    if (outcome != nullptr) TellTime(sale, outcome);
    return false;
  }
  Log(LogText::kTimeMet);
  return true;
}

/// Tells by the row that comes furthest.
void ProBase::TellTime(const ProSale& sale, RuleOutcome* outcome) const {
  if (Times.empty()) Refuse(outcome, Reason::NoTimes);
  if (sale.Plus.empty()) Refuse(outcome, Reason::NoLines);
  if (Times.empty() || sale.Plus.empty()) return;
  const Text date = sale.Plus.front().SaleDate;
  const Text time = sale.Plus.front().SaleTime;
  const auto fitOf = [&](const ProTime& row) { return FitOfTime(row, date, time); };
  const auto row = std::max_element(Times.begin(), Times.end(), [&](const ProTime& left, const ProTime& right) {
    return fitOf(left) < fitOf(right);
  });
  switch (fitOf(*row)) {
    case TimeFit::Incomplete:
      Refuse(outcome, Reason::TimeIncomplete).In(Unit::Words).Needs("StartDate, EndDate, Frequency");
      break;
    case TimeFit::OutsideDates:
      Refuse(outcome, Reason::DateOutside).Has(Unit::Date, date).Needs(row->StartDate, row->EndDate);
      break;
    case TimeFit::OutsideWeekDays:
      Refuse(outcome, Reason::WeekdayOutside)
          .Has(Unit::Weekday, static_cast<double>(WeekdayOf(date)))
          .Needs(row->WeekDays);
      break;
    case TimeFit::OutsideHours:
      Refuse(outcome, Reason::HourOutside).Has(Unit::Time, time).Needs(row->StartTime, row->EndTime);
      break;
    case TimeFit::WithoutEnd:
      Refuse(outcome, Reason::TimeIncomplete).In(Unit::Words).Needs("EndTime");
      break;
    case TimeFit::Fits:
      break;
  }
}

// --- Organisation and member ----------------------------------------------------------------------------------------

bool ProBase::MeetsOrganisation(const ProSale& sale, RuleOutcome* outcome) const {
  if (OrgFilters.empty()) {
    Refuse(outcome, Reason::NoOrganisations);
    return false;
  }
  const bool matched = std::any_of(OrgFilters.begin(), OrgFilters.end(), [&](const ProOrgFilter& row) {
    return Same(row.OrgCode, kAny) || Same(row.OrgCode, sale.OrgCode);
  });
  Log(matched ? LogText::kOrganisationMet : LogText::kOrganisationNotMet);
  if (!matched) {
    Refuse(outcome, Reason::OrganisationOutside)
        .Has(Unit::Organisation, sale.OrgCode)
        .NeedsEach(OrgFilters, [](const ProOrgFilter& row) { return OrEmpty(row.OrgCode); });
  }
  return matched;
}

bool ProBase::MeetsMember(const ProSale& sale, RuleOutcome* outcome) const {
  const auto typeOf = [](const ProVip& row) { return OrEmpty(row.VipType); };
  bool matched = Vips.empty();
  for (const ProVip& row : LastToFirst(Vips)) {
    matched = Same(row.VipType, kAny);
    if (matched) break;
    // A sale without members ends the stage at the first row that names a type: a "*" in an earlier row is not reached.
    if (sale.Vips.empty()) {
      Refuse(outcome, Reason::MemberMissing).In(Unit::Member).NeedsEach(Vips, typeOf);
      return false;
    }
    matched = std::any_of(sale.Vips.begin(), sale.Vips.end(),
                          [&](const SaleVip& member) { return Same(member.VipType, row.VipType); });
    if (matched) break;
  }
  Log(matched ? LogText::kMemberMet : LogText::kMemberNotMet);
  if (!matched) {
    Refuse(outcome, Reason::MemberOther).HasEach(Unit::Member, sale.Vips, typeOf).NeedsEach(Vips, typeOf);
  }
  return matched;
}

// --- Payment --------------------------------------------------------------------------------------------------------

bool ProBase::MeetsPayment(const ProSale& sale, RuleOutcome* outcome) const {
  if (PayModes.empty()) return true;
  for (const ProPayMode& row : LastToFirst(PayModes)) {
    if (Same(row.PayMode, kAny)) return true;
    const bool paid = std::any_of(sale.Pays.begin(), sale.Pays.end(),
                                  [&](const SalePay& pay) { return MatchPay(row, pay.PayMode, pay.PayMoney); });
    if (paid) return true;
  }
  Log(LogText::kPaymentNotMet);
  if (outcome != nullptr) TellPayment(sale, outcome);
  return false;
}

/// A payment that fits but for its amount is nearer than none.
void ProBase::TellPayment(const ProSale& sale, RuleOutcome* outcome) const {
  bool isPaidSo = false;
  for (const ProPayMode& row : PayModes) {
    for (const SalePay& pay : sale.Pays) {
      if (!Same(row.PayMode, pay.PayMode)) continue;
      Refuse(outcome, Reason::PaymentTooSmall).Has(Unit::Money, pay.PayMoney).Needs(row.PayMoney);
      isPaidSo = true;
    }
  }
  if (isPaidSo) return;
  const auto modeOf = [](const ProPayMode& row) { return OrEmpty(row.PayMode); };
  Refuse(outcome, Reason::PaymentMissing).HasEach(Unit::Payment, sale.Pays, modeOf).NeedsEach(PayModes, modeOf);
}

Text ProBase::MemberText(const ProSale& sale) const {
  return sale.Vips.empty() || Vips.empty() ? "" : OrEmpty(sale.Vips.front().VipType);
}

}  // namespace Corvane
