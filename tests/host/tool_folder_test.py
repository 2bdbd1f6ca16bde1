"""The host program with sales from standard input and from folders, with JSON, and on a terminal.

tool_folder_test.py PROGRAM SAMPLES
"""

import json
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import unittest

from store import make_store
from terminal import run_on_terminal

PROGRAM = pathlib.Path(sys.argv.pop(1)).resolve()
SAMPLES = pathlib.Path(sys.argv.pop(1)).resolve()
BASKET = SAMPLES / "sales" / "basket.xml"
BIG = SAMPLES / "sales" / "big-shop.xml"


class Tool(unittest.TestCase):
    maxDiff = None

    def setUp(self):
        self.folder = pathlib.Path(tempfile.mkdtemp())
        self.addCleanup(shutil.rmtree, self.folder)
        make_store(SAMPLES, self.folder / "store")

    def calc(self, *arguments, given=None):
        command = [PROGRAM, "calc", "--store", "store", *arguments]
        run = subprocess.run(command, cwd=self.folder, input=given, capture_output=True, check=False)
        return run.returncode, run.stdout.decode(), run.stderr.decode()

    def sales(self):
        """Two sales, and a text between them that is none."""
        sales = self.folder / "sales"
        sales.mkdir()
        shutil.copy(BASKET, sales / "a.xml")
        (sales / "b.xml").write_text("<Sale>\n<Plu", "utf-8")
        shutil.copy(BIG, sales / "c.xml")
        (sales / "notes.txt").write_text("no sale", "utf-8")
        return sales


class Input(Tool):
    def test_a_sale_from_standard_input_is_the_one_of_the_file(self):
        for form in ("--xml", "--json"):
            of_file = self.calc("--mode", "All", BASKET, form)
            self.assertEqual(of_file[0], 0)
            self.assertEqual(self.calc("--mode", "All", "-", form, given=BASKET.read_bytes()), of_file)

    def test_a_later_step_from_standard_input(self):
        code, printed, _ = self.calc("--mode", f"Single={SAMPLES}/sales/till/1-scan-washing-powder.xml,All=-",
                                     given=BASKET.read_bytes())
        self.assertEqual(code, 0)
        self.assertRegex(printed, r"(?m)^   2  All         standard input +to pay ")

    def test_a_refused_text_is_told_by_where_it_came_from(self):
        self.assertEqual(self.calc("--mode", "All", "-", given=b"<Sale>"),
                         (1, "", "qncorvane: standard input:1:7: is not XML: Premature end of document.\n"))
        code, _, errors = self.calc("--mode", "All", "-", given=b"")
        self.assertEqual((code, errors[:27]), (1, "qncorvane: standard input:1"))


class Json(Tool):
    def test_json_tells_what_the_receipt_tells(self):
        code, printed, errors = self.calc("--mode", "All", BASKET, "--json")
        self.assertEqual((code, errors), (0, ""))
        self.assertFalse((self.folder / "out").exists())
        totals = json.loads(printed)["totals"]
        # 40.11 - 1.53 - 0.52 - 2.00
        self.assertEqual((totals["beforeCents"], totals["toPayCents"]), (4011, 3606))
        self.assertEqual({rule["billNo"]: rule["cents"] for rule in totals["rules"]},
                         {"PTXS-01": 153, "PTXS-02": 52, "PTXS-03": 200})

    def test_json_of_several_steps_is_that_of_the_last(self):
        _, printed, _ = self.calc("--mode", "All,MzPromotion", BIG, "--json", "--out", "result.json")
        # 76.30 - 7.00
        self.assertEqual(json.loads(printed)["totals"]["toPayCents"], 6930)
        self.assertEqual((self.folder / "result.json").read_text("utf-8"), printed.rstrip("\n"))


class Folder(Tool):
    def test_each_sale_has_a_line_and_the_failed_one_is_counted(self):
        self.sales()
        code, printed, errors = self.calc("--mode", "All,MzPromotion", "sales")
        self.assertEqual(code, 1)
        self.assertRegex(errors, r"\Aqncorvane: sales/b\.xml:2:5: is not XML: [^\n]+\n\Z")
        lines = [re.sub(" +", " ", line) for line in printed.splitlines()]
        self.assertEqual(lines, ["Sale Sent To pay", "-" * 88, "a.xml 40.11 36.06", "b.xml failed", "c.xml 76.30 69.30",
                                 "-" * 88, "2 calculated, 1 failed 116.41 105.36", "",
                                 f"Log: {self.folder}/store/QnCorvane.txt"])
        self.assertFalse((self.folder / "out").exists())

    def test_a_folder_without_failure(self):
        (self.sales() / "b.xml").unlink()
        code, printed, errors = self.calc("--mode", "All", "sales/")
        self.assertEqual((code, errors), (0, ""))
        self.assertIn("2 calculated, 0 failed", printed)

    def test_results_are_those_of_the_sales_alone(self):
        self.sales()
        self.assertEqual(self.calc("--mode", "All,MzPromotion", "sales", "--out", "results")[0], 1)
        self.assertEqual(sorted(path.name for path in (self.folder / "results").iterdir()), ["a.xml", "c.xml"])
        for name, sale in (("a.xml", BASKET), ("c.xml", BIG)):
            _, alone, _ = self.calc("--mode", "All,MzPromotion", sale, "--xml")
            self.assertEqual((self.folder / "results" / name).read_text("utf-8"), alone)

    def test_json_of_a_folder(self):
        self.sales()
        code, printed, errors = self.calc("--mode", "All,MzPromotion", "sales", "--json", "--out", "results")
        self.assertEqual((code, errors.count("\n")), (1, 1))
        whole = json.loads(printed)
        self.assertEqual([sale["file"] for sale in whole["sales"]], ["a.xml", "b.xml", "c.xml"])
        self.assertIn("sales/b.xml:2:5: ", whole["sales"][1]["error"])
        self.assertEqual(whole["sales"][2]["result"]["totals"]["toPayCents"], 6930)
        del whole["sales"]
        self.assertEqual(whole, {"calculated": 2, "failed": 1, "beforeCents": 11641, "toPayCents": 10536})
        self.assertEqual(sorted(path.name for path in (self.folder / "results").iterdir()), ["a.json", "c.json"])

    def test_a_refused_choice_or_an_unreadable_file_fails_alone(self):
        sales = self.sales()
        (sales / "b.xml").unlink()
        (sales / "b.xml").mkdir()
        code, printed, errors = self.calc("--mode", "All", "sales")
        self.assertEqual((code, errors), (1, "qncorvane: sales/b.xml: is a directory\n"))
        self.assertIn("2 calculated, 1 failed", printed)

    def test_amounts_outside_all_measure_stay_numbers(self):
        sale = self.sales() / "b.xml"
        sale.write_text(BASKET.read_text("utf-8").replace('Total="7.50"', 'Total="1e308"'), "utf-8")
        code, printed, _ = self.calc("--mode", "All", "sales")
        self.assertEqual(code, 0)
        self.assertRegex(printed, r"\nb\.xml +\d+\.\d\d +\d+\.\d\d\n")
        totals = json.loads(self.calc("--mode", "All", "sales", "--json")[1], parse_constant=self.fail)
        self.assertGreater(totals["beforeCents"], 9e18)

    def test_what_makes_no_sense_with_a_folder(self):
        sales = self.sales()
        for arguments, reason in ((["--xml"], "--xml prints one sale"), (["--key", "1"], "--key names one sale"),
                                  (["--out", "sales"], "the results would replace them")):
            code, printed, errors = self.calc("--mode", "All", "sales", *arguments)
            self.assertEqual((code, printed), (2, ""))
            self.assertIn(reason, errors)
        self.assertEqual(self.calc("--mode", f"All,Pay={BASKET}", "sales")[0], 2)
        self.assertEqual((sales / "a.xml").read_bytes(), BASKET.read_bytes())
        (self.folder / "none").mkdir()
        self.assertEqual(self.calc("--mode", "All", "none"), (1, "", "qncorvane: none: no *.xml in it\n"))


class Terminal(Tool):
    """What is there for eyes alone."""

    def on_terminal(self, *arguments, **environment):
        return run_on_terminal([PROGRAM, *arguments], self.folder, **environment)

    def plain(self, printed):
        """What stays on the screen: lines without colours, and without what was taken away again."""
        lines = re.sub(r"\x1b\[[0-9;]*m", "", printed).replace("\r\n", "\n").split("\n")
        return "\n".join(line.split("\x1b[K")[-1] for line in lines)

    def test_a_bar_goes_with_a_folder_and_leaves_nothing_behind(self):
        self.sales()
        arguments = ["calc", "--store", "store", "--mode", "All", "sales"]
        code, printed = self.on_terminal(*arguments)
        self.assertEqual(code, 1)
        self.assertEqual(re.findall(r"\r\x1b\[K\[[#.]{24}\] (\d/3) \w\.xml", printed), ["0/3", "1/3", "2/3"])
        self.assertNotIn("[#", self.plain(printed))
        _, piped, _ = self.calc("--mode", "All", "sales")
        for line in piped.splitlines():
            self.assertIn(line, self.plain(printed))

    def test_a_receipt_has_colours_and_the_same_words(self):
        arguments = ["calc", "--store", "store", "--mode", "All", BASKET]
        code, coloured = self.on_terminal(*arguments)
        self.assertEqual(code, 0)
        self.assertIn("\x1b[1mBEFORE\x1b[0m", coloured)
        _, piped, _ = self.calc("--mode", "All", BASKET)
        self.assertNotIn("\x1b", piped)
        self.assertEqual(self.plain(coloured), piped)

    def test_no_colours_where_nobody_wants_them(self):
        arguments = ["calc", "--store", "store", "--mode", "All", BASKET]
        for environment in ({"NO_COLOR": "1"}, {"TERM": "dumb"}, {"TERM": ""}):
            self.assertNotIn("\x1b", self.on_terminal(*arguments, **environment)[1])
        self.assertIn("\x1b", self.on_terminal(*arguments, NO_COLOR="")[1])

    def test_errors_and_findings_have_colours(self):
        self.assertIn("\x1b[31mqncorvane:\x1b[0m", self.on_terminal("sell")[1])
        (self.folder / "store" / "config.ini").unlink()
        self.assertIn("\x1b[31merror\x1b[0m    config.ini: ", self.on_terminal("check", "--store", "store")[1])


if __name__ == "__main__":
    unittest.main()
