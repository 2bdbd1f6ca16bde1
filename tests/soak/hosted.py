"""A process that hosts an engine, and calls to it."""

import collections
import os
import select
import subprocess

Answer = collections.namedtuple("Answer", "code msg out")
Memory = collections.namedtuple("Memory", "heap resident descriptors")
# What is freed goes back at once: pieces that the allocator keeps at hand for a thread would count as in use.
ENVIRONMENT = {"LC_ALL": "C.UTF-8", "GLIBC_TUNABLES": "glibc.malloc.tcache_count=0"}
# A call that takes so many seconds hangs. The settings of the soak let a lock hold one up for about two.
PATIENCE = 60.0


class Lost(Exception):
    """A host that ended, or whose call does not come back."""


class Hosted:
    """An engine in a process of its own, in a folder. The calls are those of the library."""

    def __init__(self, host, library, folder):
        self.calls = 0
        self.process = subprocess.Popen([host, library], cwd=folder, stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                                        bufsize=0, env={**os.environ, **ENVIRONMENT})
        self.held = b""

    def call(self, letter, *texts):
        data = [text.encode("utf-8", "surrogateescape") for text in texts]
        lengths = [len(text) for text in data] + [0] * (3 - len(data))
        self.calls += 1
        try:
            self.process.stdin.write(b"%c %d %d %d\n" % (letter.encode(), *lengths) + b"".join(data))
        except BrokenPipeError:
            pass  # how it ended shows when the answer is read
        code, msg, out = map(int, self.take(self.line_length()).split())
        text = self.take(msg + out)
        return Answer(code, *(part.decode("utf-8", "surrogateescape") for part in (text[:msg], text[msg:])))

    def line_length(self):
        while b"\n" not in self.held:
            self.fill()
        return self.held.index(b"\n") + 1

    def take(self, length):
        while len(self.held) < length:
            self.fill()
        taken, self.held = self.held[:length], self.held[length:]
        return taken

    def fill(self):
        if not select.select([self.process.stdout], [], [], PATIENCE)[0]:
            raise Lost(f"a call does not come back within {PATIENCE:.0f} seconds")
        data = os.read(self.process.stdout.fileno(), 1 << 20)
        if not data:
            raise Lost(f"the host ended with code {self.process.wait()}")
        self.held += data

    def begin(self):
        return self.call("B")

    def load(self, kind, xml):
        return self.call("I", kind, xml)

    def finish(self):
        return self.call("F")

    def clear_rule(self, number):
        return self.call("R", number)

    def calculate(self, key, mode, xml):
        return self.call("C", key, mode, xml)

    def delete(self, key):
        return self.call("D", key)

    def clear_sales(self):
        return self.call("N")

    def state(self):
        return self.call("S").msg

    def memory(self):
        return Memory(*map(int, self.call("M").msg.split()))

    def close(self):
        """@return the exit code of the process."""
        self.process.stdin.close()
        try:
            return self.process.wait(PATIENCE)
        except subprocess.TimeoutExpired:
            self.process.kill()
            return self.process.wait()
        finally:
            self.process.stdout.close()
