"""Runs a command in a fresh copy of the sample store and hands its exit code on.

in_store.py SAMPLES COMMAND [ARGUMENT...]
"""

import os
import pathlib
import subprocess
import sys
import tempfile

from store import make_store


def main() -> int:
    samples, command = pathlib.Path(sys.argv[1]), sys.argv[2:]
    with tempfile.TemporaryDirectory() as folder:
        make_store(samples, pathlib.Path(folder))
        return subprocess.run(command, cwd=folder, env=os.environ, check=False).returncode


if __name__ == "__main__":
    code = main()
    # A negative code is a signal: say so, instead of a number that wraps around to nothing.
    sys.exit(code if code >= 0 else f"in_store: the command was ended by signal {-code}")
