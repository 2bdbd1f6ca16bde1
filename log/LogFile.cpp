#include "log/LogFile.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <ctime>
#include <optional>

#include "log/LogFolder.h"

namespace Corvane {

namespace {

constexpr off_t kLargestSize = 1000000;

/// Makes a system call again for as long as a signal breaks it off.
template <class Call>
auto Uninterrupted(Call call) {
  auto result = call();
  while (result == -1 && errno == EINTR) result = call();
  return result;
}

/// Whether both are states of one file, which the same people may write.
bool IsSameFile(const struct stat& one, const struct stat& other) {
  return one.st_dev == other.st_dev && one.st_ino == other.st_ino && one.st_mode == other.st_mode &&
         one.st_uid == other.st_uid && one.st_gid == other.st_gid;
}

/// Whether a descriptor may stay open. The reader of a pipe waits for the end of each entry. And where the host has
/// closed its standard streams, one of their numbers would send to the log what others write there.
bool MayStayOpen(int descriptor, const struct stat& state) {
  return S_ISREG(state.st_mode) && descriptor > STDERR_FILENO;
}

/// Waits until a pipe or a device takes more. @param patience in and out: how long it may still be waited for.
/// @return whether to try again.
bool WaitForRoom(int file, std::chrono::milliseconds& patience) {
  using std::chrono::steady_clock;
  if (patience.count() <= 0) return false;
  const steady_clock::time_point start = steady_clock::now();
  pollfd room{file, POLLOUT, 0};
  const int ready = poll(&room, 1, static_cast<int>(patience.count()));
  const auto waited = std::chrono::duration_cast<std::chrono::milliseconds>(steady_clock::now() - start);
  patience -= std::max(waited, std::chrono::milliseconds(1));
  return ready != 0;
}

/// @return how much got in.
std::size_t WriteAll(int file, std::string_view bytes, std::chrono::milliseconds& patience) {
  std::size_t done = 0;
  while (done < bytes.size()) {
    const ssize_t written = Uninterrupted([&] { return write(file, bytes.data() + done, bytes.size() - done); });
    if (written > 0) {
      done += static_cast<std::size_t>(written);
    } else if (written == 0 || errno != EAGAIN || !WaitForRoom(file, patience)) {
      break;
    }
  }
  return done;
}

/// Holds back, on this thread and for the life of this object, the signals by which the system ends a process that writes
/// into a pipe whose reader has left, or beyond the size that its files may have.
class WithoutWriteSignals {
 public:
  WithoutWriteSignals() {
    sigset_t pending{};
    sigpending(&pending);
    sigemptyset(&m_held);
    // One that waits already is held back by the host, and stays with it.
    for (const int signal : {SIGPIPE, SIGXFSZ}) {
      if (sigismember(&pending, signal) == 0) sigaddset(&m_held, signal);
    }
    pthread_sigmask(SIG_BLOCK, &m_held, &m_before);
  }
  WithoutWriteSignals(const WithoutWriteSignals&) = delete;
  WithoutWriteSignals& operator=(const WithoutWriteSignals&) = delete;
  ~WithoutWriteSignals() {
    const timespec now{};
    while (sigtimedwait(&m_held, nullptr, &now) != -1 || errno == EINTR) {
    }
    pthread_sigmask(SIG_SETMASK, &m_before, nullptr);
  }

 private:
  sigset_t m_held{};
  sigset_t m_before{};
};

bool IsSizeLimited() {
  rlimit limit{};
  return getrlimit(RLIMIT_FSIZE, &limit) == 0 && limit.rlim_cur != RLIM_INFINITY;
}

/// Entry by entry: short ones get in whole or not at all.
void WriteToPipe(int file, std::string_view entries, const std::vector<std::size_t>& ends,
                 std::chrono::milliseconds& patience) {
  std::size_t begin = 0;
  for (const std::size_t end : ends) {
    WriteAll(file, entries.substr(begin, end - begin), patience);
    begin = end;
  }
}

/// @param size the file's size before the first entry.
void WriteUnderSizeRule(int file, off_t size, std::string_view entries, const std::vector<std::size_t>& ends) {
  std::chrono::milliseconds none{0};  // a file never lets wait
  std::size_t written = 0;            // up to here; behind it, what waits
  std::size_t begin = 0;              // of the entry
  for (const std::size_t end : ends) {
    if (size + static_cast<off_t>(begin - written) > kLargestSize) {
      size += static_cast<off_t>(WriteAll(file, entries.substr(written, begin - written), none));
      // On a full disk the file isn't as long as that, and nothing more gets in.
      if (size <= kLargestSize || Uninterrupted([&] { return ftruncate(file, 0); }) != 0) return;
      size = 0;
      written = begin;
    }
    begin = end;
  }
  WriteAll(file, entries.substr(written), none);
}

}  // namespace

// The file calls of the system stand here instead of QFile and QTextStream: the same steps, at a fifth of the cost.

void LogFile::Append(std::string_view entries, const std::vector<std::size_t>& ends) noexcept {
  struct stat state {};
  if (!IsStillThere(state) && !Open(state)) return;
  std::optional<WithoutWriteSignals> held;
  if (!S_ISREG(state.st_mode) || m_isSizeLimited) held.emplace();
  if (S_ISREG(state.st_mode)) {
    WriteUnderSizeRule(m_descriptor, state.st_size, entries, ends);
  } else {
    WriteToPipe(m_descriptor, entries, ends, m_patience);  // nor does a device grow
  }
  if (!MayStayOpen(m_descriptor, state)) Close();
}

void LogFile::EndCall() noexcept {
  Close();
  m_patience = MostPatience;
}

void LogFile::Close() noexcept {
  if (m_descriptor >= 0) close(m_descriptor);
  m_descriptor = -1;
}

/// @param state out: the state of the file that the name leads to.
bool LogFile::IsStillThere(struct stat& state) const noexcept {
  return m_descriptor >= 0 && stat(LogFileName(), &state) == 0 && IsSameFile(state, m_opened);
}

/// @param state out: the state of the file.
bool LogFile::Open(struct stat& state) noexcept {
  Close();
  // A pipe that nobody reads is refused, and one that is full doesn't hold the call.
  constexpr int kHow = O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC | O_NONBLOCK;
  m_descriptor = Uninterrupted([] { return open(LogFileName(), kHow, 0666); });
  if (m_descriptor < 0) return false;
  if (fstat(m_descriptor, &state) != 0) state = {};
  m_opened = state;
  m_isSizeLimited = IsSizeLimited();
  return true;
}

}  // namespace Corvane
