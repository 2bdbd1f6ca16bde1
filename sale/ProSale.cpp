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

bool ProSale::CanApplyToSale(Text primary, Text billNo) const {
  int counted = 0;
  for (const ProResult& row : LastToFirst(SaleResults)) {
    if (Same(row.ProBillNo, billNo) || Same(row.Primary, "DZ")) return false;
    if (Same(row.Primary, "PT") && Same(primary, "PT")) return false;
    if (CountsAgainstFurtherRules(row.Primary)) ++counted;
  }
  return counted == 0;
}

double ProSale::SaleTotal() const {
  double total = 0;
  for (const SalePlu& line : Plus) total += line.Total;
  return total;
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
