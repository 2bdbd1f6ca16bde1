#include "host/lint/Checks.h"
#include "host/lint/Words.h"
#include "rule/RuleType.h"
#include "sale/ProDetailKey.h"

namespace Corvane::Host::Lint {

namespace {

void CheckCode(const Place& place, const std::string& kind, const std::string& code, const Goods& goods, Flaws& flaws) {
  if (Trimmed(code).empty() || goods.MayHave(kind, code)) return;
  flaws.Add(Codes::kUnknownGoods, place,
            "no article of goods.xml has the " + (kind == GoodsKind::kGoods ? "PluCode" : kind) + " " + Shown(code),
            "mend the code, or put the article into goods.xml");
}

/// Whether a table's rows name articles, whatever their kind says.
bool NamesArticles(const Rule& rule, const std::string& table) {
  if (table == Table::kGift) return true;
  return table == Table::kCombinationGoods && (rule.Is(TypeWord::kFixed) || rule.Is(TypeWord::kChoice));
}

bool HasGoods(const std::string& table) {
  return table != Table::kCombination && table != Table::kCombinationControl && table != Table::kList &&
         table != Table::kListTier;
}

}  // namespace

void CheckGoods(const Rule& rule, const Goods& goods, Flaws& flaws) {
  for (const auto& [table, rows] : rule.RowsByTable) {
    if (!HasGoods(table)) continue;
    for (const Row& row : rows) {
      const std::string kind = NamesArticles(rule, table) ? GoodsKind::kGoods : row.Text("PluType");
      CheckCode(row.Where(), kind, row.Text("PluCode"), goods, flaws);
    }
  }
  std::vector<const XmlNode*> named = rule.Xml.RowsOf("PluCondition");
  for (const XmlNode* const list : rule.Xml.Groups("ProList")) {
    for (const XmlNode* const row : list->RowsOf("PluCondition")) named.push_back(row);
  }
  for (const XmlNode* const row : named) {
    const std::string kind = row->Find("PluType") != nullptr ? row->Value("PluType") : GoodsKind::kGoods;
    CheckCode(rule.At(*row, "PluCode"), kind, row->Value("PluCode"), goods, flaws);
  }
}

}  // namespace Corvane::Host::Lint
