"""The manual page and the completions of the host program: whole, sound, and at work in the shells.

tool_pages_test.py PROGRAM SHARE

SHARE is the folder into which the build wrote them.
"""

import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import unittest

from terminal import Shell

PROGRAM = pathlib.Path(sys.argv.pop(1)).resolve()
SHARE = pathlib.Path(sys.argv.pop(1)).resolve()
PAGES = {
    "man": SHARE / "man" / "qncorvane.1",
    "bash": SHARE / "bash" / "qncorvane",
    "zsh": SHARE / "zsh" / "_qncorvane",
    "fish": SHARE / "fish" / "qncorvane.fish",
}
TYPES = ["PTXS", "PTPL", "PTOS", "ZHZY", "ZHZX", "ZHTJ", "ZHGD", "MZMJ", "MZDP", "MZZM", "MZZP", "MZHG", "MZZQ", "MZZF",
         "MZYQ"]


def told(*arguments):
    return subprocess.run([PROGRAM, *arguments], capture_output=True, text=True, check=True).stdout


def commands():
    block = told("--help").split("\nCommands:\n")[1].split("\n\n")[0]
    return re.findall(r"(?m)^  (\w+)", block)


def options(*arguments):
    return re.findall(r"(?m)^  (?:-\w, )?(--[a-z-]+)", told(*arguments, "--help"))


def needs(program):
    return unittest.skipUnless(shutil.which(program), f"{program} is not installed")


class Whole(unittest.TestCase):
    def test_help_has_what_the_following_tests_look_for(self):
        self.assertEqual(commands(), ["calc", "explain", "init", "check", "lint", "till", "help"])
        self.assertEqual(options(), ["--help", "--version"])
        self.assertEqual(options("calc"),
                         ["--help", "--store", "--mode", "--key", "--out", "--xml", "--json", "--lenient"])

    def test_the_build_wrote_what_the_program_says(self):
        for kind, file in PAGES.items():
            self.assertEqual(file.read_text("utf-8"), told("generate", kind), kind)

    def test_the_manual_has_every_command_and_option_in_its_section(self):
        page = PAGES["man"].read_text("utf-8").replace("\\-", "-").replace("\\fB", "").replace("\\fR", "")
        for option in options():
            self.assertRegex(page.split("\n.SH COMMANDS\n")[0], rf"(?m)^(-\w, )?{option}\b")
        for command in commands():
            section = page.split(f"\n.SS qncorvane {command}\n")[1].split("\n.S")[0]
            for option in options(command):
                self.assertRegex(section, rf"(?m)^(-\w, )?{option}\b")
        for title in ("NAME", "SYNOPSIS", "DESCRIPTION", "EXIT STATUS", "ENVIRONMENT", "FILES", "EXAMPLES"):
            self.assertIn(f"\n.SH {title}\n", page)

    def test_the_completions_have_every_command_and_option(self):
        for kind, written in (("bash", "{}"), ("zsh", "{}"), ("fish", "-l {}")):
            script = PAGES[kind].read_text("utf-8")
            for command in commands():
                self.assertIn(command, script)
                lines = [line for line in script.splitlines() if kind != "fish" or f"from {command}'" in line]
                for option in options(command):
                    name = option[2:] if kind == "fish" else option
                    self.assertRegex("\n".join(lines), rf"(?m){re.escape(written.format(name))}\b", (kind, command))
            for word in [*TYPES, "MzPromotion"]:
                self.assertIn(word, script)


class Manual(unittest.TestCase):
    def assert_silent(self, *command):
        run = subprocess.run(command, capture_output=True, text=True, check=False)
        self.assertEqual((run.returncode, run.stderr), (0, ""))
        return run.stdout

    @needs("groff")
    def test_groff_has_nothing_to_say(self):
        self.assert_silent("groff", "-ww", "-man", "-Tutf8", PAGES["man"])

    @needs("mandoc")
    def test_mandoc_has_nothing_to_say(self):
        self.assertEqual(self.assert_silent("mandoc", "-T", "lint", "-W", "warning", PAGES["man"]), "")

    @needs("man")
    def test_man_shows_it(self):
        shown = self.assert_silent("man", "--warnings", "-l", PAGES["man"])
        self.assertRegex(re.sub(r".\x08", "", shown), r"(?m)^ +qncorvane init \[OPTIONS\] DIR$")


class Completion(unittest.TestCase):
    def setUp(self):
        self.folder = pathlib.Path(tempfile.mkdtemp())
        self.addCleanup(shutil.rmtree, self.folder)
        (self.folder / "corner-shop").mkdir()
        (self.folder / "corner-sale.xml").write_text("", "utf-8")

    def completed(self, command, setup, typed, expected, **environment):
        """Types a beginning at a shell of its own, and completes it."""
        shell = Shell(command, self.folder, **environment)
        self.addCleanup(shell.close)
        shell.type(f"{setup}; echo LOA''DED\n", "LOADED")
        with self.subTest(typed):
            self.assertIn(expected, shell.type(f"{typed}\t", expected))

    def test_bash(self):
        setup = f"bind 'set enable-bracketed-paste off'; source '{PAGES['bash']}'"
        for typed, expected in (
            ("qncorvane ca", "qncorvane calc "),
            ("qncorvane calc --le", "--lenient "),
            ("qncorvane calc --mode MzP", "MzPromotion "),
            ("qncorvane calc --mode All,MzP", "All,MzPromotion "),
            ("qncorvane calc --mode=Coup", "--mode=Coupon "),
            ("qncorvane calc --store cor", "corner-shop/"),
            ("qncorvane check --store=cor", "corner-shop/"),
            ("qncorvane lint --fix", "--fix-hints "),
            ("qncorvane calc --store corner-shop --mode All corner-sa", "corner-sale.xml "),
            ("qncorvane init --type ZHG", "ZHGD "),
            ("qncorvane help che", "check "),
            ("qncorvane --ver", "--version "),
        ):
            self.completed(["bash", "--norc", "--noprofile", "-i"], setup, typed, expected)

    @needs("zsh")
    def test_zsh(self):
        setup = f"fpath=('{PAGES['zsh'].parent}' $fpath); autoload -U compinit; compinit -D -u"
        for typed, expected in (("qncorvane ca", "calc "), ("qncorvane calc --le", "--lenient "),
                                ("qncorvane calc --store cor", "corner-shop/"), ("qncorvane init --type ZHG", "ZHGD ")):
            self.completed(["zsh", "-f", "-i"], setup, typed, expected)

    @needs("fish")
    def test_fish(self):
        for typed, expected in (("qncorvane ca", "calc"), ("qncorvane calc --le", "--lenient"),
                                ("qncorvane calc --store cor", "corner-shop/"), ("qncorvane init --type ZHG", "ZHGD"),
                                ("qncorvane calc corner-sa", "corner-sale.xml")):
            script = f"source '{PAGES['fish']}'; complete -C '{typed}'"
            run = subprocess.run(["fish", "--no-config", "-c", script], cwd=self.folder, capture_output=True, text=True,
                                 check=True, env={"HOME": str(self.folder), "PATH": "/usr/bin:/bin"})
            with self.subTest(typed):
                self.assertIn(expected, [line.split("\t")[0] for line in run.stdout.splitlines()])


if __name__ == "__main__":
    unittest.main()
