"""Texts that nobody would type, at the till: answered or refused, and the sale is as it was."""

from collections.abc import Iterator

import pytest
from hypothesis import given, settings
from hypothesis import strategies as st

from qncorvane import Engine, QncError
from qncorvane.till.commands import COMMANDS, Quit
from qncorvane.till.view import cells, clean, cut, row, wrap
from qncorvane.till.words import Refusal

from conftest import SAMPLES, make_store
from desk import Desk

WORDS = st.sampled_from([*COMMANDS, "3 x", "at", "100101", "MZHG-01", "1", "0", "-1", "C5", "juice", "900201", "CARD", "5.00"])
LINES = st.text(max_size=30) | st.lists(WORDS, max_size=5).map(" ".join) | st.tuples(WORDS, st.text(max_size=12)).map(" ".join)


@pytest.fixture(scope="module")
def shared(tmp_path_factory: pytest.TempPathFactory) -> Iterator[Desk]:
    """A till for all the texts of this file."""
    folder = tmp_path_factory.mktemp("shop")
    make_store(SAMPLES, folder)
    with Engine(folder) as engine:
        engine.load_rules()
        yield Desk(engine, folder)


@settings(max_examples=300)
@given(typed=LINES)
def test_whatever_is_typed_is_answered_or_refused(shared: Desk, typed: str) -> None:
    before = shared.state
    for choice in shared.commands.complete(typed):
        assert choice.back <= len(typed)
    if "save" in typed.lower():
        return
    try:
        answer = shared.type(typed)
    except (Refusal, QncError, ValueError) as error:
        assert shared.state == before and (str(error) or isinstance(error, Refusal))
    except Quit:
        assert typed.strip().lower() == "quit"
    else:
        shown = [*(answer.page(40) if answer.page else ()), *shared.view.receipt(shared.state, 40),
                 *shared.view.reasons(shared.state, 40)]
        assert max(cells(line) for line in [*shown, ""]) <= 40
        assert all(clean(line) == line for line in [*shown, answer.text])
    if len(shared.state.lines) > 8:
        shared.type("new")


@given(text=st.text(), width=st.integers(2, 60))
def test_texts_stay_within_their_width(text: str, width: int) -> None:
    assert cells(cut(clean(text), width)) <= width
    for line in wrap(text, width):
        assert cells(line) <= width and line.strip()
    assert cells(row(text, "1.00", max(width, 4))) <= max(width, 4)
    assert "".join(wrap(text, width)).replace(" ", "") == clean(text).replace(" ", "")
