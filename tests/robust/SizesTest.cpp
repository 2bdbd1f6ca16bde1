// Texts and sales of great size: the right answer, also on a small stack. What they cost: ./dev sizes.
#include <gmock/gmock.h>
#include <pthread.h>
#include <qncorvane/qncorvane.h>

#include <array>
#include <functional>
#include <memory>

#include "tests/support/Till.h"

namespace Corvane::Testing {
namespace {

using ::testing::ElementsAre;
using ::testing::SizeIs;

class GreatSizes : public Till {
 protected:
  void SetUp() override {
    Till::SetUp();
    MakeTables();
    Put({DirectRow("X1", 1, "COLA").Price("8")});
    ASSERT_EQ(Load("PTXS", RuleXml("X1", "PTXS")).Code, 0);
  }

  /// A call with room for results that the other tests don't have.
  static Answer CalcLarge(const std::string& mode, const std::string& xml) {
    static const std::unique_ptr<char[]> out(new char[std::size_t{256} << 20U]);
    std::array<char, 25> msg{};
    const int code = CalcPromotion("large", mode.c_str(), xml.c_str(), out.get(), msg.data());
    return {code, msg.data(), code == 0 ? out.get() : ""};
  }

  static std::string Cola(int serialNo = 1, const std::string& more = "") {
    return LineXml(serialNo, "COLA", "10", "3", "30", more);
  }

  static std::string Repeated(std::size_t count, const std::function<std::string(std::size_t)>& piece) {
    std::string all;
    for (std::size_t next = 0; next < count; ++next) all += piece(next);
    return all;
  }

  static std::string Nested(std::size_t levels, const std::string& inside) {
    return Repeated(levels, [](std::size_t) { return "<a>"; }) + inside +
           Repeated(levels, [](std::size_t) { return "</a>"; });
  }

  /// Like the call of a host whose threads have 256 kB, of which the engine gets one. A sanitizer's functions take
  /// several times the room.
  static void OnSmallStack(const std::function<void()>& body) {
    pthread_attr_t attributes;
    ASSERT_EQ(pthread_attr_init(&attributes), 0);
#ifdef QNCORVANE_SANITIZES
    constexpr std::size_t kStack = std::size_t{2} << 20U;
#else
    constexpr std::size_t kStack = std::size_t{256} << 10U;
#endif
    ASSERT_EQ(pthread_attr_setstacksize(&attributes, kStack), 0);
    pthread_t thread{};
    const auto run = [](void* work) -> void* {
      (*static_cast<const std::function<void()>*>(work))();
      return nullptr;
    };
    auto work = body;
    ASSERT_EQ(pthread_create(&thread, &attributes, run, &work), 0);
    pthread_join(thread, nullptr);
    pthread_attr_destroy(&attributes);
  }
};

// What stands in front of the two hundredth level is read.
TEST_F(GreatSizes, AMillionLevelsOfNesting) {
  for (const std::string& deep : {Nested(1000000, ""), Repeated(1000000, [](std::size_t) { return "<a x='1'>"; })}) {
    const Answer sale = CalcLarge("All", SaleXml(Cola(), deep));
    EXPECT_EQ(sale.Code, 0);
    EXPECT_THAT(LinesOf(sale.Out), ElementsAre("1 COLA 3.00 x 10.00 = 24.00"));
    EXPECT_EQ(Load("PTXS", "<Rules>" + deep).Code, 0);
    ASSERT_EQ(Clear("").Code, 0);
  }
}

TEST_F(GreatSizes, AMillionLevelsOfNestingOnASmallStack) {
  const std::string deep = Nested(1000000, "");
  const std::string allowed = Nested(190, "<b c='d'/>");
  OnSmallStack([&] {
    for (const std::string& groups : {deep, allowed, deep + allowed}) {
      const Answer sale = Calc("small", "All", SaleXml(Cola(), groups));
      EXPECT_EQ(sale.Code, 0);
      EXPECT_THAT(LinesOf(sale.Out), ElementsAre("1 COLA 3.00 x 10.00 = 24.00"));
      EXPECT_EQ(Load("PTXS", "<Rules>" + groups + "</Rules>").Code, 0);
      ASSERT_EQ(Clear("").Code, 0);
    }
    for (const char* mode : {"Single", "Union", "Zh", "MzPromotion", "Gift", "Pay", "Coupon"}) {
      EXPECT_EQ(Calc("small", mode, SaleXml(Cola())).Code, 0) << mode;
    }
  });
}

// The thousandth is the last that is read of an element, and ends the text there.
TEST_F(GreatSizes, AMillionAttributesOfOneElement) {
  const std::string attributes =
      Repeated(1000000, [](std::size_t number) { return "c" + std::to_string(number) + "='' "; });
  const Answer sale = CalcLarge("All", SaleXml(Cola(1) + Cola(2, attributes) + Cola(3)));
  EXPECT_EQ(sale.Code, 0);
  EXPECT_THAT(LinesOf(sale.Out), ElementsAre("1 COLA 3.00 x 10.00 = 24.00", "2 COLA 3.00 x 10.00 = 24.00"));
}

TEST_F(GreatSizes, AHundredThousandAttributesOfManyElements) {
  const std::string attributes =
      Repeated(980, [](std::size_t number) { return "c" + std::to_string(number) + "='' "; });
  const std::string lines =
      Repeated(102, [&](std::size_t line) { return Cola(static_cast<int>(line) + 1, attributes); });
  const Answer sale = CalcLarge("All", SaleXml(lines));
  EXPECT_EQ(sale.Code, 0);
  EXPECT_THAT(RowsOf(sale.Out, "Plu"), SizeIs(102U));
  EXPECT_THAT(RowsOf(sale.Out, "ProResult"), SizeIs(102U));
}

TEST_F(GreatSizes, TenThousandLines) {
  const std::string lines = Repeated(10000, [](std::size_t line) { return Cola(static_cast<int>(line) + 1); });
  const Answer sale = CalcLarge("All", SaleXml(lines));
  EXPECT_EQ(sale.Code, 0);
  const std::vector<std::string> shown = LinesOf(sale.Out);
  ASSERT_THAT(shown, SizeIs(10000U));
  EXPECT_EQ(shown.front(), "1 COLA 3.00 x 10.00 = 24.00");
  EXPECT_EQ(shown.back(), "10000 COLA 3.00 x 10.00 = 24.00");
  EXPECT_THAT(RowsOf(sale.Out, "ProResult"), SizeIs(10000U));
}

TEST_F(GreatSizes, TenThousandRules) {
  Put({DirectRow("R9999", 1, "TEA").Price("7")});
  for (int rule = 0; rule < 10000; ++rule) {
    const std::string number = "R" + std::to_string(rule);
    ASSERT_EQ(Load("PTXS", RuleXml(number, "PTXS")).Code, 0);
  }
  const Answer sale = CalcLarge("All", SaleXml(LineXml(1, "TEA", "10", "3", "30")));
  EXPECT_EQ(sale.Code, 0);
  EXPECT_THAT(DiscountsOf(sale.Out), ElementsAre("1 TEA: R9999 on 3.00 gives 9.00"));
  EXPECT_EQ(Clear("*").Code, 0);
  EXPECT_THAT(DiscountsOf(CalcLarge("All", SaleXml(LineXml(1, "TEA", "10", "3", "30"))).Out), ElementsAre());
}

TEST_F(GreatSizes, TextsOfTenMegabytes) {
  const std::string text(10 * 1000 * 1000, '"');
  std::string escaped;
  for (std::size_t sign = 0; sign < text.size(); ++sign) escaped += "&quot;";
  const Answer sale = CalcLarge("All", SaleXml(Cola(1, "BRD=\"" + escaped + "\"") + Cola(2)));
  EXPECT_EQ(sale.Code, 0);
  EXPECT_THAT(sale.Out.size(), ::testing::Gt(escaped.size()));
  EXPECT_THAT(DiscountsOf(sale.Out), SizeIs(2U));

  EXPECT_EQ(CalcPromotion(text.c_str(), "All", SaleXml(Cola()).c_str(), nullptr, nullptr), 0);
  EXPECT_EQ(DeleteSaleSetByKey(text.c_str()), 0);
  EXPECT_EQ(CalcPromotion("key", text.c_str(), SaleXml(Cola()).c_str(), nullptr, nullptr), -1);
  EXPECT_EQ(InitPromotion("PTXS", RuleXml(escaped, "PTXS").c_str(), nullptr), 0);
  EXPECT_EQ(ClearPromotion(nullptr, text.c_str()), 0);
  EXPECT_THAT(DiscountsOf(CalcLarge("All", SaleXml(Cola(1) + Cola(2))).Out), SizeIs(2U));
}

}  // namespace
}  // namespace Corvane::Testing
