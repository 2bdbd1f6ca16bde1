#ifndef QNCORVANE_BASE_NEVERDESTROYED_H
#define QNCORVANE_BASE_NEVERDESTROYED_H

#include <cstddef>
#include <new>
#include <utility>

namespace Corvane {

/// A static object that stands until the process has ended: `static NeverDestroyed<std::string> text;`.
///
/// A host may call from a handler of `atexit` or from the destructor of a global object of its own, when the statics of
/// this library would be gone. So whatever a call needs is kept in one of these. The object lies inside, where leak
/// checkers find what it holds.
template <class Object>
class NeverDestroyed {
 public:
  template <class... Argument>
  explicit NeverDestroyed(Argument&&... arguments) {
    ::new (static_cast<void*>(m_room)) Object(std::forward<Argument>(arguments)...);
  }
  NeverDestroyed(const NeverDestroyed&) = delete;
  NeverDestroyed& operator=(const NeverDestroyed&) = delete;
  ~NeverDestroyed() = default;

  Object& operator*() { return *std::launder(reinterpret_cast<Object*>(m_room)); }
  Object* operator->() { return &**this; }

 private:
  alignas(Object) std::byte m_room[sizeof(Object)];
};

}  // namespace Corvane

#endif
