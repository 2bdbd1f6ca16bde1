#!/usr/bin/env python3
"""The whole comparison in one run: today's engine, the earlier one and the plain floor, on every workload.

bench.py PROGRAMS BEFORE TODAY WORK [--revision HASH] [--baskets CSV] [--quick] [--page FILE]

PROGRAMS is the folder of the bench's programs, BEFORE and TODAY are two libraries of the engine, WORK a folder to work in.
With --page the measured part of that page is put anew, and the plot beside it. --quick leaves out most rounds and
some workloads, and the page alone.
"""

import argparse
import json
import pathlib
import shlex
import shutil
import sys
import time

import machine
import measure
import network
import page
import plot
import programs
import worlds
import writer

NETWORK_WORKLOADS = ("A", "B", "till")
QUICK_WORKLOADS = ("A", "B", "D640", "till", "load1000")
# Of the real baskets each so manieth is calculated: all of them, unless it shall be quick.
EVERY_BASKET, EVERY_BASKET_QUICK = 1, 12


def arguments():
    parser = argparse.ArgumentParser(prog="./dev bench", description="The engine against its floor.")
    parser.add_argument("programs", type=pathlib.Path)
    parser.add_argument("before", type=pathlib.Path)
    parser.add_argument("today", type=pathlib.Path)
    parser.add_argument("work", type=pathlib.Path)
    parser.add_argument("--revision", default="unknown", help="what the earlier engine was built from")
    parser.add_argument("--baskets", type=pathlib.Path, help="a file of real sales")
    parser.add_argument("--quick", action="store_true", help="fewer rounds and workloads, and nothing is written to the page")
    parser.add_argument("--page", type=pathlib.Path, help="the page to be put anew")
    return parser.parse_args()


def tell(what):
    print(f"   {time.strftime('%H:%M:%S')} {what}", file=sys.stderr, flush=True)


def workloads_of(wish):
    """Names and worlds, one at a time: some of them are large."""
    for name in QUICK_WORKLOADS if wish.quick else (*worlds.SUBTOTALS, "till", *worlds.LOADS):
        yield name, worlds.make(name)
    if wish.baskets:
        every = EVERY_BASKET_QUICK if wish.quick else EVERY_BASKET
        yield worlds.BASKETS, worlds.make(worlds.BASKETS, wish.baskets, every)


def measure_all(bench, wish):
    """Measures all workloads, and makes of it what the page tells."""
    found = []
    for name, world in workloads_of(wish):
        tell(f"{name}, {worlds.title(name)}")
        found.append(bench.measure(name, world))
    digests = {workload["name"]: workload["digest"] for workload in found if workload["name"] in NETWORK_WORKLOADS}
    behind_network = network.measure_all(bench, digests, tell)
    tell("a writer that waits")
    waits = writer.measure_all(bench)
    notes = [] if wish.baskets else ["The real baskets are left out: their file is not there."]
    command = " ".join(["./dev bench", *(["--quick"] if wish.quick else []),
                        *([shlex.quote(wish.baskets.name)] if wish.baskets else [])])
    return {"machine": machine.description(command, wish.revision), "notes": notes, "workloads": found,
            "network": behind_network, "writer": waits}


def main():
    wish = arguments()
    shutil.rmtree(wish.work, ignore_errors=True)
    wish.work.mkdir(parents=True)
    libraries = measure.Libraries(wish.before.resolve(), wish.today.resolve())
    effort = measure.QUICK if wish.quick else measure.THOROUGH
    bench = measure.Bench(programs.Programs(wish.programs), libraries, wish.work.resolve(), effort)
    results = measure_all(bench, wish)
    (wish.work / "results.json").write_text(json.dumps(results, indent=1), "utf-8")
    picture = wish.work / "performance.svg"
    picture.write_text(plot.draw(results), "utf-8")
    print(page.measured(results, picture.name))
    if wish.page and not wish.quick:
        page.write(wish.page, results, picture.name)
        shutil.copy(picture, wish.page.with_suffix(".svg"))


if __name__ == "__main__":
    main()
