#ifndef SUMS_H
#define SUMS_H

#include <vector>

/// The constant is the compiler's.
constexpr int kBase = 10 + 5;

int Above(const std::vector<int>& values, int least);
int First(const std::vector<int>& values);
int Counted(int number);
int Unused(int value);
template <int Number>
int Times(int value) {
  return value * Number;
}

#endif
