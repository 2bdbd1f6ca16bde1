"""Shows a difference small: what the store holds, the calls that lead there, and both answers."""

import difflib
import textwrap

from comparer import PARTS


def shown(value):
    """An argument of a call on one line."""
    return repr(value) if not isinstance(value, str) else value or '""'


def store_text(rows):
    """Each row of the store on a line."""
    return [f"  {table}: " + ", ".join(f"{column}={value}" for column, value in row.items())
            for table, table_rows in rows.items() for row in table_rows]


def call_text(number, call):
    """A call with its XML below it."""
    xml = isinstance(call[-1], str) and "<" in call[-1]
    head = " ".join(map(shown, call[:-1] if xml else call))
    return [f"  {number}. {head}"] + ([textwrap.indent(call[-1], "       ")] if xml else [])


def lines_of(part):
    """A part of an answer as lines of text."""
    if isinstance(part, list):
        return [entry.replace("\r", "\\r").replace("\n", "\\n") for entry in part]
    return str(part).splitlines()


def answer_lines(answer):
    """A whole answer as lines; for one that is none, how the process ended."""
    if answer is None:
        return ["(no answer)"]
    if isinstance(answer, str):
        return [answer]
    return [f"{name}: {line}" for name, part in zip(PARTS, answer) for line in lines_of(part)]


def changed(old, new):
    """The lines that differ, with one line around them."""
    return ["  " + line for line in list(difflib.unified_diff(old, new, lineterm="", n=1))[2:]]


def answers_text(difference):
    """Both answers: the old one's lines with a minus, the new one's with a plus."""
    if difference.parts == ("end",):
        return changed(answer_lines(difference.old)[-40:], answer_lines(difference.new)[-40:])
    text = []
    for name, old, new in zip(PARTS, difference.old, difference.new):
        if old != new:
            text += [f"  {name}:"] + changed(lines_of(old), lines_of(new))
    return text


def report(till, difference):
    """The whole text of a difference."""
    text = [f"till {till['seed']} ({till.get('store', 'keyed')} store) differs in {', '.join(difference.parts)} "
            f"of call {difference.index + 1}"]
    rows = store_text(till["rows"])
    text += ["the store:"] + (rows or ["  (empty)"]) + ["the calls:"]
    for number, call in enumerate(till["calls"][:difference.index + 1], 1):
        text += call_text(number, call)
    text += ["the answers (- old, + new):"] + answers_text(difference)
    return "\n".join(text)
