"""Plays tills on one library: reads a till a line, writes its answers a line.

player.py LIBRARY SCHEMA [PATIENCE [FLUSH]]

Each till is played in a child that this process forks after it has loaded the library and before anybody has called it:
no till finds what another left behind, and one that crashes or hangs ends alone. The process's end of input is its end.
"""

import ctypes
import gc
import glob
import json
import mmap
import os
import pathlib
import re
import resource
import select
import shutil
import signal
import sqlite3
import sys
import tempfile
import traceback

import stores

UNTOUCHED = b"(untouched)"
ROOM = 8 << 20
LOG = "QnCorvane.txt"
ANSWERS = "answers"
ENTRY = re.compile(rb"(?:^|\n\r)\d{4}-\d\d-\d\d \d\d:\d\d:\d\d  ")
OFFERS = re.compile(r"<ProGifts>.*</ProGifts>", re.DOTALL)
OFFERED = re.compile(r'(<Data\b[^<>]*?\bHgPluCount=")[^"]*(")')
# What the line of a child begins with that could not play its till at all.
FAILED = b"!"


def bytes_of(text):
    """The bytes of a text of a till. Bytes that are no UTF-8 stand in it as lone surrogates; None is a null pointer."""
    return None if text is None else text.encode("utf-8", "surrogateescape")


def text_of(data):
    """The text of bytes that a library gave."""
    return data.decode("utf-8", "surrogateescape")


def with_picks(result, picks):
    """The sale XML of a gift choice: the offers of a result as they came, with the picks filled in.

    `picks` has the number of an offered article, counted from 0 over all offers, and the `HgPluCount` that it gets.
    """
    found = OFFERS.search(result)
    if not found:
        return "<Sale/>"
    numbers = iter(range(len(result)))

    def pick(match):
        count = picks.get(str(next(numbers)))
        return match.group(0) if count is None else f"{match.group(1)}{count}{match.group(2)}"

    return f"<Sale>{OFFERED.sub(pick, found.group(0))}</Sale>"


def buffer():
    """Room for a text of the engine. Mapped, so that a fork copies nothing of it and only what is written takes
    memory."""
    return (ctypes.c_char * ROOM).from_buffer(mmap.mmap(-1, ROOM))


class Engine:
    """A library behind its exported calls."""

    def __init__(self, path):
        self.library = ctypes.CDLL(path)
        text = ctypes.c_char_p
        for name, arguments in {"InitPromotion": 3, "ClearPromotion": 2, "CalcPromotion": 5, "DeleteSaleSetByKey": 1,
                                "ClearSaleSetForNet": 1, "GetState": 1}.items():
            getattr(self.library, name).argtypes = [text] * arguments
        self.library.GetState.restype = ctypes.c_void_p
        self.out, self.msg = buffer(), buffer()

    def prepare(self):
        """Marks both buffers, so that a call that leaves one alone shows."""
        self.out.value = self.msg.value = UNTOUCHED


class Till:
    """One till: the calls of it on an engine that nobody has called before, in the current directory."""

    def __init__(self, engine, till):
        self.engine, self.till = engine, till
        self.results = {}
        self.store = None
        self.log = os.open(LOG, os.O_RDWR | os.O_CREAT)

    def answers(self):
        """For each call its return code, `msg`, `out` and the log entries that it wrote."""
        for call in self.till["calls"]:
            self.engine.prepare()
            code = getattr(self, "play_" + call[0])(*call[1:])
            yield [code, text_of(self.engine.msg.value), text_of(self.engine.out.value), self.take_log()]

    def take_log(self):
        """The texts of the log's entries without their times; an entry of another form keeps all that it has."""
        size = os.fstat(self.log).st_size
        if size == 0:
            return []
        data = os.pread(self.log, size, 0)
        os.ftruncate(self.log, 0)
        entries = ENTRY.split(data)
        return [text_of(entry) for entry in entries[0 if entries[0] else 1:]]

    def play_BeginInitPro(self):
        return self.engine.library.BeginInitPro()

    def play_FinishInitPro(self):
        return self.engine.library.FinishInitPro()

    def play_InitPromotion(self, kind, xml):
        return self.engine.library.InitPromotion(bytes_of(kind), bytes_of(xml), self.engine.msg)

    def play_ClearPromotion(self, number):
        return self.engine.library.ClearPromotion(self.engine.msg, bytes_of(number))

    def play_CalcPromotion(self, key, mode, xml):
        code = self.engine.library.CalcPromotion(bytes_of(key), bytes_of(mode), bytes_of(xml), self.engine.out,
                                                 self.engine.msg)
        if b"<ProGifts" in self.engine.out.value:
            self.results[key] = text_of(self.engine.out.value)
        return code

    def play_Gift(self, key, picks):
        return self.play_CalcPromotion(key, "Gift", with_picks(self.results.get(key, ""), picks))

    def play_DeleteSaleSetByKey(self, key):
        return self.engine.library.DeleteSaleSetByKey(bytes_of(key))

    def play_ClearSaleSetForNet(self):
        return self.engine.library.ClearSaleSetForNet(self.engine.msg)

    def play_GetState(self):
        return int(self.engine.library.GetState(self.engine.out) == ctypes.addressof(self.engine.out))

    def play_Sql(self, statement):
        """A change of the store. That it is refused is an answer too, and the same on both sides."""
        try:
            self.store = self.store or stores.open_store(stores.STORE)
            self.store.execute(statement)
            return 0
        except sqlite3.Error as error:
            self.engine.msg.value = bytes_of(str(error))
            return -1


def play_in_child(engine, till, answers):
    """Plays a till and writes each answer to a file as soon as it is there. Does not come back."""
    try:
        gc.disable()
        signal.signal(signal.SIGTERM, signal.SIG_DFL)
        for answer in Till(engine, till).answers():
            os.write(answers, json.dumps(answer).encode() + b"\n")
        os._exit(0)
    except BaseException:  # pylint: disable=broad-except
        os.write(answers, FAILED + json.dumps(traceback.format_exc()).encode() + b"\n")
        os._exit(70)


def ended_in_time(child, alive, patience):
    """Waits for the end of a child, which closes the pipe `alive`. One that takes too long is ended here."""
    poll = select.poll()
    poll.register(alive, select.POLLIN)
    if poll.poll(patience * 1000):
        return True
    os.kill(child, signal.SIGKILL)
    return False


def ending(status):
    """How a child ended that did not come to its end by itself; None when it did."""
    if os.WIFSIGNALED(status):
        return f"crashed: {signal.Signals(os.WTERMSIG(status)).name}"
    code = os.WEXITSTATUS(status)
    return f"ended: exit code {code}" if code else None


def play(engine, till, patience):
    """The answers of one till as a line of JSON, the last of which may be how the child ended."""
    answers = os.open(ANSWERS, os.O_RDWR | os.O_CREAT | os.O_TRUNC)
    alive, held = os.pipe()
    child = os.fork()
    if child == 0:
        os.close(alive)
        play_in_child(engine, till, answers)
    os.close(held)
    in_time = ended_in_time(child, alive, patience)
    os.close(alive)
    _, status = os.waitpid(child, 0)
    written = os.pread(answers, os.fstat(answers).st_size, 0)
    os.close(answers)
    return line_of_answers(written, ending(status) if in_time else "hung")


def line_of_answers(written, end):
    """One line of the answers that a child wrote, and of its end if that was not the till's."""
    lines = written.split(b"\n")
    lines.pop()  # behind the last newline: nothing, or what a crash cut off
    if lines and lines[-1].startswith(FAILED):
        raise RuntimeError(json.loads(lines[-1][len(FAILED):]))
    if end:
        lines.append(json.dumps(end).encode())
    return b"[" + b",".join(lines) + b"]\n"


def make_folder(templates, till, flush):
    """Makes the current directory that of a till that nobody has played yet."""
    for name in os.listdir("."):
        os.unlink(name)
    kind = till.get("store", "keyed")
    pathlib.Path("config.ini").write_text(stores.settings(kind, flush), "ascii")
    pathlib.Path(stores.STORE).write_bytes(stores.with_rows(templates[kind], till["rows"]))


def load_driver():
    """Takes the database driver into this process, so that not each child has to find and link it."""
    for path in glob.glob("/usr/lib/*/qt5/plugins/sqldrivers/libqsqlite.so"):
        try:
            ctypes.CDLL(path)
        except OSError:
            pass  # it only saves time


def main():
    engine = Engine(sys.argv[1])
    templates = stores.templates(pathlib.Path(sys.argv[2]).read_text("utf-8"))
    patience = float(sys.argv[3]) if len(sys.argv) > 3 else 10.0
    flush = sys.argv[4] if len(sys.argv) > 4 else ""
    load_driver()
    resource.setrlimit(resource.RLIMIT_CORE, (0, 0))
    home = tempfile.mkdtemp(prefix="qncorvane-compare-")
    answers = os.fdopen(os.dup(1), "wb")
    os.chdir(home)
    # What a library or the language's runtime says of itself on these is not an answer.
    silent = os.open(os.devnull, os.O_WRONLY)
    os.dup2(silent, 1)
    errors = os.dup(2)
    os.dup2(silent, 2)
    # What is there now stays; the collector need not touch it in each child.
    gc.freeze()
    try:
        for line in sys.stdin.buffer:
            till = json.loads(line)
            make_folder(templates, till, flush)
            answers.write(play(engine, till, patience))
            answers.flush()
    except (RuntimeError, ValueError, LookupError, sqlite3.Error) as error:
        os.write(errors, f"player: a till can't be played: {error!r}\n".encode())
        return 70
    finally:
        os.chdir("/")
        shutil.rmtree(home, ignore_errors=True)
    return 0


if __name__ == "__main__":
    # Who breaks a run off ends the command, and with it this process's input; its folder goes in any case.
    signal.signal(signal.SIGINT, signal.SIG_IGN)
    signal.signal(signal.SIGTERM, lambda *_: sys.exit(143))
    sys.exit(main())
