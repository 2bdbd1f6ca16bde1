#!/usr/bin/env python3
"""Counts the instructions of a pass, and compares them with those of the baseline.

count.py PROGRAMS LIBRARY WORK BASELINE [--save]

PROGRAMS is the folder of the bench's programs, LIBRARY the engine, WORK a folder to work in, BASELINE the file to compare
with. Fails when a count is more than 2 percent above the baseline's. --save writes the baseline anew.
"""

import argparse
import concurrent.futures
import os
import pathlib
import re
import shutil
import subprocess
import sys

import machine
import programs
import worlds

WORKLOADS = ("A", "B", "till")
ALLOWED = 0.02
# Libraries choose code by what the processor can; these switch off what not every processor has.
GENERIC_PROCESSOR = {
    "GLIBC_TUNABLES": "glibc.cpu.hwcaps=-AVX,-AVX2,-BMI1,-BMI2,-ERMS,-FMA,-FSRM,-LZCNT,-MOVBE,-POPCNT,-SSE4_1,-SSE4_2",
    "QT_NO_CPU_FEATURE": "sse3 ssse3 sse4.1 sse4.2 avx avx2 bmi bmi2 popcnt rdrnd",
}
# Nothing else of the surroundings is let in.
ENVIRONMENT = {"PATH": os.defpath, "TZ": "UTC", "LC_ALL": "C.UTF-8", "LD_BIND_NOW": "1", "QT_HASH_SEED": "0",
               **GENERIC_PROCESSOR}


def count(its_programs, library, work, name):
    """The instructions of one pass behind one that warms up. What the kernel does is not in it."""
    home = work / name
    worlds.make(name).write(home)
    subprocess.run(
        ["valgrind", "--tool=callgrind", "--quiet", "--collect-atstart=no", "--toggle-collect=CountedPass",
         "--callgrind-out-file=callgrind.out", its_programs.folder / "workload", ".", "--library", library, "--count"],
        check=True, cwd=home, env=ENVIRONMENT)
    totals = re.search(r"^(?:totals|summary): (\d+)", (home / "callgrind.out").read_text("utf-8"), re.MULTILINE)
    if not totals or int(totals[1]) == 0:
        raise RuntimeError(f"callgrind counted nothing in {name}")
    return int(totals[1])


def count_all(its_programs, library, work):
    """The instructions of each workload, counted side by side: the clock is not looked at."""
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        return dict(zip(WORKLOADS, pool.map(lambda name: count(its_programs, library, work, name), WORKLOADS)))


def read(path):
    """Counts and versions of a baseline."""
    counts, versions = {}, {}
    for line in path.read_text("utf-8").splitlines():
        if line and not line.startswith("#"):
            key, value = line.split(": ", 1)
            if key in WORKLOADS:
                counts[key] = int(value)
            else:
                versions[key] = value
    return counts, versions


def write(path, counts):
    entries = {**counts, **machine.versions()}
    path.write_text("# Instructions of a pass, by ./dev count --save, and what they were counted with.\n"
                    + "".join(f"{key}: {value}\n" for key, value in entries.items()), "utf-8")


def compare(counts, baseline):
    """Prints each count beside the baseline's; gives the names of those that are too high."""
    for name, counted in counts.items():
        print(f"   {name:6} {counted:14,}   baseline {baseline[name]:14,}   {counted / baseline[name] - 1:+.2%}")
    return [name for name, counted in counts.items() if counted > baseline[name] * (1 + ALLOWED)]


def tell_versions(baseline_versions):
    """Says what is installed in another version than the baseline was counted with."""
    for name, version in machine.versions().items():
        if version != baseline_versions.get(name):
            print(f"   {name} is {version}, the baseline's was {baseline_versions.get(name)}")


def main():
    parser = argparse.ArgumentParser(prog="./dev count", description="The instructions of a pass.")
    for name in ("programs", "library", "work", "baseline"):
        parser.add_argument(name, type=pathlib.Path)
    parser.add_argument("--save", action="store_true", help="write the baseline anew")
    wish = parser.parse_args()
    shutil.rmtree(wish.work, ignore_errors=True)
    counts = count_all(programs.Programs(wish.programs), wish.library.resolve(), wish.work.resolve())
    if wish.save:
        write(wish.baseline, counts)
    baseline, versions = read(wish.baseline)
    tell_versions(versions)
    if higher := compare(counts, baseline):
        sys.exit(f"More than {ALLOWED:.0%} above the baseline: {', '.join(higher)}. A change that is meant to cost that much "
                 "moves the baseline: ./dev count --save")


if __name__ == "__main__":
    main()
