#include "log/LogCall.h"

#include <atomic>
#include <new>

#include "base/NeverDestroyed.h"
#include "log/LogWriter.h"

namespace Corvane {

namespace {

/// The writer of the call that runs on this thread. Not the process's: in a child of a host that was forked from another
/// thread in the middle of a call, that call doesn't run.
thread_local LogWriter* t_running = nullptr;

/// The writer that is kept from call to call, with its room. A call that runs beside another has one for itself.
LogWriter& KeptWriter() {
  static NeverDestroyed<LogWriter> writer;
  return *writer;
}
std::atomic<bool> g_isLent{false};

LogWriter* BorrowWriter() noexcept {
  const bool isFree = !g_isLent.exchange(true, std::memory_order_acquire);
  return isFree ? &KeptWriter() : new (std::nothrow) LogWriter;
}

void GiveBack(LogWriter* writer) noexcept {
  if (writer == &KeptWriter()) {
    g_isLent.store(false, std::memory_order_release);
  } else {
    delete writer;
  }
}

}  // namespace

LogCall::LogCall() noexcept : m_own(t_running == nullptr ? BorrowWriter() : nullptr) {
  if (m_own != nullptr) t_running = m_own;
}

LogCall::~LogCall() {
  if (m_own == nullptr) return;
  m_own->Finish();
  t_running = nullptr;
  GiveBack(m_own);
}

LogWriter* LogCall::Writer() const noexcept { return t_running; }

}  // namespace Corvane
