"""The programs of docs/host-guide.md, built and run as they stand.

guide_test.py COMPILER LINKER HOST_LIBRARY EIGHT_CALLS_LIBRARY SOURCES [FLAG...]
"""

import json
import os
import pathlib
import re
import subprocess
import sys
import tempfile
import unittest

COMPILER, LINKER, FACE, EIGHT, SOURCES = (sys.argv.pop(1) for _ in range(5))
FLAGS = [sys.argv.pop(1) for _ in range(len(sys.argv) - 1)]
SOURCES = pathlib.Path(SOURCES)
sys.path.insert(0, str(SOURCES / "tests" / "host"))

from store import make_store  # noqa: E402

PAGE = (SOURCES / "docs" / "host-guide.md").read_text("utf-8")
# What an interpreter needs before a library with sanitizers is nothing for a program that is built with them.
PLAIN = {name: value for name, value in os.environ.items() if name != "LD_PRELOAD"}
READ = """
#include <stdlib.h>
static char* Text(const char* name) {
  FILE* file = fopen(name, "rb");
  char* text = calloc(1, 1 << 16);
  if (file != NULL && fread(text, 1, (1 << 16) - 1, file) > 0) fclose(file);
  return text;
}
int main(void) { return Subtotal(Text("rules/PTXS-01-juice.xml"), Text("sale.xml")); }
"""


def block(language, holding):
    """The one program of a language that holds these words."""
    found = [text for text in re.findall(rf"```{language}\n(.*?)```", PAGE, re.DOTALL) if holding in text]
    assert len(found) == 1, (holding, len(found))
    return found[0]


class Examples(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.TemporaryDirectory()
        self.addCleanup(self.folder.cleanup)
        self.store = pathlib.Path(self.folder.name) / "shop"
        self.store.mkdir()
        make_store(SOURCES / "samples", self.store)
        (self.store / "sale.xml").write_bytes((SOURCES / "samples" / "sales" / "basket.xml").read_bytes())

    def build(self, text, library):
        folder = pathlib.Path(self.folder.name)
        source, built, program = folder / "till.c", folder / "till.o", folder / "till"
        source.write_text(text, "utf-8")
        subprocess.run([COMPILER, "-Wall", "-Wextra", "-Werror", *FLAGS, f"-I{SOURCES / 'include'}", "-c", source,
                        "-o", built], check=True)
        # Sanitizers' runtimes for C++ come with its compiler alone.
        subprocess.run([LINKER, *FLAGS, built, library, f"-Wl,-rpath,{os.path.dirname(library)}", "-o", program],
                       check=True)
        return program

    def run_in_store(self, *command, **more):
        return subprocess.run(command, cwd=self.store, capture_output=True, text=True, timeout=60, check=False, **more)

    def test_the_safe_face(self):
        program = self.build(block("c", "qnc_open"), FACE)
        ran = self.run_in_store(program, self.store, env=PLAIN)
        self.assertEqual((ran.returncode, ran.stderr), (0, ""))
        totals = json.loads(ran.stdout)["totals"]
        self.assertEqual(totals, json.loads(block("json", "beforeCents")))

    def test_the_safe_face_says_what_is_wrong(self):
        program = self.build(block("c", "qnc_open"), FACE)
        (self.store / "store.db").unlink()
        ran = self.run_in_store(program, self.store, env=PLAIN)
        self.assertEqual(ran.returncode, 1)
        self.assertIn("./store.db: the database file is missing; ", ran.stderr)

    def test_the_eight_calls_in_c(self):
        program = self.build(block("c", "CalcPromotion") + READ, EIGHT)
        ran = self.run_in_store(program, env=PLAIN)
        self.assertEqual((ran.returncode, ran.stderr), (0, ""))
        self.assertIn('DisMoney="1.53" ProBillNo="PTXS-01"', ran.stdout)

    def test_the_eight_calls_in_python(self):
        program = block("python", "CalcPromotion").replace("libQNCORVANE.so", EIGHT)
        ran = self.run_in_store(sys.executable, "-c", program)
        self.assertTrue(ran.stdout.startswith("0 sucess <?xml"), ran.stderr)
        self.assertIn('DisMoney="1.53" ProBillNo="PTXS-01"', ran.stdout)

    def test_codes_are_those_of_the_header(self):
        header = (SOURCES / "include" / "qncorvane" / "host.h").read_text("utf-8")
        codes = dict(re.findall(r"^  (QNC_[A-Z_]+) = (\d+),? +/\*\*<", header.split("qnc_flags")[0], re.MULTILINE))
        self.assertGreater(len(codes), 10)
        for name, number in codes.items():
            self.assertRegex(PAGE, rf"(?m)^\| [0-9, ]*\b{number}\b[0-9, ]* .*`{name}`")

    def test_every_call_is_told(self):
        header = (SOURCES / "include" / "qncorvane" / "host.h").read_text("utf-8")
        for name in re.findall(r"QNCORVANE_API [^;(]*?(qnc_\w+)\(", header):
            self.assertIn(f"`{name}`", PAGE)


if __name__ == "__main__":
    unittest.main()
