#include "tests/scenarios/ScenarioXml.h"

#include <algorithm>
#include <cstdlib>
#include <iomanip>
#include <iterator>
#include <map>
#include <regex>
#include <set>
#include <sstream>
#include <utility>
#include <vector>

#include "tests/scenarios/ScenarioWords.h"
#include "tests/support/Till.h"

namespace Corvane::Testing {

namespace {

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

std::string Quoted(const std::string& value) { return "'" + std::regex_replace(value, std::regex("'"), "''") + "'"; }

/// A name that is left out goes to the table's default.
std::string InsertOf(const std::string& billNo, const std::string& into, const Attributes& row) {
  std::string columns = "BillNo";
  std::string values = Quoted(billNo);
  for (const auto& [name, value] : row) {
    columns += "," + name;
    values += "," + Quoted(value);
  }
  return "insert into " + into + " (" + columns + ") values (" + values + ");";
}

/// A list of offers in a rule's XML.
struct XmlList {
  Attributes Head;
  std::map<std::string, std::string> Groups;  ///< rows by the group's name
  std::string Entries;
};

/// A rule as its "And" sentences make it.
struct RuleParts {
  std::string Statements;
  std::map<std::string, int> Counts;  ///< rows of each table so far
  std::string Groups;
  std::map<std::string, XmlList> Lists;
};

/// A row without a number has its place as number, and one without a list is of the list "0".
void AddStoreRow(const RowsPlace& place, const std::string& billNo, Attributes row, RuleParts& parts) {
  const int count = ++parts.Counts[place.Name];
  const auto setUsual = [&](const char* word, const std::string& value) {
    const auto found = place.Columns.find(word);
    if (found != place.Columns.end() && !HasName(row, found->second.Column))
      row.emplace_back(found->second.Column, value);
  };
  setUsual("row", std::to_string(count));
  setUsual("list", "0");
  parts.Statements += InsertOf(billNo, place.Name, row);
}

/// A row without a list is of the list "0".
void AddListRow(const RowsPlace& place, const Attributes& row, RuleParts& parts) {
  Attributes own;
  std::string code = "0";
  for (const auto& [name, value] : row) {
    if (name == "list") {
      code = value;
    } else {
      own.emplace_back(name, value);
    }
  }
  XmlList& list = parts.Lists[code];
  if (place.Where == RowsPlace::Kind::ListHead) {
    list.Head = own;
  } else if (place.Where == RowsPlace::Kind::ListEntry) {
    list.Entries += Element(place.Name, own);
  } else {
    list.Groups[place.Name] += Element("Row", own);
  }
}

void AddRows(const RowsPlace& place, const Step& step, const std::string& billNo, RuleParts& parts) {
  RequireTable(step);
  std::string rows;
  for (const Cells& cells : step.Rows.Rows) {
    const Attributes row = RowOf(step, cells, place.Columns);
    switch (place.Where) {
      case RowsPlace::Kind::Store:
        AddStoreRow(place, billNo, row, parts);
        break;
      case RowsPlace::Kind::Group:
        rows += Element("Row", row);
        break;
      default:
        AddListRow(place, row, parts);
    }
  }
  if (place.Where == RowsPlace::Kind::Group) parts.Groups += "<" + place.Name + ">" + rows + "</" + place.Name + ">";
}

/// A list that says nothing else counts the whole sale.
std::string ListsOf(const RuleParts& parts) {
  std::string text;
  for (const auto& [code, list] : parts.Lists) {
    text += "<ProList" + Written(WithUsual({{"ConAreaType", "ALL"}}, list.Head)) + ">" + list.Entries;
    for (const auto& [name, rows] : list.Groups) text += "<" + name + ">" + rows + "</" + name + ">";
    text += "</ProList>";
  }
  return text;
}

bool Holds(const std::string& text, const std::string& part) { return text.find(part) != std::string::npos; }

/// The groups of a rule's XML; those that open it at every organisation on every day, unless it brings its own.
std::string WithUsualGroups(const std::string& own) {
  std::string groups;
  if (!Holds(own, "<OrgFilter")) groups += kEveryOrganisation;
  if (!Holds(own, "<ProTime")) groups += kEveryDay;
  return groups + own;
}

/// Adds one "And ..." to a rule.
void AddPart(const Step& part, const std::string& billNo, RuleParts& parts) {
  const RowsPlace* place = RowsPlaceOf(part.Text);
  if (place != nullptr) {
    AddRows(*place, part, billNo, parts);
  } else if (part.Text == "its own XML is") {
    RequireBlock(part);
    parts.Groups += part.Block;
  } else {
    throw ScenarioError(part.Line, "a rule doesn't have this: " + part.Text);
  }
}

// --- Sales ----------------------------------------------------------------------------------------------------------

Attributes UsualSale() { return {{"OrgCode", "S01"}, {"BillNo", "B1"}, {"IsCalc", "0"}}; }

Attributes UsualLine() { return {{"PackCnt", "1"}, {"SaleDate", "2026-11-21"}, {"SaleTime", "10:00:00"}}; }

std::string Number(double value) {
  std::stringstream text;
  text << std::setprecision(12) << value;
  return text.str();
}

double NumberOf(const Attributes& attributes, const std::string& name) {
  for (const auto& [own, value] : attributes) {
    if (own == name) return std::atof(value.c_str());
  }
  return 0;
}

/// A line of a sale. Columns that the table doesn't have follow from those that it has: lines are counted from 1, a
/// line is one piece, and total and price are what the other one and the count make them.
Attributes LineOf(const Table& table, std::size_t place) {
  Attributes line = WithUsual(UsualLine(), AttributesOf(table, table.Rows[place]));
  const auto add = [&](const char* word, const std::string& value) {
    if (!table.HasColumn(word)) line.emplace_back(AttributeOf(word), value);
  };
  add("line", std::to_string(place + 1));
  add("count", "1");
  if (table.HasColumn("price")) {
    add("total", Number(NumberOf(line, "Price") * NumberOf(line, "PluCount")));
  } else {
    add("price", Number(NumberOf(line, "Total") / NumberOf(line, "PluCount")));
  }
  return line;
}

std::string Fixed(double value, int decimals) {
  std::stringstream text;
  text << std::fixed << std::setprecision(decimals) << value;
  return text.str();
}

std::string TextOf(const Attributes& attributes, const std::string& name) {
  for (const auto& [own, value] : attributes) {
    if (own == name) return value.empty() ? "\"\"" : value;
  }
  return "\"\"";
}

std::string LinesGroup(const Table& table) {
  std::string rows;
  for (std::size_t place = 0; place < table.Rows.size(); ++place) rows += Element("Row", LineOf(table, place));
  return "<Plu>" + rows + "</Plu>";
}

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
  std::string rows;
  for (const Cells& row : part.Rows.Rows) {
    const bool isGift = group->second == "Gift";
    rows += Element("Row", isGift ? AttributesOf(part.Rows, row) : RowOf(part, row, SaleWords(group->second)));
  }
  return "<" + group->second + ">" + rows + "</" + group->second + ">";
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
  RuleParts parts;
  for (const Step& part : act.Parts) AddPart(part, rule.BillNo, parts);
  rule.Statements = parts.Statements;
  const std::string groups = WithUsualGroups(parts.Groups + ListsOf(parts));
  rule.Xml = RuleXml(rule.BillNo, rule.ProType, HeaderOf(act.Head, found[4]), groups, true);
  return rule;
}

void Hold(HeldLines& lines, const HeldLine& line) {
  const auto old =
      std::find_if(lines.begin(), lines.end(), [&](const HeldLine& one) { return one.SerialNo == line.SerialNo; });
  if (old == lines.end()) {
    lines.push_back(line);
  } else {
    *old = line;
  }
}

HeldLines WithSentLines(HeldLines lines, const Step& sentence) {
  for (std::size_t place = 0; place < sentence.Rows.Rows.size(); ++place) {
    const Attributes line = LineOf(sentence.Rows, place);
    const double count = NumberOf(line, "PluCount");
    const double total = NumberOf(line, "Total");
    Hold(lines, {TextOf(line, "SerialNo"), TextOf(line, "PluCode"), Fixed(count, 2), Fixed(total, 2),
                 Fixed(total / count, 4)});
  }
  return lines;
}

std::string SaleOf(const Act& act, const std::string& lastResult) {
  Attributes header = UsualSale();
  std::string groups;
  if (!act.Head.Rows.Columns.empty()) groups = LinesGroup(act.Head.Rows);
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
