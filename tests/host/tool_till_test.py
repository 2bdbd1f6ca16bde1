"""The till as the host program starts it: what it hands over, what it says when something is missing, and a real terminal.

tool_till_test.py PROGRAM SOURCES
"""

import os
import pathlib
import shutil
import subprocess
import sys
import tempfile
import unittest

from store import make_store
from terminal import Shell

PROGRAM = pathlib.Path(sys.argv.pop(1)).resolve()
SOURCES = pathlib.Path(sys.argv.pop(1)).resolve()
PACKAGE = SOURCES / "bindings" / "python" / "src"
# Debian's interpreter, for which Debian's packages are.
PATH = "/usr/bin:/bin"
PLAIN = {name: value for name, value in os.environ.items()
         if name not in ("QNCORVANE_HOST_LIBRARY", "PYTHONPATH", "LC_ALL", "LC_MESSAGES", "LANG")}
MISSING = ("qncorvane: this command needs Python 3.11 with the package qncorvane: install Debian's package "
           "python3-qncorvane\n")


def has(module):
    return subprocess.run(["python3", "-c", f"import {module}"], env={"PATH": PATH}, capture_output=True,
                          check=False).returncode == 0


@unittest.skipUnless(has("tomllib"), "Debian's python3 is none of 3.11")
class Till(unittest.TestCase):
    def setUp(self):
        self.folder = pathlib.Path(tempfile.mkdtemp())
        self.addCleanup(shutil.rmtree, self.folder)
        make_store(SOURCES / "samples", self.folder / "shop")

    def till(self, *arguments, typed="", **environment):
        return subprocess.run([PROGRAM, "till", *arguments], cwd=self.folder, input=typed, capture_output=True, text=True,
                              check=False, timeout=60,
                              env={**PLAIN, "PATH": PATH, "PYTHONPATH": str(PACKAGE), "PYTHONDONTWRITEBYTECODE": "1", **environment})

    def test_a_script(self):
        run = self.till("--store", "shop", "--script", "-", typed="date 2024-06-15\n3 x 100101\n")
        self.assertEqual((run.returncode, run.stderr), (0, ""))
        self.assertIn(f"At the subtotal{'5.97':>65}\n", run.stdout)

    def test_a_script_from_a_file_whose_name_begins_with_a_dash(self):
        (self.folder / "-tries").write_text("void 1\n", "utf-8")
        run = self.till("--store", "shop", "--script=-tries")
        self.assertEqual((run.returncode, run.stderr), (1, "qncorvane: -tries:1: the sale has no line 1\n"))

    def test_the_language_is_the_environment_s_unless_it_is_told(self):
        self.assertIn("At the subtotal", self.till("--store", "shop", "--script", "-", typed="100102").stdout)
        self.assertIn("预计应付", self.till("--store", "shop", "--script", "-", typed="100102", LANG="zh_CN.UTF-8").stdout)
        run = self.till("--store", "shop", "--script", "-", "--lang", "en", typed="100102", LANG="zh_CN.UTF-8")
        self.assertIn("At the subtotal", run.stdout)

    def test_the_key_is_handed_over(self):
        self.till("--store", "shop", "--key", "till 7", "--script", "-", typed="100102")
        self.assertIn("till 7/T-0001", (self.folder / "shop" / "QnCorvane.txt").read_text("utf-8", "replace"))

    def test_a_store_that_is_not_there(self):
        run = self.till("--store", "none", "--script", "-")
        self.assertEqual((run.returncode, run.stdout), (1, ""))
        self.assertTrue(run.stderr.startswith("qncorvane: none: there is no such folder"), run.stderr)

    def test_no_python_or_no_package(self):
        for environment in ({"PATH": str(self.folder)}, {"PYTHONPATH": str(self.folder)}):
            if "PYTHONPATH" in environment and has("qncorvane"):
                continue
            run = self.till("--store", "shop", **environment)
            self.assertEqual((run.returncode, run.stdout, run.stderr), (1, "", MISSING))

    def test_a_file_in_the_current_folder_is_no_module(self):
        (self.folder / "qncorvane.py").write_text("print('taken')", "utf-8")
        (self.folder / "decimal.py").write_text("print('taken')", "utf-8")
        run = self.till("--store", "shop", "--script", "-")
        self.assertEqual((run.returncode, run.stdout, run.stderr), (0, "", ""))

    def test_a_library_that_the_environment_names_goes_first(self):
        run = self.till("--store", "shop", "--script", "-", QNCORVANE_HOST_LIBRARY="/nowhere/lib.so")
        self.assertEqual(run.returncode, 1)
        self.assertIn("/nowhere/lib.so can't be used", run.stderr)

    def test_command_lines_that_make_no_sense(self):
        for arguments, text in (([], "--store is required"), (["--store", ""], "--store must not be empty"),
                                (["--store", "shop", "--key", ""], "--key must not be empty"),
                                (["--store", "shop", "--script", ""], "--script must not be empty"),
                                (["--store", "shop", "--lang", "de"], "unknown language 'de'; the languages are en, zh"),
                                (["--store", "shop", "more"], "not expected: more")):
            run = self.till(*arguments)
            self.assertEqual((run.returncode, run.stdout), (2, ""), arguments)
            self.assertIn(text, run.stderr)

    @unittest.skipUnless(has("prompt_toolkit"), "python3-prompt-toolkit is not installed")
    def test_a_terminal(self):
        environment = {"PATH": PATH, "PYTHONPATH": str(PACKAGE), "TERM": "xterm", "LC_ALL": "C.UTF-8"}
        shell = Shell(["bash", "--norc", "--noprofile", "-i"], self.folder, **environment)
        self.addCleanup(shell.close)
        shell.type("unset QNCORVANE_HOST_LIBRARY; echo REA''DY\n", "READY")
        self.assertIn("No goods yet", shell.type(f"'{PROGRAM}' till --store shop\n", "Ctrl-D quits"))
        self.assertIn("3 x Apple juice 1 l: 6.60", shell.type("3 x 100102\r", "3 x Apple juice 1 l: 6.60"))
        self.assertIn("To pay 6.60", shell.type("\x03subtotal\r", "To pay 6.60"))
        self.assertIn("the sale has no line 9", shell.type("void 9\r", "the sale has no line 9"))
        shell.type("\x04", "$ ")
        self.assertIn("ended with 0", shell.type("echo ended with $?\n", "ended with 0"))


if __name__ == "__main__":
    unittest.main()
