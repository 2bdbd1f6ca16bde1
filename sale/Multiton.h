#ifndef QNCORVANE_SALE_MULTITON_H
#define QNCORVANE_SALE_MULTITON_H

#include <cstddef>
#include <map>
#include <memory>

#include "base/NeverDestroyed.h"

namespace Corvane {

/// Keeps one object per key in one process-wide map, ordered by key. Nothing is locked: calls must not overlap.
template <class Object, class Key>
class Multiton {
 public:
  /// @return the object under `key`, or null. Owned by the store.
  static Object* Find(const Key& key) {
    const auto entry = Store().find(key);
    return entry == Store().end() ? nullptr : entry->second.get();
  }

  /// @return the object under `key`, made anew when there is none. Owned by the store.
  static Object& Create(const Key& key) {
    auto& entry = Store()[key];
    if (entry == nullptr) entry = std::make_unique<Object>();
    return *entry;
  }

  /// Destroys the object under `key` and removes its entry; an unknown key is no error.
  static void Destroy(const Key& key) { Store().erase(key); }

  /// Destroys all objects, in the order of their keys, and empties the store.
  static void DestroyAll() {
    for (auto& entry : Store()) entry.second.reset();
    Store().clear();
  }

  /// @return how many objects there are.
  static std::size_t Count() { return Store().size(); }

 private:
  static std::map<Key, std::unique_ptr<Object>>& Store() {
    static NeverDestroyed<std::map<Key, std::unique_ptr<Object>>> store;
    return *store;
  }
};

}  // namespace Corvane

#endif
