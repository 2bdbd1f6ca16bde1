// The state word, the status texts and the copying into host buffers.
#include "engine/HostBuffer.h"
#include "engine/ProState.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <cstring>
#include <string>
#include <type_traits>

#include "base/ProError.h"
#include "log/StatusText.h"

using Corvane::ProError;
using Corvane::ProState;
using Corvane::Status;
using Corvane::StatusText;
using Corvane::Text;

namespace {

/// The engine's one state; each test leaves it "Free", as it found it.
class EngineState : public testing::Test {
 protected:
  ~EngineState() override { m_state.Set("Free", nullptr); }

  std::string Word() {
    char buffer[16] = "untouched";
    return m_state.Get(buffer);
  }

  ProState& m_state = ProState::Instance();
  char m_msg[112] = "untouched";
  char m_word[8] = "Init";  // a state word that a test may change under the engine's feet
};

struct WordRow {
  Text Word;
  std::int32_t Checked;
  Text Report;
};

const WordRow kWords[] = {
    {"Init", 0, "pro inititalzing"}, {"Using", 0, "pro using"}, {"Clear", 0, "pro cleaning"}, {"Free", 1, "pro free"}};

TEST_F(EngineState, IsFreeBeforeAnythingWasSet) { EXPECT_EQ(Word(), "Free"); }

TEST_F(EngineState, ChecksAsFreeBeforeAnythingWasSet) {
  EXPECT_EQ(m_state.Check(m_msg), 1);
  EXPECT_STREQ(m_msg, "pro free");
}

TEST_F(EngineState, IsOne) { EXPECT_EQ(&ProState::Instance(), &m_state); }

TEST_F(EngineState, HandsItsBufferBack) {
  char buffer[16];
  EXPECT_EQ(m_state.Get(buffer), buffer);
}

TEST_F(EngineState, TakesEveryStateWord) {
  for (const WordRow& row : kWords) {
    SCOPED_TRACE(row.Word);
    std::strcpy(m_msg, "untouched");
    EXPECT_EQ(m_state.Set(row.Word, m_msg), 0);
    EXPECT_STREQ(m_msg, "sucess");
    EXPECT_EQ(Word(), row.Word);
  }
}

TEST_F(EngineState, ChecksEveryStateWord) {
  for (const WordRow& row : kWords) {
    SCOPED_TRACE(row.Word);
    m_state.Set(row.Word, m_msg);
    EXPECT_EQ(m_state.Check(m_msg), row.Checked);
    EXPECT_STREQ(m_msg, row.Report);
  }
}

TEST_F(EngineState, AnyStateMayFollowAnyOther) {
  for (const WordRow& from : kWords) {
    for (const WordRow& to : kWords) {
      SCOPED_TRACE(std::string(from.Word) + " to " + to.Word);
      m_state.Set(from.Word, m_msg);
      EXPECT_EQ(m_state.Set(to.Word, m_msg), 0);
      EXPECT_EQ(Word(), to.Word);
    }
  }
}

TEST_F(EngineState, RefusesAWordThatIsNotSpelledExactly) {
  for (const Text word :
       {"free", "FREE", "Free ", " Free", "Fre", "Freeze", "", "init", "Busy", static_cast<Text>(nullptr)}) {
    SCOPED_TRACE(Corvane::OrEmpty(word));
    m_state.Set("Init", m_msg);
    EXPECT_EQ(m_state.Set(word, m_msg), -1);
    EXPECT_STREQ(m_msg, "invalid value");
    EXPECT_EQ(Word(), "Init");
  }
}

TEST_F(EngineState, KeepsThePointerOfTheWordAndNoCopy) {
  ASSERT_EQ(m_state.Set(m_word, m_msg), 0);
  std::strcpy(m_word, "Gone");
  EXPECT_EQ(Word(), "Gone");
}

TEST_F(EngineState, AnUnknownStateChecksAsInvalid) {
  ASSERT_EQ(m_state.Set(m_word, m_msg), 0);
  std::strcpy(m_word, "init");
  EXPECT_EQ(m_state.Check(m_msg), 0);
  EXPECT_STREQ(m_msg, "invalid value");
}

TEST_F(EngineState, TakesANullBuffer) {
  EXPECT_EQ(m_state.Set("Init", nullptr), 0);
  EXPECT_EQ(m_state.Check(nullptr), 0);
  EXPECT_EQ(m_state.Get(nullptr), nullptr);
}

TEST(EngineObjects, ShareABaseWithAVirtualDestructor) {
  EXPECT_TRUE(std::has_virtual_destructor_v<ProError>);
  EXPECT_TRUE((std::is_base_of_v<ProError, ProState>));
}

TEST(StatusTexts, AreTwentyAndSpelledAsHostsKnowThem) {
  const std::array<Text, 20> texts = {
      "sucess",
      "unknow error",
      "pro free",
      "pro inititalzing",
      "pro cleaning",
      "pro using",
      "pro initialize failed",
      "clear pro failed",
      "invalid value",
      "clear sale failed",
      "return pro result error",
      "Error parsing Comment.",
      "Error parsing Declaration.",
      "Error document empty.",
      "Error null (0) or unexpected EOF found in input stream.",
      "Error parsing CDATA.",
      "Error when TiXmlDocument added to document, because TiXmlDocument can only be at the root.",
      "Error ",
      "total overflow",
      "number overflow",
  };
  int place = 0;
  for (const Text text : texts) {
    SCOPED_TRACE(place);
    EXPECT_STREQ(StatusText(static_cast<Status>(place++)), text);
  }
}

TEST(StatusTexts, HaveNames) {
  EXPECT_STREQ(StatusText(Status::Success), "sucess");
  EXPECT_STREQ(StatusText(Status::UnknownError), "unknow error");
  EXPECT_STREQ(StatusText(Status::Free), "pro free");
  EXPECT_STREQ(StatusText(Status::Initializing), "pro inititalzing");
  EXPECT_STREQ(StatusText(Status::Cleaning), "pro cleaning");
  EXPECT_STREQ(StatusText(Status::Using), "pro using");
  EXPECT_STREQ(StatusText(Status::InitializeFailed), "pro initialize failed");
  EXPECT_STREQ(StatusText(Status::ClearFailed), "clear pro failed");
  EXPECT_STREQ(StatusText(Status::InvalidValue), "invalid value");
  EXPECT_STREQ(StatusText(Status::ClearSaleFailed), "clear sale failed");
  EXPECT_STREQ(StatusText(Status::WriteFailed), "return pro result error");
  EXPECT_STREQ(StatusText(Status::TotalOverflow), "total overflow");
  EXPECT_STREQ(StatusText(Status::NumberOverflow), "number overflow");
}

TEST(HostBuffers, GetTheTextAndItsZeroAndNothingBehind) {
  char buffer[] = "xxxxxxxx";
  Corvane::CopyText(buffer, "Free");
  EXPECT_EQ(std::string(buffer, 8), std::string("Free\0xxx", 8));
}

TEST(HostBuffers, GetTheEmptyText) {
  char buffer[] = "xx";
  Corvane::CopyText(buffer, "");
  EXPECT_STREQ(buffer, "");
}

}  // namespace
