// Runs a workload on a library of the engine.
//
//   workload WORLD [--library FILE] --times N   tells what a pass costs: the median of N, behind one that warms up
//   workload WORLD [--library FILE] --serve     answers what the standard input asks: bench/Passes.h
//   workload WORLD [--library FILE] --record    one pass for the recorder, behind one that warms up
//   workload WORLD [--library FILE] --count     one pass in CountedPass for callgrind, behind one that warms up
//
// WORLD is a folder that bench/worlds.py has made, or a copy of one: settings, store and three files of calls, "open"
// (once), "pass" (what is measured) and "tidy" (behind each pass). The log is written there, as at a till. The library
// is the one that was built along with this program unless told.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "bench/Calls.h"
#include "bench/Engine.h"
#include "bench/Passes.h"
#include "bench/Recording.h"

/// A pass under a name that callgrind finds.
extern "C" [[gnu::noinline]] void CountedPass(const Bench::Passes& passes) { passes.Run(); }

namespace {

struct Wish {
  std::filesystem::path World;
  std::filesystem::path Library = std::filesystem::canonical("/proc/self/exe").parent_path() / "../lib/libQNCORVANE.so";
  std::string What;
  std::int64_t Times = 0;
};

Wish WishOf(const std::vector<std::string>& words) {
  Wish wish;
  for (std::size_t place = 0; place < words.size(); ++place) {
    const std::string& word = words[place];
    const bool hasNext = place + 1 < words.size();
    if (word == "--library" && hasNext) {
      wish.Library = words[++place];
    } else if (word == "--times" && hasNext) {
      wish.What = word;
      wish.Times = std::atoll(words[++place].c_str());
    } else if (word.rfind("--", 0) == 0) {
      wish.What = word;
    } else {
      wish.World = word;
    }
  }
  return wish;
}

void RecordPass(const Bench::Passes& passes) {
  passes.Run();
  passes.TidyUp();
  Bench::RecordNow(true);
  passes.Run();
  Bench::RecordNow(false);
}

void CountPass(const Bench::Passes& passes) {
  passes.Run();
  passes.TidyUp();
  CountedPass(passes);
}

void Run(const Wish& wish, const Bench::Passes& passes) {
  if (wish.What == "--times") return Bench::Tell(passes, wish.Times);
  if (wish.What == "--serve") return Bench::Serve(passes);
  if (wish.What == "--record") return RecordPass(passes);
  if (wish.What == "--count") return CountPass(passes);
  Bench::Fail("workload WORLD [--library FILE] --times N | --serve | --record | --count");
}

}  // namespace

int main(int argc, char** argv) {
  const Wish wish = WishOf({argv + 1, argv + argc});
  Bench::Engine engine(std::filesystem::absolute(wish.Library));
  std::error_code missing;
  std::filesystem::current_path(wish.World, missing);
  const std::vector<Bench::Call> calls = Bench::ReadCalls("pass");
  const std::vector<Bench::Call> tidy = Bench::ReadCalls("tidy");
  if (missing || calls.empty()) Bench::Fail("no workload in '" + wish.World.string() + "'");
  engine.Make(Bench::ReadCalls("open"));
  Run(wish, {[&] { engine.Make(calls); }, [&] { engine.Make(tidy); }, [&] { return engine.DigestOf(calls); }});
  return 0;
}
