#include "promo/RuleTable.h"

#include <algorithm>

#include "rule/RuleType.h"

namespace Corvane {

namespace {

template <class Rule>
RulePtr WithDatabase(const QnPosDBPro& db) {
  return std::make_shared<AnyRule>(std::in_place_type<Rule>, db);
}

template <class Rule>
RulePtr WithoutDatabase(const QnPosDBPro& /*db*/) {
  return std::make_shared<AnyRule>(std::in_place_type<Rule>);
}

void RefuseClass(const RuleRun& run) { run.Refuse(Reason::WrongClass).In(Unit::Type).Needs(run.Info().ProType); }

template <class Rule>
void Calc(AnyRule& rule, RuleRun& run) {
  if (auto* const own = std::get_if<Rule>(&rule)) {
    own->CalcRule(run);
  } else {
    RefuseClass(run);
  }
}

/// A rule that gives coupons is loaded as one that takes them: the two have one data shape, and the object answers to
/// both steps.
void GiveCoupons(AnyRule& rule, RuleRun& run) {
  if (auto* const own = std::get_if<ProMzUseCoupon>(&rule)) {
    own->ProMzCoupon::CalcRule(run);
  } else {
    RefuseClass(run);
  }
}

constexpr RulePtr (*kLoadedAsCouponUse)(const QnPosDBPro& db) = nullptr;

}  // namespace

const RuleTable& RuleKinds() {
  static const auto* const table = new RuleTable{
      {TypeWord::kLimit, WithDatabase<ProDirectLimit>, Pass::Ordinary, Calc<ProDirectLimit>},
      {TypeWord::kBatch, WithDatabase<ProDirectBatch>, Pass::Ordinary, Calc<ProDirectBatch>},
      {TypeWord::kSets, WithDatabase<ProDirectOs>, Pass::Ordinary, Calc<ProDirectOs>},
      {TypeWord::kFree, WithDatabase<ProCombFree>, Pass::Combination, Calc<ProCombFree>},
      {TypeWord::kFixed, WithDatabase<ProCombFixed>, Pass::Combination, Calc<ProCombFixed>},
      {TypeWord::kCondition, WithDatabase<ProCombCondition>, Pass::Combination, Calc<ProCombCondition>},
      {TypeWord::kChoice, WithDatabase<ProCombChoice>, Pass::Combination, Calc<ProCombChoice>},
      {TypeWord::kReduce, WithDatabase<ProMzReduce>, Pass::FullAmount, Calc<ProMzReduce>},
      {TypeWord::kGiveCoupon, kLoadedAsCouponUse, Pass::FullAmount, GiveCoupons},
      {TypeWord::kGoods, WithDatabase<ProMzPlu>, Pass::FullAmount, Calc<ProMzPlu>},
      {TypeWord::kGoodsFree, WithDatabase<ProMzFree>, Pass::FullAmount, Calc<ProMzFree>},
      {TypeWord::kGift, WithDatabase<ProMzGift>, Pass::FullAmount, Calc<ProMzGift>},
      {TypeWord::kExchange, WithDatabase<ProMzGift>, Pass::FullAmount, Calc<ProMzGift>},
      {TypeWord::kPay, WithoutDatabase<ProMzPay>, Pass::Pay, Calc<ProMzPay>},
      {TypeWord::kUseCoupon, WithoutDatabase<ProMzUseCoupon>, Pass::Coupon, Calc<ProMzUseCoupon>},
  };
  return *table;
}

Text NameOf(Pass pass) {
  switch (pass) {
    case Pass::Ordinary:
      return "Ordinary";
    case Pass::Combination:
      return "Combination";
    case Pass::FullAmount:
      return "FullAmount";
    case Pass::Pay:
      return "Pay";
    case Pass::Coupon:
      break;
  }
  return "Coupon";
}

const RuleKind* FindKind(const RuleTable& table, Text word) {
  const auto found =
      std::find_if(table.begin(), table.end(), [&](const RuleKind& kind) { return Same(kind.Word, word); });
  return found == table.end() ? nullptr : &*found;
}

RulePtr MakeRule(const RuleTable& table, Text word, const QnPosDBPro& db) {
  const RuleKind* const kind = FindKind(table, word);
  return kind == nullptr || kind->Make == nullptr ? nullptr : kind->Make(db);
}

}  // namespace Corvane
