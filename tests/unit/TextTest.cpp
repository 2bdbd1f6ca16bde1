// Borrowed texts: null safety, comparing, families, joining.
#include "base/Text.h"

#include <gtest/gtest.h>

#include <string>

using Corvane::CompareBytes;
using Corvane::FamilyOf;
using Corvane::InFamily;
using Corvane::IsEmpty;
using Corvane::Join;
using Corvane::OrEmpty;
using Corvane::Same;
using Corvane::SameIgnoringCase;
using Corvane::Text;

namespace {

TEST(Texts, NullPrintsAsTheEmptyText) { EXPECT_STREQ(OrEmpty(nullptr), ""); }

TEST(Texts, ATextPrintsAsItself) {
  const Text text = "PTXS";
  EXPECT_EQ(OrEmpty(text), text);
}

TEST(Texts, NullAndTheEmptyTextAreEmpty) {
  EXPECT_TRUE(IsEmpty(nullptr));
  EXPECT_TRUE(IsEmpty(""));
  EXPECT_FALSE(IsEmpty(" "));
  EXPECT_FALSE(IsEmpty("0"));
}

TEST(Texts, NullComparesAsTheEmptyText) {
  EXPECT_TRUE(Same(nullptr, nullptr));
  EXPECT_TRUE(Same(nullptr, ""));
  EXPECT_TRUE(Same("", nullptr));
  EXPECT_FALSE(Same(nullptr, "0"));
  EXPECT_EQ(CompareBytes(nullptr, ""), 0);
  EXPECT_LT(CompareBytes(nullptr, "a"), 0);
  EXPECT_GT(CompareBytes("a", nullptr), 0);
}

TEST(Texts, AreComparedByContentNotByPlace) {
  const std::string one = "R1";
  const std::string other = "R1";
  EXPECT_TRUE(Same(one.c_str(), other.c_str()));
}

TEST(Texts, AreComparedExactly) {
  EXPECT_FALSE(Same("PT", "pt"));
  EXPECT_FALSE(Same("PT", "PT "));
  EXPECT_FALSE(Same("PT", "PTXS"));
  EXPECT_TRUE(Same("组织", "组织"));
  EXPECT_FALSE(Same("组织", "组"));
}

TEST(Texts, AreOrderedByBytes) {
  EXPECT_LT(CompareBytes("2026-01-09", "2026-01-10"), 0);
  EXPECT_GT(CompareBytes("9", "10"), 0);
  EXPECT_LT(CompareBytes("10:00", "10:00:00"), 0);
  EXPECT_LT(CompareBytes("B", "a"), 0);
  // A byte of 0x80 and above sorts behind every ASCII letter.
  EXPECT_GT(CompareBytes("\xE7\xBB\x84", "z"), 0);
}

TEST(Texts, IgnoringCaseMeansAsciiLettersOnly) {
  EXPECT_TRUE(SameIgnoringCase("DJ", "dj"));
  EXPECT_TRUE(SameIgnoringCase("all", "ALL"));
  EXPECT_TRUE(SameIgnoringCase("aZ9-", "Az9-"));
  EXPECT_FALSE(SameIgnoringCase("DJ", "DJ "));
  EXPECT_FALSE(SameIgnoringCase("DJ", "D"));
  EXPECT_FALSE(SameIgnoringCase("D", "DJ"));
  // Characters that differ by 0x20 like letters do, and are none.
  EXPECT_FALSE(SameIgnoringCase("@", "`"));
  EXPECT_FALSE(SameIgnoringCase("[", "{"));
  // Capital and small e acute in UTF-8.
  EXPECT_FALSE(SameIgnoringCase("\xC3\x89", "\xC3\xA9"));
}

TEST(Texts, IgnoringCaseNullIsTheEmptyText) {
  EXPECT_TRUE(SameIgnoringCase(nullptr, ""));
  EXPECT_TRUE(SameIgnoringCase(nullptr, nullptr));
  EXPECT_FALSE(SameIgnoringCase(nullptr, "DJ"));
  EXPECT_FALSE(SameIgnoringCase("DJ", nullptr));
}

TEST(Texts, TheFamilyIsTheFirstTwoLetters) {
  EXPECT_EQ(FamilyOf("PTXS"), "PT");
  EXPECT_EQ(FamilyOf("ZHGD"), "ZH");
  EXPECT_EQ(FamilyOf("MZ"), "MZ");
}

TEST(Texts, AShortTextIsItsOwnFamily) {
  EXPECT_EQ(FamilyOf("M"), "M");
  EXPECT_EQ(FamilyOf(""), "");
  EXPECT_EQ(FamilyOf(nullptr), "");
}

TEST(Texts, BelongToOneFamily) {
  EXPECT_TRUE(InFamily("MZZM", "MZ"));
  EXPECT_FALSE(InFamily("MZZM", "ZH"));
  EXPECT_FALSE(InFamily("M", "MZ"));
  EXPECT_FALSE(InFamily(nullptr, "MZ"));
  EXPECT_FALSE(InFamily("mzzm", "MZ"));
}

TEST(Texts, AreJoinedInOrder) { EXPECT_EQ(Join("a", std::string("b"), "c"), "abc"); }

TEST(Texts, ANullPieceCountsAsEmpty) {
  EXPECT_EQ(Join("促销类型：", static_cast<Text>(nullptr), "!"), "促销类型：!");
  EXPECT_EQ(Join(static_cast<Text>(nullptr)), "");
}

}  // namespace
