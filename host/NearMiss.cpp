#include "host/NearMiss.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <utility>

#include "base/Numbers.h"
#include "db/Connection.h"
#include "engine/Driver.h"
#include "engine/Promotion.h"
#include "host/Cents.h"
#include "log/LogSilence.h"
#include "promo/AnyRule.h"

namespace Corvane::Host {

namespace {

/// Additions that are tried for one rule before it is given up: a menu of many slots takes one for each.
constexpr int kMostAdditions = 12;
/// Calculations for one explanation.
constexpr int kMostCalculations = 300;
/// More pieces than this nobody adds for a discount.
constexpr double kMostPieces = 10'000;
/// Above what any coupon is worth: how much of it a sale takes in is how much it may.
constexpr double kLargeCoupon = 1e7;

// --- What a sale brings ----------------------------------------------------------------------------------------------

std::int64_t CentsOff(const ProSale& sale, Text billNo) {
  std::int64_t cents = 0;
  for (const SalePlu& line : sale.Plus) {
    for (const ProResult& row : line.ProResults) {
      if (billNo == nullptr || Same(row.ProBillNo, billNo)) cents = SumOfCents(cents, PrintedCents(row.DisMoney));
    }
  }
  return cents;
}

/// What of a list is a rule's, or all of it for null.
template <class List, class BillNoOf>
std::int64_t CountOf(const List& list, Text billNo, BillNoOf billNoOf) {
  return std::count_if(list.begin(), list.end(),
                       [&](const auto& entry) { return billNo == nullptr || Same(billNoOf(entry), billNo); });
}

std::int64_t OffersOf(const ProSale& sale, Text billNo) {
  return CountOf(sale.ProGifts, billNo, [](const SaleProGift& offers) { return offers.ProBillNo; });
}

std::int64_t CouponsOf(const ProSale& sale, Text billNo) {
  return CountOf(sale.GivenCoupons, billNo, [](const SaleCoupon& coupon) { return coupon.BillNo; });
}

std::int64_t CouponCents(const ProSale& sale, Text billNo) {
  std::int64_t cents = 0;
  for (const SaleCoupon& coupon : sale.GivenCoupons) {
    if (billNo == nullptr || Same(coupon.BillNo, billNo)) {
      cents = SumOfCents(cents, PrintedCents(ToDouble(coupon.Value)));
    }
  }
  return cents;
}

Gain GainOf(const ProSale& changed, const ProSale& sale, Text billNo) {
  Gain gain;
  gain.Cents = CentsOff(changed, nullptr) - CentsOff(sale, nullptr);
  gain.RuleCents = CentsOff(changed, billNo) - CentsOff(sale, billNo);
  gain.Offers = OffersOf(changed, nullptr) - OffersOf(sale, nullptr);
  gain.Coupons = CouponsOf(changed, nullptr) - CouponsOf(sale, nullptr);
  gain.CouponCents = CouponCents(changed, nullptr) - CouponCents(sale, nullptr);
  return gain;
}

/// Whether a rule itself gives more.
bool GivesMore(const ProSale& changed, const ProSale& sale, Text billNo) {
  return CentsOff(changed, billNo) > CentsOff(sale, billNo) || OffersOf(changed, billNo) > OffersOf(sale, billNo) ||
         CouponsOf(changed, billNo) > CouponsOf(sale, billNo) ||
         CouponCents(changed, billNo) > CouponCents(sale, billNo);
}

bool HasSameRows(const ProSale& left, const ProSale& right) {
  const auto sameRow = [](const ProResult& one, const ProResult& other) {
    return Same(one.ProBillNo, other.ProBillNo) && one.DisMoney == other.DisMoney;
  };
  return std::equal(left.Plus.begin(), left.Plus.end(), right.Plus.begin(), right.Plus.end(),
                    [&](const SalePlu& line, const SalePlu& other) {
                      return std::equal(line.ProResults.begin(), line.ProResults.end(), other.ProResults.begin(),
                                        other.ProResults.end(), sameRow);
                    });
}

// --- What a rule misses ----------------------------------------------------------------------------------------------

bool CanBeAdded(const Decision& decision) {
  switch (decision.Why) {
    case Reason::BelowMinimum:
    case Reason::BelowSetSize:
    case Reason::ArticleShort:
    case Reason::ConditionShort:
    case Reason::TotalShort:
    case Reason::BelowThreshold:
    case Reason::NothingAboveThreshold:
    case Reason::PaymentTooSmall:
    case Reason::NoCoupons:
      return true;
    case Reason::SlotShort:
    case Reason::GoodsMissing:
      return !decision.Goods.empty();
    default:
      return false;
  }
}

double NumberOf(const Measure& measure) {
  const double* const number = std::get_if<double>(&measure);
  return number != nullptr ? *number : 0;
}

double MissingOf(const Decision& decision) { return std::max(0.0, NumberOf(decision.Need) - NumberOf(decision.Have)); }

bool MissesLess(const Decision& decision, const Decision& other) {
  const auto part = [](const Decision& one) { return Quotient(MissingOf(one), NumberOf(one.Need)); };
  return part(decision) < part(other);
}

/// The outcome of the rule that counts: the one in which it gave something, otherwise the last that was its own.
const RuleOutcome* OwnOutcome(const ExplainedRule& rule) {
  const RuleOutcome* own = nullptr;
  for (const RuleOutcome& outcome : rule.Outcomes) {
    if (outcome.HasGiven()) return &outcome;
    const bool isElsewhere = !outcome.Decisions.empty() && (outcome.Decisions.front().Why == Reason::OtherPass ||
                                                            outcome.Decisions.front().Why == Reason::OtherClass);
    if (!isElsewhere) own = &outcome;
  }
  return own;
}

/// Whether an article is of a slot that nothing fills: of the one that ends the menu, if there is such a one.
bool IsOfOpenSlot(const RuleOutcome& outcome, const Decision& article) {
  const auto isSlot = [](const Decision& decision) {
    return decision.Why == Reason::SlotShort && decision.Goods.empty() && !decision.Slot.empty();
  };
  const auto& decisions = outcome.Decisions;
  const bool isEnded = std::any_of(decisions.begin(), decisions.end(),
                                   [&](const Decision& decision) { return isSlot(decision) && decision.IsFinal; });
  return std::any_of(decisions.begin(), decisions.end(), [&](const Decision& decision) {
    return isSlot(decision) && decision.Slot == article.Slot && (decision.IsFinal || !isEnded);
  });
}

/// What a rule is nearest to; nothing where no addition helps.
const Decision* NearestOf(const ExplainedRule& rule) {
  const RuleOutcome* const outcome = OwnOutcome(rule);
  if (outcome == nullptr) return nullptr;
  const Decision* nearest = nullptr;
  for (const Decision& decision : outcome->Decisions) {
    if (!CanBeAdded(decision)) continue;
    if (decision.Why == Reason::SlotShort && !IsOfOpenSlot(*outcome, decision)) continue;
    if (nearest == nullptr || MissesLess(decision, *nearest)) nearest = &decision;
  }
  return nearest;
}

const ExplainedRule* FindRule(const Explanation& told, const RulePtr& rule) {
  const auto found = std::find_if(told.Rules().begin(), told.Rules().end(),
                                  [&](const ExplainedRule& held) { return held.Rule == rule; });
  return found == told.Rules().end() ? nullptr : &*found;
}

// --- The changed sale ------------------------------------------------------------------------------------------------

double UnitOf(const SalePlu& line) { return line.Price > 0 ? line.Price : Quotient(line.Total, line.PluCount); }

/// The amount is one of whole cents, as a till would send it.
void AddPieces(SalePlu& line, double pieces) {
  const double money = pieces * UnitOf(line);
  line.PluCount += pieces;
  line.Total = RoundMoney(line.Total + money);
  line.TotalBefore = line.Total;
  line.FinalPrice = Quotient(line.Total, line.PluCount);
}

/// A sale as it stood before its last mode, to be changed and calculated.
class Trial {
 public:
  Trial(const Mode& mode, const ProSale& before, GoodsList& goods) : m_mode(mode), m_before(before), m_goods(goods) {
    m_start.CopyFrom(before);
    if (!mode.StartsAnew) Rewind(m_start);
  }

  /// Adds what a decision misses. @return nothing where it isn't known what, or for how much.
  std::optional<Addition> Add(const Decision& decision) {
    switch (decision.In) {
      case Unit::Coupon:
        return AddCoupon();
      case Unit::Payment:
        return AddPayment(MissingOf(decision));
      case Unit::Money:
        if (decision.Why == Reason::PaymentTooSmall) return AddPayment(MissingOf(decision));
        break;
      default:
        break;
    }
    return AddGoods(decision);
  }

  /// Calculates the sale as it is now.
  void Calculate(ProSale& sale, Explanation* asked) const {
    sale.CopyFrom(m_start);
    if (!m_mode.StartsAnew) {
      for (const Text name : m_before.Trail) Run(*FindMode(name), sale, nullptr);
      // What came between the modes is there when the last one runs.
      sale.Coupons = m_start.Coupons;
      sale.Gifts = m_start.Gifts;
    }
    Run(m_mode, sale, asked);
  }

 private:
  /// Takes a sale back to where its lines had no results.
  static void Rewind(ProSale& sale) {
    for (SalePlu& line : sale.Plus) {
      line.ProResults.clear();
      line.Apportions.clear();
      line.Total = line.TotalBefore;
      line.FinalPrice = Quotient(line.Total, line.PluCount);
      line.DisNum = 0;
    }
    sale.SaleResults.clear();
    sale.ProGifts.clear();
    sale.GivenCoupons.clear();
  }

  static void Run(const Mode& mode, ProSale& sale, Explanation* asked) {
    std::string result;
    std::array<char, 1024> message{};  // above the longest status text by far
    constexpr std::int32_t kNoLine = -1;
    mode.Run({sale, kNoLine, ResultPlace(result), message.data(), asked});
  }

  Addition AddCoupon() {
    SaleCoupon coupon;
    coupon.Value = m_start.Texts.Keep(FormatF6(kLargeCoupon));
    m_start.Coupons.push_back(coupon);
    return {Addition::Thing::kCoupon, {}, 0, 0, std::nullopt};
  }

  /// With one payment it is clear which one would have to be larger.
  std::optional<Addition> AddPayment(double money) {
    if (m_start.Pays.size() != 1 || !(money > 0)) return std::nullopt;
    m_start.Pays.front().PayMoney += money;
    return Addition{Addition::Thing::kPayment, {}, 0, money, std::nullopt};
  }

  std::optional<Addition> AddGoods(const Decision& decision) {
    SalePlu* const line = CheapestFor(decision);
    if (line == nullptr) return decision.Goods.empty() ? std::nullopt : AddToOwnLine(decision);
    const double pieces = PiecesFor(decision, UnitOf(*line));
    if (!(pieces > 0) || pieces > kMostPieces) return std::nullopt;
    AddPieces(*line, pieces);
    // A line that an addition before this one made is none of the sale's.
    const bool isAdded = static_cast<std::size_t>(line->Index) >= m_before.Plus.size();
    return Addition{Addition::Thing::kGoods, OrEmpty(line->PluCode), isAdded ? 0 : line->SerialNo, pieces,
                    UnitOf(*line)};
  }

  /// Of the lines that a decision is about, the one whose further pieces cost least.
  SalePlu* CheapestFor(const Decision& decision) {
    SalePlu* cheapest = nullptr;
    double least = 0;
    for (const std::int32_t place : decision.Lines) {
      if (static_cast<std::size_t>(place) >= m_start.Plus.size()) continue;
      SalePlu& line = m_start.Plus[static_cast<std::size_t>(place)];
      if (!(UnitOf(line) > 0) || !(line.PluCount > 0)) continue;
      const double cost = PiecesFor(decision, UnitOf(line)) * UnitOf(line);
      if (cheapest != nullptr && !(cost < least)) continue;
      cheapest = &line;
      least = cost;
    }
    return cheapest;
  }

  /// Whole pieces; where it isn't said how many are missing, one.
  static double PiecesFor(const Decision& decision, double unit) {
    const double missing = MissingOf(decision);
    const bool isCounted = decision.In == Unit::Quantity && missing > 0;
    const bool isMoney = decision.In == Unit::Money && missing > 0;
    if (isCounted) return std::ceil(missing - kNoise);
    return isMoney ? std::ceil(Quotient(missing, unit) - kNoise) : 1;
  }

  /// Adds to the line that an addition before this one made of the goods, or makes one.
  std::optional<Addition> AddToOwnLine(const Decision& decision) {
    const auto begin = m_start.Plus.begin() + static_cast<std::ptrdiff_t>(m_before.Plus.size());
    const auto own = std::find_if(begin, m_start.Plus.end(),
                                  [&](const SalePlu& line) { return decision.Goods == OrEmpty(line.PluCode); });
    if (own == m_start.Plus.end()) return AddLine(decision);
    const double pieces = PiecesFor(decision, own->Price);
    if (pieces > kMostPieces) return std::nullopt;
    AddPieces(*own, pieces);
    return Addition{Addition::Thing::kGoods, decision.Goods, 0, pieces, own->Price};
  }

  std::optional<Addition> AddLine(const Decision& decision) {
    if (m_start.Plus.empty()) return std::nullopt;
    const std::optional<Article> article = m_goods.Find(decision.Goods);
    const double pieces = PiecesFor(decision, article ? article->Price : 1);
    const bool isPriced = article && article->Price > 0 && pieces <= kMostPieces;
    if (!isPriced) {
      m_isUnknown = true;
      return Addition{Addition::Thing::kGoods, decision.Goods, 0, decision.In == Unit::Money ? 0 : pieces,
                      std::nullopt};
    }
    SalePlu line;
    line.SerialNo = FreeSerialNo();
    line.Index = static_cast<std::int32_t>(m_start.Plus.size());
    line.BillNo = m_start.BillNo;
    line.PluCode = m_start.Texts.Keep(decision.Goods);
    line.Price = article->Price;
    line.PackCnt = 1;
    line.SaleDate = m_start.Plus.front().SaleDate;
    line.SaleTime = m_start.Plus.front().SaleTime;
    AddClass(line.CAT, "CAT", article->Category, line);
    AddClass(line.BRD, "BRD", article->Brand, line);
    AddPieces(line, pieces);
    m_start.Plus.push_back(line);
    return Addition{Addition::Thing::kGoods, decision.Goods, 0, pieces, article->Price};
  }

  /// A number that no line of the sale has.
  std::int32_t FreeSerialNo() const {
    std::int32_t number = 1;
    const auto isTaken = [&](const SalePlu& line) { return line.SerialNo == number; };
    while (std::any_of(m_start.Plus.begin(), m_start.Plus.end(), isTaken)) ++number;
    return number;
  }

  void AddClass(Text& field, Text word, const std::string& code, SalePlu& line) {
    if (code.empty()) return;
    field = m_start.Texts.Keep(code);
    line.LineClasses.emplace_back(word, field);
  }

 public:
  /// Whether something was added whose price nobody knows.
  bool IsUnknown() const { return m_isUnknown; }

 private:
  const Mode& m_mode;
  const ProSale& m_before;
  GoodsList& m_goods;
  ProSale m_start;
  bool m_isUnknown = false;
};

// --- The search ------------------------------------------------------------------------------------------------------

/// Keeps the rows that rules hold for the modes to come, whatever is calculated in the life of this object.
class RowsKept {
 public:
  RowsKept() {
    for (const RulePtr& rule : Promotion::Instance().Rules()) {
      if (const auto* const limit = std::get_if<ProDirectLimit>(rule.get())) {
        m_held.emplace_back(rule, limit->HeldRows());
      }
    }
  }
  RowsKept(const RowsKept&) = delete;
  RowsKept& operator=(const RowsKept&) = delete;
  ~RowsKept() {
    for (auto& [rule, rows] : m_held) std::get_if<ProDirectLimit>(rule.get())->PutBack(std::move(rows));
  }

 private:
  std::vector<std::pair<RulePtr, DirectDetail>> m_held;
};

/// Tries additions on one sale.
class Search {
 public:
  Search(const Mode& mode, const Explanation& told, const ProSale& sale, GoodsList& goods)
      : m_mode(mode), m_told(told), m_sale(sale), m_goods(goods) {}

  NearMisses Find() {
    std::vector<std::pair<RulePtr, const Decision*>> missing;
    for (const ExplainedRule& rule : m_told.Rules()) {
      if (const Decision* const nearest = NearestOf(rule)) missing.emplace_back(rule.Rule, nearest);
    }
    // What can't be come to again can't be tried out: a sale whose lines were sent anew between its modes.
    if (missing.empty() || !IsRepeatable()) return {};
    NearMisses found;
    for (const auto& [rule, nearest] : missing) {
      if (m_calculations >= kMostCalculations) break;
      if (std::optional<NearMiss> near = Try(rule, *nearest)) found.push_back(std::move(*near));
    }
    return found;
  }

 private:
  bool IsRepeatable() {
    Trial unchanged(m_mode, m_told.Before(), m_goods);
    ProSale again;
    Calculate(unchanged, again, nullptr);
    return HasSameRows(again, m_sale);
  }

  void Calculate(const Trial& trial, ProSale& sale, Explanation* asked) {
    trial.Calculate(sale, asked);
    ++m_calculations;
  }

  /// Adds what is missing, and what is missing then, until the rule gives more.
  std::optional<NearMiss> Try(const RulePtr& rule, const Decision& nearest) {
    NearMiss near;
    near.Rule = rule;
    near.What = nearest;
    near.Missing = MissingOf(nearest);
    Trial trial(m_mode, m_told.Before(), m_goods);
    Decision missing = nearest;
    for (int round = 0; round < kMostAdditions; ++round) {
      const std::optional<Addition> added = trial.Add(missing);
      if (!added) return std::nullopt;
      Remember(near.Add, *added);
      if (trial.IsUnknown()) return near;
      ProSale changed;
      Explanation asked;
      Calculate(trial, changed, &asked);
      if (GivesMore(changed, m_sale, InfoOf(*rule).BillNo)) {
        for (Addition& addition : near.Add) {
          if (addition.What == Addition::Thing::kCoupon) addition.Count = TakenIn(changed);
        }
        near.Brings = GainOf(changed, m_sale, InfoOf(*rule).BillNo);
        return near;
      }
      const ExplainedRule* const told = FindRule(asked, rule);
      const Decision* const next = told != nullptr ? NearestOf(*told) : nullptr;
      if (next == nullptr) return std::nullopt;
      missing = *next;
    }
    return std::nullopt;
  }

  /// The coupon value that a sale took in.
  static double TakenIn(const ProSale& sale) {
    return sale.SaleResults.empty() ? 0 : RoundMoney(sale.SaleResults.back().DisMoney);
  }

  /// More of the same goods is one addition.
  static void Remember(std::vector<Addition>& additions, const Addition& added) {
    const auto same = std::find_if(additions.begin(), additions.end(), [&](const Addition& held) {
      return held.What == added.What && held.PluCode == added.PluCode && held.SerialNo == added.SerialNo;
    });
    if (same == additions.end()) {
      additions.push_back(added);
    } else {
      same->Count += added.Count;
    }
  }

  const Mode& m_mode;
  const Explanation& m_told;
  const ProSale& m_sale;
  GoodsList& m_goods;
  int m_calculations = 0;
};

bool CanBeTried(const Mode& mode, const ProSale& before) {
  const auto isOf = [](Text name, Text other) { return Same(name, other); };
  if (isOf(mode.Name, "Single") || isOf(mode.Name, "Gift")) return false;
  if (mode.StartsAnew) return true;
  return before.Trail.IsWhole() &&
         std::none_of(before.Trail.begin(), before.Trail.end(), [&](Text name) { return isOf(name, "Single"); });
}

/// Whether the store gave all rows. On one that fails nothing is tried: its driver tells a second failure in other words.
bool IsReadable(const Explanation& told) {
  const auto isUnread = [](const Decision& decision) { return decision.Why == Reason::Unreadable; };
  const auto hasUnread = [&](const RuleOutcome& outcome) {
    return std::any_of(outcome.Decisions.begin(), outcome.Decisions.end(), isUnread);
  };
  return std::none_of(told.Rules().begin(), told.Rules().end(), [&](const ExplainedRule& rule) {
    return std::any_of(rule.Outcomes.begin(), rule.Outcomes.end(), hasUnread);
  });
}

}  // namespace

NearMisses FindNearMisses(const std::string& mode, const Explanation& told, const ProSale& sale, GoodsList& goods) {
  const Mode* const known = FindMode(mode.c_str());
  if (known == nullptr || !IsReadable(told) || !CanBeTried(*known, told.Before())) return {};
  const LogSilence silence;
  const RowsKept kept;
  const DatabaseCall call(Promotion::Instance().Database().Shared());
  return Search(*known, told, sale, goods).Find();
}

}  // namespace Corvane::Host
