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

bool ProBase::CheckBaseCondition(const ProSale& sale) const {
  if (!MeetsTime(sale) || !MeetsOrganisation(sale) || !MeetsMember(sale) || !MeetsPayment(sale)) return false;
  Log(LogText::kConditionsMet);
  return true;
}

bool ProBase::MeetsTime(const ProSale& sale) const {
  const bool matched = !sale.Plus.empty() && std::any_of(Times.begin(), Times.end(), [&](const ProTime& row) {
    return MatchTime(row, sale.Plus.front().SaleDate, sale.Plus.front().SaleTime);
  });
  // For the use of coupons the time rows have no power to refuse.
  if (!matched && !TypeOf(Info.ProType).Has(Fact::IgnoresTime)) {
    if (!Times.empty()) Log(LogText::kTimeNotMet);
    return false;
  }
  Log(LogText::kTimeMet);
  return true;
}

bool ProBase::MeetsOrganisation(const ProSale& sale) const {
  if (OrgFilters.empty()) return false;
  const bool matched = std::any_of(OrgFilters.begin(), OrgFilters.end(), [&](const ProOrgFilter& row) {
    return Same(row.OrgCode, kAny) || Same(row.OrgCode, sale.OrgCode);
  });
  Log(matched ? LogText::kOrganisationMet : LogText::kOrganisationNotMet);
  return matched;
}

bool ProBase::MeetsMember(const ProSale& sale) const {
  bool matched = Vips.empty();
  for (const ProVip& row : LastToFirst(Vips)) {
    matched = Same(row.VipType, kAny);
    if (matched) break;
    // A sale without members ends the stage at the first row that names a type: a "*" in an earlier row is not reached.
    if (sale.Vips.empty()) return false;
    matched = std::any_of(sale.Vips.begin(), sale.Vips.end(),
                          [&](const SaleVip& member) { return Same(member.VipType, row.VipType); });
    if (matched) break;
  }
  Log(matched ? LogText::kMemberMet : LogText::kMemberNotMet);
  return matched;
}

bool ProBase::MeetsPayment(const ProSale& sale) const {
  if (PayModes.empty()) return true;
  for (const ProPayMode& row : LastToFirst(PayModes)) {
    if (Same(row.PayMode, kAny)) return true;
    const bool paid = std::any_of(sale.Pays.begin(), sale.Pays.end(),
                                  [&](const SalePay& pay) { return MatchPay(row, pay.PayMode, pay.PayMoney); });
    if (paid) return true;
  }
  Log(LogText::kPaymentNotMet);
  return false;
}

Text ProBase::MemberText(const ProSale& sale) const {
  return sale.Vips.empty() || Vips.empty() ? "" : OrEmpty(sale.Vips.front().VipType);
}

}  // namespace Corvane
