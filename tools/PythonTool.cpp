#include "PythonTool.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <iostream>

#include "ToolError.h"
#include "qncorvane/host.h"

namespace Corvane::Tool {
namespace {

constexpr const char* kPython = "python3";
// A file of the current directory is never taken for a module.
constexpr const char* kSafePath = "-P";

/// The arguments as the system's calls take them; they point into `words`.
std::vector<char*> ArgumentsOf(std::vector<std::string>& words) {
  std::vector<char*> pointers;
  pointers.reserve(words.size() + 1);
  for (std::string& word : words) pointers.push_back(word.data());
  pointers.push_back(nullptr);
  return pointers;
}

/// @return whether Python can load the module; whatever it prints goes nowhere.
bool CanLoad(const std::string& module) {
  std::vector<std::string> words = {kPython, kSafePath, "-c", "import " + module};
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
  posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
  posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
  pid_t child = -1;
  const int failure = posix_spawnp(&child, kPython, &actions, nullptr, ArgumentsOf(words).data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  if (failure != 0) return false;
  int status = 0;
  while (waitpid(child, &status, 0) < 0) {
    if (errno != EINTR) return false;
  }
  return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

/// Names the file of the library to the package, unless the environment names one already.
void NameLibrary() {
  Dl_info library{};
  if (dladdr(reinterpret_cast<const void*>(&qnc_version), &library) == 0 || library.dli_fname == nullptr) return;
  constexpr int kKeepOther = 0;
  setenv("QNCORVANE_HOST_LIBRARY", library.dli_fname, kKeepOther);
}

}  // namespace

void BecomePythonTool(const std::string& module, const std::vector<std::string>& arguments) {
  if (!CanLoad(module)) {
    throw ToolError(
        "this command needs Python 3.11 with the package qncorvane: install Debian's package "
        "python3-qncorvane");
  }
  NameLibrary();
  std::vector<std::string> words = {kPython, kSafePath, "-m", module};
  words.insert(words.end(), arguments.begin(), arguments.end());
  std::cout.flush();
  execvp(kPython, ArgumentsOf(words).data());
  throw ToolError(std::string(kPython) + ": " + std::strerror(errno));
}

}  // namespace Corvane::Tool
