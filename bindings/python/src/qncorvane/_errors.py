"""What a call answers other than success."""

from __future__ import annotations

import enum
from typing import TYPE_CHECKING

if TYPE_CHECKING:
    from ._explanation import Explanation
    from ._reports import LoadReport


class Code(enum.IntEnum):
    """The codes of the library's calls, with the names of its header."""

    BAD_ARGUMENT = 1
    BAD_XML = 2
    BAD_VALUE = 3
    BAD_STORE = 4
    ALREADY_OPEN = 5
    CLOSED = 6
    TIMED_OUT = 7
    TOTAL_OVERFLOW = 8
    NUMBER_OVERFLOW = 9
    REFUSED = 10
    NO_MEMORY = 11
    UNREADABLE = 12


class QncError(Exception):
    """A call that was refused.

    The text (`str(error)`, `error.text`) is the engine's: what is wrong, where and what to do. Each code has a class of its
    own below this one; a code that this package doesn't know comes as QncError itself.
    """

    code: int
    """The answer's code, one of `Code`."""
    text: str
    """The engine's text."""
    report: LoadReport | None
    """What became of each file, where `Engine.load_rules` was refused; None of all other calls."""
    explanation: Explanation | None
    """Why a choice of gifts was refused, where `Engine.explain` was called; None of all other calls."""

    def __init__(self, code: int, text: str) -> None:
        super().__init__(code, text)
        self.code = code
        self.text = text
        self.report = None
        self.explanation = None

    def __str__(self) -> str:
        return self.text


class BadArgument(QncError):
    """The call makes no sense so: no key, an unknown mode."""


class BadXml(QncError):
    """A text is no XML, or more than is read; with line and column."""


class BadValue(QncError):
    """XML, but a value in it is missing or can't be what it stands for."""


class BadStore(QncError):
    """The folder, its settings or its database: what `check` finds, too."""


class AlreadyOpen(QncError):
    """This process has an engine open."""


class Closed(QncError):
    """No engine: closed, of another process, or at the process's end."""


class TimedOut(QncError):
    """The time limit ended the wait; the text says whether the call had begun. What had begun is carried through."""


class TotalOverflow(QncError):
    """Mode "Gift": the choice costs more than the sale has reached."""


class NumberOverflow(QncError):
    """Mode "Gift": more of an article was taken than is offered."""


class Refused(QncError):
    """The engine could not calculate; the log may say more."""


class NoMemory(QncError):
    """Memory was short; the next call works when there is some again."""


class Unreadable(QncError):
    """A file or folder of rules can't be read."""


class LibraryMissing(OSError):
    """The library libqncorvane-host can't be loaded; the text says what to do."""


_CLASSES: dict[int, type[QncError]] = {
    Code.BAD_ARGUMENT: BadArgument,
    Code.BAD_XML: BadXml,
    Code.BAD_VALUE: BadValue,
    Code.BAD_STORE: BadStore,
    Code.ALREADY_OPEN: AlreadyOpen,
    Code.CLOSED: Closed,
    Code.TIMED_OUT: TimedOut,
    Code.TOTAL_OVERFLOW: TotalOverflow,
    Code.NUMBER_OVERFLOW: NumberOverflow,
    Code.REFUSED: Refused,
    Code.NO_MEMORY: NoMemory,
    Code.UNREADABLE: Unreadable,
}


def error_of(code: int, text: str) -> QncError:
    """The exception for an answer other than 0."""
    return _CLASSES.get(code, QncError)(Code(code) if code in _CLASSES else code, text)
