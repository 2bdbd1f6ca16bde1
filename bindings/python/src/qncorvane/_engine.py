"""The engine, and what can be asked without one."""

from __future__ import annotations

import ctypes
import os
import warnings
from types import TracebackType

from . import _library
from ._errors import Code, error_of
from ._explanation import Explained, Explanation
from ._library import Answer, call, milliseconds, path_bytes, utf8
from ._reports import CheckReport, LintReport, LoadReport, State
from ._result import Result
from ._sale import Mode, Sale

Folder = str | os.PathLike[str]


class Engine:
    """An engine, open on a store's folder; one in a process.

        with Engine("/srv/shop") as engine:
            engine.load_rules()
            result = engine.calculate("till-1/4711", Mode.ALL, sale)

    Any thread may call at any time; calls run one after the other, in the order in which they came. Each takes `time_limit`,
    the seconds after which the caller stops waiting (TimedOut); None for no limit. What has not begun by then never begins,
    what has begun is carried through.

    Each call raises the subclass of QncError for what the engine answers, ValueError for an argument that can't be handed
    to it (a text with U+0000), and TypeError for one of another type. In a process forked from the one that opened the engine
    every call but `close` raises Closed; that process may open one of its own.
    """

    _is_open = False

    def __init__(self, folder: Folder) -> None:
        """Opens the engine, without rules.

        Args:
            folder: the store's folder, with "config.ini". A relative one counts from the current directory.
        Raises:
            BadStore: the folder, its settings or its database; the text tells the first thing that is wrong.
            AlreadyOpen: this process has an engine open.
            LibraryMissing: the library isn't installed.
        """
        self._process = os.getpid()
        self._handle: ctypes.c_void_p = _library.open_engine(path_bytes(folder))
        self._is_open = True

    def close(self) -> None:
        """Closes the engine behind the calls that came before; rules and sales are forgotten.

        May be called again; what is closed already, or of another process, is left alone.
        """
        answer = call("qnc_close", self._handle)
        self._is_open = False
        if answer.code != Code.CLOSED:
            answer.checked()

    def __del__(self) -> None:
        if self._is_open and self._process == os.getpid():
            try:
                warnings.warn("an engine was left open", ResourceWarning, source=self)
            finally:  # a filter may make an error of the warning
                self.close()

    def __enter__(self) -> Engine:
        return self

    def __exit__(self, kind: type[BaseException] | None, error: BaseException | None, trace: TracebackType | None) -> None:
        self.close()

    def load_rule(self, xml: str, *, name: str = "", lenient: bool = False, time_limit: float | None = None) -> None:
        """Loads one rule; one with the same `BillNo` is replaced.

        Args:
            xml: the rule's XML, with exactly one rule in it.
            name: what errors call the text, e.g. the name of its file.
            lenient: the XML is read as far as it goes, and values are not looked at.
        Raises:
            BadXml, BadValue: the rule is refused; with place.
        """
        call("qnc_load_rule", self._handle, utf8("xml", xml), utf8("name", name), _flags(lenient),
             milliseconds(time_limit)).checked()

    def load_rules(self, folder: Folder = "", *, replace: bool = False, lenient: bool = False,
                   time_limit: float | None = None) -> LoadReport:
        """Loads all files "*.xml" of a folder, each with one rule, in the order of their names.

        Args:
            folder: a relative one counts from the store's folder; "rules" if empty.
            replace: the rules that were loaded before are gone; nothing is changed when a file is refused.
            lenient: as in `load_rule`.
        Returns:
            What became of each file.
        Raises:
            BadXml, BadValue, Unreadable: a file was refused; the error's `report` tells what became of each. Without `replace`
                the other files are loaded all the same.
        """
        flags = _flags(lenient) | (_library.REPLACE if replace else 0)
        answer = call("qnc_load_rules", self._handle, path_bytes(folder), flags, milliseconds(time_limit), gives_text=True)
        if answer.code != 0:
            error = error_of(answer.code, answer.error)
            error.report = LoadReport.from_json(answer.text) if answer.text else None
            raise error
        return LoadReport.from_json(answer.said())

    def clear_rules(self, bill_no: str = "*", *, time_limit: float | None = None) -> None:
        """Removes the rules with this `BillNo`, in any letter case; all of them for "*"."""
        call("qnc_clear_rules", self._handle, utf8("bill_no", bill_no), milliseconds(time_limit)).checked()

    def calculate(self, key: str, mode: Mode | str, sale: Sale | str = Sale(), *, lenient: bool = False,
                  time_limit: float | None = None) -> Result:
        """Calculates one step of a sale.

        Args:
            key: names the sale; the first call with a key creates it, and it lives until it is forgotten.
            mode: the step.
            sale: what is new of the sale; or its XML.
            lenient: the XML is read as far as it goes, and values are not looked at.
        Raises:
            BadArgument: no key, an unknown mode.
            BadXml, BadValue: the sale is refused; with place.
            TotalOverflow, NumberOverflow: mode "Gift": correct the choice and send the offers again.
            Refused: the engine could not calculate.
            ValueError: `sale` has a value that XML can't hold (`Sale.to_xml`).
        """
        return Result.from_json(self._calculated(key, mode, sale, _flags(lenient) | _library.JSON, time_limit).said())

    def explain(self, key: str, mode: Mode | str, sale: Sale | str = Sale(), *, lenient: bool = False,
                time_limit: float | None = None) -> Explained:
        """As `calculate`, and tells why: for every rule what it gave or why it gave nothing, and what would bring more.

        The sale is changed as `calculate` changes it.

        Raises:
            TotalOverflow, NumberOverflow: as of `calculate`; the error's `explanation` tells why.
            ValueError: the explanation is of a later version of the library than this package knows.
        """
        answer = self._calculated(key, mode, sale, _flags(lenient) | _library.JSON | _library.EXPLAIN, time_limit)
        if answer.code != 0:
            error = error_of(answer.code, answer.error)
            error.explanation = Explanation.from_json(answer.text) if answer.text else None
            raise error
        return Explained.from_json(answer.said())

    def calculate_xml(self, key: str, mode: Mode | str, sale: Sale | str = Sale(), *, lenient: bool = False,
                      time_limit: float | None = None) -> str:
        """As `calculate`, with the result as XML."""
        return self._calculated(key, mode, sale, _flags(lenient), time_limit).said()

    def _calculated(self, key: str, mode: Mode | str, sale: Sale | str, flags: int, time_limit: float | None) -> Answer:
        xml = sale.to_xml() if isinstance(sale, Sale) else sale
        word = mode.value if isinstance(mode, Mode) else mode
        return call("qnc_calculate", self._handle, utf8("key", key), utf8("mode", word), utf8("sale", xml), flags,
                    milliseconds(time_limit), gives_text=True)

    def forget(self, key: str, *, time_limit: float | None = None) -> None:
        """Forgets a sale and gives its memory back; an unknown key is no error. Sales don't end by themselves."""
        call("qnc_forget_sale", self._handle, utf8("key", key), milliseconds(time_limit)).checked()

    def forget_all(self, *, time_limit: float | None = None) -> None:
        """Forgets all sales."""
        call("qnc_forget_sales", self._handle, milliseconds(time_limit)).checked()

    def state(self, *, time_limit: float | None = None) -> State:
        """The engine's state: version, folder, rules, how many sales it holds, database."""
        return State.from_json(call("qnc_state", self._handle, milliseconds(time_limit), gives_text=True).said())


def _flags(lenient: bool) -> int:
    return _library.LENIENT if lenient else 0


def check(folder: Folder, *, time_limit: float | None = None) -> CheckReport:
    """Looks through a store's folder: settings, driver, database, tables, columns, and the rules in "rules/".

    Nothing is loaded. An engine may be open, on this folder or another.

    Returns:
        What was found; a store with errors is no exception, see `CheckReport.ok`.
    Raises:
        QncError: there could be no look, e.g. TimedOut.
    """
    answer = call("qnc_check", path_bytes(folder), milliseconds(time_limit), gives_text=True)
    return CheckReport.from_json(answer.text if answer.text else answer.said())


def lint(folder: Folder, *, time_limit: float | None = None) -> LintReport:
    """Looks through a store's rules and how they go together, and at all that `check` looks at.

    Nothing is loaded and nothing changed. An engine may be open, on this folder or another.

    Returns:
        What was found; a store with errors is no exception, see `LintReport.errors`.
    Raises:
        QncError: there could be no look, e.g. TimedOut.
    """
    answer = call("qnc_lint", path_bytes(folder), milliseconds(time_limit), gives_text=True)
    return LintReport.from_json(answer.text if answer.text else answer.said())


def version() -> str:
    """The version of the library libqncorvane-host, e.g. "1.3.0"."""
    return _library.version()
