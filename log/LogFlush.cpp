#include "log/LogFlush.h"

#include <atomic>

namespace Corvane {

namespace {

std::atomic<LogFlush> g_flush{LogFlush::Entry};

}  // namespace

LogFlush CurrentLogFlush() noexcept { return g_flush.load(std::memory_order_relaxed); }

void SetLogFlush(LogFlush flush) noexcept { g_flush.store(flush, std::memory_order_relaxed); }

}  // namespace Corvane
