#ifndef TOOLS_COMMANDS_H
#define TOOLS_COMMANDS_H

#include "CommandLine.h"

namespace Corvane::Tool {

/// Each does what the command line asks for and prints it.
///
/// @return the exit code.
/// @throws ToolError when it can't be done.
int RunCalc(const CalcCommand& command);
int RunInit(const InitCommand& command);
int RunCheck(const CheckCommand& command);
int RunLint(const LintCommand& command);
int RunExplain(const ExplainCommand& command);
/// Ends in another program: it doesn't come back.
int RunTill(const TillCommand& command);
int RunGenerate(const GenerateCommand& command);

/// "calc" for a folder of sales.
int RunCalcFolder(const CalcCommand& command);

}  // namespace Corvane::Tool

#endif
