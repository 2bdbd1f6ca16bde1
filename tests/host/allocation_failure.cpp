// Memory that is refused: a small till, in which the n-th request for memory is refused, for every n that it has; and
// once more with all requests from the n-th on refused. Each call answers, and the engine behind it is whole: the same
// till gives the same results again.
//
//   allocation_failure [--every STEP | REQUEST]
//
// Runs in a copy of the sample store. With STEP it takes one request in so many; with REQUEST only that one is refused,
// in this process, for a look at it.
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>
#include <new>
#include <string>

#include "qncorvane/qncorvane.h"
#include "tests/support/ReplacedNew.h"

namespace {

long g_untilRefusal = -1;  // below 0: nothing is refused
bool g_staysShort = false;
long g_refused = 0;

}  // namespace

void* Allocate(std::size_t size, std::size_t alignment) {
  if (g_untilRefusal == 0) {
    ++g_refused;
    if (!g_staysShort) g_untilRefusal = -1;
    throw std::bad_alloc();
  }
  if (g_untilRefusal > 0) --g_untilRefusal;
  const std::size_t whole = (size + alignment - 1) / alignment * alignment;
  void* const room = std::aligned_alloc(alignment, whole == 0 ? alignment : whole);
  if (room == nullptr) throw std::bad_alloc();
  return room;
}

namespace {

std::array<char, 1U << 18U> g_out{};
std::array<char, 1U << 16U> g_msg{};
std::array<char, 1U << 18U> g_results{};  // of a till that lacks nothing
std::array<char, 1U << 14U> g_juiceRule{};

constexpr const char* kCouponRule =
    "<Rules><Rule BillNo='Q1' ProType='MZZQ' Primary='DJ' JzDate='1'><OrgFilter><R OrgCode='*'/></OrgFilter><ProTime>"
    "<R StartDate='2000-01-01' EndDate='2099-12-31' Frequency='DAY'/></ProTime><ProList ConAreaType='ALL'>"
    "<PluAddAction><R BaseConNum='5' BaseDscNum='8'/></PluAddAction><CouponType LimitType='1' LimitDay='9' "
    "IsDenom='1'/>"
    "<CouponDenomination><R Denomination='5'/><R Denomination='1'/></CouponDenomination></ProList></Rule></Rules>";
constexpr const char* kSale =
    "<Sale BillNo='S&#228;-1' OrgCode='01' IsCalc='0'><Plu><R SerialNo='1' PluCode='100101' Price='2.50' PluCount='3'"
    " Total='7.50' PackCnt='1' CAT='JUICE' BRD='SUNNY' SaleDate='2024-06-15' SaleTime='10:00:00'/></Plu>"
    "<PayMode><R PayMode='CARD' PayCardNo='62' PayMoney='5'/></PayMode><Vip><R VipType='a member of a long "
    "name'/></Vip>"
    "<Coupon><R BillNo='C1' CouponValue='1'/></Coupon></Sale>";
constexpr std::array<const char*, 8> kModes = {"Single", "All", "Union", "Zh", "MzPromotion", "Gift", "Pay", "Coupon"};

/// All calls. @return whether each answered with a code that it has.
bool RunTill() {
  bool known = true;
  const auto check = [&](int code) { known = known && (code == 0 || code == -1); };
  check(BeginInitPro());
  check(InitPromotion("PTXS", g_juiceRule.data(), g_msg.data()));
  check(InitPromotion("MZYQ", kCouponRule, g_msg.data()));
  check(InitPromotion("none", "<x/>", g_msg.data()));
  check(FinishInitPro());
  for (const char* const mode : kModes) check(CalcPromotion("k", mode, kSale, g_out.data(), g_msg.data()));
  check(CalcPromotion("k", "unknown", kSale, g_out.data(), g_msg.data()));
  check(DeleteSaleSetByKey("k"));
  check(CalcPromotion("other", "All", kSale, g_out.data(), g_msg.data()));
  check(ClearSaleSetForNet(g_msg.data()));
  check(ClearPromotion(g_msg.data(), "PTXS-01"));
  check(GetState(g_msg.data()) == g_msg.data() ? 0 : 1);
  return known;
}

/// Loads, calculates and puts all results behind each other. @return whether every call was a success.
bool WholeTill(char* results) {
  *results = '\0';
  FinishInitPro();
  bool done = ClearPromotion(g_msg.data(), "*") == 0 && ClearSaleSetForNet(g_msg.data()) == 0 && BeginInitPro() == 0 &&
              InitPromotion("PTXS", g_juiceRule.data(), g_msg.data()) == 0 &&
              InitPromotion("MZYQ", kCouponRule, g_msg.data()) == 0 && FinishInitPro() == 0;
  for (const char* const mode : kModes) {
    done = done && CalcPromotion("whole", mode, kSale, g_out.data(), g_msg.data()) == 0;
    results = static_cast<char*>(mempcpy(results, g_out.data(), std::strlen(g_out.data())));
  }
  *results = '\0';
  return done && DeleteSaleSetByKey("whole") == 0;
}

enum Verdict : int { kWhole = 0, kNothingRefused = 10, kUnknownCode = 11, kNotWhole = 12, kOtherResults = 13 };

Verdict RunShortOf(long refusal, bool staysShort) {
  static std::array<char, sizeof g_results> results{};
  // Settings, driver and connection are there: Qt makes them once, and doesn't survive a refusal in it.
  if (!WholeTill(results.data())) return kNotWhole;
  g_untilRefusal = refusal;
  g_staysShort = staysShort;
  const bool known = RunTill();
  g_untilRefusal = -1;
  if (g_refused == 0) return kNothingRefused;
  if (!known) return kUnknownCode;
  if (!WholeTill(results.data())) return kNotWhole;
  return std::strcmp(results.data(), g_results.data()) == 0 ? kWhole : kOtherResults;
}

/// The answer of a process of its own, so that no refusal meets what an earlier one left.
template <class Test>
int InChild(Test test) {
  const pid_t child = fork();
  if (child == 0) _exit(test());
  int status = 0;
  if (child < 0 || waitpid(child, &status, 0) != child) return -1;
  return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
}

/// The results of a till that lacks nothing, from a process that ends with it.
bool LearnResults() {
  std::array<int, 2> ends{};
  if (pipe(ends.data()) != 0) return false;
  const pid_t child = fork();
  if (child == 0) {
    const bool done = WholeTill(g_results.data());
    const auto length = static_cast<ssize_t>(std::strlen(g_results.data()));
    // A pipe's room is smaller than the results may be: the parent reads while this writes.
    for (ssize_t at = 0; at < length;)
      at += write(ends[1], g_results.data() + at, static_cast<std::size_t>(length - at));
    _exit(done ? 0 : 1);
  }
  close(ends[1]);
  char* next = g_results.data();
  for (ssize_t got = 1; got > 0; next += got) got = read(ends[0], next, 65536);
  int status = 0;
  waitpid(child, &status, 0);
  return status == 0 && std::strstr(g_results.data(), "Total=\"5.97\"") != nullptr &&
         std::strstr(g_results.data(), "DisMoney=\"8.00\"") != nullptr;
}

/// A load whose n-th request is refused, for every n: the rule is there if the load says so, and else not.
bool LoadsWholeOrNotAtAll() {
  FinishInitPro();
  for (bool refused = true; refused;) {
    static long next = 0;
    ClearPromotion(g_msg.data(), "*");
    g_refused = 0;
    g_untilRefusal = next++;
    const bool loaded = InitPromotion("MZYQ", kCouponRule, g_msg.data()) == 0;
    g_untilRefusal = -1;
    refused = g_refused > 0;
    CalcPromotion("k", "MzPromotion", kSale, g_out.data(), g_msg.data());
    DeleteSaleSetByKey("k");
    const bool isThere = std::strstr(g_out.data(), "ProBillNo=\"Q1\"") != nullptr;
    // Where it was the log's entry that went without memory, the load is none the worse.
    if (loaded != isThere || (!refused && !loaded)) return false;
  }
  return true;
}

}  // namespace

int main(int argc, char** argv) {
  std::ifstream("rules/PTXS-01-juice.xml").read(g_juiceRule.data(), g_juiceRule.size() - 1);
  if (!LearnResults()) {
    std::fprintf(stderr, "allocation_failure: the till fails with all memory\n");
    return 1;
  }
  const long step = argc > 2 && std::strcmp(argv[1], "--every") == 0 ? std::strtol(argv[2], nullptr, 10) : 1;
  if (argc == 2) return RunShortOf(std::strtol(argv[1], nullptr, 10), false);
  if (InChild([] { return LoadsWholeOrNotAtAll() ? 0 : 1; }) != 0) {
    std::fprintf(stderr, "allocation_failure: a refused load leaves a rule, or a load is lost\n");
    return 1;
  }
  long failures = 0;
  for (const bool staysShort : {false, true}) {
    long refusal = 0;
    for (int verdict = kWhole; verdict != kNothingRefused && failures < 20; refusal += step) {
      verdict = InChild([&] { return RunShortOf(refusal, staysShort); });
      if (verdict == kWhole || verdict == kNothingRefused) continue;
      ++failures;
      std::fprintf(stderr, "allocation_failure: request %ld refused%s: %d\n", refusal, staysShort ? " for good" : "",
                   verdict);
    }
    std::printf("allocation_failure: %ld requests\n", refusal);
  }
  return failures == 0 ? 0 : 1;
}
