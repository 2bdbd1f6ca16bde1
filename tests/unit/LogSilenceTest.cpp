// What is tried out is nothing that happened: it leaves no entry.
#include "log/LogSilence.h"

#include <gtest/gtest.h>

#include "log/Log.h"
#include "tests/unit/RuleFixture.h"

using Corvane::Log;
using Corvane::LogCall;
using Corvane::LogSilence;
using ruletest::Entries;

namespace {

class LogSilenceTest : public ruletest::WithLog {};

TEST_F(LogSilenceTest, KeepsEntriesOutForItsLife) {
  const LogCall call;
  Log("before");
  {
    const LogSilence kept;
    Log("tried");
    {
      const LogSilence within;
      Log("tried, too");
    }
    Log("still");
  }
  Log("behind");
  EXPECT_EQ(Logged(), (Entries{"before", "behind"}));
}

TEST_F(LogSilenceTest, NeedsNoCallAroundIt) {
  {
    const LogSilence kept;
    Log("tried");
  }
  Log("behind");
  EXPECT_EQ(Logged(), (Entries{"behind"}));
}

}  // namespace
