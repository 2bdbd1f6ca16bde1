#include "tests/calls/FullAmount.h"

namespace Corvane::Testing {
namespace {

/// "MZZP" and "MZHG": from a threshold on, goods are offered for nothing or at a price.
class GiftOffer : public FullAmount {
 protected:
  static std::string OneLineOf(const std::string& total) { return SaleXml(LineXml(1, "A", total, "1", total)); }

  static void Offers(const std::string& type = "MZZP", const std::string& header = "") {
    Scheme("'G1',1,'MUG','SUM',100,'NUM',1,10,2,3,0");
    Scheme("'G1',2,'BAG','SUM',200,'NUM',1,0,0,0,9.9");
    LoadRule("G1", type, header);
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

TEST_F(GiftOffer, AnOfferChangesNoLine) {
  Offers();

  const std::string sale = MzPromotion(OneLineOf("250"));

  EXPECT_EQ(Held(sale, "Plu", "Total"), Texts{"250.00"});
  EXPECT_EQ(Held(sale, "Plu", "DisNum"), Texts{"0.00"});
  EXPECT_EQ(PrintedGroup(sale, "ProResult"), "<ProResult />");
  EXPECT_EQ(PrintedGroup(sale, "Apportion"), "<Apportion />");
}

TEST_F(GiftOffer, AnExchangePurchaseIsOfferedInTheSameWay) {
  Offers("MZHG");

  const std::string sale = MzPromotion(OneLineOf("250"));

  EXPECT_EQ(HeldOffers(sale, "PluCode"), (Texts{"BAG", "MUG"}));
}

TEST_F(GiftOffer, TheTypeWordAtLoadMayBeTheOtherOne) {
  Scheme("'G1',1,'MUG','SUM',100,'NUM',1,0,0,0,0");
  ASSERT_EQ(Load("MZHG", RuleXml("G1", "MZZP")).Code, 0);

  EXPECT_EQ(HeldOffers(MzPromotion(OneLineOf("250")), "PluCode"), Texts{"MUG"});
}

TEST_F(GiftOffer, AHigherTierIsNotOffered) {
  Offers();

  const std::string sale = MzPromotion(OneLineOf("199.99"));

  EXPECT_EQ(HeldOffers(sale, "PluCode"), Texts{"MUG"});
}

TEST_F(GiftOffer, ASaleExactlyAtTheThresholdReachesIt) {
  Offers();

  EXPECT_EQ(HeldOffers(MzPromotion(OneLineOf("200")), "PluCode"), (Texts{"BAG", "MUG"}));
}

TEST_F(GiftOffer, NoReachedTierIsNoGroup) {
  Offers();

  EXPECT_EQ(PrintedGroup(MzPromotion(OneLineOf("99.99")), "ProGifts"), "<ProGifts />");
}

TEST_F(GiftOffer, NoTiersAreNoFailure) {
  LoadRule("G1", "MZZP");

  EXPECT_EQ(PrintedGroup(MzPromotion(OneLineOf("250")), "ProGifts"), "<ProGifts />");
}

// 250.00 in 5 pieces: the money tiers make one group, the piece tiers another, each with its own total.
TEST_F(GiftOffer, EachConditionTypeHasItsGroup) {
  Scheme("'G1',1,'MUG','SUM',100,'NUM',1,0,0,0,0");
  Scheme("'G1',2,'PEN','NUM',2,'NUM',1,0,0,0,0");
  Scheme("'G1',3,'CAP','NUM',4,'NUM',1,0,0,0,0");
  Scheme("'G1',4,'BAG','SUM',200,'NUM',1,0,0,0,0");
  LoadRule("G1", "MZZP");

  const std::string sale = MzPromotion(SaleXml(LineXml(1, "A", "50", "5", "250")));

  EXPECT_EQ(Held(sale, "ProGifts", "Total"), (Texts{"250.00", "5.00"}));
  EXPECT_EQ(HeldOffers(sale, "PluCode", 1), (Texts{"BAG", "MUG"}));  // the first group is printed last
  EXPECT_EQ(HeldOffers(sale, "PluCode", 0), (Texts{"CAP", "PEN"}));
}

// 250, 5 pieces: "XYZ" stands behind the money tier and takes on its 250.
TEST_F(GiftOffer, ATierOfAnotherWordInheritsTheValueBeforeIt) {
  Scheme("'G1',1,'MUG','SUM',100,'NUM',1,0,0,0,0");
  Scheme("'G1',2,'PEN','XYZ',50,'NUM',1,0,0,0,0");
  LoadRule("G1", "MZZP");

  const std::string sale = MzPromotion(SaleXml(LineXml(1, "A", "50", "5", "250")));

  EXPECT_EQ(Held(sale, "ProGifts", "Total"), (Texts{"250.00", "250.00"}));
  EXPECT_EQ(HeldOffers(sale, "PluCode", 0), Texts{"PEN"});
}

// The piece tier was not reached, and yet the value is its 5 from then on.
TEST_F(GiftOffer, AnUnreachedTierLeavesItsValueBehind) {
  Scheme("'G1',1,'MUG','NUM',100,'NUM',1,0,0,0,0");
  Scheme("'G1',2,'PEN','XYZ',5,'NUM',1,0,0,0,0");
  LoadRule("G1", "MZZP");

  const std::string sale = MzPromotion(SaleXml(LineXml(1, "A", "50", "5", "250")));

  EXPECT_EQ(Held(sale, "ProGifts", "Total"), Texts{"5.00"});
}

TEST_F(GiftOffer, ATierOfAnotherWordThatStandsFirstHasNothing) {
  Scheme("'G1',1,'PEN','XYZ',200,'NUM',1,0,0,0,0");
  Scheme("'G1',2,'MUG','SUM',100,'NUM',1,0,0,0,0");
  LoadRule("G1", "MZZP");

  const std::string sale = MzPromotion(OneLineOf("250"));

  EXPECT_EQ(Held(sale, "ProGifts", "Total"), Texts{"250.00"});
  EXPECT_EQ(HeldOffers(sale, "PluCode"), Texts{"MUG"});
}

TEST_F(GiftOffer, ATierOfAnotherWordAtNothingIsReachedWithNothing) {
  Scheme("'G1',1,'PEN','XYZ',0,'NUM',1,0,0,0,0");
  LoadRule("G1", "MZZP");

  const std::string sale = MzPromotion(OneLineOf("250"));

  EXPECT_EQ(Held(sale, "ProGifts", "Total"), Texts{"0.00"});
}

TEST_F(GiftOffer, ChosenLinesCountAlone) {
  Offers();
  Condition("'G1','0',1,'0','FOOD','CAT','IN'");

  const std::string sale = MzPromotion(SaleXml(LineXml(1, "A", "150", "1", "150", R"(CAT="FOOD")") +
                                               LineXml(2, "B", "150", "1", "150", R"(CAT="TOYS")")));

  EXPECT_EQ(Held(sale, "ProGifts", "Total"), Texts{"150.00"});
}

// The offer's code plays no part: all rows of the rule count.
TEST_F(GiftOffer, ConditionRowsOfAnyOfferCodeCount) {
  Offers();
  Condition("'G1','L7',1,'0','A','PLU','IN'");
  Condition("'G1','L8',1,'0','B','PLU','IN'");

  const std::string sale = MzPromotion(SaleXml(LineXml(1, "A", "60", "1", "60") + LineXml(2, "B", "60", "1", "60")));

  EXPECT_EQ(Held(sale, "ProGifts", "Total"), Texts{"120.00"});
}

TEST_F(GiftOffer, RowsOfWhichNoneTouchesTheSaleReachNothing) {
  Offers();
  Condition("'G1','0',1,'0','Z','PLU','IN'");

  EXPECT_EQ(PrintedGroup(MzPromotion(OneLineOf("250")), "ProGifts"), "<ProGifts />");
}

TEST_F(GiftOffer, RowsOfWhichNoneTouchesTheSaleReachAThresholdOfNothing) {
  Scheme("'G1',1,'MUG','SUM',0,'NUM',1,0,0,0,0");
  LoadRule("G1", "MZZP");
  Condition("'G1','0',1,'0','Z','PLU','IN'");

  EXPECT_EQ(Held(MzPromotion(OneLineOf("250")), "ProGifts", "Total"), Texts{"0.00"});
}

// The row that only marks that there are rows is tried on the lines like any other: the lines' queries know goods,
// categories and brands, but the row may name any class that a line carries.
TEST_F(GiftOffer, TheMarkingRowMayNameAnotherClassOfALine) {
  Offers();
  Condition("'G1','0',1,'0','XMAS','SEASON','IN'");

  const std::string sale = MzPromotion(SaleXml(LineXml(1, "A", "150", "1", "150", R"(SEASON="XMAS")") +
                                               LineXml(2, "B", "150", "1", "150", R"(SEASON="EASTER")")));

  EXPECT_EQ(Held(sale, "ProGifts", "Total"), Texts{"150.00"});
}

TEST_F(GiftOffer, AMarkingRowThatExcludesLeavesNothing) {
  Offers();
  Condition("'G1','0',1,'0','Z','PLU','NOT'");

  EXPECT_EQ(PrintedGroup(MzPromotion(OneLineOf("250")), "ProGifts"), "<ProGifts />");
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

// A: 10.00 less 5.00, with a base of 10.00 and one piece in the reduction's row: nothing of it is open. B: 90.00, 3
// pieces.
TEST_F(GiftOffer, MoneyThatAReductionTookIsNotOpen) {
  Offer("'M1','L1','DES',0,'0'");
  Tier("'M1','L1',10,5,0,0,0");
  Condition("'M1','L1',1,'0','A','PLU','IN'");
  LoadRule("M1", "MZMJ", R"(JzDate="2026-02-01")");
  Scheme("'G1',1,'MUG','SUM',2,'NUM',1,0,0,0,0");
  Scheme("'G1',2,'PEN','NUM',1,'NUM',1,0,0,0,0");
  LoadRule("G1", "MZZP");

  const std::string sale = MzPromotion(SaleXml(LineXml(1, "A", "10", "1", "10") + LineXml(2, "B", "30", "3", "90")));

  EXPECT_EQ(Held(sale, "ProGifts", "Total"), (Texts{"90.00", "3.00"}));
}

TEST_F(GiftOffer, ALimitByQuantityIsNotForOffers) {
  Scheme("'G1',1,'PEN','NUM',3,'NUM',1,0,0,0,0");
  LoadRule("G1", "MZZP", R"(MaxYhType="2" MaxYhValue="1")");

  const std::string sale = MzPromotion(SaleXml(LineXml(1, "A", "10", "3", "30")));

  EXPECT_EQ(Held(sale, "ProGifts", "Total"), Texts{"3.00"});
}

// The rule's ceiling meets rows that an earlier rule of this number left: 1.00 each, of which a third stays. Nothing is
// rounded, the last row gets no remainder, and the log has no word of it.
TEST_F(GiftOffer, TheCeilingShrinksWhatAnEarlierPassLeft) {
  Offer("'G1','L1','ALL',0,'0'");
  Tier("'G1','L1',30,3,0,0,0");
  LoadRule("G1", "MZMJ");
  const std::string lines =
      LineXml(1, "A", "10", "1", "10") + LineXml(2, "B", "10", "1", "10") + LineXml(3, "C", "10", "1", "10");
  EXPECT_EQ(Held(MzPromotion(SaleXml(lines)), "ProResult", "DisMoney"), (Texts{"1.00", "1.00", "1.00"}));
  LoadRule("G1", "MZZP", R"(MaxYhType="1" MaxYhValue="1")");
  TakeLog();

  const std::string sale = MzPromotion(AsItStands());

  EXPECT_EQ(Held(sale, "ProResult", "DisMoney"), (Texts{"0.33", "0.33", "0.33"}));
  EXPECT_EQ(AfterReading(TakeLog()).back(), "计算整单已优惠数量：0");
}

TEST_F(GiftOffer, TheCeilingCutsOnlyFromACentOn) {
  Offer("'G1','L1','ALL',0,'0'");
  Tier("'G1','L1',30,3,0,0,0");
  LoadRule("G1", "MZMJ");
  MzPromotion(SaleXml(LineXml(1, "A", "30", "1", "30")));
  LoadRule("G1", "MZZP", R"(MaxYhType="1" MaxYhValue="2.995")");

  EXPECT_EQ(Held(MzPromotion(AsItStands()), "ProResult", "DisMoney"), Texts{"3.00"});
}

TEST_F(GiftOffer, OffersPileUpUntilASubtotal) {
  Offers();

  EXPECT_EQ(Held(MzPromotion(OneLineOf("250")), "ProGifts", "ProBillNo"), Texts{"G1"});
  EXPECT_EQ(Held(MzPromotion(AsItStands()), "ProGifts", "ProBillNo"), (Texts{"G1", "G1"}));
  EXPECT_EQ(PrintedGroup(Result("All", OneLineOf("250")), "ProGifts"), "<ProGifts />");
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
                          const std::string& most, const std::string& picked, const std::string& perPick = "1") {
    return "<R PluCode=\"" + pluCode + "\" BaseConTp=\"SUM\" BaseConNum=\"" + threshold +
           "\" BaseDscTp=\"NUM\" BaseDscNum=\"" + perPick + "\" DscPrice=\"" + price + "\" SaleMaxIn=\"" + most +
           "\" HgPluCount=\"" + picked + "\" CanPart=\"1\"/>";
  }
  static std::string Group(const std::string& total, const std::string& rows, const std::string& billNo = "G1") {
    return "<G ProBillNo=\"" + billNo + "\" Total=\"" + total + "\" LeftTotal=\"" + total + "\" UsedTotal=\"0\">" +
           rows + "</G>";
  }
  static std::string Sent(const std::string& groups) {
    return R"(<Sale OrgCode="S01" BillNo="B1" IsCalc="0"><ProGifts>)" + groups + "</ProGifts></Sale>";
  }
  static std::string Picks(const std::string& bags, const std::string& mugs) {
    return Sent(Group("250", Pick("BAG", "200", "9.9", "1", bags) + Pick("MUG", "100", "0", "2", mugs)));
  }
  static Answer Choose(const std::string& xml) { return Calc("till", "Gift", xml); }
};

TEST_F(GiftChoice, AChoiceThatFitsTellsWhatIsLeft) {
  const Answer answer = Choose(Picks("0", "2"));

  EXPECT_EQ(answer.Code, 0);
  EXPECT_EQ(answer.Msg, "sucess");
  EXPECT_EQ(Held(answer.Out, "ProGifts", "Total"), Texts{"250.00"});
  EXPECT_EQ(Held(answer.Out, "ProGifts", "UsedTotal"), Texts{"200.00"});  // 2 x 100
  EXPECT_EQ(Held(answer.Out, "ProGifts", "LeftTotal"), Texts{"50.00"});
  EXPECT_EQ(HeldOffers(answer.Out, "CanPart"), (Texts{"0", "0"}));
  EXPECT_EQ(HeldOffers(answer.Out, "HgPluCount"), (Texts{"0.00", "2.00"}));
  EXPECT_EQ(AfterReading(TakeLog()), Texts{"赠品返回数据计算"});
}

TEST_F(GiftChoice, ChoosingAgainStartsAfresh) {
  Choose(Picks("0", "2"));

  const Answer answer = Choose(Picks("0", "1"));

  EXPECT_EQ(answer.Code, 0);
  EXPECT_EQ(Held(answer.Out, "ProGifts", "UsedTotal"), Texts{"100.00"});
  EXPECT_EQ(Held(answer.Out, "ProGifts", "LeftTotal"), Texts{"150.00"});
  EXPECT_EQ(HeldOffers(answer.Out, "CanPart"), (Texts{"0", "1"}));  // 200 is above 150, 100 is not
}

TEST_F(GiftChoice, MorePiecesThanTheMostIsRefusedAndCorrected) {
  const Answer refused = Choose(Picks("0", "3"));

  EXPECT_EQ(refused.Code, -3);
  EXPECT_EQ(refused.Msg, "number overflow");
  EXPECT_EQ(refused.Out, "(untouched)");

  // What stands in the sale is what was sent: nothing was used up, nothing was marked.
  const std::string standing = Result("Pay", AsItStands());
  EXPECT_EQ(Held(standing, "ProGifts", "LeftTotal"), Texts{"250.00"});
  EXPECT_EQ(Held(standing, "ProGifts", "UsedTotal"), Texts{"0.00"});
  EXPECT_EQ(HeldOffers(standing, "HgPluCount"), (Texts{"0.00", "3.00"}));
  EXPECT_EQ(HeldOffers(standing, "CanPart"), (Texts{"1", "1"}));

  const Answer corrected = Choose(Picks("1", "0"));
  EXPECT_EQ(corrected.Code, 0);
  EXPECT_EQ(corrected.Msg, "sucess");
  EXPECT_EQ(Held(corrected.Out, "ProGifts", "LeftTotal"), Texts{"50.00"});
}

TEST_F(GiftChoice, MoreThanTheSaleBroughtIsRefusedAndCorrected) {
  const Answer refused = Choose(Sent(Group("250", Pick("BAG", "200", "9.9", "0", "2"))));  // 400 of 250

  EXPECT_EQ(refused.Code, -2);
  EXPECT_EQ(refused.Msg, "total overflow");
  EXPECT_EQ(refused.Out, "(untouched)");
  EXPECT_EQ(Held(Result("Pay", AsItStands()), "ProGifts", "LeftTotal"), Texts{"250.00"});

  const Answer corrected = Choose(Sent(Group("250", Pick("BAG", "200", "9.9", "0", "1"))));
  EXPECT_EQ(corrected.Code, 0);
  EXPECT_EQ(Held(corrected.Out, "ProGifts", "LeftTotal"), Texts{"50.00"});
}

TEST_F(GiftChoice, PickingTheVeryMostPasses) { EXPECT_EQ(Choose(Picks("1", "0")).Code, 0); }

TEST_F(GiftChoice, AMostOfNothingIsNoLimit) {
  const Answer answer = Choose(Sent(Group("250", Pick("MUG", "100", "0", "0", "9"))));

  EXPECT_EQ(answer.Code, 0);
}

TEST_F(GiftChoice, ACostOfAllThatIsLeftPasses) {
  const Answer answer = Choose(Sent(Group("200", Pick("BAG", "200", "9.9", "1", "1"))));

  EXPECT_EQ(answer.Code, 0);
  EXPECT_EQ(Held(answer.Out, "ProGifts", "LeftTotal"), Texts{"0.00"});
}

// 60 and 60 of 100: the second row has 40 left.
TEST_F(GiftChoice, PricedRowsShareTheMoneyOfTheirGroup) {
  const Answer answer = Choose(Sent(Group("100", Pick("CUP", "60", "1", "0", "1") + Pick("PEN", "60", "1", "0", "1"))));

  EXPECT_EQ(answer.Code, -2);
}

// Nine mugs use up 900 of 250, and nobody says a word.
TEST_F(GiftChoice, AFreeRowIsNeverTooMuch) {
  const Answer answer = Choose(Sent(Group("250", Pick("MUG", "100", "0", "0", "9"))));

  EXPECT_EQ(answer.Code, 0);
  EXPECT_EQ(Held(answer.Out, "ProGifts", "LeftTotal"), Texts{"-650.00"});
  EXPECT_EQ(Held(answer.Out, "ProGifts", "UsedTotal"), Texts{"900.00"});
}

// 300 of 250 are used up by then, so the bag is refused though none of it was picked.
TEST_F(GiftChoice, APricedRowBehindTooManyFreeOnesIsRefused) {
  const Answer answer =
      Choose(Sent(Group("250", Pick("MUG", "100", "0", "0", "3") + Pick("BAG", "200", "9.9", "1", "0"))));

  EXPECT_EQ(answer.Code, -2);
  EXPECT_EQ(answer.Msg, "total overflow");
}

TEST_F(GiftChoice, APricedRowBeforeTooManyFreeOnesPasses) {
  const Answer answer =
      Choose(Sent(Group("250", Pick("BAG", "200", "9.9", "1", "0") + Pick("MUG", "100", "0", "0", "3"))));

  EXPECT_EQ(answer.Code, 0);
}

TEST_F(GiftChoice, ARowThatRatesNoPiecesCostsNothing) {
  const Answer answer = Choose(Sent(Group("250", Pick("BAG", "200", "9.9", "4", "4", "0"))));

  EXPECT_EQ(answer.Code, 0);
  EXPECT_EQ(Held(answer.Out, "ProGifts", "UsedTotal"), Texts{"0.00"});
}

TEST_F(GiftChoice, ARowThatRatesNoPiecesIsStillHeldToTheMost) {
  EXPECT_EQ(Choose(Sent(Group("250", Pick("BAG", "200", "9.9", "4", "5", "0")))).Code, -3);
}

// One of a pair is half a pick: 200 / 2.
TEST_F(GiftChoice, APickIsRatedByThePiecesOfItsRow) {
  const Answer answer = Choose(Sent(Group("250", Pick("BAG", "200", "9.9", "0", "1", "2"))));

  EXPECT_EQ(Held(answer.Out, "ProGifts", "UsedTotal"), Texts{"100.00"});
}

// 150.00 left: 150.00 can still be taken, 150.01 can't.
TEST_F(GiftChoice, WhatCostsTheVeryRestCanStillBeTaken) {
  const Answer answer = Choose(Sent(Group("250", Pick("MUG", "100", "0", "0", "1") + Pick("CUP", "150", "0", "0", "0") +
                                                     Pick("BAG", "150.01", "9.9", "0", "0"))));

  EXPECT_EQ(HeldOffers(answer.Out, "CanPart"), (Texts{"1", "1", "0"}));
}

// The picks of one rule's group come off the other's too; both end with the same use.
TEST_F(GiftChoice, WhatIsUsedIsSharedByAllRules) {
  Scheme("'G2',1,'PEN','SUM',50,'NUM',1,0,0,0,0");
  LoadRule("G2", "MZHG");

  const Answer answer = Choose(Sent(Group("250", Pick("MUG", "100", "0", "2", "1"), "G1") +
                                    Group("120", Pick("PEN", "50", "0", "0", "1"), "G2")));

  EXPECT_EQ(answer.Code, 0);
  EXPECT_EQ(Held(answer.Out, "ProGifts", "UsedTotal"), (Texts{"150.00", "150.00"}));
  EXPECT_EQ(Held(answer.Out, "ProGifts", "LeftTotal"), (Texts{"100.00", "-30.00"}));
}

// 100 used by the first rule are above the 90 of the second: its priced row is refused.
TEST_F(GiftChoice, AnotherRulesPicksCanBeTooMuch) {
  Scheme("'G2',1,'PEN','SUM',50,'NUM',1,0,0,0,5");
  LoadRule("G2", "MZHG", R"(JzDate="2025-01-01")");

  const Answer answer = Choose(Sent(Group("90", Pick("PEN", "50", "5", "0", "0"), "G2") +
                                    Group("250", Pick("MUG", "100", "0", "2", "1"), "G1")));

  EXPECT_EQ(answer.Code, -2);
}

TEST_F(GiftChoice, SeveralGroupsOfOneRuleHaveTheirMoneyEach) {
  const Answer answer =
      Choose(Sent(Group("100", Pick("CUP", "60", "1", "0", "1")) + Group("100", Pick("PEN", "60", "1", "0", "1"))));

  EXPECT_EQ(answer.Code, 0);
  EXPECT_EQ(Held(answer.Out, "ProGifts", "UsedTotal"), (Texts{"120.00", "120.00"}));
}

TEST_F(GiftChoice, AGroupOfNoRuleStaysAsItWasSent) {
  const Answer answer = Choose(Sent(Group("250", Pick("MUG", "100", "0", "1", "9"), "GONE")));

  EXPECT_EQ(answer.Code, 0);
  EXPECT_EQ(Held(answer.Out, "ProGifts", "LeftTotal"), Texts{"250.00"});
  EXPECT_EQ(Held(answer.Out, "ProGifts", "UsedTotal"), Texts{"0.00"});
}

// Offers belong to a rule by its number, whatever its type.
TEST_F(GiftChoice, AGroupOfARuleOfAnotherTypeIsChecked) {
  LoadRule("X1", "PTXS");

  EXPECT_EQ(Choose(Sent(Group("250", Pick("MUG", "100", "0", "1", "9"), "X1"))).Code, -3);
}

TEST_F(GiftChoice, NothingIsSkippedByRemark) {
  LoadRule("G1", "MZZP", R"(Remark="DVCZK")");

  EXPECT_EQ(Choose(Picks("0", "3")).Code, -3);
}

TEST_F(GiftChoice, WithoutPicksTheStandingOffersAreWritten) {
  const Answer answer = Choose(AsItStands());

  EXPECT_EQ(answer.Code, 0);
  EXPECT_EQ(answer.Msg, "sucess");
  EXPECT_EQ(Held(answer.Out, "ProGifts", "LeftTotal"), Texts{"250.00"});
  EXPECT_EQ(Held(answer.Out, "ProGifts", "UsedTotal"), Texts{"0.00"});
  EXPECT_EQ(HeldOffers(answer.Out, "CanPart"), (Texts{"1", "1"}));
}

TEST_F(GiftChoice, WithoutOffersTheResultIsWritten) {
  const Answer answer = Calc("other till", "Gift", OneLineOf("5"));

  EXPECT_EQ(answer.Code, 0);
  EXPECT_EQ(answer.Msg, "sucess");
  EXPECT_EQ(PrintedGroup(answer.Out, "ProGifts"), "<ProGifts />");
  EXPECT_EQ(Held(answer.Out, "Plu", "Total"), Texts{"5.00"});
}

TEST_F(GiftChoice, AnEmptyGroupOfOffersTakesTheStandingOnesAway) {
  EXPECT_EQ(PrintedGroup(Choose(Sent("")).Out, "ProGifts"), "<ProGifts />");
}

TEST_F(GiftChoice, OffersStayUntilTheNextPicks) {
  Choose(Picks("1", "0"));

  const std::string later = Result("Coupon", AsItStands());

  EXPECT_EQ(Held(later, "ProGifts", "LeftTotal"), Texts{"50.00"});
  EXPECT_EQ(HeldOffers(later, "HgPluCount"), (Texts{"1.00", "0.00"}));
}

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
