"""The program: `python3 -m qncorvane.till --store DIR [--lang en|zh] [--script FILE] [--key KEY]`."""

from __future__ import annotations

import argparse
import contextlib
import io
import pathlib
import sys
from collections.abc import Iterator, Sequence
from typing import TextIO

from .._engine import Engine
from .._errors import LibraryMissing, QncError
from .._sentences import Sentences
from . import script
from .commands import Commands
from .goods import read_goods
from .model import Till
from .rules import read_rules
from .view import View
from .words import LANGUAGES, Words

_FAILED = 1
_INTERRUPTED = 130


def main(arguments: Sequence[str] | None = None) -> int:
    """Runs the till.

    Returns:
        The exit code: 0, or 1 where the store can't be opened, or a command of a script was refused.
    """
    given = _arguments(arguments)
    try:
        return _run(given)
    except (QncError, LibraryMissing, ValueError, OSError, script.Refused, _Missing) as error:
        print(f"qncorvane: {error}", file=sys.stderr)
        return _FAILED
    except KeyboardInterrupt:
        return _INTERRUPTED


class _Missing(Exception):
    """Something that the full screen needs isn't installed."""


def _arguments(arguments: Sequence[str] | None) -> argparse.Namespace:
    parser = argparse.ArgumentParser(prog="qncorvane till", description="a till in the terminal, to try a store by hand")
    parser.add_argument("--store", required=True, type=pathlib.Path, metavar="DIR", help="the store's folder")
    parser.add_argument("--lang", choices=LANGUAGES, default="en", help="the language of what is shown (default: en)")
    parser.add_argument("--script", metavar="FILE", help="run the commands of a file; - is standard input")
    parser.add_argument("--key", default="till", help="what the keys of the sales begin with (default: till)")
    return parser.parse_args(arguments)


def _run(given: argparse.Namespace) -> int:
    words = Words(given.lang)
    with Engine(given.store) as engine:
        engine.load_rules()
        goods = read_goods(given.store)
        rules = read_rules(given.store)
        till = Till(engine, key=given.key)
        view = View(words, Sentences(given.lang, goods=goods.names(), rules=rules.names))
        commands = Commands(till, goods, rules, words, view)
        if given.script is not None:
            if isinstance(sys.stdout, io.TextIOWrapper):
                sys.stdout.reconfigure(errors="replace")  # a terminal that isn't UTF-8 shows "?" for what it doesn't have
            with _opened(given.script) as lines:
                script.run(lines, given.script, commands, till, view, words, sys.stdout)
            return 0
        try:
            from .app import App
        except ModuleNotFoundError as error:
            if error.name != "prompt_toolkit":
                raise
            raise _Missing("the till's screen needs prompt_toolkit: install Debian's package python3-prompt-toolkit; "
                           "--script works without") from None
        App(till, commands, view, words).run()
        return 0


@contextlib.contextmanager
def _opened(file: str) -> Iterator[TextIO]:
    if file == "-":
        yield sys.stdin
        return
    with open(file, encoding="utf-8") as lines:
        yield lines


if __name__ == "__main__":
    sys.exit(main())
