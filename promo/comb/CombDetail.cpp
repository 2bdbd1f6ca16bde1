#include "promo/comb/CombDetail.h"

#include "base/Numbers.h"

namespace Corvane {

CombTaken TakenByCombinations(const SalePlu& line) {
  CombTaken taken;
  for (const ProResult& row : line.ProResults) {
    if (!InFamily(row.ProType, Family::kCombination)) continue;
    taken.Quantity += row.DisNum;
    taken.Money += row.DisMoney;
  }
  return taken;
}

double UnitBeforeCombinations(const SalePlu& line) {
  return Quotient(TakenByCombinations(line).Money + line.Total, line.PluCount);
}

std::int32_t WholeSets(double quantity, double saleCount) {
  return DivideInt32(TruncToInt32(std::floor(quantity)), TruncToInt32(std::floor(saleCount)));
}

ProResult CombResult(const ProInfo& rule, double quantity, double money, double newPrice, Text vipType) {
  ProResult row(rule.BillNo, rule.Primary, rule.ProType, quantity, money, newPrice, money);
  row.SetMember(vipType);
  return row;
}

}  // namespace Corvane
