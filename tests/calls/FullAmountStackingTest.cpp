#include "tests/calls/FullAmount.h"

namespace Corvane::Testing {
namespace {

/// What the log tells of full-amount promotions that may not act on a sale, and of those that are passed over.
class FullAmountStacking : public FullAmount {
 protected:
  static std::string OneLine(const std::string& isCalc = "0") {
    return SaleXml(LineXml(1, "A", "100", "1", "100"), "", isCalc);
  }
  /// A rule that writes a result of the class "DZ" onto the sale and touches no line.
  static void LeavesItsMark() {
    const std::string header = R"(Primary="DZ" JzDate="2026-12-31")";
    ASSERT_EQ(Load("MZYQ", RuleXml("Q1", "MZZQ", header, OfferXml("ALL", TierXml("100", "7")))).Code, 0);
  }
};

// All six types ask the sale, before anything else is logged but what a gift announces.
TEST_F(FullAmountStacking, AStoppedRuleSaysNothing) {
  LeavesItsMark();
  MzPromotion(OneLine());
  for (const char* type : {"MZMJ", "MZDP", "MZZM", "MZZP", "MZHG"}) LoadRule(type, type);
  TakeLog();

  MzPromotion(AsItStands());

  EXPECT_EQ(AfterReading(TakeLog()), (Texts{"开始满减赠品计算", "开始满减赠品计算"}));
}

// "DVCZK" runs for "1", "NVCZK" for "2", the others for "0", and all for any other text.
TEST_F(FullAmountStacking, TheSkipTestDecidesByRemark) {
  LoadRule("R1", "MZMJ", R"(Remark="DVCZK")");
  LoadRule("R2", "MZMJ", R"(Remark="NVCZK")");
  LoadRule("R3", "MZMJ");
  for (const char* rule : {"R1", "R2", "R3"}) {
    Offer("'" + std::string(rule) + "','L1','DES',0,'0'");
    Tier("'" + std::string(rule) + "','L1',50,10,0,0,0");
    Condition("'" + std::string(rule) + "','L1',1,'0','A','PLU','IN'");
  }

  const std::vector<std::pair<std::string, Texts>> skipped = {
      {"0", {"R1", "R2"}}, {"1", {"R2", "R3"}}, {"2", {"R1", "R3"}}, {"3", {}}};
  for (const auto& [isCalc, rules] : skipped) {
    ClearSales();
    TakeLog();
    MzPromotion(OneLine(isCalc));
    const Texts log = AfterReading(TakeLog());
    EXPECT_EQ(Count(log, "跳过促销"), static_cast<long>(rules.size())) << isCalc;
    for (const std::string& rule : rules) EXPECT_EQ(Count(log, rule), 1) << isCalc << " " << rule;
  }
}

// Rules that are not of these six types are passed over by type, but the skip test speaks first.
TEST_F(FullAmountStacking, ASkippedRuleIsToldWhateverItsType) {
  LoadRule("X1", "PTXS", R"(Remark="DVCZK")");

  MzPromotion(OneLine());

  EXPECT_EQ(AfterReading(TakeLog()), (Texts{"跳过促销", "X1"}));
}

}  // namespace
}  // namespace Corvane::Testing
