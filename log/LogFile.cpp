#include "log/LogFile.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>

namespace Corvane {

namespace {

constexpr const char* kFileName = "QnCorvane.txt";
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

/// @return how much got in.
std::size_t WriteAll(int file, std::string_view bytes) {
  std::size_t done = 0;
  while (done < bytes.size()) {
    const ssize_t written = Uninterrupted([&] { return write(file, bytes.data() + done, bytes.size() - done); });
    if (written <= 0) break;
    done += static_cast<std::size_t>(written);
  }
  return done;
}

/// @param size the file's size before the first entry.
void WriteUnderSizeRule(int file, off_t size, std::string_view entries, const std::vector<std::size_t>& ends) {
  std::size_t written = 0;  // up to here; behind it, what waits
  std::size_t begin = 0;    // of the entry
  for (const std::size_t end : ends) {
    if (size + static_cast<off_t>(begin - written) > kLargestSize) {
      size += static_cast<off_t>(WriteAll(file, entries.substr(written, begin - written)));
      // On a full disk the file isn't as long as that, and nothing more gets in.
      if (size <= kLargestSize || Uninterrupted([&] { return ftruncate(file, 0); }) != 0) return;
      size = 0;
      written = begin;
    }
    begin = end;
  }
  WriteAll(file, entries.substr(written));
}

}  // namespace

// The file calls of the system stand here instead of QFile and QTextStream: the same steps, at a fifth of the cost.

void LogFile::Append(std::string_view entries, const std::vector<std::size_t>& ends) noexcept {
  struct stat state {};
  if (!IsStillThere(state) && !Open(state)) return;
  if (S_ISREG(state.st_mode)) {
    WriteUnderSizeRule(m_descriptor, state.st_size, entries, ends);
  } else {
    WriteAll(m_descriptor, entries);  // a pipe or a device doesn't grow
  }
  if (!MayStayOpen(m_descriptor, state)) Close();
}

void LogFile::Close() noexcept {
  if (m_descriptor >= 0) close(m_descriptor);
  m_descriptor = -1;
}

/// @param state out: the state of the file that the name leads to.
bool LogFile::IsStillThere(struct stat& state) const noexcept {
  return m_descriptor >= 0 && stat(kFileName, &state) == 0 && IsSameFile(state, m_opened);
}

/// @param state out: the state of the file.
bool LogFile::Open(struct stat& state) noexcept {
  Close();
  m_descriptor = Uninterrupted([] { return open(kFileName, O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0666); });
  if (m_descriptor < 0) return false;
  if (fstat(m_descriptor, &state) != 0) state = {};
  m_opened = state;
  return true;
}

}  // namespace Corvane
