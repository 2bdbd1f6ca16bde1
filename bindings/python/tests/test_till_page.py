"""docs/till.md: what it shows is what comes of the commands that stand above it.

As a program, this file writes it there anew: PYTHONPATH=bindings/python/src python3 bindings/python/tests/test_till_page.py
"""

import pathlib
import re
import subprocess
import sys
import tempfile

import pytest

from qncorvane import Engine

from conftest import SAMPLES, SOURCES, make_store
from desk import Desk

FILE = SOURCES / "docs" / "till.md"
PAGE = FILE.read_text("utf-8")


def blocks(language: str) -> list[str]:
    """The page's blocks of a language."""
    return re.findall(rf"^```{language}\n(.*?)^```$", PAGE, re.MULTILINE | re.DOTALL)


def captures(store: pathlib.Path) -> list[str]:
    """What the page's blocks have to hold, in their order: the screen, the help, the script's output."""
    typed, script = blocks("till")
    with Engine(store) as engine:
        engine.load_rules()
        screen, helped = at_work(Desk(engine, store), typed)
    ran = subprocess.run([sys.executable, "-m", "qncorvane.till", "--store", str(store), "--script", "-"], input=script,
                         capture_output=True, text=True, timeout=60, check=True)
    # What the clock has made stands in the answer to the first command alone; the second one sets the time.
    return [screen, helped, "> time" + ran.stdout.partition("> time")[2]]


def at_work(desk: Desk, typed: str) -> tuple[str, str]:
    """The screen after some lines, and what help says."""
    pytest.importorskip("prompt_toolkit", reason="Debian's package python3-prompt-toolkit brings it")
    from test_till_screen import Session, at_the_screen
    shown: list[str] = []

    async def script(screen: Session) -> None:
        for line in typed.splitlines():
            await screen.enter(line, "")
        await screen.see(lambda: len(desk.state.lines) == len(typed.splitlines()) - 1)
        await screen.resize(24, 80)
        shown.extend(screen.lines())

    at_the_screen(desk, script)
    page = desk.type("help").page
    assert page is not None
    return "".join(f"{line}\n" for line in shown), "".join(f"{line}\n" for line in page(100))


def test_the_page_shows_what_is_so(store: pathlib.Path) -> None:
    screen, helped, output = captures(store)
    texts = blocks("text")
    assert blocks("screen") == [screen]
    assert texts == [helped, output]


def write() -> None:
    """Writes what the page shows."""
    with tempfile.TemporaryDirectory() as folder:
        store = pathlib.Path(folder) / "shop"
        make_store(SAMPLES, store)
        made = iter(captures(store))
    FILE.write_text(re.sub(r"^```(screen|text)\n.*?^```$", lambda found: f"```{found[1]}\n{next(made)}```", PAGE,
                           flags=re.MULTILINE | re.DOTALL), "utf-8")


if __name__ == "__main__":
    write()
