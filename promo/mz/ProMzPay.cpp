#include "promo/mz/ProMzPay.h"

#include <algorithm>

#include "base/Numbers.h"
#include "base/Walk.h"
#include "base/XmlFields.h"
#include "log/Log.h"
#include "log/LogTexts.h"
#include "promo/mz/Tiers.h"
#include "rule/LineSelection.h"
#include "rule/RuleReader.h"
#include "rule/Spreading.h"

namespace Corvane {

namespace {

void ReadWholeBillPay(ProCtr& control, Text value, TextPool& /*texts*/) { control.WholeBillPay = Same(value, "1"); }

constexpr XmlField<ProCtr> kControlFields[] = {
    {"SerialNo", Into<ProCtr>::Integer<&ProCtr::SerialNo>},
    {"PriceTotal", Into<ProCtr>::Double<&ProCtr::PriceTotal>},
    {"PayType", Into<ProCtr>::KeptText<&ProCtr::PayType>},
    {"WholeBillPay", ReadWholeBillPay},
};

constexpr XmlField<CardNoFilter> kCardFields[] = {
    {"SerialNo", Into<CardNoFilter>::Integer<&CardNoFilter::SerialNo>},
    {"BgnCardNo", Into<CardNoFilter>::KeptText<&CardNoFilter::BgnCardNo>},
    {"EndCardNo", Into<CardNoFilter>::KeptText<&CardNoFilter::EndCardNo>},
};

void ReadControl(const TiXmlElement& group, Text billNo, ProCtr& control) {
  control.BillNo = billNo;
  // Several children fill the one record: what a later one doesn't name stays.
  for (const TiXmlElement& element : ChildElements(group)) ReadAttributes(kControlFields, element, control);
}

void ReadCardRanges(const TiXmlElement& group, Text billNo, std::vector<CardNoFilter>& ranges) {
  for (const TiXmlElement& element : ChildElements(group)) {
    CardNoFilter range;
    range.BillNo = billNo;
    ReadAttributes(kCardFields, element, range);
    ranges.push_back(range);
  }
}

double OpenMoney(const RuleRun& run) {
  double open = 0;
  for (const SalePlu& line : run.Lines()) open += run.OpenMoney(line);
  return open;
}

}  // namespace

void ProMzPay::InitRule(Text xml) {
  ReadRule(xml, *this, [this](const TiXmlElement& group) { ReadOwnGroup(group); });
}

void ProMzPay::ReadOwnGroup(const TiXmlElement& group) {
  if (Same(group.Value(), "PluCondition")) ReadPluCondition(group, Info.BillNo, m_conditions);
  if (Same(group.Value(), "ProCtr")) ReadControl(group, Info.BillNo, m_control);
  if (Same(group.Value(), "CardNoFilter")) ReadCardRanges(group, Info.BillNo, m_cardRanges);
  if (Same(group.Value(), "PluAction")) {
    Log(LogText::kPayActionGroup);
    ReadPluAction(group, Info.BillNo, m_steps);
  }
}

/// Unlike the other full-amount types this one doesn't ask whether rules may still act on the sale.
void ProMzPay::CalcRule(RuleRun& run) {
  if (!run.MeetsConditions()) {
    Log(LogText::kPayConditionsNotMet);
    return;
  }
  const std::optional<PayLines> goods = SelectPayLines(m_conditions, run.Lines());
  if (!goods) return;
  if (m_control.WholeBillPay && run.Sale().Pays.size() > 1) return;

  std::stable_sort(m_steps.begin(), m_steps.end(), [](const PluAction& left, const PluAction& right) {
    return SortsBefore(left.DisPrice, right.DisPrice);
  });
  // A payment above what can still be discounted counts only as far as that.
  const Reduction reduction = WalkSteps(std::min(PaySum(run.Sale()), OpenMoney(run)), goods->Money);
  if (reduction.Given == 0) return;
  const double wholePay = reduction.Left + reduction.Used;
  run.RecordOnSale({wholePay - reduction.Given, reduction.Given, wholePay, reduction.Used}, Member::Told);
  SpreadPayReduction(run, reduction.Given, reduction.Used);
  // The first sale-level row decides, whatever rule wrote it.
  if (run.Sale().SaleResults.front().YhMoney > 0) ApportionRecords(run, goods->Lines, reduction.Given);
}

double ProMzPay::PaySum(const ProSale& sale) const {
  double sum = 0;
  for (const SalePay& pay : LastToFirst(sale.Pays)) {
    if (Same(pay.PayMode, m_control.PayType) && InCardRange(m_cardRanges, pay.PayCardNo)) sum += pay.PayMoney;
  }
  return sum;
}

/// Walks from the highest step down; each is taken as often as the payment allows, up to the rule's limit or the money
/// of the goods.
ProMzPay::Reduction ProMzPay::WalkSteps(double paySum, double goodsMoney) const {
  const double limit = std::min(m_control.PriceTotal, goodsMoney);
  Reduction taken{0, 0, paySum};
  for (const PluAction& step : LastToFirst(m_steps)) {
    const double gain = step.DisPrice - step.DisRate;
    while (!(step.DisPrice > taken.Left)) {
      const Reduction next = TakeStep(taken, step.DisPrice, gain, limit);
      if (next.Given >= limit) return {limit, next.Used, next.Left};
      // A step that takes no payment and brings no gain would stand next for ever.
      if (!(step.DisPrice > 0) && !(gain > 0)) {
        Log(LogText::kPayStepWithoutGain, Info.BillNo);
        return taken;
      }
      // And so would one that is lost in the digits of what was paid and given.
      if (next.Given == taken.Given && next.Left == taken.Left) {
        LogTooManyRepeats(Info.BillNo);
        return {};
      }
      taken = next;
    }
  }
  return taken;
}

/// Takes a step, and as many repetitions of it as are sure to stay within payment and limit: at least once.
ProMzPay::Reduction ProMzPay::TakeStep(const Reduction& taken, double price, double gain, double limit) {
  RepeatedSum given(taken.Given, gain);
  RepeatedSum used(taken.Used, price);
  RepeatedSum left(taken.Left, -price);
  const std::int64_t rounds =
      RoundsAtOnce(std::min({given.EvenRoundsBelow(limit), used.EvenRounds(), left.EvenRoundsAbove(price)}));
  given.Add(rounds);
  used.Add(rounds);
  left.Add(rounds);
  return {given.Value(), used.Value(), left.Value()};
}

std::optional<PayLines> SelectPayLines(const std::vector<PluCondition>& conditions, std::vector<SalePlu>& lines) {
  PayLines selected;
  if (conditions.empty()) {
    selected.Lines = PointersTo(lines);
    for (const SalePlu& line : lines) selected.Money += line.Total;
    return selected;
  }
  for (const PluCondition& condition : LastToFirst(conditions)) {
    double quantity = 0;
    double amount = 0;
    for (SalePlu& line : LastToFirst(lines)) {
      if (!RowNamesLine(condition, line)) continue;
      quantity += line.PluCount;
      amount += line.PluCount * line.FinalPrice;
      selected.Money += line.Total;
      selected.Lines.push_back(&line);
    }
    if (condition.MinNum > 0 && condition.MinNum > quantity) return std::nullopt;
    if (condition.MinMoney > 0 && condition.MinMoney > amount) return std::nullopt;
  }
  return selected;
}

bool InCardRange(const std::vector<CardNoFilter>& ranges, Text cardNo) {
  return ranges.empty() || std::any_of(ranges.rbegin(), ranges.rend(), [&](const CardNoFilter& range) {
           return CompareBytes(range.BgnCardNo, cardNo) <= 0 && CompareBytes(range.EndCardNo, cardNo) >= 0;
         });
}

}  // namespace Corvane
