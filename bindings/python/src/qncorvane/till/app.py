"""The till on the whole screen: receipt at the left, reasons at the right, the command line below."""

from __future__ import annotations

from collections.abc import Callable, Iterable

from prompt_toolkit.application import Application
from prompt_toolkit.buffer import Buffer
from prompt_toolkit.completion import CompleteEvent, Completer, Completion
from prompt_toolkit.document import Document
from prompt_toolkit.formatted_text import StyleAndTextTuples
from prompt_toolkit.history import InMemoryHistory
from prompt_toolkit.input import Input
from prompt_toolkit.key_binding import KeyBindings, KeyPressEvent
from prompt_toolkit.keys import Keys
from prompt_toolkit.layout import Dimension, Float, FloatContainer, HSplit, Layout, VSplit, Window
from prompt_toolkit.layout.controls import BufferControl, FormattedTextControl
from prompt_toolkit.layout.menus import CompletionsMenu
from prompt_toolkit.layout.processors import BeforeInput
from prompt_toolkit.output import Output
from prompt_toolkit.styles import Style

from .commands import Commands, Quit
from .model import Till
from .view import View, cells, clean, cut, wrap
from .words import Refusal, Words

_LEAST_COLUMNS = 30
_MOST_SAID = 3  # lines of an answer
_STYLE = Style.from_dict({"title": "reverse", "refused": "bold", "keys": "reverse", "heading": "bold"})


class _Choices(Completer):
    def __init__(self, commands: Commands) -> None:
        self._commands = commands

    def get_completions(self, document: Document, complete_event: CompleteEvent) -> Iterable[Completion]:
        """What may stand at the cursor."""
        for choice in self._commands.complete(document.text_before_cursor):
            yield Completion(choice.text, -choice.back, display=clean(choice.shown), display_meta=clean(choice.about))


class App:
    """The screen of a till."""

    def __init__(self, till: Till, commands: Commands, view: View, words: Words, *, input: Input | None = None,
                 output: Output | None = None) -> None:
        """
        Args:
            input: where keys come from; the terminal if None.
            output: where the screen goes; the terminal if None.
        """
        self._till = till
        self._commands = commands
        self._view = view
        self._words = words
        self._said = ""
        self._is_refused = False
        self._page: Callable[[int], list[str]] | None = None
        self._scrolled = 0
        self.buffer = Buffer(completer=_Choices(commands), complete_while_typing=True, multiline=False,
                             history=InMemoryHistory(), accept_handler=self._accept)
        self._app: Application[None] = Application(
            layout=self._layout(), key_bindings=self._keys(), style=_STYLE, full_screen=True, input=input, output=output)

    def run(self) -> None:
        """Runs until the person quits."""
        self._app.run()

    @property
    def application(self) -> Application[None]:
        """The application of the terminal library."""
        return self._app

    def _layout(self) -> Layout:
        line = Window(BufferControl(self.buffer, input_processors=[BeforeInput("> ")]), height=1)
        panes = VSplit([
            Window(FormattedTextControl(self._left_pane), width=lambda: Dimension.exact(self._widths(self._columns())[0])),
            Window(width=1, char="│"),
            Window(FormattedTextControl(self._right_pane))])
        return Layout(FloatContainer(
            HSplit([
                Window(FormattedTextControl(self._title_pane), height=1),
                panes,
                Window(FormattedTextControl(self._answer_pane), height=lambda: Dimension.exact(len(self._answer()))),
                line,
                Window(FormattedTextControl(self._keys_pane), height=1),
            ]), floats=[Float(CompletionsMenu(max_height=8, scroll_offset=1), xcursor=True, ycursor=True)]), focused_element=line)

    def _keys(self) -> KeyBindings:
        keys = KeyBindings()

        @keys.add("c-c")
        @keys.add("<sigint>")
        def clear(event: KeyPressEvent) -> None:
            self.buffer.reset()
            self._say("")

        @keys.add("c-d")
        def end(event: KeyPressEvent) -> None:
            if not self.buffer.text:
                event.app.exit()

        @keys.add("escape", eager=True)
        def close_page(event: KeyPressEvent) -> None:
            self._page = None
            self._scrolled = 0
            self.buffer.cancel_completion()

        @keys.add("pagedown")
        def down(event: KeyPressEvent) -> None:
            self._scrolled += max(self._rows() - 1, 1)

        @keys.add("pageup")
        def up(event: KeyPressEvent) -> None:
            self._scrolled = max(self._scrolled - max(self._rows() - 1, 1), 0)

        @keys.add(Keys.BracketedPaste)
        def paste(event: KeyPressEvent) -> None:
            # A pasted text is one command, however many lines it had.
            self.buffer.insert_text(" ".join(event.data.split()))

        return keys

    def _accept(self, buffer: Buffer) -> bool:
        """Does what was typed; whatever comes of it, the till goes on."""
        typed = buffer.text
        try:
            answer = self._commands.run(typed)
            if typed.strip():
                self._page = answer.page
                self._scrolled = 0
            self._say(answer.text)
        except Quit:
            self._app.exit()
        except Refusal as refusal:
            self._say(self._words.refusal(refusal), refused=True)
        except Exception as error:  # the engine's refusals, a full disk: all of it is told, nothing ends the till
            self._say(str(error) or self._words("unexpected", text=type(error).__name__), refused=True)
        return False

    def _say(self, text: str, *, refused: bool = False) -> None:
        self._said = clean(text)
        self._is_refused = refused

    def _columns(self) -> int:
        return self._app.output.get_size().columns

    def _rows(self) -> int:
        around = 3 + len(self._answer())  # the title, the command line, the keys
        return max(self._app.output.get_size().rows - around, 1)

    def _widths(self, columns: int) -> tuple[int, int]:
        """The columns of the receipt and of the reasons; the line between them takes one."""
        left = max(min(columns * 11 // 20, 60), 1)
        return left, max(columns - left - 1, 1)

    def _tail(self, width: int, rows: int) -> list[str]:
        """The end of the receipt: the sums stand there."""
        lines = self._view.receipt(self._till.state, width) if width >= _LEAST_COLUMNS // 2 else [self._words("too_small")]
        lines = [cut(line, width) for line in lines[-rows:]]
        return lines + [""] * (rows - len(lines))

    def _right(self, width: int, rows: int) -> list[str]:
        """The page that was asked for, or the reasons."""
        lines = self._page(width) if self._page else self._view.reasons(self._till.state, width)
        if not lines:
            lines = [self._words("reasons_none")]
        self._scrolled = max(min(self._scrolled, len(lines) - rows), 0)
        shown = [cut(line, width) for line in lines[self._scrolled:self._scrolled + rows]]
        return shown + [""] * (rows - len(shown))

    def _answer(self) -> list[str]:
        """What was answered to the last command."""
        columns = self._columns()
        lines = wrap(self._said, columns)
        return [cut(line, columns) for line in lines[:_MOST_SAID]] or [""]

    def _left_pane(self) -> StyleAndTextTuples:
        return [("", "\n".join(self._tail(self._widths(self._columns())[0], self._rows())))]

    def _right_pane(self) -> StyleAndTextTuples:
        lines = self._right(self._widths(self._columns())[1], self._rows())
        return [("class:heading" if line and line[:1] != " " else "", line + "\n") for line in lines]

    def _answer_pane(self) -> StyleAndTextTuples:
        return [("class:refused" if self._is_refused else "", "\n".join(self._answer()))]

    def _title_pane(self) -> StyleAndTextTuples:
        return self._padded("class:title", self._view.title(self._till.state, self._columns()))

    def _keys_pane(self) -> StyleAndTextTuples:
        return self._padded("class:keys", cut(self._words("keys"), self._columns()))

    def _padded(self, style: str, text: str) -> StyleAndTextTuples:
        return [(style, text + " " * max(self._columns() - cells(text), 0))]
