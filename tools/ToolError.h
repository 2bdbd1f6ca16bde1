#ifndef TOOLS_TOOLERROR_H
#define TOOLS_TOOLERROR_H

#include <stdexcept>
#include <string>

namespace Corvane::Tool {

/// What ends the program: the text goes to stderr, the code to the shell.
class ToolError : public std::runtime_error {
 public:
  /// Something the program was pointed at is wrong, or the engine refused.
  static constexpr int kFailed = 1;
  /// The command line itself is wrong.
  static constexpr int kUsage = 2;

  explicit ToolError(const std::string& text, int exitCode = kFailed)
      : std::runtime_error(text), m_exitCode(exitCode) {}

  [[nodiscard]] int ExitCode() const { return m_exitCode; }

 private:
  int m_exitCode;
};

}  // namespace Corvane::Tool

#endif
