#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <functional>
#include <thread>

#include "tests/face/Face.h"

namespace Corvane::Testing {
namespace {

/// Forks, has the other process do `work`, and waits for it. @return what `work` returned there.
int InChild(const std::function<int()>& work) {
  const pid_t child = fork();
  if (child == 0) {
    alarm(20);
    _exit(work());
  }
  int status = 0;
  waitpid(child, &status, 0);
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

TEST(Forked, ProcessesHaveNoEngineUntilTheyOpenOne) {
  const StoreFolder store;
  const OpenEngine engine(store.Path());
  ASSERT_EQ(engine.LoadRules().Code, QNC_OK);
  const std::string before = engine.Calculate("1", "All", SaleXml()).Text;
  EXPECT_EQ(InChild([&] { return engine.Calculate("1", "All", SaleXml()).Code; }), QNC_CLOSED);
  EXPECT_EQ(InChild([&] { return qnc_close(engine.Get(), nullptr); }), QNC_CLOSED);
  EXPECT_EQ(InChild([&] {
              const OpenEngine own(store.Path());
              if (own.LoadRules().Code != QNC_OK) return 100;
              if (own.State().Text.find(R"("sales":0)") == std::string::npos) return 101;
              return own.Calculate("1", "All", SaleXml()).Text == before ? 42 : 102;
            }),
            42);
  EXPECT_EQ(engine.Calculate("1", "All", SaleXml()).Text, before);
}

TEST(Forked, ProcessesComeToLifeWhileOthersCalculate) {
  const StoreFolder store;
  const OpenEngine engine(store.Path());
  ASSERT_EQ(engine.LoadRules().Code, QNC_OK);
  std::atomic<bool> isOver{false};
  std::thread busy([&] {
    while (!isOver) EXPECT_EQ(engine.Calculate("busy", "All", SaleXml()).Code, QNC_OK);
  });
  for (int time = 0; time < 20; ++time) {
    EXPECT_EQ(InChild([&] {
                if (engine.State().Code != QNC_CLOSED) return 100;
                return TryOpening(store.Path()).Code == QNC_OK ? 42 : 101;
              }),
              42);
  }
  isOver = true;
  busy.join();
  EXPECT_EQ(engine.State().Code, QNC_OK);
}

}  // namespace
}  // namespace Corvane::Testing
