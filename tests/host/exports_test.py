"""What leaves the library: the eight calls, and of C++ nothing but Corvane::SqlArg.

exports_test.py LIBRARY
"""

import subprocess
import sys
import unittest

LIBRARY = sys.argv.pop(1)

CALLS = {
    "BeginInitPro",
    "InitPromotion",
    "FinishInitPro",
    "ClearPromotion",
    "CalcPromotion",
    "DeleteSaleSetByKey",
    "ClearSaleSetForNet",
    "GetState",
}


def exported():
    """The defined dynamic symbols, as the linker knows them and as a reader does."""
    listing = subprocess.run(["nm", "-D", "--defined-only", "-C", LIBRARY], check=True, capture_output=True, text=True)
    return {line.split(maxsplit=2)[2] for line in listing.stdout.splitlines()}


class Exports(unittest.TestCase):
    def test_the_eight_calls_are_plain_names(self):
        self.assertEqual(CALLS - exported(), set())

    def test_sql_arg_is_there(self):
        self.assertTrue(any(name.startswith("Corvane::SqlArg::getIntSQL(") for name in exported()), exported())

    def test_nothing_else_is_there(self):
        others = {name for name in exported() - CALLS if not name.startswith("Corvane::SqlArg::")}
        self.assertEqual(others, set())


if __name__ == "__main__":
    unittest.main()
