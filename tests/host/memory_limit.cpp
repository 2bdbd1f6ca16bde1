// Calls that run out of memory: each call that takes a text gets one of 60 MB, in a process of its own that may have
// only so much more memory. Whatever it lacks, the call answers, and the engine answers after it.
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstring>
#include <fstream>
#include <functional>
#include <string>
#include <vector>

#include "qncorvane/qncorvane.h"

namespace {

constexpr std::size_t kHuge = 60U << 20U;

std::vector<char> g_out(2 * kHuge);
std::vector<char> g_msg(2 * kHuge);

bool MsgStartsWith(const char* text) { return std::strncmp(g_msg.data(), text, std::strlen(text)) == 0; }

constexpr const char* kRule =
    "<Rules><Rule BillNo='Q1' ProType='MZYQ' Primary='DJ'><OrgFilter><R OrgCode='*'/></OrgFilter></Rule></Rules>";
constexpr const char* kSale =
    "<Sale BillNo='1' OrgCode='01' IsCalc='0'><Plu><R SerialNo='1' PluCode='A' PluCount='1' Total='1'/></Plu></Sale>";

int Calculate(const char* key, const char* mode, const char* xml) {
  return CalcPromotion(key, mode, xml, g_out.data(), g_msg.data());
}

/// A text of `kHuge` bytes, made of `piece` between `begin` and `end`.
std::string Huge(const std::string& begin, const std::string& piece, const std::string& end) {
  std::string text;
  text.reserve(kHuge + piece.size());
  text += begin;
  while (text.size() + end.size() < kHuge) text += piece;
  return text + end;
}

struct Case {
  const char* Name;
  std::function<bool(const char* huge)> Call;  ///< whether the call answered as it may
  std::string Text;
};

bool AnswersOrRefuses(int code, const char* refusal) { return code == 0 || (code == -1 && MsgStartsWith(refusal)); }

std::vector<Case> Cases() {
  const std::string manyRows = Huge("<S><G>", "<R SerialNo='1' OrgCode='a' PluCode='bcd'/>", "</G></S>");
  const std::string manyLines = Huge("<S><Plu>", "<R PluCode='bcd'/>", "</Plu></S>");
  const std::string longValue = Huge("<S BillNo='", "0123456789", "'/>");
  const std::string references = Huge("<S BillNo='", "&#228;", "'/>");
  const std::string longText = Huge("", "0123456789", "");
  const auto load = [](const char* huge) {
    return AnswersOrRefuses(InitPromotion("MZYQ", huge, g_msg.data()), "pro initialize failed<S");
  };
  const auto calculate = [](const char* huge) { return Calculate("k", "All", huge) <= 0; };
  return {
      {"InitPromotion: type",
       [](const char* huge) {
         return InitPromotion(huge, kRule, g_msg.data()) == -1 && MsgStartsWith("pro initialize failed<Rules>");
       },
       longText},
      {"InitPromotion: xml of many rows", load, manyRows},
      {"InitPromotion: xml with a long value", load, longValue},
      {"InitPromotion: xml with references", load, references},
      {"ClearPromotion: billNo",
       [](const char* huge) { return AnswersOrRefuses(ClearPromotion(g_msg.data(), huge), "clear pro failed"); },
       longText},
      {"CalcPromotion: key",
       [](const char* huge) { return AnswersOrRefuses(Calculate(huge, "All", kSale), "unknow error"); }, longText},
      {"CalcPromotion: mode", [](const char* huge) { return Calculate("k", huge, kSale) == -1; }, longText},
      {"CalcPromotion: xml of many lines", calculate, manyLines},
      {"CalcPromotion: xml with a long value", calculate, longValue},
      {"CalcPromotion: xml with references", calculate, references},
      {"DeleteSaleSetByKey: key", [](const char* huge) { return DeleteSaleSetByKey(huge) >= -1; }, longText},
  };
}

rlim_t AddressSpace() {
  std::ifstream file("/proc/self/statm");
  rlim_t pages = 0;
  file >> pages;
  return pages * static_cast<rlim_t>(sysconf(_SC_PAGESIZE));
}

void LimitMemory(rlim_t more) {
  rlimit limit{};
  getrlimit(RLIMIT_AS, &limit);
  limit.rlim_cur = more == RLIM_INFINITY ? limit.rlim_max : AddressSpace() + more;
  setrlimit(RLIMIT_AS, &limit);
}

/// @return what is wrong, or null.
const char* Run(const Case& test, rlim_t more) {
  LimitMemory(more);
  const bool answered = test.Call(test.Text.c_str());
  LimitMemory(RLIM_INFINITY);
  if (!answered) return "an answer that it may not give";
  FinishInitPro();
  if (ClearSaleSetForNet(g_msg.data()) != 0) return "sales can't be cleared afterwards";
  if (ClearPromotion(g_msg.data(), "*") != 0) return "rules can't be cleared afterwards";
  if (InitPromotion("MZYQ", kRule, g_msg.data()) != 0) return "no rule loads afterwards";
  if (Calculate("k", "All", kSale) != 0) return "no sale is calculated afterwards";
  if (std::strstr(g_out.data(), "PluCode=\"A\"") == nullptr) return "the sale calculated afterwards is wrong";
  return nullptr;
}

/// @return whether the call answered in a process that may have `more` bytes more than it has.
bool Answers(const Case& test, rlim_t more) {
  const pid_t child = fork();
  if (child == 0) {
    const char* const wrong = Run(test, more);
    if (wrong != nullptr) std::fprintf(stderr, "%s: %s (%.40s)\n", test.Name, wrong, g_msg.data());
    _exit(wrong != nullptr ? 1 : 0);
  }
  int status = 0;
  if (child < 0 || waitpid(child, &status, 0) != child) return false;
  if (status == 0) return true;
  std::fprintf(stderr, "%s with %lu MiB more: status %d\n", test.Name, static_cast<unsigned long>(more >> 20U), status);
  return false;
}

}  // namespace

int main() {
  // What the first calls make is there before memory is short.
  InitPromotion("MZYQ", kRule, g_msg.data());
  Calculate("first", "All", kSale);
  ClearSaleSetForNet(g_msg.data());
  int failures = 0;
  for (const Case& test : Cases()) {
    for (const rlim_t mebibytes : {0U, 20U, 61U, 125U, 330U}) {
      if (!Answers(test, mebibytes << 20U)) ++failures;
    }
  }
  std::printf("memory_limit: %d failures\n", failures);
  return failures == 0 ? 0 : 1;
}
