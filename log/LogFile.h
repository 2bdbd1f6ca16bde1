#ifndef QNCORVANE_LOG_LOGFILE_H
#define QNCORVANE_LOG_LOGFILE_H

#include <sys/stat.h>

#include <chrono>
#include <cstddef>
#include <string_view>
#include <vector>

namespace Corvane {

/// The file "QnCorvane.txt" of the current directory, or of the folder that was chosen (log/LogFolder.h). It is found by
/// this name at each append, wherever the process may
/// have gone and whatever has become of the file in between; a descriptor that is open already serves while the name
/// leads to it.
///
/// Nothing is waited for, but the reader of a pipe for a moment: what it doesn't take is lost.
class LogFile {
 public:
  LogFile() = default;
  LogFile(const LogFile&) = delete;
  LogFile& operator=(const LogFile&) = delete;
  ~LogFile() { Close(); }

  /// Appends entries, to the bytes that one append for each would leave: one that finds the file longer than 1000000
  /// bytes starts it anew. What can't be written, whatever the cause, is lost; the next append tries again.
  ///
  /// @param ends where each entry ends in `entries`, the last one at its end.
  void Append(std::string_view entries, const std::vector<std::size_t>& ends) noexcept;

  /// Closes the file. @note the object can be used again.
  void EndCall() noexcept;

 private:
  /// How long a call waits, in all, for the reader of a pipe.
  static constexpr std::chrono::milliseconds MostPatience{200};

  void Close() noexcept;
  bool IsStillThere(struct stat& state) const noexcept;
  bool Open(struct stat& state) noexcept;

  std::chrono::milliseconds m_patience = MostPatience;
  int m_descriptor = -1;
  bool m_isSizeLimited = false;  ///< the host's files may only grow to some size
  struct stat m_opened {};       ///< the file's state when it was opened
};

}  // namespace Corvane

#endif
