// Memory that is refused at the n-th request, for every n that a call makes, in each call of a till with rules of all
// types; and once more with all requests of the call from the n-th on. Each call answers. Behind it the same till gives
// the same results as before, and holds not a block more than it held without the refusal.
//
//   refused_memory [--every N] [--seed S]
//   refused_memory STEP REQUEST one|all
//
// Runs in a copy of the sample store. With N it takes one request in so many, which ones by the seed (the day, unless
// told); the closing line says how many there were. With STEP and REQUEST only that one is refused, in this process, for
// a look at it.
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "tests/faults/Child.h"
#include "tests/faults/Refusals.h"
#include "tests/faults/Shop.h"
#include "tests/faults/Trial.h"

namespace {

using faults::Held;
using faults::Tally;

/// TinyXML can't give back what it has read of an XML when it is refused more: for the shop's sale, up to 230 blocks. Nothing
/// else may stay behind.
constexpr long kMostLost = 230;

Held g_held;  // behind a till that lacks nothing

/// The step short of memory, and a till behind it. @return null, or what is wrong.
const char* RefuseOnce(std::size_t place, long granted, bool allBehind) {
  faults::RefuseAfter(granted, allBehind);
  const int code = faults::StepAt(place).Run();
  faults::EndRefusals();
  return code == 0 || code == -1 ? faults::JudgeTill() : "the answer is none that the call has";
}

/// How many blocks each refusal leaves behind. What is made once may be larger behind the first: a connection that is
/// opened anew, a text that is kept. So the same refusal comes again, and once more.
long LostBlocks(std::size_t place, long granted, bool allBehind) {
  long before = g_held.Blocks;
  long lost = faults::HeldNow().Blocks - before;
  for (int again = 0; again < 2 && lost > 0; ++again) {
    before = faults::HeldNow().Blocks;
    faults::BeginTill(place);
    if (RefuseOnce(place, granted, allBehind) != nullptr) return kMostLost + 1;
    lost = faults::HeldNow().Blocks - before;
  }
  return lost;
}

/// A till of this process, which has a connection of its own then: Qt makes settings and driver once, and doesn't survive
/// a refusal in that.
bool Prepare(std::size_t place) {
  for (int till = 0; till < 2; ++till) {
    if (faults::WholeTill() != nullptr) return false;
  }
  g_held = faults::HeldNow();
  faults::BeginTill(place);
  return true;
}

int RunShortOf(std::size_t place, long granted, bool allBehind) {
  const char* wrong = Prepare(place) ? RefuseOnce(place, granted, allBehind) : "the till before it fails";
  const long lost = wrong == nullptr ? LostBlocks(place, granted, allBehind) : 0;
  if (lost > kMostLost) wrong = "each refusal leaves more behind than an XML";
  if (wrong == nullptr && faults::LeakCheckFinds()) wrong = "what the call had can't be reached";
  if (wrong == nullptr) return 0;
  std::fprintf(stderr, "%s (%ld blocks; %s)\n", wrong, lost, faults::LastMessage());
  return 1;
}

void Try(std::size_t place, long granted, bool allBehind, Tally& tally) {
  const faults::Ending end = faults::InChild([&] { return RunShortOf(place, granted, allBehind); });
  ++tally.Tried;
  if (end.Code == 0) return;
  ++tally.Failures;
  std::fprintf(stderr, "%s; to see it: refused_memory %zu %ld %s: %s\n", faults::StepAt(place).Name, place, granted,
               allBehind ? "all" : "one", end.Text().c_str());
}

/// All requests of a step, each in a process that has done all steps before it.
void SweepStep(std::size_t place, const faults::Sweep& sweep, Tally& tally) {
  const long requests = faults::LearnNumber([&] {
    if (!Prepare(place)) return -1L;
    const long before = faults::Requests();
    faults::StepAt(place).Run();
    return faults::Requests() - before;
  });
  std::printf("%-28s %5ld requests\n", faults::StepAt(place).Name, requests);
  std::fflush(stdout);
  if (requests < 0) ++tally.Failures;
  for (long granted = 0; granted < requests; ++granted) {
    if (!sweep.Chooses(tally.Points++)) continue;
    Try(place, granted, false, tally);
    Try(place, granted, true, tally);
  }
}

int SweepAll(const faults::Sweep& sweep) {
  Tally tally;
  for (std::size_t place = 0; place < faults::StepCount(); ++place) {
    SweepStep(place, sweep, tally);
  }
  std::printf("refused_memory: %ld requests, every %ld. with seed %ld, %ld refusals tried, %ld not survived\n",
              tally.Points, sweep.Every, sweep.Seed, tally.Tried, tally.Failures);
  return tally.Failures == 0 && tally.Tried > 0 ? 0 : 1;
}

}  // namespace

int main(int count, char** arguments) {
  if (!faults::ReadShop() || faults::LearnTillAhead() != nullptr) return 2;
  if (count != 4) return SweepAll(faults::ReadSweep(count, arguments));
  return RunShortOf(static_cast<std::size_t>(std::strtol(arguments[1], nullptr, 10)),
                    std::strtol(arguments[2], nullptr, 10), std::strcmp(arguments[3], "all") == 0);
}
