#include "sale/ProSale.h"

#include <algorithm>
#include <iterator>

#include "base/Walk.h"

namespace Corvane {

namespace {

bool CountsAgainstFurtherRules(Text primary) {
  constexpr Text kCounted[] = {"MZMJ", "MZDP", "MZZM", "MZZP"};
  return std::any_of(std::begin(kCounted), std::end(kCounted), [&](Text word) { return Same(word, primary); });
}

}  // namespace

const std::vector<LineCodes>& ProSale::CodesOfLines(std::size_t most) {
  if (m_codes.empty()) m_codes = CodesOf(Plus, most);
  return m_codes;
}

const ProResult* ProSale::RowAgainst(Text primary, Text billNo) const {
  const ProResult* counted = nullptr;
  for (const ProResult& row : LastToFirst(SaleResults)) {
    if (Same(row.ProBillNo, billNo) || Same(row.Primary, "DZ")) return &row;
    if (Same(row.Primary, "PT") && Same(primary, "PT")) return &row;
    if (CountsAgainstFurtherRules(row.Primary)) counted = &row;
  }
  return counted;
}

double ProSale::SaleTotal() const {
  double total = 0;
  for (const SalePlu& line : Plus) total += line.Total;
  return total;
}

void ProSale::CopyFrom(const ProSale& sale) {
  OrgCode = sale.OrgCode;
  BillNo = sale.BillNo;
  IsCalc = sale.IsCalc;
  Plus = sale.Plus;
  Pays = sale.Pays;
  Vips = sale.Vips;
  SaleResults = sale.SaleResults;
  ProGifts = sale.ProGifts;
  Gifts = sale.Gifts;
  Coupons = sale.Coupons;
  GivenCoupons = sale.GivenCoupons;
  Trail = sale.Trail;
  ForgetCodes();
}

void ProSale::ResetResults() {
  for (SalePlu& line : Plus) {
    line.ProResults.clear();
    line.Apportions.clear();
    line.TotalBefore = line.Total;
  }
  ProGifts.clear();
  Gifts.clear();
  Coupons.clear();
}

}  // namespace Corvane
