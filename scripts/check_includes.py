#!/usr/bin/env python3
"""Fails when an include points from a lower room to a higher one, from a room to its neighbour, or in a circle.

check_includes.py [ROOT]    looks at the rooms below ROOT (the project unless told)
check_includes.py --test    the check itself, on small houses
"""

import pathlib
import re
import sys
import tempfile

# From the ground up. Rooms of one floor are neighbours and don't see each other.
FLOORS = [["base"], ["log"], ["sale", "db"], ["rule"], ["promo"], ["engine"], ["host"]]
FLOOR_OF = {room: floor for floor, rooms in enumerate(FLOORS) for room in rooms}
# What every host sees; the engine's own rooms see it, too.
FACE = "include"
# Hosts: they see the face and themselves.
HOSTS = ["tools"]

INCLUDE = re.compile(r'^[ \t]*#[ \t]*include[ \t]*"([^"]+)"', re.MULTILINE)


def sources(root):
    """The project's files in the rooms that are looked at, by their names from the root."""
    for room in [*FLOOR_OF, *HOSTS, FACE]:
        for path in sorted((root / room).rglob("*")):
            if path.suffix in (".h", ".c", ".cpp"):
                yield path.relative_to(root).as_posix()


def resolve(root, file, name):
    """The project's file that an include means, or None for one of another project."""
    for folder in (pathlib.PurePosixPath(file).parent, pathlib.PurePosixPath("."), pathlib.PurePosixPath(FACE)):
        if (root / folder / name).is_file():
            return (root / folder / name).resolve().relative_to(root).as_posix()
    return None


def read(root):
    """Every file with the project's files that it includes."""
    return {
        file: [
            (name, target)
            for name in INCLUDE.findall((root / file).read_text(encoding="utf-8"))
            for target in [resolve(root, file, name)]
        ]
        for file in sources(root)
    }


def fault_of(file, name, target):
    """What is wrong with one include, or None."""
    if target is None:
        return f'{file}: "{name}" is no file of the project'
    above, below = file.split("/")[0], target.split("/")[0]
    if above == below or below == FACE:
        return None
    if above in HOSTS or above == FACE:
        return f"{file}: {above}/ sees {FACE}/ alone, not {target}"
    if below not in FLOOR_OF:
        return f"{file}: {target} lies in none of the engine's rooms"
    if FLOOR_OF[below] > FLOOR_OF[above]:
        return f"{file}: {target} lies above {above}/"
    if FLOOR_OF[below] == FLOOR_OF[above]:
        return f"{file}: {target} lies in a room beside {above}/"
    return None


def circle_in(graph):
    """Files that include each other in a circle, the first one again at the end; empty when there are none."""
    done, road = set(), []

    def walk(file):
        if file in road:
            return [*road[road.index(file) :], file]
        if file in done:
            return []
        road.append(file)
        for target in graph.get(file, []):
            if found := walk(target):
                return found
        road.pop()
        done.add(file)
        return []

    for file in graph:
        if found := walk(file):
            return found
    return []


def faults(root):
    includes = read(root)
    found = [
        fault for file, lines in includes.items() for name, target in lines if (fault := fault_of(file, name, target))
    ]
    graph = {file: [target for _, target in lines if target] for file, lines in includes.items()}
    if circle := circle_in(graph):
        found.append("circle: " + " -> ".join(circle))
    return includes, found


def test():
    def check(files, *wanted):
        with tempfile.TemporaryDirectory() as folder:
            root = pathlib.Path(folder).resolve()
            for name, text in files.items():
                (root / name).parent.mkdir(parents=True, exist_ok=True)
                (root / name).write_text(text, encoding="utf-8")
            found = faults(root)[1]
        assert len(found) == len(wanted) and all(map(str.__contains__, found, wanted)), (found, wanted)

    base = {"base/Text.h": "", "include/q/q.h": ""}
    check({**base, "engine/A.cpp": '#include "base/Text.h"\n#include "q/q.h"\n#include <QString>\n'})
    check({**base, "log/L.h": "", "base/A.cpp": '#include "log/L.h"\n'}, "above base/")
    check({**base, "db/D.h": "", "sale/A.cpp": '#  include "db/D.h"\n'}, "beside sale/")
    check({**base, "tools/T.h": "", "tools/A.cpp": '#include "T.h"\n#include "q/q.h"\n'})
    check({**base, "tools/A.cpp": '#include "base/Text.h"\n'}, "sees include/ alone")
    check({**base, "include/q/A.h": '#include "base/Text.h"\n'}, "sees include/ alone")
    check({**base, "base/A.h": '#include "tests/T.h"\n', "tests/T.h": ""}, "none of the engine's rooms")
    check({**base, "base/A.h": '#include "base/Gone.h"\n'}, "no file of the project")
    check(
        {"base/A.h": '#include "base/B.h"\n', "base/B.h": '#include "base/A.h"\n'},
        "circle: base/A.h -> base/B.h -> base/A.h",
    )
    print("The check finds what it should.")


def main():
    if sys.argv[1:] == ["--test"]:
        return test()
    root = pathlib.Path(sys.argv[1] if len(sys.argv) > 1 else pathlib.Path(__file__).parent.parent).resolve()
    includes, found = faults(root)
    seen = {file.split("/")[0] for file in includes}
    if missing := [room for room in [*FLOOR_OF, *HOSTS, FACE] if room not in seen]:
        sys.exit(f"no files in {', '.join(missing)}")
    if found:
        sys.exit("\n".join(found))
    count = sum(map(len, includes.values()))
    print(f"{len(includes)} files, {count} includes: none points up, to the side or in a circle.")
    return None


if __name__ == "__main__":
    main()
