#include <iostream>

#include "Commands.h"
#include "Completions.h"
#include "Manual.h"
#include "XmlFile.h"

namespace Corvane::Tool {
namespace {

std::string Generated(const std::string& kind) {
  const ProgramText text = DescribeProgram();
  if (kind == "man") return ManualPage(text);
  if (kind == "bash") return BashCompletion(text);
  if (kind == "zsh") return ZshCompletion(text);
  return FishCompletion(text);
}

}  // namespace

int RunGenerate(const GenerateCommand& command) {
  const std::string text = Generated(command.kind);
  if (command.file.empty()) {
    std::cout << text;
  } else {
    WriteFile(command.file, text);
  }
  return 0;
}

}  // namespace Corvane::Tool
