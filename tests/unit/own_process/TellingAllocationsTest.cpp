// What telling asks of memory where nobody asks: nothing. This program counts each request; so it is one of its own.
#include <gtest/gtest.h>

#include <cstddef>
#include <vector>

#include "log/LogSilence.h"
#include "rule/ActionPrice.h"
#include "rule/EligibleQuantity.h"
#include "rule/ProBase.h"
#include "rule/RuleOutcome.h"
#include "rule/RuleRun.h"
#include "tests/unit/RuleFixture.h"

namespace {

long g_requests = 0;

}  // namespace

extern "C" {

// The C library's own, under the names that it keeps for a program that has others.
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t nmemb, std::size_t size);
void* __libc_realloc(void* ptr, std::size_t size);

void* malloc(std::size_t size) {
  ++g_requests;
  return __libc_malloc(size);
}

void* calloc(std::size_t nmemb, std::size_t size) {
  ++g_requests;
  return __libc_calloc(nmemb, size);
}

void* realloc(void* ptr, std::size_t size) {
  ++g_requests;
  return __libc_realloc(ptr, size);
}

}  // extern "C"

using Corvane::ProBase;
using Corvane::ProSale;
using Corvane::Reason;
using Corvane::RuleOutcome;
using Corvane::RuleRun;
using Corvane::Unit;

namespace {

/// A rule for members in one shop that refuses the sale by each of its filters, as they are taken away.
class TellingAllocations : public ruletest::WithLog {
 protected:
  TellingAllocations() {
    m_rule.Info = ruletest::Rule("R1", "PTXS", "PT");
    m_rule.PayModes = {{"R1", "CARD", nullptr, 100}};
    m_sale.OrgCode = "A";
    m_sale.Plus = {ruletest::Line("G1", 10, 1)};
    m_sale.Plus.front().SaleDate = "2026-11-21";
    m_sale.Plus.front().SaleTime = "10:00:00";
    m_sale.Pays = {{"S", "CARD", nullptr, 1}};
  }

  /// Everything that a rule tells on its way, refused one filter further each time.
  void TellAll(RuleOutcome* outcome) {
    ProBase rule = m_rule;
    Ask(rule, outcome);
    rule.Times = {{"R1", "2026-01-01", "2026-12-31", "DAY", "", ""}};
    Ask(rule, outcome);
    rule.OrgFilters = {{"R1", "B"}};
    Ask(rule, outcome);
    rule.OrgFilters = {{"R1", "A"}};
    rule.Vips = {{"R1", "GOLD"}};
    Ask(rule, outcome);
    rule.Vips.clear();
    Ask(rule, outcome);
  }

  /// Adds to the requests those of the questions alone, and not those of the test's own lists.
  void Ask(const ProBase& rule, RuleOutcome* outcome) {
    const RuleRun run(rule, m_sale, outcome);
    const long before = g_requests;
    EXPECT_FALSE(run.MeetsConditions());
    run.NoteNothingOpen(m_sale.Plus.front());
    run.NoteNoMoneyOpen(m_sale.Plus.front());
    Corvane::TellNoGain({}, m_sale.Plus.front(), 10, outcome);
    run.Note(Reason::UnknownPriceKind).On(m_sale.Plus).Goods("a code of many letters, and more of them").Slot("slot");
    run.Refuse(Reason::UnknownArea).Has(Unit::Area, "a word of many letters, and more of them").Needs("from", "to");
    m_requests += g_requests - before;
  }

  ProBase m_rule;
  ProSale m_sale;
  long m_requests = 0;
};

TEST_F(TellingAllocations, AreNoneWhereNobodyAsks) {
  const Corvane::LogSilence kept;
  TellAll(nullptr);
  EXPECT_EQ(m_requests, 0);
}

TEST_F(TellingAllocations, AreThereForWhoAsks) {
  const Corvane::LogSilence kept;
  RuleOutcome outcome;
  TellAll(&outcome);
  EXPECT_GT(m_requests, 0);
  EXPECT_EQ(outcome.Decisions.size(), 5 * 6U);
}

}  // namespace
