#include "tests/faults/Refusals.h"

#include <cerrno>
#include <cstddef>
#include <cstdlib>
#include <new>

#if defined(__SANITIZE_ADDRESS__)
#define FAULTS_SANITIZED 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define FAULTS_SANITIZED 1
#endif
#endif

namespace {

long g_granted = -1;  // below 0: nothing is refused
bool g_allBehind = false;
long g_refused = 0;
long g_requests = 0;

bool IsRefused() {
  ++g_requests;
  if (g_granted < 0) return false;
  if (g_granted > 0) {
    --g_granted;
    return false;
  }
  ++g_refused;
  if (!g_allBehind) g_granted = -1;
  return true;
}

}  // namespace

#ifdef FAULTS_SANITIZED

#include <sanitizer/lsan_interface.h>

#include "tests/support/ReplacedNew.h"

void* Allocate(std::size_t size, std::size_t alignment) {
  const std::size_t whole = (size + alignment - 1) / alignment * alignment;
  void* const room = IsRefused() ? nullptr : std::aligned_alloc(alignment, whole == 0 ? alignment : whole);
  if (room == nullptr) throw std::bad_alloc();
  return room;
}

faults::Held faults::HeldNow() { return {}; }

bool faults::LeakCheckFinds() { return __lsan_do_recoverable_leak_check() != 0; }

#else

#include <malloc.h>

namespace {

faults::Held g_held;

void* Counted(void* room) {
  if (room == nullptr) return nullptr;
  ++g_held.Blocks;
  g_held.Bytes += static_cast<long>(malloc_usable_size(room));
  return room;
}

void Discount(void* room) {
  if (room == nullptr) return;
  --g_held.Blocks;
  g_held.Bytes -= static_cast<long>(malloc_usable_size(room));
}

void* Refused() {
  errno = ENOMEM;
  return nullptr;
}

}  // namespace

extern "C" {

// The C library's own, behind the names that are taken here.
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t nmemb, std::size_t size);
void* __libc_realloc(void* ptr, std::size_t size);
void* __libc_memalign(std::size_t alignment, std::size_t size);
void __libc_free(void* ptr);

void* malloc(std::size_t size) { return IsRefused() ? Refused() : Counted(__libc_malloc(size)); }

void* calloc(std::size_t nmemb, std::size_t size) {
  return IsRefused() ? Refused() : Counted(__libc_calloc(nmemb, size));
}

void* realloc(void* ptr, std::size_t size) {
  if (IsRefused()) return Refused();
  const long before = ptr == nullptr ? 0 : static_cast<long>(malloc_usable_size(ptr));
  void* const moved = __libc_realloc(ptr, size);
  const bool isGone = moved == nullptr && size == 0;
  if (moved == nullptr && !isGone) return nullptr;
  if (ptr != nullptr) {
    --g_held.Blocks;
    g_held.Bytes -= before;
  }
  return Counted(moved);
}

void* memalign(std::size_t alignment, std::size_t size) {
  return IsRefused() ? Refused() : Counted(__libc_memalign(alignment, size));
}

void* aligned_alloc(std::size_t alignment, std::size_t size) { return memalign(alignment, size); }

int posix_memalign(void** memptr, std::size_t alignment, std::size_t size) {
  void* const room = memalign(alignment, size);
  if (room == nullptr) return ENOMEM;
  *memptr = room;
  return 0;
}

void free(void* ptr) {
  Discount(ptr);
  __libc_free(ptr);
}

}  // extern "C"

faults::Held faults::HeldNow() { return g_held; }

bool faults::LeakCheckFinds() { return false; }

#endif

void faults::RefuseAfter(long granted, bool allBehind) {
  g_refused = 0;
  g_granted = granted;
  g_allBehind = allBehind;
}

long faults::EndRefusals() {
  g_granted = -1;
  return g_refused;
}

long faults::Requests() { return g_requests; }
