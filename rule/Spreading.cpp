#include "rule/Spreading.h"

#include <algorithm>
#include <initializer_list>

#include "base/Numbers.h"
#include "base/Walk.h"
#include "engine/Log.h"
#include "rule/EligibleQuantity.h"
#include "rule/LineDiscount.h"

namespace Corvane {

namespace {

bool IsOneOf(Text type, std::initializer_list<Text> types) {
  return std::any_of(types.begin(), types.end(), [&](Text word) { return Same(word, type); });
}

Apportion* FindLastRow(std::vector<Apportion>& rows, Text billNo) {
  const auto found =
      std::find_if(rows.rbegin(), rows.rend(), [&](const Apportion& row) { return Same(row.ProBillNo, billNo); });
  return found == rows.rend() ? nullptr : &*found;
}

double SumOfTotals(const std::vector<SalePlu>& lines) {
  double total = 0;
  for (const SalePlu& line : lines) total += line.Total;
  return total;
}

double SumOfTotals(const LinePtrs& lines) {
  double total = 0;
  for (const SalePlu* line : lines) total += line->Total;
  return total;
}

// --- By value at Price ----------------------------------------------------------------------------------------------

double WeightOfLine(const ProInfo& rule, SalePlu& line, Text billNo) {
  if (const Apportion* held = FindLastRow(line.Apportions, billNo)) {
    Log("已有分摊记录");
    return held->AppNum() * line.Price;
  }
  Log("不存在已有分摊记录，创建分摊记录");
  line.Apportions.emplace_back(rule.BillNo, rule.Primary, rule.ProType, line.PluCount, 0, line.Price, 0);
  line.DisNum = line.PluCount;
  return line.PluCount * line.Price;
}

// --- Over chosen lines ----------------------------------------------------------------------------------------------

/// One line's share of a sum, and what its row says about it.
struct Share {
  double Money = 0;
  double Quantity = 0;
  double NewPrice = 0;
};

/// The types whose lines fall by their shares while they are spread over chosen lines.
bool LowersTotalOfChosenLines(Text proType) { return IsOneOf(proType, {"MZDP", "ZHGD", "MZMJ"}); }

double PartOfLine(const ProInfo& rule, const SalePlu& line, bool byDisNum) {
  if (byDisNum) return line.FinalPrice * line.DisNum;
  if (IsOneOf(rule.ProType, {"MZZP", "MZHG"})) return line.Total;
  return GetLineLeftTotal(line, rule.Primary, rule.ProType);
}

/// Works out a line's share and uses up its `DisNum` where the share is reckoned by it. A share of 0 changes nothing.
Share ShareOfLine(const ProInfo& rule, SalePlu& line, double money, double base, bool byDisNum) {
  const double part = PartOfLine(rule, line, byDisNum);
  Share share;
  share.Money = CutToCents(Quotient(part, base) * money);
  if (share.Money == 0) return share;
  if (byDisNum) {
    share.Quantity = line.DisNum;
    share.NewPrice = Quotient(part - share.Money, share.Quantity);
    line.DisNum = 0;
  } else {
    share.NewPrice = Quotient(line.Total - share.Money, line.PluCount);
    share.Quantity = line.PluCount;
    if (Same(rule.ProType, "MZZM")) {
      share.Quantity = line.DisNum;
      line.DisNum = 0;
    }
  }
  share.Quantity = CeilSingle(share.Quantity);
  return share;
}

ProResult RowOf(const ProInfo& rule, const Share& share, double baseMoney, Text vipType) {
  ProResult row(rule.BillNo, rule.Primary, rule.ProType, share.Quantity, share.Money, share.NewPrice, share.Money,
                baseMoney);
  row.SetMember(vipType);
  return row;
}

// --- Over the whole sale --------------------------------------------------------------------------------------------

/// The tail lands on the rule's own rows: on the first line that has a result of it.
void PutTailOnOwnRows(const ProInfo& rule, std::vector<SalePlu>& lines, double tail) {
  for (SalePlu& line : lines) {
    ProResult* result = FindResult(line, rule.BillNo);
    Apportion* apportion = FindRow(line.Apportions, rule.BillNo);
    if (result != nullptr) result->DisMoney += tail;
    if (apportion != nullptr) apportion->AppMoney() += tail;
    if (result != nullptr) return;
  }
}

}  // namespace

void ApportionRecords(const ProInfo& rule, const LinePtrs& lines, double money, Text billNo) {
  double weight = 0;
  for (SalePlu* line : LastToFirst(lines)) weight += WeightOfLine(rule, *line, billNo);
  if (WithoutNoise(weight) == 0) return;

  const bool setsMoney = IsOneOf(rule.ProType, {"MZZF", "ZHTJ"});
  double sum = 0;
  for (SalePlu* line : LastToFirst(lines)) {
    Apportion* row = FindLastRow(line->Apportions, billNo);
    if (row == nullptr) continue;
    const double share = Quotient(money * row->AppNum() * line->Price, weight);
    row->YhMoney = share;
    if (setsMoney) row->AppMoney() = share;
    sum += CeilToCents(share);
  }
  // The tail goes to the first row of the first line that has any, whoever wrote it, and only to its YhMoney.
  const auto first =
      std::find_if(lines.begin(), lines.end(), [](const SalePlu* line) { return !line->Apportions.empty(); });
  if (first != lines.end()) (*first)->Apportions.front().YhMoney += money - sum;
}

void PutTailOnFirstRows(const ProInfo& rule, const LinePtrs& lines, double tail, bool writeResult) {
  const auto apportioned =
      std::find_if(lines.begin(), lines.end(), [](const SalePlu* line) { return !line->Apportions.empty(); });
  if (apportioned != lines.end()) (*apportioned)->Apportions.front().AppMoney() += tail;

  const auto discounted =
      std::find_if(lines.begin(), lines.end(), [](const SalePlu* line) { return !line->ProResults.empty(); });
  if (discounted == lines.end()) return;
  if (LowersTotalOfChosenLines(rule.ProType)) (*discounted)->Total -= tail;
  if (writeResult) (*discounted)->ProResults.front().DisMoney += tail;
}

void SpreadOverLinePtrs(const ProInfo& rule, const LinePtrs& lines, double money, double base,
                        const SpreadOptions& options) {
  if (money == 0 || WithoutNoise(base) == 0 || lines.empty()) return;
  double sum = 0;
  for (SalePlu* line : lines) {
    if (FindResult(*line, rule.BillNo) != nullptr) continue;
    const Share share = ShareOfLine(rule, *line, money, base, options.ByDisNum);
    if (share.Money == 0) continue;
    const double baseMoney =
        share.Quantity > 0 ? share.Quantity * line->FinalPrice : Quotient(base * line->Total, SumOfTotals(lines));
    const ProResult row = RowOf(rule, share, baseMoney, options.VipType);
    line->Apportions.push_back(row);
    if (options.WriteResult) line->ProResults.push_back(row);
    if (options.SetFinalPrice && !options.ByDisNum) line->FinalPrice = share.NewPrice;
    if (LowersTotalOfChosenLines(rule.ProType)) line->Total -= share.Money;
    sum += share.Money;
  }
  const double tail = money - sum;
  if (tail != 0) PutTailOnFirstRows(rule, lines, tail, options.WriteResult);
}

void SpreadOverLines(const ProInfo& rule, std::vector<SalePlu>& lines, double money, double base,
                     const SpreadOptions& options) {
  if (WithoutNoise(base) == 0 || WithoutNoise(SumOfTotals(lines)) == 0) return;
  const bool isReduce = Same(rule.ProType, "MZMJ");
  double sum = 0;
  for (SalePlu& line : lines) {
    if (FindResult(line, rule.BillNo) != nullptr) continue;
    Share share;
    share.Quantity = CeilSingle(Same(rule.ProType, "MZZM") ? line.DisNum : line.PluCount);
    const bool byQuantity = !isReduce && share.Quantity > 0;
    const double baseMoney =
        byQuantity ? share.Quantity * line.FinalPrice : Quotient(base * line.Total, SumOfTotals(lines));
    share.Money = CutToCents(Quotient(baseMoney, base) * money);
    share.NewPrice = Quotient(line.Total - share.Money, line.PluCount);
    WriteResultRow(line, RowOf(rule, share, baseMoney, options.VipType));  // a share of 0 writes its row too
    if (options.SetFinalPrice) line.FinalPrice = share.NewPrice;
    if (!isReduce) line.Total -= share.Money;
    sum += share.Money;
  }
  const double tail = money - sum;
  if (tail != 0) PutTailOnOwnRows(rule, lines, tail);
}

}  // namespace Corvane
