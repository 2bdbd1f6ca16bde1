#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "tests/face/Face.h"

using ::testing::HasSubstr;
using ::testing::StartsWith;

namespace Corvane::Testing {
namespace {

class Strict : public ::testing::Test {
 protected:
  Told Sale(const std::string& xml) const { return m_engine.Calculate("1", "All", xml); }
  Told Rule(const std::string& xml) const { return m_engine.LoadRule(xml, "rules/R07.xml"); }

  StoreFolder m_store;
  OpenEngine m_engine{m_store.Path()};
};

TEST_F(Strict, NamesLineAndColumnOfWhatIsNoXml) {
  EXPECT_THAT(Sale("<Sale>\n <Plu>\n</Sale>").Error, StartsWith("sale:3:"));
  EXPECT_THAT(Sale("<Sale><Plu>").Error, StartsWith("sale:1:12: is not XML"));
  EXPECT_THAT(Sale("no XML").Error, StartsWith("sale:1:"));
  EXPECT_THAT(Sale("<Sale/><Sale/>").Error, StartsWith("sale:1:"));
  EXPECT_THAT(Sale("<Sale BillNo='1' BillNo='2'/>").Error, StartsWith("sale:1:"));
  EXPECT_THAT(Sale("<Sale BillNo='&#1;'/>").Error, StartsWith("sale:1:"));
  EXPECT_THAT(Sale("<Sale BillNo='&nbsp;'/>").Error, StartsWith("sale:1:"));
}

TEST_F(Strict, TellsThatATextIsNoXmlBeforeWhatIsWrongInIt) {
  EXPECT_EQ(Sale("<Sale><Plu><Row/></Plu>").Code, QNC_BAD_XML);
  EXPECT_EQ(Rule("<Rules><Rule BillNo='A'>").Code, QNC_BAD_XML);
}

TEST_F(Strict, RefusesOtherEncodings) {
  EXPECT_EQ(Sale("<?xml version='1.0' encoding='utf-8'?><Sale/>").Code, QNC_OK);
  EXPECT_THAT(Sale("<?xml version='1.0' encoding='GBK'?><Sale/>").Error, HasSubstr("declares the encoding 'GBK'"));
  EXPECT_THAT(Sale("<Sale>\n<Plu><Row X='\xC3('/></Plu></Sale>").Error, StartsWith("sale:2: is not UTF-8"));
  EXPECT_THAT(Sale("<Sale X='\xED\xA0\x80'/>").Error, StartsWith("sale:1: is not UTF-8"));
}

TEST_F(Strict, RefusesDocumentTypes) {
  const Told told = Sale("<!DOCTYPE Sale [<!ENTITY a 'aaaa'>]><Sale BillNo='&a;'/>");
  EXPECT_EQ(told.Code, QNC_BAD_XML);
  EXPECT_THAT(told.Error, HasSubstr("has a document type"));
}

TEST_F(Strict, RefusesWhatTheEngineWouldCutOff) {
  std::string deep;
  std::string shallow;
  for (int level = 0; level < 201; ++level) deep = "<a>" + deep + "</a>";
  for (int level = 0; level < 200; ++level) shallow = "<a>" + shallow + "</a>";
  EXPECT_THAT(Sale(deep).Error, HasSubstr("has elements more than 200 deep"));
  EXPECT_EQ(Sale(shallow).Code, QNC_OK);
  std::string attributes;
  for (int number = 0; number < 1000; ++number) attributes += " a" + std::to_string(number) + "='1'";
  EXPECT_EQ(Sale("<Sale" + attributes + "/>").Code, QNC_OK);
  EXPECT_THAT(Sale("<Sale" + attributes + " b='1'/>").Error, HasSubstr("has more than 1000 attributes"));
}

TEST_F(Strict, NamesTheLineOnWhichAWrongValueStands) {
  const Told told = Rule(
      "<Rules>\n<Rule BillNo='R07' ProType='PTXS'\n JzDate='2024-06-01'>\n<ProTime>\n<Row\n Frequency='EndDate=x'\n"
      " StartDate='2024-01-01'\n EndDate='31.12.2027'/></ProTime></Rule></Rules>");
  EXPECT_EQ(told.Code, QNC_BAD_VALUE);
  EXPECT_EQ(told.Error, "rules/R07.xml:8: EndDate '31.12.2027' is not YYYY-MM-DD");
}

TEST_F(Strict, AsksForWhatALineIsNothingWithout) {
  EXPECT_EQ(Sale("<Sale><Plu>\n<Row PluCode='A' PluCount='1' Total='1'/></Plu></Sale>").Error,
            "sale:2: the line has no SerialNo");
  EXPECT_EQ(Sale("<Sale><Plu><Row SerialNo='1' PluCount='1' Total='1'/></Plu></Sale>").Error,
            "sale:1: the line has no PluCode");
  EXPECT_EQ(Sale("<Sale><Plu><Row SerialNo='1' PluCode='A' Total='1'/></Plu></Sale>").Error,
            "sale:1: the line has no PluCount");
  EXPECT_EQ(Sale("<Sale><Plu><Row SerialNo='1' PluCode='A' PluCount='1' Total=''/></Plu></Sale>").Error,
            "sale:1: the line has no Total");
  // A line that was voided has both, and says 0.
  EXPECT_EQ(Sale("<Sale><Plu><Row SerialNo='1' PluCode='A' PluCount='0' Total='0'/></Plu></Sale>").Code, QNC_OK);
}

struct Value {
  const char* Attribute;
  const char* Text;
  bool IsGood;
};

class LineValues : public Strict, public ::testing::WithParamInterface<Value> {};

TEST_P(LineValues, AreWhatTheyStandForOrRefused) {
  const Value& value = GetParam();
  const Told told =
      Sale(std::string("<Sale><Plu><Row ") + value.Attribute + "='" + value.Text + "' " +
           (std::string(value.Attribute) == "SerialNo" ? "" : "SerialNo='1' ") +
           (std::string(value.Attribute) == "Total" ? "" : "Total='1' ") + "PluCode='A' PluCount='1'/></Plu></Sale>");
  EXPECT_EQ(told.Code, value.IsGood ? QNC_OK : QNC_BAD_VALUE) << told.Error;
  if (!value.IsGood) {
    EXPECT_THAT(told.Error, StartsWith(std::string("sale:1: ") + value.Attribute + " '" + value.Text + "' is not "));
  }
}

INSTANTIATE_TEST_SUITE_P(
    Numbers, LineValues,
    ::testing::Values(Value{"Total", "1.50", true}, Value{"Total", "-1.50", true}, Value{"Total", "+1", true},
                      Value{"Total", ".5", true}, Value{"Total", "5.", true}, Value{"Total", "1e3", true},
                      Value{"Total", "1,50", false}, Value{"Total", "1.50 EUR", false}, Value{"Total", "nan", false},
                      Value{"Total", "inf", false}, Value{"Total", "1e999", false}, Value{"Total", "0x10", false},
                      Value{"Total", " 1", false}, Value{"Total", "1 000", false}, Value{"Total", "--1", false},
                      Value{"SerialNo", "12", true}, Value{"SerialNo", "-1", true}, Value{"SerialNo", "1.5", false},
                      Value{"SerialNo", "2147483648", false}, Value{"SerialNo", "A", false}));
INSTANTIATE_TEST_SUITE_P(Times, LineValues,
                         ::testing::Values(Value{"SaleDate", "2024-02-29", true}, Value{"SaleDate", "", true},
                                           Value{"SaleDate", "2023-02-29", false},
                                           Value{"SaleDate", "2024-6-15", false},
                                           Value{"SaleDate", "15.06.2024", false}, Value{"SaleDate", "20240615", false},
                                           Value{"SaleTime", "23:59:59", true}, Value{"SaleTime", "24:00:00", false},
                                           Value{"SaleTime", "9:00:00", false}, Value{"SaleTime", "10:30", false}));

TEST_F(Strict, AsksForNumberAndTypeOfARule) {
  EXPECT_EQ(Rule("<Rules><Rule ProType='PTXS'/></Rules>").Error, "rules/R07.xml:1: the rule has no BillNo");
  EXPECT_EQ(Rule("<Rules><Rule BillNo='R'/></Rules>").Error, "rules/R07.xml:1: the rule has no ProType");
  EXPECT_EQ(Rule("<Rules/>").Error, "rules/R07.xml: no rule in it; a rule is an element within the document's own");
  EXPECT_THAT(Rule("<Rules><Rule BillNo='R' ProType='ZH'/></Rules>").Error, HasSubstr("ProType 'ZH' is no type"));
  EXPECT_THAT(Rule("<R>\n<Rule BillNo='R' ProType='PTXS'/>\n<Rule BillNo='S' ProType='PTXS'/></R>").Error,
              StartsWith("rules/R07.xml:3: a second rule"));
}

TEST_F(Strict, CallsATextByItsNameOrRule) {
  EXPECT_THAT(m_engine.LoadRule("<", nullptr).Error, StartsWith("rule:1:"));
  EXPECT_THAT(m_engine.LoadRule("<", "").Error, StartsWith("rule:1:"));
  EXPECT_THAT(m_engine.LoadRule("<", "promo 7").Error, StartsWith("promo 7:1:"));
}

TEST_F(Strict, ShowsNoMoreOfAValueThanAnErrorCanBear) {
  const std::string value(1000000, '9');
  const Told told = Sale("<Sale><Plu><Row SerialNo='" + value + "'/></Plu></Sale>");
  EXPECT_NE(told.Code, QNC_OK);
  EXPECT_LT(told.Error.size(), 200U);
}

TEST_F(Strict, TakesEverySaleAndRuleOfTheSamples) {
  namespace fs = std::filesystem;
  EXPECT_EQ(m_engine.LoadRules().Code, QNC_OK);
  int sales = 0;
  for (const auto& entry : fs::recursive_directory_iterator(fs::path(QNCORVANE_SOURCE_DIR) / "samples" / "sales")) {
    if (entry.path().extension() != ".xml") continue;
    const std::ifstream file(entry.path());
    std::ostringstream text;
    text << file.rdbuf();
    const Told told = m_engine.Calculate(entry.path().string(), "All", text.str());
    EXPECT_EQ(told.Code, QNC_OK) << entry.path() << ": " << told.Error;
    ++sales;
  }
  EXPECT_GE(sales, 20);
}

}  // namespace
}  // namespace Corvane::Testing
