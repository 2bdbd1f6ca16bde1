"""Measures workloads: the engine of the working tree, the earlier one and the plain floor, in turn, in one run."""

import contextlib
import statistics

import programs
import worlds

BEFORE, DEFAULT, FLUSH_CALL, FLOOR = "before", "default", "call", "floor"
ENGINES = (BEFORE, DEFAULT, FLUSH_CALL)
FLUSH_SETTINGS = "[Log]\nFlush=call\n"

# Each program works so long in a round, as far as one pass is not longer.
ROUND_SECONDS = 0.1
# Passes that tell what memory a pass keeps take so long together, as far as that is enough for two; where one pass takes
# longer than the second number, it isn't asked.
MEMORY_SECONDS, LONGEST_FOR_MEMORY = 0.25, 1.0


class Effort:
    """How much is measured: so many rounds, as far as they fit into some seconds, but one in any case."""

    def __init__(self, rounds, seconds):
        self._rounds, self._seconds = rounds, seconds

    def rounds(self, pass_seconds):
        return min(self._rounds, passes_within(self._seconds, pass_seconds))


THOROUGH, QUICK = Effort(9, 8), Effort(3, 1)


class Libraries:
    """The two engines: the earlier one, and today's under both of its log settings."""

    def __init__(self, before, today):
        self.of = {BEFORE: before, DEFAULT: today, FLUSH_CALL: today}

    @staticmethod
    def settings(engine, database=worlds.SETTINGS):
        return database + (FLUSH_SETTINGS if engine == FLUSH_CALL else "")


class Bench:
    """What all measurements share: programs, libraries, a folder to work in, and how much is to be done."""

    def __init__(self, its_programs, libraries, folder, effort):
        self.programs, self.libraries, self.folder, self.effort = its_programs, libraries, folder, effort

    def measure(self, name, world):
        """All that is told of a workload."""
        home = self.folder / name
        world.write(home / "world")
        record = self.programs.record
        events = {engine: record(self.libraries.of[engine], self._world(home, engine), home / f"{engine}.recording")
                  for engine in (DEFAULT, BEFORE)}
        with contextlib.ExitStack() as open_programs:
            running = {engine: open_programs.enter_context(self._engine(home, engine)) for engine in ENGINES}
            running[FLOOR] = open_programs.enter_context(
                self.programs.floor(home / f"{BEFORE}.recording", self._world(home, FLOOR)))
            digest = same_digest(name, {engine: running[engine].digest() for engine in ENGINES})
            times = in_turn(running, self.effort)
            memory = {engine: memory_of(running[engine], min(times[engine])) for engine in ENGINES}
        return {
            "name": name, "title": worlds.title(name),
            "statements": {engine: counts.get("S", 0) for engine, counts in events.items()},
            "entries": events[BEFORE].get("L", 0),
            "cpu": {program: statistics.median(taken) for program, taken in times.items()},
            "ratio": {engine: median_ratio(times[engine], times[FLOOR]) for engine in ENGINES},
            "memory": memory, "digest": digest,
        }

    def _world(self, home, name):
        return programs.copy_of(home / "world", home / name, self.libraries.settings(name))

    def _engine(self, home, engine):
        return self.programs.engine(self.libraries.of[engine], self._world(home, engine))


def passes_within(seconds, pass_seconds):
    """How many passes fill some seconds; one at the least."""
    return max(1, int(seconds / max(pass_seconds, 1e-6)))


def in_turn(running, effort):
    """Seconds of the processor for a pass of each program, round by round: the programs take turns in each round, so that
    a moment in which the machine is slow is slow for all of them. One whose passes take long leaves after fewer rounds.
    """
    first = {name: program.time(1)[0] for name, program in running.items()}
    passes = {name: passes_within(ROUND_SECONDS, seconds) for name, seconds in first.items()}
    rounds = {name: effort.rounds(seconds) for name, seconds in first.items()}
    times = {name: [] for name in running}
    for done in range(max(rounds.values())):
        for name, program in running.items():
            if done < rounds[name]:
                times[name].append(program.time(passes[name])[0])
    return times


def memory_of(program, pass_seconds):
    """What a program holds more behind each pass, and its peak; None where a pass takes too long for that."""
    if pass_seconds > LONGEST_FOR_MEMORY:
        return None
    return program.memory(max(2, passes_within(MEMORY_SECONDS, pass_seconds)))


def same_digest(name, digests):
    """The digest of all that stand beside each other: engines that don't answer the same are not compared."""
    if len(set(digests.values())) != 1:
        raise RuntimeError(f"the results of {name} differ: {digests}")
    return next(iter(digests.values()))


def median_ratio(times, floor_times):
    """The median of the rounds' ratios."""
    return statistics.median(taken / floor for taken, floor in zip(times, floor_times))
