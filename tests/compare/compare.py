"""Proves that two libraries answer alike: plays generated tills on both and compares every answer byte by byte.

compare.py OLD NEW --schema FILE [--count N] [--seed S] [--save FILE] [--replay FILE] [--stats]
           [--flush call]

Exit code 0: nothing differs. 1: something does, and stands on the output, made small. 2: the comparison itself failed.
"""

import argparse
import json
import os
import pathlib
import sys
import time

from comparer import Pair, PlayerError, first_difference, line_of, play_all
from generator import make_till
from reducer import Reducer
from report import report
from stats import Stats

# Seeds of neighbouring runs share no till.
RUN = 10_000_000


def arguments():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("old", help="library whose answers are right")
    parser.add_argument("new", help="library that has to give the same answers")
    parser.add_argument("--schema", required=True, help="SQL script that makes the store's tables")
    parser.add_argument("--count", type=int, default=5000, help="how many tills (5000)")
    parser.add_argument("--seed", type=int, default=1, help="another number, other tills (1)")
    parser.add_argument("--save", help="write the tills to this file, one a line")
    parser.add_argument("--replay", help="play the tills of this file instead of generated ones")
    parser.add_argument("--stats", action="store_true", help="tell what the tills reached")
    parser.add_argument("--patience", type=float, default=10.0, help="seconds after which a call hangs (10)")
    parser.add_argument("--flush", choices=["entry", "call"], default="",
                        help="when the new library flushes its log; the old one is not told")
    parser.add_argument("--jobs", type=int, default=max(1, (os.cpu_count() or 2) // 2), help="pairs of players")
    parser.add_argument("--reduced", help="write the reduced till to this file")
    return parser.parse_args()


def pair_of(options):
    """Players of the two libraries."""
    return Pair(options.old, options.new, options.schema, options.patience, options.flush)


def tills_of(options):
    """The tills to play, generated or read."""
    if options.replay:
        with open(options.replay, "rb") as file:
            yield from (json.loads(line) for line in file if line.strip())
    else:
        for number in range(options.count):
            yield make_till(options.seed * RUN + number)


def saved(tills, path):
    """The same tills, each written to the file on its way."""
    with open(path, "wb") as file:
        for till in tills:
            file.write(line_of(till))
            yield till


def reduced(till, difference, pair):
    """The smallest till that shows a difference in the same parts of an answer, with that difference."""
    def differs(smaller):
        found = first_difference(*pair.play(smaller))
        return found is not None and found.parts == difference.parts

    if not differs(till):
        return till, None
    smallest = Reducer(till, differs).reduce()
    return smallest, first_difference(*pair.play(smallest))


def show(till, difference, options):
    """Reduces a difference and prints it."""
    print(f"till {till['seed']} differs in {', '.join(difference.parts)} of call {difference.index + 1}; reducing it",
          flush=True)
    with pair_of(options) as pair:
        smallest, its_difference = reduced(till, difference, pair)
    if its_difference is None:
        print("played again, it did not differ: one of the libraries is not steady. The whole till:")
    print(report(smallest, its_difference or difference))
    if options.reduced:
        pathlib.Path(options.reduced).write_bytes(line_of(smallest))
        print(f"saved for --replay: {options.reduced}")


def compare(tills, options, pairs):
    """Plays the tills up to the first difference. @return that till with its difference, or None; and the counts."""
    stats = Stats()
    for till, old, new in play_all(tills, pairs):
        if options.stats:
            stats.add(till, new)
        else:
            stats.tills += 1
        difference = first_difference(old, new)
        if difference:
            return (till, difference), stats
    return None, stats


def main():
    options = arguments()
    tills = tills_of(options)
    if options.save:
        tills = saved(tills, options.save)
    begin = time.monotonic()
    pairs = [pair_of(options) for _ in range(max(1, options.jobs))]
    try:
        found, stats = compare(tills, options, pairs)
        seconds = time.monotonic() - begin
    finally:
        for pair in pairs:
            pair.close()
    if options.stats:
        print(stats.text())
    if found:
        show(*found, options)
        return 1
    print(f"{stats.tills} tills, 0 differences ({seconds:.0f} s, {stats.tills / max(seconds, 1e-9):.0f} tills a second)")
    if stats.tills == 0:
        print("nothing was played", file=sys.stderr)
        return 2
    return 0


if __name__ == "__main__":
    try:
        sys.exit(main())
    except (PlayerError, OSError, ValueError) as failure:
        print(f"compare: {failure}", file=sys.stderr)
        sys.exit(2)
