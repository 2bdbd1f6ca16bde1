"""Plays many tills on some processes, and makes small what fails."""

import collections
import concurrent.futures
import json
import pathlib

from face import Counter
from facts import Broken
from generator import make_till
from hosts import HostTillMaker, make_host_till
from smaller import reduced
from report import call_text, store_text

# Seeds of neighbouring runs share no till.
RUN = 10_000_000
# Tills that a process takes at a time.
BATCH = 20
STATE = {}


def till_of(seed):
    """Every second till is one of a host that keeps to the rules; the others come from careless hands."""
    if seed % 2:
        return make_till(seed)
    return {**make_host_till(seed), "tidy": True}


def host_till(seed):
    """A till of a host that keeps to the rules, whose store has a list of its goods. Every third one has rules for payments
    and coupons alone, which among others come up too seldom."""
    maker = HostTillMaker(seed, () if seed % 3 else ("MZZF", "MZYQ", "MZZQ"))
    till = {**maker.make(), "tidy": True}
    return {**till, "goods": {goods.code: {"Price": str(goods.price), "CAT": goods.category, "BRD": goods.brand}
                              for goods in maker.shop.goods}}


def begin(options, make_check, make):
    STATE.update(counter=Counter(options.library, options.schema), check=make_check(options), make=make)


def broken_by(till, tally):
    """In what way a till breaks the check, or None."""
    try:
        STATE["check"].till(STATE["counter"], till, tally)
    except Broken as broken:
        return broken
    return None


def fails_like(what):
    def fails(till):
        try:
            broken = broken_by(till, collections.Counter())
        except (ArithmeticError, LookupError, TypeError, ValueError, AttributeError, SyntaxError):
            return False  # what is left of a till may be none any more
        return broken is not None and broken.what == what
    return fails


def batch(seeds):
    """Checks some tills. @return the first that fails, made small, and how; and what was met."""
    tally = collections.Counter()
    for seed in seeds:
        till = seed if isinstance(seed, dict) else STATE["make"](seed)
        tally["tills"] += 1
        broken = broken_by(till, tally)
        if broken:
            smallest = reduced(till, fails_like(broken.what))
            again = broken_by(smallest, collections.Counter())
            return (smallest, str(again or broken)), tally
    return None, tally


class Runs:
    """A check over many tills, on some processes, each with an engine of its own."""

    def __init__(self, options, make_check, make=till_of):
        self.options, self.arguments = options, (options, make_check, make)

    def batches(self):
        if self.options.till:
            return [[json.loads(pathlib.Path(self.options.till).read_text("utf-8"))]]
        first = self.options.seed * RUN
        seeds = range(first, first + self.options.count)
        return [seeds[place:place + BATCH] for place in range(0, len(seeds), BATCH)]

    def run(self):
        """@return the first failure, or None; and what was met."""
        tally = collections.Counter()
        with concurrent.futures.ProcessPoolExecutor(self.options.jobs, initializer=begin,
                                                    initargs=self.arguments) as pool:
            for failure, met in pool.map(batch, self.batches()):
                tally.update(met)
                if failure:
                    pool.shutdown(wait=False, cancel_futures=True)
                    return failure, tally
        return None, tally


def tell_failure(failure):
    till, what = failure
    print(what)
    print("the store:")
    print("\n".join(store_text(till["rows"]) or ["  (empty)"]))
    print("the calls:")
    for number, call in enumerate(till["calls"], 1):
        print("\n".join(call_text(number, call)))
    print("as a file for --till:")
    print(json.dumps(till))
