#include "log/Log.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QByteArray>
#include <array>
#include <cerrno>
#include <cstddef>
#include <cstdlib>
#include <ctime>
#include <limits>

#include "base/NeverDestroyed.h"
#include "base/Text.h"
#include "log/LogEncoding.h"

namespace Corvane {

namespace {

constexpr const char* kFileName = "QnCorvane.txt";
constexpr off_t kLargestSize = 1000000;

/// What decides the local time beside the second: the variable TZ, of which "unset" and "empty" are two things.
std::string TimeZone() {
  const char* const zone = std::getenv("TZ");
  return zone == nullptr ? std::string() : Join("TZ=", zone);
}

/// The local time, formatted anew only when the second or the time zone changes: formatting would be the costliest part
/// of an entry.
std::string_view TimeStamp() {
  static std::time_t formatted = -1;
  static NeverDestroyed<std::string> formattedZone;
  static std::array<char, sizeof "yyyy-MM-dd hh:mm:ss"> stamp{};
  const std::time_t now = std::time(nullptr);
  std::string zone = TimeZone();
  if (now != formatted || zone != *formattedZone) {
    std::tm local{};
    tzset();  // localtime_r itself stays with the zone that it met first
    localtime_r(&now, &local);
    std::strftime(stamp.data(), stamp.size(), "%Y-%m-%d %H:%M:%S", &local);
    formatted = now;
    *formattedZone = std::move(zone);
  }
  return {stamp.data(), stamp.size() - 1};
}

/// Makes a system call again for as long as a signal breaks it off.
template <class Call>
auto Uninterrupted(Call call) {
  auto result = call();
  while (result == -1 && errno == EINTR) result = call();
  return result;
}

void WriteAll(int file, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t written = Uninterrupted([&] { return write(file, bytes.data(), bytes.size()); });
    if (written <= 0) return;
    bytes.remove_prefix(static_cast<std::size_t>(written));
  }
}

/// The file calls of the system stand here instead of QFile and QTextStream: the same steps, at a fifth of the cost.
void WriteEntry(std::string_view entry) {
  const int file = Uninterrupted([] { return open(kFileName, O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0666); });
  if (file < 0) return;
  struct stat state {};
  const bool overfull = fstat(file, &state) == 0 && state.st_size > kLargestSize;
  if (!overfull || Uninterrupted([&] { return ftruncate(file, 0); }) == 0) WriteAll(file, entry);
  close(file);
}

void WriteText(const QString& text) {
  const QByteArray encoded = InLogEncoding(text);
  std::string entry;
  entry.reserve(static_cast<std::size_t>(encoded.size()) + 32);
  entry.append(TimeStamp()).append("  ").append(encoded.constData(), static_cast<std::size_t>(encoded.size()));
  entry.append("\n\r");
  WriteEntry(entry);
}

void WriteText(std::string_view text) {
  if (text.size() > static_cast<std::size_t>(std::numeric_limits<int>::max())) return;
  WriteText(QString::fromUtf8(text.data(), static_cast<int>(text.size())));
}

/// Runs what writes an entry. Whatever goes wrong costs the entry and nothing more: no calculation is worth less than a
/// line of the log.
template <class Writer>
void AtMostTheEntry(Writer write) noexcept {
  try {
    write();
  } catch (...) {
  }
}

}  // namespace

void Log(const QString& text) noexcept {
  AtMostTheEntry([&] { WriteText(text); });
}

void Log(const char* text) noexcept {
  AtMostTheEntry([&] { WriteText(std::string_view(OrEmpty(text))); });
}

void Log(const std::string& text) noexcept {
  AtMostTheEntry([&] { WriteText(std::string_view(text)); });
}

void LogPieces(std::initializer_list<std::string_view> pieces) noexcept {
  AtMostTheEntry([&] {
    std::string text;
    for (const std::string_view piece : pieces) text.append(piece);
    WriteText(std::string_view(text));
  });
}

}  // namespace Corvane
