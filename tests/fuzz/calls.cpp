// Calls in any order, with any state, mode, key and text; null pointers included.
//
// An input is a row of calls: a byte that picks the call, and for each of its texts a byte that picks a usual one, null, or
// a text of the input's own, which ends at a zero byte.
#include <iterator>
#include <optional>
#include <string>

#include "qncorvane/qncorvane.h"
#include "tests/fuzz/Check.h"
#include "tests/fuzz/Shop.h"
#include "tests/fuzz/Target.h"

namespace {

using namespace Corvane::Fuzz;

constexpr int kMostCalls = 24;

constexpr const char* kTypes[] = {"PTXS", "PTPL", "PTOS", "ZHZY", "ZHGD", "ZHTJ", "ZHZX", "MZMJ",
                                  "MZDP", "MZZM", "MZZP", "MZHG", "MZZF", "MZYQ", "MZZQ", "ptxs"};
constexpr const char* kModes[] = {"Single", "All", "Union",  "Zh",  "MzPromotion",
                                  "Gift",   "Pay", "Coupon", "all", " All"};
constexpr const char* kKeys[] = {"1", "2", "till-7/1", "", " "};
constexpr const char* kBillNos[] = {"*", "PTXS-01", "ptxs-01", "MZMJ-01", "", "**"};
constexpr const char* kSales[] = {
    "<Sale/>",
    "<Sale BillNo='S' OrgCode='01' IsCalc='0'><Plu><R SerialNo='1' PluCode='100101' Price='2.49' PluCount='3' "
    "Total='7.47' PackCnt='1' SaleDate='2026-11-21' SaleTime='10:00:00'/></Plu></Sale>",
    "<Sale BillNo='S' OrgCode='01' IsCalc='0'><Plu><R SerialNo='2' PluCode='950101' Price='18.90' PluCount='5' "
    "Total='94.50' PackCnt='1' CAT='HOUSE' SaleDate='2026-11-21' SaleTime='10:00:00'/></Plu><PayMode><R PayMode='CARD' "
    "PayCardNo='6200000000000001' PayMoney='94.50'/></PayMode><Coupon><R BillNo='C' CouponTypeCode='C5' "
    "CouponValue='5.00'/></Coupon></Sale>",
    "<Sale BillNo='S'><Gift><R SerialNo='1' ProBillNo='MZZP-01' SaleBillNo='S' PluCode='900101' PluCount='1'/></Gift>"
    "</Sale>",
    "<Sale",
    ""};

/// A text that may be null.
using MaybeText = std::optional<std::string>;

const char* Pointer(const MaybeText& text) { return text ? text->c_str() : nullptr; }

/// The last two picks are null and a text of the input's own.
template <std::size_t Size>
MaybeText Pick(Bytes& input, const char* const (&usual)[Size]) {
  const std::size_t pick = input.Below(Size + 2);
  if (pick == Size) return std::nullopt;
  return pick < Size ? usual[pick] : input.Text();
}

/// What the documentation says of the states.
struct Model {
  std::string State = "Free";
  bool IsFree() const { return State == "Free"; }
};

void Begin(Model& model) {
  const int code = BeginInitPro();
  Require(code == (model.IsFree() ? 0 : -1), "a load begins when the state is free");
  model.State = model.IsFree() ? "Init" : model.State;
}

void Finish(Model& model) {
  Require(FinishInitPro() == 0, "a load ends");
  model.State = "Free";
}

void LoadOne(Bytes& input, bool isOfShop) {
  if (isOfShop) {
    const LoadedRule& rule = ShopRules()[input.Below(ShopRules().size())];
    Require(Load(rule.Type.c_str(), rule.Xml.c_str()).Code == 0, "a rule is loaded in any state");
    return;
  }
  const MaybeText type = Pick(input, kTypes);
  const MaybeText xml = Pick(input, kSales);
  const int code = Load(Pointer(type), Pointer(xml)).Code;
  bool isType = false;
  for (std::size_t place = 0; place + 2 < std::size(kTypes); ++place) isType = isType || type == kTypes[place];
  Require(code == (isType ? 0 : -1), "a rule of a known type is loaded, whatever its text");
}

void Calculate(Bytes& input, const Model& model) {
  const MaybeText key = Pick(input, kKeys);
  const MaybeText mode = Pick(input, kModes);
  const MaybeText xml = Pick(input, kSales);
  const int code = Calc(Pointer(key), Pointer(mode), Pointer(xml)).Code;
  const auto isMissing = [](const MaybeText& text) { return !text || text->empty(); };
  const bool isRefused = !model.IsFree() || isMissing(key) || isMissing(mode) || isMissing(xml);
  Require(!isRefused || code == -1, "a call without state, key, mode or sale is refused");
}

void CallOne(Bytes& input, Model& model) {
  switch (input.Below(9)) {
    case 0:
      return Begin(model);
    case 1:
      return Finish(model);
    case 2:
      return LoadOne(input, true);
    case 3:
      return LoadOne(input, false);
    case 4:
      Require(Clear(Pointer(Pick(input, kBillNos))).Code == (model.IsFree() ? 0 : -1), "rules are cleared when free");
      return;
    case 5:
      Require(DeleteSaleSetByKey(Pointer(Pick(input, kKeys))) == 0, "a sale is deleted in any state");
      return;
    case 6:
      Require(ClearSales().Code == (model.IsFree() ? 0 : -1), "sales are cleared when free");
      return;
    default:
      return Calculate(input, model);
  }
}

}  // namespace

void Corvane::Fuzz::Prepare() { MakeStore(); }

void Corvane::Fuzz::Try(Bytes input) {
  Model model;
  for (int calls = 0; calls < kMostCalls && !input.AtEnd(); ++calls) {
    CallOne(input, model);
    Require(State() == model.State, "the state is what the calls made it", State());
  }
  Finish(model);
  Require(ClearSales().Code == 0 && Clear("*").Code == 0, "all is cleared");
  const LoadedRule& rule = ProbeRule();
  Require(Load(rule.Type.c_str(), rule.Xml.c_str()).Code == 0, "the next rule is loaded");
  RequireSameSale();
  Require(Clear("*").Code == 0, "rules are cleared");
}
