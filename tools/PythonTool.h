#ifndef TOOLS_PYTHONTOOL_H
#define TOOLS_PYTHONTOOL_H

#include <string>
#include <vector>

namespace Corvane::Tool {

/// Hands this process over to a module of the Python package, which takes its input, its output and its exit code. The module
/// calls the library that this program has.
///
/// @param module e.g. "qncorvane.till".
/// @throws ToolError when there is no Python, or no such module.
[[noreturn]] void BecomePythonTool(const std::string& module, const std::vector<std::string>& arguments);

}  // namespace Corvane::Tool

#endif
