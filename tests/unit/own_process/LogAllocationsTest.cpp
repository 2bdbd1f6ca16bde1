// What a log entry asks of memory: nothing, once the first ones have made the room. This program counts each request,
// those of Qt and of the C library included, and refuses large ones where a test wants that; so it is one of its own.
#include <gtest/gtest.h>

#include <cstddef>
#include <cstdlib>
#include <limits>
#include <string>

#include "log/Log.h"
#include "log/LogCall.h"
#include "log/LogFlush.h"
#include "tests/unit/RuleFixture.h"

namespace {

long g_requests = 0;
std::size_t g_largest = std::numeric_limits<std::size_t>::max();  // what is asked for beyond that is refused

}  // namespace

extern "C" {

// The C library's own, under the names that it keeps for a program that has others.
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t nmemb, std::size_t size);
void* __libc_realloc(void* ptr, std::size_t size);

void* malloc(std::size_t size) {
  ++g_requests;
  return size <= g_largest ? __libc_malloc(size) : nullptr;
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

using Corvane::Log;
using Corvane::LogCall;
using Corvane::LogFlush;

namespace {

class LogAllocations : public ruletest::WithLog, public testing::WithParamInterface<LogFlush> {
 protected:
  LogAllocations() {
    // Without a zone by name the C library asks for memory of its own whenever a new second is formatted.
    setenv("TZ", "UTC", 1);
    Corvane::SetLogFlush(GetParam());
  }
  ~LogAllocations() override { Corvane::SetLogFlush(LogFlush::Entry); }

  /// The requests of a call of a thousand entries of all kinds that are no Qt text.
  static long RequestsOfACall() {
    static const std::string text(2000, 'x');
    const long before = g_requests;
    {
      const LogCall call;
      for (int entry = 0; entry < 1000; ++entry) {
        Log("促销优惠类型：");
        Log("促销类型：", "PTXS");
        Log("till", ":", "15", "\n");
        Log(text);
      }
    }
    return g_requests - before;
  }
};

INSTANTIATE_TEST_SUITE_P(Flush, LogAllocations, testing::Values(LogFlush::Entry, LogFlush::Call), [](const auto& test) {
  return std::string(test.param == LogFlush::Entry ? "Entry" : "Call");
});

TEST_P(LogAllocations, RequestsAreCounted) {
  const long before = g_requests;
  const QString text = QStringLiteral("促销") + QString::number(g_requests);
  EXPECT_GT(g_requests, before) << text.toStdString();
}

TEST_P(LogAllocations, NoEntryMakesOneBehindTheFirstCall) {
  RequestsOfACall();
  EXPECT_EQ(RequestsOfACall(), 0);
}

TEST_P(LogAllocations, NoEntryOutsideACallMakesOne) {
  Log("first");
  const long before = g_requests;
  for (int entry = 0; entry < 100; ++entry) Log("next");
  EXPECT_EQ(g_requests, before);
}

// The room of those that wait serves the next ones.
TEST_P(LogAllocations, EntriesThatFindNoRoomToWaitAreWritten) {
  const std::string text(3000, 'x');
  {
    const LogCall call;
    g_largest = 100000;
    for (int entry = 0; entry < 200; ++entry) Log(text);
    g_largest = std::numeric_limits<std::size_t>::max();
  }
  EXPECT_EQ(Logged(), ruletest::Entries(200, text));
}

TEST_P(LogAllocations, AnEntryThatFindsNoRoomAtAllIsLostAlone) {
  std::string text;
  text.resize(20000000, 'x');  // more than is ever kept
  {
    const LogCall call;
    Log("one");
    g_largest = 2000000;
    Log(text);
    g_largest = std::numeric_limits<std::size_t>::max();
    Log("two");
  }
  EXPECT_EQ(Logged(), (ruletest::Entries{"one", "two"}));
}

}  // namespace
