"""The pages' examples: each runs, in order, and prints what stands below it; mypy has nothing against them."""

import contextlib
import importlib.util
import io
import pathlib
import re
import subprocess
import sys

import pytest

from qncorvane import Engine

from conftest import SOURCES

PAGES = [SOURCES / "bindings" / "python" / "README.md", SOURCES / "docs" / "python.md"]
BLOCK = re.compile(r"^```(\w+)\n(.*?)^```$", re.MULTILINE | re.DOTALL)


def blocks(page: pathlib.Path) -> list[tuple[str, str]]:
    """The page's fenced blocks: language and text."""
    return [(language, text) for language, text in BLOCK.findall(page.read_text("utf-8"))]


@pytest.mark.parametrize("page", PAGES, ids=["README.md", "python.md"])
def test_the_examples_print_what_the_page_says(page: pathlib.Path, store: pathlib.Path,
                                               monkeypatch: pytest.MonkeyPatch) -> None:
    monkeypatch.chdir(store.parent)
    names: dict[str, object] = {"__name__": page.name}
    said = None
    compared = 0
    try:
        for language, text in blocks(page):
            if language == "python":
                with contextlib.redirect_stdout(io.StringIO()) as out:
                    exec(compile(text, str(page), "exec"), names)
                said = out.getvalue()
            elif language == "text":
                assert said == text
                compared += 1
    finally:
        if isinstance(engine := names.get("engine"), Engine):
            engine.close()
    assert compared == sum(language == "python" for language, _ in blocks(page)) > 0


@pytest.mark.parametrize("page", PAGES, ids=["README.md", "python.md"])
def test_the_examples_are_typed(page: pathlib.Path, tmp_path: pathlib.Path) -> None:
    if importlib.util.find_spec("mypy") is None:
        pytest.skip("mypy is not installed")
    program = tmp_path / "page.py"
    program.write_text("\n".join(text for language, text in blocks(page) if language == "python"), "utf-8")
    answer = subprocess.run(
        [sys.executable, "-m", "mypy", "--strict", "--cache-dir", str(tmp_path / "cache"), str(program)],
        env={"MYPYPATH": str(SOURCES / "bindings/python/src")}, capture_output=True, text=True, timeout=300, check=False)
    assert answer.returncode == 0, answer.stdout
