#include "engine/Driver.h"

#include <algorithm>
#include <iterator>

#include "engine/HostBuffer.h"
#include "engine/Promotion.h"
#include "log/Log.h"
#include "log/LogTexts.h"
#include "log/StatusText.h"
#include "promo/RuleTable.h"
#include "promo/mz/GiftChoice.h"
#include "rule/RuleType.h"
#include "sale/SaleWriter.h"

namespace Corvane {

namespace {

// --- The skip test ---------------------------------------------------------------------------------------------------

/// Whether the rule runs on this kind of sale, by the sale's `IsCalc` and the rule's `Remark`.
bool RunsOnSale(const ProInfo& rule, const ProSale& sale) {
  const bool isDv = Same(rule.Remark, "DVCZK");
  const bool isNv = Same(rule.Remark, "NVCZK");
  if (Same(sale.IsCalc, "2")) return isNv;
  if (Same(sale.IsCalc, "1")) return isDv;
  if (Same(sale.IsCalc, "0")) return !isDv && !isNv;
  return true;
}

/// The test with its trace in the log.
bool IsSkipped(const ProInfo& rule, const ProSale& sale) {
  if (RunsOnSale(rule, sale)) return false;
  Log(LogText::kRuleSkipped);
  Log(OrEmpty(rule.BillNo));
  return true;
}

// --- Passes ----------------------------------------------------------------------------------------------------------

constexpr Text kEveryClass = nullptr;

/// Runs the rule's step, if its type is one of the pass's.
void RunStep(AnyRule& rule, ProSale& sale, Pass pass) {
  const RuleKind* const kind = FindKind(RuleKinds(), InfoOf(rule).ProType);
  if (kind == nullptr || kind->RunsIn != pass) return;
  RuleRun run(BaseOf(rule), sale);
  kind->Calc(rule, run);
}

/// One pass over the registry, in its order: the rules that are not skipped, of one stacking class, whose type is in
/// the set. The skip test comes first, so that a skipped rule is logged once a pass.
void RunPass(ProSale& sale, Text primary, Pass pass) {
  for (const RulePtr& rule : Promotion::Instance().Rules()) {
    const ProInfo& info = InfoOf(*rule);
    if (IsSkipped(info, sale)) continue;
    if (primary == kEveryClass || Same(info.Primary, primary)) RunStep(*rule, sale, pass);
  }
}

/// Hands a result over to the host. A result that can't be written leaves the host's buffer as it was.
template <class Writer>
std::int32_t HandOver(const Calculation& calculation, Writer write) {
  try {
    calculation.Out.Put(write());
    CopyText(calculation.Msg, StatusText(Status::Success));
    return 0;
  } catch (...) {
    CopyText(calculation.Msg, StatusText(Status::WriteFailed));
    return -1;
  }
}

std::int32_t WriteResult(const Calculation& calculation) {
  return HandOver(calculation, [&] { return SaleXml(calculation.Sale); });
}

// --- Modes for line promotions ---------------------------------------------------------------------------------------

/// The promotion of a freshly scanned line, while the sale is open.
std::int32_t RunSingle(const Calculation& calculation) {
  ProSale& sale = calculation.Sale;
  // Without a line of its own the call has nothing to work on and fails here, before any rule.
  SalePlu& line = sale.Plus.at(static_cast<std::size_t>(calculation.LineIndex));
  for (const RulePtr& rule : Promotion::Instance().Rules()) {
    const ProInfo& info = InfoOf(*rule);
    if (IsSkipped(info, sale) || !Same(info.ProType, TypeWord::kLimit)) continue;
    const auto* const limit = std::get_if<ProDirectLimit>(rule.get());
    if (limit == nullptr) continue;
    RuleRun run(*limit, sale);
    limit->CalcRuleOnLine(run, line);
  }
  return HandOver(calculation, [&] { return LineXml(sale.OrgCode, line); });
}

/// "DZ" rules meet the sale twice, by themselves and with all others: it is for their stacking to see that the second
/// visit gives nothing more.
std::int32_t RunAll(const Calculation& calculation) {
  Log(LogText::kModeAll);
  calculation.Sale.ResetResults();
  RunPass(calculation.Sale, StackingClass::kDz, Pass::Combination);
  RunPass(calculation.Sale, StackingClass::kDz, Pass::Ordinary);
  RunPass(calculation.Sale, kEveryClass, Pass::Ordinary);
  RunPass(calculation.Sale, kEveryClass, Pass::Combination);
  return WriteResult(calculation);
}

std::int32_t RunUnion(const Calculation& calculation) {
  Log(LogText::kModeUnion);
  calculation.Sale.ResetResults();
  RunPass(calculation.Sale, StackingClass::kDz, Pass::Combination);
  RunPass(calculation.Sale, StackingClass::kDz, Pass::Ordinary);
  RunPass(calculation.Sale, kEveryClass, Pass::Ordinary);
  return WriteResult(calculation);
}

std::int32_t RunZh(const Calculation& calculation) {
  Log(LogText::kModeZh);
  calculation.Sale.ResetResults();
  RunPass(calculation.Sale, kEveryClass, Pass::Combination);
  return WriteResult(calculation);
}

// --- Modes behind the line promotions: each builds on what is there --------------------------------------------------

std::int32_t RunMzPromotion(const Calculation& calculation) {
  RunPass(calculation.Sale, kEveryClass, Pass::FullAmount);
  return WriteResult(calculation);
}

std::int32_t RefuseGiftChoice(std::int32_t answer, char* msg) {
  if (answer == GiftAnswer::kTotalOverflow) CopyText(msg, StatusText(Status::TotalOverflow));
  if (answer == GiftAnswer::kNumberOverflow) CopyText(msg, StatusText(Status::NumberOverflow));
  return answer;
}

/// The cashier's gift choice. What the picks use up runs over all rules together. A choice that doesn't fit is answered
/// without a result, and the offers keep their values.
std::int32_t RunGift(const Calculation& calculation) {
  Log(LogText::kModeGift);
  ProSale& sale = calculation.Sale;
  double used = 0;
  for (const RulePtr& rule : Promotion::Instance().Rules()) {
    const std::int32_t answer = CheckGiftChoice(sale, InfoOf(*rule).BillNo, used);
    if (answer != GiftAnswer::kFits) return RefuseGiftChoice(answer, calculation.Msg);
  }
  for (const RulePtr& rule : Promotion::Instance().Rules()) SetGiftLeft(sale, InfoOf(*rule).BillNo, used);
  return WriteResult(calculation);
}

/// Payments are known. There is no skip test here and in the use of coupons.
std::int32_t RunPay(const Calculation& calculation) {
  Log(LogText::kModePay);
  for (const RulePtr& rule : Promotion::Instance().Rules()) RunStep(*rule, calculation.Sale, Pass::Pay);
  return WriteResult(calculation);
}

std::int32_t RunCoupon(const Calculation& calculation) {
  Log(LogText::kModeCoupon);
  // There is no test of the type here: every rule of the class that takes coupons does, also one that gives them too.
  for (const RulePtr& rule : Promotion::Instance().Rules()) {
    auto* const coupons = std::get_if<ProMzUseCoupon>(rule.get());
    if (coupons == nullptr) continue;
    RuleRun run(*coupons, calculation.Sale);
    coupons->CalcRule(run);
  }
  return WriteResult(calculation);
}

struct Mode {
  Text Name;
  ModeStep Run;
};

constexpr Mode kModes[] = {
    {"Single", RunSingle},           {"All", RunAll},   {"Union", RunUnion}, {"Zh", RunZh},
    {"MzPromotion", RunMzPromotion}, {"Gift", RunGift}, {"Pay", RunPay},     {"Coupon", RunCoupon}};

}  // namespace

ModeStep FindMode(Text mode) {
  const auto* const found =
      std::find_if(std::begin(kModes), std::end(kModes), [&](const Mode& row) { return Same(row.Name, mode); });
  return found == std::end(kModes) ? nullptr : found->Run;
}

}  // namespace Corvane
