"""The committed list of mutants that change nothing that anybody can see, each with its reason; see equivalent.txt."""

import re
from dataclasses import dataclass


@dataclass(frozen=True)
class Key:
    """What a mutant is known by: no numbers and no lines, which move with every change of the code."""
    file: str
    function: str
    text: str
    change: str


class ListError(Exception):
    """The list does not read as one."""


def key_of(mutant):
    """The mutant's key. Of several equal changes in one line all but the first have a number."""
    nth = f" (#{mutant.nth})" if mutant.nth > 1 else ""
    change = f"{mutant.change.before} -> {mutant.change.after}{nth}"
    return Key(mutant.file, mutant.point.function, " ".join(mutant.text.split()), change)


def entry_of(mutant, reason):
    key = key_of(mutant)
    return f"{key.file}, {key.function}: {key.text}\n  {key.change}\n  {reason}\n"


def read(path):
    """The reasons by their keys."""
    reasons = {}
    for block in re.split(r"\n\s*\n", path.read_text(encoding="utf-8")):
        lines = [line for line in block.splitlines() if line.strip() and not line.startswith("#")]
        if not lines:
            continue
        head = re.fullmatch(r"(\S+), (\S*): (.*)", lines[0])
        if not head or len(lines) < 3:
            raise ListError(f"{path.name}: an entry is a line for the place, one for the change, and a reason:\n{block}")
        key = Key(*head.groups(), lines[1].strip())
        if key in reasons:
            raise ListError(f"{path.name}: twice: {lines[0]}")
        reasons[key] = " ".join(line.strip() for line in lines[2:])
    return reasons
