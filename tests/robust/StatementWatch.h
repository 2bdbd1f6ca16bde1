#ifndef QNCORVANE_TESTS_ROBUST_STATEMENTWATCH_H
#define QNCORVANE_TESTS_ROBUST_STATEMENTWATCH_H

#include <functional>

namespace Corvane::Testing {

/// Does something right before each SQLite statement of this process, for the life of this object. The statements of
/// what it does itself are not watched.
class StatementWatch {
 public:
  /// To be called before the first connection is opened whose statements are to be watched.
  static void Install();

  /// @param action gets the statement's number, from 0.
  explicit StatementWatch(std::function<void(int number)> action);
  StatementWatch(const StatementWatch&) = delete;
  StatementWatch& operator=(const StatementWatch&) = delete;
  ~StatementWatch();

  /// How many statements there were.
  int Count() const { return m_count; }

  /// Tells the watch that there is of a statement.
  static void Meet();

 private:
  static StatementWatch* s_watch;

  std::function<void(int number)> m_action;
  int m_count = 0;
};

}  // namespace Corvane::Testing

#endif
