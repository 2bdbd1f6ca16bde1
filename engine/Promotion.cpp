#include "engine/Promotion.h"

#include <QMutex>
#include <QMutexLocker>
#include <atomic>

#include "base/NeverDestroyed.h"

namespace Corvane {

Promotion& Promotion::Instance() {
  static std::atomic<Promotion*> instance{nullptr};
  static NeverDestroyed<QMutex> mutex;
  if (Promotion* made = instance.load(std::memory_order_acquire)) return *made;
  const QMutexLocker lock(&*mutex);
  if (instance.load(std::memory_order_relaxed) == nullptr) {
    instance.store(new Promotion, std::memory_order_release);
  }
  return *instance.load(std::memory_order_relaxed);
}

}  // namespace Corvane
