#include "rule/Spreading.h"

#include <algorithm>
#include <cmath>

#include "base/Numbers.h"
#include "base/Walk.h"
#include "log/Log.h"
#include "log/LogTexts.h"
#include "rule/ResultRows.h"

namespace Corvane {

namespace {

/// Whether a line that has a result of the rule is passed over.
bool IsPassedOver(const RuleRun& run, const SalePlu& line) {
  if (!run.HasActedOn(line)) return false;
  run.Note(Reason::AlreadyOnLine).On(line);
  return true;
}

/// Whether a share is none.
bool IsNoShare(const RuleRun& run, const SalePlu& line, const Award& share) {
  if (share.Money != 0) return false;
  run.Note(Reason::GivesNothing).On(line).Has(Unit::Money, 0.0);
  return true;
}

/// Puts a rounding tail on the first apportion row of the first line that has any, and on the first result row of the
/// first line that has any, whoever wrote them.
void PutTailOnFirstRows(RuleRun& run, const LinePtrs& lines, double tail, Rows written) {
  const auto apportioned =
      std::find_if(lines.begin(), lines.end(), [](const SalePlu* line) { return !line->Apportions.empty(); });
  if (apportioned != lines.end()) (*apportioned)->Apportions.front().AppMoney() += tail;

  const auto discounted =
      std::find_if(lines.begin(), lines.end(), [](const SalePlu* line) { return !line->ProResults.empty(); });
  if (discounted == lines.end()) return;
  if (run.Type().Has(Fact::LowersChosenLines)) run.LowerTotal(**discounted, tail);
  if (written != Rows::Apportions) run.AddTail((*discounted)->ProResults.front(), tail);
}

/// Puts a rounding tail on the rule's own rows: on the first line that has a result of it.
void PutTailOnOwnRows(RuleRun& run, double tail) {
  for (SalePlu& line : run.Lines()) {
    ProResult* const result = FindResult(line, run.Info().BillNo);
    Apportion* const apportion = FindRow(line.Apportions, run.Info().BillNo);
    if (result != nullptr) run.AddTail(*result, tail);
    if (apportion != nullptr) apportion->AppMoney() += tail;
    if (result != nullptr) return;
  }
}

}  // namespace

// --- By value at Price ----------------------------------------------------------------------------------------------

namespace {

double WeightOfLine(RuleRun& run, SalePlu& line) {
  const Apportion* const held = FindLastRow(line.Apportions, run.Info().BillNo);
  LogApportion(held != nullptr);
  if (held != nullptr) return held->AppNum() * line.Price;
  run.Record(line, {line.PluCount, 0, line.Price}, Rows::Apportions, Member::Untold);
  line.DisNum = line.PluCount;
  return line.PluCount * line.Price;
}

}  // namespace

void LogApportion(bool isApportioned) { Log(isApportioned ? LogText::kApportioned : LogText::kNotApportioned); }

void ApportionRecords(RuleRun& run, const LinePtrs& lines, double money) {
  double weight = 0;
  for (SalePlu* line : LastToFirst(lines)) weight += WeightOfLine(run, *line);
  if (WithoutNoise(weight) == 0) return;

  double sum = 0;
  for (SalePlu* line : LastToFirst(lines)) {
    Apportion* const row = FindLastRow(line->Apportions, run.Info().BillNo);
    if (row == nullptr) continue;
    const double share = Quotient(money * row->AppNum() * line->Price, weight);
    row->YhMoney = share;
    if (run.Type().Has(Fact::ApportionsMoney)) row->AppMoney() = share;
    sum += CeilToCents(share);
  }
  const auto first =
      std::find_if(lines.begin(), lines.end(), [](const SalePlu* line) { return !line->Apportions.empty(); });
  if (first != lines.end()) (*first)->Apportions.front().YhMoney += money - sum;
}

// --- Over chosen lines ----------------------------------------------------------------------------------------------

namespace {

double PartOfLine(const RuleRun& run, const SalePlu& line, PartBy by) {
  if (by == PartBy::DisNum) return line.FinalPrice * line.DisNum;
  return run.Type().Has(Fact::SharesByTotal) ? line.Total : run.OpenMoney(line);
}

/// Works out a line's share and uses up its `DisNum` where the share tells it. A share of 0 changes nothing.
Award ShareOfLine(const RuleRun& run, SalePlu& line, double money, double base, PartBy by) {
  const double part = PartOfLine(run, line, by);
  Award share;
  share.Money = CutToCents(Quotient(part, base) * money);
  if (share.Money == 0) return share;
  const bool byDisNum = by == PartBy::DisNum;
  const bool tellsDisNum = byDisNum || run.Type().Has(Fact::TellsDisNum);
  share.NewPrice =
      byDisNum ? Quotient(part - share.Money, line.DisNum) : Quotient(line.Total - share.Money, line.PluCount);
  share.Quantity = CeilSingle(tellsDisNum ? line.DisNum : line.PluCount);
  if (tellsDisNum) line.DisNum = 0;
  return share;
}

}  // namespace

void SpreadOverLinePtrs(RuleRun& run, const LinePtrs& lines, double money, double base, const SpreadOptions& options) {
  if (money == 0) return;
  if (WithoutNoise(base) == 0 || lines.empty()) {
    run.Note(Reason::GivesNothing).On(lines).Has(Unit::Money, 0.0);
    return;
  }
  double sum = 0;
  for (SalePlu* line : lines) {
    if (IsPassedOver(run, *line)) continue;
    Award share = ShareOfLine(run, *line, money, base, options.Part);
    if (IsNoShare(run, *line, share)) continue;
    share.BaseMoney =
        share.Quantity > 0 ? share.Quantity * line->FinalPrice : Quotient(base * line->Total, SumOfTotals(lines));
    const bool follows = options.Price == FinalPrice::Follows && options.Part != PartBy::DisNum;
    if (follows) line->FinalPrice = share.NewPrice;
    if (run.Type().Has(Fact::LowersChosenLines)) run.LowerTotal(*line, share.Money);
    run.Record(*line, share, options.To);
    sum += share.Money;
  }
  const double tail = money - sum;
  if (tail != 0) PutTailOnFirstRows(run, lines, tail, options.To);
}

// --- Over the whole sale --------------------------------------------------------------------------------------------

void SpreadOverLines(RuleRun& run, double money, double base, FinalPrice price) {
  const double whole = SumOfTotals(run.Lines());
  if (WithoutNoise(base) == 0 || WithoutNoise(whole) == 0) {
    run.Note(Reason::GivesNothing).Has(Unit::Money, 0.0);
    return;
  }
  const bool leavesTotals = run.Type().Has(Fact::LeavesWholeSale);
  double sum = 0;
  for (SalePlu& line : run.Lines()) {
    if (IsPassedOver(run, line)) continue;
    Award share;
    share.Quantity = CeilSingle(run.Type().Has(Fact::TellsDisNum) ? line.DisNum : line.PluCount);
    const bool byQuantity = !leavesTotals && share.Quantity > 0;
    share.BaseMoney = byQuantity ? share.Quantity * line.FinalPrice
                                 : Quotient(base * line.Total, leavesTotals ? whole : SumOfTotals(run.Lines()));
    share.Money = CutToCents(Quotient(share.BaseMoney, base) * money);
    share.NewPrice = Quotient(line.Total - share.Money, line.PluCount);
    run.Record(line, share);
    if (price == FinalPrice::Follows) line.FinalPrice = share.NewPrice;
    if (!leavesTotals) run.LowerTotal(line, share.Money);
    sum += share.Money;
  }
  const double tail = money - sum;
  if (tail != 0) PutTailOnOwnRows(run, tail);
}

// --- Over a fixed combination ---------------------------------------------------------------------------------------

namespace {

/// @return the line's share; a share of 0 leaves the line as it is.
double GiveFixedShare(RuleRun& run, SalePlu& line, const LinePtrs& lines, double discount, double value) {
  const double unit = RoundMoney(UnitBeforeCombinations(line));
  Award share;
  share.Money = RoundMoney(Quotient(unit * line.DisNum, value) * discount);
  if (IsNoShare(run, line, share)) return 0;
  share.NewPrice = RoundMoney(unit - Quotient(share.Money, line.DisNum));
  share.Quantity = CeilSingle(line.DisNum);
  line.DisNum = 0;
  share.BaseMoney = share.Quantity > 0 ? share.Quantity * unit : Quotient(value * line.Total, SumOfTotals(lines));
  run.Give(line, share);
  return share.Money;
}

}  // namespace

void SpreadFixedDiscount(RuleRun& run, const LinePtrs& lines, double discount, double value) {
  if (discount == 0 || lines.empty()) return;
  double spread = 0;
  for (SalePlu* line : lines) {
    if (!IsPassedOver(run, *line)) spread += GiveFixedShare(run, *line, lines, discount, value);
  }
  const double tail = discount - spread;
  if (tail != 0) PutTailOnFirstRows(run, lines, tail, Rows::Both);
}

// --- A payment's reduction ------------------------------------------------------------------------------------------

void SpreadPayReduction(RuleRun& run, double given, double used) {
  const double whole = run.Sale().SaleTotal();
  double rest = given;
  for (SalePlu& line : LastToFirst(run.Lines())) {
    Award share;
    share.Money = CeilToCents(Quotient(given * line.Total, whole));
    share.BaseMoney = Quotient(line.Total * used, whole);
    rest -= share.Money;
    if (&line == &run.Lines().front()) share.Money += rest;
    run.Record(line, share, Rows::Results);
  }
}

// --- Over whole sets ------------------------------------------------------------------------------------------------

SetSum::SetSum(double sets, double total, double size)
    : m_sum(sets * total), m_total(total), m_size(size), m_perPiece(Quotient(total, size)) {}

double SetSum::DiscountToPrice(double unit, double quantity, bool isLast) {
  const double money = RoundMoney((unit - m_perPiece) * quantity);
  m_spread += RoundMoney(m_perPiece * quantity);
  if (!isLast) return money;
  const double settled = RoundMoney(money - (m_sum - m_spread));
  m_spread = 0;
  return settled;
}

double SetSum::DiscountByReduction(double quantity, bool isLast) {
  double money = RoundMoney(Quotient(quantity * m_total, m_size));
  Log(LogText::kSetDiscount, FormatG6(money));
  if (isLast) {
    const double rest = m_sum - m_spread;
    Log(LogText::kSetRest, FormatG6(rest));
    money = RoundMoney(rest);
    m_spread = 0;
  }
  m_spread += RoundMoney(m_perPiece * quantity);
  Log(LogText::kSetSum, FormatG6(m_spread));
  return money;
}

void SetSum::TakeBack(double quantity) { m_spread -= RoundMoney(m_perPiece * quantity); }

namespace {

/// A smaller difference is no tail.
constexpr double kNoTail = 0.001;

void PutTailOnLastLine(RuleRun& run, const LinePtrs& lines, double tail) {
  for (SalePlu* line : LastToFirst(lines)) {
    if (line->ProResults.empty() || line->Apportions.empty()) continue;
    if (Apportion* const apportion = FindRow(line->Apportions, run.Info().BillNo)) apportion->AppMoney() += tail;
    ProResult* const result = FindResult(*line, run.Info().BillNo);
    if (result == nullptr) continue;
    run.AddTail(*result, tail);
    run.LowerTotal(*line, tail);
    return;
  }
}

}  // namespace

void SettlePool(RuleRun& run, const LinePtrs& lines, double money) {
  double actual = 0;
  double discount = 0;
  for (SalePlu* line : lines) {
    actual += line->Total;
    for (ProResult& row : line->ProResults) {
      if (!Same(row.ProBillNo, run.Info().BillNo)) continue;
      SetRowMoney(run.Told(), run.Lines(), row, RoundThroughF2(row.DisMoney), Change::Rounding);
      discount += row.DisMoney;
    }
  }
  const double tail = money - actual - discount;
  Log(LogText::kPoolBrought, FormatG6(money));
  Log(LogText::kPoolCosts, FormatG6(actual));
  Log(LogText::kPoolDiscount, FormatG6(discount));
  Log(LogText::kPoolTail, FormatG6(tail));
  if (std::fabs(tail) > kNoTail) PutTailOnLastLine(run, lines, tail);
}

}  // namespace Corvane
