#include "engine/RuleRegistry.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "base/Walk.h"

namespace Corvane {

namespace {

constexpr Text kGroups[] = {StackingClass::kDz, StackingClass::kPt, StackingClass::kDj};
constexpr int kNoGroup = -1;

/// The slot of the last entry with exactly this number; the end when there is none.
RuleList::iterator SlotOf(RuleList& rules, Text billNo) {
  const auto found = std::find_if(rules.rbegin(), rules.rend(),
                                  [&](const RulePtr& rule) { return Same(InfoOf(*rule).BillNo, billNo); });
  return found == rules.rend() ? rules.end() : std::prev(found.base());
}

void PutIntoSlot(RuleList& rules, RulePtr rule) {
  const auto slot = SlotOf(rules, InfoOf(*rule).BillNo);
  if (slot == rules.end()) {
    rules.push_back(std::move(rule));
  } else {
    *slot = std::move(rule);
  }
}

void SortRules(RuleList& rules) {
  std::stable_sort(rules.begin(), rules.end(), [](const RulePtr& left, const RulePtr& right) {
    return CompareBytes(InfoOf(*left).JzDate, InfoOf(*right).JzDate) > 0;
  });
  RuleList grouped;
  for (const Text primary : kGroups) {
    std::copy_if(rules.begin(), rules.end(), std::back_inserter(grouped),
                 [&](const RulePtr& rule) { return Same(InfoOf(*rule).Primary, primary); });
  }
  // The grouped rules go over the front; the length stays. A rule outside the three classes is overwritten or stays
  // behind them, and an entry behind them may stand in front too: the order is defined for the three words only.
  std::copy(grouped.begin(), grouped.end(), rules.begin());
}

}  // namespace

int RuleRegistry::GroupOf(const ProInfo& rule) {
  const auto* const found = std::find_if(std::begin(kGroups), std::end(kGroups),
                                         [&](const Text primary) { return Same(rule.Primary, primary); });
  return found == std::end(kGroups) ? kNoGroup : static_cast<int>(found - std::begin(kGroups));
}

/// By group and falling date, below, at or above 0.
int RuleRegistry::CompareKeys(const Place& left, const Place& right) {
  return left.Group != right.Group ? left.Group - right.Group : CompareBytes(right.JzDate, left.JzDate);
}

bool RuleRegistry::Earlier::operator()(const Place& left, const Place& right) const {
  const int keys = CompareKeys(left, right);
  return keys != 0 ? keys < 0 : left.Rank < right.Rank;
}

bool RuleRegistry::ByNumber::operator()(Text left, Text right) const {
  const int letters = CompareIgnoringCase(left, right);
  return letters != 0 ? letters < 0 : CompareBytes(left, right) < 0;
}

const RuleList& RuleRegistry::Rules() noexcept {
  if (!m_isListed) {
    // Every load has seen to the room.
    for (const auto& [place, rule] : m_trees->Rules) m_list.push_back(rule);
    m_isListed = true;
  }
  return m_list;
}

void RuleRegistry::Load(RulePtr rule) {
  const int group = GroupOf(InfoOf(*rule));
  if (m_trees && group != kNoGroup) {
    LoadIntoTrees(std::move(rule), group);
  } else {
    LoadIntoList(std::move(rule));
  }
}

void RuleRegistry::LoadIntoTrees(RulePtr rule, int group) {
  const std::size_t room = m_trees->Rules.size() + 1;
  if (m_list.capacity() < room) m_list.reserve(2 * room);
  const ProInfo& info = InfoOf(*rule);
  const Place key{group, info.JzDate, 0};
  const auto held = m_trees->ByBillNo.find(info.BillNo);
  if (held == m_trees->ByBillNo.end()) {
    Add(key, std::move(rule));
  } else {
    Replace(held, key, std::move(rule));
  }
  m_list.clear();
  m_isListed = false;
}

/// Behind all rules of its key.
void RuleRegistry::Add(const Place& key, RulePtr rule) {
  Numbers number;
  const auto entry = number.emplace(InfoOf(*rule).BillNo, m_trees->Rules.end()).first;
  const Place place{key.Group, key.JzDate, m_trees->BackRank + 1};
  entry->second = m_trees->Rules.emplace(place, std::move(rule)).first;
  m_trees->BackRank = place.Rank;
  m_trees->ByBillNo.merge(number);  // needs no memory
}

/// A slot in front of all rules of the key, behind them, or among them.
void RuleRegistry::Replace(Numbers::iterator held, const Place& key, RulePtr rule) {
  const int from = CompareKeys(held->second->first, key);
  if (from == 0) {
    held->second->second = std::move(rule);
    return;
  }
  const Place place{key.Group, key.JzDate, from < 0 ? m_trees->FrontRank - 1 : m_trees->BackRank + 1};
  const auto added = m_trees->Rules.emplace(place, std::move(rule)).first;
  (from < 0 ? m_trees->FrontRank : m_trees->BackRank) = place.Rank;
  m_trees->Rules.erase(held->second);
  held->second = added;
}

void RuleRegistry::LoadIntoList(RulePtr rule) {
  RuleList next = Rules();
  PutIntoSlot(next, std::move(rule));
  SortRules(next);
  std::optional<Trees> trees = Planted(next);
  m_list.swap(next);
  m_trees = std::move(trees);
}

/// @return nothing for a sorted list that isn't in order: what stands behind its groups has another word, or stands in
///         a group, too.
std::optional<RuleRegistry::Trees> RuleRegistry::Planted(const RuleList& rules) {
  Trees trees;
  for (const RulePtr& rule : rules) {
    const ProInfo& info = InfoOf(*rule);
    const int group = GroupOf(info);
    if (group == kNoGroup) return std::nullopt;
    const auto added = trees.Rules.emplace_hint(trees.Rules.end(), Place{group, info.JzDate, ++trees.BackRank}, rule);
    if (!trees.ByBillNo.emplace(info.BillNo, added).second) return std::nullopt;
  }
  return trees;
}

void RuleRegistry::Remove(Text billNo) noexcept {
  if (SameIgnoringCase(billNo, "*")) {
    *this = RuleRegistry();
    return;
  }
  if (!m_trees) {
    m_list.erase(std::remove_if(m_list.begin(), m_list.end(),
                                [&](const RulePtr& rule) { return SameIgnoringCase(InfoOf(*rule).BillNo, billNo); }),
                 m_list.end());
    return;
  }
  const auto [first, last] = m_trees->ByBillNo.equal_range(AnyCase{billNo});
  for (auto number = first; number != last; ++number) m_trees->Rules.erase(number->second);
  m_trees->ByBillNo.erase(first, last);
  m_list.clear();
  m_isListed = false;
}

}  // namespace Corvane
