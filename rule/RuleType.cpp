#include "rule/RuleType.h"

#include <algorithm>
#include <iterator>

namespace Corvane {

namespace {

constexpr RuleType kTypes[] = {
    {TypeWord::kLimit, Fact::SetsFinalPrice},
    {TypeWord::kBatch, Fact::None},
    {TypeWord::kSets, Fact::LimitsItself | Fact::TakesLinesWhole | Fact::SetsFinalPrice},
    {TypeWord::kFree, Fact::LimitsItself | Fact::SetsFinalPrice},
    {TypeWord::kFixed, Fact::LimitsItself | Fact::LowersChosenLines},
    {TypeWord::kCondition, Fact::ApportionsMoney},
    {TypeWord::kChoice, Fact::LimitsItself},
    {Family::kCombination, Fact::LimitsItself},  // no type, but a set menu asks under its family word too
    {TypeWord::kReduce, Fact::CountsAtFinalPrice | Fact::LowersChosenLines | Fact::LeavesWholeSale},
    {TypeWord::kGoods, Fact::LimitsItself | Fact::LowersChosenLines},
    {TypeWord::kGoodsFree, Fact::TellsDisNum},
    {TypeWord::kGift, Fact::LimitsItself | Fact::SharesByTotal},
    {TypeWord::kExchange, Fact::LimitsItself | Fact::SharesByTotal},
    {TypeWord::kGiveCoupon, Fact::None},
    {TypeWord::kPay, Fact::ApportionsMoney},
    {TypeWord::kUseCoupon, Fact::IgnoresTime},
};

constexpr RuleType kUnknown = {"", Fact::None};

}  // namespace

const RuleType& TypeOf(Text word) {
  const auto* const found =
      std::find_if(std::begin(kTypes), std::end(kTypes), [&](const RuleType& type) { return Same(type.Word, word); });
  return found == std::end(kTypes) ? kUnknown : *found;
}

}  // namespace Corvane
