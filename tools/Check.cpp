#include <algorithm>
#include <iostream>

#include "Commands.h"
#include "LibraryText.h"
#include "Reports.h"
#include "Terminal.h"
#include "ToolError.h"

namespace Corvane::Tool {
namespace {

std::string Counted(std::ptrdiff_t count, const std::string& thing) {
  return std::to_string(count) + " " + thing + (count == 1 ? "" : "s");
}

void PrintFinding(const Paint& paint, const Finding& finding) {
  const std::string severity = finding.isError ? paint.Red("error") : paint.Yellow("warning");
  const std::string where = finding.where.empty() ? "" : finding.where + ": ";
  std::cout << severity << (finding.isError ? "    " : "  ") << where << finding.what << "\n";
  if (!finding.mend.empty()) std::cout << std::string(9, ' ') << finding.mend << "\n";
}

void PrintReport(const CheckReport& report) {
  const Paint paint(stdout);
  for (const Finding& finding : report.findings) PrintFinding(paint, finding);
  const auto errors = std::count_if(report.findings.begin(), report.findings.end(),
                                    [](const Finding& finding) { return finding.isError; });
  const auto warnings = static_cast<std::ptrdiff_t>(report.findings.size()) - errors;
  const std::string count = report.findings.empty() ? paint.Green("nothing wrong")
                                                    : Counted(errors, "error") + ", " + Counted(warnings, "warning");
  std::cout << report.folder << ": " << count << "\n";
}

}  // namespace

int RunCheck(const CheckCommand& command) {
  LibraryText report;
  LibraryText error;
  constexpr unsigned kNoLimit = 0;
  const int code = qnc_check(command.store.c_str(), kNoLimit, report.Place(), error.Place());
  const std::string json = report.Text();
  if (json.empty()) throw ToolError(error.Text());
  if (command.asJson) {
    std::cout << json << "\n";
  } else {
    PrintReport(ReadCheckReport(json));
  }
  return code == QNC_OK ? 0 : ToolError::kFailed;
}

}  // namespace Corvane::Tool
