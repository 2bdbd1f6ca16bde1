"""Changes the rules' code by one operator at a time and looks whether a test fails; see README.md.

Exit code 0: enough mutants of the sample are killed, and the list of equivalent ones is right. 1: not so. 2: it failed.
"""

import argparse
import collections
import concurrent.futures
import fnmatch
import json
import os
import pathlib
import random
import sys
import time

import equivalents
import suite
import tree

HERE = pathlib.Path(__file__).resolve().parent
ROOT = HERE.parents[1]
FOLDERS = ("rule", "promo")
# What is built with mutants. The other programs of tests see nothing but the library, and are those of a plain build.
TARGETS = ("QNCORVANE", "unit_tests")
# Tests that are no gtest programs and look at what a sale comes to.
COMMANDS = r"^host\.(tool|sample_receipts|page_first_store|page_promotions|page_host_guide)$"
COMPARISON = "the comparison"


def arguments():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--count", type=int, default=300, help="mutants in the sample (300)")
    parser.add_argument("--seed", type=int, default=1, help="another number, another sample (1)")
    parser.add_argument("--files", default="*", help="pattern of the files to change, such as 'promo/mz/*' (all)")
    parser.add_argument("--jobs", type=int, default=os.cpu_count() or 1, help="mutants that live at one time")
    parser.add_argument("--least", type=float, default=95.0, help="percent that have to be killed (95)")
    parser.add_argument("--tills", type=int, default=300, help="generated tills for what no test kills; 0 for none (300)")
    parser.add_argument("--again", action="store_true", help="only those that no test killed the last time")
    parser.add_argument("--home", default="build/mutation", help="where the copy is built")
    parser.add_argument("--plain", default="build/ci-gcc", help="a build of this tree without mutants")
    return parser.parse_args()


def say(text):
    print(text, flush=True)


def wanted_files():
    return [path.relative_to(ROOT).as_posix() for folder in FOLDERS for path in sorted((ROOT / folder).rglob("*"))
            if path.suffix in (".h", ".cpp")]


def suite_of(copy, plain):
    """The tests: those of the fastest program first. The plain build's programs load the copy's library."""
    bin_folder, library = plain / "bin", copy.library_key()
    os.environ["LD_LIBRARY_PATH"] = str(copy.build / "lib")
    files = sorted(str(path) for path in (ROOT / "tests/scenarios").glob("*/*.txt"))
    support = suite.sources_of(ROOT / "tests/support")
    tests = suite.scenario_tests(bin_folder / "scenarios", files, library,
                                 support + suite.sources_of(ROOT / "tests/scenarios"))
    tests += suite.gtest_tests(bin_folder / "call_tests", "call_tests", library,
                               support + suite.sources_of(ROOT / "tests/calls"))
    tests += suite.gtest_tests(copy.build / "bin/unit_tests", "unit_tests", library,
                               support + suite.sources_of(ROOT / "tests/unit"))
    tests += suite.command_tests(plain, COMMANDS, library)
    groups = {"scenarios": [str(bin_folder / "scenarios"), *files], "call_tests": [str(bin_folder / "call_tests")],
              "unit_tests": [str(copy.build / "bin/unit_tests")]}
    highest = max((mutant.number for mutant in copy.mutants), default=0)
    return suite.Suite(copy.home, groups, tests, highest)


class Comparison:
    """Generated tills, played on the library with a mutant and on the one without."""

    def __init__(self, copy, tests, count):
        self.copy, self.tests, self.count = copy, tests, count
        self.answers = copy.home / f"answers-{copy.library_key()[:16]}-{count}"
        if count and not self.answers.exists():
            say(f"playing {count} tills without a mutant")
            if self.play(0).failed:
                raise tree.BuildError("the tills can't be played")

    def play(self, number):
        library = self.copy.build / "lib/libQNCORVANE.so"
        schema = self.copy.source / "samples/schema/sqlite.sql"
        return self.tests.run([sys.executable, "-B", str(HERE / "tills.py"), str(library), str(schema),
                               str(self.count), "1", str(self.answers)], {"MUTANT": str(number)}, 300)

    def sees(self, number):
        return self.count > 0 and self.play(number).failed


def told(mutant):
    return (f"{mutant.file}:{mutant.line}:{mutant.column} in {mutant.point.function}: "
            f"`{mutant.change.before}` becomes `{mutant.change.after}`")


class Report:
    """What became of the mutants of a sample."""

    def __init__(self, reasons):
        self.reasons = reasons
        self.killed, self.compared, self.survived, self.unreached, self.equivalent = [], [], [], [], []
        self.wrong = []
        self.by = collections.Counter()

    def add(self, mutant, killer, how, seen):
        listed = equivalents.key_of(mutant) in self.reasons
        if listed and (killer or seen):
            self.wrong.append((mutant, killer or COMPARISON))
        if killer:
            self.killed.append(mutant)
            self.by[killer.split(":")[0].split("/")[0]] += 1
            self.by["(of these by hanging)"] += how == "hangs"
        elif listed and not seen:
            self.equivalent.append(mutant)
        elif seen:
            self.compared.append(mutant)
        elif how == "not reached":
            self.unreached.append(mutant)
        else:
            self.survived.append(mutant)
        return not killer

    def text(self):
        lines = []
        for title, mutants in (("survived", self.survived), ("reached by no test", self.unreached),
                               ("killed by the comparison alone: a test is missing", self.compared)):
            if mutants:
                lines += ["", f"{len(mutants)} {title}:", *(f"  {told(each)}" for each in mutants)]
        if self.equivalent:
            lines += ["", f"{len(self.equivalent)} change nothing that can be seen:"]
            for each in self.equivalent:
                lines += [f"  {told(each)}", f"    {self.reasons[equivalents.key_of(each)]}"]
        for mutant, killer in self.wrong:
            lines.append(f"listed as equivalent, but {killer} tells it apart: {told(mutant)}")
        lines += ["", f"killed by tests: {len(self.killed)}" +
                  "".join(f"; {name} {count}" for name, count in self.by.most_common() if count)]
        lines.append(f"{percent(len(self.killed), self.all()):.1f} % of {self.all()} killed by tests; "
                     f"{self.rate():.1f} % of the {self.real()} that change something; "
                     f"{percent(len(self.killed) + len(self.compared), self.real()):.1f} % with the comparison")
        return "\n".join(lines)

    def all(self):
        return self.real() + len(self.equivalent)

    def real(self):
        return len(self.killed) + len(self.compared) + len(self.survived) + len(self.unreached)

    def rate(self):
        return percent(len(self.killed), self.real())


def percent(part, whole):
    return 100.0 * part / whole if whole else 100.0


def sample_of(copy, options):
    """The mutants to try."""
    chosen = [mutant for mutant in copy.mutants if fnmatch.fnmatch(mutant.file, options.files)]
    if options.again:
        last = json.loads((copy.home / "last.json").read_text())
        if last["key"] != copy.library_key():
            raise tree.BuildError("the code has changed since the last run")
        return [mutant for mutant in chosen if mutant.number in set(last["alive"])], len(chosen)
    # Drawn one by one, a smaller sample of a seed is the beginning of a larger one.
    drawn = list(chosen)
    random.Random(options.seed).shuffle(drawn)
    return sorted(drawn[:options.count], key=lambda mutant: mutant.number), len(chosen)


def stale(copy, reasons):
    """The entries of the list that name no mutant any more."""
    there = {equivalents.key_of(mutant) for mutant in copy.mutants}
    return [key for key in reasons if key not in there]


def main():
    options = arguments()
    begin = time.monotonic()
    reasons = equivalents.read(HERE / "equivalent.txt")
    copy = tree.Tree(ROOT, ROOT / options.home, wanted_files(), TARGETS)
    say(f"building {copy.home.relative_to(ROOT)}")
    copy.make(options.jobs, say)
    tests = suite_of(copy, (ROOT / options.plain).resolve())
    tests.learn(options.jobs, say)
    comparison = Comparison(copy, tests, options.tills)
    sample, among = sample_of(copy, options)
    say(f"{len(sample)} of {among} mutants, seed {options.seed}, {len(tests.tests)} tests; "
        f"{len(copy.dropped)} more don't compile; ready after {time.monotonic() - begin:.0f} s")

    def fate(mutant):
        killer, how = tests.killer(mutant.number)
        return killer, how, not killer and comparison.sees(mutant.number)

    report = Report(reasons)
    alive = []
    with concurrent.futures.ThreadPoolExecutor(options.jobs) as pool:
        for number, (mutant, end) in enumerate(zip(sample, pool.map(fate, sample)), 1):
            if report.add(mutant, *end):
                alive.append(mutant.number)
                say(f"[{number}/{len(sample)}, {time.monotonic() - begin:.0f} s] {end[1]}"
                    f"{', the comparison sees it' if end[2] else ''}: {told(mutant)}")
    (copy.home / "last.json").write_text(json.dumps({"key": copy.library_key(), "alive": alive}))
    say(report.text())
    old = stale(copy, reasons)
    for key in old:
        say(f"equivalent.txt names what is not there: {key.file}, {key.function}: {key.text} / {key.change}")
    say(f"{time.monotonic() - begin:.0f} s")
    return 0 if report.rate() >= options.least and not report.wrong and not old else 1


if __name__ == "__main__":
    try:
        sys.exit(main())
    except (tree.BuildError, equivalents.ListError, OSError, ValueError) as failure:
        print(f"mutate: {failure}", file=sys.stderr)
        sys.exit(2)
