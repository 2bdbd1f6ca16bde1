#include <algorithm>
#include <cstdint>
#include <utility>

#include "base/Numbers.h"
#include "host/lint/Checks.h"
#include "host/lint/Words.h"
#include "promo/mz/ProMzCoupon.h"
#include "promo/mz/ProMzReduce.h"
#include "promo/mz/Tiers.h"
#include "rule/RuleType.h"

namespace Corvane::Host::Lint {

namespace {

/// What an amount brings over the tiers of a list, by the engine's own arithmetic.
using SumOf = double (*)(const ProMzList& list, double amount);

/// A list's tiers with their places: the `Index` of a tier is that of its place.
struct TierList {
  ProMzList List;
  std::vector<Place> Places;
  std::string From;  ///< the threshold, as this list calls it
  std::string Step;

  const Place& Of(const PluAddAction& tier) const { return Places[static_cast<std::size_t>(tier.Index)]; }
  void Add(PluAddAction tier, Place place) {
    tier.Index = static_cast<std::int32_t>(Places.size());
    List.Tiers.push_back(tier);
    Places.push_back(std::move(place));
  }
};

/// Lists with more are looked at no further: each tier is reckoned against all below it.
constexpr std::size_t kMostTiers = 500;

bool GivesNothing(const PluAddAction& tier) {
  const bool stepsGive = tier.AddConNum != 0 && tier.AddDscNum > 0;
  return tier.BaseDscNum <= 0 && !stepsGive;
}

void CheckStart(const PluAddAction& tier, const std::string& from, const Place& place, Flaws& flaws) {
  if (tier.BaseConNum <= 0) {
    flaws.Add(Codes::kNoThreshold, place, from + " " + Shown(tier.BaseConNum) + ": the tier is reached with nothing",
              "write from how much on it gives");
  }
  if (GivesNothing(tier)) {
    flaws.Add(Codes::kNoGain, place, "the tier gives nothing", "write what it gives");
  }
}

/// A tier without a step of its own gives again at each further threshold.
void CheckRepeating(const TierList& tiers, const PluAddAction& tier, const PluAddAction* next, Flaws& flaws) {
  const double again = 2 * tier.BaseConNum;
  const bool repeats = tier.AddConNum == 0 && tier.BaseConNum > 0 && tier.BaseDscNum > 0;
  const bool isBounded = tiers.List.MaxDiscount > 0 || (tier.SaleMaxIn > 0 && tier.SaleMaxIn < again) ||
                         (next != nullptr && next->BaseConNum <= again);
  if (!repeats || isBounded) return;
  flaws.Add(Codes::kRepeats, tiers.Of(tier),
            tiers.Step + " 0 repeats: every further " + Shown(tier.BaseConNum) + " gives " + Shown(tier.BaseDscNum) +
                " again",
            "to give once, write SaleMaxIn " + Shown(tier.BaseConNum) + "; to repeat to some end, a MaxDiscount");
}

void CheckBounds(const TierList& tiers, const PluAddAction& tier, Flaws& flaws) {
  if (tier.SaleMaxIn > 0 && tier.SaleMaxIn < tier.BaseConNum) {
    flaws.Add(Codes::kMaxBelowThreshold, tiers.Of(tier),
              "SaleMaxIn " + Shown(tier.SaleMaxIn) + " is below the threshold of " + Shown(tier.BaseConNum) +
                  ": no step of the tier is ever reached",
              "write a SaleMaxIn of " + Shown(tier.BaseConNum) + " or more, or 0 for no limit");
  }
  if (tiers.List.MaxDiscount <= 0 || tier.BaseDscNum <= tiers.List.MaxDiscount) return;
  flaws.Add(Codes::kTierAboveLimit, tiers.Of(tier),
            "the tier says " + Shown(tier.BaseDscNum) + ", and the list gives " + Shown(tiers.List.MaxDiscount) +
                " at most (MaxDiscount)",
            "write a MaxDiscount of " + Shown(tier.BaseDscNum) + " or more, or 0 for no limit");
}

/// Whether reaching a tier brings more than a cent less does.
void CheckGain(const TierList& tiers, const PluAddAction& tier, SumOf sumOf, Flaws& flaws) {
  constexpr double kCent = 0.01;
  const double before = sumOf(tiers.List, tier.BaseConNum - kCent);
  const double reached = sumOf(tiers.List, tier.BaseConNum);
  if (GivesNothing(tier) || reached > before + kNoise) return;
  const bool isLess = reached < before - kNoise;
  flaws.Add(
      isLess ? Codes::kFallingTier : Codes::kTierWithoutGain, tiers.Of(tier),
      "from " + Shown(tier.BaseConNum) + " on the list gives " + FormatF2(reached) + ", and below it " +
          (isLess ? "more: " : "as much: ") + FormatF2(before),
      isLess ? "give more here, or less below" : "raise what this tier gives or the MaxDiscount, or delete the tier");
}

void CheckTierList(TierList& tiers, SumOf sumOf, Flaws& flaws) {
  if (tiers.List.Tiers.size() > kMostTiers) return;
  SortTiersDown(tiers.List.Tiers);
  const PluAddAction* next = nullptr;
  for (const PluAddAction& tier : tiers.List.Tiers) {
    CheckStart(tier, tiers.From, tiers.Of(tier), flaws);
    CheckBounds(tiers, tier, flaws);
    const bool isEqual = next != nullptr && next->BaseConNum == tier.BaseConNum;
    if (isEqual) {
      flaws.Add(Codes::kEqualThresholds, tiers.Of(tier),
                "another tier of the list has " + tiers.From + " " + Shown(tier.BaseConNum) +
                    ", too: which of them gives is not certain",
                "delete one of them");
    }
    CheckRepeating(tiers, tier, next, flaws);
    const bool isLowest = &tier == &tiers.List.Tiers.back();
    if (!isLowest && !isEqual && tier.BaseConNum > 0) CheckGain(tiers, tier, sumOf, flaws);
    next = &tier;
  }
}

// --- Lists in tables ------------------------------------------------------------------------------------------------

void CheckReduceTiers(const Rule& rule, Flaws& flaws) {
  for (const Row& list : rule.In(Table::kList)) {
    TierList tiers;
    tiers.List.MaxDiscount = list.Number("MaxDiscount");
    tiers.From = "BaseMoney";
    tiers.Step = "AddMoney";
    for (const Row& row : rule.In(Table::kListTier)) {
      if (row.Text("ListCode") != list.Text("ListCode")) continue;
      PluAddAction tier;
      tier.BaseConNum = row.Number("BaseMoney");
      tier.BaseDscNum = row.Number("BaseDscMoney");
      tier.AddConNum = row.Number("AddMoney");
      tier.AddDscNum = row.Number("AddDscMoney");
      tier.SaleMaxIn = row.Number("SaleMaxIn");
      tiers.Add(tier, row.Where());
    }
    CheckTierList(
        tiers, [](const ProMzList& counted, double amount) { return ProMzReduce::SumOfTiers(counted, amount); }, flaws);
  }
}

// --- Lists in the XML -----------------------------------------------------------------------------------------------

/// Lists of coupons count money, whatever their units say.
void CheckMoney(const Rule& rule, const XmlNode& row, const char* unit, Flaws& flaws) {
  const std::string word = Trimmed(row.Value(unit));
  if (word.empty() || word == UnitWord::kMoney) return;
  flaws.Add(Codes::kMoneyAlone, rule.At(row, unit),
            std::string(unit) + " " + Shown(word) + " is not looked at: " + rule.Type + " counts money",
            "write SUM, and an amount of money");
}

void CheckCouponTiers(const Rule& rule, Flaws& flaws) {
  for (const XmlNode* const list : rule.Xml.Groups("ProList")) {
    TierList tiers;
    tiers.List.MaxDiscount = list->Number("MaxDiscount");
    tiers.From = "BaseConNum";
    tiers.Step = "AddConNum";
    for (const XmlNode* const row : list->RowsOf("PluAddAction")) {
      PluAddAction tier;
      tier.BaseConNum = row->Number("BaseConNum");
      tier.BaseDscNum = row->Number("BaseDscNum");
      tier.AddConNum = row->Number("AddConNum");
      tier.AddDscNum = row->Number("AddDscNum");
      tier.SaleMaxIn = row->Number("SaleMaxIn");
      for (const char* const unit : {"BaseConTp", "BaseDscTp"}) CheckMoney(rule, *row, unit, flaws);
      tiers.Add(tier, rule.At(*row));
    }
    CheckTierList(
        tiers, [](const ProMzList& counted, double amount) { return ProMzCoupon::SumOfTiers(counted, amount); }, flaws);
  }
}

// --- Tiers of goods -------------------------------------------------------------------------------------------------

/// What no two tiers of a rule may have in common.
struct GoodsTier {
  std::string Unit;
  std::string Goods;
  double From;

  bool operator==(const GoodsTier& other) const {
    return Unit == other.Unit && Goods == other.Goods && From == other.From;
  }
};

/// @param mayBeEqual whether two tiers of the same goods and threshold may stand beside each other.
void CheckGoodsTiers(const Rows& rows, bool mayBeEqual, Flaws& flaws) {
  std::vector<GoodsTier> seen;
  for (const Row& row : rows) {
    PluAddAction tier;
    tier.BaseConNum = row.Number("BaseConNum");
    tier.BaseDscNum = row.Number("BaseDscNum");
    tier.AddConNum = row.Number("AddConNum");
    tier.AddDscNum = row.Number("AddDscNum");
    CheckStart(tier, "BaseConNum", row.Where(), flaws);
    const double most = row.Number("SaleMaxIn");
    if (most > 0 && most < tier.BaseDscNum) {
      flaws.Add(Codes::kTierAboveLimit, row.Where(),
                "the tier says " + Shown(tier.BaseDscNum) + ", and gives " + Shown(most) + " at most (SaleMaxIn)",
                "write a SaleMaxIn of " + Shown(tier.BaseDscNum) + " or more, or 0 for no limit");
    }
    if (mayBeEqual || seen.size() >= kMostTiers) continue;
    const GoodsTier own{row.Text("BaseConType"), row.Text("PluType") + "/" + row.Text("PluCode"), tier.BaseConNum};
    if (std::find(seen.begin(), seen.end(), own) != seen.end()) {
      flaws.Add(
          Codes::kEqualThresholds, row.Where(),
          "another tier of these goods has BaseConNum " + Shown(own.From) + ", too: which of them gives is not certain",
          "delete one of them");
    }
    seen.push_back(own);
  }
}

}  // namespace

void CheckTiers(const Rule& rule, Flaws& flaws) {
  if (rule.Is(TypeWord::kReduce)) CheckReduceTiers(rule, flaws);
  if (rule.Is(TypeWord::kGiveCoupon) || rule.Is(TypeWord::kUseCoupon)) CheckCouponTiers(rule, flaws);
  if (rule.Is(TypeWord::kGoods)) CheckGoodsTiers(rule.In(Table::kGoodsTier), false, flaws);
  if (rule.Is(TypeWord::kGoodsFree)) CheckGoodsTiers(rule.In(Table::kGift), false, flaws);
  // Of several offers at one threshold the customer chooses.
  if (rule.Is(TypeWord::kGift) || rule.Is(TypeWord::kExchange)) CheckGoodsTiers(rule.In(Table::kGift), true, flaws);
}

}  // namespace Corvane::Host::Lint
