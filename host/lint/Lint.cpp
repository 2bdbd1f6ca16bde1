#include "host/lint/Lint.h"

#include <QString>
#include <algorithm>
#include <cstdlib>
#include <iterator>
#include <optional>
#include <utility>

#include "host/RuleFolder.h"
#include "host/StoreCheck.h"
#include "host/lint/Checks.h"

namespace Corvane::Host::Lint {

namespace {

constexpr const char* kRules = "rules";

// --- Reading --------------------------------------------------------------------------------------------------------

/// @return nothing for a text in which there is no rule to look at.
std::optional<Rule> RuleOf(const RuleFile& file) {
  const bool isText = !file.Refusal || file.Refusal->Code == QNC_BAD_VALUE;
  std::optional<XmlNode> root = isText ? ReadXmlText(file.Xml) : std::nullopt;
  if (!root || root->Children.empty()) return std::nullopt;
  Rule rule;
  rule.File = std::string(kRules) + "/" + file.Name;
  rule.Xml = std::move(root->Children.front());
  rule.BillNo = rule.Xml.Value("BillNo");
  rule.Type = rule.Xml.Value("ProType");
  rule.Primary = rule.Xml.Value("Primary");
  return rule;
}

void ReadRules(const std::string& folder, Store& store) {
  std::vector<RuleFile> files;
  try {
    files = ReadRuleFolder(folder + "/" + kRules, kRules, false);
  } catch (const Failure&) {
    return;  // told among the store's findings
  }
  for (const RuleFile& file : files) {
    if (std::optional<Rule> rule = RuleOf(file)) store.Rules.push_back(std::move(*rule));
  }
  store.HasAllRules = !files.empty() && files.size() == store.Rules.size();
}

void ReadRowsOf(Rule& rule, const Store& store, RowReader& reader) {
  const TypeTables* const tables = TablesOf(rule.Type);
  if (tables == nullptr || rule.BillNo.empty()) return;
  for (const StoreTable& table : kStoreTables) {
    const auto isTable = [&](const char* name) { return std::string(table.Name) == name; };
    const bool isRead = std::any_of(tables->Needed.begin(), tables->Needed.end(), isTable) ||
                        std::any_of(tables->Further.begin(), tables->Further.end(), isTable);
    const auto numbers = store.NumbersByTable.find(table.Name);
    const bool hasRows = numbers != store.NumbersByTable.end() && numbers->second.count(rule.BillNo) > 0;
    if (!isRead || !hasRows) continue;
    rule.RowsByTable[table.Name] = reader.Read(table, rule.BillNo);
  }
}

/// Reads the rows of all rules.
void ReadRows(const std::string& folder, Store& store, Flaws& flaws) {
  RowReader reader(QString::fromStdString(folder));
  if (!reader.Open()) return;
  store.HasRows = true;
  for (const StoreTable& table : kStoreTables) {
    if (auto numbers = reader.Numbers(table)) store.NumbersByTable[table.Name] = std::move(*numbers);
  }
  for (Rule& rule : store.Rules) {
    if (!rule.IsReplaced) ReadRowsOf(rule, store, reader);
  }
  CheckIndexes(reader, flaws);
}

// --- What the store's check found -----------------------------------------------------------------------------------

bool IsTable(const std::string& where) {
  return std::any_of(std::begin(kStoreTables), std::end(kStoreTables),
                     [&](const StoreTable& table) { return where == table.Name; });
}

bool IsOfRule(const std::string& where) { return where.rfind(std::string(kRules) + "/", 0) == 0; }

/// @param where "file", "file:line" or "file:line:column".
Place PlaceOf(const std::string& where) {
  Place place;
  if (IsTable(where)) {
    place.Table = where;
    return place;
  }
  const std::size_t end = where.rfind(".xml:");
  if (!IsOfRule(where) || end == std::string::npos) {
    place.File = where;
    return place;
  }
  constexpr std::size_t kEndLength = 4;
  place.File = where.substr(0, end + kEndLength);
  place.Line = static_cast<int>(std::strtol(where.c_str() + end + kEndLength + 1, nullptr, 10));
  return place;
}

Code CodeOf(const Finding& finding) {
  const bool isError = finding.Weight == Finding::Severity::kError;
  if (IsTable(finding.Where)) return finding.Column.empty() ? Codes::kMissingTable : Codes::kMissingColumn;
  if (!IsOfRule(finding.Where) || !isError) return isError ? Codes::kStore : Codes::kStoreDoubt;
  if (finding.Code == QNC_BAD_XML) return Codes::kBadXml;
  return finding.Code == QNC_UNREADABLE ? Codes::kUnreadableRule : Codes::kRefusedRule;
}

/// Whether it is told already, more closely. A call that fails for it answers as the check does.
bool IsTold(const Finding& finding, const Place& place, Flaws& flaws) {
  if (!IsOfRule(finding.Where)) return false;
  if (finding.Weight == Finding::Severity::kWarning) return flaws.Has(Codes::kDuplicateNumber, place.File);
  Flaw* const told = flaws.ErrorAt(place.File, place.Line);
  if (told != nullptr) told->Answer = finding.Code;
  return told != nullptr;
}

void Take(const Findings& findings, Flaws& told, Flaws& flaws) {
  for (const Finding& finding : findings) {
    const Place place = PlaceOf(finding.Where);
    if (!IsTold(finding, place, told)) flaws.Add(CodeOf(finding), place, finding.What, finding.Mend, finding.Code);
  }
}

// --- Looking --------------------------------------------------------------------------------------------------------

void LookAt(const Rule& rule, const Store& store, Flaws& flaws) {
  const Goods& goods = store.List;
  CheckHeader(rule, flaws);
  CheckNames(rule, flaws);
  CheckForms(rule, flaws);
  CheckFilters(rule, flaws);
  CheckTimes(rule, flaws);
  if (store.HasRows && !rule.IsReplaced) {
    CheckRows(rule, flaws);
    CheckPrices(rule, goods, flaws);
    CheckSets(rule, flaws);
  }
  CheckTiers(rule, flaws);
  CheckCoupons(rule, flaws);
  CheckPayment(rule, flaws);
  CheckGoods(rule, goods, flaws);
}

}  // namespace

Flaws LookThrough(const std::string& folder) {
  const Findings findings = CheckStore(folder);
  Store store;
  Flaws ofRules;
  ReadRules(folder, store);
  store.List = Goods::Read(folder, ofRules);
  const bool isWhole = std::none_of(findings.begin(), findings.end(), [](const Finding& finding) {
    return finding.Weight == Finding::Severity::kError && !IsOfRule(finding.Where);
  });
  CheckNumbers(store, ofRules);
  // What is missing hides what stands on it.
  if (isWhole) ReadRows(folder, store, ofRules);
  for (const Rule& rule : store.Rules) LookAt(rule, store, ofRules);
  if (store.HasRows) CheckTables(store, ofRules);
  if (store.HasRows) CheckStacking(store, ofRules);
  Flaws flaws;
  Take(findings, ofRules, flaws);
  flaws.Append(std::move(ofRules));
  return flaws;
}

}  // namespace Corvane::Host::Lint
