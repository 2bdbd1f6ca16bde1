// Records what an engine asks of the world: every statement that SQLite runs, with its values, and every write to the
// log, in their order. To be loaded before the program (LD_PRELOAD); the program says when to record and which XML
// texts go in and out, see bench/Recording.h. The recording is written to the file that QNCORVANE_RECORDING names.

#include <dlfcn.h>
#include <fcntl.h>
#include <sqlite3.h>
#include <unistd.h>

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string_view>

#include "bench/Recording.h"

namespace {

constexpr std::string_view kLog = "QnCorvane.txt";

FILE* recording = nullptr;
int logFile = -1;

/// The function that this library stands in front of.
template <class Function>
Function Next(const char* name) {
  return reinterpret_cast<Function>(dlsym(RTLD_NEXT, name));
}

int RecordStatement(unsigned /*event*/, void* /*context*/, void* statement, void* /*text*/) {
  char* const text = sqlite3_expanded_sql(static_cast<sqlite3_stmt*>(statement));
  if (text != nullptr) BenchRecordEvent(Bench::Event::kStatement, text, std::strlen(text));
  sqlite3_free(text);
  return 0;
}

/// Any of the ways to open a file. Only a mode that O_CREAT asks for is there to be read.
int OpenAs(const char* name, const char* path, int flags, mode_t mode) {
  const int file = Next<int (*)(const char*, int, ...)>(name)(path, flags, mode);
  if (path == kLog) {
    logFile = file;
  } else if (file == logFile) {
    logFile = -1;
  }
  return file;
}

mode_t ModeOf(int flags, va_list more) { return (flags & O_CREAT) != 0 ? va_arg(more, mode_t) : mode_t{0}; }

}  // namespace

extern "C" {

[[gnu::visibility("default")]] void BenchRecordNow(bool on) {
  if (recording != nullptr) std::fclose(recording);
  const char* const path = std::getenv("QNCORVANE_RECORDING");
  recording = on && path != nullptr ? std::fopen(path, "wb") : nullptr;
}

[[gnu::visibility("default")]] void BenchRecordEvent(char event, const char* text, std::size_t length) {
  if (recording == nullptr) return;
  std::fprintf(recording, "%c %zu\n", event, length);
  std::fwrite(text, 1, length, recording);
  std::fputc('\n', recording);
}

// The system's own declarations name their parameters by reserved words.
// NOLINTBEGIN(readability-inconsistent-declaration-parameter-name)

[[gnu::visibility("default")]] int sqlite3_open_v2(const char* path, sqlite3** database, int flags,
                                                   const char* system) {
  const int code = Next<decltype(&sqlite3_open_v2)>("sqlite3_open_v2")(path, database, flags, system);
  if (code == SQLITE_OK) sqlite3_trace_v2(*database, SQLITE_TRACE_STMT, RecordStatement, nullptr);
  return code;
}

[[gnu::visibility("default")]] int open(const char* path, int flags, ...) {
  va_list more;
  va_start(more, flags);
  const mode_t mode = ModeOf(flags, more);
  va_end(more);
  return OpenAs("open", path, flags, mode);
}

[[gnu::visibility("default")]] int open64(const char* path, int flags, ...) {
  va_list more;
  va_start(more, flags);
  const mode_t mode = ModeOf(flags, more);
  va_end(more);
  return OpenAs("open64", path, flags, mode);
}

[[gnu::visibility("default")]] ssize_t write(int file, const void* bytes, std::size_t length) {
  if (file == logFile && file >= 0) {
    BenchRecordEvent(Bench::Event::kLogEntry, static_cast<const char*>(bytes), length);
  }
  return Next<decltype(&write)>("write")(file, bytes, length);
}

// NOLINTEND(readability-inconsistent-declaration-parameter-name)

}  // extern "C"
