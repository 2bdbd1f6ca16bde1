#include "tests/calls/FullAmount.h"

namespace Corvane::Testing {
namespace {

/// "MZZP" and "MZHG": from a threshold on, goods are offered for nothing or at a price.
class GiftOffer : public FullAmount {
 protected:
  static std::string OneLineOf(const std::string& total) { return SaleXml(LineXml(1, "A", total, "1", total)); }

  static void Offers(const std::string& type = "MZZP") {
    Scheme("'G1',1,'MUG','SUM',100,'NUM',1,10,2,3,0");
    Scheme("'G1',2,'BAG','SUM',200,'NUM',1,0,0,0,9.9");
    LoadRule("G1", type);
  }
};

TEST_F(GiftOffer, ReachedTiersAreOfferedInOneGroup) {
  Offers();

  const std::string sale = MzPromotion(OneLineOf("250"));

  EXPECT_EQ(PrintedGroup(sale, "ProGifts"),
            R"(<ProGifts>
        <ProGift ProBillNo="G1" Total="250.00" LeftTotal="250.00" UsedTotal="0.00">
            <Data SerialNo="1" PluCode="MUG" PluType="PLU" BaseConTp="SUM" BaseConNum="100.00")"
            R"( BaseDscTp="NUM" BaseDscNum="1.00" AddConNum="10.00" AddDscNum="2.00" SaleMaxIn="3.00")"
            R"( DscPrice="0.00" HgPluCount="0.00" CanPart="1" Price="0.00" />
            <Data SerialNo="2" PluCode="BAG" PluType="PLU" BaseConTp="SUM" BaseConNum="200.00")"
            R"( BaseDscTp="NUM" BaseDscNum="1.00" AddConNum="0.00" AddDscNum="0.00" SaleMaxIn="0.00")"
            R"( DscPrice="9.90" HgPluCount="0.00" CanPart="1" Price="0.00" />
        </ProGift>
    </ProGifts>)");
}

TEST_F(GiftOffer, TheLogOfAnOfferOverTheWholeSale) {
  Offers();

  MzPromotion(SaleXml(LineXml(1, "A", "150", "1", "150") + LineXml(2, "B", "150", "1", "150")));

  EXPECT_EQ(AfterReading(TakeLog()), Joined({{"开始满减赠品计算"},
                                             BaseConditionsMet(),
                                             {"满减赠品基本促销条件满足！"},
                                             AskedQuantity("MZZP"),
                                             AskedQuantity("MZZP")}));
}

TEST_F(GiftOffer, TheLogOfAnOfferOverChosenLines) {
  Offers("MZHG");
  Condition("'G1','0',1,'0','B','PLU','IN'");

  MzPromotion(SaleXml(LineXml(1, "A", "150", "1", "150") + LineXml(2, "B", "150", "1", "150")));

  EXPECT_EQ(AfterReading(TakeLog()),
            Joined({{"开始满减赠品计算"}, BaseConditionsMet(), {"满减赠品基本促销条件满足！"}, AskedQuantity("MZHG")}));
}

TEST_F(GiftOffer, TheCalculationIsAnnouncedBeforeAnyTest) {
  Scheme("'G1',1,'MUG','SUM',100,'NUM',1,0,0,0,0");
  const std::string elsewhere =
      R"(<OrgFilter><Row OrgCode="S02"/></OrgFilter>)"
      R"(<ProTime><Row StartDate="2000-01-01" EndDate="2099-12-31" Frequency="DAY"/></ProTime>)";
  ASSERT_EQ(Load("MZZP", RuleXml("G1", "MZZP", "", elsewhere, true)).Code, 0);

  MzPromotion(OneLineOf("250"));

  EXPECT_EQ(AfterReading(TakeLog()), (Texts{"开始满减赠品计算", "时间满足", "组织条件不满足"}));
}

TEST_F(GiftOffer, NullsReadAsNothing) {
  LooseTable("tProMzScheme",
             "BillNo,SerialNo,PluCode,BaseConType,BaseConNum,BaseDscType,BaseDscNum,AddConNum,AddDscNum,"
             "SaleMaxIn,DscPrice");
  Scheme("'G1',null,null,null,null,null,null,null,null,null,null");
  LoadRule("G1", "MZZP");

  const std::string sale = MzPromotion(OneLineOf("250"));

  EXPECT_EQ(Held(sale, "ProGifts", "Total"), Texts{"0.00"});
  EXPECT_EQ(HeldOffers(sale, "SerialNo"), Texts{"0"});
  EXPECT_EQ(HeldOffers(sale, "PluCode"), Texts{""});
  EXPECT_EQ(HeldOffers(sale, "PluType"), Texts{"PLU"});
  EXPECT_EQ(HeldOffers(sale, "BaseConTp"), Texts{""});
  EXPECT_EQ(HeldOffers(sale, "BaseConNum"), Texts{"0.00"});
  EXPECT_EQ(HeldOffers(sale, "DscPrice"), Texts{"0.00"});
}

/// Mode "Gift": the offers come back with the cashier's picks.
class GiftChoice : public GiftOffer {
 protected:
  /// 250.00 bring a bag from 200.00 on, at 9.90 and one at most, and mugs from 100.00 on, two at most.
  void SetUp() override {
    GiftOffer::SetUp();
    Scheme("'G1',1,'MUG','SUM',100,'NUM',1,0,0,2,0");
    Scheme("'G1',2,'BAG','SUM',200,'NUM',1,0,0,1,9.9");
    LoadRule("G1", "MZZP");
    MzPromotion(OneLineOf("250"));
    TakeLog();
  }

  /// One row of a group as the host sends it back.
  static std::string Pick(const std::string& pluCode, const std::string& threshold, const std::string& price,
                          const std::string& most, const std::string& picked) {
    return "<R PluCode=\"" + pluCode + "\" BaseConTp=\"SUM\" BaseConNum=\"" + threshold +
           "\" BaseDscTp=\"NUM\" BaseDscNum=\"1\" DscPrice=\"" + price + "\" SaleMaxIn=\"" + most + "\" HgPluCount=\"" +
           picked + "\" CanPart=\"1\"/>";
  }
  static std::string Group(const std::string& total, const std::string& rows) {
    return "<G ProBillNo=\"G1\" Total=\"" + total + "\" LeftTotal=\"" + total + "\" UsedTotal=\"0\">" + rows + "</G>";
  }
  static std::string Sent(const std::string& groups) {
    return R"(<Sale OrgCode="S01" BillNo="B1" IsCalc="0"><ProGifts>)" + groups + "</ProGifts></Sale>";
  }
  static std::string Picks(const std::string& bags, const std::string& mugs) {
    return Sent(Group("250", Pick("BAG", "200", "9.9", "1", bags) + Pick("MUG", "100", "0", "2", mugs)));
  }
  static Answer Choose(const std::string& xml) { return Calc("till", "Gift", xml); }
};

// The price of the offered goods is the host's and goes through.
TEST_F(GiftChoice, ThePriceGoesThrough) {
  const Answer answer = Choose(Sent(Group("250", R"(<R PluCode="MUG" PluType="PLU" SerialNo="7" Price="12.5"/>)")));

  EXPECT_EQ(HeldOffers(answer.Out, "Price"), Texts{"12.50"});
  EXPECT_EQ(HeldOffers(answer.Out, "SerialNo"), Texts{"7"});
  EXPECT_EQ(HeldOffers(answer.Out, "BaseConTp"), Texts{"SUM"});
  EXPECT_EQ(HeldOffers(answer.Out, "CanPart"), Texts{"1"});
}

TEST_F(GiftChoice, PicksThatAreNoNumbersDoNoHarm) {
  for (const char* picked : {"", "two", "nan", "inf", "-inf", "1e999", "-5"}) Choose(Picks(picked, picked));

  EXPECT_EQ(Held(Choose(Picks("0", "1")).Out, "ProGifts", "LeftTotal"), Texts{"150.00"});
}

}  // namespace
}  // namespace Corvane::Testing
