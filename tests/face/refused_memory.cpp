// Refuses memory to each call of the safe face, at the first request, at the second and so on, on whatever thread it comes:
// the call says so, and the same call works afterwards. Opening, checking and linting a store are left out: Qt's settings don't survive
// every refusal.
//
// refused_memory --every N    one request of so many

#include <array>
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <new>
#include <string>

#include "qncorvane/host.h"
#include "tests/face/Face.h"
#include "tests/support/ReplacedNew.h"

namespace {

std::atomic<long> g_untilRefusal{-1};  // below 0: nothing is refused
std::atomic<long> g_refused{0};

}  // namespace

void* Allocate(std::size_t size, std::size_t alignment) {
  if (g_untilRefusal >= 0 && g_untilRefusal-- == 0) {
    ++g_refused;
    throw std::bad_alloc();
  }
  const std::size_t whole = (size + alignment - 1) / alignment * alignment;
  void* const room = std::aligned_alloc(alignment, whole);
  if (room == nullptr) throw std::bad_alloc();
  return room;
}

namespace {

using Corvane::Testing::SaleXml;
using Corvane::Testing::StoreFolder;

struct Call {
  const char* Name;
  std::function<int()> Make;
};

[[noreturn]] void Fail(const char* name, long request, const char* what, int code) {
  g_untilRefusal = -1;
  std::fprintf(stderr, "%s, request %ld: %s (%d)\n", name, request, what, code);
  std::exit(1);
}

/// @return how many requests the call makes.
long Refuse(const Call& call, long every) {
  for (long request = 0;; request += every) {
    g_refused = 0;
    g_untilRefusal = request;
    const int code = call.Make();
    g_untilRefusal = -1;
    // Some requests are made without need, and the call does without.
    const bool isAnswer = code == QNC_OK || code == QNC_NO_MEMORY || code == QNC_REFUSED || code == QNC_BAD_STORE;
    if (!isAnswer) Fail(call.Name, request, "answered otherwise than for want of memory", code);
    if (g_refused == 0) return request;
    const int again = call.Make();
    if (again != QNC_OK) Fail(call.Name, request, "did not work again", again);
  }
}

}  // namespace

int main(int argc, char** argv) {
  const long every = argc == 3 && std::strcmp(argv[1], "--every") == 0 ? std::strtol(argv[2], nullptr, 10) : 1;
  const StoreFolder store;
  const std::string sale = SaleXml();
  const std::string rule = Corvane::Testing::RuleXml("R");
  qnc_engine* engine = nullptr;
  if (qnc_open(store.Path().c_str(), &engine, nullptr) != QNC_OK) return 2;
  if (qnc_load_rules(engine, nullptr, 0, 0, nullptr, nullptr) != QNC_OK) return 2;
  const auto calculate = [&](unsigned flags) {
    char* result = nullptr;
    char* error = nullptr;
    const int code = qnc_calculate(engine, "1", "All", sale.c_str(), flags, 0, &result, &error);
    if ((code == QNC_OK) != (result != nullptr)) Fail("calculate", 0, "a result without success", code);
    qnc_free(result);
    qnc_free(error);
    return code;
  };
  const std::array<Call, 7> calls = {{
      {"calculate", [&] { return calculate(0); }},
      {"calculate, JSON", [&] { return calculate(QNC_JSON); }},
      {"calculate, explained", [&] { return calculate(QNC_EXPLAIN); }},
      {"load a rule", [&] { return qnc_load_rule(engine, rule.c_str(), nullptr, 0, 0, nullptr); }},
      {"load a folder",
       [&] {
         char* report = nullptr;
         const int code = qnc_load_rules(engine, nullptr, 0, 0, &report, nullptr);
         qnc_free(report);
         return code;
       }},
      {"state",
       [&] {
         char* state = nullptr;
         const int code = qnc_state(engine, 0, &state, nullptr);
         qnc_free(state);
         return code;
       }},
      {"forget", [&] { return qnc_forget_sale(engine, "1", 0, nullptr); }},
  }};
  long requests = 0;
  for (const Call& call : calls) {
    const long made = Refuse(call, every);
    std::printf("%-16s %6ld requests\n", call.Name, made);
    requests += made;
  }
  if (qnc_close(engine, nullptr) != QNC_OK) return 2;
  return requests > 100 ? 0 : 1;
}
