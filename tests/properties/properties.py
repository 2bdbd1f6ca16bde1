"""Plays generated tills and checks that each property holds on them.

properties.py LIBRARY SCHEMA [--count N] [--seed S] [--only NAME] [--till FILE]

Exit code 0: they hold. 1: one doesn't; the till stands on the output, made small. 2: the run itself failed.
"""

import argparse
import collections
import json
import os
import pathlib
import sys
import time

sys.path.append(str(pathlib.Path(__file__).parent.parent / "compare"))

# pylint: disable=wrong-import-position
from checks import PROPERTIES, Broken
from comparer import Player, PlayerError, line_of
from generator import make_till
from hosts import make_host_till
from reducer import Reducer, fewest, without_elements
from report import call_text, store_text

# Seeds of neighbouring runs share no till.
RUN = 10_000_000
# From so many tills on, everything that a property needs has to have occurred.
ENOUGH = 150


class Engines:
    """Two processes that play tills, each on a fresh engine."""

    def __init__(self, library, schema, patience=10.0):
        self.here = Player(library, schema, patience)
        # What memory holds before it is used is another there.
        os.environ["MALLOC_PERTURB_"] = "165"
        self.elsewhere = Player(library, schema, patience)
        del os.environ["MALLOC_PERTURB_"]

    def play(self, till):
        """The answers to a till: of each call code, `msg`, result and log."""
        return ended_well(ask(self.here, till))

    def play_elsewhere(self, till):
        return ended_well(ask(self.elsewhere, till))

    def close(self):
        self.here.close()
        self.elsewhere.close()


def ask(player, till):
    player.send(line_of(till))
    return json.loads(player.receive())


def ended_well(answers):
    """The answers of a till that was played to its end."""
    if answers and isinstance(answers[-1], str):
        raise Broken("the engine does not come to an end", answers[-1])
    return answers


class TidyReducer(Reducer):
    """Leaves out calls, rows of the store and XML elements. What is left of a host's till is a host's till: values and
    attributes stay."""

    def drop_columns(self):
        pass

    def shrink_texts(self):
        for place, call in enumerate(self.till["calls"]):
            last = len(call) - 1
            if call[0] in ("InitPromotion", "CalcPromotion") and call[last]:
                without_elements(call[last], lambda xml, p=place, n=last: self.holds(
                    lambda till: till["calls"][p].__setitem__(n, xml)))


def tills_of(prop, options):
    """The tills that a property is checked on."""
    if options.till:
        yield json.loads(pathlib.Path(options.till).read_text("utf-8"))
        return
    for number in range(options.count):
        seed = options.seed * RUN + number
        if prop.careless and number % 2:
            yield make_till(seed)
        else:
            yield make_host_till(seed, prop.focus if number % 2 else ())


def breaks(prop, till, engines):
    """In what way a till breaks a property; None when it doesn't, or when it is none to check any more."""
    try:
        prop(till, engines, collections.Counter())
    except Broken as broken:
        return broken
    except (ArithmeticError, LookupError, TypeError, ValueError, AttributeError, SyntaxError, StopIteration):
        pass  # what is left of a till after a reduction may be none
    return None


def reduced(prop, till, engines, what, seconds=30.0):
    """The smallest till that was found to break the property in the same way."""
    def still(smaller):
        broken = breaks(prop, smaller, engines)
        return broken is not None and broken.what == what

    return TidyReducer(till, still, seconds).reduce() if still(till) else till


def shown(prop, till, broken):
    """The text of a broken property."""
    text = [f"{prop.__name__} is broken: {broken}", f"the property: {prop.__doc__}", "the store:"]
    text += store_text(till["rows"]) or ["  (empty)"]
    text += ["the calls:"]
    for number, call in enumerate(till["calls"], 1):
        text += call_text(number, call)
    return "\n".join(text + ["as a file for --till:", line_of(till).decode().rstrip()])


def check(prop, tills, engines):
    """Checks a property on tills. @return the first till that breaks it with how, or None; and what was met."""
    tally = collections.Counter()
    for till in tills:
        tally["tills"] += 1
        try:
            prop(till, engines, tally)
        except Broken as broken:
            return (till, broken), tally
    return None, tally


def run(prop, options, engines):
    """Checks one property and tells about it. @return whether it holds."""
    begin = time.monotonic()
    found, tally = check(prop, tills_of(prop, options), engines)
    if found:
        till, broken = found
        print(f"{prop.__name__}: till {till['seed']} breaks it; reducing it", flush=True)
        smallest = reduced(prop, till, engines, broken.what)
        print(shown(prop, smallest, breaks(prop, smallest, engines) or broken))
        return False
    missing = [need for need in prop.needs if not tally[need]] if tally["tills"] >= ENOUGH else []
    met = ", ".join(f"{tally[need]} {need}" for need in prop.needs)
    print(f"{prop.__name__}: {tally['tills']} tills, {met} ({time.monotonic() - begin:.1f} s)", flush=True)
    if missing:
        print(f"{prop.__name__}: never met: {', '.join(missing)}")
    return not missing


def arguments():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("library", help="library to check")
    parser.add_argument("schema", help="SQL script that makes the store's tables")
    parser.add_argument("--count", type=int, default=ENOUGH, help=f"how many tills for each property ({ENOUGH})")
    parser.add_argument("--seed", type=int, default=1, help="another number, other tills (1)")
    parser.add_argument("--only", metavar="NAME", choices=[prop.__name__ for prop in PROPERTIES], help="one property")
    parser.add_argument("--till", help="check the till of this file instead of generated ones")
    return parser.parse_args()


def main():
    options = arguments()
    sys.stdout.reconfigure(errors="backslashreplace")
    if options.count < 1:
        print("properties: nothing to play", file=sys.stderr)
        return 2
    engines = Engines(options.library, options.schema)
    try:
        chosen = [prop for prop in PROPERTIES if options.only in (None, prop.__name__)]
        return 0 if all([run(prop, options, engines) for prop in chosen]) else 1
    finally:
        engines.close()


if __name__ == "__main__":
    try:
        sys.exit(main())
    except (PlayerError, OSError, ValueError) as failure:
        print(f"properties: {failure}", file=sys.stderr)
        sys.exit(2)
