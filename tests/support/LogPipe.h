#ifndef QNCORVANE_TESTS_SUPPORT_LOGPIPE_H
#define QNCORVANE_TESTS_SUPPORT_LOGPIPE_H

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <string>

namespace Corvane::Testing {

/// A pipe in the log's place, and its end that is read from, open before anybody writes.
class LogPipe {
 public:
  LogPipe() {
    mkfifo(kLog, 0600);  // or there is one
    m_end = open(kLog, O_RDONLY | O_NONBLOCK);
  }
  LogPipe(const LogPipe&) = delete;
  LogPipe& operator=(const LogPipe&) = delete;
  ~LogPipe() { Leave(); }

  /// Reads no more; the pipe stays.
  void Leave() {
    if (m_end >= 0) close(m_end);
    m_end = -1;
  }

  /// @return what is in the pipe now.
  std::string Take() {
    std::string taken;
    std::array<char, 65536> bytes{};
    ssize_t got = 0;
    while ((got = read(m_end, bytes.data(), bytes.size())) > 0)
      taken.append(bytes.data(), static_cast<std::size_t>(got));
    m_hasWriter = got < 0 && errno == EAGAIN;
    return taken;
  }

  /// @return all that comes until `isWritten`.
  std::string TakeUntil(const std::atomic<bool>& isWritten) {
    std::string taken;
    while (!isWritten) taken += Take();
    return taken + Take();
  }

  /// Whether somebody held the pipe for writing when it was last taken from.
  bool HasWriter() const { return m_hasWriter; }

 private:
  static constexpr const char* kLog = "QnCorvane.txt";

  int m_end = -1;
  bool m_hasWriter = false;
};

}  // namespace Corvane::Testing

#endif
