// What the size rule leaves of entries that are appended one by one.
#include "log/SizeRule.h"

#include <gtest/gtest.h>

using Corvane::SizeRule;

namespace {

TEST(SizeRule, EntriesThatFindTheFileSmallStay) {
  const SizeRule rule(0, {500000, 1000000, 1000001});
  EXPECT_FALSE(rule.StartsAnew);
}

TEST(SizeRule, AFileOfJustTheLimitIsAppendedTo) { EXPECT_FALSE(SizeRule(1000000, {10}).StartsAnew); }

TEST(SizeRule, AFileAboveTheLimitStartsAnewWithTheFirstEntry) {
  const SizeRule rule(1000001, {10, 20});
  EXPECT_TRUE(rule.StartsAnew);
  EXPECT_EQ(rule.FirstStart, 0U);
  EXPECT_EQ(rule.LastStart, 0U);
}

TEST(SizeRule, TheEntryThatGoesAboveTheLimitIsTheLastBeforeTheStart) {
  const SizeRule rule(999990, {10, 11, 30});
  EXPECT_TRUE(rule.StartsAnew);
  EXPECT_EQ(rule.FirstStart, 11U);
  EXPECT_EQ(rule.LastStart, 11U);
}

TEST(SizeRule, ManyEntriesStartTheFileAnewMoreThanOnce) {
  const SizeRule rule(0, {1000001, 2000001, 2000002, 2000003, 4000000, 4000001});
  EXPECT_TRUE(rule.StartsAnew);
  EXPECT_EQ(rule.FirstStart, 1000001U);
  EXPECT_EQ(rule.LastStart, 4000000U);
}

TEST(SizeRule, WithoutEntriesNothingHappens) { EXPECT_FALSE(SizeRule(5000000, {}).StartsAnew); }

}  // namespace
