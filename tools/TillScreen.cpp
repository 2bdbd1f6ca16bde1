#include "Commands.h"
#include "PythonTool.h"

namespace Corvane::Tool {

int RunTill(const TillCommand& command) {
  std::vector<std::string> arguments = {"--store=" + command.store.string(), "--lang=" + command.language,
                                        "--key=" + command.key};
  if (!command.script.empty()) arguments.push_back("--script=" + command.script.string());
  BecomePythonTool("qncorvane.till", arguments);
}

}  // namespace Corvane::Tool
