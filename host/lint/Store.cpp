#include "host/lint/Store.h"

#include <algorithm>

#include "rule/RuleType.h"

namespace Corvane::Host::Lint {

namespace {

const std::vector<TypeTables>& AllTables() {
  static const auto* const all = new std::vector<TypeTables>{
      {TypeWord::kLimit, {Table::kDirect}, {}},
      {TypeWord::kBatch, {Table::kDirect}, {}},
      {TypeWord::kSets, {Table::kDirect}, {}},
      {TypeWord::kFree, {Table::kCombination, Table::kCombinationGoods}, {}},
      {TypeWord::kFixed, {Table::kCombination, Table::kCombinationGoods}, {}},
      {TypeWord::kCondition, {Table::kCombinationGoods}, {Table::kCombinationDemand, Table::kCombinationControl}},
      {TypeWord::kChoice, {Table::kCombination, Table::kCombinationGoods}, {}},
      {TypeWord::kReduce, {Table::kList, Table::kListTier}, {Table::kConditionGoods}},
      {TypeWord::kGoods, {Table::kGoodsTier}, {}},
      {TypeWord::kGoodsFree, {Table::kGift}, {Table::kConditionGoods}},
      {TypeWord::kGift, {Table::kGift}, {Table::kConditionGoods}},
      {TypeWord::kExchange, {Table::kGift}, {Table::kConditionGoods}},
      {TypeWord::kGiveCoupon, {}, {}},
      {TypeWord::kPay, {}, {}},
      {TypeWord::kUseCoupon, {}, {}},
  };
  return *all;
}

bool Holds(const std::vector<const char*>& tables, const std::string& table) {
  return std::any_of(tables.begin(), tables.end(), [&](const char* name) { return table == name; });
}

}  // namespace

const Rows& Rule::In(const char* table) const {
  static const auto* const none = new Rows;
  const auto found = RowsByTable.find(table);
  return found == RowsByTable.end() ? *none : found->second;
}

const TypeTables* TablesOf(const std::string& type) {
  const auto found = std::find_if(AllTables().begin(), AllTables().end(),
                                  [&](const TypeTables& tables) { return type == tables.Type; });
  return found == AllTables().end() ? nullptr : &*found;
}

std::string TypesThatRead(const std::string& table) {
  std::string types;
  for (const TypeTables& tables : AllTables()) {
    if (!Holds(tables.Needed, table) && !Holds(tables.Further, table)) continue;
    types += (types.empty() ? "" : ", ") + std::string(tables.Type);
  }
  return types;
}

}  // namespace Corvane::Host::Lint
