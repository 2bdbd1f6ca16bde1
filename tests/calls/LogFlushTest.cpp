// When a call's log entries are in the file: "[Log] Flush" in config.ini.

#include <gmock/gmock.h>
#include <qncorvane/qncorvane.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "tests/support/LogMover.h"
#include "tests/support/Till.h"

namespace Corvane::Testing {
namespace {

using ::testing::ElementsAre;

namespace fs = std::filesystem;

constexpr const char* kLog = "QnCorvane.txt";

bool IsLogOpen() {
  const fs::directory_iterator all("/proc/self/fd");
  return std::any_of(begin(all), end(all), [](const auto& link) {
    std::error_code gone;
    return fs::read_symlink(link, gone).filename() == kLog;
  });
}

std::string Content(const fs::path& name) {
  std::ifstream file(name, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

/// An engine that has not read its settings yet; they say how the log is flushed.
class LogFlushCalls : public FreshTill {
 protected:
  void SetUp() override {
    FreshTill::SetUp();
    fs::remove(Directory() + "/store.db");
    MakeTables();
    Put({DirectRow("X1", 1, "COLA").Price("8")});
  }
  /// @param log the lines of the group "Log".
  static void Configure(const std::string& log) {
    WriteSettings("SQLITE", Directory() + "/store.db");
    std::ofstream("config.ini", std::ios::app) << "[Log]\n" << log;
  }
  static void LoadCola() {
    EXPECT_EQ(BeginInitPro(), 0);
    EXPECT_EQ(Load("PTXS", RuleXml("X1", "PTXS")).Code, 0);
    FinishInitPro();
  }
  static Answer Sell(const std::string& key = "till") {
    return Calc(key, "All", SaleXml(LineXml(1, "COLA", "10", "3", "30")));
  }
  static void ExpectTheStory() {
    EXPECT_THAT(TakeLog(), ElementsAre("All", "till:1\n", "开始初始化流水", "初始化流水完成", "计算模式为ALL时",  //
                                       "时间满足", "组织满足", "会员满足", "所有基本条件都被判断过，满足",        //
                                       "获取普通类促销详情成功X1",                                                //
                                       "开始计算普通限时促销，促销单号：X1", "1",                                 //
                                       "促销优惠类型：", "促销类型：PTXS", "计算整单已优惠数量：0", "2",          //
                                       "促销优惠类型：", "促销类型：PTXS", "计算整单已优惠数量：0"));
  }
};

/// How often the process writes.
class LogFlushWrites : public LogFlushCalls {
 protected:
  /// How often a sale writes, which has 19 entries.
  static long WritesOfASale() {
    LoadCola();
    const long before = Writes();
    EXPECT_EQ(Sell().Code, 0);
    return Writes() - before;
  }

 private:
  /// How often this process has written.
  static long Writes() {
    std::ifstream file("/proc/self/io");
    std::string name;
    for (long count = 0; file >> name >> count;) {
      if (name == "syscw:") return count;
    }
    ADD_FAILURE() << "the system doesn't tell how often a process writes";
    return 0;
  }
};

TEST_F(LogFlushWrites, OfACallWritesOnce) {
  Configure("Flush=call\n");
  InFreshProcess([] { EXPECT_EQ(WritesOfASale(), 1); });
}

TEST_F(LogFlushWrites, OfAnEntryWritesEachByItself) {
  Configure("Flush=entry\n");
  InFreshProcess([] { EXPECT_EQ(WritesOfASale(), 19); });
}

TEST_F(LogFlushWrites, IsOfAnEntryUnlessTold) {
  Configure("");
  InFreshProcess([] { EXPECT_EQ(WritesOfASale(), 19); });
}

TEST_F(LogFlushCalls, OfACallLeavesTheSameStory) {
  Configure("Flush=call\n");
  InFreshProcess([] {
    LoadCola();
    EXPECT_THAT(TakeLog(), ElementsAre("数据库连接成功"));
    EXPECT_THAT(LinesOf(Sell().Out), ElementsAre("1 COLA 3.00 x 10.00 = 24.00"));
    ExpectTheStory();
  });
}

// Its first entries are there before the settings are.
TEST_F(LogFlushCalls, OfACallHoldsForTheProcesssFirstCallToo) {
  Configure("Flush=call\n");
  InFreshProcess([] {
    EXPECT_EQ(Calc("till", "All", SaleXml("")).Code, 0);
    EXPECT_THAT(TakeLog(), ElementsAre("All", "till:0\n", "开始初始化流水", "初始化流水完成", "计算模式为ALL时"));
  });
}

TEST_F(LogFlushCalls, OfACallIsThereAfterCallsThatFail) {
  Configure("Flush=call\n");
  InFreshProcess([] {
    EXPECT_EQ(Load("none", "<x/>").Code, -1);
    EXPECT_THAT(TakeLog(), ElementsAre("pro initialize failed<x/>"));
    EXPECT_EQ(Calc("till", "nothing", SaleXml("")).Code, -1);
    EXPECT_THAT(TakeLog(), ElementsAre("nothing", "till:0\n", "开始初始化流水", "初始化流水完成", "sucess"));
    EXPECT_EQ(BeginInitPro(), 0);
    TakeLog();
    EXPECT_EQ(Sell().Code, -1);
    EXPECT_THAT(TakeLog(), ElementsAre("All", "pro inititalzing"));
    EXPECT_EQ(ClearSales().Code, -1);
    EXPECT_THAT(TakeLog(), ElementsAre("pro inititalzing"));
  });
}

TEST_F(LogFlushWrites, ThatComeLateWithTheirFileAreFound) {
  InFreshProcess([] {
    EXPECT_EQ(BeginInitPro(), -1);
    FinishInitPro();
    Configure("Flush=call\n");
    EXPECT_EQ(WritesOfASale(), 1);
  });
}

class LogFlushOfEither : public LogFlushCalls, public ::testing::WithParamInterface<const char*> {};

INSTANTIATE_TEST_SUITE_P(Flush, LogFlushOfEither, ::testing::Values("Flush=entry\n", "Flush=call\n"),
                         [](const auto& test) { return std::string(test.index == 0 ? "Entry" : "Call"); });

TEST_P(LogFlushOfEither, IsNotOpenBetweenCalls) {
  Configure(GetParam());
  InFreshProcess([] {
    const auto expectClosed = [](const char* call) { EXPECT_FALSE(IsLogOpen()) << call; };
    LoadCola();
    expectClosed("load");
    for (const char* const mode : {"Single", "All", "Union", "Zh", "MzPromotion", "Gift", "Pay", "Coupon", "none"}) {
      Calc("till", mode, SaleXml(LineXml(1, "COLA", "10", "3", "30")));
      expectClosed(mode);
    }
    DeleteSaleSetByKey("till");
    expectClosed("DeleteSaleSetByKey");
    Load("none", "<x/>");
    expectClosed("refused load");
    ClearSales();
    expectClosed("ClearSaleSetForNet");
    Clear("*");
    expectClosed("ClearPromotion");
    EXPECT_GT(TakeLog().size(), 20U);
  });
}

// 300 sales of 19 entries: in one file or another each is there, whole and once.
TEST_P(LogFlushOfEither, NoneIsLostWhileAnotherProcessMovesTheFile) {
  Configure(GetParam());
  InFreshProcess([] {
    LoadCola();
    TakeLog();
    {
      const LogMover mover;
      for (int sale = 0; sale < 300; ++sale) {
        EXPECT_EQ(Sell("sale" + std::to_string(sale)).Code, 0);
        if (sale % 50 == 0) {
          ASSERT_TRUE(mover.HasMovedAll());
        }
      }
    }
    std::string all;
    int files = 0;
    for (const auto& file : fs::directory_iterator(".")) {
      if (file.path().filename() == "config.ini") continue;
      all += Content(file.path());
      ++files;
    }
    EXPECT_GT(files, 2);
    EXPECT_EQ(EntriesIn(all), 300U * 19U);
    for (int sale = 0; sale < 300; ++sale) {
      const std::string entry = "  sale" + std::to_string(sale) + ":1\n\n\r";
      const std::size_t found = all.find(entry);
      EXPECT_NE(found, std::string::npos) << entry;
      EXPECT_EQ(all.find(entry, found + 1), std::string::npos) << entry;
    }
  });
}

}  // namespace
}  // namespace Corvane::Testing
