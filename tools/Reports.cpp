#include "Reports.h"

#include <nlohmann/json.hpp>

namespace Corvane::Tool {

using Json = nlohmann::json;

CheckReport ReadCheckReport(const std::string& json) {
  const Json root = Json::parse(json);
  CheckReport report;
  report.folder = root.value("folder", "");
  for (const Json& finding : root.at("findings")) {
    report.findings.push_back({finding.value("severity", "error") != "warning", finding.value("where", ""),
                               finding.value("what", ""), finding.value("mend", "")});
  }
  return report;
}

LintReport ReadLintReport(const std::string& json) {
  const Json root = Json::parse(json);
  LintReport report;
  report.folder = root.value("folder", "");
  report.errors = root.value("errors", std::size_t{0});
  report.warnings = root.value("warnings", std::size_t{0});
  for (const Json& finding : root.at("findings")) {
    report.findings.push_back({finding.value("severity", "error") != "warning", finding.value("code", ""),
                               finding.value("file", ""), finding.value("line", 0), finding.value("table", ""),
                               finding.value("key", ""), finding.value("what", ""), finding.value("mend", "")});
  }
  return report;
}

std::string RefusedRules(const std::string& json) {
  if (json.empty()) return {};
  std::string lines;
  const Json root = Json::parse(json);
  for (const Json& file : root.value("files", Json::array())) {
    const std::string error = file.value("error", "");
    if (!error.empty()) lines += (lines.empty() ? "" : "\n") + error;
  }
  return lines;
}

SaleTotals ReadTotals(const std::string& json) {
  const Json totals = Json::parse(json).at("totals");
  return {totals.at("beforeCents").get<double>(), totals.at("toPayCents").get<double>()};
}

std::string Quoted(const std::string& text) {
  constexpr int kOneLine = -1;
  // A file's name may be no UTF-8.
  return Json(text).dump(kOneLine, ' ', false, Json::error_handler_t::replace);
}

}  // namespace Corvane::Tool
