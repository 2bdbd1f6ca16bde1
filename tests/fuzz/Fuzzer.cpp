// The face of a target to libFuzzer.
#include <unistd.h>

#include <filesystem>
#include <string>
#include <vector>

#include "tests/fuzz/Shop.h"
#include "tests/fuzz/Target.h"

namespace {

namespace fs = std::filesystem;

/// The target leaves the directory in which it was started: paths are made absolute, and findings are put where they
/// would be without that.
std::string AbsolutePath(const std::string& argument) {
  if (argument.empty()) return argument;
  if (argument.front() != '-') return fs::absolute(argument).string();
  for (const std::string flag : {"-dict=", "-artifact_prefix=", "-merge_control_file="}) {
    if (argument.rfind(flag, 0) == 0) return flag + fs::absolute(argument.substr(flag.size())).string();
  }
  return argument;
}

/// libFuzzer starts itself again to merge a corpus, by the name that it was started by.
void KeepProgram(char** argv) {
  if (argv[0][0] == '/') return;
  std::string program = fs::read_symlink("/proc/self/exe").string();
  argv[0] = program.data();
  execv(argv[0], argv);
}

void KeepPaths(int* argc, char*** argv) {
  static std::vector<std::string> texts = {"-artifact_prefix=./"};
  texts.insert(texts.end(), *argv + 1, *argv + *argc);
  // libFuzzer insists on the first as it was.
  static std::vector<char*> arguments{(*argv)[0]};
  for (std::string& text : texts) {
    text = AbsolutePath(text);
    arguments.push_back(text.data());
  }
  arguments.push_back(nullptr);
  *argc = static_cast<int>(texts.size()) + 1;
  *argv = arguments.data();
}

}  // namespace

// The names are libFuzzer's.
// NOLINTBEGIN(readability-identifier-naming)
extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv) {
  KeepProgram(*argv);
  KeepPaths(argc, argv);
  Corvane::Fuzz::EnterFolder();
  Corvane::Fuzz::Prepare();
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Corvane::Fuzz::Try({data, size});
  return 0;
}
// NOLINTEND(readability-identifier-naming)
