#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <iomanip>
#include <sstream>

#include "tests/support/Till.h"

namespace Corvane::Testing {
namespace {

using ::testing::ElementsAre;
using ::testing::MatchesRegex;
using ::testing::StartsWith;

namespace fs = std::filesystem;

constexpr const char* kLog = "QnCorvane.txt";

/// The calculation log: its file, and the whole of what it says about a calculation.
class LogCalls : public Till {
 protected:
  static std::string Bytes() {
    std::ifstream file(kLog, std::ios::binary);
    std::stringstream bytes;
    bytes << file.rdbuf();
    return bytes.str();
  }
  /// A call that writes one entry.
  static void WriteOne(const std::string& mark = "<x/>") { EXPECT_EQ(Load("NONE", mark).Code, -1); }
  static void FillTo(std::size_t size) { std::ofstream(kLog, std::ios::binary) << std::string(size, 'x'); }
  /// A sale that finds its discount, whatever the log is up to.
  static void ExpectTheSaleGoesOn() {
    const Answer sale = Calc("till", "All", SaleXml(LineXml(1, "COLA", "10", "3", "30")));
    EXPECT_EQ(sale.Code, 0);
    EXPECT_THAT(LinesOf(sale.Out), ElementsAre("1 COLA 3.00 x 10.00 = 24.00"));
  }
  static void LoadARule() {
    MakeTables();
    Put({DirectRow("X1", 1, "COLA").Price("8")});
    ASSERT_EQ(Load("PTXS", RuleXml("X1", "PTXS")).Code, 0);
  }
};

/// The length of an entry of WriteOne: "yyyy-MM-dd hh:mm:ss", two blanks, "pro initialize failed<x/>", two characters.
constexpr std::size_t kEntryLength = 19 + 2 + 25 + 2;

std::string Now() {
  const std::time_t now = std::time(nullptr);
  std::tm local = {};
  localtime_r(&now, &local);
  std::ostringstream text;
  text << std::put_time(&local, "%Y-%m-%d %H:%M:%S");
  return text.str();
}

// --- The file --------------------------------------------------------------------------------------------------------

TEST_F(LogCalls, TheFirstEntryMakesTheFile) {
  ASSERT_FALSE(fs::exists(kLog));

  WriteOne();

  EXPECT_EQ(Bytes().size(), kEntryLength);
}

TEST_F(LogCalls, AnEntryIsTheLocalTimeTwoBlanksTheTextNewlineAndCarriageReturn) {
  const std::string before = Now();
  WriteOne();
  const std::string after = Now();

  const std::string entry = Bytes();
  EXPECT_THAT(entry,
              MatchesRegex("[0-9]{4}-[0-9]{2}-[0-9]{2} [0-9]{2}:[0-9]{2}:[0-9]{2}  pro initialize failed<x/>\n\r"));
  EXPECT_GE(entry.substr(0, 19), before);
  EXPECT_LE(entry.substr(0, 19), after);
}

TEST_F(LogCalls, EntriesAreAppended) {
  WriteOne("<a/>");
  WriteOne("<b/>");

  EXPECT_EQ(Bytes().size(), 2 * kEntryLength);
  EXPECT_THAT(TakeLog(), ElementsAre("pro initialize failed<a/>", "pro initialize failed<b/>"));
}

TEST_F(LogCalls, ChineseTextsArriveInTheFilesEncoding) {
  WriteOne("<促销/>");

  EXPECT_THAT(TakeLog(), ElementsAre("pro initialize failed<促销/>"));
}

TEST_F(LogCalls, AFileOverTheLimitStartsAnewWithTheNextEntry) {
  FillTo(1000001);

  WriteOne();

  EXPECT_EQ(Bytes().size(), kEntryLength);
  EXPECT_THAT(TakeLog(), ElementsAre("pro initialize failed<x/>"));
}

TEST_F(LogCalls, AFileAtTheLimitGrowsByOneEntryAndThenStartsAnew) {
  FillTo(1000000);

  WriteOne("<a/>");
  EXPECT_EQ(Bytes().size(), 1000000 + kEntryLength);
  EXPECT_THAT(Bytes(), StartsWith("xxxx"));

  WriteOne("<b/>");
  EXPECT_EQ(Bytes().size(), kEntryLength);
  EXPECT_THAT(TakeLog(), ElementsAre("pro initialize failed<b/>"));
}

TEST_F(LogCalls, AnEntryThatStartsTheFileAnewEndsLikeEveryOther) {
  FillTo(1000001);

  WriteOne();

  EXPECT_EQ(Bytes().substr(kEntryLength - 2), "\n\r");
}

TEST_F(LogCalls, AFileThatIsDeletedOrMovedAwayIsMadeAgain) {
  WriteOne("<a/>");
  fs::rename(kLog, "old.txt");

  WriteOne("<b/>");

  EXPECT_THAT(TakeLog(), ElementsAre("pro initialize failed<b/>"));
  fs::remove("old.txt");
}

TEST_F(LogCalls, TheLogFollowsTheCurrentDirectory) {
  WriteOne("<a/>");
  fs::create_directory("elsewhere");
  fs::current_path("elsewhere");
  WriteOne("<b/>");

  EXPECT_THAT(TakeLog(), ElementsAre("pro initialize failed<b/>"));
  fs::current_path("..");
  EXPECT_THAT(TakeLog(), ElementsAre("pro initialize failed<a/>"));
  fs::remove_all("elsewhere");
}

// --- A file that can't be written ------------------------------------------------------------------------------------

TEST_F(LogCalls, WithADirectoryInItsPlaceTheSaleGoesOn) {
  LoadARule();
  fs::create_directory(kLog);

  ExpectTheSaleGoesOn();

  EXPECT_TRUE(fs::is_directory(kLog));
  EXPECT_TRUE(fs::is_empty(kLog));
  fs::remove(kLog);
}

TEST_F(LogCalls, WithALinkIntoNowhereInItsPlaceTheSaleGoesOn) {
  LoadARule();
  fs::create_symlink("no/such/directory/log.txt", kLog);

  ExpectTheSaleGoesOn();

  fs::remove(kLog);
}

TEST_F(LogCalls, OnAFullDiskTheSaleGoesOn) {
  LoadARule();
  fs::create_symlink("/dev/full", kLog);

  ExpectTheSaleGoesOn();

  fs::remove(kLog);
}

TEST_F(LogCalls, InADirectoryThatIsGoneTheSaleGoesOn) {
  LoadARule();
  fs::create_directory("gone");
  fs::current_path("gone");
  fs::remove(Directory() + "/gone");

  ExpectTheSaleGoesOn();

  fs::current_path(Directory());
}

/// Gives the rights of the superuser away for a while, who may write every file.
class OrdinaryUser {
 public:
  OrdinaryUser() : m_before(geteuid()) { m_changed = m_before != 0 || seteuid(65534) == 0; }
  OrdinaryUser(const OrdinaryUser&) = delete;
  OrdinaryUser& operator=(const OrdinaryUser&) = delete;
  ~OrdinaryUser() {
    if (seteuid(m_before) != 0) ADD_FAILURE() << "the test's user is lost";
  }
  bool Stands() const { return m_changed; }

 private:
  uid_t m_before;
  bool m_changed = false;
};

TEST_F(LogCalls, AReadOnlyFileStaysAsItIsAndTheSaleGoesOn) {
  LoadARule();
  // The store is open by now; the directory may be searched, and the file only be read.
  ExpectTheSaleGoesOn();
  TakeLog();
  std::ofstream(kLog) << "sealed";
  ASSERT_EQ(chmod(Directory().c_str(), 0755), 0);
  ASSERT_EQ(chmod(kLog, 0444), 0);
  {
    const OrdinaryUser user;
    if (!user.Stands()) GTEST_SKIP() << "the superuser's rights can't be given away here";
    ExpectTheSaleGoesOn();
  }
  EXPECT_EQ(Bytes(), "sealed");
}

// --- The whole story of a calculation --------------------------------------------------------------------------------

/// A rule, its rows and a sale, and every entry that the calculation writes.
class WholeLog : public LogCalls {
 protected:
  void SetUp() override {
    LogCalls::SetUp();
    MakeTables();
  }
  static std::vector<std::string> Story(const std::string& mode, const std::string& sale) {
    TakeLog();
    EXPECT_EQ(Calc("till", mode, sale).Code, 0);
    return TakeLog();
  }
  static void LoadRule(const std::string& type, const std::string& header = "") {
    ASSERT_EQ(Load(type, RuleXml("R1", type, header)).Code, 0);
  }
};

TEST_F(WholeLog, OfATimeLimitInAll) {
  Put({DirectRow("R1", 1, "COLA").Price("8")});
  LoadRule("PTXS");

  EXPECT_THAT(Story("All", SaleXml(LineXml(1, "COLA", "10", "3", "30"))),
              ElementsAre("All", "till:1\n", "开始初始化流水", "初始化流水完成", "计算模式为ALL时",  //
                          "时间满足", "组织满足", "会员满足", "所有基本条件都被判断过，满足",        //
                          "获取普通类促销详情成功R1",                                                //
                          "开始计算普通限时促销，促销单号：R1", "1",                                 //
                          "促销优惠类型：", "促销类型：PTXS", "计算整单已优惠数量：0", "2",          //
                          "促销优惠类型：", "促销类型：PTXS", "计算整单已优惠数量：0"));
}

TEST_F(WholeLog, OfAnExclusiveTimeLimitThatMeetsTheSaleTwice) {
  Put({DirectRow("R1", 1, "COLA").Price("8")});
  LoadRule("PTXS", R"(Primary="DZ")");

  // The second visit asks once what is open, finds nothing and goes.
  EXPECT_THAT(Story("All", SaleXml(LineXml(1, "COLA", "10", "3", "30"))),
              ElementsAre("All", "till:1\n", "开始初始化流水", "初始化流水完成", "计算模式为ALL时",  //
                          "时间满足", "组织满足", "会员满足", "所有基本条件都被判断过，满足",        //
                          "获取普通类促销详情成功R1",                                                //
                          "开始计算普通限时促销，促销单号：R1", "1",                                 //
                          "促销优惠类型：", "促销类型：PTXS", "计算整单已优惠数量：0", "2",          //
                          "促销优惠类型：", "促销类型：PTXS", "计算整单已优惠数量：0",               //
                          "时间满足", "组织满足", "会员满足", "所有基本条件都被判断过，满足",        //
                          "获取普通类促销详情成功R1",                                                //
                          "开始计算普通限时促销，促销单号：R1", "1",                                 //
                          "促销优惠类型：", "促销类型：PTXS", "计算整单已优惠数量：0", "2"));
}

TEST_F(WholeLog, OfATimeLimitInSingle) {
  LoadRule("PTXS");

  EXPECT_THAT(Story("Single", SaleXml(LineXml(1, "COLA", "10", "3", "30"))),
              ElementsAre("Single", "till:1\n", "开始初始化流水", "初始化流水完成",          //
                          "开始计算普通限时促销，促销单号：R1", "1",                         //
                          "促销优惠类型：", "促销类型：PTXS", "计算整单已优惠数量：0", "2",  //
                          "获取一个销售流水经过计算之后的xml"));
}

TEST_F(WholeLog, OfATimeLimitWithALimitByQuantity) {
  Put({DirectRow("R1", 1, "TEA").Price("8"), DirectRow("R1", 2, "COLA").Price("8")});
  LoadRule("PTXS", R"(MaxYhType="2" MaxYhValue="4")");

  // On line 2 the rule holds 3 of 4 already: what it may still give is not what the line has open.
  EXPECT_THAT(Story("All", SaleXml(LineXml(1, "TEA", "10", "3", "30") + LineXml(2, "COLA", "10", "5", "50"))),
              ElementsAre("All", "till:1\n", "开始初始化流水", "初始化流水完成", "计算模式为ALL时",  //
                          "时间满足", "组织满足", "会员满足", "所有基本条件都被判断过，满足",        //
                          "获取普通类促销详情成功R1", "获取普通类促销详情成功R1",                    //
                          "开始计算普通限时促销，促销单号：R1", "1",                                 //
                          "促销优惠类型：2", "促销类型：PTXS", "类型为2", "计算整单已优惠数量：0", "可计算数量：3", "2",
                          "促销优惠类型：2", "促销类型：PTXS", "类型为2", "计算整单已优惠数量：0", "可计算数量：3",
                          "开始计算普通限时促销，促销单号：R1", "1",  //
                          "促销优惠类型：2", "促销类型：PTXS", "类型为2", "11111", "计算整单已优惠数量：3", "2",
                          "促销优惠类型：2", "促销类型：PTXS", "类型为2", "11111", "计算整单已优惠数量：3"));
}

TEST_F(WholeLog, OfATimeLimitsLimitByMoneyBeginsWithoutItsHeadline) {
  Put({DirectRow("R1", 1, "TV").MoneyOff("60"), DirectRow("R1", 2, "RADIO").MoneyOff("40")});
  LoadRule("PTXS", R"(MaxYhType="1" MaxYhValue="50")");

  const auto story =
      Story("All", SaleXml(LineXml(1, "TV", "100", "1", "100") + LineXml(2, "RADIO", "100", "1", "100")));

  EXPECT_FALSE(Holds(story, "促销单按照最大优惠额限制"));
  EXPECT_THAT(std::vector<std::string>(story.end() - 8, story.end()),
              ElementsAre("计算整单已优惠数量：0", "ProNums= 2", "ProNumsT为：1", "allocated=30", "ProNumsT为：2",
                          "ProNumsT=ProNums", "allocated=30", "proInfo.MaxYhValue=50"));
}

TEST_F(WholeLog, OfALimitByMoneyThatIsNotReached) {
  Put({DirectRow("R1", 1, "TV").MoneyOff("60")});
  LoadRule("PTXS", R"(MaxYhType="1" MaxYhValue="100")");

  const auto story = Story("All", SaleXml(LineXml(1, "TV", "100", "1", "100")));

  EXPECT_THAT(std::vector<std::string>(story.end() - 2, story.end()),
              ElementsAre("计算整单已优惠数量：0", "ProNums= 1"));
}

TEST_F(WholeLog, OfABatch) {
  Put({DirectRow("R1", 1, "COLA").Price("8").SaleCount("2")});
  LoadRule("PTPL");

  EXPECT_THAT(Story("All", SaleXml(LineXml(1, "COLA", "10", "3", "30"))),
              ElementsAre("All", "till:1\n", "开始初始化流水", "初始化流水完成", "计算模式为ALL时",  //
                          "促销单限制类型：",                                                        //
                          "时间满足", "组织满足", "会员满足", "所有基本条件都被判断过，满足",        //
                          "获取普通类促销详情成功R1",                                                //
                          "促销优惠类型：", "促销类型：PTPL", "计算整单已优惠数量：0",               //
                          "促销优惠类型：", "促销类型：PTPL", "计算整单已优惠数量：0"));
}

TEST_F(WholeLog, OfABatchsLimitByMoneyBeginsWithItsHeadline) {
  Put({DirectRow("R1", 1, "TV").MoneyOff("80")});
  LoadRule("PTPL", R"(MaxYhType="1" MaxYhValue="50")");

  EXPECT_THAT(Story("Union", SaleXml(LineXml(1, "TV", "100", "1", "100"))),
              ElementsAre("Union", "till:1\n", "开始初始化流水", "初始化流水完成", "计算模式为Union时",   //
                          "促销单限制类型：1",                                                            //
                          "时间满足", "组织满足", "会员满足", "所有基本条件都被判断过，满足",             //
                          "获取普通类促销详情成功R1",                                                     //
                          "促销优惠类型：1", "促销类型：PTPL", "计算整单已优惠数量：0",                   //
                          "促销优惠类型：1", "促销类型：PTPL", "计算整单已优惠数量：0",                   //
                          "促销单按照最大优惠额限制", "ProNums= 1", "ProNumsT为：1", "ProNumsT=ProNums",  //
                          "allocated=0", "proInfo.MaxYhValue=50"));
}

TEST_F(WholeLog, OfASet) {
  Put({DirectRow("R1", 1, "BAR").Price("1").SaleCount("2")});
  LoadRule("PTOS", R"(MaxYhType="2" MaxYhValue="9")");

  // A limit by quantity is none of this type's open quantity: no word of it.
  EXPECT_THAT(Story("All", SaleXml(LineXml(1, "BAR", "10", "5", "50"))),
              ElementsAre("All", "till:1\n", "开始初始化流水", "初始化流水完成", "计算模式为ALL时",  //
                          "时间满足", "组织满足", "会员满足", "所有基本条件都被判断过，满足",        //
                          "获取普通类促销详情成功R1",                                                //
                          "促销优惠类型：2", "促销类型：PTOS", "计算整单已优惠数量：0",              //
                          "促销优惠类型：2", "促销类型：PTOS", "计算整单已优惠数量：0"));
}

TEST_F(WholeLog, NumbersHaveSixDigits) {
  Put({DirectRow("R1", 1, "SAND").Price("8"), DirectRow("R1", 2, "GRAVEL").Price("8")});
  LoadRule("PTXS", R"(MaxYhType="2" MaxYhValue="99999999")");

  const auto story = Story(
      "All", SaleXml(LineXml(1, "SAND", "10", "1234567.5", "12345675") + LineXml(2, "GRAVEL", "10", "1.375", "13.75")));

  EXPECT_EQ(Count(story, "可计算数量：1.23457e+06"), 2);
  EXPECT_EQ(Count(story, "计算整单已优惠数量：1.23457e+06"), 2);
  EXPECT_EQ(Count(story, "可计算数量：1.375"), 2);
}

TEST_F(WholeLog, OfAFailedQueryIsOneEntryALine) {
  Sql("drop table tProPrjDirectProAct");
  LoadRule("PTXS");

  EXPECT_THAT(Story("All", SaleXml(LineXml(1, "A", "1", "1", "1") + LineXml(2, "B", "1", "1", "1"))),
              ElementsAre("All", "till:1\n", "开始初始化流水", "初始化流水完成", "计算模式为ALL时",  //
                          "时间满足", "组织满足", "会员满足", "所有基本条件都被判断过，满足",        //
                          "获取普通类促销详情失败R1", "获取普通类促销详情失败R1",                    //
                          "开始计算普通限时促销，促销单号：R1", "1",                                 //
                          "促销优惠类型：", "促销类型：PTXS", "计算整单已优惠数量：0", "2",          //
                          "开始计算普通限时促销，促销单号：R1", "1",                                 //
                          "促销优惠类型：", "促销类型：PTXS", "计算整单已优惠数量：0", "2"));
}

}  // namespace
}  // namespace Corvane::Testing
