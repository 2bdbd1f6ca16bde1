"""Every text that the library gives out is given back, once."""

import ctypes
import pathlib
from collections import Counter
from collections.abc import Callable, Iterator
from typing import Any

import pytest

from qncorvane import Engine, Mode, QncError, _library, check

from test_engine import basket


class Watched:
    """The library, with a count of the texts that are out."""

    def __init__(self, real: ctypes.CDLL) -> None:
        self._real = real
        self.out: Counter[int] = Counter()
        self.given = 0

    def __getattr__(self, name: str) -> Callable[..., Any]:
        real = getattr(self._real, name)

        def call(*arguments: Any) -> Any:
            if name == "qnc_free":
                self.out[arguments[0].value or 0] -= 1
                return real(*arguments)
            answer = real(*arguments)
            places = [argument._obj for argument in arguments if hasattr(argument, "_obj")]
            for place in places[1:] if name == "qnc_open" else places:
                if place.value:
                    self.given += 1
                    self.out[place.value] += 1
            return answer

        return call

    def left(self) -> dict[int, int]:
        """The texts that weren't given back, or more than once."""
        return {text: count for text, count in self.out.items() if text and count}


@pytest.fixture
def watched(monkeypatch: pytest.MonkeyPatch) -> Iterator[Watched]:
    seen = Watched(_library.library())
    monkeypatch.setattr(_library, "_loaded", seen)
    yield seen


def test_texts_are_given_back_after_answers_and_errors(watched: Watched, store: pathlib.Path) -> None:
    with Engine(store) as engine:
        engine.load_rules()
        engine.state()
        engine.calculate("a", Mode.ALL, basket())
        engine.calculate_xml("a", Mode.ALL, basket())
        (store / "rules" / "broken.xml").write_text("<", "utf-8")
        refusals: list[Callable[[], object]] = [
            lambda: engine.calculate("a", Mode.ALL, "<"), lambda: engine.load_rule("<"), engine.load_rules,
            lambda: engine.calculate("", Mode.ALL), lambda: Engine(store), lambda: engine.load_rules("nowhere")]
        for refused in refusals:
            with pytest.raises(QncError):
                refused()
        check(store)
        check(store / "nowhere")
    assert watched.given >= 13
    assert watched.left() == {}


def test_a_text_is_given_back_when_it_cannot_be_read(watched: Watched, engine: Engine,
                                                     monkeypatch: pytest.MonkeyPatch) -> None:
    def fail(_text: object) -> str:
        raise KeyboardInterrupt

    before = watched.given
    monkeypatch.setattr(_library, "_copied", fail)
    with pytest.raises(KeyboardInterrupt):
        engine.state()
    monkeypatch.undo()
    assert watched.given == before + 1
    assert watched.left() == {}


class Mallinfo(ctypes.Structure):
    """What glibc tells of the memory that is in use."""

    _fields_ = [(name, ctypes.c_size_t) for name in ("arena", "ordblks", "smblks", "hblks", "hblkhd", "usmblks", "fsmblks",
                                                     "uordblks", "fordblks", "keepcost")]


def bytes_in_use() -> int:
    libc = ctypes.CDLL(None)
    libc.mallinfo2.restype = Mallinfo
    info = libc.mallinfo2()
    return int(info.uordblks + info.hblkhd)


def test_memory_does_not_grow_with_calls(engine: Engine) -> None:
    def day() -> None:
        for number in range(100):
            engine.calculate(str(number), Mode.ALL, basket())
            engine.calculate_xml(str(number), Mode.MZ_PROMOTION)
            with pytest.raises(QncError):
                engine.calculate(str(number), Mode.ALL, "<Sale>")
            engine.forget(str(number))

    day()
    before = bytes_in_use()
    for _ in range(3):
        day()
    assert bytes_in_use() - before < 300 * 256, "not a quarter of one result a sale"
