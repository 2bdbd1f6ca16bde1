"""Explanations for tests: those that the schema allows, and one written by hand."""

import json
from typing import Any

from hypothesis import strategies as st

from conftest import SOURCES

SCHEMA: dict[str, Any] = json.loads((SOURCES / "docs" / "explanation.schema.json").read_text("utf-8"))
Strategy = st.SearchStrategy[Any]


def values(schema: dict[str, Any]) -> Strategy:
    """What a part of the schema allows."""
    if "$ref" in schema:
        return values(SCHEMA["definitions"][schema["$ref"].rpartition("/")[2]])
    if "const" in schema:
        return st.just(schema["const"])
    if "enum" in schema:
        return st.sampled_from(schema["enum"])
    if "oneOf" in schema:
        return st.one_of([values(each) for each in schema["oneOf"]])
    kind = schema["type"]
    if isinstance(kind, list):
        return st.one_of([values({**schema, "type": each}) for each in kind])
    if kind == "object":
        return _objects(schema)
    if kind == "array":
        return st.lists(values(schema["items"]), max_size=3)
    plain: dict[str, Strategy] = {
        "integer": st.integers(schema.get("minimum", -10**6), 10**6), "string": st.text(max_size=5), "null": st.none(),
        "number": st.decimals(-10**6, 10**6, places=2).map(float) | st.integers(-1000, 1000)}
    return plain[kind]


def _objects(schema: dict[str, Any]) -> Strategy:
    assert sorted(schema["required"]) == sorted(schema["properties"])
    made = st.fixed_dictionaries({name: values(part) for name, part in schema["properties"].items()})
    if "if" not in schema:
        return made
    # The one condition of the schema: what was applied has no reason.
    reasons = values(SCHEMA["definitions"]["decision"])
    return st.tuples(made, reasons).map(
        lambda pair: {**pair[0], "because": None if pair[0]["outcome"] == "applied" else pair[1]})


def decision(reason: str, **more: object) -> dict[str, Any]:
    """A decision that is about nothing but what is told."""
    return {"reason": reason, "lines": [], "goods": "", "slot": "", "row": 0, "tier": 0, "unit": "", "have": None, "need": None,
            "takenBy": [], **more}


def outcome(number: int, because: dict[str, Any] | None, cents: int = 0, **more: object) -> dict[str, Any]:
    """What came of a rule in a pass."""
    return {"pass": number, "outcome": "refused" if because else "applied", "cents": cents, "money": cents / 100, "lines": [],
            "offers": 0, "coupons": 0, "because": because, "looked": [because] if because else [], **more}


# Three juices and five yoghurts: the price of the week for the juice, one yoghurt short.
BY_HAND: dict[str, Any] = {
    "version": 1, "mode": "All",
    "passes": [{"pass": 1, "kind": "Ordinary", "class": ""}, {"pass": 2, "kind": "Combination", "class": "DZ"}],
    "rules": [
        {"billNo": "PTXS-01", "type": "PTXS", "primary": "PT", "outcomes": [
            outcome(1, None, 153, lines=[{"serialNo": 1, "cents": 153, "money": 1.53}]),
            outcome(2, decision("OtherPass", unit="pass", have="Combination", need="Ordinary"))]},
        {"billNo": "PTPL-01", "type": "PTPL", "primary": "PT", "outcomes": [
            outcome(1, decision("BelowMinimum", lines=[2], row=1, unit="quantity", have=5, need=6)),
            outcome(2, decision("OtherPass", unit="pass", have="Combination", need="Ordinary"))]},
        {"billNo": "ZHZY-01", "type": "ZHZY", "primary": "PT", "outcomes": [
            outcome(1, decision("OtherPass", unit="pass", have="Ordinary", need="Combination")),
            outcome(2, decision("NotNamed"))]}],
    "lines": [
        {"serialNo": 1, "pluCode": "100101", "count": 3, "price": 2.50, "before": 7.50, "beforeCents": 750, "steps": [
            {"pass": 1, "billNo": "PTXS-01", "type": "PTXS", "kind": "discount", "by": "PTXS-01", "count": 3, "cents": 153,
             "money": 1.53, "leftCents": 597, "left": 5.97}], "left": 5.97, "leftCents": 597, "total": 5.97},
        {"serialNo": 2, "pluCode": "200201", "count": 5, "price": 0.80, "before": 4.00, "beforeCents": 400, "steps": [],
         "left": 4.00, "leftCents": 400, "total": 4.00}],
    "nearMisses": [
        {"billNo": "PTPL-01", "type": "PTPL", "reason": "BelowMinimum", "slot": "", "tier": 0, "unit": "quantity", "have": 5,
         "need": 6, "missing": 1,
         "add": [{"what": "goods", "pluCode": "200201", "serialNo": 2, "count": 1, "price": 0.80}],
         "brings": {"cents": 90, "money": 0.90, "ruleCents": 90, "offers": 0, "coupons": 0, "couponCents": 0}}]}
