#ifndef QNCORVANE_TESTS_SUPPORT_LOGMOVER_H
#define QNCORVANE_TESTS_SUPPORT_LOGMOVER_H

#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <string>

namespace Corvane::Testing {

/// A process that moves the log away, and links it elsewhere and deletes it, over and over, until this object goes. All
/// that was in it stays in files named "moved-" and a number.
class LogMover {
 public:
  LogMover() : m_child(fork()) {
    if (m_child != 0) return;
    for (int number = 0;; ++number) {
      const std::string name = "moved-" + std::to_string(number);
      if (number % 2 == 0) {
        std::rename(kLog, name.c_str());
      } else if (link(kLog, name.c_str()) == 0) {
        unlink(kLog);
      }
      constexpr useconds_t kPause = 200;
      usleep(kPause);
    }
  }
  ~LogMover() {
    kill(m_child, SIGKILL);
    waitpid(m_child, nullptr, 0);
    // It may have ended between its two steps.
    struct stat state {};
    if (stat(kLog, &state) == 0 && state.st_nlink > 1) unlink(kLog);
  }
  LogMover(const LogMover&) = delete;
  LogMover& operator=(const LogMover&) = delete;

  /// Waits until there is no log: on a busy machine the other process has its turn late.
  bool HasMovedAll() const {
    constexpr int kMostLooks = 20000;
    constexpr useconds_t kPause = 500;
    for (int look = 0; look < kMostLooks; ++look) {
      if (access(kLog, F_OK) != 0) return true;
      usleep(kPause);
    }
    return false;
  }

 private:
  static constexpr const char* kLog = "QnCorvane.txt";

  pid_t m_child;
};

}  // namespace Corvane::Testing

#endif
