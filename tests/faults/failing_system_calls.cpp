// File calls of the system that fail: the n-th of a call of the engine, for every n that it makes on the log, the
// settings and the database, each with every error that a disk has; and once more all of them from the n-th on. Each
// call of the engine answers. Once the failures end, the same till gives the same results as before.
//
//   failing_system_calls [--every N] [--seed S]
//   failing_system_calls STEP CALL ERROR one|all
//
// Runs in a copy of the sample store. With N it takes one of so many failures. STEP -1 is a whole till of an engine
// that nobody has called yet. With the four arguments only that call fails, in this process, for a look at it.
#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "tests/faults/Child.h"
#include "tests/faults/Shop.h"
#include "tests/faults/Trial.h"
#include "tests/faults/interposer.h"

namespace {

using faults::Tally;

constexpr long kFirstTill = -1;
constexpr long kFew = 10;
constexpr long kCallsForSettings = 20;  // more than Qt makes to read them

struct Failure {
  long Calls;
  int Error;
  bool AllBehind;
};

constexpr std::array<int, 7> kErrors = {EIO, ENOSPC, EACCES, EMFILE, EINTR, EAGAIN, kHalfOfIt};
/// For good only what lasts: a call that is interrupted or may be made again soon is made again, and a lock that others
/// hold (EACCES, EAGAIN) is waited for.
constexpr std::array<int, 4> kLastingErrors = {EIO, ENOSPC, EPERM, EMFILE};

/// @return whether the calls answered as they may.
bool Run(long place) {
  if (place == kFirstTill) {
    for (std::size_t step = 0; step < faults::StepCount(); ++step) {
      const int code = faults::StepAt(step).Run();
      if (code != 0 && code != -1) return false;
    }
    return true;
  }
  const int code = faults::StepAt(static_cast<std::size_t>(place)).Run();
  return code == 0 || code == -1;
}

const char* NameOf(long place) {
  return place == kFirstTill ? "the first till" : faults::StepAt(static_cast<std::size_t>(place)).Name;
}

int RunWith(long place, const Failure& failure) {
  FailAfter(failure.Calls, failure.Error, failure.AllBehind ? 1 : 0);
  const bool answered = Run(place);
  EndFailures();
  const char* const wrong = answered ? faults::JudgeTill() : "the answer is none that the call has";
  if (wrong == nullptr) return 0;
  std::fprintf(stderr, "behind a failure of %s: %s (%s)\n", LastFailed(), wrong, faults::LastMessage());
  return 1;
}

void Try(long place, const Failure& failure, Tally& tally) {
  const faults::Ending end = faults::InChild([&] { return RunWith(place, failure); });
  ++tally.Tried;
  if (end.Code == 0) return;
  ++tally.Failures;
  std::fprintf(stderr, "%s; to see it: failing_system_calls %ld %ld %d %s: %s\n", NameOf(place), place, failure.Calls,
               failure.Error, failure.AllBehind ? "all" : "one", end.Text().c_str());
}

/// All calls of a step, from a process in which all steps before it are done.
void SweepStep(long place, const faults::Sweep& sweep, Tally& tally) {
  const long calls = faults::LearnNumber([&] {
    const long before = SystemCalls();
    Run(place);
    return SystemCalls() - before;
  });
  std::printf("%-28s %5ld calls\n", NameOf(place), calls);
  std::fflush(stdout);
  if (calls < 0) ++tally.Failures;
  for (long call = 0; call < calls; ++call) {
    // The calls that read the settings are tried all, unless there is time for few at all.
    const bool isWanted = place == kFirstTill && call < kCallsForSettings && sweep.Every < kFew;
    const auto chooses = [&] { return sweep.Chooses(tally.Points++) || isWanted; };
    for (const int error : kErrors) {
      if (chooses()) Try(place, {call, error, false}, tally);
    }
    for (const int error : kLastingErrors) {
      if (chooses()) Try(place, {call, error, true}, tally);
    }
  }
}

int SweepAll(const faults::Sweep& sweep) {
  Tally tally;
  SweepStep(kFirstTill, sweep, tally);
  if (const char* const wrong = faults::LearnTill()) {
    std::fprintf(stderr, "without any failure: %s\n", wrong);
    return 2;
  }
  for (std::size_t place = 0; place < faults::StepCount(); ++place) {
    SweepStep(static_cast<long>(place), sweep, tally);
    faults::StepAt(place).Run();
  }
  std::printf("failing_system_calls: %ld failures possible, every %ld. with seed %ld, %ld tried, %ld not survived\n",
              tally.Points, sweep.Every, sweep.Seed, tally.Tried, tally.Failures);
  return tally.Failures == 0 && tally.Tried > 0 ? 0 : 1;
}

int RunOne(char** arguments) {
  const long place = std::strtol(arguments[0], nullptr, 10);
  if (place >= 0) faults::BeginTill(static_cast<std::size_t>(place));
  const bool allBehind = std::strcmp(arguments[3], "all") == 0;
  return RunWith(place, {std::strtol(arguments[1], nullptr, 10),
                         static_cast<int>(std::strtol(arguments[2], nullptr, 10)), allBehind});
}

}  // namespace

int main(int count, char** arguments) {
  WatchCurrentDirectory();
  if (!faults::ReadShop() || faults::LearnTillAhead() != nullptr) return 2;
  return count == 5 ? RunOne(arguments + 1) : SweepAll(faults::ReadSweep(count, arguments));
}
