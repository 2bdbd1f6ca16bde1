"""Plays the same tills on two libraries side by side and finds the first answer that differs."""

import collections
import itertools
import json
import os
import pathlib
import queue
import subprocess
import sys
import threading

PLAYER = pathlib.Path(__file__).with_name("player.py")
PARTS = ("return code", "msg", "result", "log")
# Tills on their way to a player: enough that none waits for the other side, few enough that little is played in vain.
AHEAD = 16


def line_of(till):
    """A till as one line of a file."""
    return json.dumps(till).encode() + b"\n"


class PlayerError(Exception):
    """A player that can't go on: its library does not load, or a till is none."""


class Player:
    """A process that has loaded one library and plays what it is sent, in that order, with its log flushed so."""

    def __init__(self, library, schema, patience=10.0, flush=""):
        command = [sys.executable, "-B", str(PLAYER), os.path.abspath(library), os.path.abspath(schema), str(patience),
                   flush]
        self.process = subprocess.Popen(command, stdin=subprocess.PIPE, stdout=subprocess.PIPE, bufsize=1 << 16,
                                        env=environment())
        self.lines = queue.SimpleQueue()
        self.reader = threading.Thread(target=self._read, daemon=True)
        self.reader.start()

    def _read(self):
        """Takes the answers from the pipe as they come, so that the player never waits for somebody to read them."""
        for line in self.process.stdout:
            self.lines.put(line)
        self.lines.put(None)

    def send(self, line):
        try:
            self.process.stdin.write(line)
            self.process.stdin.flush()
        except BrokenPipeError as error:
            raise PlayerError("a player ended; what it said stands above") from error

    def receive(self):
        line = self.lines.get()
        if line is None:
            raise PlayerError("a player ended; what it said stands above")
        return line

    def close(self):
        try:
            self.process.stdin.close()
        except BrokenPipeError:
            pass
        self.process.wait()
        self.reader.join()
        self.process.stdout.close()


def environment():
    """The players' environment: one locale on every machine, and functions bound once instead of in each child."""
    return {**os.environ, "LC_ALL": "C.UTF-8", "LD_BIND_NOW": "1", "TMPDIR": memory_folder()}


def memory_folder():
    """Where the players' stores and logs lie: in memory, where the machine has that."""
    return os.environ.get("TMPDIR") or ("/dev/shm" if os.access("/dev/shm", os.W_OK) else "/tmp")


class Pair:
    """Two players of the same tills, the one of the old and the one of the new library. The new one's settings may say
    when its log is flushed."""

    def __init__(self, old, new, schema, patience=10.0, flush=""):
        self.players = [Player(old, schema, patience), Player(new, schema, patience, flush)]

    def send(self, line):
        for player in self.players:
            player.send(line)

    def receive(self):
        return tuple(player.receive() for player in self.players)

    def play(self, till):
        """The lines that both answer to one till."""
        self.send(line_of(till))
        return self.receive()

    def close(self):
        for player in self.players:
            player.close()

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.close()


def play_all(tills, pairs):
    """Plays the tills on the pairs in turn. Gives each till with the lines of both sides, in the order of the tills."""
    waiting = collections.deque()
    turn = itertools.cycle(pairs)
    for till in tills:
        pair = next(turn)
        pair.send(line_of(till))
        waiting.append((till, pair))
        if len(waiting) == AHEAD * len(pairs):
            first, its_pair = waiting.popleft()
            yield (first, *its_pair.receive())
    for till, pair in waiting:
        yield (till, *pair.receive())


class Difference:
    """The first call of a till that the libraries answer differently."""

    def __init__(self, index, old, new):
        self.index = index  # the call's place in the till
        self.old, self.new = old, new  # answers; a text where the process ended; None where there is none any more

    @property
    def parts(self):
        """What differs: names of PARTS, or the end of the process."""
        if not (isinstance(self.old, list) and isinstance(self.new, list)):
            return ("end",)
        return tuple(name for name, old, new in zip(PARTS, self.old, self.new) if old != new)


def first_difference(old_line, new_line):
    """The first difference of two lines of answers, or None."""
    if old_line == new_line:
        return None
    for index, (old, new) in enumerate(itertools.zip_longest(json.loads(old_line), json.loads(new_line))):
        if old != new:
            return Difference(index, old, new)
    return None
