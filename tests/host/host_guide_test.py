"""The figures of docs/host-guide.md: what calls give a second time, gift choices, voided and returned lines.

host_guide_test.py PROGRAM SOURCES
"""

import pathlib
import re
import sys
import unittest

from shop import Rule, Shop, given, sale_xml, totals

PROGRAM = pathlib.Path(sys.argv.pop(1)).resolve()
SOURCES = pathlib.Path(sys.argv.pop(1)).resolve()
PAGE = (SOURCES / "docs" / "host-guide.md").read_text("utf-8")
SHOP = Shop(PROGRAM, SOURCES / "samples")

DIRECT = "insert into tProPrjDirectProAct (BillNo, SerialNo, PluCode, DscType, DscPrice, DscRate) values {};"
REDUCTION = """insert into tpromzlist (BillNo, ListCode) values ('A', '1');
insert into tProMzDiscountAct (BillNo, ListCode, BaseMoney, BaseDscMoney) values ('A', '1', {0}, {1});"""
OFFERS = """insert into tProMzScheme (BillNo, SerialNo, PluCode, BaseConNum, BaseDscType, BaseDscNum, SaleMaxIn, DscPrice)
values ('BAG', 1, 'BAG', 60, 'NUM', 1, {most}, 0), ('MUG', 1, 'MUG', 30, 'NUM', 1, 1, 2);"""


def offer_xml(bill, threshold, most, price, picked):
    return (f'<ProGift ProBillNo="{bill}" Total="70.00"><Data SerialNo="1" PluCode="{bill}" BaseConTp="SUM" '
            f'BaseConNum="{threshold}" BaseDscNum="1" SaleMaxIn="{most}" DscPrice="{price}" HgPluCount="{picked}"/></ProGift>')


class CalledAgain(unittest.TestCase):
    def test_a_subtotal_without_lines(self):
        rows = DIRECT.format("('W', 1, 'wine', '2', 1, 0), ('B', 1, 'beer', 'RAT', 0, 20), ('C', 1, 'cola', 'PRC', 8, 0)")
        rules = [Rule(bill, "PTXS", "PT") for bill in "WBC"]
        sale = sale_xml(("wine", "1"), ("beer", "1"), ("cola", "3"))
        for again, name in enumerate(["with the lines", "without", "without, again"]):
            result = SHOP.run(rules, rows, ("All", sale), *[("All",)] * again)
            self.assertIn(f"| {name} | {' | '.join(totals(result))} |\n", PAGE)

    def after_each_call(self, kind, primary, rows):
        """What has come off after one, two and three calls, and how many offers there are."""
        rules = [Rule("A", kind, primary), Rule("MUG", "MZHG", "DJ")]
        sale = ("All", sale_xml(("COLA", "4"), ("BEER", "2")))
        for calls in (1, 2, 3):
            result = SHOP.run(rules, rows + OFFERS.format(most=1), sale, *[("MzPromotion",)] * calls)
            self.assertEqual(len(result.find("ProGifts")), calls)
            yield f"{given(result)['A']:.2f}"

    def test_full_amount_promotions_that_give_again(self):
        beer = """insert into tProMzScheme (BillNo, SerialNo, PluCode, BaseConNum, BaseDscType, BaseDscNum, SaleMaxIn)
        values ('A', 1, 'BEER', 30, 'NUM', 1, 1);"""
        for kind, primary, rows in (("MZMJ", "DJ", REDUCTION.format(30, 5)), ("MZZM", "PT", beer)):
            self.assertIn(f"| {kind} | {' | '.join(self.after_each_call(kind, primary, rows))} |\n", PAGE)

    def test_full_amount_promotions_that_give_once(self):
        chosen = REDUCTION.format(30, 5) + """update tpromzlist set ConAreaType = 'DES';
        insert into tProMzConPluSet (BillNo, ListCode, SerialNo, PluCode) values ('A', '1', 1, 'COLA');"""
        three_and_one = """insert into tProMzPluAct (BillNo, SerialNo, PluCode, BaseConNum, BaseDscNum)
        values ('A', 1, 'COLA', 3, 1);"""
        for kind, primary, rows in (("MZMJ", "PT", REDUCTION.format(30, 5)), ("MZMJ", "DJ", chosen),
                                    ("MZDP", "PT", three_and_one), ("MZDP", "DJ", three_and_one)):
            with self.subTest(kind=kind, primary=primary, rows=rows):
                money = list(self.after_each_call(kind, primary, rows))
                self.assertNotEqual(money[0], "0.00")
                self.assertEqual(money, [money[0]] * 3)


class GiftChoice(unittest.TestCase):
    def choose(self, first, bags, mugs, most=1):
        """What the choice answers, where the rule `first` comes first; a code, or what is used and left."""
        rules = [Rule(bill, kind, "DJ", "2024-06-02" if bill == first else "2024-06-01")
                 for bill, kind in (("BAG", "MZZP"), ("MUG", "MZHG"))]
        offers = offer_xml("BAG", 60, most, 0, bags) + offer_xml("MUG", 30, 1, 2, mugs)
        steps = [("All", sale_xml(("COLA", "7"))), ("MzPromotion",),
                 ("Gift", sale_xml(groups=f"<ProGifts>{offers}</ProGifts>"))]
        answer = SHOP.answer(rules, OFFERS.format(most=most), *steps)
        if answer.returncode != 0:
            return {"total": "-2", "number": "-3"}[re.search(r"step Gift: (\w+) overflow", answer.stderr.decode())[1]]
        money = {(offer.get("UsedTotal"), offer.get("LeftTotal"))
                 for offer in SHOP.run(rules, OFFERS.format(most=most), *steps).find("ProGifts")}
        self.assertEqual(len(money), 1, "what is left is the same in all offers")
        return money.pop()

    def test_a_free_article_is_not_refused_for_money(self):
        for first in ("BAG", "MUG"):
            self.assertEqual(self.choose(first, bags=1, mugs=1), ("90.00", "-20.00"))

    def test_a_priced_offer_that_nobody_picked(self):
        self.assertEqual(self.choose("BAG", bags=2, mugs=0, most=0), "-2")
        self.assertEqual(self.choose("MUG", bags=2, mugs=0, most=0), ("120.00", "-50.00"))

    def test_too_many(self):
        self.assertEqual(self.choose("BAG", bags=2, mugs=0), "-3")


class Lines(unittest.TestCase):
    COLA = DIRECT.format("('A', 1, 'COLA', 'PRC', 8, 0)")

    def test_a_voided_line_stays_as_one_of_nothing(self):
        sale = sale_xml(("COLA", "3"), ("COLA", "2"))
        voided = sale_xml(("COLA", "3"), ("COLA", "0"))
        result = SHOP.run([Rule("A", "PTXS", "PT")], self.COLA, ("All", sale), ("All", voided))
        self.assertEqual((totals(result), given(result)), (["24.00", "0.00"], {"A": 6}))

    def test_a_returned_line_keeps_its_price(self):
        result = SHOP.run([Rule("A", "PTXS", "PT")], self.COLA, ("All", sale_xml(("COLA", "3"), ("COLA", "-1"))))
        self.assertEqual((totals(result), given(result)), (["24.00", "-10.00"], {"A": 6}))

    def test_a_reduction_does_not_count_a_negative_line(self):
        for lines in ([("COLA", "6"), ("BEER", "-1")], [("COLA", "6")]):
            result = SHOP.run([Rule("A", "MZMJ", "PT")], REDUCTION.format(30, 5), ("All", sale_xml(*lines)),
                              ("MzPromotion",))
            self.assertAlmostEqual(given(result)["A"], 10)
            if len(lines) == 2:
                self.assertEqual([row.get("DisMoney") for row in result.find("ProResult")], ["-1.99", "11.99"])

    def test_a_decimal_comma(self):
        sale = sale_xml(("COLA", "1")).replace("10.00", "10,50")
        self.assertEqual(totals(SHOP.run([], "", ("All", sale), lenient=True)), ["10.00"])
        comma = "pragma ignore_check_constraints=on;" + DIRECT.format("('A', 1, 'COLA', 'PRC', '7,99', 0)")
        self.assertEqual(given(SHOP.run([Rule("A", "PTXS", "PT")], comma, ("All", sale_xml(("COLA", "1"))))), {"A": 10})


if __name__ == "__main__":
    unittest.main()
