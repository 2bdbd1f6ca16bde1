"""The comparison's own tests.

compare_test.py LIBRARY ALTERED SCHEMA: the library, the module that alters it (altered.c), the store's tables.
"""

import json
import os
import pathlib
import subprocess
import sys
import tempfile
import unittest

import player
import reducer
import report
import rules
import stores
from comparer import Pair, Player, first_difference, line_of, play_all
from generator import MODES, TABLES, make_till
from stats import Stats

LIBRARY, ALTERED, SCHEMA = (os.path.abspath(path) for path in sys.argv[1:4])
HERE = pathlib.Path(__file__).parent
FILTERS = '<OrgFilter><R OrgCode="*"/></OrgFilter><ProTime><R StartDate="2020-01-01" EndDate="2099-12-31" ' \
          'StartTime="" Frequency="DAY"/></ProTime>'
SALE = '<Sale BillNo="B1" OrgCode="S01" IsCalc="0"><Plu>%s</Plu></Sale>'
LINE = '<Row SerialNo="%d" PluCode="%s" Price="10" PluCount="1" Total="10" PackCnt="1" SaleDate="2026-11-21" ' \
       'SaleTime="10:00:00"/>'


def altering(what):
    """The environment in which the altered library does one thing in another way."""
    os.environ.update(QNCORVANE_REAL=LIBRARY, QNCORVANE_ALTER=what)


def till(*calls, rows=None):
    """A till with one PTXS rule that takes 2.00 off A1, and these calls."""
    rule = '<Rules><Rule BillNo="P1" ProType="PTXS" ProMode="PT" Primary="PT" JzDate="2026-01-01" Remark="">' \
           f'{FILTERS}</Rule></Rules>'
    row = {"BillNo": "P1", "SerialNo": 1, "PluCode": "A1", "PluType": "PLU", "InRange": "IN", "DscType": "2",
           "DscPrice": 2}
    return {"seed": 0, "rows": rows if rows is not None else {"tProPrjDirectProAct": [row]},
            "calls": [["BeginInitPro"], ["InitPromotion", "PTXS", rule], ["FinishInitPro"], *calls]}


def sale(*codes):
    return SALE % "".join(LINE % (serial, code) for serial, code in enumerate(codes, 1))


def last_argument(one_till):
    """The XML of a till's last call; the empty text in one without calls."""
    return one_till["calls"][-1][-1] if one_till["calls"] else ""


def answers(one_till, library=LIBRARY, patience=10.0):
    """What a library answers to a till."""
    its_player = Player(library, SCHEMA, patience)
    its_player.send(line_of(one_till))
    line = its_player.receive()
    its_player.close()
    return json.loads(line)


def run(*options):
    """compare.py as the command runs it: exit code and output."""
    done = subprocess.run([sys.executable, "-B", str(HERE / "compare.py"), *options, "--schema", SCHEMA, "--jobs", "1"],
                          capture_output=True, text=True, check=False)
    return done.returncode, done.stdout + done.stderr


class Generated(unittest.TestCase):
    def test_same_seed_same_bytes(self):
        for seed in (1, 77, 123456789):
            self.assertEqual(line_of(make_till(seed)), line_of(make_till(seed)))

    def test_a_seed_means_the_same_in_every_process(self):
        command = "from generator import make_till; from comparer import line_of; import sys; " \
                  "sys.stdout.buffer.write(line_of(make_till(42)))"
        for hash_seed in ("0", "1"):
            elsewhere = subprocess.run([sys.executable, "-B", "-c", command], cwd=HERE, capture_output=True, check=True,
                                       env={**os.environ, "PYTHONHASHSEED": hash_seed}).stdout
            self.assertEqual(elsewhere, line_of(make_till(42)))

    def test_other_seeds_other_tills(self):
        self.assertEqual(len({line_of(dict(make_till(seed), seed=0)) for seed in range(50)}), 50)

    def test_tills_survive_being_saved(self):
        for seed in range(50):
            made = make_till(seed)
            self.assertEqual(json.loads(line_of(made)), made)

    def test_every_type_mode_table_and_call_occurs(self):
        tills = [make_till(seed) for seed in range(400)]
        calls = [call for made in tills for call in made["calls"]]
        self.assertLessEqual(set(rules.TYPES) - {"MZZQ"}, {call[1] for call in calls if call[0] == "InitPromotion"})
        self.assertTrue(any(call[0] == "InitPromotion" and call[1] == "MZYQ" and 'ProType="MZZQ"' in call[2]
                            for call in calls))
        self.assertLessEqual(set(MODES), {call[2] for call in calls if call[0] == "CalcPromotion"})
        self.assertEqual(set(TABLES), {table for made in tills for table in made["rows"]})
        self.assertEqual({call[0] for call in calls}, {name[len("play_"):] for name in dir(player.Till)
                                                       if name.startswith("play_")})


class Played(unittest.TestCase):
    def test_answers_hold_code_msg_result_and_log(self):
        code, msg, result, log = answers(till(["CalcPromotion", "1", "All", sale("A1")]))[3]
        self.assertEqual((code, msg), (0, "sucess"))
        self.assertIn('Total="8.00"', result)
        self.assertEqual(log[0], "All")
        self.assertEqual(log[1], "1:1\n")

    def test_a_buffer_that_is_left_alone_shows(self):
        self.assertEqual(answers(till(["CalcPromotion", "", "All", sale("A1")]))[3][:3],
                         [-1, "销售单主键为空！", "(untouched)"])

    def test_each_till_finds_a_fresh_engine(self):
        first = till(["CalcPromotion", "1", "All", sale("A1")])
        its_player = Player(LIBRARY, SCHEMA)
        for _ in range(2):
            its_player.send(line_of(first))
        self.assertEqual(its_player.receive(), its_player.receive())
        its_player.close()

    def test_store_changes_between_calls(self):
        got = answers(till(["CalcPromotion", "1", "All", sale("A1")],
                           ["Sql", "update tProPrjDirectProAct set DscPrice=3"],
                           ["CalcPromotion", "1", "All", sale("A1")],
                           ["Sql", "drop table nothing"]))
        self.assertEqual([got[4][0], got[6][0]], [0, -1])
        self.assertIn('Total="7.00"', got[5][2])

    def test_offers_come_back_with_picks(self):
        result = '<Sale><ProGifts><ProGift ProBillNo="G"><Data SerialNo="1" HgPluCount="0.00" Price="1"/>' \
                 '<Data SerialNo="2" HgPluCount="0.00" Price="1"/></ProGift></ProGifts><ProCoupons/></Sale>'
        self.assertEqual(player.with_picks(result, {"1": 2, "7": 1}),
                         '<Sale><ProGifts><ProGift ProBillNo="G"><Data SerialNo="1" HgPluCount="0.00" Price="1"/>'
                         '<Data SerialNo="2" HgPluCount="2" Price="1"/></ProGift></ProGifts></Sale>')
        self.assertEqual(player.with_picks("", {"0": 1}), "<Sale/>")

    def test_bytes_that_are_no_utf8_arrive_as_they_are(self):
        self.assertEqual(player.bytes_of("a\udcff"), b"a\xff")
        self.assertIsNone(player.bytes_of(None))

    def test_loose_store_takes_what_the_keyed_one_refuses(self):
        doubled = {"tpromzlist": [{"BillNo": None}, {"BillNo": "M", "ListCode": "L"}, {"BillNo": "M", "ListCode": "L"}]}
        templates = stores.templates(pathlib.Path(SCHEMA).read_text("utf-8"))
        self.assertNotEqual(stores.with_rows(templates["loose"], doubled), stores.with_rows(templates["keyed"], doubled))
        self.assertNotIn("NOT NULL", stores.loose(pathlib.Path(SCHEMA).read_text("utf-8")))

    def test_flush_stands_in_every_kinds_settings(self):
        for kind in ("keyed", "loose", "closed", "unset"):
            self.assertEqual(stores.settings(kind, "call"), stores.settings(kind) + "[Log]\nFlush=call\n")
            self.assertNotIn("Flush", stores.settings(kind))

    def test_a_store_that_cannot_be_opened(self):
        for kind in ("closed", "unset"):
            code, _, _, log = answers(dict(till(), store=kind))[0]
            self.assertEqual((code, log[0]), (-1, "数据库连接失败\n\r"))
            self.assertEqual(answers(dict(till(["Sql", "select 1"]), store=kind))[3][0], 0)


class Compared(unittest.TestCase):
    def test_a_library_agrees_with_itself(self):
        code, output = run(LIBRARY, LIBRARY, "--count", "40", "--stats")
        self.assertEqual(code, 0, output)
        self.assertIn("40 tills, 0 differences", output)
        self.assertRegex(output, r"\d+ MzPromotion")

    def test_the_log_flushed_by_calls_says_the_same(self):
        code, output = run(LIBRARY, LIBRARY, "--count", "40", "--flush", "call")
        self.assertEqual(code, 0, output)
        self.assertIn("40 tills, 0 differences", output)

    def test_the_altering_module_alters_nothing_unless_told(self):
        altering("")
        code, output = run(LIBRARY, ALTERED, "--count", "15")
        self.assertEqual(code, 0, output)

    def test_one_digit_is_found_and_made_small(self):
        altering("digit")
        with tempfile.TemporaryDirectory() as folder:
            small = os.path.join(folder, "small")
            code, output = run(LIBRARY, ALTERED, "--count", "200", "--reduced", small)
            self.assertEqual(code, 1, output)
            self.assertIn("differs in result of call", output)
            self.assertRegex(output, r'-.*DisMoney="')
            self.assertRegex(output, r'\+.*DisMoney="')
            with open(small, encoding="ascii") as file:
                reduced = json.load(file)
            self.assertLessEqual(len(reduced["calls"]), 3)
            self.assertEqual(run(LIBRARY, ALTERED, "--replay", small)[0], 1)
            self.assertEqual(run(LIBRARY, LIBRARY, "--replay", small)[0], 0)

    def test_one_log_text_is_found(self):
        altering("log")
        code, output = run(LIBRARY, ALTERED, "--count", "200")
        self.assertEqual(code, 1, output)
        self.assertIn("differs in log of call", output)
        self.assertIn(" Pay ", output)

    def test_one_return_code_is_found(self):
        altering("code")
        code, output = run(LIBRARY, ALTERED, "--count", "1500")
        self.assertEqual(code, 1, output)
        self.assertIn("differs in return code of call", output)

    def test_a_crash_is_an_answer(self):
        altering("crash")
        one = till(["CalcPromotion", "1", "Coupon", sale("A1")])
        self.assertEqual(answers(one, ALTERED)[3], "crashed: SIGSEGV")
        with Pair(LIBRARY, ALTERED, SCHEMA) as pair:
            found = first_difference(*pair.play(one))
            self.assertEqual((found.index, found.parts), (3, ("end",)))
            self.assertIn("crashed: SIGSEGV", report.report(one, found))
        with Pair(ALTERED, ALTERED, SCHEMA) as pair:
            self.assertIsNone(first_difference(*pair.play(one)))

    def test_a_hang_is_an_answer(self):
        altering("hang")
        one = till(["CalcPromotion", "1", "Coupon", sale("A1")], ["GetState"])
        self.assertEqual(answers(one, ALTERED, 0.5)[3:], ["hung"])

    def test_answers_stand_beside_their_own_tills(self):
        tills = [till(["CalcPromotion", str(number), "All", sale("A1")]) for number in range(40)]
        pairs = [Pair(LIBRARY, LIBRARY, SCHEMA) for _ in range(2)]
        for number, (_, old, new) in enumerate(play_all(tills, pairs)):
            self.assertEqual(old, new)
            self.assertEqual(json.loads(old)[3][3][1], f"{number}:1\n")
        for pair in pairs:
            pair.close()

    def test_nothing_played_is_no_success(self):
        self.assertEqual(run(LIBRARY, LIBRARY, "--count", "0")[0], 2)

    def test_what_is_no_library_is_no_success(self):
        self.assertEqual(run(LIBRARY, SCHEMA, "--count", "3")[0], 2)

    def test_what_is_no_till_is_no_success(self):
        with tempfile.NamedTemporaryFile() as file:
            file.write(b'{"seed":1,"rows":{},"calls":[["Fly"]]}\n')
            file.flush()
            code, output = run(LIBRARY, LIBRARY, "--replay", file.name)
        self.assertEqual(code, 2, output)
        self.assertIn("play_Fly", output)

    def test_baseline_names_one_commit(self):
        lines = [line for line in (HERE / "baseline").read_text("ascii").splitlines() if not line.startswith("#")]
        self.assertEqual(len(lines), 1)
        self.assertRegex(lines[0], r"^([0-9a-f]{40}|here)$")


class Reduced(unittest.TestCase):
    """The reducer on differences that are made up, without a library."""

    def reduced(self, whole, differs):
        return reducer.Reducer(whole, differs).reduce()

    def test_fewest_keeps_what_is_needed(self):
        tries = []

        def holds(items):
            tries.append(items)
            return 3 in items and 17 in items

        self.assertEqual(reducer.fewest(list(range(20)), holds), [3, 17])
        self.assertLess(len(tries), 60)

    def test_calls_rows_and_columns_go(self):
        rows = {"a": [{"x": 1, "y": 2}, {"x": 3, "y": 4}], "b": [{"z": 5}]}
        whole = {"seed": 0, "rows": rows, "calls": [["GetState"], ["FinishInitPro"], ["GetState"], ["BeginInitPro"]]}
        small = self.reduced(whole, lambda one: ["FinishInitPro"] in one["calls"]
                             and any(row.get("x") == 3 for row in one["rows"].get("a", [])))
        self.assertEqual(small, {"seed": 0, "rows": {"a": [{"x": 3}]}, "calls": [["FinishInitPro"]]})

    def test_lines_and_attributes_go(self):
        whole = {"seed": 0, "rows": {}, "calls": [["CalcPromotion", "k", "All", sale("A1", "B1", "C1")]]}
        small = self.reduced(whole, lambda one: 'PluCode="B1"' in last_argument(one))
        self.assertEqual(small["calls"][0][3], '<Sale><Plu><Row PluCode="B1"/></Plu></Sale>')

    def test_broken_xml_is_reduced_too(self):
        xml = '<?xml version="1.0"?><!-- a --><Sale A="1"><Plu><Row B="2"/><Row C="3'
        whole = {"seed": 0, "rows": {}, "calls": [["CalcPromotion", "k", "All", xml]]}
        small = self.reduced(whole, lambda one: last_argument(one).endswith('<Row C="3'))
        self.assertEqual(small["calls"][0][3], '<Sale><Plu><Row C="3')

    def test_a_till_that_stops_differing_is_not_kept(self):
        whole = {"seed": 0, "rows": {"a": [{"x": 1}]}, "calls": [["GetState"]]}
        self.assertEqual(self.reduced(whole, lambda one: one == whole), whole)


class Counted(unittest.TestCase):
    def test_types_that_gave_something(self):
        result = '<ProResult><Data SerialNo="1" DisMoney="2.00" ProBillNo="P" ProType="PTXS"/>' \
                 '<Data SerialNo="2" DisMoney="0.00" ProBillNo="P" ProType="PTPL"/></ProResult>' \
                 '<ProGifts><ProGift ProBillNo="MZZP-1"/></ProGifts>'
        counts = Stats()
        counts.add({"calls": [["Gift", "k", {}]]}, json.dumps([[0, "sucess", result, ["Gift"]]]))
        self.assertEqual(counts.given, {"PTXS": 1, "MZZP": 1})
        self.assertEqual(counts.modes, {"Gift": 1})


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
