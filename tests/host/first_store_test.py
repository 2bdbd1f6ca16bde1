"""Follows docs/first-store.md word by word, in an empty folder.

first_store_test.py PROGRAM SOURCES

Each block of commands is run as it stands, in one shell after the other, each in the folder in which the last one ended. A
block of text behind it is what it must print; "..." there stands for any text within a line.
"""

import os
import pathlib
import re
import subprocess
import sys
import tempfile
import unittest

PROGRAM = pathlib.Path(sys.argv.pop(1)).resolve()
SOURCES = pathlib.Path(sys.argv.pop(1)).resolve()
PAGE = (SOURCES / "docs" / "first-store.md").read_text("utf-8")
WHERE = "\n--- where: "


def blocks():
    """Each block of commands with the text that stands behind it, if any."""
    found = re.findall(r"^```(\w+)\n(.*?)^```$", PAGE, re.DOTALL | re.MULTILINE)
    for place, (kind, text) in enumerate(found):
        if kind == "sh":
            following = found[place + 1] if place + 1 < len(found) else ("", "")
            yield text, following[1] if following[0] == "text" else None


def pattern(text):
    return "".join(".*" if piece == "..." else re.escape(piece) for piece in re.split(r"(\.\.\.)", text))


class FirstStore(unittest.TestCase):
    maxDiff = None

    def test_word_by_word(self):
        environment = {**os.environ, "QNCORVANE": str(SOURCES), "LC_ALL": "C.UTF-8",
                       "PATH": f"{PROGRAM.parent}{os.pathsep}{os.environ['PATH']}"}
        steps = list(blocks())
        self.assertGreaterEqual(len(steps), 10)
        with tempfile.TemporaryDirectory() as folder:
            for commands, expected in steps:
                script = f"{commands}\nprintf '%s%s' '{WHERE}' \"$PWD\"\n"
                answer = subprocess.run(["bash", "-c", script], cwd=folder, env=environment, stdout=subprocess.PIPE,
                                        stderr=subprocess.STDOUT, encoding="utf-8", check=True)
                printed, folder = answer.stdout.rsplit(WHERE, 1)
                if expected is None:
                    self.assertEqual(printed, "", commands)
                elif not re.fullmatch(pattern(expected), printed):
                    self.assertMultiLineEqual(printed, expected, commands)

    def test_the_program_of_the_page_is_the_one_that_dev_builds(self):
        self.assertIn("$QNCORVANE/build/demo/bin", PAGE)
        self.assertIn("build demo\n", (SOURCES / "dev").read_text("utf-8"))


if __name__ == "__main__":
    unittest.main()
