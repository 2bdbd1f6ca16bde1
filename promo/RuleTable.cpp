#include "promo/RuleTable.h"

#include <algorithm>
#include <iterator>

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

struct RuleType {
  Text Word;
  RulePtr (*Make)(const QnPosDBPro& db);
};

constexpr RuleType kRuleTypes[] = {
    {"PTXS", WithDatabase<ProDirectLimit>}, {"PTPL", WithDatabase<ProDirectBatch>},
    {"PTOS", WithDatabase<ProDirectOs>},    {"ZHZY", WithDatabase<ProCombFree>},
    {"ZHGD", WithDatabase<ProCombFixed>},   {"ZHTJ", WithDatabase<ProCombCondition>},
    {"ZHZX", WithDatabase<ProCombChoice>},  {"MZMJ", WithDatabase<ProMzReduce>},
    {"MZDP", WithDatabase<ProMzPlu>},       {"MZZM", WithDatabase<ProMzFree>},
    {"MZZP", WithDatabase<ProMzGift>},      {"MZHG", WithDatabase<ProMzGift>},
    {"MZZF", WithoutDatabase<ProMzPay>},    {"MZYQ", WithoutDatabase<ProMzUseCoupon>},
};

}  // namespace

RulePtr MakeRule(Text type, const QnPosDBPro& db) {
  const auto* const found = std::find_if(std::begin(kRuleTypes), std::end(kRuleTypes),
                                         [&](const RuleType& row) { return Same(row.Word, type); });
  return found == std::end(kRuleTypes) ? nullptr : found->Make(db);
}

}  // namespace Corvane
