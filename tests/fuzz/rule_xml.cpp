// Rule XML of each type, and a sale under the rule that comes of it.
//
// An input begins with a byte that picks the type to load as. What follows is the rule's XML.
#include <iterator>
#include <string>

#include "qncorvane/qncorvane.h"
#include "tests/fuzz/Check.h"
#include "tests/fuzz/Formats.h"
#include "tests/fuzz/Shop.h"
#include "tests/fuzz/Target.h"

namespace {

using namespace Corvane::Fuzz;

constexpr const char* kKey = "sale";

/// The rule of the shop that must give the same whatever was loaded before.
void RequireNextRuleWorks() {
  const LoadedRule& rule = ProbeRule();
  Require(Load(rule.Type.c_str(), rule.Xml.c_str()).Code == 0, "the next rule is loaded");
  RequireSameSale();
  Require(Clear("*").Code == 0, "rules are cleared");
}

}  // namespace

void Corvane::Fuzz::Prepare() {
  MakeStore();
  Require(BeginInitPro() == 0, "the store opens");
  FinishInitPro();
}

void Corvane::Fuzz::Try(Bytes input) {
  const char* const type = kTypes[input.Below(std::size(kTypes))];
  const std::string xml = input.Rest();
  const bool isUtf8 = IsUtf8(xml);
  Require(Load(type, xml.c_str()).Code == 0, "a rule of any text is loaded");
  Calc(kKey, "All", BigSale().c_str(), isUtf8);
  for (const char* mode : {"MzPromotion", "Gift", "Pay", "Coupon"}) Calc(kKey, mode, "<Sale/>", isUtf8);
  // The coupons again, which "All" has forgotten.
  Calc(kKey, "Coupon", BigSale().c_str(), isUtf8);
  Require(DeleteSaleSetByKey(kKey) == 0, "a sale is deleted");
  Require(Clear("*").Code == 0, "rules are cleared");
  RequireNextRuleWorks();
}
