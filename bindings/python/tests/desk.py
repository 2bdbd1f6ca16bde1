"""A till on a store, as the program puts it together, and what tests type at it."""

import datetime
import pathlib

from qncorvane import Engine, Sentences
from qncorvane.till.commands import Answer, Commands
from qncorvane.till.goods import read_goods
from qncorvane.till.model import Calculator, SaleState, Till
from qncorvane.till.rules import read_rules
from qncorvane.till.view import View
from qncorvane.till.words import Words

NOON = datetime.datetime(2024, 6, 15, 12, 0, 0)


class Desk:
    """The parts of the program, with a clock that stands still."""

    def __init__(self, engine: Engine, store: pathlib.Path, lang: str = "en", calculator: Calculator | None = None) -> None:
        self.words = Words(lang)
        self.goods = read_goods(store)
        self.rules = read_rules(store)
        self.till = Till(calculator or engine, clock=lambda: NOON)
        self.view = View(self.words, Sentences(lang, goods=self.goods.names(), rules=self.rules.names))
        self.commands = Commands(self.till, self.goods, self.rules, self.words, self.view)

    @property
    def state(self) -> SaleState:
        """The sale as it is."""
        return self.till.state

    def type(self, *lines: str) -> Answer:
        """Types lines; the answer to the last one."""
        answer = Answer()
        for line in lines:
            answer = self.commands.run(line)
        return answer

    def to_pay(self) -> str:
        """What the result says."""
        return "none" if self.state.result is None else str(self.state.result.totals.to_pay)

    def choices(self, typed: str) -> list[str]:
        """The texts that can be chosen while this is typed."""
        return [choice.text for choice in self.commands.complete(typed)]
