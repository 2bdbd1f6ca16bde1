#include "tests/scenarios/ScenarioXml.h"

#include <algorithm>
#include <iterator>
#include <map>
#include <regex>
#include <set>
#include <sstream>
#include <utility>
#include <vector>

#include "tests/support/Till.h"

namespace Corvane::Testing {

namespace {

using Attributes = std::vector<std::pair<std::string, std::string>>;

std::string Escaped(const std::string& value) {
  static const std::map<char, std::string> kEntities = {
      {'&', "&amp;"}, {'<', "&lt;"}, {'>', "&gt;"}, {'"', "&quot;"}, {'\'', "&apos;"}};
  std::string text;
  for (const char letter : value) {
    const auto entity = kEntities.find(letter);
    text += entity == kEntities.end() ? std::string(1, letter) : entity->second;
  }
  return text;
}

std::string Written(const Attributes& attributes) {
  std::string text;
  for (const auto& [name, value] : attributes) text += " " + name + "=\"" + Escaped(value) + "\"";
  return text;
}

std::string Element(const std::string& name, const Attributes& attributes) {
  return "<" + name + Written(attributes) + "/>";
}

/// A cell's value: two quotes stand for the empty text.
std::string ValueOf(const std::string& cell) { return cell == "\"\"" ? "" : cell; }

/// The words of the shop for attributes; other columns bear the attribute's own name.
std::string AttributeOf(const std::string& column) {
  static const std::map<std::string, std::string> kWords = {
      {"line", "SerialNo"}, {"goods", "PluCode"}, {"price", "Price"},       {"count", "PluCount"},
      {"total", "Total"},   {"packs", "PackCnt"}, {"picked", "HgPluCount"},
  };
  const auto word = kWords.find(column);
  return word == kWords.end() ? column : word->second;
}

/// An empty cell leaves the attribute out.
Attributes AttributesOf(const Table& table, const Cells& row) {
  Attributes attributes;
  for (std::size_t place = 0; place < row.size(); ++place) {
    if (!row[place].empty()) attributes.emplace_back(AttributeOf(table.Columns[place]), ValueOf(row[place]));
  }
  return attributes;
}

/// `usual` values, as far as `own` doesn't give others, before `own`.
Attributes WithUsual(const Attributes& usual, const Attributes& own) {
  Attributes all;
  for (const auto& pair : usual) {
    const bool isGiven = std::any_of(own.begin(), own.end(), [&](const auto& one) { return one.first == pair.first; });
    if (!isGiven) all.push_back(pair);
  }
  all.insert(all.end(), own.begin(), own.end());
  return all;
}

std::string Group(const std::string& name, const Table& table, const Attributes& usual = {}) {
  std::string rows;
  for (const Cells& row : table.Rows) rows += Element("Row", WithUsual(usual, AttributesOf(table, row)));
  return "<" + name + ">" + rows + "</" + name + ">";
}

// --- Rules ----------------------------------------------------------------------------------------------------------

/// "Primary DZ, MaxYhType 2" as header attributes.
std::string HeaderOf(const Step& step, const std::string& values) {
  static const std::set<std::string> kNames = {"OrgCode", "ProMode",    "ProStatus", "Primary",
                                               "JzDate",  "MaxYhValue", "MaxYhType", "Remark"};
  Attributes header;
  std::stringstream rest(values);
  for (std::string pair; std::getline(rest >> std::ws, pair, ',');) {
    const std::string name = pair.substr(0, pair.find(' '));
    if (kNames.count(name) == 0) throw ScenarioError(step.Line, "a rule's header doesn't have this: " + pair);
    header.emplace_back(name, ValueOf(pair.substr(std::min(name.size() + 1, pair.size()))));
  }
  return Written(header);
}

std::string RuleGroup(const Step& step, const std::string& name) {
  static const std::set<std::string> kNames = {"OrgFilter", "ProTime",      "PayMode",  "Vip",
                                               "ProCtr",    "CardNoFilter", "PluAction"};
  if (kNames.count(name) == 0) throw ScenarioError(step.Line, "a rule doesn't have this group: " + name);
  RequireTable(step);
  return Group(name, step.Rows);
}

std::string Quoted(const std::string& value) {
  return "'" + std::regex_replace(ValueOf(value), std::regex("'"), "''") + "'";
}

/// An empty cell leaves the column to the table's default.
std::string InsertOf(const std::string& billNo, const std::string& into, const Table& table, const Cells& row) {
  std::string columns = "BillNo";
  std::string values = Quoted(billNo);
  for (std::size_t place = 0; place < row.size(); ++place) {
    if (row[place].empty()) continue;
    columns += "," + table.Columns[place];
    values += "," + Quoted(row[place]);
  }
  return "insert into " + into + " (" + columns + ") values (" + values + ");";
}

std::string InsertsOf(const std::string& billNo, const std::string& into, const Step& step) {
  RequireTable(step);
  std::string statements;
  for (const Cells& row : step.Rows.Rows) statements += InsertOf(billNo, into, step.Rows, row);
  return statements;
}

bool Holds(const std::string& text, const std::string& part) { return text.find(part) != std::string::npos; }

/// The groups of a rule's XML; those that open it at every organisation on every day, unless it brings its own.
std::string WithUsualGroups(const std::string& own) {
  std::string groups;
  if (!Holds(own, "<OrgFilter")) groups += kEveryOrganisation;
  if (!Holds(own, "<ProTime")) groups += kEveryDay;
  return groups + own;
}

/// Adds one "And its ..." to a rule.
void AddPart(const Step& part, ScenarioRule& rule, std::string& groups) {
  static const std::regex kRows(R"(its rows in (\w+))");
  static const std::regex kGroup(R"(its group (\w+))");
  std::smatch found;
  if (std::regex_match(part.Text, found, kRows)) {
    rule.Statements += InsertsOf(rule.BillNo, found[1], part);
  } else if (std::regex_match(part.Text, found, kGroup)) {
    groups += RuleGroup(part, found[1]);
  } else if (part.Text == "its own XML is") {
    RequireBlock(part);
    groups += part.Block;
  } else {
    throw ScenarioError(part.Line, "a rule doesn't have this: " + part.Text);
  }
}

// --- Sales ----------------------------------------------------------------------------------------------------------

Attributes UsualSale() { return {{"OrgCode", "S01"}, {"BillNo", "B1"}, {"IsCalc", "0"}}; }

Attributes UsualLine() { return {{"PackCnt", "1"}, {"SaleDate", "2026-11-21"}, {"SaleTime", "10:00:00"}}; }

/// What the cashier picked on one row of one offer.
struct Pick {
  std::string Rule;
  std::string Row;
  std::string Goods;
  Attributes Changes;  ///< all other columns
  int Found = 0;       ///< rows that it names
};

Pick PickOf(const Step& step, const Cells& row) {
  Pick pick;
  for (std::size_t place = 0; place < row.size(); ++place) {
    const std::string& column = step.Rows.Columns[place];
    if (column == "rule") {
      pick.Rule = row[place];
    } else if (column == "row") {
      pick.Row = row[place];
    } else if (column == "goods") {
      pick.Goods = row[place];
    } else {
      pick.Changes.emplace_back(AttributeOf(column), ValueOf(row[place]));
    }
  }
  return pick;
}

/// A pick needs only so many columns that it names one row.
bool Fits(const std::string& told, const std::string& value) { return told.empty() || told == value; }

/// What the picks change on one row of an offer.
Attributes ChangesOf(std::vector<Pick>& picks, const Offer& offer, const Row& row) {
  Attributes changes;
  for (Pick& pick : picks) {
    const bool isNamed =
        Fits(pick.Rule, offer.Head["ProBillNo"]) && Fits(pick.Row, row["SerialNo"]) && Fits(pick.Goods, row["PluCode"]);
    if (!isNamed) continue;
    ++pick.Found;
    changes.insert(changes.end(), pick.Changes.begin(), pick.Changes.end());
  }
  return changes;
}

/// The offers of the last result, as a host sends them back with the cashier's picks in them.
std::string OffersBack(const Step& step, const std::string& lastResult) {
  std::vector<Pick> picks;
  for (const Cells& row : step.Rows.Rows) picks.push_back(PickOf(step, row));
  std::string offers;
  for (const Offer& offer : OffersOf(lastResult)) {
    offers += "<ProGift" + Written(offer.Head.All()) + ">";
    for (const Row& row : offer.Rows) {
      offers += Element("Data", WithUsual(row.All(), ChangesOf(picks, offer, row)));
    }
    offers += "</ProGift>";
  }
  const bool eachFound = std::all_of(picks.begin(), picks.end(), [](const Pick& pick) { return pick.Found == 1; });
  if (!eachFound) throw ScenarioError(step.Line, "not each pick names one row of one offer");
  return "<ProGifts>" + offers + "</ProGifts>";
}

std::string SaleGroupOf(const Step& part, const std::string& lastResult) {
  static const std::map<std::string, std::string> kGroups = {{"its members are", "Vip"},
                                                             {"its payments are", "PayMode"},
                                                             {"its coupons are", "Coupon"},
                                                             {"its gifts are", "Gift"}};
  if (part.Text == "its own XML is") {
    RequireBlock(part);
    return part.Block;
  }
  RequireTable(part);
  if (part.Text == "the offers come back with") return OffersBack(part, lastResult);
  const auto group = kGroups.find(part.Text);
  if (group == kGroups.end()) throw ScenarioError(part.Line, "a sale doesn't have this: " + part.Text);
  return Group(group->second, part.Rows);
}

Attributes SaleHeaderOf(const Step& part) {
  if (part.Rows.Rows.size() != 1) throw ScenarioError(part.Line, "a sale has one header");
  return AttributesOf(part.Rows, part.Rows.Rows.front());
}

}  // namespace

ScenarioRule RuleOf(const Act& act) {
  static const std::regex kSentence(R"(the rule (\S+) of type (\w+)(?: loaded as (\w+))?(?: with (.+))?)");
  std::smatch found;
  if (!std::regex_match(act.Head.Text, found, kSentence)) {
    throw ScenarioError(act.Head.Line, "nothing does this: " + act.Head.Text);
  }
  RequireNothingBelow(act.Head);
  ScenarioRule rule;
  rule.BillNo = found[1];
  rule.ProType = found[2];
  rule.LoadType = found[3].matched ? found[3] : found[2];
  std::string groups;
  for (const Step& part : act.Parts) AddPart(part, rule, groups);
  rule.Xml = RuleXml(rule.BillNo, rule.ProType, HeaderOf(act.Head, found[4]), WithUsualGroups(groups), true);
  return rule;
}

std::string SaleOf(const Act& act, const std::string& lastResult) {
  Attributes header = UsualSale();
  std::string groups;
  if (!act.Head.Rows.Columns.empty()) groups = Group("Plu", act.Head.Rows, UsualLine());
  for (const Step& part : act.Parts) {
    if (part.Text == "its header is") {
      header = WithUsual(UsualSale(), SaleHeaderOf(part));
    } else {
      groups += SaleGroupOf(part, lastResult);
    }
  }
  return "<Sale" + Written(header) + ">" + groups + "</Sale>";
}

}  // namespace Corvane::Testing
