#include <gmock/gmock.h>
#include <signal.h>
#include <sqlite3.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <cstring>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "tests/face/Face.h"

using ::testing::HasSubstr;
using ::testing::StartsWith;

namespace Corvane::Testing {
namespace {

constexpr int kThreads = 16;

/// Runs `work` on many threads at once, with the number of each.
template <class Work>
void OnThreads(const Work& work) {
  std::vector<std::thread> threads;
  threads.reserve(kThreads);
  for (int number = 0; number < kThreads; ++number) threads.emplace_back([&work, number] { work(number); });
  for (std::thread& thread : threads) thread.join();
}

TEST(Threads, GetWhatOneAfterTheOtherWouldGet) {
  const StoreFolder store;
  const OpenEngine engine(store.Path());
  ASSERT_EQ(engine.LoadRules().Code, QNC_OK);
  const std::vector<std::string> sales = {Sample("sales/basket.xml"), Sample("sales/weekly-shop.xml"),
                                          Sample("sales/big-shop.xml"), Sample("sales/care.xml")};
  std::vector<std::string> expected;
  for (const std::string& sale : sales) {
    expected.push_back(engine.Calculate("alone", "All", sale).Text);
    ASSERT_EQ(engine.Forget("alone").Code, QNC_OK);
  }
  std::atomic<int> equal{0};
  OnThreads([&](int number) {
    for (int time = 0; time < 12; ++time) {
      const std::size_t which = static_cast<std::size_t>(number + time) % sales.size();
      const std::string key = std::to_string(number) + "-" + std::to_string(time);
      const Told told = engine.Calculate(key, "All", sales[which]);
      equal += told.Code == QNC_OK && told.Text == expected[which] ? 1 : 0;
      EXPECT_EQ(engine.Forget(key).Code, QNC_OK);
    }
  });
  EXPECT_EQ(equal, kThreads * 12);
  EXPECT_THAT(engine.State().Text, HasSubstr(R"("sales":0)"));
}

TEST(Threads, MayDoAllThingsAtOnce) {
  const StoreFolder store;
  const OpenEngine engine(store.Path());
  OnThreads([&](int number) {
    const std::string key = std::to_string(number);
    for (int time = 0; time < 6; ++time) {
      EXPECT_EQ(engine.LoadRule(RuleXml("R" + key)).Code, QNC_OK);
      EXPECT_EQ(engine.Calculate(key, "All", SaleXml(), time % 2 == 0 ? QNC_JSON : 0).Code, QNC_OK);
      EXPECT_EQ(engine.Calculate(key, "All", "<Sale").Code, QNC_BAD_XML);
      EXPECT_EQ(engine.State().Code, QNC_OK);
      EXPECT_EQ(engine.Forget(key).Code, QNC_OK);
      EXPECT_EQ(engine.ClearRules("R" + key).Code, QNC_OK);
      if (number == 0) {
        EXPECT_EQ(Check(store.Path()).Code, QNC_OK);
      }
      if (number == 1) {
        EXPECT_EQ(TryOpening(store.Path()).Code, QNC_ALREADY_OPEN);
      }
    }
  });
  EXPECT_THAT(engine.State().Text, HasSubstr(R"("rules":[],"sales":0)"));
}

TEST(Threads, FindOneEngineOrNoneWhileItIsOpenedAndClosed) {
  const StoreFolder store;
  std::atomic<int> opened{0};
  OnThreads([&](int /*number*/) {
    for (int time = 0; time < 3; ++time) {
      qnc_engine* engine = nullptr;
      const int code = qnc_open(store.Path().c_str(), &engine, nullptr);
      EXPECT_TRUE(code == QNC_OK || code == QNC_ALREADY_OPEN) << code;
      if (code != QNC_OK) continue;
      ++opened;
      char* state = nullptr;
      EXPECT_EQ(qnc_state(engine, 0, &state, nullptr), QNC_OK);
      qnc_free(state);
      EXPECT_EQ(qnc_close(engine, nullptr), QNC_OK);
    }
  });
  EXPECT_GT(opened, 0);
  EXPECT_EQ(TryOpening(store.Path()).Code, QNC_OK);
}

TEST(Threads, MayCallWhileAnotherClosesTheEngine) {
  const StoreFolder store;
  qnc_engine* engine = nullptr;
  ASSERT_EQ(qnc_open(store.Path().c_str(), &engine, nullptr), QNC_OK);
  ASSERT_EQ(qnc_load_rules(engine, nullptr, 0, 0, nullptr, nullptr), QNC_OK);
  std::atomic<int> strange{0};
  OnThreads([&](int number) {
    if (number == 0) {
      EXPECT_EQ(qnc_close(engine, nullptr), QNC_OK);
      return;
    }
    int code = QNC_OK;
    while (code == QNC_OK) {
      char* result = nullptr;
      code = qnc_calculate(engine, "1", "All", SaleXml().c_str(), 0, 0, &result, nullptr);
      strange += (code == QNC_OK) == (result != nullptr) ? 0 : 1;
      // A sale is calculated with the rules, or not at all.
      strange += result == nullptr || std::strstr(result, R"(DisMoney="1.53")") != nullptr ? 0 : 1;
      qnc_free(result);
    }
    strange += code == QNC_CLOSED ? 0 : 1;
  });
  EXPECT_EQ(strange, 0);
}

/// A store whose database somebody else holds locked, and an engine that waits for it a second at a time.
class LockedStore : public ::testing::Test {
 protected:
  void SetUp() override {
    m_store.Settings("DbType=SQLITE\nDBName=./store.db\nReadTimeout=1");
    m_engine = std::make_unique<OpenEngine>(m_store.Path());
    ASSERT_EQ(m_engine->LoadRules().Code, QNC_OK);
    ASSERT_EQ(sqlite3_open((m_store / "store.db").c_str(), &m_other), SQLITE_OK);
    ASSERT_EQ(sqlite3_exec(m_other, "begin exclusive", nullptr, nullptr, nullptr), SQLITE_OK);
  }
  void TearDown() override { sqlite3_close(m_other); }

  StoreFolder m_store;
  std::unique_ptr<OpenEngine> m_engine;
  sqlite3* m_other = nullptr;
};

TEST_F(LockedStore, LetsACallTimeOutThatIsCarriedThrough) {
  const Told told = m_engine->Calculate("1", "All", SaleXml(), 0, 50);
  EXPECT_EQ(told.Code, QNC_TIMED_OUT);
  EXPECT_EQ(
      told.Error,
      "after 50 ms the call was at work; it is carried through and its result is dropped, so send the sale again");
  EXPECT_EQ(told.Text, "");
  // The sale is there: what waited behind it finds it.
  EXPECT_THAT(m_engine->State().Text, HasSubstr(R"("sales":1)"));
}

TEST_F(LockedStore, LetsACallTimeOutThatNeverBegins) {
  std::thread first([&] { EXPECT_EQ(m_engine->Calculate("1", "All", SaleXml()).Code, QNC_OK); });
  std::this_thread::sleep_for(std::chrono::milliseconds(100));
  const Told told = m_engine->Calculate("2", "All", SaleXml(), 0, 50);
  EXPECT_EQ(told.Code, QNC_TIMED_OUT);
  EXPECT_THAT(told.Error, StartsWith("after 50 ms the call had not begun"));
  first.join();
  EXPECT_THAT(m_engine->State().Text, HasSubstr(R"("sales":1)"));
}

TEST_F(LockedStore, HarmsNeitherThreadNorEngine) {
  EXPECT_EQ(m_engine->Calculate("1", "All", SaleXml(), 0, 1).Code, QNC_TIMED_OUT);
  sqlite3_exec(m_other, "rollback", nullptr, nullptr, nullptr);
  const Told told = m_engine->Calculate("1", "All", SaleXml());
  EXPECT_EQ(told.Code, QNC_OK);
  EXPECT_THAT(told.Text, HasSubstr(R"(DisMoney="1.53")"));
}

std::atomic<int> g_onOthers{0};
pthread_t g_main;

TEST(Threads, OfTheHostTakeItsSignals) {
  const StoreFolder store;
  const OpenEngine engine(store.Path());
  g_main = pthread_self();
  signal(SIGUSR1, [](int) {
    if (pthread_equal(pthread_self(), g_main) == 0) ++g_onOthers;
  });
  for (int time = 0; time < 200; ++time) {
    kill(getpid(), SIGUSR1);
    ASSERT_EQ(engine.State().Code, QNC_OK);
  }
  signal(SIGUSR1, SIG_DFL);
  EXPECT_EQ(g_onOthers, 0);
}

}  // namespace
}  // namespace Corvane::Testing
