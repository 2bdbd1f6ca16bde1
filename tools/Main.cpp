#include <cstdio>
#include <exception>
#include <iostream>
#include <string>
#include <variant>
#include <vector>

#include "Commands.h"
#include "Terminal.h"
#include "ToolError.h"

namespace Corvane::Tool {
namespace {

/// Each alternative of a command has its own way to run.
struct Runner {
  int operator()(const CalcCommand& command) const { return RunCalc(command); }
  int operator()(const InitCommand& command) const { return RunInit(command); }
  int operator()(const CheckCommand& command) const { return RunCheck(command); }
  int operator()(const LintCommand& command) const { return RunLint(command); }
  int operator()(const ExplainCommand& command) const { return RunExplain(command); }
  int operator()(const TillCommand& command) const { return RunTill(command); }
  int operator()(const GenerateCommand& command) const { return RunGenerate(command); }
  int operator()(const PrintCommand& command) const {
    std::cout << command.text;
    return 0;
  }
};

int Run(const std::vector<std::string>& arguments) {
  const int exitCode = std::visit(Runner{}, ParseCommandLine(arguments));
  std::cout.flush();
  if (!std::cout) throw ToolError("the output can't be written");
  return exitCode;
}

int Fail(const char* text, int exitCode) {
  std::cout.flush();
  std::fprintf(stderr, "%s %s\n", Paint(stderr).Red("qncorvane:").c_str(), text);
  return exitCode;
}

}  // namespace
}  // namespace Corvane::Tool

int main(int argc, char** argv) {
  using Corvane::Tool::ToolError;
  try {
    return Corvane::Tool::Run(std::vector<std::string>(argv + (argc > 0 ? 1 : 0), argv + argc));
  } catch (const ToolError& error) {
    return Corvane::Tool::Fail(error.what(), error.ExitCode());
  } catch (const std::exception& error) {
    return Corvane::Tool::Fail(error.what(), ToolError::kFailed);
  }
}
