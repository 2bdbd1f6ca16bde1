// A host that ends in one of several ways while the engine is there. A crash at the end is for the test's runner to see.
//
// ending_host open|working|check|after-end|closed

#include <chrono>
#include <cstdlib>
#include <string>
#include <thread>

#include "qncorvane/host.h"
#include "tests/face/Face.h"

namespace {

qnc_engine* g_engine = nullptr;

int Calculate() {
  char* result = nullptr;
  const int code = qnc_calculate(g_engine, "1", "All", Corvane::Testing::SaleXml().c_str(), 0, 0, &result, nullptr);
  qnc_free(result);
  return code;
}

/// Made before the engine was ever touched, and so destroyed behind all that it made.
struct CallsAtTheVeryEnd {
  bool IsWanted = false;
  CallsAtTheVeryEnd() = default;
  CallsAtTheVeryEnd(const CallsAtTheVeryEnd&) = delete;
  CallsAtTheVeryEnd& operator=(const CallsAtTheVeryEnd&) = delete;
  ~CallsAtTheVeryEnd() {
    if (!IsWanted) return;
    qnc_engine* engine = nullptr;
    const bool isRefused = Calculate() == QNC_CLOSED && qnc_close(g_engine, nullptr) == QNC_CLOSED &&
                           qnc_open("/", &engine, nullptr) == QNC_CLOSED &&
                           qnc_check("/", 0, nullptr, nullptr) == QNC_CLOSED &&
                           qnc_lint("/", 0, nullptr, nullptr) == QNC_CLOSED;
    if (!isRefused) std::_Exit(3);
  }
};

CallsAtTheVeryEnd g_last;

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) return 2;
  const std::string end = argv[1];
  static const Corvane::Testing::StoreFolder store;
  if (end == "check") {
    std::thread([] { qnc_check(store.Path().c_str(), 1, nullptr, nullptr); }).join();
    return 0;
  }
  if (qnc_open(store.Path().c_str(), &g_engine, nullptr) != QNC_OK) return 1;
  if (qnc_load_rules(g_engine, nullptr, 0, 0, nullptr, nullptr) != QNC_OK || Calculate() != QNC_OK) return 1;
  if (end == "working") {
    for (int thread = 0; thread < 4; ++thread) {
      std::thread([] {
        while (Calculate() == QNC_OK) {
        }
      }).detach();
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
  }
  if (end == "closed" && qnc_close(g_engine, nullptr) != QNC_OK) return 1;
  g_last.IsWanted = end == "after-end";
  return 0;
}
