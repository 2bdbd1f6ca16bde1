"""The till's own texts, in English and Chinese: words.json."""

from __future__ import annotations

import json
import pathlib

LANGUAGES = ("en", "zh")


class Refusal(Exception):
    """A command that can't be done.

    Attributes:
        key: why, a key of words.json.
        fields: what goes into that text.
    """

    def __init__(self, key: str, **fields: object) -> None:
        super().__init__(key, fields)
        self.key = key
        self.fields = fields


class Words:
    """The till's texts in one language."""

    def __init__(self, lang: str) -> None:
        table = json.loads((pathlib.Path(__file__).parent / "words.json").read_text("utf-8"))
        self._texts: dict[str, str] = {key: texts[lang] for key, texts in table.items()}

    def __call__(self, key: str, **fields: object) -> str:
        """The text of a key, with its fields filled in; KeyError when there is none."""
        return self._texts[key].format(**fields)

    def refusal(self, refusal: Refusal) -> str:
        """Why a command can't be done."""
        return self(refusal.key, **refusal.fields)
