#ifndef QNCORVANE_ENGINE_RULEREGISTRY_H
#define QNCORVANE_ENGINE_RULEREGISTRY_H

#include <cstdint>
#include <map>
#include <optional>
#include <vector>

#include "base/Text.h"
#include "promo/AnyRule.h"

namespace Corvane {

using RuleList = std::vector<RulePtr>;

/// The loaded rules in the order of calculation: all "DZ", then all "PT", then all "DJ", each group by falling
/// `JzDate`. The texts of a rule's header must outlive the registry. Nothing is locked.
///
/// The order is what one gets by putting every rule into a list and sorting that list, stably, at each load. Rules of
/// the three words are kept in trees that give the same order without the sorting, so that n loads cost n log n. Only a
/// rule with another word, which falls out of the order in a way that hangs on the whole list, brings the list itself
/// back, until a load finds it in order again.
class RuleRegistry {
 public:
  /// @return the rules in their order. Good until the next load or removal.
  const RuleList& Rules() noexcept;

  /// Puts the rule into the slot of the last entry with exactly its number, which is dropped, or behind all others;
  /// then brings the rules into the order of calculation. An exception leaves the registry as it was.
  ///
  /// A rule whose `Primary` is none of the three words falls out of the order: it may vanish, and others may
  /// stand twice.
  void Load(RulePtr rule);

  /// Drops the rules with this number in any letter case; all of them for "*".
  void Remove(Text billNo) noexcept;

 private:
  /// A rule's place in the order.
  struct Place {
    int Group;  ///< 0 for "DZ", 1 for "PT", 2 for "DJ"
    Text JzDate;
    std::int64_t Rank;  ///< among rules of one group and date
  };
  struct Earlier {
    bool operator()(const Place& left, const Place& right) const;
  };
  using Order = std::map<Place, RulePtr, Earlier>;

  /// A number in any letter case.
  struct AnyCase {
    Text BillNo;
  };
  /// By letters first and by their case then, so that what differs in case alone stands together.
  struct ByNumber {
    using is_transparent = void;
    bool operator()(Text left, Text right) const;
    bool operator()(Text left, AnyCase right) const { return CompareIgnoringCase(left, right.BillNo) < 0; }
    bool operator()(AnyCase left, Text right) const { return CompareIgnoringCase(left.BillNo, right) < 0; }
  };
  using Numbers = std::map<Text, Order::iterator, ByNumber>;

  /// Rules that are in order, and of which each has a number of its own.
  struct Trees {
    Order Rules;
    Numbers ByBillNo;
    std::int64_t FrontRank = 0;  ///< the least that was given
    std::int64_t BackRank = 0;   ///< the greatest that was given
  };

  static int GroupOf(const ProInfo& rule);
  static int CompareKeys(const Place& left, const Place& right);
  static std::optional<Trees> Planted(const RuleList& rules);
  void LoadIntoTrees(RulePtr rule, int group);
  void LoadIntoList(RulePtr rule);
  void Add(const Place& key, RulePtr rule);
  void Replace(Numbers::iterator held, const Place& key, RulePtr rule);

  std::optional<Trees> m_trees = Trees();  ///< nothing while the list alone knows the order
  RuleList m_list;                         ///< with trees, what was last made of them
  bool m_isListed = true;                  ///< whether the list tells what the trees do
};

}  // namespace Corvane

#endif
