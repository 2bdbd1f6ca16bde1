"""Draws what was measured: a bar for each workload and engine, and how the ratio goes with lines and with rules."""

import math
import re
from xml.sax.saxutils import escape

import measure

WIDTH, HEIGHT = 960, 840
COLOURS = {measure.BEFORE: "#b0b4ba", measure.DEFAULT: "#3b76af", measure.FLUSH_CALL: "#e08e2b"}
TITLES = {measure.BEFORE: "before", measure.DEFAULT: "default", measure.FLUSH_CALL: "Flush=call"}
INK, GRID, FLOOR_INK = "#222222", "#dddddd", "#b22222"
TOP = 1.75  # the ratio at a panel's upper edge
STEP = 0.25


class Panel:
    """A rectangle with a scale of ratios at its left."""

    def __init__(self, left, top, width, height, title):
        self.left, self.top, self.width, self.height, self.title = left, top, width, height, title

    def y(self, ratio):
        return self.top + self.height * (1 - min(ratio, TOP) / TOP)

    def frame(self):
        """Title, grid and scale."""
        parts = [text(self.left, self.top - 14, self.title, size=15, anchor="start", weight="bold")]
        for step in range(round(TOP / STEP) + 1):
            y = self.y(step * STEP)
            parts.append(line(self.left, y, self.left + self.width, y, GRID))
            if step * STEP != 1:
                parts.append(text(self.left - 8, y + 4, f"{step * STEP:.2f}", anchor="end"))
        return parts

    def floor(self):
        """The floor's line, to be drawn above all else."""
        y = self.y(1)
        return [line(self.left, y, self.left + self.width, y, FLOOR_INK, 1.5, "6 4"),
                text(self.left - 8, y + 4, "floor 1.00", anchor="end", colour=FLOOR_INK)]


def text(x, y, words, size=12, anchor="middle", colour=INK, weight="normal"):
    return (f'<text x="{x:.1f}" y="{y:.1f}" font-size="{size}" text-anchor="{anchor}" fill="{colour}" '
            f'font-weight="{weight}">{escape(words)}</text>')


def line(x1, y1, x2, y2, colour, width=1.0, dashes="none"):
    return (f'<line x1="{x1:.1f}" y1="{y1:.1f}" x2="{x2:.1f}" y2="{y2:.1f}" stroke="{colour}" '
            f'stroke-width="{width}" stroke-dasharray="{dashes}"/>')


def rectangle(x, y, width, height, colour):
    return f'<rect x="{x:.1f}" y="{y:.1f}" width="{width:.1f}" height="{height:.1f}" fill="{colour}"/>'


def legend(x, y):
    parts = []
    for place, engine in enumerate(measure.ENGINES):
        parts.append(rectangle(x + 130 * place, y - 11, 14, 14, COLOURS[engine]))
        parts.append(text(x + 130 * place + 20, y + 1, TITLES[engine], size=13, anchor="start"))
    return parts


def bars(panel, workloads):
    """A group of bars for each workload, each with its ratio above."""
    parts = panel.frame()
    group = panel.width / max(len(workloads), 1)
    bar = group * 0.8 / len(measure.ENGINES)
    for place, workload in enumerate(workloads):
        middle = panel.left + group * (place + 0.5)
        for number, engine in enumerate(measure.ENGINES):
            ratio = workload["ratio"][engine]
            x, y = middle + bar * (number - len(measure.ENGINES) / 2), panel.y(ratio)
            parts.append(rectangle(x + 1, y, bar - 2, panel.top + panel.height - y, COLOURS[engine]))
            parts.append(text(x + bar / 2, y - 4, f"{ratio:.2f}", size=11))
        parts.append(text(middle, panel.top + panel.height + 18, workload["name"], size=13))
    return parts + panel.floor()


def curves(panel, workloads, unit):
    """The ratio over a number that grows fourfold from point to point."""
    if not workloads:
        return []
    parts = panel.frame()
    numbers = [int(re.sub(r"\D", "", workload["name"])) for workload in workloads]
    span = math.log(max(numbers) / min(numbers)) or 1
    places = [panel.left + 30 + (panel.width - 60) * math.log(number / min(numbers)) / span for number in numbers]
    for engine in measure.ENGINES:
        points = [(x, panel.y(workload["ratio"][engine])) for x, workload in zip(places, workloads)]
        path = " ".join(f"{x:.1f},{y:.1f}" for x, y in points)
        parts.append(f'<polyline points="{path}" fill="none" stroke="{COLOURS[engine]}" stroke-width="2.5"/>')
        parts += [f'<circle cx="{x:.1f}" cy="{y:.1f}" r="4" fill="{COLOURS[engine]}"/>' for x, y in points]
    parts += [text(x, panel.top + panel.height + 18, str(number), size=13) for x, number in zip(places, numbers)]
    parts.append(text(panel.left + panel.width / 2, panel.top + panel.height + 38, unit, size=13))
    return parts + panel.floor()


def draw(results):
    """The plot as the text of an SVG file."""
    workloads = {workload["name"]: workload for workload in results["workloads"]}
    single = [workloads[name] for name in ("A", "B", "C", "D640", "R320", "till", "baskets") if name in workloads]
    lines = [workload for name, workload in workloads.items() if re.fullmatch(r"D\d+", name)]
    rules = [workload for name, workload in workloads.items() if re.fullmatch(r"R\d+", name)]
    parts = [rectangle(0, 0, WIDTH, HEIGHT, "#ffffff"),
             text(WIDTH / 2, 34, "Time of the processor, in multiples of the plain floor", size=19, weight="bold"),
             *legend(WIDTH / 2 - 185, 66),
             *bars(Panel(85, 115, WIDTH - 115, 300, "Workloads"), single),
             *curves(Panel(85, 490, 375, 280, "More lines, 15 rules"), lines, "lines of the sale"),
             *curves(Panel(555, 490, 375, 280, "More rules, 10 lines"), rules, "rules loaded")]
    return (f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {WIDTH} {HEIGHT}" width="{WIDTH}" '
            f'height="{HEIGHT}" font-family="DejaVu Sans, Helvetica, Arial, sans-serif">\n' + "\n".join(parts) + "\n</svg>\n")
