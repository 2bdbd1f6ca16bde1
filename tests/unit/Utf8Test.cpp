// Which texts Qt hands through as they are. Qt itself is asked, so that a look says no more than Qt does.
#include "log/Utf8.h"

#include <gtest/gtest.h>

#include <QString>
#include <cstddef>
#include <string>
#include <vector>

using Corvane::ComesThroughUnchanged;

namespace {

bool QtHandsItThrough(const std::string& text) {
  return QString::fromUtf8(text.data(), static_cast<int>(text.size())).toUtf8().toStdString() == text;
}

/// Runs `check` with every sequence of so many of these bytes.
template <class Check>
void EverySequence(const std::string& bytes, std::size_t length, const std::string& front, const Check& check) {
  if (length == 0) return check(front);
  for (const char byte : bytes) EverySequence(bytes, length - 1, front + byte, check);
}

std::string AllBytes() {
  std::string bytes;
  for (int byte = 0; byte < 256; ++byte) bytes += static_cast<char>(byte);
  return bytes;
}

void ExpectQtsAnswer(const std::string& text) {
  ASSERT_EQ(ComesThroughUnchanged(text), QtHandsItThrough(text)) << testing::PrintToString(text);
}

TEST(Utf8, EverySequenceOfOneOrTwoBytesIsJudgedAsQtDoes) {
  for (const std::size_t length : {1U, 2U}) EverySequence(AllBytes(), length, "", ExpectQtsAnswer);
}

// Of each range of bytes that means something to UTF-8 the first and the last, and their neighbours.
TEST(Utf8, SequencesOfThreeToFiveBytesAreJudgedAsQtDoes) {
  const std::string edges("\x00\x41\x7F\x80\x8F\x90\x9F\xA0\xBB\xBF\xC1\xC2\xDF\xE0\xE4\xED\xEF\xF0\xF3\xF4\xF5\xFF",
                          22);
  for (const std::size_t length : {3U, 4U}) EverySequence(edges, length, "", ExpectQtsAnswer);
  EverySequence("\x41\x80\xBB\xBF\xE4\xEF\xF0\xF4", 5, "", ExpectQtsAnswer);
}

TEST(Utf8, EveryCodePointComesThrough) {
  for (uint code = 0; code <= 0x10FFFF; ++code) {
    if (QChar::isSurrogate(code)) continue;
    const std::string text = "a" + QString::fromUcs4(&code, 1).toUtf8().toStdString();
    ASSERT_TRUE(ComesThroughUnchanged(text)) << code;
  }
}

TEST(Utf8, AnEmptyTextComesThrough) { EXPECT_TRUE(ComesThroughUnchanged("")); }

TEST(Utf8, AByteOrderMarkComesThroughUnlessItIsInFront) {
  EXPECT_FALSE(ComesThroughUnchanged("\xEF\xBB\xBF"));
  EXPECT_FALSE(ComesThroughUnchanged("\xEF\xBB\xBFtext"));
  EXPECT_TRUE(ComesThroughUnchanged("text\xEF\xBB\xBF"));
}

}  // namespace
