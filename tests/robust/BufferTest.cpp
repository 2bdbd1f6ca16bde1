// Buffers exactly as large as docs/host-guide.md asks for, with a page behind them that nobody may touch.
#include <gmock/gmock.h>
#include <qncorvane/qncorvane.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <map>
#include <random>
#include <utility>

#include "tests/support/ResultRoom.h"
#include "tests/support/Till.h"

namespace Corvane::Testing {
namespace {

using ::testing::AnyOf;
using ::testing::Le;

/// Room of just so many bytes in front of a page whose touch ends the process.
class GuardedBuffer {
 public:
  explicit GuardedBuffer(std::size_t size) : m_mapped((size + Page() - 1) / Page() * Page() + Page()) {
    m_begin = static_cast<char*>(mmap(nullptr, m_mapped, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
    EXPECT_EQ(mprotect(m_begin + m_mapped - Page(), Page(), PROT_NONE), 0);
    m_room = m_begin + m_mapped - Page() - size;
    std::memset(m_room, 'x', size);
    m_room[size - 1] = '\0';  // readable, also where nothing is written
  }
  GuardedBuffer(const GuardedBuffer&) = delete;
  GuardedBuffer& operator=(const GuardedBuffer&) = delete;
  ~GuardedBuffer() { munmap(m_begin, m_mapped); }
  char* Data() { return m_room; }
  std::string Text() const { return m_room; }

 private:
  static std::size_t Page() { return static_cast<std::size_t>(sysconf(_SC_PAGESIZE)); }

  std::size_t m_mapped;
  char* m_begin;
  char* m_room;
};

constexpr const char* kModes[] = {"Single", "All", "Union", "Zh", "MzPromotion", "Gift", "Pay", "Coupon"};

class Buffers : public Till {
 protected:
  void SetUp() override {
    Till::SetUp();
    MakeTables();
  }

  // The guide's sizes of `msg`.
  static constexpr std::size_t kCalculation = 25;
  static constexpr std::size_t kClear = 17;
  static constexpr std::size_t kClearSales = 18;
  static constexpr std::size_t kLoadBesideTheRule = 22;
  static constexpr std::size_t kState = 6;

  static std::string Told(const std::string& key, const std::string& mode, const std::string& xml) {
    GuardedBuffer msg(kCalculation);
    GuardedBuffer out(20000);
    CalcPromotion(key.c_str(), mode.c_str(), xml.c_str(), out.Data(), msg.Data());
    return msg.Text();
  }
  static std::string ToldOfLoad(const std::string& type, const std::string& xml) {
    GuardedBuffer msg(xml.size() + kLoadBesideTheRule);
    InitPromotion(type.c_str(), xml.c_str(), msg.Data());
    return msg.Text();
  }
  static std::string ToldOfClearing() {
    GuardedBuffer msg(kClear);
    ClearPromotion(msg.Data(), "none");
    return msg.Text();
  }
  static std::string ToldOfClearingSales() {
    GuardedBuffer msg(kClearSales);
    ClearSaleSetForNet(msg.Data());
    return msg.Text();
  }
  static std::string ToldState() {
    GuardedBuffer state(kState);
    return GetState(state.Data());
  }
};

TEST_F(Buffers, OfMessagesTakeTheLongestText) {
  const std::string sale = SaleXml(LineXml(1, "A", "1", "1", "1"));
  EXPECT_EQ(Told("", "All", sale), "销售单主键为空！");
  EXPECT_EQ(std::strlen("销售单主键为空！") + 1, kCalculation);
  EXPECT_EQ(Told("k", "", sale), "计算方式为空！");
  EXPECT_EQ(Told("k", "All", ""), "销售单为空！");
  EXPECT_EQ(Told("k", "none", sale), "sucess");
  EXPECT_EQ(Told("k", "Single", SaleXml(LineXml(1, "A", "1", "1", "1") + LineXml(2, "B", "1", "1", "1"))),
            "unknow error");
  for (const char* mode : kModes) EXPECT_EQ(Told("k", mode, sale), "sucess") << mode;
  EXPECT_EQ(ToldOfClearing(), "sucess");
  EXPECT_EQ(ToldOfClearingSales(), "sucess");
  EXPECT_EQ(ToldState(), "Free");
  EXPECT_EQ(ToldOfLoad("PTXS", RuleXml("R", "PTXS")), "sucess");
  EXPECT_EQ(ToldOfLoad("none", RuleXml("R", "PTXS")), "pro initialize failed" + RuleXml("R", "PTXS"));
  EXPECT_EQ(ToldOfLoad("none", ""), "pro initialize failed");
  ASSERT_EQ(BeginInitPro(), 0);
  EXPECT_EQ(Told("k", "All", sale), "pro inititalzing");
  EXPECT_EQ(ToldOfClearing(), "pro inititalzing");
  EXPECT_EQ(std::strlen("pro inititalzing") + 1, kClear);
  EXPECT_EQ(ToldOfClearingSales(), "pro inititalzing");
  EXPECT_EQ(ToldState(), "Init");
  FinishInitPro();
}

TEST_F(Buffers, OfMessagesTakeARefusedGiftChoice) {
  Sql("insert into tProMzScheme (BillNo,SerialNo,PluCode,BaseConType,BaseConNum,BaseDscType,BaseDscNum,DscPrice) "
      "values "
      "('G',1,'MUG','SUM',10,'NUM',1,2)");
  ASSERT_EQ(Load("MZHG", RuleXml("G", "MZHG")).Code, 0);
  const std::string sale = SaleXml(LineXml(1, "A", "30", "1", "30"));
  Told("k", "All", sale);
  Told("k", "MzPromotion", SaleXml(""));
  const auto choose = [](const std::string& count) {
    return SaleXml(
        "",
        "<ProGifts><R ProBillNo=\"G\" Total=\"30\" LeftTotal=\"30\"><R SerialNo=\"1\" PluCode=\"MUG\" "
        "BaseConTp=\"SUM\" BaseConNum=\"10\" BaseDscTp=\"NUM\" BaseDscNum=\"1\" DscPrice=\"2\" SaleMaxIn=\"2\" "
        "HgPluCount=\"" +
            count + "\"/></R></ProGifts>");
  };
  const std::vector<std::string> told = {Told("k", "Gift", choose("1")), Told("k", "Gift", choose("3")),
                                         Told("k", "Gift", choose("90"))};
  EXPECT_EQ(told.front(), "sucess");
  EXPECT_THAT(told[1], AnyOf("number overflow", "total overflow"));
  EXPECT_THAT(told[2], AnyOf("number overflow", "total overflow"));
}

// --- Results ---------------------------------------------------------------------------------------------------------

std::string Quoted(const std::string& text) {
  std::string xml;
  for (const char sign : text) xml += "&#" + std::to_string(int{sign}) + ";";
  return xml;
}

/// A text of so many bytes, each of which takes six on its way out.
std::string Hostile(std::size_t size, char last) {
  std::string text(size, '"');
  for (std::size_t at = 1; at < size; at += 3) text[at] = '\'';
  for (std::size_t at = 2; at < size; at += 3) text[at] = '\x1F';
  text.back() = last;
  return text;
}

/// A shop with a rule of each type. All texts are as long as they may be in it, and made of what takes most room.
class Results : public Buffers {
 protected:
  static constexpr std::size_t kLongest = 20;
  static constexpr int kLineCount = 6;

  void SetUp() override {
    Buffers::SetUp();
    for (const char* type : {"PTXS", "PTPL", "PTOS"}) {
      Fill("tProPrjDirectProAct (BillNo,SerialNo,PluCode,DscType,DscPrice,SaleCount)", type, "1,'{}','2',1,1");
    }
    for (const char* type : {"ZHZY", "ZHGD", "ZHTJ", "ZHZX"}) {
      Fill("tProPrjCombPluSet (BillNo,SerialNo,ProActCode,PluCode,SaleCount,DscType,DscPrice)", type,
           "1,'S','{}',1,'PRC',70000000000000");
    }
    Fill("tProPrjCombProAct (BillNo,SerialNo,SaleCount,PriceType,PriceTotal)", "ZHZY", "1,1,'DP',80000000000000");
    Fill("tProPrjCombProAct (BillNo,SerialNo,PriceType,PriceTotal)", "ZHGD", "1,'DP',1");
    Fill("tProPrjCombProAct (BillNo,SerialNo,PriceTotal,ProActCode,IsRequired)", "ZHZX", "1,1,'S',1");
    Fill("tpromzlist (BillNo,ListCode)", "MZMJ", "'L'");
    Fill("tProMzDiscountAct (BillNo,ListCode,BaseMoney,BaseDscMoney)", "MZMJ", "'L',1,1");
    Fill("tProMzPluAct (BillNo,SerialNo,PluCode,BaseConType,BaseConNum,BaseDscType,BaseDscNum)", "MZDP",
         "1,'{}','NUM',1,'NUM',1");
    for (const char* type : {"MZZM", "MZZP", "MZHG"}) {
      Fill("tProMzScheme (BillNo,SerialNo,PluCode,BaseConType,BaseConNum,BaseDscType,BaseDscNum,SaleMaxIn,DscPrice)",
           type, "1,'{}','SUM',1,'NUM',1,999999999999999,999999999999999");
    }
    for (const char* type : kTypes) {
      const std::string number = Quoted(NumberOf(type));
      const std::string list =
          "<ProList ConAreaType=\"ALL\"><PluAddAction><R BaseConNum=\"1\" BaseDscNum=\"1\"/>"
          "</PluAddAction><CouponType LimitType=\"1\" LimitDay=\"9\" IsDenom=\"1\" CouponTypeCode=\"" +
          Quoted(kText) + "\"/><CouponDenomination><R Denomination=\"1\"/></CouponDenomination></ProList>";
      const std::string pay =
          "<ProCtr><R PriceTotal=\"100\" PayType=\"CARD\"/></ProCtr><PluAction><R DisPrice=\"10\" "
          "DisRate=\"9\"/></PluAction>";
      const std::string groups = std::string(type) == "MZZF" ? pay : type[2] == 'Z' && type[3] == 'Q' ? list : "";
      const std::string more = std::string(type) == "MZYQ" ? list : groups;
      ASSERT_EQ(Load(std::string(type) == "MZZQ" ? "MZYQ" : type,
                     RuleXml(number, type, "Primary=\"DJ\"", "<Vip><R VipType=\"*\"/></Vip>" + more))
                    .Code,
                0);
    }
  }

  static constexpr const char* kTypes[] = {"PTXS", "PTPL", "PTOS", "ZHZY", "ZHGD", "ZHTJ", "ZHZX", "MZMJ",
                                           "MZDP", "MZZM", "MZZP", "MZHG", "MZZQ", "MZZF", "MZYQ"};
  inline static const std::string kText = Hostile(kLongest, '"');
  inline static const std::string kGoods = Hostile(kLongest, '\'');

  static std::string NumberOf(const std::string& type) {
    std::string number = Hostile(kLongest, '"');
    for (std::size_t place = 0; place < std::size(kTypes); ++place) {
      if (type == kTypes[place]) number.back() = static_cast<char>(place + 1);
    }
    return number;
  }

  static std::string InSql(const std::string& text) {
    std::string doubled;
    for (const char sign : text) doubled.append(sign == '\'' ? 2 : 1, sign);
    return doubled;
  }

  static void Fill(const std::string& into, const std::string& type, std::string values) {
    const std::size_t place = values.find("{}");
    if (place != std::string::npos) values.replace(place, 2, InSql(kGoods));
    Sql("insert into " + into + " values ('" + InSql(NumberOf(type)) + "'," + values + ")");
  }

  static std::string Groups() {
    std::string coupons = "<Coupon>";
    for (int coupon = 0; coupon < 3; ++coupon) {
      coupons += "<R BillNo=\"" + Quoted(kText) + "\" CouponTypeCode=\"" + Quoted(kText) +
                 "\" CouponValue=\"5\" BgnDate=\"" + Quoted(kText) + "\" EndDate=\"" + Quoted(kText) + "\"/>";
    }
    return "<Vip><R VipType=\"" + Quoted(kText) + "\"/></Vip><PayMode><R PayMode=\"CARD\" PayMoney=\"10\"/></PayMode>" +
           coupons + "</Coupon>";
  }

  /// The numbers of a line are as wide as they may be; its time is one from the second line on.
  static std::string Sale() {
    std::string lines;
    for (int line = 1; line <= kLineCount; ++line) {
      std::string texts;
      for (const char* name : {"PluCode", "BRD", "CAT", "ClsId", "PluID"}) {
        texts += std::string(name) + "=\"" + Quoted(std::string(name) == "PluCode" ? kGoods : kText) + "\" ";
      }
      for (const char* name : {"SaleDate", "SaleTime"}) {
        if (line > 1) texts += std::string(name) + "=\"" + Quoted(kText) + "\" ";
      }
      lines +=
          LineXml(line - 2147483647, "", "99999999999999", "3", "99999999999999",
                  texts + R"(PluDtId="-2147483648" PageNo="-2147483648" LnNo="-2147483648" YhBefore="-2147483648" )" +
                      R"(VipPrice="-2147483648")");
    }
    return "<Sale OrgCode=\"" + Quoted(kText) + "\" BillNo=\"" + Quoted(kText) + "\" IsCalc=\"0\"><Plu>" + lines +
           "</Plu>" + Groups() + "</Sale>";
  }

  /// The guide's one formula for a till without its exceptions.
  static std::size_t RoomOfAll(std::size_t calls) {
    constexpr std::size_t T = kLongest;
    constexpr std::size_t n = std::size(kTypes);
    constexpr std::size_t L = kLineCount;
    constexpr std::size_t t = 2;  // of MZZP and MZHG
    constexpr std::size_t coupons = 3;
    return 220 + 12 * T + L * (400 + 42 * T) + 2 * n * (L + 1) * (180 + 24 * T) + calls * t * (520 + 30 * T) +
           coupons * (110 + 42 * T);
  }
};

TEST_F(Results, OfHostileTextsFitIntoTheRoomOfTheirRowsAndIntoThatOfTheFormula) {
  const std::vector<const char*> steps = {"All", "MzPromotion", "Gift", "Pay", "Coupon"};
  std::vector<std::string> results;
  for (const char* mode : steps) {
    const Answer answer = Calc("first", mode, results.empty() ? Sale() : "<Sale IsCalc=\"0\"/>");
    ASSERT_EQ(answer.Code, 0) << mode << answer.Msg;
    results.push_back(answer.Out);
  }
  EXPECT_THAT(OffersOf(results[1]), ::testing::SizeIs(2));
  EXPECT_THAT(RowsOf(results.back(), "ProResult"), ::testing::SizeIs(::testing::Gt(20U)));
  // Each step in a sale of its own, in the room of its rows and in just what it takes.
  for (std::size_t step = 0; step < steps.size(); ++step) {
    const std::size_t rows = RoomFor(kNumbersBelow1e15, results[step], 2 * kLongest);
    const std::size_t all = RoomOfAll(1);
    EXPECT_THAT(results[step].size() + 1, Le(rows)) << steps[step];
    EXPECT_THAT(rows, Le(all)) << steps[step];
    for (const std::size_t size : {all, rows, results[step].size() + 1}) {
      const std::string key = "again" + std::to_string(step) + "-" + std::to_string(size);
      for (std::size_t before = 0; before < step; ++before) {
        ASSERT_EQ(Calc(key, steps[before], before == 0 ? Sale() : "<Sale IsCalc=\"0\"/>").Code, 0);
      }
      GuardedBuffer out(size);
      GuardedBuffer msg(kCalculation);
      const std::string xml = step == 0 ? Sale() : "<Sale IsCalc=\"0\"/>";
      EXPECT_EQ(CalcPromotion(key.c_str(), steps[step], xml.c_str(), out.Data(), msg.Data()), 0);
      EXPECT_EQ(out.Text(), results[step]);
    }
  }
}

// --- How many rows ---------------------------------------------------------------------------------------------------

class RowCounts : public Buffers {
 protected:
  using OfLine = std::pair<std::string, std::string>;  // a rule and a line

  static std::map<OfLine, int> Counts(const std::string& result, const std::string& group) {
    std::map<OfLine, int> counts;
    for (const Row& row : RowsOf(result, group)) {
      ++counts[{row["ProBillNo"], row["PluCode"] == "*" ? "*" : row["RowID"]}];
    }
    return counts;
  }

  std::size_t Below(std::size_t end) { return std::uniform_int_distribution<std::size_t>(0, end - 1)(m_chance); }
  std::string Number(std::size_t end) { return std::to_string(Below(end)); }
  template <std::size_t Size>
  std::string OneOf(const char* const (&words)[Size]) {
    return words[Below(Size)];
  }
  /// A row's goods: one of two articles, or a category or brand that both have.
  std::string Goods() {
    static constexpr const char* kGoods[] = {"'A','PLU'", "'A','PLU'", "'B','PLU'", "'FOOD','CAT'", "'ACME','BRD'"};
    return OneOf(kGoods);
  }

  /// Up to four rows of each table for the rule, by chance.
  void FillTables(const std::string& rule) {
    static constexpr const char* kPrices[] = {"'PRC'", "'RAT'", "'2'"};
    static constexpr const char* kUnits[] = {"'SUM'", "'NUM'"};
    static constexpr const char* kSetPrices[] = {"'DP'", "'TC'", "'2'"};
    const std::string begin = " values ('" + rule + "',";
    std::string statements;
    const std::size_t rows = 1 + Below(4);
    for (std::size_t row = 1; row <= rows; ++row) {
      const std::string number = std::to_string(row);
      statements +=
          ("insert into tProPrjDirectProAct (BillNo,SerialNo,PluCode,PluType,DscType,DscPrice,DscRate,SaleCount)" +
           begin + number + "," + Goods() + "," + OneOf(kPrices) + "," + Number(9) + "," + Number(50) + "," +
           Number(3) + ");" +
           "insert into tProPrjCombPluSet (BillNo,SerialNo,PluCode,PluType,ProActCode,SaleCount,DscType,DscPrice)" +
           begin + number + "," + Goods() + ",'S" + Number(2) + "',1," + OneOf(kPrices) + "," + Number(9) + ");" +
           "insert into tProPrjCombProAct (BillNo,SerialNo,SaleCount,PriceType,PriceTotal,ProActCode,IsRequired)" +
           begin + number + "," + std::to_string(1 + Below(3)) + "," + OneOf(kSetPrices) + "," + Number(9) + ",'S" +
           std::to_string(row % 2) + "'," + Number(2) + ");" +
           "insert into tpromzlist (BillNo,ListCode,ConAreaType,DscIntoPlu)" + begin + number + "," +
           (Below(2) == 0 ? "'ALL'" : "'DES'") + ",'" + Number(2) + "');" +
           "insert into tProMzConPluSet (BillNo,ListCode,SerialNo,PluCode,PluType)" + begin + number + "," + number +
           "," + Goods() + ");" + "insert into tProMzConPluSet (BillNo,ListCode,SerialNo,PluCode,PluType)" + begin +
           "'0'," + number + "," + Goods() + ");" +
           "insert into tProMzDiscountAct (BillNo,ListCode,BaseMoney,BaseDscMoney,AddMoney,AddDscMoney)" + begin +
           number + ",5," + Number(5) + "," + Number(9) + "," + Number(3) + ");" +
           "insert into tProMzScheme (BillNo,SerialNo,PluCode,BaseConType,BaseConNum,BaseDscType,BaseDscNum)" + begin +
           number + ",'" + (Below(2) == 0 ? "A" : "B") + "'," + OneOf(kUnits) + "," + Number(9) + "," + OneOf(kUnits) +
           "," + Number(4) + ");" +
           "insert into tProMzPluAct (BillNo,SerialNo,PluCode,PluType,BaseConType,BaseConNum,BaseDscType,BaseDscNum)" +
           begin + number + "," + Goods() + "," + OneOf(kUnits) + "," + Number(4) + "," + OneOf(kUnits) + "," +
           Number(4) + ");");
    }
    Sql(statements);
  }

  std::string RandomSale() {
    std::string lines;
    for (int line = 1; line <= 4; ++line) {
      const std::string count = std::to_string(1 + Below(5));
      lines += LineXml(line, Below(2) == 0 ? "A" : "B", "10", count, std::to_string(10 * std::stoi(count)),
                       R"(CAT="FOOD" BRD="ACME")");
    }
    return SaleXml(lines, R"(<PayMode><R PayMode="CARD" PayMoney="20"/></PayMode>)");
  }

  std::mt19937 m_chance{20261121};  // NOLINT(cert-msc51-cpp): the same shops in every run
};

/// What the guide allows a rule on a line: discount rows and apportion rows.
std::pair<int, int> Allowed(const std::string& type, bool isWholeSale, bool isDz, int mzCalls, int payCalls) {
  constexpr int kRows = 4;
  if (isWholeSale) return {type == "MZZF" ? payCalls : 0, 0};
  const int visits = isDz ? 2 : 1;
  if (type == "ZHGD") return {visits * kRows * kRows, visits * kRows * kRows};
  if (type == "ZHZX") return {visits * kRows, visits * kRows};
  if (type == "MZZM") return {mzCalls * kRows * (kRows + 1) / 2, mzCalls};
  if (type == "MZZF") return {payCalls, 1};
  return {1, 1};
}

// Each of its rows that name an article brings the article's lines once more, and each row is given on all of them.
TEST_F(RowCounts, OfAFixedCombinationGrowWithTheSquareOfItsRowsForAnArticle) {
  Sql("insert into tProPrjCombProAct (BillNo,SerialNo,PriceType) values ('R',1,'DP');"
      "insert into tProPrjCombPluSet (BillNo,SerialNo,PluCode,SaleCount,DscPrice) values ('R',1,'A',1,9), "
      "('R',2,'A',1,8),"
      " ('R',3,'A',1,7)");
  ASSERT_EQ(Load("ZHGD", RuleXml("R", "ZHGD", "Primary=\"DJ\"")).Code, 0);
  const std::string result = Calc("till", "All", SaleXml(LineXml(1, "A", "10", "9", "90"))).Out;
  // The first row takes all pieces at once; the others find the line three times, with nothing open.
  EXPECT_THAT(RowsOf(result, "ProResult"), ::testing::SizeIs(7U));
  EXPECT_THAT(RowsOf(result, "Apportion"), ::testing::SizeIs(7U));
}

TEST_F(RowCounts, AreThoseOfTheGuide) {
  constexpr const char* kTypes[] = {"PTXS", "PTPL", "PTOS", "ZHZY", "ZHGD", "ZHTJ",
                                    "ZHZX", "MZMJ", "MZDP", "MZZM", "MZZF"};
  constexpr const char* kClasses[] = {"DZ", "PT", "DJ"};
  const std::string pay =
      "<ProCtr><R PriceTotal=\"9\" PayType=\"CARD\"/></ProCtr><PluAction><R DisPrice=\"10\" "
      "DisRate=\"8\"/></PluAction>";
  std::map<std::string, int> most;
  for (int turn = 0; turn < 45; ++turn) {
    for (const std::string type : kTypes) {
      Sql("delete from tProPrjDirectProAct; delete from tProPrjCombPluSet; delete from tProPrjCombProAct; delete from "
          "tpromzlist; delete from tProMzConPluSet; delete from tProMzDiscountAct; delete from tProMzScheme; delete "
          "from "
          "tProMzPluAct");
      FillTables(type);
      const std::string primary = kClasses[turn % 3];
      ASSERT_EQ(Clear("*").Code, 0);
      ASSERT_EQ(Load(type, RuleXml(type, type, "Primary=\"" + primary + "\"", type == "MZZF" ? pay : "")).Code, 0);
      const std::string key = type + std::to_string(turn);
      int mzCalls = 0;
      int payCalls = 0;
      std::string xml = RandomSale();
      for (const char* mode : {"Union", "All", "MzPromotion", "MzPromotion", "Pay", "Pay"}) {
        mzCalls += mode[0] == 'M' ? 1 : 0;
        payCalls += mode[0] == 'P' ? 1 : 0;
        const std::string result = Calc(key, mode, xml).Out;
        xml = mode[0] == 'U' ? xml : SaleXml("");
        for (const auto& [place, count] : Counts(result, "ProResult")) {
          const auto allowed = Allowed(type, place.second == "*", primary == "DZ", mzCalls, payCalls).first;
          EXPECT_LE(count, allowed) << type << " " << primary << " on " << place.second << " in " << mode << ", turn "
                                    << turn;
          most[type] = std::max(most[type], count);
        }
        for (const auto& [place, count] : Counts(result, "Apportion")) {
          const auto allowed = Allowed(type, place.second == "*", primary == "DZ", mzCalls, payCalls).second;
          EXPECT_LE(count, allowed) << "apportion of " << type << " " << primary << " in " << mode << ", turn " << turn;
        }
      }
      DeleteSaleSetByKey(key.c_str());
    }
  }
  EXPECT_EQ(most.size(), std::size(kTypes)) << ::testing::PrintToString(most);
  EXPECT_GT(most["MZZM"], 1);
  EXPECT_GT(most["ZHGD"], 1);
  EXPECT_EQ(most["MZZF"], 2);
}

}  // namespace
}  // namespace Corvane::Testing
