#ifndef QNCORVANE_BASE_REPEATEDSUM_H
#define QNCORVANE_BASE_REPEATEDSUM_H

#include <algorithm>
#include <cstdint>
#include <limits>

namespace Corvane {

/// A sum made by adding one number over and over, each addition rounded by itself. That rounding is part of what a
/// promotion gives, so a multiplication can't take its place; but the additions need not be made one by one. Between
/// two powers of two each of them moves the sum by the same amount, and so many at once are exact. Ten thousand million
/// steps of a tier that somebody mistyped cost no more than ten.
class RepeatedSum {
 public:
  /// How a result is stored.
  enum class Precision { Double, Single };

  static constexpr std::int64_t kEndless = std::numeric_limits<std::int64_t>::max();

  RepeatedSum(double start, double step, Precision precision = Precision::Double);

  double Value() const { return m_value; }

  /// How many further additions each move the sum by just as much as the next one; 0 where that is not known. kEndless
  /// when the step is too small to move the sum at all.
  std::int64_t EvenRounds() const;

  /// How many of these keep the sum below a limit that it is below now, to be on the safe side a little fewer.
  std::int64_t EvenRoundsBelow(double limit) const;

  /// The same for a limit that the sum is at or above now.
  std::int64_t EvenRoundsAbove(double limit) const;

  /// Adds the step so many times. @param rounds at most EvenRounds(), or 1.
  void Add(std::int64_t rounds = 1);

 private:
  double Next(double value) const;
  std::int64_t EvenRoundsWithin(double distance) const;

  double m_value;
  double m_step;
  Precision m_precision;
};

/// The rounds to make at once where so many are allowed: one is always exact.
inline std::int64_t RoundsAtOnce(std::int64_t allowed) { return std::max<std::int64_t>(1, allowed); }

}  // namespace Corvane

#endif
