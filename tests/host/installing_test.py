"""Follows docs/installing.md, in an empty folder: what it installs into a folder of one's own, and the hosts built on that.

installing_test.py BUILD SOURCES

Each block of "sh" is run as it stands, all of them in one shell; a block of "text" behind it is what it must print, "..." in
it any text within a line. The files that the page shows are written before. Blocks of "console" are root's, and are
followed by tests/package/run.sh.
"""

import os
import pathlib
import re
import subprocess
import sys
import tempfile
import unittest

BUILD = pathlib.Path(sys.argv.pop(1)).resolve()
SOURCES = pathlib.Path(sys.argv.pop(1)).resolve()
PAGE = (SOURCES / "docs" / "installing.md").read_text("utf-8")
END = "--- end of the block ---\n"


def version():
    """The project's version, from the one place where it stands."""
    return re.search(r"^project\(QNCORVANE VERSION ([0-9.]+)", (SOURCES / "CMakeLists.txt").read_text("utf-8"),
                     re.MULTILINE)[1]


def pattern(text):
    return "".join(".*" if piece == "..." else re.escape(piece) for piece in re.split(r"(\.\.\.)", text))


class Installing(unittest.TestCase):
    maxDiff = None

    def test_word_by_word(self):
        blocks = re.findall(r"^```(\w+)\n(.*?)^```$", PAGE, re.DOTALL | re.MULTILINE)
        steps = [(place, text) for place, (kind, text) in enumerate(blocks) if kind == "sh"]
        self.assertEqual(len(steps), 3)
        with tempfile.TemporaryDirectory() as name:
            folder = pathlib.Path(name)
            for file, kind in (("till.c", "c"), ("CMakeLists.txt", "cmake")):
                folder.joinpath(file).write_text(*[text for found, text in blocks if found == kind], "utf-8")
            script = "set -e\n" + "".join(f"{text}printf '%s' '{END}'\n" for _, text in steps)
            environment = {**os.environ, "BUILD": str(BUILD), "PREFIX": str(folder / "prefix"), "LC_ALL": "C.UTF-8"}
            run = subprocess.run(["bash", "-c", script], cwd=folder, env=environment, stdout=subprocess.PIPE,
                                 stderr=subprocess.STDOUT, encoding="utf-8", check=False)
        self.assertEqual(run.returncode, 0, run.stdout)
        printed = run.stdout.split(END)[:-1]
        for (place, commands), said in zip(steps, printed, strict=True):
            kind, expected = blocks[place + 1]
            self.assertEqual(kind, "text", commands)
            if not re.fullmatch(pattern(expected), said):
                self.assertMultiLineEqual(said, expected, commands)

    def test_the_versions_it_tells(self):
        self.assertEqual(set(re.findall(r"\.so\.(\d+\.\d+\.\d+)", PAGE)), {version()})
        self.assertEqual(set(re.findall(r"^(\d+\.\d+\.\d+): the shop is open$", PAGE, re.MULTILINE)), {version()})


if __name__ == "__main__":
    unittest.main()
