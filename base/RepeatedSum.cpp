#include "base/RepeatedSum.h"

#include <cmath>

#include "base/Numbers.h"

namespace Corvane {

RepeatedSum::RepeatedSum(double start, double step, Precision precision)
    : m_value(start), m_step(step), m_precision(precision) {}

double RepeatedSum::Next(double value) const {
  const double sum = value + m_step;
  return m_precision == Precision::Single ? static_cast<double>(ToSingle(sum)) : sum;
}

std::int64_t RepeatedSum::EvenRounds() const {
  const double next = Next(m_value);
  const double move = next - m_value;
  if (move == 0) return kEndless;
  // The first addition may fall on a tie and be rounded the other way; from the second on all are rounded alike.
  const double behind = Next(next);
  if (!std::isnormal(m_value) || !std::isfinite(behind) || behind - next != move) return 0;
  const int exponent = std::ilogb(m_value);
  if (std::ilogb(next) != exponent || std::ilogb(behind) != exponent) return 0;
  const double size = std::fabs(m_value);
  const bool grows = (move > 0) == (m_value > 0);
  const double room = grows ? std::ldexp(1.0, exponent + 1) - size : size - std::ldexp(1.0, exponent);
  // One round less: the last one may stand on the power of two itself.
  return static_cast<std::int64_t>(room / std::fabs(move)) - 1;
}

std::int64_t RepeatedSum::EvenRoundsWithin(double distance) const {
  constexpr double kManyRounds = 1e15;
  const double rounds = distance / std::fabs(Next(m_value) - m_value) - 2;
  if (!(rounds >= 1)) return 0;
  return std::min(EvenRounds(), static_cast<std::int64_t>(std::min(rounds, kManyRounds)));
}

std::int64_t RepeatedSum::EvenRoundsBelow(double limit) const {
  const bool comesNearer = Next(m_value) > m_value;
  return comesNearer ? EvenRoundsWithin(limit - m_value) : EvenRounds();
}

std::int64_t RepeatedSum::EvenRoundsAbove(double limit) const {
  const bool comesNearer = Next(m_value) < m_value;
  return comesNearer ? EvenRoundsWithin(m_value - limit) : EvenRounds();
}

void RepeatedSum::Add(std::int64_t rounds) {
  const double next = Next(m_value);
  m_value = rounds == 1 ? next : m_value + static_cast<double>(rounds) * (next - m_value);
}

}  // namespace Corvane
