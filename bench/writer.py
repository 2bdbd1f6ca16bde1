"""A back office that writes into the store's SQLite file while a till calculates on it without a pause."""

import random
import sqlite3
import statistics
import threading
import time

import measure
import programs

WORKLOAD = "B"
SECONDS = 3.0
# As long as the office waits for a lock before it gives up.
PATIENCE_SECONDS = 10
QUIET = "quiet"


class Office:
    """Writes one row every now and then, and notes how long each write took. Use as a context."""

    def __init__(self, store):
        self._store, self._stop, self._thread = store, threading.Event(), threading.Thread(target=self._work)
        self.taken = []

    def __enter__(self):
        self._thread.start()
        return self

    def __exit__(self, *_):
        self._stop.set()
        self._thread.join()

    def _work(self):
        chance = random.Random(1)
        store = sqlite3.connect(self._store, timeout=PATIENCE_SECONDS, isolation_level=None)
        while not self._stop.wait(chance.uniform(0, 0.02)):
            begin = time.perf_counter()
            store.execute("UPDATE tProPrjDirectProAct SET DscRate=DscRate WHERE SerialNo=1")
            self.taken.append(time.perf_counter() - begin)
        store.close()


def told(office):
    return {"median": statistics.median(office.taken), "longest": max(office.taken), "writes": len(office.taken)}


def measure_engine(bench, engine, home):
    """What a write takes while that engine calculates."""
    world = programs.copy_of(home / "world", home / f"writer-{engine}", bench.libraries.settings(engine))
    with bench.programs.engine(bench.libraries.of[engine], world) as running:
        passes = measure.passes_within(SECONDS, running.time(1)[1])
        with Office(world / "store.db") as office:
            running.time(passes)
        return told(office)


def measure_all(bench):
    """What a write takes, by engine; "quiet" while nobody calculates. The workload has been measured before."""
    home = bench.folder / WORKLOAD
    world = programs.copy_of(home / "world", home / "writer-quiet")
    with Office(world / "store.db") as office:
        time.sleep(SECONDS)
    return {QUIET: told(office), **{engine: measure_engine(bench, engine, home) for engine in measure.ENGINES}}
