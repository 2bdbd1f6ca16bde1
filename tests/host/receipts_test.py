"""What the sample store's promotions give: the walks of samples/walks.txt against the receipts beside them.

receipts_test.py PROGRAM SAMPLES

A receipt holds what the host program prints for the walk, up to the two lines that tell where the files lie. Its numbers
were checked by hand against the store's rules; a rule that changes needs its receipts checked by hand again.
"""

import pathlib
import subprocess
import sys
import tempfile
import unittest

from store import make_store

PROGRAM = pathlib.Path(sys.argv.pop(1)).resolve()
SAMPLES = pathlib.Path(sys.argv.pop(1)).resolve()


def read_walks():
    """Name and steps of each walk."""
    walks = {}
    for line in (SAMPLES / "walks.txt").read_text("utf-8").splitlines():
        if line.startswith("#"):
            continue
        name, _title, steps = (part.strip() for part in line.split("|"))
        walks[name] = steps.replace("=", f"={SAMPLES}/sales/")
    return walks


def print_walk(name, steps):
    """What the program prints for the walk in a fresh store, without the places of the files."""
    with tempfile.TemporaryDirectory() as folder:
        store = pathlib.Path(folder, "store")
        make_store(SAMPLES, store)
        command = [PROGRAM, "calc", "--store", store, "--mode", steps, "--key", name, "--out", pathlib.Path(folder, "out")]
        run = subprocess.run(command, capture_output=True, text=True, check=False)
    if run.returncode != 0:
        raise AssertionError(f"{name}: exit code {run.returncode}: {run.stderr}")
    return run.stdout.split("\nResult XML:")[0]


class Receipts(unittest.TestCase):
    maxDiff = None

    def test_every_walk(self):
        walks = read_walks()
        self.assertGreaterEqual(len(walks), 14)
        for name, steps in walks.items():
            with self.subTest(name):
                expected = (SAMPLES / "receipts" / f"{name}.txt").read_text("utf-8")
                self.assertMultiLineEqual(print_walk(name, steps), expected)


if __name__ == "__main__":
    unittest.main()
