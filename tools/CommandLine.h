#ifndef TOOLS_COMMANDLINE_H
#define TOOLS_COMMANDLINE_H

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "ProgramText.h"

namespace Corvane::Tool {

/// One call of the engine: a mode and the sale XML that goes with it.
struct Step {
  std::string mode;
  /// "-" is standard input; empty for a step that brings nothing new and works on what the engine holds of the sale.
  std::filesystem::path saleFile;
};

/// How a calculation's result is shown.
enum class Form { receipt, xml, json };

/// "calc", checked: every mode is one of the engine's, and the first step has a file, or the folder is given.
struct CalcCommand {
  std::filesystem::path store;
  std::vector<Step> steps;
  /// A folder of sales, each for the first step; empty for one sale alone.
  std::filesystem::path salesFolder;
  std::string key = "1";
  /// Where the last result is written, for a folder of sales the folder of the results; empty: nowhere.
  std::filesystem::path resultPath;
  Form form = Form::receipt;
  /// XML is read as far as it goes.
  bool isLenient = false;
};

/// "init".
struct InitCommand {
  std::filesystem::path folder;
  std::string type = "PTXS";
};

/// "check".
struct CheckCommand {
  std::filesystem::path store;
  bool asJson = false;
};

/// "lint".
struct LintCommand {
  std::filesystem::path store;
  bool asJson = false;
  /// Below each finding what to do.
  bool withMends = false;
};

/// "explain", checked: every mode is one of the engine's, the first step has a file, the language is one that there is.
struct ExplainCommand {
  std::filesystem::path store;
  std::vector<Step> steps;
  /// The `BillNo` of the rule to tell more of; empty: all of them.
  std::string rule;
  /// The `SerialNo` of the line to tell more of.
  std::optional<std::int64_t> line;
  std::string language;
  bool asJson = false;
  /// XML is read as far as it goes.
  bool isLenient = false;
};

/// "till", checked: the language is one that there is.
struct TillCommand {
  std::filesystem::path store;
  std::string language;
  /// "-" is standard input; empty for the screen.
  std::filesystem::path script;
  std::string key = "till";
};

/// "generate": a page or a completion, made from the definitions of the commands.
struct GenerateCommand {
  std::string kind;
  /// Empty: standard output.
  std::filesystem::path file;
};

/// A text that was asked for, such as that of --help.
struct PrintCommand {
  std::string text;
};

using Command = std::variant<CalcCommand, InitCommand, CheckCommand, LintCommand, ExplainCommand, TillCommand,
                             GenerateCommand, PrintCommand>;

/// @param arguments those behind the program's name.
/// @throws ToolError with the usage exit code when the arguments make no sense.
Command ParseCommandLine(const std::vector<std::string>& arguments);

/// @return what the definitions of the commands say, for help, manual and completions.
ProgramText DescribeProgram();

}  // namespace Corvane::Tool

#endif
