"""The properties' own tests: each finds an engine that breaks it, and what it is broken by comes out small.

properties_test.py LIBRARY ALTERED SCHEMA: the library, the module that alters it, the store's tables.
"""

import collections
import copy
import os
import re
import subprocess
import sys
import unittest

import properties
import results
from checks import PROPERTIES
from comparer import line_of
from generator import MODES
from hosts import make_host_till
from properties import Engines, breaks, check, reduced

LIBRARY, ALTERED, SCHEMA = (os.path.abspath(path) for path in sys.argv[1:4])
BY_NAME = {prop.__name__: prop for prop in PROPERTIES}
TILLS = 80


class Tampered:
    """Engines whose answers are altered on their way: `change` gets a till, its answers, and where they come from."""

    def __init__(self, engines, change):
        self.engines, self.change = engines, change

    def play(self, till):
        return self.altered(till, self.engines.play(till), "here")

    def play_elsewhere(self, till):
        return self.altered(till, self.engines.play_elsewhere(till), "elsewhere")

    def altered(self, till, answers, where):
        answers = copy.deepcopy(answers)
        self.change(till, answers, where)
        return answers


def calculations(till, answers, mode=None):
    """The calls and answers of the calculations in one mode, or in all."""
    for call, answer in zip(till["calls"], answers):
        if results.mode_of(call) is not None and mode in (None, results.mode_of(call)) and answer[0] == 0:
            yield call, answer


def another_digit(match):
    """The same number with another last digit."""
    digit = match.group(0)[-2]
    return match.group(0)[:-2] + ("8" if digit == "9" else str(int(digit) + 1)) + '"'


def alter(answer, attribute, change=another_digit, element=""):
    """Changes an attribute where a result has it first."""
    answer[2] = re.sub(rf'{element}\b{attribute}="[^"]*"', change, answer[2], count=1)


class PropertiesFind(unittest.TestCase):
    """One engine that breaks a property, or one for each rule of it."""

    @classmethod
    def setUpClass(cls):
        cls.engines = Engines(LIBRARY, SCHEMA)

    @classmethod
    def tearDownClass(cls):
        cls.engines.close()

    def finds(self, name, change, what):
        prop = BY_NAME[name]
        tills = [make_host_till(seed, prop.focus if seed % 2 else ()) for seed in range(TILLS)]
        found, _ = check(prop, tills, Tampered(self.engines, change))
        self.assertIsNotNone(found, f"{name} finds nothing")
        self.assertIn(what, found[1].what)
        return found

    def test_a_number_that_is_none(self):
        def change(till, answers, _):
            for _, answer in calculations(till, answers):
                alter(answer, "FinalPrice", 'FinalPrice="nan"')
        self.finds("numbers_are_finite_and_in_form", change, "not in form")

    def test_a_number_of_another_form(self):
        def change(till, answers, _):
            for _, answer in calculations(till, answers, "MzPromotion"):
                alter(answer, "AppMoney", lambda match: match.group(0)[:-1] + '0"')
        self.finds("numbers_are_finite_and_in_form", change, "not in form")

    def test_an_attribute_that_is_missing(self):
        def change(till, answers, _):
            for _, answer in calculations(till, answers, "Single"):
                alter(answer, "PackCnt", "")
        self.finds("numbers_are_finite_and_in_form", change, "not in form")

    def test_a_result_that_is_no_xml(self):
        def change(till, answers, _):
            for _, answer in calculations(till, answers, "Pay"):
                answer[2] = answer[2].replace("</Sale>", "")
        self.finds("a_result_is_xml_and_utf8", change, "no XML")

    def test_a_result_that_is_not_utf8(self):
        def change(till, answers, _):
            for _, answer in calculations(till, answers, "Coupon"):
                answer[2] = answer[2].replace("B-till", "B\udce4till")
        self.finds("a_result_is_xml_and_utf8", change, "not UTF-8")

    def test_a_digit_that_changes_from_process_to_process(self):
        def change(till, answers, where):
            for _, answer in calculations(till, answers, "All"):
                if where == "elsewhere":
                    alter(answer, "DisNum")
        self.finds("a_fresh_engine_gives_the_same_bytes", change, "answers otherwise")

    def test_a_log_that_changes_from_process_to_process(self):
        def change(_, answers, where):
            answers[-1][3] += ["7f3a52c0"] if where == "elsewhere" else []
        self.finds("a_fresh_engine_gives_the_same_bytes", change, "answers otherwise")

    def test_a_second_subtotal_that_finds_the_first(self):
        def change(till, answers, _):
            for (before, (call, answer)) in zip(till["calls"], list(zip(till["calls"], answers))[1:]):
                if call == before and results.mode_of(call) == "All":
                    alter(answer, "Total")
        self.finds("a_subtotal_twice_gives_the_same_bytes", change, "All twice")

    def test_a_subtotal_without_lines_that_begins_anew(self):
        def change(till, answers, _):
            sent = {}
            for call, answer in calculations(till, answers, "All"):
                if "<Plu>" in call[3]:
                    sent[call[1]] = answer[2]
                elif call[1] in sent:
                    answer[2] = sent[call[1]]
        self.finds("a_subtotal_twice_gives_the_same_bytes", change, "what is left")

    def test_a_rule_that_acts_though_it_cant(self):
        for mode in ("All", "MzPromotion"):
            def change(till, answers, _, its_mode=mode):
                idle = any(call[0] == "InitPromotion" and 'BillNo="IDLE"' in call[2] for call in till["calls"])
                for _, answer in calculations(till, answers, its_mode):
                    if idle:
                        alter(answer, "DisMoney")
            self.finds("an_idle_rule_changes_nothing", change, "can't apply")

    def test_coupons_that_mind_the_day(self):
        def change(till, answers, _):
            for load in till["calls"]:
                if load[0] == "InitPromotion" and 'BillNo="IDLE"' in load[2] and "2026-11-20" in load[2]:
                    for _, answer in calculations(till, answers, "Coupon"):
                        answer[2] = "other"
        prop = BY_NAME["an_idle_rule_changes_nothing"]
        found, _ = check(prop, (make_host_till(seed) for seed in range(400)), Tampered(self.engines, change))
        self.assertIsNotNone(found)

    def test_an_order_of_loading_that_matters(self):
        def change(till, answers, _):
            loads = [call[2] for call in till["calls"] if call[0] == "InitPromotion"]
            for _, answer in calculations(till, answers):
                if loads != sorted(loads):
                    alter(answer, "DisMoney")
        self.finds("loading_order_does_not_matter", change, "order of loading")

    def test_a_sale_that_another_key_touches(self):
        def change(till, answers, _):
            keys = {results.key_of(call) for call in till["calls"]} - {None}
            for _, answer in calculations(till, answers, "MzPromotion"):
                if len(keys) > 1:
                    alter(answer, "Total")
        self.finds("a_sale_is_not_touched_by_other_keys", change, "touched by other keys")

    def test_a_single_that_sees_more_than_subtotals(self):
        def change(till, answers, _):
            seen = {results.key_of(call) for call in till["calls"] if results.mode_of(call) == "MzPromotion"}
            for call, answer in calculations(till, answers, "Single"):
                if seen - {call[1]}:
                    alter(answer, "Total")
        self.finds("a_sale_is_not_touched_by_other_keys", change, "more than other sales' subtotals")

    def test_a_sale_that_is_not_forgotten(self):
        def change(till, answers, _):
            gone = set()
            for call, answer in zip(till["calls"], answers):
                if call[0] == "DeleteSaleSetByKey":
                    gone.add(call[1])
                elif results.mode_of(call) == "MzPromotion" and call[1] in gone:
                    alter(answer, "Total")
        self.finds("deleting_and_sending_again_equals_a_fresh_sale", change, "not gone")

    def test_a_cent_that_got_lost(self):
        for mode in ("All", "Single", "MzPromotion"):
            def change(till, answers, _, its_mode=mode):
                for _, answer in calculations(till, answers, its_mode):
                    row = re.search(r'DisMoney="[^"]*".*?RowID="(\d+)"', answer[2])
                    if row:
                        alter(answer, "Total", element=rf'<Data SerialNo="{row.group(1)}"[^>]*')
            self.finds("discounts_equal_what_left_the_lines", change, "what left the line")

    def test_a_limit_that_is_not_kept(self):
        def change(till, answers, _):
            limited = {number for number, header in results.rules_of(till).items() if header["MaxYhType"] == "1"}
            for _, answer in calculations(till, answers, "All"):
                for number in limited:
                    answer[2] = re.sub(rf'DisMoney="[1-9][^"]*"( ProBillNo="{number}")', r'DisMoney="99999.00"\1',
                                       answer[2])
        self.finds("discounts_equal_what_left_the_lines", change, "more than its limit")

    def test_a_share_that_is_a_cent_short(self):
        def change(till, answers, _):
            for _, answer in calculations(till, answers, "MzPromotion"):
                alter(answer, "AppMoney")
        self.finds("shares_sum_to_what_is_spread", change, "shares do not sum")

    def test_a_payment_that_is_not_spread_whole(self):
        def change(till, answers, _):
            for _, answer in calculations(till, answers, "Pay"):
                answer[2] = re.sub(r'DisMoney="[^"]*"(?= ProBillNo="MZZF)', another_digit, answer[2], count=1)
        self.finds("shares_sum_to_what_is_spread", change, "shares do not sum")

    def test_a_tail_that_is_nobodys(self):
        """Row, share and amount agree, and all three lack what rounding left."""
        def change(till, answers, _):
            for call, answer in calculations(till, answers, "MzPromotion"):
                row = re.search(r'<Data [^>]*DisMoney="[^"-]*" ProBillNo="MZMJ[^>]*RowID="(\d+)"', answer[2])
                if call[1] == "one" and row:
                    line = rf'<Data SerialNo="{row.group(1)}"[^>]*'
                    for attribute, of_line in (("Total", True), ("DisMoney", False), ("AppMoney", False)):
                        answer[2] = re.sub(line + r'\bTotal="[^"]*"' if of_line else
                                           rf'{attribute}="[^"]*"(?= ProBillNo="MZMJ[^>]*RowID="{row.group(1)}")',
                                           lambda match, sign=-1 if of_line else 1: moved(match.group(0), sign),
                                           answer[2], count=1)
        self.finds("shares_sum_to_what_is_spread", change, "the sum that the rows give")

    def test_every_property_is_a_test_of_the_suite(self):
        listed = (properties.pathlib.Path(__file__).with_name("CMakeLists.txt")).read_text("ascii")
        self.assertEqual(re.findall(r"^  ([a-z_0-9]+)\)?$", listed, re.MULTILINE), list(BY_NAME))

    def test_every_property_is_tested_here(self):
        tested = set(re.findall(r'"([a-z_0-9]+)"', (properties.pathlib.Path(__file__)).read_text("utf-8")))
        self.assertEqual(set(BY_NAME) - tested, set())


def moved(text, cents):
    """A text that ends with an attribute, whose amount is moved by cents."""
    head, amount = re.fullmatch(r'(.*")([^"]*)"', text, re.DOTALL).groups()
    return f'{head}{results.Decimal(amount) + results.CENT * cents}"'


class Reducing(unittest.TestCase):
    def test_a_broken_property_comes_out_small(self):
        engines = Engines(LIBRARY, SCHEMA)

        def change(till, answers, _):
            for _, answer in calculations(till, answers, "All"):
                alter(answer, "DisMoney")

        tampered, prop = Tampered(engines, change), BY_NAME["discounts_equal_what_left_the_lines"]
        found, _ = check(prop, (make_host_till(seed) for seed in range(TILLS)), tampered)
        till, broken = found
        smallest = reduced(prop, till, tampered, broken.what)
        self.assertEqual(breaks(prop, smallest, tampered).what, broken.what)
        self.assertLess(len(line_of(smallest)), len(line_of(till)))
        self.assertLessEqual(len(smallest["calls"]), 3)
        engines.close()


class AlteredLibrary(unittest.TestCase):
    """The command on a library that is not right."""

    def run_altered(self, word, *options):
        done = subprocess.run([sys.executable, "-B", properties.__file__, ALTERED, SCHEMA, *options], check=False,
                              capture_output=True, text=True,
                              env={**os.environ, "QNCORVANE_REAL": LIBRARY, "QNCORVANE_ALTER": word})
        return done.returncode, done.stdout + done.stderr

    def test_another_digit_is_found_and_shown(self):
        code, output = self.run_altered("digit", "--count", "40", "--only", "discounts_equal_what_left_the_lines")
        self.assertEqual(code, 1, output)
        self.assertIn("discounts are not what left the line", output)
        self.assertIn("as a file for --till:", output)

    def test_a_crash_is_found(self):
        code, output = self.run_altered("crash", "--count", "40", "--only", "numbers_are_finite_and_in_form")
        self.assertEqual(code, 1, output)
        self.assertIn("crashed: SIGSEGV", output)

    def test_without_an_alteration_nothing_is_found(self):
        code, output = self.run_altered("nothing", "--count", "20")
        self.assertEqual(code, 0, output)

    def test_what_never_occurs_is_no_success(self):
        options = collections.namedtuple("Options", "till count seed")(None, properties.ENOUGH, 1)

        def prop(_till, _engines, _tally):
            """Nothing."""

        prop.needs, prop.careless, prop.focus = ("a blue moon",), False, ()
        self.assertFalse(properties.run(prop, options, None))


class HostTills(unittest.TestCase):
    """What the tills of careful hosts are like."""

    def test_same_seed_same_bytes(self):
        for seed in (1, 77, 123456789):
            self.assertEqual(line_of(make_host_till(seed)), line_of(make_host_till(seed)))

    def test_every_type_and_mode_occurs(self):
        tills = [make_host_till(seed) for seed in range(200)]
        kinds = {header["ProType"] for till in tills for header in results.rules_of(till).values()}
        self.assertEqual(len(kinds), 15)
        self.assertEqual({results.mode_of(call) for till in tills for call in till["calls"]} - {None}, set(MODES))

    def test_lines_are_voided_and_returned(self):
        counts = [float(line["PluCount"]) for seed in range(60) for call in make_host_till(seed)["calls"]
                  for line in results.sent_lines(call).values()]
        self.assertGreater(sum(count < 0 for count in counts), 20)
        self.assertGreater(sum(count == 0 for count in counts), 20)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
