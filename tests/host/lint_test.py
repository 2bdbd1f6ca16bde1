"""What `qncorvane lint` finds: each finding in a store that has it and not in one that hasn't, and nothing in the sample store.

lint_test.py PROGRAM SOURCE
"""

import json
import os
import pathlib
import re
import subprocess
import sys
import tempfile
import unittest

from lint_cases import (
    CASES,
    CLEAN,
    DIRECT,
    FINE,
    LISTED,
    OFF_ROWS,
    PT_OFF,
    ROW,
    SCHEMA,
    SHOPS,
    TIMES,
    Case,
    Folder,
    direct,
    rule,
)
from store import make_store

PROGRAM = pathlib.Path(sys.argv.pop(1)).resolve()
SOURCE = pathlib.Path(sys.argv.pop(1)).resolve()


def lint(folder, *options):
    return subprocess.run(
        [PROGRAM, "lint", "--store", folder, *options], capture_output=True, text=True, check=False, timeout=120
    )


def findings(folder):
    return json.loads(lint(folder, "--json").stdout)["findings"]


def place(finding):
    return f"{finding['file']}:{finding['line']}" if finding["file"] else f"{finding['table']} {finding['key']}".strip()


class Findings(unittest.TestCase):
    maxDiff = None

    def test_each_planted_mistake_is_found_at_its_place_and_nothing_else(self):
        for number, case in enumerate(CASES):
            with self.subTest(case.code, number=number), case.store() as folder:
                if case.code == "unreadable-rule":
                    (folder / "rules" / "folder.xml").mkdir()
                found = findings(folder)
                self.assertEqual({one["code"] for one in found}, {case.code, *case.also}, found)
                self.assertIn((case.code, case.at), [(one["code"], place(one)) for one in found])
                for one in found:
                    self.assertTrue(one["what"] and one["mend"], one)

    def test_stores_that_are_in_order_have_no_finding(self):
        for kind, (text, rows) in CLEAN.items():
            with self.subTest(kind), Folder({"R.xml": text}, rows) as folder:
                self.assertEqual(findings(folder), [])

    def test_what_looks_like_a_mistake_and_is_none(self):
        for name, case in FINE.items():
            with self.subTest(name), case.store() as folder:
                self.assertEqual(findings(folder), [])

    def test_the_sample_store_is_clean(self):
        with tempfile.TemporaryDirectory() as folder:
            make_store(SOURCE / "samples", pathlib.Path(folder))
            run = lint(folder)
            self.assertEqual((run.returncode, run.stdout, run.stderr), (0, f"{folder}: nothing found\n", ""))

    def test_new_stores_are_clean(self):
        for kind in CLEAN:
            with self.subTest(kind), tempfile.TemporaryDirectory() as folder:
                subprocess.run([PROGRAM, "init", f"{folder}/shop", "--type", kind], check=True, capture_output=True)
                self.assertEqual(findings(f"{folder}/shop"), [])

    def test_misspelt_words_are_told_with_what_was_meant(self):
        meant = {
            ('ProType="PTXS"', 'ProType="PTSX"'): "did you mean PTXS?",
            ('Primary="PT"', 'Primary="TP"'): "did you mean PT?",
            ('Remark=""', 'Remark="NVCZ"'): "did you mean NVCZK?",
        }
        for change, hint in meant.items():
            with self.subTest(change), Case("", "PTXS", "", xml=change).store() as folder:
                self.assertIn(hint, [one["mend"] for one in findings(folder)][0])
        with Case("", "PTXS", "", sql=direct("DscType='PCR'")).store() as folder:
            self.assertEqual(findings(folder)[0]["mend"], "did you mean PRC? write PRC, RAT or 2")

    def test_a_rule_of_several_mistakes_has_a_finding_for_each(self):
        text = rule(primary="XX").replace("2024-06-01", "1.6.24").replace("2099-12-31", "never").replace(SHOPS, "")
        with Folder({"R.xml": text}, CLEAN["PTXS"][1]) as folder:
            self.assertEqual(
                sorted(one["code"] for one in findings(folder)), ["bad-date", "bad-date", "no-shop", "unknown-class"]
            )


def line(code, price, count, category, serial):
    return (
        f'<Row SerialNo="{serial}" PluCode="{code}" Price="{price}" PluCount="{count}" Total="{price * count}" PackCnt="1" '
        f'CAT="{category}" SaleDate="2024-06-12" SaleTime="17:05:00"/>'
    )


def cola(count):
    return line("COLA", 10, count, "DRINK", 1)


BEERS = line("BEER", 10, 2, "DRINK", 3)
BREAD = line("BREAD", 3, 1, "FOOD", 2)
CARD = '<PayMode><Row PayMode="CARD" PayCardNo="6212" PayMoney="60"/></PayMode>'
COUPON = '<Coupon><Row BillNo="C" CouponTypeCode="C5" CouponValue="5.00"/></Coupon>'
# Of each type the steps, and the lines on which its clean rule gives something.
SALES = {
    "PTXS": ("All", cola(6), ""),
    "PTPL": ("All", cola(6), ""),
    "PTOS": ("All", cola(6), ""),
    "ZHZY": ("All", cola(6), ""),
    "ZHGD": ("All", cola(6) + BREAD, ""),
    "ZHZX": ("All", cola(6) + BREAD, ""),
    "ZHTJ": ("All", cola(6) + BEERS, ""),
    "MZDP": ("All,MzPromotion", cola(6), ""),
    "MZZM": ("All,MzPromotion", cola(6) + BREAD, ""),
    "MZMJ": ("All,MzPromotion", cola(6), ""),
    "MZZP": ("All,MzPromotion", cola(6), ""),
    "MZHG": ("All,MzPromotion", cola(6), ""),
    "MZZQ": ("All,MzPromotion", cola(6), ""),
    "MZYQ": ("Coupon", cola(6), COUPON),
    "MZZF": ("All,Pay", cola(6), CARD),
}


def result(folder, kind, steps=None, sale=None, header='BillNo="S" OrgCode="01" IsCalc="0"'):
    """The JSON of a calculation; of a store that is refused None."""
    modes, lines, more = SALES[kind]
    text = sale or f"<Plu>{lines}</Plu>{more}"
    run = subprocess.run(
        [PROGRAM, "calc", "--store", folder, "--mode", steps or modes, "--json", *([] if "=-" in (steps or "") else ["-"])],
        capture_output=True,
        text=True,
        check=False,
        input=f"<Sale {header}>{text}</Sale>",
    )
    return json.loads(run.stdout) if run.returncode == 0 else None


def given(answer):
    """Discounts in cents by rule, and one for each offer."""
    if answer is None:
        return {}
    sums = {}
    for row in answer["sale"]["ProResult"]:
        if row["DisMoneyCents"]:
            sums[row["ProBillNo"]] = sums.get(row["ProBillNo"], 0) + row["DisMoneyCents"]
    for row in answer["sale"]["ProGifts"]:
        sums[row["ProBillNo"]] = sums.get(row["ProBillNo"], 0) + 1
    return sums


# Findings that say of a rule, or of the row that is changed, that nothing is given.
NOTHING = {
    "no-number",
    "unknown-type",
    "zero-limit",
    "no-shop",
    "no-time",
    "missing-date",
    "end-before-start",
    "missing-end-time",
    "over-midnight",
    "missing-frequency",
    "no-weekdays",
    "no-rows",
    "wrong-table",
    "no-goods-code",
    "unknown-goods-kind",
    "unknown-range",
    "only-not-rows",
    "articles-only",
    "brand-in-free-set",
    "unknown-price-kind",
    "unknown-set-price",
    "price-not-lower",
    "reduction-above-price",
    "no-gain",
    "sale-count",
    "minimum-above-limit",
    "set-above-limit",
    "empty-slot",
    "area-without-goods",
    "list-without-tier",
    "unknown-area",
    "unknown-unit",
    "padded-text",
    "no-pay-type",
    "empty-card-range",
}


class Truth(unittest.TestCase):
    """What findings say is what the engine does."""

    def test_clean_rules_give(self):
        for kind, (text, rows) in CLEAN.items():
            with self.subTest(kind), Folder({"R.xml": text}, rows) as folder:
                self.assertEqual(set(given(result(folder, kind))), {"R"})

    def test_where_nothing_is_said_to_be_given_nothing_is(self):
        tried = set()
        for number, case in enumerate(CASES):
            if case.code not in NOTHING or case.gives or case.more:
                continue
            tried.add(case.code)
            with self.subTest(case.code, number=number, kind=case.kind), case.store() as folder:
                self.assertEqual(given(result(folder, case.kind)), {})
        self.assertGreater(len(tried), 30)

    def test_what_is_said_to_be_given_is(self):
        header = 'MaxYhType="0" MaxYhValue="0"'
        tier = "update tProMzDiscountAct set AddMoney=0, AddDscMoney=0"
        once = "delete from tProMzDiscountAct where BaseMoney=100; delete from tpromzlist where ListCode='2';"
        for code, kind, change, sql, sum_ in (
            # Six colas at 10.00.
            ("decimal-comma", "PTXS", None, direct("DscPrice='7,99'"), 6000),
            ("free-price", "PTXS", None, direct("DscPrice=0"), 6000),
            ("rate-out-of-range", "PTXS", None, direct("DscType='RAT', DscRate=120"), 6000),
            ("no-minimum", "PTPL", None, direct("SaleCount=0"), 1200),
            ("fewer-than-minimum", "PTPL", None, direct("TradeMaxCount=4"), 800),
            ("not-counts-as-in", "PTOS", None, direct("InRange='NOT'"), 600),
            ("unknown-limit", "PTXS", (header, 'MaxYhType="3" MaxYhValue="1"'), "", 1200),
            ("idle-limit", "PTXS", (header, 'MaxYhType="0" MaxYhValue="1"'), "", 1200),
            ("repeats", "MZMJ", None, once + tier + ", BaseMoney=20", 1500),
            (None, "MZMJ", None, once + tier + ", BaseMoney=20, SaleMaxIn=20", 500),
            ("max-below-threshold", "MZMJ", None, once + "update tProMzDiscountAct set SaleMaxIn=40", 500),
            ("tier-above-limit", "MZMJ", None, once + "update tpromzlist set MaxDiscount=4", 400),
            ("no-condition", "ZHTJ", None, "delete from tProCombConditionAct", 1200),
            ("reduction-above-price", "ZHZY", None, "update tProPrjCombProAct set PriceType='2', PriceTotal=31", 6200),
            # 2024-06-12 is a Wednesday.
            ("idle-days", "PTXS", ('WeekDays=""', 'WeekDays="0"'), "", 1200),
            ("bad-weekday", "PTXS", (TIMES, TIMES.replace("DAY", "WEEK").replace('Days=""', 'Days="Wed"')), "", 0),
            ("unknown-frequency", "PTXS", (TIMES, TIMES.replace("DAY", "WEEKLY").replace('Days=""', 'Days="0"')), "", 1200),
            ("idle-end-time", "PTXS", ('EndTime=""', 'EndTime="12:00:00"'), "", 1200),
        ):
            with self.subTest(code, kind=kind), Case("", kind, "", xml=change or (), sql=sql).store() as folder:
                codes = [one["code"] for one in findings(folder)]
                self.assertTrue(code in codes if code else "repeats" not in codes, codes)
                self.assertEqual(given(result(folder, kind)).get("R", 0), sum_)

    def test_rules_of_one_date_go_by_the_order_of_loading(self):
        rows = DIRECT + "values ('A',1,'COLA','PLU','IN','PRC',8,0,0), ('B',1,'COLA','PLU','IN','PRC',7,0,0)"
        for first, second, taken in (("A", "B", {"A": 1200}), ("B", "A", {"B": 1800})):
            with Folder({"1.xml": rule(first), "2.xml": rule(second)}, rows) as folder:
                self.assertEqual([one["code"] for one in findings(folder)], ["same-date"])
                self.assertEqual(given(result(folder, "PTXS")), taken)

    def test_a_limit_of_rows_or_sets_holds_twice_under_dz(self):
        for kind, sql in (("PTXS", direct("TradeMaxCount=2")), ("PTPL", direct("TradeMaxCount=2, SaleCount=2"))):
            for primary, sum_ in (("PT", 400), ("DZ", 800)):
                change = ('Primary="PT"', f'Primary="{primary}"')
                with self.subTest(kind, primary=primary), Case("", kind, "", xml=change, sql=sql).store() as folder:
                    self.assertEqual(given(result(folder, kind)), {"R": sum_})
        limit = 'MaxYhType="2" MaxYhValue="1"'
        lines = f"<Plu>{cola(6)}{line('BREAD', 3, 6, 'FOOD', 2)}</Plu>"
        for kind, once, twice in (("ZHGD", 100, 200), ("ZHZX", 300, 600)):
            for primary, sum_ in (("PT", once), ("DZ", twice)):
                text = (
                    CLEAN[kind][0]
                    .replace('MaxYhType="0" MaxYhValue="0"', limit)
                    .replace('Primary="PT"', f'Primary="{primary}"')
                )
                with self.subTest(kind, primary=primary), Folder({"R.xml": text}, CLEAN[kind][1]) as folder:
                    self.assertEqual(given(result(folder, kind, sale=lines)), {"R": sum_})

    def test_no_other_limit_holds_twice_under_dz(self):
        limits = {
            "PTXS": 'MaxYhType="2" MaxYhValue="2"',
            "PTPL": 'MaxYhType="2" MaxYhValue="6"',
            "PTOS": 'MaxYhType="2" MaxYhValue="1"',
            "ZHZY": 'MaxYhType="2" MaxYhValue="3"',
            "ZHTJ": 'MaxYhType="2" MaxYhValue="2"',
        }
        for kind, limit in {**limits, **{kind + "1": 'MaxYhType="1" MaxYhValue="1"' for kind in limits}}.items():
            sums = []
            for primary in ("PT", "DZ"):
                text = (
                    CLEAN[kind[:4]][0]
                    .replace('MaxYhType="0" MaxYhValue="0"', limit)
                    .replace('Primary="PT"', f'Primary="{primary}"')
                )
                with Folder({"R.xml": text}, CLEAN[kind[:4]][1]) as folder:
                    self.assertEqual(findings(folder), [])
                    sums.append(given(result(folder, kind[:4], sale=f"<Plu>{cola(12)}{BEERS}</Plu>")))
            self.assertEqual(sums[0], sums[1], kind)
            self.assertTrue(sums[0], kind)

    def test_gifts_are_starved_exactly_where_it_is_said(self):
        chosen = LISTED.replace('"ALL"', '"DES"').replace(
            "      <PluAdd", '      <PluCondition><Row PluCode="COLA"/></PluCondition>\n      <PluAdd', 1
        )
        over_chosen = (rule(kind="MZZQ", mode="MZ", primary="DJ", groups=chosen), "")
        for kind, (clean, rows) in {
            **{kind: CLEAN[kind] for kind in ("MZZP", "MZHG", "MZDP", "MZZM", "MZZQ")},
            "MZZQ over chosen goods": over_chosen,
        }.items():
            for first, own in ((first, own) for first in ("DZ", "PT", "DJ") for own in ("DZ", "PT", "DJ")):
                text = re.sub(r'Primary="\w+"', f'Primary="{own}"', clean)
                off = re.sub(r'Primary="\w+"', f'Primary="{first}"', PT_OFF)
                with self.subTest(kind, off=first, own=own), Folder(
                    {"A.xml": off, "R.xml": text}, rows + ";" + OFF_ROWS
                ) as folder:
                    said = "starved-gift" in [one["code"] for one in findings(folder)]
                    sums = given(result(folder, kind[:4], sale=f"<Plu>{cola(12)}{BREAD}</Plu>"))
                    self.assertEqual("R" not in sums, said, sums)

    def test_full_amount_rules_are_barred_exactly_where_it_is_said(self):
        for first, own in ((first, own) for first in ("DZ", "PT", "DJ") for own in ("DZ", "PT", "DJ")):
            giver = rule("A", "MZZQ", "MZ", first, "2024-07-01", LISTED)
            text = re.sub(r'Primary="\w+"', f'Primary="{own}"', CLEAN["MZDP"][0])
            with self.subTest(first, own=own), Folder({"A.xml": giver, "R.xml": text}, CLEAN["MZDP"][1]) as folder:
                said = "barred-by-coupons" in [one["code"] for one in findings(folder)]
                self.assertEqual("R" not in given(result(folder, "MZDP")), said)

    def test_a_rule_that_gives_coupons_takes_them_where_it_is_said(self):
        sale = f"<Plu>{cola(6)}</Plu>"
        plain = result_of_coupon(CLEAN["MZZQ"][0], sale)
        self.assertEqual(plain, [("R", 1500)])  # what it gave, and nothing taken
        marked = CLEAN["MZZQ"][0].replace('Remark=""', 'Remark="DVCZK"')
        self.assertEqual(result_of_coupon(marked, sale), [("R", 500)])  # nothing given, and 5.00 taken
        waiting = CLEAN["MZZQ"][0].replace("    <ProTime>", '    <PayMode><Row PayMode="CARD"/></PayMode><ProTime>')
        self.assertEqual(result_of_coupon(waiting, sale), [("R", 500)])


def result_of_coupon(text, sale):
    """The rows for the whole sale behind subtotal, payment and coupons."""
    with Folder({"R.xml": text}, "") as folder:
        coupon = folder / "coupon.xml"
        coupon.write_text(f'<Sale BillNo="S" OrgCode="01" IsCalc="0">{CARD}{COUPON}</Sale>', "utf-8")
        answer = result(folder, "MZZQ", f"All=-,MzPromotion,Coupon={coupon}", sale)
        return [(row["ProBillNo"], row["DisMoneyCents"]) for row in answer["sale"]["ProResult"] if row["PluCode"] == "*"]


class Codes(unittest.TestCase):
    def setUp(self):
        header = (SOURCE / "host" / "lint" / "Codes.h").read_text("utf-8")
        self.codes = {name: weight.lower() for name, weight in re.findall(r'\{"([a-z-]+)", Severity::k(\w+)\}', header)}
        self.assertGreater(len(self.codes), 80)

    def test_each_has_a_store_that_shows_it(self):
        self.assertEqual({case.code for case in CASES}, set(self.codes))

    def test_the_page_tells_exactly_those_that_exist(self):
        page = (SOURCE / "docs" / "lint.md").read_text("utf-8")
        rows = re.findall(r"(?m)^\| `([a-z-]+)` \| (\w+) \|", page)
        self.assertEqual(len(rows), len(set(rows)))
        self.assertEqual(dict(rows), self.codes)

    def test_each_is_used(self):
        sources = "".join(path.read_text("utf-8") for path in (SOURCE / "host" / "lint").glob("*.cpp"))
        header = (SOURCE / "host" / "lint" / "Codes.h").read_text("utf-8")
        for constant in re.findall(r"constexpr Code (k\w+)", header):
            self.assertIn(f"Codes::{constant}", sources)


class Program(unittest.TestCase):
    def test_a_finding_is_a_line_and_its_mend_another(self):
        with Case("", "PTXS", "", xml=(SHOPS, ""), sql=direct("DscType='PCR'")).store() as folder:
            shop = "rules/R.xml:2: error: the rule has no row in OrgFilter: it applies in no shop [no-shop]\n"
            kind = f"{ROW}: error: DscType 'PCR' is no kind of price: the row gives nothing [unknown-price-kind]\n"
            run = lint(folder)
            self.assertEqual((run.returncode, run.stderr), (1, ""))
            self.assertEqual(run.stdout, f"{shop}{kind}{folder}: 2 errors, 0 warnings\n")
            self.assertEqual(
                lint(folder, "--fix-hints").stdout,
                f"{shop}    name the shops, or OrgCode * for all\n{kind}    did you mean PRC? write PRC, RAT or 2\n"
                f"{folder}: 2 errors, 0 warnings\n",
            )

    def test_the_report_is_the_librarys(self):
        with Case("", "PTXS", "", sql=direct("DscPrice=10")).store() as folder:
            report = json.loads(lint(folder, "--json").stdout)
            self.assertEqual(
                report,
                {
                    "folder": str(folder),
                    "errors": 1,
                    "warnings": 0,
                    "findings": [
                        {
                            "severity": "error",
                            "code": "price-not-lower",
                            "file": "",
                            "line": 0,
                            "table": "tProPrjDirectProAct",
                            "key": "BillNo=R SerialNo=1",
                            "billNo": "R",
                            "what": "DscPrice 10.00 is not below the goods' price of 10.00: nothing is given",
                            "mend": "write a lower price, or mend that of goods.xml",
                        }
                    ],
                },
            )

    def test_the_page_shows_what_is_printed(self):
        page = (SOURCE / "docs" / "lint.md").read_text("utf-8")
        shown = re.search(r"```\n\$ qncorvane lint --store shop --fix-hints\n(.*?)```", page, re.DOTALL)[1]
        rules = {"R01.xml": rule("R01"), "R03.xml": rule("R03", date="2024-06-02").replace(SHOPS, "")}
        rows = DIRECT + (
            "values ('R01',1,'COLA','PLU','IN','PRC',8,0,0), ('R01',2,'BEER','PLU','IN','PCR',8,0,0),"
            "('R03',1,'BREAD','PLU','IN','PRC',2,0,0)"
        )
        with Folder(rules, rows) as folder:
            printed = lint(folder, "--fix-hints").stdout.replace(str(folder), "/srv/shop").splitlines()
        self.assertEqual(sorted(printed), sorted(shown.splitlines()))

    def test_warnings_alone_are_no_failure(self):
        with Case("", "PTXS", "", sql=direct("PluCode='COLE'")).store() as folder:
            run = lint(folder)
            self.assertEqual((run.returncode, run.stdout.splitlines()[-1]), (0, f"{folder}: 0 errors, 1 warning"))

    def test_a_command_line_that_makes_no_sense(self):
        for arguments in (["lint"], ["lint", "--store", "x", "more"], ["lint", "--store", "x", "--json", "--fix-hints"]):
            self.assertEqual(subprocess.run([PROGRAM, *arguments], capture_output=True, check=False).returncode, 2)
        self.assertEqual(lint("").returncode, 1)

    def test_nothing_is_changed(self):
        with Case("", "PTXS", "").store() as folder:
            before = {path: path.read_bytes() for path in folder.rglob("*") if path.is_file()}
            lint(folder)
            self.assertEqual({path: path.read_bytes() for path in folder.rglob("*") if path.is_file()}, before)


class Hostile(unittest.TestCase):
    """Whatever lies in the folder, the answer is a report."""

    def codes(self, folder, codes=(0, 1)):
        run = lint(folder, "--json")
        self.assertIn(run.returncode, codes, run.stderr)
        return [one["code"] for one in json.loads(run.stdout)["findings"]]

    def test_folders_that_are_none(self):
        self.assertEqual(self.codes("/no/such/folder"), ["store"])
        with tempfile.TemporaryDirectory() as folder:
            self.assertIn("store", self.codes(folder))

    def test_texts_that_are_no_rules(self):
        texts = [
            "",
            "<",
            "<Rules/>",
            "<Rules><Rule/></Rules>",
            "<Rules><Rule BillNo='R' ProType='PTXS'><ProTime/></Rule></Rules>",
            "\x00\x01",
            "<a>" * 300,
            "<Rules><Rule " + " ".join(f"a{i}='1'" for i in range(2000)) + "/></Rules>",
            "<!DOCTYPE a [<!ENTITY b 'c'>]><Rules>&b;</Rules>",
            "<Rules>text<Rule BillNo='R'\n\n ProType\n=\n'PTXS' x=\"a'b=c d='\"/></Rules>",
        ]
        for text in texts:
            with self.subTest(text[:40]), Folder({"R.xml": text}, "") as folder:
                self.assertTrue(self.codes(folder, [1]))

    def test_great_texts(self):
        row = '<Row StartDate="2024-01-01" EndDate="2099-12-31" StartTime="" EndTime="" Frequency="DAY"/>\n'
        tier = '<Row SerialNo="1" BaseConNum="20" BaseDscNum="5" AddConNum="20" AddDscNum="5" SaleMaxIn="0"/>\n'
        for text in (
            rule(number="R" * 10_000_000),
            rule().replace("    <ProTime>\n", "    <ProTime>\n" + row * 100_000),
            rule(
                kind="MZZQ",
                mode="MZ",
                primary="DJ",
                groups=LISTED.replace("      <PluAddAction>\n", "<PluAddAction>" + tier * 50_000),
            ),
            rule(kind="P" * 1_000_000),
        ):
            with Folder({"R.xml": text}, CLEAN["PTXS"][1]) as folder:
                self.codes(folder)

    def test_many_rules_of_one_date_and_many_rows(self):
        rules = {f"R{number:04}.xml": rule(f"R{number}") for number in range(500)}
        rows = "".join(DIRECT + f"values ('R{number}',1,'COLA','PLU','IN','PRC',8,0,0);" for number in range(500))
        many = (
            "with recursive n(i) as (select 1 union all select i+1 from n where i<50000) "
            + DIRECT
            + "select 'R0',i+10,'COLA','PLU','IN','PCR',8,0,0 from n"
        )
        with Folder(rules, "begin;" + rows + many + ";commit") as folder:
            codes = self.codes(folder)
            self.assertEqual((codes.count("same-date"), codes.count("unknown-price-kind")), (499, 50000))

    def test_databases_that_are_none(self):
        with Case("", "PTXS", "").store() as folder:
            (folder / "store.db").write_bytes(os.urandom(100_000))
            self.assertIn("store", self.codes(folder))
            (folder / "store.db").write_bytes(b"SQLite format 3\x00" + os.urandom(100_000))
            self.assertTrue(self.codes(folder, [1]))
            (folder / "store.db").unlink()
            self.assertIn("store", self.codes(folder))

    def test_tables_that_are_others(self):
        with Folder(
            {"R.xml": CLEAN["PTXS"][0]}, "".join(f"drop table {table};" for table in re.findall(r"CREATE TABLE (\w+)", SCHEMA))
        ) as folder:
            self.assertEqual(self.codes(folder), ["missing-table"] * 10)
        view = "alter table tProPrjDirectProAct rename to d; create view tProPrjDirectProAct as select * from d;"
        with Folder({"R.xml": CLEAN["PTXS"][0]}, CLEAN["PTXS"][1] + ";" + view) as folder:
            self.assertEqual(self.codes(folder), [])
        blob = direct("PluCode=x'00ff00', DscType=x'ff', DscPrice=x'00', PluType=1e308, SaleCount=9e999")
        with Case("", "PTXS", "", sql=blob).store() as folder:
            self.assertIn("unknown-price-kind", self.codes(folder, [1]))

    def test_numbers_with_marks_stay_values(self):
        with Folder({"R.xml": rule(number="R' or ''='")}, CLEAN["PTXS"][1]) as folder:
            self.assertEqual(sorted(self.codes(folder)), ["no-rows", "rows-without-rule"])

    @unittest.skipIf(os.geteuid() == 0, "root reads everything")
    def test_folders_without_rights(self):
        with Case("", "PTXS", "").store() as folder:
            (folder / "rules").chmod(0)
            self.assertTrue(self.codes(folder))
            (folder / "rules").chmod(0o700)
            (folder / "store.db").chmod(0)
            self.assertIn("store", self.codes(folder))

    def test_goods_lists_that_are_none(self):
        for text in ("", "<", "\x00", "<Goods>" + '<Row PluCode="X"/>' * 100_000):
            with self.subTest(text[:10]), Folder({"R.xml": CLEAN["PTXS"][0]}, CLEAN["PTXS"][1], text) as folder:
                self.assertIn("bad-goods-list", self.codes(folder))


if __name__ == "__main__":
    unittest.main()
