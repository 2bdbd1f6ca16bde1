"""A store that the host program makes, and what it finds in stores.

tool_init_test.py PROGRAM
"""

import json
import pathlib
import shlex
import shutil
import sqlite3
import subprocess
import sys
import tempfile
import unittest

PROGRAM = pathlib.Path(sys.argv.pop(1)).resolve()

# What the rule of each type gives on the sale of its store: cents off the lines, cents that concern the whole sale, and
# articles that are offered.
GIVEN = {
    "PTXS": (201, [], []),  # 3 x 0.51, a tenth of 4.80
    "PTPL": (280, [], []),  # 7 x 0.40
    "PTOS": (100, [], []),  # 2 x 0.50
    "ZHZY": (80, [], []),  # 4.40 - 3.60
    "ZHZX": (180, [], []),  # 7.30 - 5.50
    "ZHTJ": (160, [], []),  # half of 3.20
    "ZHGD": (210, [], []),  # 10.60 - 8.50
    "MZMJ": (200, [], []),
    "MZDP": (150, [], []),  # one cola
    "MZZM": (320, [], []),  # one bread
    "MZZP": (0, [], ["9002"]),
    "MZHG": (0, [], ["9001"]),
    "MZZQ": (0, [500], []),  # one coupon, for 22.00
    "MZZF": (200, [200], []),  # 1.00 for each of two tens
    "MZYQ": (500, [500], []),
}


class Store(unittest.TestCase):
    def setUp(self):
        self.folder = pathlib.Path(tempfile.mkdtemp())
        self.addCleanup(shutil.rmtree, self.folder)

    def run_tool(self, *arguments):
        return subprocess.run([PROGRAM, *arguments], cwd=self.folder, capture_output=True, text=True, check=False)

    def init(self, *arguments):
        run = self.run_tool("init", *arguments)
        self.assertEqual((run.returncode, run.stderr), (0, ""))
        return run.stdout


class Init(Store):
    def test_each_type_makes_a_store_whose_rule_gives_something(self):
        for kind, expected in GIVEN.items():
            with self.subTest(kind):
                folder = f"store-{kind}"
                printed = self.init(folder, "--type", kind)
                check = self.run_tool("check", "--store", folder)
                self.assertEqual((check.returncode, check.stdout), (0, f"{self.folder / folder}: nothing wrong\n"))
                command = shlex.split(printed.splitlines()[-1])
                self.assertEqual(command[:2], ["qncorvane", "calc"])
                run = self.run_tool(*command[1:], "--json")
                self.assertEqual((run.returncode, run.stderr), (0, ""))
                self.assertEqual(self.given(json.loads(run.stdout), kind), expected)

    def given(self, result, kind):
        rows = result["sale"]["ProResult"]
        self.assertEqual({row["ProType"] for row in rows}, {kind} if rows else set())
        whole = [row["DisMoneyCents"] for row in rows if row["PluCode"] == "*"]
        lines = sum(row["DisMoneyCents"] for row in rows if row["PluCode"] != "*")
        offered = [item["PluCode"] for gift in result["sale"]["ProGifts"] for item in self.items_of(gift)]
        return lines, whole, offered

    def items_of(self, gift):
        """The offered articles, under whichever name they stand."""
        (items,) = [value for value in gift.values() if isinstance(value, list)]
        return items

    def test_the_next_command_works_as_it_is_printed(self):
        for name in ("corner shop", "it's", "-shop"):
            printed = self.init("--", name)
            self.assertIn("PTXS: Offers of the week.", printed)
            command = printed.splitlines()[-1].strip().replace("qncorvane", shlex.quote(str(PROGRAM)), 1)
            run = subprocess.run(["bash", "-c", command], cwd=self.folder, capture_output=True, text=True, check=False)
            self.assertEqual((run.returncode, run.stderr), (0, ""), name)
            self.assertRegex(run.stdout, r"\n      To pay +10\.49\n")
            self.assertIn("Cola 0.5 l", run.stdout)

    def test_what_lies_in_the_folder(self):
        self.init("shop")
        names = {str(path.relative_to(self.folder / "shop")) for path in (self.folder / "shop").rglob("*")}
        self.assertEqual(names, {"config.ini", "store.db", "rules", "rules/PTXS-1.xml", "goods.xml", "sale.xml"})
        with sqlite3.connect(self.folder / "shop" / "store.db") as database:
            tables = {name for (name,) in database.execute("select name from sqlite_master where type = 'table'")}
            rows = database.execute("select BillNo, PluCode, DscPrice from tProPrjDirectProAct order by 1, 2").fetchall()
        self.assertEqual(len(tables), 10)
        self.assertEqual(rows, [("PTXS-1", "1001", 0.99), ("PTXS-1", "TEA", 0)])

    def test_a_folder_that_is_there_and_empty(self):
        (self.folder / "shop").mkdir()
        self.init("shop")

    def test_a_folder_that_is_not_empty_stays_as_it_is(self):
        (self.folder / "shop").mkdir()
        (self.folder / "shop" / "list.txt").write_text("milk", "utf-8")
        run = self.run_tool("init", "shop")
        self.assertEqual((run.returncode, run.stdout), (1, ""))
        self.assertIn("shop: the folder isn't empty", run.stderr)
        self.assertEqual([path.name for path in (self.folder / "shop").iterdir()], ["list.txt"])
        self.init("other")
        self.assertEqual(self.run_tool("init", "other").returncode, 1)

    def test_what_is_no_folder_or_no_type(self):
        (self.folder / "file").write_text("", "utf-8")
        for name in ("file", "file/shop"):
            run = self.run_tool("init", name)
            self.assertEqual((run.returncode, run.stdout), (1, ""))
            self.assertIn(f"qncorvane: {name}: ", run.stderr)
        run = self.run_tool("init", "shop", "--type", "PTXX")
        self.assertEqual(run.returncode, 2)
        self.assertIn("unknown type 'PTXX'; the types are PTXS, PTPL", run.stderr)
        self.assertFalse((self.folder / "shop").exists())
        self.assertEqual(self.run_tool("init", "").returncode, 2)


class Check(Store):
    def setUp(self):
        super().setUp()
        self.init("shop")
        self.shop = self.folder / "shop"

    def check(self):
        run = self.run_tool("check", "--store", "shop")
        self.assertEqual(run.stderr, "")
        told = self.run_tool("check", "--store", "shop", "--json")
        self.assertEqual((told.returncode, told.stderr), (run.returncode, ""))
        report = json.loads(told.stdout)
        self.assertEqual(report["ok"], run.returncode == 0)
        for finding in report["findings"]:
            self.assertIn(f"{finding['where']}: {finding['what']}\n", run.stdout)
        return run.returncode, run.stdout

    def test_a_sound_store(self):
        self.assertEqual(self.check(), (0, f"{self.shop}: nothing wrong\n"))

    def test_an_unknown_kind_of_database(self):
        (self.shop / "config.ini").write_text("[DataBase]\nDbType=SQLLITE\n", "utf-8")
        code, printed = self.check()
        self.assertEqual(code, 1)
        self.assertIn("error    config.ini: DbType 'SQLLITE' is no kind of database\n         write SQLITE, ", printed)
        self.assertIn(f"{self.shop}: 1 error, 0 warnings\n", printed)

    def test_a_missing_table_and_a_broken_rule_in_one_go(self):
        with sqlite3.connect(self.shop / "store.db") as database:
            database.execute("drop table tProMzScheme")
        (self.shop / "rules" / "new.xml").write_text("<Rules><Rule", "utf-8")
        code, printed = self.check()
        self.assertEqual(code, 1)
        self.assertIn("error    tProMzScheme: ", printed)
        self.assertIn("error    rules/new.xml:1:13: ", printed)
        self.assertIn(f"{self.shop}: 2 errors, 0 warnings\n", printed)

    def test_a_warning_alone_is_no_failure(self):
        (self.shop / "rules" / "PTXS-1.xml").unlink()
        code, printed = self.check()
        self.assertEqual(code, 0)
        self.assertRegex(printed, r"\Awarning  rules: there is no rule in it\n         .*\n.*: 0 errors, 1 warning\n\Z")

    def test_a_folder_that_is_not_there(self):
        run = self.run_tool("check", "--store", "none")
        self.assertEqual(run.returncode, 1)
        self.assertIn("there is no such folder", run.stdout + run.stderr)


if __name__ == "__main__":
    unittest.main()
