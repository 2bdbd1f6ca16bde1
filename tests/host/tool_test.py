"""The host program as a person uses it: what it prints, and what it says when something is wrong.

tool_test.py PROGRAM SAMPLES
"""

import pathlib
import shutil
import subprocess
import sys
import tempfile
import unittest
import xml.etree.ElementTree as ElementTree

from store import make_store

PROGRAM = pathlib.Path(sys.argv.pop(1)).resolve()
SAMPLES = pathlib.Path(sys.argv.pop(1)).resolve()
BASKET = SAMPLES / "sales" / "basket.xml"


class Tool(unittest.TestCase):
    def setUp(self):
        self.folder = pathlib.Path(tempfile.mkdtemp())
        self.addCleanup(shutil.rmtree, self.folder)
        self.store = self.folder / "store"
        make_store(SAMPLES, self.store)

    def run_tool(self, *arguments):
        return subprocess.run([PROGRAM, *arguments], cwd=self.folder, capture_output=True, text=True, check=False)

    def calc(self, *arguments, store=None):
        return self.run_tool("calc", "--store", store or self.store, *arguments)

    def assert_refused(self, run, code, *parts):
        self.assertEqual((run.returncode, run.stdout), (code, ""))
        for part in parts:
            self.assertIn(part, run.stderr)

    # What it gives

    def test_result_and_log_lie_where_it_says(self):
        run = self.calc("--mode", "All", BASKET)
        self.assertEqual((run.returncode, run.stderr), (0, ""))
        result = self.folder / "out" / "result.xml"
        self.assertIn(f"Result XML: {result}\n", run.stdout)
        self.assertEqual(ElementTree.parse(result).getroot().tag, "Sale")
        self.assertIn(f"Log:        {self.store / 'QnCorvane.txt'}\n", run.stdout)
        self.assertTrue((self.store / "QnCorvane.txt").read_bytes())

    def test_raw_result_is_the_file(self):
        raw = self.calc("--mode", "All", BASKET, "--xml")
        self.assertEqual((raw.returncode, raw.stderr), (0, ""))
        self.assertFalse((self.folder / "out").exists())
        self.calc("--mode", "All", BASKET, "--out", "here.xml")
        self.assertEqual((self.folder / "here.xml").read_text("utf-8"), raw.stdout)

    def test_relative_paths_count_from_where_the_program_was_started(self):
        shutil.copy(BASKET, self.folder / "sale.xml")
        run = self.calc("--mode", "All=sale.xml", "--out", "result.xml", store="store")
        self.assertEqual((run.returncode, run.stderr), (0, ""))
        self.assertTrue((self.folder / "result.xml").exists())

    def test_a_later_step_without_a_file_works_on_what_is_there(self):
        once = self.calc("--mode", "All", BASKET, "--xml").stdout
        twice = self.calc("--mode", "All,Pay", BASKET, "--xml").stdout
        self.assertEqual(once, twice)

    def test_a_refused_gift_choice_as_the_last_step_fails(self):
        till = SAMPLES / "sales" / "till"
        steps = f"All={till}/4-subtotal.xml,MzPromotion,Gift={till}/5-gift-two-bags.xml"
        run = self.calc("--mode", steps)
        self.assertEqual((run.returncode, run.stderr), (1, "qncorvane: step Gift: number overflow (-3)\n"))

    def test_a_sale_that_is_not_well_formed_can_be_tried_raw(self):
        sale = self.folder / "sale.xml"
        sale.write_text('<Sale BillNo="1" OrgCode="01" IsCalc="0"><Plu>', "utf-8")
        self.assert_refused(self.calc("--mode", "All", sale), 1, "sale.xml: not well-formed XML")
        raw = self.calc("--mode", "All", sale, "--xml")
        self.assertEqual((raw.returncode, raw.stderr), (0, ""))

    def test_help(self):
        for arguments in (["--help"], ["help"], ["calc", "--help"]):
            run = self.run_tool(*arguments)
            self.assertEqual((run.returncode, run.stderr), (0, ""))
            self.assertIn("qncorvane calc --store DIR --mode STEP", run.stdout)

    # What it refuses: the command line

    def test_command_line_that_makes_no_sense(self):
        self.assert_refused(self.run_tool(), 2, "no command")
        self.assert_refused(self.run_tool("sell"), 2, "unknown command 'sell'")
        self.assert_refused(self.run_tool("calc", "--mode", "All", BASKET), 2, "--store DIR is missing")
        self.assert_refused(self.calc(BASKET), 2, "--mode MODE is missing")
        self.assert_refused(self.calc("--mode", "All"), 2, "SALE.xml is missing")
        self.assert_refused(self.calc("--mode"), 2, "--mode needs a value")
        self.assert_refused(self.calc("--mode", "All", BASKET, BASKET), 2, "more than one SALE.xml")
        self.assert_refused(self.calc("--mode", f"All={BASKET}", BASKET), 2, "which one is it?")
        self.assert_refused(self.calc("--mode", "All=", BASKET), 2, "no file behind 'All='")
        self.assert_refused(self.calc("--fast", "--mode", "All", BASKET), 2, "unknown option '--fast'")
        self.assert_refused(self.calc("--key", "", "--mode", "All", BASKET), 2, "--key must not be empty")

    def test_unknown_mode_is_told_with_those_there_are(self):
        for mode in ("all", "All,", "All,Everything"):
            self.assert_refused(self.calc("--mode", mode, BASKET), 2, "unknown mode", "Single, All, Union, Zh, MzPromotion")

    # What it refuses: files and the store

    def test_missing_sale(self):
        self.assert_refused(self.calc("--mode", "All", "none.xml"), 1, "none.xml: No such file or directory")
        self.assert_refused(self.calc("--mode", "All", self.folder), 1, "is a directory")

    def test_missing_store_and_parts_of_it(self):
        self.assert_refused(self.calc("--mode", "All", BASKET, store="none"), 1, "none: no such store directory")
        shutil.rmtree(self.store / "rules")
        self.assert_refused(self.calc("--mode", "All", BASKET), 1, "no rules/ in it")
        (self.store / "config.ini").unlink()
        self.assert_refused(self.calc("--mode", "All", BASKET), 1, "no config.ini in it")

    def test_missing_database_file(self):
        (self.store / "store.db").unlink()
        self.assert_refused(self.calc("--mode", "All", BASKET), 1, "the database file", "store.db is missing")
        self.assertFalse((self.store / "store.db").exists())

    def test_database_that_cannot_be_opened(self):
        (self.store / "config.ini").write_text("[DataBase]\nDbType=PAPER\n", "utf-8")
        self.assert_refused(self.calc("--mode", "All", BASKET), 1, "can't be opened", "QnCorvane.txt")

    def test_rule_that_is_no_rule(self):
        rule = self.store / "rules" / "new.xml"
        for text, reason in (
            ("<Rules><Rule", "not well-formed XML"),
            ("<Rules/>", "no rule in it"),
            ('<Rules><Rule ProType="PTXS"/></Rules>', "the rule has no BillNo"),
            ('<Rules><Rule BillNo="1"/></Rules>', "the rule has no ProType"),
            ('<Rules><Rule BillNo="1" ProType="PTXX"/></Rules>', "the engine refuses the rule, type PTXX"),
        ):
            rule.write_text(text, "utf-8")
            self.assert_refused(self.calc("--mode", "All", BASKET), 1, "new.xml", reason)

    def test_result_that_cannot_be_written(self):
        run = self.calc("--mode", "All", BASKET, "--out", self.store)
        self.assertEqual(run.returncode, 1)
        self.assertIn("can't be written", run.stderr)


if __name__ == "__main__":
    unittest.main()
