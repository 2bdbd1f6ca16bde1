#include "engine/RuleSteps.h"

#include <algorithm>
#include <type_traits>

namespace Corvane {

namespace {

template <class Rule>
void Calc(AnyRule& rule, ProSale& sale, Scratch& scratch) {
  auto* own = std::get_if<Rule>(&rule);
  if (own == nullptr) return;
  if constexpr (std::is_invocable_v<decltype(&Rule::CalcRule), Rule&, ProSale&, Scratch&>) {
    own->CalcRule(sale, scratch);
  } else {
    own->CalcRule(sale);
  }
}

void CalcAllLines(AnyRule& rule, ProSale& sale, Scratch& scratch) {
  if (auto* own = std::get_if<ProDirectLimit>(&rule)) own->CalcRule(sale, sale.Plus, scratch);
}

/// Rules that give coupons are loaded as rules that take them: the two have one data shape, and the object answers to
/// both steps.
void GiveCoupons(AnyRule& rule, ProSale& sale, Scratch& /*scratch*/) {
  if (auto* own = std::get_if<ProMzUseCoupon>(&rule)) own->ProMzCoupon::CalcRule(sale);
}

constexpr TypeStep kOrdinary[] = {{"PTXS", CalcAllLines}, {"PTPL", Calc<ProDirectBatch>}, {"PTOS", Calc<ProDirectOs>}};

constexpr TypeStep kCombination[] = {{"ZHZY", Calc<ProCombFree>},
                                     {"ZHGD", Calc<ProCombFixed>},
                                     {"ZHTJ", Calc<ProCombCondition>},
                                     {"ZHZX", Calc<ProCombChoice>}};

constexpr TypeStep kFullAmount[] = {{"MZMJ", Calc<ProMzReduce>}, {"MZZQ", GiveCoupons},     {"MZDP", Calc<ProMzPlu>},
                                    {"MZZM", Calc<ProMzFree>},   {"MZZP", Calc<ProMzGift>}, {"MZHG", Calc<ProMzGift>}};

constexpr TypeStep kPay[] = {{"MZZF", Calc<ProMzPay>}};

}  // namespace

TypeSteps OrdinarySteps() { return TypeSteps(kOrdinary); }

TypeSteps CombinationSteps() { return TypeSteps(kCombination); }

TypeSteps FullAmountSteps() { return TypeSteps(kFullAmount); }

TypeSteps PaySteps() { return TypeSteps(kPay); }

RuleStep FindStep(const TypeSteps& steps, Text proType) {
  const auto* const found =
      std::find_if(steps.begin(), steps.end(), [&](const TypeStep& step) { return Same(step.ProType, proType); });
  return found == steps.end() ? nullptr : found->Run;
}

void RunOnLine(AnyRule& rule, ProSale& sale, SalePlu& line, Scratch& scratch) {
  if (auto* own = std::get_if<ProDirectLimit>(&rule)) own->CalcRuleOnLine(sale, line, scratch);
}

void UseCoupons(AnyRule& rule, ProSale& sale) {
  if (auto* own = std::get_if<ProMzUseCoupon>(&rule)) own->CalcRule(sale);
}

}  // namespace Corvane
