#include "engine/Promotion.h"

#include <QMutex>
#include <QMutexLocker>
#include <atomic>

#include "base/NeverDestroyed.h"

namespace Corvane {

namespace {

std::atomic<Promotion*> g_instance{nullptr};

QMutex& Creation() {
  static NeverDestroyed<QMutex> mutex;
  return *mutex;
}

}  // namespace

Promotion& Promotion::Instance() {
  if (Promotion* made = g_instance.load(std::memory_order_acquire)) return *made;
  const QMutexLocker lock(&Creation());
  if (g_instance.load(std::memory_order_relaxed) == nullptr) {
    g_instance.store(new Promotion({}), std::memory_order_release);
  }
  return *g_instance.load(std::memory_order_relaxed);
}

void Promotion::Enter(const QString& folder) {
  Promotion* const made = g_instance.load(std::memory_order_acquire);
  if (made == nullptr) {
    g_instance.store(new Promotion(folder), std::memory_order_release);
    return;
  }
  made->RemoveRules("*");
  // In a process that was forked, the connection is the other one's, and nothing on it may be ended here.
  if (made->m_db.Shared().IsInherited()) static_cast<void>(new QnPosDBPro(made->m_db));
  made->m_db = QnPosDBPro(folder);
}

void Promotion::Leave() {
  RemoveRules("*");
  m_db.Shared().End();
}

}  // namespace Corvane
