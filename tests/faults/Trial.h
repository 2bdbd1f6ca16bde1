#ifndef QNCORVANE_TESTS_FAULTS_TRIAL_H
#define QNCORVANE_TESTS_FAULTS_TRIAL_H

#include <functional>
#include <string_view>

/// What the trials of all kinds of faults share: what a till gives that no fault meets, and which faults are tried.
namespace faults {

/// Which of all faults are tried: one in `Every`, beginning at one that the seed chooses.
struct Sweep {
  long Every = 1;
  long Seed = 0;  ///< the day, unless told: within so many days as are left out, each fault has its turn
  bool Chooses(long number) const { return (number + Seed) % Every == 0; }
};

/// Reads "--every N" and "--seed S".
Sweep ReadSweep(int count, char** arguments);

/// Runs a till twice, takes in what it gives, and sees that each of the shop's rules gives something.
///
/// @return null, or what is wrong.
const char* LearnTill();

/// The same in a process of its own, so that nobody has called this one's engine yet.
const char* LearnTillAhead();

/// Whether a till gives what was learnt. @return null, or what is wrong.
const char* JudgeTill();

/// What the tills that were learnt gave.
std::string_view LearntResults();

/// The number that `measure` finds in a process of its own; below 0 when that ended otherwise.
long LearnNumber(const std::function<long()>& measure);

/// The counts of a program's closing line.
struct Tally {
  long Points = 0;  ///< where a fault might be
  long Tried = 0;
  long Failures = 0;
};

}  // namespace faults

#endif
