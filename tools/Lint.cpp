#include <iostream>
#include <string>

#include "Commands.h"
#include "LibraryText.h"
#include "Reports.h"
#include "Terminal.h"
#include "ToolError.h"

namespace Corvane::Tool {
namespace {

std::string Counted(std::size_t count, const std::string& thing) {
  return std::to_string(count) + " " + thing + (count == 1 ? "" : "s");
}

std::string PlaceOf(const LintFinding& finding) {
  if (finding.file.empty()) return finding.key.empty() ? finding.table : finding.table + " " + finding.key;
  return finding.line > 0 ? finding.file + ":" + std::to_string(finding.line) : finding.file;
}

void PrintFinding(const Paint& paint, const LintFinding& finding, bool withMend) {
  const std::string severity = finding.isError ? paint.Red("error") : paint.Yellow("warning");
  std::cout << PlaceOf(finding) << ": " << severity << ": " << finding.what << " [" << finding.code << "]\n";
  if (withMend && !finding.mend.empty()) std::cout << "    " << finding.mend << "\n";
}

void PrintReport(const LintReport& report, bool withMends) {
  const Paint paint(stdout);
  for (const LintFinding& finding : report.findings) PrintFinding(paint, finding, withMends);
  const std::string count = report.findings.empty()
                                ? paint.Green("nothing found")
                                : Counted(report.errors, "error") + ", " + Counted(report.warnings, "warning");
  std::cout << report.folder << ": " << count << "\n";
}

}  // namespace

int RunLint(const LintCommand& command) {
  LibraryText report;
  LibraryText error;
  constexpr unsigned kNoLimit = 0;
  const int code = qnc_lint(command.store.c_str(), kNoLimit, report.Place(), error.Place());
  const std::string json = report.Text();
  if (json.empty()) throw ToolError(error.Text());
  if (command.asJson) {
    std::cout << json << "\n";
  } else {
    PrintReport(ReadLintReport(json), command.withMends);
  }
  return code == QNC_OK ? 0 : ToolError::kFailed;
}

}  // namespace Corvane::Tool
