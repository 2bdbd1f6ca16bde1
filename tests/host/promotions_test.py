"""docs/promotions.md against the engine: every receipt and every figure in it comes out of a run.

promotions_test.py PROGRAM SOURCES
"""

import pathlib
import re
import sys
import unittest

from shop import Rule, Shop, given, sale_xml, totals

PROGRAM = pathlib.Path(sys.argv.pop(1)).resolve()
SOURCES = pathlib.Path(sys.argv.pop(1)).resolve()
SAMPLES = SOURCES / "samples"
run = Shop(PROGRAM, SAMPLES).run
PAGE = (SOURCES / "docs" / "promotions.md").read_text("utf-8")
CLASSES = ["DZ", "PT", "DJ"]
WORDS = ["PTXS", "PTPL", "PTOS", "ZHZY", "ZHZX", "ZHTJ", "ZHGD", "MZMJ", "MZDP", "MZZM", "MZZP", "MZHG", "MZZQ", "MZZF",
         "MZYQ"]

COLAS = sale_xml(("COLA", "4"))


def block(language):
    return re.search(rf"```{language}\n(.*?)```", PAGE, re.DOTALL)[1]


class Receipts(unittest.TestCase):
    def test_every_receipt_is_part_of_a_sample_receipt(self):
        receipts = "\n".join(file.read_text("utf-8") for file in (SAMPLES / "receipts").glob("*.txt"))
        quoted = re.findall(r"```text\n(.*?)```", PAGE, re.DOTALL)
        self.assertGreaterEqual(len(quoted), 14)
        for text in quoted:
            with self.subTest(text[:60]):
                self.assertIn(text, receipts)

    def test_every_kind_has_a_row_a_section_and_a_receipt(self):
        sections = re.split(r"^## ", PAGE, flags=re.MULTILINE)[1:]
        for word in WORDS:
            with self.subTest(word):
                row = re.search(rf"^\| \[{word}\]\(#([a-z0-9-]+)\) \|.*\| `(\S+\.xml)` \|$", PAGE, re.MULTILINE)
                self.assertTrue((SAMPLES / "store" / "rules" / row[2]).exists(), row[2])
                section = next(text for text in sections if word in text.split(":")[0])
                anchor = re.sub(r"[^a-z0-9 -]", "", section.splitlines()[0].lower()).replace(" ", "-")
                self.assertEqual(row[1], anchor)
                self.assertIn("```text", section)
                self.assertIn(word, section)


class Pairs(unittest.TestCase):
    """The tables of "Two promotions on the same goods"."""

    TYPES = {"WEEK": "PTXS", "LESS": "PTXS", "THREE": "ZHZY", "OFF": "MZMJ", "FREE": "MZDP"}

    def rule(self, bill, primary, date="2024-06-01"):
        return Rule(bill, self.TYPES[bill], primary, date)

    def test_every_pair_of_classes(self):
        pairs = re.findall(r"^### (\w+) and (\w+)$", PAGE, re.MULTILINE)
        self.assertEqual(len(pairs), 5)
        for first, second in pairs:
            for of_first in CLASSES:
                cells = []
                for of_second in CLASSES:
                    rules = [self.rule(first, of_first, "2024-06-02"), self.rule(second, of_second)]
                    money = given(run(rules, block("sql"), ("All", COLAS), ("MzPromotion",)))
                    cells.append(f"{money[first]:.2f} and {money[second]:.2f}, pay {40 - sum(money.values()):.2f}")
                with self.subTest(first=first, second=second, of_first=of_first):
                    table = PAGE[PAGE.index(f"### {first} and {second}\n"):]
                    self.assertIn(f"| {of_first} | {' | '.join(cells)} |\n", table[:table.index("\n#", 1)])

    def test_the_same_date(self):
        for order in (["WEEK", "LESS"], ["LESS", "WEEK"]):
            money = given(run([self.rule(bill, "PT") for bill in order], block("sql"), ("All", COLAS)))
            self.assertIn(f"| {order[0]} | {money['WEEK']:.2f} | {money['LESS']:.2f} |\n", PAGE)

    def test_a_reduction_and_a_gift(self):
        rows = """insert into tpromzlist (BillNo, ListCode) values ('OFF', '1');
        insert into tProMzDiscountAct (BillNo, ListCode, BaseMoney, BaseDscMoney, AddMoney) values ('OFF', '1', 50, 5, 1000);
        insert into tProMzScheme (BillNo, SerialNo, PluCode, BaseConNum, BaseDscType, BaseDscNum, SaleMaxIn)
        values ('GIFT', 1, 'BAG', 30, 'NUM', 1, 1);"""
        for off, gift, first in [("PT", "PT", "reduction"), ("PT", "PT", "gift"), ("PT", "DJ", "reduction"),
                                 ("DJ", "PT", "gift"), ("DJ", "DJ", "reduction"), ("DJ", "DJ", "gift"),
                                 ("DZ", "PT", "reduction"), ("DZ", "DJ", "reduction")]:
            date = "2024-06-02" if first == "gift" else "2024-05-01"
            rules = [Rule("OFF", "MZMJ", off), Rule("GIFT", "MZZP", gift, date)]
            result = run(rules, rows, ("All", sale_xml(("COLA", "6"))), ("MzPromotion",))
            self.assertEqual(given(result), {"OFF": 5})
            offers = [offer.get("Total") for offer in result.find("ProGifts")]
            counted = offers[0] if offers else "none: no offer"
            self.assertIn(f"| {off} | {'any' if off == 'DZ' else gift} | the {first} | {counted} |\n", PAGE)

    def test_a_class_that_is_none(self):
        goods = ["cola", "beer", "wine"]
        rows = "".join("insert into tProPrjDirectProAct (BillNo, SerialNo, PluCode, DscType, DscPrice) "
                       f"values ('{name}', 1, '{name}', '2', 2);" for name in goods)
        for words in (["PT", "PT", "PT"], ["PT", "pt", "PT"], ["pt", "PT", "PT"], ["PT", "PT", "pt"]):
            rules = [Rule(name, "PTXS", word, f"2024-06-0{3 - place}")
                     for place, (name, word) in enumerate(zip(goods, words))]
            money = given(run(rules, rows, ("All", sale_xml(*((name, "1") for name in goods)))))
            told = ", ".join(f"{name} {money[name]:.2f}" for name in goods if money[name])
            self.assertIn(f"| {', '.join(words)} | {told} |\n", PAGE)


class Figures(unittest.TestCase):
    """What the text says in figures, beside its tables."""

    ROW = "insert into tProPrjDirectProAct (BillNo, SerialNo, PluCode, DscType, DscPrice{0}) values ('A', 1, {1});"
    WEEK = ROW.format("", "'COLA', 'PRC', 8")

    def both_classes(self, kind, limit, rows, *lines):
        """What the rule gives as "PT" and as "DZ"."""
        return [given(run([Rule("A", kind, primary, limit=limit)], rows, ("All", sale_xml(*lines))))["A"]
                for primary in ("PT", "DZ")]

    def test_a_limited_rule_of_class_dz(self):
        row_limit = self.ROW.format(", TradeMaxCount", "'COLA', 'PRC', 8, 2")
        self.assertEqual(self.both_classes("PTXS", None, row_limit, ("COLA", "5")), [4, 8])
        self.assertEqual(self.both_classes("PTXS", ("2", "2"), self.WEEK, ("COLA", "5")), [4, 4])
        bundle = """insert into tProPrjCombProAct (BillNo, SerialNo, PriceType, PriceTotal) values ('A', 1, 'TC', 15);
        insert into tProPrjCombPluSet (BillNo, SerialNo, PluCode, SaleCount)
        values ('A', 1, 'COLA', 1), ('A', 2, 'BEER', 1);"""
        self.assertEqual(self.both_classes("ZHGD", ("2", "1"), bundle, ("COLA", "3"), ("BEER", "3")), [5, 10])
        menu = """insert into tProPrjCombProAct (BillNo, SerialNo, ProActCode, IsRequired) values ('A', 1, 'S', 1);
        insert into tProPrjCombPluSet (BillNo, SerialNo, ProActCode, PluCode, SaleCount, DscPrice)
        values ('A', 1, 'S', 'COLA', 1, 8);"""
        self.assertEqual(self.both_classes("ZHZX", ("2", "1"), menu, ("COLA", "3")), [2, 4])

    def test_a_ceiling_shows_in_the_row_alone(self):
        result = run([Rule("A", "PTXS", "PT", limit=("1", "5"))], self.WEEK, ("All", COLAS))
        self.assertEqual((given(result)["A"], totals(result)), (5, ["32.00"]))

    def test_a_set_of_weighed_goods_turns_a_line_negative(self):
        ham = self.ROW.format(", SaleCount", "'HAM', 'PRC', 1, 1")
        result = run([Rule("A", "PTOS", "PT")], ham, ("All", sale_xml(("HAM", "0.6"), ("HAM", "0.6"))))
        self.assertEqual((given(result)["A"], totals(result)), (9, ["6.00", "-3.00"]))

    def test_the_ceiling_of_a_payment_holds_for_one_call(self):
        groups = """<ProCtr><Row SerialNo="1" WholeBillPay="0" PayType="CARD" PriceTotal="6"/></ProCtr>
        <PluAction><Row SerialNo="1" DisPrice="30" DisRate="28"/></PluAction>"""
        paid = sale_xml(groups='<PayMode><Row PayMode="CARD" PayCardNo="1" PayMoney="100"/></PayMode>')
        steps = [("All", sale_xml(("COLA", "10"))), ("Pay", paid), ("Pay",), ("Pay",)]
        for calls in (1, 2, 3):
            result = run([Rule("A", "MZZF", "DJ", groups=groups)], "", *steps[:calls + 1])
            self.assertEqual((given(result)["A"], totals(result)), (6 * calls, ["100.00"]))

    def coupons(self, area, condition="", into="0"):
        return f"""<ProList ConAreaType="{area}" RstAreaType="ALL" MaxDiscount="0" DscIntoPlu="{into}" CouponTypeCode="C">
        {condition}<PluAddAction><Row SerialNo="1" BaseConNum="20" BaseDscNum="5" AddConNum="0" AddDscNum="0" SaleMaxIn="0"/>
        </PluAddAction><CouponType CouponTypeCode="C"/></ProList>"""

    def presented(self, value):
        return sale_xml(groups=f'<Coupon><Row BillNo="1" CouponTypeCode="C" CouponValue="{value}"/></Coupon>')

    def test_coupons_over_chosen_goods_leave_the_total(self):
        cola = '<PluCondition><Row SerialNo="1" PluCode="COLA" PluType="PLU" Contain="IN"/></PluCondition>'
        sale = sale_xml(("COLA", "2"), ("BEER", "2"))
        for area, expected, prices in (("ALL", ["17.50", "17.50"], ["8.7500", "8.7500"]),
                                       ("DES", ["20.00", "20.00"], ["7.5000", "10.0000"])):
            rule = Rule("A", "MZYQ", "DJ", groups=self.coupons(area, cola, "1"))
            result = run([rule], "", ("All", sale), ("Coupon", self.presented("5.00")))
            self.assertEqual((given(result)["A"], totals(result)), (5, expected))
            self.assertEqual([line.get("FinalPrice") for line in reversed(result.find("Plu"))], prices)

    def run_giving(self, *steps):
        """With a rule that gives coupons. The host program loads it as the engine wants it."""
        return run([Rule("A", "MZZQ", "DJ", groups=self.coupons("ALL"))], "", ("All", COLAS), *steps)

    def test_a_rule_that_gives_coupons_may_take_some(self):
        self.assertEqual(given(self.run_giving(("Coupon", self.presented("7.00")))), {"A": 7})
        self.assertEqual(given(self.run_giving(("MzPromotion",), ("Coupon", self.presented("7.00")))), {})

    def test_coupons_given_stay_until_the_sale_is_deleted(self):
        less = ("All", sale_xml(("COLA", "2")))
        result = self.run_giving(("MzPromotion",), less, ("MzPromotion",))
        self.assertEqual([row.get("DisMoney") for row in result.find("ProResult")], ["10.00"])


if __name__ == "__main__":
    unittest.main()
