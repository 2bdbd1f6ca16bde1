#include "engine/Driver.h"

#include <algorithm>
#include <cstddef>
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
  const bool isDv = Same(rule.Remark, SaleMark::kDv);
  const bool isNv = Same(rule.Remark, SaleMark::kNv);
  if (Same(sale.IsCalc, "2")) return isNv;
  if (Same(sale.IsCalc, "1")) return isDv;
  if (Same(sale.IsCalc, "0")) return !isDv && !isNv;
  return true;
}

/// The `IsCalc` of the sales on which the rule runs.
Text KindOfSaleFor(const ProInfo& rule) {
  if (Same(rule.Remark, "NVCZK")) return "2";
  return Same(rule.Remark, "DVCZK") ? "1" : "0";
}

/// The test with its trace in the log.
bool IsSkipped(const ProInfo& rule, const ProSale& sale, RuleOutcome* outcome) {
  if (RunsOnSale(rule, sale)) return false;
  Log(LogText::kRuleSkipped);
  Log(OrEmpty(rule.BillNo));
  Refuse(outcome, Reason::OtherKindOfSale).Has(Unit::Sale, sale.IsCalc).Needs(KindOfSaleFor(rule));
  return true;
}

// --- Passes ----------------------------------------------------------------------------------------------------------

constexpr Text kEveryClass = nullptr;

/// A walk over the registry, in its order, for whoever asks.
class ToldWalk {
 public:
  ToldWalk(const Calculation& calculation, Text kind, Text primary = kEveryClass) : m_asked(calculation.Asked) {
    if (m_asked != nullptr) m_asked->BeginPass(Promotion::Instance().Rules(), calculation.Sale, kind, primary);
  }

  /// @return where the next rule tells of itself, in the registry's order; null where nobody asks.
  RuleOutcome* Next() { return m_asked != nullptr ? m_asked->OutcomeOf(m_place++) : nullptr; }

 private:
  Explanation* m_asked;
  std::size_t m_place = 0;
};

/// Tells that the rule's step runs elsewhere.
void RefusePass(const ProInfo& rule, Text pass, RuleOutcome* outcome) {
  if (outcome == nullptr) return;
  const RuleKind* const kind = FindKind(RuleKinds(), rule.ProType);
  if (kind == nullptr) {
    Refuse(outcome, Reason::UnknownType).Has(Unit::Type, rule.ProType);
  } else {
    Refuse(outcome, Reason::OtherPass).Has(Unit::Pass, pass).Needs(NameOf(kind->RunsIn));
  }
}

/// Runs the rule's step, if its type is one of the pass's.
void RunStep(AnyRule& rule, ProSale& sale, Pass pass, RuleOutcome* outcome) {
  const RuleKind* const kind = FindKind(RuleKinds(), InfoOf(rule).ProType);
  if (kind == nullptr || kind->RunsIn != pass) {
    RefusePass(InfoOf(rule), NameOf(pass), outcome);
    return;
  }
  RuleRun run(BaseOf(rule), sale, outcome);
  kind->Calc(rule, run);
}

/// One pass over the registry, in its order: the rules that are not skipped, of one stacking class, whose type is in
/// the set. The skip test comes first, so that a skipped rule is logged once a pass.
void RunPass(const Calculation& calculation, Text primary, Pass pass) {
  ProSale& sale = calculation.Sale;
  ToldWalk told(calculation, NameOf(pass), primary);
  for (const RulePtr& rule : Promotion::Instance().Rules()) {
    RuleOutcome* const outcome = told.Next();
    const ProInfo& info = InfoOf(*rule);
    if (IsSkipped(info, sale, outcome)) continue;
    if (primary == kEveryClass || Same(info.Primary, primary)) {
      RunStep(*rule, sale, pass, outcome);
    } else {
      Refuse(outcome, Reason::OtherClass).Has(Unit::Class, info.Primary).Needs(primary);
    }
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
  constexpr Text kPass = "Single";
  ToldWalk told(calculation, kPass);
  for (const RulePtr& rule : Promotion::Instance().Rules()) {
    RuleOutcome* const outcome = told.Next();
    const ProInfo& info = InfoOf(*rule);
    if (IsSkipped(info, sale, outcome)) continue;
    if (!Same(info.ProType, TypeWord::kLimit)) {
      RefusePass(info, kPass, outcome);
      continue;
    }
    RuleRun run(BaseOf(*rule), sale, outcome);
    if (const auto* const limit = std::get_if<ProDirectLimit>(rule.get())) {
      limit->CalcRuleOnLine(run, line);
    } else {
      run.Refuse(Reason::WrongClass).In(Unit::Type).Needs(info.ProType);
    }
  }
  return HandOver(calculation, [&] { return LineXml(sale.OrgCode, line); });
}

/// "DZ" rules meet the sale twice, by themselves and with all others: it is for their stacking to see that the second
/// visit gives nothing more.
std::int32_t RunAll(const Calculation& calculation) {
  Log(LogText::kModeAll);
  calculation.Sale.ResetResults();
  RunPass(calculation, StackingClass::kDz, Pass::Combination);
  RunPass(calculation, StackingClass::kDz, Pass::Ordinary);
  RunPass(calculation, kEveryClass, Pass::Ordinary);
  RunPass(calculation, kEveryClass, Pass::Combination);
  return WriteResult(calculation);
}

std::int32_t RunUnion(const Calculation& calculation) {
  Log(LogText::kModeUnion);
  calculation.Sale.ResetResults();
  RunPass(calculation, StackingClass::kDz, Pass::Combination);
  RunPass(calculation, StackingClass::kDz, Pass::Ordinary);
  RunPass(calculation, kEveryClass, Pass::Ordinary);
  return WriteResult(calculation);
}

std::int32_t RunZh(const Calculation& calculation) {
  Log(LogText::kModeZh);
  calculation.Sale.ResetResults();
  RunPass(calculation, kEveryClass, Pass::Combination);
  return WriteResult(calculation);
}

// --- Modes behind the line promotions: each builds on what is there --------------------------------------------------

std::int32_t RunMzPromotion(const Calculation& calculation) {
  RunPass(calculation, kEveryClass, Pass::FullAmount);
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
  ToldWalk told(calculation, "Gift");
  std::int32_t answer = GiftAnswer::kFits;
  for (const RulePtr& rule : Promotion::Instance().Rules()) {
    const std::int32_t own = CheckGiftChoice(sale, InfoOf(*rule).BillNo, used, told.Next());
    if (answer == GiftAnswer::kFits) answer = own;
    // The first choice that doesn't fit decides; what becomes of the others interests who asks for each rule.
    if (answer != GiftAnswer::kFits && calculation.Asked == nullptr) break;
  }
  if (answer != GiftAnswer::kFits) return RefuseGiftChoice(answer, calculation.Msg);
  for (const RulePtr& rule : Promotion::Instance().Rules()) SetGiftLeft(sale, InfoOf(*rule).BillNo, used);
  return WriteResult(calculation);
}

/// Payments are known. There is no skip test here and in the use of coupons.
std::int32_t RunPay(const Calculation& calculation) {
  Log(LogText::kModePay);
  ToldWalk told(calculation, NameOf(Pass::Pay));
  for (const RulePtr& rule : Promotion::Instance().Rules()) {
    RunStep(*rule, calculation.Sale, Pass::Pay, told.Next());
  }
  return WriteResult(calculation);
}

std::int32_t RunCoupon(const Calculation& calculation) {
  Log(LogText::kModeCoupon);
  // There is no test of the type here: every rule of the class that takes coupons does, also one that gives them too.
  ToldWalk told(calculation, NameOf(Pass::Coupon));
  for (const RulePtr& rule : Promotion::Instance().Rules()) {
    RuleOutcome* const outcome = told.Next();
    auto* const coupons = std::get_if<ProMzUseCoupon>(rule.get());
    if (coupons == nullptr) {
      RefusePass(InfoOf(*rule), NameOf(Pass::Coupon), outcome);
      continue;
    }
    RuleRun run(*coupons, calculation.Sale, outcome);
    coupons->CalcRule(run);
  }
  return WriteResult(calculation);
}

constexpr Mode kModes[] = {{"Single", RunSingle, false},
                           {"All", RunAll, true},
                           {"Union", RunUnion, true},
                           {"Zh", RunZh, true},
                           {"MzPromotion", RunMzPromotion, false},
                           {"Gift", RunGift, false},
                           {"Pay", RunPay, false},
                           {"Coupon", RunCoupon, false}};

}  // namespace

const Mode* FindMode(Text name) {
  const auto* const found =
      std::find_if(std::begin(kModes), std::end(kModes), [&](const Mode& row) { return Same(row.Name, name); });
  return found == std::end(kModes) ? nullptr : found;
}

}  // namespace Corvane
