"""All mutants of a file in one text: each stands beside what it replaces, and a number chooses at run time.

    a < b      becomes   (Mutation::Lives(7)?(a <= b):Mutation::Lives(8)?(a >= b):(a < b))

Lines keep their numbers, so that messages of the compiler and failures of tests still tell where.
"""

import collections
import re
from dataclasses import dataclass

from points import Change, Point

MARK = re.compile(r"Mutation::(?:Lives|Walked)\((\d+)")


@dataclass
class Mutant:
    """A change with its number, its line and its place among the equal changes of its line."""
    number: int
    point: Point
    change: Change
    line: int = 0
    text: str = ""
    column: int = 0
    nth: int = 1

    @property
    def file(self):
        return self.point.file


def number(points, texts):
    """Numbers the changes of all points, from 1 on."""
    mutants = []
    counts = collections.Counter()
    for point in points:
        for change in point.changes:
            mutant = Mutant(len(mutants) + 1, point, change)
            text = texts[point.file]
            begin = text.rfind("\n", 0, point.start) + 1
            mutant.line = text.count("\n", 0, point.start) + 1
            mutant.column = point.start - begin + 1
            mutant.text = text[begin:].split("\n", 1)[0].strip()
            same = (point.file, mutant.line, change.before, change.after)
            counts[same] += 1
            mutant.nth = counts[same]
            mutants.append(mutant)
    return mutants


def rewrite(text, mutants):
    """The text of a file with its mutants compiled in."""
    by_point = {}
    for mutant in mutants:
        by_point.setdefault(id(mutant.point), []).append(mutant)
    groups = sorted(by_point.values(), key=lambda group: (group[0].point.start, -group[0].point.end,
                                                          RANK[group[0].point.how], group[0].point.order))
    root = Node(0, len(text), None)
    for group in groups:
        point = group[0].point
        root.put(Node(point.start, point.end, group))
    return root.render(text)


# Of points that cover the same piece, the outer ones first.
RANK = {"statement": 0, "walk": 1, "not": 2, "either": 3}


class Node:
    """A piece of source, and the pieces within it."""

    def __init__(self, start, end, group):
        self.start, self.end, self.group = start, end, group
        self.inner = []

    def put(self, node):
        for within in self.inner:
            if within.start <= node.start and node.end <= within.end:
                within.put(node)
                return
            if node.start < within.end and within.start < node.end:
                raise ValueError(f"pieces overlap at {node.start}")
        self.inner.append(node)

    def render(self, text):
        at, pieces = self.start, []
        for within in sorted(self.inner, key=lambda node: node.start):
            pieces += [text[at:within.start], within.render(text)]
            at = within.end
        return self.wrap("".join(pieces) + text[at:self.end])

    def wrap(self, base):
        if not self.group:
            return base
        how, first = self.group[0].point.how, self.group[0].number
        if how == "statement":
            return "{if(!Mutation::Lives(%d)){%s}}" % (first, base)
        if how == "walk":
            return f"(Mutation::Walked({first},{base}))"
        if how == "not":
            return f"(Mutation::Lives({first})!=static_cast<bool>({base}))"
        choices = "".join(f"Mutation::Lives({each.number})?({each.change.after}):" for each in self.group)
        chosen = f"({choices}({base}))"
        return f"static_cast<{self.group[0].point.type}>{chosen}" if self.group[0].point.type else chosen


def blamed(text, line, column):
    """The numbers of the innermost point of a rewritten text that holds a place."""
    lines = text.split("\n")
    place = sum(len(each) + 1 for each in lines[:line - 1]) + column - 1
    best = None
    for found in MARK.finditer(text):
        start = found.start()
        # "{if(!" in front of a statement, "(" in front of all others.
        start -= 5 if text[start - 5:start] == "{if(!" else 1
        end = closing(text, start)
        if start <= place < end and (best is None or end - start <= best[1] - best[0]):
            best = (start, end)
    if best is None:
        return set()
    return set(numbers_at(text, *best))


def numbers_at(text, start, end):
    """The numbers of one point: of the choices that stand side by side in its parentheses."""
    depth, at = 0, start
    while at < end:
        found = MARK.match(text, at)
        if found and depth <= (2 if text.startswith("{if(!", start) else 1):
            yield int(found.group(1))
        letter = text[at]
        if letter in "\"'":
            at = quoted(text, at)
            continue
        depth += {"(": 1, "{": 1, "[": 1, ")": -1, "}": -1, "]": -1}.get(letter, 0)
        at += 1


def quoted(text, at):
    """The place behind a quoted text or letter."""
    quote, at = text[at], at + 1
    while at < len(text) and text[at] != quote:
        at += 2 if text[at] == "\\" else 1
    return at + 1


def closing(text, start):
    """The place behind the bracket that closes the one at `start`."""
    depth, at = 0, start
    while at < len(text):
        letter = text[at]
        if text.startswith("//", at):
            at = text.find("\n", at)
            continue
        if letter in "\"'":
            at = quoted(text, at)
            continue
        depth += {"(": 1, "{": 1, "[": 1, ")": -1, "}": -1, "]": -1}.get(letter, 0)
        at += 1
        if depth == 0:
            return at
    return len(text)
