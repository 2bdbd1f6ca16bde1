#ifndef QNCORVANE_TESTS_FAULTS_REFUSALS_H
#define QNCORVANE_TESTS_FAULTS_REFUSALS_H

/// Memory that is refused, to everything in the program: the engine, Qt, the database's driver, the C library. Requests
/// of C and of C++ alike; under AddressSanitizer, which has the C library's names for itself, those of C++ alone.
namespace faults {

/// What the program holds in memory.
struct Held {
  long Blocks = 0;
  long Bytes = 0;
};

/// From now on, `granted` requests are granted and the one behind them is refused; with `allBehind` all that follow are
/// refused, too.
void RefuseAfter(long granted, bool allBehind);

/// Grants everything again. @return how many were refused since the last `RefuseAfter`.
long EndRefusals();

/// Requests since the program began.
long Requests();

/// Nothing but zeros under AddressSanitizer, which sees leaks by itself.
Held HeldNow();

/// @return whether AddressSanitizer found that what this process holds can't be reached any more; elsewhere false.
bool LeakCheckFinds();

}  // namespace faults

#endif
