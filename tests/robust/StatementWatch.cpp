#include "tests/robust/StatementWatch.h"

#include <sqlite3.h>

#include <utility>

namespace Corvane::Testing {

namespace {

int Trace(unsigned /*event*/, void* /*context*/, void* /*statement*/, void* /*text*/) {
  StatementWatch::Meet();
  return 0;
}

int WatchConnection(sqlite3* connection, char** /*error*/, const void* /*functions*/) {
  return sqlite3_trace_v2(connection, SQLITE_TRACE_STMT, Trace, nullptr);
}

}  // namespace

StatementWatch* StatementWatch::s_watch = nullptr;

// Qt's driver uses the same library of the system's as this process.
void StatementWatch::Install() { sqlite3_auto_extension(reinterpret_cast<void (*)()>(WatchConnection)); }

StatementWatch::StatementWatch(std::function<void(int)> action) : m_action(std::move(action)) { s_watch = this; }

StatementWatch::~StatementWatch() { s_watch = nullptr; }

void StatementWatch::Meet() {
  StatementWatch* const watch = std::exchange(s_watch, nullptr);
  if (watch == nullptr) return;
  watch->m_action(watch->m_count++);
  s_watch = watch;
}

}  // namespace Corvane::Testing
