#include "rule/RuleRun.h"

#include <algorithm>
#include <optional>

#include "base/Numbers.h"
#include "rule/ActionPrice.h"
#include "rule/EligibleQuantity.h"
#include "rule/ResultRows.h"

namespace Corvane {

RuleRun::RuleRun(const ProBase& rule, ProSale& sale)
    : m_rule(rule), m_type(TypeOf(rule.Info.ProType)), m_sale(sale), m_vipType(rule.MemberText(sale)) {}

bool RuleRun::MayActOnSale() const { return m_sale.CanApplyToSale(Info().Primary, Info().BillNo) && MeetsConditions(); }

// --- What is open ---------------------------------------------------------------------------------------------------

double RuleRun::OpenCount(const SalePlu& line) const { return GetCalcCount(line, Info(), m_sale.Plus); }

double RuleRun::OpenCountAs(Text proType, const SalePlu& line) const {
  return GetCalcCount(line, Info(), proType, m_sale.Plus);
}

double RuleRun::OpenMoney(const SalePlu& line) const { return GetLineLeftTotal(line, Info().Primary, Info().ProType); }

bool RuleRun::HasActedOn(const SalePlu& line) const { return FindResult(line, Info().BillNo) != nullptr; }

// --- Giving ---------------------------------------------------------------------------------------------------------

std::optional<double> RuleRun::Discount(SalePlu& line, const PluAction& action, Allowance& allowance) {
  double quantity = OpenCount(line);
  if (allowance.Limit != 0) {
    if (allowance.Applied >= allowance.Limit) return std::nullopt;
    quantity = std::min(quantity, allowance.Limit - allowance.Applied);
  }
  if (quantity <= 0) return std::nullopt;
  const std::optional<ActionPrice> price = PriceByAction(action, BasePrice(line, Info()), quantity);
  if (!price) return std::nullopt;
  const Award award{quantity, price->Money, price->Price};
  if (price->ChangesLine) {
    Lower(line, award.Money);
    line.DisNum = quantity;
    allowance.Applied += quantity;
  }
  RecordOrMerge(line, award);
  return price->ChangesLine ? quantity : 0;
}

void RuleRun::Give(SalePlu& line, const Award& award, Rows rows) {
  Lower(line, award.Money);
  Record(line, award, rows);
}

void RuleRun::GiveOrMerge(SalePlu& line, const Award& award) {
  Lower(line, award.Money);
  RecordOrMerge(line, award);
}

void RuleRun::LowerTotal(SalePlu& line, double money) { line.Total -= money; }

void RuleRun::Lower(SalePlu& line, double money) {
  LowerTotal(line, money);
  if (m_type.Has(Fact::SetsFinalPrice)) line.FinalPrice = Quotient(line.Total, line.PluCount);
}

void RuleRun::Record(SalePlu& line, const Award& award, Rows rows, Member member) {
  ProResult row = NewRow(award, member);
  if (rows == Rows::Results) row.YhMoney = 0;  // a result that nothing is apportioned by keeps no second amount
  if (rows != Rows::Results) line.Apportions.push_back(row);
  if (rows != Rows::Apportions) line.ProResults.push_back(row);
}

void RuleRun::RecordOrMerge(SalePlu& line, const Award& award) {
  ProResult* const held = FindResult(line, Info().BillNo);
  if (held == nullptr) {
    Record(line, award);
    return;
  }
  held->DisNum += award.Quantity;
  held->DisMoney += award.Money;
}

void RuleRun::RecordOnSale(const Award& award, Member member) { m_sale.SaleResults.push_back(NewRow(award, member)); }

ProResult RuleRun::NewRow(const Award& award, Member member) const {
  ProResult row;
  row.ProBillNo = Info().BillNo;
  row.Primary = Info().Primary;
  row.ProType = Info().ProType;
  row.DisNum = award.Quantity;
  row.DisMoney = award.Money;
  row.NewPrice = award.NewPrice;
  row.BaseMoney = award.BaseMoney;
  row.YhMoney = award.Money;
  if (member == Member::Told) row.SetMember(m_vipType);
  return row;
}

// --- Limit ----------------------------------------------------------------------------------------------------------

void RuleRun::Limit(LimitLog log) { LimitByMaxDiscount(Info(), m_sale, log); }

void RuleRun::LimitProportionally() { LimitInProportion(Info(), m_sale); }

}  // namespace Corvane
