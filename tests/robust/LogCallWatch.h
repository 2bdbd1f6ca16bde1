#ifndef QNCORVANE_TESTS_ROBUST_LOGCALLWATCH_H
#define QNCORVANE_TESTS_ROBUST_LOGCALLWATCH_H

#include <functional>

namespace Corvane::Testing {

/// Does something right before each system call that this process makes on the file "QnCorvane.txt", for the life of
/// this object: looking at it, opening, writing, emptying and closing it.
class LogCallWatch {
 public:
  /// @param action gets the call's number, from 0. What it does itself is not watched.
  explicit LogCallWatch(std::function<void(int number)> action);
  LogCallWatch(const LogCallWatch&) = delete;
  LogCallWatch& operator=(const LogCallWatch&) = delete;
  ~LogCallWatch();

  /// How many calls there were.
  int Count() const { return m_count; }

  // What the system calls of this process tell the watch that there is.
  static void MeetName(const char* name);
  static void MeetFile(int descriptor);
  static void Opened(const char* name, int descriptor);

 private:
  void Act();

  static LogCallWatch* s_watch;

  std::function<void(int number)> m_action;
  int m_count = 0;
  int m_descriptor = -1;
};

}  // namespace Corvane::Testing

#endif
