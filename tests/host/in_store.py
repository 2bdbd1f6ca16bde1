"""Runs a command in a fresh copy of the sample store and hands its exit code on.

in_store.py SAMPLES [--flush WORD] COMMAND [ARGUMENT...]

With --flush the store's settings hold the word for the log's "Flush".
"""

import os
import pathlib
import subprocess
import sys
import tempfile

from store import make_store, set_flush


def main() -> int:
    samples, command = pathlib.Path(sys.argv[1]), sys.argv[2:]
    flush = None
    if command[0] == "--flush":
        flush, command = command[1], command[2:]
    with tempfile.TemporaryDirectory() as folder:
        make_store(samples, pathlib.Path(folder))
        if flush:
            set_flush(pathlib.Path(folder), flush)
        return subprocess.run(command, cwd=folder, env=os.environ, check=False).returncode


if __name__ == "__main__":
    code = main()
    # A negative code is a signal: say so, instead of a number that wraps around to nothing.
    sys.exit(code if code >= 0 else f"in_store: the command was ended by signal {-code}")
