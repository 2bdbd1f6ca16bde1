// Runs a target over files, without libFuzzer: TARGET FILE-OR-FOLDER...
#include <cstdio>
#include <filesystem>
#include <set>
#include <string>

#include "tests/fuzz/Shop.h"
#include "tests/fuzz/Target.h"

namespace fs = std::filesystem;

int main(int argc, char** argv) {
  std::set<std::string> files;
  for (int i = 1; i < argc; ++i) {
    const fs::path path = fs::absolute(argv[i]);
    if (!fs::is_directory(path)) {
      files.insert(path.string());
      continue;
    }
    for (const fs::directory_entry& entry : fs::directory_iterator(path)) files.insert(entry.path().string());
  }
  if (files.empty()) {
    std::fprintf(stderr, "No input.\n");
    return 2;
  }
  Corvane::Fuzz::EnterFolder();
  Corvane::Fuzz::Prepare();
  for (const std::string& file : files) {
    // A failure ends the process: the last name is that of the input.
    std::printf("%s\n", file.c_str());
    std::fflush(stdout);
    const std::string input = Corvane::Fuzz::FileText(file);
    Corvane::Fuzz::Try({reinterpret_cast<const std::uint8_t*>(input.data()), input.size()});
  }
  std::printf("%zu inputs\n", files.size());
}
