#!/usr/bin/env python3
"""Tells which lines and branches of the engine's rooms a run under clang's profile reached.

coverage.py BUILD    a build of the preset coverage, its profiles in BUILD/profiles

Prints a table by room and writes what was not reached to BUILD/left.txt, a line each. Fails when a room's sum falls below
the least that the project holds itself to: 98 % of the lines and 95 % of the branches, all rooms together.
"""

import json
import os
import pathlib
import subprocess
import sys

ROOMS = ["base", "db", "engine", "log", "promo", "rule", "sale"]
LEAST = {"lines": 98.0, "branches": 95.0}
# The log is a room of its own, and counts beside the six.
COUNTED = [room for room in ROOMS if room != "log"]


def programs(build):
    """Every binary of the build that holds a part of the engine."""
    found = sorted((build / "lib").glob("*.so")) + sorted(path for path in (build / "bin").iterdir() if path.is_file())
    return [path for path in found if b"__llvm_covmap" in path.read_bytes()]


def merged(build):
    """One profile of all processes."""
    profile = build / "all.profdata"
    raw = sorted((build / "profiles").glob("*.profraw"))
    if not raw:
        sys.exit(f"no profiles in {build / 'profiles'}")
    # A process that was killed in a test may leave a profile that ends in its middle.
    subprocess.run(["llvm-profdata", "merge", "-sparse", "-failure-mode=all", "-o", profile, *raw], check=True)
    return profile


def exported(build):
    """What llvm-cov knows of the rooms' files."""
    first, *others = programs(build)
    command = ["llvm-cov", "export", f"-instr-profile={merged(build)}", first]
    for other in others:
        command += ["-object", other]
    return json.loads(subprocess.run(command, check=True, capture_output=True).stdout)["data"][0]


def name_of(path, build, root):
    """A file's name from the root, of the path that the compiler was called with; None for a file of no room."""
    name = os.path.relpath(os.path.normpath(build / path), root)
    return name if name.split("/")[0] in ROOMS else None


def lines_of(file):
    """Line number to how often it was reached, of a file's segments, by llvm-cov's own rule: a line counts as often as
    the busiest region that begins on it, or as the region that goes on into it."""
    counts, wrapped = {}, None
    by_line = {}
    for segment in file["segments"]:
        by_line.setdefault(segment[0], []).append(segment)
    last = max(by_line, default=0)
    for line in range(min(by_line, default=1), last + 1):
        segments = by_line.get(line, [])
        starts = [s for s in segments if s[3] and s[4] and not (len(s) > 5 and s[5])]
        mapped = [s[2] for s in starts]
        if wrapped is not None and wrapped[3] and (not segments or not segments[0][4] or segments[0][1] > 1):
            mapped.append(wrapped[2])
        if mapped:
            counts[line] = max(mapped)
        if segments:
            wrapped = segments[-1]
    return counts


def branches_of(data, build, root):
    """For each file and place of a condition how often it was true and how often false, over all instantiations."""
    found = {}
    for function in data["functions"]:
        for line, column, _, _, yes, no, file, _, kind, *_ in (branch for branch in function.get("branches", [])):
            name = name_of(function["filenames"][file], build, root)
            if kind != 4 or name is None:
                continue
            place = (name, line, column)
            before = found.get(place, (0, 0))
            found[place] = (before[0] + yes, before[1] + no)
    return found


def main():
    build = pathlib.Path(sys.argv[1]).resolve()
    root = pathlib.Path(__file__).resolve().parent.parent
    data = exported(build)
    lines = {}
    for file in data["files"]:
        if name := name_of(file["filename"], build, root):
            lines[name] = lines_of(file)
    branches = branches_of(data, build, root)
    left, sums = [], {}
    for name, counts in lines.items():
        room = name.split("/")[0]
        total = sums.setdefault(room, {"lines": [0, 0], "branches": [0, 0]})["lines"]
        total[0] += sum(count > 0 for count in counts.values())
        total[1] += len(counts)
        left += [(name, line, 0, "line") for line, count in counts.items() if count == 0]
    for (name, line, column), (yes, no) in branches.items():
        total = sums[name.split("/")[0]]["branches"]
        total[0] += (yes > 0) + (no > 0)
        total[1] += 2
        left += [(name, line, column, f"never {word}") for word, count in (("true", yes), ("false", no)) if count == 0]
    texts = {name: (root / name).read_text("utf-8").splitlines() for name in lines}
    with (build / "left.txt").open("w", encoding="utf-8") as out:
        for name, line, column, what in sorted(left):
            print(f"{name}:{line}:{column}: {what}: {texts[name][line - 1].strip()}", file=out)
    sums["together"] = {
        kind: [sum(sums[room][kind][place] for room in COUNTED) for place in (0, 1)] for kind in LEAST
    }
    print(f"{'':10}{'lines':>22}{'branches':>22}")
    for room, total in sums.items():
        cells = "".join(f"{reached:>8} of {all_:>5} {100 * reached / max(all_, 1):5.1f}" for reached, all_ in total.values())
        print(f"{room:10}{cells}")
    print(f"What was not reached is in {build.relative_to(root) / 'left.txt'}; log/ counts by itself.")
    short = [kind for kind, (reached, all_) in sums["together"].items() if 100 * reached < LEAST[kind] * all_]
    if short:
        sys.exit(f"too few {' and '.join(short)}: at least {LEAST} percent")


if __name__ == "__main__":
    main()
