// The registry beside a plain list of rules that is searched and sorted at every load: the two have the same order at
// every step.
#include "engine/RuleRegistry.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <iterator>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "base/TextPool.h"

using Corvane::AnyRule;
using Corvane::BaseOf;
using Corvane::InfoOf;
using Corvane::KeepText;
using Corvane::ProInfo;
using Corvane::ProMzPay;
using Corvane::RuleList;
using Corvane::RulePtr;
using Corvane::RuleRegistry;
using Corvane::Text;

namespace {

RulePtr Rule(Text billNo, Text primary, Text date) {
  auto rule = std::make_shared<AnyRule>(std::in_place_type<ProMzPay>);
  ProInfo& info = BaseOf(*rule).Info;
  info.BillNo = billNo;
  info.Primary = primary;
  info.JzDate = date;
  return rule;
}

std::string Bytes(Text text) { return text != nullptr ? text : ""; }
std::string Number(const RulePtr& rule) { return Bytes(InfoOf(*rule).BillNo); }

std::string Lower(std::string text) {
  for (char& letter : text) {
    if (letter >= 'A' && letter <= 'Z') letter = static_cast<char>(letter + 32);
  }
  return text;
}

/// The contract in its plainest form.
class PlainList {
 public:
  const RuleList& Rules() const { return m_rules; }

  void Load(const RulePtr& rule) {
    std::ptrdiff_t slot = -1;
    for (std::size_t place = 0; place < m_rules.size(); ++place) {
      if (Number(m_rules[place]) == Number(rule)) slot = static_cast<std::ptrdiff_t>(place);
    }
    if (slot < 0) {
      m_rules.push_back(rule);
    } else {
      m_rules[static_cast<std::size_t>(slot)] = rule;
    }
    std::stable_sort(m_rules.begin(), m_rules.end(), [](const RulePtr& left, const RulePtr& right) {
      return Bytes(InfoOf(*left).JzDate) > Bytes(InfoOf(*right).JzDate);
    });
    RuleList grouped;
    for (const char* const primary : {"DZ", "PT", "DJ"}) {
      for (const RulePtr& entry : m_rules) {
        if (Bytes(InfoOf(*entry).Primary) == primary) grouped.push_back(entry);
      }
    }
    std::copy(grouped.begin(), grouped.end(), m_rules.begin());
  }

  void Remove(const std::string& billNo) {
    RuleList kept;
    for (const RulePtr& rule : m_rules) {
      if (billNo != "*" && Lower(Number(rule)) != Lower(billNo)) kept.push_back(rule);
    }
    m_rules = kept;
  }

 private:
  RuleList m_rules;
};

/// What a run of steps draws from: few texts, so that most of them meet again.
struct Mix {
  std::vector<Text> BillNos;
  std::vector<Text> Primaries;
  std::vector<Text> Dates;
  int LoadsInHundred;
  int ClearsInThousand;
};

class Comparison {
 public:
  Comparison(Mix mix, unsigned seed) : m_mix(std::move(mix)), m_chance(seed) {}

  void Run(int steps) {
    for (int step = 0; step < steps && !::testing::Test::HasFailure(); ++step) {
      SCOPED_TRACE(step);
      Step();
      // Not after each step, so that several loads follow each other in between, too.
      if (Draw(3) == 0) Compare();
    }
    Compare();
  }

  std::size_t LongestList() const { return m_longest; }

 private:
  void Step() {
    if (Draw(1000) < m_mix.ClearsInThousand) {
      Remove("*");
    } else if (Draw(100) < m_mix.LoadsInHundred) {
      const RulePtr rule = Rule(OneOf(m_mix.BillNos), OneOf(m_mix.Primaries), OneOf(m_mix.Dates));
      m_plain.Load(rule);
      m_registry.Load(rule);
    } else {
      Remove(InOtherLetters(Bytes(OneOf(m_mix.BillNos))));
    }
  }

  void Remove(const std::string& billNo) {
    m_plain.Remove(billNo);
    m_registry.Remove(billNo.c_str());
  }

  void Compare() {
    ASSERT_EQ(m_registry.Rules(), m_plain.Rules());
    m_longest = std::max(m_longest, m_plain.Rules().size());
  }

  std::string InOtherLetters(std::string text) {
    if (Draw(2) == 0) return text;
    for (char& letter : text) {
      if (letter >= 'a' && letter <= 'z') letter = static_cast<char>(letter - 32);
    }
    return text;
  }

  int Draw(int below) { return static_cast<int>(m_chance() % static_cast<unsigned>(below)); }
  Text OneOf(const std::vector<Text>& texts) { return texts[m_chance() % texts.size()]; }

  Mix m_mix;
  std::mt19937 m_chance;
  PlainList m_plain;
  RuleRegistry m_registry;
  std::size_t m_longest = 0;
};

std::vector<Text> BillNos(int count) {
  std::vector<Text> texts;
  texts.reserve(static_cast<std::size_t>(count));
  for (int number = 0; number < count; ++number) texts.push_back(KeepText("r" + std::to_string(number)));
  return texts;
}

const std::vector<Text> kWords = {"DZ", "PT", "DJ"};
const std::vector<Text> kDates = {"2026-03-01", "2026-02-01", "2026-01-01", "2026-1-1", "", nullptr};

TEST(RuleRegistry, HasTheOrderOfAPlainListForTheThreeWords) {
  for (unsigned seed = 1; seed <= 8; ++seed) {
    Comparison comparison({BillNos(60), kWords, kDates, 92, 2}, seed);
    comparison.Run(5000);
    EXPECT_GT(comparison.LongestList(), 40U);
  }
}

TEST(RuleRegistry, HasItForNumbersThatDifferInLettersAlone) {
  for (unsigned seed = 1; seed <= 8; ++seed) {
    Comparison comparison(
        {{"ab", "Ab", "aB", "AB", "a", "A", "ab ", "", nullptr, "ä", "Ä", "*", "ABC"}, kWords, kDates, 85, 1}, seed);
    comparison.Run(5000);
  }
}

TEST(RuleRegistry, HasItForRulesOfOneDate) {
  for (unsigned seed = 1; seed <= 4; ++seed) {
    Comparison comparison({BillNos(30), kWords, {"2026-01-01"}, 95, 0}, seed);
    comparison.Run(5000);
  }
}

TEST(RuleRegistry, HasItWithWordsThatFallOutOfTheOrder) {
  for (unsigned seed = 1; seed <= 8; ++seed) {
    Comparison comparison({BillNos(12), {"DZ", "PT", "DJ", "XX", "", nullptr, "dz"}, kDates, 75, 10}, seed);
    comparison.Run(5000);
  }
}

TEST(RuleRegistry, HasItWhereAnotherWordIsRare) {
  std::vector<Text> words;
  for (int times = 0; times < 30; ++times) words.insert(words.end(), kWords.begin(), kWords.end());
  words.push_back("XX");
  for (unsigned seed = 1; seed <= 8; ++seed) {
    Comparison comparison({BillNos(25), words, kDates, 80, 5}, seed);
    comparison.Run(5000);
  }
}

std::string OrderOf(RuleRegistry& registry) {
  std::string order;
  for (const RulePtr& rule : registry.Rules()) order += Number(rule) + " ";
  return order;
}

TEST(RuleRegistry, ARuleThatComesFromAnEarlierPlaceStandsInFrontOfItsEqualsFromALaterOneBehind) {
  RuleRegistry registry;
  for (const Text billNo : {"a", "b", "c"}) registry.Load(Rule(billNo, "PT", "2"));
  registry.Load(Rule("early", "PT", "3"));
  registry.Load(Rule("late", "PT", "1"));
  registry.Load(Rule("other", "DZ", "2"));
  EXPECT_EQ(OrderOf(registry), "other early a b c late ");

  registry.Load(Rule("late", "PT", "2"));
  EXPECT_EQ(OrderOf(registry), "other early a b c late ");
  registry.Load(Rule("early", "PT", "2"));
  EXPECT_EQ(OrderOf(registry), "other early a b c late ");
  registry.Load(Rule("b", "PT", "1"));
  registry.Load(Rule("b", "PT", "2"));
  EXPECT_EQ(OrderOf(registry), "other early a c late b ");
  registry.Load(Rule("other", "PT", "2"));
  EXPECT_EQ(OrderOf(registry), "other early a c late b ");
}

TEST(RuleRegistry, ARuleGoesWithItsLastEntry) {
  RuleRegistry registry;
  const RulePtr replaced = Rule("a", "PT", "1");
  const RulePtr removed = Rule("b", "PT", "2");
  registry.Load(replaced);
  registry.Load(removed);
  EXPECT_EQ(registry.Rules().size(), 2U);

  registry.Load(Rule("a", "DJ", "3"));
  EXPECT_EQ(replaced.use_count(), 1);
  registry.Remove("B");
  EXPECT_EQ(removed.use_count(), 1);
}

/// Seconds for so many loads of new rules and as many that replace them by rules of other dates and words.
double SecondsOfLoads(int count) {
  std::mt19937 chance(1);
  std::vector<RulePtr> rules;
  for (const char* const suffix : {"", "-later"}) {
    for (int number = 0; number < count; ++number) {
      rules.push_back(Rule(KeepText("n" + std::to_string(number)), kWords[chance() % 3],
                           KeepText(std::to_string(chance() % 300) + suffix)));
    }
  }
  RuleRegistry registry;
  const auto begin = std::chrono::steady_clock::now();
  for (const RulePtr& rule : rules) registry.Load(rule);
  EXPECT_EQ(registry.Rules().size(), static_cast<std::size_t>(count));
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
}

// Searching and sorting a list at each load would take hours here.
TEST(RuleRegistry, ManyRulesAreLoadedInNoTime) { EXPECT_LT(SecondsOfLoads(100000), 20.0); }

}  // namespace
