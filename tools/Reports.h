#ifndef TOOLS_REPORTS_H
#define TOOLS_REPORTS_H

#include <cstddef>
#include <string>
#include <vector>

namespace Corvane::Tool {

/// One thing that a check found.
struct Finding {
  bool isError = false;
  std::string where;
  std::string what;
  /// What to do; may be empty.
  std::string mend;
};

/// What a check found in a store.
struct CheckReport {
  std::string folder;
  std::vector<Finding> findings;
};

/// @param json the library's report of a check. @throws std::exception when it is none.
CheckReport ReadCheckReport(const std::string& json);

/// One thing that was found in a store's rules.
struct LintFinding {
  bool isError = false;
  std::string code;
  /// Empty for a row of a table.
  std::string file;
  /// 0 for none.
  int line = 0;
  std::string table;
  std::string key;
  std::string what;
  std::string mend;
};

/// What was found in a store and its rules.
struct LintReport {
  std::string folder;
  std::size_t errors = 0;
  std::size_t warnings = 0;
  std::vector<LintFinding> findings;
};

/// @param json the library's report of a look through the rules. @throws std::exception when it is none.
LintReport ReadLintReport(const std::string& json);

/// @param json the library's report of loaded rules; may be empty.
/// @return what was refused, a line each.
std::string RefusedRules(const std::string& json);

/// What a sale comes to, in cents.
struct SaleTotals {
  double before = 0;
  double toPay = 0;
};

/// @param json a result. @throws std::exception when it is none.
SaleTotals ReadTotals(const std::string& json);

/// @return the text with its marks, as JSON has it.
std::string Quoted(const std::string& text);

}  // namespace Corvane::Tool

#endif
