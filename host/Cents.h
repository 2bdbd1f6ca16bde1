#ifndef QNCORVANE_HOST_CENTS_H
#define QNCORVANE_HOST_CENTS_H

#include <cstdint>
#include <string>

namespace Corvane::Host {

// Amounts in whole cents, as a receipt prints them.

/// An amount in whole cents, from its text with two decimals: digit by digit, since a number doesn't hold the cents of
/// every amount.
std::int64_t CentsOf(std::string digits);

/// The same of an amount as the result prints it.
std::int64_t PrintedCents(double amount);

/// Cents as a number of currency units.
std::string UnitsOf(std::int64_t cents);

/// Sums of cents stay within what there is.
std::int64_t SumOfCents(std::int64_t left, std::int64_t right);

}  // namespace Corvane::Host

#endif
