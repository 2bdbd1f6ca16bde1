#include <iostream>

#include "Commands.h"
#include "ExplainReport.h"
#include "SaleRun.h"
#include "Store.h"
#include "Terminal.h"

namespace Corvane::Tool {
namespace {

/// Prints what the command asks for.
void Print(const ExplainCommand& command, const SaleView& sale, const std::vector<std::string>& results) {
  const Store store(command.store);
  const Paint paint(stdout);
  const Sentences sentences(command.language);
  std::vector<Explanation> steps;
  steps.reserve(results.size());
  for (const std::string& result : results) steps.push_back(ReadExplanation(result));
  const ExplainReport report(std::cout, paint, store, sentences, sale, std::move(steps));
  if (!command.rule.empty()) report.RequireRule(command.rule);
  if (command.line) report.RequireLine(*command.line);
  report.PrintHeader();
  if (!command.rule.empty()) {
    report.PrintRule(command.rule, command.line ? &*command.line : nullptr);
  } else if (command.line) {
    report.PrintLine(*command.line);
  } else {
    report.PrintAll();
  }
}

}  // namespace

int RunExplain(const ExplainCommand& command) {
  const std::vector<LoadedStep> steps = LoadSteps(command.steps, command.isLenient);
  const Till till(command.store, command.isLenient);
  SaleRun sale(till, "1");
  std::vector<std::string> results;
  Answer answer;
  for (const LoadedStep& loaded : steps) {
    answer = sale.Take(loaded, QNC_EXPLAIN);
    results.push_back(answer.result);
  }
  if (command.asJson) {
    std::cout << ExplanationsAsJson(results) << "\n";
  } else {
    Print(command, sale.View(), results);
  }
  // A choice of gifts that is refused is explained all the same.
  RequireSuccess(steps.back(), answer);
  return 0;
}

}  // namespace Corvane::Tool
