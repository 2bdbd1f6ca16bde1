"""Builds an example host and runs it on the sample store, with the commands that its page tells.

examples_test.py LANGUAGE LIBRARIES SOURCES

LIBRARIES is the folder of the built libraries. Ends with 77 where what the language needs is not installed.
"""

import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import unittest

LANGUAGE = sys.argv.pop(1)
LIBRARIES = pathlib.Path(sys.argv.pop(1)).resolve()
SOURCES = pathlib.Path(sys.argv.pop(1)).resolve()
EXAMPLE = SOURCES / "examples" / LANGUAGE
SAMPLES = SOURCES / "samples"

sys.path.insert(0, str(SOURCES / "tests" / "host"))
from store import make_store  # noqa: E402  (it lies in another folder)

# What each language needs: programs by name, other files by path.
NEEDED = {"java": ["javac", "java", "/usr/share/java/jna.jar"], "csharp": ["mcs", "mono"]}[LANGUAGE]

BASKET = """100101 7.50 - 1.53 = 5.97
100102 2.20 - 0.00 = 2.20
400101 2.61 - 0.52 = 2.09
400199 9.90 - 0.00 = 9.90
600101 14.70 - 2.00 = 12.70
300101 3.20 - 0.00 = 3.20
To pay 36.06
"""


def missing():
    """What is not there of what the language needs."""
    return [name for name in NEEDED if not (pathlib.Path(name).exists() if "/" in name else shutil.which(name))]


def blocks(kind):
    """The blocks of a kind on the example's page."""
    return re.findall(rf"^```{kind}\n(.*?)^```$", (EXAMPLE / "README.md").read_text("utf-8"), re.DOTALL | re.MULTILINE)


class Example(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = tempfile.TemporaryDirectory()
        cls.addClassCleanup(cls.folder.cleanup)
        cls.work = pathlib.Path(cls.folder.name)
        shutil.copytree(EXAMPLE, cls.work, dirs_exist_ok=True)
        (cls.work / "shop").mkdir()
        make_store(SAMPLES, cls.work / "shop")
        shutil.copy(SAMPLES / "sales" / "basket.xml", cls.work / "sale.xml")
        # The page's first commands install what is needed, the second build and run.
        build, cls.run_line = blocks("sh")[1].splitlines()
        subprocess.run(["sh", "-c", build], cwd=cls.work, check=True)

    def run_example(self, store="shop", sale="sale.xml"):
        line = self.run_line.replace("shop sale.xml", f"{store} {sale}")
        environment = {**os.environ, "LD_LIBRARY_PATH": str(LIBRARIES), "LC_ALL": "C.UTF-8"}
        return subprocess.run(["sh", "-c", line], cwd=self.work, env=environment, capture_output=True, encoding="utf-8",
                              check=False)

    def test_a_basket(self):
        run = self.run_example()
        self.assertEqual((run.stdout, run.stderr, run.returncode), (BASKET, "", 0))

    def test_the_page_tells_it(self):
        self.assertEqual(blocks("text"), [BASKET])

    def test_a_folder_that_is_no_store(self):
        (self.work / "nothing").mkdir()
        run = self.run_example(store="nothing")
        self.assertEqual((run.stdout, run.returncode), ("", 1))
        self.assertIn("config.ini", run.stderr)
        self.assertIn("(code 4)", run.stderr)

    def test_a_sale_that_is_cut_off(self):
        (self.work / "cut.xml").write_text('<Sale BillNo="1">\n  <Plu>', "utf-8")
        run = self.run_example(sale="cut.xml")
        self.assertEqual((run.stdout, run.returncode), ("", 1))
        self.assertRegex(run.stderr, r"\ABasket: [^\n]*2:8[^\n]* \(code 2\)\n\Z")

    def test_a_sale_that_is_not_there(self):
        run = self.run_example(sale="none.xml")
        self.assertEqual((run.stdout, run.returncode), ("", 1))
        self.assertIn("none.xml", run.stderr)

    def test_without_arguments(self):
        run = self.run_example(store="", sale="")
        self.assertEqual((run.stdout, run.returncode), ("", 2))
        self.assertIn("Basket STORE SALE", run.stderr)


if __name__ == "__main__":
    if missing():
        print(f"skipped: {', '.join(missing())} not found; {EXAMPLE / 'README.md'} tells the packages")
        sys.exit(77)
    unittest.main()
