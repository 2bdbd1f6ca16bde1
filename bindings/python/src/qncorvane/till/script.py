"""The till without a screen: commands from a file, and after each of them the receipt and the reasons as plain text."""

from __future__ import annotations

from collections.abc import Iterable
from typing import TextIO

from .._errors import QncError
from .commands import Commands, Quit
from .model import Till
from .view import View, clean
from .words import Refusal, Words

WIDTH = 80


class Refused(Exception):
    """A command of a script that can't be done; the text begins with file and line."""


def run(lines: Iterable[str], name: str, commands: Commands, till: Till, view: View, words: Words, out: TextIO) -> None:
    """Runs a script. Empty lines and those that begin with "#" are passed over.

    Args:
        lines: its lines.
        name: what errors call it.
        out: where receipt and reasons go.
    Raises:
        Refused: a command can't be done.
    """
    for number, line in enumerate(lines, 1):
        typed = line.strip()
        if not typed or typed.startswith("#"):
            continue
        print(f"> {clean(typed)}", file=out)
        try:
            answer = commands.run(typed)
        except Quit:
            return
        except Refusal as refusal:
            raise Refused(f"{name}:{number}: {words.refusal(refusal)}") from refusal
        except (QncError, ValueError, OSError) as error:
            raise Refused(f"{name}:{number}: {error}") from error
        if answer.page:
            shown = answer.page(WIDTH)
        else:
            shown = [clean(answer.text), "", view.title(till.state, WIDTH), *view.receipt(till.state, WIDTH), "",
                     *view.reasons(till.state, WIDTH)]
        print("\n".join(line.rstrip() for line in shown).rstrip("\n") + "\n", file=out)
