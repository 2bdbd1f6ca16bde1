#include "rule/RuleRun.h"

#include <algorithm>
#include <optional>

#include "base/Numbers.h"
#include "rule/ActionPrice.h"
#include "rule/EligibleQuantity.h"
#include "rule/ResultRows.h"

namespace Corvane {

RuleRun::RuleRun(const ProBase& rule, ProSale& sale, RuleOutcome* outcome)
    : m_rule(rule),
      m_type(TypeOf(rule.Info.ProType)),
      m_sale(sale),
      m_vipType(rule.MemberText(sale)),
      m_outcome(outcome) {}

bool RuleRun::MayActOnSale() const {
  const ProResult* const row = m_sale.RowAgainst(Info().Primary, Info().BillNo);
  if (row == nullptr) return MeetsConditions();
  Refuse(Same(row->ProBillNo, Info().BillNo) ? Reason::AlreadyOnSale : Reason::SaleTaken).TakenBy(*row);
  return false;
}

// --- Telling why ----------------------------------------------------------------------------------------------------

void RuleRun::RefuseUnreadable(const QString& reason) const {
  if (m_outcome != nullptr) Refuse(Reason::Unreadable).Has(Unit::Words, reason.toUtf8().constData());
}

void RuleRun::NoteNothingOpen(const SalePlu& line) const {
  TellNothingOpen(line, Info(), Info().ProType, m_sale.Plus, m_outcome);
}

void RuleRun::NoteNoMoneyOpen(const SalePlu& line) const {
  TellNoMoneyOpen(line, Info().Primary, Info().ProType, m_outcome);
}

void RuleRun::TellTakersOf(const LinePtrs& lines, Telling& telling) const {
  if (!telling.IsAsked()) return;
  for (const SalePlu* line : lines) TellTakers(*line, Info(), Info().ProType, telling);
}

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
    if (allowance.Applied >= allowance.Limit) {
      Note(Reason::RowLimitUsedUp)
          .On(line)
          .Row(action.SerialNo)
          .Has(Unit::Quantity, allowance.Applied)
          .Needs(allowance.Limit);
      return std::nullopt;
    }
    quantity = std::min(quantity, allowance.Limit - allowance.Applied);
  }
  if (quantity <= 0) {
    NoteNothingOpen(line);
    return std::nullopt;
  }
  const double base = BasePrice(line, Info());
  const std::optional<ActionPrice> price = PriceByAction(action, base, quantity);
  if (!price) {
    TellNoGain(action, line, base, m_outcome);
    return std::nullopt;
  }
  const Award award{quantity, price->Money, price->Price};
  if (!price->ChangesLine) {
    Note(Reason::UnknownPriceKind).On(line).Row(action.SerialNo).Has(Unit::Kind, action.DisType).Needs(PriceKind::kAll);
  } else if (award.Money == 0) {
    Note(Reason::GivesNothing).On(line).Row(action.SerialNo).Has(Unit::Money, 0.0);
  }
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
  if (rows == Rows::Apportions) return;
  line.ProResults.push_back(row);
  if (m_outcome == nullptr) return;
  const auto place = static_cast<std::int32_t>(line.ProResults.size()) - 1;
  m_outcome->Movements.push_back({Change::Discount, line.Index, place, row.DisNum, 0, row.DisMoney});
}

void RuleRun::RecordOrMerge(SalePlu& line, const Award& award) {
  ProResult* const held = FindResult(line, Info().BillNo);
  if (held == nullptr) {
    Record(line, award);
    return;
  }
  held->DisNum += award.Quantity;
  SetRowMoney(m_outcome, m_sale.Plus, *held, held->DisMoney + award.Money, Change::Discount, award.Quantity);
}

void RuleRun::AddTail(ProResult& row, double tail) {
  SetRowMoney(m_outcome, m_sale.Plus, row, row.DisMoney + tail, Change::Tail);
}

void RuleRun::RecordOnSale(const Award& award, Member member) {
  m_sale.SaleResults.push_back(NewRow(award, member));
  if (m_outcome != nullptr && award.Money != 0) ++m_outcome->SaleRows;
}

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

void RuleRun::Limit(LimitLog log) { LimitByMaxDiscount(Info(), m_sale, log, m_outcome); }

void RuleRun::LimitProportionally() { LimitInProportion(Info(), m_sale, m_outcome); }

}  // namespace Corvane
