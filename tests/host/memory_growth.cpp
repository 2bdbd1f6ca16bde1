// Whole tills, one after the other, each with numbers of its own, and what they leave in memory.
//
//   memory_growth [SALES]
//
// Runs in a copy of the sample store. Scans the lines of a sale, takes it through all modes and deletes it; SALES
// times, 1,000,000 unless told. Exits with 0 when the memory that the process holds after all sales is within 2 % of
// what it held after a tenth of them.
#include <unistd.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "qncorvane/qncorvane.h"

namespace {

constexpr double kMostGrowth = 0.02;
constexpr int kLinesOfASale = 2;

std::vector<char> g_out(1U << 20U);
std::array<char, 65536> g_msg{};

[[noreturn]] void Fail(const std::string& what) {
  std::fprintf(stderr, "memory_growth: %s: %s\n", what.c_str(), g_msg.data());
  std::exit(1);
}

void Load(const char* type, const std::string& xml) {
  if (InitPromotion(type, xml.c_str(), g_msg.data()) != 0) Fail("a rule is refused");
}

std::string FileText(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

/// Two rules of the store's tables, and four of the sale's kind: payments, coupons given and taken, a member's.
void LoadRules() {
  if (BeginInitPro() != 0) Fail("no database");
  Load("PTXS", FileText("rules/PTXS-01-juice.xml"));
  Load("MZZP", FileText("rules/MZZP-01-gift.xml"));
  Load("MZZF", FileText("rules/MZZF-01-card.xml"));
  Load("MZYQ", FileText("rules/MZYQ-01-use-coupons.xml"));
  // Coupons whose end is made from the date and the time of the sale.
  Load(
      "MZYQ",
      "<Rules><Rule BillNo='Q1' ProType='MZZQ' Primary='DJ' JzDate='2024-01-01'><OrgFilter><R OrgCode='*'/></OrgFilter>"
      "<ProTime><R StartDate='2000-01-01' EndDate='2099-12-31' Frequency='DAY'/></ProTime><Vip><R VipType='*'/></Vip>"
      "<ProList ConAreaType='ALL'><PluAddAction><R BaseConNum='10' BaseDscNum='7'/></PluAddAction>"
      "<CouponType CouponTypeCode='C5' LimitType='1' LimitDay='30' IsDenom='1'/><CouponDenomination>"
      "<R Denomination='5'/><R Denomination='1'/></CouponDenomination></ProList></Rule></Rules>");
  FinishInitPro();
}

/// The texts that only one sale has.
struct Sale {
  explicit Sale(long number)
      : Number(std::to_string(10000000 + number)),
        Key("till-7/" + Number),
        Date("2024-" + std::to_string(10 + number % 3) + "-" + std::to_string(10 + number % 19)),
        Time(TwoDigits(number / 3600 % 24) + ":" + TwoDigits(number / 60 % 60) + ":" + TwoDigits(number % 60)) {}
  static std::string TwoDigits(long number) { return (number < 10 ? "0" : "") + std::to_string(number); }

  std::string Number;
  std::string Key;
  std::string Date;
  std::string Time;
};

std::string Line(const Sale& sale, int serialNo) {
  const std::string serial = std::to_string(serialNo);
  // A line of the rules' goods, and goods that are weighed and bear a number of their own.
  const std::string code = serialNo == 1 ? "100101" : "29" + sale.Number + serial;
  return "<R SerialNo='" + serial + "' PluCode='" + code + "' PluID='I" + sale.Number + serial +
         "' Price='40.00' PluCount='2' Total='80.00' PackCnt='1' CAT='JUICE' BRD='SUNNY' LOT='L" + sale.Number +
         "' SaleDate='" + sale.Date + "' SaleTime='" + sale.Time + "'/>";
}

std::string SaleXml(const Sale& sale, const std::string& groups) {
  return "<Sale BillNo='S-" + sale.Number + "' OrgCode='01' IsCalc='0'>" + groups + "</Sale>";
}

void Calculate(const Sale& sale, const char* mode, const std::string& groups) {
  if (CalcPromotion(sale.Key.c_str(), mode, SaleXml(sale, groups).c_str(), g_out.data(), g_msg.data()) != 0) Fail(mode);
}

void RunTill(long number) {
  const Sale sale(number);
  for (int line = 1; line <= kLinesOfASale; ++line) Calculate(sale, "Single", "<Plu>" + Line(sale, line) + "</Plu>");
  Calculate(sale, "All", "<Vip><R VipType='M" + sale.Number + "'/></Vip>");
  Calculate(sale, "MzPromotion", "");
  Calculate(sale, "Gift", "<Gift><R SerialNo='1' ProBillNo='MZZP-01' SaleBillNo='S-" + sale.Number + "'/></Gift>");
  Calculate(sale, "Pay",
            "<PayMode><R PayMode='CARD' PayCardNo='62000000" + sale.Number + "' PayMoney='160.00'/></PayMode>");
  Calculate(sale, "Coupon", "<Coupon><R BillNo='C-" + sale.Number + "' CouponValue='5.00'/></Coupon>");
  if (DeleteSaleSetByKey(sale.Key.c_str()) != 0) Fail("a sale is not deleted");
}

/// What the process holds in memory, in KiB.
long Resident() {
  std::ifstream file("/proc/self/statm");
  long size = 0;
  long resident = 0;
  file >> size >> resident;
  return resident * (sysconf(_SC_PAGESIZE) / 1024);
}

}  // namespace

int main(int argc, char** argv) {
  const long sales = argc > 1 ? std::strtol(argv[1], nullptr, 10) : 1000000;
  if (sales < 10) {
    std::fprintf(stderr, "memory_growth [SALES]: at least 10\n");
    return 2;
  }
  LoadRules();
  long early = 0;
  for (long number = 0; number < sales; ++number) {
    RunTill(number);
    if ((number + 1) % (sales / 10) != 0) continue;
    const long resident = Resident();
    if (early == 0) early = resident;
    std::printf("%9ld sales: %ld KiB\n", number + 1, resident);
    std::fflush(stdout);
  }
  const double growth = static_cast<double>(Resident()) / static_cast<double>(early) - 1;
  std::printf("growth from a tenth of the sales to all: %.2f %%\n", growth * 100);
  return growth <= kMostGrowth ? 0 : 1;
}
