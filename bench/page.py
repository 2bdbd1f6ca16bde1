"""The tables of what was measured, and the page that they stand on."""

import measure
import writer
from network import DELAY_SECONDS

BEGIN, END = "<!-- measured: begin -->", "<!-- measured: end -->"
TITLES = {measure.BEFORE: "before", measure.DEFAULT: "default", measure.FLUSH_CALL: "`Flush=call`"}
TARGET_WORKLOADS = ("A", "B", "D640", "till")


def table(head, rows):
    """A Markdown table."""
    return table_row(head) + "|---" * len(head) + "|\n" + "".join(map(table_row, rows))


def table_row(cells):
    return "|" + "|".join(f" {cell} " if cell else " " for cell in cells) + "|\n"


def milliseconds(seconds):
    if seconds < 0.01:
        return f"{seconds * 1e3:.2f} ms"
    return f"{seconds * 1e3:.1f} ms" if seconds < 0.1 else f"{seconds * 1e3:,.0f} ms"


def by_name(found):
    return {workload["name"]: workload for workload in found}


def target_table(results):
    """The measured values in the form of the targets."""
    workloads, network = by_name(results["workloads"]), by_name(results["network"])
    rows = []
    for engine in measure.ENGINES:
        row = [TITLES[engine], *(f"{workloads[name]['ratio'][engine]:.2f}" for name in TARGET_WORKLOADS)]
        kind = measure.BEFORE if engine == measure.BEFORE else measure.DEFAULT
        row.append(f"{workloads['B']['statements'][kind]:,}")
        row.append(milliseconds(network["B"][engine]["trips"] * DELAY_SECONDS))
        rows.append(row)
    return table(["", *TARGET_WORKLOADS, "statements in B", "delay alone in B"], rows)


def cost(workload, engine):
    return f"{milliseconds(workload['cpu'][engine])} ({workload['ratio'][engine]:.2f})"


def is_loading(workload):
    return workload["name"].startswith("load")


def workload_table(results):
    rows = [[workload["name"], workload["title"], f"{workload['entries']:,}",
             *(f"{workload['statements'][engine]:,}" for engine in (measure.BEFORE, measure.DEFAULT)),
             milliseconds(workload["cpu"][measure.FLOOR]), *(cost(workload, engine) for engine in measure.ENGINES)]
            for workload in results["workloads"] if not is_loading(workload)]
    return table(["", "workload", "log entries", "statements before", "statements today", "floor",
                  *(TITLES[engine] for engine in measure.ENGINES)], rows)


def loading_table(results):
    rows = [[workload["title"], *(milliseconds(workload["cpu"][engine]) for engine in measure.ENGINES)]
            for workload in results["workloads"] if is_loading(workload)]
    return table(["", *(TITLES[engine] for engine in measure.ENGINES)], rows)


def trips_of(workload, engine):
    found = workload[engine]
    delay = found["trips"] * DELAY_SECONDS
    return f"{found['trips']:,} / {milliseconds(delay)} / {milliseconds(found['wall'])}"


def network_table(results):
    rows = [[workload["name"], workload["title"], *(trips_of(workload, engine) for engine in measure.ENGINES)]
            for workload in results["network"]]
    return table(["", "workload", *(TITLES[engine] for engine in measure.ENGINES)], rows)


def memory_text(memory):
    held, peak = memory
    return f"{held:,.0f} B / {peak / 1024:.0f} MB"


def memory_table(results):
    rows = [[workload["name"], workload["title"],
             *(memory_text(workload["memory"][engine]) for engine in measure.ENGINES)]
            for workload in results["workloads"] if not is_loading(workload) and all(workload["memory"].values())]
    return table(["", "workload", *(TITLES[engine] for engine in measure.ENGINES)], rows)


def wait_text(found):
    return f"{milliseconds(found['median'])} / {milliseconds(found['longest'])} ({found['writes']} writes)"


def writer_table(results):
    who = (writer.QUIET, *measure.ENGINES)
    return table(["", "nobody calculates", *(TITLES[engine] for engine in measure.ENGINES)],
                 [["a write takes", *(wait_text(results["writer"][name]) for name in who)]])


def measured(results, plot):
    """All that stands between the markers."""
    machine = table(["", ""], results["machine"].items())
    skipped = "".join(f"\n{note}\n" for note in results["notes"])
    return f"""
### The machine

{machine}{skipped}
### Against the targets

Times of the processor in multiples of the plain floor's; smaller is better.

{target_table(results)}
### All workloads

Time of the processor for a pass, and in brackets the median of its ratios to the floor. A pass is "All" and "MzPromotion" on a
sale and its end; in the till's, all calls of one customer.

{workload_table(results)}
![Ratios to the floor]({plot})

### Loading

{loading_table(results)}
### Behind a network

MariaDB over loopback, {DELAY_SECONDS * 1e3:.1f} ms for each round trip. Round trips of a pass / their delay alone / time of the
clock for a pass.

{network_table(results)}
### A writer that waits

An office that writes a row into the SQLite file every now and then, while a till calculates {writer.WORKLOAD} without a pause. Median
and longest time of a write.

{writer_table(results)}
### Memory

Bytes that the process holds more behind each pass / its peak.

{memory_table(results)}"""


def write(path, results, plot):
    """Puts the measured part of a page anew; the prose around it stays."""
    text = path.read_text("utf-8")
    head, rest = text.split(BEGIN)
    _, tail = rest.split(END)
    path.write_text(head + BEGIN + "\n" + measured(results, plot) + "\n" + END + tail, "utf-8")
