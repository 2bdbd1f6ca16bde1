#include "promo/mz/ProMzPay.h"

#include <algorithm>
#include <cstddef>

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
  double sum = 0;
  for (const SalePlu& line : run.Lines()) {
    const double open = run.OpenMoney(line);
    sum += open;
    if (!(open > 0)) run.NoteNoMoneyOpen(line);
  }
  return sum;
}

void NoteNotPaid(const RuleRun& run, const PluAction& step, std::ptrdiff_t place, double left) {
  run.Note(Reason::BelowThreshold)
      .On(run.Lines())
      .Row(step.SerialNo)
      .Tier(place)
      .Has(Unit::Payment, left)
      .Needs(step.DisPrice);
}

/// Notes what keeps a reduction from growing: the rule's limit, or the money of the goods.
void NoteLimit(const RuleRun& run, double given, double ruleLimit, double goodsMoney) {
  if (given == 0) run.Note(Reason::GivesNothing).Has(Unit::Money, given);
  if (given > ruleLimit) {
    run.Note(Reason::LimitedByMoney).Has(Unit::Money, given).Needs(ruleLimit);
  } else if (given > goodsMoney) {
    run.Note(Reason::NothingOpen).On(run.Lines()).Has(Unit::Money, goodsMoney);
  }
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
  const std::optional<PayLines> goods = SelectPayLines(m_conditions, run.Lines(), run.Told());
  if (!goods) return;
  if (m_control.WholeBillPay && run.Sale().Pays.size() > 1) {
    run.Refuse(Reason::SeveralPayments).Has(Unit::Count, static_cast<double>(run.Sale().Pays.size())).Needs(1);
    return;
  }

  std::stable_sort(m_steps.begin(), m_steps.end(), [](const PluAction& left, const PluAction& right) {
    return SortsBefore(left.DisPrice, right.DisPrice);
  });
  // A payment above what can still be discounted counts only as far as that.
  const Reduction reduction = WalkSteps(run, std::min(PaySum(run), OpenMoney(run)), goods->Money);
  if (reduction.Given == 0) return;
  const double wholePay = reduction.Left + reduction.Used;
  run.RecordOnSale({wholePay - reduction.Given, reduction.Given, wholePay, reduction.Used}, Member::Told);
  SpreadPayReduction(run, reduction.Given, reduction.Used);
  // The first sale-level row decides, whatever rule wrote it.
  if (run.Sale().SaleResults.front().YhMoney > 0) ApportionRecords(run, goods->Lines, reduction.Given);
}

double ProMzPay::PaySum(const RuleRun& run) const {
  double sum = 0;
  bool isPaid = false;
  for (const SalePay& pay : LastToFirst(run.Sale().Pays)) {
    if (!Same(pay.PayMode, m_control.PayType) || !InCardRange(m_cardRanges, pay.PayCardNo)) continue;
    sum += pay.PayMoney;
    isPaid = true;
  }
  if (!isPaid && run.Told() != nullptr) TellNotPaid(run);
  return sum;
}

/// A payment that fits but for its card is nearer than none.
void ProMzPay::TellNotPaid(const RuleRun& run) const {
  bool isPaidSo = false;
  for (const SalePay& pay : run.Sale().Pays) {
    if (!Same(pay.PayMode, m_control.PayType)) continue;
    run.Refuse(Reason::CardOutside)
        .Has(Unit::Card, pay.PayCardNo)
        .NeedsEach(m_cardRanges,
                   [](const CardNoFilter& range) { return Join(range.BgnCardNo, "..", range.EndCardNo); });
    isPaidSo = true;
  }
  if (isPaidSo) return;
  run.Refuse(Reason::PaymentMissing)
      .HasEach(Unit::Payment, run.Sale().Pays, [](const SalePay& pay) { return OrEmpty(pay.PayMode); })
      .Needs(m_control.PayType);
}

/// Walks from the highest step down; each is taken as often as the payment allows, up to the rule's limit or the money
/// of the goods.
ProMzPay::Reduction ProMzPay::WalkSteps(const RuleRun& run, double paySum, double goodsMoney) const {
  if (m_steps.empty()) run.Refuse(Reason::NoRows);
  const double limit = std::min(m_control.PriceTotal, goodsMoney);
  Reduction taken{0, 0, paySum};
  for (const PluAction& step : LastToFirst(m_steps)) {
    const double gain = step.DisPrice - step.DisRate;
    if (step.DisPrice > taken.Left) NoteNotPaid(run, step, &m_steps.back() - &step, taken.Left);
    while (!(step.DisPrice > taken.Left)) {
      const Reduction next = TakeStep(taken, step.DisPrice, gain, limit);
      if (next.Given >= limit) {
        if (run.Told() != nullptr) NoteLimit(run, next.Given, m_control.PriceTotal, goodsMoney);
        return {limit, next.Used, next.Left};
      }
      // A step that takes no payment and brings no gain would stand next for ever.
      if (!(step.DisPrice > 0) && !(gain > 0)) {
        Log(LogText::kPayStepWithoutGain, Info.BillNo);
        run.Note(Reason::StepWithoutGain).Has(Unit::Money, step.DisPrice);
        return taken;
      }
      // And so would one that is lost in the digits of what was paid and given.
      if (next.Given == taken.Given && next.Left == taken.Left) {
        LogTooManyRepeats(Info.BillNo);
        run.Refuse(Reason::TooManyRepeats);
        return {};
      }
      taken = next;
    }
  }
  if (taken.Given == 0 && taken.Used != 0) run.Note(Reason::GivesNothing).Has(Unit::Money, 0.0);
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

std::optional<PayLines> SelectPayLines(const std::vector<PluCondition>& conditions, std::vector<SalePlu>& lines,
                                       RuleOutcome* outcome) {
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
    const bool isShortOfPieces = condition.MinNum > 0 && condition.MinNum > quantity;
    if (!isShortOfPieces && !(condition.MinMoney > 0 && condition.MinMoney > amount)) continue;
    Refuse(outcome, Reason::ConditionShort)
        .Goods(NamesGoods(condition) ? condition.PluCode : nullptr)
        .Row(condition.SerialNo)
        .Has(isShortOfPieces ? Unit::Quantity : Unit::Money, isShortOfPieces ? quantity : amount)
        .Needs(isShortOfPieces ? condition.MinNum : condition.MinMoney);
    return std::nullopt;
  }
  return selected;
}

bool InCardRange(const std::vector<CardNoFilter>& ranges, Text cardNo) {
  return ranges.empty() || std::any_of(ranges.rbegin(), ranges.rend(), [&](const CardNoFilter& range) {
           return CompareBytes(range.BgnCardNo, cardNo) <= 0 && CompareBytes(range.EndCardNo, cardNo) >= 0;
         });
}

}  // namespace Corvane
