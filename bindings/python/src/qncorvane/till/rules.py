"""What the files of a store's rules tell the person at the till: names, and words that the rules go by."""

from __future__ import annotations

import dataclasses
import pathlib
from collections.abc import Iterator, Mapping, Sequence

from .. import _xml


@dataclasses.dataclass(frozen=True, slots=True, kw_only=True)
class RuleTexts:
    """What the rules' files say.

    Attributes:
        names: the name of each rule that has one, by its number.
        shops: the shops that rules name.
        members: the types of member cards that rules name.
        payments: the ways of paying that rules name.
        coupons: the kinds of coupons that rules name.
    """

    names: Mapping[str, str]
    shops: Sequence[str]
    members: Sequence[str]
    payments: Sequence[str]
    coupons: Sequence[str]


def read_rules(store: pathlib.Path) -> RuleTexts:
    """What the store's rules say. A file that can't be read is passed over: the engine tells what is wrong with it."""
    names: dict[str, str] = {}
    words: dict[str, set[str]] = {"OrgCode": set(), "VipType": set(), "PayType": set(), "CouponTypeCode": set()}
    for file in sorted((store / "rules").glob("*.xml")):
        try:
            root = _xml.parse(file.read_text("utf-8"))
        except (ValueError, OSError):
            continue
        for rule in root.children:
            if rule.attributes.get("Name"):
                names[rule.attributes.get("BillNo", "")] = rule.attributes["Name"]
            for element in _below(rule):
                for word, found in words.items():
                    found.add(element.attributes.get(word, ""))
    known = {word: sorted(found - {"", "*"}) for word, found in words.items()}
    return RuleTexts(names=names, shops=known["OrgCode"], members=known["VipType"], payments=known["PayType"],
                     coupons=known["CouponTypeCode"])


def _below(element: _xml.Element) -> Iterator[_xml.Element]:
    for child in element.children:
        yield child
        yield from _below(child)
