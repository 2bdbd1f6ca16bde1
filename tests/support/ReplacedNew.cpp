#include "tests/support/ReplacedNew.h"

#include <cstdlib>
#include <new>

void* operator new(std::size_t size) { return Allocate(size, alignof(std::max_align_t)); }
void* operator new[](std::size_t size) { return Allocate(size, alignof(std::max_align_t)); }
void* operator new(std::size_t size, std::align_val_t alignment) {
  return Allocate(size, static_cast<std::size_t>(alignment));
}
void* operator new[](std::size_t size, std::align_val_t alignment) {
  return Allocate(size, static_cast<std::size_t>(alignment));
}
void* operator new(std::size_t size, const std::nothrow_t& /*tag*/) noexcept {
  try {
    return Allocate(size, alignof(std::max_align_t));
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}
void operator delete(void* room) noexcept { std::free(room); }
void operator delete(void* room, const std::nothrow_t& /*tag*/) noexcept { std::free(room); }
void operator delete[](void* room) noexcept { std::free(room); }
void operator delete(void* room, std::size_t) noexcept { std::free(room); }
void operator delete[](void* room, std::size_t) noexcept { std::free(room); }
void operator delete(void* room, std::align_val_t) noexcept { std::free(room); }
void operator delete[](void* room, std::align_val_t) noexcept { std::free(room); }
void operator delete(void* room, std::size_t, std::align_val_t) noexcept { std::free(room); }
void operator delete[](void* room, std::size_t, std::align_val_t) noexcept { std::free(room); }
