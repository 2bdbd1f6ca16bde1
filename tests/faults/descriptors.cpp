// Descriptors that are used up: from before the first call of a process on, all or all but a few, and for the time of
// each single call of a till. Each call answers; once there are descriptors again, the till gives what it always gives.
// No call keeps a descriptor that it opened.
//
//   descriptors
//
// Runs in a copy of the sample store.
#include <dirent.h>
#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>

#include "tests/faults/Child.h"
#include "tests/faults/Shop.h"
#include "tests/faults/Trial.h"

namespace {

constexpr rlim_t kMost = 64;  // so that few have to be opened
std::array<int, kMost> g_taken{};
std::size_t g_takenCount = 0;

void TakeAllBut(std::size_t left) {
  g_takenCount = 0;
  for (int taken = open("/dev/null", O_RDONLY | O_CLOEXEC); taken >= 0;
       taken = open("/dev/null", O_RDONLY | O_CLOEXEC)) {
    g_taken.at(g_takenCount++) = taken;
  }
  for (; left > 0 && g_takenCount > 0; --left) close(g_taken.at(--g_takenCount));
}

void GiveBack() {
  while (g_takenCount > 0) close(g_taken.at(--g_takenCount));
}

int Open() {
  int count = 0;
  for (int descriptor = 0; descriptor < static_cast<int>(kMost); ++descriptor) {
    if (fcntl(descriptor, F_GETFD) >= 0) ++count;
  }
  return count;
}

int Report(const char* when, std::size_t left, const char* wrong) {
  if (wrong == nullptr) return 0;
  std::fprintf(stderr, "descriptors: %zu left %s: %s (%s)\n", left, when, wrong, faults::LastMessage());
  return 1;
}

/// A whole till of an engine that nobody has called yet.
int FirstTillWith(std::size_t left) {
  TakeAllBut(left);
  for (std::size_t step = 0; step < faults::StepCount(); ++step) {
    const int code = faults::StepAt(step).Run();
    if (code != 0 && code != -1) return Report("from the first call on", left, "an answer is none that the call has");
  }
  GiveBack();
  return Report("from the first call on", left, faults::JudgeTill());
}

/// One call of a till without descriptors.
int OneCallWith(std::size_t left, std::size_t place) {
  TakeAllBut(left);
  const faults::Step& step = faults::StepAt(place);
  const int code = step.Run();
  GiveBack();
  if (code != 0 && code != -1) return Report(step.Name, left, "the answer is none that the call has");
  return Report(step.Name, left, faults::JudgeTill());
}

/// All tills of a process hold as many descriptors as its first.
int HoldsNoMore() {
  faults::WholeTill();
  const int before = Open();
  for (std::size_t step = 0; step < faults::StepCount(); ++step) {
    faults::StepAt(step).Run();
    if (Open() > before + 1) return Report(faults::StepAt(step).Name, kMost, "a call keeps descriptors");
  }
  return Report("a till", kMost, Open() == before ? nullptr : "a till keeps descriptors");
}

}  // namespace

int main() {
  const rlimit limit = {kMost, kMost};
  if (setrlimit(RLIMIT_NOFILE, &limit) != 0 || !faults::ReadShop()) return 2;
  if (faults::LearnTillAhead() != nullptr) return 2;
  int tried = 0;
  int failures = 0;
  const auto count = [&](const faults::Ending& end) {
    ++tried;
    if (end.Code == 0) return;
    ++failures;
    std::fprintf(stderr, "descriptors: trial %d: %s\n", tried, end.Text().c_str());
  };
  for (std::size_t left = 0; left < 8; ++left) count(faults::InChild([&] { return FirstTillWith(left); }));
  count(faults::InChild(HoldsNoMore));
  faults::WholeTill();
  for (std::size_t place = 0; place < faults::StepCount(); ++place) {
    for (std::size_t left = 0; left < 3; ++left) count(faults::InChild([&] { return OneCallWith(left, place); }));
    faults::StepAt(place).Run();
  }
  std::printf("descriptors: %d tried, %d not survived\n", tried, failures);
  return failures == 0 ? 0 : 1;
}
