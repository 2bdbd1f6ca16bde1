#ifndef QNCORVANE_BENCH_PASSES_H
#define QNCORVANE_BENCH_PASSES_H

#include <cstddef>
#include <cstdint>
#include <functional>

namespace Bench {

/// What is measured: a pass that may be run again and again.
struct Passes {
  std::function<void()> Run;            ///< one pass
  std::function<void()> TidyUp;         ///< puts right behind a pass what the next one needs; not measured
  std::function<std::size_t()> Digest;  ///< one pass, and a number that stands for all results in it
};

/// The median of some passes, in nanoseconds of the process.
struct Duration {
  std::int64_t Cpu;
  std::int64_t Wall;
};

/// What some passes left behind.
struct Memory {
  double HeldByPass;           ///< bytes that the process holds more behind a pass than before
  std::int64_t PeakKilobytes;  ///< the most that the process has held so far
};

/// Times passes. At least one is run.
Duration Time(const Passes& passes, std::int64_t count);

/// Runs passes and looks at the heap before and behind; as many again run ahead, so that what is made once is there.
Memory Measure(const Passes& passes, std::int64_t count);

/// Prints what a pass costs: the median of `count`, behind one that warms up.
void Tell(const Passes& passes, std::int64_t count);

/// Answers on the standard output what the standard input asks, one line each, until the input ends:
///   time N     ->  nanoseconds of the processor and of the clock, the median of N passes
///   memory N   ->  bytes held a pass, peak in kilobytes
///   digest N   ->  the digest of a pass
/// Says "ready" first.
void Serve(const Passes& passes);

}  // namespace Bench

#endif
