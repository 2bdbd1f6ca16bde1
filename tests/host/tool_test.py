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
        return self.run_tool("calc", "--store", self.store if store is None else store, *arguments)

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
        self.assertEqual(run.returncode, 1)
        self.assertRegex(run.stderr, r"\Aqncorvane: step Gift: number overflow: [^\n]+\n\Z")
        self.assertRegex(run.stdout, r"   3  Gift        5-gift-two-bags.xml +number overflow\n\Z")

    def test_a_sale_that_is_not_well_formed_can_be_tried_leniently(self):
        sale = self.folder / "sale.xml"
        sale.write_text('<Sale BillNo="1" OrgCode="01" IsCalc="0"><Plu>', "utf-8")
        for form in ([], ["--xml"], ["--json"]):
            self.assert_refused(self.calc("--mode", "All", sale, *form), 1, f"{sale}:1:47: is not XML")
            run = self.calc("--mode", "All", sale, "--lenient", *form)
            self.assertEqual((run.returncode, run.stderr), (0, ""))

    def test_a_value_that_cannot_be_is_refused_unless_leniently(self):
        sale = self.folder / "sale.xml"
        sale.write_text(BASKET.read_text("utf-8").replace('Total="7.50"', 'Total="7,50"'), "utf-8")
        self.assert_refused(self.calc("--mode", "All", sale), 1, f"{sale}:5: Total '7,50' is not a number")
        self.assertIn("To pay", self.calc("--mode", "All", sale, "--lenient").stdout)

    def test_a_zero_byte_does_not_end_a_sale(self):
        sale = self.folder / "sale.xml"
        sale.write_bytes(BASKET.read_bytes() + b"\0<Sale>")
        self.assert_refused(self.calc("--mode", "All", sale), 1, f"{sale}: a zero byte in it")

    def test_help(self):
        for arguments in (["--help"], ["-h"], ["help"], ["calc", "--help"], ["help", "calc"]):
            run = self.run_tool(*arguments)
            self.assertEqual((run.returncode, run.stderr), (0, ""), arguments)
            self.assertIn("qncorvane calc --store DIR --mode STEP", run.stdout)
        self.assertIn("Usage: qncorvane init [OPTIONS] DIR", self.run_tool("init", "--help").stdout)
        self.assertIn("Usage: qncorvane check --store DIR", self.run_tool("check", "--help").stdout)

    def test_help_tells_every_command_and_fits_a_terminal(self):
        told = self.run_tool("--help").stdout
        for command in ("calc", "explain", "init", "check", "lint", "till", "help"):
            self.assertRegex(told, rf"(?m)^  {command} +\w")
            lines = self.run_tool("help", command).stdout.splitlines()
            too_long = [line for line in lines if len(line) > 80 and not line.startswith("  qncorvane ")]
            self.assertEqual(too_long, [])
        for code in "012":
            self.assertRegex(told, rf"(?m)^  {code} +\w")
        self.assertNotIn("generate", told)

    def test_version(self):
        run = self.run_tool("--version")
        self.assertEqual((run.returncode, run.stderr), (0, ""))
        self.assertRegex(run.stdout, r"\Aqncorvane \d+\.\d+\.\d+\n\Z")

    def test_it_links_the_safe_face_alone(self):
        needed = subprocess.run(["readelf", "-d", PROGRAM], capture_output=True, text=True, check=True).stdout
        self.assertIn("[libqncorvane-host.so.1]", needed)
        self.assertNotIn("[libQNCORVANE", needed)

    # What it refuses: the command line

    def test_command_line_that_makes_no_sense(self):
        self.assert_refused(self.run_tool(), 2, "no command; the commands are calc, explain, init, check, lint, till, help")
        self.assert_refused(self.run_tool("sell"), 2, "unknown command 'sell'; the commands are calc, explain, init, check, lint, till,")
        self.assert_refused(self.run_tool("help", "sell"), 2, "unknown command 'sell'")
        self.assert_refused(self.run_tool("--"), 2, "no command")
        self.assert_refused(self.run_tool("calc", "--mode", "All", BASKET), 2, "--store is required")
        self.assert_refused(self.calc("--mode", "All", BASKET, store=""), 2, "--store must not be empty")
        self.assert_refused(self.calc(BASKET), 2, "--mode is required")
        self.assert_refused(self.calc("--mode", "All"), 2, "SALE is missing")
        self.assert_refused(self.calc("--mode"), 2, "--mode: 1 required STEP[,STEP...] missing")
        self.assert_refused(self.calc("--mode", "All", BASKET, "more"), 2, "argument was not expected: more")
        self.assert_refused(self.calc("--mode", f"All={BASKET}", BASKET), 2, "which one is it?")
        self.assert_refused(self.calc("--mode", "All=", BASKET), 2, "no file behind 'All='")
        self.assert_refused(self.calc("--fast", "--mode", "All", BASKET), 2, "argument was not expected: --fast")
        self.assert_refused(self.calc("--key", "", "--mode", "All", BASKET), 2, "--key must not be empty")
        self.assert_refused(self.calc("--xml", "--json", "--mode", "All", BASKET), 2, "excludes")
        self.assert_refused(self.calc("--mode", "All=-,Pay=-"), 2, "standard input can be read once")
        self.assert_refused(self.run_tool("check"), 2, "--store is required")

    def test_unknown_mode_is_told_with_those_there_are(self):
        for mode in ("all", "All,", "All,Everything"):
            self.assert_refused(self.calc("--mode", mode, BASKET), 2, "unknown mode", "Single, All, Union, Zh, MzPromotion")

    def test_files_may_be_called_as_commands_are(self):
        for name in ("init", "check", "lint", "help"):
            shutil.copy(BASKET, self.folder / name)
            self.assertIn("To pay", self.calc("--mode", "All", name).stdout)

    # What it refuses: files and the store

    def test_missing_sale(self):
        self.assert_refused(self.calc("--mode", "All", "none.xml"), 1, "none.xml: No such file or directory")
        self.assert_refused(self.calc("--mode", f"All={self.folder}"), 1, f"{self.folder}: is a directory")

    def test_missing_store_and_parts_of_it(self):
        self.assert_refused(self.calc("--mode", "All", BASKET, store="none"), 1, "none: there is no such folder")
        shutil.rmtree(self.store / "rules")
        self.assert_refused(self.calc("--mode", "All", BASKET), 1, "rules: the folder can't be read")
        (self.store / "config.ini").unlink()
        self.assert_refused(self.calc("--mode", "All", BASKET), 1, "config.ini: the folder has no such file")

    def test_missing_database_file(self):
        (self.store / "store.db").unlink()
        self.assert_refused(self.calc("--mode", "All", BASKET), 1, "./store.db: the database file is missing")
        self.assertFalse((self.store / "store.db").exists())

    def test_database_that_cannot_be_opened(self):
        (self.store / "config.ini").write_text("[DataBase]\nDbType=PAPER\n", "utf-8")
        self.assert_refused(self.calc("--mode", "All", BASKET), 1, "config.ini: DbType 'PAPER' is no kind of database")

    def test_rule_that_is_no_rule(self):
        rule = self.store / "rules" / "new.xml"
        for text, reason in (
            ("<Rules><Rule", "is not XML"),
            ("<Rules/>", "no rule in it"),
            ('<Rules><Rule ProType="PTXS"/></Rules>', "the rule has no BillNo"),
            ('<Rules><Rule BillNo="1"/></Rules>', "the rule has no ProType"),
            ('<Rules><Rule BillNo="1" ProType="PTXX"/></Rules>', "ProType 'PTXX' is no type"),
        ):
            rule.write_text(text, "utf-8")
            self.assert_refused(self.calc("--mode", "All", BASKET), 1, "rules/new.xml:", reason)

    def test_every_rule_that_is_no_rule_is_told(self):
        for name in ("a", "b"):
            (self.store / "rules" / f"{name}.xml").write_text("<Rules/>", "utf-8")
        self.assert_refused(self.calc("--mode", "All", BASKET), 1, "rules/a.xml: no rule", "rules/b.xml: no rule")

    def test_result_that_cannot_be_written(self):
        run = self.calc("--mode", "All", BASKET, "--out", self.store)
        self.assertEqual(run.returncode, 1)
        self.assertIn("can't be written", run.stderr)


if __name__ == "__main__":
    unittest.main()
