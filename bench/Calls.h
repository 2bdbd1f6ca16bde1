#ifndef QNCORVANE_BENCH_CALLS_H
#define QNCORVANE_BENCH_CALLS_H

#include <filesystem>
#include <string>
#include <vector>

namespace Bench {

/// One call of the engine: the exported function's name and the texts that go into it.
struct Call {
  std::string Name;
  std::vector<std::string> Texts;
};

/// Reads a file of calls, as bench/worlds.py writes them: for each call a line with its name and the length of each
/// text, then the texts, then a newline. A file that isn't there holds no calls; a broken one ends the program.
std::vector<Call> ReadCalls(const std::filesystem::path& path);

/// Ends the program with a message: there is nothing to measure.
[[noreturn]] void Fail(const std::string& what);

}  // namespace Bench

#endif
