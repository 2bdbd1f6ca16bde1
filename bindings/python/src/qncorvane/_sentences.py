"""What an explanation says, in plain sentences: the texts are the library's own."""

from __future__ import annotations

import json
import re
from collections.abc import Mapping, Sequence
from decimal import Decimal
from typing import Any

from . import _library
from ._explanation import Addition, Decision, Explanation, NearMiss, Outcome, Pass, RuleName, Step, Unit, What

_FIELD = re.compile(r"\{(\w+)\}")
_MONEY = {Unit.MONEY, Unit.PRICE, Unit.PAYMENT, Unit.COUPON}
_AS_THEY_ARE = {Unit.TEXT, Unit.TYPE}
_NAMED = {Unit.WEEKDAY: "weekdays", Unit.PASS: "passes"}
_MOST_GOODS = 3


def texts() -> dict[str, Any]:
    """The texts that go with explanations, in English and Chinese; their form: docs/explanations.md of the project."""
    table: dict[str, Any] = json.loads(_library.texts())
    return table


class Sentences:
    """Plain sentences for what stands in an explanation, in one language.

        sentences = Sentences("en", goods={"200201": "Yoghurt, strawberry"}, rules={"PTPL-01": "From six yoghurts on"})
        print(sentences.decision(outcome.because, explanation))
    """

    def __init__(self, lang: str = "en", *, goods: Mapping[str, str] | None = None, rules: Mapping[str, str] | None = None,
                 table: Mapping[str, Any] | None = None) -> None:
        """
        Args:
            lang: "en" or "zh".
            goods: names of goods by their codes; a code without one stands for itself.
            rules: names of rules by their numbers; a number without one stands for itself.
            table: the texts; those of the library if None.
        Raises:
            ValueError: another language.
        """
        self._table = texts() if table is None else table
        if lang not in ("en", "zh"):
            raise ValueError(f"lang: '{lang}' is neither en nor zh")
        self._lang = lang
        self._goods = goods or {}
        self._rules = rules or {}

    def decision(self, decision: Decision, explanation: Explanation | None = None, *, rule: str = "") -> str:
        """Why, such as "needs 6 of Yoghurt, strawberry, has 5".

        Args:
            decision: what was decided.
            explanation: where it stands; it tells which goods the lines have.
            rule: the number of the rule that decided.
        """
        goods = self._goods_of(decision, explanation)
        fields = self._fields(decision, goods, rule)
        reason, unit = decision.reason.value, f"{decision.reason.value}.{decision.unit.value}"
        if decision.taken_by and (text := self._first("reasons", [f"{unit}.taken", f"{reason}.taken"], goods)) is not None:
            return _filled(text, fields)
        text = self._first("reasons", [unit, reason], goods)
        said = reason if text is None else _filled(text, fields)
        taken = self._first("phrases", ["takenBy"], goods) if decision.taken_by else None
        return said if taken is None else self._phrase("join", first=said, second=_filled(taken, fields))

    def advice(self, decision: Decision, explanation: Explanation | None = None, *, rule: str = "") -> str:
        """What the shop could do about it; empty where nothing can be said. Arguments are those of `decision`."""
        goods = self._goods_of(decision, explanation)
        text = self._first("advice", [f"{decision.reason.value}.{decision.unit.value}", decision.reason.value], goods)
        return "" if text is None else _filled(text, self._fields(decision, goods, rule))

    def outcome(self, outcome: Outcome, explanation: Explanation | None = None, *, rule: str = "") -> str:
        """What came of a rule in a pass: what it gave, or the reason that decided. Arguments are those of `decision`."""
        if outcome.because is not None:
            return self.decision(outcome.because, explanation, rule=rule)
        parts = []
        if outcome.cents:
            parts.append(self._phrase("applied.money", money=f"{-outcome.money:.2f}"))
        if outcome.offers:
            parts.append(self._phrase("applied.offers"))
        if outcome.coupons:
            parts.append(self._phrase("applied.coupons", count=str(outcome.coupons)))
        return self._joined(parts, "comma") or self._phrase("applied")

    def near_miss(self, near_miss: NearMiss) -> str:
        """What would have to be added, and what that brings."""
        add = self._joined([self._addition(each) for each in near_miss.add], "and")
        return self._phrase("nearMiss", add=add, brings=self._brings(near_miss))

    def step(self, step: Step) -> str:
        """What changed a line's amount."""
        return self._entry("steps", step.kind.value, step.kind.value, name=self.rule(step.by))

    def passing(self, each: Pass) -> str:
        """What a walk over the rules looks for."""
        return self._entry("passes", each.kind.value, each.kind.value)

    def rule(self, bill_no: str) -> str:
        """The name of a rule."""
        return self._rules.get(bill_no) or bill_no

    def goods(self, code: str) -> str:
        """The name of an article."""
        return self._goods.get(code) or code

    def _brings(self, near_miss: NearMiss) -> str:
        gain = near_miss.brings
        if gain is None:
            return self._phrase("brings.unknown")
        parts = []
        if gain.cents > 0:
            parts.append(self._phrase("brings.money", money=f"{gain.money:.2f}"))
        if gain.cents < 0:
            parts.append(self._phrase("brings.less", rule_money=f"{gain.rule_money:.2f}", money=f"{-gain.money:.2f}"))
        if gain.offers > 0:
            parts.append(self._phrase("brings.offers"))
        if gain.coupon_cents > 0:  # a larger coupon in place of a smaller one is a gain, too
            parts.append(self._phrase("brings.coupons", money=f"{gain.coupon_money:.2f}"))
        return self._joined(parts, "comma") or self._phrase("brings.nothing")

    def _addition(self, addition: Addition) -> str:
        is_goods = addition.what is What.GOODS
        count = _figure(addition.count) if is_goods else f"{addition.count:.2f}"
        fields = {"count": count, "goods": self.goods(addition.plu_code)}
        if is_goods and addition.price is not None:
            return self._phrase("add.goods.price", **fields, price=f"{addition.price:.2f}")
        return self._phrase(f"add.{addition.what.value}", **fields)

    def _goods_of(self, decision: Decision, explanation: Explanation | None) -> list[str]:
        if decision.goods:
            return [self.goods(decision.goods)]
        codes = {line.serial_no: line.plu_code for line in explanation.lines} if explanation else {}
        return list(dict.fromkeys(self.goods(codes[line]) for line in decision.lines if line in codes))

    def _fields(self, decision: Decision, goods: Sequence[str], rule: str) -> dict[str, str]:
        unit = decision.unit
        return {
            "rule": rule, "slot": decision.slot, "row": str(decision.row), "tier": str(decision.tier),
            "unit": self._entry("units", unit.value, unit.value), "have": self._value(decision.have, unit),
            "need": self._value(decision.need, unit), "missing": self._missing(decision),
            "goods": self._joined(goods, "and") if 1 <= len(goods) <= _MOST_GOODS else self._phrase("goods"),
            "lines": self._joined([str(line) for line in decision.lines], "comma"),
            "rules": self._joined([self._taker(each) for each in decision.taken_by], "comma")}

    def _taker(self, rule: RuleName) -> str:
        return self._phrase("taker", **{"rule": rule.bill_no, "class": rule.primary}) if rule.primary else rule.bill_no

    def _missing(self, decision: Decision) -> str:
        if isinstance(decision.have, Decimal) and isinstance(decision.need, Decimal):
            return self._value(decision.need - decision.have, decision.unit)
        return self._phrase("none")

    def _value(self, value: Decimal | str | None, unit: Unit) -> str:
        if value is None or value == "":
            return self._phrase("none")
        if isinstance(value, Decimal):
            return f"{value:.2f}" if unit in _MONEY else self._part(_figure(value), unit)
        if unit in _AS_THEY_ARE:
            return value
        return self._joined([self._part(part, unit) for part in map(str.strip, value.split(","))], "comma")

    def _part(self, text: str, unit: Unit) -> str:
        if unit in _NAMED and (name := self._first(_NAMED[unit], [text], None)) is not None:
            return name
        start, dots, end = text.partition("..")
        if not dots:
            return text
        return self._phrase("span", **{"from": start or self._phrase("open"), "to": end or self._phrase("open")})

    def _joined(self, parts: Sequence[str], between: str) -> str:
        return self._phrase(between).join(parts)

    def _phrase(self, key: str, /, **fields: str) -> str:
        return self._entry("phrases", key, key, **fields)

    def _entry(self, group: str, key: str, otherwise: str, /, **fields: str) -> str:
        found = self._first(group, [key], None)
        return otherwise if found is None else _filled(found, fields)

    def _first(self, group: str, keys: Sequence[str], goods: Sequence[str] | None) -> str | None:
        """The text of the first key that there is; with ".many" behind it where it isn't about one article."""
        entries = self._table.get(group, {})
        for key in keys:
            for each in [key] if goods is None or len(goods) == 1 else [f"{key}.many", key]:
                if each in entries:
                    return str(entries[each][self._lang])
        return None


def _filled(text: str, fields: Mapping[str, str]) -> str:
    return _FIELD.sub(lambda found: fields.get(found[1], found[0]), text)


def _figure(number: Decimal) -> str:
    """A number with as many decimals as it needs, three at most."""
    shown = f"{number:.3f}".rstrip("0").rstrip(".")
    return "0" if shown == "-0" else shown
