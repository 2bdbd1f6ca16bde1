"""Writes what docs/ shares with texts/explanations.json: the meanings of the reasons and of the log's entries.

make_texts.py [--check]

In docs/explanations.md the table of reasons gets the meanings of the table of texts. In docs/log.md, between the lines
"<!-- meanings: begin -->" and "<!-- meanings: end -->", a row whose entry is a `log` of a reason gets the meanings of all the
reasons that name it. Every other cell stays as it is written there. With --check nothing is written: what differs is told, and
the exit code is 1.
"""

import json
import pathlib
import re
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
EXPLANATIONS = ROOT / "docs" / "explanations.md"
LOG = ROOT / "docs" / "log.md"
MARKED = re.compile(r"(<!-- meanings: begin -->\n)(.*?)(<!-- meanings: end -->)", re.DOTALL)
CELL = re.compile(r"(?<!\\)\|")


def reasons_of(table):
    """The reasons themselves, without the variants of their sentences."""
    return {name: entry for name, entry in table["reasons"].items() if "." not in name}


def with_meaning(row, meaning):
    """The table's row with another text in its second cell."""
    cells = CELL.split(row)
    cells[2] = f" {meaning} "
    return "|".join(cells)


def told_reasons(page, table):
    """docs/explanations.md with the meanings."""
    reasons = reasons_of(table)

    def told(row):
        name = row[1]
        if name not in reasons:
            raise SystemExit(f"{EXPLANATIONS.name}: {name} is no reason of the texts")
        return with_meaning(row[0], reasons[name]["meaning"])

    begin, end = page.index("\n## Reasons\n"), page.index("\n## Texts\n")
    section = page[begin:end]
    named = re.findall(r"(?m)^\| ([A-Z]\w+) \|", section)[1:]
    if named != list(reasons):
        raise SystemExit(f"{EXPLANATIONS.name}: the reasons are not those of the texts, in their order")
    heading, body = section.split("|---|", 1)
    return page[:begin] + heading + "|---|" + re.sub(r"(?m)^\| (\w+) \|.*$", told, body) + page[end:]


def meaning_of_entry(entry, table):
    """What all the reasons that name a log entry say, with their names; None where none does."""
    named = {name: reason for name, reason in reasons_of(table).items()
             if any(entry.startswith(text) for text in reason.get("log", []))}
    if not named:
        return None
    return "; ".join(f"{reason['meaning']} ({name})" for name, reason in named.items())


def told_log(page, table):
    """docs/log.md with the meanings."""

    def told_row(row):
        meaning = meaning_of_entry(row[1], table)
        return row[0] if meaning is None else with_meaning(row[0], meaning)

    def told_block(block):
        return block[1] + re.sub(r"(?m)^\| `([^`]+)`.*$", told_row, block[2]) + block[3]

    return MARKED.sub(told_block, page)


def main(arguments):
    table = json.loads((ROOT / "texts" / "explanations.json").read_text("utf-8"))
    differing = []
    for file, told in ((EXPLANATIONS, told_reasons), (LOG, told_log)):
        page = file.read_text("utf-8")
        wanted = told(page, table)
        if wanted == page:
            continue
        differing.append(str(file.relative_to(ROOT)))
        if "--check" not in arguments:
            file.write_text(wanted, "utf-8")
    if differing and "--check" in arguments:
        print(f"{', '.join(differing)}: not as in texts/explanations.json; run scripts/make_texts.py", file=sys.stderr)
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
