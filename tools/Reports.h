#ifndef TOOLS_REPORTS_H
#define TOOLS_REPORTS_H

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
