"""The store's goods, as its file goods.xml lists them."""

from __future__ import annotations

import dataclasses
import pathlib
import re
from collections.abc import Sequence
from decimal import Decimal

from .. import _xml

_PRICE = re.compile(r"[0-9]{1,9}(\.[0-9]{1,4})?")


@dataclasses.dataclass(frozen=True, slots=True, kw_only=True)
class Goods:
    """An article.

    Attributes:
        code: its code.
        name: its name; the code where it has none.
        price: its unit price; None where the list has none, and the till asks.
        cat: its category, or "".
        brd: its brand, or "".
    """

    code: str
    name: str
    price: Decimal | None = None
    cat: str = ""
    brd: str = ""


class GoodsList:
    """The goods of a store, found by code and by name."""

    def __init__(self, goods: Sequence[Goods]) -> None:
        self.all = tuple({each.code: each for each in goods}.values())
        self._by_code = {each.code: each for each in self.all}

    def exact(self, text: str) -> Goods | None:
        """The article with this code, or with this name in any letter case."""
        if text in self._by_code:
            return self._by_code[text]
        named = [each for each in self.all if each.name.casefold() == text.casefold()]
        return named[0] if len(named) == 1 else None

    def begun(self, text: str) -> Sequence[Goods]:
        """The goods whose code or name begins with a text, in any letter case."""
        begun = text.casefold()
        return [each for each in self.all if each.code.casefold().startswith(begun) or each.name.casefold().startswith(begun)]

    def search(self, text: str) -> Sequence[Goods]:
        """The goods that a text may mean: those that begin with it, then those in whose name it stands."""
        first = self.begun(text)
        return (*first, *(each for each in self.all if text.casefold() in each.name.casefold() and each not in first))

    def name(self, code: str) -> str:
        """The name of the article with this code; the code itself where there is none."""
        found = self._by_code.get(code)
        return found.name if found else code

    def names(self) -> dict[str, str]:
        """All names, by code."""
        return {each.code: each.name for each in self.all}


def read_goods(store: pathlib.Path) -> GoodsList:
    """The list of a store; an empty one where it has none.

    Raises:
        ValueError: the file is no XML, or a price is none; with file and place.
        OSError: the file can't be read.
    """
    file = store / "goods.xml"
    if not file.exists():
        return GoodsList(())
    try:
        root = _xml.parse(file.read_text("utf-8"))
        return GoodsList([_goods(row) for row in root.children if row.attributes.get("PluCode")])
    except ValueError as error:
        raise ValueError(f"{file}: {error}") from None


def _goods(row: _xml.Element) -> Goods:
    code = row.attributes["PluCode"]
    price = row.attributes.get("Price", "")
    if price and not _PRICE.fullmatch(price):
        raise ValueError(f"{row.place}: Price '{price}' is no price")
    return Goods(code=code, name=row.attributes.get("Name") or code, price=Decimal(price) if price else None,
                 cat=row.attributes.get("CAT", ""), brd=row.attributes.get("BRD", ""))
