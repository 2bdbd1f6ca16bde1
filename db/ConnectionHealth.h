#ifndef QNCORVANE_DB_CONNECTIONHEALTH_H
#define QNCORVANE_DB_CONNECTIONHEALTH_H

#include <chrono>

namespace Corvane {

/// What is known of a connection between two statements. Drivers go on calling a connection open after its server has
/// gone; to find out costs a statement. This class says when that statement is worth it: after a failure, and, where a
/// network lies between, when the last answer is older than a server needs to go away and come back.
class ConnectionHealth {
 public:
  using Clock = std::chrono::steady_clock;

  /// Less than any server's restart, more than the pauses within one calculation.
  static constexpr std::chrono::milliseconds TrustedFor{100};

  /// The clock. A test may put one of its own in its place.
  inline static Clock::time_point (*Now)() = &Clock::now;

  /// @param remote whether the database is a server's, which can go away, rather than a file.
  explicit ConnectionHealth(bool remote) : m_remote(remote) {}

  /// Takes in how a statement or an open went. @return `succeeded`.
  bool Note(bool succeeded);

  /// @return whether the connection should be tried before it is relied on.
  bool NeedsTrial() const;

 private:
  bool m_remote;
  bool m_doubted = false;
  Clock::time_point m_lastAnswer = Now();
};

}  // namespace Corvane

#endif
