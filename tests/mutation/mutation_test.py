"""The mutation run on a small project: which mutants there are, which die and which are left.

mutation_test.py FOLDER    builds in FOLDER
"""

import pathlib
import shutil
import sys
import tempfile
import unittest

import equivalents
import mutate
import schemata
import suite
import tree

HERE = pathlib.Path(__file__).resolve().parent
HOME = None
FILES = ["sums.cpp", "sums.h"]


def quiet(_):
    pass


class SmallProject(unittest.TestCase):
    """What a run finds out about tests/mutation/self."""

    @classmethod
    def setUpClass(cls):
        shutil.rmtree(HOME, ignore_errors=True)
        shutil.copytree(HERE / "self", HOME / "project")
        cls.copy = tree.Tree(HOME / "project", HOME / "work", FILES, ["sums_tests"])
        cls.copy.make(2, quiet)
        program = cls.copy.build / "bin/sums_tests"
        tests = suite.gtest_tests(program, "sums_tests", cls.copy.library_key(), b"")
        highest = max(mutant.number for mutant in cls.copy.mutants)
        cls.suite = suite.Suite(cls.copy.home, {"sums_tests": [str(program)]}, tests, highest)
        cls.suite.learn(2, quiet)

    def mutant(self, before, after):
        found = [each for each in self.copy.mutants if (each.change.before, each.change.after) == (before, after)]
        self.assertEqual(len(found), 1, f"{before} -> {after}")
        return found[0]

    def fate(self, before, after):
        return self.suite.killer(self.mutant(before, after).number)

    def test_a_test_kills_what_it_sees(self):
        self.assertEqual(self.fate("sum += value", "sum -= value"), ("sums_tests: Sums.AddWhatIsAbove", "fails"))
        self.assertEqual(self.fate("sum += value;", "(nothing)"), ("sums_tests: Sums.AddWhatIsAbove", "fails"))
        self.assertEqual(self.fate("value > least", "value <= least"), ("sums_tests: Sums.AddWhatIsAbove", "fails"))

    def test_what_no_test_tells_apart_survives(self):
        self.assertEqual(self.fate("value > least", "value >= least"), ("", "survives"))

    def test_the_order_of_a_walk_is_changed(self):
        walks = [each for each in self.copy.mutants if each.change.operator == "walk"]
        self.assertEqual([self.suite.killer(each.number) for each in walks],
                         [("", "survives"), ("sums_tests: Sums.BeginWithTheFirst", "fails")])

    def test_what_no_test_reaches_is_told_apart(self):
        self.assertEqual(self.fate("value + 1", "value - 1"), ("", "not reached"))

    def test_a_mutant_that_hangs_is_killed(self):
        self.assertEqual(self.fate("count = count + 1;", "(nothing)"), ("sums_tests: Sums.Count", "hangs"))

    def test_constants_of_the_compiler_are_left_alone(self):
        self.assertFalse([each for each in self.copy.mutants if each.change.before in ("10", "5", "10 + 5", "2")])

    def test_a_test_that_fails_anyway_kills_nothing(self):
        failing = suite.Test("ctest", "never passes", "", ("false",), "never passes")
        self.suite.reached[failing] = {1}
        self.suite.seconds[failing] = 0
        self.assertEqual(self.suite.confirmed(1, failing), "")

    def test_a_test_that_hangs_is_ended(self):
        ended = self.suite.run(("sh", "-c", "sleep 60 & sleep 60"), {}, 0.2)
        self.assertTrue(ended.late and ended.failed)
        self.assertLess(ended.seconds, 30)

    def test_lines_keep_their_numbers(self):
        for name in FILES:
            self.assertEqual((self.copy.source / name).read_text().count("\n"),
                             (self.copy.root / name).read_text().count("\n"))

    def test_an_entry_of_the_list_finds_its_mutant(self):
        mutant = self.mutant("value > least", "value >= least")
        with tempfile.TemporaryDirectory() as folder:
            path = pathlib.Path(folder, "equivalent.txt")
            path.write_text("# A list.\n\n" + equivalents.entry_of(mutant, "for a reason"))
            reasons = equivalents.read(path)
        self.assertEqual(reasons, {equivalents.key_of(mutant): "for a reason"})
        self.assertEqual(mutate.stale(self.copy, reasons), [])
        self.assertEqual(len(mutate.stale(self.copy, {equivalents.Key("a", "b", "c", "d"): "none"})), 1)

    def test_the_report_counts_each_mutant_once(self):
        killed, kept = self.mutant("sum += value", "sum -= value"), self.mutant("value > least", "value >= least")
        report = mutate.Report({equivalents.key_of(kept): "for a reason"})
        report.add(killed, "sums_tests: Sums.AddWhatIsAbove", "fails", False)
        report.add(kept, "", "survives", False)
        report.add(self.mutant("value + 1", "value - 1"), "", "not reached", False)
        self.assertEqual((report.all(), report.real(), report.rate()), (3, 2, 50.0))
        self.assertIn("33.3 % of 3 killed by tests; 50.0 % of the 2 that change something", report.text())
        self.assertIn("for a reason", report.text())
        # A test that kills what is listed shows that the list is wrong.
        report.add(kept, "sums_tests: Sums.AddWhatIsAbove", "fails", False)
        self.assertEqual(len(report.wrong), 1)


class Compiling(unittest.TestCase):
    """What the compiler's messages are blamed on."""

    TEXT = 'f((Mutation::Lives(1)?(a <= ")"):Mutation::Lives(2)?(a):((Mutation::Lives(3)?(b):(c)) < d)));\n' \
           "{if(!Mutation::Lives(4)){(Mutation::Lives(5)?(x):(y));}}\n"

    def test_the_innermost_point_is_blamed(self):
        first = self.TEXT.split("\n")[0]
        self.assertEqual(schemata.blamed(self.TEXT, 1, first.index("a <=") + 1), {1, 2})
        self.assertEqual(schemata.blamed(self.TEXT, 1, first.index("b)") + 1), {3})
        self.assertEqual(schemata.blamed(self.TEXT, 2, 3), {4})
        self.assertEqual(schemata.blamed(self.TEXT, 2, self.TEXT.split("\n")[1].index("x)") + 1), {5})

    def test_no_point_is_blamed_for_what_stands_outside(self):
        self.assertEqual(schemata.blamed(self.TEXT, 1, 1), set())


if __name__ == "__main__":
    HOME = pathlib.Path(sys.argv.pop(1)).resolve()
    unittest.main()
