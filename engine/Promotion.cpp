#include "engine/Promotion.h"

#include <QMutex>
#include <QMutexLocker>
#include <algorithm>
#include <atomic>
#include <utility>

#include "base/NeverDestroyed.h"
#include "base/Walk.h"

namespace Corvane {

namespace {

std::int32_t FindRule(const RuleList& rules, Text billNo) {
  auto place = static_cast<std::int32_t>(rules.size());
  for (const RulePtr& rule : LastToFirst(rules)) {
    --place;
    if (Same(InfoOf(*rule).BillNo, billNo)) return place;
  }
  return -1;
}

void AddRule(RuleList& rules, RulePtr rule) {
  const std::int32_t place = FindRule(rules, InfoOf(*rule).BillNo);
  if (place < 0) {
    rules.push_back(std::move(rule));
  } else {
    rules[static_cast<std::size_t>(place)] = std::move(rule);
  }
}

void SortRules(RuleList& rules) {
  std::stable_sort(rules.begin(), rules.end(), [](const RulePtr& left, const RulePtr& right) {
    return CompareBytes(InfoOf(*left).JzDate, InfoOf(*right).JzDate) > 0;
  });
  RuleList grouped;
  for (const Text primary : {StackingClass::kDz, StackingClass::kPt, StackingClass::kDj}) {
    std::copy_if(rules.begin(), rules.end(), std::back_inserter(grouped),
                 [&](const RulePtr& rule) { return Same(InfoOf(*rule).Primary, primary); });
  }
  // The grouped rules go over the front; the length stays. A rule outside the three classes is overwritten or stays
  // behind them, and an entry behind them may stand in front too: the order is defined for the three words only.
  std::copy(grouped.begin(), grouped.end(), rules.begin());
}

}  // namespace

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

void Promotion::LoadRule(RulePtr rule) {
  RuleList next = m_rules;
  AddRule(next, std::move(rule));
  SortRules(next);
  m_rules.swap(next);
}

void Promotion::RemoveRules(Text billNo) {
  const bool all = SameIgnoringCase(billNo, "*");
  m_rules.erase(
      std::remove_if(m_rules.begin(), m_rules.end(),
                     [&](const RulePtr& rule) { return all || SameIgnoringCase(InfoOf(*rule).BillNo, billNo); }),
      m_rules.end());
}

}  // namespace Corvane
