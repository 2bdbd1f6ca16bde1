#include <algorithm>
#include <iterator>
#include <map>
#include <tuple>
#include <utility>
#include <vector>

#include "base/Numbers.h"
#include "host/lint/Checks.h"
#include "host/lint/Words.h"
#include "promo/RuleTable.h"
#include "promo/mz/ProMzList.h"
#include "rule/RuleType.h"
#include "rule/SaleFilters.h"
#include "sale/ProDetailKey.h"

namespace Corvane::Host::Lint {

namespace {

constexpr Text kClasses[] = {StackingClass::kDz, StackingClass::kPt, StackingClass::kDj};
constexpr Text kAny = "*";

// --- Whether two rules can meet on a sale ---------------------------------------------------------------------------

bool SpansMeet(const std::string& startA, const std::string& endA, const std::string& startB, const std::string& endB) {
  return startA <= endB && startB <= endA;
}

bool DaysMeet(const XmlNode& a, const XmlNode& b) {
  if (a.Value("Frequency") != kWeekly || b.Value("Frequency") != kWeekly) return true;
  const std::string days = b.Value("WeekDays");
  const std::string own = a.Value("WeekDays");
  return std::any_of(own.begin(), own.end(),
                     [&](char day) { return day >= '0' && day <= '6' && days.find(day) != std::string::npos; });
}

bool HoursMeet(const XmlNode& a, const XmlNode& b) {
  if (a.Value("StartTime").empty() || b.Value("StartTime").empty()) return true;
  return SpansMeet(a.Value("StartTime"), a.Value("EndTime"), b.Value("StartTime"), b.Value("EndTime"));
}

bool HoldsAlways(const Rule& rule) { return TypeOf(rule.Type.c_str()).Has(Fact::IgnoresTime); }

bool TimesMeet(const Rule& a, const Rule& b) {
  if (HoldsAlways(a) || HoldsAlways(b)) return true;
  const std::vector<const XmlNode*> others = b.Xml.RowsOf("ProTime");
  for (const XmlNode* const row : a.Xml.RowsOf("ProTime")) {
    const bool meets = std::any_of(others.begin(), others.end(), [&](const XmlNode* other) {
      return SpansMeet(row->Value("StartDate"), row->Value("EndDate"), other->Value("StartDate"),
                       other->Value("EndDate")) &&
             DaysMeet(*row, *other) && HoursMeet(*row, *other);
    });
    if (meets) return true;
  }
  return false;
}

bool ShopsMeet(const Rule& a, const Rule& b) {
  const std::vector<const XmlNode*> others = b.Xml.RowsOf("OrgFilter");
  for (const XmlNode* const row : a.Xml.RowsOf("OrgFilter")) {
    const std::string shop = row->Value("OrgCode");
    const bool meets = std::any_of(others.begin(), others.end(), [&](const XmlNode* other) {
      return shop == kAny || other->Value("OrgCode") == kAny || other->Value("OrgCode") == shop;
    });
    if (meets) return true;
  }
  return false;
}

/// Rules with a mark run on sales of their own.
bool MarksMeet(const Rule& a, const Rule& b) {
  const auto mark = [](const Rule& rule) {
    const std::string remark = rule.Xml.Value("Remark");
    return remark == SaleMark::kDv || remark == SaleMark::kNv ? remark : std::string();
  };
  return mark(a) == mark(b);
}

bool CanMeet(const Rule& a, const Rule& b) { return MarksMeet(a, b) && ShopsMeet(a, b) && TimesMeet(a, b); }

// --- The goods that a rule acts on, or counts -----------------------------------------------------------------------

/// A kind and a code, or the mark of the whole sale.
using GoodsKey = std::pair<std::string, std::string>;

struct Reach {
  bool IsWholeSale = false;
  std::vector<GoodsKey> Goods;

  void Add(const Rows& rows, bool areArticles = false) {
    for (const Row& row : rows) {
      if (row.Text("InRange") == RangeWord::kNot) continue;
      Goods.emplace_back(areArticles ? GoodsKind::kGoods : row.Text("PluType"), row.Text("PluCode"));
    }
  }
};

void AddReduced(const Rule& rule, Reach& reach) {
  for (const Row& list : rule.In(Table::kList)) {
    reach.IsWholeSale = reach.IsWholeSale || list.Text("ConAreaType") == ConditionArea::kWholeSale;
  }
  reach.Add(rule.In(Table::kConditionGoods));
}

void AddNamed(const std::vector<const XmlNode*>& rows, Reach& reach) {
  for (const XmlNode* const row : rows) {
    if (row->Value("Contain") == RangeWord::kNot) continue;
    reach.Goods.emplace_back(row->Find("PluType") != nullptr ? row->Value("PluType") : GoodsKind::kGoods,
                             row->Value("PluCode"));
  }
}

Reach ReachOf(const Rule& rule) {
  Reach reach;
  const bool areArticles = rule.Is(TypeWord::kFixed) || rule.Is(TypeWord::kChoice);
  reach.Add(rule.In(Table::kDirect));
  reach.Add(rule.In(Table::kCombinationGoods), areArticles);
  reach.Add(rule.In(Table::kGoodsTier));
  if (rule.Is(TypeWord::kReduce)) AddReduced(rule, reach);
  const bool offers = rule.Is(TypeWord::kGift) || rule.Is(TypeWord::kExchange);
  if (offers || rule.Is(TypeWord::kGoodsFree)) {
    reach.Add(rule.In(Table::kConditionGoods));
    reach.IsWholeSale = rule.In(Table::kConditionGoods).empty();
    if (!offers) reach.Add(rule.In(Table::kGift), true);
  }
  for (const XmlNode* const list : rule.Xml.Groups("ProList")) {
    reach.IsWholeSale = reach.IsWholeSale || list->Value("ConAreaType") == ConditionArea::kWholeSale;
    AddNamed(list->RowsOf("PluCondition"), reach);
  }
  if (!rule.Is(TypeWord::kPay)) return reach;
  AddNamed(rule.Xml.RowsOf("PluCondition"), reach);
  reach.IsWholeSale = reach.Goods.empty();
  return reach;
}

/// Rules by the goods that they reach. An article is found by its category and brand, too, where the goods list tells them.
class ReachIndex {
 public:
  explicit ReachIndex(const Goods& goods) : m_goods(goods) {}

  void Add(const Rule& rule) {
    const Reach reach = ReachOf(rule);
    m_all.push_back(&rule);
    if (reach.IsWholeSale) m_whole.push_back(&rule);
    for (const GoodsKey& key : reach.Goods) {
      m_byGoods[key].push_back(&rule);
      for (const GoodsKey& own : ClassesOf(key)) m_byMember[own].push_back(&rule);
    }
  }

  /// @return the last rule added that shares goods with this one, and of which the predicate holds; null for none.
  template <class Predicate>
  const Rule* Find(const Rule& rule, Predicate holds) const {
    const Reach reach = ReachOf(rule);
    if (reach.IsWholeSale) return LastOf(m_all, holds);
    if (const Rule* const found = LastOf(m_whole, holds)) return found;
    for (const GoodsKey& key : reach.Goods) {
      if (const Rule* const found = LastOf(At(m_byGoods, key), holds)) return found;
      if (const Rule* const found = LastOf(At(m_byMember, key), holds)) return found;
      for (const GoodsKey& own : ClassesOf(key)) {
        if (const Rule* const found = LastOf(At(m_byGoods, own), holds)) return found;
      }
    }
    return nullptr;
  }

 private:
  using Pointers = std::vector<const Rule*>;
  using Map = std::map<GoodsKey, Pointers>;
  static constexpr std::ptrdiff_t kMostLooked = 200;  ///< of many rules on the same goods the last ones are looked at

  std::vector<GoodsKey> ClassesOf(const GoodsKey& key) const {
    std::vector<GoodsKey> classes;
    const Article* const article = key.first == GoodsKind::kGoods ? m_goods.Find(key.second) : nullptr;
    if (article == nullptr) return classes;
    if (!article->Category.empty()) classes.emplace_back(GoodsKind::kCategory, article->Category);
    if (!article->Brand.empty()) classes.emplace_back(GoodsKind::kBrand, article->Brand);
    return classes;
  }

  static const Pointers& At(const Map& map, const GoodsKey& key) {
    static const auto* const none = new Pointers;
    const auto found = map.find(key);
    return found == map.end() ? *none : found->second;
  }

  template <class Predicate>
  static const Rule* LastOf(const Pointers& rules, Predicate holds) {
    const auto end =
        rules.rbegin() + std::min<std::ptrdiff_t>(kMostLooked, std::distance(rules.rbegin(), rules.rend()));
    const auto found = std::find_if(rules.rbegin(), end, [&](const Rule* rule) { return holds(*rule); });
    return found == end ? nullptr : *found;
  }

  const Goods& m_goods;
  Pointers m_all;
  Pointers m_whole;
  Map m_byGoods;
  Map m_byMember;
};

// --- Order ----------------------------------------------------------------------------------------------------------

std::ptrdiff_t RankOf(const Rule& rule) {
  return std::find_if(std::begin(kClasses), std::end(kClasses), [&](Text word) { return rule.IsClass(word); }) -
         std::begin(kClasses);
}

const RuleKind* KindOf(const Rule& rule) { return FindKind(RuleKinds(), rule.Type.c_str()); }

/// The rules in the order of calculation; those whose class is none have no place in it.
std::vector<const Rule*> InOrder(const std::vector<Rule>& rules) {
  std::vector<const Rule*> order;
  for (const Rule& rule : rules) {
    if (rule.IsReplaced) continue;
    if (RankOf(rule) < std::end(kClasses) - std::begin(kClasses) && KindOf(rule) != nullptr) order.push_back(&rule);
  }
  std::stable_sort(order.begin(), order.end(), [](const Rule* left, const Rule* right) {
    if (RankOf(*left) != RankOf(*right)) return RankOf(*left) < RankOf(*right);
    return left->Xml.Value("JzDate") > right->Xml.Value("JzDate");
  });
  return order;
}

/// Whether a rule leaves what others count as it is: offers do, and coupons that are given under a class that shuts nobody out.
bool LeavesNothing(const Rule& rule) {
  return rule.Is(TypeWord::kGift) || rule.Is(TypeWord::kExchange) ||
         (rule.Is(TypeWord::kGiveCoupon) && rule.IsClass(StackingClass::kDj));
}

void CheckDates(const std::vector<const Rule*>& order, const Goods& goods, Flaws& flaws) {
  // By pass, class and date.
  std::map<std::tuple<Pass, std::string, std::string>, ReachIndex> groups;
  for (const Rule* const rule : order) {
    const std::string date = rule->Xml.Value("JzDate");
    ReachIndex& group =
        groups.emplace(std::make_tuple(KindOf(*rule)->RunsIn, rule->Primary, date), ReachIndex(goods)).first->second;
    const Rule* const other = group.Find(*rule, [&](const Rule& held) {
      return !(LeavesNothing(held) && LeavesNothing(*rule)) && CanMeet(held, *rule);
    });
    group.Add(*rule);
    if (other == nullptr) continue;
    flaws.Add(Codes::kSameDate, rule->At(rule->Xml, "JzDate"),
              Shown(rule->BillNo) + " and " + Shown(other->BillNo) + " of " + other->File + " have the class " +
                  rule->Primary + ", the JzDate " + Shown(date) +
                  " and goods in common: the one that is loaded first comes first",
              "give the one that is to come first a later JzDate");
  }
}

// --- What a rule leaves to those behind it --------------------------------------------------------------------------

/// Whether a full-amount rule writes on lines what it took.
bool TakesLines(const Rule& rule) {
  return rule.Is(TypeWord::kReduce) || rule.Is(TypeWord::kGoods) || rule.Is(TypeWord::kGoodsFree);
}

bool GivesSomething(const Rule& rule) {
  return KindOf(rule)->RunsIn == Pass::FullAmount && !rule.Is(TypeWord::kReduce);
}

/// Coupons for the whole sale go by the lines' amounts, and not by what is open of them.
bool CountsWhatIsOpen(const Rule& rule) {
  if (!rule.Is(TypeWord::kGiveCoupon)) return true;
  const std::vector<const XmlNode*> lists = rule.Xml.Groups("ProList");
  return std::any_of(lists.begin(), lists.end(),
                     [](const XmlNode* list) { return list->Value("ConAreaType") == ConditionArea::kChosenLines; });
}

/// What a "DZ" rule took is gone for all; what a "PT" rule of the family took, for all but those of class "DJ".
bool Takes(const Rule& taker, const Rule& later) {
  return taker.IsClass(StackingClass::kDz) || (taker.IsClass(StackingClass::kPt) && !later.IsClass(StackingClass::kDj));
}

void CheckGifts(const std::vector<const Rule*>& order, const Goods& goods, Flaws& flaws) {
  ReachIndex before(goods);
  for (const Rule* const rule : order) {
    if (KindOf(*rule)->RunsIn != Pass::FullAmount) continue;
    const Rule* const taker =
        GivesSomething(*rule) && CountsWhatIsOpen(*rule)
            ? before.Find(*rule, [&](const Rule& held) { return Takes(held, *rule) && CanMeet(held, *rule); })
            : nullptr;
    if (TakesLines(*rule)) before.Add(*rule);
    if (taker == nullptr) continue;
    flaws.Add(Codes::kStarvedGift, rule->At(rule->Xml, "Primary"),
              taker->Type + " " + Shown(taker->BillNo) + " of class " + taker->Primary +
                  " comes first, and what it acts on doesn't count for " + rule->Type + " " + Shown(rule->BillNo) +
                  " any more",
              taker->IsClass(StackingClass::kDz) ? "write Primary PT in " + taker->File + ", and DJ here"
                                                 : "write Primary DJ, or a later JzDate than " + taker->File);
  }
}

using Pointers = std::vector<const Rule*>;

/// A rule that gives coupons writes on the sale itself, which bars further full-amount rules.
void CheckBarredBy(const Pointers& givers, const Rule& rule, Flaws& flaws) {
  const auto giver = std::find_if(givers.begin(), givers.end(), [&](const Rule* held) {
    return (held->IsClass(StackingClass::kDz) || rule.IsClass(StackingClass::kPt)) && CanMeet(*held, rule);
  });
  if (giver == givers.end()) return;
  flaws.Add(Codes::kBarredByCoupons, rule.At(rule.Xml, "Primary"),
            "MZZQ " + Shown((*giver)->BillNo) + " of class " + (*giver)->Primary +
                " comes first; where it has given coupons, " + rule.Type + " " + Shown(rule.BillNo) + " does nothing",
            "write Primary DJ in " + (*giver)->File);
}

void CheckBarred(const Pointers& order, Flaws& flaws) {
  Pointers givers;
  for (const Rule* const rule : order) {
    if (KindOf(*rule)->RunsIn != Pass::FullAmount) continue;
    CheckBarredBy(givers, *rule, flaws);
    if (rule->Is(TypeWord::kGiveCoupon) && !rule->IsClass(StackingClass::kDj)) givers.push_back(rule);
  }
  // Coupons are taken behind all of that, whatever the dates say.
  for (const Rule* const rule : order) {
    if (KindOf(*rule)->RunsIn == Pass::Coupon) CheckBarredBy(givers, *rule, flaws);
  }
}

}  // namespace

void CheckStacking(const Store& store, Flaws& flaws) {
  const std::vector<const Rule*> order = InOrder(store.Rules);
  CheckDates(order, store.List, flaws);
  CheckGifts(order, store.List, flaws);
  CheckBarred(order, flaws);
}

}  // namespace Corvane::Host::Lint
