#include "tests/faults/Shop.h"

#include <array>
#include <cstring>
#include <fstream>
#include <iterator>

#include "qncorvane/qncorvane.h"

namespace faults {

namespace {

/// A rule of the shop: its number, and the type word that it is loaded by.
struct Rule {
  const char* BillNo;
  const char* File;
  const char* Type;
};

constexpr std::array<Rule, 18> kRules = {{{"PTXS-01", "PTXS-01-juice", "PTXS"},
                                          {"PTXS-02", "PTXS-02-fruit", "PTXS"},
                                          {"PTXS-03", "PTXS-03-shampoo", "PTXS"},
                                          {"PTXS-04", "PTXS-04-member-coffee", "PTXS"},
                                          {"PTPL-01", "PTPL-01-yoghurt", "PTPL"},
                                          {"PTOS-01", "PTOS-01-chocolate", "PTOS"},
                                          {"ZHZY-01", "ZHZY-01-toothpaste", "ZHZY"},
                                          {"ZHGD-01", "ZHGD-01-pasta-night", "ZHGD"},
                                          {"ZHTJ-01", "ZHTJ-01-care", "ZHTJ"},
                                          {"ZHZX-01", "ZHZX-01-snack-menu", "ZHZX"},
                                          {"MZMJ-01", "MZMJ-01-reduction", "MZMJ"},
                                          {"MZDP-01", "MZDP-01-croissant", "MZDP"},
                                          {"MZZM-01", "MZZM-01-bread", "MZZM"},
                                          {"MZZP-01", "MZZP-01-gift", "MZZP"},
                                          {"MZHG-01", "MZHG-01-mug", "MZHG"},
                                          {"MZZF-01", "MZZF-01-card", "MZZF"},
                                          {"MZZQ-01", "MZZQ-01-coupon", "MZYQ"},
                                          {"MZYQ-01", "MZYQ-01-use-coupons", "MZYQ"}}};

#define LINE(serial, code, price, count, total, category)                                                            \
  "<Row SerialNo='" serial "' PluCode='" code "' PluType='PLU' Price='" price "' PluCount='" count "' Total='" total \
  "' PackCnt='1' CAT='" category "' BRD='' SaleDate='2024-06-15' SaleTime='10:30:00'/>"
#define SALE(groups) "<Sale BillNo='S&#228;-1' OrgCode='01' IsCalc='0'>" groups "</Sale>"

constexpr const char* kSale = SALE("<Plu>"                                               //
                                   LINE("1", "100101", "2.50", "2", "5.00", "JUICE")     //
                                   LINE("2", "400102", "2.60", "1.25", "3.25", "FRUIT")  //
                                   LINE("3", "200201", "0.80", "6", "4.80", "YOGHURT")   //
                                   LINE("4", "500101", "1.60", "2", "3.20", "SWEETS")    //
                                   LINE("5", "600301", "2.90", "3", "8.70", "DENTAL")    //
                                   LINE("6", "700101", "1.50", "2", "3.00", "PASTA")     //
                                   LINE("7", "700102", "2.30", "1", "2.30", "PASTA")     //
                                   LINE("8", "700103", "4.20", "1", "4.20", "CHEESE")    //
                                   LINE("9", "600101", "4.90", "2", "9.80", "CARE")      //
                                   LINE("10", "600201", "3.50", "3", "10.50", "CARE")    //
                                   LINE("11", "800101", "5.90", "1", "5.90", "SNACK")    //
                                   LINE("12", "800201", "2.50", "1", "2.50", "SODA")     //
                                   LINE("13", "110101", "6.90", "1", "6.90", "COFFEE")   //
                                   LINE("14", "300201", "1.10", "4", "4.40", "BAKERY")   //
                                   LINE("15", "200103", "4.70", "2", "9.40", "DAIRY")    //
                                   LINE("16", "200102", "2.60", "1", "2.60", "DAIRY")    //
                                   LINE("17", "300101", "3.20", "1", "3.20", "BAKERY")   //
                                   LINE("18", "950101", "18.90", "3", "56.70", "HOUSE")  //
                                   "</Plu><Vip><Row VipType='01'/></Vip>");

constexpr const char* kScan = SALE("<Plu>" LINE("1", "100101", "2.50", "2", "5.00", "JUICE") "</Plu>");

constexpr const char* kGift = SALE(
    "<ProGifts><ProGift ProBillNo='MZZP-01' Total='100' LeftTotal='100' UsedTotal='0'><Data SerialNo='1' "
    "PluCode='900101' PluType='PLU' BaseConTp='SUM' BaseConNum='60' BaseDscTp='NUM' BaseDscNum='1' AddConNum='0' "
    "AddDscNum='0' SaleMaxIn='1' DscPrice='0' HgPluCount='1' CanPart='1' Price='0'/></ProGift></ProGifts>");

constexpr const char* kPayment =
    SALE("<PayMode><Row PayMode='CARD' PayCardNo='6212345678901234' PayMoney='90'/></PayMode>");

constexpr const char* kCoupons = SALE(
    "<Coupon><Row BillNo='MZZQ-01' CouponTypeCode='C5' CouponValue='5' BgnDate='2024-05-01' EndDate='2024-12-31'/>"
    "<Row BillNo='MZZQ-01' CouponTypeCode='C5' CouponValue='5' BgnDate='2024-05-01' EndDate='2024-12-31'/>"
    "</Coupon>");

#undef SALE
#undef LINE

std::array<std::array<char, 4096>, kRules.size()> g_rules{};
std::array<char, 1U << 17U> g_out{};
std::array<char, 1U << 13U> g_msg{};
std::array<char, 1U << 18U> g_results{};
std::size_t g_resultsLength = 0;

int Calculate(const char* key, const char* mode, const char* xml) {
  return CalcPromotion(key, mode, xml, g_out.data(), g_msg.data());
}

/// One rule, and all of them behind it: the first load makes what the others find.
int LoadFirst() { return InitPromotion(kRules[0].Type, g_rules[0].data(), g_msg.data()); }

int LoadRest() {
  int code = 0;
  for (std::size_t rule = 1; rule < kRules.size(); ++rule) {
    const int loaded = InitPromotion(kRules[rule].Type, g_rules[rule].data(), g_msg.data());
    if (loaded != 0) code = loaded;
  }
  return code;
}

constexpr const char* kTill = "till-1/4711";

constexpr std::array<Step, 20> kSteps = {{
    {"BeginInitPro", BeginInitPro},
    {"InitPromotion", LoadFirst},
    {"InitPromotion of all types", LoadRest},
    {"InitPromotion again", LoadFirst},
    {"FinishInitPro", FinishInitPro},
    {"All", [] { return Calculate(kTill, "All", kSale); }},
    {"Single", [] { return Calculate("scanner", "Single", kScan); }},
    {"MzPromotion", [] { return Calculate(kTill, "MzPromotion", "<Sale/>"); }},
    {"Gift", [] { return Calculate(kTill, "Gift", kGift); }},
    {"Pay", [] { return Calculate(kTill, "Pay", kPayment); }},
    {"Coupon", [] { return Calculate(kTill, "Coupon", kCoupons); }},
    {"Union", [] { return Calculate("another", "Union", kSale); }},
    {"Zh", [] { return Calculate("another", "Zh", kSale); }},
    {"All again", [] { return Calculate(kTill, "All", kSale); }},
    {"GetState", [] { return GetState(g_msg.data()) == g_msg.data() ? 0 : 1; }},
    {"DeleteSaleSetByKey", [] { return DeleteSaleSetByKey(kTill); }},
    {"ClearPromotion of one", [] { return ClearPromotion(g_msg.data(), "ptxs-01"); }},
    {"ClearSaleSetForNet", [] { return ClearSaleSetForNet(g_msg.data()); }},
    {"ClearPromotion of all", [] { return ClearPromotion(g_msg.data(), "*"); }},
    {"FinishInitPro at the end", FinishInitPro},
}};

void Keep(const char* text) {
  const std::size_t length = std::strlen(text);
  if (g_resultsLength + length + 1 > g_results.size()) return;
  std::memcpy(g_results.data() + g_resultsLength, text, length + 1);
  g_resultsLength += length;
}

/// Runs steps and keeps what they answer. @return the first that was no success, or null.
const char* RunSteps(std::size_t begin, std::size_t end) {
  const char* failed = nullptr;
  for (std::size_t place = begin; place < end; ++place) {
    g_out[0] = '\0';
    g_msg[0] = '\0';
    if (kSteps[place].Run() != 0 && failed == nullptr) failed = kSteps[place].Name;
    Keep(g_out.data());
    Keep(g_msg.data());
    Keep("\n");
  }
  return failed;
}

}  // namespace

std::size_t StepCount() { return kSteps.size(); }
const Step& StepAt(std::size_t place) { return kSteps[place]; }

bool ReadShop() {
  bool isThere = true;
  for (std::size_t rule = 0; rule < kRules.size(); ++rule) {
    std::ifstream file(std::string("rules/") + kRules[rule].File + ".xml", std::ios::binary);
    file.read(g_rules[rule].data(), static_cast<std::streamsize>(g_rules[rule].size() - 1));
    isThere = isThere && file.gcount() > 0 && file.eof();
  }
  return isThere;
}

bool Clean() {
  return FinishInitPro() == 0 && ClearPromotion(g_msg.data(), "*") == 0 && ClearSaleSetForNet(g_msg.data()) == 0;
}

const char* WholeTill() {
  BeginTill(0);
  return FinishTill(0);
}

const char* BeginTill(std::size_t place) {
  g_resultsLength = 0;
  g_results[0] = '\0';
  return RunSteps(0, place);
}

const char* FinishTill(std::size_t place) { return RunSteps(place, kSteps.size()); }

std::string_view Results() { return {g_results.data(), g_resultsLength}; }

const char* LastMessage() { return g_msg.data(); }
const char* LastResult() { return g_out.data(); }

bool EachRuleGives(std::string_view results, std::string& missing) {
  for (const Rule& rule : kRules) {
    // What a rule gave names it so: discounts and offers with "ProBillNo", coupons given in their own group.
    const std::string given = std::string("ProBillNo=\"") + rule.BillNo + "\"";
    if (results.find(given) != std::string_view::npos) continue;
    missing = rule.BillNo;
    return false;
  }
  return true;
}

}  // namespace faults
