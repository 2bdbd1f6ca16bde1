"""Hosts that call while the process ends: every call answers, the process ends well, and the log has the story.

late_test.py LIBRARY LATE_HOST_C LATE_HOST_CPP SAMPLES
"""

import pathlib
import subprocess
import sys
import tempfile
import unittest

from store import make_store, set_flush

LIBRARY, C_HOST, CPP_HOST, SAMPLES = (sys.argv.pop(1) for _ in range(4))


def make_sample_store(folder):
    make_store(pathlib.Path(SAMPLES), folder)


def flush_by_calls(folder):
    set_flush(folder, "call")


class LateCalls(unittest.TestCase):
    def run_host(self, *command):
        """Runs a host in an empty folder, and once more in the sample store with a rule that reads a table there; both
        also with a log that is written when a call returns.

        Returns how often all late calls were answered, which is the same each time.
        """
        answered = self.run_in(lambda folder: None, command)
        for prepare, arguments in ((make_sample_store, ("tables",)), (flush_by_calls, ()),
                                   (lambda folder: (make_sample_store(folder), flush_by_calls(folder)), ("tables",))):
            self.assertEqual(self.run_in(prepare, (*command, *arguments)), answered)
        return answered

    def run_in(self, prepare, command):
        with tempfile.TemporaryDirectory() as folder:
            prepare(pathlib.Path(folder))
            done = subprocess.run(command, cwd=folder, capture_output=True, text=True, timeout=120, check=False)
            self.assertEqual(done.returncode, 0, done.stderr)
            log = (pathlib.Path(folder) / "QnCorvane.txt").read_text("utf-8")
        self.assertIn("赠券方案个数1", log[log.rindex("pro initialize failed<x/>"):])
        return done.stdout.count("late calls: all answered")

    def test_from_a_handler_registered_before_the_library_was_loaded(self):
        self.assertEqual(self.run_host(C_HOST, LIBRARY, "before"), 1)

    def test_from_a_handler_registered_after_the_first_calls(self):
        self.assertEqual(self.run_host(C_HOST, LIBRARY, "after"), 1)

    def test_from_a_handler_alone(self):
        self.assertEqual(self.run_host(C_HOST, LIBRARY, "only"), 1)

    def test_from_a_handler_that_loads_the_library(self):
        self.assertEqual(self.run_host(C_HOST, LIBRARY, "loading"), 1)

    def test_from_destructors_of_global_objects(self):
        self.assertEqual(self.run_host(CPP_HOST), 2)


if __name__ == "__main__":
    unittest.main()
