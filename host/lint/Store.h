#ifndef QNCORVANE_HOST_LINT_STORE_H
#define QNCORVANE_HOST_LINT_STORE_H

#include <map>
#include <set>
#include <string>
#include <vector>

#include "base/Text.h"
#include "host/lint/Flaws.h"
#include "host/lint/Goods.h"
#include "host/lint/RuleRows.h"
#include "host/lint/RuleText.h"
#include "rule/ProInfo.h"

namespace Corvane::Host::Lint {

/// A rule of a store: its file, and its rows by table.
struct Rule {
  std::string File;  ///< "rules/R01.xml"
  XmlNode Xml;       ///< the rule's element; its groups are the children
  std::string BillNo;
  std::string Type;
  std::string Primary;
  std::map<std::string, Rows> RowsByTable;
  bool IsReplaced = false;  ///< by a later file with its number, to which the rows belong

  bool Is(Text type) const { return Type == type; }
  bool IsClass(Text primary) const { return Primary == primary; }
  /// Whether it has this kind of limit.
  bool IsLimitedBy(Text kind) const { return Xml.Value("MaxYhType") == kind; }
  double Limit() const { return Xml.Number("MaxYhValue"); }

  const Rows& In(const char* table) const;

  /// The place of the rule's header, of an element in it, and of an attribute.
  Place Where() const { return At(Xml); }
  Place At(const XmlNode& node) const { return {File, node.Line, {}, {}, BillNo}; }
  Place At(const XmlNode& node, const char* attribute) const { return {File, node.LineOf(attribute), {}, {}, BillNo}; }
};

/// What is looked through.
struct Store {
  std::vector<Rule> Rules;   ///< in the order of loading
  bool HasAllRules = false;  ///< whether every file could be read as far as its rule
  Goods List;
  bool HasRows = false;                                         ///< whether the database and all tables could be read
  std::map<std::string, std::set<std::string>> NumbersByTable;  ///< of the tables that could be read
};

/// The tables of a type.
struct TypeTables {
  Text Type;
  std::vector<const char*> Needed;   ///< without rows in each of them the rule does nothing
  std::vector<const char*> Further;  ///< read, too
};

/// @return null for a word that is no type. A type that reads no tables has none.
const TypeTables* TablesOf(const std::string& type);

/// The types that read a table, with commas between them.
std::string TypesThatRead(const std::string& table);

}  // namespace Corvane::Host::Lint

#endif
