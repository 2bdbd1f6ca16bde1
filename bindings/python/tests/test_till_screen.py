"""The screen: a session is typed at it, and what stands there is read."""

import asyncio
import pathlib
from collections.abc import Callable, Coroutine
from typing import Any

import pytest

pytest.importorskip("prompt_toolkit", reason="Debian's package python3-prompt-toolkit brings it")

from prompt_toolkit.data_structures import Size  # noqa: E402
from prompt_toolkit.input import create_pipe_input  # noqa: E402
from prompt_toolkit.input.base import PipeInput  # noqa: E402
from prompt_toolkit.output import DummyOutput  # noqa: E402

from qncorvane import Engine  # noqa: E402
from qncorvane.till.app import App  # noqa: E402

from desk import Desk  # noqa: E402

CTRL_C, CTRL_D, ESCAPE, TAB = "\x03", "\x04", "\x1b", "\t"
PAGE_UP, PAGE_DOWN = "\x1b[5~", "\x1b[6~"


class Screen(DummyOutput):
    """An output of some size that shows nothing."""

    def __init__(self, rows: int = 24, columns: int = 80) -> None:
        self.size = Size(rows=rows, columns=columns)

    def get_size(self) -> Size:
        """The size of the screen."""
        return self.size


class Session:
    """Somebody at the screen."""

    def __init__(self, app: App, keys: PipeInput, screen: Screen) -> None:
        self._app = app
        self._keys = keys
        self._screen = screen

    def lines(self) -> list[str]:
        """What stands on the screen."""
        shown = self._app.application.renderer.last_rendered_screen
        size = self._screen.size
        if shown is None:
            return [""] * size.rows
        # A wide letter has its own cell and an empty one behind it.
        return ["".join(shown.data_buffer[line][column].char for column in range(size.columns)).rstrip()
                for line in range(size.rows)]

    @property
    def command_line(self) -> str:
        """What is typed."""
        return self._app.buffer.text

    async def see(self, seen: Callable[[], bool]) -> None:
        """Waits until something is so."""
        for _ in range(500):
            if seen():
                return
            await asyncio.sleep(0.02)
        raise AssertionError("\n".join(self.lines()))

    async def type(self, keys: str, text: str) -> None:
        """Types, and waits until a text stands on the screen."""
        self._keys.send_text(keys)
        await self.see(lambda: any(text in line for line in self.lines()))

    async def enter(self, command: str, text: str) -> None:
        """Types a command, and waits until a text stands on the screen and the command line is empty."""
        self._keys.send_text(f"{command}\r")
        await self.see(lambda: not self.command_line and any(text in line for line in self.lines()))

    async def resize(self, rows: int, columns: int) -> None:
        """Gives the screen another size."""
        self._screen.size = Size(rows=rows, columns=columns)
        self._app.application._on_resize()
        await asyncio.sleep(0.1)

    async def quit(self) -> None:
        """Ends the till."""
        self._keys.send_text(CTRL_C + CTRL_D)


def at_the_screen(desk: Desk, script: Callable[[Session], Coroutine[Any, Any, None]], rows: int = 24, columns: int = 80) -> None:
    """Runs the screen, and a session at it, until the till ends."""
    async def both() -> None:
        with create_pipe_input() as keys:
            screen = Screen(rows, columns)
            app = App(desk.till, desk.commands, desk.view, desk.words, input=keys, output=screen)
            running = asyncio.create_task(app.application.run_async())
            session = Session(app, keys, screen)
            await session.see(lambda: any(session.lines()))
            try:
                await script(session)
                await session.quit()
                await asyncio.wait_for(running, 10)
            finally:
                running.cancel()

    asyncio.run(both())


@pytest.fixture
def desk(engine: Engine, store: pathlib.Path) -> Desk:
    """A till on the sample store."""
    return Desk(engine, store)


def test_a_session(desk: Desk) -> None:
    async def script(screen: Session) -> None:
        await screen.enter("3 x 100101", "3 x Orange juice 1 l: 7.50")
        assert screen.lines()[1].startswith("  1 Orange juice 1 l      3 x 2.50      7.50│")
        assert screen.lines()[0] == "Sale T-0001   Shop 01   2024-06-15 12:00"
        await screen.enter("subtotal", "To pay 5.97")
        await screen.enter("pay CASH 10", "Change")
        await screen.enter("undo 3", "No goods yet.")

    at_the_screen(desk, script)
    assert desk.state.lines == ()


def test_the_reasons_stand_beside_the_receipt(desk: Desk) -> None:
    async def script(screen: Session) -> None:
        await screen.enter("5 x 200201", "WITHIN REACH")
        beside = [line.partition("│")[2] for line in screen.lines()]
        assert beside[1] == "WITHIN REACH"
        assert any(line.startswith("  PTPL-01 From six yoghurts") for line in beside)
        await screen.type(PAGE_DOWN, "NOT GIVEN")
        await screen.type(PAGE_UP, "WITHIN REACH")

    at_the_screen(desk, script)


def test_completion(desk: Desk) -> None:
    async def script(screen: Session) -> None:
        await screen.type("scan 2002", "Yoghurt, peach  0.80")
        await screen.type(TAB + TAB, "> scan 200202")
        await screen.enter("", "1 x Yoghurt, peach: 0.80")
        await screen.type("qty 1", "1 x Yoghurt, peach")
        await screen.enter(" 6", "6 x Yoghurt, peach: 4.80")

    at_the_screen(desk, script)
    assert [line.count for line in desk.state.lines] == [6]


def test_the_keys(desk: Desk) -> None:
    async def script(screen: Session) -> None:
        await screen.type("rubbish", "> rubbish")
        screen._keys.send_text(CTRL_D)
        await asyncio.sleep(0.1)
        assert screen.command_line == "rubbish", "Ctrl-D ends an empty line alone"
        screen._keys.send_text(CTRL_C)
        await screen.see(lambda: screen.command_line == "")
        await screen.enter("help", "scan [N x] GOODS")
        screen._keys.send_text(ESCAPE)
        await screen.see(lambda: not any("scan [N x]" in line for line in screen.lines()))

    at_the_screen(desk, script)


def test_quit_ends_it(desk: Desk) -> None:
    async def both() -> None:
        with create_pipe_input() as keys:
            app = App(desk.till, desk.commands, desk.view, desk.words, input=keys, output=Screen())
            keys.send_text("quit\r")
            await asyncio.wait_for(app.application.run_async(), 10)

    asyncio.run(both())


def test_refusals_are_told(desk: Desk) -> None:
    async def script(screen: Session) -> None:
        await screen.enter("void 1", "the sale has no line 1")
        await screen.enter("save /nowhere/at/all", "No such file or directory")
        await screen.enter("2 x 950101", "37.80")
        await screen.enter("subtotal", "To pay 37.80")
        await screen.enter("gift MZHG-01 mug 2", "number overflow: ")

    at_the_screen(desk, script)


def test_what_nobody_foresaw_is_told_too(desk: Desk, monkeypatch: pytest.MonkeyPatch) -> None:
    def fail(typed: str) -> None:
        raise ZeroDivisionError
    monkeypatch.setattr(desk.commands, "run", fail)

    async def script(screen: Session) -> None:
        await screen.enter("100101", "this can't be done: ZeroDivisionError")

    at_the_screen(desk, script)


@pytest.mark.parametrize("rows, columns", [(24, 80), (50, 200), (24, 40), (10, 30), (5, 20), (3, 10), (1, 1)])
def test_sizes(desk: Desk, rows: int, columns: int) -> None:
    async def script(screen: Session) -> None:
        await screen.enter("5 x 200201", "Yog")
        await screen.resize(rows, columns)
        await screen.enter("help", "") if rows < 3 else None
        await screen.resize(24, 80)
        await screen.type("", "WITHIN REACH") if rows >= 3 else None

    at_the_screen(desk, script)


def test_a_long_receipt_shows_its_end(desk: Desk) -> None:
    desk.type(*["100102"] * 30)

    async def script(screen: Session) -> None:
        await screen.type("", "At the subtotal                        60.00")
        assert not any("  1 Apple" in line for line in screen.lines()) and any(" 30 Apple" in line for line in screen.lines())

    at_the_screen(desk, script)


HOSTILE = ["x" * 5000, "\x1b]0;title\x07", "\x1b[2J", "👍👨\u200d👩\u200d👧 " * 20, "橙汁" * 100, "\u202eabc", "100101 at 1e9",
           "9" * 400]


@pytest.mark.parametrize("text", HOSTILE, ids=range(len(HOSTILE)))
def test_hostile_texts(desk: Desk, text: str) -> None:
    """Typed and pasted: whatever it does to the command line, the till is there afterwards."""
    async def script(screen: Session) -> None:
        for typed in (text, f"\x1b[200~{text}\x1b[201~"):
            screen._keys.send_text(typed + "\r")
            await asyncio.sleep(0.2)
            screen._keys.send_text(ESCAPE + CTRL_C)
            await screen.see(lambda: screen.command_line == "")
            await screen.enter("croissant", "1 x Croissant: 1.10")
        assert all("\x1b" not in line for line in screen.lines())

    at_the_screen(desk, script)
    assert [line.goods.code for line in desk.state.lines if line.goods.code == "300201"] == ["300201"] * 2


def test_a_pasted_sale_is_one_line(desk: Desk) -> None:
    xml = '<Sale BillNo="1">\n  <Plu>\r\n\t<Row/>\n</Sale>\n'

    async def script(screen: Session) -> None:
        screen._keys.send_text(f"\x1b[200~{xml}\x1b[201~")
        await screen.see(lambda: screen.command_line == '<Sale BillNo="1"> <Plu> <Row/> </Sale>')
        await screen.enter("", "no goods have the code or name")

    at_the_screen(desk, script)


def test_in_chinese(engine: Engine, store: pathlib.Path) -> None:
    desk = Desk(engine, store, "zh")

    async def script(screen: Session) -> None:
        await screen.enter("5 x 200201", "还差一点")
        await screen.enter("subtotal", "应付 4.00")

    at_the_screen(desk, script)
