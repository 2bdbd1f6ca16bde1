#include "bench/Passes.h"

#include <malloc.h>

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <ctime>
#include <fstream>
#include <iostream>
#include <string>
#include <vector>

#include "bench/Calls.h"

namespace Bench {

namespace {

std::int64_t Now(clockid_t clock) {
  timespec now{};
  clock_gettime(clock, &now);
  return std::int64_t{now.tv_sec} * 1000000000 + now.tv_nsec;
}

Duration TimeOne(const Passes& passes) {
  const Duration start{Now(CLOCK_PROCESS_CPUTIME_ID), Now(CLOCK_MONOTONIC)};
  passes.Run();
  const Duration taken{Now(CLOCK_PROCESS_CPUTIME_ID) - start.Cpu, Now(CLOCK_MONOTONIC) - start.Wall};
  passes.TidyUp();
  return taken;
}

std::int64_t Median(const std::vector<Duration>& durations, std::int64_t Duration::*clock) {
  std::vector<std::int64_t> times;
  times.reserve(durations.size());
  for (const Duration& duration : durations) times.push_back(duration.*clock);
  const auto middle = times.begin() + static_cast<std::ptrdiff_t>(times.size() / 2);
  std::nth_element(times.begin(), middle, times.end());
  return *middle;
}

std::size_t HeldBytes() {
  const struct mallinfo2 heap = mallinfo2();
  return heap.uordblks + heap.hblkhd;
}

/// The kernel's own number: the one of getrusage would be that of the program which started this one, if larger.
std::int64_t PeakKilobytes() {
  std::ifstream status("/proc/self/status");
  for (std::string word; status >> word;) {
    std::int64_t kilobytes = 0;
    if (word == "VmHWM:" && status >> kilobytes) return kilobytes;
  }
  Fail("the kernel tells no peak");
}

}  // namespace

Duration Time(const Passes& passes, std::int64_t count) {
  std::vector<Duration> durations;
  do durations.push_back(TimeOne(passes));
  while (static_cast<std::int64_t>(durations.size()) < count);
  return {Median(durations, &Duration::Cpu), Median(durations, &Duration::Wall)};
}

Memory Measure(const Passes& passes, std::int64_t count) {
  Time(passes, count);
  const std::size_t before = HeldBytes();
  Time(passes, count);
  const double grown = static_cast<double>(HeldBytes()) - static_cast<double>(before);
  return {grown / static_cast<double>(std::max<std::int64_t>(count, 1)), PeakKilobytes()};
}

void Tell(const Passes& passes, std::int64_t count) {
  TimeOne(passes);
  const Duration median = Time(passes, count);
  std::printf("%.3f ms of the processor, %.3f ms of the clock\n", static_cast<double>(median.Cpu) / 1e6,
              static_cast<double>(median.Wall) / 1e6);
}

void Serve(const Passes& passes) {
  std::cout << "ready" << std::endl;
  std::string what;
  std::int64_t count = 0;
  while (std::cin >> what >> count) {
    if (what == "time") {
      const Duration median = Time(passes, count);
      std::cout << median.Cpu << ' ' << median.Wall << std::endl;
    } else if (what == "memory") {
      const Memory memory = Measure(passes, count);
      std::cout << memory.HeldByPass << ' ' << memory.PeakKilobytes << std::endl;
    } else if (what == "digest") {
      std::cout << passes.Digest() << std::endl;
      passes.TidyUp();
    } else {
      Fail("can't do " + what);
    }
  }
}

}  // namespace Bench
