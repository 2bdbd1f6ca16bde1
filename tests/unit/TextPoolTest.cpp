// Texts that are kept for the life of the process, or for that of their pool.
#include "base/TextPool.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

using Corvane::KeepText;
using Corvane::Text;

namespace {

TEST(TextPool, OutlivesTheTextThatItWasGiven) {
  std::string given = "pool-outlives";
  const Text kept = KeepText(given);
  given.assign("XXXXXXXXXXXXX");
  EXPECT_STREQ(kept, "pool-outlives");
}

TEST(TextPool, HoldsEachTextOnce) {
  const Text first = KeepText(std::string("pool-once"));
  EXPECT_EQ(KeepText(std::string("pool-once")), first);
}

TEST(TextPool, KeepsDifferentTextsApart) {
  EXPECT_STREQ(KeepText("pool-apart-1"), "pool-apart-1");
  EXPECT_STREQ(KeepText("pool-apart-2"), "pool-apart-2");
  EXPECT_STREQ(KeepText("pool-apart"), "pool-apart");
}

TEST(TextPool, ClosesAPieceOfALongerTextWithAZero) {
  const std::string_view whole = "pool-piece-of-a-text";
  EXPECT_STREQ(KeepText(whole.substr(0, 10)), "pool-piece");
}

TEST(TextPool, KeepsTheEmptyText) {
  ASSERT_NE(KeepText(""), nullptr);
  EXPECT_STREQ(KeepText(""), "");
  EXPECT_STREQ(KeepText(std::string_view()), "");
}

TEST(TextPool, AZeroByteEndsTheTextForItsReaders) { EXPECT_STREQ(KeepText(std::string_view("pool\0zero", 9)), "pool"); }

TEST(TextPool, KeepsTextsOfAnyLength) {
  for (const std::size_t length : {1U, 16383U, 16384U, 16385U, 65535U, 65536U, 65537U, 1000000U}) {
    SCOPED_TRACE(length);
    EXPECT_EQ(std::string(KeepText(std::string(length, 'L'))), std::string(length, 'L'));
  }
}

TEST(TextPool, EarlierTextsStayInPlaceWhileItGrows) {
  const Text first = KeepText("pool-grows-first");
  std::vector<Text> kept;
  kept.reserve(50000);
  for (int number = 0; number < 50000; ++number) kept.push_back(KeepText("pool-grows-" + std::to_string(number)));
  EXPECT_EQ(KeepText("pool-grows-first"), first);
  EXPECT_STREQ(first, "pool-grows-first");
  EXPECT_STREQ(kept[0], "pool-grows-0");
  EXPECT_STREQ(kept[31415], "pool-grows-31415");
  EXPECT_EQ(KeepText("pool-grows-31415"), kept[31415]);
}

TEST(TextPool, OneOfItsOwnHoldsEachTextOnceForItself) {
  Corvane::TextPool first;
  Corvane::TextPool second;
  const Text kept = first.Keep("pool-of-its-own");
  EXPECT_EQ(first.Keep(std::string("pool-of-its-own")), kept);
  EXPECT_NE(second.Keep("pool-of-its-own"), kept);
  EXPECT_NE(KeepText("pool-of-its-own"), kept);
}

TEST(TextPool, OneOfItsOwnLeavesTheTextsOfOthersBehind) {
  Text kept = nullptr;
  {
    Corvane::TextPool gone;
    gone.Keep("pool-that-goes");
    kept = KeepText("pool-that-goes");
  }
  EXPECT_STREQ(kept, "pool-that-goes");
}

}  // namespace
