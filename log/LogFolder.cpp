#include "log/LogFolder.h"

#include <utility>

#include "base/NeverDestroyed.h"

namespace Corvane {

namespace {

constexpr const char* kFileName = "QnCorvane.txt";

/// Empty for the current directory.
std::string& PathInFolder() noexcept {
  static NeverDestroyed<std::string> path;
  return *path;
}

}  // namespace

void SetLogFolder(const std::string& folder) {
  std::string path = folder.empty() ? folder : folder + "/" + kFileName;
  PathInFolder() = std::move(path);
}

const char* LogFileName() noexcept { return PathInFolder().empty() ? kFileName : PathInFolder().c_str(); }

}  // namespace Corvane
