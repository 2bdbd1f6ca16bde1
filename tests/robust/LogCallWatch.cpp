#include "tests/robust/LogCallWatch.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdarg>
#include <cstring>
#include <utility>

namespace Corvane::Testing {

LogCallWatch* LogCallWatch::s_watch = nullptr;

LogCallWatch::LogCallWatch(std::function<void(int)> action) : m_action(std::move(action)) { s_watch = this; }

LogCallWatch::~LogCallWatch() { s_watch = nullptr; }

void LogCallWatch::Act() {
  LogCallWatch* const self = std::exchange(s_watch, nullptr);
  m_action(m_count++);
  s_watch = self;
}

void LogCallWatch::MeetName(const char* name) {
  if (s_watch != nullptr && std::strcmp(name, "QnCorvane.txt") == 0) s_watch->Act();
}

void LogCallWatch::MeetFile(int descriptor) {
  if (s_watch != nullptr && descriptor >= 0 && descriptor == s_watch->m_descriptor) s_watch->Act();
}

void LogCallWatch::Opened(const char* name, int descriptor) {
  if (s_watch != nullptr && std::strcmp(name, "QnCorvane.txt") == 0) s_watch->m_descriptor = descriptor;
}

}  // namespace Corvane::Testing

// The process's own functions stand in front of the system's for all libraries in it.

namespace {

using Corvane::Testing::LogCallWatch;

template <class Function>
Function* Systems(const char* name, Function* /*own*/) {
  return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

}  // namespace

#define IN_FRONT extern "C" __attribute__((visibility("default")))

IN_FRONT int open(const char* file, int oflag, ...) {
  static auto* const systems = Systems("open", &open);
  va_list more;
  va_start(more, oflag);
  const mode_t mode = (oflag & O_CREAT) != 0 ? va_arg(more, mode_t) : 0;
  va_end(more);
  LogCallWatch::MeetName(file);
  const int descriptor = systems(file, oflag, mode);
  LogCallWatch::Opened(file, descriptor);
  return descriptor;
}

IN_FRONT int stat(const char* file, struct stat* buf) noexcept {
  static auto* const systems = Systems("stat", &::stat);
  LogCallWatch::MeetName(file);
  return systems(file, buf);
}

IN_FRONT ssize_t write(int fd, const void* buf, size_t n) {
  static auto* const systems = Systems("write", &write);
  LogCallWatch::MeetFile(fd);
  return systems(fd, buf, n);
}

IN_FRONT int ftruncate(int fd, off_t length) noexcept {
  static auto* const systems = Systems("ftruncate", &ftruncate);
  LogCallWatch::MeetFile(fd);
  return systems(fd, length);
}

IN_FRONT int close(int fd) {
  static auto* const systems = Systems("close", &close);
  LogCallWatch::MeetFile(fd);
  return systems(fd);
}
