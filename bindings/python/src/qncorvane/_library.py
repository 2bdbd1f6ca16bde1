"""The C library: found, declared, and called so that no text of it is lost or kept."""

from __future__ import annotations

import ctypes
import math
import os
import threading

from ._errors import Code, LibraryMissing, error_of

SONAME = "libqncorvane-host.so.1"
VARIABLE = "QNCORVANE_HOST_LIBRARY"

LENIENT = 1
JSON = 2
REPLACE = 4
EXPLAIN = 8

_TEXT = ctypes.c_char_p
_OUT = ctypes.POINTER(ctypes.c_void_p)
_UNSIGNED = ctypes.c_uint
_ENGINE = ctypes.c_void_p

# The arguments of each call that answers with a code; the last one is where its error goes.
_CALLS: dict[str, list[type]] = {
    "qnc_open": [_TEXT, _OUT, _OUT],
    "qnc_close": [_ENGINE, _OUT],
    "qnc_load_rule": [_ENGINE, _TEXT, _TEXT, _UNSIGNED, _UNSIGNED, _OUT],
    "qnc_load_rules": [_ENGINE, _TEXT, _UNSIGNED, _UNSIGNED, _OUT, _OUT],
    "qnc_clear_rules": [_ENGINE, _TEXT, _UNSIGNED, _OUT],
    "qnc_calculate": [_ENGINE, _TEXT, _TEXT, _TEXT, _UNSIGNED, _UNSIGNED, _OUT, _OUT],
    "qnc_forget_sale": [_ENGINE, _TEXT, _UNSIGNED, _OUT],
    "qnc_forget_sales": [_ENGINE, _UNSIGNED, _OUT],
    "qnc_state": [_ENGINE, _UNSIGNED, _OUT, _OUT],
    "qnc_check": [_TEXT, _UNSIGNED, _OUT, _OUT],
    "qnc_lint": [_TEXT, _UNSIGNED, _OUT, _OUT],
}

_lock = threading.Lock()
_loaded: ctypes.CDLL | None = None


def library() -> ctypes.CDLL:
    """The library, loaded at the first call that needs it.

    Raises:
        LibraryMissing: it isn't there, or is another one.
    """
    global _loaded
    if _loaded is not None:
        return _loaded
    with _lock:
        if _loaded is None:
            _loaded = _load()
        return _loaded


def _load() -> ctypes.CDLL:
    path = os.environ.get(VARIABLE) or SONAME
    try:
        loaded = ctypes.CDLL(path)
        for name, arguments in _CALLS.items():
            call = getattr(loaded, name)
            call.argtypes = arguments
            call.restype = ctypes.c_int
        loaded.qnc_version.argtypes = []
        loaded.qnc_version.restype = ctypes.c_char_p
        loaded.qnc_texts.argtypes = []
        loaded.qnc_texts.restype = ctypes.c_char_p
        loaded.qnc_free.argtypes = [ctypes.c_void_p]
        loaded.qnc_free.restype = None
    except (OSError, AttributeError) as error:
        raise LibraryMissing(
            f"{path} can't be used: install Debian's package libqncorvane1, or set the environment variable {VARIABLE} to the "
            f"path of {SONAME} ({error})") from error
    return loaded


def utf8(what: str, text: str) -> bytes:
    """The text as the library takes it.

    Raises:
        TypeError: it is no text.
        ValueError: it can't be handed over whole: it holds U+0000 or half a surrogate pair.
    """
    if not isinstance(text, str):
        raise TypeError(f"{what}: a text is wanted, not {type(text).__name__}")
    place = text.find("\0")
    if place >= 0:
        raise ValueError(f"{what}: U+0000 at {place} can't be handed to the engine")
    try:
        return text.encode("utf-8")
    except UnicodeEncodeError as error:
        raise ValueError(f"{what}: U+{ord(text[error.start]):04X} at {error.start} is half a character") from None


def path_bytes(folder: str | os.PathLike[str]) -> bytes:
    """A path as the library takes it; ValueError for one with U+0000 in it."""
    raw = os.fsencode(folder)
    if b"\0" in raw:
        raise ValueError(f"folder: U+0000 at {raw.index(0)} can't stand in a path")
    return raw


def milliseconds(time_limit: float | None) -> int:
    """A limit in seconds as the library takes it: whole milliseconds, rounded up, 0 for none.

    Raises:
        ValueError: a limit that is no time: 0 or less, no number, or more than 4294967 seconds.
    """
    if time_limit is None:
        return 0
    if not 0 < time_limit <= 4294967:
        raise ValueError(f"time_limit: {time_limit!r} is no number of seconds above 0 and up to 4294967; None for no limit")
    return math.ceil(time_limit * 1000)


class Answer:
    """What a call answered: its code, and the texts that it gave out, copied."""

    def __init__(self, code: int, text: str | None, error: str | None) -> None:
        self.code = code
        self.text = text
        self.error = error or f"the engine answered {code}"

    def checked(self) -> Answer:
        """Itself, or the exception for its code."""
        if self.code != 0:
            raise error_of(self.code, self.error)
        return self

    def said(self) -> str:
        """The text that a successful call gives out."""
        if self.checked().text is None:
            raise error_of(Code.REFUSED, "the engine gave no answer")
        return str(self.text)


def call(name: str, *arguments: object, gives_text: bool = False) -> Answer:
    """Runs a call of the library. The texts that it gives out are copied and given back.

    Args:
        name: the call.
        arguments: those before its texts out.
        gives_text: whether a text out comes before the error.
    """
    loaded = library()
    text = ctypes.c_void_p()
    error = ctypes.c_void_p()
    outs = [ctypes.byref(text)] if gives_text else []
    try:
        code = getattr(loaded, name)(*arguments, *outs, ctypes.byref(error))
        return Answer(code, _copied(text), _copied(error))
    finally:
        loaded.qnc_free(text)
        loaded.qnc_free(error)


def _copied(text: ctypes.c_void_p) -> str | None:
    return ctypes.string_at(text.value).decode("utf-8", "replace") if text.value else None


def open_engine(folder: bytes) -> ctypes.c_void_p:
    """Opens the engine on a store's folder."""
    engine = ctypes.c_void_p()
    call("qnc_open", folder, ctypes.byref(engine)).checked()
    return engine


def version() -> str:
    """The version of the library that is used, e.g. "1.3.0"."""
    constant = library().qnc_version()
    return str(constant.decode("ascii"))


def texts() -> str:
    """The texts that go with explanations, as JSON."""
    constant = library().qnc_texts()
    return str(constant.decode("utf-8"))
