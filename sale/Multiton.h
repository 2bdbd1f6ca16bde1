#ifndef QNCORVANE_SALE_MULTITON_H
#define QNCORVANE_SALE_MULTITON_H

#include <map>
#include <memory>
#include <vector>

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

  /// Removes the entry of `key`; an unknown key is no error. The object is forgotten, not destroyed: it stays allocated
  /// until the process ends, and no key leads to it any more.
  static void Forget(const Key& key) {
    const auto entry = Store().find(key);
    if (entry == Store().end()) return;
    Forgotten().push_back(std::move(entry->second));
    Store().erase(entry);
  }

  /// Destroys all objects, in the order of their keys, and empties the store.
  static void DestroyAll() {
    for (auto& entry : Store()) entry.second.reset();
    Store().clear();
  }

 private:
  static std::map<Key, std::unique_ptr<Object>>& Store() {
    static std::map<Key, std::unique_ptr<Object>> store;
    return store;
  }

  static std::vector<std::unique_ptr<Object>>& Forgotten() {
    static std::vector<std::unique_ptr<Object>> forgotten;
    return forgotten;
  }
};

}  // namespace Corvane

#endif
