#include "StoreTemplates.h"

#include <algorithm>
#include <array>
#include <cstdio>

#include "ToolError.h"

namespace Corvane::Tool {
namespace {

struct Article {
  int code;
  const char* name;
  int cents;
  const char* category;
};

/// What the new store sells.
constexpr std::array<Article, 10> kGoods = {{{1001, "Cola 0.5 l", 150, "DRINK"},
                                             {1002, "Lemonade 0.5 l", 140, "DRINK"},
                                             {2001, "Tea, 20 bags", 240, "TEA"},
                                             {3001, "Bread 1 kg", 320, "BREAD"},
                                             {3002, "Sandwich", 420, "SNACK"},
                                             {4001, "Butter 250 g", 260, "DAIRY"},
                                             {4002, "Cheese 400 g", 470, "DAIRY"},
                                             {5001, "Chocolate bar", 160, "SWEETS"},
                                             {9001, "Mug", 600, "HOUSE"},
                                             {9002, "Shopping bag", 50, "HOUSE"}}};

/// Both promotions with coupons count in the same way.
constexpr const char* kCouponSteps =
    R"(
      <PluAddAction>
        <Row SerialNo="1" BaseConTp="SUM" BaseConNum="20" BaseDscTp="SUM" BaseDscNum="5" AddConNum="20" AddDscNum="5" SaleMaxIn="0"/>
      </PluAddAction>)";

std::string CouponGroups(const std::string& couponType) {
  return std::string(
             R"(    <ProList ConAreaType="ALL" RstAreaType="ALL" MaxDiscount="20" CouponTypeCode="C5" DscIntoPlu="0">)") +
         kCouponSteps + "\n      " + couponType + "\n    </ProList>\n";
}

const std::vector<StoreTemplate>& Templates() {
  static const std::vector<StoreTemplate> templates = {
      {"PTXS",
       "Offers of the week",
       "PT",
       "All",
       R"(-- Cola at 0.99, and 10 percent off all tea.
INSERT INTO tProPrjDirectProAct (BillNo, SerialNo, PluCode, PluType, DscType, DscPrice, DscRate)
VALUES ('PTXS-1', 1, '1001', 'PLU', 'PRC', 0.99, 0),
       ('PTXS-1', 2, 'TEA',  'CAT', 'RAT', 0,    10);)",
       "",
       {{1001, 3}, {2001, 2}, {3001, 1}},
       ""},
      {"PTPL",
       "From six chocolates on 1.20 each",
       "PT",
       "All",
       R"(INSERT INTO tProPrjDirectProAct (BillNo, SerialNo, PluCode, DscType, DscPrice, SaleCount)
VALUES ('PTPL-1', 1, '5001', 'PRC', 1.20, 6);)",
       "",
       {{5001, 7}, {3001, 1}},
       ""},
      {"PTOS",
       "Every second cola 1.00",
       "PT",
       "All",
       R"(INSERT INTO tProPrjDirectProAct (BillNo, SerialNo, PluCode, DscType, DscPrice, SaleCount)
VALUES ('PTOS-1', 1, '1001', 'PRC', 1.00, 2);)",
       "",
       {{1001, 5}, {3001, 1}},
       ""},
      {"ZHZY",
       "Any three drinks 3.60",
       "PT",
       "All",
       R"(INSERT INTO tProPrjCombProAct (BillNo, SerialNo, SaleCount, PriceType, PriceTotal)
VALUES ('ZHZY-1', 1, 3, 'DP', 3.60);
INSERT INTO tProPrjCombPluSet (BillNo, SerialNo, PluCode)
VALUES ('ZHZY-1', 1, '1001'),
       ('ZHZY-1', 2, '1002');)",
       "",
       {{1001, 2}, {1002, 1}, {3001, 1}},
       ""},
      {"ZHZX",
       "Snack menu",
       "PT",
       "All",
       R"(-- A sandwich and a drink have to be there, a bar of chocolate may.
INSERT INTO tProPrjCombProAct (BillNo, SerialNo, ProActCode, ProActname, IsRequired)
VALUES ('ZHZX-1', 1, 'SNACK', 'Snack', 1),
       ('ZHZX-1', 2, 'DRINK', 'Drink', 1),
       ('ZHZX-1', 3, 'SWEET', 'Dessert', 0);
INSERT INTO tProPrjCombPluSet (BillNo, SerialNo, ProActCode, PluCode, SaleCount, DscPrice)
VALUES ('ZHZX-1', 1, 'SNACK', '3002', 1, 3.50),
       ('ZHZX-1', 2, 'DRINK', '1001', 1, 1.00),
       ('ZHZX-1', 3, 'DRINK', '1002', 1, 1.00),
       ('ZHZX-1', 4, 'SWEET', '5001', 1, 1.00);)",
       "",
       {{3002, 1}, {1001, 1}, {5001, 1}},
       ""},
      {"ZHTJ",
       "Dairy from 10.00 on: bread half price",
       "PT",
       "All",
       R"(INSERT INTO tProCombConditionAct (BillNo, SerialNo, PluCode, PluType, PriceTotal)
VALUES ('ZHTJ-1', 1, 'DAIRY', 'CAT', 10.00);
INSERT INTO tProPrjCombPluSet (BillNo, SerialNo, PluCode, DscType, DscRate)
VALUES ('ZHTJ-1', 1, '3001', 'RAT', 50);)",
       "",
       {{4002, 2}, {4001, 1}, {3001, 1}},
       ""},
      {"ZHGD",
       "Breakfast, complete for 8.50",
       "PT",
       "All",
       R"(INSERT INTO tProPrjCombProAct (BillNo, SerialNo, PriceType, PriceTotal)
VALUES ('ZHGD-1', 1, 'TC', 8.50);
INSERT INTO tProPrjCombPluSet (BillNo, SerialNo, PluCode, SaleCount)
VALUES ('ZHGD-1', 1, '3001', 1),
       ('ZHGD-1', 2, '4001', 1),
       ('ZHGD-1', 3, '2001', 2);)",
       "",
       {{3001, 1}, {4001, 1}, {2001, 2}},
       ""},
      {"MZMJ",
       "2.00 off from 20.00 on",
       "DJ",
       "All,MzPromotion",
       R"(-- And 1.00 more for each further 10.00.
INSERT INTO tpromzlist (BillNo, ListCode, ConAreaType, DscIntoPlu)
VALUES ('MZMJ-1', '1', 'ALL', '1');
INSERT INTO tProMzDiscountAct (BillNo, ListCode, BaseMoney, BaseDscMoney, AddMoney, AddDscMoney)
VALUES ('MZMJ-1', '1', 20.00, 2.00, 10.00, 1.00);)",
       "",
       {{4002, 4}, {3001, 1}},
       ""},
      {"MZDP",
       "Buy three colas, get one",
       "PT",
       "All,MzPromotion",
       R"(INSERT INTO tProMzPluAct (BillNo, SerialNo, PluCode, BaseConType, BaseConNum, BaseDscType, BaseDscNum)
VALUES ('MZDP-1', 1, '1001', 'NUM', 3, 'NUM', 1);)",
       "",
       {{1001, 4}, {3001, 1}},
       ""},
      {"MZZM",
       "Dairy from 10.00 on: a bread free",
       "PT",
       "All,MzPromotion",
       R"(INSERT INTO tProMzConPluSet (BillNo, ListCode, SerialNo, PluCode, PluType)
VALUES ('MZZM-1', '1', 1, 'DAIRY', 'CAT');
INSERT INTO tProMzScheme (BillNo, SerialNo, PluCode, BaseConType, BaseConNum, BaseDscType, BaseDscNum, SaleMaxIn)
VALUES ('MZZM-1', 1, '3001', 'SUM', 10.00, 'NUM', 1, 1);)",
       "",
       {{4002, 2}, {4001, 1}, {3001, 1}},
       ""},
      {"MZZP",
       "A shopping bag from 20.00 on",
       "DJ",
       "All,MzPromotion",
       R"(INSERT INTO tProMzScheme (BillNo, SerialNo, PluCode, BaseConType, BaseConNum, BaseDscType, BaseDscNum, SaleMaxIn, DscPrice)
VALUES ('MZZP-1', 1, '9002', 'SUM', 20.00, 'NUM', 1, 1, 0);)",
       "",
       {{4002, 4}, {3001, 1}},
       ""},
      {"MZHG",
       "From 20.00 on, a mug for 2.00",
       "DJ",
       "All,MzPromotion",
       R"(INSERT INTO tProMzScheme (BillNo, SerialNo, PluCode, BaseConType, BaseConNum, BaseDscType, BaseDscNum, SaleMaxIn, DscPrice)
VALUES ('MZHG-1', 1, '9001', 'SUM', 20.00, 'NUM', 1, 1, 2.00);)",
       "",
       {{4002, 4}, {3001, 1}},
       ""},
      {"MZZQ",
       "A coupon of 5.00 for each 20.00",
       "DJ",
       "All,MzPromotion",
       "",
       CouponGroups(
           R"(<CouponType CouponTypeCode="C5" CouponTypeName="Next visit" BgnDate="2024-01-01" EndDate="2099-12-31" )"
           R"(LimitType="0" IsDenom="0"/>)"),
       {{4002, 4}, {3001, 1}},
       ""},
      {"MZZF",
       "Bank card: 1.00 for each 10.00",
       "DJ",
       "All,Pay",
       "",
       R"(    <ProCtr>
      <Row SerialNo="1" WholeBillPay="0" PayType="CARD" PriceTotal="6"/>
    </ProCtr>
    <PluAction>
      <Row SerialNo="1" DisPrice="10" DisRate="9"/>
    </PluAction>
)",
       {{4002, 4}, {3001, 1}},
       R"(  <PayMode>
    <Row PayMode="CARD" PayCardNo="6212345678901234" PayMoney="22.00"/>
  </PayMode>
)"},
      {"MZYQ",
       "Coupons: 5.00 for each 20.00",
       "DJ",
       // A subtotal would take the coupons that come with the lines off the sale.
       "Coupon",
       "",
       CouponGroups(R"(<CouponType CouponTypeCode="C5" CouponTypeName="Next visit"/>)"),
       {{4002, 4}, {3001, 1}},
       R"(  <Coupon>
    <Row BillNo="C-1" CouponTypeCode="C5" CouponValue="5.00" BgnDate="2024-01-01" EndDate="2099-12-31"/>
  </Coupon>
)"}};
  return templates;
}

std::string Money(int cents) {
  std::array<char, 32> text{};
  std::snprintf(text.data(), text.size(), "%d.%02d", cents / 100, cents % 100);
  return text.data();
}

std::string LineXml(int number, const TemplateLine& line) {
  const auto* const article =
      std::find_if(kGoods.begin(), kGoods.end(), [&](const Article& goods) { return goods.code == line.article; });
  return "    <Row SerialNo=\"" + std::to_string(number) + "\" PluCode=\"" + std::to_string(article->code) +
         "\" Price=\"" + Money(article->cents) + "\" PluCount=\"" + std::to_string(line.count) + "\" Total=\"" +
         Money(article->cents * line.count) + "\" PackCnt=\"1\" CAT=\"" + article->category +
         "\"\n         SaleDate=\"2024-06-12\" SaleTime=\"17:05:00\"/>\n";
}

constexpr const char* kDeclaration = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";

}  // namespace

std::vector<std::string> TemplateTypes() {
  std::vector<std::string> types;
  for (const StoreTemplate& store : Templates()) types.push_back(store.type);
  return types;
}

const StoreTemplate& TemplateOf(const std::string& type) {
  for (const StoreTemplate& store : Templates()) {
    if (store.type == type) return store;
  }
  throw ToolError("unknown type '" + type + "'", ToolError::kUsage);
}

std::string RuleXml(const StoreTemplate& store) {
  return kDeclaration + std::string("<Rules>\n  <Rule BillNo=\"") + store.type + "-1\" Name=\"" + store.name +
         "\" OrgCode=\"01\" ProType=\"" + store.type + "\" ProMode=\"" + store.type.substr(0, 2) +
         "\"\n        ProStatus=\"1\" Primary=\"" + store.primary +
         "\" JzDate=\"2024-06-01\" MaxYhType=\"0\" MaxYhValue=\"0\" Remark=\"\">\n"
         "    <OrgFilter>\n      <Row OrgCode=\"*\"/>\n    </OrgFilter>\n"
         "    <ProTime>\n      <Row StartDate=\"2024-01-01\" EndDate=\"2099-12-31\" StartTime=\"\" EndTime=\"\" "
         "Frequency=\"DAY\" WeekDays=\"\" MonthDays=\"\"/>\n    </ProTime>\n" +
         store.ruleGroups + "  </Rule>\n</Rules>\n";
}

std::string SaleXml(const StoreTemplate& store) {
  std::string xml = kDeclaration + std::string("<Sale BillNo=\"4711\" OrgCode=\"01\" IsCalc=\"0\">\n  <Plu>\n");
  int number = 0;
  for (const TemplateLine& line : store.lines) xml += LineXml(++number, line);
  return xml + "  </Plu>\n" + store.saleGroups + "</Sale>\n";
}

std::string GoodsXml() {
  std::string xml = kDeclaration + std::string("<Goods>\n");
  for (const Article& article : kGoods) {
    xml += "  <Row PluCode=\"" + std::to_string(article.code) + "\" Name=\"" + article.name + "\" Price=\"" +
           Money(article.cents) + "\" CAT=\"" + article.category + "\"/>\n";
  }
  return xml + "</Goods>\n";
}

}  // namespace Corvane::Tool
