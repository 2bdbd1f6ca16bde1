#include "tests/faults/Trial.h"

#include <sys/mman.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <string>

#include "tests/faults/Child.h"
#include "tests/faults/Shop.h"

namespace faults {

namespace {

/// Results in memory that forked processes share, so that one may learn for all.
struct Learnt {
  std::size_t Length;
  std::array<char, 1U << 18U> Text;
};

Learnt& Shared() {
  static auto* const shared =
      static_cast<Learnt*>(mmap(nullptr, sizeof(Learnt), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0));
  if (shared == MAP_FAILED) std::abort();
  return *shared;
}

void Keep(std::string_view results) {
  Learnt& learnt = Shared();
  learnt.Length = results.copy(learnt.Text.data(), learnt.Text.size());
}

}  // namespace

Sweep ReadSweep(int count, char** arguments) {
  constexpr long kSecondsOfADay = 86400;
  Sweep sweep;
  sweep.Seed = static_cast<long>(std::time(nullptr)) / kSecondsOfADay;
  for (int place = 1; place + 1 < count; ++place) {
    const long number = std::strtol(arguments[place + 1], nullptr, 10);
    if (std::strcmp(arguments[place], "--every") == 0 && number > 0) sweep.Every = number;
    if (std::strcmp(arguments[place], "--seed") == 0) sweep.Seed = number;
  }
  return sweep;
}

const char* LearnTill() {
  for (int attempt = 0; attempt < 2; ++attempt) {
    if (const char* const failed = WholeTill()) return failed;
    if (attempt > 0 && Results() != LearntResults()) return "the second till gives other results than the first";
    Keep(Results());
  }
  std::string missing;
  if (EachRuleGives(LearntResults(), missing)) return nullptr;
  std::fprintf(stderr, "nothing of the rule %s\n", missing.c_str());
  return "a rule gives nothing";
}

const char* LearnTillAhead() {
  Shared();  // made here, for both processes
  return InChild([] { return LearnTill() == nullptr ? 0 : 1; }).Code == 0 ? nullptr : "a till fails by itself";
}

const char* JudgeTill() {
  if (!Clean()) return "rules and sales can't be cleared";
  if (const char* const failed = WholeTill()) return failed;
  return Results() == LearntResults() ? nullptr : "the till gives other results";
}

std::string_view LearntResults() { return {Shared().Text.data(), Shared().Length}; }

long LearnNumber(const std::function<long()>& measure) {
  std::array<int, 2> ends{};
  if (pipe(ends.data()) != 0) return -1;
  InChild([&] {
    const long number = measure();
    return write(ends[1], &number, sizeof number) == sizeof number ? 0 : 1;
  });
  close(ends[1]);
  long number = -1;
  if (read(ends[0], &number, sizeof number) != sizeof number) number = -1;
  close(ends[0]);
  return number;
}

}  // namespace faults
