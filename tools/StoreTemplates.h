#ifndef TOOLS_STORETEMPLATES_H
#define TOOLS_STORETEMPLATES_H

#include <string>
#include <vector>

namespace Corvane::Tool {

/// An article that the sale of a new store has, and how many of it.
struct TemplateLine {
  int article = 0;
  int count = 0;
};

/// What a new store has of one type of rule.
struct StoreTemplate {
  std::string type;
  /// The promotion's name on receipts.
  std::string name;
  /// The stacking class.
  std::string primary;
  /// The modes in which the rule gives something, as "calc --mode" takes them.
  std::string modes;
  /// SQL: the rule's rows; empty for a rule whose XML says it all.
  std::string rows;
  /// XML: the groups of the rule beside its filters.
  std::string ruleGroups;
  std::vector<TemplateLine> lines;
  /// XML: the groups of the sale beside its lines.
  std::string saleGroups;
};

/// @return the types that a new store can have, all those of the engine.
std::vector<std::string> TemplateTypes();

/// @param type one of TemplateTypes().
const StoreTemplate& TemplateOf(const std::string& type);

/// @return the text of rules/TYPE-1.xml.
std::string RuleXml(const StoreTemplate& store);

/// @return the text of sale.xml.
std::string SaleXml(const StoreTemplate& store);

/// @return the text of goods.xml.
std::string GoodsXml();

}  // namespace Corvane::Tool

#endif
