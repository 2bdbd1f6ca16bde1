// Sale XML, against a store with promotions of every type.
//
// An input begins with a line of letters, which tell the modes of the calls: S(ingle) A(ll) U(nion) Z(h) M(zPromotion)
// G(ift) P(ay) C(oupon). What follows are the texts of the calls, with a zero byte between them; when there are fewer
// texts than calls, they are used again from the first.
#include <string>
#include <vector>

#include "qncorvane/qncorvane.h"
#include "tests/fuzz/Check.h"
#include "tests/fuzz/Shop.h"
#include "tests/fuzz/Target.h"

namespace {

using namespace Corvane::Fuzz;

constexpr std::size_t kMostCalls = 8;
constexpr const char* kKey = "sale";

const char* ModeOf(char letter) {
  for (const char* mode : {"Single", "All", "Union", "Zh", "MzPromotion", "Gift", "Pay", "Coupon"}) {
    if (mode[0] == letter) return mode;
  }
  return nullptr;
}

std::vector<std::string> Parts(Bytes& input) {
  std::vector<std::string> parts;
  do {
    parts.push_back(input.Text());
  } while (!input.AtEnd());
  return parts;
}

}  // namespace

void Corvane::Fuzz::Prepare() {
  MakeStore();
  LoadShopRules();
}

void Corvane::Fuzz::Try(Bytes input) {
  const std::string all = input.Rest();
  const std::size_t end = all.find('\n');
  std::string modes = end == std::string::npos ? "AM" : all.substr(0, end);
  Bytes texts(reinterpret_cast<const std::uint8_t*>(all.data()) + (end == std::string::npos ? 0 : end + 1),
              all.size() - (end == std::string::npos ? 0 : end + 1));
  const std::vector<std::string> parts = Parts(texts);
  const bool isUtf8 = IsUtf8(all);
  const long long version = Number("pragma data_version");
  std::size_t calls = 0;
  for (const char letter : modes) {
    const char* const mode = ModeOf(letter);
    if (mode == nullptr) continue;
    Calc(kKey, mode, parts[calls % parts.size()].c_str(), isUtf8);
    if (++calls == kMostCalls) break;
  }
  Require(DeleteSaleSetByKey(kKey) == 0, "a sale is deleted");
  Require(Number("pragma data_version") == version, "a calculation writes nothing to the store");
  Require(State() == "Free", "a calculation leaves the state alone");
  RequireSameSale();
}
