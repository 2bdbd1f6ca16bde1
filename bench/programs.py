"""The programs of the bench as processes: what they are started with, and what they answer."""

import os
import pathlib
import shutil
import subprocess

import worlds


class Program:
    """A process that runs passes when it is asked to, see bench/Passes.h. Use as a context."""

    def __init__(self, command, environment=None):
        self._process = subprocess.Popen(list(map(str, command)), stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                                         text=True, env={**os.environ, **(environment or {})})
        if self._answer() != ["ready"]:
            raise RuntimeError(f"{command[0]} is not ready")

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self._process.stdin.close()
        self._process.wait()
        self._process.stdout.close()

    def time(self, passes):
        """The median of some passes in seconds: of the processor, of the clock."""
        cpu, wall = self._ask("time", passes)
        return float(cpu) / 1e9, float(wall) / 1e9

    def memory(self, passes):
        """Bytes that the process holds more behind each of some passes, and its peak in kilobytes."""
        held, peak = self._ask("memory", passes)
        return float(held), int(peak)

    def digest(self):
        """A number that stands for the results of a pass."""
        return self._ask("digest", 1)[0]

    def _ask(self, what, passes):
        print(what, passes, file=self._process.stdin, flush=True)
        return self._answer()

    def _answer(self):
        answer = self._process.stdout.readline().split()
        if not answer:
            raise RuntimeError("a program of the bench has ended")
        return answer


class Programs:
    """The folder of the bench's programs."""

    def __init__(self, folder):
        self.folder = pathlib.Path(folder).resolve()

    def engine(self, library, world, environment=None):
        """A library of the engine in a world of its own."""
        return Program([self.folder / "workload", world, "--library", library, "--serve"], environment)

    def floor(self, recording, world):
        """The plain floor of a recording in a world of its own."""
        return Program([self.folder / "floor", world, recording, "--serve"])

    def record(self, library, world, recording):
        """Writes down what a library does in one pass; gives the number of events of each letter."""
        subprocess.run(
            [self.folder / "workload", world, "--library", library, "--record"], check=True,
            env={**os.environ, "LD_PRELOAD": str(self.folder.parent / "lib" / "librecorder.so"),
                 "QNCORVANE_RECORDING": str(recording)})
        return count_events(pathlib.Path(recording).read_bytes())


def count_events(recording):
    """How many events of each letter a recording holds."""
    counts, place = {}, 0
    while place < len(recording):
        end = recording.index(b"\n", place)
        letter, length = recording[place:end].decode().split()
        counts[letter] = counts.get(letter, 0) + 1
        place = end + 1 + int(length) + 1
    return counts


def copy_of(world, folder, settings=worlds.SETTINGS):
    """A copy of a world, for one program alone, with settings of its own."""
    shutil.rmtree(folder, ignore_errors=True)
    shutil.copytree(world, folder)
    (folder / "QnCorvane.txt").unlink(missing_ok=True)
    (folder / "config.ini").write_text(settings, "ascii")
    return folder
