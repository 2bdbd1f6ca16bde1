#ifndef QNCORVANE_TESTS_FUZZ_TARGET_H
#define QNCORVANE_TESTS_FUZZ_TARGET_H

#include "tests/fuzz/Bytes.h"

namespace Corvane::Fuzz {

// What each target defines. The current directory is a temporary folder of its own (Shop.h).

/// Once, before the first input.
void Prepare();

/// One input. Leaves nothing behind that a further input could see.
void Try(Bytes input);

}  // namespace Corvane::Fuzz

#endif
