"""The soak's own tests: it finds an engine that ages, and a seed leads to the same step again.

soak_test.py HOST LIBRARY ALTERED SCHEMA: the program that hosts an engine, the library, the module that alters it, the
store's tables.
"""

import os
import pathlib
import re
import subprocess
import sys
import unittest

HOST, LIBRARY, ALTERED, SCHEMA = (os.path.abspath(path) for path in sys.argv[1:5])
SOAK = pathlib.Path(__file__).with_name("soak.py")


def run(word, steps, seed=1):
    """The command on an altered library: exit code and output."""
    done = subprocess.run([sys.executable, "-B", str(SOAK), HOST, ALTERED, SCHEMA, "--steps", str(steps),
                           "--seed", str(seed)], check=False, capture_output=True, text=True,
                          env={**os.environ, "QNCORVANE_REAL": LIBRARY, "QNCORVANE_ALTER": word})
    return done.returncode, done.stdout + done.stderr


class Finds(unittest.TestCase):
    def test_an_engine_that_answers_otherwise_after_a_while(self):
        code, output = run("late", 1000)
        self.assertEqual(code, 1, output)
        self.assertRegex(output, "differs from a fresh engine|twice gives something else")

    def test_a_seed_leads_to_the_same_step_again(self):
        steps = set()
        for _ in range(2):
            code, output = run("late", 1000, 7)
            self.assertEqual(code, 1, output)
            steps.add(re.search(r"^again: --seed 7 --steps (\d+)$", output, re.MULTILINE).group(1))
        self.assertEqual(len(steps), 1)

    def test_a_digit_that_is_always_wrong(self):
        code, output = run("digit", 1000)
        self.assertEqual(code, 1, output)
        self.assertRegex(output, "discounts are not what left the line|shares do not sum")

    def test_memory_that_is_not_given_back(self):
        code, output = run("leak", 3000)
        self.assertEqual(code, 1, output)
        self.assertIn("the heap grew", output)

    def test_descriptors_that_stay_open(self):
        code, output = run("descriptors", 3000)
        self.assertEqual(code, 1, output)
        self.assertIn("open descriptors grew", output)

    def test_a_crash(self):
        code, output = run("crash", 1000)
        self.assertEqual(code, 1, output)
        self.assertIn("the host ended with code -11", output)

    def test_nothing_where_nothing_is_altered(self):
        code, output = run("nothing", 300)
        self.assertEqual(code, 0, output)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
