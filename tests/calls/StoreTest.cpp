// The store's database as a till meets it over days: reloads, files that are replaced, locks, settings that come late.
#include <dirent.h>
#include <dlfcn.h>
#include <gmock/gmock.h>
#include <sqlite3.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <set>

#include "qncorvane/qncorvane.h"
#include "tests/calls/FullAmount.h"

namespace Corvane::Testing {
namespace {

using std::chrono::steady_clock;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// How many descriptors this process has open.
int Descriptors() {
  int count = 0;
  DIR* const folder = opendir("/proc/self/fd");
  while (readdir(folder) != nullptr) ++count;
  closedir(folder);
  return count;
}

double SecondsSince(steady_clock::time_point start) {
  return std::chrono::duration<double>(steady_clock::now() - start).count();
}

class Store : public FullAmount {
 protected:
  static Answer Sell(const std::string& line = LineXml(1, "COLA", "10", "1", "10")) {
    return Calc("till", "All", SaleXml(line));
  }

  static void LoadCola(const std::string& price = "8") {
    Put({DirectRow("X1", 1, "COLA").Dsc("PRC", price, "0")});
    LoadRule("X1", "PTXS");
  }

  static std::string StoreFile() { return Directory() + "/store.db"; }
};

TEST_F(Store, RulesLoadedBeforeTheFirstOpenShareItsConnection) {
  Put({DirectRow("R0", 1, "COLA").Dsc("PRC", "8", "0")});
  for (int rule = 0; rule < 20; ++rule) LoadRule("R" + std::to_string(rule), "PTXS");
  const int before = Descriptors();
  ASSERT_EQ(BeginInitPro(), 0);
  FinishInitPro();
  const int opened = Descriptors();
  EXPECT_EQ(opened, before + 1);
  for (int reload = 0; reload < 5; ++reload) {
    EXPECT_THAT(DiscountsOf(Sell().Out), ElementsAre("1 COLA: R0 on 1.00 gives 2.00"));
    for (int rule = 0; rule < 20; ++rule) LoadRule("R" + std::to_string(rule), "PTXS");
    EXPECT_EQ(Descriptors(), opened);
  }
}

TEST_F(Store, AFileInItsPlaceIsReadAtTheNextCall) {
  LoadCola();
  EXPECT_THAT(DiscountsOf(Sell().Out), ElementsAre("1 COLA: X1 on 1.00 gives 2.00"));
  const int opened = Descriptors();

  std::filesystem::copy_file(StoreFile(), Directory() + "/old.db");
  Sql("update tProPrjDirectProAct set DscPrice=7");
  std::filesystem::copy_file(StoreFile(), Directory() + "/new.db");
  std::filesystem::rename(Directory() + "/old.db", StoreFile());
  EXPECT_THAT(DiscountsOf(Sell().Out), ElementsAre("1 COLA: X1 on 1.00 gives 2.00"));
  std::filesystem::rename(Directory() + "/new.db", StoreFile());
  EXPECT_THAT(DiscountsOf(Sell().Out), ElementsAre("1 COLA: X1 on 1.00 gives 3.00"));

  EXPECT_EQ(Descriptors(), opened);
}

// One wait for the whole sale, however many lines and rules ask.
TEST_F(Store, ALockOfAnotherProcessHoldsACallForOneTimeout) {
  LoadCola();
  for (int rule = 2; rule < 8; ++rule) LoadRule("M" + std::to_string(rule), "MZMJ");
  ASSERT_EQ(Sell().Code, 0);
  std::array<int, 2> ready{};
  ASSERT_EQ(pipe(ready.data()), 0);
  const pid_t holder = fork();
  if (holder == 0) {
    sqlite3* store = nullptr;
    sqlite3_open(StoreFile().c_str(), &store);
    sqlite3_exec(store, "begin exclusive", nullptr, nullptr, nullptr);
    if (write(ready[1], "x", 1) != 1) _exit(1);
    pause();
    _exit(0);
  }
  char sign = 0;
  ASSERT_EQ(read(ready[0], &sign, 1), 1);

  std::string lines;
  for (int line = 1; line <= 10; ++line) lines += LineXml(line, "COLA", "10", "1", "10");
  for (const char* mode : {"All", "MzPromotion"}) {
    const auto start = steady_clock::now();
    const Answer sale = Calc("till", mode, SaleXml(lines));
    EXPECT_LT(SecondsSince(start), 2 * 3 + 1);
    EXPECT_GT(SecondsSince(start), 2.5);
    EXPECT_EQ(sale.Code, 0);
    EXPECT_THAT(DiscountsOf(sale.Out), IsEmpty());
  }
  kill(holder, SIGKILL);
  waitpid(holder, nullptr, 0);
  ASSERT_EQ(ClearSales().Code, 0);

  EXPECT_THAT(DiscountsOf(Sell().Out), ElementsAre("1 COLA: X1 on 1.00 gives 2.00"));
}

// --- Values that look like statements --------------------------------------------------------------------------------

constexpr const char* kHostile[] = {"'; update tProPrjDirectProAct set DscPrice=0; --",
                                    "' or '1'='1",
                                    "''",
                                    "'",
                                    "\\",
                                    "\\' or 1=1 -- ",
                                    "\" or \"\"=\"",
                                    "%",
                                    ":a ?"};

std::string Attribute(const std::string& text) {
  std::string escaped;
  for (const char sign : text) {
    if (sign == '"') {
      escaped += "&quot;";
    } else if (sign == '&') {
      escaped += "&amp;";
    } else {
      escaped += sign;
    }
  }
  return escaped;
}

TEST_F(Store, NoCodeOfASaleIsMoreThanACode) {
  LoadCola();
  for (const char* type : {"PTPL", "PTOS", "ZHZY", "ZHGD", "ZHTJ", "ZHZX", "MZMJ", "MZDP", "MZZM", "MZZP"}) {
    LoadRule(std::string("R-") + type, type);
  }
  Offer("'R-MZMJ','L1','DES',0,'0'");
  for (const char* value : kHostile) {
    const std::string code = Attribute(value);
    for (const char* mode : {"All", "MzPromotion"}) {
      TakeLog();
      const Answer sale =
          Calc("till", mode, SaleXml(LineXml(1, code, "10", "1", "10", "CAT=\"" + code + "\" BRD=\"" + code + "\"")));
      EXPECT_EQ(sale.Code, 0);
      EXPECT_THAT(DiscountsOf(sale.Out), IsEmpty()) << value;
      for (const std::string& entry : TakeLog()) EXPECT_EQ(entry.find("失败"), std::string::npos) << entry;
    }
  }
  EXPECT_THAT(DiscountsOf(Sell().Out), ElementsAre("1 COLA: X1 on 1.00 gives 2.00"));
}

TEST_F(Store, NoMemberCardOrCouponNumberIsMoreThanANumber) {
  LoadCola();
  for (const char* value : kHostile) {
    const std::string number = Attribute(value);
    const std::string groups = "<Vip><D VipNo=\"" + number + "\" CardNo=\"" + number + "\" VipType=\"" + number +
                               "\"/></Vip><Pay><D PayCode=\"" + number + "\" CardNo=\"" + number +
                               "\" Total=\"1\"/></Pay><Coupon><D CouponNo=\"" + number + "\" CouponTypeCode=\"" +
                               number + "\" Value=\"1\"/></Coupon>";
    const Answer sale = Calc("till", "All", SaleXml(LineXml(1, "COLA", "10", "1", "10"), groups));
    EXPECT_THAT(DiscountsOf(sale.Out), ElementsAre("1 COLA: X1 on 1.00 gives 2.00")) << value;
    EXPECT_EQ(Calc("till", "Coupon", SaleXml(LineXml(1, "COLA", "10", "1", "10"), groups)).Code, 0);
  }
}

TEST_F(Store, ARuleNumberMayHoldAnything) {
  for (const char* value : kHostile) {
    std::string doubled;
    for (const char* sign = value; *sign != '\0'; ++sign) doubled.append(*sign == '\'' ? 2 : 1, *sign);
    Put({DirectRow(doubled, 1, "COLA").Dsc("PRC", "8", "0")});
    LoadRule(Attribute(value), "PTXS");
    EXPECT_THAT(DiscountsOf(Sell().Out), ElementsAre("1 COLA: " + std::string(value) + " on 1.00 gives 2.00"));
    ASSERT_EQ(Clear(value).Code, 0);
  }
}

// --- Settings and driver ---------------------------------------------------------------------------------------------

class LateStore : public FreshTill {};

TEST_F(LateStore, SettingsThatComeLaterAreRead) {
  InFreshProcess([] {
    EXPECT_EQ(BeginInitPro(), -1);
    FinishInitPro();
    EXPECT_EQ(TakeLog(), Texts{"数据库连接失败"});
    WriteSettings("SQLITE", "./late.db");
    EXPECT_EQ(BeginInitPro(), 0);
    FinishInitPro();
    EXPECT_EQ(TakeLog(), Texts{"数据库连接成功"});
  });
}

/// A process without descriptors.
class ExhaustedStore : public FreshTill {
 protected:
  /// The store can't be opened while there are no descriptors, and can when there are some again.
  static void ExpectToOpenWithDescriptorsAlone() {
    rlimit before{};
    ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &before), 0);
    const rlimit none{3, before.rlim_max};
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &none), 0);
    EXPECT_EQ(BeginInitPro(), -1);
    FinishInitPro();
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &before), 0);
    EXPECT_EQ(BeginInitPro(), 0);
    FinishInitPro();
  }
};

TEST_F(ExhaustedStore, DescriptorsAreMissedOnce) {
  InFreshProcess([] {
    WriteSettings("SQLITE", "./shop.db");
    ExpectToOpenWithDescriptorsAlone();
  });
}

/// Descriptors used up after the settings were read: only the driver is missing.
TEST_F(ExhaustedStore, ADriverThatCouldNotBeLoadedIsLoadedLater) {
  InFreshProcess([] {
    WriteSettings("SQLITE", "./shop.db");
    ASSERT_EQ(Load("PTXS", RuleXml("X1", "PTXS")).Code, 0);
    ExpectToOpenWithDescriptorsAlone();
  });
}

}  // namespace
}  // namespace Corvane::Testing
