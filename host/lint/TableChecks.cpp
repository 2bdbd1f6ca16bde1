#include <algorithm>
#include <cstring>
#include <set>

#include "base/Text.h"
#include "host/lint/Checks.h"
#include "host/lint/Words.h"

namespace Corvane::Host::Lint {

namespace {

bool Holds(const std::vector<const char*>& tables, const char* table) {
  return std::any_of(tables.begin(), tables.end(), [&](const char* name) { return std::strcmp(name, table) == 0; });
}

bool HasRows(const Store& store, const Rule& rule, const char* table) {
  const auto numbers = store.NumbersByTable.find(table);
  return numbers != store.NumbersByTable.end() && numbers->second.count(rule.BillNo) > 0;
}

Place RowsOf(const char* table, const std::string& billNo) { return {{}, 0, table, "BillNo=" + billNo, billNo}; }

void CheckTablesOf(const Store& store, const Rule& rule, const TypeTables& tables, Flaws& flaws) {
  bool isWhole = true;
  for (const char* const needed : tables.Needed) {
    if (HasRows(store, rule, needed)) continue;
    if (store.NumbersByTable.count(needed) == 0) return;  // a table that is missing is told once
    isWhole = false;
    flaws.Add(Codes::kNoRows, rule.Where(),
              rule.Type + " " + Shown(rule.BillNo) + " has no rows in " + needed + ": it gives nothing",
              "write its rows there, with BillNo " + rule.BillNo);
  }
  for (const StoreTable& table : kStoreTables) {
    if (Holds(tables.Needed, table.Name) || Holds(tables.Further, table.Name)) continue;
    if (!HasRows(store, rule, table.Name)) continue;
    flaws.Add(isWhole ? Codes::kIdleRows : Codes::kWrongTable, RowsOf(table.Name, rule.BillNo),
              rule.Type + " doesn't read this table; it is read by " + TypesThatRead(table.Name),
              isWhole ? "delete the rows"
                      : "write the rows into the tables of " + rule.Type + ", or mend ProType in " + rule.File);
  }
}

/// A rule whose number differs in letter case or blanks alone.
const Rule* NearlyNumbered(const Store& store, const std::string& billNo) {
  const auto found = std::find_if(store.Rules.begin(), store.Rules.end(), [&](const Rule& rule) {
    return SameIgnoringCase(Trimmed(rule.BillNo).c_str(), Trimmed(billNo).c_str());
  });
  return found == store.Rules.end() ? nullptr : &*found;
}

void CheckOrphans(const Store& store, Flaws& flaws) {
  std::set<std::string> known;
  for (const Rule& rule : store.Rules) known.insert(rule.BillNo);
  for (const StoreTable& table : kStoreTables) {
    const auto numbers = store.NumbersByTable.find(table.Name);
    if (numbers == store.NumbersByTable.end()) continue;
    for (const std::string& billNo : numbers->second) {
      if (known.count(billNo) > 0) continue;
      const Rule* const meant = NearlyNumbered(store, billNo);
      const bool isPadded = meant != nullptr && Trimmed(billNo) != billNo;
      flaws.Add(isPadded ? Codes::kPaddedText : Codes::kRowsWithoutRule, RowsOf(table.Name, billNo),
                "BillNo " + Shown(billNo) + " is that of no rule in rules/: its rows do nothing",
                meant != nullptr ? "did you mean " + Shown(meant->BillNo) + " of " + meant->File + "?"
                                 : "delete the rows, or put the rule there");
    }
  }
}

}  // namespace

void CheckTables(const Store& store, Flaws& flaws) {
  for (const Rule& rule : store.Rules) {
    const TypeTables* const tables = TablesOf(rule.Type);
    if (tables != nullptr && !rule.BillNo.empty() && !rule.IsReplaced) CheckTablesOf(store, rule, *tables, flaws);
  }
  // Of a file that can't be read nobody knows which rule it is.
  if (store.HasAllRules) CheckOrphans(store, flaws);
}

void CheckIndexes(RowReader& reader, Flaws& flaws) {
  for (const StoreTable& table : kStoreTables) {
    if (!reader.LacksIndex(table)) continue;
    flaws.Add(Codes::kMissingIndex, {{}, 0, table.Name, {}, {}},
              "no index begins with BillNo: each calculation reads the whole table",
              std::string("make the key (") + table.Key + "), as the table definitions do");
  }
}

}  // namespace Corvane::Host::Lint
