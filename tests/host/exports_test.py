"""What leaves the libraries: the eight calls, and of C++ nothing but Corvane::SqlArg; the safe face's calls, and nothing else.

exports_test.py LIBRARY HOST_LIBRARY HOST_HEADER
"""

import pathlib
import re
import subprocess
import sys
import unittest

LIBRARY, HOST_LIBRARY, HOST_HEADER = (sys.argv.pop(1) for _ in range(3))

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


def exported(library=LIBRARY):
    """The defined dynamic symbols, as the linker knows them and as a reader does."""
    listing = subprocess.run(["nm", "-D", "--defined-only", "-C", library], check=True, capture_output=True, text=True)
    return {line.split(maxsplit=2)[2] for line in listing.stdout.splitlines()}


class Exports(unittest.TestCase):
    def test_the_eight_calls_are_plain_names(self):
        self.assertEqual(CALLS - exported(), set())

    def test_sql_arg_is_there(self):
        self.assertTrue(any(name.startswith("Corvane::SqlArg::getIntSQL(") for name in exported()), exported())

    def test_nothing_else_is_there(self):
        others = {name for name in exported() - CALLS if not name.startswith("Corvane::SqlArg::")}
        self.assertEqual(others, set())

    def test_the_safe_face_is_what_its_header_tells(self):
        header = pathlib.Path(HOST_HEADER).read_text("utf-8")
        told = set(re.findall(r"QNCORVANE_API [^;(]*?(qnc_\w+)\(", header))
        self.assertGreater(len(told), 10)
        self.assertEqual(exported(HOST_LIBRARY), told)


if __name__ == "__main__":
    unittest.main()
