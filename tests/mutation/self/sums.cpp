#include "sums.h"

int Above(const std::vector<int>& values, int least) {
  int sum = 0;
  for (int value : values) {
    if (value > least) sum += value;  // at the bound itself nothing is tested
  }
  return sum;
}

int First(const std::vector<int>& values) {
  for (int value : values) return Times<2>(value);
  return 0;
}

int Counted(int number) {
  volatile int count = 0;  // without it the compiler may take the loop for one that ends
  while (count < number) count = count + 1;
  return count;
}

int Unused(int value) { return value + 1; }
