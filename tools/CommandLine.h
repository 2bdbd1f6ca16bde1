#ifndef TOOLS_COMMANDLINE_H
#define TOOLS_COMMANDLINE_H

#include <filesystem>
#include <string>
#include <vector>

namespace Corvane::Tool {

/// One call of the engine: a mode and the sale XML that goes with it.
struct Step {
  std::string mode;
  /// Absolute; empty for a step that brings nothing new and works on what the engine holds of the sale.
  std::filesystem::path saleFile;
};

/// The command line, checked: every path is absolute, every mode is one of the engine's, the first step has a file.
struct CommandLine {
  bool help = false;
  /// Print the last step's result XML alone, byte for byte.
  bool rawResult = false;
  std::filesystem::path store;
  /// Where the last result is written; empty: nowhere.
  std::filesystem::path resultFile;
  std::string key = "1";
  std::vector<Step> steps;
};

/// @throws ToolError with the usage exit code when the arguments make no sense.
CommandLine ParseCommandLine(const std::vector<std::string>& arguments);

/// The text of --help.
const char* HelpText();

}  // namespace Corvane::Tool

#endif
